// Lists of records read one by one when used: the list itself, and the state
// file's lists of port groups, which a command reads only as far as it needs.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host_store.h"
#include "hostctl/lib.h"
#include "hostctl/transaction.h"
#include "lazy_list.h"
#include "state_file_test.h"

namespace Probe {

// A record whose reads are counted.
struct Named {
  std::string name;
  int value = 0;
  bool operator==(Named const&) const = default;
};

int reads = 0;

void ReadRecordText(std::string_view text, size_t, Named& out) {
  ++reads;
  auto const json = nlohmann::json::parse(text);
  out.name = json.at("name").get<std::string>();
  out.value = json.value("value", 0);
}

// A record whose copies are counted.
struct Counted {
  static inline int copies = 0;
  std::string name;
  Counted() = default;
  explicit Counted(std::string text) : name(std::move(text)) {}
  Counted(Counted const& other) : name(other.name) { ++copies; }
  Counted(Counted&&) = default;
  Counted& operator=(Counted&&) = default;
  Counted& operator=(Counted const& other) {
    name = other.name;
    ++copies;
    return *this;
  }
  bool operator==(Counted const& other) const { return name == other.name; }
};

void ReadRecordText(std::string_view, size_t, Counted&) {}

}  // namespace Probe

namespace {

using OrvkCtl::Sim::ChangeHost;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::HostToJson;
using OrvkCtl::Sim::LazyList;
using OrvkCtl::Sim::ReadHost;
using Probe::Named;

// A list of the records `texts` give, which it keeps.
LazyList<Named> ListOf(std::vector<std::string> const& texts) {
  auto owner = std::make_shared<std::vector<std::string>>(texts);
  std::vector<std::string_view> views(owner->begin(), owner->end());
  LazyList<Named> list;
  list.AssignTexts(std::move(views), owner);
  return list;
}

TEST(LazyListTest, TellsNamesFromTheTextReadingOnlyWhatNeedsDecoding) {
  struct Case {
    std::string text;
    std::string name;  // asked for
    bool same;
    std::string stored;  // the name the record has
    bool read;           // whether telling took reading the record
  };
  std::vector<Case> const cases = {
      {R"({"name":"web","value":1})", "web", true, "web", false},
      {R"({"name":"web","value":1})", "we", false, "web", false},
      {R"({"name":"web","value":1})", "webs", false, "web", false},
      {R"({"name":"web","value":1})", "", false, "web", false},
      {R"({"name":"a\"b"})", "a\"b", true, "a\"b", true},
      {R"({"name":"a\"b"})", "a", false, "a\"b", true},
      // An escape whose text is the name asked for, byte for byte.
      {R"({"name":"\n"})", "\\n", false, "\n", true},
      {R"({"name":"\n"})", "\n", true, "\n", true},
      {R"({"name":"a\\b"})", "a\\b", true, "a\\b", true},
      {R"({"name":"caf\u00e9"})", "caf\xc3\xa9", true, "caf\xc3\xa9", true},
      {"{\"name\":\"caf\xc3\xa9\"}", "caf\xc3\xa9", true, "caf\xc3\xa9", false},
      {R"({"value":2,"name":"late"})", "late", true, "late", true},
      {R"({ "name": "spaced" })", "spaced", true, "spaced", true},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text + " / " + c.name);
    LazyList<Named> list = ListOf({c.text});
    Probe::reads = 0;
    EXPECT_EQ(list.NameIs(0, c.name), c.same);
    EXPECT_EQ(Probe::reads > 0, c.read);
    EXPECT_EQ(list.NameAt(0), c.stored);
  }
}

TEST(LazyListTest, ChangesAsAVectorReadingOnlyTheRecordsUsed) {
  std::vector<std::string> const texts = {R"({"name":"a","value":1})", R"({"name":"b","value":2})",
                                          R"({"name":"c","value":3})", R"({"name":"d","value":4})"};
  std::vector<Named> const records = {{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}};
  struct Case {
    std::string name;
    std::function<void(LazyList<Named>&)> change;
    std::function<void(std::vector<Named>&)> expected;
    std::vector<bool> still_text;  // which elements are still their texts afterwards
  };
  std::vector<Case> const cases = {
      {"nothing", [](auto&) {}, [](auto&) {}, {true, true, true, true}},
      {"read one", [](auto& l) { (void)l[2]; }, [](auto&) {}, {true, true, false, true}},
      {"change one", [](auto& l) { l[1].value = 9; }, [](auto& v) { v[1].value = 9; },
       {true, false, true, true}},
      {"add at the end", [](auto& l) { l.push_back({"e", 5}); },
       [](auto& v) { v.push_back({"e", 5}); }, {true, true, true, true, false}},
      {"insert", [](auto& l) { l.insert(l.begin() + 1, {"x", 0}); },
       [](auto& v) { v.insert(v.begin() + 1, {"x", 0}); }, {true, false, true, true, true}},
      {"erase two", [](auto& l) { l.erase(l.begin() + 1, l.begin() + 3); },
       [](auto& v) { v.erase(v.begin() + 1, v.begin() + 3); }, {true, true}},
      {"pop", [](auto& l) { l.pop_back(); }, [](auto& v) { v.pop_back(); }, {true, true, true}},
      {"reverse", [](auto& l) { std::reverse(l.begin(), l.end()); },
       [](auto& v) { std::reverse(v.begin(), v.end()); }, {false, false, false, false}},
      {"clear", [](auto& l) { l.clear(); }, [](auto& v) { v.clear(); }, {}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    LazyList<Named> list = ListOf(texts);
    std::vector<Named> expected = records;
    c.change(list);
    c.expected(expected);
    ASSERT_EQ(list.size(), expected.size());
    for (size_t i = 0; i < list.size(); ++i) {
      EXPECT_EQ(!list.TextAt(i).empty(), c.still_text[i]) << i;
      EXPECT_EQ(list.NameAt(i), expected[i].name) << i;
    }
    EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end()));
  }
}

TEST(LazyListTest, ACopyKeepsTheTextsAndReadsOnItsOwn) {
  LazyList<Named> copy;
  {
    LazyList<Named> list = ListOf({R"({"name":"a"})", R"({"name":"b"})"});
    list[0].value = 7;
    copy = list;
    copy[0].value = 8;
    copy[1].value = 9;
    EXPECT_EQ(list[0].value, 7);
    EXPECT_FALSE(list.TextAt(1).empty());
    EXPECT_FALSE(list == copy);
  }
  // The texts outlive the list they were read for.
  EXPECT_EQ(copy.NameAt(1), "b");
  EXPECT_EQ(copy[1].value, 9);
  EXPECT_TRUE(ListOf({R"({"name":"a"})"}) == ListOf({R"({"name":"a"})"}));
  EXPECT_TRUE(ListOf({R"({"name":"a"})"}) == ListOf({R"({"name": "a"})"}));
}

// Lists long enough for several blocks of records, read from texts, and the
// same as plain records.
std::vector<std::string> ManyTexts(int count) {
  std::vector<std::string> texts;
  for (int i = 0; i < count; ++i) {
    texts.push_back(R"({"name":"r)" + std::to_string(i) + R"(","value":)" + std::to_string(i) +
                    "}");
  }
  return texts;
}

std::vector<Named> ManyRecords(int count) {
  std::vector<Named> records;
  for (int i = 0; i < count; ++i) records.push_back({"r" + std::to_string(i), i});
  return records;
}

TEST(LazyListTest, ACopyIsUntouchedByChangesToTheOther) {
  int const count = 700;  // three blocks, the last one part full
  struct Case {
    std::string name;
    std::function<void(LazyList<Named>&)> change;
    std::function<void(std::vector<Named>&)> expected;
  };
  std::vector<Case> const cases = {
      {"change one in the middle block", [](auto& l) { l[300].value = -1; },
       [](auto& v) { v[300].value = -1; }},
      {"add at the end", [](auto& l) { l.push_back({"new", 1}); },
       [](auto& v) { v.push_back({"new", 1}); }},
      {"insert in the first block", [](auto& l) { l.insert(l.begin() + 5, {"x", 0}); },
       [](auto& v) { v.insert(v.begin() + 5, {"x", 0}); }},
      {"erase across blocks", [](auto& l) { l.erase(l.begin() + 250, l.begin() + 520); },
       [](auto& v) { v.erase(v.begin() + 250, v.begin() + 520); }},
      {"rename every one", [](auto& l) { for (auto& r : l) r.name += "!"; },
       [](auto& v) { for (auto& r : v) r.name += "!"; }},
      {"clear", [](auto& l) { l.clear(); }, [](auto& v) { v.clear(); }},
  };
  for (bool read_first : {false, true}) {
    for (auto const& c : cases) {
      SCOPED_TRACE(c.name + (read_first ? ", records read before the copy" : ""));
      LazyList<Named> list = ListOf(ManyTexts(count));
      if (read_first) {
        for (size_t i = 0; i < list.size(); i += 3) (void)std::as_const(list)[i];
      }
      LazyList<Named> copy = list;
      c.change(copy);
      std::vector<Named> expected = ManyRecords(count);
      c.expected(expected);
      EXPECT_TRUE(std::equal(copy.begin(), copy.end(), expected.begin(), expected.end()));
      auto const original = ManyRecords(count);
      EXPECT_TRUE(std::equal(list.begin(), list.end(), original.begin(), original.end()));
      // And the other way round: changing the original leaves the copy.
      LazyList<Named> kept = list;
      c.change(list);
      EXPECT_TRUE(std::equal(kept.begin(), kept.end(), original.begin(), original.end()));
    }
  }
}

TEST(LazyListTest, ACopyAndAChangeCopyOnlyTheRecordsChanged) {
  using Probe::Counted;
  LazyList<Counted> list;
  for (int i = 0; i < 10000; ++i) list.push_back(Counted("r" + std::to_string(i)));
  Counted::copies = 0;
  LazyList<Counted> const kept = list;
  list[5000].name = "changed";
  list.push_back(Counted("added"));
  EXPECT_EQ(Counted::copies, 1);  // record 5000, for `list`
  EXPECT_EQ(kept[5000].name, "r5000");
  EXPECT_EQ(kept.size(), 10000u);
}

TEST(LazyListTest, FindsARecordByItsKeyAfterChanges) {
  LazyList<Named> list = ListOf(ManyTexts(600));
  auto find = [&](std::string const& name) {
    return list.KeyIndex(name, [](size_t) { return true; });
  };
  EXPECT_EQ(find("r0"), 0u);
  EXPECT_EQ(find("r599"), 599u);
  EXPECT_EQ(find("r600"), list.size());
  LazyList<Named> const before = list;
  list[300].name = "renamed";
  list.push_back({"late", 0});
  list.erase(list.begin() + 1);
  EXPECT_EQ(find("renamed"), 299u);
  EXPECT_EQ(find("r300"), list.size());
  EXPECT_EQ(find("late"), list.size() - 1);
  EXPECT_EQ(find("r1"), list.size());
  EXPECT_EQ(find("r2"), 1u);
  // The copy taken before finds what it holds.
  EXPECT_EQ(before.KeyIndex("r300", [](size_t) { return true; }), 300u);
  // The visitor picks among records of one key.
  list.push_back({"late", 2});
  EXPECT_EQ(list.KeyIndex("late", [&](size_t i) { return list[i].value == 2; }), list.size() - 1);
}

using LazyPortGroupsTest = TestSupport::StateFileTest;

// The file as the library writes it, with vSwitch1's port groups `groups`
// (the text of the array).
std::string WithGroups(std::string const& file, std::string const& groups) {
  std::string text = file;
  size_t const vswitch1 = text.find(R"({"name":"vSwitch1")");
  size_t const begin = text.find(R"("port_groups":)", vswitch1) + 14;
  size_t const end = text.find(']', text.find(R"({"name":"Storage Network")", begin)) + 1;
  return text.replace(begin, end - begin, groups);
}

TEST_F(LazyPortGroupsTest, TextsThatLookLikeBracketsOrEscapesLoadAndAreCopiedVerbatim) {
  ReadHost();
  std::string const file = StateFileText();
  // Names with brackets, quotes and escapes, some across the boundaries of
  // 16-byte blocks, records with nested objects and arrays, and layouts that
  // are not the library's (read record by record at once instead).
  std::string const pad(13, 'p');
  std::vector<std::string> const lists = {
      R"([{"name":"plain","vlan_id":1},{"name":"other"}])",
      R"([{"name":"]},{\"name\":\"x\"}"},{"name":"[{"}])",
      R"([{"name":")" + pad + R"(\\"},{"name":")" + pad + R"(ab\""},{"name":"\\\\\"]"}])",
      R"([{"name":"u\u00fc\/","teaming":{"set_mask":1,"uplink_order":["ornic0","]"]}},)"
      R"({"name":"caf)" "\xc3\xa9" R"(","security":{"set_mask":1,"allow_promiscuous":true}}])",
      R"([{"name":"spaced"}, {"name":"after"}])",
      R"([ {"name":"blank"} ])",
  };
  for (auto const& list : lists) {
    SCOPED_TRACE(list);
    auto const expected = nlohmann::json::parse(list);
    Reload();
    WriteState(WithGroups(file, list));
    // A change elsewhere copies the list as it is.
    ChangeHost(OrvkCtl::Sim::kAreaVswitch, [](HostModel& host) {
      host.vswitch.standard_switches.at(0).port_groups.push_back({});
      host.vswitch.standard_switches.at(0).port_groups.back().name = "added";
    });
    std::string const after = StateFileText();
    if (list.find(' ') == std::string::npos) {
      EXPECT_NE(after.find(R"("port_groups":)" + list), std::string::npos) << after;
    }
    EXPECT_NE(after.find(R"({"name":"added"})"), std::string::npos);
    // What the host holds after the write still reads, as does the file.
    for (bool fresh : {false, true}) {
      if (fresh) Reload();
      auto const& groups =
          ReadHost(OrvkCtl::Sim::kAreaVswitch).vswitch.standard_switches.at(1).port_groups;
      ASSERT_EQ(groups.size(), expected.size());
      for (size_t i = 0; i < groups.size(); ++i) {
        EXPECT_EQ(groups.NameAt(i), expected[i]["name"].get<std::string>()) << i;
        EXPECT_EQ(groups[i].name, expected[i]["name"].get<std::string>()) << i;
      }
    }
  }
}

TEST_F(LazyPortGroupsTest, ARecordThatDoesNotFitIsReportedWhenReadAndKeptUntilThen) {
  ReadHost();
  std::string const bad = R"({"name":"bad","vlan_id":65536})";
  std::string const text =
      WithGroups(StateFileText(), R"([{"name":"good"},)" + bad + R"(,{"name":"last"}])");
  Reload();
  WriteState(text);
  // Commands that do not read it work, changes included, and copy it as it is.
  EXPECT_NO_THROW(ReadHost(OrvkCtl::Sim::kAreaVswitch));
  ChangeHost(OrvkCtl::Sim::kAreaVswitch, [](HostModel& host) {
    auto& groups = host.vswitch.standard_switches.at(1).port_groups;
    groups.erase(groups.begin() + 2);
  });
  std::string const kept = StateFileText();
  EXPECT_NE(kept.find(R"([{"name":"good"},)" + bad + "]"), std::string::npos) << kept;
  // Reading it names the file and the value; the file stays as it was.
  for (bool fresh : {false, true}) {
    if (fresh) Reload();
    try {
      (void)ReadHost(OrvkCtl::Sim::kAreaVswitch).vswitch.standard_switches.at(1).port_groups[1];
      ADD_FAILURE() << "read";
    } catch (HostCtl::Lib::HostCtlException const& error) {
      EXPECT_EQ(error.message,
                "Host state file " + state_path_ +
                    " is corrupt: in \"vswitch\": port_groups[1]: vlan_id: expected an integer "
                    "from 0 to 65535");
    }
    EXPECT_EQ(StateFileText(), kept);
  }
}

TEST_F(LazyPortGroupsTest, AListWhoseBracketsDoNotMatchIsRefusedAtOnce) {
  ReadHost();
  std::string const file = StateFileText();
  for (std::string const list : {R"([{"name":"a"]}])", R"([{"name":"a"},])",
                                 R"([{"name":"a"}{"name":"b"}])", R"([{"name":"a\"}])"}) {
    ExpectCorruptAndUntouched(WithGroups(file, list), "in \"vswitch\": parse error");
  }
}

TEST_F(LazyPortGroupsTest, ChangesInOneProcessEachSeeTheFileTheLastOneWrote) {
  // A host large enough that writes leave most of the file where it was.
  ChangeHost(OrvkCtl::Sim::kAreaVswitch, [](HostModel& host) {
    auto& groups = host.vswitch.standard_switches.at(1).port_groups;
    for (int i = 0; i < 2000; ++i) {
      groups.push_back({});
      groups.back().name = "pg-" + std::to_string(i);
    }
  });
  Reload();
  auto add = [](std::string name) {
    ChangeHost(OrvkCtl::Sim::kAreaVswitch, [&](HostModel& host) {
      host.vswitch.standard_switches.at(0).port_groups.push_back({});
      host.vswitch.standard_switches.at(0).port_groups.back().name = name;
    });
  };
  add("first");
  // An area not read before comes from the file just written.
  ChangeHost(OrvkCtl::Sim::kAreaFirewall, [](HostModel& host) { host.firewall.enabled = false; });
  // A change that fails leaves the host and the file as they were.
  std::string const before = StateFileText();
  EXPECT_THROW(ChangeHost(OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaNic,
                          [](HostModel& host) {
                            host.vswitch.standard_switches.at(1).port_groups.clear();
                            throw HostCtl::Lib::HostCtlException("refused");
                          }),
               HostCtl::Lib::HostCtlException);
  EXPECT_EQ(StateFileText(), before);
  ASSERT_EQ(OrvkCtl_BeginTransaction(), nullptr);
  add("second");
  ASSERT_EQ(OrvkCtl_CommitTransaction(), nullptr);
  add("third");
  std::string const json = HostToJson(ReadHost());
  EXPECT_EQ(StateFileText(), json);
  Reload();
  HostModel const& host = ReadHost();
  EXPECT_EQ(HostToJson(host), json);
  EXPECT_FALSE(host.firewall.enabled);
  auto const& groups = host.vswitch.standard_switches;
  EXPECT_EQ(groups.at(1).port_groups.size(), 2001u);
  std::vector<std::string> names;
  for (auto const& group : groups.at(0).port_groups) names.push_back(group.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Management Network", "VM Network", "first",
                                             "second", "third"}));
}

TEST_F(LazyPortGroupsTest, ANicThatDoesNotFitIsReportedWhenRead) {
  ReadHost();
  std::string text = StateFileText();
  // The second NIC's MTU out of range: commands on the others still work.
  std::string const second = R"({"name":"ornic1",)";
  size_t const at = text.find(second);
  ASSERT_NE(at, std::string::npos);
  text.insert(at + second.size(), R"("mtu":2147483648,)");
  Reload();
  WriteState(text);
  auto const& nics = ReadHost(OrvkCtl::Sim::kAreaNic).nic.pnics;
  ASSERT_EQ(nics.size(), 5u);
  EXPECT_EQ(nics[0].name, "ornic0");
  EXPECT_TRUE(nics.NameIs(1, "ornic1"));  // from the text, without the record
  try {
    (void)nics[1];
    ADD_FAILURE() << "read";
  } catch (HostCtl::Lib::HostCtlException const& error) {
    EXPECT_EQ(error.message, "Host state file " + state_path_ +
                                 " is corrupt: in \"nic\": pnics[1]: mtu: expected an integer "
                                 "from -2147483648 to 2147483647");
  }
  EXPECT_EQ(StateFileText(), text);
}

}  // namespace
