// The firewall state commands against the simulated host.
#include <gtest/gtest.h>

#include "support/harness.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using TestSupport::HostTest;

class FirewallStateTest : public HostTest {
 protected:
  void ExpectState(char const* enabled, char const* action, char const* loaded = "true") {
    auto result = Run({"network", "firewall", "get"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, std::string("Loaded: ") + loaded + "\nEnabled: " + enabled +
                              "\nDefaultAction: " + action + "\n");
  }
};

TEST_F(FirewallStateTest, GetShowsTheDefaultHost) { ExpectState("true", "DROP"); }

TEST_F(FirewallStateTest, SetChangesSurviveAReload) {
  auto result = Run({"network", "firewall", "set", "--enabled", "false", "-d", "yes"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  Reload();
  ExpectState("false", "PASS");
}

TEST_F(FirewallStateTest, DefaultActionIsATruthValueNotAWord) {
  ASSERT_EQ(Run({"network", "firewall", "set", "--default-action", "true"}).status, 0);
  ASSERT_EQ(Run({"network", "firewall", "set", "--default-action", "false"}).status, 0);
  ExpectState("true", "DROP");
  auto result = Run({"network", "firewall", "set", "--default-action", "DROP"});
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.err.find("--default-action"), std::string::npos) << result.err;
}

TEST_F(FirewallStateTest, SetWithoutParametersFailsEvenWhenUnloaded) {
  for (bool unloaded : {false, true}) {
    SCOPED_TRACE(unloaded ? "unloaded" : "loaded");
    if (unloaded) {
      ASSERT_EQ(Run({"network", "firewall", "unload"}).status, 0);
    }
    auto output = Execute({"network", "firewall", "set"});
    EXPECT_EQ(output->GetErrorMessages(),
              std::vector<std::string>{"Need parameter --enabled or --default-action"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(FirewallStateTest, SetOnUnloadedModuleIsRefused) {
  ASSERT_EQ(Run({"network", "firewall", "unload"}).status, 0);
  std::string before = StateFileText();
  auto result = Run({"network", "firewall", "set", "--enabled", "false"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "Firewall module is not loaded\n");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(FirewallStateTest, SetToTheCurrentValueMakesNoHostCall) {
  // A call would meet the injected fault.
  InjectFault("SystemInfoImpl::SetFirewallEnabled", "must not be called");
  InjectFault("SystemInfoImpl::SetFirewallDefaultAction", "must not be called");
  auto output = Execute({"network", "firewall", "set", "--enabled", "true", "-d", "false"});
  EXPECT_TRUE(output->GetErrorMessages().empty());
  auto root = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaBool>(output->GetRootObject());
  ASSERT_NE(root, nullptr);
  EXPECT_TRUE(root->GetValue());
}

TEST_F(FirewallStateTest, FirstChangeStaysWhenTheSecondFails) {
  InjectFault("SystemInfoImpl::SetFirewallDefaultAction", "default action is locked");
  auto result = Run({"network", "firewall", "set", "--enabled", "false", "-d", "true"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "default action is locked\n");
  ClearFaults();
  ExpectState("false", "DROP");
}

TEST_F(FirewallStateTest, UnloadedModuleReadsAsDisabledAndPass) {
  EXPECT_EQ(Run({"network", "firewall", "unload"}).status, 0);
  EXPECT_EQ(Run({"network", "firewall", "unload"}).status, 0);
  // Nothing but the module is asked while it is unloaded.
  InjectFault("SystemInfoImpl::IsFirewallEnabled", "must not be called");
  ExpectState("false", "PASS", "false");
  ClearFaults();
  ASSERT_EQ(Run({"network", "firewall", "load"}).status, 0);
  ExpectState("true", "DROP");
}

TEST_F(FirewallStateTest, RefreshKeepsDynamicRulesInOrder) {
  ASSERT_EQ(Run({"network", "firewall", "get"}).status, 0);
  std::string before = StateFileText();
  auto result = Run({"network", "firewall", "refresh"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(StateFileText(), before);
  // Load alone drops them.
  ASSERT_EQ(Run({"network", "firewall", "load"}).status, 0);
  EXPECT_EQ(StateFileText().find("\"dhcp\""), std::string::npos);
}

TEST_F(FirewallStateTest, HandlersReportTheHostText) {
  struct Case {
    std::vector<std::string> args;
    char const* operation;
    char const* expected;
  };
  std::vector<Case> cases = {
      {{"network", "firewall", "get"}, "ModuleImpl::Refresh",
       "Unable to get firewall status.\nno module table"},
      {{"network", "firewall", "get"}, "SystemInfoImpl::GetFirewallDefaultAction",
       "Unable to get firewall status.\nno module table"},
      {{"network", "firewall", "set", "-e", "0"}, "SystemInfoImpl::SetFirewallEnabled",
       "no module table"},
      {{"network", "firewall", "load"}, "ModuleImpl::Load", "no module table"},
      {{"network", "firewall", "load"}, "SystemInfoImpl::LoadFirewallRulesets",
       "no module table"},
      {{"network", "firewall", "refresh"}, "SystemInfoImpl::AddFirewallDynamicRule",
       "no module table"},
      {{"network", "firewall", "unload"}, "SystemInfoImpl::DestroyFirewallFilters",
       "no module table"},
      {{"network", "firewall", "unload"}, "ModuleImpl::Unload", "no module table"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "no module table");
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{c.expected});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(FirewallStateTest, EmptyHostTextStillCountsAsAnError) {
  InjectFault("ModuleImpl::Refresh", "");
  auto result = Run({"network", "firewall", "unload"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "\n");
}

TEST_F(FirewallStateTest, MachineFormatsKeepTypes) {
  auto result = Run({"--formatter", "json", "network", "firewall", "get"});
  ASSERT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("\"Loaded\": true"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("\"DefaultAction\": \"DROP\""), std::string::npos) << result.out;
  result = Run({"network", "firewall", "set", "-e", "false", "--formatter=json"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "true\n");
}

}  // namespace
