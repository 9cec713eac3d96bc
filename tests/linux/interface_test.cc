// Host interfaces of a linux host: veth pairs whose own end carries the
// addresses, checked against `ip -j` and `bridge -j`, and against the
// simulated host given the same commands.
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;
using Args = std::vector<std::string>;

class InterfaceTest : public LinuxHostTest {
 protected:
  // A switch and a port group, then interface orvk1 on it with a static
  // IPv4 and an IPv6 address, each command given to `run`.
  template <class Run>
  void MakeInterface(Run run) {
    for (Args args : {Args{"network", "vswitch", "standard", "add", "-v", "vSwitchT"},
                      Args{"network", "vswitch", "standard", "portgroup", "add", "-p", "PG1", "-v",
                           "vSwitchT"},
                      Args{"network", "ip", "interface", "add", "-i", "orvk1", "-p", "PG1"},
                      Args{"network", "ip", "interface", "ipv4", "set", "-i", "orvk1", "-t",
                           "static", "-I", "10.1.0.5", "-N", "255.255.255.0"},
                      Args{"network", "ip", "interface", "ipv6", "set", "-i", "orvk1", "-e",
                           "true"},
                      Args{"network", "ip", "interface", "ipv6", "address", "add", "-i", "orvk1",
                           "-I", "2001:db8:1::5/64"}}) {
      run(args);
    }
  }
  void MakeInterface() {
    MakeInterface([this](Args const& args) { Ok(args); });
  }

  // Runs `args` on the simulated host, as a process of its own.
  static std::string OnSim(Args const& args) {
    auto run = TestSupport::RunProcess(args, {{"TOOLBASE_HOST", "sim"}});
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out;
  }

  // The row of `name` in the JSON listing of `args`.
  json Row(Args args, std::string const& key, std::string const& name) {
    args.insert(args.end(), {"--formatter", "json"});
    for (auto const& row : json::parse(Ok(args))) {
      if (row[key] == name) return row;
    }
    ADD_FAILURE() << name << " not listed by " << args[2] << " " << args[3];
    return {};
  }

  // The addresses of `name` as `ip -j addr` has them, link-local ones left out.
  static std::vector<std::string> KernelAddresses(std::string const& name,
                                                  std::string const& netns = "") {
    std::vector<std::string> addresses;
    auto const links = IpJson((netns.empty() ? "" : "-n " + netns + " ") + "addr show " + name);
    for (auto const& info : links.at(0)["addr_info"]) {
      if (info["scope"] != "global") continue;
      addresses.push_back(info["local"].get<std::string>() + "/" +
                          std::to_string(info["prefixlen"].get<int>()));
    }
    return addresses;
  }
};

TEST_F(InterfaceTest, AnInterfaceIsAVethPairOnItsSwitchsBridge) {
  MakeInterface();
  EXPECT_EQ(KernelAddresses("orvk1"), (std::vector<std::string>{"10.1.0.5/24", "2001:db8:1::5/64"}));
  auto const ports = json::parse(Shell("bridge -j link show"));
  bool on_bridge = false;
  for (auto const& port : ports) {
    on_bridge |= port["ifname"] == "tb-orvk1" && port["master"] == "vSwitchT";
  }
  EXPECT_TRUE(on_bridge) << ports;

  auto const link = IpJson("link show orvk1").at(0);
  auto const listed = Row({"network", "ip", "interface", "list"}, "Name", "orvk1");
  EXPECT_EQ(listed["MAC Address"], link["address"]);
  EXPECT_EQ(listed["MTU"], link["mtu"]);
  EXPECT_EQ(listed["Portgroup"], "PG1");

  // A new process reads it back from the kernel and the kept port group.
  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess({"network", "ip", "interface", "ipv4", "get", "-i", "orvk1"});
  EXPECT_EQ(other.status, 0) << other.err;
  EXPECT_NE(other.out.find("10.1.0.5"), std::string::npos) << other.out;

  // A route through it, and the interface's state and MTU.
  Ok({"network", "ip", "route", "ipv4", "add", "-n", "10.50.0.0/16", "-g", "10.1.0.1"});
  EXPECT_NE(Shell("ip route show 10.50.0.0/16"), "");
  Ok({"network", "ip", "interface", "set", "-i", "orvk1", "-m", "1400"});
  EXPECT_EQ(IpJson("link show orvk1").at(0)["mtu"], 1400);
  Ok({"network", "ip", "interface", "set", "-i", "orvk1", "-e", "false"});
  auto const flags = IpJson("link show orvk1").at(0)["flags"];
  EXPECT_EQ(std::find(flags.begin(), flags.end(), "UP"), flags.end()) << flags;

  Ok({"network", "ip", "interface", "remove", "-i", "orvk1"});
  EXPECT_EQ(Shell("ip -br link | grep orvk1 || true"), "");
}

TEST_F(InterfaceTest, TheListingsAgreeWithTheSimulatedHost) {
  MakeInterface();
  MakeInterface(OnSim);
  for (auto const& args : {Args{"network", "ip", "interface", "ipv4", "get"},
                           Args{"network", "ip", "interface", "ipv6", "address", "list"}}) {
    SCOPED_TRACE(args[3]);
    auto on = [&](bool sim) {
      Args full = args;
      full.insert(full.end(), {"--formatter", "json"});
      json rows;
      for (auto const& row : json::parse(sim ? OnSim(full) : Ok(full))) {
        if (row.value("Name", row.value("Interface", "")) != "orvk1" ||
            row.value("Address", "").rfind("fe80:", 0) == 0) {
          continue;
        }
        // The simulated host starts with a default gateway; the sandbox has none.
        json shown = row;
        shown.erase("Gateway");
        rows.push_back(shown);
      }
      return rows;
    };
    EXPECT_EQ(on(false), on(true));
  }
}

TEST_F(InterfaceTest, AnInterfaceInANamedNetstackLivesInItsNamespace) {
  Ok({"network", "ip", "netstack", "add", "-N", "blue"});
  Ok({"network", "vswitch", "standard", "add", "-v", "vSwitchT"});
  Ok({"network", "vswitch", "standard", "portgroup", "add", "-p", "PG2", "-v", "vSwitchT"});
  Ok({"network", "ip", "interface", "add", "-i", "orvk2", "-p", "PG2", "-N", "blue"});
  Ok({"network", "ip", "interface", "ipv4", "set", "-i", "orvk2", "-t", "static", "-I", "10.2.0.5",
      "-N", "255.255.255.0"});
  EXPECT_EQ(KernelAddresses("orvk2", "blue"), (std::vector<std::string>{"10.2.0.5/24"}));
  EXPECT_NE(Shell("ip -n blue route show").find("10.2.0.0/24 dev orvk2"), std::string::npos);
  Refused({"network", "ip", "netstack", "remove", "-N", "blue"}, "still has interfaces");
}

TEST_F(InterfaceTest, WhatTheKernelCannotDoIsRefusedAndChangesNothing) {
  Ok({"network", "vswitch", "standard", "add", "-v", "vSwitchT"});
  Ok({"network", "vswitch", "standard", "portgroup", "add", "-p", "PG1", "-v", "vSwitchT"});
  Ok({"network", "ip", "interface", "add", "-i", "orvk1", "-p", "PG1"});
  Ok({"network", "ip", "interface", "ipv4", "set", "-i", "orvk1", "-t", "static", "-I", "10.1.0.5",
      "-N", "255.255.255.0"});
  struct Case {
    Args args;
    std::string message;
  } const cases[] = {
      {{"network", "ip", "interface", "ipv4", "set", "-i", "orvk1", "-t", "dhcp"}, "DHCP"},
      {{"network", "ip", "interface", "ipv6", "address", "add", "-i", "orvk1", "-I",
        "2001:db8:1::5/64"},
       "IPv6 is off on orvk1"},
      {{"network", "ip", "interface", "tag", "add", "-i", "orvk1", "-t", "Management"}, "Tagging"},
      {{"network", "ip", "interface", "ipv4", "set", "-i", "orvk1", "-t", "static", "-I",
        "10.1.0.6", "-N", "255.255.255.0", "-g", "10.1.0.1"},
       "gateway"},
      {{"network", "ip", "interface", "add", "-i", "orvk1", "-p", "PG1"}, "orvk1"},
  };
  auto const state = [] {
    return Shell("ip -o link show | cut -d' ' -f2; ip -j -4 addr show; ip -j -6 addr show scope "
                 "global; ip -j route show");
  };
  std::string const before = state();
  for (auto const& row : cases) {
    SCOPED_TRACE(row.args[3] + " " + row.args[4]);
    Refused(row.args, row.message);
    EXPECT_EQ(state(), before);
  }
}

}  // namespace
}  // namespace LinuxTest

namespace LinuxTest {
namespace {

// A batch whose last line is refused leaves the kernel and the files as
// they were: each earlier line's steps are undone.
TEST_F(InterfaceTest, ABatchThatFailsUndoesEveryLine) {
  std::string const root = std::getenv("TOOLBASE_LINUX_ROOT");
  std::string const batch = root + "/batch.txt";
  std::ofstream(batch) << "network vswitch standard add -v vSwitchT\n"
                          "network vswitch standard portgroup add -p PG1 -v vSwitchT\n"
                          "network ip interface add -i orvk1 -p PG1\n"
                          "network ip interface ipv4 set -i orvk1 -t static -I 10.1.0.5 -N "
                          "255.255.255.0\n"
                          "network ip route ipv4 add -n 10.50.0.0/16 -g 10.1.0.1\n"
                          "network ip netstack add -N blue\n"
                          "network ip dns server add -s 192.0.2.77\n"
                          "network ip interface ipv4 set -i orvk1 -t dhcp\n";
  auto const state = [&] {
    // Names and addresses only: link-local addresses settle on their own.
    return Shell("ip -o link show | cut -d' ' -f2; ip -j -4 addr show; ip -j route show; "
                 "ls /run/netns; cat " + root + "/etc/resolv.conf");
  };
  std::string const before = state();
  auto run = Run({"--batch", batch});
  EXPECT_NE(run.status, 0);
  EXPECT_NE(run.err.find("DHCP"), std::string::npos) << run.err;
  EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace LinuxTest
