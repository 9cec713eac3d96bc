// JSON form of the host state file: the top of the document, its line layout,
// and the firewall.
#include <optional>
#include <stdexcept>
#include <type_traits>

#include "host_store.h"
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ModuleState, name, loaded)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(FirewallRuleState, name, port_type, port_begin,
                                                port_end, direction, protocol)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(FirewallRulesetState, id, enabled, client_count,
                                                allowed_all, allowed_ips, rules)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(FirewallState, enabled, default_action_pass,
                                                dynamic_rules, rulesets)

namespace {

constexpr int kFormatVersion = 1;
constexpr std::string_view kHead = "{\"format\":1,\"host\":{\n";
constexpr std::string_view kTail = "}}\n";

template <auto Member>
void LoadMember(std::string_view text, HostModel& host) {
  using Value = std::remove_cvref_t<decltype(host.*Member)>;
  Value value = nlohmann::json::parse(text).get<Value>();
  host.*Member = std::move(value);
}

template <auto Member>
std::string SaveMember(HostModel const& host) {
  return nlohmann::json(host.*Member).dump();
}

template <auto Member>
HostField Field(std::string_view key, AreaSet area) {
  return {key, area, &LoadMember<Member>, &SaveMember<Member>};
}

// The line layout, or nothing when `text` is laid out otherwise.
std::optional<std::vector<std::string_view>> SplitLines(std::string_view text,
                                                        std::vector<HostField> const& fields) {
  if (!text.starts_with(kHead) || !text.ends_with(kTail)) return std::nullopt;
  std::string_view body = text.substr(kHead.size(), text.size() - kHead.size() - kTail.size());
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

std::vector<std::string_view> SplitHostDocument(std::string& text) {
  auto const& fields = HostFields();
  if (auto texts = SplitLines(text, fields)) return std::move(*texts);
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw std::runtime_error("the file is empty");
  }
  auto document = nlohmann::json::parse(text);
  if (!document.is_object()) throw std::runtime_error("not a JSON object");
  if (!document.contains("format") || !document["format"].is_number_integer()) {
    throw std::runtime_error("no \"format\" version");
  }
  if (document["format"] != kFormatVersion) {
    throw std::runtime_error("format version " + document["format"].dump() +
                             " is not one this version reads (" +
                             std::to_string(kFormatVersion) + ")");
  }
  auto host = document.find("host");
  if (host == document.end() || !host->is_object()) throw std::runtime_error("no \"host\" object");
  std::vector<std::string> values(fields.size());
  for (size_t i = 0; i < fields.size(); ++i) {
    if (auto value = host->find(fields[i].key); value != host->end()) values[i] = value->dump();
  }
  text = JoinHostDocument(std::vector<std::string_view>(values.begin(), values.end()));
  return *SplitLines(text, fields);
}

std::string JoinHostDocument(std::vector<std::string_view> const& texts) {
  auto const& fields = HostFields();
  size_t size = kHead.size() + kTail.size();
  for (size_t i = 0; i < fields.size(); ++i) size += fields[i].key.size() + texts[i].size() + 5;
  std::string document;
  document.reserve(size);
  document += kHead;
  bool first = true;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (texts[i].empty()) continue;
    if (!first) document += ",\n";
    first = false;
    document += '"';
    document += fields[i].key;
    document += "\":";
    document += texts[i];
  }
  if (!first) document += '\n';
  document += kTail;
  return document;
}

std::string HostToJson(HostModel const& host) {
  std::vector<std::string> values;
  for (auto const& field : HostFields()) values.push_back(field.save(host));
  return JoinHostDocument(std::vector<std::string_view>(values.begin(), values.end()));
}

HostModel HostFromJson(std::string const& text) {
  auto const& fields = HostFields();
  std::string document = text;
  std::vector<std::string_view> texts = SplitHostDocument(document);
  HostModel host;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!texts[i].empty()) fields[i].load(texts[i], host);
  }
  return host;
}

}  // namespace OrvkCtl::Sim
