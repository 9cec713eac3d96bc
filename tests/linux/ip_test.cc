// The IP side of a linux host: netstack instances as network namespaces,
// routes and neighbors per namespace, checked against `ip -j`.
#include <arpa/inet.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

class IpTest : public LinuxHostTest {
 protected:
  // ornic0 with an address, so that gateways are reachable through it.
  void SetUp() override {
    LinuxHostTest::SetUp();
    Shell("ip addr add 10.9.0.1/24 dev ornic0 && ip addr add 2001:db8:9::1/64 dev ornic0 nodad");
  }

  json List(std::vector<std::string> args) {
    args.insert(args.end(), {"--formatter", "json"});
    return json::parse(Ok(args));
  }

  // The main table of `family` ("-4", "-6") in namespace `netns` as
  // "network via gateway dev interface" lines, as `ip -j` reports it.
  std::vector<std::string> KernelRoutes(std::string const& family, std::string const& netns = "") {
    std::vector<std::string> rows;
    std::string const prefix = netns.empty() ? "" : "-n " + netns + " ";
    bool const ipv6 = family == "-6";
    for (auto const& route : IpJson(prefix + family + " route show")) {
      std::string dst = route["dst"];
      if (dst == "default") dst = ipv6 ? "::/0" : "0.0.0.0/0";
      if (dst.find('/') == std::string::npos) dst += ipv6 ? "/128" : "/32";
      rows.push_back(dst + " via " + route.value("gateway", ipv6 ? "::" : "0.0.0.0") + " dev " +
                     route["dev"].get<std::string>());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // The same rows from `network ip route ipv4|ipv6 list`.
  std::vector<std::string> ListedRoutes(std::string const& version, std::string const& netstack) {
    std::vector<std::string> rows;
    bool const ipv6 = version == "ipv6";
    for (auto const& row : List({"network", "ip", "route", version, "list", "-N", netstack})) {
      std::string network = row["Network"];
      if (network == "default") network = ipv6 ? "::" : "0.0.0.0";
      std::string const length = std::to_string(PrefixOf(row["Netmask"], ipv6));
      rows.push_back(network + "/" + length + " via " + row["Gateway"].get<std::string>() +
                     " dev " + row["Interface"].get<std::string>());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  static int PrefixOf(std::string const& netmask, bool ipv6) {
    unsigned char bytes[16] = {};
    EXPECT_EQ(inet_pton(ipv6 ? AF_INET6 : AF_INET, netmask.c_str(), bytes), 1) << netmask;
    int bits = 0;
    for (unsigned char byte : bytes) bits += __builtin_popcount(byte);
    return bits;
  }

  // The sysctl `name` of namespace `netns`.
  static std::string Sysctl(std::string const& netns, std::string const& name) {
    std::string value = Shell("ip netns exec " + netns + " sysctl -n " + name);
    while (!value.empty() && value.back() == '\n') value.pop_back();
    return value;
  }
};

TEST_F(IpTest, ANetstackInstanceIsANamespaceWithItsSettings) {
  Ok({"network", "ip", "netstack", "add", "-N", "blue"});
  EXPECT_NE(Shell("ls /run/netns").find("blue"), std::string::npos);
  Ok({"network", "ip", "netstack", "set", "-N", "blue", "-c", "newreno", "-i", "false", "-n",
      "Blue"});
  EXPECT_EQ(Sysctl("blue", "net.ipv4.tcp_congestion_control"), "reno");
  EXPECT_EQ(Sysctl("blue", "net.ipv6.conf.all.disable_ipv6"), "1");

  // A new process reads the same from the kernel and the kept name.
  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess({"network", "ip", "netstack", "get", "-N", "blue"});
  EXPECT_EQ(other.status, 0) << other.err;
  for (char const* line : {"Name: Blue", "Congestion Control Algorithm: newreno",
                           "IPv6 Enabled: false", "Current IPv6 Enabled: false"}) {
    EXPECT_NE(other.out.find(line), std::string::npos) << line << "\n" << other.out;
  }
  // One made by another tool shows too.
  Shell("ip netns add green");
  auto const keys = List({"network", "ip", "netstack", "list"});
  std::vector<std::string> listed;
  for (auto const& row : keys) listed.push_back(row["Key"]);
  EXPECT_EQ(listed, (std::vector<std::string>{"defaultTcpipStack", "wire", "blue", "green"}));

  Ok({"network", "ip", "netstack", "remove", "-N", "blue"});
  EXPECT_EQ(Shell("ls /run/netns"), "green\nwire\n");
}

TEST_F(IpTest, NetstackChangesWithoutAKernelCounterpartChangeNothing) {
  Ok({"network", "ip", "netstack", "add", "-N", "blue"});
  struct Case {
    std::vector<std::string> args;
    std::string message;
  } const cases[] = {
      {{"network", "ip", "netstack", "add", "-N", "red", "-d"}, "only configured"},
      {{"network", "ip", "netstack", "set", "-N", "blue", "-e", "false"}, "Disabling"},
      {{"network", "ip", "netstack", "set", "-N", "blue", "-m", "5000"}, "maximum number"},
      {{"network", "ip", "netstack", "remove", "-N", "defaultTcpipStack"}, "cannot be"},
      {{"network", "ip", "netstack", "add", "-N", "bad/key"}, "Invalid netstack instance key"},
  };
  std::string const before = Shell("ls /run/netns") + Ok({"network", "ip", "netstack", "list"});
  for (auto const& row : cases) {
    SCOPED_TRACE(row.args[4]);
    Refused(row.args, row.message);
    EXPECT_EQ(Shell("ls /run/netns") + Ok({"network", "ip", "netstack", "list"}), before);
  }
}

TEST_F(IpTest, RoutesAgreeWithTheKernelInEachNamespace) {
  Ok({"network", "ip", "route", "ipv4", "add", "-n", "10.20.0.0/16", "-g", "10.9.0.5"});
  Ok({"network", "ip", "route", "ipv4", "add", "-n", "default", "-g", "10.9.0.6"});
  Ok({"network", "ip", "route", "ipv6", "add", "-n", "2001:db8:20::/48", "-g", "2001:db8:9::5"});
  EXPECT_EQ(ListedRoutes("ipv4", "defaultTcpipStack"), KernelRoutes("-4"));
  EXPECT_EQ(ListedRoutes("ipv6", "defaultTcpipStack"), KernelRoutes("-6"));
  EXPECT_NE(Shell("ip route show").find("10.20.0.0/16 via 10.9.0.5 dev ornic0"), std::string::npos);

  Ok({"network", "ip", "route", "ipv4", "remove", "-n", "10.20.0.0/16", "-g", "10.9.0.5"});
  Ok({"network", "ip", "route", "ipv6", "remove", "-n", "2001:db8:20::/48", "-g", "2001:db8:9::5"});
  EXPECT_EQ(ListedRoutes("ipv4", "defaultTcpipStack"), KernelRoutes("-4"));
  EXPECT_EQ(Shell("ip -6 route show 2001:db8:20::/48"), "");

  // A named instance has its own table.
  Ok({"network", "ip", "netstack", "add", "-N", "blue"});
  Shell("ip link set ornic1 netns blue && ip -n blue addr add 10.7.0.1/24 dev ornic1 && "
        "ip -n blue link set ornic1 up");
  OrvkCtl::Sim::ResetHostForTest();  // the next command is a new process
  Ok({"network", "ip", "route", "ipv4", "add", "-n", "10.21.0.0/16", "-g", "10.7.0.9", "-N",
      "blue"});
  EXPECT_EQ(ListedRoutes("ipv4", "blue"), KernelRoutes("-4", "blue"));
  EXPECT_EQ(Shell("ip route show 10.21.0.0/16"), "");
}

TEST_F(IpTest, ARefusedRouteChangesNothing) {
  std::string const before = Shell("ip route show; ip -6 route show");
  struct Case {
    std::vector<std::string> args;
    std::string message;
  } const cases[] = {
      {{"network", "ip", "route", "ipv4", "add", "-n", "10.30.0.0/16", "-g", "10.99.0.5"},
       "not reachable"},
      {{"network", "ip", "route", "ipv4", "add", "-n", "10.30.0.0/33", "-g", "10.9.0.5"}, "10.30"},
      {{"network", "ip", "route", "ipv4", "remove", "-n", "10.9.0.0/24", "-g", "0.0.0.0"},
       "cannot be removed"},
      {{"network", "ip", "route", "ipv4", "remove", "-n", "10.31.0.0/16", "-g", "10.9.0.5"},
       "No route"},
      {{"network", "ip", "route", "ipv4", "add", "-n", "10.30.0.0/16", "-g", "10.9.0.5", "-N",
        "nosuch"},
       "nosuch"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.args[6]);
    Refused(row.args, row.message);
    EXPECT_EQ(Shell("ip route show; ip -6 route show"), before);
  }
}

TEST_F(IpTest, NeighborsAgreeWithTheKernelAndCanBeRemoved) {
  Shell("ip neigh add 10.9.0.7 lladdr 02:00:00:00:00:07 dev ornic0 nud permanent && "
        "ip neigh add 2001:db8:9::7 lladdr 02:00:00:00:00:17 dev ornic0 nud permanent");
  auto const rows = List({"network", "ip", "neighbor", "list"});
  std::vector<std::string> listed;
  for (auto const& row : rows) {
    listed.push_back(row["Neighbor"].get<std::string>() + " " +
                     row["Mac Address"].get<std::string>() + " " +
                     row["Orvknic"].get<std::string>() + " " + row["Type"].get<std::string>());
  }
  std::vector<std::string> kernel;
  for (auto const& entry : IpJson("neigh show nud permanent")) {
    kernel.push_back(entry["dst"].get<std::string>() + " " + entry["lladdr"].get<std::string>() +
                     " " + entry["dev"].get<std::string>() + " Static");
  }
  std::sort(listed.begin(), listed.end());
  std::sort(kernel.begin(), kernel.end());
  EXPECT_EQ(listed, kernel);

  Ok({"network", "ip", "neighbor", "remove", "-v", "4", "-a", "10.9.0.7"});
  EXPECT_EQ(Shell("ip neigh show 10.9.0.7"), "");
  EXPECT_NE(Shell("ip neigh show 2001:db8:9::7"), "");
}

}  // namespace
}  // namespace LinuxTest
