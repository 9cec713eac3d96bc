// Policy values of standard switches and port groups: NIC teaming with its
// failure detection, port security, and traffic shaping.
//
// These are plain values: callers get them by value from a switch or port
// group, change their copy through the setters and hand a copy back. Each
// carries a set mask with one bit per field: a set bit means the field is set
// on that very object (for a port group: overrides its switch). Every Set...
// operation sets the field and its bit; UnsetAll() clears the whole mask and
// leaves the field values as they are.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace HostCtl::Network {

// How a team spreads traffic over its active uplinks.
enum TeamPolicyType : int {
  TEAM_POLICY_UNSET = 0,
  TEAM_POLICY_IP_HASH = 1,
  TEAM_POLICY_SOURCE_MAC = 2,
  TEAM_POLICY_PORT_ID = 3,
  TEAM_POLICY_EXPLICIT_FAILOVER = 4,
};

// How a team detects a failed uplink. Only the beacon bit is interpreted;
// the other fields are carried along unchanged.
class LinkCriteriaSelectionPolicy {
 public:
  static constexpr uint32_t BEACON_BIT = 0x10;

  LinkCriteriaSelectionPolicy();
  virtual ~LinkCriteriaSelectionPolicy();

  // Sets the beacon bit in setMask; sets it in valueBits when `linkState` is
  // true (detection by link state) and clears it for detection by beaconing.
  void SetBeacon(bool linkState);
  // True exactly when the beacon bit is set in setMask and clear in
  // valueBits; a default policy reads as link state detection.
  bool UsesBeaconProbing() const;

  uint32_t setMask = 0;
  uint32_t valueBits = 0;
  uint32_t reserved0 = 0;
  uint32_t reserved1 = 0;
  uint32_t reserved2 = 0;
  bool reservedFlag = false;
};

class NicTeamingPolicy {
 public:
  // Bits of setMask. Bit 1 belongs to `teamFlag`.
  static constexpr uint32_t TEAM_POLICY_BIT = 1u << 0;
  static constexpr uint32_t TEAM_FLAG_BIT = 1u << 1;
  static constexpr uint32_t NOTIFY_SWITCH_BIT = 1u << 2;
  static constexpr uint32_t LINK_CRITERIA_BIT = 1u << 3;
  static constexpr uint32_t UPLINK_ORDER_BIT = 1u << 4;
  static constexpr uint32_t ROLLING_RESTORATION_BIT = 1u << 5;

  NicTeamingPolicy();
  virtual ~NicTeamingPolicy();

  // The policy of a new switch: every field but the uplink order set;
  // originating port balancing, link state detection, switches notified,
  // failback on. A switch without an uplink order uses all its connected
  // uplinks as active ones.
  static NicTeamingPolicy GetDefaultPolicy();

  void UnsetAll() { setMask = 0; }
  void SetTeamingPolicy(TeamPolicyType policy);
  void SetLinkCriteria(LinkCriteriaSelectionPolicy criteria);
  void SetNotifySwitchOnFailure(bool notify);
  void SetRollingRestoration(bool rolling);
  void SetUplinkOrder(std::vector<std::string> order);
  // Sets how many entries of uplinkOrder, from the front, are active. Goes
  // with the uplink order and its bit; touches no bit itself.
  void SetMaxActiveUplinks(int count) { maxActiveUplinks = count; }

  uint32_t setMask = 0;
  TeamPolicyType teamPolicy = TEAM_POLICY_UNSET;
  bool teamFlag = false;
  bool notifySwitchOnFailure = false;
  // True: an uplink that comes back into service is not taken back at once.
  bool rollingRestoration = false;
  LinkCriteriaSelectionPolicy linkCriteria;
  // All uplinks in use, in failover order: the active ones, then standby.
  std::vector<std::string> uplinkOrder;
  int maxActiveUplinks = 0;
};

class PortSecurityPolicy {
 public:
  static constexpr uint32_t PROMISCUOUS_BIT = 1u << 0;
  static constexpr uint32_t MAC_CHANGE_BIT = 1u << 1;
  static constexpr uint32_t FORGED_TRANSMITS_BIT = 1u << 2;

  PortSecurityPolicy();
  virtual ~PortSecurityPolicy();

  // The policy of a new switch: every field set, all three refused.
  static PortSecurityPolicy GetDefaultPolicy();

  void UnsetAll() { setMask = 0; }
  void SetAllowPromiscuous(bool allow);
  void SetAllowMacAddressChange(bool allow);
  void SetAllowForgedTransmits(bool allow);

  uint32_t setMask = 0;
  bool allowPromiscuous = false;
  bool allowMacAddressChange = false;
  bool allowForgedTransmits = false;
};

// Bandwidths in bits per second, burst size in bytes.
class ShapingPolicy {
 public:
  static constexpr uint32_t PEAK_BIT = 1u << 0;
  static constexpr uint32_t AVERAGE_BIT = 1u << 1;
  static constexpr uint32_t BURST_BIT = 1u << 2;
  static constexpr uint32_t ENABLED_BIT = 1u << 3;

  // The policy of a new switch: shaping set to off, no bandwidth set.
  static ShapingPolicy GetDefaultPolicy();

  void UnsetAll() { setMask = 0; }
  void SetEnabled(bool on);
  void SetAverageBps(unsigned long bps);
  void SetPeakBps(unsigned long bps);
  void SetBurstSize(unsigned long bytes);

  bool enabled = false;
  uint64_t peakBps = 0;
  uint64_t averageBps = 0;
  uint64_t burstSize = 0;
  uint32_t setMask = 0;
};

// Offload capabilities a switch offers its ports.
class NicCapabilities {
 public:
  static constexpr uint32_t CHECKSUM_BIT = 1u << 0;
  static constexpr uint32_t SEGMENTATION_BIT = 1u << 1;
  static constexpr uint32_t VLAN_TAGGING_BIT = 1u << 2;

  NicCapabilities();
  virtual ~NicCapabilities();

  // The capabilities of a new switch: all offered.
  static NicCapabilities GetDefaultPolicy();

  uint32_t setMask = 0;
  bool checksumOffload = false;
  bool segmentationOffload = false;
  bool vlanTagging = false;
};

}  // namespace HostCtl::Network
