#include "hostctl/network_types.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace HostCtl::Network {
namespace {

using Lib::HostCtlException;

struct Good {
  std::string text;
  std::string canonical;
};

// Runs the constructor on bad text and returns the exception's message.
template <typename T>
std::string RejectionOf(std::string const& text) {
  try {
    T value(text);
  } catch (HostCtlException const& e) {
    return e.message;
  }
  ADD_FAILURE() << "accepted: " << text;
  return {};
}

TEST(Ipv4AddressTest, ParsesToCanonicalText) {
  std::vector<Good> const cases = {
      {"0.0.0.0", "0.0.0.0"},         {"255.255.255.255", "255.255.255.255"},
      {"10.0.0.1", "10.0.0.1"},       {"192.168.100.200", "192.168.100.200"},
  };
  for (Good const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(Ipv4Address::IsValidAddress(c.text));
    Ipv4Address const address(c.text);
    EXPECT_EQ(address.GetStringAddress(), c.canonical);
    EXPECT_EQ(Ipv4Address(address.GetStringAddress()), address);
  }
  EXPECT_EQ(Ipv4Address("10.0.0.1").GetValue(), 0x0a000001u);
  EXPECT_EQ(Ipv4Address(), Ipv4Address("0.0.0.0"));
}

TEST(Ipv4AddressTest, RejectsMalformedText) {
  std::vector<std::string> const cases = {
      "", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.1000", "01.2.3.4", "1.2.3.04", "1..3.4",
      ".1.2.3", "1.2.3.4.", " 1.2.3.4", "1.2.3.4 ", "1.2.3.4x", "+1.2.3.4", "1.-2.3.4",
      "0x7f.0.0.1", "2130706433", "1.2.3.4/24", "::1", "::ffff:1.2.3.4", std::string("1.2.3.4\0", 8),
  };
  for (std::string const& text : cases) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Ipv4Address::IsValidAddress(text));
    EXPECT_EQ(RejectionOf<Ipv4Address>(text), "Invalid IPv4 address: " + text);
  }
}

TEST(Ipv6AddressTest, ParsesToCompressedText) {
  std::vector<Good> const cases = {
      {"::", "::"},
      {"0:0:0:0:0:0:0:0", "::"},
      {"::1", "::1"},
      {"1::", "1::"},
      {"2001:DB8::1", "2001:db8::1"},
      {"2001:0db8:0000:0000:0000:0000:0000:0001", "2001:db8::1"},
      {"2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},  // one zero group stays
      {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},     // leftmost on a tie
      {"2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},           // longest run wins
      {"1:0:0:2:0:0:0:0", "1:0:0:2::"},
      {"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
      {"::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
      {"abcd:EF01:2345:6789:abcd:ef01:2345:6789", "abcd:ef01:2345:6789:abcd:ef01:2345:6789"},
      {"::ffff:192.0.2.1", "::ffff:192.0.2.1"},
      {"::FFFF:c000:0201", "::ffff:192.0.2.1"},
      {"64:ff9b::192.0.2.33", "64:ff9b::c000:221"},
      {"1:2:3:4:5:6:1.2.3.4", "1:2:3:4:5:6:102:304"},
  };
  for (Good const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(Ipv6Address::IsValidAddress(c.text));
    Ipv6Address const address(c.text);
    EXPECT_EQ(address.GetStringAddress(), c.canonical);
    EXPECT_EQ(Ipv6Address(address.GetStringAddress()), address);
  }
  EXPECT_EQ(Ipv6Address(), Ipv6Address("::"));
}

TEST(Ipv6AddressTest, RejectsMalformedText) {
  std::vector<std::string> const cases = {
      "", ":", ":::", "::g", "g::", "1::2::3", "1:::2", "1:2:3:4:5:6:7", "1:2:3:4:5:6:7:8:9",
      "1:2:3:4:5:6:7:8::", "::1:2:3:4:5:6:7:8", "1:2:3::4:5:6:7:8", "12345::", "0x1::", "-1::",
      ":1::", "1::2:", ":1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8:", "fe80::1%eth0", "[::1]", " ::1",
      "::1 ", "::1/64", "1.2.3.4", "::1.2.3", "::1.2.3.256", "::01.2.3.4", "1.2.3.4::",
      "::1.2.3.4:5", "1:2:3:4:5:6:7:1.2.3.4", std::string("::1\0", 4),
  };
  for (std::string const& text : cases) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Ipv6Address::IsValidAddress(text));
    EXPECT_EQ(RejectionOf<Ipv6Address>(text), "Invalid IPv6 address: " + text);
  }
}

// Every placement of zero groups survives text and back, whatever run the
// compression picks.
TEST(Ipv6AddressTest, EveryZeroPatternRoundTrips) {
  for (unsigned pattern = 0; pattern < 256; ++pattern) {
    Ipv6Address::Bytes bytes{};
    for (int group = 0; group < 8; ++group) {
      if (pattern & (1u << group)) bytes[2 * group + 1] = static_cast<uint8_t>(group + 1);
    }
    Ipv6Address const address(bytes);
    std::string const text = address.GetStringAddress();
    SCOPED_TRACE(text);
    ASSERT_TRUE(Ipv6Address::IsValidAddress(text));
    EXPECT_EQ(Ipv6Address(text), address);
    EXPECT_EQ(text.find(":::"), std::string::npos);
  }
}

// A text is of one family only: that is how a name server's family is told.
TEST(IpAddressTest, FamiliesDoNotOverlap) {
  for (std::string text : {"10.0.0.1", "0.0.0.0", "255.255.255.255"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(Ipv4Address::IsValidAddress(text));
    EXPECT_FALSE(Ipv6Address::IsValidAddress(text));
  }
  for (std::string text : {"::", "::1", "fe80::1", "::ffff:10.0.0.1", "2001:db8::10.0.0.1"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(Ipv6Address::IsValidAddress(text));
    EXPECT_FALSE(Ipv4Address::IsValidAddress(text));
  }
}

TEST(IpAddressTest, WorksThroughTheBase) {
  std::vector<std::unique_ptr<IpAddress>> addresses;
  addresses.emplace_back(new Ipv4Address("192.0.2.7"));
  addresses.emplace_back(new Ipv6Address("2001:DB8::7"));
  EXPECT_EQ(addresses[0]->GetFamily(), IpAddress::Ipv4);
  EXPECT_EQ(addresses[0]->GetStringAddress(), "192.0.2.7");
  EXPECT_EQ(addresses[1]->GetFamily(), IpAddress::Ipv6);
  EXPECT_EQ(addresses[1]->GetStringAddress(), "2001:db8::7");
}

TEST(Ipv4NetworkTest, ParsesAddressAndPrefix) {
  struct Case {
    std::string text, network, netmask, canonical;
  };
  std::vector<Case> const cases = {
      {"10.0.0.0/8", "10.0.0.0", "255.0.0.0", "10.0.0.0/8"},
      {"10.1.2.3/8", "10.0.0.0", "255.0.0.0", "10.0.0.0/8"},
      {"0.0.0.0/0", "0.0.0.0", "0.0.0.0", "0.0.0.0/0"},
      {"172.16.5.4/20", "172.16.0.0", "255.255.240.0", "172.16.0.0/20"},
      {"1.2.3.5/31", "1.2.3.4", "255.255.255.254", "1.2.3.4/31"},
      {"192.168.1.77/32", "192.168.1.77", "255.255.255.255", "192.168.1.77/32"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(Ipv4Network::IsValidAddressAndNetmask(c.text));
    Ipv4Network const network(c.text);
    EXPECT_EQ(network.GetAddress().GetStringAddress(), c.text.substr(0, c.text.find('/')));
    EXPECT_EQ(network.GetNetwork().GetStringAddress(), c.network);
    EXPECT_EQ(network.GetNetmask().GetStringAddress(), c.netmask);
    EXPECT_EQ(network.GetStringAddress(), c.canonical);
    EXPECT_EQ(Ipv4Network(network.GetStringAddress()), network);
  }
}

TEST(Ipv4NetworkTest, RejectsMalformedText) {
  std::vector<std::string> const cases = {
      "", "10.0.0.0", "10.0.0.0/", "/8", "10.0.0.0/33", "10.0.0.0/1000", "10.0.0.0/-1",
      "10.0.0.0/+8", "10.0.0.0/08", "10.0.0.0/a", "10.0.0.0/8/8", "10.0.0/8", "10.0.0.256/8",
      "10.0.0.0 /8", "10.0.0.0/8 ", "::/0",
  };
  for (std::string const& text : cases) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Ipv4Network::IsValidAddressAndNetmask(text));
    EXPECT_EQ(RejectionOf<Ipv4Network>(text).rfind("Invalid IPv4 network: " + text + " (", 0), 0u);
  }
  EXPECT_EQ(RejectionOf<Ipv4Network>("10.0.0.0/33"),
            "Invalid IPv4 network: 10.0.0.0/33 (the prefix length must be a number from 0 to 32)");
  EXPECT_EQ(RejectionOf<Ipv4Network>("10.0.0.256/8"),
            "Invalid IPv4 network: 10.0.0.256/8 (10.0.0.256 is not a valid IPv4 address)");
  EXPECT_THROW(Ipv4Network(Ipv4Address(), 33), HostCtlException);
}

TEST(Ipv4NetworkTest, EqualWhenNamingTheSameNetwork) {
  EXPECT_EQ(Ipv4Network(), Ipv4Network("0.0.0.0/0"));
  EXPECT_EQ(Ipv4Network("10.1.2.3/8"), Ipv4Network("10.0.0.0/8"));
  EXPECT_FALSE(Ipv4Network("10.0.0.0/8") == Ipv4Network("10.0.0.0/16"));
  EXPECT_FALSE(Ipv4Network("10.0.0.0/8") == Ipv4Network("11.0.0.0/8"));
}

TEST(Ipv4NetworkTest, MaskHasPrefixLengthLeadingOnes) {
  for (unsigned length = 0; length <= 32; ++length) {
    SCOPED_TRACE(length);
    uint32_t const mask = Ipv4Network(Ipv4Address(0xffffffffu), length).GetNetmask().GetValue();
    for (unsigned bit = 0; bit < 32; ++bit) {
      bool const set = mask & (0x80000000u >> bit);
      ASSERT_EQ(set, bit < length) << "bit " << bit;
    }
  }
}

TEST(Ipv6NetworkTest, ParsesAddressAndPrefix) {
  struct Case {
    std::string text, address, network, canonical;
    unsigned prefix;
  };
  std::vector<Case> const cases = {
      {"2001:db8::1/64", "2001:db8::1", "2001:db8::", "2001:db8::1/64", 64},
      {"::/0", "::", "::", "::/0", 0},
      {"fe80::1:2:3:4/10", "fe80::1:2:3:4", "fe80::", "fe80::1:2:3:4/10", 10},
      {"2001:DB8:0:0::5/128", "2001:db8::5", "2001:db8::5", "2001:db8::5/128", 128},
      {"1:2:3:4:5:6:7:9/127", "1:2:3:4:5:6:7:9", "1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:9/127", 127},
      {"::ffff:10.0.0.1/96", "::ffff:10.0.0.1", "::ffff:0.0.0.0", "::ffff:10.0.0.1/96", 96},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(Ipv6Network::IsValidAddressAndNetmask(c.text));
    Ipv6Network const network(c.text);
    EXPECT_EQ(network.GetAddress().GetStringAddress(), c.address);
    EXPECT_EQ(network.GetNetwork().GetStringAddress(), c.network);
    EXPECT_EQ(network.GetNetmask(), c.prefix);
    EXPECT_EQ(network.GetStringAddress(), c.canonical);
    EXPECT_EQ(Ipv6Network(network.GetStringAddress()), network);
    EXPECT_EQ(network.GetIpv6AddressType(), Ipv6Network::Ipv6AddressType::Static);
    EXPECT_EQ(network.GetIpv6AddressStatus(), Ipv6Network::Ipv6AddressStatus::Preferred);
  }
}

TEST(Ipv6NetworkTest, RejectsMalformedText) {
  std::vector<std::string> const cases = {
      "", "2001:db8::1", "2001:db8::1/", "/64", "2001:db8::1/129", "2001:db8::/064",
      "2001:db8::/ 64", "::g/64", "1::2::3/64", "2001:db8::1/64/64", "fe80::1%eth0/64", "10.0.0.0/8",
  };
  for (std::string const& text : cases) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Ipv6Network::IsValidAddressAndNetmask(text));
    EXPECT_EQ(RejectionOf<Ipv6Network>(text).rfind("Invalid IPv6 network: " + text + " (", 0), 0u);
  }
  EXPECT_THROW(Ipv6Network(Ipv6Address(), 129), HostCtlException);
}

TEST(Ipv6NetworkTest, EqualityIgnoresTypeAndStatus) {
  using Type = Ipv6Network::Ipv6AddressType;
  using Status = Ipv6Network::Ipv6AddressStatus;
  Ipv6Network learned(Ipv6Address("2001:db8::1"), 64, Type::Autoconf, Status::Tentative);
  EXPECT_EQ(learned.GetIpv6AddressType(), Type::Autoconf);
  EXPECT_EQ(learned.GetIpv6AddressStatus(), Status::Tentative);
  EXPECT_EQ(learned, Ipv6Network("2001:db8::1/64"));
  EXPECT_FALSE(learned == Ipv6Network("2001:db8::2/64"));
  EXPECT_FALSE(learned == Ipv6Network("2001:db8::1/48"));
  learned.SetIpv6AddressStatus(Status::Deprecated);
  EXPECT_EQ(learned.GetIpv6AddressStatus(), Status::Deprecated);

  // The numbers that the interface commands turn into words.
  EXPECT_EQ(static_cast<uint32_t>(Type::Static), 0u);
  EXPECT_EQ(static_cast<uint32_t>(Type::Autoconf), 7u);
  EXPECT_EQ(static_cast<uint32_t>(Type::Dhcp), 9u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Tentative), 2u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Duplicated), 3u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Deprecated), 5u);
}

TEST(Ipv6NetworkTest, NetmaskFromNumber) {
  std::vector<std::pair<unsigned, std::string>> const cases = {
      {0, "::"},
      {1, "8000::"},
      {64, "ffff:ffff:ffff:ffff::"},
      {65, "ffff:ffff:ffff:ffff:8000::"},
      {127, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe"},
      {128, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
  };
  for (auto const& [length, text] : cases) {
    SCOPED_TRACE(length);
    EXPECT_EQ(Ipv6Network::NetmaskFromNumber(length).GetStringAddress(), text);
  }
  for (unsigned length = 0; length <= 128; ++length) {
    SCOPED_TRACE(length);
    Ipv6Address::Bytes const mask = Ipv6Network::NetmaskFromNumber(length).GetBytes();
    for (unsigned bit = 0; bit < 128; ++bit) {
      bool const set = mask[bit / 8] & (0x80u >> (bit % 8));
      ASSERT_EQ(set, bit < length) << "bit " << bit;
    }
  }
  EXPECT_THROW(Ipv6Network::NetmaskFromNumber(129), HostCtlException);
}

TEST(MacAddressTest, ParsesBothSeparators) {
  std::vector<Good> const cases = {
      {"00:11:22:33:44:55", "00:11:22:33:44:55"},
      {"AA:BB:CC:DD:EE:FF", "aa:bb:cc:dd:ee:ff"},
      {"aa-bb-cc-dd-ee-0f", "aa:bb:cc:dd:ee:0f"},
      {"01:00:5E:00:00:fb", "01:00:5e:00:00:fb"},
  };
  for (Good const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(MacAddress::IsValid(c.text));
    MacAddress const mac(c.text);
    EXPECT_EQ(mac.GetStringAddress(), c.canonical);
    EXPECT_EQ(MacAddress(mac.GetStringAddress()), mac);
  }
  EXPECT_EQ(MacAddress().GetStringAddress(), "00:00:00:00:00:00");
}

TEST(MacAddressTest, RejectsMalformedText) {
  std::vector<std::string> const cases = {
      "", "00:11:22:33:44", "00:11:22:33:44:55:66", "0:11:22:33:44:55", "00:11:22:33:44:5",
      "000:11:22:33:44:55", "00-11:22:33:44:55", "00:11:22:33:44-55", "00:11:22:33:44:5g",
      "001122334455", "0011.2233.4455", " 00:11:22:33:44:55", "00:11:22:33:44:55 ",
      "00::11:22:33:44:5", "+0:11:22:33:44:55", "00_11_22_33_44_55",
  };
  for (std::string const& text : cases) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(MacAddress::IsValid(text));
    EXPECT_EQ(RejectionOf<MacAddress>(text), "Invalid MAC address: " + text);
  }
}

TEST(IpConfigTest, ChangedCopyLeavesOriginal) {
  IpConfig original;
  original.SetIpv4Address(Ipv4Address("192.168.1.10"));
  original.SetIpv4Netmask(Ipv4Address("255.255.255.0"));
  original.SetUseIpv6(true);
  original.AddIpv6Network(Ipv6Network("2001:db8::1/64"));
  IpConfig const snapshot = original;

  IpConfig copy(original);
  copy.SetUseDhcp(true);
  copy.SetDhcpDns(true);
  copy.SetIpv4Gateway(Ipv4Address("192.168.1.1"));
  copy.SetUseIpv6(false);
  copy.SetUseIpv6Dhcp(true);
  copy.SetUseIpv6RouterAdvertised(true);
  copy.SetIpv6DhcpDns(true);
  copy.SetIpv6Gateway(Ipv6Address("fe80::1"));
  copy.AddIpv6Network(Ipv6Network("2001:db8::2/64"));
  copy.RemoveIpv6Network(Ipv6Network("2001:db8::1/64"));
  IpConfig assigned;
  assigned = copy;
  assigned.SetIpv4UseNone();

  EXPECT_EQ(original, snapshot);
  EXPECT_FALSE(copy == snapshot);
  EXPECT_TRUE(copy.GetUseDhcp());
  EXPECT_EQ(original.GetIpv4Address().GetStringAddress(), "192.168.1.10");
  ASSERT_EQ(original.GetIpv6Network().size(), 1u);
  EXPECT_EQ(original.GetIpv6Network()[0].GetStringAddress(), "2001:db8::1/64");

  std::vector<Ipv6Network> list = original.GetIpv6Network();
  list.clear();
  EXPECT_EQ(original.GetIpv6Network().size(), 1u);
}

TEST(IpConfigTest, Ipv4ModeFollowsTheLastSelection) {
  IpConfig config;
  EXPECT_TRUE(config.GetIpv4UseNone());
  EXPECT_FALSE(config.GetUseDhcp());

  config.SetUseDhcp(true);
  EXPECT_TRUE(config.GetUseDhcp());
  EXPECT_FALSE(config.GetIpv4UseNone());

  config.SetIpv4Address(Ipv4Address("10.0.0.5"));  // static, though DHCP was on
  config.SetIpv4Netmask(Ipv4Address("255.255.255.252"));
  config.SetIpv4Gateway(Ipv4Address("10.0.0.6"));
  EXPECT_FALSE(config.GetUseDhcp());
  EXPECT_FALSE(config.GetIpv4UseNone());
  EXPECT_EQ(config.GetIpv4Broadcast().GetStringAddress(), "10.0.0.7");

  config.SetIpv4UseNone();
  EXPECT_TRUE(config.GetIpv4UseNone());
  EXPECT_EQ(config.GetIpv4Address(), Ipv4Address());
  EXPECT_EQ(config.GetIpv4Broadcast(), Ipv4Address());
  EXPECT_EQ(config.GetIpv4Gateway().GetStringAddress(), "10.0.0.6");

  config.SetUseDhcp(true);
  EXPECT_FALSE(config.GetIpv4UseNone());
}

TEST(IpConfigTest, Ipv6AddressesKeepOrderAndRefuseMistakes) {
  IpConfig config;
  for (char const* text : {"fe80::5/64", "2001:db8::9/64", "2001:db8::1/48"}) {
    config.AddIpv6Network(Ipv6Network(text));
  }
  auto texts = [&config] {
    std::vector<std::string> out;
    for (Ipv6Network const& n : config.GetIpv6Network()) out.push_back(n.GetStringAddress());
    return out;
  };
  EXPECT_EQ(texts(), (std::vector<std::string>{"fe80::5/64", "2001:db8::9/64", "2001:db8::1/48"}));

  EXPECT_THROW(config.AddIpv6Network(Ipv6Network("2001:DB8::9/64")), HostCtlException);
  EXPECT_THROW(config.AddIpv6Network(Ipv6Network("2001:db8::9/128")), HostCtlException);
  try {
    config.RemoveIpv6Network(Ipv6Network("2001:db8::9/56"));
    ADD_FAILURE() << "removed an address with another prefix length";
  } catch (HostCtlException const& e) {
    EXPECT_NE(e.message.find("2001:db8::9/56"), std::string::npos) << e.message;
  }
  EXPECT_EQ(texts().size(), 3u);

  config.RemoveIpv6Network(Ipv6Network("2001:db8:0::9/64"));
  EXPECT_EQ(texts(), (std::vector<std::string>{"fe80::5/64", "2001:db8::1/48"}));
  config.AddIpv6Network(Ipv6Network("2001:db8::9/64"));
  EXPECT_EQ(texts().back(), "2001:db8::9/64");
}

// A port-group connection point, which has no opaque network of its own.
class PortGroupPoint : public ConnectionPoint {
 public:
  ConnectionType GetConnectionType() const override { return PortGroupConnection; }
  std::string GetPortGroupName() const override { return "Management"; }
  DVPortParam GetDVPortParam() const override { return {}; }
  std::string GetPortsetName() override { return "vSwitch0"; }
  bool IsValid() override { return true; }
};

TEST(ConnectionPointTest, OpaqueNetworkParamDefaultsToEmptyStrings) {
  std::unique_ptr<Lib::HostCtlObject> owner(new PortGroupPoint);
  PortGroupPoint other;
  auto const& point = dynamic_cast<ConnectionPoint const&>(*owner);
  OpaqueNetworkParam const& param = point.GetOpaqueNetworkParam();
  EXPECT_EQ(param, (OpaqueNetworkParam{"", "", ""}));
  EXPECT_EQ(&param, &other.GetOpaqueNetworkParam());
}

}  // namespace
}  // namespace HostCtl::Network
