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
  // A listing looks each group up by name several times, in order: try where
  // the last one was found, and the one after it, before walking them all.
  // Names are unique host-wide, so the hint never changes the answer.
  thread_local size_t hint_switch = 0;
  thread_local size_t hint_group = 0;
  auto found = [&](size_t s, size_t g) {
    hint_switch = s;
    hint_group = g;
    if (owner) *owner = &area.standard_switches[s];
    return &area.standard_switches[s].port_groups[g];
  };
  if (hint_switch < area.standard_switches.size()) {
    auto const& groups = area.standard_switches[hint_switch].port_groups;
    for (size_t g : {hint_group, hint_group + 1}) {
      if (g < groups.size() && groups.NameIs(g, name)) return found(hint_switch, g);
    }
  }
  for (size_t s = 0; s < area.standard_switches.size(); ++s) {
    auto const& groups = area.standard_switches[s].port_groups;
    size_t const g = groups.KeyIndex(name, [](size_t) { return true; });
    if (g < groups.size()) return found(s, g);
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
