// The host's system view: the firewall and kernel modules.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::System {

// One firewall rule: a port range with its direction and protocol.
class FirewallRule : public virtual Lib::HostCtlObject {
 public:
  FirewallRule() = default;
  FirewallRule(std::string name, int32_t port_type, int32_t port_begin, int32_t port_end,
               int32_t direction, int32_t protocol)
      : name(std::move(name)),
        portType(port_type),
        portBegin(port_begin),
        portEnd(port_end),
        direction(direction),
        protocol(protocol) {}

  std::string name;
  int32_t portType = 1;  // 1 destination port, any other value source port
  int32_t portBegin = 0;
  int32_t portEnd = 0;
  int32_t direction = 0;  // 0 inbound, any other value outbound
  int32_t protocol = 0;   // 0 TCP, any other value UDP
};

using FirewallRuleList = std::vector<std::unique_ptr<FirewallRule>>;

// The firewall as a whole. Every operation throws Lib::HostCtlException on
// failure; the settings exist only while the firewall module is loaded.
class SystemInfo : public virtual Lib::HostCtlObject {
 public:
  virtual bool IsFirewallEnabled() = 0;
  virtual void SetFirewallEnabled(bool enabled) = 0;
  // True: traffic that no rule matches passes; false: it is dropped.
  virtual bool GetFirewallDefaultAction() = 0;
  virtual void SetFirewallDefaultAction(bool pass) = 0;
  // Reads the ruleset configuration and applies it; drops the dynamic rules.
  virtual void LoadFirewallRulesets() = 0;
  // The rules added at run time, in the order they were added.
  virtual FirewallRuleList GetFirewallDynamicRules() = 0;
  virtual void AddFirewallDynamicRule(FirewallRule& rule) = 0;
  // Takes the firewall's filters down, before its module is unloaded.
  virtual void DestroyFirewallFilters() = 0;
};

}  // namespace HostCtl::System

namespace OrvkCtl::System {

class SystemInfoImpl : public virtual HostCtl::System::SystemInfo,
                       public virtual Lib::OrvkCtlObject {
 public:
  SystemInfoImpl();
  ~SystemInfoImpl() override;
  void Refresh() override;

  bool IsFirewallEnabled() override;
  void SetFirewallEnabled(bool enabled) override;
  bool GetFirewallDefaultAction() override;
  void SetFirewallDefaultAction(bool pass) override;
  void LoadFirewallRulesets() override;
  HostCtl::System::FirewallRuleList GetFirewallDynamicRules() override;
  void AddFirewallDynamicRule(HostCtl::System::FirewallRule& rule) override;
  void DestroyFirewallFilters() override;
};

// One kernel module, by name. IsLoaded is read once and then cached.
class ModuleImpl : public virtual Lib::OrvkCtlObject {
 public:
  explicit ModuleImpl(std::string const& name);
  ~ModuleImpl() override;
  // Reads the module's state; throws HostCtlException for an unknown module.
  void Refresh() override;
  bool IsLoaded();
  // Loads the module; loading a loaded module changes nothing.
  void Load(std::string const& options, bool force);
  // Unloads the module; throws if it is not loaded.
  void Unload();

 private:
  std::string name_;
  bool loaded_ = false;
};

}  // namespace OrvkCtl::System
