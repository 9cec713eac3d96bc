#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

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
const std::string kStructure = "RegisterDump";
const std::string kOffsetField = "Offset";
const std::string kValueField = "Value";
constexpr size_t kRowValues = 16;
}  // namespace

NETWORK_COMMAND_NEW(NicRegisterDump, Rows)

NicRegisterDump::NicRegisterDump() {
  SetDescription("Dump device registers");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Offset,Value");
}

std::shared_ptr<MetaStruct> NicRegisterDump::GetOutputStructure() {
  return TextPairStructure(kStructure, kOffsetField);
}

std::shared_ptr<InputSpec> NicRegisterDump::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Ornic, "The name of pnic to dump registers")});
}

// The Offset column counts values, 0x10 per row of 16, not bytes.
void NicRegisterDump::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    std::vector<uint32_t> values;
    pnic->GetRegisterDump(values);
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (size_t row = 0; row < values.size(); row += kRowValues) {
      std::string text;
      char piece[24];
      for (size_t i = row; i < values.size() && i < row + kRowValues; ++i) {
        std::snprintf(piece, sizeof piece, "%02x ", values[i]);
        text += piece;
      }
      std::snprintf(piece, sizeof piece, "%04zx", row);
      auto entry = GetOutputStructure();
      entry->SetField(kOffsetField, std::string(piece));
      entry->SetField(kValueField, text);
      list->Add(entry);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
