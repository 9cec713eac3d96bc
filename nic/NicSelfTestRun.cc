#include "nic/NicSelfTestRun.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
const std::string kOnline = "online";
// The record's name is shared with the EEPROM dump's on purpose.
const std::string kStructure = "EepromDump";
const std::string kItemField = "Item";
const std::string kValueField = "Value";
}  // namespace

std::shared_ptr<NicSelfTestRun> NicSelfTestRun::New() {
  return std::shared_ptr<NicSelfTestRun>(new NicSelfTestRun());
}

NicSelfTestRun::NicSelfTestRun() {
  SetDescription("Run self test");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Item,Value");
}

NicSelfTestRun::~NicSelfTestRun() = default;

std::shared_ptr<MetaStruct> NicSelfTestRun::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kItemField, MetaString::New());
  result->SetField(kValueField, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicSelfTestRun::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("The name of pnic to dump EEPROM");
  spec->AddParameter(ornic);
  auto online = ParameterSpec::New(kOnline, ParameterType::Int);
  online->SetRequired(false);
  online->SetShortName("o");
  online->SetDescription(
      "Performing limited set of tests do not inetrrupt normal adapter operation, default is "
      "offline");
  spec->AddParameter(online);
  return spec;
}

std::shared_ptr<OutputSpec> NicSelfTestRun::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaList::New(MetaType::Struct, GetOutputStructure()));
  return spec;
}

// A failed test is a result like any other, not an error.
void NicSelfTestRun::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
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
