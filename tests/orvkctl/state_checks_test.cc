// What loading the state file checks beyond JSON types: enumerations and
// ranges, names without NUL characters, one "format", one ruleset per id;
// and which host operations faults may name.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

#include "fault.h"
#include "host_store.h"
#include "hostctl/lib.h"
#include "state_file_test.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using StateChecksTest = TestSupport::StateFileTest;

// The default host's file with the first `from` replaced by `to`.
std::string DefaultWith(std::string_view from, std::string_view to) {
  std::string text = OrvkCtl::Sim::HostToJson(OrvkCtl::Sim::DefaultHost());
  size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;  // else the case tests nothing
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

TEST_F(StateChecksTest, ValuesOutOfRangeAreACorruptFileNamingTheField) {
  struct Case {
    std::string_view from;
    std::string_view to;
    std::string_view reason;
  };
  Case const cases[] = {
      {"\"load_balance\":19", "\"load_balance\":4000000",
       "in \"vswitch\": distributed_switches[0].lags[0].load_balance: expected an integer from 0 "
       "to 20"},
      {"\"load_balance\":19", "\"load_balance\":-1", "load_balance: expected an integer from 0"},
      {"\"name\":\"lag1\",", "\"name\":\"lag1\",\"mode\":3,",
       "lags[0].mode: expected an integer from 1 to 2"},
      {"\"nic\":\"ornic2\",", "\"nic\":\"ornic2\",\"state\":\"Up\",",
       "lags[0].members[0].state: expected one of \"Bundled\", \"Independent\", \"Hot-standby\", "
       "\"Suspended\", \"Down\""},
      {"\"port_begin\":68", "\"port_begin\":70000",
       "in \"firewall\": dynamic_rules[0].port_begin: expected an integer from 0 to 65535"},
      {"\"port_end\":68", "\"port_end\":67",
       "dynamic_rules[0].port_begin: the first port is after the last, 67"},
      {"\"destination_port\":22", "\"destination_port\":65536",
       "in \"ip\": ipsec_sps[0].destination_port: expected an integer from 0 to 65535"},
      {"\"id\":\"dhcpClient\"", "\"id\":\"sshServer\"",
       "in \"firewall\": rulesets[2].id: the ruleset id of rulesets[0] again"},
      {"\"hostname\":\"halden-01\"", "\"hostname\":\"halden\\u0000-01\"",
       "in \"hostname\": expected a string without NUL characters"},
      {"\"state\":4660,", "\"state\":4660,\"ecn_status\":\"often\",",
       "netstacks[0].ecn_status: expected one of \"disabled\", \"enabled\", \"echo-only\""},
      {"\"tags\":[1]", "\"tags\":[1,14]", "interfaces[0].tags[1]: expected an integer from 1 to 13"},
      {"/64\"}", "/64\",\"type\":8}", "ipv6_addresses[0].type: expected one of 0, 7, 9"},
      {"\"type\":4,", "\"type\":2,", "ports[0].type: expected one of 1, 3, 4"},
      {"\"affinity\":0", "\"affinity\":-2", "lcores[0].affinity: expected an integer from -1"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.to);
    ExpectCorruptAndUntouched(DefaultWith(c.from, c.to), std::string(c.reason));
  }
}

TEST_F(StateChecksTest, ATwiceGivenFormatIsRefused) {
  std::string text = DefaultWith("{\"format\":1,\"layout\":\"compact\",", "{\"format\":1,\"format\":2,");
  ExpectCorruptAndUntouched(text, "\"format\" is given twice");
}

// What a load would refuse is not written either: the change fails and the
// file stays as it was.
TEST_F(StateChecksTest, ATextWithANulCharacterIsNotStored) {
  OrvkCtl::Sim::ReadHost();
  std::string const before = StateFileText();
  EXPECT_ANY_THROW(OrvkCtl::Sim::ChangeHost(OrvkCtl::Sim::kAreaIp, [](auto& host) {
    host.ip.hosts.push_back({"10.9.9.9", "nulhost", {}, std::string("a\0b", 3)});
  }));
  EXPECT_EQ(StateFileText(), before);
  EXPECT_EQ(OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaIp).ip.hosts.back().hostname != "nulhost",
            true);
}

// Records read one by one (physical NICs, port groups) are checked when a
// command reads them: the command fails with the file's path and the field.
TEST_F(StateChecksTest, ACommandOnARecordOutOfRangeFailsClearly) {
  struct Case {
    std::string_view from;
    std::string_view to;
    std::vector<std::string> command;
    std::string_view reason;
  };
  Case const cases[] = {
      {"\"load_balance\":19", "\"load_balance\":4000000",
       {"network", "vswitch", "dvs", "corvane", "lacp", "config", "get"},
       "lags[0].load_balance: expected an integer from 0 to 20"},
      {"\"supported_ports\":[0]", "\"supported_ports\":[0,9]", {"network", "nic", "list"},
       "in \"nic\": pnics[0]: supported_ports[1]: expected an integer from 0 to 6"},
      {"\"vlan_id\":20", "\"vlan_id\":5000",
       {"network", "vswitch", "standard", "portgroup", "list"},
       "in \"vswitch\": port_groups[0]: vlan_id: expected an integer from 0 to 4095"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.to);
    std::string const text = DefaultWith(c.from, c.to);
    WriteState(text);
    auto result = TestSupport::RunProcess(c.command, {{"TOOLBASE_HOST_STATE", state_path_}});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("Host state file " + state_path_ + " is corrupt: "),
              std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find(c.reason), std::string::npos) << result.err;
    EXPECT_EQ(StateFileText(), text);
  }
}

TEST(HostOperationsTest, NamesAreUniqueAndOfTheirForm) {
  std::set<std::string_view> seen;
  for (std::string_view name : OrvkCtl::Sim::kOperationNames) {
    EXPECT_TRUE(seen.insert(name).second) << name;
    OrvkCtl::Sim::Operation found;
    ASSERT_TRUE(OrvkCtl::Sim::FindOperation(name, found)) << name;
    EXPECT_EQ(OrvkCtl::Sim::kOperationNames[static_cast<size_t>(found)], name);
  }
  EXPECT_EQ(seen.size(), OrvkCtl::Sim::kOperationCount);
}

TEST_F(StateChecksTest, FaultsNamingNoOperationAreRefused) {
  EXPECT_THROW(OrvkCtl::Sim::SetFaultForTest("ModuleImpl::Unlaod", "x"), HostCtlException);
  for (std::string faults : {"ModuleImpl::Unlaod=module busy", "ModuleImpl::Unload"}) {
    SCOPED_TRACE(faults);
    auto result = TestSupport::RunProcess(
        {"network", "firewall", "get"},
        {{"TOOLBASE_HOST_STATE", state_path_}, {"TOOLBASE_HOST_FAULTS", faults}});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("TOOLBASE_HOST_FAULTS: "), std::string::npos) << result.err;
  }
}

}  // namespace
