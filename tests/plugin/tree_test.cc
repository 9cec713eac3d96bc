// The plug-in's tree as the framework sees it after the entry has run.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>

#include "support/harness.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using Toolbase::AutoCli::NamespaceNode;
using Toolbase::AutoCli::NodeType;

std::shared_ptr<NamespaceNode> Node(std::string const& path) {
  std::list<std::string> words;
  std::istringstream in(path);
  for (std::string word; in >> word;) words.push_back(word);
  auto node = TestSupport::PluginRoot().ResolveNode(words);
  EXPECT_TRUE(words.empty()) << path;
  return node;
}

void Walk(NamespaceNode& node, std::function<void(NamespaceNode&)> const& visit) {
  visit(node);
  for (auto const& child : node.GetNamespaceNodes()) Walk(*child, visit);
}

TEST(TreeTest, HasEveryNamespace) {
  int namespaces = 0;
  Walk(*Node("network"), [&](NamespaceNode& node) {
    if (node.GetType() == NodeType::Namespace) ++namespaces;
  });
  EXPECT_EQ(namespaces, 91);
}

TEST(TreeTest, ParentsListChildrenInRegistrationOrder) {
  struct Case {
    char const* path;
    std::vector<std::string> namespaces;  // the child namespaces, in order
  };
  std::vector<Case> cases = {
      {"network", {"ip", "multicast", "nic", "sriovnic", "vswitch", "firewall", "port", "vm", "ens"}},
      {"network ip",
       {"neighbor", "connection", "dns", "route", "ipsec", "interface", "netstack", "hosts"}},
      {"network nic coalesce", {"low", "high"}},
      {"network nic queue loadbalancer", {"state", "plugin"}},
      {"network vswitch dvs corvane", {"lacp"}},
      {"network vswitch dvs corvane lacp", {"config", "status", "stats", "timeout"}},
      {"network vswitch standard portgroup policy", {"shaping", "failover", "security"}},
      {"network ip interface ipv4", {"address"}},
      {"network ens lcore", {"switch", "affinity"}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.path);
    std::vector<std::string> namespaces;
    for (auto const& child : Node(c.path)->GetNamespaceNodes()) {
      if (child->GetType() == NodeType::Namespace) namespaces.push_back(child->GetName());
    }
    EXPECT_EQ(namespaces, c.namespaces);
  }
}

TEST(TreeTest, DescriptionsAreKeptLetterForLetter) {
  EXPECT_EQ(Node("network nic coalesce")->GetDescription(),
            "Commands to access coalesce paramaters for a NIC");
  EXPECT_EQ(Node("network nic dcb status")->GetDescription(),
            "Status information for DCB (Data Center Briding) protocol.");
  EXPECT_EQ(Node("network ip connection")->GetDescription(), "List active tcpip connections");
  EXPECT_EQ(Node("network firewall get")->GetDescription(), "Get the firewall status.");
}

TEST(TreeTest, PathsAreWorkedOutFromTheParents) {
  EXPECT_EQ(Node("network vswitch dvs corvane lacp timeout")->GetPathString(' '),
            "network vswitch dvs corvane lacp timeout");
  EXPECT_EQ(Node("network firewall set")->GetPathString('.'), "network.firewall.set");
}

// Shape rules every command of the tree keeps, whichever branch it is in.
TEST(TreeTest, EveryCommandIsWellFormed) {
  int commands = 0;
  Walk(*Node("network"), [&](NamespaceNode& node) {
    if (node.GetType() != NodeType::Command) return;
    ++commands;
    SCOPED_TRACE(node.GetPathString(' '));
    auto command = node.GetDispatcher();
    ASSERT_NE(command, nullptr);
    EXPECT_FALSE(command->GetDescription().empty());
    std::set<std::string> long_names;
    std::set<std::string> short_names;
    auto input_spec = command->GetInputSpec();
    for (auto const& parameter : input_spec->GetParameters()) {
      EXPECT_TRUE(long_names.insert(parameter->GetName()).second) << parameter->GetName();
      if (!parameter->GetShortName().empty()) {
        EXPECT_EQ(parameter->GetShortName().size(), 1u) << parameter->GetName();
        EXPECT_TRUE(short_names.insert(parameter->GetShortName()).second) << parameter->GetName();
      }
      EXPECT_FALSE(parameter->GetDescription().empty()) << parameter->GetName();
    }
    // The output shape is rebuilt on each call and is the same every time.
    auto first = command->GetOutputSpec()->GetRootObject();
    auto second = command->GetOutputSpec()->GetRootObject();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->GetKind(), second->GetKind());
    // A bool result carries no presentation defaults; every other kind names a formatter.
    if (first->GetKind() == Toolbase::MetaObj::Kind::Bool) {
      EXPECT_TRUE(command->GetDefaultOutputFormatter().empty());
      EXPECT_TRUE(command->GetDefaultOutputParameters().empty());
    } else {
      EXPECT_FALSE(command->GetDefaultOutputFormatter().empty());
    }
  });
  EXPECT_GE(commands, 5);
  EXPECT_LE(commands, 152);
}

TEST(TreeTest, BuildingTheTreeTouchesNoHost) {
  char dir_template[] = "/tmp/toolbase-tree-XXXXXX";
  ASSERT_NE(mkdtemp(dir_template), nullptr);
  std::string state = std::string(dir_template) + "/state.json";
  setenv("TOOLBASE_HOST_STATE", state.c_str(), 1);
  auto root = TestSupport::NewPluginRoot();
  ASSERT_TRUE(root->HasNamespaceNode("network"));
  EXPECT_FALSE(std::filesystem::exists(state));
  auto help = TestSupport::RunProcess({"network", "firewall", "set", "--help"},
                                      {{"TOOLBASE_HOST_STATE", state}});
  EXPECT_EQ(help.status, 0);
  EXPECT_FALSE(std::filesystem::exists(state));
  std::filesystem::remove_all(dir_template);
}

}  // namespace
