// Ports of the host's switches, standard and distributed, with their
// counters and filters.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace HostCtl::Network {

// Packet counters of one port, as seen from the port's client: "sent" is
// what the client sent.
struct PacketStats {
  uint64_t packetsSent = 0;
  uint64_t multicastPacketsSent = 0;
  uint64_t broadcastPacketsSent = 0;
  uint64_t packetsReceived = 0;
  uint64_t multicastPacketsReceived = 0;
  uint64_t broadcastPacketsReceived = 0;
  uint64_t transmitPacketsDropped = 0;
  uint64_t receivePacketsDropped = 0;
};

// Byte counters of one port.
struct PortStats {
  uint64_t bytesSent = 0;
  uint64_t bytesReceived = 0;
};

// One filter of a port. A port has two chains, told apart by `isOutbound`;
// `chainKey` orders the filters of one chain. The five detail counters are
// valid only when `hasDetail` is set.
struct FilterStats {
  std::string name;
  std::string chainKey;
  bool active = false;
  bool isOutbound = false;
  bool hasDetail = false;
  uint64_t packetsIn = 0;
  uint64_t packetsOut = 0;
  uint64_t packetsDropped = 0;
  uint64_t packetsFiltered = 0;
  uint64_t packetsFaulted = 0;
  uint64_t packetsQueued = 0;
  uint64_t packetsInjected = 0;
  uint64_t packetErrors = 0;
};

// One switch port.
class Port : public virtual Lib::HostCtlObject {
 public:
  ~Port() override;
  // The port's numeric id, unique on the host.
  virtual int GetId() = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// A port of the host, by id. Making the object reads nothing; every
// operation but GetId reads the host and throws HostCtlException when the
// port no longer exists or the host cannot be read.
class PortImpl : public virtual HostCtl::Network::Port, public virtual Lib::OrvkCtlObject {
 public:
  // A port that faces the wire; it sees its two filter chains the other way
  // round.
  static const int TYPE_UPLINK;

  explicit PortImpl(int id);
  ~PortImpl() override;
  // Checks that the port exists.
  void Refresh() override;

  int GetId() override;
  // 1 a host interface, 3 a VM, TYPE_UPLINK an uplink.
  int GetType();
  HostCtl::Network::PortStats GetPortStats();
  // Fills `stats`; every counter is written.
  void GetPacketStats(HostCtl::Network::PacketStats& stats);
  // The port's filters, inactive ones included, in the order they were
  // attached; owned by the caller.
  std::vector<std::unique_ptr<HostCtl::Network::FilterStats>> GetFilterStats();
  // The world id of the VM leading the port; 0 for none.
  uint32_t GetWorldLeader();
  // The port group of a port of a standard switch; empty otherwise.
  std::string GetPortGroupName();
  // The DVPort id of a port of a distributed switch; empty otherwise.
  std::string GetDVPortID();
  // The MAC addresses of the port's client; the first is its own. Empty for
  // an uplink port.
  std::vector<HostCtl::Network::MacAddress> GetMacAddresses();
  // The IPv4 address the client was last seen using; 0.0.0.0 when unknown.
  HostCtl::Network::Ipv4Address GetPortClientIpv4Address();
  // The uplink the teaming policy currently sends the port's traffic
  // through; empty when the switch has none.
  std::string GetSchedTeamUplink();

 private:
  int id_;
};

}  // namespace OrvkCtl::Network
