// Transactions for batch mode: changes stay in memory until committed.
#include "hostctl/transaction.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include "host_store.h"
#include "support/harness.h"

namespace {

using OrvkCtl::Sim::ChangeHost;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::kAreaFirewall;
using OrvkCtl::Sim::kAreaHost;
using OrvkCtl::Sim::ReadHost;

class TransactionTest : public TestSupport::HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    ReadHost();
    Reload();
    before_ = StateFileText();
  }
  void Rename(std::string const& name) {
    ChangeHost(kAreaHost, [&](HostModel& host) { host.hostname = name; });
  }
  std::string before_;
};

TEST_F(TransactionTest, ChangesStayInMemoryUntilCommitWritesThemAtOnce) {
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  Rename("one");
  char const* nested = OrvkCtl_BeginTransaction();  // refused; the first goes on
  ASSERT_NE(nested, nullptr);
  EXPECT_STREQ(nested, "A host transaction is already in progress");
  ChangeHost(kAreaFirewall, [](HostModel& host) { host.firewall.enabled = false; });
  EXPECT_EQ(ReadHost().hostname, "one");
  EXPECT_EQ(StateFileText(), before_);
  EXPECT_EQ(OrvkCtl_CommitTransaction(), nullptr);
  Reload();
  EXPECT_EQ(ReadHost().hostname, "one");
  EXPECT_FALSE(ReadHost().firewall.enabled);
  // Ended: the next change writes through again.
  Rename("two");
  Reload();
  EXPECT_EQ(ReadHost().hostname, "two");
}

TEST_F(TransactionTest, RollbackReturnsToTheSavepoint) {
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  Rename("kept");
  OrvkCtl_Savepoint();
  Rename("dropped");
  ChangeHost(kAreaFirewall, [](HostModel& host) { host.firewall.dynamic_rules.clear(); });
  OrvkCtl_RollbackToSavepoint();
  EXPECT_EQ(ReadHost().hostname, "kept");
  EXPECT_EQ(ReadHost().firewall.dynamic_rules.size(), 2u);
  OrvkCtl_RollbackToSavepoint();  // again: still the same point
  EXPECT_EQ(ReadHost().hostname, "kept");
  EXPECT_EQ(OrvkCtl_CommitTransaction(), nullptr);
  Reload();
  EXPECT_EQ(ReadHost().hostname, "kept");
  EXPECT_EQ(ReadHost().firewall.dynamic_rules.size(), 2u);
}

TEST_F(TransactionTest, AFailedChangeAndARollbackTakeBackOnlyTheirOwn) {
  using OrvkCtl::Sim::kAreaVswitch;
  auto groups = [] { return ReadHost(kAreaVswitch).vswitch.standard_switches[1].port_groups; };
  auto group = [](std::string name) {
    OrvkCtl::Sim::PortGroupState added;
    added.name = std::move(name);
    return added;
  };
  auto add = [&](int from, int to) {
    ChangeHost(kAreaVswitch, [&](HostModel& host) {
      auto& list = host.vswitch.standard_switches[1].port_groups;
      for (int i = from; i < to; ++i) list.push_back(group("pg" + std::to_string(i)));
    });
  };
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  add(0, 300);  // past a block of the list
  auto const first = groups();
  // A change that fails after changing leaves the host as the ones before
  // it made it.
  EXPECT_THROW(ChangeHost(kAreaVswitch,
                          [&](HostModel& host) {
                            auto& list = host.vswitch.standard_switches[1].port_groups;
                            list[3].vlan_id = 7;
                            list.erase(list.begin() + 100);
                            list.push_back(group("half"));
                            throw std::runtime_error("refused");
                          }),
               std::runtime_error);
  EXPECT_TRUE(groups() == first);
  OrvkCtl_Savepoint();
  add(300, 600);
  Rename("dropped");
  ChangeHost(kAreaVswitch, [](HostModel& host) {
    host.vswitch.standard_switches[1].port_groups[5].vlan_id = 9;
  });
  OrvkCtl_RollbackToSavepoint();
  EXPECT_TRUE(groups() == first);
  EXPECT_EQ(ReadHost().hostname, "halden-01");
  OrvkCtl_Savepoint();
  add(600, 601);
  EXPECT_EQ(OrvkCtl_CommitTransaction(), nullptr);
  Reload();
  auto const written = groups();
  ASSERT_EQ(written.size(), first.size() + 1);
  EXPECT_EQ(written[5].vlan_id, first[5].vlan_id);
  EXPECT_EQ(written.back().name, "pg600");
  EXPECT_EQ(ReadHost().hostname, "halden-01");
}

TEST_F(TransactionTest, AbortLeavesTheFileByteForByte) {
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  Rename("gone");
  OrvkCtl_Savepoint();
  Rename("also gone");
  OrvkCtl_AbortTransaction();
  EXPECT_EQ(ReadHost().hostname, "halden-01");
  EXPECT_EQ(OrvkCtl_CommitTransaction(), nullptr);  // nothing to commit
  EXPECT_EQ(StateFileText(), before_);
}

TEST_F(TransactionTest, FailuresComeBackAsMessages) {
  std::filesystem::create_directory(dir_ + "/folder");
  setenv("TOOLBASE_HOST_STATE", (dir_ + "/folder").c_str(), 1);
  Reload();
  char const* message = OrvkCtl_BeginTransaction();
  ASSERT_NE(message, nullptr);
  EXPECT_EQ(std::string(message), "Cannot read host state file " + dir_ + "/folder: Is a directory");

  // A commit that cannot write leaves the file and the host as they were.
  setenv("TOOLBASE_HOST_STATE", state_path_.c_str(), 1);
  Reload();
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  Rename("unsaved");
  std::filesystem::remove(state_path_);
  std::filesystem::create_directory(state_path_);  // rename over it fails
  message = OrvkCtl_CommitTransaction();
  ASSERT_NE(message, nullptr);
  EXPECT_NE(std::string(message).find(state_path_), std::string::npos) << message;
  EXPECT_EQ(ReadHost().hostname, "halden-01");
}

}  // namespace

// Whether SIGTERM is blocked in this thread now.
bool StopSignalsWait() {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, SIGTERM) == 1;
}

// A command outside a batch may change the host twice (an interface is
// added, then configured): from its first change a stop signal waits for
// the end, so that the host is never left between the two. A batch's
// changes leave signals to the batch.
TEST_F(TransactionTest, StopSignalsWaitFromACommandsFirstChangeToItsEnd) {
  ASSERT_FALSE(StopSignalsWait());
  ReadHost();
  EXPECT_FALSE(StopSignalsWait()) << "reading holds nothing back";
  Rename("first");
  EXPECT_TRUE(StopSignalsWait());
  Rename("second");
  EXPECT_TRUE(StopSignalsWait());
  Reload();  // the end of the command
  EXPECT_FALSE(StopSignalsWait());

  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  Rename("in a batch");
  EXPECT_FALSE(StopSignalsWait());
  OrvkCtl_AbortTransaction();
}
