// The simulated host's rules that span its areas, in one place: what a
// removal takes with it, and which values the host refuses wherever a
// command gives them. The Impl classes call these inside their changes; each
// names the areas that must be loaded. Errors are HostCtlException.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host_model.h"

namespace OrvkCtl::Sim {

// Whether a NIC's link is up: administratively up, with a partner on the wire.
inline bool LinkUp(PnicState const& nic) { return nic.admin_up && nic.carrier; }

// Removes interface `name` (areas ip, vswitch, runtime) and what was its
// own: its routes and its neighbors (IPv4 and IPv6), the sockets of its
// netstack bound to one of its addresses, its switch port, and its place
// among its port group's clients. Throws when there is no such interface.
void RemoveInterface(HostModel& host, std::string const& name);

// Removes standard switch `name` (areas vswitch, runtime): refused while a
// port group of it is in use. ENS contexts bound to it are left unbound.
void RemoveStandardSwitch(HostModel& host, std::string const& name);

// The canonical text of a firewall's allowed address or network: a network
// with its host bits clear, and a network of one address (/32, /128) that
// address, so that the same addresses are never listed twice. Throws for a
// text that is neither.
std::string CanonicalAllowedIp(std::string const& text);

// Throws unless `address` (canonical) may be a DNS server: not the
// unspecified address (0.0.0.0, ::) nor the IPv4 broadcast address.
void CheckDnsServer(std::string const& address);

// The uplink a switch port's traffic leaves through (areas nic, vswitch,
// runtime): on a standard switch, the first active uplink of the failover
// order in force on its port group whose link is up, else the first standby
// one whose link is up, empty when none is; on a distributed switch, which
// is configured from outside the host, the uplink it gave the port, else its
// first uplink whose link is up.
std::string TeamUplink(HostModel const& host, PortState const& port);

// Throws unless NIC `branch` may be attached to a trunk as its branch (areas
// nic, vswitch): not while it is an active uplink of a standard switch,
// whose traffic it carries itself.
void CheckBranch(HostModel const& host, std::string const& branch);

// The hardware capabilities in force on a NIC: the driver's, except the ones
// that follow a setting (scatter-gather, IPv4 and IPv6 checksum offload,
// TSO, TSO over IPv6, LRO, DCB, SR-IOV), which are in force exactly while
// the device supports them and the setting is on.
uint64_t ActivatedHwCaps(PnicState const& nic);

// What an IPsec policy names instead of an SA that was removed: no SA may
// take this name.
inline constexpr std::string_view kRemovedSaName = "UNKNOWN";

}  // namespace OrvkCtl::Sim
