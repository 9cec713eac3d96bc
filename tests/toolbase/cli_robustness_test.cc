// The framework's answers to awkward command lines: the same message wherever
// an option stands, and values that are not text.
#include <gtest/gtest.h>

#include <sstream>

#include "cli.h"
#include "params.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase;
using Args = std::vector<std::string>;

// Echoes --name; --host (short -h when `short_h`) shows that a command's own
// -h is a parameter, not a request for help.
class EchoCommand : public virtual AutoCli::Command {
 public:
  static std::shared_ptr<EchoCommand> New(bool short_h) {
    return std::shared_ptr<EchoCommand>(new EchoCommand(short_h));
  }
  explicit EchoCommand(bool short_h) : short_h_(short_h) { SetDescription("Echo a name."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override {
    auto spec = CallSpec::InputSpec::New();
    auto name = CallSpec::ParameterSpec::New("name", CallSpec::String);
    name->SetShortName("n");
    name->SetDescription("A name.");
    spec->AddParameter(name);
    if (short_h_) {
      auto host = CallSpec::ParameterSpec::New("host", CallSpec::Flag);
      host->SetShortName("h");
      host->SetDescription("A flag that owns -h.");
      spec->AddParameter(host);
    }
    return spec;
  }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaString::New());
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    std::string text = input->HasParameter("name") ? input->GetParameter("name") : "none";
    if (input->IsFlagSet("host")) text += " with host";
    output->SetRootObject(MetaObj::MetaString::New(text));
  }

 private:
  bool const short_h_;
};

struct Result {
  int status;
  std::string out;
  std::string err;
};

class CliRobustnessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = Cli::NewRoot();
    auto demo = AutoCli::Namespace::New();
    demo->SetDescription("Demo commands.");
    demo->RegisterNamespaceNode(EchoCommand::New(false), "echo");
    demo->RegisterNamespaceNode(EchoCommand::New(true), "hosted");
    root_->RegisterNamespaceNode(demo, "demo");
  }
  Result Run(Args const& args) {
    std::ostringstream out;
    std::ostringstream err;
    int status = Cli::Run(args, *root_, out, err);
    return {status, out.str(), err.str()};
  }
  std::shared_ptr<AutoCli::NamespaceNode> root_;
};

TEST_F(CliRobustnessTest, UnknownFormatterListsTheValidOnesWhereverItStands) {
  for (Args const& args : {Args{"--formatter", "fancy", "demo", "echo"},
                           Args{"--formatter=fancy", "demo", "echo"},
                           Args{"demo", "echo", "--formatter", "fancy"},
                           Args{"demo", "echo", "--formatter=fancy", "-n", "x"}}) {
    SCOPED_TRACE(testing::PrintToString(args));
    auto result = Run(args);
    EXPECT_EQ(result.status, Cli::kUsageError);
    EXPECT_NE(result.err.find("Unknown formatter 'fancy'. Valid formatters: "), std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find("table"), std::string::npos) << result.err;
  }
}

TEST_F(CliRobustnessTest, ShortHelpWorksBeforeAndAfterTheWords) {
  struct Case {
    Args args;
    std::string expected;  // a piece of the help text
  };
  for (auto const& c : std::vector<Case>{
           {{"-h", "demo"}, "Available Commands:"},
           {{"demo", "-h"}, "Available Commands:"},
           {{"-h", "demo", "echo"}, "--name"},
           {{"demo", "echo", "-h"}, "--name"},
           {{"demo", "echo", "-n", "x", "-h"}, "--name"},
           {{"demo", "hosted", "--help"}, "--host"},
       }) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    auto result = Run(c.args);
    EXPECT_EQ(result.status, Cli::kSuccess) << result.err;
    EXPECT_NE(result.out.find(c.expected), std::string::npos) << result.out;
  }
  // A command's own -h stays its parameter.
  auto result = Run({"demo", "hosted", "-n", "x", "-h"});
  EXPECT_EQ(result.status, Cli::kSuccess) << result.err;
  EXPECT_EQ(result.out, "x with host\n");
}

TEST_F(CliRobustnessTest, ValuesThatAreNotUtf8AreUsageErrorsNamingTheParameter) {
  for (std::string const bad : {"bad\xffname", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80",
                                "cut\xe4\xb8"}) {
    SCOPED_TRACE(testing::PrintToString(bad));
    for (Args const& args : {Args{"demo", "echo", "-n", bad}, Args{"demo", "echo", "--name=" + bad}}) {
      auto result = Run(args);
      EXPECT_EQ(result.status, Cli::kUsageError);
      EXPECT_EQ(result.out, "");
      EXPECT_NE(result.err.find("Parameter --name expects UTF-8 text"), std::string::npos)
          << result.err;
    }
  }
  // Any well-formed text passes, whatever its script.
  for (std::string const good : {"", "plain", "caf\xc3\xa9", "\xe5\x90\x8d\xe5\x89\x8d",
                                 "\xf0\x9f\x98\x80", "e\xcc\x81"}) {
    auto result = Run({"demo", "echo", "-n", good});
    EXPECT_EQ(result.status, Cli::kSuccess) << result.err;
    EXPECT_EQ(result.out, good + "\n");
  }
}

}  // namespace
