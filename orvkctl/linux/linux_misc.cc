// What the host is beyond its network: its name, and the area a linux host
// does not have (yet): the runtime's virtual machines.
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

// No virtual machines run on such a host: no worlds, and no ENS contexts
// (none can be made: a change of them is refused). The switch ports are those of the interfaces, kept by
// the backend while their switch is a bridge of the kernel, with the
// counters of the interface's end on the bridge. The sockets of the
// netstack instances are read here too, as the commands that list them ask
// for the runtime area.
void ReadRuntime(HostModel& host) {
  host.runtime.worlds.clear();
  host.runtime.ens = {};
  host.runtime.ens.max_lcores = 0;
  host.runtime.ens.numa_nodes = 0;
  std::vector<LinkInfo> const links = Links();
  auto find = [&](std::string const& name) -> LinkInfo const* {
    auto at = std::find_if(links.begin(), links.end(),
                           [&](LinkInfo const& link) { return link.name == name; });
    return at == links.end() ? nullptr : &*at;
  };
  std::erase_if(host.runtime.ports, [&](Sim::PortState const& port) {
    LinkInfo const* bridge = find(port.portset);
    return !bridge || bridge->kind != "bridge";
  });
  ReadPortCounters(host, links);
  ReadMemberships(host);
  ReadConnections(host);
}

void PlanRuntime(HostModel const& before, HostModel const& after, Plan&) {
  if (!(before.runtime.ens == after.runtime.ens)) NotAvailable("ENS (enhanced networking)");
}

// The ports are the backend's own (their counters move between two reads):
// the switches they hang on are verified with the switches.
void KeepPorts(HostModel const& after, HostModel& reread) {
  reread.runtime.ports = after.runtime.ports;
}

}  // namespace

Family HostFamily() { return {"host", Sim::kAreaHost, ReadHostName, NoPlan, KeepNothing}; }
Family RuntimeFamily() {
  return {"runtime", Sim::kAreaRuntime, ReadRuntime, PlanRuntime, KeepPorts};
}

}  // namespace OrvkCtl::Linux
