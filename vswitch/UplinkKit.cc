#include "vswitch/UplinkKit.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

namespace {
const std::string kUplinkName = "uplink-name";
}  // namespace

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> UplinkNameParameter(std::string description) {
  return Required(kUplinkName, Toolbase::CallSpec::String, "u", std::move(description));
}

void ChangeUplink(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  UplinkChange change) {
  std::string const& vswitchName = input.GetParameter(kVswitchName);
  std::string const& uplink = input.GetParameter(kUplinkName);
  auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
  if (vswitch) {
    if (change == UplinkChange::Add) {
      vswitch->AddUplink(uplink);
    } else {
      vswitch->RemoveUplink(uplink, false);
    }
  }
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

std::vector<std::string> HostPnicNames() {
  std::vector<std::string> names;
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  for (auto const& pnic : networkInfo.GetPnics()) {
    if (pnic) names.push_back(pnic->GetName());
  }
  return names;
}

std::vector<std::string> PhysicalUplinks(std::vector<std::string> uplinks,
                                         std::vector<std::string> const& pnicNames) {
  std::erase_if(uplinks, [&](std::string const& uplink) {
    return std::find(pnicNames.begin(), pnicNames.end(), uplink) == pnicNames.end();
  });
  return uplinks;
}

}  // namespace CorvaneCli::NetworkNamespace
