// Physical NICs of a linux host: the sandbox's veth ends ornic0 and ornic1.
// What veth has (offloads, channels, counters) is read and changed through
// ethtool; what it has not is a clear error that changes nothing.
#include <string>
#include <vector>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

class NicTest : public LinuxHostTest {};

TEST_F(NicTest, ListAgreesWithTheKernel) {
  std::string const list = Ok({"network", "nic", "list", "--formatter", "json"});
  auto const rows = nlohmann::json::parse(list);
  auto const links = IpJson("link show");
  size_t nics = 0;
  for (auto const& link : links) {
    std::string const name = link["ifname"];
    if (name == "lo") continue;
    ++nics;
    bool found = false;
    for (auto const& row : rows) {
      if (row["Name"] != name) continue;
      found = true;
      EXPECT_EQ(row["MAC Address"], link["address"]) << name;
      EXPECT_EQ(row["MTU"], link["mtu"]) << name;
      EXPECT_EQ(row["Driver"], "veth") << name;
    }
    EXPECT_TRUE(found) << name << " missing from\n" << list;
  }
  EXPECT_EQ(rows.size(), nics) << list;
}

TEST_F(NicTest, DownAndUpReachTheKernelAndANewProcessSeesThem) {
  Ok({"network", "nic", "down", "-n", "ornic1"});
  auto link = IpJson("link show ornic1");
  ASSERT_EQ(link.size(), 1u);
  auto const& flags = link[0]["flags"];
  EXPECT_EQ(std::find(flags.begin(), flags.end(), "UP"), flags.end()) << flags;

  OrvkCtl::Sim::ResetHostForTest();  // lets the other process take the host's lock
  auto other = TestSupport::RunProcess({"network", "nic", "get", "-n", "ornic1"});
  EXPECT_EQ(other.status, 0) << other.err;
  EXPECT_NE(other.out.find("Link Status: Down"), std::string::npos) << other.out;

  Ok({"network", "nic", "up", "-n", "ornic1"});
  link = IpJson("link show ornic1");
  auto const& up = link[0]["flags"];
  EXPECT_NE(std::find(up.begin(), up.end(), "UP"), up.end()) << up;
}

TEST_F(NicTest, AnUnknownNicChangesNothing) {
  std::string const before = Shell("ip -j link show");
  Refused({"network", "nic", "down", "-n", "ornic9"}, "ornic9");
  EXPECT_EQ(Shell("ip -j link show"), before);
}

using nlohmann::json;

class NicDetailsTest : public LinuxHostTest {
 protected:
  // The JSON rows of a listing, in a new process: what the kernel holds,
  // not what this process kept.
  static json Fresh(TestSupport::Args args) {
    OrvkCtl::Sim::ResetHostForTest();
    args.insert(args.end(), {"--formatter", "json"});
    auto run = TestSupport::RunProcess(args);
    EXPECT_EQ(run.status, 0) << run.err;
    return json::parse(run.out, nullptr, false);
  }

  // The value of `column` in the row of `nic`.
  static json Column(json const& rows, std::string const& nic, std::string const& column) {
    for (auto const& row : rows) {
      if (row["NIC"] == nic) return row[column];
    }
    return nullptr;
  }
};

TEST_F(NicDetailsTest, CountersAreTheKernels) {
  auto counter = [](char const* way, char const* what) {
    return IpJson("-s link show ornic0")[0]["stats64"][way][what].get<uint64_t>();
  };
  uint64_t const low = counter("rx", "packets");
  auto const rows = json::parse(Ok({"network", "nic", "stats", "get", "-n", "ornic0",
                                    "--formatter", "json"}));
  uint64_t const high = counter("rx", "packets");
  ASSERT_EQ(rows.size(), 1u) << rows;
  uint64_t const shown = rows[0]["Packets received"];
  EXPECT_GE(shown, low);
  EXPECT_LE(shown, high);
}

// Each offload veth can change goes off and on again, as the kernel then
// reports it to a new process; the kernel's order (TX checksumming under
// scatter-gather under segmentation) is kept by refusing the wrong order.
TEST_F(NicDetailsTest, OffloadsReachTheKernel) {
  struct Offload {
    char const* word;
    char const* column;
  };
  std::vector<Offload> const order = {{"tso", "Value"}, {"sg", "Value"},
                                      {"cso", "TX Checksum Offload"}};
  for (auto const& offload : order) {
    SCOPED_TRACE(offload.word);
    Ok({"network", "nic", offload.word, "set", "-n", "ornic1", "-e", "0"});
    auto const rows = Fresh({"network", "nic", offload.word, "get"});
    EXPECT_EQ(Column(rows, "ornic1", offload.column), "off") << rows;
    EXPECT_EQ(Column(rows, "ornic0", offload.column), "on") << rows;
  }
  Refused({"network", "nic", "tso", "set", "-n", "ornic1", "-e", "1"},
          "On ornic1, TCP segmentation offload needs scatter-gather: turn that on first");
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    SCOPED_TRACE(it->word);
    Ok({"network", "nic", it->word, "set", "-n", "ornic1", "-e", "1"});
    EXPECT_EQ(Column(Fresh({"network", "nic", it->word, "get"}), "ornic1", it->column), "on");
  }
  Refused({"network", "nic", "cso", "set", "-n", "ornic1", "-e", "0"},
          "Turning TX checksum offload off on ornic1 turns scatter-gather off too");
}

TEST_F(NicDetailsTest, QueueCountsAreTheChannels) {
  auto const before = Fresh({"network", "nic", "queue", "count", "get"});
  ASSERT_EQ(Column(before, "ornic0", "Tx netqueue count"), 1) << before;
  // veth has as many channels as the machine has processors.
  if (Shell("nproc") == "1\n") GTEST_SKIP() << "one processor: one channel";
  Ok({"network", "nic", "queue", "count", "set", "-n", "ornic0", "-t", "true", "-q", "2"});
  auto const after = Fresh({"network", "nic", "queue", "count", "get"});
  EXPECT_EQ(Column(after, "ornic0", "Tx netqueue count"), 2) << after;
  EXPECT_EQ(Column(after, "ornic0", "Rx netqueue count"), 1) << after;
  EXPECT_EQ(Column(after, "ornic1", "Tx netqueue count"), 1) << after;
}

// What veth has no command for, and what a linux host has no counterpart
// for, is refused with a plain message; neither the kernel's links nor what
// a new process reads of the NIC change.
TEST_F(NicDetailsTest, WhatTheDriverOrTheHostLacksIsRefused) {
  std::vector<Refusal> const cases = {
      {{"network", "nic", "ring", "current", "set", "-n", "ornic0", "-r", "100"},
       "Ring parameters are not supported by ornic0"},
      {{"network", "nic", "coalesce", "set", "-n", "ornic0", "-r", "10"},
       "Interrupt coalescing is not supported by ornic0"},
      {{"network", "nic", "pauseParams", "set", "-n", "ornic0", "-r", "true"},
       "Pause parameters are not supported by ornic0"},
      {{"network", "nic", "set", "-n", "ornic0", "-S", "1000", "-D", "full"},
       "Speed 1000 Mbps full duplex is not supported by ornic0"},
      {{"network", "nic", "set", "-n", "ornic0", "-a"}, "ornic0 does not support auto negotiation"},
      {{"network", "nic", "set", "-n", "ornic0", "-P", "3"},
       "Changing the port, PHY address or transceiver on ornic0 is not available on a linux host"},
      {{"network", "nic", "software", "set", "-n", "ornic0", "--sg", "true"},
       "Software simulation of offloads on ornic0 is not available on a linux host"},
      {{"network", "nic", "attachment", "add", "-t", "ornic0", "-b", "ornic1", "-v", "5"},
       "Uplink attachment on ornic0 is not available on a linux host"},
      {{"network", "nic", "eeprom", "dump", "-n", "ornic0"}, "EEPROM access is not supported"},
      {{"network", "nic", "dcb", "status", "get", "-n", "ornic0"}, "DCB is not supported"},
      {{"network", "nic", "queue", "count", "set", "-n", "ornic0", "-r", "true", "-q", "999"},
       "out of range"},
      {{"network", "ens", "maxLcores", "set", "-n", "4"},
       "ENS (enhanced networking) is not available on a linux host"},
      {{"network", "ens", "lcore", "add", "-l", "1"}, "The host has no ENS contexts"},
      {{"network", "vswitch", "dvs", "corvane", "lacp", "timeout", "set", "-s", "DSwitch", "-l",
        "1", "-t", "1"},
       "Distributed switch DSwitch not found"},
  };
  std::string const links = Shell("ip -j -d link show");
  std::string const nic = Fresh({"network", "nic", "get", "-n", "ornic0"}).dump();
  for (auto const& row : cases) {
    SCOPED_TRACE(row.message);
    Refused(row.args, row.message);
    EXPECT_EQ(Shell("ip -j -d link show"), links);
  }
  EXPECT_EQ(Fresh({"network", "nic", "get", "-n", "ornic0"}).dump(), nic);
}

// Lists of what such a host has none of are empty.
TEST_F(NicDetailsTest, WhatTheHostHasNoneOfListsEmpty) {
  for (auto const& args : {TestSupport::Args{"network", "sriovnic", "list"},
                           TestSupport::Args{"network", "vswitch", "dvs", "corvane", "list"},
                           TestSupport::Args{"network", "ens", "lcore", "list"},
                           TestSupport::Args{"network", "vm", "list"},
                           TestSupport::Args{"network", "nic", "attachment", "list"}}) {
    SCOPED_TRACE(args[2]);
    auto const rows = json::parse(Ok([&] {
      auto json_args = args;
      json_args.insert(json_args.end(), {"--formatter", "json"});
      return json_args;
    }()));
    EXPECT_TRUE(rows.empty()) << rows;
  }
}

// Where both hosts show the same record, its shape is the same.
TEST_F(NicDetailsTest, RecordsHaveTheSimulatedHostsShape) {
  for (auto const& args : {TestSupport::Args{"network", "nic", "get", "-n", "ornic0"},
                           TestSupport::Args{"network", "nic", "stats", "get", "-n", "ornic0"}}) {
    SCOPED_TRACE(args[2]);
    auto with_json = args;
    with_json.insert(with_json.end(), {"--formatter", "json"});
    auto const linux_record = json::parse(Ok(with_json));
    auto const sim = TestSupport::RunProcess(with_json, {{"TOOLBASE_HOST", "sim"}});
    ASSERT_EQ(sim.status, 0) << sim.err;
    auto const sim_record = json::parse(sim.out);
    std::vector<std::string> linux_keys;
    std::vector<std::string> sim_keys;
    for (auto const& [key, value] : linux_record.items()) linux_keys.push_back(key);
    for (auto const& [key, value] : sim_record.items()) sim_keys.push_back(key);
    EXPECT_EQ(linux_keys, sim_keys);
  }
}

}  // namespace
}  // namespace LinuxTest
