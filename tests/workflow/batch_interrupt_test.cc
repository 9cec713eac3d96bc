// A batch stopped by a signal on the simulated host: every change of it is
// dropped (the state file stays byte for byte as it was), the process says
// so and ends with 128 + the signal; the JSON document stays whole; a signal
// the process was started to ignore stays ignored; and a batch waiting for
// another's lock still ends at once.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <fcntl.h>
#include <fstream>
#include <sstream>

#include "support/harness.h"
#include "support/process.h"
#include "workflow/temp_dir_test.h"

namespace {

using TestSupport::ToolbaseProcess;

class BatchInterruptTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    state_ = dir_ + "/host.json";
    ASSERT_EQ(TestSupport::RunProcess({"--host-state", state_, "network", "firewall", "get"}).status, 0);
    before_ = Text(state_);
    // Long enough that a signal sent once the batch has begun finds it
    // still running its lines.
    batch_ = dir_ + "/batch.txt";
    std::ofstream file(batch_);
    file << "network vswitch standard add --vswitch-name vSwitch9\n";
    for (int i = 0; i < 400; ++i) {
      file << "network ip hosts add -I 10.9." << i / 200 << '.' << i % 200 + 1 << " -H host" << i
           << '\n';
    }
  }

  static std::string Text(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  std::vector<std::string> Batch(std::vector<std::string> const& before_batch = {}) const {
    std::vector<std::string> args{"--host-state", state_};
    args.insert(args.end(), before_batch.begin(), before_batch.end());
    args.insert(args.end(), {"--batch", batch_});
    return args;
  }

  std::string state_;
  std::string before_;
  std::string batch_;
};

TEST_F(BatchInterruptTest, SignalDropsTheWholeBatch) {
  struct Case {
    int signal;
    char const* name;
    std::vector<std::string> options;
  };
  for (auto const& c : std::vector<Case>{
           {SIGTERM, "SIGTERM", {}},
           {SIGINT, "SIGINT", {}},
           {SIGHUP, "SIGHUP", {"--formatter", "json"}},
           {SIGTERM, "SIGTERM", {"--batch-continue"}},
           {SIGPIPE, "SIGPIPE", {"--formatter", "xml"}},
       }) {
    SCOPED_TRACE(c.name);
    ToolbaseProcess batch(Batch(c.options));
    ASSERT_TRUE(batch.WaitUntilCatching(c.signal));
    batch.Signal(c.signal);
    auto const ending = batch.Wait();
    EXPECT_EQ(ending.status, 128 + c.signal) << ending.err;
    EXPECT_NE(ending.err.find(std::string("Error: interrupted by ") + c.name), std::string::npos)
        << ending.err;
    EXPECT_NE(ending.err.find("; no change of the batch was applied.\n"), std::string::npos);
    EXPECT_EQ(Text(state_), before_);
    if (c.options.size() == 2 && c.options[1] == "json") {
      auto const document = nlohmann::json::parse(ending.out, nullptr, false);
      ASSERT_TRUE(document.is_array()) << ending.out;
      for (auto const& line : document) EXPECT_FALSE(line["applied"].get<bool>()) << line;
    }
    if (c.options.size() == 2 && c.options[1] == "xml") {
      EXPECT_NE(ending.out.find("</batch>"), std::string::npos) << ending.out;
      EXPECT_EQ(ending.out.find("applied=\"true\""), std::string::npos);
    }
  }
  // Nothing was held back from a batch left alone.
  auto const whole = TestSupport::RunProcess(Batch());
  EXPECT_EQ(whole.status, 0) << whole.err;
  EXPECT_NE(Text(state_), before_);
}

TEST_F(BatchInterruptTest, IgnoredSignalStaysIgnored) {
  ToolbaseProcess batch(Batch(), {}, {SIGHUP});
  ASSERT_TRUE(batch.WaitUntilCatching(SIGTERM));
  batch.Signal(SIGHUP);
  auto const ending = batch.Wait();
  EXPECT_EQ(ending.status, 0) << ending.err;
  EXPECT_NE(Text(state_).find("host399"), std::string::npos);
}

TEST_F(BatchInterruptTest, BatchWaitingForTheLockEndsAtOnce) {
  int lock = open((state_ + ".lock").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  ToolbaseProcess batch(Batch());
  ASSERT_TRUE(batch.WaitForError("Waiting for another command to release the lock"));
  batch.Signal(SIGTERM);
  auto const ending = batch.Wait();
  close(lock);
  EXPECT_EQ(ending.signal, SIGTERM) << ending.status << ending.err;
  EXPECT_EQ(Text(state_), before_);
}

}  // namespace
