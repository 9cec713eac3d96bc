// The command classes of `network firewall`, one per leaf; each is made only by its
// New() and defined in the source file of its name.
#pragma once

#include "frame/CommandKit.h"

namespace CorvaneCli::NetworkNamespace {

class FirewallGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallGet)
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class FirewallLoad : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallLoad)
};

class FirewallRefresh : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRefresh)
};

// `network firewall ruleset allowedip add`: admits an address or network.
class FirewallRulesetAllowedipAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetAllowedipAdd)
};

// `network firewall ruleset allowedip list`: the addresses the rulesets admit.
class FirewallRulesetAllowedipList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetAllowedipList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network firewall ruleset allowedip remove`: stops admitting an address or network.
class FirewallRulesetAllowedipRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetAllowedipRemove)
};

// `network firewall ruleset client add`: counts one more client of a ruleset.
class FirewallRulesetClientAdd : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetClientAdd)
};

// `network firewall ruleset client get`: how many clients use a ruleset.
class FirewallRulesetClientGet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetClientGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network firewall ruleset client remove`: counts one client of a ruleset less.
class FirewallRulesetClientRemove : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetClientRemove)
};

// `network firewall ruleset list`: the rulesets with their state.
class FirewallRulesetList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network firewall ruleset rule list`: the port rules of the rulesets.
class FirewallRulesetRuleList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetRuleList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network firewall ruleset set`: switches a ruleset and its allowed-all flag.
class FirewallRulesetSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallRulesetSet)
};

class FirewallSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallSet)
};

class FirewallUnload : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(FirewallUnload)
};

}  // namespace CorvaneCli::NetworkNamespace
