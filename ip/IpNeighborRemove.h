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

// `network ip neighbor remove`: removes a neighbor table entry.
class IpNeighborRemove : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<IpNeighborRemove> New();
  IpNeighborRemove();
  ~IpNeighborRemove() override;
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
