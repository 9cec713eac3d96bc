// JSON form of the runtime area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

JSON_RECORD(PortFilterState, name, chain_key, active, outbound, has_detail, packets_in, packets_out,
            packets_dropped, packets_filtered, packets_faulted, packets_queued, packets_injected,
            packet_errors)
JSON_ONE_OF_NUMBERS(PortState, type, kPortTypeInterface, kPortTypeVm, kPortTypeUplink)
JSON_RECORD(PortState, id, portset, type, client, portgroup, dvport_id, world_leader, mac_address,
            client_ipv4, team_uplink, packets_sent, multicast_sent, broadcast_sent,
            packets_received, multicast_received, broadcast_received, tx_dropped, rx_dropped,
            bytes_sent, bytes_received, filters)
JSON_RECORD(WorldState, id, name)
JSON_RANGE(EnsLcoreState, affinity, -1, INT32_MAX)
JSON_RECORD(EnsLcoreState, id, switch_name, affinity)
JSON_RECORD(EnsState, max_lcores, lcore_limit, numa_nodes, lcores)

JSON_RECORD(MulticastMembershipState, interface, group, link_layer, refcount)

JSON_RECORD(RuntimeArea, ports, worlds, ens, memberships_reported, memberships)

}  // namespace OrvkCtl::Sim
