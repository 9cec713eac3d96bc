// A port group of a standard virtual switch.
#pragma once

#include <cstdint>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class PortGroup : public virtual Lib::HostCtlObject {
 public:
  ~PortGroup() override;

  // Bounds of a port group's VLAN id, both included.
  static const uint16_t MIN_VLAN_ID;
  static const uint16_t MAX_VLAN_ID;
};

}  // namespace HostCtl::Network
