#include "support/host_probe.h"

#include "hostctl/orvk_nic.h"

namespace TestSupport::Probe {

std::vector<int> InterfaceTags(std::string const& name) {
  std::vector<int> tags;
  OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
  auto nic = nicInfo.GetOrvikNicByInterface(name, false);
  if (!nic) return tags;
  std::vector<HostCtl::Network::OrvkNicTagType> types;
  nic->GetTags(types);
  for (auto type : types) tags.push_back(type);
  return tags;
}

}  // namespace TestSupport::Probe
