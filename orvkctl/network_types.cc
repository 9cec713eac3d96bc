#include "hostctl/network_types.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace HostCtl::Network {

namespace {

using Lib::HostCtlException;

constexpr unsigned kIpv4Bits = 32;
constexpr unsigned kIpv6Bits = 128;
constexpr int kIpv6Groups = 8;

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

bool ParseIpv4(std::string_view text, uint32_t* out) {
  uint32_t value = 0;
  int parts = 0;
  size_t pos = 0;
  for (;;) {
    size_t dot = text.find('.', pos);
    unsigned octet = 0;
    if (!ParseSmallDecimal(text.substr(pos, dot == std::string_view::npos ? dot : dot - pos), 255,
                           &octet)) {
      return false;
    }
    value = value << 8 | octet;
    ++parts;
    if (dot == std::string_view::npos) break;
    if (parts == 4) return false;
    pos = dot + 1;
  }
  if (parts != 4) return false;
  *out = value;
  return true;
}

std::string FormatIpv4(uint32_t value) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%u.%u.%u.%u", value >> 24, (value >> 16) & 0xffu,
                (value >> 8) & 0xffu, value & 0xffu);
  return buf;
}

// Parses the groups of one side of an optional "::". `text` empty means no
// group. A dotted quad is allowed as the last piece when `ipv4_allowed`, and
// counts as two groups. Fails when the side would hold more than `max` groups.
bool ParseIpv6Groups(std::string_view text, bool ipv4_allowed, int max, uint16_t* groups,
                     int* count) {
  *count = 0;
  if (text.empty()) return true;
  size_t pos = 0;
  for (;;) {
    size_t colon = text.find(':', pos);
    bool last = colon == std::string_view::npos;
    std::string_view piece = text.substr(pos, last ? colon : colon - pos);
    if (last && ipv4_allowed && piece.find('.') != std::string_view::npos) {
      uint32_t v4 = 0;
      if (*count + 2 > max || !ParseIpv4(piece, &v4)) return false;
      groups[(*count)++] = static_cast<uint16_t>(v4 >> 16);
      groups[(*count)++] = static_cast<uint16_t>(v4 & 0xffffu);
      return true;
    }
    if (piece.empty() || piece.size() > 4 || *count + 1 > max) return false;
    unsigned value = 0;
    for (char c : piece) {
      int digit = HexValue(c);
      if (digit < 0) return false;
      value = value << 4 | static_cast<unsigned>(digit);
    }
    groups[(*count)++] = static_cast<uint16_t>(value);
    if (last) return true;
    pos = colon + 1;
  }
}

bool ParseIpv6(std::string_view text, Ipv6Address::Bytes* out) {
  if (text.empty()) return false;
  size_t gap = text.find("::");
  bool compressed = gap != std::string_view::npos;
  // A second "::" leaves an empty piece in the tail, which the tail refuses.
  std::string_view head = compressed ? text.substr(0, gap) : text;
  std::string_view tail = compressed ? text.substr(gap + 2) : std::string_view();

  // "::" stands for at least one zero group, so a compressed text names at
  // most seven groups.
  int const max = compressed ? kIpv6Groups - 1 : kIpv6Groups;
  uint16_t head_groups[kIpv6Groups];
  uint16_t tail_groups[kIpv6Groups];
  int head_count = 0;
  int tail_count = 0;
  if (!ParseIpv6Groups(head, !compressed, max, head_groups, &head_count)) return false;
  if (!ParseIpv6Groups(tail, true, max - head_count, tail_groups, &tail_count)) return false;
  if (!compressed && head_count != kIpv6Groups) return false;

  uint16_t groups[kIpv6Groups] = {};
  std::copy(head_groups, head_groups + head_count, groups);
  std::copy(tail_groups, tail_groups + tail_count, groups + kIpv6Groups - tail_count);
  for (int i = 0; i < kIpv6Groups; ++i) {
    (*out)[2 * i] = static_cast<uint8_t>(groups[i] >> 8);
    (*out)[2 * i + 1] = static_cast<uint8_t>(groups[i] & 0xffu);
  }
  return true;
}

std::string FormatIpv6(Ipv6Address::Bytes const& bytes) {
  bool mapped = std::all_of(bytes.begin(), bytes.begin() + 10, [](uint8_t b) { return b == 0; }) &&
                bytes[10] == 0xff && bytes[11] == 0xff;
  if (mapped) {
    uint32_t v4 = uint32_t{bytes[12]} << 24 | uint32_t{bytes[13]} << 16 | uint32_t{bytes[14]} << 8 |
                  uint32_t{bytes[15]};
    return "::ffff:" + FormatIpv4(v4);
  }

  unsigned groups[kIpv6Groups];
  for (int i = 0; i < kIpv6Groups; ++i) groups[i] = unsigned{bytes[2 * i]} << 8 | bytes[2 * i + 1];

  // The longest run of zero groups, the leftmost one on a tie; a single zero
  // group is written out.
  int best_start = -1;
  int best_length = 1;
  for (int i = 0; i < kIpv6Groups;) {
    if (groups[i] != 0) {
      ++i;
      continue;
    }
    int j = i;
    while (j < kIpv6Groups && groups[j] == 0) ++j;
    if (j - i > best_length) {
      best_start = i;
      best_length = j - i;
    }
    i = j;
  }

  std::string text;
  for (int i = 0; i < kIpv6Groups; ++i) {
    if (i == best_start) {
      text += "::";
      i += best_length - 1;
      continue;
    }
    if (!text.empty() && text.back() != ':') text += ':';
    char buf[8];
    std::snprintf(buf, sizeof buf, "%x", groups[i]);
    text += buf;
  }
  return text;
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
