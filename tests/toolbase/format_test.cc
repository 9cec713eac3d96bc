#include "format.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "toolbase/meta_obj.h"

namespace Toolbase::Format {
namespace {

using MetaObj::MetaBool;
using MetaObj::MetaInt;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaString;
using MetaObj::MetaStruct;

std::string Render(std::string const& formatter, std::shared_ptr<MetaObject> const& root,
                   Directives const& directives = {}, int width = 80) {
  std::ostringstream out;
  Options options;
  options.width = width;
  Print(formatter, root, directives, options, out);
  return out.str();
}

std::shared_ptr<MetaStruct> Nic(std::string const& name, std::string const& driver, long mtu) {
  auto nic = MetaStruct::New("Nic");
  nic->SetField("Name", name);
  nic->SetField("Driver", driver);
  nic->SetField("MTU", mtu);
  nic->SetField("Up", true);
  return nic;
}

std::shared_ptr<MetaStruct> NicPrototype() {
  auto nic = MetaStruct::New("Nic");
  nic->SetField("Name", std::shared_ptr<MetaObject>(MetaString::New()));
  nic->SetField("Driver", std::shared_ptr<MetaObject>(MetaString::New()));
  nic->SetField("MTU", std::shared_ptr<MetaObject>(MetaInt::New()));
  nic->SetField("Up", std::shared_ptr<MetaObject>(MetaBool::New()));
  return nic;
}

std::shared_ptr<MetaList> NicList() {
  auto list = MetaList::New(MetaObj::Struct, NicPrototype());
  list->Add(Nic("vmnic0", "ixgben", 1500));
  list->Add(Nic("vmnic10", "e1000", 9000));
  return list;
}

// A switch with a nested policy structure, a list of strings and a list of
// port groups.
std::shared_ptr<MetaStruct> Switch() {
  auto policy = MetaStruct::New("ShapingPolicy");
  policy->SetField("Enabled", true);
  policy->SetField("Average Bandwidth", 100000L);
  policy->SetField("Burst Size", std::shared_ptr<MetaObject>(MetaInt::New()));
  auto groups = MetaList::New(MetaObj::Struct, MetaStruct::New("PortGroup"));
  for (auto const* name : {"Management", "VM Network"}) {
    auto group = MetaStruct::New("PortGroup");
    group->SetField("Name", name);
    group->SetField("VLAN ID", 0);
    groups->Add(group);
  }
  auto vswitch = MetaStruct::New("VirtualSwitch");
  vswitch->SetField("Name", "vSwitch0");
  vswitch->SetField("Uplinks", std::vector<std::string>{"vmnic0", "vmnic1"});
  vswitch->SetField("Shaping", std::shared_ptr<MetaObject>(policy));
  vswitch->SetField("Portgroups", std::shared_ptr<MetaObject>(groups));
  return vswitch;
}

struct Case {
  char const* name;
  Directives directives;
  std::string expected;
};

TEST(FormatNames, SortedAndRecognised) {
  EXPECT_EQ(FormatterNames(), (std::vector<std::string>{"csv", "json", "simple", "table", "xml"}));
  EXPECT_TRUE(IsFormatter("table"));
  EXPECT_FALSE(IsFormatter("Table"));
  EXPECT_FALSE(IsFormatter(""));
  EXPECT_THROW(Render("yaml", MetaBool::New(true)), std::invalid_argument);
  EXPECT_THROW(Render("yaml", nullptr), std::invalid_argument);
}

TEST(FormatNullRoot, EachFormatterPrintsItsEmptyDocument) {
  std::vector<std::pair<std::string, std::string>> const cases = {
      {"simple", ""},
      {"table", ""},
      {"csv", ""},
      {"json", "null\n"},
      {"xml", "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<output/>\n"},
  };
  for (auto const& [formatter, expected] : cases) {
    SCOPED_TRACE(formatter);
    EXPECT_EQ(Render(formatter, nullptr, {{"fields:Nic", "Name"}}), expected);
  }
}

TEST(FormatSimple, FieldsDirectiveSelectsAndOrders) {
  auto nic = Nic("vmnic0", "ixgben", 1500);
  nic->SetField("Description", std::shared_ptr<MetaObject>(MetaString::New()));
  std::vector<Case> const cases = {
      {"no directive", {}, "Name: vmnic0\nDriver: ixgben\nMTU: 1500\nUp: true\nDescription: \n"},
      {"selection and order", {{"fields:Nic", "MTU,Name"}}, "MTU: 1500\nName: vmnic0\n"},
      {"unknown field skipped, empty field kept",
       {{"fields:Nic", "Name,Speed,Description"}},
       "Name: vmnic0\nDescription: \n"},
      {"unknown type changes nothing",
       {{"fields:Nics", "Name"}},
       "Name: vmnic0\nDriver: ixgben\nMTU: 1500\nUp: true\nDescription: \n"},
      {"names match exactly, blanks included", {{"fields:Nic", "Name, MTU"}}, "Name: vmnic0\n"},
      {"empty value means no selection",
       {{"fields:Nic", ""}},
       "Name: vmnic0\nDriver: ixgben\nMTU: 1500\nUp: true\nDescription: \n"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Render("simple", nic, c.directives), c.expected);
  }
}

TEST(FormatSimple, NestedStructuresListsAndHeaders) {
  std::vector<Case> const cases = {
      {"plain",
       {},
       "Name: vSwitch0\n"
       "Uplinks: vmnic0, vmnic1\n"
       "Shaping:\n"
       "   Enabled: true\n"
       "   Average Bandwidth: 100000\n"
       "   Burst Size: \n"
       "Portgroups:\n"
       "   Name: Management\n"
       "   VLAN ID: 0\n"
       "\n"
       "   Name: VM Network\n"
       "   VLAN ID: 0\n"},
      {"headers, <NONE> flattens, units with blanks in the key",
       {{"header:VirtualSwitch", "Switch %Name%"},
        {"header:ShapingPolicy", "<NONE>"},
        {"header:PortGroup", "%Name% (vlan %VLAN ID%)"},
        {"fields:PortGroup", "VLAN ID"},
        {"fields:VirtualSwitch", "Shaping,Portgroups"},
        {"units:ShapingPolicy.Average Bandwidth", "Kbps"},
        {"units:ShapingPolicy.Burst Size", "Kib"}},
       "Switch vSwitch0\n"
       "   Enabled: true\n"
       "   Average Bandwidth: 100000 Kbps\n"
       "   Burst Size: \n"
       "   Portgroups:\n"
       "      Management (vlan 0)\n"
       "         VLAN ID: 0\n"
       "\n"
       "      VM Network (vlan 0)\n"
       "         VLAN ID: 0\n"},
      {"header template on a nested structure replaces its label",
       {{"header:ShapingPolicy", "Shaping %Missing%(%Enabled%)"},
        {"fields:VirtualSwitch", "Shaping"}},
       "Shaping (true)\n"
       "   Enabled: true\n"
       "   Average Bandwidth: 100000\n"
       "   Burst Size: \n"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Render("simple", Switch(), c.directives), c.expected);
  }
}

TEST(FormatSimple, RootListsOfRecordsAreBlocks) {
  // The heading names a field that fields: hides and one that does not exist.
  Directives const directives = {{"header:Nic", "NIC %Name%%vf% [%Driver"},
                                 {"fields:Nic", "Driver,MTU"}};
  EXPECT_EQ(Render("simple", NicList(), directives),
            "NIC vmnic0 [%Driver\n"
            "   Driver: ixgben\n"
            "   MTU: 1500\n"
            "\n"
            "NIC vmnic10 [%Driver\n"
            "   Driver: e1000\n"
            "   MTU: 9000\n");
  EXPECT_EQ(Render("simple", MetaList::New(MetaObj::Struct, NicPrototype())), "");
}

TEST(FormatSimple, RootScalarsAndStringLists) {
  auto strings = MetaList::New(MetaObj::String);
  strings->AddAll({"10.0.0.1", "10.0.0.2"});
  std::vector<std::pair<std::shared_ptr<MetaObject>, std::string>> const cases = {
      {MetaBool::New(true), "true\n"},
      {MetaBool::New(false), "false\n"},
      {MetaInt::New(-42), "-42\n"},
      {MetaString::New("a b"), "a b\n"},
      {MetaString::New(), "\n"},
      {strings, "10.0.0.1\n10.0.0.2\n"},
      {MetaList::New(MetaObj::String), ""},
  };
  for (auto const& formatter : {"simple", "table"}) {
    for (std::size_t i = 0; i < cases.size(); ++i) {
      SCOPED_TRACE(std::string(formatter) + " case " + std::to_string(i));
      EXPECT_EQ(Render(formatter, cases[i].first), cases[i].second);
    }
  }
}

TEST(FormatTable, ColumnsWidthsAndDirectives) {
  std::vector<Case> const cases = {
      {"prototype order",
       {},
       "Name     Driver  MTU   Up\n"
       "-------  ------  ----  ----\n"
       "vmnic0   ixgben  1500  true\n"
       "vmnic10  e1000   9000  true\n"},
      {"fields selects, units apply",
       {{"fields:Nic", "MTU,Name"}, {"units:Nic.MTU", "bytes"}},
       "MTU         Name\n"
       "----------  -------\n"
       "1500 bytes  vmnic0\n"
       "9000 bytes  vmnic10\n"},
      {"table-columns wins over fields, unknown column dropped",
       {{"fields:Nic", "MTU"}, {"table-columns", "Up,Age,Name"}},
       "Up    Name\n"
       "----  -------\n"
       "true  vmnic0\n"
       "true  vmnic10\n"},
      {"table-columns of the type",
       {{"fields:Nic", "MTU"}, {"table-columns:Nic", "Driver"}},
       "Driver\n"
       "------\n"
       "ixgben\n"
       "e1000\n"},
      {"header directives do not affect rows",
       {{"header:Nic", "NIC %Name%"}, {"fields:Nic", "Name"}},
       "Name\n"
       "-------\n"
       "vmnic0\n"
       "vmnic10\n"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Render("table", NicList(), c.directives), c.expected);
  }
}

TEST(FormatTable, EmptyTablesAndEmptyCells) {
  auto list = MetaList::New(MetaObj::Struct, NicPrototype());
  EXPECT_EQ(Render("table", list, {{"fields:Nic", "Name,MTU"}}),
            "Name  MTU\n"
            "----  ---\n");
  EXPECT_EQ(Render("table", MetaList::New(MetaObj::Struct)), "");
  // Empty cells leave no blanks at the end of a line.
  auto record = NicPrototype();
  record->SetField("Name", "a");
  list->Add(record);
  EXPECT_EQ(Render("table", list, {{"fields:Nic", "Name,MTU"}, {"units:Nic.MTU", "bytes"}}),
            "Name  MTU\n"
            "----  ---\n"
            "a\n");
}

TEST(FormatTable, WidthsCountCharactersNotBytes) {
  auto list = MetaList::New(MetaObj::Struct, NicPrototype());
  list->Add(Nic("caf\xC3\xA9", "d", 1));
  EXPECT_EQ(Render("table", list, {{"fields:Nic", "Name,MTU"}}),
            "Name  MTU\n"
            "----  ---\n"
            "caf\xC3\xA9  1\n");
}

TEST(FormatTable, ListsAndStructuresInCells) {
  auto lag = MetaStruct::New("LAG");
  lag->SetField("ID", 7);
  lag->SetField("Flags", std::vector<std::string>{"ACT", "AGG"});
  auto info = MetaStruct::New("Info");
  info->SetField("Key", 3);
  info->SetField("Ports", std::vector<std::string>{"a", "b"});
  info->SetField("Note", "x\ny");
  lag->SetField("Info", std::shared_ptr<MetaObject>(info));
  auto list = MetaList::New(MetaObj::Struct, MetaStruct::New("LAG"));
  list->Add(lag);
  EXPECT_EQ(Render("table", list, {{"units:Info.Key", "s"}}),
            "ID  Flags     Info\n"
            "--  --------  ----------------------------------\n"
            "7   ACT, AGG  Key: 3 s, Ports: [a, b], Note: x y\n");
}

TEST(FormatTable, WrapLastKeepsLinesWithinWidth) {
  auto list = MetaList::New(MetaObj::Struct, MetaStruct::New("Plugin"));
  auto plugin = MetaStruct::New("Plugin");
  plugin->SetField("NIC", "vmnic0");
  plugin->SetField("Description",
                   "Balances receive queues across cores, preferring those with free capacity");
  list->Add(plugin);
  auto expected_wide = std::string(
      "NIC     Description\n"
      "------  --------------------------------\n"
      "vmnic0  Balances receive queues across\n"
      "        cores, preferring those with\n"
      "        free capacity\n");
  EXPECT_EQ(Render("table", list, {{"wrap-last", "true"}}, 40), expected_wide);
  std::istringstream lines(Render("table", list, {{"wrap-last", "true"}}, 40));
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 40u) << line;

  // A narrow screen still leaves 20 characters; a long word is cut.
  plugin->SetField("Description", "abcdefghijklmnopqrstuvwxyz0123 end");
  EXPECT_EQ(Render("table", list, {{"wrap-last", "true"}}, 10),
            "NIC     Description\n"
            "------  --------------------\n"
            "vmnic0  abcdefghijklmnopqrst\n"
            "        uvwxyz0123 end\n");
  // Without the directive set to "true", or when the text fits, nothing wraps.
  for (auto const& directives : {Directives{}, Directives{{"wrap-last", "false"}}}) {
    EXPECT_EQ(Render("table", list, directives, 10),
              "NIC     Description\n"
              "------  ----------------------------------\n"
              "vmnic0  abcdefghijklmnopqrstuvwxyz0123 end\n");
  }
  EXPECT_EQ(Render("table", list, {{"wrap-last", "true"}}, 200),
            Render("table", list, {{"wrap-last", "false"}}, 200));
}

TEST(FormatTable, StructRootPrintsNestedRecordListsAsTables) {
  EXPECT_EQ(Render("table", Switch(),
                   {{"header:ShapingPolicy", "<NONE>"},
                    {"table-columns:PortGroup", "VLAN ID,Name"},
                    {"table-columns", "Name"}}),
            "Name: vSwitch0\n"
            "Uplinks: vmnic0, vmnic1\n"
            "Enabled: true\n"
            "Average Bandwidth: 100000\n"
            "Burst Size: \n"
            "Portgroups:\n"
            "   VLAN ID  Name\n"
            "   -------  ----------\n"
            "   0        Management\n"
            "   0        VM Network\n");
}

}  // namespace
}  // namespace Toolbase::Format
