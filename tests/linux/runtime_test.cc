// What is live on a linux host's interfaces: their multicast groups, checked
// against `ip maddr`, and their switch ports' counters, against the
// kernel's counters of the bridge's end of each interface.
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

class RuntimeTest : public LinuxHostTest {
 protected:
  // orvk1 in the process's namespace and orvk2 in netstack "other", on one
  // bridge, so that what orvk1 sends to orvk2 crosses the bridge.
  void SetUp() override {
    LinuxHostTest::SetUp();
    for (auto const& args : std::vector<std::vector<std::string>>{
             {"vswitch", "standard", "add", "-v", "vSwitch1"},
             {"vswitch", "standard", "portgroup", "add", "-v", "vSwitch1", "-p", "PG1"},
             {"vswitch", "standard", "portgroup", "add", "-v", "vSwitch1", "-p", "PG2"},
             {"ip", "netstack", "add", "-N", "other"},
             {"ip", "interface", "add", "-i", "orvk1", "-p", "PG1"},
             {"ip", "interface", "ipv4", "set", "-i", "orvk1", "-t", "static", "-I", "10.50.0.10",
              "-N", "255.255.255.0"},
             {"ip", "interface", "ipv6", "set", "-i", "orvk1", "-e", "true"},
             {"ip", "interface", "ipv6", "address", "add", "-i", "orvk1", "-I",
              "2001:db8:50::10/64"},
             {"ip", "interface", "add", "-i", "orvk2", "-p", "PG2", "-N", "other"},
             {"ip", "interface", "ipv4", "set", "-i", "orvk2", "-t", "static", "-I", "10.50.0.11",
              "-N", "255.255.255.0"},
         }) {
      std::vector<std::string> line = {"network"};
      line.insert(line.end(), args.begin(), args.end());
      Ok(line);
    }
    Shell("ip link set vSwitch1 up");
  }

  // Lists as a new process would: what was loaded is forgotten.
  json List(std::vector<std::string> args) {
    Reload();
    args.insert(args.begin(), "network");
    args.insert(args.end(), {"--formatter", "json"});
    return json::parse(Ok(args));
  }

  // "group refcount" of each group interface `name` joined, from
  // `ip maddr show`: lines "inet  224.0.0.1" or "inet6 ff02::1 users 2".
  static std::set<std::string> KernelGroups(std::string const& name, std::string const& netns) {
    std::set<std::string> groups;
    std::istringstream lines(
        Shell((netns.empty() ? "" : "ip netns exec " + netns + " ") + "ip maddr show dev " + name));
    std::string line;
    while (std::getline(lines, line)) {
      std::istringstream words(line);
      std::string family, group, word;
      int users = 1;
      words >> family >> group;
      if (family != "inet" && family != "inet6") continue;
      while (words >> word) {
        if (word == "users") words >> users;
      }
      groups.insert(group + " " + std::to_string(users));
    }
    return groups;
  }
};

TEST_F(RuntimeTest, MulticastGroupsAreTheKernelsMemberships) {
  // A group joined beyond what the addresses imply, twice over for IPv6.
  Shell(
      "ip addr add 239.1.2.3/32 dev orvk1 autojoin && "
      "ip -6 addr add ff15::1234/128 dev orvk1 autojoin");
  json const listed = List({"multicast", "group", "list"});
  struct Row {
    std::string name, netns;
  } const rows[] = {{"orvk1", ""}, {"orvk2", "other"}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.name);
    std::set<std::string> shown;
    for (auto const& group : listed) {
      if (group["Interface"] != row.name) continue;
      shown.insert(group["Group"].get<std::string>() + " " +
                   std::to_string(group["Refcount"].get<int>()));
    }
    EXPECT_EQ(shown, KernelGroups(row.name, row.netns)) << listed.dump(1);
  }
  // The link-layer address of a group is the one it is received on.
  struct Mapping {
    std::string group, link_layer;
  } const mappings[] = {{"224.0.0.1", "01:00:5e:00:00:01"},
                        {"239.1.2.3", "01:00:5e:01:02:03"},
                        {"ff02::1", "33:33:00:00:00:01"},
                        {"ff15::1234", "33:33:00:00:12:34"}};
  for (auto const& mapping : mappings) {
    SCOPED_TRACE(mapping.group);
    bool found = false;
    for (auto const& group : listed) {
      if (group["Interface"] == "orvk1" && group["Group"] == mapping.group) {
        found = true;
        EXPECT_EQ(group["Link Layer"], mapping.link_layer);
      }
    }
    EXPECT_TRUE(found) << listed.dump(1);
  }
}

TEST_F(RuntimeTest, PortStatisticsAreTheBridgeEndsCounters) {
  int port = 0;
  for (auto const& nic : List({"ip", "interface", "list"})) {
    if (nic["Name"] == "orvk1") port = nic["Port ID"];
  }
  ASSERT_NE(port, 0);
  // UDP from orvk1 to orvk2, across the bridge (and ARP before it).
  Shell("bash -c 'for i in 1 2 3 4 5; do echo hello > /dev/udp/10.50.0.11/9; done'");
  auto counters = [] { return IpJson("-s link show tb-orvk1")[0]["stats64"]; };
  json const before = counters();
  json const listed = List({"port", "stats", "get", "-p", std::to_string(port)});
  json const after = counters();
  ASSERT_EQ(listed.size(), 1u);
  json const& stats = listed[0];
  EXPECT_EQ(stats["Port ID"], port);
  struct Row {
    char const* field;
    char const* way;
    char const* counter;
  } const rows[] = {{"Packets received", "rx", "packets"},
                    {"Bytes received", "rx", "bytes"},
                    {"Packets sent", "tx", "packets"},
                    {"Bytes sent", "tx", "bytes"},
                    {"Receive packets dropped", "rx", "dropped"},
                    {"Transmit packets dropped", "tx", "dropped"},
                    {"Multicast packets received", "rx", "multicast"}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.field);
    // Between two reads of the kernel: links chatter on their own.
    uint64_t const value = stats[row.field];
    EXPECT_LE(before[row.way][row.counter].get<uint64_t>(), value);
    EXPECT_GE(after[row.way][row.counter].get<uint64_t>(), value);
  }
  EXPECT_GE(stats["Packets received"].get<uint64_t>(), 6u);  // five datagrams and an ARP
  EXPECT_EQ(stats["Unicast packets received"].get<uint64_t>(),
            stats["Packets received"].get<uint64_t>() -
                stats["Multicast packets received"].get<uint64_t>() -
                stats["Broadcast packets received"].get<uint64_t>());
  Refused({"network", "port", "stats", "get", "-p", "12345"}, "Couldn't find requested port");
}

}  // namespace
}  // namespace LinuxTest
