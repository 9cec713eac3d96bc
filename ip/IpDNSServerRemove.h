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

// `network ip dns server remove`: drops one or all name servers of a netstack instance.
class IpDNSServerRemove : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpDNSServerRemove> New();
  IpDNSServerRemove();
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
  ~IpDNSServerRemove() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
};

}  // namespace CorvaneCli::NetworkNamespace
