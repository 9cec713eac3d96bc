// The policy value types of switches and port groups.
#include "hostctl/policy.h"

#include <utility>

namespace HostCtl::Network {

LinkCriteriaSelectionPolicy::LinkCriteriaSelectionPolicy() = default;
LinkCriteriaSelectionPolicy::~LinkCriteriaSelectionPolicy() = default;

void LinkCriteriaSelectionPolicy::SetBeacon(bool linkState) {
  setMask |= BEACON_BIT;
  if (linkState) {
    valueBits |= BEACON_BIT;
  } else {
    valueBits &= ~BEACON_BIT;
  }
}

bool LinkCriteriaSelectionPolicy::UsesBeaconProbing() const {
  return (setMask & BEACON_BIT) != 0 && (valueBits & BEACON_BIT) == 0;
}

NicTeamingPolicy::NicTeamingPolicy() = default;
NicTeamingPolicy::~NicTeamingPolicy() = default;

NicTeamingPolicy NicTeamingPolicy::GetDefaultPolicy() {
  NicTeamingPolicy policy;
  policy.SetTeamingPolicy(TEAM_POLICY_PORT_ID);
  LinkCriteriaSelectionPolicy criteria;
  criteria.SetBeacon(true);
  policy.SetLinkCriteria(criteria);
  policy.SetNotifySwitchOnFailure(true);
  policy.SetRollingRestoration(false);
  return policy;
}

void NicTeamingPolicy::SetTeamingPolicy(TeamPolicyType policy) {
  teamPolicy = policy;
  setMask |= TEAM_POLICY_BIT;
}

void NicTeamingPolicy::SetLinkCriteria(LinkCriteriaSelectionPolicy criteria) {
  linkCriteria = std::move(criteria);
  setMask |= LINK_CRITERIA_BIT;
}

void NicTeamingPolicy::SetNotifySwitchOnFailure(bool notify) {
  notifySwitchOnFailure = notify;
  setMask |= NOTIFY_SWITCH_BIT;
}

void NicTeamingPolicy::SetRollingRestoration(bool rolling) {
  rollingRestoration = rolling;
  setMask |= ROLLING_RESTORATION_BIT;
}

void NicTeamingPolicy::SetUplinkOrder(std::vector<std::string> order) {
  uplinkOrder = std::move(order);
  setMask |= UPLINK_ORDER_BIT;
}

PortSecurityPolicy::PortSecurityPolicy() = default;
PortSecurityPolicy::~PortSecurityPolicy() = default;

PortSecurityPolicy PortSecurityPolicy::GetDefaultPolicy() {
  PortSecurityPolicy policy;
  policy.SetAllowPromiscuous(false);
  policy.SetAllowMacAddressChange(false);
  policy.SetAllowForgedTransmits(false);
  return policy;
}

void PortSecurityPolicy::SetAllowPromiscuous(bool allow) {
  allowPromiscuous = allow;
  setMask |= PROMISCUOUS_BIT;
}

void PortSecurityPolicy::SetAllowMacAddressChange(bool allow) {
  allowMacAddressChange = allow;
  setMask |= MAC_CHANGE_BIT;
}

void PortSecurityPolicy::SetAllowForgedTransmits(bool allow) {
  allowForgedTransmits = allow;
  setMask |= FORGED_TRANSMITS_BIT;
}

ShapingPolicy ShapingPolicy::GetDefaultPolicy() {
  ShapingPolicy policy;
  policy.SetEnabled(false);
  return policy;
}

void ShapingPolicy::SetEnabled(bool on) {
  enabled = on;
  setMask |= ENABLED_BIT;
}

void ShapingPolicy::SetAverageBps(unsigned long bps) {
  averageBps = bps;
  setMask |= AVERAGE_BIT;
}

void ShapingPolicy::SetPeakBps(unsigned long bps) {
  peakBps = bps;
  setMask |= PEAK_BIT;
}

void ShapingPolicy::SetBurstSize(unsigned long bytes) {
  burstSize = bytes;
  setMask |= BURST_BIT;
}

NicCapabilities::NicCapabilities() = default;
NicCapabilities::~NicCapabilities() = default;

NicCapabilities NicCapabilities::GetDefaultPolicy() {
  NicCapabilities capabilities;
  capabilities.checksumOffload = true;
  capabilities.segmentationOffload = true;
  capabilities.vlanTagging = true;
  capabilities.setMask = CHECKSUM_BIT | SEGMENTATION_BIT | VLAN_TAGGING_BIT;
  return capabilities;
}

}  // namespace HostCtl::Network
