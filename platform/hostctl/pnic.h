// Physical NICs (uplinks) of the host: the records that describe one, and the
// service object that reads and changes it.
//
// Records are owned by the caller, who hands them in zeroed (as their default
// constructors leave them); the library fills them in place.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace OrvkCtl::Sim {
struct PnicState;
}

namespace HostCtl::Network {

class Port;

// The connector of an uplink. Other values may come from a driver and are
// carried as they come.
enum PortType : uint32_t {
  PORT_TP = 0,
  PORT_AUI = 1,
  PORT_BNC = 2,
  PORT_MII = 3,
  PORT_FIBRE = 4,
  PORT_DA = 5,
  PORT_BACKPLANE = 6,
};

// The duplex of a link, wherever one occurs.
enum Duplex : uint32_t { DUPLEX_AUTO = 0, DUPLEX_FULL = 1, DUPLEX_HALF = 2 };

// What may wake the host through an uplink. Other values are carried as they
// come.
enum class WakeOnMode : uint32_t {
  PhyActivity = 0,
  UnicastMessages = 1,
  MulticastMessages = 2,
  BroadcastMessages = 3,
  Arp = 4,
  MagicPacket = 5,
  SecureOnPassword = 6,
  Unsupported = 7,
  Disabled = 8,
};

// One speed, duplex and medium of a link.
struct PnicLinkMode {
  int32_t speed = 0;      // Mbps; 0 stands for automatic
  uint32_t duplex = 0;    // a Duplex
  int32_t mediaType = 0;  // 0 none, 1 unknown, 2 BaseT, 3 BaseX, ... 38 BaseCR2
};

// The configuration record of one uplink, read by Pnic::GetInfo. The *Changed
// flags belong to writers: GetInfo leaves them as they were handed in.
struct PnicInfo {
  std::vector<uint32_t> supportedPorts;  // PortType values
  std::vector<PnicLinkMode> supportedLinkModes;
  bool supportsAutoNegotiation = false;
  std::vector<PnicLinkMode> advertisedLinkModes;
  bool advertisedAutoNegotiation = false;
  bool spareChanged1 = false;
  bool portChanged = false;
  bool phyAddressChanged = false;
  bool virtualAddressChanged = false;
  bool transceiverChanged = false;
  bool spareChanged2 = false;
  uint32_t port = 0;  // the PortType in use
  uint32_t phyAddress = 0;
  uint32_t transceiver = 0;  // 0 internal, 1 external
  bool autoNegotiation = false;
  bool wakeOnChanged = false;
  bool supportsWakeOn = false;
  std::vector<WakeOnMode> supportedWakeOnModes;
  std::vector<WakeOnMode> wakeOnModes;  // the modes now armed
  bool messageLevelChanged = false;
  bool supportsMessageLevel = false;
  uint32_t messageLevel = 0;
  std::string virtualAddress;
  std::string linkStatus;  // "Up" or "Down"
};

// The driver behind an uplink.
struct PnicDriverInfo {
  std::string driver;
  std::string version;
  std::string firmwareVersion;
  std::string busInfo;
};

// Flow control of an uplink.
struct PnicPauseParams {
  bool supported = false;
  bool autoNegotiation = false;
  bool rx = false;
  bool tx = false;
  // Outcome of auto negotiation: 0 not available, 1 on, any other value off.
  uint32_t rxResolution = 0;
  uint32_t txResolution = 0;
};

// Offloads of an uplink. On a write, `mask` selects the settings to apply;
// the fields it does not select are left as the device has them.
struct PnicOffloadParams {
  enum : uint8_t {
    MASK_RX_CHECKSUM = 1,
    MASK_TX_CHECKSUM = 2,
    MASK_SCATTER_GATHER = 4,
    MASK_TCP_SEGMENTATION = 8,
  };
  uint8_t mask = 0;
  bool rxChecksum = false;
  bool txChecksum = false;
  bool scatterGather = false;
  bool tcpSegmentation = false;
  bool largeReceive = false;    // read only
  bool genericReceive = false;  // read only
  std::string offloadEngine;    // read only: the driver's word for its engine
};

// Interrupt coalescing of an uplink. A write hands back the whole record.
struct PnicCoalesceParams {
  bool adaptiveRx = false;
  bool adaptiveTx = false;
  uint32_t statsBlockMicroseconds = 0;
  uint32_t sampleInterval = 0;  // seconds between packet rate samples
  uint32_t lowPacketRate = 0;   // packets per second
  uint32_t highPacketRate = 0;  // packets per second
  uint32_t rxMicroseconds = 0;
  uint32_t rxMaxFrames = 0;
  uint32_t rxMicrosecondsIrq = 0;  // while an interrupt is served
  uint32_t rxMaxFramesIrq = 0;
  uint32_t txMicroseconds = 0;
  uint32_t txMaxFrames = 0;
  uint32_t txMicrosecondsIrq = 0;
  uint32_t txMaxFramesIrq = 0;
  uint32_t rxMicrosecondsLow = 0;  // below the low packet rate
  uint32_t rxMaxFramesLow = 0;
  uint32_t txMicrosecondsLow = 0;
  uint32_t txMaxFramesLow = 0;
  uint32_t rxMicrosecondsHigh = 0;  // above the high packet rate
  uint32_t rxMaxFramesHigh = 0;
  uint32_t txMicrosecondsHigh = 0;
  uint32_t txMaxFramesHigh = 0;
};

// Ring sizes of an uplink, in entries. On a write, `mask` selects the rings
// to resize.
struct PnicRingParams {
  enum : uint8_t { MASK_RX = 1, MASK_RX_MINI = 2, MASK_RX_JUMBO = 4, MASK_TX = 8 };
  uint8_t mask = 0;
  uint32_t rx = 0;
  uint32_t rxMini = 0;
  uint32_t rxJumbo = 0;
  uint32_t tx = 0;
};

// Packet and error counters of an uplink since the driver was loaded.
struct PnicStats {
  uint64_t packetsSent = 0;
  uint64_t packetsReceived = 0;
  uint64_t bytesSent = 0;
  uint64_t bytesReceived = 0;
  uint64_t transmitErrors = 0;
  uint64_t receiveErrors = 0;
  uint64_t transmitDropped = 0;
  uint64_t receiveDropped = 0;
  uint64_t multicastReceived = 0;
  uint64_t broadcastReceived = 0;
  uint64_t multicastSent = 0;
  uint64_t broadcastSent = 0;
  uint64_t receiveLengthErrors = 0;
  uint64_t receiveOverErrors = 0;
  uint64_t receiveCrcErrors = 0;
  uint64_t receiveFrameErrors = 0;
  uint64_t receiveFifoErrors = 0;
  uint64_t receiveMissedErrors = 0;
  uint64_t transmitAbortedErrors = 0;
  uint64_t transmitFifoErrors = 0;
  uint64_t transmitCarrierErrors = 0;
  uint64_t transmitHeartbeatErrors = 0;
  uint64_t transmitWindowErrors = 0;
  uint64_t collisions = 0;
  uint64_t receiveCompressed = 0;
  uint64_t transmitCompressed = 0;
};

// What a device's self test found: `failed` when any test failed, and one
// line per test in the order they ran.
struct PnicSelfTestResult {
  bool failed = false;
  std::vector<std::string> info;
};

// One branch uplink attached to a trunk uplink, tagged with its VLAN.
struct PnicAttachment {
  std::string branch;
  uint16_t vlanId = 0;
};

// One netqueue load balancer plugin of a device.
struct PnicNetqueuePluginInfo {
  std::string moduleName;
  std::string pluginName;
  std::string description;
};

// Netqueue state of an uplink: queue counts, the load balancer and its
// settings, plugins and filter classes. On a write the record starts zeroed:
// `settingsMask` selects the load balancer settings whose `allowed` bool is
// applied, and each apply* bool selects one more part to apply.
struct PnicNetqueueInfo {
  // Load balancer settings, in the order of `allowed` and `supported`.
  enum : uint32_t {
    SETTING_RXQ_PAIR = 0x1,
    SETTING_RXQ_NO_FEATURE = 0x2,
    SETTING_PREEMPTIBLE_Q = 0x4,
    SETTING_RXQ_LATENCY = 0x8,
    SETTING_RX_DYNAMIC_LB = 0x10,
    SETTING_DYNAMIC_Q_POOL = 0x20,
    SETTING_MAC_LEARN_LB = 0x40,
    SETTING_RSS = 0x80,
    SETTING_LRO = 0x100,
    SETTING_GENEVE_OAM = 0x200,
    SETTING_RSS_LRO = 0x400,
  };
  static constexpr int kSettingCount = 11;
  // Filter classes: MacOnly, VlanOnly, VlanMac, Vxlan, Geneve, GenericEncap.
  static constexpr int kFilterClassCount = 6;

  uint32_t settingsMask = 0;
  uint32_t txQueueCount = 0;
  uint32_t rxQueueCount = 0;
  bool applyTxQueueCount = false;
  bool applyRxQueueCount = false;
  bool applyBalancerState = false;
  bool applyPluginState = false;
  bool balancerEnabled = false;
  // On a write: the state to give the one plugin named in activePlugins.
  bool pluginEnabled = false;
  bool allowed[kSettingCount] = {};
  bool supported[kSettingCount] = {};
  bool filterClasses[kFilterClassCount] = {};
  std::vector<PnicNetqueuePluginInfo> availablePlugins;
  // The plugins in use; on a write, the one plugin to change.
  std::vector<PnicNetqueuePluginInfo> activePlugins;
};

// Offload functions the host simulates in software for an uplink. On a write
// `mask` selects the bools to apply. Geneve offload came last to the record:
// its bool and its mask bit are the last ones.
struct PnicSoftwareSimulation {
  enum : uint32_t {
    MASK_IPV4_CSO = 0x1,
    MASK_IPV4_TSO = 0x2,
    MASK_SG = 0x4,
    MASK_OBO = 0x8,
    MASK_VXLAN_ENCAP = 0x10,
    MASK_IPV6_TSO = 0x20,
    MASK_IPV6_TSO_EXT = 0x40,
    MASK_IPV6_CSO = 0x80,
    MASK_IPV6_CSO_EXT = 0x100,
    MASK_HIGH_DMA = 0x200,
    MASK_SG_SPAN_PAGES = 0x400,
    MASK_TAGGING = 0x800,
    MASK_UNTAGGING = 0x1000,
    MASK_GENEVE_OFFLOAD = 0x2000,
  };
  uint32_t mask = 0;
  bool ipv4Cso = false;
  bool ipv4Tso = false;
  bool scatterGather = false;
  bool offsetBasedOffload = false;
  bool vxlanEncap = false;
  bool ipv6Tso = false;
  bool ipv6TsoExt = false;
  bool ipv6Cso = false;
  bool ipv6CsoExt = false;
  bool highDma = false;
  bool scatterGatherSpanPages = false;
  bool vlanTagging = false;
  bool vlanUntagging = false;
  bool geneveOffload = false;
};

// Hardware capability bits of an uplink's device; PnicImpl::GetHwCapName
// names each bit.
struct PnicHwCapabilities {
  uint64_t supported = 0;
  uint64_t activated = 0;
};

// The PCI function of an uplink, as the host read it when the object was
// made. Each accessor throws Lib::HostCtlException when the host fails.
class PciDevice : public virtual Lib::HostCtlObject {
 public:
  PciDevice(std::string address, std::string vendorName, std::string deviceName);
  ~PciDevice() override;

  // "0000:18:00.0": domain, bus, device and function.
  virtual std::string GetAddress() const;
  virtual std::string GetVendorName() const;
  virtual std::string GetDeviceName() const;

 private:
  std::string address_;
  std::string vendorName_;
  std::string deviceName_;
};

// One physical uplink. Every operation throws Lib::HostCtlException when the
// host fails or no longer has the device.
class Pnic : public virtual Lib::HostCtlObject {
 public:
  ~Pnic() override;

  virtual std::string GetName() = 0;
  // The device's PCI function, owned by the caller; null for a device without
  // one (USB, ACPI), which GetPseudoDescriptor describes instead.
  virtual std::unique_ptr<PciDevice> GetPciDevice() = 0;
  // "<kind>:<vendor>:<device>" for a device without PCI function, e.g.
  // "USB-NIC:Acme:Net100"; empty for a PCI device.
  virtual std::string GetPseudoDescriptor() = 0;
  virtual std::string GetDriverName() = 0;
  virtual MacAddress GetMacAddress() = 0;
  virtual int32_t GetMtu() = 0;
  // Negotiated speed in Mbps; 0 while the link is down.
  virtual uint32_t GetSpeed() = 0;
  // Negotiated Duplex; DUPLEX_AUTO while the link is down.
  virtual uint32_t GetDuplex() = 0;
  virtual bool IsAdminUp() = 0;
  // Whether the device detects a link.
  virtual bool IsLinkUp() = 0;
  // Whether the uplink reports its link as up to the switches above it.
  virtual bool IsLinkStatusUp() = 0;
  // Brings the device up (true) or down (false). Setting the state it is in
  // changes nothing.
  virtual void SetAdminUp(bool up) = 0;
  virtual void GetInfo(PnicInfo& info) = 0;
  // Applies the fields of `info` whose *Changed flag is set. Refuses a port
  // the device does not have, a PHY address beyond 31, a virtual address
  // that is not a unicast MAC address, and wake-on modes or a message level
  // the device does not support; nothing is applied then.
  virtual void SetInfo(PnicInfo const& info) = 0;
  // Speed 0 with DUPLEX_AUTO turns auto negotiation on; any other pair forces
  // that speed (Mbps) and Duplex and turns it off. Refuses a pair that is not
  // among the device's supported link modes, and auto negotiation on a device
  // without it.
  virtual void SetSpeedAndDuplex(uint32_t speed, int32_t duplex) = 0;
  virtual void GetPauseParams(PnicPauseParams& params) = 0;
  // Applies auto negotiation, RX and TX; the rest of the record is ignored.
  // Refuses a device without pause support, and pause auto negotiation while
  // the link does not negotiate.
  virtual void SetPauseParams(PnicPauseParams& params) = 0;
  virtual void GetDriverInfo(PnicDriverInfo& info) = 0;
  // Asks the driver to negotiate the link again. Throws if the device is
  // down or does not use auto negotiation.
  virtual void RestartNegotiation() = 0;
  virtual void GetOffloadParams(PnicOffloadParams& params) = 0;
  // Applies what `params.mask` selects. Refuses to turn on an offload the
  // device does not have.
  virtual void SetOffloadParams(PnicOffloadParams& params) = 0;
  // Throws for a device that cannot coalesce interrupts.
  virtual void GetCoalesceParams(PnicCoalesceParams& params) = 0;
  // Replaces the whole record. Refuses microseconds or frame counts beyond
  // the device's maximums, a sample interval outside 1 to 3600 seconds, and a
  // low packet rate above the high one.
  virtual void SetCoalesceParams(PnicCoalesceParams& params) = 0;
  // Fills `preset` with the largest ring sizes of the device and `current`
  // with those in use. Throws for a device without configurable rings.
  virtual void GetRingParams(PnicRingParams& preset, PnicRingParams& current) = 0;
  // Resizes the rings that `params.mask` selects. Refuses a size of 0, one
  // above the preset maximum, and a ring the device does not have.
  virtual void SetRingParams(PnicRingParams& params) = 0;
  virtual void GetPnicStats(PnicStats& stats) = 0;

  // Diagnostics. Each throws for a device whose driver offers no such access.
  // Appends the device's registers, as 32-bit values, to `values`.
  virtual void GetRegisterDump(std::vector<uint32_t>& values) = 0;
  // Appends `length` bytes of the EEPROM from `offset` to `bytes`; length 0
  // reads from `offset` to the end. Refuses a range beyond the EEPROM.
  virtual void GetEepromDump(std::vector<unsigned char>& bytes, uint32_t length,
                             uint32_t offset) = 0;
  // Writes the double word `value` (little endian) at byte `offset`. Refuses
  // a magic key that is not the device's and a range beyond the EEPROM.
  virtual void SetEepromValue(uint32_t magic, uint32_t offset, uint32_t value) = 0;
  // Writes the raw image in the file `file` from offset 0. Refuses a wrong
  // magic key, a file that cannot be read, an empty one and one larger than
  // the EEPROM; nothing is written then.
  virtual void SetEepromFile(uint32_t magic, std::string const& file) = 0;
  // Runs the device's tests; `online` runs only those that leave traffic
  // alone. A failed test is reported in `result`, not thrown.
  virtual void RunSelfTest(PnicSelfTestResult& result, bool online) = 0;

  // Attachments of branch uplinks to this uplink as their trunk.
  // Refuses an unknown branch, the trunk itself, a branch attached already
  // (here or elsewhere), a branch that is a trunk, a trunk that is a branch,
  // a VLAN in use on this trunk and a VLAN beyond PortGroup::MAX_VLAN_ID - 1.
  virtual void AddAttachment(std::string const& branch, uint16_t vlanId) = 0;
  // Refuses a branch that is not attached to this trunk.
  virtual void RemoveAttachment(std::string const& branch) = 0;
  // In the order they were attached.
  virtual std::vector<PnicAttachment> GetAttachments() = 0;
  // Throws for a device without netqueue.
  virtual void GetNetqueueInfo(PnicNetqueueInfo& info) = 0;
  // Applies what the mask and the apply bools select, all or nothing.
  // Refuses a device without netqueue, allowing a setting the device does not
  // support, a queue count outside 1 to the device's maximum, and a plugin
  // the device does not have.
  virtual void SetNetqueueInfo(PnicNetqueueInfo& info) = 0;
  virtual void GetSoftwareSimulation(PnicSoftwareSimulation& settings) = 0;
  // Applies the bools that `settings.mask` selects. Refuses to stop
  // simulating a function the device lacks in hardware.
  virtual void SetSoftwareSimulation(PnicSoftwareSimulation& settings) = 0;
  // Throws for a device whose driver does not report its capabilities.
  virtual void GetHwCapabilities(PnicHwCapabilities& caps) = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// One physical uplink by name. Making the object reads nothing; the first
// question reads the device and later ones answer from that copy until a
// change through this object, or MarkStale(), makes it read again. A name the
// host does not know throws "Physical NIC <name> not found" at that point.
class PnicImpl : public virtual HostCtl::Network::Pnic, public virtual Lib::OrvkCtlObject {
 public:
  explicit PnicImpl(std::string const& name);
  ~PnicImpl() override;
  void Refresh() override;

  // True when the host has a physical NIC of that name. Throws
  // Lib::HostCtlException when the host cannot be read.
  static bool IsValidPnic(std::string const& name);

  // Answers without reading the host.
  std::string GetName() override;
  std::unique_ptr<HostCtl::Network::PciDevice> GetPciDevice() override;
  std::string GetPseudoDescriptor() override;
  std::string GetDriverName() override;
  HostCtl::Network::MacAddress GetMacAddress() override;
  int32_t GetMtu() override;
  uint32_t GetSpeed() override;
  uint32_t GetDuplex() override;
  bool IsAdminUp() override;
  bool IsLinkUp() override;
  bool IsLinkStatusUp() override;
  void SetAdminUp(bool up) override;
  void GetInfo(HostCtl::Network::PnicInfo& info) override;
  void SetInfo(HostCtl::Network::PnicInfo const& info) override;
  void SetSpeedAndDuplex(uint32_t speed, int32_t duplex) override;
  void GetPauseParams(HostCtl::Network::PnicPauseParams& params) override;
  void SetPauseParams(HostCtl::Network::PnicPauseParams& params) override;
  void GetDriverInfo(HostCtl::Network::PnicDriverInfo& info) override;
  void RestartNegotiation() override;
  void GetOffloadParams(HostCtl::Network::PnicOffloadParams& params) override;
  void SetOffloadParams(HostCtl::Network::PnicOffloadParams& params) override;
  void GetCoalesceParams(HostCtl::Network::PnicCoalesceParams& params) override;
  void SetCoalesceParams(HostCtl::Network::PnicCoalesceParams& params) override;
  void GetRingParams(HostCtl::Network::PnicRingParams& preset,
                     HostCtl::Network::PnicRingParams& current) override;
  void SetRingParams(HostCtl::Network::PnicRingParams& params) override;
  void GetPnicStats(HostCtl::Network::PnicStats& stats) override;
  void GetRegisterDump(std::vector<uint32_t>& values) override;
  void GetEepromDump(std::vector<unsigned char>& bytes, uint32_t length, uint32_t offset) override;
  void SetEepromValue(uint32_t magic, uint32_t offset, uint32_t value) override;
  void SetEepromFile(uint32_t magic, std::string const& file) override;
  void RunSelfTest(HostCtl::Network::PnicSelfTestResult& result, bool online) override;
  void AddAttachment(std::string const& branch, uint16_t vlanId) override;
  void RemoveAttachment(std::string const& branch) override;
  std::vector<HostCtl::Network::PnicAttachment> GetAttachments() override;
  // The switch port the NIC is an uplink of, owned by the caller. Throws
  // HostCtlException when the NIC is on no switch.
  std::unique_ptr<HostCtl::Network::Port> GetPort();
  void GetNetqueueInfo(HostCtl::Network::PnicNetqueueInfo& info) override;
  void SetNetqueueInfo(HostCtl::Network::PnicNetqueueInfo& info) override;
  void GetSoftwareSimulation(HostCtl::Network::PnicSoftwareSimulation& settings) override;
  void SetSoftwareSimulation(HostCtl::Network::PnicSoftwareSimulation& settings) override;
  void GetHwCapabilities(HostCtl::Network::PnicHwCapabilities& caps) override;
  // The name of hardware capability bit `bit`; bits without a name of their
  // own read "CAP_BIT_<n>".
  static std::string GetHwCapName(uint8_t bit);

 private:
  Sim::PnicState const& Cached();
  // Applies `change` to this NIC on the host; the cache is dropped after.
  void Change(std::function<void(Sim::PnicState&)> const& change);

  std::string name_;
  std::unique_ptr<Sim::PnicState> cached_;
};

}  // namespace OrvkCtl::Network
