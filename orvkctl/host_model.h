// The simulated host: plain records of everything the host control library
// reports and changes. One HostModel is the whole state of one host; the
// store keeps it in a JSON file (host_json.cc is the only place that knows
// the file's form).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

// A kernel module the host knows of.
struct ModuleState {
  std::string name;
  bool loaded = false;
};

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

struct HostModel {
  std::string hostname;
  std::vector<ModuleState> modules;
  FirewallState firewall;
};

// The host a new state file starts from.
HostModel DefaultHost();

// The module of that name, or null.
ModuleState* FindModule(HostModel& host, std::string const& name);
ModuleState const* FindModule(HostModel const& host, std::string const& name);

}  // namespace OrvkCtl::Sim
