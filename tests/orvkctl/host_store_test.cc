// The host state file: seeding, persistence, locking, corruption.
#include "host_store.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fault.h"
#include "hostctl/lib.h"
#include "support/harness.h"

namespace {

using OrvkCtl::Sim::ChangeHost;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::ReadHost;

class HostStoreTest : public TestSupport::HostTest {
 protected:
  void WriteState(std::string const& text) {
    std::ofstream(state_path_) << text;
  }
};

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
  for (auto const& entry : std::filesystem::directory_iterator(dir_)) {
    EXPECT_EQ(entry.path().string().find(".tmp."), std::string::npos) << entry.path();
  }
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

TEST_F(HostStoreTest, CorruptFilesGiveAClearErrorAndStayUntouched) {
  for (std::string text : {"{ not json", "[]", "{\"format\": 7, \"host\": {}}",
                           "{\"format\": 1, \"host\": {\"hostname\": 5}}", ""}) {
    SCOPED_TRACE(text);
    Reload();
    WriteState(text);
    try {
      ReadHost();
      ADD_FAILURE() << "accepted";
    } catch (HostCtl::Lib::HostCtlException const& error) {
      EXPECT_EQ(error.message.rfind("Host state file " + state_path_ + " is corrupt: ", 0), 0u)
          << error.message;
    }
    EXPECT_EQ(StateFileText(), text);
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
  constexpr int kWriters = 6;
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
       {"TOOLBASE_HOST_FAULTS", "ModuleImpl::Unload=module busy\nOther::Op=x"}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "module busy\n");
}

}  // namespace
