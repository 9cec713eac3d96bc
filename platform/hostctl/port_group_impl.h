// A port group of a standard switch, as the library implements it: the
// group's settings, and the group as a place where an interface attaches.
#pragma once

#include <memory>
#include <string>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"
#include "hostctl/port_group.h"

namespace OrvkCtl::Network {

class PortGroupImpl : public virtual HostCtl::Network::PortGroup,
                      public virtual HostCtl::Network::ConnectionPoint,
                      public virtual Lib::OrvkCtlObject {
 public:
  // Looks the group up by name. Throws HostCtlException when no port group
  // of that name exists or the host cannot be read.
  explicit PortGroupImpl(std::string const& name);
  ~PortGroupImpl() override;

  // Checks that the group still exists; throws HostCtlException if not.
  void Refresh() override;

  std::string GetName() override;
  std::string GetVirtualSwitchName() override;
  uint16_t GetVlanId() override;
  void SetVlanId(uint16_t vlanId) override;
  HostCtl::Network::PortSecurityPolicy GetEffectiveSecurityPolicy() override;
  HostCtl::Network::PortSecurityPolicy GetConfiguredSecurityPolicy() override;
  void ApplySecurityPolicy(HostCtl::Network::PortSecurityPolicy const& policy) override;
  HostCtl::Network::NicTeamingPolicy GetEffectiveTeamingPolicy() override;
  HostCtl::Network::NicTeamingPolicy GetConfiguredTeamingPolicy() override;
  void ApplyTeamingPolicy(HostCtl::Network::NicTeamingPolicy policy) override;
  HostCtl::Network::ShapingPolicy GetEffectiveShapingPolicy() override;
  HostCtl::Network::ShapingPolicy GetConfiguredShapingPolicy() override;
  void ApplyShapingPolicy(HostCtl::Network::ShapingPolicy policy) override;
  std::unique_ptr<HostCtl::Network::VirtualSwitch> GetVirtualSwitch() override;
  int GetNumActiveClients() override;

  // As a connection point: always the port group kind.
  ConnectionType GetConnectionType() const override;
  std::string GetPortGroupName() const override;
  // An empty record: a port group is not a port of a distributed switch.
  HostCtl::Network::DVPortParam GetDVPortParam() const override;
  // The name of the group's switch.
  std::string GetPortsetName() override;
  // Whether the group still exists.
  bool IsValid() override;

 private:
  std::string name_;
};

}  // namespace OrvkCtl::Network
