#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOffset = "offset";
const std::string kValue = "value";
const std::string kFile = "file";
const std::string kMagic = "magic";
}  // namespace

NETWORK_COMMAND_NEW(NicEepromChange, Bool)

NicEepromChange::NicEepromChange() { SetDescription("Change EEPROM on a nic"); }

std::shared_ptr<InputSpec> NicEepromChange::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::Ornic, "Name of ornic to change EEPROM."),
       Optional(kOffset, ParameterType::Int, "o", "Offset of EEPROM to change"),
       Optional(kValue, ParameterType::Int, "v", "New EEPROM value in double word"),
       Optional(kFile, ParameterType::String, "f", "File name of new EEPROM content"),
       Required(kMagic, ParameterType::Int, "m", "Magic key of EEPROM")});
}

// The option rules are checked once the uplink is known and are raised like
// the library's failures, so that the one handler reports them.
void NicEepromChange::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  using HostCtl::Lib::HostCtlException;
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    long magic = input->GetParameterInt(kMagic);
    bool hasOffset = input->HasParameter(kOffset);
    bool hasValue = input->HasParameter(kValue);
    if (input->HasParameter(kFile)) {
      if (hasOffset || hasValue) {
        throw HostCtlException(
            "Parameter --file can't be specified together with --offset and --value");
      }
      pnic->SetEepromFile(static_cast<uint32_t>(magic), input->GetParameter(kFile));
    } else {
      if (!hasOffset || !hasValue) {
        throw HostCtlException("Need to specify atleast one of --offset, --value or --file");
      }
      // Asks again for the file, which is known to be absent here: never fires.
      if (input->HasParameter(kFile)) {
        throw HostCtlException(
            "Parameter --offset and --value can't be specified together with --file");
      }
      long offset = input->GetParameterInt(kOffset);
      long value = input->GetParameterInt(kValue);
      pnic->SetEepromValue(static_cast<uint32_t>(magic), static_cast<uint32_t>(offset),
                           static_cast<uint32_t>(value));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
