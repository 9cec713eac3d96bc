// The top of the host's network view, and the factory that hands it out.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace HostCtl::Network {

class DVPort;
class DVSwitch;
class NetstackInstance;
class OrvikNicInfo;
class Pnic;
class PortGroup;
class VirtualSwitch;

using PnicList = std::vector<std::unique_ptr<Pnic>>;

// One virtual function of an SR-IOV capable NIC. `ownerWorldId` is the world
// id of the VM that uses the VF, as decimal text; "0" for none.
struct SriovNicVFInfo {
  uint8_t vfId = 0;
  bool active = false;
  std::string pciAddress;
  std::string ownerWorldId;
};

// Counters of one virtual function since it was enabled.
struct SriovNicVFStats {
  uint64_t rxUnicastPkts = 0;
  uint64_t rxUnicastBytes = 0;
  uint64_t rxMulticastPkts = 0;
  uint64_t rxMulticastBytes = 0;
  uint64_t rxBroadcastPkts = 0;
  uint64_t rxBroadcastBytes = 0;
  uint64_t rxOutOfBufferDrops = 0;
  uint64_t rxErrorDrops = 0;
  uint64_t rxLroPkts = 0;
  uint64_t rxLroBytes = 0;
  uint64_t txUnicastPkts = 0;
  uint64_t txUnicastBytes = 0;
  uint64_t txMulticastPkts = 0;
  uint64_t txMulticastBytes = 0;
  uint64_t txBroadcastPkts = 0;
  uint64_t txBroadcastBytes = 0;
  uint64_t txErrors = 0;
  uint64_t txDiscards = 0;
  uint64_t txTsoPkts = 0;
  uint64_t txTsoBytes = 0;
};

// One open socket of a netstack instance. Addresses are texts as the host
// prints them ("0.0.0.0", "::1"); `state` is the TCP state number (0 closed,
// 1 listen, 2 SYN sent, 3 SYN received, 4 established, 5 close wait, 6 FIN
// wait 1, 7 closing, 8 last ACK, 9 FIN wait 2, 10 time wait). `worldId` is
// the world that owns the socket.
struct TcpIpConnection {
  uint32_t protocol = 0;
  uint32_t recvQ = 0;
  uint32_t sendQ = 0;
  std::string localAddress;
  uint16_t localPort = 0;
  std::string foreignAddress;
  uint16_t foreignPort = 0;
  uint32_t state = 0;
  uint32_t worldId = 0;
  std::string ccAlgo;
};
using NetstackInstanceList = std::vector<std::unique_ptr<NetstackInstance>>;

// The network view of the host. Every operation throws Lib::HostCtlException
// when the host fails.
class NetworkInfo : public virtual Lib::HostCtlObject {
 public:
  ~NetworkInfo() override;

  // All physical NICs, in the order the host enumerates them, owned by the
  // caller.
  virtual PnicList GetPnics() = 0;
  // The physical NIC of that name, owned by the caller; null if the host has
  // none of that name.
  virtual std::unique_ptr<Pnic> GetPnicByName(std::string const& name) = 0;

  // All netstack instances, configured and running, in the order they were
  // made (the default instance first), owned by the caller.
  virtual NetstackInstanceList ListNetstackInstances() = 0;
  // The instance with that key, owned by the caller; null if there is none.
  virtual std::unique_ptr<NetstackInstance> LookupNetstackInstanceByKey(
      std::string const& key) = 0;
  // Adds `instance` (made by NetstackInstanceImpl's constructor for a new
  // instance; the caller keeps ownership) with its settings. With
  // `configOnly` the instance exists only in the configuration (state 0);
  // otherwise it is also created in the kernel. Refuses an empty or
  // malformed key, a key in use, and settings out of range. The new
  // instance has an empty routing table.
  virtual void AddNetstackInstance(NetstackInstance* instance, bool configOnly) = 0;
  // Removes the instance with its routes. With `kernelOnly` it only
  // destroys the instance in the kernel and keeps its configuration.
  // Refuses an unknown key, the default instance, and an instance that
  // still has interfaces.
  virtual void RemoveNetstackInstance(std::string const& key, bool kernelOnly) = 0;
  // The state word of the instance with that key (see
  // NetstackInstance::STATE_UP); 0 for an unknown key.
  virtual uint32_t GetNetstackInstanceState(std::string const& key) = 0;
  // Whether IPv6 is on for the whole IP stack, as configured.
  virtual bool IsOrvkIpv6Enabled() = 0;
  // Turns IPv6 on or off for the whole IP stack from the next boot on.
  virtual void SetOrvkIpv6Enabled(bool enabled) = 0;
  // The view of the host's Orvik network interfaces, owned by the caller.
  virtual std::unique_ptr<OrvikNicInfo> GetOrvikNicInfo() = 0;

  // ENS contexts (lcores). Each throws Lib::HostCtlException when the host
  // fails, for an lcore id the host does not have (except AddLcore), and
  // for a value out of range; a bool result of false means that the host
  // declined without an error.
  //
  // The largest number of contexts the host may have.
  static uint32_t GetMaxLcores();
  // Refuses 0 and more than the host's CPUs allow; false if a context's id
  // would fall beyond the new maximum.
  static bool SetMaxLcores(unsigned long maximum);
  // Refuses an id at or beyond the maximum and an id in use. A new context
  // has no switch and no NUMA affinity (-1).
  static bool AddLcore(unsigned long lcoreId);
  // False while the context is associated with a switch.
  static bool RemoveLcore(unsigned long lcoreId);
  // The ids of all contexts, in rising order.
  static std::vector<unsigned long> GetLcoreList();
  // The switch of the context; "null" for none.
  static std::string GetLcoreSwitch(unsigned long lcoreId);
  // Associates the context with a standard or distributed switch; the name
  // "null" clears the association. Refuses a switch the host does not have;
  // false while the context is associated with another switch.
  static bool AddLcoreSwitch(std::string const& switchName, unsigned long lcoreId);
  // The NUMA node of the context; -1 for none.
  static int32_t GetLcoreAffinity(unsigned long lcoreId);
  // False for a NUMA node the host does not have.
  static bool SetLcoreAffinity(unsigned int affinity, unsigned long lcoreId);
};

// Hands out the library's service objects as their interfaces; the caller
// owns what it gets.
class NetworkFactory {
 public:
  // Throws Lib::HostCtlException when the host cannot be reached.
  static std::unique_ptr<NetworkInfo> GetNetworkInfo();
  // The standard switch of that name. Throws Lib::HostCtlException when the
  // host has no switch of that name; null for a switch of another kind.
  static std::unique_ptr<VirtualSwitch> GetVirtualSwitchById(std::string const& name);
  // The port group of that name on any standard switch, or null.
  static std::unique_ptr<PortGroup> GetPortGroupByName(std::string const& name);
  // The distributed switch of that name. Throws Lib::HostCtlException when
  // the host has none of that name.
  static std::unique_ptr<DVSwitch> GetDVSwitchByName(std::string const& name);
  // The DVPort `param` names. Throws Lib::HostCtlException for an unknown
  // switch or port.
  static std::unique_ptr<DVPort> GetDVPort(DVPortParam const& param);
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The network view, made directly. Making it reads nothing.
class NetworkInfoImpl : public virtual HostCtl::Network::NetworkInfo,
                        public virtual Lib::OrvkCtlObject {
 public:
  NetworkInfoImpl();
  ~NetworkInfoImpl() override;
  void Refresh() override;

  HostCtl::Network::PnicList GetPnics() override;
  std::unique_ptr<HostCtl::Network::Pnic> GetPnicByName(std::string const& name) override;
  HostCtl::Network::NetstackInstanceList ListNetstackInstances() override;
  std::unique_ptr<HostCtl::Network::NetstackInstance> LookupNetstackInstanceByKey(
      std::string const& key) override;
  void AddNetstackInstance(HostCtl::Network::NetstackInstance* instance, bool configOnly) override;
  void RemoveNetstackInstance(std::string const& key, bool kernelOnly) override;
  uint32_t GetNetstackInstanceState(std::string const& key) override;
  bool IsOrvkIpv6Enabled() override;
  void SetOrvkIpv6Enabled(bool enabled) override;
  std::unique_ptr<HostCtl::Network::OrvikNicInfo> GetOrvikNicInfo() override;
  // The port groups of all standard switches, switch by switch, owned by the
  // caller.
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> GetAllPortGroups();

  // SR-IOV capable physical NICs (physical functions), in the order the host
  // enumerates them, owned by the caller.
  HostCtl::Network::PnicList GetSriovNics();
  // The SR-IOV capable NIC of that name; null for an unknown name and for a
  // NIC without SR-IOV.
  std::unique_ptr<HostCtl::Network::Pnic> GetSriovNicByName(std::string const& name);
  // The VFs of that NIC, by VF id. Throws for a NIC without SR-IOV.
  std::vector<HostCtl::Network::SriovNicVFInfo> GetSriovNicVFInfo(std::string const& name);
  // Fills `stats` with the counters of VF `vfId` of that NIC. Throws for a
  // NIC without SR-IOV and for a VF id the NIC does not have.
  void GetSriovNicVFStats(HostCtl::Network::SriovNicVFStats* stats, std::string const& name,
                          int vfId);
  // Append the TCP, UDP and raw IP sockets of the netstack instance `key` to
  // `out`. Throw for an unknown instance.
  void GetCurrentTcpOrvikConnections(std::vector<HostCtl::Network::TcpIpConnection>& out,
                                     std::string const& key);
  void GetCurrentUdpOrvikConnections(std::vector<HostCtl::Network::TcpIpConnection>& out,
                                     std::string const& key);
  void GetCurrentIpOrvikConnections(std::vector<HostCtl::Network::TcpIpConnection>& out,
                                    std::string const& key);
};

}  // namespace OrvkCtl::Network
