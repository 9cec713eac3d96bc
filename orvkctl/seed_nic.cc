// The default host's physical NICs: a quad-port gigabit copper card with two
// ports cabled, a dual-port 25GbE card whose second port was taken down by the
// administrator, and a USB adapter without a cable.
#include <algorithm>
#include <initializer_list>

#include "host_model.h"

namespace OrvkCtl::Sim {
namespace {

constexpr uint32_t kTp = 0, kFibre = 4, kDa = 5;
constexpr uint32_t kFull = 1, kHalf = 2;
constexpr int32_t kBaseT = 2, kBaseSR = 9, kBaseCR1 = 14, kBaseSFI = 24;
constexpr uint32_t kPhyActivity = 0, kUnicast = 1, kMulticast = 2, kBroadcast = 3, kMagic = 5;

// Vendor and device ids of the two PCI cards; an EEPROM's magic key is the
// device id over the vendor id.
constexpr uint16_t kVendorId = 0x1f3a;
constexpr uint16_t kGigabitDeviceId = 0x0b41, kSfp28DeviceId = 0x0c25;

void PutWord(EepromImage& image, size_t word, uint16_t value) {
  image.bytes[word * 2] = static_cast<uint8_t>(value & 0xff);
  image.bytes[word * 2 + 1] = static_cast<uint8_t>(value >> 8);
}

// A sealed EEPROM image of `size` bytes: the MAC address first, the ids and
// init words of the device, unused space erased (0xff).
EepromImage MakeEeprom(std::string const& mac, uint16_t device, size_t size, uint16_t image) {
  EepromImage eeprom;
  eeprom.bytes.assign(size, 0xff);
  for (size_t i = 0; i < 6; ++i) {
    eeprom.bytes[i] = static_cast<uint8_t>(std::stoul(mac.substr(i * 3, 2), nullptr, 16));
  }
  for (size_t word = 3; word < kEepromChecksumWords; ++word) PutWord(eeprom, word, 0);
  PutWord(eeprom, 0x03, 0x0420);  // compatibility
  PutWord(eeprom, 0x05, image);   // image version
  PutWord(eeprom, 0x08, 0x4b31);  // printed board assembly number
  PutWord(eeprom, 0x09, 0x0a07);
  PutWord(eeprom, 0x0a, 0x44c3);  // init control 1
  PutWord(eeprom, 0x0b, device);  // subsystem id
  PutWord(eeprom, 0x0c, kVendorId);
  PutWord(eeprom, 0x0d, device);
  PutWord(eeprom, 0x0e, kVendorId);
  PutWord(eeprom, 0x0f, 0x3c10);  // init control 2
  PutWord(eeprom, 0x10, 0x0080);
  PutWord(eeprom, 0x24, 0x0c13);  // LED configuration
  SealEeprom(eeprom);
  return eeprom;
}

// Load balancer setting bits, in the order of the netqueue record.
constexpr uint32_t kRxqPair = 0x1, kRxqNoFeature = 0x2, kPreemptible = 0x4, kRxqLatency = 0x8,
                   kRxDynamicLb = 0x10, kDynamicPool = 0x20, kMacLearnLb = 0x40, kRss = 0x80,
                   kLro = 0x100, kGeneveOam = 0x200, kRssLro = 0x400;
// Filter class bits: MacOnly, VlanOnly, VlanMac, Vxlan, Geneve, GenericEncap.
constexpr uint32_t kMacOnly = 0x1, kVlanOnly = 0x2, kVlanMac = 0x4, kVxlan = 0x8, kGeneve = 0x10;
// Software simulation bits.
constexpr uint32_t kSimIpv4Tso = 0x2, kSimSg = 0x4, kSimObo = 0x8, kSimVxlan = 0x10,
                   kSimIpv6Tso = 0x20, kSimIpv6TsoExt = 0x40, kSimIpv6Cso = 0x80,
                   kSimIpv6CsoExt = 0x100, kSimHighDma = 0x200, kSimSgSpan = 0x400,
                   kSimGeneve = 0x2000;

constexpr uint64_t Caps(std::initializer_list<int> bits) {
  uint64_t caps = 0;
  for (int bit : bits) caps |= uint64_t{1} << bit;
  return caps;
}

const NetqueuePluginState kDefaultBalancer = {"nqbal", "load-based",
                                              "Spreads filters over queues by load", true};

TcBytes Tc(std::initializer_list<uint8_t> bytes) {
  TcBytes tc{};
  std::copy(bytes.begin(), bytes.end(), tc.begin());
  return tc;
}

// DCB in IEEE mode: storage traffic (priority 3) in a lossless class of its
// own with 50% of the bandwidth, everything else in class 0.
DcbState IeeeDcb(std::vector<DcbAppState> apps) {
  DcbState dcb;
  dcb.supported = true;
  dcb.mode = 3;
  dcb.enabled = true;
  dcb.cap_priority_group = true;
  dcb.cap_pfc = true;
  dcb.cap_up_to_tc = true;
  dcb.cap_pg_traffic_classes = 8;
  dcb.cap_pfc_traffic_classes = 8;
  dcb.pfc_enabled = true;
  dcb.pfc_config = 0x08;
  dcb.ets_willing = 1;
  dcb.ets_capacity = 8;
  dcb.ets_cbs_supported = "No";
  dcb.ets_tx_bandwidth = Tc({50, 50});
  dcb.ets_rx_bandwidth = Tc({50, 50});
  dcb.ets_tsa = Tc({2, 2});
  dcb.ets_priority = Tc({0, 0, 0, 1});
  dcb.ets_rec_bandwidth = Tc({50, 50});
  dcb.ets_rec_tsa = Tc({2, 2});
  dcb.ets_rec_priority = Tc({0, 0, 0, 1});
  dcb.pfc_traffic_classes = 8;
  dcb.pfc_mask = 0x08;
  dcb.pfc_macsec_bypass = 0;
  dcb.pfc_delay = 0;
  dcb.apps = std::move(apps);
  return dcb;
}

PnicState GigabitCopperPort(std::string name, std::string pci, std::string mac, uint32_t phy) {
  PnicState nic;
  nic.name = std::move(name);
  nic.pci_address = pci;
  nic.pci_vendor = "Brightwater Semiconductor";
  nic.pci_device = "BW-4T Quad Port Gigabit Ethernet Controller";
  nic.driver = "bwgbe";
  nic.driver_version = "2.4.1.0-1";
  nic.firmware_version = "1.18.3, 0x80000c4a";
  nic.mac = mac;
  nic.virtual_address = mac;
  nic.mtu = 1500;
  nic.speed = 1000;
  nic.duplex = kFull;
  nic.supported_ports = {kTp};
  nic.port = kTp;
  nic.supported_link_modes = {{10, kHalf, kBaseT},
                              {10, kFull, kBaseT},
                              {100, kHalf, kBaseT},
                              {100, kFull, kBaseT},
                              {1000, kFull, kBaseT}};
  nic.advertised_link_modes = nic.supported_link_modes;
  nic.supports_auto_negotiation = true;
  nic.advertised_auto_negotiation = true;
  nic.auto_negotiation = true;
  nic.phy_address = phy;
  nic.transceiver = 0;
  nic.supports_wake_on = true;
  nic.supported_wake_on = {kPhyActivity, kUnicast, kMulticast, kBroadcast, kMagic};
  nic.wake_on = {kMagic};
  nic.supports_message_level = true;
  nic.message_level = 7;
  nic.pause = {true, true, true, true, 1, 1};
  nic.offload = {true, true, true, true, false, true, "bwgbe-hw", true, true, true};
  nic.coalesce.supported = true;
  nic.coalesce.max_microseconds = 8191;
  nic.coalesce.max_frames = 4096;
  nic.coalesce.adaptive_rx = true;
  nic.coalesce.adaptive_tx = false;
  nic.coalesce.sample_interval = 2;
  nic.coalesce.pkt_rate_low = 20000;
  nic.coalesce.pkt_rate_high = 400000;
  nic.coalesce.rx_usecs = 3;
  nic.coalesce.rx_frames = 32;
  nic.coalesce.tx_usecs = 10;
  nic.coalesce.tx_frames = 32;
  nic.coalesce.rx_usecs_low = 0;
  nic.coalesce.rx_frames_low = 1;
  nic.coalesce.tx_usecs_low = 0;
  nic.coalesce.tx_frames_low = 1;
  nic.coalesce.rx_usecs_high = 100;
  nic.coalesce.rx_frames_high = 128;
  nic.coalesce.tx_usecs_high = 125;
  nic.coalesce.tx_frames_high = 128;
  nic.ring = {true, 4096, 0, 0, 4096, 1024, 0, 0, 1024};
  nic.eeprom = MakeEeprom(mac, kGigabitDeviceId, 256, 0x1012);
  nic.eeprom_magic = uint32_t{kGigabitDeviceId} << 16 | kVendorId;
  nic.diagnostics = true;
  nic.netqueue.supported = true;
  nic.netqueue.max_tx_queues = 8;
  nic.netqueue.max_rx_queues = 8;
  nic.netqueue.tx_queues = 4;
  nic.netqueue.rx_queues = 4;
  nic.netqueue.balancer_enabled = true;
  nic.netqueue.supported_settings = kRxqPair | kRxqNoFeature | kRxDynamicLb | kDynamicPool |
                                    kMacLearnLb;
  nic.netqueue.allowed_settings = nic.netqueue.supported_settings;
  nic.netqueue.filter_classes = kMacOnly | kVlanOnly | kVlanMac;
  nic.netqueue.plugins = {kDefaultBalancer};
  nic.software_simulation.simulated = kSimObo | kSimVxlan | kSimGeneve | kSimIpv6TsoExt |
                                      kSimIpv6CsoExt;
  nic.software_simulation.required = kSimObo | kSimVxlan | kSimGeneve;
  nic.hw_cap.reported = true;
  nic.hw_cap.supported = Caps({0, 1, 2, 3, 4, 5, 6, 7, 8, 15, 20, 21, 22});
  nic.hw_cap.activated = Caps({0, 1, 2, 4, 5, 6, 7, 8, 15, 21, 22});
  return nic;
}

PnicState Sfp28Port(std::string name, std::string pci, std::string mac) {
  PnicState nic;
  nic.name = std::move(name);
  nic.pci_address = pci;
  nic.pci_vendor = "Kestrel Microsystems";
  nic.pci_device = "KM-2500 Dual Port 25GbE SFP28 Adapter";
  nic.driver = "kmnet";
  nic.driver_version = "4.3.6.0-1";
  nic.firmware_version = "226.0.145.0/pkg 226.1.107.1";
  nic.mac = mac;
  nic.virtual_address = mac;
  nic.mtu = 9000;
  nic.speed = 25000;
  nic.duplex = kFull;
  nic.supported_ports = {kFibre, kDa};
  nic.port = kDa;
  nic.supported_link_modes = {{10000, kFull, kBaseSFI},
                              {10000, kFull, kBaseSR},
                              {25000, kFull, kBaseCR1},
                              {25000, kFull, kBaseSR}};
  nic.advertised_link_modes = {{10000, kFull, kBaseSFI}, {25000, kFull, kBaseCR1}};
  nic.supports_auto_negotiation = true;
  nic.advertised_auto_negotiation = false;
  nic.auto_negotiation = false;
  nic.phy_address = 0;
  nic.transceiver = 1;
  nic.supports_wake_on = false;
  nic.supports_message_level = false;
  nic.pause = {true, false, true, true, 0, 0};
  nic.offload = {true, true, true, true, true, true, "kmnet-tpa", true, true, true};
  nic.coalesce.supported = true;
  nic.coalesce.max_microseconds = 1023;
  nic.coalesce.max_frames = 255;
  nic.coalesce.adaptive_rx = true;
  nic.coalesce.adaptive_tx = true;
  nic.coalesce.sample_interval = 1;
  nic.coalesce.pkt_rate_low = 50000;
  nic.coalesce.pkt_rate_high = 1000000;
  nic.coalesce.rx_usecs = 50;
  nic.coalesce.rx_frames = 64;
  nic.coalesce.tx_usecs = 80;
  nic.coalesce.tx_frames = 64;
  nic.coalesce.rx_usecs_low = 8;
  nic.coalesce.rx_frames_low = 4;
  nic.coalesce.tx_usecs_low = 16;
  nic.coalesce.tx_frames_low = 4;
  nic.coalesce.rx_usecs_high = 200;
  nic.coalesce.rx_frames_high = 255;
  nic.coalesce.tx_usecs_high = 250;
  nic.coalesce.tx_frames_high = 255;
  nic.ring = {true, 8192, 0, 4096, 8192, 4096, 0, 1024, 4096};
  nic.eeprom = MakeEeprom(mac, kSfp28DeviceId, 512, 0x2260);
  nic.eeprom_magic = uint32_t{kSfp28DeviceId} << 16 | kVendorId;
  nic.diagnostics = true;
  nic.netqueue.supported = true;
  nic.netqueue.max_tx_queues = 32;
  nic.netqueue.max_rx_queues = 32;
  nic.netqueue.tx_queues = 16;
  nic.netqueue.rx_queues = 16;
  nic.netqueue.balancer_enabled = true;
  nic.netqueue.supported_settings = kRxqPair | kRxqNoFeature | kPreemptible | kRxDynamicLb |
                                    kDynamicPool | kMacLearnLb | kRss | kLro | kGeneveOam |
                                    kRssLro;
  nic.netqueue.allowed_settings = nic.netqueue.supported_settings & ~kRssLro;
  nic.netqueue.filter_classes = kMacOnly | kVlanOnly | kVlanMac | kVxlan | kGeneve;
  nic.netqueue.plugins = {
      kDefaultBalancer,
      {"kmnet", "rss", "Spreads one filter's flows over an RSS queue set", true},
      {"kmnet", "lro", "Gives LRO queues to bulk receive flows", false},
  };
  nic.software_simulation.simulated = 0;
  nic.hw_cap.reported = true;
  nic.hw_cap.supported = Caps({0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                               16, 17, 18, 19, 21, 22, 23, 28, 29, 30, 31, 33, 35});
  nic.hw_cap.activated = Caps({0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13,
                               14, 15, 16, 17, 18, 21, 22, 28, 29, 31});
  nic.dcb = IeeeDcb({{"Ethertype", "0x8906", "3"}, {"TCP/UDP port", "4791", "3"}});
  return nic;
}

PnicState UsbAdapter() {
  PnicState nic;
  nic.name = "ornic4";
  nic.pseudo_descriptor = "USB-NIC:Ostrava Labs:OL-U3 USB 3.0 Gigabit Adapter";
  nic.driver = "olusb";
  nic.driver_version = "1.12-2";
  nic.firmware_version = "N/A";
  nic.mac = "d2:6e:a0:7c:00:31";
  nic.virtual_address = nic.mac;
  nic.mtu = 1500;
  nic.carrier = false;
  nic.speed = 1000;
  nic.duplex = kFull;
  nic.supported_ports = {kTp};
  nic.port = kTp;
  nic.supported_link_modes = {{100, kFull, kBaseT}, {1000, kFull, kBaseT}};
  nic.advertised_link_modes = nic.supported_link_modes;
  nic.supports_auto_negotiation = true;
  nic.advertised_auto_negotiation = true;
  nic.auto_negotiation = true;
  nic.phy_address = 3;
  nic.supports_wake_on = true;  // supported, but nothing armed
  nic.supported_wake_on = {kMagic};
  nic.supports_message_level = true;
  nic.message_level = 0;
  // Checksums only; no coalescing and fixed rings.
  nic.offload = {true, true, false, false, false, false, "olusb", true, false, false};
  nic.stats.tx_packets = 4;
  nic.stats.tx_bytes = 1312;
  nic.stats.tx_errors = 4;
  nic.stats.tx_carrier_errors = 4;
  // No netqueue, no DCB, and a driver that does not report its capabilities;
  // what the device lacks is simulated in software.
  nic.software_simulation.simulated = kSimIpv4Tso | kSimSg | kSimObo | kSimVxlan | kSimIpv6Tso |
                                      kSimIpv6TsoExt | kSimIpv6Cso | kSimIpv6CsoExt |
                                      kSimHighDma | kSimSgSpan | kSimGeneve;
  nic.software_simulation.required = nic.software_simulation.simulated;
  return nic;
}

}  // namespace

void SeedNic(HostModel& host) {
  PnicState ornic0 = GigabitCopperPort("ornic0", "0000:18:00.0", "d2:6e:a0:00:10:00", 1);
  PnicState ornic1 = GigabitCopperPort("ornic1", "0000:18:00.1", "d2:6e:a0:00:10:01", 2);
  PnicState ornic2 = Sfp28Port("ornic2", "0000:3b:00.0", "d2:6e:a0:00:25:00");
  PnicState ornic3 = Sfp28Port("ornic3", "0000:3b:00.1", "d2:6e:a0:00:25:01");
  ornic3.admin_up = false;
  // The storage port's peer sent pause frames for the lossless class; the
  // second port has no application table and DCB in CEE mode.
  ornic2.dcb.pfc_sent = Tc({0, 0, 0, 17});
  ornic2.dcb.pfc_received = Tc({0, 0, 0, 212});
  ornic3.dcb.mode = 2;
  ornic3.dcb.enabled = false;
  ornic3.dcb.pfc_enabled = false;
  ornic3.dcb.apps.clear();

  // ornic0 carries vSwitch0's traffic, ornic1 stands by and sees broadcasts.
  ornic0.stats = {9120477, 18442311, 3411872650, 22190334871, 0, 27, 0,  112,
                  183004,  420918,   6112,       9870,        0, 0,  21, 6,
                  0,       0,        0,          0,           0, 0,  0,  0};
  ornic0.vlan_stats_enabled = true;
  ornic0.vlan_stats = {{0, 18442311, 9120477}};
  ornic1.stats = {0, 421544, 0, 36102877, 0, 0, 0, 0, 601, 420918, 0, 0,
                  0, 0,      0, 0,        0, 0, 0, 0, 0,   0,      0, 0};
  // ornic2 carries jumbo-frame storage traffic; ornic3 counted until it was
  // taken down.
  ornic2.stats = {512884190,
                  498210662,
                  4102217903120,
                  3985112044889,
                  0,
                  4,
                  0,
                  1840,
                  2210,
                  96,
                  14,
                  12,
                  0,
                  1,
                  3,
                  0,
                  0,
                  1840,
                  0,
                  0,
                  0,
                  0,
                  0,
                  0};
  ornic3.stats = {88210, 90114, 7905340, 8203411, 0, 0, 0, 0, 12, 31, 4, 2,
                  0,     0,     0,       0,       0, 0, 0, 0, 0,  0,  0, 0};

  // The second 25GbE port rides on the first as its branch for VLAN 300.
  ornic2.attachments = {{"ornic3", 300}};
  // ornic2 is the host's SR-IOV physical function: four VFs, the first two
  // passed through to app-01 and repl-01.
  ornic2.sriov.enabled = true;
  ornic2.sriov.vfs = {
      {0, true, "0000:3b:02.0", 1000412,
       {4410233, 3902115871, 1204, 90112, 3310, 211840, 12, 0, 120448, 1705120993,
        3980112, 2210334871, 880, 66010, 41, 2624, 0, 3, 98004, 1309822140}},
      {1, true, "0000:3b:02.1", 1000458,
       {882104, 711209983, 40, 3120, 301, 19264, 0, 1, 0, 0,
        7701320, 11022987301, 12, 960, 9, 576, 0, 0, 512330, 7302211876}},
      {2, false, "0000:3b:02.2", 0, {}},
      {3, false, "0000:3b:02.3", 0, {}},
  };
  host.nic.pnics = {ornic0, ornic1, ornic2, ornic3, UsbAdapter()};
}

bool EepromChecksumValid(EepromImage const& image) {
  if (image.bytes.size() < kEepromChecksumWords * 2) return false;
  uint16_t sum = 0;
  for (size_t word = 0; word < kEepromChecksumWords; ++word) {
    sum = static_cast<uint16_t>(sum + (image.bytes[word * 2] | image.bytes[word * 2 + 1] << 8));
  }
  return sum == kEepromChecksumSum;
}

void SealEeprom(EepromImage& image) {
  if (image.bytes.size() < kEepromChecksumWords * 2) return;
  uint16_t sum = 0;
  for (size_t word = 0; word + 1 < kEepromChecksumWords; ++word) {
    sum = static_cast<uint16_t>(sum + (image.bytes[word * 2] | image.bytes[word * 2 + 1] << 8));
  }
  uint16_t checksum = static_cast<uint16_t>(kEepromChecksumSum - sum);
  size_t last = (kEepromChecksumWords - 1) * 2;
  image.bytes[last] = static_cast<uint8_t>(checksum & 0xff);
  image.bytes[last + 1] = static_cast<uint8_t>(checksum >> 8);
}

PnicState* FindPnic(NicArea& area, std::string const& name) {
  for (size_t i = 0; i < area.pnics.size(); ++i) {
    if (area.pnics.NameIs(i, name)) return &area.pnics[i];
  }
  return nullptr;
}

PnicState const* FindPnic(NicArea const& area, std::string const& name) {
  return FindPnic(const_cast<NicArea&>(area), name);
}

}  // namespace OrvkCtl::Sim
