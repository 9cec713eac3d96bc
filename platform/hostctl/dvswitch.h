// Distributed switches the host takes part in, and their ports. They are
// configured from outside the host; the host reports them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"
#include "hostctl/portset.h"
#include "hostctl/virtual_switch.h"

namespace HostCtl::Network {

class Port;
class DVPort;

// The LACP state of one uplink of a running link aggregation group, as the
// host's LACP agent reports it: a packed little-endian record of 213 bytes.
// Text fields are NUL-terminated within their width. The port state bytes
// carry the actor and partner state bits of IEEE 802.1AX (bit 0 activity,
// 1 short timeout, 2 aggregation, 3 synchronization, 4 collecting,
// 5 distributing, 6 defaulted, 7 expired).
#pragma pack(push, 1)
struct LacpPortRecord {
  char nicName[32];
  // "Bundled", "Independent", "Hot-standby", "Suspended" or "Down".
  char state[32];
  uint16_t localPortNumber;
  uint16_t localPortPriority;
  uint16_t localAdminKey;
  uint16_t localOperKey;
  uint8_t localPortState;
  uint8_t reserved;
  // Letters of the legend: S slow or F fast LACPDUs, A active or P passive.
  char localFlags[32];
  // Seconds since the partner's information was last refreshed.
  uint32_t partnerAge;
  uint16_t partnerPortNumber;
  uint16_t partnerPortPriority;
  uint16_t partnerOperKey;
  uint8_t partnerPortState;
  char partnerDeviceId[32];
  char partnerFlags[32];
  uint64_t rxLacpdus;
  uint64_t txLacpdus;
  uint64_t rxErrors;
  uint64_t txErrors;
};
#pragma pack(pop)
static_assert(sizeof(LacpPortRecord) == 213, "LacpPortRecord is a 213-byte wire record");

// One running link aggregation group and the records of its uplinks.
struct LacpGroup {
  uint32_t lagId = 0;
  // The operational key the group's ports share.
  uint32_t key = 0;
  // 1 active, 2 passive.
  int mode = 1;
  std::vector<std::unique_ptr<LacpPortRecord>> ports;
};

// One configured link aggregation group. Its uplink ports are named
// "<lagName>-0" to "<lagName>-<uplinkCount - 1>".
struct LagConfig {
  std::string lagId;
  std::string lagName;
  // 1 active, 2 passive.
  int mode = 1;
  // 0 to 20: the hash the group balances its traffic by.
  int loadBalance = 0;
  // 1 while every uplink of the group uses the short timeout.
  uint32_t shortTimeout = 0;
  uint32_t uplinkCount = 0;
};

// Every operation reads the host and throws Lib::HostCtlException when the
// switch no longer exists or the host cannot be read.
class DVSwitch : public virtual Portset {
 public:
  ~DVSwitch() override;
  // `ids` receives the ids of all DVPorts of the switch, uplink ports
  // included, in ascending order; `keys` the same ids prefixed by the
  // switch's UUID.
  virtual void GetPortIds(std::vector<std::string>& keys, std::vector<std::string>& ids) = 0;
  // The DVPort of that id, owned by the caller; null when there is none.
  virtual std::unique_ptr<DVPort> GetPort(std::string const& id) = 0;
  virtual std::string GetDvsName() = 0;
  // The switch's UUID.
  virtual std::string GetDvsId() = 0;
  // The running link aggregation groups; empty without any.
  virtual std::vector<LacpGroup> GetLacpGroups() = 0;
  // Sets the short (true) or long timeout on the uplinks of a running group,
  // or on its uplink `nic` alone when that is not empty. Refuses an unknown
  // group and a NIC that is not an uplink of the group.
  virtual void SetLacpTimeout(unsigned lagId, bool shortTimeout, std::string const& nic) = 0;
  // The configured link aggregation groups, in the order they were made.
  virtual std::vector<LagConfig> GetLagConfigs() = 0;
  // Uplink name to the DVPort it uses.
  virtual std::map<std::string, DVPortParam> GetUplinkPorts() = 0;
};

// One port of a distributed switch.
class DVPort : public virtual Lib::HostCtlObject {
 public:
  ~DVPort() override;
  // The port's name: the uplink port's name ("uplink1", "lag1-0"), empty for
  // a port that faces VMs and interfaces.
  virtual std::string GetPortName() = 0;
  virtual std::string GetDVPortgroupId() const = 0;
  // Whether LACP runs on the port through its port group's settings, and
  // its mode (1 active, 2 passive).
  virtual std::pair<bool, int> GetLacpPortConfig() = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

class DVSwitchImpl : public virtual HostCtl::Network::DVSwitch, public virtual PortsetImpl {
 public:
  // The switch of that name. Making the object reads nothing.
  explicit DVSwitchImpl(std::string const& name);
  ~DVSwitchImpl() override;
  // Checks that the switch exists.
  void Refresh() override;

  std::string GetName() override;
  std::vector<std::string> GetUplinks() override;
  int GetNumPorts() override;
  // The physical NICs among the uplinks, in the switch's order.
  std::vector<std::string> GetConnectedUplinks() override;
  int GetNumUsedPorts() override;
  std::string GetClass() override;
  std::vector<std::unique_ptr<HostCtl::Network::Port>> GetPorts() override;

  // The switch's UUID: with a port id, it finds a DVPort.
  std::string GetDvsIdentifier() override;

  void GetPortIds(std::vector<std::string>& keys, std::vector<std::string>& ids) override;
  std::unique_ptr<HostCtl::Network::DVPort> GetPort(std::string const& id) override;
  std::string GetDvsName() override;
  std::string GetDvsId() override;
  std::vector<HostCtl::Network::LacpGroup> GetLacpGroups() override;
  void SetLacpTimeout(unsigned lagId, bool shortTimeout, std::string const& nic) override;
  std::vector<HostCtl::Network::LagConfig> GetLagConfigs() override;
  std::map<std::string, HostCtl::Network::DVPortParam> GetUplinkPorts() override;
  // "down", "listen", "advertise" or "both".
  std::string GetCdpStatusString();
  // The number of DVPorts.
  int GetNumConfiguredPorts();
  int GetMTU();
  // Seconds; -1 while beaconing is off.
  int GetBeaconTimeout();
  bool IsCorvaneBranded();
  // The switch's DVPorts, by ascending id; owned by the caller.
  std::vector<std::unique_ptr<HostCtl::Network::DVPort>> GetDVPorts();
};

// One DVPort, named by its switch's UUID and its id. Making the object reads
// nothing.
class DVPortImpl : public virtual HostCtl::Network::DVPort,
                   public virtual HostCtl::Network::ConnectionPoint,
                   public virtual Lib::OrvkCtlObject {
 public:
  explicit DVPortImpl(HostCtl::Network::DVPortParam const& param);
  DVPortImpl(std::string const& portId, std::string const& switchId);
  ~DVPortImpl() override;
  // Checks that the port exists; throws HostCtlException if not.
  void Refresh() override;

  // The port's id, as the switch names it.
  std::string const portId;

  // True while a client is attached; `clients` receives the clients' names
  // (an interface, or a VM's NIC). Throws for a port that does not exist.
  bool IsInUse(std::vector<std::string>& clients);
  std::string GetPortName() override;
  std::string GetDVPortgroupId() const override;
  std::pair<bool, int> GetLacpPortConfig() override;
  uint32_t GetConnectionId();
  // Throws for a port that does not exist.
  void SetConnectionId(uint32_t connectionId);

  ConnectionType GetConnectionType() const override;
  // Empty: a DVPort is not a port group.
  std::string GetPortGroupName() const override;
  HostCtl::Network::DVPortParam GetDVPortParam() const override;
  // The name of the port's switch. Throws for an unknown switch.
  std::string GetPortsetName() override;
  bool IsValid() override;

 private:
  std::string switchId_;
  uint32_t connectionId_ = 0;
};

}  // namespace OrvkCtl::Network
