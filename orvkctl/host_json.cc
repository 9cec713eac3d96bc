// JSON form of the host state file: the top of the document, its line layout,
// and the firewall.
#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <type_traits>

#include "host_store.h"
#include "json_areas.h"

namespace OrvkCtl::Sim {

JSON_RECORD(ModuleState, name, loaded)
JSON_RECORD(FirewallRuleState, name, port_type, port_begin, port_end, direction, protocol)
JSON_RECORD(FirewallRulesetState, id, enabled, client_count, allowed_all, allowed_ips, rules)
JSON_RECORD(FirewallState, enabled, default_action_pass, dynamic_rules, rulesets)

namespace {

constexpr unsigned kMaxNesting = 100;

// The document's own SAX handling, refusing arrays and objects nested deeper
// than kMaxNesting: the parser recurses once per level.
class NestingGuard {
 public:
  // Notes where each object begins and ends in `objects`, when given.
  NestingGuard(rapidjson::Document& document, rapidjson::InsituStringStream& stream,
               JsonObjectSpans* objects)
      : document_(document), stream_(stream), objects_(objects) {}
  bool Null() { return document_.Null(); }
  bool Bool(bool b) { return document_.Bool(b); }
  bool Int(int i) { return document_.Int(i); }
  bool Uint(unsigned i) { return document_.Uint(i); }
  bool Int64(int64_t i) { return document_.Int64(i); }
  bool Uint64(uint64_t i) { return document_.Uint64(i); }
  bool Double(double d) { return document_.Double(d); }
  bool RawNumber(char const* s, rapidjson::SizeType n, bool copy) {
    return document_.RawNumber(s, n, copy);
  }
  bool String(char const* s, rapidjson::SizeType n, bool copy) {
    return document_.String(s, n, copy);
  }
  bool Key(char const* s, rapidjson::SizeType n, bool copy) { return document_.Key(s, n, copy); }
  bool StartObject() {
    if (objects_) {
      open_.push_back(objects_->size());
      objects_->emplace_back(static_cast<uint32_t>(stream_.Tell() - 1), 0);
    }
    return Deeper() && document_.StartObject();
  }
  bool EndObject(rapidjson::SizeType n) {
    if (objects_) {
      (*objects_)[open_.back()].second = static_cast<uint32_t>(stream_.Tell());
      open_.pop_back();
    }
    return --depth_, document_.EndObject(n);
  }
  bool StartArray() { return Deeper() && document_.StartArray(); }
  bool EndArray(rapidjson::SizeType n) { return --depth_, document_.EndArray(n); }
  bool TooDeep() const { return depth_ > kMaxNesting; }

 private:
  bool Deeper() { return ++depth_ <= kMaxNesting; }
  rapidjson::Document& document_;
  rapidjson::InsituStringStream& stream_;
  JsonObjectSpans* objects_;
  std::vector<size_t> open_;
  unsigned depth_ = 0;
};

template <unsigned kFlags>
void Parse(std::string& text, rapidjson::Document& document, JsonObjectSpans* objects) {
  rapidjson::ParseResult result;
  bool too_deep = false;
  auto generate = [&](rapidjson::Document& target) {
    rapidjson::InsituStringStream stream(text.data());
    NestingGuard guard(target, stream, objects);
    rapidjson::Reader reader;
    result = reader.Parse<kFlags | rapidjson::kParseInsituFlag>(stream, guard);
    too_deep = guard.TooDeep();
    return !result.IsError();
  };
  document.Populate(generate);
  if (too_deep) {
    throw std::runtime_error("parse error at offset " + std::to_string(result.Offset()) +
                             ": nested deeper than " + std::to_string(kMaxNesting) + " levels");
  }
  if (result.IsError()) {
    throw std::runtime_error("parse error at offset " + std::to_string(result.Offset()) + ": " +
                             rapidjson::GetParseError_En(result.Code()));
  }
}

}  // namespace

void ParseDocument(std::string& text, rapidjson::Document& document, JsonObjectSpans* objects) {
  if (text.size() > UINT32_MAX) throw std::runtime_error("the text is too long");
  // JSON text has no NUL byte; the parser would take one for the end.
  if (size_t nul = text.find('\0'); nul != std::string::npos) {
    throw std::runtime_error("parse error at offset " + std::to_string(nul) + ": a NUL byte");
  }
  if (IsAscii(text)) {
    Parse<rapidjson::kParseDefaultFlags>(text, document, objects);
  } else {
    Parse<rapidjson::kParseValidateEncodingFlag>(text, document, objects);
  }
}

std::string_view SourceOf(JsonParse const& parse, JsonValue const& object) {
  if (object.MemberCount() == 0) return {};
  // Parsed in place, a key's text stays where it was, after its quote, and
  // the object's brace comes before that, after blanks at most.
  char const* key = object.MemberBegin()->name.GetString();
  char const* base = parse.buffer.data();
  if (key <= base || key > base + parse.buffer.size()) return {};
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
void LoadMember(std::string_view text, HostModel& host, ElementTexts* texts) {
  ParseJson(text, host.*Member, texts);
}

template <auto Member>
void SaveMember(HostModel const& host, ElementTexts const* texts, std::string& out) {
  AppendJson(host.*Member, texts, out);
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

std::vector<std::string_view> SplitHostDocument(std::string& text, bool* compact) {
  auto const& fields = HostFields();
  if (auto texts = SplitLines(text, fields, compact)) return std::move(*texts);
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw std::runtime_error("the file is empty");
  }
  std::string buffer = text;
  rapidjson::Document document;
  ParseDocument(buffer, document);
  if (!document.IsObject()) throw std::runtime_error("not a JSON object");
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

std::string JoinHostDocument(std::vector<std::string_view> const& texts, bool compact,
                             HostModel const* host, AreaSet loaded,
                             ElementTexts const* element_texts) {
  auto const& fields = HostFields();
  std::string_view head = compact ? kHead : kPlainHead;
  size_t size = head.size() + kTail.size();
  for (size_t i = 0; i < fields.size(); ++i) size += fields[i].key.size() + texts[i].size() + 5;
  std::string document;
  document.reserve(size + (loaded ? 4096 : 0));  // room for a change
  document += head;
  bool first = true;
  for (size_t i = 0; i < fields.size(); ++i) {
    bool from_host = host && (loaded & fields[i].area);
    if (!from_host && texts[i].empty()) continue;
    if (!first) document += ",\n";
    first = false;
    document += '"';
    document += fields[i].key;
    document += "\":";
    if (from_host) {
      fields[i].save(*host, element_texts, document);
    } else {
      document += texts[i];
    }
  }
  if (!first) document += '\n';
  document += kTail;
  return document;
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
    if (!texts[i].empty()) fields[i].load(texts[i], host, nullptr);
  }
  return host;
}

}  // namespace OrvkCtl::Sim
