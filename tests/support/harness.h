// In-process test harness: the plug-in's tree built from its entry, a fresh
// temporary host per test, and command lines run through the same parser,
// Execute and formatters that the toolbase executable uses.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Toolbase::AutoCli {
class NamespaceNode;
}
namespace Toolbase::CallSpec {
class Output;
}

namespace TestSupport {

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

// The exit status of a command that reported an error.
inline constexpr int kCommandFailed = 1;

struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

// The root with every plug-in of the build's plug-in folder loaded; built once.
Toolbase::AutoCli::NamespaceNode& PluginRoot();

// A fresh root with the plug-ins loaded anew (for tests of the tree itself).
std::shared_ptr<Toolbase::AutoCli::NamespaceNode> NewPluginRoot();

// Runs the toolbase executable as a separate process, with `environment`
// added to this process's environment.
RunResult RunProcess(std::vector<std::string> const& args,
                     std::map<std::string, std::string> const& environment = {});

// Each test gets a host state file of its own in a temporary folder, seeded
// with the default host on first use, and no injected faults.
class HostTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Runs a command line as `toolbase ARGS...` would, in process.
  RunResult Run(std::vector<std::string> const& args);
  // Resolves and parses `args` like Run, then executes the command and hands
  // back its Output (root object and messages) unprinted. Fails the test on a
  // usage error.
  std::shared_ptr<Toolbase::CallSpec::Output> Execute(std::vector<std::string> const& args);
  // Runs `args`, expects no message, and gives the root as one line
  // (MetaText; "(none)" without a root).
  std::string Ok(Args const& args);
  // The root as one line; the messages go to `messages`.
  std::string RootAndMessages(Args const& args, Messages& messages);
  // Expects `args` to print exactly `messages` and nothing else, to end with
  // `status`, to set no root and to leave the state file as it was.
  void Refused(Args const& args, Messages const& messages, int status = kCommandFailed);
  // The rows of a list command, each as one line; expects no message.
  std::vector<std::string> Rows(Args const& args);
  // The rows of a list command, each field as text by its name.
  std::vector<std::map<std::string, std::string>> Fields(Args const& args);
  // Writes the state file of the default host if it is not there yet.
  void SeedHost();

  // Makes the named host operation throw HostCtlException with `text`.
  void InjectFault(std::string const& operation, std::string const& text);
  void ClearFaults();
  // The state file's text as it is on disk.
  std::string StateFileText() const;
  // Forgets the host loaded in this process so the next command reads the file.
  void Reload();

  std::string dir_;
  std::string state_path_;
};

// A HostTest whose state file holds the default host from the start, so that
// Refused and StateFileText compare against it.
class SeededHostTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    SeedHost();
  }
};

}  // namespace TestSupport
