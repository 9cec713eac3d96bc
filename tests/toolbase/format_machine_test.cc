#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <nlohmann/json.hpp>
#include <sstream>

#include "format.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format {
namespace {

using MetaObj::MetaBool;
using MetaObj::MetaInt;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaString;
using MetaObj::MetaStruct;

std::string Render(std::string const& formatter, std::shared_ptr<MetaObject> const& root) {
  std::ostringstream out;
  // Directives that would change simple or table output must not matter here.
  Print(formatter, root, {{"fields:Rule", "Port"}, {"header:Rule", "x"}, {"units:Rule.Port", "u"}},
        Options{}, out);
  return out.str();
}

// A rule list: one full rule and one whose fields are empty; the prototype
// has a field that the rules lack.
std::shared_ptr<MetaList> Rules() {
  auto prototype = MetaStruct::New("Rule");
  prototype->SetField("Name", std::shared_ptr<MetaObject>(MetaString::New()));
  prototype->SetField("Port", std::shared_ptr<MetaObject>(MetaInt::New()));
  prototype->SetField("Enabled", std::shared_ptr<MetaObject>(MetaBool::New()));
  auto list = MetaList::New(MetaObj::Struct, prototype);
  auto full = MetaStruct::New("Rule");
  full->SetField("Name", "ssh");
  full->SetField("Port", 22);
  full->SetField("Enabled", true);
  full->SetField("Hosts", std::vector<std::string>{"a", "b"});
  auto owner = MetaStruct::New("Owner");
  owner->SetField("Id", 1);
  owner->SetField("Tags", std::vector<std::string>{"x", "y"});
  full->SetField("Owner", std::shared_ptr<MetaObject>(owner));
  list->Add(full);
  auto empty = MetaStruct::New("Rule");
  empty->SetField("Name", std::shared_ptr<MetaObject>(MetaString::New()));
  empty->SetField("Port", std::shared_ptr<MetaObject>(MetaInt::New()));
  empty->SetField("Enabled", std::shared_ptr<MetaObject>(MetaBool::New()));
  list->Add(empty);
  return list;
}

// Texts that need escaping somewhere, with what a reader gets back.
struct Tricky {
  std::string raw;
  std::string read_back;
};
std::vector<Tricky> const kTricky = {
    {"plain", "plain"},
    {"a,b", "a,b"},
    {"say \"hi\" 'there'", "say \"hi\" 'there'"},
    {"<b>&amp;</b>", "<b>&amp;</b>"},
    {"two\nlines\tand tab", "two\nlines\tand tab"},
    {"caf\xC3\xA9", "caf\xC3\xA9"},
};

TEST(FormatJson, WholeTreeInFieldOrderWithNulls) {
  auto const text = Render("json", Rules());
  ASSERT_FALSE(text.empty());
  EXPECT_EQ(text.back(), '\n');
  auto const expected = nlohmann::ordered_json::parse(R"([
    {"Name": "ssh", "Port": 22, "Enabled": true, "Hosts": ["a", "b"],
     "Owner": {"Id": 1, "Tags": ["x", "y"]}},
    {"Name": null, "Port": null, "Enabled": null}
  ])");
  // Comparing the dumps of ordered values checks the key order too.
  EXPECT_EQ(nlohmann::ordered_json::parse(text).dump(), expected.dump());
  EXPECT_EQ(Render("json", MetaBool::New(false)), "false\n");
  EXPECT_EQ(Render("json", MetaInt::New()), "null\n");
  auto record = MetaStruct::New("Rule");
  record->SetField("Port", 22);
  EXPECT_EQ(Render("json", record), "{\n  \"Port\": 22\n}\n");
}

TEST(FormatJson, StringsSurviveARoundTrip) {
  for (auto const& tricky : kTricky) {
    SCOPED_TRACE(tricky.raw);
    auto record = MetaStruct::New("Rule");
    record->SetField(tricky.raw, tricky.raw);
    auto const parsed = nlohmann::json::parse(Render("json", record));
    EXPECT_EQ(parsed.at(tricky.raw).get<std::string>(), tricky.read_back);
  }
  // Bytes that are not UTF-8 do not break the document.
  auto const parsed = nlohmann::json::parse(Render("json", MetaString::New("bad\xFF")));
  EXPECT_EQ(parsed.get<std::string>(), "bad\xEF\xBF\xBD");
}

TEST(FormatXml, DocumentShape) {
  auto list = MetaList::New(MetaObj::String);
  list->Add("a<b");
  auto record = MetaStruct::New("Rule");
  record->SetField("On", true);
  record->SetField("Port", std::shared_ptr<MetaObject>(MetaInt::New()));
  record->SetField("Hosts", std::shared_ptr<MetaObject>(list));
  record->SetField("Empty", std::shared_ptr<MetaObject>(MetaList::New(MetaObj::Struct)));
  EXPECT_EQ(Render("xml", record),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<output>\n"
            "  <structure typeName=\"Rule\">\n"
            "    <field name=\"On\">\n"
            "      <boolean>true</boolean>\n"
            "    </field>\n"
            "    <field name=\"Port\">\n"
            "      <integer/>\n"
            "    </field>\n"
            "    <field name=\"Hosts\">\n"
            "      <list type=\"string\">\n"
            "        <string>a&lt;b</string>\n"
            "      </list>\n"
            "    </field>\n"
            "    <field name=\"Empty\">\n"
            "      <list type=\"structure\"/>\n"
            "    </field>\n"
            "  </structure>\n"
            "</output>\n");
  EXPECT_EQ(Render("xml", MetaInt::New(-3)),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<output>\n  <integer>-3</integer>\n"
            "</output>\n");
}

TEST(FormatXml, WellFormedAndEscaped) {
  namespace pt = boost::property_tree;
  auto cases = kTricky;
  cases.push_back({"bell\x07 and bad \xFF byte", "bell\xEF\xBF\xBD and bad \xEF\xBF\xBD byte"});
  cases.push_back({"cr\r", "cr\r"});
  for (auto const& tricky : cases) {
    SCOPED_TRACE(tricky.raw);
    auto record = MetaStruct::New(tricky.raw);
    record->SetField(tricky.raw, tricky.raw);
    std::istringstream in(Render("xml", record));
    pt::ptree tree;
    ASSERT_NO_THROW(pt::read_xml(in, tree));
    auto const& structure = tree.get_child("output.structure");
    EXPECT_EQ(structure.get<std::string>("<xmlattr>.typeName"), tricky.read_back);
    EXPECT_EQ(structure.get<std::string>("field.<xmlattr>.name"), tricky.read_back);
    EXPECT_EQ(structure.get<std::string>("field.string"), tricky.read_back);
  }
  // Readers normalise line breaks and tabs in attribute values unless they
  // come as references.
  auto record = MetaStruct::New("Rule");
  record->SetField("a\nb\tc", 1);
  EXPECT_NE(Render("xml", record).find("<field name=\"a&#10;b&#9;c\">"), std::string::npos);

  std::istringstream rules(Render("xml", Rules()));
  pt::ptree tree;
  ASSERT_NO_THROW(pt::read_xml(rules, tree));
  EXPECT_EQ(tree.get_child("output.list").count("structure"), 2u);
}

TEST(FormatCsv, QuotingOfCells) {
  std::vector<std::pair<std::string, std::string>> const cases = {
      {"plain", "plain"},
      {"a,b", "\"a,b\""},
      {"say \"hi\"", "\"say \"\"hi\"\"\""},
      {"two\nlines", "\"two\nlines\""},
      {"cr\r", "\"cr\r\""},
      {"<&> 'x'", "<&> 'x'"},
      {"", ""},
  };
  for (auto const& [raw, cell] : cases) {
    SCOPED_TRACE(raw);
    auto record = MetaStruct::New("Rule");
    record->SetField("Port, Name", raw);
    EXPECT_EQ(Render("csv", record), "\"Port, Name\"\n" + cell + "\n");
    auto strings = MetaList::New(MetaObj::String);
    strings->Add(raw);
    EXPECT_EQ(Render("csv", strings), cell + "\n");
    EXPECT_EQ(Render("csv", MetaString::New(raw)), cell + "\n");
  }
}

TEST(FormatCsv, RecordsUseAllFieldsAndFlattenNesting) {
  EXPECT_EQ(Render("csv", Rules()),
            "Name,Port,Enabled,Hosts,Owner\n"
            "ssh,22,true,\"a,b\",\"Id=1;Tags=[x,y]\"\n"
            ",,,,\n");
  auto const empty = MetaList::New(MetaObj::Struct, Rules()->GetPrototype());
  EXPECT_EQ(Render("csv", empty), "Name,Port,Enabled\n");
  EXPECT_EQ(Render("csv", MetaList::New(MetaObj::Struct)), "");
  EXPECT_EQ(Render("csv", MetaBool::New(true)), "true\n");
}

}  // namespace
}  // namespace Toolbase::Format
