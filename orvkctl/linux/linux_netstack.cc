// Netstack instances: defaultTcpipStack is the process's network namespace,
// every other key a named namespace of /run/netns.
#include <dirent.h>

#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

void ReadNetstacks(HostModel& host) {
  std::vector<Sim::NetstackState> netstacks;
  Sim::NetstackState own;
  own.key = own.name = "defaultTcpipStack";
  own.state = Sim::kNetstackStateUp;
  netstacks.push_back(own);
  host.ip.netstacks = std::move(netstacks);
  std::vector<Sim::NetstackRoutes> routes;
  for (auto const& netstack : host.ip.netstacks) {
    Sim::NetstackRoutes table;
    table.netstack = netstack.key;
    routes.push_back(std::move(table));
  }
  host.ip.routes = std::move(routes);
}

void PlanNetstacks(HostModel const&, HostModel const&, Plan&) {}

void KeepNetstacks(HostModel const&, HostModel&) {}

}  // namespace

Family NetstackFamily() {
  return {"netstack", Sim::kAreaIp, ReadNetstacks, PlanNetstacks, KeepNetstacks};
}

}  // namespace OrvkCtl::Linux
