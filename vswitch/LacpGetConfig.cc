#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/LacpKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::NetworkFactory;

namespace {
const std::string kDvs = "dvs";
const std::string kTypeName = "LACP";
const std::string kDvsName = "DVS Name";
const std::string kLagName = "LAG Name";
const std::string kLagId = "LAG ID";
const std::string kNics = "NICs";
const std::string kEnabled = "Enabled";
const std::string kMode = "Mode";
const std::string kLoadBalance = "Load balance";
const std::string kFields = kDvsName + "," + kLagName + "," + kLagId + "," + kNics + "," +
                            kEnabled + "," + kMode + "," + kLoadBalance;
// The LAG that uplink port groups with LACP of their own stand for.
const std::string kUplinkPgLag = "default_uplink_pg_lag";
const std::string kUplinkPgLagId = "0";
const std::string kNoLoadBalance = "---";

char const* const kLoadBalanceWords[] = {
    "None",
    "Dst mac",
    "Src mac",
    "Src and dst mac",
    "Dst ip",
    "Src ip",
    "Src and dst ip",
    "Vlan",
    "Dst ip and vlan",
    "Src ip and vlan",
    "Src and dst ip, vlan",
    "Dst port",
    "Src port",
    "Src and dst port",
    "Dst ip and dst port",
    "Src ip and src port",
    "Src and dst ip, port",
    "Dst ip and dst port, vlan",
    "Src ip and src port, vlan",
    "Src and dst ip, port, vlan",
    "Src portID",
};

std::string ModeWord(int mode) { return mode == 1 ? "Active" : mode == 2 ? "Passive" : "None"; }
}  // namespace

NETWORK_COMMAND_NEW(LacpGetConfig, Rows)

LacpGetConfig::LacpGetConfig() {
  SetDescription("Get LACP configuration on DVS");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kTypeName, kFields);
}

std::shared_ptr<MetaStruct> LacpGetConfig::GetOutputStructure() {
  auto result = MetaStruct::New(kTypeName);
  result->SetField(kDvsName, MetaString::New());
  result->SetField(kLagName, MetaString::New());
  result->SetField(kLagId, MetaString::New());
  result->SetField(kNics, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kMode, MetaString::New());
  result->SetField(kLoadBalance, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> LacpGetConfig::GetInputSpecInternal() {
  return InputSpecOf({NewLacpDvsParameter(kDvs)});
}

void LacpGetConfig::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  try {
    LacpSwitchList switches;
    if (!ChooseLacpSwitches(*input, *output, kDvs, switches)) return;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    int rows = 0;
    for (auto const& dvs : switches) {
      // Uplinks in a map: one row per uplink port group whose uplinks run
      // LACP through the group's settings.
      auto uplinks = dvs->GetUplinkPorts();
      if (!uplinks.empty()) {
        std::map<std::string, std::vector<std::string>> groups;
        try {
          for (auto const& [name, param] : uplinks) {
            auto port = NetworkFactory::GetDVPort(param);
            groups[port->GetDVPortgroupId()].push_back(name);
          }
        } catch (HostCtl::Lib::HostCtlException const& e) {
          groups.clear();
          throw HostCtl::Lib::HostCtlException(e.message);
        }
        for (auto const& [groupId, names] : groups) {
          auto row = GetOutputStructure();
          row->SetField(kDvsName, dvs->GetDvsName());
          row->SetField(kLagName, kUplinkPgLag);
          row->SetField(kLagId, kUplinkPgLagId);
          std::string nics;
          bool enabled = false;
          int mode = 0;
          for (size_t i = 0; i < names.size(); ++i) {
            auto port = NetworkFactory::GetDVPort(uplinks.at(names[i]));
            std::tie(enabled, mode) = port->GetLacpPortConfig();
            if (!enabled) continue;
            if (i == 0) {
              nics = names[i];
            } else {
              nics += "," + names[i];
            }
          }
          if (nics.empty()) continue;
          ++rows;
          // The row shows the LACP setting of the group's last uplink.
          row->SetField(kNics, nics);
          row->SetField(kEnabled, enabled);
          row->SetField(kMode, enabled ? ModeWord(mode) : std::string());
          row->SetField(kLoadBalance, kNoLoadBalance);
          list->Add(row);
        }
      } else {
        // LACP on port groups: the first enabled port of a group stands for
        // it.
        std::vector<std::string> keys;
        std::vector<std::string> ids;
        dvs->GetPortIds(keys, ids);
        std::map<std::string, std::string> groups;
        for (auto const& id : ids) {
          auto port = dvs->GetPort(id);
          if (!port) continue;
          if (!port->GetLacpPortConfig().first) continue;
          groups.emplace(port->GetDVPortgroupId(), id);
        }
        for (auto const& [groupId, portId] : groups) {
          ++rows;
          auto row = GetOutputStructure();
          row->SetField(kDvsName, dvs->GetDvsName());
          row->SetField(kLagName, kUplinkPgLag);
          row->SetField(kLagId, kUplinkPgLagId);
          auto port = dvs->GetPort(portId);
          auto [enabled, mode] = port ? port->GetLacpPortConfig() : std::pair<bool, int>(false, 0);
          row->SetField(kEnabled, enabled);
          row->SetField(kMode, enabled ? ModeWord(mode) : std::string());
          row->SetField(kLoadBalance, kNoLoadBalance);
          list->Add(row);
        }
      }
      // Named LAGs: the uplinks whose ports are named "<lag>-<i>".
      for (auto const& lag : dvs->GetLagConfigs()) {
        ++rows;
        auto row = GetOutputStructure();
        row->SetField(kDvsName, dvs->GetDvsName());
        row->SetField(kLagName, lag.lagName);
        row->SetField(kLagId, lag.lagId);
        auto lagUplinks = dvs->GetUplinkPorts();
        std::string nics;
        for (uint32_t i = 0; i < lag.uplinkCount; ++i) {
          std::string expected = lag.lagName + "-" + std::to_string(i);
          for (auto const& [name, param] : lagUplinks) {
            auto port = NetworkFactory::GetDVPort(param);
            if (port->GetPortName() != expected) continue;
            if (!nics.empty()) nics += ",";
            nics += name;
            break;
          }
        }
        row->SetField(kNics, nics);
        row->SetField(kEnabled, true);
        row->SetField(kMode, ModeWord(lag.mode));
        row->SetField(kLoadBalance, kLoadBalanceWords[lag.loadBalance]);
        list->Add(row);
      }
    }
    if (rows == 0) {
      output->AddErrorMessage("LACP is disabled on DVSwitch.");
      return;
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
