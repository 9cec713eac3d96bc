#include "hostctl/misc.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace HostCtl::Misc {

namespace Detail {

StrBuf::StrBuf(char const* text) : data_(text ? text : ""), size_(text ? std::strlen(text) : 0) {}

}  // namespace Detail

namespace {

std::string Join(std::initializer_list<Detail::StrBuf> pieces) {
  size_t size = 0;
  for (Detail::StrBuf const& piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (Detail::StrBuf const& piece : pieces) text.append(piece.data(), piece.size());
  return text;
}

}  // namespace

std::string StrPrintf(char const* format, ...) {
  va_list args;
  va_start(args, format);
  va_list probe;
  va_copy(probe, args);
  int const size = std::vsnprintf(nullptr, 0, format, probe);
  va_end(probe);
  std::string text;
  if (size > 0) {
    // vsnprintf writes a terminating NUL, which the string's own buffer has
    // room for at index size().
    text.resize(static_cast<size_t>(size));
    std::vsnprintf(text.data(), text.size() + 1, format, args);
  }
  va_end(args);
  return text;
}

std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c) { return Join({a, b, c}); }

std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c, Detail::StrBuf d,
                   Detail::StrBuf e) {
  return Join({a, b, c, d, e});
}

std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c, Detail::StrBuf d,
                   Detail::StrBuf e, Detail::StrBuf f) {
  return Join({a, b, c, d, e, f});
}

void StringTokenize(std::string const& text, std::vector<std::string>& out,
                    char const* separators) {
  if (separators == nullptr) separators = "";
  size_t pos = text.find_first_not_of(separators);
  while (pos != std::string::npos) {
    size_t end = text.find_first_of(separators, pos);
    out.push_back(text.substr(pos, end == std::string::npos ? end : end - pos));
    pos = text.find_first_not_of(separators, end);
  }
}

}  // namespace HostCtl::Misc
