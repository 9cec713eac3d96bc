// JSON form of the host state file: the top of the document and the firewall.
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
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(HostModel, hostname, modules, firewall, nic, ip,
                                                vswitch, runtime)

namespace {
constexpr int kFormatVersion = 1;
}

std::string HostToJson(HostModel const& host) {
  nlohmann::json document;
  document["format"] = kFormatVersion;
  document["host"] = host;
  return document.dump(2) + "\n";
}

HostModel HostFromJson(std::string const& text) {
  auto document = nlohmann::json::parse(text);
  if (!document.is_object() || !document.contains("host")) {
    throw std::runtime_error("no \"host\" object");
  }
  if (document.value("format", 0) != kFormatVersion) {
    throw std::runtime_error("unknown format version " + document["format"].dump());
  }
  return document.at("host").get<HostModel>();
}

}  // namespace OrvkCtl::Sim
