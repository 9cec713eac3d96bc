// `network ip ipsec` against the simulated host: option texts to records and
// back, the three ways of removing SAs, and keys that never come back out.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
// The SPI and lifetime helpers are free functions of the plug-in, which the
// tests do not link: compiled in here.
#include "ip/IpsecKit.cc"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

const Args kSaList = {"network", "ip", "ipsec", "sa", "list"};
const Args kSpList = {"network", "ip", "ipsec", "sp", "list"};
const std::string kManualSa =
    "{Name=sa-mgmt,Source Address=2001:db8:10::21,Destination Address=2001:db8:10::1,"
    "State=mature,SPI=0x1001,Mode=transport,Encryption Algorithm=aes128-cbc,Integrity "
    "Algorithm=hmac-sha2-256,Lifetime=infinite}";
const std::string kAutoSa =
    "{Name=auto,Source Address=2001:db8:10::1,Destination Address=2001:db8:10::21,State=mature,"
    "SPI=0x2c0f,Mode=transport,Encryption Algorithm=aes128-cbc,Integrity Algorithm=hmac-sha1,"
    "Lifetime=1h }";
const std::string kCannotFigure =
    "Can not figure out which operation you want to perform.\nRemove a unique SA: Only specify "
    "the '--sa-name' option to remove a normal SA.\nRemove an auto SA: Set the '--sa-name' to "
    "'auto'. You should also specify '--sa-source', '--sa-destination' and '--sa-spi' and omit "
    "'--remove-all' when removing an auto SA.\nRemove all SAs: You should only set the flag "
    "'--remove-all' to remove all SAs.";

std::string Policy(std::string const& name, std::string const& sa, std::string const& mode,
                   std::string const& action = "ipsec") {
  return "{Name=" + name +
         ",Source Address=2001:db8:10::21/128,Source Port=0,Destination "
         "Address=2001:db8:10::/64,Destination Port=22,Protocol=tcp,Flow=out,Action=" +
         action + ",Mode=" + mode + ",SA Name=" + sa + "}";
}

// A valid SA add: SPI and source as given, 3des-cbc and hmac-sha1 keys.
Args SaAdd(std::string const& name, std::string const& source, std::string const& spi) {
  return {"network",
          "ip",
          "ipsec",
          "sa",
          "add",
          "-n",
          name,
          "-s",
          source,
          "-d",
          "2001:db8::2",
          "-p",
          spi,
          "-e",
          "3des-cbc",
          "-k",
          "0123456789abcdefghijklmn",
          "-i",
          "hmac-sha1",
          "-K",
          "0x00112233445566778899aabbccddeeff00112233"};
}

Args SaRemove(Args const& options) {
  Args args = {"network", "ip", "ipsec", "sa", "remove"};
  args.insert(args.end(), options.begin(), options.end());
  return args;
}

// A valid SP add, with `options` added or put in place of the defaults.
Args SpAdd(Args const& options) {
  Args const defaults = {
      "-n", "sp-new", "-s", "2001:db8:10::21/128", "-d", "2001:db8:10::/64", "-p", "0", "-P",
      "22", "-u",     "tcp"};
  Args args = {"network", "ip", "ipsec", "sp", "add"};
  for (size_t i = 0; i < defaults.size(); i += 2) {
    bool overridden = false;
    for (size_t j = 0; j + 1 < options.size(); j += 2) overridden |= options[j] == defaults[i];
    if (!overridden) args.insert(args.end(), {defaults[i], defaults[i + 1]});
  }
  args.insert(args.end(), options.begin(), options.end());
  return args;
}

class IpsecTest : public HostTest {
 protected:
  std::string Result(Args const& args, Messages const& messages = {}) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), messages);
    return MetaText(output->GetRootObject());
  }
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
};

TEST_F(IpsecTest, ListsTheDefaultDatabasesWithoutKeys) {
  EXPECT_EQ(Result(kSaList), "[" + kManualSa + "," + kAutoSa + "]");
  EXPECT_EQ(Result(kSpList), "[" + Policy("sp-mgmt", "sa-mgmt", "transport") + "]");
  for (char const* formatter : {"simple", "table", "json", "xml", "csv"}) {
    SCOPED_TRACE(formatter);
    auto printed = Run({"--formatter", formatter, "network", "ip", "ipsec", "sa", "list"});
    ASSERT_EQ(printed.status, 0) << printed.err;
    EXPECT_NE(printed.out.find("sa-mgmt"), std::string::npos);
    EXPECT_EQ(printed.out.find("k3Yf0r"), std::string::npos);
    EXPECT_EQ(printed.out.find("0x8f1e2d"), std::string::npos);
    auto policies = Run({"--formatter", formatter, "network", "ip", "ipsec", "sp", "list"});
    ASSERT_EQ(policies.status, 0) << policies.err;
    EXPECT_NE(policies.out.find("sp-mgmt"), std::string::npos);
  }
}

TEST_F(IpsecTest, SaAddParsesSpiAndAddresses) {
  EXPECT_EQ(Result(SaAdd("sa-a", "any", "0x100")), "true");
  EXPECT_EQ(Result(SaAdd("sa-b", "2001:db8::9", "100")), "true");
  Args nullCipher = {"network",
                     "ip",
                     "ipsec",
                     "sa",
                     "add",
                     "-n",
                     "sa-c",
                     "-s",
                     "2001:db8::7",
                     "-d",
                     "any",
                     "-p",
                     "ABC",
                     "-m",
                     "tunnel",
                     "-e",
                     "null",
                     "-i",
                     "hmac-sha2-256",
                     "-K",
                     "abcdefghijklmnopqrstuvwxyz012345"};
  EXPECT_EQ(Result(nullCipher), "true");
  Reload();
  std::string list = Result(kSaList);
  EXPECT_NE(list.find("{Name=sa-a,Source Address=::,Destination Address=2001:db8::2,State=mature,"
                      "SPI=0x100,Mode=transport,Encryption Algorithm=3des-cbc,Integrity "
                      "Algorithm=hmac-sha1,Lifetime=infinite}"),
            std::string::npos);
  EXPECT_NE(list.find("{Name=sa-b,Source Address=2001:db8::9,Destination Address=2001:db8::2,"
                      "State=mature,SPI=0x100,"),
            std::string::npos);
  EXPECT_NE(list.find("{Name=sa-c,Source Address=2001:db8::7,Destination Address=::,"
                      "State=mature,SPI=0xabc,Mode=tunnel,Encryption Algorithm=null,"),
            std::string::npos);
}

TEST_F(IpsecTest, SaAddRefusalsChangeNothing) {
  SeedHost();
  std::string before = StateFileText();
  for (char const* spi : {"100g", "", "0x", "100000000", "zz", "1 2"}) {
    SCOPED_TRACE(spi);
    ExpectFailure(
        SaAdd("sa-x", "any", spi),
        std::string("Check the input value for '--sa-spi'. Should be hex integer. Got ") + spi);
  }
  Args noKey = SaAdd("sa-x", "any", "0x100");
  noKey.erase(noKey.begin() + 15, noKey.begin() + 17);  // -k and its key
  ExpectFailure(noKey, "Missing encryption key");
  struct Case {
    Args args;
    char const* message;
  };
  for (Case const& c : {
           Case{SaAdd("sa-mgmt", "any", "0x100"), "Security Association sa-mgmt already exists"},
           Case{SaAdd("sa-x", "fe80::zz", "0x100"), "Invalid IPv6 address: fe80::zz"},
           Case{SaAdd("sa-x", "2001:db8:10::21", "ff"), "SPI 255 is reserved: use 256 or above"},
           Case{SaAdd("auto", "any", "0x100"),
                "The name 'auto' is reserved for negotiated Security Associations"},
       }) {
    SCOPED_TRACE(c.message);
    ExpectFailure(c.args, c.message);
  }
  Args shortKey = SaAdd("sa-x", "any", "0x100");
  shortKey[16] = "short";
  ExpectFailure(shortKey,
                "Invalid encryption key for 3des-cbc: it must be 24 ASCII characters or 48 hex "
                "digits");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(IpsecTest, SaRemoveByNameAutoOrAll) {
  // A policy whose SA goes keeps a mark, shown with a footnote beside the rows.
  EXPECT_EQ(Result(SaRemove({"-n", "sa-mgmt"})), "true");
  EXPECT_EQ(Result(kSpList, {"*Some SPs with unique but deleted SAs were found. Please remove "
                             "these SPs as they cannot be used anymore."}),
            "[" + Policy("sp-mgmt", "UNKNOWN*", "transport") + "]");
  ExpectFailure(SaRemove({"-n", "sa-mgmt"}), "Security Association sa-mgmt not found");
  // "any" is not translated when removing an auto SA.
  ExpectFailure(SaRemove({"-n", "auto", "-s", "any", "-d", "2001:db8:10::21", "-p", "2c0f"}),
                "Invalid IPv6 address: any");
  EXPECT_EQ(Result(SaRemove(
                {"-n", "auto", "-s", "2001:db8:10::1", "-d", "2001:db8:10::21", "-p", "0x2c0f"})),
            "true");
  EXPECT_EQ(Result(kSaList), "[]");
  EXPECT_EQ(Result(SaAdd("sa-a", "any", "0x100")), "true");
  EXPECT_EQ(Result(SaRemove({"--remove-all"})), "true");
  Reload();
  EXPECT_EQ(Result(kSaList), "[]");
}

TEST_F(IpsecTest, SaRemoveNeedsOneExactOptionSet) {
  SeedHost();
  std::string before = StateFileText();
  for (Args const& options : {Args{}, Args{"-n", "sa-mgmt", "-p", "1"}, Args{"-n", "auto"},
                              Args{"-n", "auto", "-s", "::1", "-d", "::2"}, Args{"-a", "-s", "::1"},
                              Args{"-a", "-n", "sa-mgmt"},
                              Args{"-n", "auto", "-s", "::1", "-d", "::2", "-p", "1", "-a"}}) {
    SCOPED_TRACE(::testing::PrintToString(options));
    ExpectFailure(SaRemove(options), kCannotFigure);
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(IpsecTest, SpAddKeepsModeAndSaForIpsecOnly) {
  EXPECT_EQ(Result(SpAdd({"-A", "none", "-m", "tunnel", "-a", "sa-mgmt"})), "true");
  EXPECT_NE(Result(kSpList).find(Policy("sp-new", "", "any", "none")), std::string::npos);
  EXPECT_EQ(Result({"network", "ip", "ipsec", "sp", "remove", "-n", "sp-new"}), "true");
  EXPECT_EQ(Result(SpAdd({"-A", "ipsec", "-m", "tunnel", "-a", "sa-mgmt"})), "true");
  Args any = {"network", "ip", "ipsec", "sp", "add", "-n", "sp-any", "-s", "any",    "-d",
              "any",     "-p", "0",     "-P", "0",   "-w", "in",     "-A", "discard"};
  EXPECT_EQ(Result(any), "true");
  Reload();
  EXPECT_EQ(Result(kSpList),
            "[" + Policy("sp-mgmt", "sa-mgmt", "transport") + "," +
                Policy("sp-new", "sa-mgmt", "tunnel") +
                ",{Name=sp-any,Source Address=::/0,Source Port=0,Destination Address=::/0,"
                "Destination Port=0,Protocol=any,Flow=in,Action=discard,Mode=any,SA Name=}]");
}

TEST_F(IpsecTest, SpAddRefusalsChangeNothing) {
  SeedHost();
  std::string before = StateFileText();
  struct Case {
    Args args;
    char const* message;
  };
  for (Case const& c : {
           Case{SpAdd({"-A", "ipsec", "-a", "sa-none"}), "Security Association sa-none not found"},
           Case{SpAdd({"-A", "ipsec", "-P", "70000"}),
                "Invalid port: ports must be between 0 and 65535"},
           Case{SpAdd({"-p", "-1"}), "Invalid port: ports must be between 0 and 65535"},
       }) {
    SCOPED_TRACE(c.message);
    ExpectFailure(c.args, c.message);
  }
  auto badNetwork = Execute(SpAdd({"-s", "2001:db8::/129"}));
  ASSERT_EQ(badNetwork->GetErrorMessages().size(), 1u);
  EXPECT_EQ(badNetwork->GetErrorMessages()[0].rfind("Invalid IPv6 network: 2001:db8::/129", 0), 0u);
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(IpsecTest, SpRemove) {
  SeedHost();
  std::string before = StateFileText();
  for (Args const& args : {Args{"network", "ip", "ipsec", "sp", "remove"},
                           Args{"network", "ip", "ipsec", "sp", "remove", "-n", "sp-mgmt", "-a"}}) {
    // Reported, with true all the same.
    EXPECT_EQ(Result(args, {"You should specify exactly one of : --remove-all, --sa-name"}),
              "true");
  }
  EXPECT_EQ(StateFileText(), before);
  ExpectFailure({"network", "ip", "ipsec", "sp", "remove", "-n", "sp-none"},
                "Security Policy sp-none not found");
  EXPECT_EQ(Result({"network", "ip", "ipsec", "sp", "remove", "-n", "sp-mgmt"}), "true");
  EXPECT_EQ(Result(SpAdd({})), "true");
  EXPECT_EQ(Result({"network", "ip", "ipsec", "sp", "remove", "--remove-all"}), "true");
  EXPECT_EQ(Result(kSpList), "[]");
}

TEST_F(IpsecTest, HostFailuresShowTheLibrarysText) {
  struct Case {
    char const* operation;
    Args args;
  };
  for (Case const& c : {
           Case{"IpSecConfigImpl::GetSADConfigList", kSaList},
           Case{"IpSecConfigImpl::GetSPDConfigList", kSpList},
           Case{"IpSecConfigImpl::AddSADConfig", SaAdd("sa-a", "any", "0x100")},
           Case{"IpSecConfigImpl::FlushSADConfig", SaRemove({"-a"})},
           Case{"IpSecConfigImpl::AddSPDConfig", SpAdd({})},
           Case{"IpSecConfigImpl::FlushSPDConfig",
                Args{"network", "ip", "ipsec", "sp", "remove", "-a"}},
       }) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "ipsec daemon down");
    ExpectFailure(c.args, "ipsec daemon down");
    ClearFaults();
  }
}

TEST(IpsecKitTest, LifetimesAndSpis) {
  struct Lifetime {
    uint64_t seconds;
    char const* text;
  };
  for (Lifetime const& c :
       {Lifetime{0, "infinite"}, Lifetime{59, "59s "}, Lifetime{60, "1m "}, Lifetime{3600, "1h "},
        Lifetime{3661, "1h 1m 1s "}, Lifetime{90061, "25h 1m 1s "}}) {
    SCOPED_TRACE(c.seconds);
    EXPECT_EQ(CorvaneCli::NetworkNamespace::ConvertToHrsMinsAndSecs(c.seconds), c.text);
  }
  uint32_t spi = 0;
  EXPECT_TRUE(CorvaneCli::NetworkNamespace::ParseSpi("0x100", true, spi));
  EXPECT_EQ(spi, 256u);
  EXPECT_TRUE(CorvaneCli::NetworkNamespace::ParseSpi("FFFFFFFF", true, spi));
  EXPECT_EQ(spi, 0xffffffffu);
  // Lax parsing takes the number and ignores what follows it.
  EXPECT_FALSE(CorvaneCli::NetworkNamespace::ParseSpi("100g", true, spi));
  EXPECT_TRUE(CorvaneCli::NetworkNamespace::ParseSpi("100g", false, spi));
  EXPECT_EQ(spi, 256u);
}

}  // namespace
