// Distributed switches the host takes part in, and their ports. They are
// configured from outside the host; the host reports them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"
#include "hostctl/portset.h"

namespace HostCtl::Network {

class Port;

// Every operation reads the host and throws Lib::HostCtlException when the
// switch no longer exists or the host cannot be read.
class DVSwitch : public virtual Portset {
 public:
  ~DVSwitch() override;
  virtual std::string GetDvsName() = 0;
  // The switch's UUID.
  virtual std::string GetDvsId() = 0;
};

// One port of a distributed switch.
class DVPort : public virtual Lib::HostCtlObject {
 public:
  ~DVPort() override;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

class DVSwitchImpl : public virtual HostCtl::Network::DVSwitch, public virtual Lib::OrvkCtlObject {
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

  std::string GetDvsName() override;
  std::string GetDvsId() override;
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

 private:
  std::string name_;
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
  std::string GetDVPortgroupId() const;
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
