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

// `network ip hosts list`: the lines of the hosts file that the user made.
class IpHostsList : public Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpHostsList> New();
  IpHostsList();
  ~IpHostsList() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
