// Text measured as a terminal shows it. Values reach the framework as bytes;
// these decode them as UTF-8 with libc's converter.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Toolbase::Text {

// True when `text` is well-formed UTF-8 of Unicode scalar values.
bool IsValidUtf8(std::string_view text);

// Columns `text` takes on a terminal: wide (East Asian) characters count two,
// combining marks and other zero-width characters none. A byte that does not
// start a valid sequence counts one.
std::size_t DisplayWidth(std::string_view text);

// Bytes of the longest leading run of whole characters of `text` that fits in
// `width` columns; at least one character when `text` is not empty, so that a
// caller cutting text into lines always makes progress.
std::size_t PrefixForWidth(std::string_view text, std::size_t width);

// `text` as a message shows a value the user gave, in single quotes: control
// characters, NUL bytes and bytes that are not UTF-8 escaped (\n, \t, \0,
// \xNN), and a value longer than `limit` bytes cut at a character boundary
// with its full length said, e.g. 'aaaa…' (5000 bytes).
std::string Quoted(std::string_view text, std::size_t limit = 60);

}  // namespace Toolbase::Text
