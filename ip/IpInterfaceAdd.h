#pragma once

#include <memory>

#include "toolbase/auto_cli.h"

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class Output;
class OutputSpec;
}  // namespace Toolbase::CallSpec

namespace HostCtl::Network {
class OrvkNic;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network ip interface add`: adds an Orvik network interface on a port group or a DVPort.
class IpInterfaceAdd : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpInterfaceAdd> New();
  IpInterfaceAdd();
  ~IpInterfaceAdd() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;

 private:
  // Sets `tag` on the new interface `nic` and clears it from the interfaces
  // of the default netstack instance.
  void MoveTag(HostCtl::Network::OrvkNic& nic, int tag);
};

}  // namespace CorvaneCli::NetworkNamespace
