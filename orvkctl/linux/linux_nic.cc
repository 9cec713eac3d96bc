// Physical NICs: the namespace's Ethernet devices that are not bridges, not
// the backend's own interface ends and not loopback. Inventory, link and
// counters from route netlink; driver, link settings, offloads, rings,
// coalescing, pause, channels (the queue counts), wake-on-LAN and message
// level from the ethtool ioctl. What a driver does not answer reads as not
// supported; what it refuses to change is a plain error naming the driver.
#include <linux/ethtool.h>
#include <linux/if_arp.h>
#include <linux/if.h>

#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>

#include "hostctl/lib.h"
#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

using HostCtl::Lib::HostCtlException;
using Sim::PnicState;

// Whether the link is one the host shows as a physical NIC.
bool IsNic(LinkInfo const& link, HostModel const& host) {
  if (link.type != ARPHRD_ETHER) return false;
  if (link.flags & IFF_LOOPBACK) return false;
  if (link.kind == "bridge") return false;
  if (IsOwnLink(link.name)) return false;
  return Sim::FindInterface(host.ip, link.name) == nullptr;
}

// An ethtool command's reply for `name`, or nullopt when the driver has no
// such command.
template <typename T>
bool Get(std::string const& name, uint32_t command, T& value) {
  value = T{};
  value.cmd = command;
  return Ethtool(name, &value) == 0;
}

// Throws the error of a refused ethtool change: a driver without the
// command is named, anything else is the kernel's reason.
[[noreturn]] void FailEthtool(PnicState const& nic, std::string const& what, int error) {
  if (error == EOPNOTSUPP) {
    throw HostCtlException(nic.name + "'s driver " + (nic.driver.empty() ? "" : nic.driver + " ") +
                           "does not support " + what);
  }
  FailErrno("change the " + what + " of " + nic.name, error);
}

// A step that changes one group of ethtool settings: reads what the device
// has (`get`), lays over it what the host asks (`fill`), writes it (`set`);
// its undo writes what the host had before.
template <typename T>
Step EthtoolStep(PnicState const& was, PnicState const& now, std::string const& what,
                 uint32_t get, uint32_t set, void (*fill)(T&, PnicState const&)) {
  auto write = [what, get, set, fill](PnicState const& state) {
    T value{};
    int error = Get(state.name, get, value) ? 0 : EOPNOTSUPP;
    if (error == 0) {
      fill(value, state);
      value.cmd = set;
      error = Ethtool(state.name, &value);
    }
    if (error != 0) FailEthtool(state, what, error);
  };
  auto const after = std::make_shared<PnicState const>(now);
  auto const before = std::make_shared<PnicState const>(was);
  return {"change the " + what + " of " + now.name, [=] { write(*after); },
          [=] { write(*before); }};
}

// Link modes of the legacy link settings' masks: bit, Mbps, duplex (1 full,
// 2 half), medium (the index of its word: 2 BaseT, 3 BaseX, 4 BaseKX, 7
// BaseKR, 18 BaseKX4).
struct ModeBit {
  uint32_t bit;
  int32_t speed;
  uint32_t duplex;
  int32_t media;
};
constexpr ModeBit kModeBits[] = {
    {SUPPORTED_10baseT_Half, 10, 2, 2},       {SUPPORTED_10baseT_Full, 10, 1, 2},
    {SUPPORTED_100baseT_Half, 100, 2, 2},     {SUPPORTED_100baseT_Full, 100, 1, 2},
    {SUPPORTED_1000baseT_Half, 1000, 2, 2},   {SUPPORTED_1000baseT_Full, 1000, 1, 2},
    {SUPPORTED_1000baseKX_Full, 1000, 1, 4},  {SUPPORTED_2500baseX_Full, 2500, 1, 3},
    {SUPPORTED_10000baseT_Full, 10000, 1, 2}, {SUPPORTED_10000baseKX4_Full, 10000, 1, 18},
    {SUPPORTED_10000baseKR_Full, 10000, 1, 7},
};

std::vector<Sim::LinkModeState> LinkModes(uint32_t mask) {
  std::vector<Sim::LinkModeState> modes;
  for (auto const& mode : kModeBits) {
    if (mask & mode.bit) modes.push_back({mode.speed, mode.duplex, mode.media});
  }
  return modes;
}

uint32_t ModeMask(std::vector<Sim::LinkModeState> const& modes) {
  uint32_t mask = 0;
  for (auto const& mode : kModeBits) {
    for (auto const& wanted : modes) {
      if (wanted.speed == mode.speed && wanted.duplex == mode.duplex && wanted.media == mode.media)
        mask |= mode.bit;
    }
  }
  return mask;
}

void ReadLinkSettings(PnicState& nic) {
  ethtool_cmd settings;
  if (!Get(nic.name, ETHTOOL_GSET, settings)) return;
  uint32_t const speed = ethtool_cmd_speed(&settings);
  nic.speed = speed == static_cast<uint32_t>(SPEED_UNKNOWN) ? 0 : speed;
  nic.duplex = settings.duplex == DUPLEX_HALF ? 2 : 1;
  nic.auto_negotiation = settings.autoneg == AUTONEG_ENABLE;
  nic.supports_auto_negotiation = settings.supported & SUPPORTED_Autoneg;
  nic.advertised_auto_negotiation = settings.advertising & ADVERTISED_Autoneg;
  nic.supported_link_modes = LinkModes(settings.supported);
  nic.advertised_link_modes = LinkModes(settings.advertising);
  nic.phy_address = settings.phy_address;
  nic.transceiver = settings.transceiver == XCVR_EXTERNAL ? 1 : 0;
  nic.port = settings.port;
  nic.supported_ports.clear();
  struct PortBit {
    uint32_t bit;
    uint32_t port;
  };
  for (auto [bit, port] : {PortBit{SUPPORTED_TP, PORT_TP}, PortBit{SUPPORTED_AUI, PORT_AUI},
                           PortBit{SUPPORTED_MII, PORT_MII}, PortBit{SUPPORTED_FIBRE, PORT_FIBRE},
                           PortBit{SUPPORTED_BNC, PORT_BNC}}) {
    if (settings.supported & bit) nic.supported_ports.push_back(port);
  }
}

void FillLinkSettings(ethtool_cmd& settings, PnicState const& nic) {
  settings.autoneg = nic.auto_negotiation ? AUTONEG_ENABLE : AUTONEG_DISABLE;
  if (nic.auto_negotiation) {
    settings.advertising = ModeMask(nic.advertised_link_modes) |
                           (nic.advertised_auto_negotiation ? ADVERTISED_Autoneg : 0);
  } else {
    ethtool_cmd_speed_set(&settings, nic.speed);
    settings.duplex = nic.duplex == 2 ? DUPLEX_HALF : DUPLEX_FULL;
  }
}

// Offloads are the device's features, by their kernel names: the names
// are the same for every device, so they are read once.
struct Features {
  std::vector<std::string> names;
  size_t Blocks() const { return (names.size() + 31) / 32; }
  int Index(std::string const& name) const {
    auto at = std::find(names.begin(), names.end(), name);
    return at == names.end() ? -1 : static_cast<int>(at - names.begin());
  }
};

Features const& FeatureNames(std::string const& device) {
  static Features features;
  if (!features.names.empty()) return features;
  // The set's size follows its header.
  alignas(ethtool_sset_info) uint8_t query[sizeof(ethtool_sset_info) + sizeof(uint32_t)] = {};
  auto* sset = reinterpret_cast<ethtool_sset_info*>(query);
  sset->cmd = ETHTOOL_GSSET_INFO;
  sset->sset_mask = uint64_t{1} << ETH_SS_FEATURES;
  if (Ethtool(device, sset) != 0 || sset->sset_mask == 0) return features;
  uint32_t count = 0;
  std::memcpy(&count, query + sizeof(ethtool_sset_info), sizeof count);
  std::vector<uint8_t> buffer(sizeof(ethtool_gstrings) + size_t{count} * ETH_GSTRING_LEN);
  auto* strings = reinterpret_cast<ethtool_gstrings*>(buffer.data());
  strings->cmd = ETHTOOL_GSTRINGS;
  strings->string_set = ETH_SS_FEATURES;
  strings->len = count;
  if (Ethtool(device, strings) != 0) return features;
  for (uint32_t i = 0; i < strings->len; ++i) {
    char const* text = reinterpret_cast<char const*>(strings->data) + size_t{i} * ETH_GSTRING_LEN;
    features.names.emplace_back(text, strnlen(text, ETH_GSTRING_LEN));
  }
  return features;
}

// The features behind each offload of the host.
char const* const kRxChecksum[] = {"rx-checksum"};
char const* const kTxChecksum[] = {"tx-checksum-ipv4", "tx-checksum-ip-generic",
                                   "tx-checksum-ipv6"};
char const* const kScatterGather[] = {"tx-scatter-gather"};
char const* const kSegmentation[] = {"tx-tcp-segmentation", "tx-tcp6-segmentation"};
char const* const kLargeReceive[] = {"rx-lro"};
char const* const kGenericReceive[] = {"rx-gro"};

struct OffloadFeature {
  bool Sim::OffloadState::*field;
  std::vector<char const*> names;
};
std::vector<OffloadFeature> const& OffloadFeatures() {
  static std::vector<OffloadFeature> const all = {
      {&Sim::OffloadState::rx_checksum, {std::begin(kRxChecksum), std::end(kRxChecksum)}},
      {&Sim::OffloadState::tx_checksum, {std::begin(kTxChecksum), std::end(kTxChecksum)}},
      {&Sim::OffloadState::scatter_gather,
       {std::begin(kScatterGather), std::end(kScatterGather)}},
      {&Sim::OffloadState::tcp_segmentation,
       {std::begin(kSegmentation), std::end(kSegmentation)}},
      {&Sim::OffloadState::large_receive, {std::begin(kLargeReceive), std::end(kLargeReceive)}},
      {&Sim::OffloadState::generic_receive,
       {std::begin(kGenericReceive), std::end(kGenericReceive)}},
  };
  return all;
}

void ReadOffloads(PnicState& nic) {
  Features const& features = FeatureNames(nic.name);
  if (features.names.empty()) return;
  std::vector<uint8_t> buffer(sizeof(ethtool_gfeatures) +
                              features.Blocks() * sizeof(ethtool_get_features_block));
  auto* reply = reinterpret_cast<ethtool_gfeatures*>(buffer.data());
  reply->cmd = ETHTOOL_GFEATURES;
  reply->size = static_cast<uint32_t>(features.Blocks());
  if (Ethtool(nic.name, reply) != 0) return;
  auto bit = [&](char const* name, uint32_t ethtool_get_features_block::*word) {
    int const index = features.Index(name);
    return index >= 0 && ((reply->features[index / 32].*word >> (index % 32)) & 1);
  };
  auto any = [&](std::vector<char const*> const& names, uint32_t ethtool_get_features_block::*w) {
    return std::any_of(names.begin(), names.end(), [&](char const* name) { return bit(name, w); });
  };
  auto& offload = nic.offload;
  for (auto const& feature : OffloadFeatures()) {
    offload.*feature.field = any(feature.names, &ethtool_get_features_block::active);
  }
  auto const& all = OffloadFeatures();
  auto changeable = [&](size_t at) {
    return any(all[at].names, &ethtool_get_features_block::available);
  };
  offload.can_checksum = changeable(0) || changeable(1);
  offload.can_scatter_gather = changeable(2);
  offload.can_tcp_segmentation = changeable(3);
}

// The kernel drops scatter-gather without TX checksumming, and TCP
// segmentation without scatter-gather: a change that would make it do so
// is refused, so that no offload comes or goes without being asked.
void CheckOffloadOrder(PnicState const& was, PnicState const& now) {
  struct Needs {
    bool Sim::OffloadState::*base;
    bool Sim::OffloadState::*user;
    char const* base_name;
    char const* user_name;
  };
  Needs const rules[] = {
      {&Sim::OffloadState::tx_checksum, &Sim::OffloadState::scatter_gather,
       "TX checksum offload", "scatter-gather"},
      {&Sim::OffloadState::scatter_gather, &Sim::OffloadState::tcp_segmentation,
       "scatter-gather", "TCP segmentation offload"},
  };
  for (auto const& rule : rules) {
    if (now.offload.*rule.base || !(now.offload.*rule.user)) continue;
    if (was.offload.*rule.base) {
      throw HostCtlException(std::string("Turning ") + rule.base_name + " off on " + now.name +
                             " turns " + rule.user_name + " off too: turn that off first");
    }
    throw HostCtlException("On " + now.name + ", " + rule.user_name + " needs " + rule.base_name +
                           ": turn that on first");
  }
}

// Turns the offloads that differ between `was` and `now` to `now`'s.
Step OffloadStep(PnicState const& was, PnicState const& now) {
  Features const& features = FeatureNames(now.name);
  size_t const blocks = features.Blocks();
  auto write = [name = now.name, driver = now.driver, blocks, &features](
                   Sim::OffloadState const& from, Sim::OffloadState const& to) {
    std::vector<uint8_t> buffer(sizeof(ethtool_sfeatures) +
                                blocks * sizeof(ethtool_set_features_block));
    auto* request = reinterpret_cast<ethtool_sfeatures*>(buffer.data());
    request->cmd = ETHTOOL_SFEATURES;
    request->size = static_cast<uint32_t>(blocks);
    for (auto const& feature : OffloadFeatures()) {
      if (from.*feature.field == to.*feature.field) continue;
      for (char const* text : feature.names) {
        int const index = features.Index(text);
        if (index < 0) continue;
        uint32_t const mask = 1u << (index % 32);
        request->features[index / 32].valid |= mask;
        if (to.*feature.field) request->features[index / 32].requested |= mask;
      }
    }
    // A positive answer tells what the device did not take: the host's
    // verification reports it.
    if (int error = Ethtool(name, request); error != 0) {
      PnicState nic;
      nic.name = name;
      nic.driver = driver;
      FailEthtool(nic, "offload settings", error);
    }
  };
  auto const before = was.offload;
  auto const after = now.offload;
  return {"change the offloads of " + now.name, [=] { write(before, after); },
          [=] { write(after, before); }};
}

// Rings and coalescing: the host's fields and the ioctl's, one for one.
template <typename State, typename Kernel>
struct Field {
  uint32_t State::*state;
  __u32 Kernel::*kernel;
};
constexpr Field<Sim::RingState, ethtool_ringparam> kRingFields[] = {
    {&Sim::RingState::max_rx, &ethtool_ringparam::rx_max_pending},
    {&Sim::RingState::max_rx_mini, &ethtool_ringparam::rx_mini_max_pending},
    {&Sim::RingState::max_rx_jumbo, &ethtool_ringparam::rx_jumbo_max_pending},
    {&Sim::RingState::max_tx, &ethtool_ringparam::tx_max_pending},
    {&Sim::RingState::rx, &ethtool_ringparam::rx_pending},
    {&Sim::RingState::rx_mini, &ethtool_ringparam::rx_mini_pending},
    {&Sim::RingState::rx_jumbo, &ethtool_ringparam::rx_jumbo_pending},
    {&Sim::RingState::tx, &ethtool_ringparam::tx_pending},
};

constexpr Field<Sim::CoalesceState, ethtool_coalesce> kCoalesceFields[] = {
    {&Sim::CoalesceState::stats_block_usecs, &ethtool_coalesce::stats_block_coalesce_usecs},
    {&Sim::CoalesceState::sample_interval, &ethtool_coalesce::rate_sample_interval},
    {&Sim::CoalesceState::pkt_rate_low, &ethtool_coalesce::pkt_rate_low},
    {&Sim::CoalesceState::pkt_rate_high, &ethtool_coalesce::pkt_rate_high},
    {&Sim::CoalesceState::rx_usecs, &ethtool_coalesce::rx_coalesce_usecs},
    {&Sim::CoalesceState::rx_frames, &ethtool_coalesce::rx_max_coalesced_frames},
    {&Sim::CoalesceState::rx_usecs_irq, &ethtool_coalesce::rx_coalesce_usecs_irq},
    {&Sim::CoalesceState::rx_frames_irq, &ethtool_coalesce::rx_max_coalesced_frames_irq},
    {&Sim::CoalesceState::tx_usecs, &ethtool_coalesce::tx_coalesce_usecs},
    {&Sim::CoalesceState::tx_frames, &ethtool_coalesce::tx_max_coalesced_frames},
    {&Sim::CoalesceState::tx_usecs_irq, &ethtool_coalesce::tx_coalesce_usecs_irq},
    {&Sim::CoalesceState::tx_frames_irq, &ethtool_coalesce::tx_max_coalesced_frames_irq},
    {&Sim::CoalesceState::rx_usecs_low, &ethtool_coalesce::rx_coalesce_usecs_low},
    {&Sim::CoalesceState::rx_frames_low, &ethtool_coalesce::rx_max_coalesced_frames_low},
    {&Sim::CoalesceState::tx_usecs_low, &ethtool_coalesce::tx_coalesce_usecs_low},
    {&Sim::CoalesceState::tx_frames_low, &ethtool_coalesce::tx_max_coalesced_frames_low},
    {&Sim::CoalesceState::rx_usecs_high, &ethtool_coalesce::rx_coalesce_usecs_high},
    {&Sim::CoalesceState::rx_frames_high, &ethtool_coalesce::rx_max_coalesced_frames_high},
    {&Sim::CoalesceState::tx_usecs_high, &ethtool_coalesce::tx_coalesce_usecs_high},
    {&Sim::CoalesceState::tx_frames_high, &ethtool_coalesce::tx_max_coalesced_frames_high},
};

// Wake-on-LAN: bit i of the ioctl's masks is the host's mode i (PHY
// activity, unicast, multicast, broadcast, ARP, magic packet, SecureOn).
constexpr uint32_t kWakeModes = 7;

std::vector<uint32_t> WakeModes(uint32_t mask) {
  std::vector<uint32_t> modes;
  for (uint32_t mode = 0; mode < kWakeModes; ++mode) {
    if (mask & (1u << mode)) modes.push_back(mode);
  }
  return modes;
}

void ReadDevice(PnicState& nic) {
  ethtool_drvinfo info;
  if (Get(nic.name, ETHTOOL_GDRVINFO, info)) {
    nic.driver = info.driver;
    nic.driver_version = info.version;
    nic.firmware_version = info.fw_version;
    std::string const bus = info.bus_info;
    // A PCI address reads "0000:03:00.0"; anything else is no PCI device.
    if (bus.size() == 12 && bus[4] == ':' && bus[7] == ':' && bus[10] == '.') nic.pci_address = bus;
  }
  ReadLinkSettings(nic);
  ReadOffloads(nic);

  ethtool_ringparam ring;
  nic.ring.supported = Get(nic.name, ETHTOOL_GRINGPARAM, ring);
  for (auto const& field : kRingFields) nic.ring.*field.state = ring.*field.kernel;

  ethtool_coalesce coalesce;
  auto& c = nic.coalesce;
  c.supported = Get(nic.name, ETHTOOL_GCOALESCE, coalesce);
  for (auto const& field : kCoalesceFields) c.*field.state = coalesce.*field.kernel;
  c.adaptive_rx = coalesce.use_adaptive_rx_coalesce;
  c.adaptive_tx = coalesce.use_adaptive_tx_coalesce;
  // The ioctl tells no limits: the driver checks what it is given.
  c.max_microseconds = c.max_frames = c.supported ? UINT32_MAX : 0;

  ethtool_pauseparam pause;
  nic.pause.supported = Get(nic.name, ETHTOOL_GPAUSEPARAM, pause);
  nic.pause.auto_negotiation = pause.autoneg;
  nic.pause.rx = pause.rx_pause;
  nic.pause.tx = pause.tx_pause;
  nic.pause.rx_resolution = pause.autoneg ? (pause.rx_pause ? 1 : 2) : 0;
  nic.pause.tx_resolution = pause.autoneg ? (pause.tx_pause ? 1 : 2) : 0;

  ethtool_channels channels;
  auto& queues = nic.netqueue;
  queues.supported = Get(nic.name, ETHTOOL_GCHANNELS, channels);
  queues.max_rx_queues = channels.max_rx + channels.max_combined;
  queues.max_tx_queues = channels.max_tx + channels.max_combined;
  queues.rx_queues = channels.rx_count + channels.combined_count;
  queues.tx_queues = channels.tx_count + channels.combined_count;

  ethtool_wolinfo wol;
  nic.supports_wake_on = Get(nic.name, ETHTOOL_GWOL, wol) && wol.supported != 0;
  nic.supported_wake_on = WakeModes(wol.supported);
  nic.wake_on = WakeModes(wol.wolopts);

  ethtool_value level;
  nic.supports_message_level = Get(nic.name, ETHTOOL_GMSGLVL, level);
  nic.message_level = level.data;
}

void ReadStats(rtnl_link_stats64 const& link, Sim::NicStatsState& stats) {
  struct Counter {
    uint64_t Sim::NicStatsState::*field;
    __u64 rtnl_link_stats64::*kernel;
  };
  static constexpr Counter kCounters[] = {
      {&Sim::NicStatsState::tx_packets, &rtnl_link_stats64::tx_packets},
      {&Sim::NicStatsState::rx_packets, &rtnl_link_stats64::rx_packets},
      {&Sim::NicStatsState::tx_bytes, &rtnl_link_stats64::tx_bytes},
      {&Sim::NicStatsState::rx_bytes, &rtnl_link_stats64::rx_bytes},
      {&Sim::NicStatsState::tx_errors, &rtnl_link_stats64::tx_errors},
      {&Sim::NicStatsState::rx_errors, &rtnl_link_stats64::rx_errors},
      {&Sim::NicStatsState::tx_dropped, &rtnl_link_stats64::tx_dropped},
      {&Sim::NicStatsState::rx_dropped, &rtnl_link_stats64::rx_dropped},
      {&Sim::NicStatsState::rx_multicast, &rtnl_link_stats64::multicast},
      {&Sim::NicStatsState::rx_length_errors, &rtnl_link_stats64::rx_length_errors},
      {&Sim::NicStatsState::rx_over_errors, &rtnl_link_stats64::rx_over_errors},
      {&Sim::NicStatsState::rx_crc_errors, &rtnl_link_stats64::rx_crc_errors},
      {&Sim::NicStatsState::rx_frame_errors, &rtnl_link_stats64::rx_frame_errors},
      {&Sim::NicStatsState::rx_fifo_errors, &rtnl_link_stats64::rx_fifo_errors},
      {&Sim::NicStatsState::rx_missed_errors, &rtnl_link_stats64::rx_missed_errors},
      {&Sim::NicStatsState::tx_aborted_errors, &rtnl_link_stats64::tx_aborted_errors},
      {&Sim::NicStatsState::tx_fifo_errors, &rtnl_link_stats64::tx_fifo_errors},
      {&Sim::NicStatsState::tx_carrier_errors, &rtnl_link_stats64::tx_carrier_errors},
      {&Sim::NicStatsState::tx_heartbeat_errors, &rtnl_link_stats64::tx_heartbeat_errors},
      {&Sim::NicStatsState::tx_window_errors, &rtnl_link_stats64::tx_window_errors},
      {&Sim::NicStatsState::collisions, &rtnl_link_stats64::collisions},
  };
  stats = {};
  for (auto const& counter : kCounters) stats.*counter.field = link.*counter.kernel;
}

void ReadNics(HostModel& host) {
  decltype(host.nic.pnics) nics;
  for (auto const& link : Links()) {
    if (!IsNic(link, host)) continue;
    PnicState nic;
    nic.name = link.name;
    nic.mac = link.mac;
    nic.mtu = static_cast<int32_t>(link.mtu);
    nic.admin_up = link.flags & IFF_UP;
    nic.carrier = link.carrier;
    nic.speed = 0;
    nic.duplex = 1;
    ReadDevice(nic);
    if (!nic.admin_up || !nic.carrier) nic.speed = 0;
    ReadStats(link.stats, nic.stats);
    // What the backend keeps of the NIC (restarts of negotiation asked for).
    if (auto const* kept = Sim::FindPnic(host.nic, nic.name)) {
      nic.negotiation_restarts = kept->negotiation_restarts;
    }
    nics.push_back(std::move(nic));
  }
  host.nic.pnics = std::move(nics);
}

// Refuses a change of what a linux host has no counterpart for.
void CheckUnmapped(PnicState const& was, PnicState const& now) {
  auto const& a = was.netqueue;
  auto const& b = now.netqueue;
  struct Part {
    bool changed;
    char const* what;
  };
  Part const parts[] = {
      {was.port != now.port || was.phy_address != now.phy_address ||
           was.transceiver != now.transceiver,
       "Changing the port, PHY address or transceiver"},
      {a.balancer_enabled != b.balancer_enabled || a.allowed_settings != b.allowed_settings ||
           a.plugins != b.plugins,
       "Netqueue load balancing"},
      {was.vlan_stats_enabled != now.vlan_stats_enabled || was.vlan_stats != now.vlan_stats,
       "VLAN statistics"},
      {was.software_simulation != now.software_simulation, "Software simulation of offloads"},
      {was.dcb != now.dcb, "DCB"},
      {was.eeprom != now.eeprom || was.eeprom_magic != now.eeprom_magic, "Writing the EEPROM"},
      {was.attachments != now.attachments, "Uplink attachment"},
      {was.sriov != now.sriov, "SR-IOV"},
      {was.hw_cap != now.hw_cap, "Changing hardware capabilities"},
      {was.mac != now.mac, "Changing the MAC address of a physical NIC"},
  };
  for (auto const& part : parts) {
    if (part.changed) NotAvailable(std::string(part.what) + " on " + now.name);
  }
}

void PlanNic(PnicState const& was, PnicState const& now, Plan& plan) {
  CheckUnmapped(was, now);
  std::string const& name = now.name;
  if (now.mtu != was.mtu) {
    int const mtu = now.mtu;
    int const old = was.mtu;
    plan.push_back({"set the MTU of " + name, [=] { SetLinkMtu(name, mtu); },
                    [=] { SetLinkMtu(name, old); }});
  }
  if (now.admin_up != was.admin_up) {
    bool const up = now.admin_up;
    plan.push_back({std::string(up ? "bring up " : "bring down ") + name,
                    [=] { SetLinkUp(name, up); }, [=] { SetLinkUp(name, !up); }});
  }
  if (now.auto_negotiation != was.auto_negotiation || now.speed != was.speed ||
      now.duplex != was.duplex || now.advertised_link_modes != was.advertised_link_modes ||
      now.advertised_auto_negotiation != was.advertised_auto_negotiation) {
    plan.push_back(EthtoolStep<ethtool_cmd>(was, now, "link settings", ETHTOOL_GSET,
                                            ETHTOOL_SSET, FillLinkSettings));
  }
  if (now.negotiation_restarts > was.negotiation_restarts) {
    plan.push_back({"restart negotiation on " + name,
                    [now] {
                      ethtool_value restart{};
                      restart.cmd = ETHTOOL_NWAY_RST;
                      if (int error = Ethtool(now.name, &restart)) {
                        FailEthtool(now, "restarting negotiation", error);
                      }
                    },
                    {}});
  }
  if (now.wake_on != was.wake_on) {
    plan.push_back(EthtoolStep<ethtool_wolinfo>(
        was, now, "wake-on-LAN settings", ETHTOOL_GWOL, ETHTOOL_SWOL,
        [](ethtool_wolinfo& wol, PnicState const& nic) {
          wol.wolopts = 0;
          for (uint32_t mode : nic.wake_on) wol.wolopts |= 1u << mode;
        }));
  }
  if (now.message_level != was.message_level) {
    plan.push_back(EthtoolStep<ethtool_value>(
        was, now, "message level", ETHTOOL_GMSGLVL, ETHTOOL_SMSGLVL,
        [](ethtool_value& level, PnicState const& nic) { level.data = nic.message_level; }));
  }
  if (now.offload != was.offload) {
    CheckOffloadOrder(was, now);
    plan.push_back(OffloadStep(was, now));
  }
  if (now.ring != was.ring) {
    plan.push_back(EthtoolStep<ethtool_ringparam>(
        was, now, "ring settings", ETHTOOL_GRINGPARAM, ETHTOOL_SRINGPARAM,
        [](ethtool_ringparam& ring, PnicState const& nic) {
          for (auto const& field : kRingFields) ring.*field.kernel = nic.ring.*field.state;
        }));
  }
  if (now.coalesce != was.coalesce) {
    plan.push_back(EthtoolStep<ethtool_coalesce>(
        was, now, "interrupt coalescing", ETHTOOL_GCOALESCE, ETHTOOL_SCOALESCE,
        [](ethtool_coalesce& coalesce, PnicState const& nic) {
          for (auto const& field : kCoalesceFields) coalesce.*field.kernel = nic.coalesce.*field.state;
          coalesce.use_adaptive_rx_coalesce = nic.coalesce.adaptive_rx;
          coalesce.use_adaptive_tx_coalesce = nic.coalesce.adaptive_tx;
        }));
  }
  if (now.pause != was.pause) {
    plan.push_back(EthtoolStep<ethtool_pauseparam>(
        was, now, "pause settings", ETHTOOL_GPAUSEPARAM, ETHTOOL_SPAUSEPARAM,
        [](ethtool_pauseparam& pause, PnicState const& nic) {
          pause.autoneg = nic.pause.auto_negotiation;
          pause.rx_pause = nic.pause.rx;
          pause.tx_pause = nic.pause.tx;
        }));
  }
  if (now.netqueue.rx_queues != was.netqueue.rx_queues ||
      now.netqueue.tx_queues != was.netqueue.tx_queues) {
    plan.push_back(EthtoolStep<ethtool_channels>(
        was, now, "queue counts", ETHTOOL_GCHANNELS, ETHTOOL_SCHANNELS,
        [](ethtool_channels& channels, PnicState const& nic) {
          // Combined channels serve both ways; the rest are one-way.
          uint32_t const combined = channels.combined_count;
          auto rest = [combined](uint32_t count) { return count > combined ? count - combined : 0; };
          channels.rx_count = rest(nic.netqueue.rx_queues);
          channels.tx_count = rest(nic.netqueue.tx_queues);
        }));
  }
}

void PlanNics(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& wanted : after.nic.pnics) {
    auto const* was = Sim::FindPnic(before.nic, wanted.name);
    if (!was) continue;  // the kernel has the NICs; the comparison reports a new one
    if (!(*was == wanted)) PlanNic(*was, wanted, plan);
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
    nic.negotiation_restarts = asked->negotiation_restarts;
  }
}

}  // namespace

Family NicFamily() { return {"nic", Sim::kAreaNic, ReadNics, PlanNics, KeepNics}; }

}  // namespace OrvkCtl::Linux
