#include "nic/NetqueueKit.h"

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

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

void ListNetqueueRows(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                      bool byName, MissingPnicWords words,
                      std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
                      NetqueueRowFill const& fill) {
  using namespace Toolbase::MetaObj;
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  auto list = MetaList::New(MetaType::Struct, newRow());
  bool const done = WalkNetqueue(
      *networkInfo, input, output, byName, words,
      [&](HostCtl::Network::Pnic& pnic, HostCtl::Network::PnicNetqueueInfo const& info) {
        auto row = newRow();
        row->SetField("NIC", pnic.GetName());
        fill(*row, info);
        list->Add(row);
      });
  if (done) output.SetRootObject(list);
}

void SetNetqueue(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                 MissingPnicWords words,
                 std::function<bool(HostCtl::Network::PnicNetqueueInfo& info)> const& fill) {
  std::string const& name = input.GetParameter(kOrnic);
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  auto pnic = FindNamedPnic(*networkInfo, name, output, words);
  if (!pnic) return;
  HostCtl::Network::PnicNetqueueInfo info;
  if (fill(info)) pnic->SetNetqueueInfo(info);
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

}  // namespace CorvaneCli::NetworkNamespace
