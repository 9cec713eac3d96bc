// The table formatter against text a terminal shows wider or narrower than
// its character count, and records that carry a heading.
#include <gtest/gtest.h>

#include <sstream>

#include "format.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format {
namespace {

using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaString;
using MetaObj::MetaStruct;

std::string Render(std::shared_ptr<MetaObject> const& root, Directives const& directives = {},
                   int width = 80) {
  std::ostringstream out;
  Options options;
  options.width = width;
  Print("table", root, directives, options, out);
  return out.str();
}

std::shared_ptr<MetaList> Pairs(std::vector<std::pair<std::string, std::string>> const& rows) {
  auto prototype = MetaStruct::New("Pair");
  prototype->SetField("Name", std::shared_ptr<MetaObject>(MetaString::New()));
  prototype->SetField("Value", std::shared_ptr<MetaObject>(MetaString::New()));
  auto list = MetaList::New(MetaObj::Struct, prototype);
  for (auto const& [name, value] : rows) {
    auto row = MetaStruct::New("Pair");
    row->SetField("Name", name);
    row->SetField("Value", value);
    list->Add(row);
  }
  return list;
}

// Each case: a first cell and the blanks that must follow it so that the
// second column starts in the same terminal column on every line.
TEST(FormatTableWidth, AlignsOnDisplayWidth) {
  struct Case {
    char const* label;
    std::string cell;
    std::string padding;  // after the cell, up to the second column
  };
  std::vector<Case> const cases = {
      {"ascii", "abcd", "  "},
      {"two wide characters", "\xE5\x90\x8D\xE5\x89\x8D", "  "},  // 2 x 2 columns
      {"combining acute", "cafe\xCC\x81", "  "},                  // 4 columns, 5 code points
      {"one wide, one narrow", "\xE5\x90\x8D" "a", "   "},        // 3 columns
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.label);
    auto const text = Render(Pairs({{"abcd", "x"}, {c.cell, "y"}}));
    EXPECT_EQ(text,
              "Name  Value\n"
              "----  -----\n"
              "abcd  x\n" +
                  c.cell + c.padding + "y\n");
  }
}

TEST(FormatTableWidth, WrapsWideTextWithinTheLine) {
  // Ten wide characters are twenty columns: cut into lines of at most 20
  // columns at a screen of 30, never in the middle of a character.
  std::string wide;
  for (int i = 0; i < 15; ++i) wide += "\xE5\x90\x8D";
  auto const text = Render(Pairs({{"n", wide}}), {{"wrap-last", "true"}}, 26);
  std::string first;
  for (int i = 0; i < 10; ++i) first += "\xE5\x90\x8D";
  std::string rest;
  for (int i = 0; i < 5; ++i) rest += "\xE5\x90\x8D";
  EXPECT_EQ(text,
            "Name  Value\n"
            "----  --------------------\n"
            "n     " + first + "\n" +
            "      " + rest + "\n");
}

// A record type whose heading names a field the columns leave out (here the
// NIC the counters belong to) prints each record under its heading, as the
// simple formatter does, so the identifying value is not lost.
TEST(FormatTableWidth, RecordsWithAHeadingKeepIt) {
  auto list = Pairs({{"ornic0", "1"}, {"ornic1", "2"}});
  Directives const directives = {{"header:Pair", "Counters of %Name%"}, {"fields:Pair", "Value"}};
  EXPECT_EQ(Render(list, directives),
            "Counters of ornic0\n"
            "   Value\n"
            "   -----\n"
            "   1\n"
            "\n"
            "Counters of ornic1\n"
            "   Value\n"
            "   -----\n"
            "   2\n");
  // "<NONE>", or a heading whose fields are all columns, keeps one table.
  for (auto const& header : {"<NONE>", "Counters of %Value%"}) {
    EXPECT_EQ(Render(list, {{"header:Pair", header}, {"fields:Pair", "Value"}}),
              "Value\n"
              "-----\n"
              "1\n"
              "2\n");
  }
}

}  // namespace
}  // namespace Toolbase::Format
