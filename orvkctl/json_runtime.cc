// JSON form of the runtime area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PortFilterState, name, chain_key, active, outbound,
                                                has_detail, packets_in, packets_out,
                                                packets_dropped, packets_filtered, packets_faulted,
                                                packets_queued, packets_injected, packet_errors)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PortState, id, portset, type, client, portgroup,
                                                dvport_id, world_leader, mac_address, packets_sent,
                                                multicast_sent, broadcast_sent, packets_received,
                                                multicast_received, broadcast_received, tx_dropped,
                                                rx_dropped, bytes_sent, bytes_received, filters)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(WorldState, id, name)

void to_json(nlohmann::json& j, RuntimeArea const& area) {
  j = nlohmann::json::object();
  j["ports"] = area.ports;
  j["worlds"] = area.worlds;
}

void from_json(nlohmann::json const& j, RuntimeArea& area) {
  area = RuntimeArea();
  if (j.contains("ports")) j.at("ports").get_to(area.ports);
  if (j.contains("worlds")) j.at("worlds").get_to(area.worlds);
}

}  // namespace OrvkCtl::Sim
