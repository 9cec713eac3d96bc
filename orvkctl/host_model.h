// The simulated host: plain records of everything the host control library
// reports and changes. One HostModel is the whole state of one host, made of
// one area per subsystem (model_*.h). The store keeps it in a JSON file;
// json_*.cc are the only places that know the file's form.
#pragma once

#include <string>
#include <vector>

#include "model_firewall.h"
#include "model_ip.h"
#include "model_nic.h"
#include "model_runtime.h"
#include "model_vswitch.h"

namespace OrvkCtl::Sim {

// A kernel module the host knows of.
struct ModuleState {
  std::string name;
  bool loaded = false;
};

struct HostModel {
  std::string hostname;
  std::vector<ModuleState> modules;
  FirewallState firewall;
  NicArea nic;
  IpArea ip;
  VswitchArea vswitch;
  RuntimeArea runtime;
};

// The host a new state file starts from: DefaultHost() calls each area's
// Seed function in turn.
HostModel DefaultHost();
void SeedFirewall(HostModel& host);
// The host's catalogue of firewall rulesets (ids, rules and their ports), as
// a freshly installed host configures them; part of SeedFirewall.
void SeedFirewallRulesets(FirewallState& firewall);
void SeedNic(HostModel& host);
void SeedIp(HostModel& host);
void SeedVswitch(HostModel& host);
void SeedRuntime(HostModel& host);
// The worlds that own the default host's sockets; part of SeedIp.
void SeedWorlds(RuntimeArea& runtime);

// The module of that name, or null.
ModuleState* FindModule(HostModel& host, std::string const& name);
ModuleState const* FindModule(HostModel const& host, std::string const& name);

}  // namespace OrvkCtl::Sim
