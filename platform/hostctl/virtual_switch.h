// Standard virtual switches: the switch interface, its implementation, and
// the view of all switches of the host.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/policy.h"
#include "hostctl/port_group.h"
#include "hostctl/portset.h"

namespace HostCtl::Network {

class DVSwitch;

// A standard virtual switch. Its policies are the defaults of its port
// groups: the effective value is the switch's own fields over the defaults of
// a new switch; the configured value is what is set on the switch, marked by
// its set mask. A switch whose teaming policy sets no uplink order uses all
// its connected uplinks as active ones.
//
// Every operation reads or changes the host and throws Lib::HostCtlException
// when the switch no longer exists, the host cannot be read, or a change is
// refused.
class VirtualSwitch : public virtual Portset {
 public:
  ~VirtualSwitch() override;

  // Adds a port group of that name, VLAN 0, inheriting every policy; the
  // caller owns the result. Refuses a name used by any group of the host.
  virtual std::unique_ptr<PortGroup> AddPortGroup(std::string const& name) = 0;
  // Refuses a group of another switch and a group with active clients.
  virtual void RemovePortGroup(std::string const& name) = 0;
  virtual PortSecurityPolicy GetEffectiveSecurityPolicy() = 0;
  virtual PortSecurityPolicy GetConfiguredSecurityPolicy() = 0;
  virtual void ApplySecurityPolicy(PortSecurityPolicy const& policy) = 0;
  // Refuses, when shaping is on, a zero bandwidth or burst size and a peak
  // bandwidth below the average one, for the switch and for every port
  // group that inherits from it.
  virtual ShapingPolicy GetEffectiveShapingPolicy() = 0;
  virtual ShapingPolicy GetConfiguredShapingPolicy() = 0;
  virtual void ApplyShapingPolicy(ShapingPolicy policy) = 0;
  // Refuses an uplink order that names an uplink the switch is not
  // connected to, or one name twice, and an unknown balancing policy.
  virtual NicTeamingPolicy GetEffectiveTeamingPolicy() = 0;
  virtual NicTeamingPolicy GetConfiguredTeamingPolicy() = 0;
  virtual void ApplyTeamingPolicy(NicTeamingPolicy policy) = 0;
  // Connects a physical NIC. Refuses an unknown NIC and one that is an
  // uplink of any switch already. Teaming orders are left as they are.
  virtual void AddUplink(std::string const& name) = 0;
  // Disconnects an uplink and drops it from every teaming order of the
  // switch and its groups. A name that is not an uplink of the switch is
  // refused, or ignored when `force` is true.
  virtual void RemoveUplink(std::string const& name, bool force) = 0;
  // 0 down, 1 listen, 2 advertise, 3 both; other values are refused.
  virtual void SetCdpStatus(int status) = 0;
  // Refuses values outside the range of an interface's MTU.
  virtual void SetMTU(int mtu) = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// One switch of the host, by name. Making the object reads nothing; the name
// is checked when the object is first asked (GetName caches it).
class PortsetImpl : public virtual HostCtl::Network::Portset, public virtual Lib::OrvkCtlObject {
 public:
  explicit PortsetImpl(std::string const& name);
  ~PortsetImpl() override;

  // True when a standard switch of that name exists. Throws
  // HostCtlException when the host cannot be read.
  static bool IsValidVirtualSwitch(std::string const& name);

  // Checks that the switch exists; throws HostCtlException if not.
  void Refresh() override;
  std::string GetName() override;
  std::vector<std::string> GetUplinks() override;
  int GetNumPorts() override;
  std::vector<std::string> GetConnectedUplinks() override;
  int GetNumUsedPorts() override;
  std::string GetClass() override;
  std::vector<std::unique_ptr<HostCtl::Network::Port>> GetPorts() override;
  // The key that, with a port's DVPort id, finds the DVPort behind it: the
  // UUID of a distributed switch, empty for a standard switch.
  virtual std::string GetDvsIdentifier();

 protected:
  std::string name_;
};

class VirtualSwitchImpl : public virtual HostCtl::Network::VirtualSwitch,
                          public virtual PortsetImpl {
 public:
  explicit VirtualSwitchImpl(std::string const& name);
  ~VirtualSwitchImpl() override;

  std::unique_ptr<HostCtl::Network::PortGroup> AddPortGroup(std::string const& name) override;
  void RemovePortGroup(std::string const& name) override;
  HostCtl::Network::PortSecurityPolicy GetEffectiveSecurityPolicy() override;
  HostCtl::Network::PortSecurityPolicy GetConfiguredSecurityPolicy() override;
  void ApplySecurityPolicy(HostCtl::Network::PortSecurityPolicy const& policy) override;
  HostCtl::Network::ShapingPolicy GetEffectiveShapingPolicy() override;
  HostCtl::Network::ShapingPolicy GetConfiguredShapingPolicy() override;
  void ApplyShapingPolicy(HostCtl::Network::ShapingPolicy policy) override;
  HostCtl::Network::NicTeamingPolicy GetEffectiveTeamingPolicy() override;
  HostCtl::Network::NicTeamingPolicy GetConfiguredTeamingPolicy() override;
  void ApplyTeamingPolicy(HostCtl::Network::NicTeamingPolicy policy) override;
  void AddUplink(std::string const& name) override;
  void RemoveUplink(std::string const& name, bool force) override;
  void SetCdpStatus(int status) override;
  void SetMTU(int mtu) override;

  // Ports asked for when the switch was made.
  int GetNumConfiguredPorts();
  int GetMTU();
  // "down", "listen", "advertise" or "both".
  std::string GetCdpStatusString();
  // True while anything on the switch detects failures by beaconing.
  bool IsBeaconEnabled();
  // Seconds between beacons, and missed beacons before an uplink is failed.
  int GetBeaconInterval();
  int GetBeaconThreshold();
  // The switch and port groups whose failure detection is beaconing.
  std::vector<std::string> NeedBeacon();
  // The switch's port groups, in the order they were added.
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> GetPortGroups();
};

// The host's standard switches. Making the object reads nothing.
class VirtualSwitchInfoImpl : public virtual Lib::OrvkCtlObject {
 public:
  VirtualSwitchInfoImpl();
  ~VirtualSwitchInfoImpl() override;
  void Refresh() override;

  // Creates a switch with `ports` configured ports and the given policies
  // as its own settings; the caller owns the result. Refuses an empty,
  // overlong or used name, and a port count beyond what the host has left.
  std::unique_ptr<HostCtl::Network::VirtualSwitch> AddVirtualSwitchWithPolicy(
      HostCtl::Network::NicTeamingPolicy const& teaming,
      HostCtl::Network::PortSecurityPolicy const& security,
      HostCtl::Network::ShapingPolicy const& shaping,
      HostCtl::Network::NicCapabilities const& capabilities, std::string const& name,
      unsigned int ports);
  // Refuses an unknown switch and one with port groups in use.
  void RemoveVirtualSwitch(std::string const& name);
  // Null when no standard switch has that name.
  std::unique_ptr<HostCtl::Network::VirtualSwitch> GetVirtualSwitchByName(std::string const& name);
  // All standard switches, in the order they were made.
  std::vector<std::unique_ptr<HostCtl::Network::VirtualSwitch>> GetVirtualSwitches();
  // All switches of the host, of every kind: the standard ones, then the
  // distributed ones.
  std::vector<std::unique_ptr<HostCtl::Network::Portset>> GetAllSwitches();
  // The distributed switches the host takes part in, owned by the caller.
  std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> GetDVSwitches();
  // Null when no distributed switch has that name.
  std::unique_ptr<HostCtl::Network::DVSwitch> GetDVSwitchByName(std::string const& name);
  // Distributed switches backed by an opaque network provider; this host has
  // none.
  std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> GetOpaqueDVSwitches();
  // The kind of the switch of that name: standard, distributed, or opaque.
  // All three answer false for an unknown name.
  bool IsLegacySwitch(std::string const& name);
  bool IsDVSwitch(std::string const& name);
  bool IsOpaqueSwitch(std::string const& name);
};

}  // namespace OrvkCtl::Network
