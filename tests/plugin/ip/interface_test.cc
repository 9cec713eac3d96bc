// The Orvik interface commands against the simulated host: lifecycle, listing,
// and the IPv4 and IPv6 settings.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/orvk_nic.h"
#include "support/harness.h"
#include "support/host_probe.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase::MetaObj;
using TestSupport::HostTest;
using TestSupport::SeededHostTest;

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;
using Row = std::map<std::string, std::string>;

const Args kList = {"network", "ip", "interface", "list"};
const Args kIpv4Get = {"network", "ip", "interface", "ipv4", "get"};
const Args kIpv6Get = {"network", "ip", "interface", "ipv6", "get"};
const Args kIpv6List = {"network", "ip", "interface", "ipv6", "address", "list"};

Args With(Args base, Args const& more) {
  base.insert(base.end(), more.begin(), more.end());
  return base;
}

std::string Text(MetaObject const& value) {
  if (!value.HasValue()) return "<unset>";
  if (auto const* b = dynamic_cast<MetaBool const*>(&value))
    return b->GetValue() ? "true" : "false";
  if (auto const* i = dynamic_cast<MetaInt const*>(&value)) return std::to_string(i->GetValue());
  if (auto const* s = dynamic_cast<MetaString const*>(&value)) return s->GetValue();
  return "<other>";
}

class InterfaceTest : public SeededHostTest {
 protected:
  // The rows of a list command, each field as text.
  std::vector<Row> Rows(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    std::vector<Row> rows;
    auto list = std::dynamic_pointer_cast<MetaList>(output->GetRootObject());
    if (!list) return rows;
    for (auto const& item : list->GetItems()) {
      Row row;
      for (auto const& [key, value] : static_cast<MetaStruct const&>(*item).GetFields()) {
        row[key] = Text(*value);
      }
      rows.push_back(row);
    }
    return rows;
  }
  // One field of every row.
  std::vector<std::string> Column(Args const& args, std::string const& field) {
    std::vector<std::string> values;
    for (auto const& row : Rows(args)) values.push_back(row.at(field));
    return values;
  }
  void ExpectTrue(Args const& args, Messages const& messages = {}) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), messages);
    auto root = std::dynamic_pointer_cast<MetaBool>(output->GetRootObject());
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->GetValue());
  }
  std::vector<int> Tags(std::string const& name) { return TestSupport::Probe::InterfaceTags(name); }
  void AddNetstack(std::string const& key) {
    ExpectTrue({"network", "ip", "netstack", "add", "--netstack", key});
  }
};

TEST_F(InterfaceTest, DefaultHostListsTheManagementInterface) {
  auto rows = Rows(kList);
  ASSERT_EQ(rows.size(), 1u);
  Row const expected = {
      {"Name", "orvk0"},
      {"MAC Address", "d2:6e:a0:00:10:00"},
      {"Portset", "vSwitch0"},
      {"Portgroup", "Management Network"},
      {"Netstack Instance", "defaultTcpipStack"},
      {"KDS Name", "N/A"},
      {"KDS UUID", "N/A"},
      {"KDS Port", "N/A"},
      {"KDS Connection", "-1"},
      {"Opaque Network ID", "N/A"},
      {"Opaque Network Type", "N/A"},
      {"External ID", "N/A"},
      {"MTU", "1500"},
      {"TSO MSS", "65535"},
      {"RXDispQueue Size", "1"},
      {"Enabled", "true"},
      {"Port ID", "33554436"},
  };
  EXPECT_EQ(rows[0], expected);
  EXPECT_EQ(Rows(With(kList, {"--netstack", "livehop"})).size(), 0u);
  EXPECT_EQ(Rows(With(kList, {"--netstack", "nonsense"})).size(), 0u);
}

TEST_F(InterfaceTest, DefaultHostAddresses) {
  Row const ipv4 = {{"Name", "orvk0"},
                    {"IPv4 Address", "192.168.10.21"},
                    {"IPv4 Netmask", "255.255.255.0"},
                    {"IPv4 Broadcast", "192.168.10.255"},
                    {"Address Type", "STATIC"},
                    {"Gateway", "192.168.10.1"},
                    {"DHCP DNS", "false"}};
  EXPECT_EQ(Rows(kIpv4Get), std::vector<Row>{ipv4});
  EXPECT_EQ(Rows({"network", "ip", "interface", "ipv4", "address", "list"}),
            std::vector<Row>{ipv4});
  Row const ipv6 = {{"Name", "orvk0"},           {"IPv6 Enabled", "true"},
                    {"DHCPv6 Enabled", "false"}, {"Router Adv Enabled", "false"},
                    {"DHCP DNS", "false"},       {"Gateway", "::"}};
  EXPECT_EQ(Rows(kIpv6Get), std::vector<Row>{ipv6});
  EXPECT_EQ(Column(kIpv6List, "Address"),
            (std::vector<std::string>{"fe80::d06e:a0ff:fe00:1000", "2001:db8:10::21"}));
  EXPECT_EQ(Column(kIpv6List, "Netmask"), (std::vector<std::string>{"64", "64"}));
}

TEST_F(InterfaceTest, AddsOnPortGroupAndDVPortAndRemovesByEachIdentity) {
  struct Case {
    char const* name;
    Args add;
    Args remove;
    // The DVPort keeps the connection id it was given.
    bool restoresFile;
  };
  std::vector<Case> const cases = {
      {"by name", {"--portgroup-name", "VM Network"}, {"--interface-name", "orvk1"}, true},
      {"by port group",
       {"--portgroup-name", "VM Network"},
       {"--portgroup-name", "VM Network"},
       true},
      {"by DVPort",
       {"--dvs-name", "DSwitch-Prod", "--dvport-id", "2", "--netstack", "livehop"},
       {"--dvs-name", "DSwitch-Prod", "--dvport-id", "2", "--netstack", "livehop"},
       false},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    std::string const before = StateFileText();
    ExpectTrue(With({"network", "ip", "interface", "add"}, c.add));
    auto rows = Rows(kList);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].at("Name"), "orvk1");
    // Every new interface starts with router advertisement on.
    EXPECT_EQ(Rows(With(kIpv6Get, {"-n", "orvk1"}))[0].at("Router Adv Enabled"), "true");
    ExpectTrue(With({"network", "ip", "interface", "remove"}, c.remove));
    EXPECT_EQ(Column(kList, "Name"), std::vector<std::string>{"orvk0"});
    EXPECT_EQ(OrvkCtl::Sim::ReadHost().runtime.ports.size(), 10u);
    if (c.restoresFile) {
      EXPECT_TRUE(StateFileText() == before);
    }
  }
}

TEST_F(InterfaceTest, AddOptionsReachTheInterface) {
  ExpectTrue({"network", "ip", "interface", "add", "-p", "VM Network", "-m", "9000", "-R", "4",
              "-M", "00:50:56:aa:bb:cc", "-i", "orvk7"});
  auto row = Rows(kList)[1];
  EXPECT_EQ(row.at("Name"), "orvk7");
  EXPECT_EQ(row.at("MTU"), "9000");
  EXPECT_EQ(row.at("RXDispQueue Size"), "4");
  EXPECT_EQ(row.at("MAC Address"), "00:50:56:aa:bb:cc");
  auto groups = Rows({"network", "vswitch", "standard", "portgroup", "list"});
  EXPECT_EQ(groups[1].at("Name"), "VM Network");
  EXPECT_EQ(groups[1].at("Active Clients"), "3");
}

TEST_F(InterfaceTest, ListShowsDVPortConnection) {
  ExpectTrue({"network", "ip", "interface", "add", "-s", "DSwitch-Prod", "-P", "2"});
  auto row = Rows(kList)[1];
  EXPECT_EQ(row.at("Portset"), "DSwitch-Prod");
  EXPECT_EQ(row.at("Portgroup"), "N/A");
  EXPECT_EQ(row.at("KDS Name"), "DSwitch-Prod");
  EXPECT_EQ(row.at("KDS Port"), "2");
  EXPECT_NE(row.at("KDS Connection"), "0");
  EXPECT_NE(row.at("KDS UUID"), "N/A");
}

TEST_F(InterfaceTest, AddRefusesBadInput) {
  std::string const needOne =
      "A connection point of either vswitch port group name or dvs-name/dvport-id should be "
      "specified. If connection point is DVPort, --dvs-name and --dvport-id must be specified at "
      "the same time.";
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"--netstack", "livehop"}, needOne},
      {{"--netstack", "nope", "--dvs-name", "x"}, "The netstack nope does not exist."},
      {{"-p", "VM Network", "-s", "DSwitch-Prod"}, needOne},
      {{"-P", "3"}, needOne},
      {{"-p", "VM Network", "-s", "DSwitch-Prod", "-P", "3"},
       "Only one connection point can be specified, vswitch port group or DVPort."},
      {{"-p", "Nope"},
       "Invalid vswitch port group name Nope. Error was: Port group Nope not found"},
      {{"-s", "Nope", "-P", "3"},
       "Unable to retrieve DVS info by specified DVS name Nope. Error was: "},
      {{"-s", "DSwitch-Prod", "-P", "99"}, "Invalid vswitch port group or DVPort parameters."},
      {{"-p", "VM Network", "-M", "00:50:56"}, "Invalid unicast MAC address specified."},
      {{"-p", "Management Network"},
       "Unable to add Orvik network interface. Error was : The port group Management Network "
       "already has the interface orvk0"},
      {{"-p", "VM Network", "-i", "orvk0"},
       "Unable to add Orvik network interface. Error was : Orvik network interface orvk0 already "
       "exists"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    std::string const before = StateFileText();
    auto output = Execute(With({"network", "ip", "interface", "add"}, c.args));
    ASSERT_EQ(output->GetErrorMessages().size(), 1u);
    // The library's text behind the DVS lookup is its own.
    EXPECT_EQ(output->GetErrorMessages()[0].substr(0, c.message.size()), c.message);
    EXPECT_EQ(output->GetRootObject(), nullptr);
    EXPECT_TRUE(StateFileText() == before);
  }
}

TEST_F(InterfaceTest, AddOnDedicatedNetstackMovesTagFromDefaultOnly) {
  AddNetstack("faultTolerance");
  // orvk1 on livehop and orvk0 on the default instance both carry tag 3.
  ExpectTrue({"network", "ip", "interface", "add", "-p", "VM Network", "-N", "livehop"});
  OrvkCtl::Network::OrvkNicImpl("orvk0").AddTag(static_cast<HostCtl::Network::OrvkNicTagType>(3),
                                                false);
  OrvkCtl::Network::OrvkNicImpl("orvk1").AddTag(static_cast<HostCtl::Network::OrvkNicTagType>(3),
                                                false);
  EXPECT_EQ(Tags("orvk1"), (std::vector<int>{2, 3}));
  ExpectTrue(
      {"network", "ip", "interface", "add", "-p", "Storage Network", "-N", "faultTolerance"});
  EXPECT_EQ(Tags("orvk0"), (std::vector<int>{1}));
  EXPECT_EQ(Tags("orvk1"), (std::vector<int>{2, 3}));
  EXPECT_EQ(Tags("orvk2"), (std::vector<int>{3}));
}

TEST_F(InterfaceTest, AddOnProvisioningNetstackRestartsTheDaemon) {
  AddNetstack("TamariskProvisioning");
  ExpectTrue(
      {"network", "ip", "interface", "add", "-p", "VM Network", "-N", "TamariskProvisioning"});
  EXPECT_EQ(
      OrvkCtl::Sim::ReadHost().ip.executed_commands,
      std::vector<std::string>{"/etc/init.d/xfrd --resource-pool=host/system/child-12 restart"});
  EXPECT_EQ(Tags("orvk1"), std::vector<int>{6});

  // A failed restart is told, and the interface stays, complete.
  InjectFault("OrvkCtl_Exec", "exit 3");
  ExpectTrue(
      {"network", "ip", "interface", "add", "-p", "Storage Network", "-N", "TamariskProvisioning"},
      {"Unable to start the XFR daemon. Take a look at /var/log/xfrd.log for more "
       "information."});
  EXPECT_EQ(Rows(With(kIpv6Get, {"-n", "orvk2"}))[0].at("Router Adv Enabled"), "true");
  EXPECT_EQ(OrvkCtl::Sim::ReadHost().ip.executed_commands.size(), 1u);
}

TEST_F(InterfaceTest, RemoveRefusesAmbiguousOrMissingTargets) {
  std::string const notUnique =
      "Please correctly and uniquely specify a way to remove it. A Orvik network interface can be "
      "uniquely specified by --interface-name or --portgroup-name or --dvs-name/--dvport-id. i.e. "
      "Providing its name or its connection point are two ways to uniquely specify a Orvik "
      "network interface.";
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{}, notUnique},
      {{"-i", "orvk0", "-P", "5"}, notUnique},
      {{"-i", "orvk0", "-p", "VM Network"}, notUnique},
      {{"-P", "5"},
       "A connection point of either vswitch port group name or dvs-name/dvport-id should be "
       "specified. If connection point is DVPort, --dvs-name and --dvport-id must be specified "
       "at the same time."},
      {{"-p", "VM Network"},
       "Unable to remove Orvik network interface. Error was : No Orvik network interface on port "
       "group VM Network in netstack defaultTcpipStack"},
      {{"-p", "Management Network", "-N", "livehop"},
       "Unable to remove Orvik network interface. Error was : No Orvik network interface on port "
       "group Management Network in netstack livehop"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(With({"network", "ip", "interface", "remove"}, c.args), {c.message});
  }
  // The one failure with a root: an unknown name.
  std::string const before = StateFileText();
  auto output = Execute({"network", "ip", "interface", "remove", "-i", "orvk9"});
  EXPECT_EQ(output->GetErrorMessages(),
            Messages{"Unable to find Orvik network interface with the name orvk9"});
  auto root = std::dynamic_pointer_cast<MetaBool>(output->GetRootObject());
  ASSERT_NE(root, nullptr);
  EXPECT_FALSE(root->GetValue());
  EXPECT_TRUE(StateFileText() == before);
}

TEST_F(InterfaceTest, RemoveByNameIgnoresNetstack) {
  ExpectTrue({"network", "ip", "interface", "remove", "-i", "orvk0", "-N", "nonsense"});
  EXPECT_TRUE(Rows(kList).empty());
  EXPECT_EQ(Rows({"network", "vswitch", "standard", "portgroup", "list"})[0].at("Active Clients"),
            "0");
  // Its routes went with it.
  EXPECT_TRUE(Rows({"network", "ip", "route", "ipv4", "list"}).empty());
}

TEST_F(InterfaceTest, SetEnablesAndChangesMtu) {
  ExpectTrue({"network", "ip", "interface", "set", "-i", "orvk0"});
  ExpectTrue({"network", "ip", "interface", "set", "-i", "orvk0", "-e", "false", "-m", "9000"});
  EXPECT_EQ(Rows(kList)[0].at("Enabled"), "false");
  EXPECT_EQ(Rows(kList)[0].at("MTU"), "9000");
  ExpectTrue({"network", "ip", "interface", "set", "-i", "orvk0", "-e", "true"});
  EXPECT_EQ(Rows(kList)[0].at("Enabled"), "true");

  Refused({"network", "ip", "interface", "set", "-i", "orvk5", "-e", "false"},
          {"Unable to find an interface with name orvk5"});
  Refused({"network", "ip", "interface", "set", "-i", "orvk0", "-m", "100"},
          {"Invalid MTU 100 for orvk0: it must be between 1280 and 9000"});
  // A negative MTU is refused after --enabled has acted.
  auto output =
      Execute({"network", "ip", "interface", "set", "-i", "orvk0", "-e", "false", "-m", "-1"});
  EXPECT_EQ(output->GetErrorMessages(), Messages{"MTU size should be a positive value"});
  EXPECT_EQ(output->GetRootObject(), nullptr);
  EXPECT_EQ(Rows(kList)[0].at("Enabled"), "false");
  EXPECT_EQ(Rows(kList)[0].at("MTU"), "9000");
}

TEST_F(InterfaceTest, Ipv4SetRefusesBadCombinations) {
  Args const set = {"network", "ip", "interface", "ipv4", "set", "-i", "orvk0"};
  std::string const needBoth = "The --type=static requires the --ipv4 and --netmask options.";
  std::string const badIpv4 =
      "Invalid --ipv4 option provided. This address is not a valid IPv4 address";
  std::string const badNetmask =
      "Invalid --netmask option provided. This address is not a valid IPv4 address";
  struct Case {
    Args args;
    Messages messages;
  };
  std::vector<Case> const cases = {
      {{"-I", "1.2.3.4"}, {"-I|--ipv4 or -g|--gateway can be specified only if type is specified"}},
      {{"-g", "1.2.3.4"}, {"-I|--ipv4 or -g|--gateway can be specified only if type is specified"}},
      {{"-t", "static", "-I", "1.2.3.4"}, {needBoth, badNetmask}},
      {{"-t", "static", "-N", "255.0.0.0"}, {needBoth, badIpv4}},
      {{"-t", "static", "-I", "1.2.3", "-N", "255.0.0.256"}, {badIpv4, badNetmask}},
      {{"-t", "static", "-I", "1.2.3.4", "-N", "255.0.0.0", "-g", "bad"},
       {"Invalid --gateway option provided. This address is not a valid IPv4 address"}},
      {{"-t", "dhcp", "-I", "1.2.3.4"},
       {"-I|--ipv4 or -g|--gateway can be specified only if type is static"}},
      {{"-t", "none", "-g", "1.2.3.4"},
       {"-I|--ipv4 or -g|--gateway can be specified only if type is static"}},
      {{"-P", "true"}, {"-P|--peer-dns can be specified only if DHCP is enabled"}},
      {{"-t", "static", "-I", "10.0.0.5", "-N", "255.0.255.0"},
       {"Error changing IPv4 configuration for the interface orvk0. Error was : Invalid IPv4 "
        "netmask 255.0.255.0 for orvk0"}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.messages[0]);
    Refused(With(set, c.args), c.messages);
  }
  Refused({"network", "ip", "interface", "ipv4", "set", "-i", "orvk3", "-t", "dhcp"},
          {"Unable to find a Orvik interface with the name orvk3"});
}

TEST_F(InterfaceTest, Ipv4SetChangesModes) {
  Args const set = {"network", "ip", "interface", "ipv4", "set", "-i", "orvk0"};
  ExpectTrue(With(set, {"-P", "false"}));
  ExpectTrue(With(set, {"-N", "255.0.0.0"}));
  EXPECT_EQ(Rows(kIpv4Get)[0].at("IPv4 Netmask"), "255.255.255.0");

  // Static without a gateway: the interface's own is reset, and the
  // instance's default gateway shows instead.
  ExpectTrue(With(set, {"-t", "static", "-I", "192.168.10.40", "-N", "255.255.255.0"}));
  auto row = Rows(kIpv4Get)[0];
  EXPECT_EQ(row.at("IPv4 Address"), "192.168.10.40");
  EXPECT_EQ(row.at("Gateway"), "192.168.10.1");
  EXPECT_EQ(OrvkCtl::Sim::ReadHost().ip.interfaces[0].ip.ipv4_gateway, "0.0.0.0");

  ExpectTrue(With(set, {"-t", "dhcp", "-P", "true", "-N", "255.0.0.0"}));
  row = Rows(kIpv4Get)[0];
  EXPECT_EQ(row.at("Address Type"), "DHCP");
  EXPECT_EQ(row.at("DHCP DNS"), "true");
  EXPECT_EQ(row.at("Gateway"), "0.0.0.0");

  ExpectTrue(With(set, {"-t", "none"}));
  row = Rows(kIpv4Get)[0];
  EXPECT_EQ(row.at("Address Type"), "NONE");
  EXPECT_EQ(row.at("IPv4 Address"), "0.0.0.0");
}

TEST_F(InterfaceTest, Ipv4GetSelection) {
  Refused(With(kIpv4Get, {"-i", "orvk4"}),
          {"Unable to find a Orvik interface with the name orvk4"});
  EXPECT_EQ(Column(With(kIpv4Get, {"-N", "livehop"}), "Name"), std::vector<std::string>{});
  EXPECT_EQ(Column(With(kIpv4Get, {"-i", "orvk0", "-N", "livehop"}), "Name"),
            std::vector<std::string>{"orvk0"});
  auto output = Execute(With(kIpv4Get, {"-N", "nope"}));
  EXPECT_EQ(output->GetErrorMessages(),
            Messages{"Error getting IPv4 configuration. . Error was : Netstack instance nope does "
                     "not exist"});
}

TEST_F(InterfaceTest, Ipv6SetFollowsItsOptionOrder) {
  Args const set = {"network", "ip", "interface", "ipv6", "set", "-i", "orvk0"};
  Refused(With(set, {"-P", "true"}),
          {"-P|--peer-dns can be specified only if DHCPv6 or RA is enabled"});
  Refused(With(set, {"-g", "fe80::zz"}),
          {"Invalid --gateway option provided.This address is not a valid IPv6 address"});
  Refused(With(set, {"-r", "true", "-g", "fe80::1"}),
          {"Cannot set an interface gateway when Router Advertisement is enabled."});

  ExpectTrue(With(set, {"-g", "fe80::1"}));
  EXPECT_EQ(Rows(kIpv6Get)[0].at("Gateway"), "fe80::1");
  // Without --gateway the gateway is cleared.
  ExpectTrue(With(set, {"-d", "true", "-P", "true"}));
  auto row = Rows(kIpv6Get)[0];
  EXPECT_EQ(row.at("Gateway"), "::");
  EXPECT_EQ(row.at("DHCPv6 Enabled"), "true");
  EXPECT_EQ(row.at("DHCP DNS"), "true");
  // DHCP DNS shows false once neither DHCPv6 nor RA is on.
  ExpectTrue(With(set, {"-d", "false", "-e", "false"}));
  row = Rows(kIpv6Get)[0];
  EXPECT_EQ(row.at("DHCP DNS"), "false");
  EXPECT_EQ(row.at("IPv6 Enabled"), "false");
  EXPECT_TRUE(OrvkCtl::Sim::ReadHost().ip.interfaces[0].configured_ip.ipv6_dhcp_dns);
}

TEST_F(InterfaceTest, Ipv6AddressesAddAndRemove) {
  Args const add = {"network", "ip", "interface", "ipv6", "address", "add"};
  Args const remove = {"network", "ip", "interface", "ipv6", "address", "remove"};
  std::string const format =
      "Invalid format for IPv6 address. Address must be in the format "
      "<ipv6-address>/<prefix-length>   Example: 1:2:3:4::/64";
  for (auto const* verb : {&add, &remove}) {
    Refused(With(*verb, {"-i", "orvk9", "-I", "2001:db8::1"}), {format});
    Refused(With(*verb, {"-i", "orvk9", "-I", "2001:db8::1/64"}),
            {"Unable to find a Orvik interface with the name orvk9"});
  }
  Refused(With(add, {"-i", "orvk0", "-I", "2001:db8:10::21/64"}),
          {"Error adding IPv6 address for the interface orvk0. Error was : " +
           std::string("IPv6 address already configured: 2001:db8:10::21/64")});
  ExpectTrue(With(add, {"-i", "orvk0", "-I", "2001:db8:20::5/48"}));
  ExpectTrue(With(remove, {"-i", "orvk0", "-I", "2001:db8:10::21/64"}));
  auto rows = Rows(With(kIpv6List, {"-i", "orvk0"}));
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1], (Row{{"Interface", "orvk0"},
                          {"Address", "2001:db8:20::5"},
                          {"Netmask", "48"},
                          {"Type", "STATIC"},
                          {"Status", "PREFERRED"}}));
  // The routes to the interface's own networks follow its addresses.
  std::vector<std::string> networks;
  for (auto const& route : OrvkCtl::Sim::ReadHost().ip.routes[0].ipv6) {
    networks.push_back(route.network);
  }
  EXPECT_EQ(networks, (std::vector<std::string>{"::/0", "fe80::/64", "2001:db8:20::/48"}));
  Refused(With(remove, {"-i", "orvk0", "-I", "2001:db8:10::21/64"}),
          {"Error removing IPv6 address for the interface orvk0. Error was : " +
           std::string("IPv6 address not configured: 2001:db8:10::21/64")});
}

TEST_F(InterfaceTest, HostFailuresAreWordedPerCommand) {
  struct Case {
    Args args;
    char const* operation;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"network", "ip", "interface", "list"}, "OrvikNicInfoImpl::GetOrvikNics", "boom"},
      {{"network", "ip", "interface", "add", "-p", "VM Network"},
       "OrvkNicImpl::SetIpConfig",
       "Unable to add Orvik network interface. Error was : boom"},
      {{"network", "ip", "interface", "remove", "-i", "orvk0"},
       "OrvkNicImpl::Remove",
       "Unable to remove Orvik network interface. Error was : boom"},
      {{"network", "ip", "interface", "remove", "-p", "Management Network"},
       "OrvikNicInfoImpl::RemoveOrvikNic",
       "Unable to remove Orvik network interface. Error was : boom"},
      {{"network", "ip", "interface", "set", "-i", "orvk0", "-e", "false"},
       "OrvkNicImpl::Disable",
       "boom"},
      {kIpv4Get, "OrvkNicImpl::GetIpConfig",
       "Error getting IPv4 configuration. . Error was : boom"},
      {kIpv6Get, "OrvkNicImpl::GetIpConfig",
       "Error getting IPv6 configuration. . Error was : boom"},
      {{"network", "ip", "interface", "ipv4", "set", "-i", "orvk0", "-t", "dhcp"},
       "OrvkNicImpl::SetIpConfig",
       "Error changing IPv4 configuration for the interface orvk0. Error was : boom"},
      {{"network", "ip", "interface", "ipv6", "set", "-i", "orvk0"},
       "OrvkNicImpl::SetIpConfig",
       "Error changing IPv6 configuration for the interface orvk0. Error was : boom"},
      {{"network", "ip", "interface", "ipv6", "address", "add", "-i", "orvk0", "-I", "::5/64"},
       "OrvkNicImpl::SetIpConfig",
       "Error adding IPv6 address for the interface orvk0. Error was : boom"},
      {{"network", "ip", "interface", "ipv6", "address", "remove", "-i", "orvk0", "-I",
        "2001:db8:10::21/64"},
       "OrvkNicImpl::SetIpConfig",
       "Error removing IPv6 address for the interface orvk0. Error was : boom"},
      {kIpv6List, "OrvkNicImpl::GetIpConfig", "Unable to list IPv6 Addresses. Error was: boom"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    ClearFaults();
    InjectFault(c.operation, "boom");
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(InterfaceTest, WorksThroughTheExecutable) {
  auto result = Run({"network", "ip", "interface", "ipv4", "get"});
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("192.168.10.21"), std::string::npos);
  result = Run({"network", "ip", "interface", "add", "-p", "VM Network", "-s", "x"});
  EXPECT_EQ(result.status, 1);
  result = Run({"network", "ip", "interface", "add", "-i", "orvk256", "-p", "VM Network"});
  EXPECT_EQ(result.status, 2);
}

}  // namespace
