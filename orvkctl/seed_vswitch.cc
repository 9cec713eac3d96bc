// The default host's standard switches: vSwitch0 carries management and VM
// traffic over ornic0 (active) and ornic1 (standby); vSwitch1 is an internal
// switch without uplinks. Every port group inherits its switch's policies.
// The host also takes part in the distributed switch DSwitch-Prod, whose LAG
// lag1 runs LACP with one uplink bundled.
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

  // The distributed switch: production VM traffic over ornic2 and ornic3;
  // ports 0-7 form the VM port group, 8-11 the replication port group.
  DistributedSwitchState dvs;
  dvs.name = "DSwitch-Prod";
  dvs.id = "50 1e 7a 3c 9d 42 b1 08-6f 55 c2 e9 10 a4 7d 33";
  dvs.configured_ports = 12;
  dvs.mtu = 9000;
  dvs.cdp_status = 1;
  dvs.beacon_timeout = -1;
  dvs.uplinks = {"ornic2", "ornic3"};
  for (int port = 0; port < 12; ++port) {
    DVPortState dvport;
    dvport.id = std::to_string(port);
    dvport.portgroup_id = port < 8 ? "dvportgroup-1001" : "dvportgroup-1002";
    dvs.ports.push_back(dvport);
  }
  dvs.ports[0].connection_id = 1418027611;
  dvs.ports[1].connection_id = 1418027612;
  dvs.ports[8].connection_id = 1418027640;
  // Uplink ports, in the uplink port group: ornic2 on lag1-0, the first
  // port of lag1, ornic3 on the plain uplink2; uplink1 and lag1-1 are free.
  struct UplinkPort {
    char const* id;
    char const* name;
    char const* uplink;
  };
  for (auto const& port :
       {UplinkPort{"24", "uplink1", ""}, UplinkPort{"25", "uplink2", "ornic3"},
        UplinkPort{"26", "lag1-0", "ornic2"}, UplinkPort{"27", "lag1-1", ""}}) {
    DVPortState uplink;
    uplink.id = port.id;
    uplink.portgroup_id = "dvportgroup-1000";
    uplink.name = port.name;
    uplink.uplink = port.uplink;
    dvs.uplink_ports.push_back(uplink);
  }
  LagState lag;
  lag.id = 1;
  lag.name = "lag1";
  lag.mode = 1;           // active
  lag.load_balance = 19;  // source and destination IP, port and VLAN
  lag.uplink_count = 2;
  lag.running = true;
  LacpMemberState member;
  member.nic = "ornic2";
  member.state = "Bundled";
  member.port_number = 3;
  member.port_priority = 255;
  member.admin_key = 13;
  member.oper_key = 13;
  member.port_state = 0x3d;  // active, aggregatable, in sync, collecting, distributing
  member.partner_age = 12;
  member.partner_port_number = 17;
  member.partner_port_priority = 32768;
  member.partner_oper_key = 301;
  member.partner_port_state = 0x3d;
  member.partner_device_id = "00:1b:54:c2:70:00";
  member.partner_flags = "SA";
  member.rx_lacpdus = 51842;
  member.tx_lacpdus = 51866;
  member.rx_errors = 0;
  member.tx_errors = 2;
  lag.members = {member};
  dvs.lags = {lag};
  host.vswitch.distributed_switches = {dvs};
}

}  // namespace OrvkCtl::Sim
