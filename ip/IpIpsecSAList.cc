#include <cstdio>
#include <list>
#include <string>

#include "hostctl/ipsec.h"
#include "ip/IpCommands.h"
#include "ip/IpsecKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kSourceAddress = "Source Address";
const std::string kDestinationAddress = "Destination Address";
const std::string kState = "State";
const std::string kSpi = "SPI";
const std::string kMode = "Mode";
const std::string kEncryptionAlgorithm = "Encryption Algorithm";
const std::string kIntegrityAlgorithm = "Integrity Algorithm";
const std::string kLifetime = "Lifetime";
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSAList, Rows)

IpIpsecSAList::IpIpsecSAList() {
  SetDescription("List configured Security Associations");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:SecurityAssociation",
                            "Name,Source Address,Destination Address,State,SPI,Mode,Encryption "
                            "Algorithm,Integrity Algorithm,Lifetime");
}

std::shared_ptr<MetaStruct> IpIpsecSAList::GetOutputStructure() {
  auto result = MetaStruct::New("SecurityAssociation");
  for (auto const* field : {&kName, &kSourceAddress, &kDestinationAddress, &kState, &kSpi, &kMode,
                            &kEncryptionAlgorithm, &kIntegrityAlgorithm, &kLifetime}) {
    result->SetField(*field, MetaString::New());
  }
  return result;
}

std::shared_ptr<InputSpec> IpIpsecSAList::GetInputSpecInternal() { return InputSpec::New(); }

void IpIpsecSAList::ExecuteInternal(std::shared_ptr<Input> const&,
                                    std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::IpSecConfigImpl;
  try {
    IpSecConfigImpl config;
    std::list<HostCtl::Network::IpSecSadParam> records;
    config.GetSADConfigList(records);
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& record : records) {
      auto row = GetOutputStructure();
      row->SetField(kName, record.name);
      row->SetField(kSourceAddress, record.source.GetStringAddress());
      row->SetField(kDestinationAddress, record.destination.GetStringAddress());
      row->SetField(kState, IpSecConfigImpl::SA_STATE[record.state]);
      char spi[16];
      std::snprintf(spi, sizeof(spi), "0x%x", record.spi);
      row->SetField(kSpi, std::string(spi));
      row->SetField(kMode, IpSecConfigImpl::SA_MODE[record.mode]);
      row->SetField(kEncryptionAlgorithm, IpSecConfigImpl::SA_ENCPT_ALG[record.encryptAlgo]);
      row->SetField(kIntegrityAlgorithm, IpSecConfigImpl::SA_AUTH_ALG[record.authAlgo]);
      row->SetField(kLifetime, ConvertToHrsMinsAndSecs(record.lifetime));
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
