// Physical NICs of a linux host: the sandbox's veth ends ornic0 and ornic1.
#include <string>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

class NicTest : public LinuxHostTest {};

TEST_F(NicTest, ListAgreesWithTheKernel) {
  std::string const list = Ok({"network", "nic", "list", "--formatter", "json"});
  auto const rows = nlohmann::json::parse(list);
  auto const links = IpJson("link show");
  size_t nics = 0;
  for (auto const& link : links) {
    std::string const name = link["ifname"];
    if (name == "lo") continue;
    ++nics;
    bool found = false;
    for (auto const& row : rows) {
      if (row["Name"] != name) continue;
      found = true;
      EXPECT_EQ(row["MAC Address"], link["address"]) << name;
      EXPECT_EQ(row["MTU"], link["mtu"]) << name;
      EXPECT_EQ(row["Driver"], "veth") << name;
    }
    EXPECT_TRUE(found) << name << " missing from\n" << list;
  }
  EXPECT_EQ(rows.size(), nics) << list;
}

TEST_F(NicTest, DownAndUpReachTheKernelAndANewProcessSeesThem) {
  Ok({"network", "nic", "down", "-n", "ornic1"});
  auto link = IpJson("link show ornic1");
  ASSERT_EQ(link.size(), 1u);
  auto const& flags = link[0]["flags"];
  EXPECT_EQ(std::find(flags.begin(), flags.end(), "UP"), flags.end()) << flags;

  OrvkCtl::Sim::ResetHostForTest();  // lets the other process take the host's lock
  auto other = TestSupport::RunProcess({"network", "nic", "get", "-n", "ornic1"});
  EXPECT_EQ(other.status, 0) << other.err;
  EXPECT_NE(other.out.find("Link Status: Down"), std::string::npos) << other.out;

  Ok({"network", "nic", "up", "-n", "ornic1"});
  link = IpJson("link show ornic1");
  auto const& up = link[0]["flags"];
  EXPECT_NE(std::find(up.begin(), up.end(), "UP"), up.end()) << up;
}

TEST_F(NicTest, AnUnknownNicChangesNothing) {
  std::string const before = Shell("ip -j link show");
  Refused({"network", "nic", "down", "-n", "ornic9"}, "ornic9");
  EXPECT_EQ(Shell("ip -j link show"), before);
}

TEST_F(NicTest, TheFirewallIsAClearErrorNamingTheHostKind) {
  Refused({"network", "firewall", "get"}, "not available on a linux host");
}

}  // namespace
}  // namespace LinuxTest
