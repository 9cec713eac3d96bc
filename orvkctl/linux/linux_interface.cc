// Host interfaces: a veth pair each. One end is named as the interface and
// lives in its netstack's namespace with its addresses; the other,
// "tb-<interface>", is a port of the bridge of its standard switch. Which
// port group an interface is on, its tags and its stored configuration are
// the backend's own.
#include <fcntl.h>
#include <linux/if.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
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
std::map<int, std::vector<AddressInfo>> AddressesByLink(std::string const& netns) {
  std::map<int, std::vector<AddressInfo>> by_link;
  for (auto& address : Addresses(netns)) by_link[address.index].push_back(std::move(address));
  return by_link;
}

// Fills what the kernel holds of interface `nic` from its link and
// addresses.
void ReadFromKernel(InterfaceState& nic, LinkInfo const& link,
                    std::vector<AddressInfo> const& addresses, std::string const& netns) {
  nic.mac = link.mac;
  nic.mtu = link.mtu;
  nic.enabled = link.flags & IFF_UP;
  IpConfigState& ip = nic.ip;
  ip.ipv4_mode = "none";
  ip.ipv4_address = ip.ipv4_netmask = kNoIpv4;
  ip.ipv6_addresses.clear();
  for (auto const& address : addresses) {
    if (address.family == AF_INET && ip.ipv4_mode == "none") {
      ip.ipv4_mode = "static";
      ip.ipv4_address = address.local;
      ip.ipv4_netmask = Netmask(address.prefix);
    } else if (address.family == AF_INET6 && address.scope == RT_SCOPE_UNIVERSE) {
      // Link-local addresses are the kernel's own.
      ip.ipv6_addresses.push_back({address.local + "/" + std::to_string(address.prefix), 0,
                                   Ipv6Status(address.flags)});
    }
  }
  InNamespace(netns, [&] {
    ip.ipv6_enabled = ReadSysctl(DeviceSysctl(nic.name, "disable_ipv6")) == "0";
    ip.ipv6_router_adv = ReadSysctl(DeviceSysctl(nic.name, "accept_ra")) != "0";
  });
}

// Makes the pair of interface `nic`: its own end in its namespace, ours in
// the process's.
void CreatePair(InterfaceState const& nic, uint32_t switch_mtu) {
  std::string const what = "create interface " + nic.name;
  std::string const netns = NamespaceOf(nic.netstack);
  Request add(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
  add.Header<ifinfomsg>().ifi_family = AF_UNSPEC;
  add.PutText(IFLA_IFNAME, OwnEnd(nic.name));
  // A port below the bridge's MTU would lower the bridge's.
  add.PutU32(IFLA_MTU, switch_mtu);
  nlattr* info = add.Begin(IFLA_LINKINFO);
  add.PutText(IFLA_INFO_KIND, "veth");
  nlattr* data = add.Begin(IFLA_INFO_DATA);
  nlattr* peer = add.Begin(VETH_INFO_PEER);
  add.Header<ifinfomsg>().ifi_family = AF_UNSPEC;
  add.PutText(IFLA_IFNAME, nic.name);
  add.PutU32(IFLA_MTU, nic.mtu);
  if (!nic.mac.empty()) {
    Address const mac = ParseAddr(nic.mac, AF_PACKET);
    add.Put(IFLA_ADDRESS, mac.bytes, mac.size);
  }
  int ns_fd = -1;
  if (!netns.empty()) {
    ns_fd = open(("/run/netns/" + netns).c_str(), O_RDONLY | O_CLOEXEC);
    if (ns_fd < 0) FailErrno(what, errno);
    add.PutU32(IFLA_NET_NS_FD, static_cast<uint32_t>(ns_fd));
  }
  add.End(peer);
  add.End(data);
  add.End(info);
  int const error = add.Send();
  if (ns_fd >= 0) close(ns_fd);
  if (error != 0) FailNl(what, error);
}

void AddressChange(std::string const& name, std::string const& netns, std::string const& text,
                   int family, bool add) {
  std::string const what = std::string(add ? "add address " : "remove address ") + text +
                           (add ? " to " : " from ") + name;
  Address const local = ParseAddr(text, family);
  Request request(add ? RTM_NEWADDR : RTM_DELADDR, add ? NLM_F_CREATE : 0);
  auto& header = request.Header<ifaddrmsg>();
  header.ifa_family = static_cast<unsigned char>(family);
  header.ifa_prefixlen = static_cast<unsigned char>(local.prefix);
  header.ifa_index = static_cast<unsigned>(LinkIndex(name, what, netns));
  // Usable at once: no duplicate address detection on the host's own link.
  if (family == AF_INET6) header.ifa_flags = IFA_F_NODAD;
  request.Put(IFA_LOCAL, local.bytes, local.size);
  request.Put(IFA_ADDRESS, local.bytes, local.size);
  int const error = request.Send(netns);
  if (error == EACCES && family == AF_INET6) {
    throw HostCtlException("Cannot " + what + ": IPv6 is off on " + name);
  }
  if (error != 0) FailNl(what, error);
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
                      SetLinkUp(own, true);
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
        Request change(RTM_NEWLINK, 0);
        change.Header<ifinfomsg>().ifi_family = AF_UNSPEC;
        change.PutText(IFLA_IFNAME, name);
        change.PutU32(IFLA_MTU, mtu);
        Address const address = ParseAddr(mac, AF_PACKET);
        change.Put(IFLA_ADDRESS, address.bytes, address.size);
        change.Run("set the MTU and MAC address of " + name, netns);
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
    plan.push_back({(up ? "bring up " : "bring down ") + name, [=] { SetLinkUp(name, up, netns); },
                    [=] { SetLinkUp(name, !up, netns); }});
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
  std::map<std::string, std::map<int, std::vector<AddressInfo>>> addresses;
  for (auto const& kept : host.ip.interfaces) {
    if (!Sim::FindNetstack(host.ip, kept.netstack)) continue;
    std::string const netns = NamespaceOf(kept.netstack);
    auto const link = FindLink(kept.name, netns);
    if (!link) continue;
    if (!addresses.count(netns)) addresses[netns] = AddressesByLink(netns);
    InterfaceState nic = kept;
    ReadFromKernel(nic, *link, addresses[netns][link->index], netns);
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
