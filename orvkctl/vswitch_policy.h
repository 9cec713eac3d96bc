// How the simulated host stores switch and port group policies and works out
// the ones in force: conversions between the library's policy values and the
// stored records, inheritance, and the checks a write must pass.
#pragma once

#include <string>
#include <vector>

#include "host_model.h"
#include "hostctl/policy.h"

namespace OrvkCtl::Sim {

HostCtl::Network::NicTeamingPolicy ToPolicy(TeamingPolicyState const& state);
HostCtl::Network::PortSecurityPolicy ToPolicy(SecurityPolicyState const& state);
HostCtl::Network::ShapingPolicy ToPolicy(ShapingPolicyState const& state);
TeamingPolicyState ToState(HostCtl::Network::NicTeamingPolicy const& policy);
SecurityPolicyState ToState(HostCtl::Network::PortSecurityPolicy const& policy);
ShapingPolicyState ToState(HostCtl::Network::ShapingPolicy const& policy);

// `top`'s fields whose bits are set, over `base`; the mask is the union.
HostCtl::Network::NicTeamingPolicy Overlay(HostCtl::Network::NicTeamingPolicy base,
                                           HostCtl::Network::NicTeamingPolicy const& top);
HostCtl::Network::PortSecurityPolicy Overlay(HostCtl::Network::PortSecurityPolicy base,
                                             HostCtl::Network::PortSecurityPolicy const& top);
HostCtl::Network::ShapingPolicy Overlay(HostCtl::Network::ShapingPolicy base,
                                        HostCtl::Network::ShapingPolicy const& top);

// True when the host has a physical NIC of that name.
bool IsPhysicalNic(HostModel const& host, std::string const& name);

// The switch's uplinks whose NICs the host has, in the switch's order.
std::vector<std::string> ConnectedUplinks(HostModel const& host,
                                          StandardSwitchState const& vswitch);

// The policies in force on a switch: its own fields over the defaults of a
// new switch; without an uplink order of its own, all connected uplinks are
// active (the order's bit stays clear then).
HostCtl::Network::NicTeamingPolicy EffectiveTeaming(HostModel const& host,
                                                    StandardSwitchState const& vswitch);
HostCtl::Network::PortSecurityPolicy EffectiveSecurity(StandardSwitchState const& vswitch);
HostCtl::Network::ShapingPolicy EffectiveShaping(StandardSwitchState const& vswitch);

// The policies in force on a port group: its own fields over its switch's.
HostCtl::Network::NicTeamingPolicy EffectiveTeaming(HostModel const& host,
                                                    StandardSwitchState const& vswitch,
                                                    PortGroupState const& group);
HostCtl::Network::PortSecurityPolicy EffectiveSecurity(StandardSwitchState const& vswitch,
                                                       PortGroupState const& group);
HostCtl::Network::ShapingPolicy EffectiveShaping(StandardSwitchState const& vswitch,
                                                 PortGroupState const& group);

// Throws HostCtlException when `policy`, to be stored on `owner` (a switch
// or one of its groups), names an unknown balancing policy, an uplink the
// switch is not connected to, one uplink twice, or an active count outside
// the order.
void CheckTeaming(StandardSwitchState const& vswitch, std::string const& owner,
                  HostCtl::Network::NicTeamingPolicy const& policy);

// Throws HostCtlException when shaping is on for the switch or any of its
// groups with a zero bandwidth or burst size, or a peak below the average.
void CheckShaping(StandardSwitchState const& vswitch);

// Whether a team detects failures by beaconing.
bool UsesBeacon(HostCtl::Network::NicTeamingPolicy const& policy);

}  // namespace OrvkCtl::Sim
