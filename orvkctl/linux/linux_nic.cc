// Physical NICs: the namespace's Ethernet devices that are not bridges, not
// the backend's own interface ends and not loopback. Inventory and link from
// route netlink, driver and link settings from ethtool.
#include <linux/ethtool.h>
#include <linux/if_arp.h>
#include <linux/if.h>
#include <netlink/route/link.h>

#include <cerrno>
#include <cstring>

#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::PnicState;

std::string Mac(rtnl_link* link) {
  nl_addr* address = rtnl_link_get_addr(link);
  if (!address || nl_addr_get_len(address) != 6) return {};
  auto const* bytes = static_cast<unsigned char const*>(nl_addr_get_binary_addr(address));
  char text[18];
  std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
                bytes[3], bytes[4], bytes[5]);
  return text;
}

// Whether the link is one the host shows as a physical NIC.
bool IsNic(rtnl_link* link, HostModel const& host) {
  if (rtnl_link_get_arptype(link) != ARPHRD_ETHER) return false;
  if (rtnl_link_get_flags(link) & IFF_LOOPBACK) return false;
  char const* kind = rtnl_link_get_type(link);
  if (kind && (std::strcmp(kind, "bridge") == 0)) return false;
  std::string const name = rtnl_link_get_name(link);
  if (IsOwnLink(name)) return false;
  return Sim::FindInterface(host.ip, name) == nullptr;
}

// What ethtool says of the driver and the link; a driver that does not
// answer leaves the fields as they are.
void ReadEthtool(PnicState& nic) {
  ethtool_drvinfo info{};
  info.cmd = ETHTOOL_GDRVINFO;
  if (Ethtool(nic.name, &info) == 0) {
    nic.driver = info.driver;
    nic.driver_version = info.version;
    nic.firmware_version = info.fw_version;
    std::string const bus = info.bus_info;
    // A PCI address reads "0000:03:00.0"; anything else is no PCI device.
    if (bus.size() == 12 && bus[4] == ':' && bus[7] == ':' && bus[10] == '.') nic.pci_address = bus;
  }
  ethtool_cmd settings{};
  settings.cmd = ETHTOOL_GSET;
  if (Ethtool(nic.name, &settings) == 0) {
    uint32_t const speed = ethtool_cmd_speed(&settings);
    nic.speed = speed == static_cast<uint32_t>(SPEED_UNKNOWN) ? 0 : speed;
    nic.duplex = settings.duplex == DUPLEX_HALF ? 2 : 1;
    nic.auto_negotiation = settings.autoneg == AUTONEG_ENABLE;
    nic.supports_auto_negotiation = settings.supported & SUPPORTED_Autoneg;
    nic.advertised_auto_negotiation = settings.advertising & ADVERTISED_Autoneg;
    nic.phy_address = settings.phy_address;
    nic.transceiver = settings.transceiver == XCVR_EXTERNAL ? 1 : 0;
    nic.port = settings.port;
  }
}

void ReadNics(HostModel& host) {
  Cache links = LinkCache();
  decltype(host.nic.pnics) nics;
  for (nl_object* object = nl_cache_get_first(links.get()); object;
       object = nl_cache_get_next(object)) {
    auto* link = reinterpret_cast<rtnl_link*>(object);
    if (!IsNic(link, host)) continue;
    PnicState nic;
    nic.name = rtnl_link_get_name(link);
    nic.mac = Mac(link);
    nic.mtu = static_cast<int32_t>(rtnl_link_get_mtu(link));
    unsigned const flags = rtnl_link_get_flags(link);
    nic.admin_up = flags & IFF_UP;
    nic.carrier = rtnl_link_get_carrier(link) != 0;
    nic.speed = 0;
    nic.duplex = 1;
    ReadEthtool(nic);
    if (!nic.admin_up || !nic.carrier) nic.speed = 0;
    nics.push_back(std::move(nic));
  }
  host.nic.pnics = std::move(nics);
}

// A step that sets one attribute of a link through `set`, and back.
Step LinkStep(std::string const& what, std::string const& name,
              std::function<void(rtnl_link*)> const& set_after,
              std::function<void(rtnl_link*)> const& set_before) {
  auto change = [name, what](std::function<void(rtnl_link*)> const& set) {
    Link change(rtnl_link_alloc());
    set(change.get());
    ChangeLink(name, change.get(), what);
  };
  return {what, [=] { change(set_after); }, [=] { change(set_before); }};
}

void PlanNics(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& wanted : after.nic.pnics) {
    auto const* was = Sim::FindPnic(before.nic, wanted.name);
    if (!was) continue;  // the kernel has the NICs; the comparison reports a new one
    std::string const& name = wanted.name;
    if (wanted.mtu != was->mtu) {
      int32_t const mtu = wanted.mtu;
      int32_t const old = was->mtu;
      plan.push_back(LinkStep(
          "set the MTU of " + name + " to " + std::to_string(mtu), name,
          [mtu](rtnl_link* link) { rtnl_link_set_mtu(link, static_cast<unsigned>(mtu)); },
          [old](rtnl_link* link) { rtnl_link_set_mtu(link, static_cast<unsigned>(old)); }));
    }
    if (wanted.admin_up != was->admin_up) {
      bool const up = wanted.admin_up;
      auto set = [](bool on) {
        return [on](rtnl_link* link) {
          on ? rtnl_link_set_flags(link, IFF_UP) : rtnl_link_unset_flags(link, IFF_UP);
        };
      };
      plan.push_back(LinkStep(std::string(up ? "bring up " : "bring down ") + name, name, set(up),
                              set(!up)));
    }
  }
}

// Counters move between two reads, and the link follows the wire: neither
// is what a change asks for.
void KeepNics(HostModel const& after, HostModel& reread) {
  for (auto& nic : reread.nic.pnics) {
    auto const* asked = Sim::FindPnic(after.nic, nic.name);
    if (!asked) continue;
    nic.stats = asked->stats;
    nic.carrier = asked->carrier;
    nic.speed = asked->speed;
  }
}

}  // namespace

Family NicFamily() { return {"nic", Sim::kAreaNic, ReadNics, PlanNics, KeepNics}; }

}  // namespace OrvkCtl::Linux
