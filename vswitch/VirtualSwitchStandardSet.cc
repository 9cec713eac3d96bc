#include <cstdint>
#include <string>

#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kMtu = "mtu";
const std::string kCdpStatus = "cdp-status";
const std::string kDown = "down";
const std::string kListen = "listen";
const std::string kAdvertise = "advertise";
const std::string kBoth = "both";

// The library's number for a CDP status word; anything else is "both".
int CdpStatusNumber(std::string const& word) {
  if (word == kDown) return 0;
  if (word == kListen) return 1;
  if (word == kAdvertise) return 2;
  return 3;
}
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchStandardSet, Bool)

VirtualSwitchStandardSet::VirtualSwitchStandardSet() {
  SetDescription("This command sets the MTU size and CDP status of a given virtual switch.");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::VswitchName, "The name of virtual switch to apply the configurations."));
  spec->AddParameter(Optional(kMtu, Int, "m", "The MTU size of the given virtual switch. "));
  auto cdp = Optional(
      kCdpStatus, Toolbase::CallSpec::String, "c",
      "The CDP status of the given virtual switch. It can be 'down', 'listen', 'advertise' or "
      "'both'");
  auto words = ParameterConstraint::New(StringEnum);
  words->AddStringEnum(kDown, "CDP status is 'down'");
  words->AddStringEnum(kListen, "CDP status is 'listen'");
  words->AddStringEnum(kAdvertise, "CDP status is 'advertise'");
  words->AddStringEnum(kBoth, "CDP status is 'both'");
  cdp->SetConstraint(words);
  spec->AddParameter(cdp);
  return spec;
}

void VirtualSwitchStandardSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                               std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::string const& name = input->GetParameter(kVswitchName);
    if (!OrvkCtl::Network::PortsetImpl::IsValidVirtualSwitch(name)) {
      output->AddErrorMessage(name + " is not a valid name for a virtual switch");
      return;
    }
    auto vswitch = switchInfo.GetVirtualSwitchByName(name);
    if (!vswitch) {
      output->AddErrorMessage("Unable to find a virtual switch with name " + name);
      return;
    }
    if (input->HasParameter(kMtu)) {
      // Taken as a 32-bit signed value; no upper bound is checked here.
      int32_t const mtu = static_cast<int32_t>(input->GetParameterInt(kMtu));
      if (mtu < 0) {
        output->AddErrorMessage("MTU size should be a positive value");
        return;
      }
      vswitch->SetMTU(mtu);
    }
    if (input->HasParameter(kCdpStatus)) {
      vswitch->SetCdpStatus(CdpStatusNumber(input->GetParameter(kCdpStatus)));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
