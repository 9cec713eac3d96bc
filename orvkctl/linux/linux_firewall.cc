// The firewall of a linux host: nftables, in one table of the host's own,
// "inet toolbase". Nothing here reads or changes any other table.
//
// The table, built whole from the host's firewall at every change:
//   chain input   type filter hook input priority 0, policy accept or drop
//                 (the default action):
//                   accept                  first, only while the firewall is
//                                           disabled: it lets everything by
//                   ct state established,related accept
//                   iifname "lo" accept
//                   jump dynamic-in
//                   jump <ruleset>-in       one per enabled ruleset
//   chain output  the same for what the host sends: oifname "lo", the -out
//                 chains
//   chain dynamic-in, dynamic-out
//                 the rules added at run time, each named by its comment
//   chain <ruleset>-in, <ruleset>-out
//                 the ruleset's inbound and outbound rules
//                 ("tcp dport 22 accept", "udp sport 67-68 accept"); while the
//                 ruleset admits only its allowed addresses, first
//                 "ip saddr != @<ruleset>-v4 return" and the same for ip6
//                 (daddr in the -out chain)
//   set <ruleset>-v4, <ruleset>-v6
//                 the ruleset's allowed addresses and networks (interval sets)
// The firewall module is loaded while the table exists. A rule's order
// across its two chains is the order of the rule handles, as a table built
// in one go numbers them; orders that nftables does not hold (allowed
// addresses, rules after a restore) are the kept ones when the kernel holds
// the same entries. Client counts are the backend's own. While the table
// does not exist, the configuration is what was kept, and loading the
// firewall puts it in force.
//
// libnftables is opened on the first read or change of the firewall, so no
// other command of the host loads it.
#include <dlfcn.h>
#include <nftables/libnftables.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "hostctl/lib.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

using HostCtl::Lib::HostCtlException;
using Sim::FirewallRuleState;
using Sim::FirewallRulesetState;
using Sim::FirewallState;
using Value = rapidjson::Value;
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr char kModule[] = "haldenfw";
constexpr char kTable[] = "toolbase";
constexpr char kTableText[] = "the firewall table inet toolbase";
constexpr char kDynamic[] = "dynamic";
// The chain and set names of a ruleset (or of the dynamic rules).
constexpr char const* kChainSuffix[2] = {"-in", "-out"};  // by direction
constexpr char const* kBaseChain[2] = {"input", "output"};
constexpr char kSetV4[] = "-v4";
constexpr char kSetV6[] = "-v6";

// libnftables, opened on first use: one context for the process.
class Nftables {
 public:
  static Nftables& Get() {
    static Nftables nftables;
    return nftables;
  }

  ~Nftables() {
    if (context_) free_(context_);
  }

  // Runs a batch of JSON commands as one transaction. False and the
  // reason in `error` when nftables refuses it.
  bool Run(std::string const& batch, std::string& output, std::string& error) {
    int const status = run_(context_, batch.c_str());
    char const* out = get_output_(context_);
    char const* err = get_error_(context_);
    output = out ? out : "";
    error = err ? err : "";
    return status == 0;
  }

  // The same; throws "Cannot <what>: <reason>" on refusal.
  std::string Run(std::string const& batch, std::string const& what) {
    std::string output, error;
    if (!Run(batch, output, error)) throw HostCtlException("Cannot " + what + ": " + Reason(error));
    return output;
  }

  // The first line of nftables' error text, from after its "Error: ".
  static std::string Reason(std::string error) {
    error.erase(std::min(error.find('\n'), error.size()));
    if (size_t at = error.find("Error: "); at != std::string::npos) error.erase(0, at + 7);
    return error.empty() ? "refused by nftables" : error;
  }

 private:
  Nftables() {
    void* library = dlopen("libnftables.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library) {
      throw HostCtlException("The firewall needs libnftables (the nftables library): " +
                             std::string(dlerror()));
    }
    auto bind = [library](auto& function, char const* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
      if (!function) throw HostCtlException(std::string("libnftables has no ") + name);
    };
    decltype(&nft_ctx_new) make;
    decltype(&nft_ctx_output_set_flags) set_flags;
    decltype(&nft_ctx_buffer_output) buffer_output;
    decltype(&nft_ctx_buffer_error) buffer_error;
    bind(make, "nft_ctx_new");
    bind(set_flags, "nft_ctx_output_set_flags");
    bind(buffer_output, "nft_ctx_buffer_output");
    bind(buffer_error, "nft_ctx_buffer_error");
    bind(free_, "nft_ctx_free");
    bind(run_, "nft_run_cmd_from_buffer");
    bind(get_output_, "nft_ctx_get_output_buffer");
    bind(get_error_, "nft_ctx_get_error_buffer");
    context_ = make(NFT_CTX_DEFAULT);
    if (!context_) throw HostCtlException("Cannot open nftables");
    // JSON out, and so JSON in.
    set_flags(context_, NFT_CTX_OUTPUT_JSON | NFT_CTX_OUTPUT_HANDLE);
    buffer_output(context_);
    buffer_error(context_);
  }

  nft_ctx* context_ = nullptr;
  decltype(&nft_ctx_free) free_ = nullptr;
  decltype(&nft_run_cmd_from_buffer) run_ = nullptr;
  decltype(&nft_ctx_get_output_buffer) get_output_ = nullptr;
  decltype(&nft_ctx_get_error_buffer) get_error_ = nullptr;
};

// ---------------------------------------------------------------------------
// Writing: the table as one batch of JSON commands.

class Batch {
 public:
  Batch() : writer_(buffer_) {
    writer_.StartObject();
    writer_.Key("nftables");
    writer_.StartArray();
  }

  std::string Text() {
    writer_.EndArray();
    writer_.EndObject();
    return buffer_.GetString();
  }

  // {"<command>": {"table": {...}}}
  void Table(char const* command) {
    Open(command, "table");
    writer_.Key("name");
    writer_.String(kTable);
    Close();
  }

  // A regular chain, or with `direction` the base chain of that direction.
  void Chain(std::string const& name, int direction = -1, bool accept = true) {
    Open("add", "chain");
    Key("table", kTable);
    Key("name", name);
    if (direction >= 0) {
      Key("type", "filter");
      Key("hook", kBaseChain[direction]);
      writer_.Key("prio");
      writer_.Int(0);
      Key("policy", accept ? "accept" : "drop");
    }
    Close();
  }

  // The set `name` of type `type` with the texts `elements` ("10.0.0.1",
  // "10.0.0.0/8").
  void Set(std::string const& name, char const* type, std::vector<std::string> const& elements) {
    Open("add", "set");
    Key("table", kTable);
    Key("name", name);
    Key("type", type);
    writer_.Key("flags");
    writer_.StartArray();
    writer_.String("interval");
    writer_.EndArray();
    if (!elements.empty()) {
      writer_.Key("elem");
      writer_.StartArray();
      for (auto const& text : elements) Element(text);
      writer_.EndArray();
    }
    Close();
  }

  // A rule of `chain`: the expressions `write` writes, then the verdict
  // (`verdict` null for none, e.g. after a jump).
  template <typename Write>
  void Rule(std::string const& chain, std::string const& comment, Write write,
            char const* verdict = "accept") {
    Open("add", "rule");
    Key("table", kTable);
    Key("chain", chain);
    if (!comment.empty()) Key("comment", comment);
    writer_.Key("expr");
    writer_.StartArray();
    write(writer_);
    if (verdict) {
      writer_.StartObject();
      writer_.Key(verdict);
      writer_.Null();
      writer_.EndObject();
    }
    writer_.EndArray();
    Close();
  }

  // Each item of a listing as it stands: objects with no command are added.
  void Listing(Value const& items) {
    for (auto const& item : items.GetArray()) {
      if (!item.HasMember("metainfo")) item.Accept(writer_);
    }
  }

 private:
  void Open(char const* command, char const* object) {
    writer_.StartObject();
    writer_.Key(command);
    writer_.StartObject();
    writer_.Key(object);
    writer_.StartObject();
    Key("family", "inet");
  }
  void Close() {
    writer_.EndObject();
    writer_.EndObject();
    writer_.EndObject();
  }
  void Key(char const* key, std::string const& value) {
    writer_.Key(key);
    writer_.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
  }
  void Element(std::string const& text) {
    size_t const slash = text.find('/');
    if (slash == std::string::npos) {
      writer_.String(text.c_str());
      return;
    }
    writer_.StartObject();
    writer_.Key("prefix");
    writer_.StartObject();
    Key("addr", text.substr(0, slash));
    writer_.Key("len");
    writer_.Int(std::atoi(text.c_str() + slash + 1));
    writer_.EndObject();
    writer_.EndObject();
  }

  rapidjson::StringBuffer buffer_;
  Writer writer_;
};

// {"match": {"op": op, "left": {"payload": {...}}, "right": ...}} with the
// right side written by `right`.
template <typename Right>
void PayloadMatch(Writer& w, char const* op, char const* protocol, char const* field, Right right) {
  w.StartObject();
  w.Key("match");
  w.StartObject();
  w.Key("op");
  w.String(op);
  w.Key("left");
  w.StartObject();
  w.Key("payload");
  w.StartObject();
  w.Key("protocol");
  w.String(protocol);
  w.Key("field");
  w.String(field);
  w.EndObject();
  w.EndObject();
  w.Key("right");
  right(w);
  w.EndObject();
  w.EndObject();
}

// Expressions of the base chains' fixed rules.
constexpr char kEstablished[] =
    R"({"match":{"op":"in","left":{"ct":{"key":"state"}},"right":["established","related"]}})";
constexpr char const* kLoopback[2] = {
    R"({"match":{"op":"==","left":{"meta":{"key":"iifname"}},"right":"lo"}})",
    R"({"match":{"op":"==","left":{"meta":{"key":"oifname"}},"right":"lo"}})"};

void Raw(Writer& w, char const* json) {
  w.RawValue(json, std::char_traits<char>::length(json), rapidjson::kObjectType);
}

void PortRule(Batch& batch, std::string const& chain, std::string const& comment,
              FirewallRuleState const& rule) {
  batch.Rule(chain, comment, [&](Writer& w) {
    PayloadMatch(w, "==", rule.protocol == 0 ? "tcp" : "udp",
                 rule.port_type == 1 ? "dport" : "sport", [&](Writer& w) {
                   if (rule.port_begin == rule.port_end) {
                     w.Int(rule.port_begin);
                     return;
                   }
                   w.StartObject();
                   w.Key("range");
                   w.StartArray();
                   w.Int(rule.port_begin);
                   w.Int(rule.port_end);
                   w.EndArray();
                   w.EndObject();
                 });
  });
}

int Direction(FirewallRuleState const& rule) { return rule.direction == 0 ? 0 : 1; }

// The batch that makes the table what `firewall` says, replacing the table
// there is.
std::string TableBatch(FirewallState const& firewall) {
  Batch batch;
  batch.Table("add");
  batch.Table("delete");
  batch.Table("add");
  for (int direction : {0, 1}) {
    batch.Chain(kBaseChain[direction], direction, firewall.default_action_pass);
    batch.Chain(kDynamic + std::string(kChainSuffix[direction]));
  }
  for (auto const& ruleset : firewall.rulesets) {
    std::vector<std::string> v4, v6;
    for (auto const& text : ruleset.allowed_ips) {
      (text.find(':') == std::string::npos ? v4 : v6).push_back(text);
    }
    batch.Set(ruleset.id + kSetV4, "ipv4_addr", v4);
    batch.Set(ruleset.id + kSetV6, "ipv6_addr", v6);
    for (int direction : {0, 1}) batch.Chain(ruleset.id + kChainSuffix[direction]);
  }

  for (int direction : {0, 1}) {
    std::string const base = kBaseChain[direction];
    auto jump = [&](std::string const& target) {
      batch.Rule(base, {}, [&](Writer& w) {
        w.StartObject();
        w.Key("jump");
        w.StartObject();
        w.Key("target");
        w.String(target.c_str());
        w.EndObject();
        w.EndObject();
      }, nullptr);
    };
    if (!firewall.enabled) batch.Rule(base, {}, [](Writer&) {});
    batch.Rule(base, {}, [](Writer& w) { Raw(w, kEstablished); });
    batch.Rule(base, {}, [&](Writer& w) { Raw(w, kLoopback[direction]); });
    jump(kDynamic + std::string(kChainSuffix[direction]));
    for (auto const& ruleset : firewall.rulesets) {
      if (ruleset.enabled) jump(ruleset.id + kChainSuffix[direction]);
    }
  }

  for (auto const& ruleset : firewall.rulesets) {
    if (!ruleset.allowed_all) {
      for (int direction : {0, 1}) {
        char const* field = direction == 0 ? "saddr" : "daddr";
        for (auto const& family : {std::pair{"ip", kSetV4}, std::pair{"ip6", kSetV6}}) {
          char const* protocol = family.first;
          std::string const name = "@" + ruleset.id + family.second;
          batch.Rule(ruleset.id + kChainSuffix[direction], {}, [&](Writer& w) {
            PayloadMatch(w, "!=", protocol, field, [&](Writer& w) { w.String(name.c_str()); });
          }, "return");
        }
      }
    }
    for (auto const& rule : ruleset.rules) {
      PortRule(batch, ruleset.id + kChainSuffix[Direction(rule)], {}, rule);
    }
  }
  for (auto const& rule : firewall.dynamic_rules) {
    PortRule(batch, kDynamic + std::string(kChainSuffix[Direction(rule)]), rule.name, rule);
  }
  return batch.Text();
}

// ---------------------------------------------------------------------------
// Reading: the listing of the table, mapped back.

struct ListedRule {
  int64_t handle = 0;
  Value const* expr = nullptr;
  std::string comment;
};

struct ListedChain {
  std::string hook;    // "" for a regular chain
  std::string policy;  // of a base chain
  std::vector<ListedRule> rules;
};

// The table as `list table` gives it. Only `document` owns; the rest
// points into it.
struct Listing {
  rapidjson::Document document;
  std::vector<std::string> chain_order;
  std::map<std::string, ListedChain> chains;
  std::map<std::string, std::vector<std::string>> sets;  // element texts

  ListedChain const* Chain(std::string const& name) const {
    auto found = chains.find(name);
    return found == chains.end() ? nullptr : &found->second;
  }
};

std::string StringOf(Value const& object, char const* key) {
  if (!object.IsObject()) return {};
  auto found = object.FindMember(key);
  return found != object.MemberEnd() && found->value.IsString() ? found->value.GetString() : "";
}

Value const* Member(Value const& object, char const* key) {
  if (!object.IsObject()) return nullptr;
  auto found = object.FindMember(key);
  return found == object.MemberEnd() ? nullptr : &found->value;
}

// The text of a set element: "10.0.0.1", "10.0.0.0/8"; "" for a form the
// host does not have (a range that is no network).
std::string ElementText(Value const& element) {
  if (element.IsString()) return element.GetString();
  if (Value const* inner = Member(element, "elem")) {
    if (Value const* value = Member(*inner, "val")) return ElementText(*value);
  }
  if (Value const* prefix = Member(element, "prefix")) {
    Value const* length = Member(*prefix, "len");
    std::string const address = StringOf(*prefix, "addr");
    if (length && length->IsInt() && !address.empty()) {
      return address + "/" + std::to_string(length->GetInt());
    }
  }
  return {};
}

// Parses the listing `text`; throws when it is no listing.
std::unique_ptr<Listing> ParseListing(std::string const& text) {
  auto listing = std::make_unique<Listing>();
  auto& document = listing->document;
  document.Parse(text.c_str());
  Value const* items = document.HasParseError() ? nullptr : Member(document, "nftables");
  if (!items || !items->IsArray()) {
    throw HostCtlException("Cannot read " + std::string(kTableText) +
                           ": nftables gave a listing that is not JSON");
  }
  for (auto const& item : items->GetArray()) {
    if (Value const* chain = Member(item, "chain")) {
      std::string const name = StringOf(*chain, "name");
      listing->chain_order.push_back(name);
      auto& listed = listing->chains[name];
      listed.hook = StringOf(*chain, "hook");
      listed.policy = StringOf(*chain, "policy");
    } else if (Value const* rule = Member(item, "rule")) {
      Value const* handle = Member(*rule, "handle");
      Value const* expr = Member(*rule, "expr");
      if (!expr || !expr->IsArray()) continue;
      listing->chains[StringOf(*rule, "chain")].rules.push_back(
          {handle && handle->IsInt64() ? handle->GetInt64() : 0, expr, StringOf(*rule, "comment")});
    } else if (Value const* set = Member(item, "set")) {
      auto& elements = listing->sets[StringOf(*set, "name")];
      if (Value const* elem = Member(*set, "elem"); elem && elem->IsArray()) {
        for (auto const& element : elem->GetArray()) {
          if (std::string text = ElementText(element); !text.empty()) elements.push_back(text);
        }
      }
    }
  }
  return listing;
}

// The table's listing, or null when there is no table.
std::unique_ptr<Listing> ListTable() {
  static std::string const command =
      R"({"nftables":[{"list":{"table":{"family":"inet","name":"toolbase"}}}]})";
  std::string output, error;
  if (!Nftables::Get().Run(command, output, error)) {
    if (error.find("No such file or directory") != std::string::npos) return nullptr;
    throw HostCtlException("Cannot read " + std::string(kTableText) + ": " +
                           Nftables::Reason(error));
  }
  return ParseListing(output);
}

// Expression `i` of a rule that has exactly `count`, or null.
Value const* Expr(ListedRule const& rule, rapidjson::SizeType count, rapidjson::SizeType i) {
  return rule.expr->Size() == count ? &(*rule.expr)[i] : nullptr;
}

bool IsVerdict(Value const& expr, char const* verdict) {
  Value const* found = Member(expr, verdict);
  return found && found->IsNull();
}

// The left payload of a match, its protocol and field, and the match.
struct PayloadOf {
  std::string op, protocol, field;
  Value const* right = nullptr;
};
std::optional<PayloadOf> Payload(Value const& expr) {
  Value const* match = Member(expr, "match");
  if (!match) return std::nullopt;
  Value const* left = Member(*match, "left");
  Value const* payload = left ? Member(*left, "payload") : nullptr;
  Value const* right = Member(*match, "right");
  if (!payload || !right) return std::nullopt;
  return PayloadOf{StringOf(*match, "op"), StringOf(*payload, "protocol"),
                   StringOf(*payload, "field"), right};
}

// "accept" alone.
bool IsAcceptAll(ListedRule const& rule) {
  Value const* verdict = Expr(rule, 1, 0);
  return verdict && IsVerdict(*verdict, "accept");
}

// The target of "jump X" alone, or "".
std::string JumpTarget(ListedRule const& rule) {
  Value const* expr = Expr(rule, 1, 0);
  Value const* jump = expr ? Member(*expr, "jump") : nullptr;
  return jump ? StringOf(*jump, "target") : "";
}

// The match of a rule "<match> <verdict>", when it has that verdict.
std::optional<PayloadOf> MatchThen(ListedRule const& rule, char const* verdict) {
  Value const* last = Expr(rule, 2, 1);
  if (!last || !IsVerdict(*last, verdict)) return std::nullopt;
  return Payload(*Expr(rule, 2, 0));
}

// "ip saddr != @set return" and its kin.
bool IsGuard(ListedRule const& rule) {
  auto payload = MatchThen(rule, "return");
  return payload && payload->op == "!=" && (payload->protocol == "ip" || payload->protocol == "ip6") &&
         payload->right->IsString() && payload->right->GetString()[0] == '@';
}

// "tcp dport 22 accept" and its kin, as a rule of direction `direction`.
std::optional<FirewallRuleState> PortRuleOf(ListedRule const& rule, int direction) {
  auto payload = MatchThen(rule, "accept");
  if (!payload || payload->op != "==" || (payload->protocol != "tcp" && payload->protocol != "udp") ||
      (payload->field != "dport" && payload->field != "sport")) {
    return std::nullopt;
  }
  FirewallRuleState state;
  state.name = rule.comment;
  state.port_type = payload->field == "dport" ? 1 : 0;
  state.direction = direction;
  state.protocol = payload->protocol == "tcp" ? 0 : 1;
  Value const& right = *payload->right;
  if (right.IsInt()) {
    state.port_begin = state.port_end = right.GetInt();
  } else if (Value const* range = Member(right, "range");
             range && range->IsArray() && range->Size() == 2 && (*range)[0].IsInt() &&
             (*range)[1].IsInt()) {
    state.port_begin = (*range)[0].GetInt();
    state.port_end = (*range)[1].GetInt();
  } else {
    return std::nullopt;
  }
  return state;
}

// The port rules of the chains `prefix`-in and `prefix`-out, in the order of
// their handles.
std::vector<FirewallRuleState> PortRules(Listing const& listing, std::string const& prefix) {
  std::vector<std::pair<int64_t, FirewallRuleState>> found;
  for (int direction : {0, 1}) {
    ListedChain const* chain = listing.Chain(prefix + kChainSuffix[direction]);
    if (!chain) continue;
    for (auto const& rule : chain->rules) {
      if (auto state = PortRuleOf(rule, direction)) found.emplace_back(rule.handle, *state);
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](auto const& a, auto const& b) { return a.first < b.first; });
  std::vector<FirewallRuleState> rules;
  for (auto& [handle, rule] : found) rules.push_back(std::move(rule));
  return rules;
}

// `read`, in the order of `kept` when it holds the same entries.
template <typename T>
std::vector<T> OrderedLike(std::vector<T> const& kept, std::vector<T> read) {
  if (std::is_permutation(kept.begin(), kept.end(), read.begin(), read.end())) return kept;
  return read;
}

// The ruleset of the chains and sets named after `id`, with what the
// backend keeps of it taken from `kept` (null when it has none).
FirewallRulesetState RulesetOf(Listing const& listing, std::string const& id,
                               std::set<std::string> const& jumped,
                               FirewallRulesetState const* kept) {
  FirewallRulesetState ruleset;
  ruleset.id = id;
  ruleset.allowed_all = true;
  for (int direction : {0, 1}) {
    std::string const chain = id + kChainSuffix[direction];
    if (jumped.count(chain)) ruleset.enabled = true;
    if (ListedChain const* listed = listing.Chain(chain)) {
      if (std::any_of(listed->rules.begin(), listed->rules.end(), IsGuard)) {
        ruleset.allowed_all = false;
      }
    }
  }
  std::vector<std::string> allowed;
  for (char const* suffix : {kSetV4, kSetV6}) {
    auto found = listing.sets.find(id + suffix);
    if (found != listing.sets.end()) {
      allowed.insert(allowed.end(), found->second.begin(), found->second.end());
    }
  }
  std::vector<FirewallRuleState> rules = PortRules(listing, id);
  for (auto& rule : rules) rule.name = id;
  if (kept) {
    ruleset.client_count = kept->client_count;
    ruleset.allowed_ips = OrderedLike(kept->allowed_ips, std::move(allowed));
    ruleset.rules = OrderedLike(kept->rules, std::move(rules));
  } else {
    ruleset.allowed_ips = std::move(allowed);
    ruleset.rules = std::move(rules);
  }
  return ruleset;
}

// The firewall the table holds, over what was kept.
FirewallState FirewallOf(Listing const& listing, FirewallState const& kept) {
  FirewallState firewall;
  ListedChain const* input = listing.Chain(kBaseChain[0]);
  firewall.default_action_pass = !input || input->policy != "drop";
  firewall.enabled = input && !(!input->rules.empty() && IsAcceptAll(input->rules.front()));
  std::set<std::string> jumped;
  for (char const* base : kBaseChain) {
    if (ListedChain const* chain = listing.Chain(base)) {
      for (auto const& rule : chain->rules) {
        if (std::string target = JumpTarget(rule); !target.empty()) jumped.insert(target);
      }
    }
  }
  firewall.dynamic_rules = OrderedLike(kept.dynamic_rules, PortRules(listing, kDynamic));

  // The catalogue in its order, then rulesets whose chains someone else made.
  std::vector<std::string> ids;
  for (auto const& ruleset : kept.rulesets) ids.push_back(ruleset.id);
  for (auto const& name : listing.chain_order) {
    for (char const* suffix : kChainSuffix) {
      size_t const length = std::char_traits<char>::length(suffix);
      if (name.size() <= length || name.compare(name.size() - length, length, suffix) != 0) {
        continue;
      }
      std::string const id = name.substr(0, name.size() - length);
      if (id != kDynamic && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
    }
  }
  for (auto const& id : ids) {
    firewall.rulesets.push_back(RulesetOf(listing, id, jumped, Sim::FindRuleset(kept, id)));
  }
  return firewall;
}

// The firewall of a linux host that was never configured: the host's
// catalogue of rulesets, all disabled and open to all addresses, and a
// firewall that is off and lets everything pass, so that loading it changes
// no traffic until an administrator says so.
FirewallState Catalogue() {
  FirewallState firewall;
  Sim::SeedFirewallRulesets(firewall);
  firewall.enabled = false;
  firewall.default_action_pass = true;
  for (auto& ruleset : firewall.rulesets) {
    ruleset.enabled = false;
    ruleset.client_count = 0;
    ruleset.allowed_all = true;
    ruleset.allowed_ips.clear();
  }
  return firewall;
}

void SetModule(HostModel& host, bool loaded) {
  if (auto* module = Sim::FindModule(host, kModule)) {
    module->loaded = loaded;
  } else {
    host.modules.push_back({kModule, loaded});
  }
}

void ReadFirewall(HostModel& host) {
  if (host.firewall.rulesets.empty()) host.firewall = Catalogue();
  std::unique_ptr<Listing> listing = ListTable();
  SetModule(host, listing != nullptr);
  if (listing) host.firewall = FirewallOf(*listing, host.firewall);
}

// The batch that puts back the table `listing` was taken from, or removes
// the table when there was none (null).
std::string RestoreBatch(Listing const* listing) {
  Batch batch;
  batch.Table("add");
  batch.Table("delete");
  if (listing) batch.Listing(listing->document["nftables"]);
  return batch.Text();
}

// One step: the table as `after` has it, in one transaction; its undo puts
// back the table as it was before the step, itself one transaction.
void PlanFirewall(HostModel const& before, HostModel const& after, Plan& plan) {
  // Whether the firewall is loaded: the module says so, and when the host
  // area is not loaded (a change of rulesets only), the table's being there.
  std::optional<bool> table;
  auto batch = [&table](HostModel const& host) -> std::string {
    auto const* module = Sim::FindModule(host, kModule);
    if (!module && !table) table = ListTable() != nullptr;
    return (module ? module->loaded : *table) ? TableBatch(host.firewall) : "";
  };
  std::string wanted = batch(after);
  if (wanted == batch(before)) return;
  if (wanted.empty()) wanted = RestoreBatch(nullptr);
  auto saved = std::make_shared<std::unique_ptr<Listing>>();
  plan.push_back({std::string("change ") + kTableText,
                  [wanted, saved] {
                    *saved = ListTable();
                    Nftables::Get().Run(wanted, std::string("change ") + kTableText);
                  },
                  [saved] {
                    Nftables::Get().Run(RestoreBatch(saved->get()),
                                        std::string("restore ") + kTableText);
                  }});
}

// Client counts are the backend's own.
void KeepClients(HostModel const& after, HostModel& reread) {
  for (auto& ruleset : reread.firewall.rulesets) {
    if (auto const* asked = Sim::FindRuleset(after.firewall, ruleset.id)) {
      ruleset.client_count = asked->client_count;
    }
  }
}

}  // namespace

// The module's state is the table's, so the host area reads the table too.
Family FirewallFamily() {
  return {"firewall", Sim::kAreaHost | Sim::kAreaFirewall, ReadFirewall, PlanFirewall,
          KeepClients};
}

}  // namespace OrvkCtl::Linux
