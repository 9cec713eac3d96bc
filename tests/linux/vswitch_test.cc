// Standard switches of a linux host: bridges of the sandbox's namespace,
// with the veth ends ornic0 and ornic1 as their uplinks.
#include <fstream>
#include <string>
#include <vector>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

class VswitchTest : public LinuxHostTest {
 protected:
  // What the kernel holds of each link that a change could touch (not its
  // operational state, which follows the wire), as text.
  static std::string KernelLinks() {
    std::string text;
    for (auto const& link : IpJson("link show")) {
      text += link["ifname"].get<std::string>() + " mtu " + link["mtu"].dump() + " master " +
              link.value("master", "-") + " " + link["flags"].dump() + "\n";
    }
    return text;
  }

  // The row of `name` in the JSON output of `args`, or null.
  json Row(TestSupport::Args args, std::string const& name) {
    args.insert(args.end(), {"--formatter", "json"});
    for (auto const& row : json::parse(Ok(args))) {
      if (row["Name"] == name) return row;
    }
    return nullptr;
  }

  // A switch vSwitchT with uplink ornic1, port group "Test Network" and an
  // MTU of 9000, made by `run`.
  template <typename Run>
  static void MakeTestSwitch(Run run) {
    run({"network", "vswitch", "standard", "add", "-v", "vSwitchT"});
    run({"network", "vswitch", "standard", "uplink", "add", "-v", "vSwitchT", "-u", "ornic1"});
    run({"network", "vswitch", "standard", "portgroup", "add", "-v", "vSwitchT", "-p",
         "Test Network"});
    run({"network", "vswitch", "standard", "set", "-v", "vSwitchT", "-m", "9000"});
  }
};

TEST_F(VswitchTest, ASwitchIsABridgeAndItsUplinksItsPorts) {
  MakeTestSwitch([this](TestSupport::Args const& args) { Ok(args); });

  auto const bridge = IpJson("link show vSwitchT");
  ASSERT_EQ(bridge.size(), 1u);
  EXPECT_EQ(bridge[0]["mtu"], 9000);
  EXPECT_EQ(IpJson("-d link show vSwitchT")[0]["linkinfo"]["info_kind"], "bridge");
  auto const ports = json::parse(Shell("bridge -j link"));
  ASSERT_EQ(ports.size(), 1u) << ports;
  EXPECT_EQ(ports[0]["ifname"], "ornic1");
  EXPECT_EQ(ports[0]["master"], "vSwitchT");

  // A new process sees the switch, with the port group the backend keeps.
  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess(
      {"network", "vswitch", "standard", "portgroup", "list", "--formatter", "json"});
  ASSERT_EQ(other.status, 0) << other.err;
  auto const groups = json::parse(other.out);
  ASSERT_EQ(groups.size(), 1u) << other.out;
  EXPECT_EQ(groups[0]["Name"], "Test Network");
  EXPECT_EQ(groups[0]["Virtual Switch"], "vSwitchT");
  EXPECT_EQ(groups[0]["VLAN ID"], 0);

  Ok({"network", "vswitch", "standard", "portgroup", "remove", "-v", "vSwitchT", "-p",
      "Test Network"});
  Ok({"network", "vswitch", "standard", "uplink", "remove", "-v", "vSwitchT", "-u", "ornic1"});
  EXPECT_EQ(Shell("bridge -j link"), "[]\n");
  Ok({"network", "vswitch", "standard", "remove", "-v", "vSwitchT"});
  EXPECT_TRUE(IpJson("link show type bridge").empty());
  EXPECT_EQ(Row({"network", "vswitch", "standard", "list"}, "vSwitchT"), nullptr);
}

// The kernel tells which links are a bridge's ports, not in which order
// they were added: the backend keeps the order, and a new process shows it.
TEST_F(VswitchTest, UplinksKeepTheOrderTheyWereAddedIn) {
  Ok({"network", "vswitch", "standard", "add", "-v", "vsA"});
  Ok({"network", "vswitch", "standard", "uplink", "add", "-v", "vsA", "-u", "ornic1"});
  Ok({"network", "vswitch", "standard", "uplink", "add", "-v", "vsA", "-u", "ornic0"});
  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess(
      {"network", "vswitch", "standard", "list", "--formatter", "json"});
  ASSERT_EQ(other.status, 0) << other.err;
  EXPECT_EQ(json::parse(other.out)[0]["Uplinks"], json::array({"ornic1", "ornic0"}));
}

// The same commands on the simulated host (after freeing ornic1 there) give
// the same rows.
TEST_F(VswitchTest, RowsAgreeWithTheSimulatedHost) {
  std::map<std::string, std::string> const sim = {{"TOOLBASE_HOST", "sim"}};
  auto on_sim = [&](TestSupport::Args const& args) {
    auto run = TestSupport::RunProcess(args, sim);
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    return run.out;
  };
  on_sim({"network", "vswitch", "standard", "uplink", "remove", "-v", "vSwitch0", "-u", "ornic1"});
  MakeTestSwitch(on_sim);
  MakeTestSwitch([this](TestSupport::Args const& args) { Ok(args); });

  for (auto const& list : {TestSupport::Args{"network", "vswitch", "standard", "list"},
                           TestSupport::Args{"network", "vswitch", "standard", "portgroup",
                                             "list"}}) {
    std::string const name = list.size() == 4 ? "vSwitchT" : "Test Network";
    SCOPED_TRACE(name);
    json simulated;
    auto args = list;
    args.insert(args.end(), {"--formatter", "json"});
    for (auto const& row : json::parse(on_sim(args))) {
      if (row["Name"] == name) simulated = row;
    }
    ASSERT_FALSE(simulated.is_null());
    EXPECT_EQ(Row(list, name), simulated);
  }
}

TEST_F(VswitchTest, ABridgeMadeByAnotherToolIsASwitch) {
  Shell("ip link add br9 type bridge && ip link set ornic0 master br9");
  auto const row = Row({"network", "vswitch", "standard", "list"}, "br9");
  ASSERT_FALSE(row.is_null());
  EXPECT_EQ(row["Uplinks"], json::array({"ornic0"}));
  EXPECT_EQ(row["MTU"], 1500);
  Ok({"network", "vswitch", "standard", "remove", "-v", "br9"});
  EXPECT_TRUE(IpJson("link show type bridge").empty());
}

// What has no kernel counterpart, or that the host's rules refuse, is a
// clear error and leaves the kernel and the listings as they were.
TEST_F(VswitchTest, RefusedChangesChangeNothing) {
  Ok({"network", "vswitch", "standard", "add", "-v", "vSwitch1"});
  Ok({"network", "vswitch", "standard", "uplink", "add", "-v", "vSwitch1", "-u", "ornic0"});
  Ok({"network", "vswitch", "standard", "portgroup", "add", "-v", "vSwitch1", "-p", "PG"});
  Ok({"network", "vswitch", "standard", "add", "-v", "vSwitch2"});
  std::vector<Refusal> const cases = {
      {{"network", "vswitch", "standard", "portgroup", "set", "-p", "PG", "--vlan-id", "20"},
       "Port group PG cannot use VLAN 20: VLANs need bridge VLAN filtering"},
      {{"network", "vswitch", "standard", "set", "-v", "vSwitch1", "-c", "both"},
       "Setting the CDP status of virtual switch vSwitch1 is not available on a linux host"},
      {{"network", "vswitch", "standard", "policy", "security", "set", "-v", "vSwitch1",
        "--allow-promiscuous", "true"},
       "Setting the security policy of virtual switch vSwitch1 is not available on a linux host"},
      {{"network", "vswitch", "standard", "policy", "shaping", "set", "-v", "vSwitch1", "-e",
        "true", "-b", "1000", "-k", "2000", "-t", "100"},
       "Setting the traffic shaping policy of virtual switch vSwitch1 is not available"},
      {{"network", "vswitch", "standard", "policy", "failover", "set", "-v", "vSwitch1", "-l",
        "iphash"},
       "Setting the failover policy of virtual switch vSwitch1 is not available"},
      {{"network", "vswitch", "standard", "portgroup", "policy", "security", "set", "-p", "PG",
        "--allow-forged-transmits", "true"},
       "Setting the security policy of port group PG is not available on a linux host"},
      {{"network", "vswitch", "standard", "add", "-v", "a-name-too-long-for-linux"},
       "cannot name a bridge on a linux host: at most 15 characters"},
      {{"network", "vswitch", "standard", "add", "-v", "ornic1"}, "Cannot create bridge ornic1"},
      {{"network", "vswitch", "standard", "uplink", "add", "-v", "vSwitch2", "-u", "ornic0"},
       "it is already an uplink of vSwitch1"},
      {{"network", "vswitch", "standard", "uplink", "add", "-v", "vSwitch2", "-u", "ornic7"},
       "no physical NIC of that name"},
      {{"network", "vswitch", "standard", "set", "-v", "vSwitch1", "-m", "99999"},
       "Invalid MTU 99999"},
  };
  std::string const kernel = KernelLinks();
  std::string const switches = Ok({"network", "vswitch", "standard", "list"});
  for (auto const& row : cases) {
    SCOPED_TRACE(row.args.back());
    Refused(row.args, row.message);
    EXPECT_EQ(KernelLinks(), kernel);
    OrvkCtl::Sim::ResetHostForTest();
    EXPECT_EQ(Ok({"network", "vswitch", "standard", "list"}), switches);
  }
  // Showing the policies gives the defaults.
  EXPECT_NE(Ok({"network", "vswitch", "standard", "policy", "security", "get", "-v", "vSwitch1"})
                .find("Allow Promiscuous: false"),
            std::string::npos);
}

// A batch that fails on its last line leaves the kernel as it was: the
// bridge, its uplink and the NIC's offload made by earlier lines are undone,
// and the switch it removed is back with its uplink.
TEST_F(VswitchTest, AFailedBatchUndoesItsEarlierLines) {
  Ok({"network", "vswitch", "standard", "add", "-v", "vsB"});
  Ok({"network", "vswitch", "standard", "set", "-v", "vsB", "-m", "2000"});
  Ok({"network", "vswitch", "standard", "uplink", "add", "-v", "vsB", "-u", "ornic1"});
  std::string const batch = dir_ + "/batch";
  std::ofstream(batch) << "network vswitch standard uplink remove -v vsB -u ornic1\n"
                          "network vswitch standard remove -v vsB\n"
                          "network vswitch standard add -v vsA\n"
                          "network vswitch standard uplink add -v vsA -u ornic0\n"
                          "network nic tso set -n ornic1 -e 0\n"
                          "network vswitch standard portgroup add -v vsA -p PG\n"
                          "network vswitch standard portgroup set -p PG --vlan-id 7\n";
  std::string const kernel = KernelLinks();
  OrvkCtl::Sim::ResetHostForTest();
  auto run = TestSupport::RunProcess({"--batch", batch});
  EXPECT_NE(run.status, 0);
  EXPECT_NE(run.err.find("batch line 7 failed; no change of the batch was applied"),
            std::string::npos)
      << run.out << run.err;
  EXPECT_EQ(KernelLinks(), kernel);
  auto const tso = json::parse(Ok({"network", "nic", "tso", "get", "--formatter", "json"}));
  for (auto const& row : tso) EXPECT_EQ(row["Value"], "on") << row;
}

TEST_F(VswitchTest, ADryRunChangesNoLinkAndRefusesWhatTheHostWould) {
  std::string const kernel = KernelLinks();
  std::string const batch = dir_ + "/batch";
  std::ofstream(batch) << "network vswitch standard add -v vsA\n"
                          "network vswitch standard uplink add -v vsA -u ornic0\n";
  OrvkCtl::Sim::ResetHostForTest();
  auto run = TestSupport::RunProcess({"--dry-run", "--batch", batch});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(KernelLinks(), kernel);

  std::ofstream(batch) << "network vswitch standard add -v vsA\n"
                          "network vswitch standard portgroup add -v vsA -p PG\n"
                          "network vswitch standard portgroup set -p PG --vlan-id 7\n";
  run = TestSupport::RunProcess({"--dry-run", "--batch", batch});
  EXPECT_NE(run.status, 0) << run.out;
  EXPECT_NE(run.err.find("bridge VLAN filtering"), std::string::npos) << run.err;
  EXPECT_EQ(KernelLinks(), kernel);
}

}  // namespace
}  // namespace LinuxTest
