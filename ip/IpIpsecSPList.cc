#include <list>
#include <string>

#include "hostctl/ipsec.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kSourceAddress = "Source Address";
const std::string kSourcePort = "Source Port";
const std::string kDestinationAddress = "Destination Address";
const std::string kDestinationPort = "Destination Port";
const std::string kProtocol = "Protocol";
const std::string kFlow = "Flow";
const std::string kAction = "Action";
const std::string kMode = "Mode";
const std::string kSaName = "SA Name";
// The SA name of a policy whose own SA was deleted.
const std::string kDeletedSa = "UNKNOWN";
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSPList, Rows)

IpIpsecSPList::IpIpsecSPList() {
  SetDescription("List configured Security Policys");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:SecurityPolicy",
                            "Name,Source Address,Source Port,Destination Address,Destination "
                            "Port,Protocol,Flow,Action,Mode,SA Name");
}

std::shared_ptr<MetaStruct> IpIpsecSPList::GetOutputStructure() {
  auto result = MetaStruct::New("SecurityPolicy");
  result->SetField(kName, MetaString::New());
  result->SetField(kSourceAddress, MetaString::New());
  result->SetField(kSourcePort, MetaInt::New());
  result->SetField(kDestinationAddress, MetaString::New());
  result->SetField(kDestinationPort, MetaInt::New());
  for (auto const* field : {&kProtocol, &kFlow, &kAction, &kMode, &kSaName}) {
    result->SetField(*field, MetaString::New());
  }
  return result;
}

std::shared_ptr<InputSpec> IpIpsecSPList::GetInputSpecInternal() { return InputSpec::New(); }

void IpIpsecSPList::ExecuteInternal(std::shared_ptr<Input> const&,
                                    std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::IpSecConfigImpl;
  try {
    IpSecConfigImpl config;
    std::list<HostCtl::Network::IpSecSpdParam> records;
    config.GetSPDConfigList(records);
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    bool deletedSa = false;
    for (auto const& record : records) {
      std::string saName = record.saName;
      if (saName == kDeletedSa) {
        saName = kDeletedSa + "*";
        deletedSa = true;
      }
      auto row = GetOutputStructure();
      row->SetField(kName, record.name);
      row->SetField(kSourceAddress, record.source.GetStringAddress() + "/" +
                                        std::to_string(record.sourcePrefixLength));
      row->SetField(kSourcePort, static_cast<long>(record.sourcePort));
      row->SetField(kDestinationAddress, record.destination.GetStringAddress() + "/" +
                                             std::to_string(record.destinationPrefixLength));
      row->SetField(kDestinationPort, static_cast<long>(record.destinationPort));
      row->SetField(kProtocol, IpSecConfigImpl::SP_UL_PROTO_TYPE[record.protocol]);
      row->SetField(kFlow, IpSecConfigImpl::SP_DIRECTION[record.direction]);
      row->SetField(kAction, IpSecConfigImpl::SP_ACTION[record.action]);
      row->SetField(kMode, IpSecConfigImpl::SA_MODE[record.mode]);
      row->SetField(kSaName, saName);
      list->Add(row);
    }
    if (deletedSa) {
      output->AddErrorMessage(
          "*Some SPs with unique but deleted SAs were found. Please remove these SPs as they "
          "cannot be used anymore.");
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
