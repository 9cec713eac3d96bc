#include "host_model.h"

namespace OrvkCtl::Sim {

HostModel DefaultHost() {
  HostModel host;
  host.hostname = "halden-01";
  host.modules = {{"haldenfw", true}, {"orvknet", true}, {"lacp", true}, {"dvfilter", true}};
  SeedFirewall(host);
  SeedNic(host);
  SeedIp(host);
  SeedVswitch(host);
  SeedRuntime(host);
  return host;
}

void SeedFirewall(HostModel& host) {
  host.firewall.enabled = true;
  host.firewall.default_action_pass = false;
  host.firewall.dynamic_rules = {
      {"dhcp", 1, 68, 68, 0, 1},
      {"dns", 1, 53, 53, 1, 1},
  };
}

ModuleState* FindModule(HostModel& host, std::string const& name) {
  for (auto& module : host.modules) {
    if (module.name == name) return &module;
  }
  return nullptr;
}

ModuleState const* FindModule(HostModel const& host, std::string const& name) {
  return FindModule(const_cast<HostModel&>(host), name);
}

}  // namespace OrvkCtl::Sim
