// Host interfaces: a veth pair each. One end is named as the interface and
// lives in its netstack's namespace with its addresses; the other,
// "tb-<interface>", is a port of the bridge of its standard switch. Which
// port group an interface is on, its tags and its stored configuration are
// the backend's own.
#include <fcntl.h>
#include <linux/if.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <netlink/errno.h>
#include <netlink/route/addr.h>
#include <netlink/route/link.h>
#include <netlink/route/link/veth.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <map>

#include "hostctl/lib.h"
#include "kernel.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using HostCtl::Lib::HostCtlException;
using Sim::InterfaceState;
using Sim::IpConfigState;
using Sim::Ipv6AddressState;

constexpr char kNoIpv4[] = "0.0.0.0";

std::string OwnEnd(std::string const& name) { return kOwnLinkPrefix + name; }

std::string Netmask(int prefix) {
  uint32_t const mask = prefix == 0 ? 0 : ~uint32_t{0} << (32 - prefix);
  return std::to_string(mask >> 24) + "." + std::to_string((mask >> 16) & 0xff) + "." +
         std::to_string((mask >> 8) & 0xff) + "." + std::to_string(mask & 0xff);
}

int PrefixOf(std::string const& netmask) {
  unsigned a = 0, b = 0, c = 0, d = 0;
  std::sscanf(netmask.c_str(), "%u.%u.%u.%u", &a, &b, &c, &d);
  return __builtin_popcount(a) + __builtin_popcount(b) + __builtin_popcount(c) +
         __builtin_popcount(d);
}

// The host's status number of an IPv6 address from the kernel's flags.
uint32_t Ipv6Status(unsigned flags) {
  if (flags & IFA_F_DADFAILED) return 3;
  if (flags & IFA_F_TENTATIVE) return 2;
  if (flags & IFA_F_DEPRECATED) return 5;
  return 0;
}

std::string DeviceSysctl(std::string const& name, char const* setting) {
  return "net/ipv6/conf/" + name + "/" + setting;
}

// The addresses of the links of one namespace, by link index.
std::map<int, std::vector<rtnl_addr*>> AddressesByLink(nl_cache* addresses) {
  std::map<int, std::vector<rtnl_addr*>> by_link;
  for (nl_object* object = nl_cache_get_first(addresses); object;
       object = nl_cache_get_next(object)) {
    auto* address = reinterpret_cast<rtnl_addr*>(object);
    by_link[rtnl_addr_get_ifindex(address)].push_back(address);
  }
  return by_link;
}

// Fills what the kernel holds of interface `nic` from its link and
// addresses.
void ReadFromKernel(InterfaceState& nic, rtnl_link* link, std::vector<rtnl_addr*> const& addresses,
                    std::string const& netns) {
  nic.mac = MacText(rtnl_link_get_addr(link));
  nic.mtu = rtnl_link_get_mtu(link);
  nic.enabled = rtnl_link_get_flags(link) & IFF_UP;
  IpConfigState& ip = nic.ip;
  ip.ipv4_mode = "none";
  ip.ipv4_address = ip.ipv4_netmask = kNoIpv4;
  ip.ipv6_addresses.clear();
  for (rtnl_addr* address : addresses) {
    nl_addr* local = rtnl_addr_get_local(address);
    if (rtnl_addr_get_family(address) == AF_INET && ip.ipv4_mode == "none") {
      ip.ipv4_mode = "static";
      ip.ipv4_address = AddressText(local);
      ip.ipv4_netmask = Netmask(rtnl_addr_get_prefixlen(address));
    } else if (rtnl_addr_get_family(address) == AF_INET6 &&
               rtnl_addr_get_scope(address) == RT_SCOPE_UNIVERSE) {
      // Link-local addresses are the kernel's own.
      ip.ipv6_addresses.push_back(
          {AddressText(local) + "/" + std::to_string(rtnl_addr_get_prefixlen(address)), 0,
           Ipv6Status(rtnl_addr_get_flags(address))});
    }
  }
  InNamespace(netns, [&] {
    ip.ipv6_enabled = ReadSysctl(DeviceSysctl(nic.name, "disable_ipv6")) == "0";
    ip.ipv6_router_adv = ReadSysctl(DeviceSysctl(nic.name, "accept_ra")) != "0";
  });
}

// Link attributes set through `set` on link `name` of `netns`.
void SetLink(std::string const& name, std::string const& netns, std::string const& what,
             std::function<void(rtnl_link*)> const& set) {
  Link change(rtnl_link_alloc());
  set(change.get());
  ChangeLink(name, change.get(), what, netns);
}

void SetUp(std::string const& name, std::string const& netns, bool up) {
  SetLink(name, netns, (up ? "bring up " : "bring down ") + name, [up](rtnl_link* link) {
    up ? rtnl_link_set_flags(link, IFF_UP) : rtnl_link_unset_flags(link, IFF_UP);
  });
}

// Makes the pair of interface `nic`: its own end in its namespace, ours in
// the process's.
void CreatePair(InterfaceState const& nic, uint32_t switch_mtu) {
  std::string const what = "create interface " + nic.name;
  std::string const netns = NamespaceOf(nic.netstack);
  Link link(rtnl_link_veth_alloc());
  if (!link) FailErrno(what, ENOMEM);
  rtnl_link_set_name(link.get(), OwnEnd(nic.name).c_str());
  // A port below the bridge's MTU would lower the bridge's.
  rtnl_link_set_mtu(link.get(), switch_mtu);
  Link peer(rtnl_link_veth_get_peer(link.get()));
  rtnl_link_set_name(peer.get(), nic.name.c_str());
  rtnl_link_set_mtu(peer.get(), nic.mtu);
  if (!nic.mac.empty()) {
    Addr mac = ParseAddr(nic.mac, AF_LLC);
    rtnl_link_set_addr(peer.get(), mac.get());
  }
  int ns_fd = -1;
  if (!netns.empty()) {
    ns_fd = open(("/run/netns/" + netns).c_str(), O_RDONLY | O_CLOEXEC);
    if (ns_fd < 0) FailErrno(what, errno);
    rtnl_link_set_ns_fd(peer.get(), ns_fd);
  }
  int const error = rtnl_link_add(RouteSocket(), link.get(), NLM_F_CREATE | NLM_F_EXCL);
  if (ns_fd >= 0) close(ns_fd);
  if (error < 0) FailNl(what, error);
}

void AddressChange(std::string const& name, std::string const& netns, std::string const& text,
                   int family, bool add) {
  std::string const what = std::string(add ? "add address " : "remove address ") + text +
                           (add ? " to " : " from ") + name;
  std::unique_ptr<rtnl_addr, void (*)(rtnl_addr*)> address(rtnl_addr_alloc(), rtnl_addr_put);
  Addr local = ParseAddr(text, family);
  rtnl_addr_set_ifindex(address.get(), LinkIndex(name, what, netns));
  rtnl_addr_set_family(address.get(), family);
  rtnl_addr_set_local(address.get(), local.get());
  // Usable at once: no duplicate address detection on the host's own link.
  if (family == AF_INET6) rtnl_addr_set_flags(address.get(), IFA_F_NODAD);
  int const error = add ? rtnl_addr_add(RouteSocket(netns), address.get(), 0)
                        : rtnl_addr_delete(RouteSocket(netns), address.get(), 0);
  if (error == -NLE_NOACCESS && family == AF_INET6) {
    throw HostCtlException("Cannot " + what + ": IPv6 is off on " + name);
  }
  if (error < 0) FailNl(what, error);
}

Step AddressStep(std::string const& name, std::string const& netns, std::string const& text,
                 int family, bool add) {
  return {(add ? "add address " : "remove address ") + text,
          [=] { AddressChange(name, netns, text, family, add); },
          [=] { AddressChange(name, netns, text, family, !add); }};
}

std::string Ipv4Text(IpConfigState const& ip) {
  if (ip.ipv4_mode == "none" || ip.ipv4_address == kNoIpv4) return {};
  return ip.ipv4_address + "/" + std::to_string(PrefixOf(ip.ipv4_netmask));
}

// Refuses the parts of an interface's configuration that the kernel has no
// counterpart for here.
void CheckConfig(InterfaceState const& was, InterfaceState const& now) {
  std::string const of = " of " + now.name;
  if (now.ip.ipv4_mode == "dhcp" || now.ip.ipv6_dhcp || now.ip.dhcp_dns || now.ip.ipv6_dhcp_dns) {
    NotAvailable("DHCP" + of);
  }
  if (now.ip.ipv4_gateway != was.ip.ipv4_gateway || now.ip.ipv6_gateway != was.ip.ipv6_gateway) {
    NotAvailable("A gateway per interface (add a route instead)" + of);
  }
  if (now.tags != was.tags) NotAvailable("Tagging interface " + now.name);
  if (now.multicast_joins != was.multicast_joins) NotAvailable("Multicast" + of);
  if (now.num_rx_queue != was.num_rx_queue || now.tso_mss != was.tso_mss) {
    NotAvailable("Setting the receive queues or TSO size" + of);
  }
  if (now.connection_type != 1) {
    NotAvailable("An interface on a distributed switch or an opaque network");
  }
  if (now.netstack != was.netstack && !was.name.empty()) {
    NotAvailable("Moving interface " + now.name + " to another netstack instance");
  }
}

// The steps that bring the kernel's part of `was` (an empty name: none yet)
// to `now`.
void PlanInterface(InterfaceState const& was, InterfaceState const& now, uint32_t switch_mtu,
                   Plan& plan) {
  CheckConfig(was, now);
  std::string const name = now.name;
  std::string const own = OwnEnd(name);
  std::string const netns = NamespaceOf(now.netstack);
  bool const fresh = was.name.empty();
  if (fresh) {
    if (own.size() >= IFNAMSIZ) {
      throw HostCtlException("Interface name " + name + " is too long for a linux host: at most " +
                             std::to_string(IFNAMSIZ - 1 - own.size() + name.size()) +
                             " characters");
    }
    plan.push_back({"create interface " + name, [now, switch_mtu] { CreatePair(now, switch_mtu); },
                    [own] { DeleteLink(own, "delete " + own); }});
    // Our end is a bridge port only: no addresses of its own.
    plan.push_back({"bring up " + own, [own] {
                      WriteSysctl(DeviceSysctl(own, "disable_ipv6"), "1", "prepare " + own);
                      SetUp(own, {}, true);
                    }, {}});
    // IPv6 addresses stay on a link brought down, as IPv4 ones do.
    plan.push_back({"keep the addresses of " + name, [name, netns] {
                      InNamespace(netns, [&] {
                        WriteSysctl(DeviceSysctl(name, "keep_addr_on_down"), "1",
                                    "keep the addresses of " + name);
                      });
                    }, {}});
  }
  if (fresh || was.portset != now.portset) {
    std::string const bridge = now.portset;
    std::string const old = fresh ? std::string() : was.portset;
    plan.push_back({"add " + own + " to bridge " + bridge, [own, bridge] { SetMaster(own, bridge); },
                    [own, old] { SetMaster(own, old); }});
  }
  if (!fresh && (was.mtu != now.mtu || was.mac != now.mac)) {
    auto set = [name, own, netns](InterfaceState const& to) {
      return [name, own, netns, mtu = to.mtu, mac = to.mac] {
        SetLink(name, netns, "set the MTU and MAC address of " + name, [&](rtnl_link* link) {
          rtnl_link_set_mtu(link, mtu);
          Addr address = ParseAddr(mac, AF_LLC);
          rtnl_link_set_addr(link, address.get());
        });
      };
    };
    plan.push_back({"set the MTU and MAC address of " + name, set(now), set(was)});
  }
  // IPv6 on or off, and router advertisements taken or not.
  auto sysctlStep = [&](char const* setting, bool was_on, bool on, std::string const& what) {
    if (!fresh && was_on == on) return;
    auto set = [name, netns, setting, what](std::string const& value) {
      return [=] {
        InNamespace(netns, [&] { WriteSysctl(DeviceSysctl(name, setting), value, what); });
      };
    };
    bool const off_word = std::string(setting) == "disable_ipv6";
    auto text = [off_word](bool value) { return (value != off_word) ? "1" : "0"; };
    plan.push_back({what, set(text(on)), fresh ? std::function<void()>() : set(text(was_on))});
  };
  sysctlStep("disable_ipv6", was.ip.ipv6_enabled, now.ip.ipv6_enabled,
             std::string(now.ip.ipv6_enabled ? "enable" : "disable") + " IPv6 on " + name);
  sysctlStep("accept_ra", was.ip.ipv6_router_adv, now.ip.ipv6_router_adv,
             std::string(now.ip.ipv6_router_adv ? "take" : "ignore") +
                 " router advertisements on " + name);
  if (fresh ? now.enabled : was.enabled != now.enabled) {
    bool const up = now.enabled;
    plan.push_back({(up ? "bring up " : "bring down ") + name, [=] { SetUp(name, netns, up); },
                    [=] { SetUp(name, netns, !up); }});
  }
  std::string const old4 = fresh ? std::string() : Ipv4Text(was.ip);
  std::string const new4 = Ipv4Text(now.ip);
  if (old4 != new4 && !old4.empty()) plan.push_back(AddressStep(name, netns, old4, AF_INET, false));
  if (old4 != new4 && !new4.empty()) plan.push_back(AddressStep(name, netns, new4, AF_INET, true));
  auto holds = [](std::vector<Ipv6AddressState> const& list, std::string const& address) {
    return std::any_of(list.begin(), list.end(), [&](auto const& a) { return a.address == address; });
  };
  for (auto const& address : was.ip.ipv6_addresses) {
    if (!holds(now.ip.ipv6_addresses, address.address)) {
      plan.push_back(AddressStep(name, netns, address.address, AF_INET6, false));
    }
  }
  for (auto const& address : now.ip.ipv6_addresses) {
    if (!holds(was.ip.ipv6_addresses, address.address)) {
      plan.push_back(AddressStep(name, netns, address.address, AF_INET6, true));
    }
  }
}

// What a new interface is planned from: nothing in the kernel yet, and the
// settings that only need to be checked as they are asked for.
InterfaceState Nothing(InterfaceState const& now) {
  InterfaceState none = now;
  none.name.clear();
  none.ip.ipv4_mode = "none";
  none.ip.ipv6_addresses.clear();
  return none;
}

}  // namespace

void ReadInterfaces(HostModel& host) {
  std::vector<InterfaceState> held;
  std::map<std::string, std::map<int, std::vector<rtnl_addr*>>> addresses;
  std::vector<Cache> caches;
  for (auto const& kept : host.ip.interfaces) {
    if (!Sim::FindNetstack(host.ip, kept.netstack)) continue;
    std::string const netns = NamespaceOf(kept.netstack);
    Link link = FindLink(kept.name, netns);
    if (!link) continue;
    if (!addresses.count(netns)) {
      nl_cache* cache = nullptr;
      if (int error = rtnl_addr_alloc_cache(RouteSocket(netns), &cache); error < 0) {
        FailNl("read the addresses of " + kept.netstack, error);
      }
      caches.emplace_back(cache);
      addresses[netns] = AddressesByLink(cache);
    }
    InterfaceState nic = kept;
    ReadFromKernel(nic, link.get(), addresses[netns][rtnl_link_get_ifindex(link.get())], netns);
    held.push_back(std::move(nic));
  }
  host.ip.interfaces = std::move(held);
}

// The MTU of the bridge an interface hangs on.
uint32_t SwitchMtu(HostModel const& host, InterfaceState const& nic) {
  auto const* vswitch = Sim::FindStandardSwitch(host.vswitch, nic.portset);
  return vswitch && vswitch->mtu > 0 ? static_cast<uint32_t>(vswitch->mtu) : nic.mtu;
}

void PlanInterfaces(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& was : before.ip.interfaces) {
    if (Sim::FindInterface(after.ip, was.name)) continue;
    std::string const own = OwnEnd(was.name);
    plan.push_back({"remove interface " + was.name, [own] { DeleteLink(own, "remove " + own); },
                    [was, mtu = SwitchMtu(before, was)] {
                      Plan again;
                      PlanInterface(Nothing(was), was, mtu, again);
                      for (auto& step : again) step.apply();
                    }});
  }
  for (auto const& now : after.ip.interfaces) {
    auto const* was = Sim::FindInterface(before.ip, now.name);
    if (was && *was == now) continue;
    PlanInterface(was ? *was : Nothing(now), now, SwitchMtu(after, now), plan);
  }
}

void KeepInterfaces(HostModel const& after, HostModel& reread) {
  for (auto& held : reread.ip.interfaces) {
    auto const* asked = Sim::FindInterface(after.ip, held.name);
    if (!asked) continue;
    InterfaceState kept = *asked;
    kept.mac = held.mac;
    kept.mtu = held.mtu;
    kept.enabled = held.enabled;
    kept.ip.ipv4_mode = held.ip.ipv4_mode;
    kept.ip.ipv4_address = held.ip.ipv4_address;
    kept.ip.ipv4_netmask = held.ip.ipv4_netmask;
    kept.ip.ipv6_enabled = held.ip.ipv6_enabled;
    kept.ip.ipv6_addresses = held.ip.ipv6_addresses;
    FollowOrder(asked->ip.ipv6_addresses, kept.ip.ipv6_addresses,
                [](Ipv6AddressState const& a) { return a.address; });
    held = std::move(kept);
  }
  FollowOrder(after.ip.interfaces, reread.ip.interfaces,
              [](InterfaceState const& nic) { return nic.name; });
}

}  // namespace OrvkCtl::Linux
