#include "ip/IpNetstackInstanceSet.h"

#include <string>

#include "frame/ParamRange.h"
#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNetstack = "netstack";
const std::string kEnable = "enable";
const std::string kName = "name";
const std::string kMaxconn = "maxconn";
const std::string kCcalgo = "ccalgo";
const std::string kIpv6enabled = "ipv6enabled";
const std::string kEcn = "ecn";
}  // namespace

std::shared_ptr<IpNetstackInstanceSet> IpNetstackInstanceSet::New() {
  return std::shared_ptr<IpNetstackInstanceSet>(new IpNetstackInstanceSet());
}

IpNetstackInstanceSet::IpNetstackInstanceSet() {
  SetDescription("Configure settings for a given Netstack Instance.");
}

IpNetstackInstanceSet::~IpNetstackInstanceSet() = default;

std::shared_ptr<InputSpec> IpNetstackInstanceSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto netstack = ParameterSpec::New(kNetstack, ParameterType::String);
  netstack->SetRequired(true);
  netstack->SetShortName("N");
  netstack->SetDescription(
      "The network stack instance. This name must be an interface listed in the netstack list "
      "command.");
  spec->AddParameter(netstack);

  auto enable = ParameterSpec::New(kEnable, ParameterType::Bool);
  enable->SetRequired(false);
  enable->SetShortName("e");
  enable->SetDescription("Enable the netstack instance (create in kernel)");
  spec->AddParameter(enable);

  auto name = ParameterSpec::New(kName, ParameterType::String);
  name->SetRequired(false);
  name->SetShortName("n");
  name->SetDescription("The name for this netstack instance.");
  spec->AddParameter(name);

  auto maxconn = ParameterSpec::New(kMaxconn, ParameterType::Int);
  maxconn->SetRequired(false);
  maxconn->SetShortName("m");
  maxconn->SetDescription(
      "The maximum number of connections for this netstack instance (applied only during "
      "netstack creation).");
  spec->AddParameter(maxconn);

  auto ccalgo = ParameterSpec::New(kCcalgo, ParameterType::String);
  ccalgo->SetRequired(false);
  ccalgo->SetShortName("c");
  ccalgo->SetDescription(
      "The TCP Congestion Contol Algorithm for this netstack instance (not applied to existing "
      "connections).: %FULLENUM%");
  auto algorithms = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  for (auto const& algorithm :
       OrvkCtl::Network::NetstackInstanceImpl::GetCongestionControlAlgorithmList()) {
    algorithms->AddStringEnum(algorithm, "Set " + algorithm + " as the algorithm");
  }
  ccalgo->SetConstraint(algorithms);
  spec->AddParameter(ccalgo);

  auto ipv6enabled = ParameterSpec::New(kIpv6enabled, ParameterType::Bool);
  ipv6enabled->SetRequired(false);
  ipv6enabled->SetShortName("i");
  ipv6enabled->SetDescription(
      "To enable IPv6 for this netstack instance (aplied only during netstack creation).");
  spec->AddParameter(ipv6enabled);

  auto ecn = ParameterSpec::New(kEcn, ParameterType::String);
  ecn->SetRequired(false);
  ecn->SetDescription("The status of ECN (Explicit Congestion Notification). %FULLENUM%");
  auto ecnWords = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  ecnWords->AddStringEnum("disabled", "Completely disable ECN functionality");
  ecnWords->AddStringEnum("enabled", "Fully enable ECN functionality");
  ecnWords->AddStringEnum("echo-only", "Only echoing ECN, won't initiate");
  ecn->SetConstraint(ecnWords);
  spec->AddParameter(ecn);
  return spec;
}

std::shared_ptr<OutputSpec> IpNetstackInstanceSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
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
    if (input->HasParameter(kMaxconn) &&
        !CheckParamUint32(*output, kMaxconn, input->GetParameterInt(kMaxconn))) {
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
