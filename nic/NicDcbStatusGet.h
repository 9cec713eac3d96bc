#pragma once

#include <memory>
#include <string>

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

// "<mode> - <word>": 0 Unknown, 1 CEN Mode, 2 CEE Mode, 3 IEEE Mode.
std::string DcbModeToString(unsigned int mode);
// Eight 0/1 digits, bit 0 first, separated by blanks.
std::string DcbIntMaskToString(unsigned char mask);
// The first eight bytes of `array` in decimal, separated by blanks.
std::string DcbArrayToString(unsigned char* array);

// `network nic dcb status get`: the Data Center Bridging state of one NIC.
class NicDcbStatusGet : public Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<NicDcbStatusGet> New();
  NicDcbStatusGet();
  ~NicDcbStatusGet() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbCapabilitiesStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbIeeePfcConfigStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbIeeeEtsConfigStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbAppsStructure();
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
