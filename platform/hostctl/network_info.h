// The top of the host's network view, and the factory that hands it out.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class DVSwitch;
class NetstackInstance;
class Pnic;
class PortGroup;
class VirtualSwitch;

using PnicList = std::vector<std::unique_ptr<Pnic>>;

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
  // The port groups of all standard switches, switch by switch, owned by the
  // caller.
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> GetAllPortGroups();
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
