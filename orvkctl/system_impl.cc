#include "fault.h"
#include "host_backend.h"
#include "hostctl/system.h"

namespace OrvkCtl::System {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;

constexpr char kFirewallModule[] = "haldenfw";

Sim::FirewallState const& LoadedFirewall() {
  HostModel const& host = Sim::ReadHost(Sim::kAreaHost | Sim::kAreaFirewall);
  auto const* module = Sim::FindModule(host, kFirewallModule);
  if (!module || !module->loaded) {
    throw HostCtlException("Firewall module " + std::string(kFirewallModule) + " is not loaded");
  }
  return host.firewall;
}

void ChangeFirewall(std::function<void(Sim::FirewallState&)> const& change) {
  LoadedFirewall();
  Sim::ChangeHost(Sim::kAreaHost | Sim::kAreaFirewall, [&](HostModel& host) { change(host.firewall); });
}

}  // namespace

SystemInfoImpl::SystemInfoImpl() = default;
SystemInfoImpl::~SystemInfoImpl() = default;

void SystemInfoImpl::Refresh() { CheckFault(Operation::SystemInfoImpl_Refresh); }

bool SystemInfoImpl::IsFirewallEnabled() {
  CheckFault(Operation::SystemInfoImpl_IsFirewallEnabled);
  return LoadedFirewall().enabled;
}

void SystemInfoImpl::SetFirewallEnabled(bool enabled) {
  CheckFault(Operation::SystemInfoImpl_SetFirewallEnabled);
  ChangeFirewall([&](Sim::FirewallState& firewall) { firewall.enabled = enabled; });
}

bool SystemInfoImpl::GetFirewallDefaultAction() {
  CheckFault(Operation::SystemInfoImpl_GetFirewallDefaultAction);
  return LoadedFirewall().default_action_pass;
}

void SystemInfoImpl::SetFirewallDefaultAction(bool pass) {
  CheckFault(Operation::SystemInfoImpl_SetFirewallDefaultAction);
  ChangeFirewall([&](Sim::FirewallState& firewall) { firewall.default_action_pass = pass; });
}

void SystemInfoImpl::LoadFirewallRulesets() {
  CheckFault(Operation::SystemInfoImpl_LoadFirewallRulesets);
  ChangeFirewall([](Sim::FirewallState& firewall) { firewall.dynamic_rules.clear(); });
}

HostCtl::System::FirewallRuleList SystemInfoImpl::GetFirewallDynamicRules() {
  CheckFault(Operation::SystemInfoImpl_GetFirewallDynamicRules);
  HostCtl::System::FirewallRuleList rules;
  for (auto const& rule : LoadedFirewall().dynamic_rules) {
    rules.push_back(std::make_unique<HostCtl::System::FirewallRule>(
        rule.name, rule.port_type, rule.port_begin, rule.port_end, rule.direction,
        rule.protocol));
  }
  return rules;
}

void SystemInfoImpl::AddFirewallDynamicRule(HostCtl::System::FirewallRule& rule) {
  CheckFault(Operation::SystemInfoImpl_AddFirewallDynamicRule);
  if (rule.portBegin < 0 || rule.portEnd > 65535 || rule.portBegin > rule.portEnd) {
    throw HostCtlException("Invalid port range " + std::to_string(rule.portBegin) + "-" +
                           std::to_string(rule.portEnd) + " in firewall rule");
  }
  ChangeFirewall([&](Sim::FirewallState& firewall) {
    firewall.dynamic_rules.push_back({rule.name, rule.portType, rule.portBegin, rule.portEnd,
                                      rule.direction, rule.protocol});
  });
}

void SystemInfoImpl::DestroyFirewallFilters() {
  CheckFault(Operation::SystemInfoImpl_DestroyFirewallFilters);
  ChangeFirewall([](Sim::FirewallState& firewall) { firewall.dynamic_rules.clear(); });
}

ModuleImpl::ModuleImpl(std::string const& name) : name_(name) {}
ModuleImpl::~ModuleImpl() = default;

void ModuleImpl::Refresh() {
  CheckFault(Operation::ModuleImpl_Refresh);
  auto const* module = Sim::FindModule(Sim::ReadHost(Sim::kAreaHost | Sim::kAreaFirewall), name_);
  if (!module) throw HostCtlException("Module " + name_ + " not found");
  loaded_ = module->loaded;
}

bool ModuleImpl::IsLoaded() {
  CheckFault(Operation::ModuleImpl_IsLoaded);
  EnsureFresh();
  return loaded_;
}

void ModuleImpl::Load(std::string const& /*options*/, bool /*force*/) {
  CheckFault(Operation::ModuleImpl_Load);
  Sim::ChangeHost(Sim::kAreaHost | Sim::kAreaFirewall, [&](HostModel& host) {
    auto* module = Sim::FindModule(host, name_);
    if (!module) throw HostCtlException("Module " + name_ + " not found");
    module->loaded = true;
  });
  loaded_ = true;
}

void ModuleImpl::Unload() {
  CheckFault(Operation::ModuleImpl_Unload);
  Sim::ChangeHost(Sim::kAreaHost | Sim::kAreaFirewall, [&](HostModel& host) {
    auto* module = Sim::FindModule(host, name_);
    if (!module) throw HostCtlException("Module " + name_ + " not found");
    if (!module->loaded) throw HostCtlException("Module " + name_ + " is not loaded");
    module->loaded = false;
  });
  loaded_ = false;
}

}  // namespace OrvkCtl::System
