#include "vswitch/LacpKit.h"

#include <cstdio>
#include <cstring>

#include "frame/CommandKit.h"
#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;

namespace {
char const* const kStateBits[] = {"ACT", "FTO", "AGG", "SYN", "COL", "DIST", "DEF", "EXP"};
}  // namespace

std::shared_ptr<ParameterSpec> NewLacpDvsParameter(std::string const& name) {
  auto dvs = Optional(name, ParameterType::String, "s", "The name of DVS to get configuration on");
  return dvs;
}

bool ChooseLacpSwitches(Input const& input, Output& output, std::string const& option,
                        LacpSwitchList& switches) {
  if (input.HasParameter(option)) {
    switches.push_back(
        HostCtl::Network::NetworkFactory::GetDVSwitchByName(input.GetParameter(option)));
  } else {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    switches = switchInfo.GetDVSwitches();
    for (auto& opaque : switchInfo.GetOpaqueDVSwitches()) switches.push_back(std::move(opaque));
  }
  if (switches.empty()) {
    output.AddErrorMessage(
        "LACP is supported on Corvane DVSwitch only, and there is no DVSwitch configured on "
        "host.");
    return false;
  }
  return true;
}

std::string LacpPortStateText(uint8_t state) {
  std::string text;
  for (int bit = 0; bit < 8; ++bit) {
    if (state & (1u << bit)) {
      text += kStateBits[bit];
      text += ',';
    }
  }
  return text;
}

std::string LacpAgeText(uint32_t seconds) {
  char text[32];
  std::snprintf(text, sizeof(text), "%02u:%02u:%02u", seconds / 3600, seconds % 3600 / 60,
                seconds % 60);
  return text;
}

std::string LacpRecordText(char const* field, size_t width) {
  return std::string(field, strnlen(field, width));
}

}  // namespace CorvaneCli::NetworkNamespace
