// What `vswitch standard uplink add` and `remove` share: they differ only in
// the change they ask of the switch.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frame/KitDeclarations.h"

namespace CorvaneCli::NetworkNamespace {

enum class UplinkChange { Add, Remove };

// The required "uplink-name" parameter (short `u`) with its help text.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> UplinkNameParameter(std::string description);

// The body of both: reads "vswitch-name" and "uplink-name", asks the factory
// for the switch by id and, when it hands one out, adds the uplink or removes
// it; a switch it does not hand out is left alone, silently. Root `true`. A
// failure of the host passes on as HostCtlException.
void ChangeUplink(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  UplinkChange change);

// The names of the host's physical NICs, in the host's order; the listings
// show a switch's uplinks only where they are among them.
std::vector<std::string> HostPnicNames();
// `uplinks` without the names that are not in `pnicNames`, in their order.
std::vector<std::string> PhysicalUplinks(std::vector<std::string> uplinks,
                                         std::vector<std::string> const& pnicNames);

}  // namespace CorvaneCli::NetworkNamespace
