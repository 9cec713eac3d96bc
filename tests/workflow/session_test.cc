// A second plug-in beside the network one, found through the plug-in path,
// using each hook of a session: its own global option, its transaction (for
// batches and dry runs) and a completion source. Also what the search path
// does with folders and with a plug-in that cannot be loaded.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/harness.h"
#include "workflow/temp_dir_test.h"

namespace {

using TestSupport::RunProcess;
using TestSupport::RunResult;

class SessionTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    book_ = dir_ + "/guests.txt";
    std::ofstream(book_) << "Ann\nBob\n";
  }

  // Runs toolbase with the test plug-in's folder first on the search path.
  RunResult Run(std::vector<std::string> const& args, std::string const& path = TEST_PLUGIN_DIR) {
    return RunProcess(args, {{"TOOLBASE_PLUGIN_PATH", path},
                             {"TOOLBASE_HOST_STATE", dir_ + "/host-state.json"}});
  }

  std::string Book() const {
    std::ifstream file(book_, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  std::string Batch(std::vector<std::string> const& lines) {
    std::string path = dir_ + "/batch.txt";
    std::ofstream file(path);
    for (auto const& line : lines) file << line << '\n';
    return path;
  }

  std::string book_;
};

TEST_F(SessionTest, BothPluginsLoadAndTheSecondOffersItsOption) {
  auto help = Run({"--help"});
  ASSERT_EQ(help.status, 0) << help.err;
  EXPECT_EQ(help.err, "");
  EXPECT_NE(help.out.find("libhello.so (hello)"), std::string::npos) << help.out;
  EXPECT_NE(help.out.find("libnetwork.so (network)"), std::string::npos);
  EXPECT_NE(help.out.find("--guest-book=<file>"), std::string::npos);
  EXPECT_NE(help.out.find("--host-state=<path>"), std::string::npos);

  auto before = Run({"--guest-book", book_, "hello", "name", "add", "--name", "Cem"});
  EXPECT_EQ(before.status, 0) << before.err;
  auto after = Run({"hello", "name", "add", "--name", "Dan", "--guest-book=" + book_});
  EXPECT_EQ(after.status, 0) << after.err;
  EXPECT_EQ(Book(), "Ann\nBob\nCem\nDan\n");
  auto refused = Run({"--guest-book", "", "hello", "name", "list"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("Option --guest-book needs a file name"), std::string::npos);
  // The network plug-in's option still works beside it.
  auto network = Run({"--host-state", dir_ + "/other.json", "network", "firewall", "get"});
  EXPECT_EQ(network.status, 0) << network.err;
  EXPECT_TRUE(std::filesystem::exists(dir_ + "/other.json"));
}

TEST_F(SessionTest, BatchesAndDryRunsUseThePluginsTransaction) {
  auto failed = Run({"--guest-book", book_, "--batch",
                     Batch({"hello name add --name Eve", "hello name nosuch"})});
  EXPECT_EQ(failed.status, 2);
  EXPECT_EQ(Book(), "Ann\nBob\n");

  auto dry = Run({"--guest-book", book_, "--dry-run", "--formatter", "json", "--batch",
                  Batch({"hello name add --name Eve", "hello name list"})});
  EXPECT_EQ(dry.status, 0) << dry.err;
  EXPECT_NE(dry.out.find("\"Eve\""), std::string::npos) << dry.out;
  auto one = Run({"--dry-run", "--guest-book", book_, "hello", "name", "add", "--name", "Fay"});
  EXPECT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(Book(), "Ann\nBob\n");

  auto done = Run({"--guest-book", book_, "--batch",
                   Batch({"hello name add --name Eve", "hello name add --name Fay"})});
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_EQ(Book(), "Ann\nBob\nEve\nFay\n");

  auto on_line = Run({"--batch", Batch({"hello name list --guest-book " + book_})});
  EXPECT_EQ(on_line.status, 2);
  EXPECT_NE(on_line.err.find("--guest-book cannot stand on a batch line"), std::string::npos)
      << on_line.err;
}

TEST_F(SessionTest, CompletesFromTheDeclaredSourceWithoutWriting) {
  auto names = Run({"--complete", "--", "--guest-book", book_, "hello", "greet", "--name", ""});
  EXPECT_EQ(names.out, "Ann\nBob\n");
  auto inline_value =
      Run({"--complete", "--", "--guest-book=" + book_, "hello", "greet", "--name=B"});
  EXPECT_EQ(inline_value.out, "--name=Bob\n");
  EXPECT_EQ(Book(), "Ann\nBob\n");
  auto options = Run({"--complete", "--", "--gu"});
  EXPECT_EQ(options.out, "--guest-book\n");
}

TEST_F(SessionTest, SearchPathSkipsWhatCannotLoadAndKeepsTheFirstOfAName) {
  std::string broken = dir_ + "/broken";
  std::string shadow = dir_ + "/shadow";
  std::filesystem::create_directories(broken);
  std::filesystem::create_directories(shadow);
  std::ofstream(broken + "/libbroken.so") << "not a shared object\n";
  // An unloadable file of the same name as the test plug-in, later on the path.
  std::ofstream(shadow + "/libhello.so") << "not a shared object either\n";

  auto run = Run({"hello", "greet", "--name", "path"},
                 broken + ":" + dir_ + "/missing::" + TEST_PLUGIN_DIR + ":" + shadow);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "Hello, path!\n");
  EXPECT_NE(run.err.find("Warning: cannot load plug-in " + broken + "/libbroken.so"),
            std::string::npos)
      << run.err;
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;

  auto network = Run({"network", "firewall", "get"}, broken);
  EXPECT_EQ(network.status, 0) << "the plug-ins beside the executable still load";
}

}  // namespace
