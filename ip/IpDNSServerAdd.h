#pragma once

#include <memory>

#include "toolbase/auto_cli.h"

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class Output;
class OutputSpec;
}  // namespace Toolbase::CallSpec

namespace CorvaneCli::NetworkNamespace {

// `network ip dns server add`: appends a name server of a netstack instance.
class IpDNSServerAdd : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpDNSServerAdd> New();
  IpDNSServerAdd();
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
  ~IpDNSServerAdd() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
};

}  // namespace CorvaneCli::NetworkNamespace
