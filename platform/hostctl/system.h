// The host's system view: the firewall and kernel modules.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

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

// The addresses a ruleset admits traffic from when it does not allow all,
// by kind, each list in the order its entries were added.
struct FirewallAllowedIps {
  std::vector<Network::Ipv4Address> ipv4Addresses;
  std::vector<Network::Ipv4Network> ipv4Networks;
  std::vector<Network::Ipv6Address> ipv6Addresses;
  std::vector<Network::Ipv6Network> ipv6Networks;
};

// One firewall ruleset: a named group of rules switched as a unit, with the
// count of the services that need it and the addresses it admits. A ruleset
// object exists for any id; IsLoaded tells whether the host has that ruleset,
// and every other operation throws Lib::HostCtlException for one it lacks.
class FirewallRuleset : public virtual Lib::HostCtlObject {
 public:
  ~FirewallRuleset() override;
  virtual std::string GetRulesetId() const = 0;
  virtual bool IsEnabled() = 0;
  virtual void Enable() = 0;
  virtual int32_t GetClientCount() = 0;
  // Counts one more client and puts the ruleset in force.
  virtual void AddClient() = 0;
  // Counts one client less and takes the ruleset out of force at zero.
  // Throws when no client is counted.
  virtual void RemoveClient() = 0;
  virtual void Disable() = 0;
  // The rules, in the ruleset's order, owned by the caller.
  virtual FirewallRuleList GetRules() = 0;
  // The allowed list as the host holds it now; valid until the next call on
  // this object.
  virtual FirewallAllowedIps const& GetAllowedIps() = 0;
  // Adds an address ("10.1.2.3", "2001:db8::5") or a network with its
  // prefix length ("10.1.0.0/16"). Throws for a text that is neither and
  // for an entry the list already holds.
  virtual void AddAllowedIp(std::string const& text) = 0;
  // Removes an entry given as AddAllowedIp takes it. Throws when the list
  // does not hold it.
  virtual void RemoveAllowedIp(std::string const& text) = 0;
  virtual bool IsLoaded() = 0;
  virtual void SetAllowedAll(bool allowedAll) = 0;
  virtual bool IsAllowedAll() = 0;
};

using FirewallRulesetList = std::vector<std::unique_ptr<FirewallRuleset>>;

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
  // All rulesets, in the host's order, owned by the caller.
  virtual FirewallRulesetList GetFirewallRulesets() = 0;
  // The ruleset with that id, owned by the caller; never null (see
  // FirewallRuleset::IsLoaded).
  virtual std::unique_ptr<FirewallRuleset> GetFirewallRulesetById(std::string const& id) = 0;
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
  HostCtl::System::FirewallRulesetList GetFirewallRulesets() override;
  std::unique_ptr<HostCtl::System::FirewallRuleset> GetFirewallRulesetById(
      std::string const& id) override;
};

// One ruleset of the host's firewall configuration, by id. Making the object
// reads nothing; the id is read once and cached, everything else is read and
// changed on the host at each call. The configuration is kept whether or not
// the firewall module is loaded.
class FirewallRulesetImpl : public virtual HostCtl::System::FirewallRuleset,
                            public virtual Lib::OrvkCtlObject {
 public:
  explicit FirewallRulesetImpl(std::string const& id);
  ~FirewallRulesetImpl() override;
  void Refresh() override;

  std::string GetRulesetId() const override;
  bool IsEnabled() override;
  void Enable() override;
  int32_t GetClientCount() override;
  void AddClient() override;
  void RemoveClient() override;
  void Disable() override;
  HostCtl::System::FirewallRuleList GetRules() override;
  HostCtl::System::FirewallAllowedIps const& GetAllowedIps() override;
  void AddAllowedIp(std::string const& text) override;
  void RemoveAllowedIp(std::string const& text) override;
  bool IsLoaded() override;
  void SetAllowedAll(bool allowedAll) override;
  bool IsAllowedAll() override;

 private:
  std::string id_;
  HostCtl::System::FirewallAllowedIps allowed_;
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
