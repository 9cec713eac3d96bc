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
  SeedFirewallRulesets(host.firewall);
}

// The ruleset configuration of a freshly installed host with SSH and the web
// management interface restricted to the management networks, and the
// services that run by default counted as clients of their rulesets. Rules
// read: port type (1 destination, 0 source), first and last port, direction
// (0 inbound, 1 outbound), protocol (0 TCP, 1 UDP).
void SeedFirewallRulesets(FirewallState& firewall) {
  auto ruleset = [](char const* id, bool enabled, int32_t clients,
                    std::vector<std::string> allowed, std::vector<FirewallRuleState> rules) {
    FirewallRulesetState state;
    state.id = id;
    state.enabled = enabled;
    state.client_count = clients;
    state.allowed_all = allowed.empty();
    state.allowed_ips = std::move(allowed);
    state.rules = std::move(rules);
    return state;
  };
  firewall.rulesets = {
      ruleset("sshServer", true, 1,
              {"192.168.10.0/24", "10.50.0.12", "2001:db8:10::/64"},
              {{"sshServer", 1, 22, 22, 0, 0}}),
      ruleset("sshClient", false, 0, {}, {{"sshClient", 1, 22, 22, 1, 0}}),
      ruleset("dhcpClient", true, 1, {},
              {{"dhcpClient", 1, 68, 68, 0, 1}, {"dhcpClient", 0, 68, 68, 1, 1},
               {"dhcpClient", 1, 67, 67, 1, 1}}),
      ruleset("dnsClient", true, 1, {},
              {{"dnsClient", 1, 53, 53, 1, 1}, {"dnsClient", 1, 53, 53, 1, 0},
               {"dnsClient", 0, 53, 53, 0, 1}}),
      ruleset("ntpClient", true, 1, {}, {{"ntpClient", 1, 123, 123, 1, 1}}),
      ruleset("webManagement", true, 2, {"192.168.10.0/24", "10.50.0.0/16"},
              {{"webManagement", 1, 443, 443, 0, 0}, {"webManagement", 1, 80, 80, 0, 0}}),
      ruleset("snmpAgent", false, 0, {},
              {{"snmpAgent", 1, 161, 161, 0, 1}, {"snmpAgent", 1, 162, 162, 1, 1}}),
      ruleset("syslogClient", false, 0, {},
              {{"syslogClient", 1, 514, 514, 1, 1}, {"syslogClient", 1, 514, 514, 1, 0},
               {"syslogClient", 1, 1514, 1514, 1, 0}}),
      ruleset("livehop", true, 1, {}, {{"livehop", 1, 8000, 8000, 0, 0},
                                       {"livehop", 1, 8000, 8000, 1, 0}}),
      ruleset("haAgent", true, 1, {},
              {{"haAgent", 1, 8182, 8182, 0, 0}, {"haAgent", 1, 8182, 8182, 1, 0},
               {"haAgent", 1, 8182, 8182, 0, 1}, {"haAgent", 1, 8182, 8182, 1, 1}}),
      ruleset("nfsClient", false, 0, {}, {{"nfsClient", 1, 0, 65535, 1, 0}}),
      ruleset("iscsiInitiator", false, 0, {}, {{"iscsiInitiator", 1, 3260, 3260, 1, 0}}),
      ruleset("serialPortRedirect", false, 0, {},
              {{"serialPortRedirect", 1, 1024, 65535, 1, 0}}),
  };
  // Locked down: a restricted list that admits nobody yet.
  firewall.rulesets[6].allowed_all = false;
}

FirewallRulesetState* FindRuleset(FirewallState& firewall, std::string const& id) {
  for (auto& ruleset : firewall.rulesets) {
    if (ruleset.id == id) return &ruleset;
  }
  return nullptr;
}

FirewallRulesetState const* FindRuleset(FirewallState const& firewall, std::string const& id) {
  return FindRuleset(const_cast<FirewallState&>(firewall), id);
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
