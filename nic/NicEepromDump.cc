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

NETWORK_COMMAND_NEW(NicEepromDump, Rows)

NicEepromDump::NicEepromDump() {
  SetDescription("Dump device EEPROM");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Offset,Value");
}

std::shared_ptr<MetaStruct> NicEepromDump::GetOutputStructure() {
  return TextPairStructure(kStructure, kOffsetField);
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
  return InputSpecOf(
      {Required(Shared::Ornic, "The name of pnic to dump EEPROM"),
       Optional(kOffset, ParameterType::Int, "o", "Offset of EEPROM starting to dump"),
       Optional(kLength, ParameterType::Int, "l", "Bytes of EEPROM to dump")});
}

void NicEepromDump::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    long offset = input->HasParameter(kOffset) ? input->GetParameterInt(kOffset) : 0;
    long length = input->HasParameter(kLength) ? input->GetParameterInt(kLength) : 0;
    std::vector<unsigned char> bytes;
    pnic->GetEepromDump(bytes, static_cast<uint32_t>(length), static_cast<uint32_t>(offset));
    output->SetRootObject(DumpBinary(static_cast<unsigned int>(offset), bytes));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
