// JSON form of the host state file: the top of the document, its line layout,
// and the firewall.
#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host_store.h"
#include "json_areas.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace OrvkCtl::Sim {
struct JsonTreeTag {};
}  // namespace OrvkCtl::Sim

// Setting an object's or array's values at once, as rapidjson's document does
// (its values grant that to every document type): a document type of ours.
template <>
class rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<>,
                                 OrvkCtl::Sim::JsonTreeTag> {
 public:
  static void SetObject(Value& value, Value::Member* members, SizeType count,
                        MemoryPoolAllocator<>& allocator) {
    value.SetObjectRaw(members, count, allocator);
  }
  static void SetArray(Value& value, Value* values, SizeType count,
                       MemoryPoolAllocator<>& allocator) {
    value.SetArrayRaw(values, count, allocator);
  }
};

namespace OrvkCtl::Sim {

using JsonTree =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<>, JsonTreeTag>;

JSON_RECORD(ModuleState, name, loaded)
JSON_RANGE(FirewallRuleState, port_begin, 0, 65535)
JSON_RANGE(FirewallRuleState, port_end, 0, 65535)
JSON_HIDDEN void CheckRecord(FirewallRuleState const& rule) {
  if (rule.port_begin > rule.port_end) {
    JsonError error("the first port is after the last, " + std::to_string(rule.port_end));
    error.Within("port_begin");
    throw error;
  }
}
JSON_RECORD(FirewallRuleState, name, port_type, port_begin, port_end, direction, protocol)
JSON_RANGE(FirewallRulesetState, client_count, 0, INT32_MAX)
JSON_RECORD(FirewallRulesetState, id, enabled, client_count, allowed_all, allowed_ips, rules)
// A ruleset is found by its id: a second one of the same id could never be.
JSON_HIDDEN void CheckRecord(FirewallState const& firewall) {
  for (size_t i = 1; i < firewall.rulesets.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (firewall.rulesets[j].id != firewall.rulesets[i].id) continue;
      JsonError error("the ruleset id of rulesets[" + std::to_string(j) + "] again");
      error.Within("id");
      error.Within(i);
      error.Within("rulesets");
      throw error;
    }
  }
}
JSON_RECORD(FirewallState, enabled, default_action_pass, dynamic_rules, rulesets)

namespace {

constexpr unsigned kMaxNesting = 100;

// The parser's input: the text, parsed in place, less the arrays it skips.
// Taking the opening bracket of one moves on to its closing bracket, so that
// the parser reads an empty array; the tree builder then asks what it skipped.
class SkippingStream : public rapidjson::InsituStringStream {
 public:
  SkippingStream(char* text, JsonLazyArrays const* lazy)
      : rapidjson::InsituStringStream(text), lazy_(lazy) {
    Aim();
  }
  // Called for every byte: inlined, the skip out of line.
  RAPIDJSON_FORCEINLINE char Take() {
    char c = *src_++;
    if (src_ == next_) [[unlikely]] Skip();
    return c;
  }
  // The text an array just opened skipped, once; empty if none.
  std::string_view TakeSkipped() { return std::exchange(skipped_, {}); }

 private:
  void Aim() {
    bool more = lazy_ && at_ < lazy_->arrays.size();
    next_ = more ? head_ + lazy_->arrays[at_].begin : nullptr;
  }
  [[gnu::noinline]] void Skip() {
    auto const& array = lazy_->arrays[at_++];
    skipped_ = std::string_view(head_ + array.begin, array.end - array.begin);
    src_ = head_ + array.end;
    Aim();
  }
  JsonLazyArrays const* lazy_;
  size_t at_ = 0;
  char* next_ = nullptr;
  std::string_view skipped_;
};

// What an array just opened skipped: nothing, where the parse skips none.
std::string_view TakeSkipped(rapidjson::InsituStringStream&) { return {}; }
std::string_view TakeSkipped(SkippingStream& stream) { return stream.TakeSkipped(); }

}  // namespace
}  // namespace OrvkCtl::Sim

// The parser may read through a copy of the stream in a loop (a string, a
// number, blanks), as it does the plain one: arrays are skipped only when
// their bracket is taken, outside those loops.
template <>
struct rapidjson::StreamTraits<OrvkCtl::Sim::SkippingStream> {
  enum { copyOptimization = 1 };
};

namespace OrvkCtl::Sim {
namespace {

// The parser's values as a tree of rapidjson values, each object and array
// allocated at its size, as rapidjson's own document builds it; refuses
// arrays and objects nested deeper than kMaxNesting (the parser recurses
// once per level). Not the document's own building: its stack starts as a
// null pointer that its first growth check offsets, which UBSan refuses.
template <class Stream>
class TreeBuilder {
 public:
  // Notes where each object begins and ends in `objects`, when given.
  // `size`: the text's, by which the stack of values and the object spans
  // are sized once, so that a large text does not copy them as they grow.
  // `keep_text`: put back what parsing in place overwrites (the closing
  // quote of each string, when no string has an escape).
  TreeBuilder(rapidjson::Document::AllocatorType& allocator, Stream& stream,
              JsonObjectSpans* objects, size_t size, bool keep_text)
      : allocator_(allocator), stream_(stream), objects_(objects), keep_text_(keep_text) {
    values_.reserve(std::max<size_t>(64, size / 16));
    if (objects_) objects_->reserve(size / 24);
  }
  bool Null() { return values_.emplace_back(), true; }
  bool Bool(bool b) { return values_.emplace_back(b), true; }
  bool Int(int i) { return values_.emplace_back(i), true; }
  bool Uint(unsigned i) { return values_.emplace_back(i), true; }
  bool Int64(int64_t i) { return values_.emplace_back(i), true; }
  bool Uint64(uint64_t i) { return values_.emplace_back(i), true; }
  bool Double(double d) { return values_.emplace_back(d), true; }
  bool RawNumber(char const* s, rapidjson::SizeType n, bool copy) { return String(s, n, copy); }
  bool String(char const* s, rapidjson::SizeType n, bool copy) {
    if (keep_text_ && !copy) const_cast<char*>(s)[n] = '"';
    if (copy) {
      values_.emplace_back(s, n, allocator_);
    } else {
      values_.emplace_back(rapidjson::StringRef(s, n));
    }
    return true;
  }
  bool Key(char const* s, rapidjson::SizeType n, bool copy) { return String(s, n, copy); }
  bool StartObject() {
    if (objects_) {
      open_.push_back(objects_->size());
      objects_->emplace_back(static_cast<uint32_t>(stream_.Tell() - 1), 0);
    }
    values_.emplace_back(rapidjson::kObjectType);
    return Deeper();
  }
  bool EndObject(rapidjson::SizeType count) {
    if (objects_) {
      (*objects_)[open_.back()].second = static_cast<uint32_t>(stream_.Tell());
      open_.pop_back();
    }
    // The members lie on the stack as name, value, name, value...
    size_t first = values_.size() - 2 * size_t{count};
    auto* members = reinterpret_cast<rapidjson::Value::Member*>(values_.data() + first);
    JsonTree::SetObject(values_[first - 1], members, count, allocator_);
    values_.resize(first);
    --depth_;
    return true;
  }
  bool StartArray() {
    values_.emplace_back(rapidjson::kArrayType);
    skipped_ = TakeSkipped(stream_);
    return Deeper();
  }
  bool EndArray(rapidjson::SizeType count) {
    if (!skipped_.empty()) {
      // Skipped, so empty to the parser: the text of its elements instead.
      values_.back().SetString(rapidjson::StringRef(skipped_.data(), skipped_.size()));
      skipped_ = {};
      --depth_;
      return true;
    }
    size_t first = values_.size() - count;
    JsonTree::SetArray(values_[first - 1], values_.data() + first, count, allocator_);
    values_.resize(first);
    --depth_;
    return true;
  }
  bool TooDeep() const { return depth_ > kMaxNesting; }
  rapidjson::Value& Root() { return values_.back(); }

 private:
  bool Deeper() { return ++depth_ <= kMaxNesting; }
  rapidjson::Document::AllocatorType& allocator_;
  Stream& stream_;
  JsonObjectSpans* objects_;
  bool keep_text_;
  std::string_view skipped_;  // by the array just opened
  std::vector<rapidjson::Value> values_;
  std::vector<size_t> open_;
  unsigned depth_ = 0;
};

template <unsigned kFlags, class Stream>
void Parse(Stream& stream, size_t size, rapidjson::Document& document, JsonObjectSpans* objects,
           bool keep_text) {
  TreeBuilder<Stream> builder(document.GetAllocator(), stream, objects, size, keep_text);
  rapidjson::Reader reader;
  rapidjson::ParseResult result =
      reader.Parse<kFlags | rapidjson::kParseInsituFlag>(stream, builder);
  if (builder.TooDeep()) {
    throw std::runtime_error("parse error at offset " + std::to_string(result.Offset()) +
                             ": nested deeper than " + std::to_string(kMaxNesting) + " levels");
  }
  if (result.IsError()) {
    throw std::runtime_error("parse error at offset " + std::to_string(result.Offset()) + ": " +
                             rapidjson::GetParseError_En(result.Code()));
  }
  static_cast<rapidjson::Value&>(document) = builder.Root().Move();
}

// Parses with the stream that skips the arrays in `lazy`, when there are
// any: the plain one costs less for every byte.
template <unsigned kFlags>
void Parse(char* text, size_t size, rapidjson::Document& document, JsonObjectSpans* objects,
           bool keep_text, JsonLazyArrays const* lazy) {
  if (lazy && !lazy->arrays.empty()) {
    SkippingStream stream(text, lazy);
    Parse<kFlags>(stream, size, document, objects, keep_text);
  } else {
    rapidjson::InsituStringStream stream(text);
    Parse<kFlags>(stream, size, document, objects, keep_text);
  }
}

}  // namespace

namespace {

// NUL bytes after a text that is not ASCII (see ParseDocument).
constexpr size_t kUtf8Margin = 4;

// Parses `text`, followed by a NUL byte, in place; `ascii`: whether it is
// all ASCII (else its UTF-8 is checked as it is parsed).
void ParseChecked(char* text, size_t size, rapidjson::Document& document,
                  JsonObjectSpans* objects, bool keep_text, bool ascii,
                  JsonLazyArrays const* lazy) {
  std::string_view const view(text, size);
  if (size > UINT32_MAX) throw std::runtime_error("the text is too long");
  // JSON text has no NUL byte; the parser would take one for the end.
  if (size_t nul = view.find('\0'); nul != std::string_view::npos) {
    throw std::runtime_error("parse error at offset " + std::to_string(nul) + ": a NUL byte");
  }
  if (ascii) {
    Parse<rapidjson::kParseDefaultFlags>(text, size, document, objects, keep_text, lazy);
  } else {
    Parse<rapidjson::kParseValidateEncodingFlag>(text, size, document, objects, keep_text, lazy);
  }
}

}  // namespace

void ParseDocument(std::string& text, rapidjson::Document& document, JsonObjectSpans* objects,
                   JsonLazyArrays const* lazy) {
  if (IsAscii(text)) {
    ParseChecked(text.data(), text.size(), document, objects, false, true, lazy);
    return;
  }
  // Checking UTF-8, the parser reads a multi-byte sequence whole: one cut
  // short at the end makes it read up to three bytes past the text. They are
  // NUL bytes of the string's own, which no sequence accepts.
  size_t const size = text.size();
  text.append(kUtf8Margin, '\0');
  try {
    ParseChecked(text.data(), size, document, objects, false, false, lazy);
  } catch (...) {
    text.resize(size);
    throw;
  }
  text.resize(size);  // in place: the document's strings still point into it
}

bool ParseDocumentKeepingText(char* text, size_t size, rapidjson::Document& document,
                              JsonObjectSpans* objects, JsonLazyArrays const* lazy) {
  // An escape is replaced where it stands by what it stands for, which could
  // not be put back; text that is not ASCII needs the margin that
  // ParseDocument adds.
  std::string_view const view(text, size);
  if (view.find('\\') != std::string_view::npos || !IsAscii(view)) return false;
  ParseChecked(text, size, document, objects, true, true, lazy);
  return true;
}

namespace {

// The elements of an array of objects whose first element starts at `at`
// (just after the opening bracket), laid out as the library writes it:
// objects separated by single commas, no blanks. Appends each element's text
// to `elements` and returns the offset of the closing bracket; npos when the
// array is laid out otherwise, the text ends first or brackets do not match.
// Goes through the text 16 bytes at a time: the block's quotes tell which of
// its brackets lie outside strings, and only those are looked at one by one
// (a block with a backslash goes byte by byte).
size_t SplitElements(std::string_view text, size_t at, std::vector<std::string_view>& elements) {
  constexpr size_t kBlock = 16;
  constexpr size_t kNone = std::string_view::npos;
  char const* const p = text.data();
  size_t const n = text.size();
  char open[kMaxNesting + 1];
  unsigned depth = 0;
  size_t start = at;       // where the next element has to begin
  bool in_string = false;  // at the block's start
  bool escaped = false;    // the block's first byte is escaped
  for (size_t block = at; block < n; block += kBlock) {
    size_t const count = std::min(kBlock, n - block);
    uint32_t brackets = 0;  // the block's brackets outside strings
    bool done = false;
#ifdef __SSE2__
    if (count == kBlock && !escaped) {
      __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p + block));
      auto bits = [&](char c) {
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(c))));
      };
      if (bits('\\') == 0) {
        uint32_t const quotes = bits('"');
        // Each byte's bit: whether an odd number of quotes is at or before it.
        uint32_t inside = quotes;
        inside ^= inside << 1;
        inside ^= inside << 2;
        inside ^= inside << 4;
        inside ^= inside << 8;
        if (in_string) inside = ~inside;
        brackets = (bits('{') | bits('}') | bits('[') | bits(']')) & ~inside & 0xFFFF;
        in_string ^= (std::popcount(quotes) & 1) != 0;
        done = true;
      }
    }
#endif
    for (size_t j = 0; !done && j < count; ++j) {
      char const c = p[block + j];
      if (escaped) {
        escaped = false;
      } else if (in_string) {
        escaped = c == '\\';
        in_string = c != '"';
      } else if (c == '"') {
        in_string = true;
      } else if (c == '{' || c == '}' || c == '[' || c == ']') {
        brackets |= 1u << j;
      }
    }
    for (; brackets != 0; brackets &= brackets - 1) {
      size_t const pos = block + static_cast<size_t>(std::countr_zero(brackets));
      char const c = p[pos];
      if (c == '{' || c == '[') {
        if (depth == 0 && (c != '{' || pos != start)) return kNone;
        if (depth == kMaxNesting + 1) return kNone;
        open[depth++] = c;
        continue;
      }
      if (depth == 0 || open[--depth] != (c == '}' ? '{' : '[')) return kNone;
      if (depth > 0) continue;
      elements.push_back(text.substr(start, pos + 1 - start));
      if (pos + 1 < n && p[pos + 1] == ']') return pos + 1;
      if (pos + 1 >= n || p[pos + 1] != ',') return kNone;
      start = pos + 2;
    }
  }
  return kNone;
}

}  // namespace

bool ScanLazyArrays(std::string_view text, std::string_view name, JsonLazyArrays& out) {
  out.arrays.clear();
  if (text.size() > UINT32_MAX) return false;
  std::string const key = "\"" + std::string(name) + "\":[{";
  bool const ascii = IsAscii(text);
  for (size_t found = text.find(key); found != std::string_view::npos;
       found = text.find(key, found + 1)) {
    // A key's opening quote, not an escaped one inside a string (which the
    // parse would refuse anyway).
    size_t slashes = 0;
    while (slashes < found && text[found - 1 - slashes] == '\\') ++slashes;
    if (slashes % 2 != 0 || found == 0 || (text[found - 1] != '{' && text[found - 1] != ',')) {
      continue;
    }
    JsonLazyArrays::Array array{static_cast<uint32_t>(found + key.size() - 1), 0, {}};
    // Room for as many as could be there: what is not filled is not touched.
    array.elements.reserve((text.size() - array.begin) / 8);
    size_t const end = SplitElements(text, array.begin, array.elements);
    if (end == std::string_view::npos) continue;  // not as the library writes it: parsed
    array.end = static_cast<uint32_t>(end);
    std::string_view body = text.substr(array.begin, array.end - array.begin);
    if (!ascii && !IsUtf8(body)) continue;
    found = array.end;
    out.arrays.push_back(std::move(array));
  }
  return !out.arrays.empty();
}

std::string_view SourceOf(JsonParse const& parse, JsonValue const& object) {
  if (object.MemberCount() == 0) return {};
  // Parsed in place, a key's text stays where it was, after its quote, and
  // the object's brace comes before that, after blanks at most.
  char const* key = object.MemberBegin()->name.GetString();
  char const* base = parse.parsed;
  if (key <= base || key > base + parse.text.size()) return {};
  size_t begin = static_cast<size_t>(key - base) - 1;
  while (begin > 0 && parse.text[begin - 1] != '{') --begin;
  if (begin == 0) return {};
  --begin;
  auto const& objects = parse.objects;
  // Objects are asked for in the order they come, mostly: look a few on from
  // the last one found, else search them all.
  size_t& at = parse.cursor;
  constexpr size_t kNear = 8;
  if (at < objects.size() && objects[at].first <= begin &&
      (at + kNear >= objects.size() || objects[at + kNear].first >= begin)) {
    while (at < objects.size() && objects[at].first < begin) ++at;
  } else {
    auto before = [](std::pair<uint32_t, uint32_t> const& span, size_t offset) {
      return span.first < offset;
    };
    at = static_cast<size_t>(std::lower_bound(objects.begin(), objects.end(), begin, before) -
                             objects.begin());
  }
  if (at == objects.size() || objects[at].first != begin) return {};
  return parse.text.substr(begin, objects[at].second - begin);
}

namespace {

constexpr int kFormatVersion = 1;
// The head of a document whose records are all as this library writes them
// (the elements of a record's arrays may then be copied when unchanged), and
// that of one laid out in lines that may have been written otherwise.
constexpr std::string_view kHead = "{\"format\":1,\"layout\":\"compact\",\"host\":{\n";
constexpr std::string_view kPlainHead = "{\"format\":1,\"host\":{\n";
constexpr std::string_view kTail = "}}\n";

template <auto Member>
void LoadMember(std::string_view text, HostModel& host, ElementTexts* texts, bool in_place,
                std::shared_ptr<void const> const& owner) {
  // Only an area with lists read one by one is looked through for them.
  using Area = std::remove_reference_t<decltype(host.*Member)>;
  constexpr std::string_view kKey = kLazyKey<Area>;
  ParseJson(text, host.*Member, texts, in_place, kKey.empty() ? nullptr : owner, kKey);
}

template <auto Member>
void SaveMember(HostModel const& host, ElementTexts const* texts, std::string& out,
                std::vector<TextPiece>* pieces) {
  AppendJson(host.*Member, texts, out, pieces);
}

// A value as compact JSON text (ParseDocument bounds the recursion).
std::string Dump(JsonValue const& value) {
  std::string text;
  JsonWriter writer(text);
  value.Accept(writer);
  return text;
}

template <auto Member>
HostField Field(std::string_view key, AreaSet area) {
  return {key, area, &LoadMember<Member>, &SaveMember<Member>};
}

// The line layout, or nothing when `text` is laid out otherwise.
std::optional<std::vector<std::string_view>> SplitLines(std::string_view text,
                                                        std::vector<HostField> const& fields,
                                                        bool* compact) {
  std::string_view head = text.starts_with(kHead) ? kHead : kPlainHead;
  if (!text.starts_with(head) || !text.ends_with(kTail)) return std::nullopt;
  if (compact) *compact = head == kHead;
  std::string_view body = text.substr(head.size(), text.size() - head.size() - kTail.size());
  std::vector<std::string_view> texts(fields.size());
  std::vector<bool> seen(fields.size());
  while (!body.empty()) {
    size_t end = body.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    std::string_view line = body.substr(0, end);
    body.remove_prefix(end + 1);
    bool last = body.empty();
    if (last == line.ends_with(',')) return std::nullopt;
    if (!last) line.remove_suffix(1);
    size_t colon = line.find("\":");
    if (!line.starts_with('"') || colon == std::string_view::npos) return std::nullopt;
    std::string_view key = line.substr(1, colon - 1);
    size_t i = 0;
    while (i < fields.size() && fields[i].key != key) ++i;
    if (i == fields.size() || seen[i]) return std::nullopt;
    seen[i] = true;
    texts[i] = line.substr(colon + 2);
  }
  return texts;
}

}  // namespace

std::vector<HostField> const& HostFields() {
  static std::vector<HostField> const fields = {
      Field<&HostModel::hostname>("hostname", kAreaHost),
      Field<&HostModel::modules>("modules", kAreaHost),
      Field<&HostModel::firewall>("firewall", kAreaFirewall),
      Field<&HostModel::nic>("nic", kAreaNic),
      Field<&HostModel::ip>("ip", kAreaIp),
      Field<&HostModel::vswitch>("vswitch", kAreaVswitch),
      Field<&HostModel::runtime>("runtime", kAreaRuntime),
  };
  return fields;
}

bool ScanHostDocument(std::function<size_t(char*, size_t)> const& read,
                      std::vector<FieldSpan>& spans, bool* compact) {
  auto const& fields = HostFields();
  spans.assign(fields.size(), {});
  // The unread bytes are buffer[begin, end); buffer[0] is at `base` in the file.
  constexpr size_t kChunk = size_t{1} << 14;
  std::unique_ptr<char[]> const buffer(new char[kChunk]);
  size_t begin = 0;
  size_t end = 0;
  uint64_t base = 0;
  bool at_end = false;
  // Makes `want` bytes available, or all that are left.
  auto fill = [&](size_t want) {
    if (end - begin >= want || at_end) return;
    std::memmove(buffer.get(), buffer.get() + begin, end - begin);
    base += begin;
    end -= begin;
    begin = 0;
    while (end < want && !at_end) {
      size_t n = read(buffer.get() + end, kChunk - end);
      at_end = n == 0;
      end += n;
    }
  };
  auto available = [&] { return std::string_view(buffer.get() + begin, end - begin); };
  // A line starts with its key; the longest is far shorter than this.
  constexpr size_t kKeyRoom = 64;

  fill(kHead.size());
  std::string_view head = available().starts_with(kHead)        ? kHead
                          : available().starts_with(kPlainHead) ? kPlainHead
                                                                : std::string_view();
  if (head.empty()) return false;
  if (compact) *compact = head == kHead;
  begin += head.size();
  std::vector<bool> seen(fields.size());
  bool first = true;
  bool comma = false;  // whether the line before ended with one
  for (;;) {
    fill(kKeyRoom);
    if (at_end && available() == kTail) return first || !comma;
    if (!first && !comma) return false;
    first = false;
    std::string_view line = available();
    size_t colon = line.find("\":");
    if (!line.starts_with('"') || colon == std::string_view::npos) return false;
    std::string_view key = line.substr(1, colon - 1);
    size_t i = 0;
    while (i < fields.size() && fields[i].key != key) ++i;
    if (i == fields.size() || seen[i]) return false;
    seen[i] = true;
    begin += colon + 2;
    uint64_t offset = base + begin;
    char last = ':';
    for (;;) {
      char const* start = buffer.get() + begin;
      auto* newline = static_cast<char const*>(std::memchr(start, '\n', end - begin));
      size_t size = newline ? static_cast<size_t>(newline - start) : end - begin;
      if (size > 0) last = start[size - 1];
      begin += size;
      if (newline) break;
      if (at_end) return false;
      fill(1);
      if (begin == end) return false;
    }
    comma = last == ',';
    uint64_t size = base + begin - offset - (comma ? 1 : 0);
    spans[i] = {offset, size};
    ++begin;  // the line's end
  }
}

std::vector<std::string_view> SplitHostDocument(std::string& text, bool* compact) {
  auto const& fields = HostFields();
  if (auto texts = SplitLines(text, fields, compact)) return std::move(*texts);
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw std::runtime_error("the file is empty");
  }
  std::string buffer = text;
  rapidjson::Document parsed;
  ParseDocument(buffer, parsed);
  JsonValue const& document = parsed;
  if (!document.IsObject()) throw std::runtime_error("not a JSON object");
  // Which version a file is must not depend on which of two a reader takes.
  size_t formats = 0;
  for (auto const& member : document.GetObject()) {
    formats += std::string_view(member.name.GetString(), member.name.GetStringLength()) == "format";
  }
  if (formats > 1) throw std::runtime_error("\"format\" is given twice");
  auto format = document.FindMember("format");
  if (format == document.MemberEnd() || !(format->value.IsInt64() || format->value.IsUint64())) {
    throw std::runtime_error("no \"format\" version");
  }
  if (!format->value.IsInt64() || format->value.GetInt64() != kFormatVersion) {
    throw std::runtime_error("format version " + Dump(format->value) +
                             " is not one this version reads (" + std::to_string(kFormatVersion) +
                             ")");
  }
  auto host = document.FindMember("host");
  if (host == document.MemberEnd() || !host->value.IsObject()) {
    throw std::runtime_error("no \"host\" object");
  }
  std::vector<std::string> values(fields.size());
  // A key given twice counts as its last value, as when reading a record.
  for (auto const& member : host->value.GetObject()) {
    std::string_view key(member.name.GetString(), member.name.GetStringLength());
    for (size_t i = 0; i < fields.size(); ++i) {
      if (fields[i].key == key) values[i] = Dump(member.value);
    }
  }
  text = JoinHostDocument(std::vector<std::string_view>(values.begin(), values.end()), false);
  return *SplitLines(text, fields, compact);
}

namespace {

// The document of JoinHostDocument; with `pieces`, the long texts it copies
// as they are left where they are, as ComposeHostDocument does.
HostDocument Compose(std::vector<std::string_view> const& texts, bool compact,
                     HostModel const* host, AreaSet loaded, ElementTexts const* element_texts,
                     bool pieces) {
  constexpr size_t kMinPiece = 4096;
  auto const& fields = HostFields();
  HostDocument out;
  out.compact = compact;
  out.spans.assign(fields.size(), {});
  std::string& document = out.text;
  std::vector<TextPiece>* const sink = pieces ? &out.pieces : nullptr;
  std::string_view head = compact ? kHead : kPlainHead;
  size_t size = head.size() + kTail.size();
  for (size_t i = 0; i < fields.size(); ++i) {
    bool const piece = pieces && texts[i].size() >= kMinPiece;
    size += fields[i].key.size() + (piece ? 0 : texts[i].size()) + 5;
  }
  document.reserve(size + (loaded ? 4096 : 0));  // room for a change
  document += head;
  // Bytes of the pieces so far, and how many of them that counts.
  size_t piece_bytes = 0;
  size_t counted = 0;
  auto whole_size = [&] {
    for (; counted < out.pieces.size(); ++counted) piece_bytes += out.pieces[counted].text.size();
    return document.size() + piece_bytes;
  };
  bool first = true;
  for (size_t i = 0; i < fields.size(); ++i) {
    bool from_host = host && (loaded & fields[i].area);
    if (!from_host && texts[i].empty()) continue;
    if (!first) document += ",\n";
    first = false;
    document += '"';
    document += fields[i].key;
    document += "\":";
    size_t const begin = whole_size();
    if (from_host) {
      fields[i].save(*host, element_texts, document, sink);
    } else if (pieces && texts[i].size() >= kMinPiece) {
      out.pieces.push_back({document.size(), texts[i]});
    } else {
      document += texts[i];
    }
    out.spans[i] = {begin, whole_size() - begin};
  }
  if (!first) document += '\n';
  document += kTail;
  return out;
}

}  // namespace

size_t HostDocument::Size() const {
  size_t size = text.size();
  for (auto const& piece : pieces) size += piece.text.size();
  return size;
}

std::string HostDocument::Whole() const {
  std::string whole;
  whole.reserve(Size());
  size_t at = 0;
  for (auto const& piece : pieces) {
    whole.append(text, at, piece.at - at);
    whole += piece.text;
    at = piece.at;
  }
  whole.append(text, at);
  return whole;
}

std::string JoinHostDocument(std::vector<std::string_view> const& texts, bool compact,
                             HostModel const* host, AreaSet loaded,
                             ElementTexts const* element_texts) {
  return std::move(Compose(texts, compact, host, loaded, element_texts, false).text);
}

HostDocument ComposeHostDocument(std::vector<std::string_view> const& texts, bool compact,
                                 HostModel const& host, AreaSet loaded,
                                 ElementTexts const* element_texts) {
  return Compose(texts, compact, &host, loaded, element_texts, true);
}

std::string HostToJson(HostModel const& host) {
  return JoinHostDocument(std::vector<std::string_view>(HostFields().size()), true, &host,
                          kAreaAll);
}

HostModel HostFromJson(std::string const& text) {
  auto const& fields = HostFields();
  std::string document = text;
  std::vector<std::string_view> texts = SplitHostDocument(document);
  HostModel host;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!texts[i].empty()) fields[i].load(texts[i], host, nullptr, false, nullptr);
  }
  return host;
}

}  // namespace OrvkCtl::Sim
