// Host interfaces, addresses, routes, neighbors, connections, DNS and the
// hosts file of each netstack instance.
#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

void ReadIp(HostModel& host) {
  host.ip.interfaces.clear();
  host.ip.ipsec_sas.clear();
  host.ip.ipsec_sps.clear();
  host.ip.connections.clear();
}

void PlanIp(HostModel const&, HostModel const&, Plan&) {}

void KeepIp(HostModel const&, HostModel&) {}

}  // namespace

Family IpFamily() { return {"ip", Sim::kAreaIp, ReadIp, PlanIp, KeepIp}; }

}  // namespace OrvkCtl::Linux
