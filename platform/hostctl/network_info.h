// The top of the host's network view, and the factory that hands it out.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class Pnic;
class PortGroup;
class VirtualSwitch;

using PnicList = std::vector<std::unique_ptr<Pnic>>;

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
  // The port groups of all standard switches, switch by switch, owned by the
  // caller.
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> GetAllPortGroups();
};

}  // namespace OrvkCtl::Network
