// The parts of the IP family of the linux host (linux_ip.cc puts them
// together), and what they share.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "linux_host.h"

namespace OrvkCtl::Linux {

struct LinkInfo;

// Orders `held` as `asked` has the same rows (by `key`), the rest after
// them in their own order: the kernel lists in an order of its own, the
// host in the order rows were made.
template <class T, class Key>
void FollowOrder(std::vector<T> const& asked, std::vector<T>& held, Key key) {
  auto place = [&](T const& row) {
    auto const wanted = key(row);
    auto at = std::find_if(asked.begin(), asked.end(), [&](T const& a) { return key(a) == wanted; });
    return at - asked.begin();
  };
  std::stable_sort(held.begin(), held.end(),
                   [&](T const& a, T const& b) { return place(a) < place(b); });
}

// Routes and neighbor tables of each netstack instance (linux_route.cc).
// What goes is planned before the interfaces change, what comes after.
void ReadRoutes(HostModel& host);
void PlanRouteRemovals(HostModel const& before, HostModel const& after, Plan& plan);
void PlanRouteAdditions(HostModel const& before, HostModel const& after, Plan& plan);
void KeepRoutes(HostModel const& after, HostModel& reread);

// Host interfaces and their addresses (linux_interface.cc). Read after the
// netstack instances.
void ReadInterfaces(HostModel& host);
void PlanInterfaces(HostModel const& before, HostModel const& after, Plan& plan);
void KeepInterfaces(HostModel const& after, HostModel& reread);

// The resolver configuration and the hosts file (linux_dns.cc). Read after
// the netstack instances.
void ReadResolution(HostModel& host);
void PlanResolution(HostModel const& before, HostModel const& after, Plan& plan);
void KeepResolution(HostModel const& after, HostModel& reread);

// The open sockets of every instance (linux_connection.cc). They are read
// with the runtime area, as the commands that list them ask for it: a
// listing of routes reads no socket table.
void ReadConnections(HostModel& host);

// The multicast groups the interfaces have joined, and the counters of their
// switch ports (linux_runtime.cc), read with the runtime area. `links` are
// the process's namespace's.
void ReadMemberships(HostModel& host);
void ReadPortCounters(HostModel& host, std::vector<LinkInfo> const& links);

}  // namespace OrvkCtl::Linux
