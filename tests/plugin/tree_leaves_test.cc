// The whole `network` tree against the table of its 152 command leaves: every
// leaf at its path, made from its class, and nothing else. A failure names
// each leaf that is missing, extra or of the wrong class.
#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include "support/harness.h"
#include "toolbase/auto_cli.h"

namespace {

using Toolbase::AutoCli::NamespaceNode;
using Toolbase::AutoCli::NodeType;

struct Leaf {
  char const* path;
  char const* command_class;
};

// In the order each parent receives its children.
const Leaf kLeaves[] = {
    {"network ip get", "IpGet"},
    {"network ip set", "IpSet"},
    {"network ip neighbor list", "IpNeighborList"},
    {"network ip neighbor remove", "IpNeighborRemove"},
    {"network ip connection list", "IpConnectionList"},
    {"network ip dns server list", "IpDNSServerList"},
    {"network ip dns server add", "IpDNSServerAdd"},
    {"network ip dns server remove", "IpDNSServerRemove"},
    {"network ip dns search add", "IpDNSSearchAdd"},
    {"network ip dns search remove", "IpDNSSearchRemove"},
    {"network ip dns search list", "IpDNSSearchList"},
    {"network ip route ipv4 add", "IpRouteIpv4Add"},
    {"network ip route ipv4 remove", "IpRouteIpv4Remove"},
    {"network ip route ipv4 list", "IpRouteIpv4List"},
    {"network ip route ipv6 add", "IpRouteIpv6Add"},
    {"network ip route ipv6 remove", "IpRouteIpv6Remove"},
    {"network ip route ipv6 list", "IpRouteIpv6List"},
    {"network ip ipsec sa add", "IpIpsecSAAdd"},
    {"network ip ipsec sa remove", "IpIpsecSARemove"},
    {"network ip ipsec sa list", "IpIpsecSAList"},
    {"network ip ipsec sp add", "IpIpsecSPAdd"},
    {"network ip ipsec sp remove", "IpIpsecSPRemove"},
    {"network ip ipsec sp list", "IpIpsecSPList"},
    {"network ip interface add", "IpInterfaceAdd"},
    {"network ip interface remove", "IpInterfaceRemove"},
    {"network ip interface list", "IpInterfaceList"},
    {"network ip interface set", "IpInterfaceSet"},
    {"network ip interface ipv4 get", "IpInterfaceIpv4Get"},
    {"network ip interface ipv4 set", "IpInterfaceIpv4Set"},
    {"network ip interface ipv4 address list", "IpInterfaceIpv4Get"},
    {"network ip interface ipv6 set", "IpInterfaceIpv6Set"},
    {"network ip interface ipv6 get", "IpInterfaceIpv6Get"},
    {"network ip interface ipv6 address list", "IpInterfaceIpv6AddressList"},
    {"network ip interface ipv6 address add", "IpInterfaceIpv6AddressAdd"},
    {"network ip interface ipv6 address remove", "IpInterfaceIpv6AddressRemove"},
    {"network ip interface tag add", "IpInterfaceTagAdd"},
    {"network ip interface tag remove", "IpInterfaceTagRemove"},
    {"network ip interface tag get", "IpInterfaceTagGet"},
    {"network ip netstack list", "IpNetstackInstanceList"},
    {"network ip netstack add", "IpNetstackInstanceAdd"},
    {"network ip netstack remove", "IpNetstackInstanceRemove"},
    {"network ip netstack get", "IpNetstackInstanceGet"},
    {"network ip netstack set", "IpNetstackInstanceSet"},
    {"network ip hosts list", "IpHostsList"},
    {"network ip hosts add", "IpHostsAdd"},
    {"network ip hosts remove", "IpHostsRemove"},
    {"network multicast group list", "MulticastGroupList"},
    {"network nic list", "NicList"},
    {"network nic up", "NicUp"},
    {"network nic get", "NicGet"},
    {"network nic set", "NicSet"},
    {"network nic down", "NicDown"},
    {"network nic stats get", "NicStatsGet"},
    {"network nic vlan stats get", "NicVlanStatsGet"},
    {"network nic vlan stats set", "NicVlanStatsSet"},
    {"network nic coalesce get", "NicCoalesceGet"},
    {"network nic coalesce set", "NicCoalesceSet"},
    {"network nic coalesce low get", "NicCoalesceLowGet"},
    {"network nic coalesce low set", "NicCoalesceLowSet"},
    {"network nic coalesce high get", "NicCoalesceHighGet"},
    {"network nic coalesce high set", "NicCoalesceHighSet"},
    {"network nic cso get", "NicCsoGet"},
    {"network nic cso set", "NicCsoSet"},
    {"network nic tso get", "NicTsoGet"},
    {"network nic tso set", "NicTsoSet"},
    {"network nic sg get", "NicSgGet"},
    {"network nic sg set", "NicSgSet"},
    {"network nic pauseParams list", "NicPauseParamsList"},
    {"network nic pauseParams set", "NicPauseParamsSet"},
    {"network nic register dump", "NicRegisterDump"},
    {"network nic eeprom dump", "NicEepromDump"},
    {"network nic eeprom change", "NicEepromChange"},
    {"network nic negotiate restart", "NicNegotiationRestart"},
    {"network nic selftest run", "NicSelfTestRun"},
    {"network nic queue loadbalancer list", "NicQueueLbSettingList"},
    {"network nic queue loadbalancer set", "NicQueueLbSettingSet"},
    {"network nic queue loadbalancer state list", "NicQueueLbStateList"},
    {"network nic queue loadbalancer state set", "NicQueueLbStateSet"},
    {"network nic queue loadbalancer plugin list", "NicQueueLbPluginList"},
    {"network nic queue loadbalancer plugin set", "NicQueueLbPluginSet"},
    {"network nic queue count get", "NicQueueCountGet"},
    {"network nic queue count set", "NicQueueCountSet"},
    {"network nic queue filterclass list", "NicQueueFilterClassList"},
    {"network nic software list", "NicSoftwareList"},
    {"network nic software set", "NicSoftwareSet"},
    {"network nic ring preset get", "NicRingPresetGet"},
    {"network nic ring current get", "NicRingCurrentGet"},
    {"network nic ring current set", "NicRingCurrentSet"},
    {"network nic hwCap supported list", "NicHwCapSupportedList"},
    {"network nic hwCap activated list", "NicHwCapActivatedList"},
    {"network nic dcb status get", "NicDcbStatusGet"},
    {"network nic attachment add", "NicAttachmentAdd"},
    {"network nic attachment remove", "NicAttachmentRemove"},
    {"network nic attachment list", "NicAttachmentList"},
    {"network sriovnic list", "SriovNicList"},
    {"network sriovnic vf list", "VfList"},
    {"network sriovnic vf stats", "VfStats"},
    {"network vswitch standard add", "VirtualSwitchStandardAdd"},
    {"network vswitch standard set", "VirtualSwitchStandardSet"},
    {"network vswitch standard list", "VirtualSwitchStandardList"},
    {"network vswitch standard remove", "VirtualSwitchStandardRemove"},
    {"network vswitch standard uplink add", "VirtualSwitchStandardUplinkAdd"},
    {"network vswitch standard uplink remove", "VirtualSwitchStandardUplinkRemove"},
    {"network vswitch standard policy shaping get", "VirtualSwitchStandardPolicyShapingGet"},
    {"network vswitch standard policy shaping set", "VirtualSwitchStandardPolicyShapingSet"},
    {"network vswitch standard policy security get", "VirtualSwitchStandardPolicySecurityGet"},
    {"network vswitch standard policy security set", "VirtualSwitchStandardPolicySecuritySet"},
    {"network vswitch standard policy failover get", "VirtualSwitchStandardPolicyFailoverGet"},
    {"network vswitch standard policy failover set", "VirtualSwitchStandardPolicyFailoverSet"},
    {"network vswitch standard portgroup list", "VirtualSwitchPortGroupList"},
    {"network vswitch standard portgroup add", "VirtualSwitchPortGroupAdd"},
    {"network vswitch standard portgroup remove", "VirtualSwitchPortGroupRemove"},
    {"network vswitch standard portgroup set", "VirtualSwitchPortGroupSet"},
    {"network vswitch standard portgroup policy shaping get", "VirtualSwitchPortGroupPolicyShapingGet"},
    {"network vswitch standard portgroup policy shaping set", "VirtualSwitchPortGroupPolicyShapingSet"},
    {"network vswitch standard portgroup policy failover get", "VirtualSwitchPortGroupPolicyFailoverGet"},
    {"network vswitch standard portgroup policy failover set", "VirtualSwitchPortGroupPolicyFailoverSet"},
    {"network vswitch standard portgroup policy security get", "VirtualSwitchPortGroupPolicySecurityGet"},
    {"network vswitch standard portgroup policy security set", "VirtualSwitchPortGroupPolicySecuritySet"},
    {"network vswitch dvs corvane list", "VirtualSwitchDVSCorvaneList"},
    {"network vswitch dvs corvane lacp config get", "LacpGetConfig"},
    {"network vswitch dvs corvane lacp status get", "LacpGetStatus"},
    {"network vswitch dvs corvane lacp stats get", "LacpGetStats"},
    {"network vswitch dvs corvane lacp timeout set", "LacpSetTimeout"},
    {"network firewall get", "FirewallGet"},
    {"network firewall set", "FirewallSet"},
    {"network firewall load", "FirewallLoad"},
    {"network firewall refresh", "FirewallRefresh"},
    {"network firewall unload", "FirewallUnload"},
    {"network firewall ruleset list", "FirewallRulesetList"},
    {"network firewall ruleset set", "FirewallRulesetSet"},
    {"network firewall ruleset client get", "FirewallRulesetClientGet"},
    {"network firewall ruleset client add", "FirewallRulesetClientAdd"},
    {"network firewall ruleset client remove", "FirewallRulesetClientRemove"},
    {"network firewall ruleset rule list", "FirewallRulesetRuleList"},
    {"network firewall ruleset allowedip list", "FirewallRulesetAllowedipList"},
    {"network firewall ruleset allowedip add", "FirewallRulesetAllowedipAdd"},
    {"network firewall ruleset allowedip remove", "FirewallRulesetAllowedipRemove"},
    {"network port stats get", "PortStatsGet"},
    {"network port filter stats get", "PortFilterStatsGet"},
    {"network vm list", "VMList"},
    {"network vm port list", "VMPortList"},
    {"network ens maxLcores get", "EnsMaxlcoresGet"},
    {"network ens maxLcores set", "EnsMaxlcoresSet"},
    {"network ens lcore add", "EnsLcoreAdd"},
    {"network ens lcore remove", "EnsLcoreRemove"},
    {"network ens lcore list", "EnsLcoreList"},
    {"network ens lcore switch get", "EnsLcoreSwitchGet"},
    {"network ens lcore switch add", "EnsLcoreSwitchAdd"},
    {"network ens lcore switch remove", "EnsLcoreSwitchRemove"},
    {"network ens lcore affinity get", "EnsLcoreAffinityGet"},
    {"network ens lcore affinity set", "EnsLcoreAffinitySet"},
};

std::string ClassName(Toolbase::AutoCli::Command& command) {
  int status = 0;
  char* demangled = abi::__cxa_demangle(typeid(command).name(), nullptr, nullptr, &status);
  std::string name = status == 0 && demangled ? demangled : typeid(command).name();
  std::free(demangled);
  std::string const prefix = "CorvaneCli::NetworkNamespace::";
  if (name.rfind(prefix, 0) == 0) name.erase(0, prefix.size());
  return name;
}

std::string ParentOf(std::string const& path) { return path.substr(0, path.rfind(' ')); }

// Every command of the tree under `network`, by path, with its class; and
// each parent's commands in the order the parent lists them.
std::map<std::string, std::string> CommandsOfTheTree(
    std::map<std::string, std::vector<std::string>>* order = nullptr) {
  std::map<std::string, std::string> commands;
  std::list<std::string> words = {"network"};
  auto network = TestSupport::PluginRoot().ResolveNode(words);
  std::function<void(NamespaceNode&)> walk = [&](NamespaceNode& node) {
    if (node.GetType() == NodeType::Command) {
      auto command = node.GetDispatcher();
      std::string path = node.GetPathString(' ');
      commands[path] = command ? ClassName(*command) : "(no dispatcher)";
      if (order) (*order)[ParentOf(path)].push_back(path);
    }
    for (auto const& child : node.GetNamespaceNodes()) walk(*child);
  };
  if (network) walk(*network);
  return commands;
}

TEST(TreeLeavesTest, TheTableHoldsEachPathOnce) {
  std::set<std::string> paths;
  std::set<std::string> classes;
  for (auto const& leaf : kLeaves) {
    EXPECT_TRUE(paths.insert(leaf.path).second) << leaf.path;
    classes.insert(leaf.command_class);
  }
  EXPECT_EQ(paths.size(), 152u);
  // One class serves two leaves.
  EXPECT_EQ(classes.size(), 151u);
}

TEST(TreeLeavesTest, EveryLeafStandsAtItsPathWithItsClass) {
  auto commands = CommandsOfTheTree();
  std::ostringstream missing;
  std::ostringstream wrong;
  for (auto const& leaf : kLeaves) {
    auto found = commands.find(leaf.path);
    if (found == commands.end()) {
      missing << "\n  " << leaf.path << " (" << leaf.command_class << ")";
      continue;
    }
    if (found->second != leaf.command_class) {
      wrong << "\n  " << leaf.path << ": " << found->second << " instead of "
            << leaf.command_class;
    }
    commands.erase(found);
  }
  std::ostringstream extra;
  for (auto const& [path, command_class] : commands) {
    extra << "\n  " << path << " (" << command_class << ")";
  }
  EXPECT_TRUE(missing.str().empty()) << "leaves missing from the tree:" << missing.str();
  EXPECT_TRUE(wrong.str().empty()) << "leaves of the wrong class:" << wrong.str();
  EXPECT_TRUE(extra.str().empty()) << "leaves the table does not know:" << extra.str();
}

// Each parent receives its commands in the order of the table (leaves not
// in the tree yet are left out of the comparison).
TEST(TreeLeavesTest, ParentsHoldTheirCommandsInTableOrder) {
  std::map<std::string, std::vector<std::string>> order;
  auto commands = CommandsOfTheTree(&order);
  std::map<std::string, std::vector<std::string>> expected;
  for (auto const& leaf : kLeaves) {
    if (commands.count(leaf.path)) expected[ParentOf(leaf.path)].push_back(leaf.path);
  }
  for (auto const& [parent, paths] : order) {
    SCOPED_TRACE(parent);
    EXPECT_EQ(paths, expected[parent]);
  }
}

// The executable lists exactly the leaves of the table.
TEST(TreeLeavesTest, ListCommandsPrintsEveryLeaf) {
  auto result = TestSupport::RunProcess({"--list-commands"});
  ASSERT_EQ(result.status, 0) << result.err;
  std::set<std::string> listed;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("network ", 0) == 0) listed.insert(line);
  }
  std::ostringstream missing;
  for (auto const& leaf : kLeaves) {
    if (!listed.erase(leaf.path)) missing << "\n  " << leaf.path;
  }
  std::ostringstream extra;
  for (auto const& path : listed) extra << "\n  " << path;
  EXPECT_TRUE(missing.str().empty()) << "not listed:" << missing.str();
  EXPECT_TRUE(extra.str().empty()) << "listed beyond the table:" << extra.str();
}

}  // namespace
