#include "nic/NicQueueLbStateSet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnable = "enable";
}  // namespace

std::shared_ptr<NicQueueLbStateSet> NicQueueLbStateSet::New() {
  return std::make_shared<NicQueueLbStateSet>();
}

NicQueueLbStateSet::NicQueueLbStateSet() {
  SetDescription("Enable/disable netqueue balancer on a NIC");
}

NicQueueLbStateSet::~NicQueueLbStateSet() = default;

std::shared_ptr<InputSpec> NicQueueLbStateSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnicParameter, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to change netqueue balancer state");
  spec->AddParameter(ornic);
  auto enable = ParameterSpec::New(kEnable, ParameterType::Bool);
  enable->SetRequired(true);
  enable->SetShortName("e");
  enable->SetDescription("Netqueue balancer state");
  spec->AddParameter(enable);
  return spec;
}

std::shared_ptr<OutputSpec> NicQueueLbStateSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicQueueLbStateSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnicParameter);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::InvalidName);
    if (!pnic) return;
    HostCtl::Network::PnicNetqueueInfo info;
    info.balancerEnabled = input->GetParameterBool(kEnable);
    info.applyBalancerState = true;
    pnic->SetNetqueueInfo(info);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
