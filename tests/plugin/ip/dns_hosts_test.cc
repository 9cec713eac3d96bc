// The DNS server, search domain and hosts file commands against the simulated
// host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using TestSupport::SeededHostTest;

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

class DnsHostsTest : public SeededHostTest {
 protected:
  std::string Servers(std::string const& netstack = "") {
    Args args = {"network", "ip", "dns", "server", "list"};
    if (!netstack.empty()) args.insert(args.end(), {"-N", netstack});
    return Ok(args);
  }
  std::string Domains(std::string const& netstack = "") {
    Args args = {"network", "ip", "dns", "search", "list"};
    if (!netstack.empty()) args.insert(args.end(), {"-N", netstack});
    return Ok(args);
  }
  void ExpectTrue(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    EXPECT_EQ(MetaText(output->GetRootObject()), "true");
  }
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
};

TEST_F(DnsHostsTest, ServersAreAppendedRemovedAndKept) {
  EXPECT_EQ(Servers(), "{DNS Servers=[192.168.10.2,192.168.10.3]}");
  ExpectTrue({"network", "ip", "dns", "server", "add", "-s", "2001:DB8::0053"});
  ExpectTrue({"network", "ip", "dns", "server", "add", "--server", "10.50.0.53"});
  Reload();
  EXPECT_EQ(Servers(), "{DNS Servers=[192.168.10.2,192.168.10.3,2001:db8::53,10.50.0.53]}");
  ExpectTrue({"network", "ip", "dns", "server", "remove", "-s", "192.168.10.3"});
  EXPECT_EQ(Servers(), "{DNS Servers=[192.168.10.2,2001:db8::53,10.50.0.53]}");
  ExpectTrue({"network", "ip", "dns", "server", "remove", "--all"});
  EXPECT_EQ(Servers(), "{DNS Servers=[]}");
}

TEST_F(DnsHostsTest, ServerCommandsCheckTheirOptions) {
  std::string before = StateFileText();
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"network", "ip", "dns", "server", "add", "-s", "dns1.example.com"},
       "The specified address 'dns1.example.com' is not recognised as a valid IP address"},
      {{"network", "ip", "dns", "server", "remove", "-s", "1.2.3"},
       "The specified address '1.2.3' is not recognised as a valid IP address"},
      {{"network", "ip", "dns", "server", "remove"},
       "You must specify exactly one of: --all, --server"},
      {{"network", "ip", "dns", "server", "remove", "-N", "livehop"},
       "You must specify exactly one of: --all, --server"},
      {{"network", "ip", "dns", "server", "add", "-s", "192.168.10.2"},
       "DNS server 192.168.10.2 is already configured"},
      {{"network", "ip", "dns", "server", "remove", "-s", "192.168.10.9"},
       "DNS server 192.168.10.9 is not configured"},
      {{"network", "ip", "dns", "server", "add", "-s", "10.0.0.1", "-N", "nosuch"},
       "Netstack instance nosuch does not exist"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    ExpectFailure(c.args, c.message);
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(DnsHostsTest, AllWinsOverAServerThatIsNoAddress) {
  ExpectTrue({"network", "ip", "dns", "server", "remove", "--all", "--server", "not-an-address"});
  EXPECT_EQ(Servers(), "{DNS Servers=[]}");
}

TEST_F(DnsHostsTest, EachNetstackHasItsOwnConfiguration) {
  EXPECT_EQ(Servers("livehop"), "{DNS Servers=[]}");
  EXPECT_EQ(Domains("livehop"), "{DNS Search Domains=[]}");
  ExpectTrue({"network", "ip", "dns", "server", "add", "-s", "10.50.0.53", "-N", "livehop"});
  ExpectTrue(
      {"network", "ip", "dns", "search", "add", "-d", "migration.example.com", "-N", "livehop"});
  EXPECT_EQ(Servers("livehop"), "{DNS Servers=[10.50.0.53]}");
  EXPECT_EQ(Domains("livehop"), "{DNS Search Domains=[migration.example.com]}");
  // An empty --netstack means the default instance.
  EXPECT_EQ(Servers(""), "{DNS Servers=[192.168.10.2,192.168.10.3]}");
  EXPECT_EQ(Ok({"network", "ip", "dns", "search", "list", "-N", ""}),
            "{DNS Search Domains=[corp.example.com,example.com]}");
}

TEST_F(DnsHostsTest, SearchDomainsAreAddedAndRemoved) {
  EXPECT_EQ(Domains(), "{DNS Search Domains=[corp.example.com,example.com]}");
  ExpectTrue({"network", "ip", "dns", "search", "add", "-d", "lab.example.com"});
  ExpectTrue({"network", "ip", "dns", "search", "remove", "--domain", "corp.example.com"});
  Reload();
  EXPECT_EQ(Domains(), "{DNS Search Domains=[example.com,lab.example.com]}");
  ExpectTrue({"network", "ip", "dns", "search", "remove", "-d", "example.com"});
  ExpectTrue({"network", "ip", "dns", "search", "remove", "-d", "lab.example.com"});
  EXPECT_EQ(Domains(), "{DNS Search Domains=[]}");
  ExpectFailure({"network", "ip", "dns", "search", "add", "-d", "two words"},
                "Invalid search domain 'two words'");
  ExpectFailure({"network", "ip", "dns", "search", "remove", "-d", "example.com"},
                "Search domain example.com is not in the list");
}

TEST_F(DnsHostsTest, FailedSaveKeepsTheOldConfiguration) {
  std::string before = StateFileText();
  for (Args const& args :
       std::vector<Args>{{"network", "ip", "dns", "server", "add", "-s", "10.1.1.1"},
                         {"network", "ip", "dns", "server", "remove", "-a"},
                         {"network", "ip", "dns", "search", "add", "-d", "x.example.com"},
                         {"network", "ip", "dns", "search", "remove", "-d", "example.com"}}) {
    SCOPED_TRACE(args[3] + " " + args[4]);
    ClearFaults();
    InjectFault("DnsConfigImpl::SaveConfig", "resolver configuration is read-only");
    ExpectFailure(args, "resolver configuration is read-only");
  }
  EXPECT_EQ(StateFileText(), before);
  InjectFault("DnsConfigImpl::Refresh", "no resolver");
  ExpectFailure({"network", "ip", "dns", "server", "list"}, "no resolver");
  ExpectFailure({"network", "ip", "dns", "search", "list"}, "no resolver");
}

TEST_F(DnsHostsTest, HostsEntriesAreAddedListedAndRemoved) {
  auto output = Execute({"network", "ip", "hosts", "list"});
  auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->GetItems().size(), 3u);
  EXPECT_EQ(MetaText(list->GetItems()[1]),
            "{IP address=192.168.10.60,HostName=backup01.corp.example.com,Aliases=[backup01,bkp],"
            "Comment=}");
  ExpectTrue({"network", "ip", "hosts", "add", "-I", "10.50.0.7", "-H", "nas01", "-A", "nas", "-A",
              "files", "-C", "filer"});
  ExpectTrue({"network", "ip", "hosts", "add", "--ip", "2001:db8::7", "--hostname", "nas02"});
  Reload();
  output = Execute({"network", "ip", "hosts", "list"});
  list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
  ASSERT_EQ(list->GetItems().size(), 5u);
  EXPECT_EQ(MetaText(list->GetItems()[3]),
            "{IP address=10.50.0.7,HostName=nas01,Aliases=[nas,files],Comment=filer}");
  EXPECT_EQ(MetaText(list->GetItems()[4]),
            "{IP address=2001:db8::7,HostName=nas02,Aliases=[],Comment=}");
  ExpectTrue({"network", "ip", "hosts", "remove", "-I", "10.50.0.7", "-H", "NAS01"});
  output = Execute({"network", "ip", "hosts", "list"});
  list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
  EXPECT_EQ(list->GetItems().size(), 4u);
}

TEST_F(DnsHostsTest, HostsFailuresCarryTheirPrefix) {
  std::string before = StateFileText();
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"network", "ip", "hosts", "add", "-I", "nas01", "-H", "nas01"},
       "Error adding etc host item:Invalid IP address 'nas01'"},
      {{"network", "ip", "hosts", "add", "-I", "10.0.0.1", "-H", "bad_name"},
       "Error adding etc host item:Invalid host name 'bad_name'"},
      {{"network", "ip", "hosts", "add", "-I", "192.168.10.60", "-H", "backup01.corp.example.com"},
       "Error adding etc host item:An entry for 192.168.10.60 backup01.corp.example.com already "
       "exists"},
      {{"network", "ip", "hosts", "remove", "-I", "10.9.9.9", "-H", "ghost"},
       "Error removing etc host item:No entry for 10.9.9.9 ghost in the hosts file"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    ExpectFailure(c.args, c.message);
  }
  InjectFault("HostsFile::GetEntriesFromConfig", "hosts file unreadable");
  ExpectFailure({"network", "ip", "hosts", "list"}, "hosts file unreadable");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(DnsHostsTest, ToolPrintsListsInTheSimpleFormat) {
  auto result = Run({"network", "ip", "dns", "server", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("DNS Servers"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("192.168.10.3"), std::string::npos) << result.out;
  result = Run({"--formatter", "json", "network", "ip", "hosts", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\"HostName\": \"jump01.corp.example.com\""), std::string::npos)
      << result.out;
}

}  // namespace
