// Text helpers of the host control library: printf-style formatting, joining
// pieces, and splitting at separators.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace HostCtl::Misc {

namespace Detail {

// A view of a character range (pointer and length) that a StrCat argument
// converts from. It does not own the characters: they must outlive the call,
// which a temporary of the calling full expression does.
class StrBuf {
 public:
  StrBuf(std::string const& text) : data_(text.data()), size_(text.size()) {}
  // A null pointer is an empty piece.
  StrBuf(char const* text);

  char const* data() const { return data_; }
  size_t size() const { return size_; }

 private:
  char const* data_;
  size_t size_;
};

}  // namespace Detail

// printf-style formatting into a new string. The arguments must match the
// format as for printf.
std::string StrPrintf(char const* format, ...) __attribute__((format(printf, 1, 2)));

// Joins the pieces in order, without separator.
std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c);
std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c, Detail::StrBuf d,
                   Detail::StrBuf e);
std::string StrCat(Detail::StrBuf a, Detail::StrBuf b, Detail::StrBuf c, Detail::StrBuf d,
                   Detail::StrBuf e, Detail::StrBuf f);

// Splits `text` at every character of `separators` and appends the non-empty
// pieces, in order, to `out` (whose earlier entries stay). Runs of separators
// count as one; an empty text, or one of separators only, appends nothing.
// A null or empty `separators` appends the whole text as one piece.
void StringTokenize(std::string const& text, std::vector<std::string>& out, char const* separators);

}  // namespace HostCtl::Misc
