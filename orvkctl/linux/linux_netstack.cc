// Netstack instances: defaultTcpipStack is the process's network namespace,
// every other key a named namespace of /run/netns. Their settings are the
// namespace's sysctls; the name, the connection limit and the flags are the
// backend's own.
#include <linux/if.h>

#include <algorithm>

#include "hostctl/lib.h"
#include "kernel.h"
#include "linux_host.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::NetstackState;

constexpr char kDefaultKey[] = "defaultTcpipStack";
constexpr char kCongestion[] = "net/ipv4/tcp_congestion_control";
constexpr char kEcn[] = "net/ipv4/tcp_ecn";
constexpr char kIpv6Off[] = "net/ipv6/conf/all/disable_ipv6";
constexpr char kIpv6OffForNew[] = "net/ipv6/conf/default/disable_ipv6";

// The host's word for the kernel's congestion control, and back: the kernel
// calls NewReno "reno".
std::string AlgorithmOf(std::string const& kernel) { return kernel == "reno" ? "newreno" : kernel; }
std::string KernelAlgorithm(std::string const& algorithm) {
  return algorithm == "newreno" ? "reno" : algorithm;
}

// net.ipv4.tcp_ecn: 0 off, 1 asked for and answered, 2 only answered.
constexpr char const* kEcnWords[] = {"disabled", "enabled", "echo-only"};

std::string EcnOf(std::string const& kernel) {
  size_t const value = kernel.empty() ? 0 : static_cast<size_t>(kernel[0] - '0');
  return value < std::size(kEcnWords) ? kEcnWords[value] : kernel;
}
std::string KernelEcn(std::string const& status) {
  for (size_t i = 0; i < std::size(kEcnWords); ++i) {
    if (status == kEcnWords[i]) return std::to_string(i);
  }
  return status;
}

// Fills the settings the kernel holds for the instance.
void ReadSettings(NetstackState& netstack) {
  InNamespace(NamespaceOf(netstack.key), [&] {
    netstack.cc_algorithm = AlgorithmOf(ReadSysctl(kCongestion));
    netstack.ecn_status = EcnOf(ReadSysctl(kEcn));
    // Without IPv6 in the kernel there is no such setting.
    std::string const off = ReadSysctl(kIpv6Off);
    netstack.ipv6_enabled = netstack.current_ipv6_enabled = off == "0";
  });
}

void ReadNetstacks(HostModel& host) {
  std::vector<std::string> keys = {kDefaultKey};
  for (auto& name : NamedNamespaces()) keys.push_back(std::move(name));
  // Instances in the order they were made, then the ones made by others.
  std::stable_sort(keys.begin() + 1, keys.end(), [&](auto const& a, auto const& b) {
    auto place = [&](std::string const& key) {
      auto const& kept = host.ip.netstacks;
      return std::find_if(kept.begin(), kept.end(), [&](auto const& n) { return n.key == key; }) -
             kept.begin();
    };
    return place(a) < place(b);
  });
  std::vector<NetstackState> netstacks;
  std::vector<Sim::NetstackRoutes> routes;
  for (auto const& key : keys) {
    NetstackState netstack;
    if (auto const* kept = Sim::FindNetstack(host.ip, key)) netstack = *kept;
    netstack.key = key;
    if (netstack.name.empty()) netstack.name = key;
    netstack.state = Sim::kNetstackStateUp;
    netstack.current_max_connections = netstack.max_connections;
    ReadSettings(netstack);
    netstacks.push_back(std::move(netstack));
    Sim::NetstackRoutes table;
    table.netstack = key;
    routes.push_back(std::move(table));
  }
  host.ip.ipv6_enabled = netstacks.front().ipv6_enabled;
  host.ip.netstacks = std::move(netstacks);
  host.ip.routes = std::move(routes);
}

// A step that writes a sysctl of the instance, and writes back the old value.
Step SysctlStep(std::string const& key, char const* path, std::string const& value,
                std::string const& old, std::string const& what) {
  std::string const netns = NamespaceOf(key);
  auto set = [netns, path, what](std::string const& text) {
    return [=] { InNamespace(netns, [&] { WriteSysctl(path, text, what); }); };
  };
  auto apply = [netns, path, value, what] {
    InNamespace(netns, [&] {
      try {
        WriteSysctl(path, value, what);
      } catch (HostCtl::Lib::HostCtlException const&) {
        // Outside the first namespace the kernel lets only some algorithms be set.
        std::string const allowed = ReadSysctl("net/ipv4/tcp_allowed_congestion_control");
        if (path != std::string(kCongestion) || allowed.empty()) throw;
        throw HostCtl::Lib::HostCtlException("Cannot " + what + ": the kernel allows only " +
                                             allowed + " in this namespace");
      }
    });
  };
  return {what, apply, old.empty() ? std::function<void()>() : set(old)};
}

// Steps that bring the settings of `wanted` to the kernel, from `was` (null
// for a new instance: nothing to write back).
void PlanSettings(NetstackState const* was, NetstackState const& wanted, Plan& plan) {
  std::string const& key = wanted.key;
  if (!was || was->cc_algorithm != wanted.cc_algorithm) {
    plan.push_back(SysctlStep(key, kCongestion, KernelAlgorithm(wanted.cc_algorithm),
                              was ? KernelAlgorithm(was->cc_algorithm) : "",
                              "set congestion control " + wanted.cc_algorithm + " in " + key));
  }
  if (!was || was->ecn_status != wanted.ecn_status) {
    plan.push_back(SysctlStep(key, kEcn, KernelEcn(wanted.ecn_status),
                              was ? KernelEcn(was->ecn_status) : "",
                              "set ECN " + wanted.ecn_status + " in " + key));
  }
  if (!was || was->ipv6_enabled != wanted.ipv6_enabled) {
    std::string const off = wanted.ipv6_enabled ? "0" : "1";
    std::string const old = was ? (was->ipv6_enabled ? "0" : "1") : "";
    std::string const what = std::string(wanted.ipv6_enabled ? "enable" : "disable") +
                             " IPv6 in " + key;
    // New devices follow "default", the present ones "all".
    plan.push_back(SysctlStep(key, kIpv6OffForNew, off, old, what));
    plan.push_back(SysctlStep(key, kIpv6Off, off, old, what));
  }
}

void PlanNetstacks(HostModel const& before, HostModel const& after, Plan& plan) {
  if (before.ip.ipv6_enabled != after.ip.ipv6_enabled) {
    NotAvailable("Switching IPv6 for the next boot");
  }
  for (auto const& was : before.ip.netstacks) {
    if (Sim::FindNetstack(after.ip, was.key)) continue;
    std::string const key = was.key;
    plan.push_back({"remove netstack instance " + key, [key] { RemoveNamespace(key); },
                    [key] { AddNamespace(key); }});
  }
  for (auto const& wanted : after.ip.netstacks) {
    auto const* was = Sim::FindNetstack(before.ip, wanted.key);
    if (wanted.state != Sim::kNetstackStateUp) {
      NotAvailable(was ? "Disabling a netstack instance"
                       : "A netstack instance that is only configured");
    }
    if (was && was->max_connections != wanted.max_connections) {
      NotAvailable("A netstack instance's maximum number of connections");
    }
    std::string const key = wanted.key;
    if (!was) {
      plan.push_back({"create netstack instance " + key,
                      [key] {
                        AddNamespace(key);
                        // Its own loopback works from the start.
                        SetLinkUp("lo", true, key);
                      },
                      [key] { RemoveNamespace(key); }});
    }
    PlanSettings(was, wanted, plan);
  }
}

void KeepNetstacks(HostModel const& after, HostModel& reread) {
  for (auto& netstack : reread.ip.netstacks) {
    auto const* asked = Sim::FindNetstack(after.ip, netstack.key);
    if (!asked) continue;
    netstack.name = asked->name;
    netstack.max_connections = asked->max_connections;
    netstack.current_max_connections = asked->current_max_connections;
    netstack.flags = asked->flags;
    // The kernel takes IPv6 on or off at once; the host shows it at once too.
    netstack.current_ipv6_enabled = asked->current_ipv6_enabled;
  }
  FollowOrder(after.ip.netstacks, reread.ip.netstacks,
              [](NetstackState const& netstack) { return netstack.key; });
}

}  // namespace

Family NetstackFamily() {
  return {"netstack", Sim::kAreaIp, ReadNetstacks, PlanNetstacks, KeepNetstacks};
}

}  // namespace OrvkCtl::Linux
