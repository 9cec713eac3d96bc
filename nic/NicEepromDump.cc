#include "nic/NicEepromDump.h"

#include <cstdio>
#include <string>
#include <vector>

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
const std::string kLength = "length";
const std::string kStructure = "EepromDump";
const std::string kOffsetField = "Offset";
const std::string kValueField = "Value";
constexpr unsigned kRowBytes = 16;

std::string HexByte(unsigned char byte) {
  char text[4];
  std::snprintf(text, sizeof text, "%02x ", byte);
  return text;
}

std::string HexAddress(unsigned int address) {
  char text[16];
  std::snprintf(text, sizeof text, "%04x", address);
  return text;
}
}  // namespace

std::shared_ptr<NicEepromDump> NicEepromDump::New() {
  return std::shared_ptr<NicEepromDump>(new NicEepromDump());
}

NicEepromDump::NicEepromDump() {
  SetDescription("Dump device EEPROM");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Offset,Value");
}

NicEepromDump::~NicEepromDump() = default;

std::shared_ptr<MetaStruct> NicEepromDump::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kOffsetField, MetaString::New());
  result->SetField(kValueField, MetaString::New());
  return result;
}

std::shared_ptr<MetaList> NicEepromDump::DumpBinary(unsigned int offset,
                                                    std::vector<unsigned char>& bytes) {
  auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
  unsigned skip = offset % kRowBytes;
  std::string text(skip * 3, ' ');
  unsigned int address = offset & ~0xfu;
  size_t next = 0;
  auto fillRow = [&](unsigned columns) {
    for (; next < bytes.size() && columns < kRowBytes; ++next, ++columns)
      text += HexByte(bytes[next]);
  };
  auto addRow = [&]() {
    auto row = GetOutputStructure();
    row->SetField(kOffsetField, HexAddress(address));
    row->SetField(kValueField, text);
    list->Add(row);
  };
  fillRow(skip);
  addRow();
  while (next < bytes.size()) {
    text.clear();
    address += kRowBytes;
    fillRow(0);
    addRow();
  }
  return list;
}

std::shared_ptr<InputSpec> NicEepromDump::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("The name of pnic to dump EEPROM");
  spec->AddParameter(ornic);
  auto offset = ParameterSpec::New(kOffset, ParameterType::Int);
  offset->SetRequired(false);
  offset->SetShortName("o");
  offset->SetDescription("Offset of EEPROM starting to dump");
  spec->AddParameter(offset);
  auto length = ParameterSpec::New(kLength, ParameterType::Int);
  length->SetRequired(false);
  length->SetShortName("l");
  length->SetDescription("Bytes of EEPROM to dump");
  spec->AddParameter(length);
  return spec;
}

std::shared_ptr<OutputSpec> NicEepromDump::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaList::New(MetaType::Struct, GetOutputStructure()));
  return spec;
}

void NicEepromDump::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    long offset = input->HasParameter(kOffset) ? input->GetParameterInt(kOffset) : 0;
    long length = input->HasParameter(kLength) ? input->GetParameterInt(kLength) : 0;
    if (!CheckParamUint32(*output, kOffset, offset) ||
        !CheckParamUint32(*output, kLength, length)) {
      return;
    }
    std::vector<unsigned char> bytes;
    pnic->GetEepromDump(bytes, static_cast<uint32_t>(length), static_cast<uint32_t>(offset));
    output->SetRootObject(DumpBinary(static_cast<unsigned int>(offset), bytes));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
