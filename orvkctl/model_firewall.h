// Firewall records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

// One firewall rule: a port range, a direction and a protocol.
struct FirewallRuleState {
  std::string name;
  int32_t port_type = 1;  // 1 destination port, else source port
  int32_t port_begin = 0;
  int32_t port_end = 0;
  int32_t direction = 0;  // 0 inbound, else outbound
  int32_t protocol = 0;   // 0 TCP, else UDP
  bool operator==(FirewallRuleState const&) const = default;
};

// One ruleset of the firewall configuration. `allowed_ips` holds canonical
// texts of addresses ("10.0.0.5") and networks ("10.0.0.0/8"), in the order
// they were added; they apply only while `allowed_all` is false.
struct FirewallRulesetState {
  std::string id;
  bool enabled = false;
  int32_t client_count = 0;
  bool allowed_all = true;
  std::vector<std::string> allowed_ips;
  std::vector<FirewallRuleState> rules;
};

struct FirewallState {
  bool enabled = true;
  bool default_action_pass = false;  // true: pass, false: drop
  // Rules added at run time, beside those of the ruleset configuration.
  std::vector<FirewallRuleState> dynamic_rules;
  // The ruleset configuration, in the host's order.
  std::vector<FirewallRulesetState> rulesets;
};

// The ruleset with that id, or null.
FirewallRulesetState* FindRuleset(FirewallState& firewall, std::string const& id);
FirewallRulesetState const* FindRuleset(FirewallState const& firewall, std::string const& id);

}  // namespace OrvkCtl::Sim
