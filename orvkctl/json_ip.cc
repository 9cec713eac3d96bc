// JSON form of the ip area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(RouteState, network, gateway, interface, source)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NeighborState, address, mac, interface, expiry,
                                                flags, state)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetstackRoutes, netstack, ipv4, ipv6,
                                                ipv4_config_gateway, ipv6_config_gateway,
                                                ipv4_neighbors, ipv6_neighbors)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(DnsConfigState, netstack, servers, search_domains)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(HostsEntryState, ip, hostname, aliases, comment)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ConnectionState, netstack, protocol, recv_q,
                                                send_q, local_address, local_port,
                                                foreign_address, foreign_port, state, world_id,
                                                cc_algo)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetstackState, key, name, state, max_connections,
                                                current_max_connections, cc_algorithm,
                                                ipv6_enabled, current_ipv6_enabled, ecn_status,
                                                flags)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Ipv6AddressState, address, type, status)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(IpConfigState, ipv4_mode, ipv4_address,
                                                ipv4_netmask, ipv4_gateway, dhcp_dns, ipv6_enabled,
                                                ipv6_dhcp, ipv6_router_adv, ipv6_dhcp_dns,
                                                ipv6_gateway, ipv6_addresses)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(MulticastJoinState, group, refcount)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(InterfaceState, name, mac, netstack, mtu,
                                                num_rx_queue, tso_mss, enabled, connection_type,
                                                portset, portgroup, dvs_uuid, dvport_id,
                                                connection_id, opaque_network_id,
                                                opaque_network_type, external_id, tags,
                                                ip, configured_ip, multicast_joins)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(IpSecSaRecord, name, automatic, state, lifetime,
                                                spi, source, destination, mode, encrypt_algo,
                                                encrypt_key, auth_algo, auth_key)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(IpSecSpRecord, name, source, source_prefix,
                                                source_port, destination, destination_prefix,
                                                destination_port, protocol, direction, action, mode,
                                                sa_name)

void to_json(nlohmann::json& j, IpArea const& area) {
  j = nlohmann::json::object();
  j["ipv6_enabled"] = area.ipv6_enabled;
  j["netstacks"] = area.netstacks;
  j["routes"] = area.routes;
  j["interfaces"] = area.interfaces;
  j["executed_commands"] = area.executed_commands;
  j["ipsec_sas"] = area.ipsec_sas;
  j["ipsec_sps"] = area.ipsec_sps;
  j["dns"] = area.dns;
  j["hosts"] = area.hosts;
  j["connections"] = area.connections;
}

void from_json(nlohmann::json const& j, IpArea& area) {
  area = IpArea();
  if (j.contains("ipv6_enabled")) j.at("ipv6_enabled").get_to(area.ipv6_enabled);
  if (j.contains("netstacks")) j.at("netstacks").get_to(area.netstacks);
  if (j.contains("routes")) j.at("routes").get_to(area.routes);
  if (j.contains("interfaces")) j.at("interfaces").get_to(area.interfaces);
  if (j.contains("executed_commands")) j.at("executed_commands").get_to(area.executed_commands);
  if (j.contains("ipsec_sas")) j.at("ipsec_sas").get_to(area.ipsec_sas);
  if (j.contains("ipsec_sps")) j.at("ipsec_sps").get_to(area.ipsec_sps);
  if (j.contains("dns")) j.at("dns").get_to(area.dns);
  if (j.contains("hosts")) j.at("hosts").get_to(area.hosts);
  if (j.contains("connections")) j.at("connections").get_to(area.connections);
}

}  // namespace OrvkCtl::Sim
