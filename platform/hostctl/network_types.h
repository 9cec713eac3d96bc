// Value types of the host's network: IP and MAC addresses, networks with a
// prefix, the IP configuration of one interface, and the records that say
// where a virtual interface is connected.
//
// Text forms. Every type that is made from text parses strictly and throws
// HostCtl::Lib::HostCtlException with a message for the user that names the
// rejected text (e.g. "Invalid IPv4 address: 1.2.3.256"). Each has a static
// predicate that answers the same question without throwing. The text that
// GetStringAddress() gives is canonical and parses back to an equal object.
//
// All types here are values: copy them freely. None of them is thread-safe
// for concurrent writers; concurrent readers of one object are fine.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

// Common base of the two address families, so that an address of either
// family can be passed through one reference (and deleted through a base
// pointer). Objects are made as Ipv4Address or Ipv6Address only.
class IpAddress {
 public:
  enum Family { Ipv4 = 4, Ipv6 = 6 };

  virtual ~IpAddress();

  virtual Family GetFamily() const = 0;
  // The canonical text of the address.
  virtual std::string GetStringAddress() const = 0;

 protected:
  IpAddress() = default;
  IpAddress(IpAddress const&) = default;
  IpAddress& operator=(IpAddress const&) = default;
};

// One IPv4 address. The default object is 0.0.0.0, which also stands for
// "no address" (an unset gateway, an interface without IPv4).
//
// Accepted text: four decimal numbers 0..255 joined by '.', each without sign,
// blank or leading zero ("0" itself is fine). Canonical text: the same form.
class Ipv4Address : public virtual IpAddress {
 public:
  Ipv4Address();
  // Throws HostCtlException "Invalid IPv4 address: <text>" on bad text.
  explicit Ipv4Address(std::string const& text);
  // `value` in host byte order: 0x0a000001 is 10.0.0.1.
  explicit Ipv4Address(uint32_t value);
  ~Ipv4Address() override;

  static bool IsValidAddress(std::string const& text);

  Family GetFamily() const override;
  std::string GetStringAddress() const override;
  // The address in host byte order.
  uint32_t GetValue() const { return value_; }

  bool operator==(Ipv4Address const& other) const { return value_ == other.value_; }
  bool operator<(Ipv4Address const& other) const { return value_ < other.value_; }

 private:
  uint32_t value_ = 0;
};

// One IPv6 address. The default object is "::" (unspecified, "no address").
//
// Accepted text (RFC 4291): eight groups of one to four hex digits joined by
// ':', either case; one "::" may stand for one or more zero groups; the last
// 32 bits may be written as a dotted IPv4 address (same rules as Ipv4Address).
// Refused: zone suffixes ("%eth0"), brackets, blanks, a second "::", a lone
// leading or trailing ':'.
// Canonical text (RFC 5952): lower case, no leading zeros in a group, the
// longest run of two or more zero groups shown as "::" (the leftmost one on a
// tie), IPv4-mapped addresses as ::ffff:a.b.c.d.
class Ipv6Address : public virtual IpAddress {
 public:
  using Bytes = std::array<uint8_t, 16>;

  Ipv6Address();
  // Throws HostCtlException "Invalid IPv6 address: <text>" on bad text.
  explicit Ipv6Address(std::string const& text);
  // `bytes` in network order: bytes[0] is the first byte on the wire.
  explicit Ipv6Address(Bytes const& bytes);
  ~Ipv6Address() override;

  static bool IsValidAddress(std::string const& text);

  Family GetFamily() const override;
  std::string GetStringAddress() const override;
  Bytes const& GetBytes() const { return bytes_; }

  bool operator==(Ipv6Address const& other) const { return bytes_ == other.bytes_; }
  bool operator<(Ipv6Address const& other) const { return bytes_ < other.bytes_; }

 private:
  Bytes bytes_{};
};

// An IPv4 network: an address with a prefix length 0..32. The default object
// is 0.0.0.0/0.
//
// The address is kept as given; GetNetwork() clears its host bits. Two
// networks are equal when they name the same network (same GetNetwork() and
// prefix length), so "10.1.2.3/8" == "10.0.0.0/8", and both print as
// "10.0.0.0/8".
class Ipv4Network {
 public:
  Ipv4Network();
  // Text "<IPv4 address>/<prefix length>", the prefix length decimal without
  // leading zeros. Throws HostCtlException "Invalid IPv4 network: <text>..."
  // with the reason.
  explicit Ipv4Network(std::string const& text);
  // Throws HostCtlException if `prefix_length` is over 32.
  Ipv4Network(Ipv4Address const& address, unsigned prefix_length);

  static bool IsValidAddressAndNetmask(std::string const& text);

  // The address as given, host bits included.
  Ipv4Address GetAddress() const { return address_; }
  // The address with its host bits cleared.
  Ipv4Address GetNetwork() const;
  // The mask in address form: /24 is 255.255.255.0.
  Ipv4Address GetNetmask() const;
  unsigned GetPrefixLength() const { return prefix_length_; }
  // "<network>/<prefix length>", e.g. "10.0.0.0/8".
  std::string GetStringAddress() const;

  bool operator==(Ipv4Network const& other) const;

 private:
  Ipv4Address address_;
  unsigned prefix_length_ = 0;
};

// An IPv6 address with a prefix length 0..128: a network, or one address of
// an interface together with its on-link prefix. In the second role it also
// carries the address's type and status as the host reports them. The
// default object is ::/0, static, preferred.
//
// Unlike Ipv4Network, the address is significant as given: two objects are
// equal when address and prefix length are equal (type and status are not
// compared), and the text shows the address as given.
class Ipv6Network {
 public:
  // How the address was configured. The host may report values without a
  // name here; they are carried as they come.
  enum class Ipv6AddressType : uint32_t { Static = 0, Autoconf = 7, Dhcp = 9 };
  // The state of the address on its link. As with the type, other values are
  // carried as they come.
  enum class Ipv6AddressStatus : uint32_t {
    Preferred = 0,
    Tentative = 2,
    Duplicated = 3,
    Deprecated = 5,
  };

  Ipv6Network();
  // Text "<IPv6 address>/<prefix length>", the prefix length decimal without
  // leading zeros. Type Static, status Preferred. Throws HostCtlException
  // "Invalid IPv6 network: <text>..." with the reason.
  explicit Ipv6Network(std::string const& text);
  // Throws HostCtlException if `prefix_length` is over 128.
  Ipv6Network(Ipv6Address const& address, unsigned prefix_length,
              Ipv6AddressType type = Ipv6AddressType::Static,
              Ipv6AddressStatus status = Ipv6AddressStatus::Preferred);

  static bool IsValidAddressAndNetmask(std::string const& text);
  // The mask with `prefix_length` leading one bits: 64 is ffff:ffff:ffff:ffff::.
  // Throws HostCtlException if `prefix_length` is over 128.
  static Ipv6Address NetmaskFromNumber(unsigned int prefix_length);

  // The address as given.
  Ipv6Address GetAddress() const { return address_; }
  // The address with its host bits cleared.
  Ipv6Address GetNetwork() const;
  // The prefix length.
  unsigned GetNetmask() const { return prefix_length_; }
  Ipv6AddressType GetIpv6AddressType() const { return type_; }
  Ipv6AddressStatus GetIpv6AddressStatus() const { return status_; }
  void SetIpv6AddressType(Ipv6AddressType type) { type_ = type; }
  void SetIpv6AddressStatus(Ipv6AddressStatus status) { status_ = status; }
  // "<address>/<prefix length>", e.g. "2001:db8::1/64".
  std::string GetStringAddress() const;

  bool operator==(Ipv6Network const& other) const;

 private:
  Ipv6Address address_;
  unsigned prefix_length_ = 0;
  Ipv6AddressType type_ = Ipv6AddressType::Static;
  Ipv6AddressStatus status_ = Ipv6AddressStatus::Preferred;
};

// One MAC address. The default object is 00:00:00:00:00:00, which stands for
// "no address given".
//
// Accepted text: six groups of exactly two hex digits, either case, all
// joined by ':' or all by '-'. Canonical text: lower case, joined by ':'.
class MacAddress {
 public:
  using Bytes = std::array<uint8_t, 6>;

  MacAddress();
  // Throws HostCtlException "Invalid MAC address: <text>" on bad text.
  explicit MacAddress(std::string const& text);
  explicit MacAddress(Bytes const& bytes);

  static bool IsValid(std::string const& text);

  std::string GetStringAddress() const;
  Bytes const& GetBytes() const { return bytes_; }

  bool operator==(MacAddress const& other) const { return bytes_ == other.bytes_; }

 private:
  Bytes bytes_{};
};

// The whole IP configuration of one interface, handed out and taken back as
// one value.
//
// IPv4 mode: GetUseDhcp() true is DHCP; else GetIpv4UseNone() true is no
// IPv4; else static. SetUseDhcp(true) and SetIpv4UseNone() select the first
// two; SetIpv4Address() selects static. A default object has no IPv4 (mode
// none, all addresses 0.0.0.0), IPv6 off, no DHCP of either family, no
// router advertisement, gateway "::" and no IPv6 address.
class IpConfig {
 public:
  IpConfig();
  IpConfig(IpConfig const& other);
  IpConfig& operator=(IpConfig const& other);
  ~IpConfig();

  Ipv4Address GetIpv4Address() const { return ipv4_address_; }
  // Also selects static mode: clears the DHCP and the none flag.
  void SetIpv4Address(Ipv4Address address);
  Ipv4Address GetIpv4Netmask() const { return ipv4_netmask_; }
  void SetIpv4Netmask(Ipv4Address netmask) { ipv4_netmask_ = netmask; }
  // Address with all host bits set; 0.0.0.0 while the address is 0.0.0.0.
  Ipv4Address GetIpv4Broadcast() const;
  Ipv4Address GetIpv4Gateway() const { return ipv4_gateway_; }
  void SetIpv4Gateway(Ipv4Address gateway) { ipv4_gateway_ = gateway; }

  bool GetUseDhcp() const { return use_dhcp_; }
  // true also clears the none flag. The address is kept.
  void SetUseDhcp(bool use_dhcp);
  bool GetIpv4UseNone() const { return ipv4_use_none_; }
  // Selects no IPv4: sets the none flag, clears DHCP, address and netmask.
  // The gateway is kept.
  void SetIpv4UseNone();
  bool GetDhcpDns() const { return dhcp_dns_; }
  void SetDhcpDns(bool dhcp_dns) { dhcp_dns_ = dhcp_dns; }

  bool GetUseIpv6() const { return use_ipv6_; }
  void SetUseIpv6(bool use_ipv6) { use_ipv6_ = use_ipv6; }
  bool GetUseIpv6Dhcp() const { return use_ipv6_dhcp_; }
  void SetUseIpv6Dhcp(bool use_ipv6_dhcp) { use_ipv6_dhcp_ = use_ipv6_dhcp; }
  bool GetUseIpv6RouterAdvertised() const { return use_ipv6_router_advertised_; }
  void SetUseIpv6RouterAdvertised(bool on) { use_ipv6_router_advertised_ = on; }
  bool GetIpv6DhcpDns() const { return ipv6_dhcp_dns_; }
  void SetIpv6DhcpDns(bool ipv6_dhcp_dns) { ipv6_dhcp_dns_ = ipv6_dhcp_dns; }
  Ipv6Address GetIpv6Gateway() const { return ipv6_gateway_; }
  void SetIpv6Gateway(Ipv6Address gateway) { ipv6_gateway_ = gateway; }

  // The IPv6 addresses of the interface, in the order they were added.
  std::vector<Ipv6Network> GetIpv6Network() const { return ipv6_networks_; }
  // Appends `network`. Throws HostCtlException if an entry with the same
  // address (whatever its prefix length) is already there.
  void AddIpv6Network(Ipv6Network network);
  // Removes the entry equal to `network` (same address and prefix length).
  // Throws HostCtlException if there is none.
  void RemoveIpv6Network(Ipv6Network network);

  bool operator==(IpConfig const& other) const;

 private:
  Ipv4Address ipv4_address_;
  Ipv4Address ipv4_netmask_;
  Ipv4Address ipv4_gateway_;
  bool use_dhcp_ = false;
  bool ipv4_use_none_ = true;
  bool dhcp_dns_ = false;
  bool use_ipv6_ = false;
  bool use_ipv6_dhcp_ = false;
  bool use_ipv6_router_advertised_ = false;
  bool ipv6_dhcp_dns_ = false;
  Ipv6Address ipv6_gateway_;
  std::vector<Ipv6Network> ipv6_networks_;
};

// The address of one port of a distributed switch.
struct DVPortParam {
  std::string switchUuid;
  std::string portId;
  uint32_t connectionId = 0;

  bool operator==(DVPortParam const& other) const = default;
};

// The identity of an opaque network.
struct OpaqueNetworkParam {
  std::string networkId;
  std::string networkType;
  std::string externalId;

  bool operator==(OpaqueNetworkParam const& other) const = default;
};

// The place where a virtual interface attaches: a port group, a port of a
// distributed switch, or an opaque network. Implementations answer the
// accessor of their own kind; the others are theirs to define.
class ConnectionPoint : public virtual Lib::HostCtlObject {
 public:
  enum ConnectionType {
    PortGroupConnection = 1,
    DVPortConnection = 2,
    OpaqueNetworkConnection = 3
  };

  ~ConnectionPoint() override;

  virtual ConnectionType GetConnectionType() const = 0;
  // Port group kind: the port group's name.
  virtual std::string GetPortGroupName() const = 0;
  // DVPort kind: switch UUID, port id and connection id.
  virtual DVPortParam GetDVPortParam() const = 0;
  // Opaque network kind: its identity. The default gives one shared record of
  // three empty strings, which lives until the program ends.
  virtual OpaqueNetworkParam const& GetOpaqueNetworkParam() const;
  // The name of the switch behind the connection point. May read the host;
  // throws HostCtlException if that fails.
  virtual std::string GetPortsetName() = 0;
  // Whether the connection point exists on the host. May read the host.
  virtual bool IsValid() = 0;
};

}  // namespace HostCtl::Network
