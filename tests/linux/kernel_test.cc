// The backend's doors to the kernel on their own: what route netlink reads
// agrees with `ip -j`, change requests reach the kernel, and its refusals
// read as before ("Cannot <what>: <reason>").
#include "kernel.h"

#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "linux_test.h"

namespace LinuxTest {
namespace {

using namespace OrvkCtl::Linux;

// The message of what `work` throws, or "" when it throws nothing.
template <class Work>
std::string Thrown(Work&& work) {
  try {
    work();
  } catch (std::exception const& error) {
    return error.what();
  }
  return {};
}

TEST(KernelAddressTest, TextsParseAndPrintBack) {
  struct Case {
    std::string text;
    int family;
    int prefix;
    std::string printed;  // AddressText of the bytes
  } const cases[] = {
      {"10.20.0.0/16", AF_INET, 16, "10.20.0.0"},
      {"10.0.0.1", AF_INET, 32, "10.0.0.1"},
      {"0.0.0.0/0", AF_INET, 0, "0.0.0.0"},
      {"default", AF_INET6, 0, "::"},
      {"2001:db8::1", AF_INET6, 128, "2001:db8::1"},
      {"2001:db8:20::/48", AF_INET6, 48, "2001:db8:20::"},
      {"02:00:00:00:10:0a", AF_PACKET, 0, "02:00:00:00:10:0a"},
      {"FE:ff:00:00:00:01", AF_PACKET, 0, "fe:ff:00:00:00:01"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.text);
    Address const address = ParseAddr(row.text, row.family);
    EXPECT_EQ(address.prefix, row.prefix);
    EXPECT_EQ(AddressText(row.family, address.bytes, address.size), row.printed);
  }
}

TEST(KernelAddressTest, BadTextIsRefused) {
  struct Case {
    std::string text;
    int family;
  } const cases[] = {
      {"10.0.0.0/33", AF_INET},
      {"10.0.0.1/", AF_INET},
      {"10.0.0.1/8x", AF_INET},
      {"10.0.0", AF_INET},
      {"2001:db8::/129", AF_INET6},
      {"10.0.0.1", AF_INET6},
      {"2001:db8::1", AF_INET},
      {"02:00:00:00:10", AF_PACKET},
      {"02:00:00:00:10:00:11", AF_PACKET},
      {"", AF_INET},
      {"10.0.0.1/-1", AF_INET},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(
        Thrown([&] { ParseAddr(row.text, row.family); }).rfind("Invalid address " + row.text, 0),
        0u);
  }
  // Bytes of no known size print as nothing.
  unsigned char const bytes[5] = {};
  EXPECT_EQ(AddressText(AF_INET, bytes, sizeof bytes), "");
}

TEST(KernelErrorTest, RefusalsAreToldInTheSameWords) {
  struct Case {
    int error;
    std::string reason;
  } const cases[] = {
      {EEXIST, "Object exists"},
      {-EEXIST, "Object exists"},
      {ENOENT, "Object not found"},
      {ESRCH, "Object not found"},
      {ENODEV, "No such device"},
      {EINVAL, "Invalid input data or parameter"},
      {EACCES, "No Access"},
      {EOPNOTSUPP, "Operation not supported"},
      {ENETUNREACH, std::strerror(ENETUNREACH)},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.error);
    EXPECT_EQ(Thrown([&] { FailNl("do it", row.error); }), "Cannot do it: " + row.reason);
  }
}

class KernelTest : public LinuxHostTest {};

TEST_F(KernelTest, LinksAgreeWithTheKernel) {
  Shell("ip link add tbr0 type bridge && ip link set ornic1 master tbr0");
  auto const links = Links();
  auto const names = LinkNames();
  auto const kernel = IpJson("-d link show");
  ASSERT_EQ(links.size(), kernel.size());
  for (auto const& entry : kernel) {
    std::string const name = entry["ifname"];
    SCOPED_TRACE(name);
    auto at =
        std::find_if(links.begin(), links.end(), [&](auto const& l) { return l.name == name; });
    ASSERT_NE(at, links.end());
    EXPECT_EQ(at->index, entry["ifindex"].get<int>());
    EXPECT_EQ(at->mtu, entry["mtu"].get<uint32_t>());
    EXPECT_EQ(names.at(at->index), name);
    EXPECT_EQ(at->mac, entry["address"].get<std::string>());
    std::string const kind =
        entry.contains("linkinfo") ? entry["linkinfo"].value("info_kind", "") : "";
    EXPECT_EQ(at->kind, kind);
    bool const up =
        std::find(entry["flags"].begin(), entry["flags"].end(), "UP") != entry["flags"].end();
    EXPECT_EQ((at->flags & IFF_UP) != 0, up);
    int const master =
        entry.contains("master")
            ? IpJson("link show " + entry["master"].get<std::string>())[0]["ifindex"].get<int>()
            : 0;
    EXPECT_EQ(at->master, master);
  }
  auto const found = FindLink("ornic0");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->mac, "02:00:00:00:10:00");
  EXPECT_EQ(found->kind, "veth");
  EXPECT_FALSE(FindLink("nosuch"));
  EXPECT_FALSE(FindLink("a-name-longer-than-a-link-can-have"));
  EXPECT_EQ(Thrown([] { LinkIndex("nosuch", "find it"); }), "Cannot find it: No such device");
}

TEST_F(KernelTest, AddressesRoutesAndNeighborsAgreeWithTheKernel) {
  Shell(
      "ip addr add 10.9.0.1/24 dev ornic0 && ip addr add 2001:db8:9::1/64 dev ornic0 nodad && "
      "ip route add 10.20.0.0/16 via 10.9.0.5 && ip route add 10.21.0.0/16 dev ornic0 table 7 && "
      "ip neigh add 10.9.0.7 lladdr 02:00:00:00:00:07 dev ornic0 nud permanent");
  std::set<std::string> listed, kernel;
  for (auto const& address : Addresses()) {
    if (address.scope == RT_SCOPE_UNIVERSE) {
      listed.insert(address.local + "/" + std::to_string(address.prefix) + " " +
                    std::to_string(address.index));
    }
  }
  for (auto const& link : IpJson("addr show scope global")) {
    for (auto const& info : link["addr_info"]) {
      if (!info.contains("local")) continue;  // ip ends the list with an empty record
      kernel.insert(info["local"].get<std::string>() + "/" +
                    std::to_string(info["prefixlen"].get<int>()) + " " +
                    std::to_string(link["ifindex"].get<int>()));
    }
  }
  EXPECT_EQ(listed, kernel);

  auto const names = LinkNames();
  listed.clear();
  kernel.clear();
  for (auto const& route : Routes()) {
    EXPECT_EQ(route.table, RT_TABLE_MAIN);
    if (route.family != AF_INET) continue;
    listed.insert((route.destination.empty()
                       ? "default"
                       : route.destination + "/" + std::to_string(route.prefix)) +
                  " " + route.gateway + " " + names.at(route.link));
  }
  for (auto const& route : IpJson("-4 route show table main")) {
    std::string dst = route["dst"];
    if (dst.find('/') == std::string::npos && dst != "default") dst += "/32";
    kernel.insert(dst + " " + route.value("gateway", "") + " " + route["dev"].get<std::string>());
  }
  EXPECT_EQ(listed, kernel);

  bool permanent = false;
  for (auto const& neighbor : Neighbors()) {
    // What the kernel keeps unresolved (multicast groups on IPv6) is no entry.
    EXPECT_EQ(neighbor.state & (NUD_NOARP | NUD_FAILED | NUD_NONE), 0u) << neighbor.address;
    if (neighbor.address != "10.9.0.7") continue;
    permanent = true;
    EXPECT_EQ(neighbor.mac, "02:00:00:00:00:07");
    EXPECT_EQ(neighbor.state, unsigned{NUD_PERMANENT});
    EXPECT_EQ(names.at(neighbor.index), "ornic0");
  }
  EXPECT_TRUE(permanent);
}

TEST_F(KernelTest, ChangesReachTheKernelAndRefusalsSayWhy) {
  AddBridge("tbr1");
  EXPECT_EQ(IpJson("-d link show tbr1")[0]["linkinfo"]["info_kind"], "bridge");
  EXPECT_EQ(Thrown([] { AddBridge("tbr1"); }), "Cannot create bridge tbr1: Object exists");
  SetLinkMtu("tbr1", 1400);
  SetLinkUp("tbr1", true);
  SetMaster("ornic0", "tbr1");
  auto link = IpJson("link show tbr1")[0];
  EXPECT_EQ(link["mtu"], 1400);
  EXPECT_EQ(IpJson("link show ornic0")[0]["master"], "tbr1");
  struct Case {
    std::function<void()> change;
    std::string message;
  } const refusals[] = {
      {[] { SetLinkMtu("tbr1", 99999); }, "Cannot set the MTU of tbr1 to 99999: "},
      {[] { SetMaster("ornic0", "nosuch"); }, "Cannot add ornic0 to bridge nosuch: No such device"},
      {[] { SetLinkUp("nosuch", true); }, "Cannot bring up nosuch: No such device"},
      {[] { SetLinkMtu("ornic9", 1400, "wire"); },
       "Cannot set the MTU of ornic9 to 1400: No such device"},
      {[] { SetLinkUp("lo", true, "nosuch"); }, "Cannot enter netstack instance nosuch"},
  };
  for (auto const& row : refusals) {
    SCOPED_TRACE(row.message);
    EXPECT_EQ(Thrown(row.change).rfind(row.message, 0), 0u) << Thrown(row.change);
  }
  EXPECT_EQ(IpJson("link show tbr1")[0]["mtu"], 1400);
  SetMaster("ornic0", "");
  EXPECT_FALSE(IpJson("link show ornic0")[0].contains("master"));
  DeleteLink("tbr1", "delete tbr1");
  EXPECT_EQ(Thrown([] { DeleteLink("tbr1", "delete tbr1"); }),
            "Cannot delete tbr1: No such device");
  // Another namespace answers with its own links.
  auto const wire = LinkNames("wire");
  std::set<std::string> names;
  for (auto const& [index, name] : wire) names.insert(name);
  EXPECT_EQ(names, (std::set<std::string>{"lo", "wire0", "wire1"}));
}

// A reader that fails halfway leaves replies unread: the next request still
// gets its own answer, not the rest of the old one.
TEST_F(KernelTest, AFailedReadLeavesNoRepliesBehind) {
  Shell("for i in $(seq 1 40); do ip link add tdummy$i type bridge; done");
  ifinfomsg header{};
  int seen = 0;
  std::string const failure = Thrown([&] {
    Dump(
        {}, RTM_GETLINK, &header, sizeof header,
        [&](nlmsghdr const*) {
          if (++seen == 2) throw std::runtime_error("stop here");
        },
        "read the network devices");
  });
  EXPECT_EQ(failure, "stop here");
  EXPECT_EQ(LinkNames().size(), IpJson("link show").size());
  EXPECT_TRUE(FindLink("ornic1"));
}

}  // namespace
}  // namespace LinuxTest
