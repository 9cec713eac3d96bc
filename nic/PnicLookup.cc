#include "nic/PnicLookup.h"

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

namespace {
const std::string kNicField = "NIC";
}  // namespace

const char kConfiguredNicHelp[] =
    "The name of the NIC to configured. This must be one of the cards listed in the nic list "
    "command.";

std::string MissingPnicMessage(MissingPnicWords words, std::string const& name) {
  switch (words) {
    case MissingPnicWords::InvalidName:
      return "Invalid PNIC name " + name;
    case MissingPnicWords::NicNotFound:
      return "NIC with name " + name + " not found";
    case MissingPnicWords::NoPnic:
      return "There is no pnic with name " + name;
    case MissingPnicWords::NotFound:
      break;
  }
  return "Pnic with name " + name + " not found";
}

std::unique_ptr<HostCtl::Network::Pnic> FindNamedPnic(HostCtl::Network::NetworkInfo& networkInfo,
                                                      std::string const& name,
                                                      Toolbase::CallSpec::Output& output,
                                                      MissingPnicWords words) {
  auto pnic = networkInfo.GetPnicByName(name);
  if (!pnic) output.AddErrorMessage(MissingPnicMessage(words, name));
  return pnic;
}

std::shared_ptr<Toolbase::MetaObj::MetaStruct> TextPairStructure(std::string const& structure,
                                                                 std::string const& first) {
  using namespace Toolbase::MetaObj;
  auto result = MetaStruct::New(structure);
  result->SetField(first, MetaString::New());
  result->SetField("Value", MetaString::New());
  return result;
}

void SetNamedPnicAdminUp(HostCtl::Network::NetworkInfo& networkInfo,
                         Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                         bool up) {
  auto pnic =
      FindNamedPnic(networkInfo, input.GetParameter(kNicName), output, MissingPnicWords::NoPnic);
  if (!pnic) return;
  pnic->SetAdminUp(up);
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

bool SelectPnics(HostCtl::Network::NetworkInfo& networkInfo, std::string const* name,
                 Toolbase::CallSpec::Output& output, MissingPnicWords words,
                 HostCtl::Network::PnicList& pnics) {
  if (!name) {
    pnics = networkInfo.GetPnics();
    return true;
  }
  auto pnic = FindNamedPnic(networkInfo, *name, output, words);
  if (!pnic) return false;
  pnics.push_back(std::move(pnic));
  return true;
}

std::shared_ptr<Toolbase::MetaObj::MetaList> PnicRows(
    HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
    std::string const& option, Toolbase::CallSpec::Output& output, MissingPnicWords words,
    std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
    PnicRowFill const& fill, std::function<void(Toolbase::MetaObj::MetaStruct&)> const& fallback) {
  using Toolbase::MetaObj::MetaList;
  auto list = MetaList::New(Toolbase::MetaObj::MetaType::Struct, newRow());
  HostCtl::Network::PnicList pnics;
  bool const named = input.HasParameter(option);
  if (!SelectPnics(networkInfo, named ? &input.GetParameter(option) : nullptr, output, words,
                   pnics)) {
    return nullptr;
  }
  for (auto const& pnic : pnics) {
    auto row = newRow();
    row->SetField(kNicField, pnic->GetName());
    try {
      fill(*pnic, *row);
    } catch (HostCtl::Lib::HostCtlException const&) {
      fallback(*row);
    }
    list->Add(row);
  }
  return list;
}

}  // namespace CorvaneCli::NetworkNamespace
