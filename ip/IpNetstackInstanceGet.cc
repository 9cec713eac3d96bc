#include <string>

#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kKey = "Key";
const std::string kName = "Name";
const std::string kEnabled = "Enabled";
const std::string kMaxConnections = "Max Connections";
const std::string kCurrentMaxConnections = "Current Max Connections";
const std::string kCcAlgorithm = "Congestion Control Algorithm";
const std::string kIpv6Enabled = "IPv6 Enabled";
const std::string kCurrentIpv6Enabled = "Current IPv6 Enabled";
const std::string kEcnStatus = "ECN Status";
const std::string kState = "State";
// The state word of an instance that is up.
constexpr uint32_t kStateUp = 0x1234;
}  // namespace

NETWORK_COMMAND_NEW(IpNetstackInstanceGet, Rows)

IpNetstackInstanceGet::IpNetstackInstanceGet() {
  SetDescription("Get runtime/configuration settings for a given Netstack Instance.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:NetstackInstance", "%Key%");
  SetDefaultOutputParameter("fields:NetstackInstance",
                            "Key,Name,Enabled,Max Connections,Current Max Connections,Congestion "
                            "Control Algorithm,IPv6 Enabled,Current IPv6 Enabled,ECN Status,State");
}

std::shared_ptr<MetaStruct> IpNetstackInstanceGet::GetOutputStructure() {
  auto result = MetaStruct::New("NetstackInstance");
  result->SetField(kKey, MetaString::New());
  result->SetField(kName, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kMaxConnections, MetaInt::New());
  result->SetField(kCurrentMaxConnections, MetaInt::New());
  result->SetField(kCcAlgorithm, MetaString::New());
  result->SetField(kIpv6Enabled, MetaBool::New());
  result->SetField(kCurrentIpv6Enabled, MetaBool::New());
  result->SetField(kEcnStatus, MetaString::New());
  result->SetField(kState, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> IpNetstackInstanceGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Netstack, "The network stack instance")});
}

void IpNetstackInstanceGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& key = input->GetParameter(kNetstack);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    auto instance = networkInfo.LookupNetstackInstanceByKey(key);
    if (!instance) {
      output->AddErrorMessage("Unable to find a Netstack instance " + key);
      return;
    }
    auto row = GetOutputStructure();
    row->SetField(kKey, instance->GetInstanceKey());
    row->SetField(kName, instance->GetInstanceName());
    row->SetField(kEnabled, instance->GetState() == kStateUp);
    row->SetField(kMaxConnections, static_cast<long>(instance->GetMaxConnections()));
    row->SetField(kCurrentMaxConnections, static_cast<long>(instance->GetCurrentMaxConnections()));
    row->SetField(kCcAlgorithm, instance->GetCongestionControlAlgorithm());
    row->SetField(kIpv6Enabled, instance->GetIpv6Enabled());
    row->SetField(kCurrentIpv6Enabled, instance->GetCurrentIpv6Enabled());
    row->SetField(kEcnStatus, instance->GetEcnStatus());
    row->SetField(kState, static_cast<long>(instance->GetState()));
    list->Add(row);
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error getting Netstack instance configuration. . Error was : " +
                            e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
