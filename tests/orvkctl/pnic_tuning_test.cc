// The simulated library's NIC tuning: what a write applies, what it refuses,
// and that a refused write leaves the device as it was.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/pnic.h"
#include "hostctl/virtual_switch.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::PnicCoalesceParams;
using HostCtl::Network::PnicInfo;
using HostCtl::Network::PnicOffloadParams;
using HostCtl::Network::PnicRingParams;
using OrvkCtl::Network::PnicImpl;
using OrvkCtl::Sim::PnicState;
using TestSupport::HostTest;

PnicState const& Nic(char const* name) { return *FindPnic(OrvkCtl::Sim::ReadHost().nic, name); }

std::string Refusal(std::function<void()> const& call) {
  try {
    call();
  } catch (HostCtlException const& e) {
    return e.message;
  }
  return "(accepted)";
}

class PnicTuningTest : public HostTest {};

TEST_F(PnicTuningTest, OffloadWriteAppliesOnlyTheMask) {
  PnicImpl pnic("ornic0");
  PnicOffloadParams params;  // all false
  params.mask = PnicOffloadParams::MASK_SCATTER_GATHER;
  pnic.SetOffloadParams(params);
  EXPECT_FALSE(Nic("ornic0").offload.scatter_gather);
  EXPECT_TRUE(Nic("ornic0").offload.rx_checksum);
  EXPECT_TRUE(Nic("ornic0").offload.tcp_segmentation);

  // The object reads the device again after its own write.
  PnicOffloadParams read;
  pnic.GetOffloadParams(read);
  EXPECT_FALSE(read.scatterGather);
  EXPECT_EQ(read.offloadEngine, "bwgbe-hw");
}

TEST_F(PnicTuningTest, CoalesceLimitsAreTheDevicesOwn) {
  struct Case {
    char const* nic;
    std::function<void(PnicCoalesceParams&)> change;
    char const* refusal;  // null: accepted
  };
  std::vector<Case> cases = {
      {"ornic0", [](auto& p) { p.rxMicroseconds = 8191; }, nullptr},
      {"ornic0", [](auto& p) { p.rxMicroseconds = 8192; },
       "RX microseconds 8192 of ornic0 is beyond the maximum of 8191"},
      {"ornic2", [](auto& p) { p.txMaxFramesLow = 256; },
       "TX maximum frames at low packet rate 256 of ornic2 is beyond the maximum of 255"},
      {"ornic2", [](auto& p) { p.sampleInterval = 0; },
       "Sample interval 0 of ornic2 is out of range 1 to 3600 seconds"},
      {"ornic2", [](auto& p) { p.highPacketRate = p.lowPacketRate; }, nullptr},
      {"ornic0", [](auto& p) { p.lowPacketRate = p.highPacketRate + 1; },
       "Low packet rate 400001 of ornic0 is above its high packet rate 400000"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.refusal ? c.refusal : "accepted");
    PnicImpl pnic(c.nic);
    PnicCoalesceParams params;
    pnic.GetCoalesceParams(params);
    c.change(params);
    auto before = Nic(c.nic).coalesce;
    std::string result = Refusal([&] { pnic.SetCoalesceParams(params); });
    if (c.refusal) {
      EXPECT_EQ(result, c.refusal);
      EXPECT_EQ(Nic(c.nic).coalesce, before);
    } else {
      EXPECT_EQ(result, "(accepted)");
    }
  }
}

TEST_F(PnicTuningTest, RefusedRingWriteAppliesNothing) {
  PnicImpl pnic("ornic2");
  PnicRingParams params;
  params.mask = PnicRingParams::MASK_RX | PnicRingParams::MASK_TX;
  params.rx = 2048;
  params.tx = 9000;
  EXPECT_EQ(Refusal([&] { pnic.SetRingParams(params); }),
            "TX ring size 9000 of ornic2 exceeds the preset maximum of 8192");
  EXPECT_EQ(Nic("ornic2").ring.rx, 4096u);

  params.tx = 8192;
  pnic.SetRingParams(params);
  PnicRingParams preset, current;
  pnic.GetRingParams(preset, current);
  EXPECT_EQ(current.rx, 2048u);
  EXPECT_EQ(current.tx, 8192u);
  EXPECT_EQ(current.rxJumbo, 1024u);
  EXPECT_EQ(preset.rxJumbo, 4096u);
}

TEST_F(PnicTuningTest, SetInfoAppliesFlaggedFieldsOnly) {
  PnicImpl pnic("ornic0");
  PnicInfo info;
  pnic.GetInfo(info);
  info.port = 4;           // not flagged: ignored, though the device has no fibre
  info.messageLevel = 99;  // not flagged either
  info.phyAddress = 7;
  info.phyAddressChanged = true;
  pnic.SetInfo(info);
  EXPECT_EQ(Nic("ornic0").phy_address, 7u);
  EXPECT_EQ(Nic("ornic0").port, 0u);
  EXPECT_EQ(Nic("ornic0").message_level, 7u);

  // One bad field refuses the whole record.
  PnicInfo bad;
  pnic.GetInfo(bad);
  bad.phyAddress = 9;
  bad.phyAddressChanged = true;
  bad.virtualAddress = "not-a-mac";
  bad.virtualAddressChanged = true;
  EXPECT_EQ(Refusal([&] { pnic.SetInfo(bad); }), "Invalid virtual address not-a-mac for ornic0");
  EXPECT_EQ(Nic("ornic0").phy_address, 7u);
}

TEST_F(PnicTuningTest, ForcedLinkDropsPauseNegotiation) {
  PnicImpl pnic("ornic0");
  pnic.SetSpeedAndDuplex(100, HostCtl::Network::DUPLEX_FULL);
  EXPECT_FALSE(Nic("ornic0").pause.auto_negotiation);
  EXPECT_EQ(Nic("ornic0").pause.rx_resolution, 0u);
  EXPECT_EQ(Nic("ornic0").advertised_link_modes.size(), 1u);
  EXPECT_EQ(pnic.GetSpeed(), 100u);

  pnic.SetSpeedAndDuplex(0, HostCtl::Network::DUPLEX_AUTO);
  EXPECT_EQ(pnic.GetSpeed(), 1000u);
  EXPECT_EQ(pnic.GetDuplex(), static_cast<uint32_t>(HostCtl::Network::DUPLEX_FULL));
  EXPECT_EQ(Nic("ornic0").advertised_link_modes.size(), 5u);
}

TEST_F(PnicTuningTest, VlanCountersNeedAConnectedUplink) {
  OrvkCtl::Network::VirtualSwitchImpl vswitch("vSwitch1");
  EXPECT_EQ(Refusal([&] { vswitch.GetUplinkVlanStats("ornic0"); }),
            "ornic0 is not an uplink of switch vSwitch1");
  EXPECT_EQ(Refusal([&] { vswitch.SetUplinkVlanStats("ornic0", false); }),
            "ornic0 is not an uplink of switch vSwitch1");
  EXPECT_TRUE(Nic("ornic0").vlan_stats_enabled);

  OrvkCtl::Network::VirtualSwitchImpl vswitch0("vSwitch0");
  auto stats = vswitch0.GetUplinkVlanStats("ornic0");
  ASSERT_EQ(stats.size(), 1u);
  EXPECT_EQ(stats[0]->packetsSent, 9120477u);
  EXPECT_TRUE(vswitch0.GetUplinkVlanStats("ornic1").empty());
}

TEST_F(PnicTuningTest, TuningSurvivesAReload) {
  PnicImpl pnic("ornic2");
  PnicCoalesceParams params;
  pnic.GetCoalesceParams(params);
  params.adaptiveTx = false;
  params.rxMaxFramesHigh = 17;
  pnic.SetCoalesceParams(params);
  Reload();
  EXPECT_FALSE(Nic("ornic2").coalesce.adaptive_tx);
  EXPECT_EQ(Nic("ornic2").coalesce.rx_frames_high, 17u);
  EXPECT_EQ(Nic("ornic2").stats.rx_missed_errors, 1840u);
  EXPECT_EQ(Nic("ornic0").vlan_stats.size(), 1u);
}

}  // namespace
