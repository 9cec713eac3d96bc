#include "ip/IpInterfaceCommon.h"

#include <cstdint>
#include <ctime>
#include <string>

#include "frame/CommandKit.h"
#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/port_group_impl.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

namespace {
const std::string kIpv6 = "ipv6";
const std::string kDvsName = "dvs-name";
const std::string kDvportId = "dvport-id";
const std::string kErrorWas = ". Error was: ";
}  // namespace

std::string OptionalText(Toolbase::CallSpec::Input const& input, std::string const& name) {
  return input.HasParameter(name) ? input.GetParameter(name) : std::string();
}

bool CheckConnectionParameters(Toolbase::CallSpec::Input const& input,
                               Toolbase::CallSpec::Output& output) {
  bool const portgroup = input.HasParameter(kPortgroupName);
  bool const dvs = input.HasParameter(kDvsName);
  bool const dvport = input.HasParameter(kDvportId);
  if (portgroup && dvs && dvport) {
    output.AddErrorMessage(
        "Only one connection point can be specified, vswitch port group or DVPort.");
    return false;
  }
  if (dvs != dvport || (!portgroup && !dvs)) {
    output.AddErrorMessage(
        "A connection point of either vswitch port group name or dvs-name/dvport-id should be "
        "specified. If connection point is DVPort, --dvs-name and --dvport-id must be specified "
        "at the same time.");
    return false;
  }
  return true;
}

std::unique_ptr<HostCtl::Network::ConnectionPoint> BuildConnectionPoint(
    Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output) {
  if (!CheckConnectionParameters(input, output)) return nullptr;
  bool const portgroup = input.HasParameter(kPortgroupName);

  std::unique_ptr<HostCtl::Network::ConnectionPoint> point;
  if (portgroup) {
    std::string const& name = input.GetParameter(kPortgroupName);
    try {
      point.reset(new OrvkCtl::Network::PortGroupImpl(name));
    } catch (HostCtl::Lib::HostCtlException const& e) {
      output.AddErrorMessage("Invalid vswitch port group name " + name + kErrorWas + e.message);
      return nullptr;
    }
  } else {
    std::string const& name = input.GetParameter(kDvsName);
    try {
      HostCtl::Network::DVPortParam param;
      auto dvSwitch = HostCtl::Network::NetworkFactory::GetDVSwitchByName(name);
      param.switchUuid = dvSwitch->GetDvsId();
      param.portId = input.GetParameter(kDvportId);
      {
        OrvkCtl::Network::DVPortImpl probe(param);
        if (probe.IsValid()) {
          if (probe.GetConnectionId() == 0) {
            probe.SetConnectionId(static_cast<uint32_t>(time(0)));
          }
          param.connectionId = probe.GetConnectionId();
        }
      }
      point.reset(new OrvkCtl::Network::DVPortImpl(param));
    } catch (HostCtl::Lib::HostCtlException const& e) {
      output.AddErrorMessage("Unable to retrieve DVS info by specified DVS name " + name +
                             kErrorWas + e.message);
      return nullptr;
    }
  }

  if (!point->IsValid()) {
    output.AddErrorMessage("Invalid vswitch port group or DVPort parameters.");
    return nullptr;
  }
  return point;
}

std::shared_ptr<Toolbase::CallSpec::InputSpec> Ipv6AddressSpec(char const* interfaceHelp,
                                                               char const* addressHelp) {
  return InputSpecOf(
      {Required(Shared::InterfaceName, interfaceHelp),
       Required(kIpv6, Toolbase::CallSpec::ParameterType::String, "I", addressHelp)});
}

void ChangeIpv6Address(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                       std::string const& name, Ipv6AddressChange change) {
  std::string const& ipv6 = input.GetParameter(kIpv6);
  using HostCtl::Network::Ipv6Network;
  if (!Ipv6Network::IsValidAddressAndNetmask(ipv6)) {
    output.AddErrorMessage(
        "Invalid format for IPv6 address. Address must be in the format "
        "<ipv6-address>/<prefix-length>   Example: 1:2:3:4::/64");
    return;
  }
  OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
  auto nic = nicInfo.GetOrvikNicByInterface(name, false);
  if (!nic) {
    output.AddErrorMessage("Unable to find a Orvik interface with the name " + name);
    return;
  }
  HostCtl::Network::IpConfig cfg = nic->GetIpConfig();
  if (change == Ipv6AddressChange::Add) {
    cfg.AddIpv6Network(Ipv6Network(ipv6));
  } else {
    cfg.RemoveIpv6Network(Ipv6Network(ipv6));
  }
  nic->SetIpConfig(cfg);
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

}  // namespace CorvaneCli::NetworkNamespace
