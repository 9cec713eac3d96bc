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
const std::string kOnline = "online";
// The record's name is shared with the EEPROM dump's on purpose.
const std::string kStructure = "EepromDump";
const std::string kItemField = "Item";
const std::string kValueField = "Value";
}  // namespace

NETWORK_COMMAND_NEW(NicSelfTestRun, Rows)

NicSelfTestRun::NicSelfTestRun() {
  SetDescription("Run self test");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Item,Value");
}

std::shared_ptr<MetaStruct> NicSelfTestRun::GetOutputStructure() {
  return TextPairStructure(kStructure, kItemField);
}

std::shared_ptr<InputSpec> NicSelfTestRun::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Ornic, "The name of pnic to dump EEPROM"),
                      Optional(kOnline, ParameterType::Int, "o",
                               "Performing limited set of tests do not inetrrupt normal adapter "
                               "operation, default is offline")});
}

// A failed test is a result like any other, not an error.
void NicSelfTestRun::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    bool online = input->HasParameter(kOnline) && input->GetParameterInt(kOnline) != 0;
    HostCtl::Network::PnicSelfTestResult result;
    pnic->RunSelfTest(result, online);
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    auto add = [&](char const* item, std::string const& value) {
      auto entry = GetOutputStructure();
      entry->SetField(kItemField, item);
      entry->SetField(kValueField, value);
      list->Add(entry);
    };
    add("Result", result.failed ? "Failed" : "Passed");
    for (auto const& info : result.info) add("Info", info);
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
