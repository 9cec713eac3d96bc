// The walks over the ports of all switches. The one both VM views share: every port of every switch
// that a VM's world leads, with the kind of its switch, which decides where the port's network and
// switch name come from.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace HostCtl::Network {
class Portset;
}  // namespace HostCtl::Network
namespace OrvkCtl::Network {
class PortImpl;
}  // namespace OrvkCtl::Network
namespace Toolbase::CallSpec {
class Output;
}  // namespace Toolbase::CallSpec

namespace CorvaneCli::NetworkNamespace {

enum class VmSwitchKind {
  // A standard or an opaque switch: the port names its port group.
  LegacyOrOpaque,
  // A distributed switch: the port's DVPort names the port group.
  Distributed,
  // None of these; only asked for when `askDistributed` is set.
  Unknown,
};

using VmPortVisitor = std::function<void(HostCtl::Network::Portset& portset, VmSwitchKind kind,
                                         OrvkCtl::Network::PortImpl& port, uint32_t world)>;

// Calls `visit` for each port with a non-zero world leader, switch by switch
// in the host's order. With `askDistributed` a switch is distributed only
// when the host says so, and Unknown otherwise; without it, every switch that
// is neither standard nor opaque counts as distributed.
void WalkVmPorts(bool askDistributed, VmPortVisitor const& visit);

// The DV port group id of a port of a distributed switch.
std::string DVPortgroupOf(HostCtl::Network::Portset& portset, OrvkCtl::Network::PortImpl& port);

// The port statistics lookup: calls `visit` for the first port, switch by
// switch in the host's order, whose id is `wanted` and that is the host's own
// implementation. False after adding "Couldn't find requested port" when no
// switch has one.
bool VisitPortById(long wanted, Toolbase::CallSpec::Output& output,
                   std::function<void(OrvkCtl::Network::PortImpl& port)> const& visit);

}  // namespace CorvaneCli::NetworkNamespace
