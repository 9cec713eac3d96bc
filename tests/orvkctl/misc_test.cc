#include "hostctl/misc.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace HostCtl::Misc {
namespace {

TEST(StrCatTest, JoinsMixedPiecesInOrder) {
  std::string const name = "ornic1";
  char const* pointer = ". Error was : ";
  char const* null_piece = nullptr;
  EXPECT_EQ(StrCat("Unable to find ", name, ""), "Unable to find ornic1");
  EXPECT_EQ(StrCat("a", std::string("b"), pointer, name, null_piece), "ab. Error was : ornic1");
  EXPECT_EQ(StrCat("1", "2", "3", "4", "5", "6"), "123456");
  // A piece is a pointer and a length: characters past a NUL inside a string count.
  EXPECT_EQ(StrCat(std::string("x\0y", 3), "", ""), std::string("x\0y", 3));
}

TEST(StrPrintfTest, FormatsLikePrintf) {
  EXPECT_EQ(StrPrintf("%d - %s", 3, "ETS"), "3 - ETS");
  EXPECT_EQ(StrPrintf("%d %d %d %d %d %d %d %d", 0, 1, 2, 3, 4, 5, 6, -7), "0 1 2 3 4 5 6 -7");
  EXPECT_EQ(StrPrintf("%s", ""), "");
  std::string const long_text(5000, 'q');
  EXPECT_EQ(StrPrintf("<%s>", long_text.c_str()), "<" + long_text + ">");
}

TEST(StringTokenizeTest, SplitsAtAnySeparator) {
  struct Case {
    std::string text;
    char const* separators;
    std::vector<std::string> pieces;
  };
  std::vector<Case> const cases = {
      {"example.com corp.example.com", " ", {"example.com", "corp.example.com"}},
      {"", " ", {}},
      {"   ", " ", {}},
      {"  a   b ", " ", {"a", "b"}},
      {"a,b;;c", ",;", {"a", "b", "c"}},
      {"one", " ", {"one"}},
      {"a b", "", {"a b"}},
      {"a b", nullptr, {"a b"}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE("[" + c.text + "] at [" + (c.separators ? c.separators : "null") + "]");
    std::vector<std::string> out{"kept"};
    StringTokenize(c.text, out, c.separators);
    std::vector<std::string> expected{"kept"};
    expected.insert(expected.end(), c.pieces.begin(), c.pieces.end());
    EXPECT_EQ(out, expected);
  }
}

}  // namespace
}  // namespace HostCtl::Misc
