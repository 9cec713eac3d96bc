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
struct PnicInfo;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network nic set`: changes the general settings, speed and duplex of a NIC.
class NicSet : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<NicSet> New();
  NicSet();
  ~NicSet() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
  // Lays the parameters given in `input` over `info`, setting the change flag
  // of each field that really changes. Returns whether anything changed.
  // Throws HostCtl::Lib::HostCtlException for a bad PHY address or
  // wake-on-LAN letter and for options the device does not support.
  bool GetInfoFromParam(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                        HostCtl::Network::PnicInfo& info);
};

}  // namespace CorvaneCli::NetworkNamespace
