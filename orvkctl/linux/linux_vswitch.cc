// Standard switches: Linux bridges of the process's namespace, their uplinks
// the links enslaved to them (not the backend's own interface ends). Port
// groups, policies and the number of ports asked for have no counterpart in
// the kernel: the backend keeps them, per switch. A policy other than the
// defaults, and a port group on a VLAN, need what this mapping does not do
// yet (traffic control, bridge VLAN filtering): planning them is refused.
#include <net/if.h>

#include <algorithm>
#include <map>

#include "hostctl/lib.h"
#include "hostctl/policy.h"
#include "hostctl/portset.h"
#include "kernel.h"
#include "linux_host.h"
#include "vswitch_policy.h"

namespace OrvkCtl::Linux {

namespace {

using HostCtl::Lib::HostCtlException;
using Sim::PortGroupState;
using Sim::StandardSwitchState;

// A switch as `network vswitch standard add` makes it, for a bridge the
// backend has kept nothing of.
StandardSwitchState DefaultSwitch(std::string const& name) {
  using namespace HostCtl::Network;
  StandardSwitchState vswitch;
  vswitch.name = name;
  vswitch.configured_ports = Portset::DEF_NUM_PORTS;
  vswitch.teaming = Sim::ToState(NicTeamingPolicy::GetDefaultPolicy());
  vswitch.security = Sim::ToState(PortSecurityPolicy::GetDefaultPolicy());
  vswitch.shaping = Sim::ToState(ShapingPolicy::GetDefaultPolicy());
  auto const capabilities = NicCapabilities::GetDefaultPolicy();
  vswitch.checksum_offload = capabilities.checksumOffload;
  vswitch.segmentation_offload = capabilities.segmentationOffload;
  vswitch.vlan_tagging = capabilities.vlanTagging;
  return vswitch;
}

// `items` (named by `name`) with those named in `order` first, in that
// order, then the rest as they came: what the backend kept decides the
// order, the kernel what is there.
template <typename T, typename Name>
void OrderLike(std::vector<std::string> const& order, std::vector<T>& items, Name name) {
  auto rank = [&](T const& item) {
    auto at = std::find(order.begin(), order.end(), name(item));
    return at - order.begin();
  };
  std::stable_sort(items.begin(), items.end(),
                   [&](T const& a, T const& b) { return rank(a) < rank(b); });
}

void ReadSwitches(HostModel& host) {
  auto& area = host.vswitch;
  area.distributed_switches.clear();
  std::vector<LinkInfo> const links = Links();
  std::vector<StandardSwitchState> switches;
  std::vector<std::string> kept_switches;
  for (auto const& vswitch : area.standard_switches) kept_switches.push_back(vswitch.name);
  std::map<int, size_t> by_index;
  for (auto const& link : links) {
    if (link.kind != "bridge") continue;
    auto const* kept = Sim::FindStandardSwitch(area, link.name);
    StandardSwitchState vswitch = kept ? *kept : DefaultSwitch(link.name);
    vswitch.mtu = static_cast<int>(link.mtu);
    vswitch.uplinks.clear();
    by_index[link.index] = switches.size();
    switches.push_back(std::move(vswitch));
  }
  for (auto const& link : links) {
    auto bridge = by_index.find(link.master);
    if (bridge == by_index.end() || IsOwnLink(link.name)) continue;
    switches[bridge->second].uplinks.push_back(link.name);
  }
  for (auto& vswitch : switches) {
    if (auto const* kept = Sim::FindStandardSwitch(area, vswitch.name)) {
      OrderLike(kept->uplinks, vswitch.uplinks, [](std::string const& name) { return name; });
    }
  }
  OrderLike(kept_switches, switches, [](StandardSwitchState const& s) { return s.name; });
  area.standard_switches = std::move(switches);
}

// Refuses a change of the policies of `owner` ("virtual switch vSwitch1",
// "port group VM Network"): none has a kernel counterpart yet.
template <typename Owner>
void CheckPolicies(Owner const& was, Owner const& now, std::string const& owner) {
  auto refuse = [&](char const* policy) {
    NotAvailable(std::string("Setting the ") + policy + " policy of " + owner);
  };
  if (now.teaming != was.teaming) refuse("failover");
  if (now.security != was.security) refuse("security");
  if (now.shaping != was.shaping) refuse("traffic shaping");
}

void CheckVlan(PortGroupState const& group) {
  if (group.vlan_id == 0) return;
  throw HostCtlException("Port group " + group.name + " cannot use VLAN " +
                         std::to_string(group.vlan_id) +
                         ": VLANs need bridge VLAN filtering, which the linux host does not "
                         "support; VLAN 0 (none) is available");
}

void CheckBridgeName(std::string const& name) {
  bool valid = !name.empty() && name.size() < IFNAMSIZ && name != "." && name != "..";
  for (unsigned char c : name) valid = valid && c > ' ' && c != '/' && c != ':' && c < 0x7f;
  if (!valid) {
    throw HostCtlException("Virtual switch name " + name +
                           " cannot name a bridge on a linux host: at most " +
                           std::to_string(IFNAMSIZ - 1) +
                           " characters, without blanks, '/' or ':'");
  }
}

Step MtuStep(std::string const& name, int mtu, int old) {
  return {"set the MTU of " + name, [=] { SetLinkMtu(name, mtu); },
          [=] { SetLinkMtu(name, old); }};
}

// The steps that make bridge `vswitch` with its MTU and uplinks.
void PlanCreate(StandardSwitchState const& vswitch, Plan& plan) {
  std::string const name = vswitch.name;
  plan.push_back({"create bridge " + name, [name] { AddBridge(name); },
                  [name] { DeleteLink(name, "delete bridge " + name); }});
  // Setting the MTU keeps it from following the uplinks'.
  plan.push_back(MtuStep(name, vswitch.mtu, vswitch.mtu));
  plan.push_back({"bring up " + name, [name] { SetLinkUp(name, true); }, {}});
}

void PlanUplinks(std::string const& bridge, std::vector<std::string> const& was,
                 std::vector<std::string> const& now, Plan& plan) {
  auto has = [](std::vector<std::string> const& list, std::string const& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
  };
  for (auto const& nic : was) {
    if (has(now, nic)) continue;
    plan.push_back({"release " + nic, [nic] { SetMaster(nic, {}); },
                    [nic, bridge] { SetMaster(nic, bridge); }});
  }
  for (auto const& nic : now) {
    if (has(was, nic)) continue;
    plan.push_back({"add uplink " + nic, [nic, bridge] { SetMaster(nic, bridge); },
                    [nic] { SetMaster(nic, {}); }});
  }
}

void PlanSwitches(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& was : before.vswitch.standard_switches) {
    if (Sim::FindStandardSwitch(after.vswitch, was.name)) continue;
    std::string const name = was.name;
    plan.push_back({"delete bridge " + name, [name] { DeleteLink(name, "delete bridge " + name); },
                    [was] {
                      Plan again;
                      PlanCreate(was, again);
                      PlanUplinks(was.name, {}, was.uplinks, again);
                      for (auto const& step : again) step.apply();
                    }});
  }
  for (auto const& now : after.vswitch.standard_switches) {
    auto const* found = Sim::FindStandardSwitch(before.vswitch, now.name);
    StandardSwitchState const was = found ? *found : DefaultSwitch(now.name);
    std::string const owner = "virtual switch " + now.name;
    CheckPolicies(was, now, owner);
    if (now.cdp_status != was.cdp_status) NotAvailable("Setting the CDP status of " + owner);
    if (now.beacon_interval != was.beacon_interval || now.beacon_threshold != was.beacon_threshold)
      NotAvailable("Beacon probing on " + owner);
    for (auto const& group : now.port_groups) {
      StandardSwitchState const* was_owner = nullptr;
      auto const* old = found ? Sim::FindPortGroup(before.vswitch, group.name, &was_owner) : nullptr;
      PortGroupState const base = old && was_owner == found ? *old : PortGroupState{};
      if (group.vlan_id != base.vlan_id) CheckVlan(group);
      CheckPolicies(base, group, "port group " + group.name);
    }
    if (!found) {
      CheckBridgeName(now.name);
      PlanCreate(now, plan);
    } else if (now.mtu != was.mtu) {
      plan.push_back(MtuStep(now.name, now.mtu, was.mtu));
    }
    PlanUplinks(now.name, found ? was.uplinks : std::vector<std::string>{}, now.uplinks, plan);
  }
}

// What the kernel does not hold of a switch is as asked; so is the order of
// its uplinks when the kernel has the same ones.
void KeepSwitches(HostModel const& after, HostModel& reread) {
  for (auto& held : reread.vswitch.standard_switches) {
    auto const* asked = Sim::FindStandardSwitch(after.vswitch, held.name);
    if (!asked) continue;
    StandardSwitchState kept = *asked;
    kept.mtu = held.mtu;
    auto sorted = [](std::vector<std::string> names) {
      std::sort(names.begin(), names.end());
      return names;
    };
    if (sorted(held.uplinks) != sorted(asked->uplinks)) kept.uplinks = held.uplinks;
    held = std::move(kept);
  }
}

}  // namespace

Family VswitchFamily() {
  return {"vswitch", Sim::kAreaVswitch, ReadSwitches, PlanSwitches, KeepSwitches};
}

}  // namespace OrvkCtl::Linux
