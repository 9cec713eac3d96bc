// Column widths of printed text: plain ASCII is measured without decoding, so
// it must agree with what decoding the same characters gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "utf8.h"

namespace {

using Toolbase::Text::DisplayWidth;
using Toolbase::Text::IsValidUtf8;
using Toolbase::Text::PrefixForWidth;

// "é" is two bytes and one column; appending it sends the same text down the
// decoding path.
constexpr char kAccent[] = "\xC3\xA9";

TEST(TextWidth, AsciiAgreesWithDecoding) {
  struct Case {
    std::string text;
    size_t width;
  };
  Case const cases[] = {
      {"", 0},
      {"vSwitch0", 8},
      {"a\tb", 2},                 // controls take no column
      {std::string("x\0y", 3), 2},  // nor does an embedded NUL
      {"del\x7f", 3},
      {"two  spaces", 11},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(IsValidUtf8(c.text));
    EXPECT_EQ(DisplayWidth(c.text), c.width);
    EXPECT_EQ(DisplayWidth(c.text + kAccent), c.width + 1);
    for (size_t limit = 0; limit <= c.width + 1; ++limit) {
      SCOPED_TRACE(limit);
      size_t const decoded = PrefixForWidth(c.text + kAccent, limit);
      EXPECT_EQ(PrefixForWidth(c.text, limit), std::min(decoded, c.text.size()));
    }
  }
}

TEST(TextWidth, WideAndInvalidText) {
  EXPECT_EQ(DisplayWidth("\xE6\xBC\xA2\xE5\xAD\x97"), 4u);  // two wide characters
  EXPECT_EQ(PrefixForWidth("\xE6\xBC\xA2\xE5\xAD\x97", 3), 3u);
  EXPECT_FALSE(IsValidUtf8("ab\xFF"));
  EXPECT_EQ(DisplayWidth("ab\xFF"), 3u);  // an invalid byte shows as one column
  EXPECT_EQ(PrefixForWidth("abcdef", 3), 3u);
  EXPECT_EQ(PrefixForWidth("abcdef", 0), 1u);  // never an empty first piece
}

TEST(TextWidth, QuotedValuesAreEscapedAndCut) {
  using Toolbase::Text::Quoted;
  struct Case {
    std::string text;
    std::string quoted;
  };
  Case const cases[] = {
      {"plain", "'plain'"},
      {std::string("tab\tnl\ncr\rnul\0del\x7f", 18), "'tab\\tnl\\ncr\\rnul\\0del\\x7f'"},
      {"bad\xff", "'bad\\xff'"},
      {std::string(kAccent) + "ok", "'\xC3\xA9ok'"},
      // Cut at 60 bytes, never inside a character.
      {std::string(59, 'a') + kAccent, "'" + std::string(59, 'a') + "\u2026' (61 bytes)"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.quoted);
    EXPECT_EQ(Quoted(row.text), row.quoted);
  }
}

}  // namespace
