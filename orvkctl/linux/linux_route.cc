// Routes and neighbors of each netstack instance: the main routing table and
// the neighbor tables of its namespace, through route netlink.
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cerrno>
#include <map>
#include <memory>

#include "kernel.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::NeighborState;
using Sim::NetstackRoutes;
using Sim::RouteState;

using LinkNameMap = std::map<int, std::string>;

// "0.0.0.0" or "::": no address of the family.
char const* NoAddress(int family) { return family == AF_INET6 ? "::" : "0.0.0.0"; }

std::string NameOf(LinkNameMap const& links, int index) {
  auto const at = links.find(index);
  return at == links.end() ? std::string() : at->second;
}

// The row of a route of the main table, or false for one the host does not
// list (other tables, local and broadcast routes, multipath).
bool RouteRow(RouteInfo const& route, LinkNameMap const& links, RouteState& row) {
  if (route.table != RT_TABLE_MAIN) return false;
  if (route.type != RTN_UNICAST) return false;
  if (route.multipath || (route.link == 0 && route.gateway.empty())) return false;
  int const family = route.family;
  row.network = (route.destination.empty() ? std::string(NoAddress(family)) : route.destination) +
                "/" + std::to_string(route.prefix);
  row.gateway = route.gateway.empty() ? NoAddress(family) : route.gateway;
  row.interface = NameOf(links, route.link);
  // The backend's own ends of its interfaces are its business.
  if (IsOwnLink(row.interface)) return false;
  row.source = route.protocol == RTPROT_DHCP ? "DHCP" : "MANUAL";
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

bool NeighborRow(NeighborInfo const& neigh, LinkNameMap const& links, NeighborState& row) {
  unsigned const state = neigh.state;
  if (state & (NUD_NOARP | NUD_FAILED | NUD_NONE)) return false;
  row.address = neigh.address;
  row.mac = neigh.mac;
  row.interface = NameOf(links, neigh.index);
  if (IsOwnLink(row.interface)) return false;
  row.flags = (state & NUD_PERMANENT) ? Sim::kNeighborFlagStatic : 0;
  row.state = neigh.family == AF_INET6 ? Ipv6State(static_cast<int>(state)) : 0;
  return !row.address.empty();
}

void ReadTables(NetstackRoutes& table) {
  std::string const netns = NamespaceOf(table.netstack);
  std::vector<RouteInfo> const routes = Routes(netns);
  std::vector<NeighborInfo> const neighbors = Neighbors(netns);
  // Only the names of the links are wanted, and only when a row names one.
  LinkNameMap links;
  if (!routes.empty() || !neighbors.empty()) links = LinkNames(netns);
  for (auto const& route : routes) {
    RouteState row;
    if (!RouteRow(route, links, row)) continue;
    bool const ipv6 = route.family == AF_INET6;
    (ipv6 ? table.ipv6 : table.ipv4).push_back(row);
    if (row.network == (ipv6 ? "::/0" : "0.0.0.0/0")) {
      (ipv6 ? table.ipv6_config_gateway : table.ipv4_config_gateway) = row.gateway;
    }
  }
  for (int family : {AF_INET, AF_INET6}) {
    auto& rows = family == AF_INET6 ? table.ipv6_neighbors : table.ipv4_neighbors;
    for (auto const& neigh : neighbors) {
      NeighborState row;
      if (neigh.family == family && NeighborRow(neigh, links, row)) rows.push_back(row);
    }
  }
}

// A request for one route of the main table: its addition or removal.
void SendRoute(Request& request, RouteState const& row, int family, std::string const& netns,
               std::string const& what) {
  Address const dst = ParseAddr(row.network, family);
  bool const onLink = row.gateway == NoAddress(family);
  auto& header = request.Header<rtmsg>();
  header.rtm_family = static_cast<unsigned char>(family);
  header.rtm_dst_len = static_cast<unsigned char>(dst.prefix);
  header.rtm_table = RT_TABLE_MAIN;
  header.rtm_type = RTN_UNICAST;
  header.rtm_protocol = RTPROT_BOOT;
  header.rtm_scope = onLink ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE;
  request.PutU32(RTA_TABLE, RT_TABLE_MAIN);
  request.Put(RTA_DST, dst.bytes, dst.size);
  request.PutU32(RTA_OIF, static_cast<uint32_t>(LinkIndex(row.interface, what, netns)));
  if (!onLink) {
    Address const gateway = ParseAddr(row.gateway, family);
    request.Put(RTA_GATEWAY, gateway.bytes, gateway.size);
  }
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
    Request request(in ? RTM_NEWROUTE : RTM_DELROUTE, in ? NLM_F_CREATE | NLM_F_EXCL : 0);
    SendRoute(request, row, family, netns, what);
    int const error = request.Send(netns);
    if (first) *done = error == 0;
    // Gone already (the kernel drops the routes of a link brought down) is
    // as asked.
    if (!in && (error == ESRCH || error == ENOENT)) return;
    if (error == 0 || (onLink && error == EEXIST)) return;
    FailNl(what, error);
  };
  return {what, [=] { put(add, true); }, [=] { put(!add, false); }};
}

// Adds or removes one neighbor entry.
void ChangeNeighbor(NeighborState const& row, int family, std::string const& netns, bool add,
                    std::string const& what) {
  Request request(add ? RTM_NEWNEIGH : RTM_DELNEIGH, add ? NLM_F_CREATE : 0);
  auto& header = request.Header<ndmsg>();
  header.ndm_family = static_cast<unsigned char>(family);
  header.ndm_ifindex = LinkIndex(row.interface, what, netns);
  header.ndm_state = (row.flags & Sim::kNeighborFlagStatic) ? NUD_PERMANENT : NUD_STALE;
  Address const dst = ParseAddr(row.address, family);
  request.Put(NDA_DST, dst.bytes, dst.size);
  if (!row.mac.empty()) {
    Address const mac = ParseAddr(row.mac, AF_PACKET);
    request.Put(NDA_LLADDR, mac.bytes, mac.size);
  }
  request.Run(what, netns);
}

Step RemoveNeighborStep(NeighborState const& row, int family, std::string const& key) {
  std::string const netns = NamespaceOf(key);
  std::string const what = "remove neighbor " + row.address + " on " + row.interface + " in " + key;
  return {what, [=] { ChangeNeighbor(row, family, netns, false, what); },
          [=] { ChangeNeighbor(row, family, netns, true, "restore neighbor " + row.address); }};
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
