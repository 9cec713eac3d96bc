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

// `network vswitch dvs corvane lacp status get`: LACP state of running LAGs.
class LacpGetStatus : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<LacpGetStatus> New();
  LacpGetStatus();
  ~LacpGetStatus() override;
  // The empty structures of the nested records, innermost first; each call
  // builds a new one.
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPLocalInfoStruct();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPPartnerInfoStruct();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPNicInfoStruct();
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
