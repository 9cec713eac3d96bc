// The policy option kit on its own: how the options of a set command turn
// into changes of a policy value, and how a policy value reads back.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <utility>

#include "hostctl/policy.h"
#include "support/harness.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
// The kit lives in the plug-in module, which exports its entry only: build it
// into this test as well to call it directly.
#include "vswitch/PolicyKit.cc"

namespace {

using CorvaneCli::NetworkNamespace::AddFailoverParameters;
using CorvaneCli::NetworkNamespace::AddOverrideFields;
using CorvaneCli::NetworkNamespace::AddShapingParameters;
using CorvaneCli::NetworkNamespace::FillFailoverFields;
using CorvaneCli::NetworkNamespace::FillOverrideFields;
using CorvaneCli::NetworkNamespace::FillShapingFields;
using CorvaneCli::NetworkNamespace::OverrideField;
using CorvaneCli::NetworkNamespace::PortGroupPolicySpec;
using CorvaneCli::NetworkNamespace::SetFailoverPolicy;
using CorvaneCli::NetworkNamespace::SetSecurityPolicy;
using CorvaneCli::NetworkNamespace::SetShapingPolicy;
using CorvaneCli::NetworkNamespace::SplitUplinks;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using Strings = std::vector<std::string>;
using Options = std::vector<std::pair<std::string, std::string>>;

std::shared_ptr<Toolbase::CallSpec::Input> MakeInput(Options const& options) {
  auto input = Toolbase::CallSpec::Input::New();
  for (auto const& [name, value] : options) input->AddValue(name, value);
  return input;
}

TEST(SplitUplinksTest, FollowsTheTokenIteratorRules) {
  struct Case {
    char const* text;
    Strings expected;
  };
  std::vector<Case> cases = {
      {"", {}},
      {"ornic0", {"ornic0"}},
      {"ornic0,ornic1", {"ornic0", "ornic1"}},
      {",ornic0", {"", "ornic0"}},
      {"ornic0,,ornic1", {"ornic0", "", "ornic1"}},
      {"ornic0,", {"ornic0"}},
      {",", {""}},
      {" ornic0 , ornic1", {" ornic0 ", " ornic1"}},
      {"ornic0,ornic0", {"ornic0", "ornic0"}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string("'") + c.text + "'");
    EXPECT_EQ(SplitUplinks(c.text), c.expected);
  }
}

// Connected uplinks: ornic0..ornic2. ornic3 is a NIC of the host that is not
// connected; ornic9 is no NIC at all.
class FailoverKitTest : public TestSupport::HostTest {
 protected:
  struct Result {
    NicTeamingPolicy target;
    NicTeamingPolicy current;
    Strings errors;
  };

  Result Apply(Options const& options, Strings const& order, int active) {
    Result result;
    result.target.SetTeamingPolicy(HostCtl::Network::TEAM_POLICY_IP_HASH);
    result.target.uplinkOrder = {"stale"};
    result.target.maxActiveUplinks = 7;
    result.current.SetUplinkOrder(order);
    result.current.SetMaxActiveUplinks(active);
    Strings uplinks = {"ornic0", "ornic1", "ornic2"};
    auto output = Toolbase::CallSpec::Output::New();
    SetFailoverPolicy(MakeInput(options), output, result.target, result.current, uplinks);
    result.errors = output->GetErrorMessages();
    return result;
  }
};

TEST_F(FailoverKitTest, MergesUplinkListsWithTheOrderInForce) {
  struct Case {
    char const* name;
    Options options;
    Strings order;  // in force
    int active;     // in force
    Strings expectedOrder;
    int expectedActive;
    int expectedCurrentActive;
    Strings errors;
  };
  Strings all = {"ornic0", "ornic1", "ornic2"};
  std::vector<Case> cases = {
      {"active only replaces the active part",
       {{"active-uplinks", "ornic2"}},
       all,
       2,
       {"ornic2"},
       1,
       1,
       {}},
      {"active only keeps the standby part behind it",
       {{"active-uplinks", "ornic1"}},
       all,
       1,
       {"ornic1", "ornic2"},
       1,
       1,
       {}},
      {"standby only keeps the active part in front of it",
       {{"standby-uplinks", "ornic1"}},
       all,
       2,
       {"ornic0", "ornic1"},
       1,
       2,
       {}},
      {"standby only may take every active uplink",
       {{"standby-uplinks", "ornic0,ornic1"}},
       all,
       2,
       {"ornic0", "ornic1"},
       0,
       2,
       {}},
      {"both lists replace the whole order",
       {{"active-uplinks", "ornic1"}, {"standby-uplinks", "ornic0"}},
       all,
       3,
       {"ornic1", "ornic0"},
       1,
       1,
       {}},
      {"an empty active list leaves the standby part alone",
       {{"active-uplinks", ""}},
       all,
       1,
       {"ornic1", "ornic2"},
       0,
       0,
       {}},
      {"an empty standby list leaves the active part alone",
       {{"standby-uplinks", ""}},
       all,
       2,
       {"ornic0", "ornic1"},
       2,
       2,
       {}},
      {"a trailing comma adds nothing",
       {{"active-uplinks", "ornic0,"}},
       all,
       1,
       {"ornic0", "ornic1", "ornic2"},
       1,
       1,
       {}},
      {"a leading comma is an unknown empty name",
       {{"active-uplinks", ",ornic1"}},
       all,
       1,
       {"ornic1", "ornic2"},
       1,
       1,
       {"Unknown NIC name in active uplinks : "}},
      {"every bad name is reported, the good ones kept",
       {{"active-uplinks", "ornic9,ornic3,ornic2"}, {"standby-uplinks", "ornic8,ornic0"}},
       all,
       1,
       {"ornic2", "ornic0"},
       1,
       1,
       {"Unknown NIC name in active uplinks : ornic9",
        "NIC is not connected to the vswitch : ornic3",
        "Unknown NIC name in standby uplinks : ornic8"}},
      {"only accepted names count as active",
       {{"active-uplinks", "ornic3,ornic0"}},
       {"ornic1"},
       0,
       {"ornic0", "ornic1"},
       1,
       1,
       {"NIC is not connected to the vswitch : ornic3"}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    auto result = Apply(c.options, c.order, c.active);
    EXPECT_EQ(result.errors, c.errors);
    EXPECT_NE(result.target.setMask & NicTeamingPolicy::UPLINK_ORDER_BIT, 0u);
    EXPECT_EQ(result.target.uplinkOrder, c.expectedOrder);
    EXPECT_EQ(result.target.maxActiveUplinks, c.expectedActive);
    EXPECT_EQ(result.current.maxActiveUplinks, c.expectedCurrentActive);
    EXPECT_EQ(result.current.uplinkOrder, c.order);
  }
}

TEST_F(FailoverKitTest, DuplicatesLeaveTheOrderUnwritten) {
  struct Case {
    Options options;
    Strings order;
    int active;
  };
  std::vector<Case> cases = {
      {{{"active-uplinks", "ornic0,ornic0"}}, {}, 0},
      {{{"active-uplinks", "ornic0"}, {"standby-uplinks", "ornic0"}}, {}, 0},
      {{{"standby-uplinks", "ornic2,ornic1,ornic2"}}, {"ornic0"}, 1},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.options.front().second);
    auto result = Apply(c.options, c.order, c.active);
    EXPECT_EQ(result.errors, Strings{"some NICs appear in the input for more than once."});
    EXPECT_EQ(result.target.setMask & NicTeamingPolicy::UPLINK_ORDER_BIT, 0u);
    EXPECT_EQ(result.target.uplinkOrder, Strings{"stale"});
  }
}

TEST_F(FailoverKitTest, WithoutUplinkListsTheOrderIsNotTouched) {
  auto result = Apply({{"notify-switches", "false"}}, {"ornic0"}, 1);
  EXPECT_TRUE(result.errors.empty());
  EXPECT_EQ(result.target.setMask,
            NicTeamingPolicy::TEAM_POLICY_BIT | NicTeamingPolicy::NOTIFY_SWITCH_BIT);
  EXPECT_EQ(result.target.uplinkOrder, Strings{"stale"});
  EXPECT_EQ(result.target.maxActiveUplinks, 7);
  EXPECT_FALSE(result.target.notifySwitchOnFailure);
}

TEST_F(FailoverKitTest, MapsWordsToPolicyValues) {
  struct Case {
    Options options;
    int teamPolicy;
    bool beacon;
    bool rolling;
    uint32_t mask;
  };
  using P = NicTeamingPolicy;
  std::vector<Case> cases = {
      {{{"load-balancing", "portid"}}, 3, false, false, P::TEAM_POLICY_BIT},
      {{{"load-balancing", "iphash"}}, 1, false, false, P::TEAM_POLICY_BIT},
      {{{"load-balancing", "mac"}}, 2, false, false, P::TEAM_POLICY_BIT},
      {{{"load-balancing", "explicit"}}, 4, false, false, P::TEAM_POLICY_BIT},
      {{{"failure-detection", "beacon"}},
       1,
       true,
       false,
       P::TEAM_POLICY_BIT | P::LINK_CRITERIA_BIT},
      {{{"failure-detection", "link"}}, 1, false, false, P::TEAM_POLICY_BIT | P::LINK_CRITERIA_BIT},
      {{{"failback", "true"}}, 1, false, false, P::TEAM_POLICY_BIT | P::ROLLING_RESTORATION_BIT},
      {{{"failback", "false"}}, 1, false, true, P::TEAM_POLICY_BIT | P::ROLLING_RESTORATION_BIT},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.options.front().first + "=" + c.options.front().second);
    auto result = Apply(c.options, {}, 0);
    EXPECT_TRUE(result.errors.empty());
    EXPECT_EQ(result.target.teamPolicy, c.teamPolicy);
    EXPECT_EQ(result.target.linkCriteria.UsesBeaconProbing(), c.beacon);
    EXPECT_EQ(result.target.rollingRestoration, c.rolling);
    EXPECT_EQ(result.target.setMask, c.mask);
  }
}

TEST_F(FailoverKitTest, UnknownWordsAreReportedAndTheRestStillApplies) {
  auto result = Apply({{"load-balancing", "random"},
                       {"failure-detection", "smoke"},
                       {"notify-switches", "true"},
                       {"active-uplinks", "ornic9"}},
                      {"ornic0"}, 1);
  EXPECT_EQ(result.errors, (Strings{"Unknown Load Balancing policy: random",
                                    "Unknown failure detection type smoke",
                                    "Unknown NIC name in active uplinks : ornic9"}));
  EXPECT_EQ(result.target.teamPolicy, HostCtl::Network::TEAM_POLICY_IP_HASH);
  // An unknown detection still writes a default (link state) criterion.
  EXPECT_NE(result.target.setMask & NicTeamingPolicy::LINK_CRITERIA_BIT, 0u);
  EXPECT_FALSE(result.target.linkCriteria.UsesBeaconProbing());
  EXPECT_TRUE(result.target.notifySwitchOnFailure);
}

TEST_F(FailoverKitTest, HostFailuresPassThrough) {
  InjectFault("PnicImpl::IsValidPnic", "NIC table unreadable");
  EXPECT_THROW(Apply({{"active-uplinks", "ornic0"}}, {}, 0), HostCtl::Lib::HostCtlException);
}

TEST(ShapingKitTest, AppliesValuesWhileShapingIsOn) {
  struct Case {
    char const* name;
    Options options;
    bool enabledBefore;
    bool requireAll;
    bool enabled;
    uint64_t average;
    uint64_t peak;
    uint64_t burst;
    uint32_t mask;
    Strings errors;
  };
  using S = ShapingPolicy;
  std::vector<Case> cases = {
      {"values are ignored while off",
       {{"avg-bandwidth", "100"}},
       false,
       false,
       false,
       1,
       2,
       3,
       0,
       {}},
      {"one value changes on an enabled policy",
       {{"avg-bandwidth", "100"}},
       true,
       false,
       true,
       100000,
       2,
       3,
       S::AVERAGE_BIT,
       {}},
      {"turning on asks for all three",
       {{"enabled", "true"}, {"avg-bandwidth", "100"}},
       false,
       false,
       true,
       100000,
       2,
       3,
       S::ENABLED_BIT | S::AVERAGE_BIT,
       {"Missing required parameter --peak-bandwidth", "Missing required parameter --burst-size"}},
      {"turning on with nothing reports all three in order",
       {{"enabled", "true"}},
       true,
       false,
       true,
       1,
       2,
       3,
       S::ENABLED_BIT,
       {"Missing required parameter --avg-bandwidth", "Missing required parameter --peak-bandwidth",
        "Missing required parameter --burst-size"}},
      {"turning off ignores the values",
       {{"enabled", "false"}, {"avg-bandwidth", "100"}},
       true,
       false,
       false,
       1,
       2,
       3,
       S::ENABLED_BIT,
       {}},
      {"requireAll asks for all three on an enabled policy",
       {{"peak-bandwidth", "7"}},
       true,
       true,
       true,
       1,
       7000,
       3,
       S::PEAK_BIT,
       {"Missing required parameter --avg-bandwidth", "Missing required parameter --burst-size"}},
      {"units are Kbps and Kib",
       {{"enabled", "true"}, {"avg-bandwidth", "1"}, {"peak-bandwidth", "2"}, {"burst-size", "3"}},
       false,
       false,
       true,
       1000,
       2000,
       384,
       S::ENABLED_BIT | S::AVERAGE_BIT | S::PEAK_BIT | S::BURST_BIT,
       {}},
      {"the largest option wraps without overflow",
       {{"avg-bandwidth", std::to_string(LONG_MAX)}},
       true,
       false,
       true,
       static_cast<uint64_t>(LONG_MAX) * 1000u,
       2,
       3,
       S::AVERAGE_BIT,
       {}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    ShapingPolicy policy;
    policy.enabled = c.enabledBefore;
    policy.averageBps = 1;
    policy.peakBps = 2;
    policy.burstSize = 3;
    auto output = Toolbase::CallSpec::Output::New();
    SetShapingPolicy(MakeInput(c.options), output, policy, c.requireAll);
    EXPECT_EQ(output->GetErrorMessages(), c.errors);
    EXPECT_EQ(policy.enabled, c.enabled);
    EXPECT_EQ(policy.averageBps, c.average);
    EXPECT_EQ(policy.peakBps, c.peak);
    EXPECT_EQ(policy.burstSize, c.burst);
    EXPECT_EQ(policy.setMask, c.mask);
  }
}

TEST(SecurityKitTest, SetsOnlyTheGivenFields) {
  PortSecurityPolicy policy;
  policy.SetAllowMacAddressChange(true);
  auto output = Toolbase::CallSpec::Output::New();
  SetSecurityPolicy(MakeInput({{"allow-promiscuous", "true"}, {"allow-forged-transmits", "no"}}),
                    output, policy);
  EXPECT_FALSE(output->HasError());
  EXPECT_TRUE(policy.allowPromiscuous);
  EXPECT_TRUE(policy.allowMacAddressChange);
  EXPECT_FALSE(policy.allowForgedTransmits);
  EXPECT_EQ(policy.setMask, 0x7u);

  PortSecurityPolicy untouched;
  SetSecurityPolicy(MakeInput({}), output, untouched);
  EXPECT_EQ(untouched.setMask, 0u);
}

std::vector<std::string> ListField(Toolbase::MetaObj::MetaStruct const& record,
                                   std::string const& name) {
  std::vector<std::string> values;
  auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(record.GetField(name));
  for (auto const& item : list->GetItems()) {
    values.push_back(std::static_pointer_cast<Toolbase::MetaObj::MetaString>(item)->GetValue());
  }
  return values;
}

TEST(FailoverFieldsTest, SplitsTheOrderByTheActiveCount) {
  struct Case {
    int active;
    Strings expectedActive;
    Strings expectedStandby;
  };
  std::vector<Case> cases = {
      {0, {}, {"ornic1", "ornic0"}},
      {1, {"ornic1"}, {"ornic0"}},
      {2, {"ornic1", "ornic0"}, {}},
      {5, {"ornic1", "ornic0"}, {}},
      {-1, {}, {}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.active);
    NicTeamingPolicy policy;
    policy.uplinkOrder = {"ornic1", "ornic0"};
    policy.maxActiveUplinks = c.active;
    auto record = Toolbase::MetaObj::MetaStruct::New("Failover");
    FillFailoverFields(*record, policy, {"ornic0", "ornic2", "ornic1", "ornic3"});
    EXPECT_EQ(ListField(*record, "Active Adapters"), c.expectedActive);
    EXPECT_EQ(ListField(*record, "Standby Adapters"), c.expectedStandby);
    EXPECT_EQ(ListField(*record, "Unused Adapters"), (Strings{"ornic2", "ornic3"}));
  }
}

TEST(FailoverFieldsTest, UsesOutputWordsUnlikeTheOptions) {
  struct Case {
    int teamPolicy;
    char const* word;
  };
  std::vector<Case> cases = {{1, "iphash"},   {2, "srcmac"},  {3, "srcport"},
                             {4, "explicit"}, {0, "unknown"}, {5, "unknown"}};
  for (auto const& c : cases) {
    SCOPED_TRACE(c.teamPolicy);
    NicTeamingPolicy policy;
    policy.teamPolicy = static_cast<HostCtl::Network::TeamPolicyType>(c.teamPolicy);
    policy.rollingRestoration = true;
    auto record = Toolbase::MetaObj::MetaStruct::New("Failover");
    FillFailoverFields(*record, policy, {});
    auto word =
        std::static_pointer_cast<Toolbase::MetaObj::MetaString>(record->GetField("Load Balancing"));
    EXPECT_EQ(word->GetValue(), c.word);
    auto failback =
        std::static_pointer_cast<Toolbase::MetaObj::MetaBool>(record->GetField("Failback"));
    EXPECT_FALSE(failback->GetValue());
  }
}

TEST(ShapingFieldsTest, ShowsKbpsAndKibOrMinusOne) {
  ShapingPolicy policy;
  policy.averageBps = 1999;
  policy.peakBps = 5000;
  policy.burstSize = 255;
  for (bool enabled : {true, false}) {
    SCOPED_TRACE(enabled);
    policy.enabled = enabled;
    auto record = Toolbase::MetaObj::MetaStruct::New("Shaping");
    FillShapingFields(*record, policy);
    auto number = [&](char const* name) {
      return std::static_pointer_cast<Toolbase::MetaObj::MetaInt>(record->GetField(name))
          ->GetValue();
    };
    EXPECT_EQ(number("Average Bandwidth"), enabled ? 1 : -1);
    EXPECT_EQ(number("Peak Bandwidth"), enabled ? 5 : -1);
    EXPECT_EQ(number("Burst Size"), enabled ? 1 : -1);
  }
}

TEST(KitParametersTest, ShapingNumbersShareOnePositiveRange) {
  auto spec = Toolbase::CallSpec::InputSpec::New();
  AddShapingParameters(spec);
  auto average = spec->FindParameter("avg-bandwidth")->GetConstraint();
  ASSERT_NE(average, nullptr);
  EXPECT_EQ(average, spec->FindParameter("peak-bandwidth")->GetConstraint());
  EXPECT_EQ(average, spec->FindParameter("burst-size")->GetConstraint());
  EXPECT_EQ(average->GetLow(), 1);
  EXPECT_EQ(average->GetHigh(), LONG_MAX);
}

TEST(KitParametersTest, FailoverOptionsComeInTheirOrder) {
  auto spec = Toolbase::CallSpec::InputSpec::New();
  AddFailoverParameters(spec);
  Strings names;
  std::string shortNames;
  for (auto const& parameter : spec->GetParameters()) {
    names.push_back(parameter->GetName());
    shortNames += parameter->GetShortName();
    EXPECT_FALSE(parameter->IsRequired());
  }
  EXPECT_EQ(names, (Strings{"load-balancing", "failure-detection", "notify-switches", "failback",
                            "active-uplinks", "standby-uplinks"}));
  EXPECT_EQ(shortNames, "lfnbas");
}

TEST(OverrideFieldsTest, EachFieldShowsItsOwnBit) {
  const OverrideField fields[] = {{"A", 1u << 0}, {"B", 1u << 3}, {"C", 1u << 5}};
  struct Case {
    uint32_t mask;
    char const* expected;  // "A B C" as t/f
  };
  std::vector<Case> cases = {
      {0, "fff"}, {1u << 0, "tff"}, {1u << 3, "ftf"}, {(1u << 5) | (1u << 1), "fft"}, {~0u, "ttt"}};
  for (auto const& c : cases) {
    SCOPED_TRACE(c.mask);
    auto record = Toolbase::MetaObj::MetaStruct::New("Overrides");
    AddOverrideFields(*record, fields);
    FillOverrideFields(*record, fields, c.mask);
    std::string shown;
    for (char const* name : {"A", "B", "C"}) {
      auto value = std::static_pointer_cast<Toolbase::MetaObj::MetaBool>(record->GetField(name));
      shown += value->GetValue() ? 't' : 'f';
    }
    EXPECT_EQ(shown, c.expected);
  }
}

TEST(KitParametersTest, PortGroupSetsStartWithTheGroupAndTheResetFlag) {
  for (char const* gap : {" ", "   "}) {
    SCOPED_TRACE(std::string("'") + gap + "'");
    auto spec = PortGroupPolicySpec("The group.", gap);
    auto const& parameters = spec->GetParameters();
    ASSERT_EQ(parameters.size(), 2u);
    EXPECT_EQ(parameters[0]->GetName(), "portgroup-name");
    EXPECT_TRUE(parameters[0]->IsRequired());
    EXPECT_EQ(parameters[1]->GetName(), "use-vswitch");
    EXPECT_FALSE(parameters[1]->IsRequired());
    EXPECT_NE(parameters[1]->GetDescription().find(std::string("port group.") + gap + "Using"),
              std::string::npos);
  }
}

}  // namespace
