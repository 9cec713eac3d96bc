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
namespace HostCtl::Network {
struct FilterStats;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// The order of a port's filters along a packet's way: the inbound chain
// (`isOutbound` false) first, ascending by `chainKey`, then the outbound chain,
// descending by `chainKey`. A strict weak order, for std::sort.
bool sortFilterStats(std::unique_ptr<HostCtl::Network::FilterStats> const& a,
                     std::unique_ptr<HostCtl::Network::FilterStats> const& b);

// `network port filter stats get`: the counters of the filters of one switch port.
class PortFilterStatsGet : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<PortFilterStatsGet> New();
  PortFilterStatsGet();
  ~PortFilterStatsGet() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
