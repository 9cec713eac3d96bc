#include <gtest/gtest.h>

#include "hostctl/orvk_nic.h"
#include "hostctl/port_group.h"
#include "hostctl/portset.h"

namespace HostCtl::Network {
namespace {

// The limits are read at run time, through the library's data objects.
TEST(NetworkLimitsTest, PublishedAsUsableRanges) {
  uint16_t const* min_vlan = &PortGroup::MIN_VLAN_ID;
  uint16_t const* max_vlan = &PortGroup::MAX_VLAN_ID;
  // Uplink attachments use the range with both ends excluded: it must not be empty.
  EXPECT_LT(*min_vlan + 1, *max_vlan - 1);
  EXPECT_LE(*max_vlan, 4095);

  int32_t const* min_mtu = &OrvkNic::MIN_MTU;
  int32_t const* max_mtu = &OrvkNic::MAX_MTU;
  EXPECT_LE(*min_mtu, 1500);
  EXPECT_GE(*max_mtu, 1500);

  // The help text of the switch commands promises this default.
  EXPECT_EQ(Portset::DEF_NUM_PORTS, 128);
}

}  // namespace
}  // namespace HostCtl::Network
