#include "vswitch/PolicyKit.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/policy.h"
#include "hostctl/port_group.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::LinkCriteriaSelectionPolicy;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using HostCtl::Network::TeamPolicyType;

namespace {

const std::string kUseVswitch = "use-vswitch";

const std::string kAllowPromiscuous = "allow-promiscuous";
const std::string kAllowMacChange = "allow-mac-change";
const std::string kAllowForgedTransmits = "allow-forged-transmits";

const std::string kEnabled = "enabled";
const std::string kAvgBandwidth = "avg-bandwidth";
const std::string kPeakBandwidth = "peak-bandwidth";
const std::string kBurstSize = "burst-size";

const std::string kLoadBalancing = "load-balancing";
const std::string kFailureDetection = "failure-detection";
const std::string kNotifySwitches = "notify-switches";
const std::string kFailback = "failback";
const std::string kActiveUplinks = "active-uplinks";
const std::string kStandbyUplinks = "standby-uplinks";

const std::string kPortId = "portid";
const std::string kIpHash = "iphash";
const std::string kMac = "mac";
const std::string kExplicit = "explicit";
const std::string kLink = "link";
const std::string kBeacon = "beacon";

const std::string kNotConnected = "NIC is not connected to the vswitch : ";

const std::string kLoadBalancingField = "Load Balancing";
const std::string kFailureDetectionField = "Network Failure Detection";
const std::string kNotifySwitchesField = "Notify Switches";
const std::string kFailbackField = "Failback";
const std::string kActiveAdaptersField = "Active Adapters";
const std::string kStandbyAdaptersField = "Standby Adapters";
const std::string kUnusedAdaptersField = "Unused Adapters";

const std::string kAllowPromiscuousField = "Allow Promiscuous";
const std::string kAllowMacChangeField = "Allow MAC Address Change";
const std::string kAllowForgedTransmitsField = "Allow Forged Transmits";

const std::string kEnabledField = "Enabled";
const std::string kAverageBandwidthField = "Average Bandwidth";
const std::string kPeakBandwidthField = "Peak Bandwidth";
const std::string kBurstSizeField = "Burst Size";

bool Contains(std::vector<std::string> const& names, std::string const& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Appends to `order` the tokens of the option `name` that are physical NICs
// connected to the switch; reports the others.
void AcceptUplinks(std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output,
                   std::string const& name, std::string const& unknownMessage,
                   std::vector<std::string> const& uplinks, std::vector<std::string>& order) {
  for (auto const& token : SplitUplinks(input->GetParameter(name))) {
    if (!OrvkCtl::Network::PnicImpl::IsValidPnic(token)) {
      output->AddErrorMessage(unknownMessage + token);
      continue;
    }
    if (!Contains(uplinks, token)) {
      output->AddErrorMessage(kNotConnected + token);
      continue;
    }
    order.push_back(token);
  }
}

char const* TeamPolicyWord(int policy) {
  switch (policy) {
    case HostCtl::Network::TEAM_POLICY_IP_HASH:
      return "iphash";
    case HostCtl::Network::TEAM_POLICY_SOURCE_MAC:
      return "srcmac";
    case HostCtl::Network::TEAM_POLICY_PORT_ID:
      return "srcport";
    case HostCtl::Network::TEAM_POLICY_EXPLICIT_FAILOVER:
      return "explicit";
    default:
      return "unknown";
  }
}

}  // namespace

void AddSecurityParameters(std::shared_ptr<InputSpec> spec) {
  spec->AddParameter(Optional(kAllowPromiscuous, Bool, "o",
                              "Allow ports on the virtual switch to enter promiscuous mode."));
  spec->AddParameter(Optional(kAllowMacChange, Bool, "m",
                              "Allow ports on the virtual switch to change their MAC address."));
  spec->AddParameter(Optional(
      kAllowForgedTransmits, Bool, "f",
      "Allow ports on the virtual switch to send packets with forged source information."));
}

void AddShapingParameters(std::shared_ptr<InputSpec> spec) {
  auto range = ParameterConstraint::New(IntRange);
  range->SetIntRange(1, std::numeric_limits<long>::max());
  spec->AddParameter(Optional(
      kEnabled, Bool, "e",
      "Indicate whether to enable traffic shaping on this policy. If this is true then the "
      "--avg-bandwidth, --peak-bandwidth and --burst-size options are required."));
  auto average = Optional(kAvgBandwidth, Int, "b",
                          "The averge bandwidth allowed for this shaping policy. This "
                          "value is in Kbps (1 Kbps = 1000 bits/s)");
  average->SetConstraint(range);
  spec->AddParameter(average);
  auto peak = Optional(kPeakBandwidth, Int, "k",
                       "The peak bandwidth allowed for this shaping policy. This value "
                       "is in Kbps (1 Kbps = 1000 bits/s)");
  peak->SetConstraint(range);
  spec->AddParameter(peak);
  auto burst = Optional(kBurstSize, Int, "t",
                        "The largest burst size allowed for this shaping policy. This "
                        "value is in Kib (1 Kib = 1024 bits)");
  burst->SetConstraint(range);
  spec->AddParameter(burst);
}

void AddFailoverParameters(std::shared_ptr<InputSpec> spec) {
  auto balancing = Optional(kLoadBalancing, Toolbase::CallSpec::String, "l",
                            "Set the load balancing policy for this policy. This can be "
                            "one of the following options: %FULLENUM%");
  auto balancingValues = ParameterConstraint::New(StringEnum);
  balancingValues->AddStringEnum(kPortId, "Route based on the originating virtual port ID.");
  balancingValues->AddStringEnum(kIpHash,
                                 "Route based on hashing the src and destination IP addresses");
  balancingValues->AddStringEnum(kMac, "Route based on the MAC address of the packet source.");
  balancingValues->AddStringEnum(kExplicit,
                                 "Always use the highest order uplink from the list of active "
                                 "adapters which pass failover criteria.");
  balancing->SetConstraint(balancingValues);
  spec->AddParameter(balancing);

  auto detection = Optional(kFailureDetection, Toolbase::CallSpec::String, "f",
                            "Set the method of determining how a network outage is detected. "
                            "%FULLENUM%");
  auto detectionValues = ParameterConstraint::New(StringEnum);
  detectionValues->AddStringEnum(kLink, "Detect failures based on the NIC link state");
  detectionValues->AddStringEnum(kBeacon,
                                 "Detect failures based on active beaconing to the vswitch");
  detection->SetConstraint(detectionValues);
  spec->AddParameter(detection);

  spec->AddParameter(
      Optional(kNotifySwitches, Bool, "n",
               "Indicate whether to send a notification to physical switches on failover"));
  spec->AddParameter(Optional(kFailback, Bool, "b",
                              "Configure whether a NIC will be used immediately when it "
                              "comes back in service after a failover"));
  spec->AddParameter(Optional(
      kActiveUplinks, Toolbase::CallSpec::String, "a",
      "Configure the list of active adapters and their failover order. This list must be a comma "
      "seperated list of values with the uplink name and no spaces. Example:  "
      "--active-uplinks=ornic0,ornic3,ornic7,ornic1"));
  spec->AddParameter(Optional(
      kStandbyUplinks, Toolbase::CallSpec::String, "s",
      "Configure the list of standby adapters and their failover order. This list must be a "
      "comma seperated list of values with the uplink name and no spaces. Example:  "
      "--standby-uplinks=ornic2,ornic4,ornic8,ornic6,ornic11"));
}

void SetSecurityPolicy(std::shared_ptr<Input> const& input, std::shared_ptr<Output> const&,
                       PortSecurityPolicy& policy) {
  if (input->HasParameter(kAllowPromiscuous)) {
    policy.SetAllowPromiscuous(input->GetParameterBool(kAllowPromiscuous));
  }
  if (input->HasParameter(kAllowMacChange)) {
    policy.SetAllowMacAddressChange(input->GetParameterBool(kAllowMacChange));
  }
  if (input->HasParameter(kAllowForgedTransmits)) {
    policy.SetAllowForgedTransmits(input->GetParameterBool(kAllowForgedTransmits));
  }
}

void SetShapingPolicy(std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output,
                      ShapingPolicy& policy, bool requireAll) {
  bool turnedOn = false;
  if (input->HasParameter(kEnabled)) {
    bool enabled = input->GetParameterBool(kEnabled);
    turnedOn = enabled;
    policy.SetEnabled(enabled);
  }
  if (!policy.enabled) return;
  bool strict = turnedOn || requireAll;
  // Unsigned arithmetic: the options allow up to the largest long.
  if (input->HasParameter(kAvgBandwidth)) {
    policy.SetAverageBps(static_cast<unsigned long>(input->GetParameterInt(kAvgBandwidth)) * 1000);
  } else if (strict) {
    output->AddErrorMessage("Missing required parameter --avg-bandwidth");
  }
  if (input->HasParameter(kPeakBandwidth)) {
    policy.SetPeakBps(static_cast<unsigned long>(input->GetParameterInt(kPeakBandwidth)) * 1000);
  } else if (strict) {
    output->AddErrorMessage("Missing required parameter --peak-bandwidth");
  }
  if (input->HasParameter(kBurstSize)) {
    policy.SetBurstSize(static_cast<unsigned long>(input->GetParameterInt(kBurstSize)) << 7);
  } else if (strict) {
    output->AddErrorMessage("Missing required parameter --burst-size");
  }
}

void SetFailoverPolicy(std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output,
                       NicTeamingPolicy& target, NicTeamingPolicy& current,
                       std::vector<std::string>& uplinks) {
  std::vector<std::string> order;

  if (input->HasParameter(kLoadBalancing)) {
    std::string const& value = input->GetParameter(kLoadBalancing);
    if (value == kPortId) {
      target.SetTeamingPolicy(HostCtl::Network::TEAM_POLICY_PORT_ID);
    } else if (value == kIpHash) {
      target.SetTeamingPolicy(HostCtl::Network::TEAM_POLICY_IP_HASH);
    } else if (value == kMac) {
      target.SetTeamingPolicy(HostCtl::Network::TEAM_POLICY_SOURCE_MAC);
    } else if (value == kExplicit) {
      target.SetTeamingPolicy(HostCtl::Network::TEAM_POLICY_EXPLICIT_FAILOVER);
    } else {
      output->AddErrorMessage("Unknown Load Balancing policy: " + value);
    }
  }

  if (input->HasParameter(kFailureDetection)) {
    std::string const& value = input->GetParameter(kFailureDetection);
    LinkCriteriaSelectionPolicy criteria;
    if (value == kLink) {
      criteria.SetBeacon(true);
    } else if (value == kBeacon) {
      criteria.SetBeacon(false);
    } else {
      output->AddErrorMessage("Unknown failure detection type " + value);
    }
    target.SetLinkCriteria(criteria);
  }

  if (input->HasParameter(kNotifySwitches)) {
    target.SetNotifySwitchOnFailure(input->GetParameterBool(kNotifySwitches));
  }
  if (input->HasParameter(kFailback)) {
    target.SetRollingRestoration(!input->GetParameterBool(kFailback));
  }

  bool hasActive = input->HasParameter(kActiveUplinks);
  bool hasStandby = input->HasParameter(kStandbyUplinks);

  if (hasActive) {
    AcceptUplinks(input, output, kActiveUplinks, "Unknown NIC name in active uplinks : ", uplinks,
                  order);
    int activeCount = static_cast<int>(order.size());
    if (!hasStandby) {
      // The standby uplinks in force stay standby, less those now active.
      std::vector<std::string> const inForce = current.uplinkOrder;
      size_t first = static_cast<size_t>(std::max(current.maxActiveUplinks, 0));
      std::vector<std::string> kept;
      for (size_t i = first; i < inForce.size(); ++i) {
        if (!Contains(order, inForce[i])) kept.push_back(inForce[i]);
      }
      order.insert(order.end(), kept.begin(), kept.end());
    }
    target.SetMaxActiveUplinks(activeCount);
    current.SetMaxActiveUplinks(activeCount);
  }

  if (hasStandby) {
    AcceptUplinks(input, output, kStandbyUplinks, "Unknown NIC name in standby uplinks : ", uplinks,
                  order);
    if (!hasActive) {
      // The active uplinks in force stay active, less those now standby. The
      // count is kept within the order in force.
      std::vector<std::string> merged = current.uplinkOrder;
      int keep = std::clamp(current.maxActiveUplinks, 0, static_cast<int>(merged.size()));
      for (int i = 0; i < keep;) {
        if (Contains(order, merged[i])) {
          merged.erase(merged.begin() + i);
          --keep;
        } else {
          ++i;
        }
      }
      target.SetMaxActiveUplinks(keep);
      merged.resize(keep);
      merged.insert(merged.end(), order.begin(), order.end());
      order = std::move(merged);
    }
  }

  if (!hasActive && !hasStandby) return;

  std::vector<std::string> distinct = order;
  std::sort(distinct.begin(), distinct.end());
  if (std::unique(distinct.begin(), distinct.end()) != distinct.end()) {
    output->AddErrorMessage("some NICs appear in the input for more than once.");
    return;
  }
  target.SetUplinkOrder(order);
}

// The splitting itself lives in libnetwork_regex.so, opened when first
// needed. It stands beside libtoolbase.so, in the build tree as when
// installed, and is opened by that full path: a sanitizer's dlopen
// interceptor does not search the plug-in's run path. The bare name, found
// through the run path, is the fallback.
namespace {
std::string SplitterPath() {
  constexpr char kName[] = "libnetwork_regex.so";
  Dl_info info{};
  auto anchor = &Toolbase::CallSpec::Output::New;
  if (dladdr(reinterpret_cast<void*>(anchor), &info) != 0 && info.dli_fname != nullptr) {
    std::string path = info.dli_fname;
    if (auto slash = path.rfind('/'); slash != std::string::npos) {
      return path.substr(0, slash + 1) + kName;
    }
  }
  return kName;
}
}  // namespace

std::vector<std::string> SplitUplinks(std::string const& text) {
  using Split = void (*)(std::string const*, std::vector<std::string>*);
  static Split const split = [] {
    void* handle = dlopen(SplitterPath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) handle = dlopen("libnetwork_regex.so", RTLD_NOW | RTLD_LOCAL);
    void* entry = handle ? dlsym(handle, "NetworkRegex_SplitUplinks") : nullptr;
    if (!entry) throw std::runtime_error(std::string("Cannot load uplink splitter: ") + dlerror());
    return reinterpret_cast<Split>(entry);
  }();
  std::vector<std::string> tokens;
  split(&text, &tokens);
  return tokens;
}

void AddFailoverFields(MetaStruct& record) {
  record.SetField(kLoadBalancingField, MetaString::New());
  record.SetField(kFailureDetectionField, MetaString::New());
  record.SetField(kNotifySwitchesField, MetaBool::New());
  record.SetField(kFailbackField, MetaBool::New());
  record.SetField(kActiveAdaptersField, MetaList::New(Toolbase::MetaObj::String));
  record.SetField(kStandbyAdaptersField, MetaList::New(Toolbase::MetaObj::String));
  record.SetField(kUnusedAdaptersField, MetaList::New(Toolbase::MetaObj::String));
}

void FillFailoverFields(MetaStruct& record, NicTeamingPolicy const& effective,
                        std::vector<std::string> const& connectedUplinks) {
  record.SetField(kLoadBalancingField, TeamPolicyWord(effective.teamPolicy));
  record.SetField(kFailureDetectionField,
                  effective.linkCriteria.UsesBeaconProbing() ? kBeacon : kLink);
  record.SetField(kNotifySwitchesField, effective.notifySwitchOnFailure);
  record.SetField(kFailbackField, !effective.rollingRestoration);

  auto const& order = effective.uplinkOrder;
  std::vector<std::string> active;
  std::vector<std::string> standby;
  if (effective.maxActiveUplinks >= 0) {
    auto count = std::min(static_cast<size_t>(effective.maxActiveUplinks), order.size());
    active.assign(order.begin(), order.begin() + static_cast<long>(count));
    standby.assign(order.begin() + static_cast<long>(count), order.end());
  }
  std::vector<std::string> unused;
  for (auto const& uplink : connectedUplinks) {
    if (!Contains(order, uplink)) unused.push_back(uplink);
  }
  record.SetField(kActiveAdaptersField, active);
  record.SetField(kStandbyAdaptersField, standby);
  record.SetField(kUnusedAdaptersField, unused);
}

void AddSecurityFields(MetaStruct& record) {
  record.SetField(kAllowPromiscuousField, MetaBool::New());
  record.SetField(kAllowMacChangeField, MetaBool::New());
  record.SetField(kAllowForgedTransmitsField, MetaBool::New());
}

void FillSecurityFields(MetaStruct& record, PortSecurityPolicy const& effective) {
  record.SetField(kAllowPromiscuousField, effective.allowPromiscuous);
  record.SetField(kAllowMacChangeField, effective.allowMacAddressChange);
  record.SetField(kAllowForgedTransmitsField, effective.allowForgedTransmits);
}

void AddShapingFields(MetaStruct& record) {
  record.SetField(kEnabledField, MetaBool::New());
  record.SetField(kAverageBandwidthField, MetaInt::New());
  record.SetField(kPeakBandwidthField, MetaInt::New());
  record.SetField(kBurstSizeField, MetaInt::New());
}

void FillShapingFields(MetaStruct& record, ShapingPolicy const& effective) {
  record.SetField(kEnabledField, effective.enabled);
  long average = -1;
  long peak = -1;
  long burst = -1;
  if (effective.enabled) {
    average = static_cast<int64_t>(effective.averageBps) / 1000;
    peak = static_cast<int64_t>(effective.peakBps) / 1000;
    burst = static_cast<int64_t>(effective.burstSize) / 128;
  }
  record.SetField(kAverageBandwidthField, average);
  record.SetField(kPeakBandwidthField, peak);
  record.SetField(kBurstSizeField, burst);
}

void AddOverrideFields(MetaStruct& record, std::span<OverrideField const> fields) {
  for (auto const& field : fields) record.SetField(field.field, MetaBool::New());
}

void FillOverrideFields(MetaStruct& record, std::span<OverrideField const> fields, uint32_t mask) {
  for (auto const& field : fields) record.SetField(field.field, (mask & field.bit) != 0);
}

std::shared_ptr<InputSpec> PortGroupPolicySpec(char const* groupHelp, char const* gap) {
  return InputSpecOf(
      {Required(Shared::PortgroupName, groupHelp),
       Optional(kUseVswitch, Flag, "u",
                std::string("Reset all values for this policy to use parent virtual switch's "
                            "settings instead of overriding the settings for the port group.") +
                    gap +
                    "Using this in conjunction with other settings will first reset all of the "
                    "fields to use the virtual switch setting and then apply the other options "
                    "after the reset.")});
}

bool UsesVswitchPolicy(Input const& input) { return input.IsFlagSet(kUseVswitch); }

std::unique_ptr<HostCtl::Network::PortGroup> FindPolicyPortGroup(
    Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output) {
  std::string const& name = input.GetParameter(kPortgroupName);
  auto group = HostCtl::Network::NetworkFactory::GetPortGroupByName(name);
  if (!group) output.AddErrorMessage("Unable to find a port group with the name " + name);
  return group;
}

std::unique_ptr<HostCtl::Network::VirtualSwitch> FindPolicyStandardSwitch(
    OrvkCtl::Network::VirtualSwitchInfoImpl& switchInfo, Toolbase::CallSpec::Input const& input,
    Toolbase::CallSpec::Output& output) {
  std::string const& name = input.GetParameter(kVswitchName);
  std::unique_ptr<HostCtl::Network::VirtualSwitch> vswitch;
  if (OrvkCtl::Network::PortsetImpl::IsValidVirtualSwitch(name)) {
    vswitch = switchInfo.GetVirtualSwitchByName(name);
  }
  if (!vswitch) {
    output.AddErrorMessage("Unable to find a legacy virtual switch with the name " + name);
  }
  return vswitch;
}

}  // namespace CorvaneCli::NetworkNamespace
