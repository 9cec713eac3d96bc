#include "support/harness.h"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <list>
#include <sstream>

#include "cli.h"
#include "fault.h"
#include "host_store.h"
#include "params.h"
#include "support/meta_text.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace TestSupport {

std::shared_ptr<Toolbase::AutoCli::NamespaceNode> NewPluginRoot() {
  auto root = Toolbase::Cli::NewRoot();
  Toolbase::Cli::LoadPlugins(TOOLBASE_PLUGIN_DIR, *root);
  return root;
}

Toolbase::AutoCli::NamespaceNode& PluginRoot() {
  static auto root = NewPluginRoot();
  return *root;
}

namespace {

std::string ReadAll(int fd) {
  std::string text;
  std::array<char, 4096> buffer;
  ssize_t n;
  while ((n = read(fd, buffer.data(), buffer.size())) > 0) text.append(buffer.data(), n);
  return text;
}

}  // namespace

RunResult RunProcess(std::vector<std::string> const& args,
                     std::map<std::string, std::string> const& environment) {
  char out_template[] = "/tmp/toolbase-out-XXXXXX";
  char err_template[] = "/tmp/toolbase-err-XXXXXX";
  int out_fd = mkstemp(out_template);
  int err_fd = mkstemp(err_template);
  pid_t pid = fork();
  if (pid == 0) {
    dup2(out_fd, 1);
    dup2(err_fd, 2);
    for (auto const& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv;
    std::string program = TOOLBASE_EXECUTABLE;
    argv.push_back(program.data());
    std::vector<std::string> copy = args;
    for (auto& arg : copy) argv.push_back(arg.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int wait_status = 0;
  waitpid(pid, &wait_status, 0);
  RunResult result;
  result.status = WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
  lseek(out_fd, 0, SEEK_SET);
  lseek(err_fd, 0, SEEK_SET);
  result.out = ReadAll(out_fd);
  result.err = ReadAll(err_fd);
  close(out_fd);
  close(err_fd);
  unlink(out_template);
  unlink(err_template);
  return result;
}

void HostTest::SetUp() {
  char dir_template[] = "/tmp/toolbase-test-XXXXXX";
  ASSERT_NE(mkdtemp(dir_template), nullptr);
  dir_ = dir_template;
  state_path_ = dir_ + "/host-state.json";
  setenv("TOOLBASE_HOST_STATE", state_path_.c_str(), 1);
  OrvkCtl::Sim::ResetHostForTest();
  OrvkCtl::Sim::ClearFaultsForTest();
}

void HostTest::TearDown() {
  OrvkCtl::Sim::ResetHostForTest();
  OrvkCtl::Sim::ClearFaultsForTest();
  std::error_code error;
  std::filesystem::remove_all(dir_, error);
}

RunResult HostTest::Run(std::vector<std::string> const& args) {
  std::ostringstream out;
  std::ostringstream err;
  RunResult result;
  result.status = Toolbase::Cli::Run(args, PluginRoot(), out, err);
  result.out = out.str();
  result.err = err.str();
  return result;
}

std::shared_ptr<Toolbase::CallSpec::Output> HostTest::Execute(
    std::vector<std::string> const& args) {
  std::list<std::string> words;
  size_t i = 0;
  for (; i < args.size() && args[i].rfind("-", 0) != 0; ++i) words.push_back(args[i]);
  auto node = PluginRoot().ResolveNode(words);
  EXPECT_TRUE(words.empty()) << "unknown word " << (words.empty() ? "" : words.front());
  auto command = node->GetDispatcher();
  EXPECT_NE(command, nullptr) << "not a command: " << node->GetPathString(' ');
  auto output = Toolbase::CallSpec::Output::New();
  if (!command) return output;
  std::vector<std::string> parameters(args.begin() + static_cast<long>(i), args.end());
  std::shared_ptr<Toolbase::CallSpec::Input> input;
  try {
    input = Toolbase::Cli::ParseParameters(*command->GetInputSpec(), parameters);
  } catch (Toolbase::Cli::UsageError const& error) {
    ADD_FAILURE() << "usage error: " << error.what();
    return output;
  }
  command->Execute(input, output);
  return output;
}

void HostTest::InjectFault(std::string const& operation, std::string const& text) {
  OrvkCtl::Sim::SetFaultForTest(operation, text);
}

std::string HostTest::StateFileText() const {
  std::ifstream file(state_path_);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

void HostTest::ClearFaults() { OrvkCtl::Sim::ClearFaultsForTest(); }

void HostTest::Reload() { OrvkCtl::Sim::ResetHostForTest(); }

std::string HostTest::Ok(Args const& args) {
  Messages messages;
  std::string root = RootAndMessages(args, messages);
  EXPECT_EQ(messages, Messages{});
  return root;
}

std::string HostTest::RootAndMessages(Args const& args, Messages& messages) {
  auto output = Execute(args);
  messages = output->GetErrorMessages();
  return MetaText(output->GetRootObject());
}

void HostTest::Refused(Args const& args, Messages const& messages, int status) {
  SeedHost();
  std::string const before = StateFileText();
  auto output = Execute(args);
  EXPECT_EQ(output->GetErrorMessages(), messages);
  EXPECT_EQ(output->GetRootObject(), nullptr) << MetaText(output->GetRootObject());
  Reload();
  EXPECT_TRUE(StateFileText() == before) << "the command changed the state file";
  // The same through the executable's path: the messages alone, one a line.
  RunResult printed = Run(args);
  std::string text;
  for (auto const& message : messages) {
    text += message;
    if (message.empty() || message.back() != '\n') text += '\n';
  }
  EXPECT_EQ(printed.status, status);
  EXPECT_EQ(printed.out, "");
  EXPECT_EQ(printed.err, text);
  Reload();
  EXPECT_TRUE(StateFileText() == before) << "the command changed the state file";
}

std::vector<std::string> HostTest::Rows(Args const& args) {
  std::vector<std::string> rows;
  auto output = Execute(args);
  EXPECT_EQ(output->GetErrorMessages(), Messages{});
  auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
  EXPECT_NE(list, nullptr);
  if (list) {
    for (auto const& item : list->GetItems()) rows.push_back(MetaText(item));
  }
  return rows;
}

std::vector<std::map<std::string, std::string>> HostTest::Fields(Args const& args) {
  using namespace Toolbase::MetaObj;
  std::vector<std::map<std::string, std::string>> rows;
  auto output = Execute(args);
  EXPECT_EQ(output->GetErrorMessages(), Messages{});
  auto list = std::dynamic_pointer_cast<MetaList>(output->GetRootObject());
  EXPECT_NE(list, nullptr);
  if (!list) return rows;
  for (auto const& item : list->GetItems()) {
    std::map<std::string, std::string> row;
    for (auto const& [key, value] : static_cast<MetaStruct const&>(*item).GetFields()) {
      row[key] = MetaText(value);
    }
    rows.push_back(row);
  }
  return rows;
}

void HostTest::SeedHost() { OrvkCtl::Sim::ReadHost(); }

}  // namespace TestSupport
