#include "utf8.h"

#include <locale.h>

#include <cwchar>

namespace Toolbase::Text {
namespace {

constexpr wchar_t kMaxScalar = 0x10FFFF;

// Decoding and widths follow the C.UTF-8 locale whatever the process's own
// locale is; the switch is per thread and undone at once.
class Utf8Locale {
 public:
  Utf8Locale() {
    static locale_t const utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    if (utf8) previous_ = uselocale(utf8);
  }
  ~Utf8Locale() {
    if (previous_) uselocale(previous_);
  }
  Utf8Locale(Utf8Locale const&) = delete;
  Utf8Locale& operator=(Utf8Locale const&) = delete;

 private:
  locale_t previous_ = static_cast<locale_t>(0);
};

struct Step {
  std::size_t bytes;  // bytes of the character, or 1 for an invalid byte
  int width;          // columns, or -1 for an invalid byte
};

Step Next(std::string_view text, std::size_t at) {
  std::mbstate_t state{};
  wchar_t character = 0;
  std::size_t const used = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
  if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2) ||
      character > kMaxScalar) {
    return {1, -1};
  }
  if (used == 0) return {1, 0};  // an embedded NUL
  int const width = wcwidth(character);
  return {used, width < 0 ? 0 : width};
}

// Text in plain ASCII, nearly all there is, is measured without decoding (or
// loading the locale): a printable character is one column, a control none.
bool IsAscii(std::string_view text) {
  for (unsigned char const byte : text) {
    if (byte >= 0x80) return false;
  }
  return true;
}

std::size_t AsciiWidth(unsigned char byte) { return byte >= 0x20 && byte < 0x7F ? 1 : 0; }

}  // namespace

bool IsValidUtf8(std::string_view text) {
  if (IsAscii(text)) return true;
  Utf8Locale locale;
  for (std::size_t at = 0; at < text.size();) {
    auto const step = Next(text, at);
    if (step.width < 0) return false;
    at += step.bytes;
  }
  return true;
}

std::size_t DisplayWidth(std::string_view text) {
  if (IsAscii(text)) {
    std::size_t width = 0;
    for (unsigned char const byte : text) width += AsciiWidth(byte);
    return width;
  }
  Utf8Locale locale;
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    auto const step = Next(text, at);
    width += step.width < 0 ? 1 : static_cast<std::size_t>(step.width);
    at += step.bytes;
  }
  return width;
}

std::size_t PrefixForWidth(std::string_view text, std::size_t width) {
  std::size_t used = 0;
  std::size_t at = 0;
  if (IsAscii(text)) {
    for (; at < text.size(); ++at) {
      std::size_t const columns = AsciiWidth(static_cast<unsigned char>(text[at]));
      if (at > 0 && used + columns > width) break;
      used += columns;
    }
    return at;
  }
  Utf8Locale locale;
  while (at < text.size()) {
    auto const step = Next(text, at);
    std::size_t const columns = step.width < 0 ? 1 : static_cast<std::size_t>(step.width);
    if (at > 0 && used + columns > width) break;
    used += columns;
    at += step.bytes;
  }
  return at;
}

std::string Quoted(std::string_view text, std::size_t limit) {
  std::string_view shown = text;
  if (shown.size() > limit) {
    std::size_t cut = limit;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    shown = text.substr(0, cut);
  }
  bool const valid = IsValidUtf8(shown);
  std::string quoted = "'";
  for (char const c : shown) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && (byte < 0x80 || valid)) {
      quoted += c;
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (c == '\t') {
      quoted += "\\t";
    } else if (c == '\r') {
      quoted += "\\r";
    } else if (c == '\0') {
      quoted += "\\0";
    } else {
      char const* const digits = "0123456789abcdef";
      quoted += "\\x";
      quoted += digits[byte >> 4];
      quoted += digits[byte & 0xF];
    }
  }
  if (shown.size() < text.size()) {
    return quoted + "\u2026' (" + std::to_string(text.size()) + " bytes)";
  }
  return quoted + "'";
}

}  // namespace Toolbase::Text
