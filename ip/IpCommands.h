// The command classes of `network ip`, one per leaf; each is made only by its
// New() and defined in the source file of its name.
#pragma once

#include "frame/CommandKit.h"

namespace HostCtl::Network {
class OrvkNic;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network ip connection list`: the open sockets of a netstack instance.
class IpConnectionList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpConnectionList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip dns search add`: appends a search domain of a netstack instance.
class IpDNSSearchAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSSearchAdd)
};

// `network ip dns search list`: the search domains of a netstack instance.
class IpDNSSearchList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSSearchList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip dns search remove`: drops a search domain of a netstack instance.
class IpDNSSearchRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSSearchRemove)
};

// `network ip dns server add`: appends a name server of a netstack instance.
class IpDNSServerAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSServerAdd)
};

// `network ip dns server list`: the name servers of a netstack instance.
class IpDNSServerList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSServerList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip dns server remove`: drops one or all name servers of a netstack instance.
class IpDNSServerRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpDNSServerRemove)
};

// `network ip get`: the global IP settings.
class IpGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpGet)
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip hosts add`: adds a line to the hosts file.
class IpHostsAdd : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpHostsAdd)
};

// `network ip hosts list`: the lines of the hosts file that the user made.
class IpHostsList : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpHostsList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip hosts remove`: removes a line of the hosts file.
class IpHostsRemove : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpHostsRemove)
};

// `network ip interface add`: adds an Orvik network interface on a port group or a DVPort.
class IpInterfaceAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceAdd)
 private:
  // Sets `tag` on the new interface `nic` and clears it from the interfaces
  // of the default netstack instance.
  void MoveTag(HostCtl::Network::OrvkNic& nic, int tag);
};

// `network ip interface ipv4 get` and `network ip interface ipv4 address list`: the IPv4 settings
// of the interfaces.
class IpInterfaceIpv4Get : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv4Get)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip interface ipv4 set`: sets the IPv4 mode, address, gateway and DHCP DNS use of an
// interface.
class IpInterfaceIpv4Set : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv4Set)
};

// `network ip interface ipv6 address add`: adds a static IPv6 address to an interface.
class IpInterfaceIpv6AddressAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv6AddressAdd)
};

// `network ip interface ipv6 address list`: lists the IPv6 addresses of the interfaces.
class IpInterfaceIpv6AddressList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv6AddressList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip interface ipv6 address remove`: removes an IPv6 address from an interface.
class IpInterfaceIpv6AddressRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv6AddressRemove)
};

// `network ip interface ipv6 get`: the IPv6 settings of the interfaces, without their addresses.
class IpInterfaceIpv6Get : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv6Get)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip interface ipv6 set`: turns IPv6, DHCPv6 and router advertisement on or off and sets
// the gateway.
class IpInterfaceIpv6Set : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceIpv6Set)
};

// `network ip interface list`: lists the Orvik network interfaces with their connection points.
class IpInterfaceList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip interface remove`: removes an Orvik network interface, named by its name or by its
// connection point.
class IpInterfaceRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceRemove)
};

// `network ip interface set`: enables or disables an interface and sets its MTU.
class IpInterfaceSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceSet)
};

// `network ip interface tag add`: marks an interface for a service.
class IpInterfaceTagAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceTagAdd)
};

// `network ip interface tag get`: the service marks of an interface.
class IpInterfaceTagGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceTagGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip interface tag remove`: clears a service mark.
class IpInterfaceTagRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpInterfaceTagRemove)
};

// `network ip ipsec sa add`: adds a Security Association.
class IpIpsecSAAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSAAdd)
};

// `network ip ipsec sa list`: the Security Associations, without their keys.
class IpIpsecSAList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSAList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip ipsec sa remove`: removes one, a negotiated one, or all SAs.
class IpIpsecSARemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSARemove)
};

// `network ip ipsec sp add`: adds a Security Policy.
class IpIpsecSPAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSPAdd)
};

// `network ip ipsec sp list`: the Security Policies.
class IpIpsecSPList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSPList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip ipsec sp remove`: removes one or all Security Policies.
class IpIpsecSPRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpIpsecSPRemove)
};

// `network ip neighbor list`: the neighbor tables of both address families.
class IpNeighborList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNeighborList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip neighbor remove`: removes a neighbor table entry.
class IpNeighborRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNeighborRemove)
};

// `network ip netstack add`: adds a netstack instance.
class IpNetstackInstanceAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNetstackInstanceAdd)
};

// `network ip netstack get`: the settings of one netstack instance.
class IpNetstackInstanceGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNetstackInstanceGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip netstack list`: the netstack instances with their state.
class IpNetstackInstanceList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNetstackInstanceList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip netstack remove`: removes a netstack instance.
class IpNetstackInstanceRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNetstackInstanceRemove)
};

// `network ip netstack set`: changes the settings of one netstack instance.
class IpNetstackInstanceSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpNetstackInstanceSet)
};

// `network ip route ipv4 add`: adds an IPv4 route to a netstack instance.
class IpRouteIpv4Add : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv4Add)
};

// `network ip route ipv4 list`: the IPv4 routes of a netstack instance.
class IpRouteIpv4List : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv4List)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip route ipv4 remove`: removes an IPv4 route, or clears the default gateway.
class IpRouteIpv4Remove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv4Remove)
};

// `network ip route ipv6 add`: adds an IPv6 route to a netstack instance.
class IpRouteIpv6Add : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv6Add)
};

// `network ip route ipv6 list`: the IPv6 routes of a netstack instance.
class IpRouteIpv6List : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv6List)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network ip route ipv6 remove`: removes an IPv6 route, or clears the default gateway.
class IpRouteIpv6Remove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpRouteIpv6Remove)
};

// `network ip set`: changes the global IP settings.
class IpSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(IpSet)
};

}  // namespace CorvaneCli::NetworkNamespace
