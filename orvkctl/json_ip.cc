// JSON form of the ip area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

JSON_ONE_OF(RouteState, source, "MANUAL", "DHCP")
JSON_RECORD(RouteState, network, gateway, interface, source)
JSON_RANGE(NeighborState, state, 0, 4)
JSON_RECORD(NeighborState, address, mac, interface, expiry, flags, state)
JSON_RECORD(NetstackRoutes, netstack, ipv4, ipv6, ipv4_config_gateway, ipv6_config_gateway,
            ipv4_neighbors, ipv6_neighbors)
JSON_RECORD(DnsConfigState, netstack, servers, search_domains)
JSON_RECORD(HostsEntryState, ip, hostname, aliases, comment)

void ReadRecordText(std::string_view text, size_t index, HostsEntryState& out) {
  ReadListElement(text, index, out, "ip", "hosts");
}
JSON_ONE_OF(ConnectionState, protocol, "tcp", "udp", "ip")
JSON_RANGE(ConnectionState, state, 0, 10)
JSON_RECORD(ConnectionState, netstack, protocol, recv_q, send_q, local_address, local_port,
            foreign_address, foreign_port, state, world_id, cc_algo)
JSON_ONE_OF_NUMBERS(NetstackState, state, 0, kNetstackStateUp)
// The host sets newreno or cubic; a linux host may run any of its kernel's.
JSON_ONE_OF(NetstackState, cc_algorithm, "newreno", "cubic", "bbr", "bic", "cdg", "dctcp",
            "highspeed", "htcp", "hybla", "illinois", "lp", "nv", "scalable", "vegas", "veno",
            "westwood", "yeah")
JSON_ONE_OF(NetstackState, ecn_status, "disabled", "enabled", "echo-only")
JSON_RECORD(NetstackState, key, name, state, max_connections, current_max_connections, cc_algorithm,
            ipv6_enabled, current_ipv6_enabled, ecn_status, flags)
JSON_ONE_OF_NUMBERS(Ipv6AddressState, type, 0, 7, 9)
JSON_ONE_OF_NUMBERS(Ipv6AddressState, status, 0, 2, 3, 5)
JSON_RECORD(Ipv6AddressState, address, type, status)
JSON_ONE_OF(IpConfigState, ipv4_mode, "static", "dhcp", "none")
JSON_RECORD(IpConfigState, ipv4_mode, ipv4_address, ipv4_netmask, ipv4_gateway, dhcp_dns,
            ipv6_enabled, ipv6_dhcp, ipv6_router_adv, ipv6_dhcp_dns, ipv6_gateway, ipv6_addresses)
JSON_RECORD(MulticastJoinState, group, refcount)
JSON_RANGE(InterfaceState, connection_type, 1, 3)
JSON_RANGE(InterfaceState, tags, 1, 13)
JSON_RECORD(InterfaceState, name, mac, netstack, mtu, num_rx_queue, tso_mss, enabled,
            connection_type, portset, portgroup, dvs_uuid, dvport_id, connection_id,
            opaque_network_id, opaque_network_type, external_id, tags, ip, configured_ip,
            multicast_joins)
JSON_RANGE(IpSecSaRecord, state, 0, 4)
JSON_RANGE(IpSecSaRecord, mode, 0, 2)
JSON_RANGE(IpSecSaRecord, encrypt_algo, 0, 3)
JSON_RANGE(IpSecSaRecord, auth_algo, 0, 2)
JSON_RECORD(IpSecSaRecord, name, automatic, state, lifetime, spi, source, destination, mode,
            encrypt_algo, encrypt_key, auth_algo, auth_key)
JSON_RANGE(IpSecSpRecord, source_prefix, 0, 128)
JSON_RANGE(IpSecSpRecord, source_port, 0, 65535)
JSON_RANGE(IpSecSpRecord, destination_prefix, 0, 128)
JSON_RANGE(IpSecSpRecord, destination_port, 0, 65535)
JSON_RANGE(IpSecSpRecord, protocol, 0, 4)
JSON_RANGE(IpSecSpRecord, direction, 0, 2)
JSON_RANGE(IpSecSpRecord, action, 0, 3)
JSON_RANGE(IpSecSpRecord, mode, 0, 2)
JSON_RECORD(IpSecSpRecord, name, source, source_prefix, source_port, destination,
            destination_prefix, destination_port, protocol, direction, action, mode, sa_name)

JSON_RECORD(IpArea, ipv6_enabled, netstacks, routes, interfaces,
            executed_commands, ipsec_sas, ipsec_sps, dns, hosts, connections)

}  // namespace OrvkCtl::Sim
