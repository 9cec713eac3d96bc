#include "nic/NicEepromChange.h"

#include <string>

#include "frame/ParamRange.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
const std::string kOffset = "offset";
const std::string kValue = "value";
const std::string kFile = "file";
const std::string kMagic = "magic";
}  // namespace

std::shared_ptr<NicEepromChange> NicEepromChange::New() {
  return std::shared_ptr<NicEepromChange>(new NicEepromChange());
}

NicEepromChange::NicEepromChange() { SetDescription("Change EEPROM on a nic"); }

NicEepromChange::~NicEepromChange() = default;

std::shared_ptr<InputSpec> NicEepromChange::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to change EEPROM.");
  spec->AddParameter(ornic);
  auto offset = ParameterSpec::New(kOffset, ParameterType::Int);
  offset->SetRequired(false);
  offset->SetShortName("o");
  offset->SetDescription("Offset of EEPROM to change");
  spec->AddParameter(offset);
  auto value = ParameterSpec::New(kValue, ParameterType::Int);
  value->SetRequired(false);
  value->SetShortName("v");
  value->SetDescription("New EEPROM value in double word");
  spec->AddParameter(value);
  auto file = ParameterSpec::New(kFile, ParameterType::String);
  file->SetRequired(false);
  file->SetShortName("f");
  file->SetDescription("File name of new EEPROM content");
  spec->AddParameter(file);
  auto magic = ParameterSpec::New(kMagic, ParameterType::Int);
  magic->SetRequired(true);
  magic->SetShortName("m");
  magic->SetDescription("Magic key of EEPROM");
  spec->AddParameter(magic);
  return spec;
}

std::shared_ptr<OutputSpec> NicEepromChange::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

// The option rules are checked once the uplink is known and are raised like
// the library's failures, so that the one handler reports them.
void NicEepromChange::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  using HostCtl::Lib::HostCtlException;
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    long magic = input->GetParameterInt(kMagic);
    bool hasOffset = input->HasParameter(kOffset);
    bool hasValue = input->HasParameter(kValue);
    if (input->HasParameter(kFile)) {
      if (hasOffset || hasValue) {
        throw HostCtlException(
            "Parameter --file can't be specified together with --offset and --value");
      }
      if (!CheckParamUint32(*output, kMagic, magic)) return;
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
      if (!CheckParamUint32(*output, kMagic, magic) ||
          !CheckParamUint32(*output, kOffset, offset) ||
          !CheckParamUint32(*output, kValue, value)) {
        return;
      }
      pnic->SetEepromValue(static_cast<uint32_t>(magic), static_cast<uint32_t>(offset),
                           static_cast<uint32_t>(value));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
