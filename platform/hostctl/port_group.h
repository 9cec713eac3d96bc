// A port group of a standard virtual switch.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "hostctl/lib.h"
#include "hostctl/policy.h"

namespace HostCtl::Network {

class VirtualSwitch;

// A named set of ports of a standard switch, with a VLAN id and its own
// security, shaping and teaming policies. For each policy the group offers
// the effective value (the group's own fields over its switch's), the
// configured value (what is set on the group; its set mask marks the
// overrides) and an operation that writes a new configured value.
//
// Every operation reads the host and throws Lib::HostCtlException when the
// group no longer exists, the host cannot be read, or a write is refused.
class PortGroup : public virtual Lib::HostCtlObject {
 public:
  ~PortGroup() override;

  virtual std::string GetName() = 0;
  // The name of the switch the group belongs to.
  virtual std::string GetVirtualSwitchName() = 0;
  virtual uint16_t GetVlanId() = 0;
  // Refuses ids outside MIN_VLAN_ID..MAX_VLAN_ID.
  virtual void SetVlanId(uint16_t vlanId) = 0;
  virtual PortSecurityPolicy GetEffectiveSecurityPolicy() = 0;
  virtual PortSecurityPolicy GetConfiguredSecurityPolicy() = 0;
  virtual void ApplySecurityPolicy(PortSecurityPolicy const& policy) = 0;
  // Refuses an uplink order that names an uplink the switch is not
  // connected to, or one name twice.
  virtual NicTeamingPolicy GetEffectiveTeamingPolicy() = 0;
  virtual NicTeamingPolicy GetConfiguredTeamingPolicy() = 0;
  virtual void ApplyTeamingPolicy(NicTeamingPolicy policy) = 0;
  // Refuses, when shaping is in force, a zero bandwidth or burst size and a
  // peak bandwidth below the average one.
  virtual ShapingPolicy GetEffectiveShapingPolicy() = 0;
  virtual ShapingPolicy GetConfiguredShapingPolicy() = 0;
  virtual void ApplyShapingPolicy(ShapingPolicy policy) = 0;
  // The parent switch; owned by the caller.
  virtual std::unique_ptr<VirtualSwitch> GetVirtualSwitch() = 0;
  // How many ports of the group are in use by clients (interfaces, VMs).
  virtual int GetNumActiveClients() = 0;

  // Bounds of a port group's VLAN id, both included.
  static const uint16_t MIN_VLAN_ID;
  static const uint16_t MAX_VLAN_ID;
};

}  // namespace HostCtl::Network
