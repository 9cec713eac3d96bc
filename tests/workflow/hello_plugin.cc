// A third party's plug-in, built by install_test.sh against the installed
// headers and pkg-config file only: `hello greet [--name N]`.
#include <memory>
#include <string>

#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase;

class HelloGreet : public AutoCli::Command {
 public:
  static std::shared_ptr<HelloGreet> New() { return std::shared_ptr<HelloGreet>(new HelloGreet()); }

 protected:
  HelloGreet() { SetDescription("Greet someone."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override {
    auto spec = CallSpec::InputSpec::New();
    auto name = CallSpec::ParameterSpec::New("name", CallSpec::String);
    name->SetDescription("Whom to greet.");
    spec->AddParameter(name);
    return spec;
  }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaString::New());
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    std::string name = input->HasParameter("name") ? input->GetParameter("name") : "world";
    output->SetRootObject(MetaObj::MetaString::New("Hello, " + name + "!"));
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterNamespaces(void** root) {
  auto& node = *static_cast<AutoCli::NamespaceNode*>(*root);
  auto hello = AutoCli::Namespace::New();
  hello->SetDescription("Greetings.");
  hello->RegisterNamespaceNode(HelloGreet::New(), "greet");
  node.RegisterNamespaceNode(hello, "hello");
}
