// Batches and commands on the linux host stopped by a signal at random
// moments leave the kernel and the backend's files either as they were or
// as the whole change makes them, never in between; two batches started
// together run one after the other; a command waiting for the lock says so.
#include <net/if.h>
#include <sys/file.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include "linux_test.h"
#include "support/process.h"

namespace LinuxTest {
namespace {

using nlohmann::json;
using TestSupport::ToolbaseProcess;

// Ten changing lines: a switch, its uplink and port group, an interface with
// addresses, a route, a netstack instance, a DNS server and a hosts entry.
std::vector<std::string> const kBuild = {
    "network vswitch standard add -v vSwitch1",
    "network vswitch standard uplink add -v vSwitch1 -u ornic0",
    "network vswitch standard portgroup add -v vSwitch1 -p 'Backend Net'",
    "network ip interface add -i orvk1 -p 'Backend Net'",
    "network ip interface ipv4 set -i orvk1 -t static -I 10.50.0.10 -N 255.255.255.0",
    "network ip interface ipv6 set -i orvk1 -e true",
    "network ip interface ipv6 address add -i orvk1 -I 2001:db8:50::10/64",
    "network ip route ipv4 add -n 10.60.0.0/16 -g 10.50.0.1",
    "network ip netstack add -N backup",
    "network ip dns server add -s 10.50.0.53",
    "network ip hosts add -I 10.50.0.20 -H db01 -A db01.backend",
};
// What takes the host from after kBuild back to before it.
std::vector<std::string> const kTearDown = {
    "network ip hosts remove -I 10.50.0.20 -H db01",
    "network ip dns server remove -s 10.50.0.53",
    "network ip netstack remove -N backup",
    "network ip route ipv4 remove -n 10.60.0.0/16 -g 10.50.0.1",
    "network ip interface remove -i orvk1",
    "network vswitch standard portgroup remove -v vSwitch1 -p 'Backend Net'",
    "network vswitch standard uplink remove -v vSwitch1 -u ornic0",
    "network vswitch standard remove -v vSwitch1",
};

std::string Root() { return std::getenv("TOOLBASE_LINUX_ROOT"); }

std::string Text(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

bool HasLink(char const* name) { return if_nametoindex(name) != 0; }

class InterruptTest : public LinuxHostTest {
 protected:
  std::string WriteBatch(std::vector<std::string> const& lines) {
    std::string const path = Root() + "/batch" + std::to_string(++batches_) + ".txt";
    std::ofstream file(path);
    for (auto const& line : lines) file << line << '\n';
    return path;
  }

  // Runs a batch to its end and expects it to succeed.
  void RunBatch(std::vector<std::string> const& lines) {
    auto const run = TestSupport::RunProcess({"--batch", WriteBatch(lines)});
    ASSERT_EQ(run.status, 0) << run.err;
  }

  // What a change can touch, without what the kernel makes up anew each time
  // (interface indexes, random MAC addresses, link-local addresses, carrier
  // and port states that follow a moment later).
  static json HostState() {
    json state;
    for (auto const& link : IpJson("link show")) {
      auto const& flags = link["flags"];
      state["links"].push_back(
          {link["ifname"], link["mtu"], link.value("master", ""), link.value("link", ""),
           std::find(flags.begin(), flags.end(), "UP") != flags.end()});
    }
    for (auto const& link : IpJson("addr show")) {
      for (auto const& address : link["addr_info"]) {
        if (address.value("scope", "") == "link") continue;
        state["addresses"].push_back(link["ifname"].get<std::string>() + " " +
                                     address["local"].get<std::string>() + "/" +
                                     std::to_string(address["prefixlen"].get<int>()));
      }
    }
    for (char const* family : {"-4", "-6"}) {
      for (auto const& route : IpJson(std::string(family) + " route show")) {
        std::string const destination = route["dst"];
        if (destination.rfind("fe80:", 0) == 0) continue;
        state["routes"].push_back(destination + " via " + route.value("gateway", "-") + " dev " +
                                  route.value("dev", "-"));
      }
    }
    for (auto const& port : json::parse(Shell("bridge -j link"), nullptr, false)) {
      state["ports"].push_back(port["ifname"].get<std::string>() + " " + port.value("master", ""));
    }
    state["netns"] = Shell("ls /run/netns");
    state["resolv.conf"] = Text(Root() + "/etc/resolv.conf");
    state["hosts"] = Text(Root() + "/etc/hosts");
    // Of the backend's own file, what it keeps that the kernel cannot hold
    // (the rest is read again and holds counters).
    state["switches"] = json::array();
    state["interfaces"] = json::array();
    std::error_code none;
    for (auto const& file : std::filesystem::directory_iterator(Root() + "/run/toolbase", none)) {
      if (file.path().extension() != ".json") continue;
      json const kept = json::parse(Text(file.path()), nullptr, false)["host"];
      state["switches"] = kept["vswitch"].value("standard_switches", json::array());
      state["interfaces"] = kept["ip"].value("interfaces", json::array());
    }
    for (auto& [name, part] : state.items()) {
      if (part.is_array()) std::sort(part.begin(), part.end());
    }
    return state;
  }

  int batches_ = 0;
};

TEST_F(InterruptTest, InterruptedBatchLeavesTheHostBeforeOrAfter) {
  json const before = HostState();
  auto const started = std::chrono::steady_clock::now();
  ASSERT_NO_FATAL_FAILURE(RunBatch(kBuild));
  auto const duration = std::chrono::steady_clock::now() - started;
  json const after = HostState();
  ASSERT_NE(before, after);
  ASSERT_NO_FATAL_FAILURE(RunBatch(kTearDown));
  ASSERT_EQ(HostState(), before);

  std::string const batch = WriteBatch(kBuild);
  unsigned const seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int undone_midway = 0;
  for (int attempt = 0; attempt < 12; ++attempt) {
    // When the signal comes: as soon as the batch watches for it, once the
    // interface (line 4) exists, or after a random part of a whole run.
    int const when = attempt % 3;
    int const signal = attempt % 2 == 0 ? SIGTERM : SIGINT;
    SCOPED_TRACE("attempt " + std::to_string(attempt) + ", moment " + std::to_string(when) +
                 ", signal " + std::to_string(signal));
    ToolbaseProcess run({"--batch", batch});
    if (when == 0) {
      run.WaitUntilCatching(signal);
    } else if (when == 1) {
      run.WaitUntil([] { return HasLink("orvk1"); });
    } else {
      std::this_thread::sleep_for(std::uniform_real_distribution<double>(0, 1)(random) * duration);
    }
    run.Signal(signal);
    auto const ending = run.Wait();
    json const state = HostState();
    EXPECT_EQ(ending.err.find("could not undo"), std::string::npos) << ending.err;
    if (ending.status == 128 + signal) {
      EXPECT_NE(ending.err.find("Error: interrupted by SIG"), std::string::npos) << ending.err;
      EXPECT_EQ(state, before) << ending.err;
      undone_midway += when == 1;
    } else if (ending.status == 0) {
      EXPECT_EQ(state, after);
    } else {
      // Ended by the signal before the batch began, or after it ended.
      EXPECT_EQ(ending.signal, signal) << ending.status << ending.err;
      EXPECT_TRUE(state == before || state == after) << state.dump(1);
    }
    if (state == after) {
      ASSERT_NO_FATAL_FAILURE(RunBatch(kTearDown));
    }
    ASSERT_EQ(HostState(), before);
  }
  EXPECT_GE(undone_midway, 1) << "no batch was stopped once its interface existed";
}

TEST_F(InterruptTest, InterruptedCommandIsWholeOrUndone) {
  ASSERT_NO_FATAL_FAILURE(RunBatch({kBuild[0], kBuild[1], kBuild[2]}));
  json const before = HostState();
  std::vector<std::string> const add = {"network", "ip", "interface", "add", "-i", "orvk1", "-p",
                                        "Backend Net"};
  auto const started = std::chrono::steady_clock::now();
  ASSERT_EQ(TestSupport::RunProcess(add).status, 0);
  auto const duration = std::chrono::steady_clock::now() - started;
  json const after = HostState();
  std::vector<std::string> const remove = {"network", "ip", "interface", "remove", "-i", "orvk1"};
  ASSERT_EQ(TestSupport::RunProcess(remove).status, 0);

  unsigned const seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int attempt = 0; attempt < 10; ++attempt) {
    SCOPED_TRACE("attempt " + std::to_string(attempt));
    ToolbaseProcess run(add);
    if (attempt % 2 == 0) {
      // Once the first of its links exists, the command is between steps.
      run.WaitUntil([] { return HasLink("orvk1") || HasLink("tb-orvk1"); });
    } else {
      std::this_thread::sleep_for(std::uniform_real_distribution<double>(0, 1)(random) * duration);
    }
    run.Signal(SIGTERM);
    run.Wait();
    json const state = HostState();
    ASSERT_TRUE(state == before || state == after) << state.dump() << "\n" << after.dump();
    if (state == after) {
      ASSERT_EQ(TestSupport::RunProcess(remove).status, 0);
    }
  }
}

TEST_F(InterruptTest, BatchesStartedTogetherRunOneAfterTheOther) {
  // Each batch makes and drops the same switch, so that lines of one between
  // lines of the other would fail; the hosts file keeps the order of lines.
  auto lines = [](char tag, int subnet) {
    std::vector<std::string> batch = {"network vswitch standard add -v vSwitchC"};
    for (int i = 1; i <= 5; ++i) {
      batch.push_back("network ip hosts add -I 10." + std::to_string(subnet) + ".0." +
                      std::to_string(i) + " -H " + tag + std::to_string(i));
    }
    batch.push_back("network vswitch standard remove -v vSwitchC");
    return batch;
  };
  ToolbaseProcess first({"--batch", WriteBatch(lines('a', 70))});
  ToolbaseProcess second({"--batch", WriteBatch(lines('b', 71))});
  auto const first_ending = first.Wait();
  auto const second_ending = second.Wait();
  EXPECT_EQ(first_ending.status, 0) << first_ending.err;
  EXPECT_EQ(second_ending.status, 0) << second_ending.err;
  std::string names;
  std::istringstream hosts(Text(Root() + "/etc/hosts"));
  for (std::string address, name; hosts >> address >> name;) {
    hosts.ignore(1 << 20, '\n');
    if (address.rfind("10.7", 0) == 0) names += name;
  }
  EXPECT_TRUE(names == "a1a2a3a4a5b1b2b3b4b5" || names == "b1b2b3b4b5a1a2a3a4a5") << names;
  EXPECT_FALSE(HasLink("vSwitchC"));
}

TEST_F(InterruptTest, CommandWaitsForTheLockAndSaysSo) {
  std::filesystem::create_directories(Root() + "/run/toolbase");
  int lock = open((Root() + "/run/toolbase/linux.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  ToolbaseProcess add({"network", "vswitch", "standard", "add", "-v", "vSwitchW"});
  ASSERT_TRUE(add.WaitForError("Waiting for another command to release the lock on " + Root() +
                               "/run/toolbase/linux.lock"));
  EXPECT_FALSE(HasLink("vSwitchW"));
  close(lock);
  auto const ending = add.Wait();
  EXPECT_EQ(ending.status, 0) << ending.err;
  EXPECT_TRUE(HasLink("vSwitchW"));
}

}  // namespace
}  // namespace LinuxTest
