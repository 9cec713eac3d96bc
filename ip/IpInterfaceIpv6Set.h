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

// `network ip interface ipv6 set`: turns IPv6, DHCPv6 and router advertisement on or off and sets
// the gateway.
class IpInterfaceIpv6Set : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpInterfaceIpv6Set> New();
  IpInterfaceIpv6Set();
  ~IpInterfaceIpv6Set() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
