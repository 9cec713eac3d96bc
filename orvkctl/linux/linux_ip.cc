// Host interfaces, addresses, routes, neighbors, connections, DNS and the
// hosts file of each netstack instance; each part in a file of its own.
#include "kernel.h"
#include "linux_host.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

void ReadIp(HostModel& host) {
  ReadInterfaces(host);
  host.ip.connections.clear();
  ReadRoutes(host);
  ReadResolution(host);
}

void PlanIp(HostModel const& before, HostModel const& after, Plan& plan) {
  PlanRouteRemovals(before, after, plan);
  PlanInterfaces(before, after, plan);
  PlanRouteAdditions(before, after, plan);
  PlanResolution(before, after, plan);
}

void KeepIp(HostModel const& after, HostModel& reread) {
  // Sockets come and go on their own; no change asks for one.
  reread.ip.connections = after.ip.connections;
  KeepInterfaces(after, reread);
  KeepRoutes(after, reread);
  KeepResolution(after, reread);
}

}  // namespace

Family IpFamily() { return {"ip", Sim::kAreaIp, ReadIp, PlanIp, KeepIp}; }

}  // namespace OrvkCtl::Linux
