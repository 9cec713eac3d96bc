// The host state file: seeding, persistence, locking, corruption.
#include "host_store.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>

#include <nlohmann/json.hpp>

#include "fault.h"
#include "hostctl/lib.h"
#include "state_file_test.h"
#include "support/harness.h"

namespace {

using OrvkCtl::Sim::ChangeHost;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::ReadHost;

using HostStoreTest = TestSupport::StateFileTest;

// No temporary file is left beside the state file and its lock.
void ExpectOnlyStateAndLock(std::string const& dir) {
  std::set<std::string> names;
  for (auto const& entry : std::filesystem::directory_iterator(dir)) {
    names.insert(entry.path().filename().string());
  }
  EXPECT_EQ(names, (std::set<std::string>{"host-state.json", "host-state.json.lock"}));
}

TEST_F(HostStoreTest, FirstUseSeedsTheDefaultHost) {
  EXPECT_FALSE(std::filesystem::exists(state_path_));
  EXPECT_EQ(ReadHost().hostname, "halden-01");
  EXPECT_TRUE(std::filesystem::exists(state_path_));
  Reload();
  EXPECT_EQ(OrvkCtl::Sim::HostFromJson(StateFileText()).hostname, "halden-01");
}

TEST_F(HostStoreTest, ChangesAreWrittenThroughAndLeaveNoTemporaryFiles) {
  ChangeHost([](HostModel& host) { host.hostname = "renamed"; });
  Reload();
  EXPECT_EQ(ReadHost().hostname, "renamed");
  ExpectOnlyStateAndLock(dir_);
}

TEST_F(HostStoreTest, AFailedChangeChangesNothing) {
  ReadHost();
  std::string before = StateFileText();
  EXPECT_THROW(ChangeHost([](HostModel& host) {
                 host.hostname = "half";
                 throw HostCtl::Lib::HostCtlException("refused");
               }),
               HostCtl::Lib::HostCtlException);
  EXPECT_EQ(ReadHost().hostname, "halden-01");
  EXPECT_EQ(StateFileText(), before);
}

// The line of `key` in a state file in line layout.
std::string LineOf(std::string const& text, std::string const& key) {
  size_t begin = text.find("\n\"" + key + "\":");
  EXPECT_NE(begin, std::string::npos) << key;
  size_t end = text.find('\n', begin + 1);
  return text.substr(begin + 1, end - begin - 1);
}

TEST_F(HostStoreTest, ACommandParsesAndWritesOnlyItsAreas) {
  ReadHost();
  std::string text = StateFileText();
  // Break the vswitch area: commands on other areas neither notice nor repair it.
  std::string vswitch = LineOf(text, "vswitch");
  std::string broken = "\"vswitch\":{\"standard_switches\":[oops],";
  text.replace(text.find(vswitch), vswitch.size(), broken);
  WriteState(text);
  Reload();
  EXPECT_TRUE(ReadHost(OrvkCtl::Sim::kAreaFirewall).firewall.enabled);
  ChangeHost(OrvkCtl::Sim::kAreaFirewall, [](HostModel& host) { host.firewall.enabled = false; });
  std::string after = StateFileText();
  EXPECT_EQ(LineOf(after, "vswitch"), broken);
  EXPECT_NE(LineOf(after, "firewall").find("\"enabled\":false"), std::string::npos) << after;
  try {
    ReadHost(OrvkCtl::Sim::kAreaVswitch);
    ADD_FAILURE() << "accepted";
  } catch (HostCtl::Lib::HostCtlException const& error) {
    EXPECT_EQ(error.message.rfind("Host state file " + state_path_ + " is corrupt: in \"vswitch\": ", 0),
              0u)
        << error.message;
  }
}

TEST_F(HostStoreTest, AreasReadDuringAChangeAreWrittenBackWhole) {
  ReadHost();
  std::string nic = LineOf(StateFileText(), "nic");
  Reload();
  ChangeHost(OrvkCtl::Sim::kAreaFirewall, [](HostModel& host) {
    host.firewall.enabled = !ReadHost(OrvkCtl::Sim::kAreaNic).nic.pnics.empty();
  });
  EXPECT_EQ(LineOf(StateFileText(), "nic"), nic);
  ChangeHost(OrvkCtl::Sim::kAreaFirewall, [](HostModel& host) { host.firewall.enabled = false; });
  EXPECT_EQ(LineOf(StateFileText(), "nic"), nic);
}

TEST_F(HostStoreTest, AReformattedFileLoadsAndIsWrittenBackInLines) {
  HostModel host = ReadHost();
  std::string pretty = nlohmann::json::parse(StateFileText()).dump(4);
  WriteState(pretty);
  Reload();
  EXPECT_EQ(ReadHost(OrvkCtl::Sim::kAreaNic).nic.pnics.size(), host.nic.pnics.size());
  EXPECT_EQ(OrvkCtl::Sim::HostToJson(ReadHost()), OrvkCtl::Sim::HostToJson(host));
  EXPECT_EQ(StateFileText(), pretty);
  ChangeHost(OrvkCtl::Sim::kAreaHost, [](HostModel& h) { h.hostname = "again"; });
  host.hostname = "again";
  EXPECT_EQ(StateFileText(), OrvkCtl::Sim::HostToJson(host));
  Reload();
  EXPECT_EQ(OrvkCtl::Sim::HostToJson(ReadHost()), OrvkCtl::Sim::HostToJson(host));
}

// Writers killed at random moments: the file stays whole, no temporary file
// stays behind once the next command holds the lock, and every change a
// writer saw committed is in the file.
TEST_F(HostStoreTest, KilledWritersLeaveAWholeFileAndLoseNoCommittedChange) {
  ReadHost();
  Reload();
  constexpr int kWriters = 12;
  std::mt19937 random(12345);
  std::vector<int> committed(kWriters);
  for (int w = 0; w < kWriters; ++w) {
    int pipe_fds[2];
    ASSERT_EQ(pipe(pipe_fds), 0);
    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      close(pipe_fds[0]);
      for (int i = 0;; ++i) {
        ChangeHost(OrvkCtl::Sim::kAreaFirewall, [&](HostModel& host) {
          host.firewall.dynamic_rules.push_back({"k" + std::to_string(w), 1, i, i, 0, 0});
        });
        char byte = 1;
        if (write(pipe_fds[1], &byte, 1) != 1) _exit(1);
        OrvkCtl::Sim::ResetHostForTest();
      }
    }
    close(pipe_fds[1]);
    usleep(1000 + random() % 20000);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    char buffer[4096];
    for (ssize_t n; (n = read(pipe_fds[0], buffer, sizeof buffer)) > 0;) committed[w] += n;
    close(pipe_fds[0]);
  }
  HostModel const& host = ReadHost();
  for (int w = 0; w < kWriters; ++w) {
    SCOPED_TRACE(w);
    int found = 0;
    for (auto const& rule : host.firewall.dynamic_rules) found += rule.name == "k" + std::to_string(w);
    // A writer killed between writing and reporting adds one more.
    EXPECT_GE(found, committed[w]);
    EXPECT_LE(found, committed[w] + 1);
  }
  ExpectOnlyStateAndLock(dir_);
}

TEST_F(HostStoreTest, FaultyFilesGiveAClearErrorAndStayUntouched) {
  struct Case {
    std::string text;
    std::string reason;
  };
  std::vector<Case> const cases = {
      {"", "the file is empty"},
      {"\n  \n", "the file is empty"},
      {"{ not json", "parse error"},
      {"{\"format\":1,\"host\":{\n\"hostname\":\"h\",\n", "parse error"},  // truncated
      {"[]", "not a JSON object"},
      {"{\"host\": {}}", "no \"format\" version"},
      {"{\"format\": 7, \"host\": {}}", "format version 7 is not one this version reads (1)"},
      {"{\"format\": 1}", "no \"host\" object"},
      {"{\"format\": 1, \"host\": {\"hostname\": 5}}", "in \"hostname\": "},
      {"{\"format\": 1, \"host\": {\"firewall\": {\"enabled\": \"yes\"}}}", "in \"firewall\": "},
      {"{\"format\":1,\"host\":{\n\"nic\":{\"pnics\":7}\n}}\n", "in \"nic\": "},
      // UTF-8 cut short at the very end of an area's text, and of the document.
      {"{\"format\":1,\"host\":{\n\"hostname\":\"a\xf3\n}}\n", "in \"hostname\": parse error"},
      {"{\"format\":1,\"host\":{\"hostname\":\"a\xf3", "parse error"},
  };
  for (auto const& c : cases) ExpectCorruptAndUntouched(c.text, c.reason);
}

TEST_F(HostStoreTest, UnusablePathsNameThePath) {
  struct Case {
    std::string name;
    std::function<std::string()> prepare;  // returns the state path to use
    std::string message;
  };
  std::vector<Case> const cases = {
      {"directory",
       [&] {
         std::filesystem::create_directory(dir_ + "/folder");
         return dir_ + "/folder";
       },
       "Cannot read host state file " + dir_ + "/folder: Is a directory"},
      {"missing parent", [&] { return dir_ + "/missing/state.json"; },
       "Cannot use host state file " + dir_ + "/missing/state.json: folder " + dir_ +
           "/missing: No such file or directory"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    Reload();
    std::string path = c.prepare();
    setenv("TOOLBASE_HOST_STATE", path.c_str(), 1);
    try {
      ReadHost();
      ADD_FAILURE() << "accepted";
    } catch (HostCtl::Lib::HostCtlException const& error) {
      EXPECT_EQ(error.message, c.message);
    }
    auto result = TestSupport::RunProcess({"network", "firewall", "get"},
                                          {{"TOOLBASE_HOST_STATE", path}});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
  }
  EXPECT_FALSE(std::filesystem::exists(dir_ + "/missing"));
}

// Runs `toolbase ARGS` as an unprivileged user: as this one if it is not
// root, else as "nobody" from a forked child. Empty status when neither works.
std::optional<TestSupport::RunResult> RunUnprivileged(std::vector<std::string> const& args,
                                                      std::map<std::string, std::string> const& env) {
  if (geteuid() != 0) return TestSupport::RunProcess(args, env);
  int fds[2];
  if (pipe(fds) != 0) return std::nullopt;
  pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(99);
    auto result = TestSupport::RunProcess(args, env);
    if (write(fds[1], result.err.data(), result.err.size()) < 0) _exit(98);
    _exit(result.status);
  }
  close(fds[1]);
  TestSupport::RunResult result;
  char buffer[4096];
  for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;) result.err.append(buffer, n);
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) >= 98) return std::nullopt;
  result.status = WEXITSTATUS(status);
  return result;
}

TEST_F(HostStoreTest, ReadOnlyFolder) {
  std::string folder = dir_ + "/ro";
  std::filesystem::create_directory(folder);
  namespace fs = std::filesystem;
  fs::permissions(dir_, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                            fs::perms::others_read | fs::perms::others_exec);
  fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                              fs::perms::others_exec);
  std::string path = folder + "/state.json";
  auto result = RunUnprivileged({"network", "firewall", "get"}, {{"TOOLBASE_HOST_STATE", path}});
  fs::permissions(folder, fs::perms::owner_all);
  if (!result) GTEST_SKIP() << "no unprivileged user to run as";
  EXPECT_EQ(result->status, 1);
  EXPECT_NE(result->err.find("Cannot lock host state file " + path), std::string::npos)
      << result->err;
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(HostStoreTest, HostStateOptionMustNameAFile) {
  std::filesystem::create_directory(dir_ + "/folder");
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"--host-state=", "network", "firewall", "get"}, "needs a file path, got an empty one"},
      {{"network", "firewall", "get", "--host-state", ""}, "needs a file path, got an empty one"},
      {{"--host-state", dir_ + "/folder", "network", "firewall", "get"},
       "needs a file path, but " + dir_ + "/folder is a folder"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args.front());
    // The default host must not be used instead.
    auto result = TestSupport::RunProcess(c.args, {{"TOOLBASE_HOST_STATE", state_path_}});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(state_path_));
  }
}

TEST_F(HostStoreTest, CorruptFileThroughTheExecutable) {
  WriteState("garbage");
  auto result = TestSupport::RunProcess({"network", "firewall", "get"},
                                        {{"TOOLBASE_HOST_STATE", state_path_}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("Unable to get firewall status.\nHost state file " + state_path_ +
                            " is corrupt"),
            std::string::npos)
      << result.err;
  EXPECT_EQ(StateFileText(), "garbage");
}

TEST_F(HostStoreTest, ConcurrentWritersLoseNothing) {
  ReadHost();
  Reload();
  constexpr int kWriters = 16;
  constexpr int kChangesEach = 5;
  std::vector<pid_t> children;
  for (int w = 0; w < kWriters; ++w) {
    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      // Each change is a separate "command": load, change, release.
      for (int i = 0; i < kChangesEach; ++i) {
        ChangeHost([&](HostModel& host) {
          host.firewall.dynamic_rules.push_back({"w" + std::to_string(w), 1, i, i, 0, 0});
        });
        OrvkCtl::Sim::ResetHostForTest();
      }
      _exit(0);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  Reload();
  EXPECT_EQ(ReadHost().firewall.dynamic_rules.size(), 2u + kWriters * kChangesEach);
}

TEST_F(HostStoreTest, ConcurrentCommandsSeeEachOthersChanges) {
  // Processes flip the two settings at once; every one must succeed and the
  // file must stay valid.
  std::vector<pid_t> children;
  for (int i = 0; i < 8; ++i) {
    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      auto result = TestSupport::RunProcess(
          {"network", "firewall", "set", i % 2 ? "--enabled" : "--default-action",
           i % 4 < 2 ? "true" : "false"},
          {{"TOOLBASE_HOST_STATE", state_path_}});
      _exit(result.status);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_NO_THROW(OrvkCtl::Sim::HostFromJson(StateFileText()));
}

TEST_F(HostStoreTest, FaultsComeFromTheEnvironmentToo) {
  auto result = TestSupport::RunProcess(
      {"network", "firewall", "unload"},
      {{"TOOLBASE_HOST_STATE", state_path_},
       {"TOOLBASE_HOST_FAULTS", "ModuleImpl::Unload=module busy\nModuleImpl::Load=x"}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "module busy\n");
}

}  // namespace
