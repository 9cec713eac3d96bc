// What the LACP views share: the choice of switches, the `dvs` option, and
// the words for the fields of the LACP agent's per-uplink records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class DVSwitch;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

using LacpSwitchList = std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>>;

// The optional `dvs` option of the three LACP views.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewLacpDvsParameter(std::string const& name);

// The switches to report on: the one named by the `dvs` option (the library
// refuses an unknown name), else every distributed switch, opaque ones last.
// With none, adds the message that there is no distributed switch and
// returns false.
bool ChooseLacpSwitches(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                        std::string const& option, LacpSwitchList& switches);

// An actor or partner state byte: the words of its set bits from bit 0 up,
// each followed by a comma ("ACT,AGG,"); empty for 0.
std::string LacpPortStateText(uint8_t state);

// Seconds as hours, minutes and seconds, zero-filled to two digits at least:
// 3725 gives "01:02:05".
std::string LacpAgeText(uint32_t seconds);

// A text field of a record: up to its first NUL, never beyond `width`.
std::string LacpRecordText(char const* field, size_t width);

}  // namespace CorvaneCli::NetworkNamespace
