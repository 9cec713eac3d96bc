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
};

struct FirewallState {
  bool enabled = true;
  bool default_action_pass = false;  // true: pass, false: drop
  // Rules added at run time, beside those of the ruleset configuration.
  std::vector<FirewallRuleState> dynamic_rules;
};

}  // namespace OrvkCtl::Sim
