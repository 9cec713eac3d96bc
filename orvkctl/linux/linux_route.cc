// Routes and neighbors of each netstack instance: the main routing table and
// the neighbor tables of its namespace, through route netlink.
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <netlink/route/link.h>
#include <netlink/route/neighbour.h>
#include <netlink/route/route.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>

#include "kernel.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::NeighborState;
using Sim::NetstackRoutes;
using Sim::RouteState;

struct RouteFree {
  void operator()(rtnl_route* route) const { rtnl_route_put(route); }
};
struct NeighFree {
  void operator()(rtnl_neigh* neigh) const { rtnl_neigh_put(neigh); }
};

// "0.0.0.0" or "::": no address of the family.
char const* NoAddress(int family) { return family == AF_INET6 ? "::" : "0.0.0.0"; }

// "10.50.0.0/16", "::/0".
std::string NetworkText(nl_addr* dst, int family) {
  std::string address = AddressText(dst);
  if (address.empty()) address = NoAddress(family);
  return address + "/" + std::to_string(dst ? nl_addr_get_prefixlen(dst) : 0);
}

// The row of a route of the main table, or false for one the host does not
// list (other tables, local and broadcast routes, multipath).
bool RouteRow(rtnl_route* route, nl_cache* links, RouteState& row) {
  if (rtnl_route_get_table(route) != RT_TABLE_MAIN) return false;
  if (rtnl_route_get_type(route) != RTN_UNICAST) return false;
  if (rtnl_route_get_nnexthops(route) != 1) return false;
  int const family = rtnl_route_get_family(route);
  rtnl_nexthop* hop = rtnl_route_nexthop_n(route, 0);
  row.network = NetworkText(rtnl_route_get_dst(route), family);
  std::string const gateway = AddressText(rtnl_route_nh_get_gateway(hop));
  row.gateway = gateway.empty() ? NoAddress(family) : gateway;
  row.interface = LinkName(links, rtnl_route_nh_get_ifindex(hop));
  // The backend's own ends of its interfaces are its business.
  if (IsOwnLink(row.interface)) return false;
  row.source = rtnl_route_get_protocol(route) == RTPROT_DHCP ? "DHCP" : "MANUAL";
  return true;
}

// The IPv6 reachability state as the host numbers it.
uint32_t Ipv6State(int state) {
  if (state & NUD_REACHABLE) return 1;
  if (state & NUD_STALE) return 2;
  if (state & NUD_DELAY) return 3;
  if (state & NUD_PROBE) return 4;
  return 0;
}

bool NeighborRow(rtnl_neigh* neigh, nl_cache* links, NeighborState& row) {
  int const state = rtnl_neigh_get_state(neigh);
  if (state & (NUD_NOARP | NUD_FAILED | NUD_NONE)) return false;
  row.address = AddressText(rtnl_neigh_get_dst(neigh));
  row.mac = MacText(rtnl_neigh_get_lladdr(neigh));
  row.interface = LinkName(links, rtnl_neigh_get_ifindex(neigh));
  if (IsOwnLink(row.interface)) return false;
  row.flags = (state & NUD_PERMANENT) ? Sim::kNeighborFlagStatic : 0;
  row.state = rtnl_neigh_get_family(neigh) == AF_INET6 ? Ipv6State(state) : 0;
  return !row.address.empty();
}

void ReadTables(NetstackRoutes& table) {
  std::string const netns = NamespaceOf(table.netstack);
  Cache links = LinkCache(netns);
  Dump(netns, RTM_GETROUTE, AF_UNSPEC, [&](nl_object* object) {
    auto* route = reinterpret_cast<rtnl_route*>(object);
    RouteState row;
    if (!RouteRow(route, links.get(), row)) return;
    bool const ipv6 = rtnl_route_get_family(route) == AF_INET6;
    (ipv6 ? table.ipv6 : table.ipv4).push_back(row);
    if (row.network == (ipv6 ? "::/0" : "0.0.0.0/0")) {
      (ipv6 ? table.ipv6_config_gateway : table.ipv4_config_gateway) = row.gateway;
    }
  }, "read the routes of " + table.netstack);
  for (int family : {AF_INET, AF_INET6}) {
    auto& rows = family == AF_INET6 ? table.ipv6_neighbors : table.ipv4_neighbors;
    Dump(netns, RTM_GETNEIGH, family, [&](nl_object* object) {
      auto* neigh = reinterpret_cast<rtnl_neigh*>(object);
      NeighborState row;
      if (rtnl_neigh_get_family(neigh) == family && NeighborRow(neigh, links.get(), row)) {
        rows.push_back(row);
      }
    }, "read the neighbors of " + table.netstack);
  }
}

std::unique_ptr<rtnl_route, RouteFree> MakeRoute(RouteState const& row, int family,
                                                 std::string const& netns,
                                                 std::string const& what) {
  std::unique_ptr<rtnl_route, RouteFree> route(rtnl_route_alloc());
  rtnl_route_set_family(route.get(), static_cast<uint8_t>(family));
  rtnl_route_set_table(route.get(), RT_TABLE_MAIN);
  rtnl_route_set_type(route.get(), RTN_UNICAST);
  rtnl_route_set_protocol(route.get(), RTPROT_BOOT);
  Addr dst = ParseAddr(row.network, family);
  rtnl_route_set_dst(route.get(), dst.get());
  bool const onLink = row.gateway == NoAddress(family);
  rtnl_route_set_scope(route.get(), onLink ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE);
  rtnl_nexthop* hop = rtnl_route_nh_alloc();
  rtnl_route_nh_set_ifindex(hop, LinkIndex(row.interface, what, netns));
  if (!onLink) {
    Addr gateway = ParseAddr(row.gateway, family);
    rtnl_route_nh_set_gateway(hop, gateway.get());
  }
  rtnl_route_add_nexthop(route.get(), hop);
  return route;
}

// The steps that add and remove one route. A route to an interface's own
// network comes and goes with its address: the kernel may have made or
// removed it already.
Step RouteStep(RouteState const& row, int family, std::string const& key, bool add) {
  std::string const netns = NamespaceOf(key);
  std::string const what = std::string(add ? "add" : "remove") + " route to " + row.network +
                           " via " + row.gateway + " in " + key;
  bool const onLink = row.gateway == NoAddress(family);
  auto done = std::make_shared<bool>(true);
  auto put = [=](bool in, bool first) {
    if (!first && !*done) return;
    auto route = MakeRoute(row, family, netns, what);
    int const error = in ? rtnl_route_add(RouteSocket(netns), route.get(), NLM_F_EXCL)
                         : rtnl_route_delete(RouteSocket(netns), route.get(), 0);
    if (first) *done = error >= 0;
    // Gone already (the kernel drops the routes of a link brought down) is
    // as asked.
    if (!in && error == -NLE_OBJ_NOTFOUND) return;
    if (error >= 0 || (onLink && error == -NLE_EXIST)) return;
    FailNl(what, error);
  };
  return {what, [=] { put(add, true); }, [=] { put(!add, false); }};
}

std::unique_ptr<rtnl_neigh, NeighFree> MakeNeighbor(NeighborState const& row, int family,
                                                    std::string const& netns,
                                                    std::string const& what) {
  std::unique_ptr<rtnl_neigh, NeighFree> neigh(rtnl_neigh_alloc());
  rtnl_neigh_set_family(neigh.get(), family);
  rtnl_neigh_set_ifindex(neigh.get(), LinkIndex(row.interface, what, netns));
  Addr dst = ParseAddr(row.address, family);
  rtnl_neigh_set_dst(neigh.get(), dst.get());
  if (!row.mac.empty()) {
    Addr mac = ParseAddr(row.mac, AF_LLC);
    rtnl_neigh_set_lladdr(neigh.get(), mac.get());
  }
  rtnl_neigh_set_state(neigh.get(),
                       (row.flags & Sim::kNeighborFlagStatic) ? NUD_PERMANENT : NUD_STALE);
  return neigh;
}

Step RemoveNeighborStep(NeighborState const& row, int family, std::string const& key) {
  std::string const netns = NamespaceOf(key);
  std::string const what = "remove neighbor " + row.address + " on " + row.interface + " in " + key;
  return {what,
          [=] {
            auto neigh = MakeNeighbor(row, family, netns, what);
            if (int error = rtnl_neigh_delete(RouteSocket(netns), neigh.get(), 0); error < 0) {
              FailNl(what, error);
            }
          },
          [=] {
            auto neigh = MakeNeighbor(row, family, netns, what);
            if (int error = rtnl_neigh_add(RouteSocket(netns), neigh.get(), NLM_F_CREATE);
                error < 0) {
              FailNl("restore neighbor " + row.address, error);
            }
          }};
}

template <class T>
bool Holds(std::vector<T> const& rows, T const& row) {
  return std::find(rows.begin(), rows.end(), row) != rows.end();
}

bool OfAddress(HostModel const& host, RouteState const& row, int family);

// The steps for the rows of `from` that `to` does not hold: removals, or
// with `add` additions. The routes of the interfaces' addresses come and go
// with the addresses.
void PlanTable(HostModel const& before, HostModel const& after,
               std::vector<RouteState> const& from, std::vector<RouteState> const& to, int family,
               std::string const& key, bool add, Plan& plan) {
  for (auto const& row : from) {
    if (OfAddress(before, row, family) || OfAddress(after, row, family)) continue;
    if (!Holds(to, row)) plan.push_back(RouteStep(row, family, key, add));
  }
}

// Neighbors are only removed by hand; the kernel learns the others.
void PlanNeighbors(std::vector<NeighborState> const& was, std::vector<NeighborState> const& wanted,
                   int family, std::string const& key, Plan& plan) {
  for (auto const& row : was) {
    if (!Holds(wanted, row)) plan.push_back(RemoveNeighborStep(row, family, key));
  }
}

// Entries the kernel learns come, change and go on their own: the host
// verifies only the static ones.
void KeepLearnt(std::vector<NeighborState> const& asked, std::vector<NeighborState>& held) {
  std::erase_if(held, [](NeighborState const& row) { return !(row.flags & Sim::kNeighborFlagStatic); });
  for (auto const& row : asked) {
    if (!(row.flags & Sim::kNeighborFlagStatic)) held.push_back(row);
  }
  FollowOrder(asked, held, [](NeighborState const& row) { return row.address + "%" + row.interface; });
}

void FollowRoutes(std::vector<RouteState> const& asked, std::vector<RouteState>& held) {
  FollowOrder(asked, held, [](RouteState const& row) {
    return row.network + " " + row.gateway + " " + row.interface;
  });
}

// Whether `row` is the route to the network of a host interface's address
// (the kernel makes and removes those with the addresses), or a link-local
// network (the kernel's own, on every link with IPv6 and a carrier).
bool OfAddress(HostModel const& host, RouteState const& row, int family) {
  if (row.gateway != NoAddress(family)) return false;
  return Sim::FindInterface(host.ip, row.interface) || row.network == "fe80::/64";
}

// What the kernel does on its own with the routes of the host's interfaces:
// the routes to their addresses' networks (and a link-local one with IPv6)
// follow the addresses; and it drops every route through an interface
// brought down (they do not come back with it).
void KeepKernelMade(HostModel const& after, NetstackRoutes const& asked, NetstackRoutes& held) {
  auto down = [&](RouteState const& row) {
    auto const* nic = Sim::FindInterface(after.ip, row.interface);
    return nic && !nic->enabled;
  };
  auto keep = [&](std::vector<RouteState> const& wanted, std::vector<RouteState>& rows, int family) {
    std::erase_if(rows, [&](RouteState const& row) { return OfAddress(after, row, family); });
    for (auto const& row : wanted) {
      if ((OfAddress(after, row, family) || down(row)) && !Holds(rows, row)) rows.push_back(row);
    }
  };
  keep(asked.ipv4, held.ipv4, AF_INET);
  keep(asked.ipv6, held.ipv6, AF_INET6);
}

}  // namespace

void ReadRoutes(HostModel& host) {
  for (auto& table : host.ip.routes) ReadTables(table);
}

void PlanRouteRemovals(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& wanted : after.ip.routes) {
    // A new instance has no routes yet; a removed one takes its own along.
    auto const* was = Sim::FindNetstackRoutes(before.ip, wanted.netstack);
    if (!was) continue;
    PlanNeighbors(was->ipv4_neighbors, wanted.ipv4_neighbors, AF_INET, wanted.netstack, plan);
    PlanNeighbors(was->ipv6_neighbors, wanted.ipv6_neighbors, AF_INET6, wanted.netstack, plan);
    PlanTable(before, after, was->ipv4, wanted.ipv4, AF_INET, wanted.netstack, false, plan);
    PlanTable(before, after, was->ipv6, wanted.ipv6, AF_INET6, wanted.netstack, false, plan);
  }
}

void PlanRouteAdditions(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& wanted : after.ip.routes) {
    auto const* was = Sim::FindNetstackRoutes(before.ip, wanted.netstack);
    if (!was) continue;
    PlanTable(before, after, wanted.ipv4, was->ipv4, AF_INET, wanted.netstack, true, plan);
    PlanTable(before, after, wanted.ipv6, was->ipv6, AF_INET6, wanted.netstack, true, plan);
  }
}

void KeepRoutes(HostModel const& after, HostModel& reread) {
  for (auto& table : reread.ip.routes) {
    auto const* asked = Sim::FindNetstackRoutes(after.ip, table.netstack);
    if (!asked) continue;
    KeepKernelMade(after, *asked, table);
    // Linux keeps no default gateway apart from the default route.
    table.ipv4_config_gateway = asked->ipv4_config_gateway;
    table.ipv6_config_gateway = asked->ipv6_config_gateway;
    FollowRoutes(asked->ipv4, table.ipv4);
    FollowRoutes(asked->ipv6, table.ipv6);
    KeepLearnt(asked->ipv4_neighbors, table.ipv4_neighbors);
    KeepLearnt(asked->ipv6_neighbors, table.ipv6_neighbors);
  }
  FollowOrder(after.ip.routes, reread.ip.routes,
              [](NetstackRoutes const& table) { return table.netstack; });
}

}  // namespace OrvkCtl::Linux
