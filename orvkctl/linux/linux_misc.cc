// What the host is beyond its network: its name, and the areas a linux host
// does not have (yet): the firewall, and the runtime's virtual machines.
#include <unistd.h>

#include "kernel.h"
#include "linux_host.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

void ReadHostName(HostModel& host) {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) == 0) host.hostname = name;
  host.modules.clear();
}

void NoPlan(HostModel const&, HostModel const&, Plan&) {}
void KeepNothing(HostModel const&, HostModel&) {}

[[noreturn]] void ReadFirewall(HostModel&) { NotAvailable("The firewall"); }

// No virtual machines run on such a host: no worlds and no ENS; the ports of
// its switches are kept with the switches.
void ReadRuntime(HostModel& host) {
  host.runtime.worlds.clear();
  host.runtime.ens = {};
  ReadConnections(host);
}

}  // namespace

Family HostFamily() { return {"host", Sim::kAreaHost, ReadHostName, NoPlan, KeepNothing}; }
Family FirewallFamily() { return {"firewall", Sim::kAreaFirewall, ReadFirewall, NoPlan, KeepNothing}; }
Family RuntimeFamily() { return {"runtime", Sim::kAreaRuntime, ReadRuntime, NoPlan, KeepNothing}; }

}  // namespace OrvkCtl::Linux
