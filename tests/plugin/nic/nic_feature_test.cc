// Software simulation, hardware capabilities and DCB status of the uplinks.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using Args = std::vector<std::string>;
using TestSupport::HostTest;
using TestSupport::MetaText;

using NicFeatureTest = HostTest;

const std::string kAllOff =
    "IPv4 CSO=off,IPv4 TSO=off,Scatter Gather=off,Offset Based Offload=off,VXLAN Encap=off,"
    "Geneve Offload=off,IPv6 TSO=off,IPv6 TSO Ext=off,IPv6 CSO=off,IPv6 CSO Ext=off,"
    "High DMA=off,Scatter Gather MP=off,VLAN Tagging=off,VLAN Untagging=off";

TEST_F(NicFeatureTest, SoftwareListFollowsTheNamesGiven) {
  EXPECT_EQ(
      Ok({"network", "nic", "software", "list", "-n", "ornic2", "-n", "ornic0", "-n", "ornic2"}),
      "[{NIC=ornic2," + kAllOff +
          "},{NIC=ornic0,IPv4 CSO=off,IPv4 TSO=off,Scatter Gather=off,"
          "Offset Based Offload=on,VXLAN Encap=on,Geneve Offload=on,IPv6 TSO=off,"
          "IPv6 TSO Ext=on,IPv6 CSO=off,IPv6 CSO Ext=on,High DMA=off,"
          "Scatter Gather MP=off,VLAN Tagging=off,VLAN Untagging=off},{NIC=ornic2," +
          kAllOff + "}]");
  // One unknown name spoils the whole run.
  auto output = Execute({"network", "nic", "software", "list", "-n", "ornic0", "-n", "ornic9"});
  EXPECT_EQ(output->GetErrorMessages(),
            std::vector<std::string>{"Can't find PNIC with name ornic9"});
  EXPECT_EQ(output->GetRootObject(), nullptr);
  // A device whose read fails shows N/A and the run goes on.
  InjectFault("PnicImpl::GetSoftwareSimulation", "driver busy");
  auto rows = Ok({"network", "nic", "software", "list"});
  EXPECT_NE(rows.find("{NIC=ornic4,IPv4 CSO=N/A,IPv4 TSO=N/A,Scatter Gather=N/A,"),
            std::string::npos)
      << rows;
  EXPECT_NE(rows.find("VLAN Untagging=N/A}]"), std::string::npos) << rows;
}

TEST_F(NicFeatureTest, SoftwareSetPersists) {
  // Geneve is the last bool of the record though the sixth parameter.
  EXPECT_EQ(Ok({"network", "nic", "software", "set", "-n", "ornic2", "--geneveoffload", "true",
                "--ipv4cso", "true"}),
            "true");
  EXPECT_EQ(Ok({"network", "nic", "software", "set", "-n", "ornic0", "--ipv6csoext", "false"}),
            "true");
  Reload();
  auto const& pnics = OrvkCtl::Sim::ReadHost().nic.pnics;
  EXPECT_EQ(pnics[2].software_simulation.simulated, 0x2001u);
  EXPECT_EQ(Ok({"network", "nic", "software", "list", "-n", "ornic2"}),
            "[{NIC=ornic2,IPv4 CSO=on,IPv4 TSO=off,Scatter Gather=off,Offset Based Offload=off,"
            "VXLAN Encap=off,Geneve Offload=on,IPv6 TSO=off,IPv6 TSO Ext=off,IPv6 CSO=off,"
            "IPv6 CSO Ext=off,High DMA=off,Scatter Gather MP=off,VLAN Tagging=off,"
            "VLAN Untagging=off}]");
  EXPECT_NE(Ok({"network", "nic", "software", "list", "-n", "ornic0"}).find("IPv6 CSO Ext=off"),
            std::string::npos);
}

TEST_F(NicFeatureTest, SoftwareSetRefusals) {
  Refused({"network", "nic", "software", "set", "-n", "ornic9", "--sg", "true"},
          {"Pnic with name ornic9 not found"});
  Refused(
      {"network", "nic", "software", "set", "-n", "ornic4", "--highdma", "true", "--sg", "false"},
      {"Software simulation of scatter gather cannot be disabled on ornic4: the device "
       "has no hardware support for it"});
  // Nothing to apply: no write at all.
  InjectFault("PnicImpl::SetSoftwareSimulation", "must not be called");
  EXPECT_EQ(Ok({"network", "nic", "software", "set", "-n", "ornic4"}), "true");
}

TEST_F(NicFeatureTest, HardwareCapabilitiesStopAtBit30) {
  // ornic2 supports bits 31, 33 and 35 too; they are never named.
  EXPECT_EQ(Ok({"network", "nic", "hwCap", "supported", "list", "-n", "ornic2"}),
            "[{NIC=ornic2,Device Hardware Cap Supported=SG   IP_CSO   HIGH_DMA   SG_SPAN_PAGES   "
            "HW_TX_VLAN   HW_RX_VLAN   TSO   IP6_CSO   TSO6   TSO6_EXT_HDR   IP6_CSO_EXT   "
            "ENCAP   OFFSET_ENCAP   VXLAN_OFFLOAD   GENEVE_OFFLOAD   NETQUEUE   RSS   LRO   DCB   "
            "PTP   PAUSE_FRAMES   JUMBO_FRAMES   SRIOV   MAC_FILTER   VLAN_FILTER   FEC   }]");
  EXPECT_EQ(Ok({"network", "nic", "hwCap", "activated", "list", "-n", "ornic0", "-n", "ornic4"}),
            "[{NIC=ornic0,Device Hardware Cap Activated=SG   IP_CSO   HIGH_DMA   HW_TX_VLAN   "
            "HW_RX_VLAN   TSO   IP6_CSO   TSO6   NETQUEUE   PAUSE_FRAMES   JUMBO_FRAMES   },"
            "{NIC=ornic4,Device Hardware Cap Activated=N/A}]");
  auto output = Execute({"network", "nic", "hwCap", "supported", "list", "-n", "ornic9"});
  EXPECT_EQ(output->GetErrorMessages(),
            std::vector<std::string>{"Can't find PNIC with name ornic9"});
  EXPECT_EQ(output->GetRootObject(), nullptr);

  auto result = Run({"network", "nic", "hwCap", "supported", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, 37), "NIC     Device Hardware Cap Supported");
}

TEST_F(NicFeatureTest, DcbWordsAndBitStrings) {
  struct Case {
    uint32_t mode;
    uint8_t mask;
    uint8_t firstSent;
    char const* modeText;
    char const* maskText;
    char const* sentText;
  };
  std::vector<Case> cases = {
      {0, 0xFF, 255, "0 - Unknown", "1 1 1 1 1 1 1 1", "255 0 0 17 0 0 0 0"},
      {1, 0x00, 1, "1 - CEN Mode", "0 0 0 0 0 0 0 0", "1 0 0 17 0 0 0 0"},
      {2, 0x11, 0, "2 - CEE Mode", "1 0 0 0 1 0 0 0", "0 0 0 17 0 0 0 0"},
      {3, 0x80, 9, "3 - IEEE Mode", "0 0 0 0 0 0 0 1", "9 0 0 17 0 0 0 0"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.modeText);
    OrvkCtl::Sim::ChangeHost([&](OrvkCtl::Sim::HostModel& host) {
      auto& dcb = OrvkCtl::Sim::FindPnic(host.nic, "ornic2")->dcb;
      dcb.mode = c.mode;
      dcb.pfc_config = c.mask;
      dcb.pfc_sent[0] = c.firstSent;
    });
    auto status = Ok({"network", "nic", "dcb", "status", "get", "-n", "ornic2"});
    EXPECT_NE(status.find(std::string(",Mode=") + c.modeText + ","), std::string::npos) << status;
    EXPECT_NE(status.find(std::string("PFC Enabled=true,PFC Configuration=") + c.maskText + ","),
              std::string::npos)
        << status;
    EXPECT_NE(status.find(std::string("Sent PFC Frames=") + c.sentText + ","), std::string::npos)
        << status;
  }
}

TEST_F(NicFeatureTest, DcbStatusOfTheStoragePort) {
  EXPECT_EQ(Ok({"network", "nic", "dcb", "status", "get", "-n", "ornic2"}),
            "{Nic Name=ornic2,Mode=3 - IEEE Mode,Enabled=true,"
            "Capabilities={Priority Group=true,Priority Flow Control=true,UP to TC Map=true,"
            "PG Traffic Classes=8,PFC Traffic Classes=8},PFC Enabled=true,"
            "PFC Configuration=0 0 0 1 0 0 0 0,"
            "IEEE PFC Configuration={Number Of Traffic Classes=8,"
            "PFC Configuration=0 0 0 1 0 0 0 0,Macsec Bypass Capability Is Enabled=0,"
            "Round Trip Propagation Delay Of Link=0,Sent PFC Frames=0 0 0 17 0 0 0 0,"
            "Received PFC Frames=0 0 0 212 0 0 0 0},"
            "IEEE ETS Configuration={Willing Bit In ETS Config TLV=1,Supported Capacity=8,"
            "Credit Based Shaper ETS Algorithm Supported=No,TX Bandwidth Per TC=50 50 0 0 0 0 0 0,"
            "RX Bandwidth Per TC=50 50 0 0 0 0 0 0,TSA Assignment Table Per TC=2 2 0 0 0 0 0 0,"
            "Priority Assignment Per TC=0 0 0 1 0 0 0 0,"
            "Recommended TC Bandwidth Per TC=50 50 0 0 0 0 0 0,"
            "Recommended TC Bandwith Per TC=50 50 0 0 0 0 0 0,"
            "Recommended TSA Assignment Per TC=2 2 0 0 0 0 0 0,"
            "Recommended Priority Assignment Per TC=0 0 0 1 0 0 0 0},"
            "DCB Apps=[{App Type=Ethertype,Protocol ID=0x8906,User Priority=3},"
            "{App Type=TCP/UDP port,Protocol ID=4791,User Priority=3}]}");
  // No application table: an empty list, the rest stands.
  auto second = Ok({"network", "nic", "dcb", "status", "get", "-n", "ornic3"});
  EXPECT_EQ(second.substr(0, 50), "{Nic Name=ornic3,Mode=2 - CEE Mode,Enabled=false,C");
  EXPECT_EQ(second.substr(second.size() - 12), "DCB Apps=[]}");
}

TEST_F(NicFeatureTest, DcbStatusFailuresAreTheLibrarysWords) {
  struct Case {
    char const* nic;
    char const* fault;
    char const* message;
  };
  std::vector<Case> cases = {
      {"ornic0", nullptr, "DCB is not supported by ornic0"},
      {"ornic9", nullptr, "Physical NIC ornic9 not found"},
      {"ornic2", "DcbInfoImpl::GetAppInfo", "app table unavailable"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.nic);
    ClearFaults();
    if (c.fault) InjectFault(c.fault, c.message);
    auto output = Execute({"network", "nic", "dcb", "status", "get", "-n", c.nic});
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(NicFeatureTest, DcbStatusPrintsNestedRecords) {
  auto result = Run({"network", "nic", "dcb", "status", "get", "-n", "ornic2"});
  ASSERT_EQ(result.status, 0) << result.err;
  // The capabilities show the columns of their directive only.
  EXPECT_EQ(result.out.find("UP to TC Map"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("Bandwith"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Mode: 3 - IEEE Mode"), std::string::npos) << result.out;
  result = Run({"--formatter", "json", "network", "nic", "dcb", "status", "get", "-n", "ornic2"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\"Recommended TC Bandwith Per TC\": \"50 50 0 0 0 0 0 0\""),
            std::string::npos)
      << result.out;
}

TEST_F(NicFeatureTest, HostFailuresBecomeTheOnlyMessage) {
  // Every uplink command reaches the host through the network view first.
  std::vector<Args> commands = {
      {"network", "nic", "queue", "loadbalancer", "list"},
      {"network", "nic", "queue", "loadbalancer", "set", "-n", "ornic0", "--rxqpair", "true"},
      {"network", "nic", "queue", "loadbalancer", "state", "list"},
      {"network", "nic", "queue", "loadbalancer", "state", "set", "-n", "ornic0", "-e", "true"},
      {"network", "nic", "queue", "loadbalancer", "plugin", "list", "-n", "ornic0"},
      {"network", "nic", "queue", "loadbalancer", "plugin", "set", "-n", "ornic0", "-e", "true",
       "-m", "nqbal", "-p", "load-based"},
      {"network", "nic", "queue", "count", "get"},
      {"network", "nic", "queue", "count", "set", "-n", "ornic0", "-t", "true", "-q", "2"},
      {"network", "nic", "queue", "filterclass", "list"},
      {"network", "nic", "software", "list"},
      {"network", "nic", "software", "set", "-n", "ornic0", "--sg", "true"},
      {"network", "nic", "hwCap", "supported", "list", "-n", "ornic0"},
      {"network", "nic", "hwCap", "activated", "list"},
  };
  InjectFault("NetworkFactory::GetNetworkInfo", "host agent not responding");
  for (auto const& args : commands) {
    SCOPED_TRACE(args[2] + " " + args[3] + " " + args.back());
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{"host agent not responding"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  // The executable reports it on standard error with status 1.
  auto result = TestSupport::RunProcess(
      {"network", "nic", "queue", "count", "get"},
      {{"TOOLBASE_HOST_STATE", state_path_},
       {"TOOLBASE_HOST_FAULTS", "NetworkFactory::GetNetworkInfo=host agent not responding"}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("host agent not responding"), std::string::npos) << result.err;
}

}  // namespace
