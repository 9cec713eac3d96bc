// Look-ups in the vswitch area of the host model.
#include "model_vswitch.h"

namespace OrvkCtl::Sim {

StandardSwitchState* FindStandardSwitch(VswitchArea& area, std::string const& name) {
  for (auto& vswitch : area.standard_switches) {
    if (vswitch.name == name) return &vswitch;
  }
  return nullptr;
}

StandardSwitchState const* FindStandardSwitch(VswitchArea const& area, std::string const& name) {
  return FindStandardSwitch(const_cast<VswitchArea&>(area), name);
}

PortGroupState* FindPortGroup(VswitchArea& area, std::string const& name,
                              StandardSwitchState** owner) {
  for (auto& vswitch : area.standard_switches) {
    for (auto& group : vswitch.port_groups) {
      if (group.name == name) {
        if (owner) *owner = &vswitch;
        return &group;
      }
    }
  }
  return nullptr;
}

PortGroupState const* FindPortGroup(VswitchArea const& area, std::string const& name,
                                    StandardSwitchState const** owner) {
  StandardSwitchState* found_owner = nullptr;
  auto* group = FindPortGroup(const_cast<VswitchArea&>(area), name, &found_owner);
  if (owner) *owner = found_owner;
  return group;
}

DistributedSwitchState* FindDistributedSwitch(VswitchArea& area, std::string const& name) {
  for (auto& dvs : area.distributed_switches) {
    if (dvs.name == name) return &dvs;
  }
  return nullptr;
}

DistributedSwitchState const* FindDistributedSwitch(VswitchArea const& area,
                                                    std::string const& name) {
  return FindDistributedSwitch(const_cast<VswitchArea&>(area), name);
}

}  // namespace OrvkCtl::Sim
