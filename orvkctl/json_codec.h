// JSON conversion of the host model's records, for the state file codec
// (host_json.cc, json_*.cc) only: nothing outside orvkctl's sources includes
// this header.
//
// A record declares its fields once, in file order:
//   JSON_RECORD(LinkModeState, speed, duplex, media)
// which defines, in the record's namespace,
//   void ReadJson(JsonValue const&, LinkModeState&);    // the record an object gives
//   void FillJson(JsonValue const&, LinkModeState&);    // the same into a default one
//   void WriteJson(JsonWriter&, LinkModeState const&);  // an object of non-default fields
//   void WriteJsonDiff(JsonWriter&, LinkModeState const&, ElementTexts const&);
//   bool SameJson(LinkModeState const&, LinkModeState const&);
//   bool SameAsJson(LinkModeState const&, JsonValue const&);  // reads back from it
// and checks at compile time that the list names as many fields as the
// record has. Members may be bool, integers, std::string, std::vector and
// std::array of those, other records, or any type with its own ReadJson,
// WriteJson, SameJson and SameAsJson (EepromImage in json_nic.cc).
//
// Reading: unknown keys are ignored; a missing key keeps the record's default;
// a value of the wrong type, or an integer outside its member's range, throws
// JsonError naming where it is ("pnics[2].mtu: ..."). Writing leaves out every
// field equal to its value in a default-constructed record, so reading the
// text back gives the record again. WriteJsonDiff writes the same text, but
// copies the elements of arrays of records that a load noted in ElementTexts
// (host_store.h) and that still read back the same from the text noted.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host_store.h"
#include "hostctl/lib.h"

// Nothing of the codec is for other libraries: keep it out of the dynamic
// symbol table, which every process binds at start-up. (After the includes:
// declarations of libc and the standard library keep their visibility.)
#pragma GCC visibility push(hidden)

#define JSON_HIDDEN __attribute__((visibility("hidden")))

namespace OrvkCtl::Sim {
// The allocator type naming the writer's stack below.
struct JsonStackAllocator : rapidjson::CrtAllocator {};
}  // namespace OrvkCtl::Sim

// rapidjson's stack starts as null pointers that its first growth check
// offsets, which is undefined (UBSan stops there): the writer's stack of
// nesting levels is this one instead, with the operations the writer uses.
template <>
class rapidjson::internal::Stack<OrvkCtl::Sim::JsonStackAllocator> {
 public:
  Stack(OrvkCtl::Sim::JsonStackAllocator*, size_t capacity) { bytes_.reserve(capacity); }
  void Clear() { bytes_.clear(); }
  bool Empty() const { return bytes_.empty(); }
  size_t GetSize() const { return bytes_.size(); }
  template <typename T>
  T* Push(size_t count = 1) {
    size_t at = bytes_.size();
    bytes_.resize(at + sizeof(T) * count);
    return reinterpret_cast<T*>(bytes_.data() + at);
  }
  template <typename T>
  T* Pop(size_t count) {
    bytes_.resize(bytes_.size() - sizeof(T) * count);
    return reinterpret_cast<T*>(bytes_.data() + bytes_.size());
  }
  template <typename T>
  T* Top() {
    return reinterpret_cast<T*>(bytes_.data() + bytes_.size() - sizeof(T));
  }

 private:
  std::vector<unsigned char> bytes_;
};

namespace OrvkCtl::Sim {

using JsonValue = rapidjson::Value;

// The writer's output, appended to a string.
struct JsonStringOut {
  using Ch = char;
  void Put(char c) { text->push_back(c); }
  void Flush() {}
  std::string* text;
};
struct JsonStringOutHolder {
  JsonStringOut out;
};

// Writes to the end of a string. Strings are checked for UTF-8 by
// WriteJson, faster than the writer would.
class JsonWriter : private JsonStringOutHolder,
                   public rapidjson::Writer<JsonStringOut, rapidjson::UTF8<>, rapidjson::UTF8<>,
                                            JsonStackAllocator> {
 public:
  // Long texts written as they are go to `pieces`, when given.
  explicit JsonWriter(std::string& text, std::vector<TextPiece>* pieces = nullptr)
      : JsonStringOutHolder{{&text}}, Writer(out), pieces_(pieces) {}
  // Writes `json`, a value of type `type` in JSON, as it is.
  void Raw(std::string_view json, rapidjson::Type type) {
    RawValue(json.data(), 0, type);  // what goes before it
    if (pieces_ && json.size() >= kMinPiece) {
      pieces_->push_back({out.text->size(), json});
    } else {
      out.text->append(json);
    }
  }

 private:
  static constexpr size_t kMinPiece = 4096;
  std::vector<TextPiece>* pieces_;
};

// A value that does not fit the model, with the path to it.
class JSON_HIDDEN JsonError : public std::exception {
 public:
  explicit JsonError(std::string reason) : reason_(std::move(reason)), text_(reason_) {}
  // Puts the member `key` (or the element `index`) in front of the path.
  void Within(std::string_view key);
  void Within(size_t index);
  char const* what() const noexcept override { return text_.c_str(); }

 private:
  void Compose() { text_ = path_.empty() ? reason_ : path_ + ": " + reason_; }
  std::string path_;
  std::string reason_;
  std::string text_;
};

inline void JsonError::Within(std::string_view key) {
  path_ = std::string(key) + (path_.empty() || path_.front() == '[' ? "" : ".") + path_;
  Compose();
}

inline void JsonError::Within(size_t index) {
  path_ = "[" + std::to_string(index) + "]" + (path_.empty() || path_.front() == '[' ? "" : ".") +
          path_;
  Compose();
}

// What a field may hold beyond what its type allows: a range of integers,
// a set of integers, or a set of words. Declared beside the record's
// JSON_RECORD line, before it:
//   JSON_RANGE(LagState, load_balance, 0, 20)
//   JSON_ONE_OF(LacpMemberState, state, "Bundled", "Independent")
//   JSON_ONE_OF_NUMBERS(Ipv6AddressState, type, 0, 7, 9)
// and checked as the field is read (each element, for a list): a value
// outside it throws JsonError as a value of the wrong type does.
struct JsonLimit {
  bool set = false;
  int64_t min = std::numeric_limits<int64_t>::min();
  int64_t max = std::numeric_limits<int64_t>::max();
  std::span<int64_t const> numbers;         // when given, one of these
  std::span<std::string_view const> words;  // when given, one of these
};
template <auto Member>
inline constexpr JsonLimit kJsonLimit{};

template <class T>
void CheckJsonLimit(JsonLimit const& limit, T const& value);

// Parses `text` (one JSON value, nothing after it) and reads it into `out`
// with ReadJson. Throws std::exception on malformed text or a value that does
// not fit; `out` is then unchanged. With `texts`, notes there the arrays of
// records read and keeps the parse, for AppendJson. `in_place`: `text` is
// the whole of a string that the caller owns, which may be parsed where it
// is, and reads the same afterwards, instead of in a copy. `owner` (with
// `texts`): keeps `text` as it is for as long as it lives; the lists of
// records under `lazy_key` are then left as their elements' texts, for
// LazyList to read when used.
template <class T>
void ParseJson(std::string_view text, T& out, ElementTexts* texts = nullptr,
               bool in_place = false, std::shared_ptr<void const> const& owner = nullptr,
               std::string_view lazy_key = {});

// Reads element `index` of the list `list` of the state file's area `area`
// from its text, for LazyList (ReadRecordText); throws HostCtlException,
// naming the file and where the element is, when it cannot.
template <class T>
void ReadListElement(std::string_view text, size_t index, T& out, std::string_view area,
                     std::string_view list) {
  try {
    ParseJson(text, out);
  } catch (std::exception const& error) {
    throw HostCtl::Lib::HostCtlException("Host state file " + StatePath() + " is corrupt: in \"" +
                                         std::string(area) + "\": " + std::string(list) + "[" +
                                         std::to_string(index) + "]: " + error.what());
  }
}

// What ParseJson without `texts` parses in: a text's copy and its values,
// kept from one parse to the next.
struct JsonScratch {
  static constexpr size_t kSize = 16384;
  alignas(std::max_align_t) char memory[kSize];
  rapidjson::MemoryPoolAllocator<> pool{memory, kSize};
  std::string buffer;
  bool busy = false;
};
inline JsonScratch& TheJsonScratch() {
  static thread_local JsonScratch scratch;
  return scratch;
}

// Appends `value` as compact JSON text to `out`. Throws JsonError on a
// string that is not UTF-8. Elements of arrays noted in `texts` that the
// text there still describes are copied from it.
template <class T>
void AppendJson(T const& value, ElementTexts const* texts, std::string& out,
                std::vector<TextPiece>* pieces = nullptr);

// Offsets [begin, end) of objects in a text, by begin.
using JsonObjectSpans = std::vector<std::pair<uint32_t, uint32_t>>;

// A text parsed, kept while a write may copy from it.
struct JsonParse {
  std::string_view text;  // as given; outlives this
  // Where it was parsed in place: its copy in `buffer`, or where it is when
  // that could be done keeping it as it is.
  std::string buffer;
  char const* parsed = nullptr;
  rapidjson::Document document;
  JsonObjectSpans objects;
  mutable size_t cursor = 0;  // in `objects`, where the last one was found
};
// The text of `object`, parsed from `parse`; empty when it has no member to
// place it by.
JSON_HIDDEN std::string_view SourceOf(JsonParse const& parse, JsonValue const& object);

// The lists of a text that a parse skips, each an array of objects under a
// key (of LazyLists) laid out as the library writes it: where its elements lie
// ([begin, end) of what is between its brackets) and each element's text.
// The parse gives each such array as a string value of that span's text.
struct JsonLazyArrays {
  struct Array {
    uint32_t begin;
    uint32_t end;
    std::vector<std::string_view> elements;
  };
  std::vector<Array> arrays;  // in text order
  // The one whose span begins at `begin`, or null.
  Array* Find(size_t begin) {
    auto at = std::lower_bound(arrays.begin(), arrays.end(), begin,
                               [](Array const& array, size_t offset) { return array.begin < offset; });
    return at != arrays.end() && at->begin == begin ? &*at : nullptr;
  }
};
// Finds in `text` the lists under `key`, each an array of one or more
// objects, in the layout the library writes (no blanks between the key, the
// brackets and the elements). A list laid out otherwise, or one whose text is
// not UTF-8, is left to the parse. Returns whether it found any.
JSON_HIDDEN bool ScanLazyArrays(std::string_view text, std::string_view key, JsonLazyArrays& out);

// While ParseJson(..., texts) reads.
struct JsonLoad {
  ElementTexts* texts;
  JsonParse const* parse;
  JsonLazyArrays* lazy;                      // lists the parse skipped, if any
  std::shared_ptr<void const> const* owner;  // keeps their texts
};
inline JsonLoad*& CurrentJsonLoad() {
  static thread_local JsonLoad* load = nullptr;
  return load;
}

// Parses `text` in place into `document`, whose strings then point into
// `text`. Throws std::runtime_error ("parse error ...") on malformed text,
// including a NUL byte, text that is not UTF-8, and arrays and objects nested
// deeper than 100 levels. Notes the offsets of every object in `objects`
// when given. Skips the arrays in `lazy` (when given), giving each as a string
// value: the text between its brackets.
JSON_HIDDEN void ParseDocument(std::string& text, rapidjson::Document& document,
                               JsonObjectSpans* objects = nullptr,
                               JsonLazyArrays const* lazy = nullptr);
// The same, in `text` itself (`size` bytes, then a NUL byte), which reads the
// same afterwards: the strings of `document` point into it. Returns false,
// having parsed nothing, when that cannot be done (a string has an escape).
JSON_HIDDEN bool ParseDocumentKeepingText(char* text, size_t size, rapidjson::Document& document,
                                          JsonObjectSpans* objects,
                                          JsonLazyArrays const* lazy = nullptr);

// Whether `text` is all ASCII.
inline bool IsAscii(std::string_view text) {
  uint64_t bits = 0;
  size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    uint64_t word;
    std::memcpy(&word, text.data() + i, 8);
    bits |= word;
  }
  for (; i < text.size(); ++i) bits |= static_cast<unsigned char>(text[i]);
  return (bits & 0x8080808080808080u) == 0;
}

// A string as a stream for rapidjson's UTF-8 decoder, read as NUL past its
// end (which no multi-byte sequence accepts).
struct JsonUtf8Stream {
  using Ch = char;
  char Peek() const { return at < text.size() ? text[at] : '\0'; }
  char Take() { return at < text.size() ? text[at++] : (++at, '\0'); }
  std::string_view text;
  size_t at = 0;
};

// Whether `text` is well-formed UTF-8.
inline bool IsUtf8(std::string_view text) {
  if (IsAscii(text)) return true;
  JsonUtf8Stream stream{text};
  while (stream.at < text.size()) {
    unsigned codepoint;
    if (!rapidjson::UTF8<>::Decode(stream, &codepoint) || stream.at > text.size()) return false;
  }
  return true;
}

// --- scalars and containers ---

template <class T>
concept JsonInteger = std::integral<T> && !std::same_as<T, bool>;

inline void ReadJson(JsonValue const& value, bool& out) {
  if (!value.IsBool()) throw JsonError("expected true or false");
  out = value.GetBool();
}

inline void ReadJson(JsonValue const& value, std::string& out) {
  if (!value.IsString()) throw JsonError("expected a string");
  // No text of the host holds one; a name with one would not be the name shown.
  if (std::memchr(value.GetString(), '\0', value.GetStringLength())) {
    throw JsonError("expected a string without NUL characters");
  }
  out.assign(value.GetString(), value.GetStringLength());
}

template <JsonInteger I>
void ReadJson(JsonValue const& value, I& out) {
  using Limits = std::numeric_limits<I>;
  if constexpr (std::is_signed_v<I>) {
    if (value.IsInt64() && value.GetInt64() >= Limits::min() && value.GetInt64() <= Limits::max()) {
      out = static_cast<I>(value.GetInt64());
      return;
    }
  } else {
    if (value.IsUint64() && value.GetUint64() <= Limits::max()) {
      out = static_cast<I>(value.GetUint64());
      return;
    }
  }
  throw JsonError("expected an integer from " + std::to_string(Limits::min()) + " to " +
                  std::to_string(Limits::max()));
}

template <class T>
void ReadJson(JsonValue const& value, std::vector<T>& out) {
  if (!value.IsArray()) throw JsonError("expected an array");
  out.clear();
  out.reserve(value.Size());
  if constexpr (requires(T & record) { FillJson(value, record); }) {
    if (JsonLoad* load = CurrentJsonLoad()) load->texts->arrays[&out] = {&value, load->parse};
  }
  for (auto const& element : value.GetArray()) {
    try {
      // A record is filled in place: the new element has its defaults already.
      if constexpr (requires(T & record) { FillJson(element, record); }) {
        FillJson(element, out.emplace_back());
      } else {
        ReadJson(element, out.emplace_back());
      }
    } catch (JsonError& error) {
      error.Within(out.size() - 1);
      throw;
    }
  }
}

template <class T, size_t N>
void ReadJson(JsonValue const& value, std::array<T, N>& out) {
  if (!value.IsArray() || value.Size() != N) {
    throw JsonError("expected an array of " + std::to_string(N) + " elements");
  }
  for (size_t i = 0; i < N; ++i) {
    try {
      ReadJson(value[static_cast<rapidjson::SizeType>(i)], out[i]);
    } catch (JsonError& error) {
      error.Within(i);
      throw;
    }
  }
}

inline void WriteJson(JsonWriter& writer, bool value) { writer.Bool(value); }

inline void WriteJson(JsonWriter& writer, std::string const& value) {
  if (!IsUtf8(value)) throw JsonError("text that is not UTF-8 cannot be stored");
  // What a load refuses is never written.
  if (std::memchr(value.data(), '\0', value.size())) {
    throw JsonError("text with a NUL character cannot be stored");
  }
  writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

template <JsonInteger I>
void WriteJson(JsonWriter& writer, I value) {
  if constexpr (std::is_signed_v<I>) {
    writer.Int64(value);
  } else {
    writer.Uint64(value);
  }
}

template <class T>
void WriteJson(JsonWriter& writer, std::vector<T> const& values) {
  writer.StartArray();
  for (auto const& value : values) WriteJson(writer, value);
  writer.EndArray();
}

template <class T, size_t N>
void WriteJson(JsonWriter& writer, std::array<T, N> const& values) {
  writer.StartArray();
  for (auto const& value : values) WriteJson(writer, value);
  writer.EndArray();
}

template <class T>
requires std::integral<T> || std::same_as<T, std::string>
bool SameJson(T const& a, T const& b) { return a == b; }

template <class T>
bool SameJson(std::vector<T> const& a, std::vector<T> const& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (!SameJson(a[i], b[i])) return false;
  }
  return true;
}

template <class T, size_t N>
bool SameJson(std::array<T, N> const& a, std::array<T, N> const& b) {
  for (size_t i = 0; i < N; ++i) {
    if (!SameJson(a[i], b[i])) return false;
  }
  return true;
}

// Whether `value` is exactly what reading `json` gives.
inline bool SameAsJson(bool value, JsonValue const& json) {
  return json.IsBool() && json.GetBool() == value;
}

inline bool SameAsJson(std::string const& value, JsonValue const& json) {
  return json.IsString() && std::string_view(json.GetString(), json.GetStringLength()) == value;
}

template <JsonInteger I>
bool SameAsJson(I value, JsonValue const& json) {
  if constexpr (std::is_signed_v<I>) {
    return json.IsInt64() && json.GetInt64() == value;
  } else {
    return json.IsUint64() && json.GetUint64() == value;
  }
}

template <class T>
bool SameAsJson(std::vector<T> const& values, JsonValue const& json) {
  if (!json.IsArray() || json.Size() != values.size()) return false;
  for (size_t i = 0; i < values.size(); ++i) {
    if (!SameAsJson(values[i], json[static_cast<rapidjson::SizeType>(i)])) return false;
  }
  return true;
}

template <class T, size_t N>
bool SameAsJson(std::array<T, N> const& values, JsonValue const& json) {
  if (!json.IsArray() || json.Size() != N) return false;
  for (size_t i = 0; i < N; ++i) {
    if (!SameAsJson(values[i], json[static_cast<rapidjson::SizeType>(i)])) return false;
  }
  return true;
}

// A LazyList: from a parse that skipped it, its elements' texts; else its
// records, read now. Written from those texts while no one read them.
template <class T>
void ReadJson(JsonValue const& value, LazyList<T>& out) {
  if (value.IsString()) {
    JsonLoad const* load = CurrentJsonLoad();
    if (load && load->lazy) {
      auto at = reinterpret_cast<uintptr_t>(value.GetString());
      auto base = reinterpret_cast<uintptr_t>(load->parse->parsed);
      if (at >= base) {
        if (auto const* array = load->lazy->Find(at - base)) {
          out.AssignTexts(std::move(array->elements), *load->owner);
          return;
        }
      }
    }
  }
  if (!value.IsArray()) throw JsonError("expected an array");
  LazyList<T> records;
  records.reserve(value.Size());
  for (auto const& element : value.GetArray()) {
    try {
      FillJson(element, records.emplace_back());
    } catch (JsonError& error) {
      error.Within(records.size() - 1);
      throw;
    }
  }
  out = std::move(records);
}

// Writes the elements of `values`: those not read since they were loaded
// as their texts, a run of them that lay one after another at once, and
// the others with `write`.
template <class T, class Write>
void WriteLazyElements(JsonWriter& writer, LazyList<T> const& values, Write const& write) {
  writer.StartArray();
  for (size_t i = 0; i < values.size();) {
    std::string_view const text = values.TextAt(i);
    if (text.empty()) {
      write(values[i++]);
      continue;
    }
    // Each element read is followed by a comma or the array's end.
    char const* end = text.data() + text.size();
    for (++i; i < values.size() && *end == ',' && values.TextAt(i).data() == end + 1; ++i) {
      end = values.TextAt(i).data() + values.TextAt(i).size();
    }
    writer.Raw(std::string_view(text.data(), static_cast<size_t>(end - text.data())),
               rapidjson::kObjectType);
  }
  writer.EndArray();
}

template <class T>
void WriteJson(JsonWriter& writer, LazyList<T> const& values) {
  WriteLazyElements(writer, values, [&](T const& value) { WriteJson(writer, value); });
}

template <class T>
bool SameJson(LazyList<T> const& a, LazyList<T> const& b) {
  return a == b;
}

template <class T>
bool SameAsJson(LazyList<T> const& values, JsonValue const& json) {
  // A skipped list (a string value here) is never the same: it had elements
  // that were not read.
  if (!json.IsArray() || json.Size() != values.size()) return false;
  for (size_t i = 0; i < values.size(); ++i) {
    if (!SameAsJson(values[i], json[static_cast<rapidjson::SizeType>(i)])) return false;
  }
  return true;
}

// Writes `value` copying from `texts` the elements of its arrays of records
// that the text there still describes. For other types, as WriteJson.
template <class T>
void WriteJsonDiff(JsonWriter& writer, T const& value, ElementTexts const&) {
  WriteJson(writer, value);
}

template <class T>
void WriteJsonDiff(JsonWriter& writer, std::vector<T> const& values, ElementTexts const& texts) {
  JsonValue const* old = nullptr;
  JsonParse const* parse = nullptr;
  if constexpr (requires(JsonValue const& value, T& record) { FillJson(value, record); }) {
    if (auto found = texts.arrays.find(&values); found != texts.arrays.end()) {
      old = static_cast<JsonValue const*>(found->second.value);
      parse = static_cast<JsonParse const*>(found->second.parse);
    }
  }
  if (!old) {
    WriteJson(writer, values);
    return;
  }
  // Walk both in step: a change adds, removes or changes an element or a few.
  size_t const count = old->Size();
  auto at = [&](size_t j) -> JsonValue const& {
    return (*old)[static_cast<rapidjson::SizeType>(j)];
  };
  auto copy = [&](size_t i, size_t j) {
    std::string_view text = SourceOf(*parse, at(j));
    if (text.empty()) return WriteJsonDiff(writer, values[i], texts);
    writer.Raw(text, rapidjson::kObjectType);
  };
  writer.StartArray();
  size_t j = 0;
  for (size_t i = 0; i < values.size(); ++i) {
    if (j < count && SameAsJson(values[i], at(j))) {
      copy(i, j++);
    } else if (j + 1 < count && SameAsJson(values[i], at(j + 1))) {
      copy(i, j + 1);  // old j was removed
      j += 2;
    } else {
      WriteJsonDiff(writer, values[i], texts);
      // Changed, unless added before old j.
      if (j < count && !(i + 1 < values.size() && SameAsJson(values[i + 1], at(j)))) ++j;
    }
  }
  writer.EndArray();
}

template <class T>
void WriteJsonDiff(JsonWriter& writer, LazyList<T> const& values, ElementTexts const& texts) {
  WriteLazyElements(writer, values,
                    [&](T const& value) { WriteJsonDiff(writer, value, texts); });
}

template <class T>
void CheckJsonLimit(JsonLimit const& limit, T const& value) {
  if constexpr (JsonInteger<T>) {
    auto const wide = static_cast<int64_t>(value);
    bool const in = std::is_signed_v<T> || static_cast<uint64_t>(value) <= uint64_t{INT64_MAX};
    if (!limit.numbers.empty()) {
      if (in && std::ranges::find(limit.numbers, wide) != limit.numbers.end()) return;
      std::string expected = "expected one of";
      for (size_t i = 0; i < limit.numbers.size(); ++i) {
        expected += (i == 0 ? " " : ", ") + std::to_string(limit.numbers[i]);
      }
      throw JsonError(expected);
    }
    if (in && wide >= limit.min && wide <= limit.max) return;
    throw JsonError("expected an integer from " + std::to_string(limit.min) + " to " +
                    std::to_string(limit.max));
  } else if constexpr (std::same_as<T, std::string>) {
    if (limit.words.empty() || std::ranges::find(limit.words, value) != limit.words.end()) return;
    std::string expected = "expected one of";
    for (size_t i = 0; i < limit.words.size(); ++i) {
      expected += i == 0 ? " \"" : ", \"";
      expected += limit.words[i];
      expected += '"';
    }
    throw JsonError(expected);
  } else {
    for (size_t i = 0; i < value.size(); ++i) {
      try {
        CheckJsonLimit(limit, value[i]);
      } catch (JsonError& error) {
        error.Within(i);
        throw;
      }
    }
  }
}

// --- records ---

template <class R>
struct JsonField {
  std::string_view key;
  void (*read)(JsonValue const& value, R& record);
  void (*write)(JsonWriter& writer, R const& record);  // the value only
  void (*write_diff)(JsonWriter& writer, R const& record, ElementTexts const& texts);
  bool (*same)(R const& a, R const& b);
  bool (*same_as)(R const& record, JsonValue const& value);
};

template <class R, class M, M R::*Member>
constexpr JsonField<R> MakeJsonField(std::string_view key) {
  return {
      key,
      [](JsonValue const& value, R& record) {
        ReadJson(value, record.*Member);
        if constexpr (kJsonLimit<Member>.set) CheckJsonLimit(kJsonLimit<Member>, record.*Member);
      },
      [](JsonWriter& writer, R const& record) { WriteJson(writer, record.*Member); },
      [](JsonWriter& writer, R const& record, ElementTexts const& texts) {
        WriteJsonDiff(writer, record.*Member, texts);
      },
      [](R const& a, R const& b) { return SameJson(a.*Member, b.*Member); },
      [](R const& record, JsonValue const& value) { return SameAsJson(record.*Member, value); }};
}

// Sets the fields of `record` (a default one) that `value` has.
template <class R>
void FillRecord(JsonValue const& value, R& record, std::span<JsonField<R> const> fields) {
  if (!value.IsObject()) throw JsonError("expected an object");
  // Keys come in field order when the library wrote them: look from the
  // field after the last one found.
  size_t next = 0;
  for (auto const& member : value.GetObject()) {
    std::string_view key(member.name.GetString(), member.name.GetStringLength());
    size_t i = next;
    size_t tried = 0;
    for (; tried < fields.size() && fields[i].key != key; ++tried)
      i = i + 1 == fields.size() ? 0 : i + 1;
    if (tried == fields.size()) continue;  // a key of another version
    try {
      fields[i].read(member.value, record);
    } catch (JsonError& error) {
      error.Within(key);
      throw;
    }
    next = i + 1 == fields.size() ? 0 : i + 1;
  }
  // What holds between fields or between elements (CheckRecord, beside the
  // record's JSON_RECORD line): checked once the record is whole.
  if constexpr (requires { CheckRecord(std::as_const(record)); }) CheckRecord(std::as_const(record));
}

template <class R>
void WriteRecord(JsonWriter& writer, R const& record, std::span<JsonField<R> const> fields) {
  static R const defaults{};
  writer.StartObject();
  for (auto const& field : fields) {
    if (field.same(record, defaults)) continue;
    writer.Key(field.key.data(), static_cast<rapidjson::SizeType>(field.key.size()));
    field.write(writer, record);
  }
  writer.EndObject();
}

template <class R>
void WriteRecordDiff(JsonWriter& writer, R const& record, ElementTexts const& texts,
                     std::span<JsonField<R> const> fields) {
  static R const defaults{};
  writer.StartObject();
  for (auto const& field : fields) {
    if (field.same(record, defaults)) continue;
    writer.Key(field.key.data(), static_cast<rapidjson::SizeType>(field.key.size()));
    field.write_diff(writer, record, texts);
  }
  writer.EndObject();
}

template <class R>
bool SameAsJsonRecord(R const& record, JsonValue const& value,
                      std::span<JsonField<R> const> fields) {
  if (!value.IsObject()) return false;
  static R const defaults{};
  // The members in field order, as written: each field there, or at its default.
  auto member = value.MemberBegin();
  for (auto const& field : fields) {
    if (member != value.MemberEnd() &&
        std::string_view(member->name.GetString(), member->name.GetStringLength()) == field.key) {
      if (!field.same_as(record, member->value)) return false;
      ++member;
    } else if (!field.same(record, defaults)) {
      return false;
    }
  }
  return member == value.MemberEnd();
}

template <class R>
bool SameRecord(R const& a, R const& b, std::span<JsonField<R> const> fields) {
  // A record's own comparison, where it has one, is the same and faster.
  if constexpr (std::equality_comparable<R>) {
    return a == b;
  } else {
    for (auto const& field : fields) {
      if (!field.same(a, b)) return false;
    }
    return true;
  }
}

// The number of fields of the aggregate R: the most initializers it takes.
struct JsonAnyField {
  template <class T>
  operator T() const;
};
template <class R, class... Fields>
consteval size_t JsonFieldCount() {
  if constexpr (requires { R{Fields{}..., JsonAnyField{}}; }) {
    return JsonFieldCount<R, Fields..., JsonAnyField>();
  } else {
    return sizeof...(Fields);
  }
}

template <class T>
void ParseJson(std::string_view text, T& out, ElementTexts* texts, bool in_place,
               std::shared_ptr<void const> const& owner, std::string_view lazy_key) {
  if (!texts) {
    auto read = [&](std::string& buffer, rapidjson::Document& document) {
      ParseDocument(buffer, document);
      T value{};
      ReadJson(static_cast<JsonValue const&>(document), value);
      out = std::move(value);
    };
    // Records read one by one (LazyList) reuse one parse's memory; a parse
    // within that one has its own.
    JsonScratch& scratch = TheJsonScratch();
    if (scratch.busy) {
      std::string buffer(text);
      rapidjson::Document document;
      return read(buffer, document);
    }
    scratch.busy = true;
    struct Done {
      JsonScratch& scratch;
      ~Done() { scratch.busy = false; }
    } done{scratch};
    scratch.pool.Clear();
    scratch.buffer.assign(text);
    rapidjson::Document document(&scratch.pool);
    return read(scratch.buffer, document);
  }
  auto parse = std::make_shared<JsonParse>();
  parse->text = text;
  // Long lists stay as their elements' texts, which `owner` keeps.
  JsonLazyArrays lazy;
  JsonLazyArrays* skip =
      owner && !lazy_key.empty() && ScanLazyArrays(text, lazy_key, lazy) ? &lazy : nullptr;
  // The caller's text itself when it may be (a large area is then not copied).
  char* own = const_cast<char*>(text.data());
  if (in_place &&
      ParseDocumentKeepingText(own, text.size(), parse->document, &parse->objects, skip)) {
    parse->parsed = own;
  } else {
    parse->buffer = text;
    ParseDocument(parse->buffer, parse->document, &parse->objects, skip);
    parse->parsed = parse->buffer.data();
  }
  // Noted aside until the whole value is read: a failed read leaves no note.
  ElementTexts found;
  JsonLoad load{&found, parse.get(), skip, &owner};
  T value{};
  CurrentJsonLoad() = &load;
  try {
    ReadJson(static_cast<JsonValue const&>(parse->document), value);
  } catch (...) {
    CurrentJsonLoad() = nullptr;
    throw;
  }
  CurrentJsonLoad() = nullptr;
  out = std::move(value);
  // Arrays that are members of `value` itself moved into `out`.
  auto const* from = reinterpret_cast<char const*>(&value);
  auto const* to = reinterpret_cast<char const*>(&out);
  for (auto& [array, source] : found.arrays) {
    auto const* at = static_cast<char const*>(array);
    bool moved = at >= from && at < from + sizeof(T);
    texts->arrays[moved ? to + (at - from) : at] = source;
  }
  texts->parses.push_back(std::move(parse));
}

template <class T>
void AppendJson(T const& value, ElementTexts const* texts, std::string& out,
                std::vector<TextPiece>* pieces) {
  JsonWriter writer(out, pieces);
  if (texts) {
    WriteJsonDiff(writer, value, *texts);
  } else {
    WriteJson(writer, value);
  }
}

}  // namespace OrvkCtl::Sim

// Applies `macro(Type, field)` to every field (up to 256).
#define JSON_PARENS ()
#define JSON_EXPAND(...) JSON_EXPAND4(JSON_EXPAND4(JSON_EXPAND4(JSON_EXPAND4(__VA_ARGS__))))
#define JSON_EXPAND4(...) JSON_EXPAND3(JSON_EXPAND3(JSON_EXPAND3(JSON_EXPAND3(__VA_ARGS__))))
#define JSON_EXPAND3(...) JSON_EXPAND2(JSON_EXPAND2(JSON_EXPAND2(JSON_EXPAND2(__VA_ARGS__))))
#define JSON_EXPAND2(...) JSON_EXPAND1(JSON_EXPAND1(JSON_EXPAND1(JSON_EXPAND1(__VA_ARGS__))))
#define JSON_EXPAND1(...) __VA_ARGS__
#define JSON_FOR_EACH(macro, Type, ...) \
  __VA_OPT__(JSON_EXPAND(JSON_FOR_EACH_NEXT(macro, Type, __VA_ARGS__)))
#define JSON_FOR_EACH_NEXT(macro, Type, field, ...) \
  macro(Type, field) __VA_OPT__(JSON_FOR_EACH_AGAIN JSON_PARENS(macro, Type, __VA_ARGS__))
#define JSON_FOR_EACH_AGAIN() JSON_FOR_EACH_NEXT

#define JSON_FIELD_OF(Type, field) \
  ::OrvkCtl::Sim::MakeJsonField<Type, decltype(Type::field), &Type::field>(#field),
#define JSON_COUNT_ONE(Type, field) +1

// (The limits are the library's own: hidden, as the rest of the codec.)
#define JSON_RANGE(Type, field, low, high) \
  template <>                              \
  JSON_HIDDEN inline constexpr JsonLimit kJsonLimit<&Type::field>{true, low, high, {}, {}};
#define JSON_ONE_OF(Type, field, ...)                                                 \
  static constexpr std::string_view kJsonWordsOf##Type##_##field[] = {__VA_ARGS__};   \
  template <>                                                                         \
  JSON_HIDDEN inline constexpr JsonLimit kJsonLimit<&Type::field>{                    \
      true, 0, 0, {}, kJsonWordsOf##Type##_##field};
#define JSON_ONE_OF_NUMBERS(Type, field, ...)                                         \
  static constexpr int64_t kJsonNumbersOf##Type##_##field[] = {__VA_ARGS__};          \
  template <>                                                                         \
  JSON_HIDDEN inline constexpr JsonLimit kJsonLimit<&Type::field>{                    \
      true, 0, 0, kJsonNumbersOf##Type##_##field, {}};

#define JSON_RECORD(Type, ...)                                                              \
  static_assert(::OrvkCtl::Sim::JsonFieldCount<Type>() ==                                   \
                    0 JSON_FOR_EACH(JSON_COUNT_ONE, Type, __VA_ARGS__),                     \
                "JSON_RECORD(" #Type ", ...) must name every field of " #Type);             \
  static constexpr ::OrvkCtl::Sim::JsonField<Type> kJsonFieldsOf##Type[] = {                \
      JSON_FOR_EACH(JSON_FIELD_OF, Type, __VA_ARGS__)};                                     \
  JSON_HIDDEN void FillJson(::OrvkCtl::Sim::JsonValue const& value, Type& out) {            \
    ::OrvkCtl::Sim::FillRecord<Type>(value, out, kJsonFieldsOf##Type);                      \
  }                                                                                         \
  JSON_HIDDEN void ReadJson(::OrvkCtl::Sim::JsonValue const& value, Type& out) {            \
    out = Type{};                                                                           \
    ::OrvkCtl::Sim::FillRecord<Type>(value, out, kJsonFieldsOf##Type);                      \
  }                                                                                         \
  JSON_HIDDEN void WriteJson(::OrvkCtl::Sim::JsonWriter& writer, Type const& record) {      \
    ::OrvkCtl::Sim::WriteRecord<Type>(writer, record, kJsonFieldsOf##Type);                 \
  }                                                                                         \
  JSON_HIDDEN void WriteJsonDiff(::OrvkCtl::Sim::JsonWriter& writer, Type const& record,    \
                                 ::OrvkCtl::Sim::ElementTexts const& texts) {               \
    ::OrvkCtl::Sim::WriteRecordDiff<Type>(writer, record, texts, kJsonFieldsOf##Type);      \
  }                                                                                         \
  JSON_HIDDEN bool SameAsJson(Type const& record, ::OrvkCtl::Sim::JsonValue const& value) { \
    return ::OrvkCtl::Sim::SameAsJsonRecord<Type>(record, value, kJsonFieldsOf##Type);      \
  }                                                                                         \
  JSON_HIDDEN bool SameJson(Type const& a, Type const& b) {                                 \
    return ::OrvkCtl::Sim::SameRecord<Type>(a, b, kJsonFieldsOf##Type);                     \
  }

#pragma GCC visibility pop
