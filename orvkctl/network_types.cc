#include "hostctl/network_types.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <iterator>
#include <cstdio>
#include <string_view>
#include <utility>

namespace HostCtl::Network {

namespace {

using Lib::HostCtlException;

constexpr unsigned kIpv4Bits = 32;
constexpr unsigned kIpv6Bits = 128;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A decimal number of one to three digits, without sign or leading zero, not
// over `max`. Serves the parts of a dotted quad and prefix lengths.
bool ParseSmallDecimal(std::string_view text, unsigned max, unsigned* out) {
  if (text.empty() || text.size() > 3) return false;
  if (text.size() > 1 && text[0] == '0') return false;
  unsigned value = 0;
  for (char c : text) {
    if (!IsDigit(c)) return false;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  if (value > max) return false;
  *out = value;
  return true;
}

// Text as libc's converters want it: NUL-terminated, with no NUL inside.
bool ToCString(std::string_view text, std::string* out) {
  if (text.find('\0') != std::string_view::npos) return false;
  out->assign(text);
  return true;
}

// A dotted quad of four decimal parts, none with a leading zero; inet_pton
// takes exactly that form (no octal, hex or fewer parts, unlike inet_aton).
bool ParseIpv4(std::string_view text, uint32_t* out) {
  std::string c_text;
  in_addr address{};
  if (!ToCString(text, &c_text) || inet_pton(AF_INET, c_text.c_str(), &address) != 1) {
    return false;
  }
  *out = ntohl(address.s_addr);
  return true;
}

std::string FormatIpv4(uint32_t value) {
  in_addr const address{htonl(value)};
  char buf[INET_ADDRSTRLEN];
  return inet_ntop(AF_INET, &address, buf, sizeof buf);
}

// Any RFC 4291 text form: eight groups, "::" for one or more zero groups, a
// dotted quad in the last 32 bits. No zone index, brackets or prefix.
bool ParseIpv6(std::string_view text, Ipv6Address::Bytes* out) {
  std::string c_text;
  in6_addr address{};
  if (!ToCString(text, &c_text) || inet_pton(AF_INET6, c_text.c_str(), &address) != 1) {
    return false;
  }
  std::copy(std::begin(address.s6_addr), std::end(address.s6_addr), out->begin());
  return true;
}

// RFC 5952 text: lower-case hex without leading zeros, the longest run of two
// or more zero groups (the leftmost on a tie) as "::", and dotted quads only
// for IPv4-mapped addresses (::ffff:0:0/96).
std::string FormatIpv6(Ipv6Address::Bytes const& bytes) {
  // inet_ntop also writes the deprecated IPv4-compatible form (::a.b.c.d)
  // for addresses whose first 96 bits are zero; those are written in hex.
  if (std::all_of(bytes.begin(), bytes.begin() + 12, [](uint8_t b) { return b == 0; })) {
    unsigned const high = unsigned{bytes[12]} << 8 | bytes[13];
    unsigned const low = unsigned{bytes[14]} << 8 | bytes[15];
    char buf[16];
    if (high == 0 && low == 0) return "::";
    if (high == 0) {
      std::snprintf(buf, sizeof buf, "::%x", low);
    } else {
      std::snprintf(buf, sizeof buf, "::%x:%x", high, low);
    }
    return buf;
  }
  in6_addr address{};
  std::copy(bytes.begin(), bytes.end(), std::begin(address.s6_addr));
  char buf[INET6_ADDRSTRLEN];
  return inet_ntop(AF_INET6, &address, buf, sizeof buf);
}

uint32_t Ipv4Mask(unsigned prefix_length) {
  return prefix_length == 0 ? 0 : ~uint32_t{0} << (kIpv4Bits - prefix_length);
}

Ipv6Address::Bytes Ipv6Mask(unsigned prefix_length) {
  Ipv6Address::Bytes mask{};
  for (unsigned i = 0; i < mask.size(); ++i) {
    unsigned bits = prefix_length > 8 * i ? std::min(prefix_length - 8 * i, 8u) : 0;
    mask[i] = static_cast<uint8_t>(0xff00u >> bits);
  }
  return mask;
}

// Splits "<address>/<prefix length>" and checks both halves. Returns an empty
// text on success, else the reason for the user.
template <typename ParseAddress, typename Address>
std::string ParseNetwork(std::string_view text, char const* family, unsigned max_prefix,
                         ParseAddress parse_address, Address* address, unsigned* prefix_length) {
  size_t slash = text.find('/');
  if (slash == std::string_view::npos || text.find('/', slash + 1) != std::string_view::npos) {
    return "expected <address>/<prefix length>";
  }
  std::string_view address_text = text.substr(0, slash);
  if (!parse_address(address_text, address)) {
    return std::string(address_text) + " is not a valid " + family + " address";
  }
  if (!ParseSmallDecimal(text.substr(slash + 1), max_prefix, prefix_length)) {
    return "the prefix length must be a number from 0 to " + std::to_string(max_prefix);
  }
  return {};
}

std::string ParseIpv4Network(std::string_view text, uint32_t* address, unsigned* prefix_length) {
  return ParseNetwork(text, "IPv4", kIpv4Bits, ParseIpv4, address, prefix_length);
}

std::string ParseIpv6Network(std::string_view text, Ipv6Address::Bytes* address,
                             unsigned* prefix_length) {
  return ParseNetwork(text, "IPv6", kIpv6Bits, ParseIpv6, address, prefix_length);
}

void CheckPrefixLength(unsigned prefix_length, unsigned max, char const* family) {
  if (prefix_length > max) {
    throw HostCtlException(std::string("Invalid ") + family +
                           " prefix length: " + std::to_string(prefix_length));
  }
}

bool ParseMac(std::string_view text, MacAddress::Bytes* out) {
  // "xx:xx:xx:xx:xx:xx": two digits per byte and one separator between bytes.
  if (text.size() != 17) return false;
  char const separator = text[2];
  if (separator != ':' && separator != '-') return false;
  for (size_t i = 0; i < out->size(); ++i) {
    size_t pos = 3 * i;
    if (i > 0 && text[pos - 1] != separator) return false;
    int high = HexValue(text[pos]);
    int low = HexValue(text[pos + 1]);
    if (high < 0 || low < 0) return false;
    (*out)[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return true;
}

}  // namespace

// ---- IpAddress ------------------------------------------------------------

IpAddress::~IpAddress() = default;

// ---- Ipv4Address ----------------------------------------------------------

Ipv4Address::Ipv4Address() = default;

Ipv4Address::Ipv4Address(std::string const& text) {
  if (!ParseIpv4(text, &value_)) throw HostCtlException("Invalid IPv4 address: " + text);
}

Ipv4Address::Ipv4Address(uint32_t value) : value_(value) {}

Ipv4Address::~Ipv4Address() = default;

bool Ipv4Address::IsValidAddress(std::string const& text) {
  uint32_t value = 0;
  return ParseIpv4(text, &value);
}

IpAddress::Family Ipv4Address::GetFamily() const { return Ipv4; }

std::string Ipv4Address::GetStringAddress() const { return FormatIpv4(value_); }

// ---- Ipv6Address ----------------------------------------------------------

Ipv6Address::Ipv6Address() = default;

Ipv6Address::Ipv6Address(std::string const& text) {
  if (!ParseIpv6(text, &bytes_)) throw HostCtlException("Invalid IPv6 address: " + text);
}

Ipv6Address::Ipv6Address(Bytes const& bytes) : bytes_(bytes) {}

Ipv6Address::~Ipv6Address() = default;

bool Ipv6Address::IsValidAddress(std::string const& text) {
  Bytes bytes;
  return ParseIpv6(text, &bytes);
}

IpAddress::Family Ipv6Address::GetFamily() const { return Ipv6; }

std::string Ipv6Address::GetStringAddress() const { return FormatIpv6(bytes_); }

// ---- Ipv4Network ----------------------------------------------------------

Ipv4Network::Ipv4Network() = default;

Ipv4Network::Ipv4Network(std::string const& text) {
  uint32_t address = 0;
  std::string reason = ParseIpv4Network(text, &address, &prefix_length_);
  if (!reason.empty())
    throw HostCtlException("Invalid IPv4 network: " + text + " (" + reason + ")");
  address_ = Ipv4Address(address);
}

Ipv4Network::Ipv4Network(Ipv4Address const& address, unsigned prefix_length)
    : address_(address), prefix_length_(prefix_length) {
  CheckPrefixLength(prefix_length, kIpv4Bits, "IPv4");
}

bool Ipv4Network::IsValidAddressAndNetmask(std::string const& text) {
  uint32_t address = 0;
  unsigned prefix_length = 0;
  return ParseIpv4Network(text, &address, &prefix_length).empty();
}

Ipv4Address Ipv4Network::GetNetwork() const {
  return Ipv4Address(address_.GetValue() & Ipv4Mask(prefix_length_));
}

Ipv4Address Ipv4Network::GetNetmask() const { return Ipv4Address(Ipv4Mask(prefix_length_)); }

std::string Ipv4Network::GetStringAddress() const {
  return GetNetwork().GetStringAddress() + "/" + std::to_string(prefix_length_);
}

bool Ipv4Network::operator==(Ipv4Network const& other) const {
  return prefix_length_ == other.prefix_length_ && GetNetwork() == other.GetNetwork();
}

// ---- Ipv6Network ----------------------------------------------------------

Ipv6Network::Ipv6Network() = default;

Ipv6Network::Ipv6Network(std::string const& text) {
  Ipv6Address::Bytes address{};
  std::string reason = ParseIpv6Network(text, &address, &prefix_length_);
  if (!reason.empty())
    throw HostCtlException("Invalid IPv6 network: " + text + " (" + reason + ")");
  address_ = Ipv6Address(address);
}

Ipv6Network::Ipv6Network(Ipv6Address const& address, unsigned prefix_length, Ipv6AddressType type,
                         Ipv6AddressStatus status)
    : address_(address), prefix_length_(prefix_length), type_(type), status_(status) {
  CheckPrefixLength(prefix_length, kIpv6Bits, "IPv6");
}

bool Ipv6Network::IsValidAddressAndNetmask(std::string const& text) {
  Ipv6Address::Bytes address{};
  unsigned prefix_length = 0;
  return ParseIpv6Network(text, &address, &prefix_length).empty();
}

Ipv6Address Ipv6Network::NetmaskFromNumber(unsigned int prefix_length) {
  CheckPrefixLength(prefix_length, kIpv6Bits, "IPv6");
  return Ipv6Address(Ipv6Mask(prefix_length));
}

Ipv6Address Ipv6Network::GetNetwork() const {
  Ipv6Address::Bytes network = address_.GetBytes();
  Ipv6Address::Bytes const mask = Ipv6Mask(prefix_length_);
  for (size_t i = 0; i < network.size(); ++i) network[i] &= mask[i];
  return Ipv6Address(network);
}

std::string Ipv6Network::GetStringAddress() const {
  return address_.GetStringAddress() + "/" + std::to_string(prefix_length_);
}

bool Ipv6Network::operator==(Ipv6Network const& other) const {
  return prefix_length_ == other.prefix_length_ && address_ == other.address_;
}

// ---- MacAddress -----------------------------------------------------------

MacAddress::MacAddress() = default;

MacAddress::MacAddress(std::string const& text) {
  if (!ParseMac(text, &bytes_)) throw HostCtlException("Invalid MAC address: " + text);
}

MacAddress::MacAddress(Bytes const& bytes) : bytes_(bytes) {}

bool MacAddress::IsValid(std::string const& text) {
  Bytes bytes;
  return ParseMac(text, &bytes);
}

std::string MacAddress::GetStringAddress() const {
  char buf[18];
  std::snprintf(buf, sizeof buf, "%02x:%02x:%02x:%02x:%02x:%02x", bytes_[0], bytes_[1], bytes_[2],
                bytes_[3], bytes_[4], bytes_[5]);
  return buf;
}

// ---- IpConfig -------------------------------------------------------------

IpConfig::IpConfig() = default;
IpConfig::IpConfig(IpConfig const& other) = default;
IpConfig& IpConfig::operator=(IpConfig const& other) = default;
IpConfig::~IpConfig() = default;

void IpConfig::SetIpv4Address(Ipv4Address address) {
  ipv4_address_ = address;
  use_dhcp_ = false;
  ipv4_use_none_ = false;
}

Ipv4Address IpConfig::GetIpv4Broadcast() const {
  if (ipv4_address_ == Ipv4Address()) return Ipv4Address();
  return Ipv4Address(ipv4_address_.GetValue() | ~ipv4_netmask_.GetValue());
}

void IpConfig::SetUseDhcp(bool use_dhcp) {
  use_dhcp_ = use_dhcp;
  if (use_dhcp) ipv4_use_none_ = false;
}

void IpConfig::SetIpv4UseNone() {
  ipv4_use_none_ = true;
  use_dhcp_ = false;
  ipv4_address_ = Ipv4Address();
  ipv4_netmask_ = Ipv4Address();
}

void IpConfig::AddIpv6Network(Ipv6Network network) {
  Ipv6Address const address = network.GetAddress();
  bool const present =
      std::any_of(ipv6_networks_.begin(), ipv6_networks_.end(),
                  [&address](Ipv6Network const& entry) { return entry.GetAddress() == address; });
  if (present) {
    throw HostCtlException("IPv6 address already configured: " + network.GetStringAddress());
  }
  ipv6_networks_.push_back(std::move(network));
}

void IpConfig::RemoveIpv6Network(Ipv6Network network) {
  auto it = std::find(ipv6_networks_.begin(), ipv6_networks_.end(), network);
  if (it == ipv6_networks_.end()) {
    throw HostCtlException("IPv6 address not configured: " + network.GetStringAddress());
  }
  ipv6_networks_.erase(it);
}

bool IpConfig::operator==(IpConfig const& other) const = default;

// ---- ConnectionPoint ------------------------------------------------------

ConnectionPoint::~ConnectionPoint() = default;

OpaqueNetworkParam const& ConnectionPoint::GetOpaqueNetworkParam() const {
  static OpaqueNetworkParam const empty;
  return empty;
}

}  // namespace HostCtl::Network
