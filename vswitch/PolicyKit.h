// Policy options shared by the switch and port group commands: registering
// the option sets of the security, shaping and failover policies, turning
// what the user gave into changes of a policy value, and reading a policy
// value into the fields the get commands print.
//
// The Set... functions report bad values with Output::AddErrorMessage and go
// on, so that one run reports every bad value; they never stop the command.
// The caller asks Output::HasError() afterwards and writes the policy only
// when it is false. Exceptions of the host control library pass through.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class PortGroup;
class VirtualSwitch;
class NicTeamingPolicy;
class PortSecurityPolicy;
class ShapingPolicy;
}  // namespace HostCtl::Network
namespace OrvkCtl::Network {
class VirtualSwitchInfoImpl;
}  // namespace OrvkCtl::Network

namespace CorvaneCli::NetworkNamespace {

// Appends allow-promiscuous (-o), allow-mac-change (-m) and
// allow-forged-transmits (-f), optional truth values.
void AddSecurityParameters(std::shared_ptr<Toolbase::CallSpec::InputSpec> spec);

// Appends load-balancing (-l), failure-detection (-f), notify-switches (-n),
// failback (-b), active-uplinks (-a) and standby-uplinks (-s), optional.
void AddFailoverParameters(std::shared_ptr<Toolbase::CallSpec::InputSpec> spec);

// Appends enabled (-e), avg-bandwidth (-b), peak-bandwidth (-k) and
// burst-size (-t), optional; the three numbers share one range constraint.
void AddShapingParameters(std::shared_ptr<Toolbase::CallSpec::InputSpec> spec);

// Sets each security field whose option was given; the others, and their
// mask bits, stay as they are.
void SetSecurityPolicy(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output,
                       HostCtl::Network::PortSecurityPolicy& policy);

// Applies --enabled, then, while the policy is enabled, the bandwidths (Kbps,
// stored times 1000) and burst size (Kib, stored times 128). When shaping is
// being turned on, or `requireAll` is true, a missing value is an error;
// with shaping off the values are ignored.
void SetShapingPolicy(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                      std::shared_ptr<Toolbase::CallSpec::Output> const& output,
                      HostCtl::Network::ShapingPolicy& policy, bool requireAll);

// Applies the failover options to `target` (on entry the object's
// configured policy). The uplink lists are merged with the order in force,
// `current`: a list not given keeps its part of that order, less the names
// the other list took. Names must be physical NICs and stand in `uplinks`
// (the uplinks connected to the switch); no name may appear twice. The
// active count is written to `current` too when active uplinks are given.
void SetFailoverPolicy(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output,
                       HostCtl::Network::NicTeamingPolicy& target,
                       HostCtl::Network::NicTeamingPolicy& current,
                       std::vector<std::string>& uplinks);

// The pieces of `text` between commas, as they stand: "" gives none, a
// leading comma an empty first piece, a trailing comma nothing behind it.
std::vector<std::string> SplitUplinks(std::string const& text);

// Adds the failover fields, empty, to `record`: "Load Balancing", "Network
// Failure Detection", "Notify Switches", "Failback", "Active Adapters",
// "Standby Adapters", "Unused Adapters".
void AddFailoverFields(Toolbase::MetaObj::MetaStruct& record);
// Fills them from the policy in force and the uplinks connected to the
// switch; unused are the connected uplinks outside the order.
void FillFailoverFields(Toolbase::MetaObj::MetaStruct& record,
                        HostCtl::Network::NicTeamingPolicy const& effective,
                        std::vector<std::string> const& connectedUplinks);

// "Allow Promiscuous", "Allow MAC Address Change", "Allow Forged Transmits".
void AddSecurityFields(Toolbase::MetaObj::MetaStruct& record);
void FillSecurityFields(Toolbase::MetaObj::MetaStruct& record,
                        HostCtl::Network::PortSecurityPolicy const& effective);

// "Enabled", "Average Bandwidth", "Peak Bandwidth", "Burst Size"; the numbers
// in Kbps and Kib, or -1 each while shaping is off.
void AddShapingFields(Toolbase::MetaObj::MetaStruct& record);
void FillShapingFields(Toolbase::MetaObj::MetaStruct& record,
                       HostCtl::Network::ShapingPolicy const& effective);

// One "Override Vswitch ..." field of a port group `get`: its label and the
// bit of the configured policy's set mask that it shows.
struct OverrideField {
  char const* field;
  uint32_t bit;
};
// Adds the fields, empty truth values, to `record`.
void AddOverrideFields(Toolbase::MetaObj::MetaStruct& record,
                       std::span<OverrideField const> fields);
// Sets each field to whether its bit is set in `mask`.
void FillOverrideFields(Toolbase::MetaObj::MetaStruct& record,
                        std::span<OverrideField const> fields, uint32_t mask);

// The first parameters of a port group `set`: "portgroup-name" (-p) with
// `groupHelp`, then the flag "use-vswitch" (-u), whose help has `gap` between
// its first two sentences.
std::shared_ptr<Toolbase::CallSpec::InputSpec> PortGroupPolicySpec(char const* groupHelp,
                                                                   char const* gap = " ");
// Whether "use-vswitch" was given: the configured policy is reset to the
// switch's before the other options apply.
bool UsesVswitchPolicy(Toolbase::CallSpec::Input const& input);

// The port group that "portgroup-name" names, for a port group policy
// command; null after adding "Unable to find a port group with the name <name>".
std::unique_ptr<HostCtl::Network::PortGroup> FindPolicyPortGroup(
    Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output);

// The standard switch that "vswitch-name" names, for a switch policy command, asked of the host's
// switch list first and then of `switchInfo`; null after adding "Unable to
// find a legacy virtual switch with the name <name>" when either has none.
std::unique_ptr<HostCtl::Network::VirtualSwitch> FindPolicyStandardSwitch(
    OrvkCtl::Network::VirtualSwitchInfoImpl& switchInfo, Toolbase::CallSpec::Input const& input,
    Toolbase::CallSpec::Output& output);

}  // namespace CorvaneCli::NetworkNamespace
