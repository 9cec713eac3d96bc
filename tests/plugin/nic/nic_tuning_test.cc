// Offload, coalescing, pause and ring commands against the simulated host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using OrvkCtl::Sim::PnicState;
using TestSupport::HostTest;
using TestSupport::MetaText;

PnicState const& Nic(char const* name) { return *FindPnic(OrvkCtl::Sim::ReadHost().nic, name); }

using NicTuningTest = HostTest;

TEST_F(NicTuningTest, OffloadTablesOfTheDefaultHost) {
  auto result = Run({"network", "nic", "cso", "get"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')),
            "NIC     RX Checksum Offload  TX Checksum Offload");
  EXPECT_EQ(Ok({"network", "nic", "cso", "get"}),
            "[{NIC=ornic0,RX Checksum Offload=on,TX Checksum Offload=on},"
            "{NIC=ornic1,RX Checksum Offload=on,TX Checksum Offload=on},"
            "{NIC=ornic2,RX Checksum Offload=on,TX Checksum Offload=on},"
            "{NIC=ornic3,RX Checksum Offload=on,TX Checksum Offload=on},"
            "{NIC=ornic4,RX Checksum Offload=on,TX Checksum Offload=on}]");
  EXPECT_EQ(Ok({"network", "nic", "tso", "get", "-n", "ornic4"}), "[{NIC=ornic4,Value=off}]");
  EXPECT_EQ(Ok({"network", "nic", "sg", "get", "--ornic", "ornic2"}), "[{NIC=ornic2,Value=on}]");
}

TEST_F(NicTuningTest, OffloadWritesChangeOnlyTheirOwnSetting) {
  struct Case {
    char const* family;
    char const* nic;
    char const* enable;
    char const* get;
  };
  std::vector<Case> cases = {
      {"cso", "ornic1", "0", "[{NIC=ornic1,RX Checksum Offload=off,TX Checksum Offload=off}]"},
      {"tso", "ornic2", "0", "[{NIC=ornic2,Value=off}]"},
      {"sg", "ornic0", "0", "[{NIC=ornic0,Value=off}]"},
      {"cso", "ornic1", "1", "[{NIC=ornic1,RX Checksum Offload=on,TX Checksum Offload=on}]"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.family) + " " + c.nic + " " + c.enable);
    auto before = Nic(c.nic).offload;
    EXPECT_EQ(Ok({"network", "nic", c.family, "set", "-n", c.nic, "-e", c.enable}), "true");
    Reload();
    EXPECT_EQ(Ok({"network", "nic", c.family, "get", "-n", c.nic}), c.get);
    // The bools the command does not own travel back unchanged.
    auto after = Nic(c.nic).offload;
    EXPECT_EQ(after.large_receive, before.large_receive);
    EXPECT_EQ(after.generic_receive, before.generic_receive);
    EXPECT_EQ(after.engine, before.engine);
  }
  EXPECT_TRUE(Nic("ornic0").offload.tcp_segmentation);
  EXPECT_TRUE(Nic("ornic0").offload.rx_checksum);
}

TEST_F(NicTuningTest, OffloadReadToleratesOneFailingDevice) {
  InjectFault("PnicImpl::GetOffloadParams", "driver busy");
  EXPECT_EQ(Ok({"network", "nic", "cso", "get", "-n", "ornic0"}),
            "[{NIC=ornic0,RX Checksum Offload=N/A,TX Checksum Offload=N/A}]");
  EXPECT_EQ(Ok({"network", "nic", "sg", "get", "-n", "ornic0"}), "[{NIC=ornic0,Value=N/A}]");
  // The USB adapter cannot coalesce: its row shows N/A, the others values.
  ClearFaults();
  auto rows = Ok({"network", "nic", "coalesce", "get"});
  EXPECT_NE(rows.find("{NIC=ornic4,RX microseconds=N/A,RX maximum frames=N/A,TX microseconds=N/A,"
                      "TX Maximum frames=N/A,Adaptive RX=N/A,Adaptive TX=N/A,"
                      "Sample interval seconds=N/A}"),
            std::string::npos)
      << rows;
  EXPECT_NE(rows.find("{NIC=ornic0,RX microseconds=3,RX maximum frames=32,TX microseconds=10,"
                      "TX Maximum frames=32,Adaptive RX=On,Adaptive TX=Off,"
                      "Sample interval seconds=2}"),
            std::string::npos)
      << rows;
}

TEST_F(NicTuningTest, UnknownUplinkIsWordedByFamily) {
  struct Case {
    std::vector<std::string> args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "cso", "get", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "tso", "get", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "sg", "set", "-n", "ornic9", "-e", "1"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "tso", "set", "-n", "ornic9", "-e", "1"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "coalesce", "get", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "coalesce", "set", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "coalesce", "low", "get", "-n", "ornic9"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "coalesce", "high", "set", "-n", "ornic9", "-p", "5"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "pauseParams", "list", "-n", "ornic9"}, "NIC with name ornic9 not found"},
      {{"network", "nic", "pauseParams", "set", "-n", "ornic9", "--rx", "true"},
       "NIC with name ornic9 not found"},
      {{"network", "nic", "ring", "preset", "get", "-n", "ornic9"},
       "NIC with name ornic9 not found"},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic9", "-r", "512"},
       "NIC with name ornic9 not found"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[2] + " " + c.args[3]);
    Refused(c.args, {c.message});
  }
}

TEST_F(NicTuningTest, LibraryRefusalsComeThroughUnchanged) {
  struct Case {
    std::vector<std::string> args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "tso", "set", "-n", "ornic4", "-e", "1"},
       "TCP segmentation offload is not supported by ornic4"},
      {{"network", "nic", "coalesce", "set", "-n", "ornic2", "-r", "5000", "-a", "false"},
       "RX microseconds 5000 of ornic2 is beyond the maximum of 1023"},
      {{"network", "nic", "coalesce", "low", "set", "-n", "ornic0", "-p", "500000"},
       "Low packet rate 500000 of ornic0 is above its high packet rate 400000"},
      {{"network", "nic", "coalesce", "high", "set", "-n", "ornic2", "-T", "4294967295"},
       "TX maximum frames at high packet rate 4294967295 of ornic2 is beyond the maximum of 255"},
      {{"network", "nic", "coalesce", "high", "get", "-n", "ornic4"},
       "Interrupt coalescing is not supported by ornic4"},
      {{"network", "nic", "pauseParams", "set", "-n", "ornic4", "-r", "true"},
       "Pause parameters are not supported by ornic4"},
      {{"network", "nic", "pauseParams", "set", "-n", "ornic2", "-a", "true"},
       "Unable to negotiate pause frames on ornic2: link auto negotiation is disabled"},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic0", "-r", "512", "-t", "8192"},
       "TX ring size 8192 of ornic0 exceeds the preset maximum of 4096"},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic0", "-m", "64"},
       "ornic0 has no RX mini ring"},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic2", "-j", "0"},
       "RX jumbo ring size of ornic2 must be at least 1"},
      {{"network", "nic", "ring", "current", "get", "-n", "ornic4"},
       "Ring parameters are not supported by ornic4"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(c.args, {c.message});
  }
}

TEST_F(NicTuningTest, CoalesceWritesKeepWhatWasNotGiven) {
  EXPECT_EQ(Ok({"network", "nic", "coalesce", "set", "-n", "ornic0", "-t", "20", "-A", "true", "-i",
                "3600"}),
            "true");
  EXPECT_EQ(Ok({"network", "nic", "coalesce", "get", "-n", "ornic0"}),
            "[{NIC=ornic0,RX microseconds=3,RX maximum frames=32,TX microseconds=20,"
            "TX Maximum frames=32,Adaptive RX=On,Adaptive TX=On,Sample interval seconds=3600}]");

  EXPECT_EQ(
      Ok({"network", "nic", "coalesce", "low", "set", "-n", "ornic2", "-p", "30000", "-r", "12"}),
      "true");
  EXPECT_EQ(Ok({"network", "nic", "coalesce", "low", "get", "-n", "ornic2"}),
            "{NIC=ornic2,Packet rate=30000,RX delay time=12,RX delay packets=4,TX delay time=16,"
            "TX delay packets=4}");
  EXPECT_EQ(
      Ok({"network", "nic", "coalesce", "high", "set", "-n", "ornic2", "-R", "200", "-t", "300"}),
      "true");
  EXPECT_EQ(Ok({"network", "nic", "coalesce", "high", "get", "-n", "ornic2"}),
            "{NIC=ornic2,Packet rate=1000000,RX delay time=200,RX delay packets=200,"
            "TX delay time=300,TX delay packets=255}");
  // The high set leaves the low one alone.
  EXPECT_EQ(Nic("ornic2").coalesce.rx_usecs_low, 12u);

  // With the NIC alone, the record read is written back unchanged.
  auto before = Nic("ornic1").coalesce;
  EXPECT_EQ(Ok({"network", "nic", "coalesce", "set", "-n", "ornic1"}), "true");
  Reload();
  EXPECT_EQ(Nic("ornic1").coalesce, before);
}

TEST_F(NicTuningTest, CoalesceLowAndHighPrintWithUnits) {
  auto result = Run({"network", "nic", "coalesce", "high", "get", "-n", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("Packet rate: 400000 pps"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("RX delay time: 100 microsecond"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("TX delay packets: 128\n"), std::string::npos) << result.out;
}

TEST_F(NicTuningTest, SampleIntervalAndEnableAreCheckedBeforeTheCommand) {
  for (auto const& args : std::vector<std::vector<std::string>>{
           {"network", "nic", "coalesce", "set", "-n", "ornic0", "-i", "0"},
           {"network", "nic", "coalesce", "set", "-n", "ornic0", "-i", "3601"},
           {"network", "nic", "cso", "set", "-n", "ornic0", "-e", "2"},
           {"network", "nic", "sg", "set", "-n", "ornic0"}}) {
    SCOPED_TRACE(args[3] + " " + args.back());
    EXPECT_EQ(Run(args).status, 2);
  }
}

TEST_F(NicTuningTest, PauseRowsFollowSupportAndResolution) {
  EXPECT_EQ(Ok({"network", "nic", "pauseParams", "list", "-n", "ornic0"}),
            "[{NIC=ornic0,Pause Params Supported=true,Auto Negotiation=true,Pause RX=true,"
            "Pause TX=true,Auto Negotiation Resolution Avail=true,"
            "RX Auto Negotiation Resolution=true,TX Auto Negotiation Resolution=true}]");

  struct Case {
    bool supported;
    uint32_t rxResolution, txResolution;
    char const* expected;  // Supported, Avail, RX resolution, TX resolution
  };
  std::vector<Case> cases = {
      {true, 1, 2, "true,true,true,false"},
      {true, 0, 1, "true,false,false,false"},
      {true, 3, 1, "true,true,false,true"},
      {false, 1, 1, "false,false,false,false"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.expected);
    OrvkCtl::Sim::ChangeHost([&](OrvkCtl::Sim::HostModel& host) {
      auto& pause = FindPnic(host.nic, "ornic1")->pause;
      pause = {c.supported, true, true, true, c.rxResolution, c.txResolution};
    });
    auto output = Execute({"network", "nic", "pauseParams", "list", "-n", "ornic1"});
    auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
    ASSERT_TRUE(list);
    ASSERT_EQ(list->GetItems().size(), 1u);
    auto row = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaStruct>(list->GetItems()[0]);
    std::string got;
    for (char const* field : {"Pause Params Supported", "Auto Negotiation Resolution Avail",
                              "RX Auto Negotiation Resolution", "TX Auto Negotiation Resolution"}) {
      got += (got.empty() ? "" : ",") + MetaText(row->GetField(field));
    }
    EXPECT_EQ(got, c.expected);
    EXPECT_EQ(MetaText(row->GetField("Pause RX")), c.supported ? "true" : "false");
  }
}

TEST_F(NicTuningTest, PauseWriteNegotiatesWhatIsAsked) {
  EXPECT_EQ(Ok({"network", "nic", "pauseParams", "set", "-n", "ornic0", "-t", "false"}), "true");
  EXPECT_EQ(Ok({"network", "nic", "pauseParams", "list", "-n", "ornic0"}),
            "[{NIC=ornic0,Pause Params Supported=true,Auto Negotiation=true,Pause RX=true,"
            "Pause TX=false,Auto Negotiation Resolution Avail=true,"
            "RX Auto Negotiation Resolution=true,TX Auto Negotiation Resolution=false}]");
  EXPECT_EQ(Ok({"network", "nic", "pauseParams", "set", "-n", "ornic0", "-a", "false"}), "true");
  EXPECT_EQ(Nic("ornic0").pause.rx_resolution, 0u);
  EXPECT_FALSE(Nic("ornic0").pause.auto_negotiation);
  EXPECT_FALSE(Nic("ornic0").pause.tx);
}

TEST_F(NicTuningTest, RingsShowMaximumsAndResizeOnlyWhatIsGiven) {
  EXPECT_EQ(Ok({"network", "nic", "ring", "preset", "get", "-n", "ornic2"}),
            "{RX=8192,RX Mini=0,RX Jumbo=4096,TX=8192,Max RX=8192,Max RX Mini=0,"
            "Max RX Jumbo=4096,Max TX=8192}");
  EXPECT_EQ(Ok({"network", "nic", "ring", "current", "get", "-n", "ornic2"}),
            "{RX=4096,RX Mini=0,RX Jumbo=1024,TX=4096}");
  EXPECT_EQ(Ok({"network", "nic", "ring", "current", "set", "-n", "ornic2", "-t", "8192"}), "true");
  EXPECT_EQ(Ok({"network", "nic", "ring", "current", "get", "-n", "ornic2"}),
            "{RX=4096,RX Mini=0,RX Jumbo=1024,TX=8192}");

  auto result = Run({"network", "nic", "ring", "preset", "get", "-n", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  // The fields directive hides the plain names.
  EXPECT_EQ(result.out, "Max RX: 4096\nMax RX Mini: 0\nMax RX Jumbo: 0\nMax TX: 4096\n");

  // Nothing given: nothing written, even on a device without rings.
  InjectFault("PnicImpl::SetRingParams", "must not be called");
  EXPECT_EQ(Ok({"network", "nic", "ring", "current", "set", "-n", "ornic0"}), "true");
}

TEST_F(NicTuningTest, HandlersAddTheHostTextAlone) {
  struct Case {
    std::vector<std::string> args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "cso", "get"}, "NetworkInfoImpl::GetPnics"},
      {{"network", "nic", "cso", "set", "-n", "ornic0", "-e", "1"}, "PnicImpl::SetOffloadParams"},
      {{"network", "nic", "tso", "set", "-n", "ornic0", "-e", "1"}, "PnicImpl::GetOffloadParams"},
      {{"network", "nic", "sg", "get", "-n", "ornic0"}, "NetworkInfoImpl::GetPnicByName"},
      {{"network", "nic", "coalesce", "get"}, "PnicImpl::GetName"},
      {{"network", "nic", "coalesce", "set", "-n", "ornic0"}, "PnicImpl::SetCoalesceParams"},
      {{"network", "nic", "coalesce", "low", "get", "-n", "ornic0"},
       "NetworkFactory::GetNetworkInfo"},
      {{"network", "nic", "coalesce", "low", "set", "-n", "ornic0"}, "PnicImpl::GetCoalesceParams"},
      {{"network", "nic", "coalesce", "high", "get", "-n", "ornic0"},
       "PnicImpl::GetCoalesceParams"},
      {{"network", "nic", "coalesce", "high", "set", "-n", "ornic0"},
       "PnicImpl::SetCoalesceParams"},
      {{"network", "nic", "pauseParams", "list"}, "NetworkFactory::GetNetworkInfo"},
      {{"network", "nic", "pauseParams", "set", "-n", "ornic0"}, "PnicImpl::SetPauseParams"},
      {{"network", "nic", "ring", "preset", "get", "-n", "ornic0"}, "PnicImpl::GetRingParams"},
      {{"network", "nic", "ring", "current", "get", "-n", "ornic0"}, "PnicImpl::GetRingParams"},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic0", "-r", "512"},
       "PnicImpl::SetRingParams"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "host unreachable");
    auto result = Run(c.args);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "host unreachable\n");
    EXPECT_EQ(result.out, "");
  }
}

}  // namespace
