// The state file's JSON form: round trips, compact records, refused input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/lib.h"
#include "state_file_test.h"
#include "support/harness.h"

namespace {

using OrvkCtl::Sim::ChangeHost;
using OrvkCtl::Sim::HostFromJson;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::HostToJson;
using OrvkCtl::Sim::ReadHost;
using namespace std::string_literals;

template <class T>
constexpr T kMin = std::numeric_limits<T>::min();
template <class T>
constexpr T kMax = std::numeric_limits<T>::max();

// Every area with values at the edges of what they may hold: the seeded
// host, with the extremes of each integer width or field's range, strings
// that need escaping, and defaults turned around.
HostModel EdgeHost() {
  HostModel host = OrvkCtl::Sim::DefaultHost();
  host.hostname = "q\"b\\s/n\nt\t\x01\x7f \xc3\xbc\xe2\x82\xac\xf0\x9f\x98\x80"s;
  host.modules.push_back({"", false});

  host.firewall.enabled = false;
  host.firewall.default_action_pass = true;
  host.firewall.dynamic_rules.push_back({"edge", kMin<int32_t>, 0, 65535, -1, 1});
  host.firewall.rulesets.push_back({"set", true, kMax<int32_t>, false, {"10.0.0.1", "::1"}, {}});

  auto& nic = host.nic.pnics.at(0);
  nic.mtu = kMin<int32_t>;
  nic.admin_up = false;
  nic.stats.tx_packets = kMax<uint64_t>;
  nic.vlan_stats.push_back({4095, kMax<uint64_t>, 0});
  nic.eeprom.bytes.clear();
  for (int byte = 0; byte < 256; ++byte) nic.eeprom.bytes.push_back(static_cast<uint8_t>(byte));
  nic.dcb.ets_tx_bandwidth = {255, 0, 1, 2, 3, 4, 5, 254};
  nic.dcb.cap_pg_traffic_classes = kMax<uint8_t>;
  nic.attachments.push_back({"branch", 4095});
  nic.hw_cap.supported = kMax<uint64_t>;
  nic.supported_link_modes.push_back({kMax<int32_t>, 2, 38});

  host.ip.ipv6_enabled = false;
  host.ip.routes.at(0).ipv4_neighbors.push_back({"10.0.0.9", "", "vmk0", kMin<int64_t>, 7, 0});
  host.ip.interfaces.at(0).tags = {13, 1};
  host.ip.interfaces.at(0).configured_ip.ipv6_addresses.push_back({"fe80::1", 9, 5});
  host.ip.ipsec_sas.push_back({});
  host.ip.ipsec_sas.back().lifetime = kMax<uint64_t>;
  host.ip.connections.push_back({});
  host.ip.connections.back().local_port = kMax<uint16_t>;

  auto& vswitch = host.vswitch.standard_switches.at(0);
  vswitch.checksum_offload = false;
  vswitch.port_groups.push_back({});
  vswitch.port_groups.back().name = "edge";
  vswitch.port_groups.back().vlan_id = 4095;
  vswitch.port_groups.back().teaming.uplink_order = {"ornic1", ""};
  vswitch.port_groups.back().shaping.peak_bps = kMax<uint64_t>;
  host.vswitch.distributed_switches.push_back({});
  host.vswitch.distributed_switches.back().beacon_timeout = kMax<int>;
  host.vswitch.distributed_switches.back().lags.push_back({});
  host.vswitch.distributed_switches.back().lags.back().members.push_back({});
  host.vswitch.distributed_switches.back().lags.back().members.back().port_state = kMax<uint8_t>;

  host.runtime.ports.at(0).packets_sent = kMax<uint64_t>;
  host.runtime.ens.lcores.push_back({kMax<uint64_t>, "", kMax<int32_t>});
  return host;
}

TEST(HostCodecTest, AHostWithEdgeValuesEverywhereReadsBackTheSame) {
  HostModel const host = EdgeHost();
  std::string const text = HostToJson(host);
  HostModel const back = HostFromJson(text);
  EXPECT_EQ(HostToJson(back), text);
  EXPECT_EQ(back.hostname, host.hostname);
  EXPECT_EQ(back.modules.back().name, "");
  EXPECT_FALSE(back.firewall.enabled);
  EXPECT_TRUE(back.firewall.default_action_pass);
  EXPECT_EQ(back.firewall.dynamic_rules.back().port_type, kMin<int32_t>);
  EXPECT_EQ(back.firewall.dynamic_rules.back().port_end, 65535);
  EXPECT_EQ(back.firewall.dynamic_rules.back().direction, -1);
  EXPECT_FALSE(back.firewall.rulesets.back().allowed_all);
  EXPECT_EQ(back.firewall.rulesets.back().allowed_ips, host.firewall.rulesets.back().allowed_ips);
  EXPECT_EQ(back.nic.pnics, host.nic.pnics);
  EXPECT_EQ(back.ip.ipv6_enabled, false);
  EXPECT_EQ(back.ip.routes, host.ip.routes);
  EXPECT_EQ(back.ip.interfaces, host.ip.interfaces);
  EXPECT_EQ(back.ip.ipsec_sas, host.ip.ipsec_sas);
  EXPECT_EQ(back.ip.connections.back().local_port, kMax<uint16_t>);
  auto const& groups = back.vswitch.standard_switches.at(0).port_groups;
  EXPECT_FALSE(back.vswitch.standard_switches.at(0).checksum_offload);
  EXPECT_EQ(groups.back().vlan_id, 4095);
  EXPECT_EQ(groups.back().teaming.uplink_order, (std::vector<std::string>{"ornic1", ""}));
  EXPECT_EQ(groups.back().shaping.peak_bps, kMax<uint64_t>);
  EXPECT_EQ(back.vswitch.distributed_switches.back().beacon_timeout, kMax<int>);
  EXPECT_EQ(back.vswitch.distributed_switches.back().lags.back().members.back().port_state, 255);
  EXPECT_EQ(back.vswitch.distributed_switches.back().lags.back().members.back().state, "Bundled");
  EXPECT_EQ(back.runtime.ports.at(0).packets_sent, kMax<uint64_t>);
  EXPECT_EQ(back.runtime.ens, host.runtime.ens);
}

// The text of `key`'s line in a document in line layout, without the comma.
std::string LineOf(std::string const& text, std::string const& key) {
  size_t begin = text.find("\n\"" + key + "\":");
  if (begin == std::string::npos) return "";
  size_t end = text.find('\n', begin + 1);
  std::string line = text.substr(begin + 1, end - begin - 1);
  if (line.ends_with(',')) line.pop_back();
  return line;
}

TEST(HostCodecTest, FieldsAtTheirDefaultsAreLeftOutAndComeBack) {
  HostModel host;
  host.vswitch.standard_switches.push_back({});
  auto& vswitch = host.vswitch.standard_switches.back();
  vswitch.name = "vs";
  vswitch.port_groups.push_back({});
  vswitch.port_groups.back().name = "inherits";
  vswitch.port_groups.push_back({});
  vswitch.port_groups.back().name = "overrides";
  vswitch.port_groups.back().security.allow_promiscuous = true;
  host.vswitch.distributed_switches.push_back({});
  host.runtime.ens.lcores.push_back({});
  std::string const text = HostToJson(host);

  struct Case {
    std::string key;
    std::string line;
  };
  std::vector<Case> const cases = {
      {"hostname", R"("hostname":"")"},
      {"firewall", R"("firewall":{})"},
      {"nic", R"("nic":{})"},
      {"vswitch",
       R"("vswitch":{"standard_switches":[{"name":"vs","port_groups":[{"name":"inherits"},)"
       R"({"name":"overrides","security":{"allow_promiscuous":true}}]}],)"
       R"("distributed_switches":[{}]})"},
      {"runtime", R"("runtime":{"ens":{"lcores":[{}]}})"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.key);
    EXPECT_EQ(LineOf(text, c.key), c.line);
  }

  // Defaults that are not zero come back from the record's own definition.
  HostModel const back = HostFromJson(text);
  auto const& read = back.vswitch.standard_switches.at(0);
  EXPECT_EQ(read.mtu, 1500);
  EXPECT_EQ(read.cdp_status, 1);
  EXPECT_EQ(read.beacon_threshold, 3);
  EXPECT_TRUE(read.vlan_tagging);
  EXPECT_EQ(read.port_groups.size(), 2u);
  EXPECT_TRUE(read.port_groups.at(1).security.allow_promiscuous);
  EXPECT_FALSE(read.port_groups.at(1).security.allow_mac_change);
  EXPECT_TRUE(back.firewall.enabled);
  EXPECT_TRUE(back.ip.ipv6_enabled);
  EXPECT_EQ(back.vswitch.distributed_switches.at(0).beacon_timeout, -1);
  EXPECT_TRUE(back.vswitch.distributed_switches.at(0).corvane_branded);
  EXPECT_EQ(back.runtime.ens.max_lcores, 8u);
  EXPECT_EQ(back.runtime.ens.lcores.at(0).switch_name, "null");
  EXPECT_EQ(back.runtime.ens.lcores.at(0).affinity, -1);
}

TEST(HostCodecTest, AnInheritingPortGroupIsAFewDozenBytes) {
  HostModel host = OrvkCtl::Sim::DefaultHost();
  std::string const before = LineOf(HostToJson(host), "vswitch");
  host.vswitch.standard_switches.at(1).port_groups.push_back({});
  host.vswitch.standard_switches.at(1).port_groups.back().name = "pg-0123";
  host.vswitch.standard_switches.at(1).port_groups.back().vlan_id = 123;
  EXPECT_EQ(LineOf(HostToJson(host), "vswitch").size() - before.size(),
            std::string(R"(,{"name":"pg-0123","vlan_id":123})").size());
}

TEST(HostCodecTest, AHandWrittenDocumentLoads) {
  // Pretty-printed, keys in another order, keys of other versions, escapes.
  std::string const text = R"( {
    "comment": {"nested": [1, 2, {"deep": null}]},
    "host": {
      "vswitch": {
        "standard_switches": [ {
          "port_groups": [ { "vlan_id": 7, "name": "A\u00fc\/B", "later": [] } ],
          "mtu": 9000,
          "name": "vSwitch9"
        } ]
      },
      "hostname" : "hand\tmade",
      "unknown_area": {"x": 1},
      "firewall": { "rulesets": [], "enabled": false }
    },
    "format": 1
  }
  )";
  HostModel const host = HostFromJson(text);
  EXPECT_EQ(host.hostname, "hand\tmade");
  EXPECT_FALSE(host.firewall.enabled);
  ASSERT_EQ(host.vswitch.standard_switches.size(), 1u);
  auto const& vswitch = host.vswitch.standard_switches[0];
  EXPECT_EQ(vswitch.name, "vSwitch9");
  EXPECT_EQ(vswitch.mtu, 9000);
  EXPECT_EQ(vswitch.cdp_status, 1);
  ASSERT_EQ(vswitch.port_groups.size(), 1u);
  EXPECT_EQ(vswitch.port_groups[0].name, "A\xc3\xbc/B");
  EXPECT_EQ(vswitch.port_groups[0].vlan_id, 7);
  EXPECT_TRUE(host.nic.pnics.empty());
}

// Reading a document a piece at a time finds each
// field where splitting the whole text finds it, and refuses exactly the
// documents that splitting has to parse whole.
TEST(HostCodecTest, ScanningAgreesWithSplittingTheWholeText) {
  std::string const head = "{\"format\":1,\"layout\":\"compact\",\"host\":{\n";
  std::string const plain = "{\"format\":1,\"host\":{\n";
  std::string const long_name(200000, 'n');  // a line over several reads
  std::string const lines = HostToJson(OrvkCtl::Sim::DefaultHost());
  struct Case {
    std::string name;
    std::string text;
    bool lines;  // in the line layout
  };
  std::vector<Case> const cases = {
      {"seeded", lines, true},
      {"unmarked", plain + "\"hostname\":\"h\",\n\"modules\":[]\n}}\n", true},
      {"no area", head + "}}\n", true},
      {"long line", head + "\"hostname\":\"" + long_name + "\",\n\"firewall\":{}\n}}\n", true},
      {"empty value", head + "\"hostname\":,\n\"firewall\":{}\n}}\n", true},
      {"missing comma", head + "\"hostname\":\"h\"\n\"firewall\":{}\n}}\n", false},
      {"comma at the end", head + "\"hostname\":\"h\",\n}}\n", false},
      {"unknown key", head + "\"hostnames\":\"h\"\n}}\n", false},
      {"key twice", head + "\"hostname\":\"h\",\n\"hostname\":\"i\"\n}}\n", false},
      {"no tail", head + "\"hostname\":\"h\"\n", false},
      {"after the tail", head + "\"hostname\":\"h\"\n}}\n\n", false},
      {"no line end", head + "\"hostname\":\"h\"}}\n", false},
      {"pretty", "{\n  \"format\": 1,\n  \"host\": {}\n}\n", false},
      {"empty", "", false},
  };
  auto const& fields = OrvkCtl::Sim::HostFields();
  for (auto const& c : cases) {
    for (size_t piece : {size_t{1}, size_t{7}, size_t{1} << 20}) {
      {
        SCOPED_TRACE(c.name + ", pieces of " + std::to_string(piece));
        size_t at = 0;
        auto read = [&](char* data, size_t size) {
          size_t n = std::min({size, piece, c.text.size() - at});
          std::copy_n(c.text.data() + at, n, data);
          at += n;
          return n;
        };
        std::vector<OrvkCtl::Sim::FieldSpan> spans;
        bool compact = false;
        bool scanned = OrvkCtl::Sim::ScanHostDocument(read, spans, &compact);
        ASSERT_EQ(scanned, c.lines);
        if (!scanned) continue;
        EXPECT_EQ(compact, c.text.starts_with(head));
        std::string whole = c.text;
        auto const split = OrvkCtl::Sim::SplitHostDocument(whole);
        for (size_t i = 0; i < fields.size(); ++i) {
          EXPECT_EQ(c.text.substr(spans[i].offset, spans[i].size), split[i]) << fields[i].key;
        }
      }
    }
  }
}

using HostCodecStoreTest = TestSupport::StateFileTest;

// A document in line layout with `line` as its only area.
std::string Lines(std::string const& line) {
  return "{\"format\":1,\"host\":{\n" + line + "\n}}\n";
}

TEST_F(HostCodecStoreTest, ValuesThatDoNotFitAreRefusedAndTheFileStaysUntouched) {
  std::string const group =
      R"("vswitch":{"standard_switches":[{"name":"v","port_groups":[{"name":"p",)";
  std::string const deep = std::string(101, '[') + std::string(101, ']');
  struct Case {
    std::string text;
    std::string reason;
  };
  std::vector<Case> const cases = {
      {Lines(group + R"("vlan_id":65536}]}]})"),
       "in \"vswitch\": standard_switches[0].port_groups[0].vlan_id: expected an integer from 0 "
       "to 65535"},
      {Lines(group + R"("vlan_id":-1}]}]})"), "vlan_id: expected an integer from 0 to 65535"},
      {Lines(group + R"("vlan_id":1.0}]}]})"), "vlan_id: expected an integer"},
      {Lines(group + R"("vlan_id":1e2}]}]})"), "vlan_id: expected an integer"},
      {Lines(group + R"("vlan_id":"1"}]}]})"), "vlan_id: expected an integer"},
      {Lines(group + R"("active_clients":2147483648}]}]})"),
       "active_clients: expected an integer from -2147483648 to 2147483647"},
      {Lines(group + R"("shaping":{"peak_bps":18446744073709551616}}]}]})"),
       "port_groups[0].shaping.peak_bps: expected an integer from 0 to 18446744073709551615"},
      {Lines(group + R"("security":{"allow_promiscuous":1}}]}]})"),
       "security.allow_promiscuous: expected true or false"},
      {Lines(group + R"("teaming":[]}]}]})"), "port_groups[0].teaming: expected an object"},
      {Lines(R"("nic":{"pnics":[{"dcb":{"cap_pfc_traffic_classes":256}}]})"),
       "in \"nic\": pnics[0].dcb.cap_pfc_traffic_classes: expected an integer from 0 to 255"},
      {Lines(R"("nic":{"pnics":[{"dcb":{"pfc_sent":[1,2,3,4,5,6,7]}}]})"),
       "pfc_sent: expected an array of 8 elements"},
      {Lines(R"("nic":{"pnics":[{"eeprom":"abc"}]})"),
       "pnics[0].eeprom: EEPROM image of odd length"},
      {Lines(
           R"("ip":{"neighbors":[],"routes":[{"ipv4_neighbors":[{"expiry":9223372036854775808}]}]})"),
       "routes[0].ipv4_neighbors[0].expiry: expected an integer"},
      {Lines(R"("runtime":{"ports":{}})"), "in \"runtime\": ports: expected an array"},
      {Lines("\"hostname\":\"a\xff\""), "in \"hostname\": parse error"},
      {Lines(std::string("\"hostname\":\"a\"\0 ", 16)), "in \"hostname\": parse error"},
      {Lines(R"("firewall":{} {})"), "in \"firewall\": parse error"},
      {Lines(R"("firewall":{"x":)" + deep + "}"), "nested deeper than 100 levels"},
      {R"({"format":1,"host":{"x":)" + deep + "}}", "nested deeper than 100 levels"},
      {R"({"format":1.0,"host":{}})", "no \"format\" version"},
      {R"({"format":18446744073709551615,"host":{}})",
       "format version 18446744073709551615 is not one this version reads (1)"},
  };
  for (auto const& c : cases) ExpectCorruptAndUntouched(c.text, c.reason);
}

TEST_F(HostCodecStoreTest, AChangeThatFailsLeavesHostAndFileAsTheyWere) {
  struct Case {
    std::string name;
    OrvkCtl::Sim::AreaSet areas;
    std::function<void(HostModel&)> change;
  };
  std::vector<Case> const cases = {
      {"throws after changing a large area", OrvkCtl::Sim::kAreaVswitch,
       [](HostModel& host) {
         host.vswitch.standard_switches.clear();
         throw HostCtl::Lib::HostCtlException("refused");
       }},
      {"text that cannot be stored", OrvkCtl::Sim::kAreaHost | OrvkCtl::Sim::kAreaNic,
       [](HostModel& host) {
         host.nic.pnics.clear();
         host.hostname = "bad \xff";
       }},
      {"an area read inside the change", OrvkCtl::Sim::kAreaHost,
       [](HostModel& host) {
         ReadHost(OrvkCtl::Sim::kAreaFirewall);
         host.firewall.rulesets.clear();
         throw HostCtl::Lib::HostCtlException("refused");
       }},
  };
  ReadHost();
  std::string const file = StateFileText();
  std::string const json = HostToJson(ReadHost());
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    for (bool fresh : {false, true}) {
      if (fresh) Reload();
      EXPECT_ANY_THROW(ChangeHost(c.areas, c.change));
      EXPECT_EQ(StateFileText(), file);
      EXPECT_EQ(HostToJson(ReadHost()), json);
    }
  }
}

}  // namespace

namespace {

// A host whose vSwitch1 holds port groups g0..g5, some with settings.
// Six port groups on vSwitch1, named `prefix` and a number.
void SeedGroups(HostModel& host, std::string const& prefix) {
  auto& groups = host.vswitch.standard_switches.at(1).port_groups;
  groups.clear();
  for (int i = 0; i < 6; ++i) {
    groups.push_back({});
    groups.back().name = prefix + std::to_string(i);
    groups.back().vlan_id = static_cast<uint16_t>(i * 10);
    if (i % 2) groups.back().security.allow_promiscuous = true;
  }
}

// Every case with every prefix.
template <class Case>
std::vector<std::pair<Case, std::string>> Pairs(std::vector<Case> const& cases,
                                                std::vector<std::string> const& prefixes) {
  std::vector<std::pair<Case, std::string>> pairs;
  for (auto const& prefix : prefixes) {
    for (auto const& c : cases) pairs.emplace_back(c, prefix);
  }
  return pairs;
}

TEST_F(HostCodecStoreTest, AChangeCopiesWhatItLeftAloneAndWritesTheRestAnew) {
  using Groups = decltype(OrvkCtl::Sim::StandardSwitchState::port_groups);
  auto group = [](std::string name) {
    OrvkCtl::Sim::PortGroupState added;
    added.name = std::move(name);
    added.teaming.uplink_order = {"ornic1"};
    return added;
  };
  struct Case {
    std::string name;
    std::function<void(Groups&)> change;
  };
  std::vector<Case> const cases = {
      {"add at the end", [&](Groups& g) { g.push_back(group("new")); }},
      {"add in front", [&](Groups& g) { g.insert(g.begin(), group("new")); }},
      {"add in the middle", [&](Groups& g) { g.insert(g.begin() + 3, group("new")); }},
      {"remove the first", [](Groups& g) { g.erase(g.begin()); }},
      {"remove one in the middle", [](Groups& g) { g.erase(g.begin() + 2); }},
      {"remove the last", [](Groups& g) { g.pop_back(); }},
      {"remove two in a row", [](Groups& g) { g.erase(g.begin() + 1, g.begin() + 3); }},
      {"change one", [](Groups& g) { g[2].vlan_id = 4000; }},
      {"change one back to defaults", [](Groups& g) { g[1].security = {}; }},
      {"change two",
       [](Groups& g) {
         g[0].name = "renamed";
         g[4].shaping.enabled = true;
       }},
      {"swap two", [](Groups& g) { std::swap(g[1], g[2]); }},
      {"reverse", [](Groups& g) { std::reverse(g.begin(), g.end()); }},
      {"replace one", [&](Groups& g) { g[3] = group("other"); }},
      {"empty", [](Groups& g) { g.clear(); }},
  };
  // Names without escapes are parsed where the store read them, the others
  // in a copy: either way the text read stays as it was, to copy from.
  for (auto const& [c, prefix] : Pairs(cases, {"g", "\"quoted\" g\\"})) {
    SCOPED_TRACE(c.name + ", names " + prefix);
    Reload();
    ChangeHost(OrvkCtl::Sim::kAreaVswitch, [&](HostModel& host) { SeedGroups(host, prefix); });
    Reload();
    HostModel expected = ReadHost();
    ChangeHost(OrvkCtl::Sim::kAreaVswitch, [&](HostModel& host) {
      c.change(host.vswitch.standard_switches.at(1).port_groups);
    });
    c.change(expected.vswitch.standard_switches.at(1).port_groups);
    // Every record was as the library writes it: copied or not, the text is.
    EXPECT_EQ(StateFileText(), HostToJson(expected));
    Reload();
    EXPECT_EQ(HostToJson(ReadHost()), HostToJson(expected));
  }
}

TEST_F(HostCodecStoreTest, OnlyAFileMarkedCompactHasItsRecordsCopied) {
  ReadHost();
  std::string const marked = StateFileText();
  std::string const mark = R"("layout":"compact",)";
  ASSERT_EQ(marked.find(mark), 12u);
  // A port group laid out by hand, and a broken runtime area.
  std::string const canonical = R"({"name":"Storage Network","vlan_id":20})";
  std::string const spaced = R"({"name":"Storage Network", "vlan_id":20})";
  std::string text = marked;
  text.replace(text.find(canonical), canonical.size(), spaced);
  std::string const runtime = LineOf(text, "runtime");
  text.replace(text.find(runtime), runtime.size(), R"("runtime":{"ports":[oops})");
  struct Case {
    std::string name;
    bool marked;
  };
  for (auto const& c : std::vector<Case>{{"marked", true}, {"not marked", false}}) {
    SCOPED_TRACE(c.name);
    std::string file = text;
    if (!c.marked) file.erase(file.find(mark), mark.size());
    Reload();
    WriteState(file);
    ChangeHost(OrvkCtl::Sim::kAreaVswitch, [](HostModel& host) {
      host.vswitch.standard_switches.at(0).port_groups.at(0).vlan_id = 7;
    });
    std::string const after = StateFileText();
    // Copied as it was from a marked file; written anew from another.
    EXPECT_EQ(after.find(spaced) != std::string::npos, c.marked) << after;
    EXPECT_EQ(after.find(canonical) != std::string::npos, !c.marked) << after;
    EXPECT_NE(after.find(R"({"name":"Management Network","vlan_id":7,"active_clients":1})"),
              std::string::npos);
    // The broken area stays as it was, and so the file's mark.
    EXPECT_EQ(LineOf(after, "runtime"), R"("runtime":{"ports":[oops})");
    EXPECT_EQ(after.find(mark) != std::string::npos, c.marked);
  }
  // Unmarked but whole: the first change writes every area anew, and marks it.
  std::string plain = marked;
  plain.erase(plain.find(mark), mark.size());
  plain.replace(plain.find(canonical), canonical.size(), spaced);
  Reload();
  WriteState(plain);
  ChangeHost(OrvkCtl::Sim::kAreaFirewall, [](HostModel& host) { host.firewall.enabled = false; });
  Reload();
  EXPECT_EQ(StateFileText(), HostToJson(ReadHost()));
  EXPECT_EQ(StateFileText().find(mark), 12u);
}

}  // namespace
