// The command classes of `network vswitch`, one per leaf; each is made only by its
// New() and defined in the source file of its name.
#pragma once

#include <vector>

#include "frame/CommandKit.h"

namespace HostCtl::Network {
class DVPort;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network vswitch dvs corvane lacp config get`: the LAGs as configured.
class LacpGetConfig : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(LacpGetConfig)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network vswitch dvs corvane lacp stats get`: LACPDU counters per uplink.
class LacpGetStats : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(LacpGetStats)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network vswitch dvs corvane lacp status get`: LACP state of running LAGs.
class LacpGetStatus : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(LacpGetStatus)
  // The empty structures of the nested records, innermost first; each call
  // builds a new one.
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPLocalInfoStruct();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPPartnerInfoStruct();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetLACPNicInfoStruct();
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network vswitch dvs corvane lacp timeout set`: long or short LACP timeout.
class LacpSetTimeout : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(LacpSetTimeout)
};

// `network vswitch dvs corvane list`: the distributed switches of the host,
// each with its DVPorts.
class VirtualSwitchDVSCorvaneList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchDVSCorvaneList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();

  // A new, empty `DVPort` structure.
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDVPortStructure();
  // The filled `DVPort` list of `ports`. Throws HostCtlException when the
  // host cannot be read.
  std::shared_ptr<Toolbase::MetaObj::MetaList> GetDVPortList(
      std::vector<std::unique_ptr<HostCtl::Network::DVPort>> const& ports);
};

class VirtualSwitchPortGroupAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupAdd)
};

class VirtualSwitchPortGroupList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchPortGroupPolicyFailoverGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicyFailoverGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchPortGroupPolicyFailoverSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicyFailoverSet)
};

class VirtualSwitchPortGroupPolicySecurityGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicySecurityGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchPortGroupPolicySecuritySet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicySecuritySet)
};

class VirtualSwitchPortGroupPolicyShapingGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicyShapingGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchPortGroupPolicyShapingSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupPolicyShapingSet)
};

class VirtualSwitchPortGroupRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupRemove)
};

class VirtualSwitchPortGroupSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchPortGroupSet)
};

class VirtualSwitchStandardAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardAdd)
};

class VirtualSwitchStandardList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchStandardPolicyFailoverGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicyFailoverGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchStandardPolicyFailoverSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicyFailoverSet)
};

class VirtualSwitchStandardPolicySecurityGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicySecurityGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchStandardPolicySecuritySet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicySecuritySet)
};

class VirtualSwitchStandardPolicyShapingGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicyShapingGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

class VirtualSwitchStandardPolicyShapingSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardPolicyShapingSet)
};

class VirtualSwitchStandardRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardRemove)
};

class VirtualSwitchStandardSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardSet)
};

class VirtualSwitchStandardUplinkAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardUplinkAdd)
};

class VirtualSwitchStandardUplinkRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VirtualSwitchStandardUplinkRemove)
};

}  // namespace CorvaneCli::NetworkNamespace
