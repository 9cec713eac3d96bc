// Firewall rulesets of the simulated host: the ruleset configuration in the
// firewall area, read and changed through FirewallRulesetImpl.
#include <algorithm>
#include <functional>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/system.h"

namespace HostCtl::System {
FirewallRuleset::~FirewallRuleset() = default;
}  // namespace HostCtl::System

namespace OrvkCtl::System {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Network;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using Sim::CheckFault;
using Sim::Operation;
using Sim::FirewallRulesetState;

HostCtlException NoSuchRuleset(std::string const& id) {
  return HostCtlException("Ruleset " + id + " does not exist");
}

FirewallRulesetState const& ReadRuleset(std::string const& id) {
  auto const* ruleset = Sim::FindRuleset(Sim::ReadHost(Sim::kAreaFirewall).firewall, id);
  if (!ruleset) throw NoSuchRuleset(id);
  return *ruleset;
}

void ChangeRuleset(std::string const& id,
                   std::function<void(FirewallRulesetState&)> const& change) {
  Sim::ChangeHost(Sim::kAreaFirewall, [&](Sim::HostModel& host) {
    auto* ruleset = Sim::FindRuleset(host.firewall, id);
    if (!ruleset) throw NoSuchRuleset(id);
    change(*ruleset);
  });
}

}  // namespace

FirewallRulesetImpl::FirewallRulesetImpl(std::string const& id) : id_(id) {}
FirewallRulesetImpl::~FirewallRulesetImpl() = default;

void FirewallRulesetImpl::Refresh() {
  CheckFault(Operation::FirewallRulesetImpl_Refresh);
  Sim::ReadHost(Sim::kAreaFirewall);
}

std::string FirewallRulesetImpl::GetRulesetId() const {
  // The id is the object's identity; the first question still reads the host
  // as the other cached accessors of the library do.
  const_cast<FirewallRulesetImpl*>(this)->EnsureFresh();
  return id_;
}

bool FirewallRulesetImpl::IsLoaded() {
  CheckFault(Operation::FirewallRulesetImpl_IsLoaded);
  return Sim::FindRuleset(Sim::ReadHost(Sim::kAreaFirewall).firewall, id_) != nullptr;
}

bool FirewallRulesetImpl::IsEnabled() {
  CheckFault(Operation::FirewallRulesetImpl_IsEnabled);
  return ReadRuleset(id_).enabled;
}

void FirewallRulesetImpl::Enable() {
  CheckFault(Operation::FirewallRulesetImpl_Enable);
  ChangeRuleset(id_, [](FirewallRulesetState& ruleset) { ruleset.enabled = true; });
}

void FirewallRulesetImpl::Disable() {
  CheckFault(Operation::FirewallRulesetImpl_Disable);
  ChangeRuleset(id_, [](FirewallRulesetState& ruleset) { ruleset.enabled = false; });
}

int32_t FirewallRulesetImpl::GetClientCount() {
  CheckFault(Operation::FirewallRulesetImpl_GetClientCount);
  return ReadRuleset(id_).client_count;
}

void FirewallRulesetImpl::AddClient() {
  CheckFault(Operation::FirewallRulesetImpl_AddClient);
  ChangeRuleset(id_, [](FirewallRulesetState& ruleset) {
    ++ruleset.client_count;
    ruleset.enabled = true;
  });
}

void FirewallRulesetImpl::RemoveClient() {
  CheckFault(Operation::FirewallRulesetImpl_RemoveClient);
  ChangeRuleset(id_, [&](FirewallRulesetState& ruleset) {
    if (ruleset.client_count <= 0) {
      throw HostCtlException("Ruleset " + id_ + " has no client to remove");
    }
    if (--ruleset.client_count == 0) ruleset.enabled = false;
  });
}

HostCtl::System::FirewallRuleList FirewallRulesetImpl::GetRules() {
  CheckFault(Operation::FirewallRulesetImpl_GetRules);
  HostCtl::System::FirewallRuleList rules;
  for (auto const& rule : ReadRuleset(id_).rules) {
    rules.push_back(std::make_unique<HostCtl::System::FirewallRule>(
        rule.name, rule.port_type, rule.port_begin, rule.port_end, rule.direction, rule.protocol));
  }
  return rules;
}

HostCtl::System::FirewallAllowedIps const& FirewallRulesetImpl::GetAllowedIps() {
  CheckFault(Operation::FirewallRulesetImpl_GetAllowedIps);
  HostCtl::System::FirewallAllowedIps allowed;
  for (auto const& text : ReadRuleset(id_).allowed_ips) {
    if (text.find('/') != std::string::npos) {
      if (text.find(':') != std::string::npos) {
        allowed.ipv6Networks.emplace_back(text);
      } else {
        allowed.ipv4Networks.emplace_back(text);
      }
    } else if (text.find(':') != std::string::npos) {
      allowed.ipv6Addresses.emplace_back(text);
    } else {
      allowed.ipv4Addresses.emplace_back(text);
    }
  }
  allowed_ = std::move(allowed);
  return allowed_;
}

void FirewallRulesetImpl::AddAllowedIp(std::string const& text) {
  CheckFault(Operation::FirewallRulesetImpl_AddAllowedIp);
  std::string entry = Sim::CanonicalAllowedIp(text);
  ChangeRuleset(id_, [&](FirewallRulesetState& ruleset) {
    auto& list = ruleset.allowed_ips;
    if (std::find(list.begin(), list.end(), entry) != list.end()) {
      throw HostCtlException("Ip address " + entry + " is already in the allowed ip list of " +
                             id_);
    }
    list.push_back(entry);
  });
}

void FirewallRulesetImpl::RemoveAllowedIp(std::string const& text) {
  CheckFault(Operation::FirewallRulesetImpl_RemoveAllowedIp);
  std::string entry = Sim::CanonicalAllowedIp(text);
  ChangeRuleset(id_, [&](FirewallRulesetState& ruleset) {
    auto& list = ruleset.allowed_ips;
    auto found = std::find(list.begin(), list.end(), entry);
    if (found == list.end()) {
      throw HostCtlException("Ip address " + entry + " is not in the allowed ip list of " + id_);
    }
    list.erase(found);
  });
}

void FirewallRulesetImpl::SetAllowedAll(bool allowedAll) {
  CheckFault(Operation::FirewallRulesetImpl_SetAllowedAll);
  ChangeRuleset(id_, [&](FirewallRulesetState& ruleset) { ruleset.allowed_all = allowedAll; });
}

bool FirewallRulesetImpl::IsAllowedAll() {
  CheckFault(Operation::FirewallRulesetImpl_IsAllowedAll);
  return ReadRuleset(id_).allowed_all;
}

HostCtl::System::FirewallRulesetList SystemInfoImpl::GetFirewallRulesets() {
  CheckFault(Operation::SystemInfoImpl_GetFirewallRulesets);
  HostCtl::System::FirewallRulesetList rulesets;
  for (auto const& ruleset : Sim::ReadHost(Sim::kAreaFirewall).firewall.rulesets) {
    rulesets.push_back(std::make_unique<FirewallRulesetImpl>(ruleset.id));
  }
  return rulesets;
}

std::unique_ptr<HostCtl::System::FirewallRuleset> SystemInfoImpl::GetFirewallRulesetById(
    std::string const& id) {
  CheckFault(Operation::SystemInfoImpl_GetFirewallRulesetById);
  return std::make_unique<FirewallRulesetImpl>(id);
}

}  // namespace OrvkCtl::System
