// The default host's standard switches: vSwitch0 carries management and VM
// traffic over ornic0 (active) and ornic1 (standby); vSwitch1 is an internal
// switch without uplinks. Every port group inherits its switch's policies.
#include "host_model.h"

namespace OrvkCtl::Sim {
namespace {

// The settings of a switch made with the library's default policies.
StandardSwitchState NewSwitch(std::string name) {
  StandardSwitchState vswitch;
  vswitch.name = std::move(name);
  vswitch.configured_ports = 128;
  vswitch.teaming.set_mask = 0x2d;  // all but the uplink order
  vswitch.teaming.team_policy = 3;  // originating port
  vswitch.teaming.notify_switch_on_failure = true;
  vswitch.teaming.link_set_mask = 0x10;  // link state detection
  vswitch.teaming.link_value_bits = 0x10;
  vswitch.security.set_mask = 0x7;
  vswitch.shaping.set_mask = 0x8;  // off
  return vswitch;
}

PortGroupState NewGroup(std::string name, uint16_t vlan_id, int active_clients) {
  PortGroupState group;
  group.name = std::move(name);
  group.vlan_id = vlan_id;
  group.active_clients = active_clients;
  return group;
}

}  // namespace

void SeedVswitch(HostModel& host) {
  StandardSwitchState vswitch0 = NewSwitch("vSwitch0");
  vswitch0.uplinks = {"ornic0", "ornic1"};
  vswitch0.teaming.set_mask |= 0x10;
  vswitch0.teaming.uplink_order = {"ornic0", "ornic1"};
  vswitch0.teaming.max_active_uplinks = 1;
  vswitch0.port_groups = {NewGroup("Management Network", 0, 1), NewGroup("VM Network", 0, 2)};

  StandardSwitchState vswitch1 = NewSwitch("vSwitch1");
  vswitch1.configured_ports = 64;
  vswitch1.mtu = 9000;
  vswitch1.port_groups = {NewGroup("Storage Network", 20, 0)};

  host.vswitch.standard_switches = {vswitch0, vswitch1};
}

}  // namespace OrvkCtl::Sim
