#pragma once

#include <memory>
#include <vector>

#include "toolbase/auto_cli.h"

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class Output;
class OutputSpec;
}  // namespace Toolbase::CallSpec
namespace Toolbase::MetaObj {
class MetaList;
class MetaStruct;
}  // namespace Toolbase::MetaObj
namespace HostCtl::Network {
class DVPort;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network vswitch dvs corvane list`: the distributed switches of the host,
// each with its DVPorts.
class VirtualSwitchDVSCorvaneList : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<VirtualSwitchDVSCorvaneList> New();
  VirtualSwitchDVSCorvaneList();
  ~VirtualSwitchDVSCorvaneList() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;

  // A new, empty `DVPort` structure.
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDVPortStructure();
  // The filled `DVPort` list of `ports`. Throws HostCtlException when the
  // host cannot be read.
  std::shared_ptr<Toolbase::MetaObj::MetaList> GetDVPortList(
      std::vector<std::unique_ptr<HostCtl::Network::DVPort>> const& ports);
};

}  // namespace CorvaneCli::NetworkNamespace
