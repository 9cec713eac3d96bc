#include "nic/NetqueueKit.h"

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

const LbSetting kLbSettings[11] = {
    {"RxQPair", "rxqpair", "Configure Rx queue pair at netqueue load balancer.", true},
    {"RxQNoFeature", "rxqnofeat", "Configure Rx queue no feature at netqueue load balancer.",
     false},
    {"PreEmptibleQ", "rxqpreempt", "Configure pre-emptible queue at netqueue load balancer.", true},
    {"RxQLatency", "rxqlatency", "Configure Rx queue latency at netqueue load balancer.", true},
    {"RxDynamicLB", "rxdynlb", "Configure RX dynamic load balancing at netqueue load balancer.",
     false},
    {"DynamicQPool", "dynpoollb", "Configure Dynamic queue pool at netqueue load balancer.", true},
    {"MacLearnLB", "maclearnlb", "Configure Mac learn load balancing at netqueue load balancer.",
     false},
    {"RSS", "rsslb", "Configure Receive Side Scaling at netqueue load balancer.", true},
    {"LRO", "lrolb", "Configure Large Receive Offload at netqueue load balancer.", true},
    {"GeneveOAM", "geneveoamlb", "Configure Geneve OAM at netqueue load balancer.", true},
    {"RSSLRO", "rsslrolb",
     "Configure Receive Side Scaling with Large Receive Offload at netqueue load balancer.", true},
};

bool WalkNetqueue(HostCtl::Network::NetworkInfo& networkInfo,
                  Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  bool byName, MissingPnicWords words, NetqueueRows const& rows) {
  bool const named = byName && input.HasParameter(kOrnic);
  HostCtl::Network::PnicList pnics;
  if (!SelectPnics(networkInfo, named ? &input.GetParameter(kOrnic) : nullptr, output, words,
                   pnics)) {
    return false;
  }
  for (auto const& pnic : pnics) {
    HostCtl::Network::PnicNetqueueInfo info;
    try {
      pnic->GetNetqueueInfo(info);
    } catch (HostCtl::Lib::HostCtlException const& e) {
      if (!named) continue;  // a device without netqueue makes no row
      output.AddErrorMessage(e.message);
      return false;
    }
    rows(*pnic, info);
  }
  return true;
}

}  // namespace CorvaneCli::NetworkNamespace
