// Out-of-line members of the network interface classes: their destructors and
// the limits they publish, kept as data objects of the library so that their
// users read them at run time.
#include "hostctl/orvk_nic.h"
#include "hostctl/port_group.h"
#include "hostctl/portset.h"

namespace HostCtl::Network {

PortGroup::~PortGroup() = default;
const uint16_t PortGroup::MIN_VLAN_ID = 0;
const uint16_t PortGroup::MAX_VLAN_ID = 4095;

OrvkNic::~OrvkNic() = default;
const int32_t OrvkNic::MIN_MTU = 1280;
const int32_t OrvkNic::MAX_MTU = 9000;

Portset::~Portset() = default;
const int32_t Portset::DEF_NUM_PORTS = 128;

}  // namespace HostCtl::Network
