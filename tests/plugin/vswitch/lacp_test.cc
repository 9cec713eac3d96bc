// The LACP views and the timeout command against the simulated host, and the
// reading of the LACP agent's packed per-uplink record.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/dvswitch.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
// The record's words are free functions of the plug-in, which the tests do
// not link: compiled in here.
#include "vswitch/LacpKit.cc"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;
namespace Kit = CorvaneCli::NetworkNamespace;

Args Lacp(char const* view) {
  return {"network", "vswitch", "dvs", "corvane", "lacp", view, "get"};
}
Args LacpOn(char const* view, char const* dvs) {
  Args args = Lacp(view);
  args.insert(args.end(), {"--dvs", dvs});
  return args;
}
Args Timeout(char const* value, char const* lag, char const* kds) {
  return {"network", "vswitch", "dvs", "corvane", "lacp", "timeout", "set",
          "-t",      value,     "-l",  lag,       "-s",   kds};
}

const std::string kLegend =
    "Flags=[S - Device is sending Slow LACPDUs,F - Device is sending fast LACPDUs,A - Device is "
    "in active mode,P - Device is in passive mode]";
const std::string kLagRow =
    "{DVS Name=DSwitch-Prod,LAG Name=lag1,LAG ID=1,NICs=ornic2,Enabled=true,Mode=Active,"
    "Load balance=Src and dst ip, port, vlan}";

std::string StatusRow(std::string const& localState, std::string const& localFlags) {
  return "[{DVSwitch=DSwitch-Prod,LAG ID=1,Mode=Active," + kLegend +
         ",Nic List=[{Nic=ornic2,State=Bundled,Local Information={Port State=" + localState +
         ",Flags=" + localFlags +
         ",Admin Key=13,Oper Key=13,Port Priority=255,Port Number=3},Partner Information={Device "
         "ID=00:1b:54:c2:70:00,Port State=ACT,AGG,SYN,COL,DIST,,Flags=SA,Age=00:00:12,Oper "
         "Key=301,Port Priority=32768,Port Number=17}}]}]";
}

class LacpTest : public HostTest {
 protected:
  static OrvkCtl::Sim::DistributedSwitchState& Dvs(OrvkCtl::Sim::HostModel& host) {
    return host.vswitch.distributed_switches.front();
  }
};

TEST_F(LacpTest, DefaultHostShowsItsLagInEveryView) {
  for (Args const& args : {Lacp("config"), LacpOn("config", "DSwitch-Prod")}) {
    EXPECT_EQ(Ok(args), "[" + kLagRow + "]");
  }
  EXPECT_EQ(Ok(Lacp("status")), StatusRow("ACT,AGG,SYN,COL,DIST,", "SA"));
  EXPECT_EQ(Ok(LacpOn("stats", "DSwitch-Prod")),
            "[{DVSwitch=DSwitch-Prod,NIC=ornic2,LAG ID=1,Tx LACPDUs=51866,Tx Errors=2,"
            "Rx LACPDUs=51842,Rx Errors=0}]");
  for (char const* view : {"config", "status", "stats"}) {
    for (char const* formatter : {"simple", "table", "json", "xml", "csv"}) {
      SCOPED_TRACE(std::string(view) + " " + formatter);
      auto printed = Run(
          {"--formatter", formatter, "network", "vswitch", "dvs", "corvane", "lacp", view, "get"});
      EXPECT_EQ(printed.status, 0) << printed.err;
      EXPECT_NE(printed.out.find("ornic2"), std::string::npos);
    }
  }
}

TEST_F(LacpTest, TimeoutChangesTheActorStateAndPersists) {
  EXPECT_EQ(Ok(Timeout("true", "1", "DSwitch-Prod")), "true");
  Reload();
  EXPECT_EQ(Ok(Lacp("status")), StatusRow("ACT,FTO,AGG,SYN,COL,DIST,", "FA"));
  Args one = Timeout("false", "1", "DSwitch-Prod");
  one.insert(one.end(), {"-n", "ornic2"});
  EXPECT_EQ(Ok(one), "true");
  EXPECT_EQ(Ok(Lacp("status")), StatusRow("ACT,AGG,SYN,COL,DIST,", "SA"));

  SeedHost();
  std::string before = StateFileText();
  Refused(Timeout("true", "7", "DSwitch-Prod"), {"No running LAG with ID 7 on DSwitch-Prod"});
  Refused(Timeout("true", "1", "DSwitch-Lab"), {"Distributed switch DSwitch-Lab not found"});
  // The LAG ID goes to the host as 32 unsigned bits.
  Refused(Timeout("true", "-1", "DSwitch-Prod"),
          {"No running LAG with ID 4294967295 on DSwitch-Prod"});
  Args stranger = Timeout("true", "1", "DSwitch-Prod");
  stranger.insert(stranger.end(), {"--nic-name", "ornic3"});
  Refused(stranger, {"Uplink ornic3 is not in LAG 1"});
  InjectFault("DVSwitchImpl::SetLacpTimeout", "agent busy");
  Refused(Timeout("true", "1", "DSwitch-Prod"), {"agent busy"});
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(LacpTest, UplinkPortGroupsWithLacpOfTheirOwn) {
  // Uplinks in the map: ornic3 runs LACP through its group; ornic2 sorts
  // first and is not enabled, which leaves a leading comma.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    for (auto& port : Dvs(host).uplink_ports) {
      if (port.uplink == "ornic3") {
        port.lacp_enabled = true;
        port.lacp_mode = 2;
      }
    }
    Dvs(host).lags.clear();
  });
  EXPECT_EQ(Ok(Lacp("config")),
            "[{DVS Name=DSwitch-Prod,LAG Name=default_uplink_pg_lag,LAG ID=0,NICs=,ornic3,"
            "Enabled=true,Mode=Passive,Load balance=---}]");
  // Without a map: the first enabled port of each port group stands for it.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    for (auto& port : Dvs(host).uplink_ports) port.uplink.clear();
    for (char const* id : {"5", "3", "9"}) {
      for (auto& port : Dvs(host).ports) {
        if (port.id == id) port.lacp_enabled = true;
      }
    }
  });
  std::string pgRow =
      "{DVS Name=DSwitch-Prod,LAG Name=default_uplink_pg_lag,LAG ID=0,NICs=,Enabled=true,"
      "Mode=Active,Load balance=---}";
  // The uplink ports are DVPorts too: their group comes first.
  std::string uplinkRow =
      "{DVS Name=DSwitch-Prod,LAG Name=default_uplink_pg_lag,LAG ID=0,NICs=,Enabled=true,"
      "Mode=Passive,Load balance=---}";
  EXPECT_EQ(Ok(Lacp("config")), "[" + uplinkRow + "," + pgRow + "," + pgRow + "]");
  // Nothing enabled anywhere.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    for (auto& port : Dvs(host).ports) port.lacp_enabled = false;
    for (auto& port : Dvs(host).uplink_ports) port.lacp_enabled = false;
  });
  Refused(Lacp("config"), {"LACP is disabled on DVSwitch."});
}

TEST_F(LacpTest, MissingSwitchesGroupsAndUplinks) {
  Refused(LacpOn("status", "DSwitch-Lab"), {"Distributed switch DSwitch-Lab not found"});
  // A running group without uplinks: a row for status, a message for stats.
  OrvkCtl::Sim::ChangeHost(
      [](OrvkCtl::Sim::HostModel& host) { Dvs(host).lags[0].members.clear(); });
  EXPECT_EQ(Ok(Lacp("status")),
            "[{DVSwitch=DSwitch-Prod,LAG ID=1,Mode=Active," + kLegend + ",Nic List=[]}]");
  Refused(Lacp("stats"), {"No pnic is connected to DVSwitch."});
  OrvkCtl::Sim::ChangeHost(
      [](OrvkCtl::Sim::HostModel& host) { Dvs(host).lags[0].running = false; });
  Refused(LacpOn("status", "DSwitch-Prod"), {"No running LACP group on the host."});
  Refused(Lacp("stats"), {"No running LACP group on the host."});
  OrvkCtl::Sim::ChangeHost(
      [](OrvkCtl::Sim::HostModel& host) { host.vswitch.distributed_switches.clear(); });
  for (char const* view : {"config", "status", "stats"}) {
    SCOPED_TRACE(view);
    Refused(Lacp(view), {"LACP is supported on Corvane DVSwitch only, and there is no DVSwitch "
                         "configured on host."});
  }
}

TEST_F(LacpTest, HostFailuresPassTheLibrarysWords) {
  for (char const* operation :
       {"VirtualSwitchInfoImpl::GetDVSwitches", "DVSwitchImpl::GetUplinkPorts",
        "NetworkFactory::GetDVPort", "DVPortImpl::GetPortName", "DVSwitchImpl::GetLagConfigs"}) {
    SCOPED_TRACE(operation);
    InjectFault(operation, "host unreachable");
    Refused(Lacp("config"), {"host unreachable"});
    ClearFaults();
  }
  InjectFault("DVSwitchImpl::GetLacpGroups", "agent down");
  Refused(Lacp("status"), {"agent down"});
  Refused(Lacp("stats"), {"agent down"});
}

// The record as the agent lays it out, byte by byte.
TEST(LacpRecordTest, FieldsAtTheirOffsets) {
  std::array<uint8_t, 213> bytes{};
  auto text = [&](size_t offset, char const* value) {
    std::memcpy(bytes.data() + offset, value, std::strlen(value));
  };
  auto number = [&](size_t offset, uint64_t value, size_t size) {
    for (size_t i = 0; i < size; ++i) bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
  };
  text(0, "ornic7");
  // A text that fills its whole width has no NUL.
  text(32, "Hot-standby-with-a-long-state-xx");
  number(64, 0x0102, 2);
  number(66, 0x0304, 2);
  number(68, 0x0506, 2);
  number(70, 0x0708, 2);
  bytes[72] = 0x05;
  bytes[73] = 0xff;
  text(74, "FP");
  number(106, 3725, 4);
  number(110, 0x1112, 2);
  number(112, 0x1314, 2);
  number(114, 0x1516, 2);
  bytes[116] = 0xff;
  text(117, "02:00:00:aa:bb:cc");
  text(149, "SA");
  number(181, 0x0102030405060708ull, 8);
  number(189, 42, 8);
  number(197, 7, 8);
  number(205, 0x8000000000000001ull, 8);

  // Fields of a packed record are read by value.
  auto value = [](auto field) { return field; };
  HostCtl::Network::LacpPortRecord record;
  static_assert(sizeof(record) == bytes.size());
  std::memcpy(&record, bytes.data(), bytes.size());
  EXPECT_EQ(Kit::LacpRecordText(record.nicName, 32), "ornic7");
  EXPECT_EQ(Kit::LacpRecordText(record.state, 32), "Hot-standby-with-a-long-state-xx");
  EXPECT_EQ(value(record.localPortNumber), 0x0102);
  EXPECT_EQ(value(record.localPortPriority), 0x0304);
  EXPECT_EQ(value(record.localAdminKey), 0x0506);
  EXPECT_EQ(value(record.localOperKey), 0x0708);
  EXPECT_EQ(Kit::LacpPortStateText(value(record.localPortState)), "ACT,AGG,");
  EXPECT_EQ(Kit::LacpRecordText(record.localFlags, 32), "FP");
  EXPECT_EQ(Kit::LacpAgeText(value(record.partnerAge)), "01:02:05");
  EXPECT_EQ(value(record.partnerPortNumber), 0x1112);
  EXPECT_EQ(value(record.partnerPortPriority), 0x1314);
  EXPECT_EQ(value(record.partnerOperKey), 0x1516);
  EXPECT_EQ(Kit::LacpPortStateText(value(record.partnerPortState)),
            "ACT,FTO,AGG,SYN,COL,DIST,DEF,EXP,");
  EXPECT_EQ(Kit::LacpRecordText(record.partnerDeviceId, 32), "02:00:00:aa:bb:cc");
  EXPECT_EQ(Kit::LacpRecordText(record.partnerFlags, 32), "SA");
  EXPECT_EQ(value(record.rxLacpdus), 0x0102030405060708ull);
  EXPECT_EQ(value(record.txLacpdus), 42u);
  EXPECT_EQ(value(record.rxErrors), 7u);
  EXPECT_EQ(value(record.txErrors), 0x8000000000000001ull);
}

TEST(LacpRecordTest, StateAndAgeWords) {
  struct Case {
    uint8_t state;
    char const* text;
  };
  for (Case const& c : {Case{0x00, ""}, Case{0x01, "ACT,"}, Case{0x80, "EXP,"},
                        Case{0x3d, "ACT,AGG,SYN,COL,DIST,"}}) {
    SCOPED_TRACE(c.state);
    EXPECT_EQ(Kit::LacpPortStateText(c.state), c.text);
  }
  struct Age {
    uint32_t seconds;
    char const* text;
  };
  for (Age const& c : {Age{0, "00:00:00"}, Age{59, "00:00:59"}, Age{3600, "01:00:00"},
                       Age{360000, "100:00:00"}, Age{4294967295u, "1193046:28:15"}}) {
    SCOPED_TRACE(c.seconds);
    EXPECT_EQ(Kit::LacpAgeText(c.seconds), c.text);
  }
}

}  // namespace
