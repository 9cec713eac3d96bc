// What the host is beyond its network: its name, and the areas a linux host
// does not have (yet): the firewall, and the runtime's virtual machines.
#include <netlink/route/link.h>
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
  Cache links = LinkCache();
  auto find = [&](std::string const& name) -> rtnl_link* {
    for (nl_object* object = nl_cache_get_first(links.get()); object;
         object = nl_cache_get_next(object)) {
      auto* link = reinterpret_cast<rtnl_link*>(object);
      if (name == rtnl_link_get_name(link)) return link;
    }
    return nullptr;
  };
  std::erase_if(host.runtime.ports, [&](Sim::PortState const& port) {
    rtnl_link* bridge = find(port.portset);
    return !bridge || !IsBridge(bridge);
  });
  ReadPortCounters(host, links.get());
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
Family FirewallFamily() { return {"firewall", Sim::kAreaFirewall, ReadFirewall, NoPlan, KeepNothing}; }
Family RuntimeFamily() {
  return {"runtime", Sim::kAreaRuntime, ReadRuntime, PlanRuntime, KeepPorts};
}

}  // namespace OrvkCtl::Linux
