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
const std::string kEnable = "enable";
const std::string kName = "name";
const std::string kMaxconn = "maxconn";
const std::string kCcalgo = "ccalgo";
const std::string kIpv6enabled = "ipv6enabled";
const std::string kEcn = "ecn";
}  // namespace

NETWORK_COMMAND_NEW(IpNetstackInstanceSet, Bool)

IpNetstackInstanceSet::IpNetstackInstanceSet() {
  SetDescription("Configure settings for a given Netstack Instance.");
}

std::shared_ptr<InputSpec> IpNetstackInstanceSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::Netstack,
      "The network stack instance. This name must be an interface listed in the netstack list "
      "command."));

  spec->AddParameter(Optional(kEnable, ParameterType::Bool, "e",
                              "Enable the netstack instance (create in kernel)"));

  spec->AddParameter(
      Optional(kName, ParameterType::String, "n", "The name for this netstack instance."));

  spec->AddParameter(
      Optional(kMaxconn, ParameterType::Int, "m",
               "The maximum number of connections for this netstack instance (applied only during "
               "netstack creation)."));

  auto ccalgo = Optional(
      kCcalgo, ParameterType::String, "c",
      "The TCP Congestion Contol Algorithm for this netstack instance (not applied to existing "
      "connections).: %FULLENUM%");
  auto algorithms = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  for (auto const& algorithm :
       OrvkCtl::Network::NetstackInstanceImpl::GetCongestionControlAlgorithmList()) {
    algorithms->AddStringEnum(algorithm, "Set " + algorithm + " as the algorithm");
  }
  ccalgo->SetConstraint(algorithms);
  spec->AddParameter(ccalgo);

  spec->AddParameter(Optional(
      kIpv6enabled, ParameterType::Bool, "i",
      "To enable IPv6 for this netstack instance (aplied only during netstack creation)."));

  auto ecn = Optional(kEcn, ParameterType::String, nullptr,
                      "The status of ECN (Explicit Congestion Notification). %FULLENUM%");
  auto ecnWords = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  ecnWords->AddStringEnum("disabled", "Completely disable ECN functionality");
  ecnWords->AddStringEnum("enabled", "Fully enable ECN functionality");
  ecnWords->AddStringEnum("echo-only", "Only echoing ECN, won't initiate");
  ecn->SetConstraint(ecnWords);
  spec->AddParameter(ecn);
  return spec;
}

void IpNetstackInstanceSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& key = input->GetParameter(kNetstack);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto instance = networkInfo.LookupNetstackInstanceByKey(key);
    if (!instance) {
      output->AddErrorMessage("Unable to find a Netstack instance " + key);
      return;
    }
    if (input->HasParameter(kName) && !input->GetParameter(kName).empty()) {
      instance->SetInstanceName(input->GetParameter(kName), true);
    }
    if (input->HasParameter(kEnable)) {
      if (input->GetParameterBool(kEnable)) {
        instance->Enable();
      } else {
        instance->Disable();
      }
    }
    if (input->HasParameter(kMaxconn)) {
      instance->SetMaxConnections(static_cast<uint32_t>(input->GetParameterInt(kMaxconn)), true);
    }
    if (input->HasParameter(kCcalgo) && !input->GetParameter(kCcalgo).empty()) {
      instance->SetCongestionControlAlgorithm(input->GetParameter(kCcalgo), true);
    }
    if (input->HasParameter(kIpv6enabled)) {
      instance->SetIpv6Enabled(input->GetParameterBool(kIpv6enabled), true);
    }
    if (input->HasParameter(kEcn)) {
      instance->SetEcnStatus(input->GetParameter(kEcn));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error setting configuration" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
