// The command line end to end over a small tree of test commands.
#include "cli.h"

#include <gtest/gtest.h>

#include <sstream>

#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase;

// A command whose behaviour the parameters choose: --fail adds a message,
// --throw throws, --quiet sets no root, --bool gives a bool root.
class DemoCommand : public virtual AutoCli::Command {
 public:
  static std::shared_ptr<DemoCommand> New() {
    return std::shared_ptr<DemoCommand>(new DemoCommand());
  }
  DemoCommand() {
    SetDescription("Show a demo record.");
    SetDefaultOutputFormatter("simple");
    SetDefaultOutputParameter("fields:Demo", "Name,Count");
  }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override {
    auto spec = CallSpec::InputSpec::New();
    for (auto [name, type] : {std::pair{"name", CallSpec::String}, {"fail", CallSpec::Flag},
                              {"throw", CallSpec::Flag}, {"quiet", CallSpec::Flag}}) {
      auto parameter = CallSpec::ParameterSpec::New(name, type);
      parameter->SetDescription("demo");
      spec->AddParameter(parameter);
    }
    return spec;
  }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaStruct::New("Demo"));
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    if (input->IsFlagSet("throw")) throw std::runtime_error("unexpected failure");
    if (input->IsFlagSet("fail")) {
      output->AddErrorMessage("first problem");
      output->AddErrorMessage("second problem\n");
    }
    if (input->IsFlagSet("quiet")) return;
    auto record = MetaObj::MetaStruct::New("Demo");
    record->SetField("Hidden", "h");
    record->SetField("Count", 3L);
    record->SetField("Name", input->HasParameter("name") ? input->GetParameter("name") : "none");
    output->SetRootObject(record);
  }
};

class SwitchCommand : public virtual AutoCli::Command {
 public:
  static std::shared_ptr<SwitchCommand> New() {
    return std::shared_ptr<SwitchCommand>(new SwitchCommand());
  }
  SwitchCommand() { SetDescription("Flip a switch."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override {
    auto spec = CallSpec::InputSpec::New();
    auto on = CallSpec::ParameterSpec::New("on", CallSpec::Bool);
    on->SetRequired(true);
    on->SetShortName("o");
    on->SetDescription("Whether the switch is on.");
    spec->AddParameter(on);
    return spec;
  }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaBool::New());
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    output->SetRootObject(MetaObj::MetaBool::New(input->GetParameterBool("on")));
  }
};

class CliTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = Cli::NewRoot();
    auto demo = AutoCli::Namespace::New();
    demo->SetDescription("Demo commands.");
    demo->RegisterNamespaceNode(DemoCommand::New(), "show");
    demo->RegisterNamespaceNode(SwitchCommand::New(), "flip");
    auto inner = AutoCli::Namespace::New();
    inner->SetDescription("Nested demo commands.");
    inner->RegisterNamespaceNode(DemoCommand::New(), "again");
    demo->RegisterNamespaceNode(inner, "inner");
    root_->RegisterNamespaceNode(demo, "demo");
  }

  struct Result {
    int status;
    std::string out;
    std::string err;
  };
  Result Run(std::vector<std::string> const& args) {
    std::ostringstream out;
    std::ostringstream err;
    int status = Cli::Run(args, *root_, out, err);
    return {status, out.str(), err.str()};
  }

  std::shared_ptr<AutoCli::NamespaceNode> root_;
};

TEST_F(CliTest, RunsACommandWithItsDefaultFormatterAndDirectives) {
  auto result = Run({"demo", "show", "--name", "x"});
  EXPECT_EQ(result.status, Cli::kSuccess);
  EXPECT_EQ(result.out, "Name: x\nCount: 3\n");
  EXPECT_EQ(result.err, "");
}

TEST_F(CliTest, FormatterMayStandBeforeOrAfterTheWords) {
  for (auto args : {std::vector<std::string>{"--formatter", "json", "demo", "show"},
                    std::vector<std::string>{"demo", "show", "--formatter=json"}}) {
    auto result = Run(args);
    EXPECT_EQ(result.status, Cli::kSuccess);
    EXPECT_NE(result.out.find("\"Hidden\": \"h\""), std::string::npos) << result.out;
  }
  auto result = Run({"--formatter", "fancy", "demo", "show"});
  EXPECT_EQ(result.status, Cli::kUsageError);
  EXPECT_NE(result.err.find("Unknown formatter 'fancy'"), std::string::npos);
}

TEST_F(CliTest, ExitStatusTellsSuccessCommandErrorAndUsageError) {
  struct Case {
    std::vector<std::string> args;
    int status;
    char const* out;
    char const* err;
  };
  std::vector<Case> cases = {
      // Messages and a result can stand together: both are shown.
      {{"demo", "show", "--fail"}, Cli::kCommandError, "Name: none\nCount: 3\n",
       "first problem\nsecond problem\n"},
      {{"demo", "show", "--fail", "--quiet"}, Cli::kCommandError, "",
       "first problem\nsecond problem\n"},
      {{"demo", "show", "--quiet"}, Cli::kSuccess, "", ""},
      {{"demo", "show", "--throw"}, Cli::kCommandError, "", "Error: unexpected failure\n"},
      // A true bool result of a command without formatter prints nothing.
      {{"demo", "flip", "--on", "yes"}, Cli::kSuccess, "", ""},
      {{"demo", "flip", "-o", "0"}, Cli::kSuccess, "false\n", ""},
      {{"demo", "flip"}, Cli::kUsageError, "",
       "Error: Missing required parameter --on\nRun 'toolbase demo flip --help' for usage.\n"},
      {{"demo", "flop"}, Cli::kUsageError, "",
       "Error: Unknown word 'flop' under 'demo'. Did you mean flip? Valid words: flip, inner, "
       "show\nRun 'toolbase demo --help' for usage.\n"},
      {{"demo", "zzz"}, Cli::kUsageError, "",
       "Error: Unknown word 'zzz' under 'demo'. Valid words: flip, inner, show\n"
       "Run 'toolbase demo --help' for usage.\n"},
      {{"demo", "flip", "--no"}, Cli::kUsageError, "",
       "Error: Unknown parameter --no. Did you mean --on? Valid parameters: --on\n"
       "Run 'toolbase demo flip --help' for usage.\n"},
      // Unknown global options are usage errors of their own.
      {{"-V"}, Cli::kUsageError, "",
       "Error: Unknown option '-V'. Run 'toolbase --help' for the options.\n"},
      {{"--verison"}, Cli::kUsageError, "",
       "Error: Unknown option '--verison'. Did you mean --version? Run 'toolbase --help' for "
       "the options.\n"},
      {{"--formater=json", "demo", "show"}, Cli::kUsageError, "",
       "Error: Unknown option '--formater'. Did you mean --formatter? Run 'toolbase --help' for "
       "the options.\n"},
      {{"--dry-run", "demo", "show"}, Cli::kUsageError, "",
       "Error: --dry-run needs a plug-in that can hold changes back; none of the loaded "
       "plug-ins can\n"},
      {{"nope"}, Cli::kUsageError, "",
       "Error: Unknown word 'nope' at the top level. Valid words: demo\n"},
      {{"demo", "show", "extra"}, Cli::kUsageError, "",
       "Error: Unknown word 'extra' under 'demo show': it takes no further words\n"
       "Run 'toolbase demo show --help' for usage.\n"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    auto result = Run(c.args);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.err, c.err);
  }
}

TEST_F(CliTest, HelpOnNamespacesAndCommands) {
  auto result = Run({"demo", "--help"});
  EXPECT_EQ(result.status, Cli::kSuccess);
  EXPECT_NE(result.out.find("Available Namespaces:\n  inner"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Available Commands:\n  flip"), std::string::npos) << result.out;
  result = Run({"demo", "flip", "--help"});
  EXPECT_EQ(result.status, Cli::kSuccess);
  EXPECT_NE(result.out.find("-o|--on=<bool>"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Whether the switch is on. (required)"), std::string::npos);
  // A namespace without a command word shows its help and fails.
  result = Run({"demo"});
  EXPECT_EQ(result.status, Cli::kUsageError);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("Available Commands:"), std::string::npos);
}

TEST_F(CliTest, HelpWordWorksAsTheHelpOption) {
  for (auto const& words : std::vector<std::vector<std::string>>{{}, {"demo"}, {"demo", "flip"}}) {
    SCOPED_TRACE(testing::PrintToString(words));
    auto with_option = words;
    with_option.push_back("--help");
    auto with_word = words;
    with_word.insert(with_word.begin(), "help");
    auto expected = Run(with_option);
    auto result = Run(with_word);
    EXPECT_EQ(result.status, Cli::kSuccess);
    EXPECT_EQ(result.out, expected.out);
    EXPECT_NE(result.out.find("Usage:"), std::string::npos);
  }
  auto unknown = Run({"help", "demo", "flop"});
  EXPECT_EQ(unknown.status, Cli::kUsageError);
  EXPECT_NE(unknown.err.find("Did you mean flip?"), std::string::npos);
}

TEST_F(CliTest, ListsEveryCommandPath) {
  auto result = Run({"--list-commands"});
  EXPECT_EQ(result.status, Cli::kSuccess);
  EXPECT_EQ(result.out, "demo flip\ndemo inner again\ndemo show\n");
  result = Run({"--list-commands", "demo", "inner"});
  EXPECT_EQ(result.out, "demo inner again\n");
  result = Run({"--list-commands", "demo", "flip"});
  EXPECT_EQ(result.out, "demo flip\n");
  result = Run({"--list-commands", "demo", "nope"});
  EXPECT_EQ(result.status, Cli::kUsageError);
  result = Run({"--list-commands", "--formatter", "json"});
  EXPECT_EQ(result.out, "[\n  \"demo flip\",\n  \"demo inner again\",\n  \"demo show\"\n]\n");
}

TEST(NamespaceNodeTest, RefusesDuplicatesAndChildrenOfCommands) {
  auto root = Cli::NewRoot();
  root->RegisterNamespaceNode(AutoCli::Namespace::New(), "a");
  EXPECT_THROW(root->RegisterNamespaceNode(AutoCli::Namespace::New(), "a"),
               std::invalid_argument);
  EXPECT_EQ(root->GetNamespaceNodeNames(), std::vector<std::string>{"a"});
  auto command = SwitchCommand::New();
  EXPECT_THROW(command->RegisterNamespaceNode(AutoCli::Namespace::New(), "x"),
               std::invalid_argument);
}

TEST(NamespaceNodeTest, ChildrenMayJoinAfterTheNodeIsAttached) {
  auto root = Cli::NewRoot();
  auto top = AutoCli::Namespace::New();
  auto below = AutoCli::Namespace::New();
  top->RegisterNamespaceNode(below, "below");  // before top has a parent
  root->RegisterNamespaceNode(top, "top");
  below->RegisterNamespaceNode(SwitchCommand::New(), "flip");
  std::list<std::string> words{"top", "below", "flip", "rest"};
  auto node = root->ResolveNode(words);
  EXPECT_EQ(node->GetPathString(' '), "top below flip");
  EXPECT_EQ(words, std::list<std::string>{"rest"});
}

}  // namespace
