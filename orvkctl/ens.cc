// ENS contexts (lcores) of the simulated host.
#include <algorithm>
#include <functional>
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"

namespace HostCtl::Network {
namespace {

using Lib::HostCtlException;
using OrvkCtl::Sim::CheckFault;
using OrvkCtl::Sim::Operation;
using OrvkCtl::Sim::EnsLcoreState;
using OrvkCtl::Sim::EnsState;
using OrvkCtl::Sim::HostModel;

const std::string kNoSwitch = "null";

HostCtlException NoLcore(unsigned long id) {
  return HostCtlException("ENS context " + std::to_string(id) + " not found");
}

EnsLcoreState const& ReadLcore(unsigned long id) {
  for (auto const& lcore :
       OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime)
           .runtime.ens.lcores) {
    if (lcore.id == id) return lcore;
  }
  throw NoLcore(id);
}

// Runs `change` on the context `id` and writes the host through when it
// answers true.
bool ChangeLcore(unsigned long id,
                 std::function<bool(HostModel const&, EnsLcoreState&)> const& change) {
  bool result = false;
  OrvkCtl::Sim::ChangeHost(
      OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime, [&](HostModel& host) {
        auto& lcores = host.runtime.ens.lcores;
        auto found = std::find_if(lcores.begin(), lcores.end(),
                                  [id](EnsLcoreState const& lcore) { return lcore.id == id; });
        if (found == lcores.end()) throw NoLcore(id);
        result = change(host, *found);
      });
  return result;
}

bool SwitchExists(HostModel const& host, std::string const& name) {
  return OrvkCtl::Sim::FindStandardSwitch(host.vswitch, name) ||
         OrvkCtl::Sim::FindDistributedSwitch(host.vswitch, name);
}

}  // namespace

uint32_t NetworkInfo::GetMaxLcores() {
  CheckFault(Operation::NetworkInfo_GetMaxLcores);
  return OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime)
      .runtime.ens.max_lcores;
}

bool NetworkInfo::SetMaxLcores(unsigned long maximum) {
  CheckFault(Operation::NetworkInfo_SetMaxLcores);
  bool result = false;
  OrvkCtl::Sim::ChangeHost(
      OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime, [&](HostModel& host) {
        auto& ens = host.runtime.ens;
        if (maximum < 1 || maximum > ens.lcore_limit) {
          throw HostCtlException("Maximum number of ENS contexts " + std::to_string(maximum) +
                                 " is out of range 1 to " + std::to_string(ens.lcore_limit));
        }
        result = std::all_of(ens.lcores.begin(), ens.lcores.end(),
                             [maximum](EnsLcoreState const& lcore) { return lcore.id < maximum; });
        if (result) ens.max_lcores = static_cast<uint32_t>(maximum);
      });
  return result;
}

bool NetworkInfo::AddLcore(unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_AddLcore);
  OrvkCtl::Sim::ChangeHost(
      OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime, [&](HostModel& host) {
        auto& ens = host.runtime.ens;
        if (ens.max_lcores == 0) throw HostCtlException("The host has no ENS contexts");
        if (lcoreId >= ens.max_lcores) {
          throw HostCtlException("ENS context id " + std::to_string(lcoreId) +
                                 " is out of range 0 to " + std::to_string(ens.max_lcores - 1));
        }
        auto at =
            std::find_if(ens.lcores.begin(), ens.lcores.end(),
                         [lcoreId](EnsLcoreState const& lcore) { return lcore.id >= lcoreId; });
        if (at != ens.lcores.end() && at->id == lcoreId) {
          throw HostCtlException("ENS context " + std::to_string(lcoreId) + " already exists");
        }
        EnsLcoreState lcore;
        lcore.id = lcoreId;
        ens.lcores.insert(at, lcore);
      });
  return true;
}

bool NetworkInfo::RemoveLcore(unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_RemoveLcore);
  bool result = false;
  OrvkCtl::Sim::ChangeHost(
      OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime, [&](HostModel& host) {
        auto& lcores = host.runtime.ens.lcores;
        auto found =
            std::find_if(lcores.begin(), lcores.end(),
                         [lcoreId](EnsLcoreState const& lcore) { return lcore.id == lcoreId; });
        if (found == lcores.end()) throw NoLcore(lcoreId);
        result = found->switch_name == kNoSwitch;
        if (result) lcores.erase(found);
      });
  return result;
}

std::vector<unsigned long> NetworkInfo::GetLcoreList() {
  CheckFault(Operation::NetworkInfo_GetLcoreList);
  std::vector<unsigned long> ids;
  for (auto const& lcore :
       OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime)
           .runtime.ens.lcores)
    ids.push_back(lcore.id);
  return ids;
}

std::string NetworkInfo::GetLcoreSwitch(unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_GetLcoreSwitch);
  return ReadLcore(lcoreId).switch_name;
}

bool NetworkInfo::AddLcoreSwitch(std::string const& switchName, unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_AddLcoreSwitch);
  return ChangeLcore(lcoreId, [&](HostModel const& host, EnsLcoreState& lcore) {
    if (switchName == kNoSwitch) {
      lcore.switch_name = kNoSwitch;
      return true;
    }
    if (!SwitchExists(host, switchName)) {
      throw HostCtlException("Virtual switch " + switchName + " not found");
    }
    if (lcore.switch_name != kNoSwitch && lcore.switch_name != switchName) return false;
    lcore.switch_name = switchName;
    return true;
  });
}

int32_t NetworkInfo::GetLcoreAffinity(unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_GetLcoreAffinity);
  return ReadLcore(lcoreId).affinity;
}

bool NetworkInfo::SetLcoreAffinity(unsigned int affinity, unsigned long lcoreId) {
  CheckFault(Operation::NetworkInfo_SetLcoreAffinity);
  return ChangeLcore(lcoreId, [&](HostModel const& host, EnsLcoreState& lcore) {
    if (affinity >= host.runtime.ens.numa_nodes) {
      // The node is signed on the host: the narrowed -1 names node -1.
      throw HostCtlException("NUMA node " + std::to_string(static_cast<int32_t>(affinity)) +
                             " does not exist: the host has " +
                             std::to_string(host.runtime.ens.numa_nodes) + " NUMA nodes");
    }
    lcore.affinity = static_cast<int32_t>(affinity);
    return true;
  });
}

}  // namespace HostCtl::Network
