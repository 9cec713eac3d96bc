#include "vswitch_policy.h"

#include <algorithm>
#include <set>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::LinkCriteriaSelectionPolicy;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using HostCtl::Network::TeamPolicyType;

NicTeamingPolicy ToPolicy(TeamingPolicyState const& state) {
  NicTeamingPolicy policy;
  policy.setMask = state.set_mask;
  policy.teamPolicy = static_cast<TeamPolicyType>(state.team_policy);
  policy.teamFlag = state.team_flag;
  policy.notifySwitchOnFailure = state.notify_switch_on_failure;
  policy.rollingRestoration = state.rolling_restoration;
  policy.linkCriteria.setMask = state.link_set_mask;
  policy.linkCriteria.valueBits = state.link_value_bits;
  policy.uplinkOrder = state.uplink_order;
  policy.maxActiveUplinks = state.max_active_uplinks;
  return policy;
}

PortSecurityPolicy ToPolicy(SecurityPolicyState const& state) {
  PortSecurityPolicy policy;
  policy.setMask = state.set_mask;
  policy.allowPromiscuous = state.allow_promiscuous;
  policy.allowMacAddressChange = state.allow_mac_change;
  policy.allowForgedTransmits = state.allow_forged_transmits;
  return policy;
}

ShapingPolicy ToPolicy(ShapingPolicyState const& state) {
  ShapingPolicy policy;
  policy.setMask = state.set_mask;
  policy.enabled = state.enabled;
  policy.peakBps = state.peak_bps;
  policy.averageBps = state.average_bps;
  policy.burstSize = state.burst_size;
  return policy;
}

TeamingPolicyState ToState(NicTeamingPolicy const& policy) {
  TeamingPolicyState state;
  state.set_mask = policy.setMask;
  state.team_policy = policy.teamPolicy;
  state.team_flag = policy.teamFlag;
  state.notify_switch_on_failure = policy.notifySwitchOnFailure;
  state.rolling_restoration = policy.rollingRestoration;
  state.link_set_mask = policy.linkCriteria.setMask;
  state.link_value_bits = policy.linkCriteria.valueBits;
  state.uplink_order = policy.uplinkOrder;
  state.max_active_uplinks = policy.maxActiveUplinks;
  return state;
}

SecurityPolicyState ToState(PortSecurityPolicy const& policy) {
  return {policy.setMask, policy.allowPromiscuous, policy.allowMacAddressChange,
          policy.allowForgedTransmits};
}

ShapingPolicyState ToState(ShapingPolicy const& policy) {
  return {policy.setMask, policy.enabled, policy.peakBps, policy.averageBps, policy.burstSize};
}

NicTeamingPolicy Overlay(NicTeamingPolicy base, NicTeamingPolicy const& top) {
  uint32_t mask = top.setMask;
  if (mask & NicTeamingPolicy::TEAM_POLICY_BIT) base.teamPolicy = top.teamPolicy;
  if (mask & NicTeamingPolicy::TEAM_FLAG_BIT) base.teamFlag = top.teamFlag;
  if (mask & NicTeamingPolicy::NOTIFY_SWITCH_BIT) {
    base.notifySwitchOnFailure = top.notifySwitchOnFailure;
  }
  if (mask & NicTeamingPolicy::LINK_CRITERIA_BIT) base.linkCriteria = top.linkCriteria;
  if (mask & NicTeamingPolicy::UPLINK_ORDER_BIT) {
    base.uplinkOrder = top.uplinkOrder;
    base.maxActiveUplinks = top.maxActiveUplinks;
  }
  if (mask & NicTeamingPolicy::ROLLING_RESTORATION_BIT) {
    base.rollingRestoration = top.rollingRestoration;
  }
  base.setMask |= mask;
  return base;
}

PortSecurityPolicy Overlay(PortSecurityPolicy base, PortSecurityPolicy const& top) {
  uint32_t mask = top.setMask;
  if (mask & PortSecurityPolicy::PROMISCUOUS_BIT) base.allowPromiscuous = top.allowPromiscuous;
  if (mask & PortSecurityPolicy::MAC_CHANGE_BIT) {
    base.allowMacAddressChange = top.allowMacAddressChange;
  }
  if (mask & PortSecurityPolicy::FORGED_TRANSMITS_BIT) {
    base.allowForgedTransmits = top.allowForgedTransmits;
  }
  base.setMask |= mask;
  return base;
}

ShapingPolicy Overlay(ShapingPolicy base, ShapingPolicy const& top) {
  uint32_t mask = top.setMask;
  if (mask & ShapingPolicy::ENABLED_BIT) base.enabled = top.enabled;
  if (mask & ShapingPolicy::PEAK_BIT) base.peakBps = top.peakBps;
  if (mask & ShapingPolicy::AVERAGE_BIT) base.averageBps = top.averageBps;
  if (mask & ShapingPolicy::BURST_BIT) base.burstSize = top.burstSize;
  base.setMask |= mask;
  return base;
}

std::vector<std::string> ConnectedUplinks(HostModel const& host,
                                          StandardSwitchState const& vswitch) {
  std::vector<std::string> connected;
  for (auto const& uplink : vswitch.uplinks) {
    if (IsPhysicalNic(host, uplink)) connected.push_back(uplink);
  }
  return connected;
}

NicTeamingPolicy EffectiveTeaming(HostModel const& host, StandardSwitchState const& vswitch) {
  NicTeamingPolicy policy =
      Overlay(NicTeamingPolicy::GetDefaultPolicy(), ToPolicy(vswitch.teaming));
  if (!(policy.setMask & NicTeamingPolicy::UPLINK_ORDER_BIT)) {
    policy.uplinkOrder = ConnectedUplinks(host, vswitch);
    policy.maxActiveUplinks = static_cast<int>(policy.uplinkOrder.size());
  }
  return policy;
}

PortSecurityPolicy EffectiveSecurity(StandardSwitchState const& vswitch) {
  return Overlay(PortSecurityPolicy::GetDefaultPolicy(), ToPolicy(vswitch.security));
}

ShapingPolicy EffectiveShaping(StandardSwitchState const& vswitch) {
  return Overlay(ShapingPolicy::GetDefaultPolicy(), ToPolicy(vswitch.shaping));
}

NicTeamingPolicy EffectiveTeaming(HostModel const& host, StandardSwitchState const& vswitch,
                                  PortGroupState const& group) {
  return Overlay(EffectiveTeaming(host, vswitch), ToPolicy(group.teaming));
}

PortSecurityPolicy EffectiveSecurity(StandardSwitchState const& vswitch,
                                     PortGroupState const& group) {
  return Overlay(EffectiveSecurity(vswitch), ToPolicy(group.security));
}

ShapingPolicy EffectiveShaping(StandardSwitchState const& vswitch, PortGroupState const& group) {
  return Overlay(EffectiveShaping(vswitch), ToPolicy(group.shaping));
}

void CheckTeaming(StandardSwitchState const& vswitch, std::string const& owner,
                  NicTeamingPolicy const& policy) {
  std::string prefix = "Unable to apply teaming policy to " + owner + ": ";
  if (policy.setMask & NicTeamingPolicy::TEAM_POLICY_BIT) {
    int value = policy.teamPolicy;
    if (value < HostCtl::Network::TEAM_POLICY_IP_HASH ||
        value > HostCtl::Network::TEAM_POLICY_EXPLICIT_FAILOVER) {
      throw HostCtlException(prefix + "unknown load balancing policy " + std::to_string(value));
    }
  }
  if (!(policy.setMask & NicTeamingPolicy::UPLINK_ORDER_BIT)) return;
  std::set<std::string> seen;
  for (auto const& uplink : policy.uplinkOrder) {
    if (std::find(vswitch.uplinks.begin(), vswitch.uplinks.end(), uplink) ==
        vswitch.uplinks.end()) {
      throw HostCtlException(prefix + "uplink " + uplink + " is not connected to virtual switch " +
                             vswitch.name);
    }
    if (!seen.insert(uplink).second) {
      throw HostCtlException(prefix + "uplink " + uplink + " is named more than once");
    }
  }
  if (policy.maxActiveUplinks < 0 ||
      policy.maxActiveUplinks > static_cast<int>(policy.uplinkOrder.size())) {
    throw HostCtlException(prefix + std::to_string(policy.maxActiveUplinks) +
                           " active uplinks requested, but the order holds " +
                           std::to_string(policy.uplinkOrder.size()));
  }
}

namespace {

void CheckShapingInForce(std::string const& owner, ShapingPolicy const& policy) {
  if (!policy.enabled) return;
  std::string prefix = "Unable to apply shaping policy to " + owner + ": ";
  if (policy.averageBps == 0) throw HostCtlException(prefix + "the average bandwidth is not set");
  if (policy.peakBps == 0) throw HostCtlException(prefix + "the peak bandwidth is not set");
  if (policy.burstSize == 0) throw HostCtlException(prefix + "the burst size is not set");
  if (policy.peakBps < policy.averageBps) {
    throw HostCtlException(prefix + "the peak bandwidth (" + std::to_string(policy.peakBps) +
                           " bits/s) is lower than the average bandwidth (" +
                           std::to_string(policy.averageBps) + " bits/s)");
  }
}

}  // namespace

void CheckShaping(StandardSwitchState const& vswitch) {
  CheckShapingInForce("virtual switch " + vswitch.name, EffectiveShaping(vswitch));
  for (auto const& group : vswitch.port_groups) {
    CheckShapingInForce("port group " + group.name, EffectiveShaping(vswitch, group));
  }
}

bool UsesBeacon(NicTeamingPolicy const& policy) { return policy.linkCriteria.UsesBeaconProbing(); }

}  // namespace OrvkCtl::Sim
