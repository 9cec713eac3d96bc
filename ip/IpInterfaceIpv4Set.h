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

// `network ip interface ipv4 set`: sets the IPv4 mode, address, gateway and DHCP DNS use of an
// interface.
class IpInterfaceIpv4Set : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpInterfaceIpv4Set> New();
  IpInterfaceIpv4Set();
  ~IpInterfaceIpv4Set() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
