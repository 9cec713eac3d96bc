// The default host's switch ports. vSwitch0 (ids from 33554433): its uplinks
// ornic0 and ornic1, the management interface orvk0, and the VMs web-01 and
// db-01 on "VM Network"; web-01's port carries a firewall monitor and a rate
// guard in both chains. DSwitch-Prod (ids from 67108865): its uplinks ornic2
// and ornic3, and the VMs app-01, app-02 (DVPorts 0 and 1) and repl-01
// (DVPort 8), each led by the world of its VM.
#include "host_model.h"

namespace OrvkCtl::Sim {
namespace {

struct Traffic {
  uint64_t sent, multicast_sent, broadcast_sent;
  uint64_t received, multicast_received, broadcast_received;
  uint64_t tx_dropped, rx_dropped;
  uint64_t bytes_sent, bytes_received;
};

PortState NewPort(uint32_t id, std::string portset, int type, std::string client,
                  Traffic const& traffic) {
  PortState port;
  port.id = id;
  port.portset = std::move(portset);
  port.type = type;
  port.client = std::move(client);
  port.packets_sent = traffic.sent;
  port.multicast_sent = traffic.multicast_sent;
  port.broadcast_sent = traffic.broadcast_sent;
  port.packets_received = traffic.received;
  port.multicast_received = traffic.multicast_received;
  port.broadcast_received = traffic.broadcast_received;
  port.tx_dropped = traffic.tx_dropped;
  port.rx_dropped = traffic.rx_dropped;
  port.bytes_sent = traffic.bytes_sent;
  port.bytes_received = traffic.bytes_received;
  return port;
}

PortState VmPort(uint32_t id, std::string portset, std::string client, uint32_t world,
                 std::string mac, Traffic const& traffic) {
  PortState port = NewPort(id, std::move(portset), kPortTypeVm, std::move(client), traffic);
  port.world_leader = world;
  port.mac_address = std::move(mac);
  return port;
}

PortFilterState Filter(std::string name, std::string chain_key, bool outbound, uint64_t in,
                       uint64_t dropped) {
  PortFilterState filter;
  filter.name = std::move(name);
  filter.chain_key = std::move(chain_key);
  filter.outbound = outbound;
  filter.packets_in = in;
  filter.packets_out = in - dropped;
  filter.packets_dropped = dropped;
  return filter;
}

PortFilterState DetailedFilter(std::string name, std::string chain_key, bool outbound, uint64_t in,
                               uint64_t dropped) {
  PortFilterState filter = Filter(std::move(name), std::move(chain_key), outbound, in, dropped);
  filter.has_detail = true;
  filter.packets_filtered = dropped;
  filter.packets_queued = 12;
  filter.packets_injected = 3;
  return filter;
}

}  // namespace

void SeedRuntime(HostModel& host) {
  auto& ports = host.runtime.ports;
  ports.push_back(
      NewPort(33554433, "vSwitch0", kPortTypeUplink, "ornic0",
              {4812345, 10234, 2210, 5291877, 88412, 40125, 0, 17, 3921883112, 4819920431}));
  ports.push_back(NewPort(33554434, "vSwitch0", kPortTypeUplink, "ornic1",
                          {0, 0, 0, 61022, 59870, 1152, 0, 0, 0, 4905412}));
  PortState orvk0 =
      NewPort(33554436, "vSwitch0", kPortTypeInterface, "orvk0",
              {1982334, 312, 45, 2210981, 20144, 18211, 0, 3, 1023445812, 1562291004});
  orvk0.portgroup = "Management Network";
  orvk0.mac_address = "d2:6e:a0:00:10:00";
  ports.push_back(orvk0);

  PortState web =
      VmPort(33554437, "vSwitch0", "web-01.eth0", 1000271, "02:1c:7e:00:11:01",
             {2815004, 9120, 1865, 3080112, 68002, 21914, 0, 14, 2894712330, 3255108842});
  web.portgroup = "VM Network";
  web.client_ipv4 = "192.168.10.51";
  web.filters = {
      DetailedFilter("fw-mon.0", "0001", false, 3080112, 204),
      Filter("rate-guard.1", "0002", false, 3079908, 0),
      Filter("trace.2", "0003", false, 0, 0),
      DetailedFilter("fw-mon.0", "0001", true, 2815004, 11),
      Filter("rate-guard.1", "0002", true, 2815015, 0),
  };
  web.filters[2].active = false;
  ports.push_back(web);
  PortState db = VmPort(33554438, "vSwitch0", "db-01.eth0", 1000305, "02:1c:7e:00:11:02",
                        {1920448, 40, 1201, 1740221, 20112, 19870, 0, 0, 1877640012, 1402281110});
  db.portgroup = "VM Network";
  db.client_ipv4 = "192.168.10.52";
  ports.push_back(db);

  ports.push_back(
      NewPort(67108865, "DSwitch-Prod", kPortTypeUplink, "ornic2",
              {9120448, 4410, 881, 8722914, 61200, 2230, 0, 41, 11209871334, 9922013487}));
  ports.push_back(
      NewPort(67108866, "DSwitch-Prod", kPortTypeUplink, "ornic3",
              {7765102, 3998, 702, 8104330, 60001, 2117, 0, 35, 9820014771, 9120331254}));
  ports.back().filters = {Filter("uplink-mirror.0", "0001", true, 7765102, 0)};
  struct DvsVm {
    uint32_t id;
    char const* client;
    char const* dvport;
    uint32_t world;
    char const* mac;
    char const* ipv4;
    char const* uplink;
    Traffic traffic;
  };
  DvsVm const dvsVms[] = {
      {67108867,
       "app-01.eth0",
       "0",
       1000412,
       "02:1c:7e:00:21:01",
       "10.20.0.11",
       "ornic2",
       {5120991, 2204, 410, 4990012, 30114, 1002, 0, 8, 6120034110, 5400921337}},
      {67108868,
       "app-02.eth0",
       "1",
       1000433,
       "02:1c:7e:00:21:02",
       "10.20.0.12",
       "ornic3",
       {3998120, 1790, 290, 3710254, 29876, 998, 0, 6, 4712003221, 4011220983}},
      {67108869,
       "repl-01.eth1",
       "8",
       1000458,
       "02:1c:7e:00:22:01",
       "10.30.0.5",
       "ornic2",
       {8870112, 0, 12, 1022987, 0, 301, 0, 0, 12410220345, 81220114}},
  };
  for (auto const& vm : dvsVms) {
    PortState port = VmPort(vm.id, "DSwitch-Prod", vm.client, vm.world, vm.mac, vm.traffic);
    port.dvport_id = vm.dvport;
    port.client_ipv4 = vm.ipv4;
    port.team_uplink = vm.uplink;
    ports.push_back(port);
  }
  // The VMs' worlds join the service worlds seeded with the IP stack.
  host.runtime.worlds.insert(host.runtime.worlds.end(), {{1000271, "vmm0:web-01"},
                                                         {1000305, "vmm0:db-01"},
                                                         {1000412, "vmm0:app-01"},
                                                         {1000433, "vmm0:app-02"},
                                                         {1000458, "vmm0:repl-01"}});

  // Two ENS contexts serve DSwitch-Prod, one per NUMA node; a third stands
  // by, unassigned.
  host.runtime.ens.max_lcores = 8;
  host.runtime.ens.lcores = {{0, "DSwitch-Prod", 0}, {1, "DSwitch-Prod", 1}, {2, "null", -1}};
}

PortState* FindPort(RuntimeArea& area, uint32_t id) {
  for (auto& port : area.ports) {
    if (port.id == id) return &port;
  }
  return nullptr;
}

PortState const* FindPort(RuntimeArea const& area, uint32_t id) {
  return FindPort(const_cast<RuntimeArea&>(area), id);
}

}  // namespace OrvkCtl::Sim
