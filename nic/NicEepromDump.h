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

namespace CorvaneCli::NetworkNamespace {

// `network nic eeprom dump`: the EEPROM of one uplink as rows of hex bytes.
class NicEepromDump : public virtual Toolbase::AutoCli::Command {
 public:
  static std::shared_ptr<NicEepromDump> New();
  NicEepromDump();
  ~NicEepromDump() override;
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  // One row per aligned block of 16 bytes; the first row is padded so that
  // each byte stands in the column of its address.
  std::shared_ptr<Toolbase::MetaObj::MetaList> DumpBinary(unsigned int offset,
                                                          std::vector<unsigned char>& bytes);
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override;
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;
};

}  // namespace CorvaneCli::NetworkNamespace
