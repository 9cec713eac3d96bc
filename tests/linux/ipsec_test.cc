// IPsec of a linux host: Security Policies as the kernel's xfrm policies,
// Security Associations as its xfrm states, checked against `ip xfrm` (its
// text: it prints no JSON for xfrm).
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

constexpr char kAesKey[] = "0x00112233445566778899aabbccddeeff";
constexpr char kSha1Key[] = "0x0011223344556677889900112233445566778899";

class IpsecTest : public LinuxHostTest {
 protected:
  void SetUp() override {
    LinuxHostTest::SetUp();
    Shell("ip xfrm policy flush; ip xfrm state flush");
  }
  void TearDown() override {
    Shell("ip xfrm policy flush; ip xfrm state flush");
    LinuxHostTest::TearDown();
  }

  // Lists as a new process would: what was loaded is forgotten.
  json List(std::string const& what) {
    Reload();
    return json::parse(Ok({"network", "ip", "ipsec", what, "list", "--formatter", "json"}));
  }
  static std::string Policies() { return Shell("ip xfrm policy"); }
  static std::string States() { return Shell("ip xfrm state"); }
  // Everything the backend wrote under its root.
  static std::string KeptFiles() {
    return Shell("cat " + std::string(std::getenv("TOOLBASE_LINUX_ROOT")) +
                 "/run/toolbase/*.json 2>/dev/null || true");
  }
  // Whether this kernel takes an ESP SA at all (some have no ESP).
  static bool KernelHasEsp() {
    int const status = std::system(
        "ip xfrm state add src 2001:db8:ff::1 dst 2001:db8:ff::2 proto esp spi 0x999 "
        "enc 'ecb(cipher_null)' '' auth-trunc 'hmac(sha1)' "
        "0x0011223344556677889900112233445566778899 96 2>/dev/null");
    if (status != 0) return false;
    Shell("ip xfrm state flush");
    return true;
  }
};

// Each policy, added through the command, is the kernel's with its selector,
// direction, action and template; the listing reads it back the same.
TEST_F(IpsecTest, PoliciesRoundTripThroughTheKernel) {
  struct Row {
    std::vector<std::string> args;
    std::vector<std::string> kernel;  // lines of `ip xfrm policy` for it
    json listed;                      // its row of `sp list`
  } const rows[] = {
      {{"-n", "web", "-s", "2001:db8::/64", "-d", "2001:db8:1::/64", "-p", "0", "-P", "443", "-u",
        "tcp", "-w", "out", "-A", "ipsec", "-m", "transport"},
       {"src 2001:db8::/64 dst 2001:db8:1::/64 proto tcp dport 443", "dir out priority 0",
        "tmpl src :: dst ::", "proto esp reqid 0 mode transport"},
       {{"Name", "web"},
        {"Source Address", "2001:db8::/64"},
        {"Source Port", 0},
        {"Destination Address", "2001:db8:1::/64"},
        {"Destination Port", 443},
        {"Protocol", "tcp"},
        {"Flow", "out"},
        {"Action", "ipsec"},
        {"Mode", "transport"},
        {"SA Name", ""}}},
      {{"-n", "block-in", "-s", "any", "-d", "2001:db8:2::/48", "-p", "0", "-P", "0", "-A",
        "discard", "-w", "in", "-u", "udp"},
       {"src ::/0 dst 2001:db8:2::/48 proto udp", "dir in action block priority 0"},
       {{"Name", "block-in"},
        {"Source Address", "::/0"},
        {"Source Port", 0},
        {"Destination Address", "2001:db8:2::/48"},
        {"Destination Port", 0},
        {"Protocol", "udp"},
        {"Flow", "in"},
        {"Action", "discard"},
        {"Mode", "any"},
        {"SA Name", ""}}},
      // No action given: the library's default, IPsec with no mode asked.
      {{"-n", "host", "-s", "2001:db8:9::1/128", "-d", "any", "-p", "5000", "-P", "0"},
       {"src 2001:db8:9::1/128 dst ::/0 sport 5000", "dir out priority 0",
        "proto esp reqid 0 mode transport"},
       {{"Name", "host"},
        {"Source Address", "2001:db8:9::1/128"},
        {"Source Port", 5000},
        {"Destination Address", "::/0"},
        {"Destination Port", 0},
        {"Protocol", "any"},
        {"Flow", "out"},
        {"Action", "ipsec"},
        {"Mode", "any"},
        {"SA Name", ""}}},
      {{"-n", "tunnel", "-s", "2001:db8:7::/64", "-d", "2001:db8:8::/64", "-p", "0", "-P", "0",
        "-A", "ipsec", "-m", "tunnel", "-u", "icmp6"},
       {"src 2001:db8:7::/64 dst 2001:db8:8::/64 proto ipv6-icmp", "mode tunnel"},
       {{"Name", "tunnel"},
        {"Source Address", "2001:db8:7::/64"},
        {"Source Port", 0},
        {"Destination Address", "2001:db8:8::/64"},
        {"Destination Port", 0},
        {"Protocol", "icmp6"},
        {"Flow", "out"},
        {"Action", "ipsec"},
        {"Mode", "tunnel"},
        {"SA Name", ""}}},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.listed["Name"].get<std::string>());
    std::vector<std::string> args = {"network", "ip", "ipsec", "sp", "add"};
    args.insert(args.end(), row.args.begin(), row.args.end());
    Ok(args);
    std::string const kernel = Policies();
    for (auto const& line : row.kernel) {
      EXPECT_NE(kernel.find(line), std::string::npos) << line << "\n" << kernel;
    }
  }
  // A new process reads the same back, in the order the policies were made.
  json const listed = List("sp");
  ASSERT_EQ(listed.size(), std::size(rows)) << listed.dump(1);
  for (size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(listed[i], rows[i].listed);

  Refused({"network",
           "ip",
           "ipsec",
           "sp",
           "add",
           "-n",
           "again",
           "-s",
           "2001:db8::/64",
           "-d",
           "2001:db8:1::/64",
           "-p",
           "0",
           "-P",
           "443",
           "-u",
           "tcp",
           "-w",
           "out",
           "-A",
           "ipsec"},
          "File exists");
  Ok({"network", "ip", "ipsec", "sp", "remove", "-n", "web"});
  EXPECT_EQ(Policies().find("dport 443"), std::string::npos);
  EXPECT_EQ(List("sp").size(), std::size(rows) - 1);
  Ok({"network", "ip", "ipsec", "sp", "remove", "-a"});
  EXPECT_EQ(Policies(), "");
  EXPECT_EQ(List("sp"), json::array());
}

// What another tool put into the kernel shows, named by its index, and can
// be removed by that name; an IPv4 policy shows in its IPv4-mapped form.
TEST_F(IpsecTest, PoliciesOfOtherToolsShowAndGo) {
  Shell(
      "ip xfrm policy add src 2001:db8:5::/64 dst 2001:db8:6::/64 dir in "
      "tmpl src 2001:db8:5::1 dst 2001:db8:6::1 proto esp spi 0x300 mode tunnel && "
      "ip xfrm policy add src 10.1.0.0/16 dst 10.2.0.0/16 dir out action block && "
      "ip xfrm policy add src ::/0 dst ::/0 dir fwd action block && "
      // Two that differ only by a protocol the host's records have no word for.
      "ip xfrm policy add src 2001:db8:a::/64 dst 2001:db8:b::/64 proto gre dir out "
      "action block && "
      "ip xfrm policy add src 2001:db8:a::/64 dst 2001:db8:b::/64 dir out action block");
  // The policy that pins an SPI no SA of the host has earns the footnote.
  auto const run = Run({"network", "ip", "ipsec", "sp", "list", "--formatter", "json"});
  EXPECT_NE(run.err.find("*Some SPs with unique but deleted SAs"), std::string::npos) << run.err;
  json const listed = json::parse(run.out);
  ASSERT_EQ(listed.size(), 5u) << listed.dump(1);
  auto row = [&](std::string const& source) {
    for (auto const& r : listed) {
      if (r["Source Address"] == source) return r;
    }
    ADD_FAILURE() << "no policy from " << source << " in " << listed.dump(1);
    return json::object();
  };
  json const tunnel = row("2001:db8:5::/64");
  EXPECT_EQ(tunnel["Flow"], "in");
  EXPECT_EQ(tunnel["Mode"], "tunnel");
  EXPECT_EQ(tunnel["SA Name"], "UNKNOWN*");
  json const ipv4 = row("::ffff:10.1.0.0/112");
  EXPECT_EQ(ipv4["Destination Address"], "::ffff:10.2.0.0/112");
  EXPECT_EQ(ipv4["Action"], "discard");
  EXPECT_EQ(row("::/0")["Flow"], "none");
  // The one of the other protocol goes by its index, not the other.
  for (auto const& r : listed) {
    if (r["Protocol"] != "none") continue;
    Ok({"network", "ip", "ipsec", "sp", "remove", "-n", r["Name"]});
    EXPECT_EQ(Policies().find("proto gre"), std::string::npos);
    EXPECT_NE(Policies().find("src 2001:db8:a::/64"), std::string::npos);
  }
  Refused({"network", "ip", "ipsec", "sp", "add", "-n", "policy-7", "-s", "any", "-d", "any", "-p",
           "0", "-P", "0"},
          "The name policy-7 is the linux host's own");
  Reload();
  for (auto const& r :
       json::parse(Run({"network", "ip", "ipsec", "sp", "list", "--formatter", "json"}).out)) {
    std::string const name = r["Name"];
    EXPECT_EQ(name.rfind("policy-", 0), 0u) << name;
    Ok({"network", "ip", "ipsec", "sp", "remove", "-n", name});
  }
  EXPECT_EQ(Policies(), "");
}

// Bad input changes nothing and says why.
TEST_F(IpsecTest, BadPoliciesChangeNothing) {
  struct Row {
    std::vector<std::string> args;
    std::string message;
  } const rows[] = {
      {{"sp", "add", "-n", "x", "-s", "2001:db8::/129", "-d", "any", "-p", "0", "-P", "0"},
       "Invalid"},
      {{"sp", "add", "-n", "x", "-s", "any", "-d", "any", "-p", "70000", "-P", "0"},
       "Invalid port"},
      {{"sp", "add", "-n", "x", "-s", "any", "-d", "any", "-p", "0", "-P", "0", "-A", "ipsec", "-a",
        "nosuch"},
       "Security Association nosuch not found"},
      {{"sp", "remove", "-n", "nosuch"}, "Security Policy nosuch not found"},
      {{"sa", "remove", "-n", "nosuch"}, "Security Association nosuch not found"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.message);
    std::vector<std::string> args = {"network", "ip", "ipsec"};
    args.insert(args.end(), row.args.begin(), row.args.end());
    Refused(args, row.message);
    EXPECT_EQ(Policies(), "");
  }
}

// On a kernel without ESP (this one), an SA is refused with the reason in
// plain words, nothing stays behind, and the key shows nowhere.
TEST_F(IpsecTest, ARefusedSaLeavesNothingAndShowsNoKey) {
  if (KernelHasEsp()) GTEST_SKIP() << "this kernel has ESP: the refusal cannot be seen here";
  struct Row {
    std::string encryption, key, message;
  } const rows[] = {
      {"aes128-cbc", kAesKey, "the kernel does not have ESP"},
      {"null", "", "the kernel does not have ESP"},
      // Where the kernel lacks the cipher too, the algorithm is named (here:
      // "... does not have the algorithm cbc(des3_ede) with hmac(sha1)").
      {"3des-cbc", "0x00112233445566778899aabbccddeeff0011223344556677",
       "the kernel does not have"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.encryption);
    std::vector<std::string> args = {"network", "ip", "ipsec",        "sa", "add",         "-n",
                                     "sa1",     "-s", "2001:db8::1",  "-d", "2001:db8::2", "-p",
                                     "0x100",   "-e", row.encryption, "-i", "hmac-sha1",   "-K",
                                     kSha1Key};
    if (!row.key.empty()) args.insert(args.end(), {"-k", row.key});
    auto const run = Run(args);
    EXPECT_NE(run.status, 0);
    std::string const said = run.out + run.err;
    EXPECT_NE(said.find("Cannot add Security Association sa1: " + row.message), std::string::npos)
        << said;
    EXPECT_EQ(said.find("00112233"), std::string::npos) << said;
    EXPECT_EQ(States(), "");
    EXPECT_EQ(List("sa"), json::array());
  }
  // A batch whose last line is that SA takes back the lines before it: the
  // policy it added goes, the one it removed comes back as the kernel had it.
  Shell(
      "ip xfrm policy add src 2001:db8:c::/64 dst 2001:db8:d::/64 dir out priority 7 "
      "action block");
  std::string const before = Policies();
  std::string const other = List("sp")[0]["Name"];
  std::string const batch = std::string(std::getenv("TOOLBASE_LINUX_ROOT")) + "/batch.txt";
  std::ofstream(batch) << "network ip ipsec sp remove -n " << other << "\n"
                       << "network ip ipsec sp add -n p1 -s any -d 2001:db8:3::/64 -p 0 -P 0 "
                          "-A discard\n"
                          "network ip ipsec sa add -n sa1 -s any -d 2001:db8::2 -p 0x100 "
                          "-e aes128-cbc -k "
                       << kAesKey << " -i hmac-sha1 -K " << kSha1Key << "\n";
  auto const run = Run({"--batch", batch});
  EXPECT_NE(run.status, 0);
  EXPECT_EQ((run.out + run.err).find("00112233"), std::string::npos);
  EXPECT_EQ(Policies(), before);
  EXPECT_EQ(States(), "");
  EXPECT_EQ(KeptFiles().find("00112233"), std::string::npos);
}

// Where the kernel has ESP: an SA is the kernel's state, a policy that asks
// for it pins its SPI, and its key is kept nowhere but in the kernel.
TEST_F(IpsecTest, AnSaIsTheKernelsStateAndItsKeyStaysThere) {
  if (!KernelHasEsp()) {
    GTEST_SKIP() << "this kernel has no ESP (xfrm: \"Requested type not found\"): no SA can "
                    "be made here";
  }
  Ok({"network", "ip", "ipsec", "sa", "add", "-n", "sa1", "-s", "2001:db8::1", "-d", "2001:db8::2",
      "-p", "0x100", "-e", "null", "-i", "hmac-sha1", "-K", kSha1Key});
  EXPECT_NE(States().find("spi 0x00000100"), std::string::npos) << States();
  json const sas = List("sa");
  ASSERT_EQ(sas.size(), 1u);
  EXPECT_EQ(sas[0]["Name"], "sa1");
  EXPECT_EQ(sas[0]["SPI"], "0x100");
  EXPECT_EQ(sas[0]["Integrity Algorithm"], "hmac-sha1");
  Ok({"network", "ip", "ipsec", "sp", "add", "-n", "p1", "-s", "2001:db8::1/128", "-d",
      "2001:db8::2/128", "-p", "0", "-P", "0", "-A", "ipsec", "-a", "sa1"});
  EXPECT_NE(Policies().find("spi 0x00000100"), std::string::npos) << Policies();
  EXPECT_EQ(List("sp")[0]["SA Name"], "sa1");
  EXPECT_EQ(KeptFiles().find("00112233"), std::string::npos);
  Ok({"network", "ip", "ipsec", "sa", "remove", "-n", "sa1"});
  EXPECT_EQ(States(), "");
  EXPECT_EQ(List("sp")[0]["SA Name"], "UNKNOWN*");
}

}  // namespace
}  // namespace LinuxTest
