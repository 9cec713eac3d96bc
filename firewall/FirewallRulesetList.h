#pragma once

#include <memory>

#include "toolbase/auto_cli.h"

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class Output;
class OutputSpec;
}  // namespace Toolbase::CallSpec
namespace Toolbase::MetaObj {
class MetaStruct;
}  // namespace Toolbase::MetaObj

namespace CorvaneCli::NetworkNamespace {

// `network firewall ruleset list`: the rulesets with their state.
class FirewallRulesetList : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<FirewallRulesetList> New();
  FirewallRulesetList();
  ~FirewallRulesetList() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
