#include "hostctl/network_types.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace HostCtl::Network {
namespace {

using Lib::HostCtlException;
using Type = Ipv6Network::Ipv6AddressType;
using Status = Ipv6Network::Ipv6AddressStatus;
using GoodTexts = std::vector<std::pair<std::string, std::string>>;  // text, canonical text

// A list of texts written with one blank between them.
std::vector<std::string> Texts(std::string const& list) {
  std::istringstream in(list);
  std::vector<std::string> texts;
  for (std::string text; in >> text;) texts.push_back(text);
  return texts;
}

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

// Every good text parses to its canonical text, which parses back to an equal
// object. Every bad text, and every good one with blanks, a NUL or a stray
// character around it, is refused by the predicate and by the constructor,
// whose message starts with `message` and the text.
template <typename T>
void CheckParser(bool (*is_valid)(std::string const&), std::string const& message,
                 GoodTexts const& good, std::vector<std::string> bad) {
  bad.push_back("");
  for (auto const& [text, canonical] : good) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(is_valid(text));
    T const value(text);
    EXPECT_EQ(value.GetStringAddress(), canonical);
    EXPECT_TRUE(T(canonical) == value);
    for (std::string decorated : {" " + text, text + " ", text + "x", text + '\0'}) {
      bad.push_back(decorated);
    }
  }
  for (std::string const& text : bad) {
    SCOPED_TRACE("[" + text + "]");
    EXPECT_FALSE(is_valid(text));
    EXPECT_EQ(RejectionOf<T>(text).rfind(message + text, 0), 0u) << RejectionOf<T>(text);
  }
}

TEST(TextFormsTest, Ipv4Address) {
  CheckParser<Ipv4Address>(&Ipv4Address::IsValidAddress, "Invalid IPv4 address: ",
                           {{"0.0.0.0", "0.0.0.0"},
                            {"255.255.255.255", "255.255.255.255"},
                            {"192.168.100.9", "192.168.100.9"}},
                           Texts("1.2.3 1.2.3.4.5 1.2.3.256 1.2.3.1000 01.2.3.4 1.2.3.04 1..3.4 "
                                 ".1.2.3 1.2.3.4. +1.2.3.4 1.-2.3.4 0x7f.0.0.1 2130706433 "
                                 "1.2.3.4/24 ::1 ::ffff:1.2.3.4"));
  EXPECT_EQ(RejectionOf<Ipv4Address>("1.2.3.256"), "Invalid IPv4 address: 1.2.3.256");
  EXPECT_EQ(Ipv4Address("10.0.0.1").GetValue(), 0x0a000001u);
  EXPECT_EQ(Ipv4Address(), Ipv4Address("0.0.0.0"));
}

TEST(TextFormsTest, Ipv6AddressCompressed) {
  CheckParser<Ipv6Address>(
      &Ipv6Address::IsValidAddress, "Invalid IPv6 address: ",
      {
          {"::", "::"},
          {"0:0:0:0:0:0:0:0", "::"},
          {"::1", "::1"},
          {"1::", "1::"},
          {"2001:0DB8:0000:0000:0000:0000:0000:0001", "2001:db8::1"},
          {"2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},  // one zero group stays
          {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},     // leftmost run on a tie
          {"2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},           // longest run
          {"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
          {"::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
          {"::FFFF:c000:0201", "::ffff:192.0.2.1"},
          {"64:ff9b::192.0.2.33", "64:ff9b::c000:221"},  // only ::ffff:0:0/96 is dotted
          {"::ff00:1.2.3.4", "::ff00:102:304"},
          {"::1:ffff:1.2.3.4", "::1:ffff:102:304"},
          {"1:2:3:4:5:6:1.2.3.4", "1:2:3:4:5:6:102:304"},
          // Zero in the first 96 bits is not the deprecated IPv4-compatible form.
          {"::1.2.3.4", "::102:304"},
          {"::0.1.0.0", "::1:0"},
          {"::0:0:0:0:0:0:1", "::1"},
      },
      Texts(": ::: ::g g:: 1::2::3 1:::2 1:2:3:4:5:6:7 1:2:3:4:5:6:7:8:9 1:2:3:4:5:6:7:8:: "
            "::1:2:3:4:5:6:7:8 1:2:3::4:5:6:7:8 12345:: 0x1:: -1:: :1:: 1::2: :1:2:3:4:5:6:7:8 "
            "1:2:3:4:5:6:7:8: fe80::1%eth0 [::1] ::1/64 1.2.3.4 ::1.2.3 ::1.2.3.256 ::01.2.3.4 "
            "1.2.3.4:: ::1.2.3.4:5 1:2:3:4:5:6:7:1.2.3.4"));
  EXPECT_EQ(Ipv6Address(), Ipv6Address("::"));
}

// Every placement of zero groups survives text and back, whatever run the
// compression picks.
TEST(TextFormsTest, Ipv6EveryZeroPatternRoundTrips) {
  for (unsigned pattern = 0; pattern < 256; ++pattern) {
    Ipv6Address::Bytes bytes{};
    for (int group = 0; group < 8; ++group) {
      if (pattern & (1u << group)) bytes[2 * group + 1] = static_cast<uint8_t>(group + 1);
    }
    std::string const text = Ipv6Address(bytes).GetStringAddress();
    SCOPED_TRACE(text);
    ASSERT_TRUE(Ipv6Address::IsValidAddress(text));
    EXPECT_EQ(Ipv6Address(text), Ipv6Address(bytes));
  }
}

TEST(TextFormsTest, Ipv4Network) {
  CheckParser<Ipv4Network>(&Ipv4Network::IsValidAddressAndNetmask, "Invalid IPv4 network: ",
                           {{"10.0.0.0/8", "10.0.0.0/8"},
                            {"10.1.2.3/8", "10.0.0.0/8"},
                            {"0.0.0.0/0", "0.0.0.0/0"},
                            {"192.168.1.77/32", "192.168.1.77/32"}},
                           Texts("10.0.0.0 10.0.0.0/ /8 10.0.0.0/33 10.0.0.0/1000 10.0.0.0/-1 "
                                 "10.0.0.0/+8 10.0.0.0/08 10.0.0.0/a 10.0.0.0/8/8 10.0.0/8 "
                                 "10.0.0.256/8 ::/0"));
  EXPECT_EQ(RejectionOf<Ipv4Network>("10.0.0.0/33"),
            "Invalid IPv4 network: 10.0.0.0/33 (the prefix length must be a number from 0 to 32)");
  EXPECT_EQ(RejectionOf<Ipv4Network>("10.0.0.256/8"),
            "Invalid IPv4 network: 10.0.0.256/8 (10.0.0.256 is not a valid IPv4 address)");
  EXPECT_THROW(Ipv4Network(Ipv4Address(), 33), HostCtlException);
}

TEST(TextFormsTest, Ipv6Network) {
  CheckParser<Ipv6Network>(&Ipv6Network::IsValidAddressAndNetmask, "Invalid IPv6 network: ",
                           {{"2001:DB8::1/64", "2001:db8::1/64"},
                            {"::/0", "::/0"},
                            {"2001:db8:0:0::5/128", "2001:db8::5/128"},
                            {"::ffff:10.0.0.1/96", "::ffff:10.0.0.1/96"}},
                           Texts("2001:db8::1 2001:db8::1/ /64 2001:db8::1/129 2001:db8::/064 "
                                 "::g/64 1::2::3/64 2001:db8::1/64/64 fe80::1%eth0/64 10.0.0.0/8"));
  EXPECT_THROW(Ipv6Network(Ipv6Address(), 129), HostCtlException);
}

TEST(TextFormsTest, MacAddress) {
  CheckParser<MacAddress>(
      &MacAddress::IsValid, "Invalid MAC address: ",
      {{"00:11:22:33:44:55", "00:11:22:33:44:55"},
       {"AA:BB:CC:DD:EE:FF", "aa:bb:cc:dd:ee:ff"},
       {"01-00-5E-00-00-fb", "01:00:5e:00:00:fb"}},
      Texts("00:11:22:33:44 00:11:22:33:44:55:66 0:11:22:33:44:55 00:11:22:33:44:5 "
            "000:11:22:33:44:55 00-11:22:33:44:55 00:11:22:33:44-55 00:11:22:33:44:5g "
            "001122334455 0011.2233.4455 00::11:22:33:44:5 +0:11:22:33:44:55 00_11_22_33_44_55"));
  EXPECT_EQ(MacAddress().GetStringAddress(), "00:00:00:00:00:00");
}

// A text is of one family only: that is how a name server's family is told.
TEST(IpAddressTest, FamiliesDoNotOverlap) {
  for (std::string const& text : Texts("10.0.0.1 0.0.0.0 255.255.255.255")) {
    EXPECT_FALSE(Ipv6Address::IsValidAddress(text)) << text;
  }
  for (std::string const& text : Texts(":: ::1 fe80::1 ::ffff:10.0.0.1 2001:db8::10.0.0.1")) {
    EXPECT_FALSE(Ipv4Address::IsValidAddress(text)) << text;
  }
  std::unique_ptr<IpAddress> v4(new Ipv4Address("192.0.2.7"));
  std::unique_ptr<IpAddress> v6(new Ipv6Address("2001:DB8::7"));
  EXPECT_EQ(v4->GetFamily(), IpAddress::Ipv4);
  EXPECT_EQ(v4->GetStringAddress(), "192.0.2.7");
  EXPECT_EQ(v6->GetFamily(), IpAddress::Ipv6);
  EXPECT_EQ(v6->GetStringAddress(), "2001:db8::7");
}

TEST(Ipv4NetworkTest, NetworkAndMask) {
  struct Case {
    std::string text, address, network, netmask;
  };
  for (Case const& c : std::vector<Case>{
           {"10.1.2.3/8", "10.1.2.3", "10.0.0.0", "255.0.0.0"},
           {"172.16.5.4/20", "172.16.5.4", "172.16.0.0", "255.255.240.0"},
           {"1.2.3.5/31", "1.2.3.5", "1.2.3.4", "255.255.255.254"},
           {"0.0.0.0/0", "0.0.0.0", "0.0.0.0", "0.0.0.0"},
       }) {
    SCOPED_TRACE(c.text);
    Ipv4Network const network(c.text);
    EXPECT_EQ(network.GetAddress().GetStringAddress(), c.address);
    EXPECT_EQ(network.GetNetwork().GetStringAddress(), c.network);
    EXPECT_EQ(network.GetNetmask().GetStringAddress(), c.netmask);
  }
  EXPECT_EQ(Ipv4Network(), Ipv4Network("0.0.0.0/0"));
  EXPECT_EQ(Ipv4Network("10.1.2.3/8"), Ipv4Network("10.0.0.0/8"));
  EXPECT_FALSE(Ipv4Network("10.0.0.0/8") == Ipv4Network("10.0.0.0/16"));
  EXPECT_FALSE(Ipv4Network("10.0.0.0/8") == Ipv4Network("11.0.0.0/8"));

  for (unsigned length = 0; length <= 32; ++length) {
    uint32_t const mask = Ipv4Network(Ipv4Address(0xffffffffu), length).GetNetmask().GetValue();
    for (unsigned bit = 0; bit < 32; ++bit) {
      ASSERT_EQ((mask & (0x80000000u >> bit)) != 0, bit < length) << length << " bit " << bit;
    }
  }
}

TEST(Ipv6NetworkTest, AddressPrefixAndNetwork) {
  Ipv6Network const network("2001:db8::7:1/64");
  EXPECT_EQ(network.GetAddress(), Ipv6Address("2001:db8::7:1"));
  EXPECT_EQ(network.GetNetmask(), 64u);
  EXPECT_EQ(network.GetNetwork(), Ipv6Address("2001:db8::"));
  EXPECT_EQ(Ipv6Network("1:2:3:4:5:6:7:9/127").GetNetwork(), Ipv6Address("1:2:3:4:5:6:7:8"));
  EXPECT_EQ(Ipv6Network("fe80::1:2:3:4/10").GetNetwork(), Ipv6Address("fe80::"));
  EXPECT_EQ(network.GetIpv6AddressType(), Type::Static);
  EXPECT_EQ(network.GetIpv6AddressStatus(), Status::Preferred);
}

TEST(Ipv6NetworkTest, EqualityIgnoresTypeAndStatus) {
  Ipv6Network learned(Ipv6Address("2001:db8::1"), 64, Type::Autoconf, Status::Tentative);
  EXPECT_EQ(learned.GetIpv6AddressType(), Type::Autoconf);
  EXPECT_EQ(learned.GetIpv6AddressStatus(), Status::Tentative);
  EXPECT_EQ(learned, Ipv6Network("2001:db8::1/64"));
  EXPECT_FALSE(learned == Ipv6Network("2001:db8::2/64"));
  EXPECT_FALSE(learned == Ipv6Network("2001:db8::1/48"));

  // The numbers that the interface commands turn into words.
  EXPECT_EQ(static_cast<uint32_t>(Type::Static), 0u);
  EXPECT_EQ(static_cast<uint32_t>(Type::Autoconf), 7u);
  EXPECT_EQ(static_cast<uint32_t>(Type::Dhcp), 9u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Tentative), 2u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Duplicated), 3u);
  EXPECT_EQ(static_cast<uint32_t>(Status::Deprecated), 5u);
}

TEST(Ipv6NetworkTest, NetmaskFromNumber) {
  for (auto const& [length, text] : std::vector<std::pair<unsigned, std::string>>{
           {0, "::"},
           {1, "8000::"},
           {64, "ffff:ffff:ffff:ffff::"},
           {65, "ffff:ffff:ffff:ffff:8000::"},
           {127, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe"},
           {128, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
       }) {
    EXPECT_EQ(Ipv6Network::NetmaskFromNumber(length).GetStringAddress(), text) << length;
  }
  for (unsigned length = 0; length <= 128; ++length) {
    Ipv6Address::Bytes const mask = Ipv6Network::NetmaskFromNumber(length).GetBytes();
    for (unsigned bit = 0; bit < 128; ++bit) {
      ASSERT_EQ((mask[bit / 8] & (0x80u >> (bit % 8))) != 0, bit < length) << length << " " << bit;
    }
  }
  EXPECT_THROW(Ipv6Network::NetmaskFromNumber(129), HostCtlException);
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
  std::vector<Ipv6Network> list = original.GetIpv6Network();
  list.clear();

  EXPECT_EQ(original, snapshot);
  EXPECT_FALSE(copy == snapshot);
  EXPECT_TRUE(copy.GetUseDhcp());
  EXPECT_EQ(original.GetIpv4Address().GetStringAddress(), "192.168.1.10");
  ASSERT_EQ(original.GetIpv6Network().size(), 1u);
  EXPECT_EQ(original.GetIpv6Network()[0].GetStringAddress(), "2001:db8::1/64");
}

TEST(IpConfigTest, Ipv4ModeFollowsTheLastSelection) {
  IpConfig config;
  EXPECT_TRUE(config.GetIpv4UseNone());
  EXPECT_FALSE(config.GetUseDhcp());

  config.SetUseDhcp(true);
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
}

TEST(IpConfigTest, Ipv6AddressesKeepOrderAndRefuseMistakes) {
  IpConfig config;
  for (std::string const& text : Texts("fe80::5/64 2001:db8::9/64 2001:db8::1/48")) {
    config.AddIpv6Network(Ipv6Network(text));
  }
  auto texts = [&config] {
    std::string out;
    for (Ipv6Network const& n : config.GetIpv6Network()) out += n.GetStringAddress() + " ";
    return out;
  };
  EXPECT_EQ(texts(), "fe80::5/64 2001:db8::9/64 2001:db8::1/48 ");

  EXPECT_THROW(config.AddIpv6Network(Ipv6Network("2001:DB8::9/64")), HostCtlException);
  EXPECT_THROW(config.AddIpv6Network(Ipv6Network("2001:db8::9/128")), HostCtlException);
  try {
    config.RemoveIpv6Network(Ipv6Network("2001:db8::9/56"));
    ADD_FAILURE() << "removed an address with another prefix length";
  } catch (HostCtlException const& e) {
    EXPECT_NE(e.message.find("2001:db8::9/56"), std::string::npos) << e.message;
  }
  EXPECT_EQ(texts(), "fe80::5/64 2001:db8::9/64 2001:db8::1/48 ");

  config.RemoveIpv6Network(Ipv6Network("2001:db8:0::9/64"));
  config.AddIpv6Network(Ipv6Network("2001:db8::9/64"));
  EXPECT_EQ(texts(), "fe80::5/64 2001:db8::1/48 2001:db8::9/64 ");
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
