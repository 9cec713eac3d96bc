// The command classes of `network port`, `network vm`, `network multicast` and `network ens`, one
// per leaf; each is made only by its New() and defined in the source file of its name.
#pragma once

#include "frame/CommandKit.h"

namespace HostCtl::Network {
struct FilterStats;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network ens lcore add`: creates an ENS context.
class EnsLcoreAdd : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreAdd)
};

// `network ens lcore affinity get`: the NUMA node of an ENS context.
class EnsLcoreAffinityGet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreAffinityGet)
};

// `network ens lcore affinity set`: sets the NUMA node of an ENS context.
class EnsLcoreAffinitySet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreAffinitySet)
};

// `network ens lcore list`: every ENS context with its switch and affinity.
class EnsLcoreList : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ens lcore remove`: destroys an ENS context.
class EnsLcoreRemove : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreRemove)
};

// `network ens lcore switch add`: associates an ENS context with a switch.
class EnsLcoreSwitchAdd : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreSwitchAdd)
};

// `network ens lcore switch get`: the switch of an ENS context.
class EnsLcoreSwitchGet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreSwitchGet)
};

// `network ens lcore switch remove`: clears the switch of an ENS context.
class EnsLcoreSwitchRemove : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsLcoreSwitchRemove)
};

// `network ens maxLcores get`: the maximum number of ENS contexts.
class EnsMaxlcoresGet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsMaxlcoresGet)
};

// `network ens maxLcores set`: sets the maximum number of ENS contexts.
class EnsMaxlcoresSet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(EnsMaxlcoresSet)
};

// `network multicast group list`: the multicast groups joined by the host's own interfaces.
class MulticastGroupList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(MulticastGroupList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// The order of a port's filters along a packet's way: the inbound chain
// (`isOutbound` false) first, ascending by `chainKey`, then the outbound chain,
// descending by `chainKey`. A strict weak order, for std::sort.
bool sortFilterStats(std::unique_ptr<HostCtl::Network::FilterStats> const& a,
                     std::unique_ptr<HostCtl::Network::FilterStats> const& b);

// `network port filter stats get`: the counters of the filters of one switch port.
class PortFilterStatsGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(PortFilterStatsGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network port stats get`: the packet counters of one switch port.
class PortStatsGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(PortStatsGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network vm list`: one line per VM with active ports on any switch.
class VMList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VMList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network vm port list`: the active ports of one VM.
class VMPortList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VMPortList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

}  // namespace CorvaneCli::NetworkNamespace
