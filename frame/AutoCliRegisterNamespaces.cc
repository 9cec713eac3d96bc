// The plug-in's one entry: builds the whole `network` tree, one line per node,
// and hangs it on the host's root as the last step. Each parent receives its
// children in the order below; some namespaces are attached before they are
// filled, and `lacp` is built last of all.
#include "toolbase/auto_cli.h"
#include "firewall/FirewallGet.h"
#include "firewall/FirewallLoad.h"
#include "firewall/FirewallRefresh.h"
#include "firewall/FirewallRulesetAllowedipAdd.h"
#include "firewall/FirewallRulesetAllowedipList.h"
#include "firewall/FirewallRulesetAllowedipRemove.h"
#include "firewall/FirewallRulesetClientAdd.h"
#include "firewall/FirewallRulesetClientGet.h"
#include "firewall/FirewallRulesetClientRemove.h"
#include "firewall/FirewallRulesetList.h"
#include "firewall/FirewallRulesetRuleList.h"
#include "firewall/FirewallRulesetSet.h"
#include "firewall/FirewallSet.h"
#include "firewall/FirewallUnload.h"
#include "ip/IpConnectionList.h"
#include "ip/IpDNSSearchAdd.h"
#include "ip/IpDNSSearchList.h"
#include "ip/IpDNSSearchRemove.h"
#include "ip/IpDNSServerAdd.h"
#include "ip/IpDNSServerList.h"
#include "ip/IpDNSServerRemove.h"
#include "ip/IpGet.h"
#include "ip/IpHostsAdd.h"
#include "ip/IpHostsList.h"
#include "ip/IpHostsRemove.h"
#include "ip/IpInterfaceAdd.h"
#include "ip/IpInterfaceIpv4Get.h"
#include "ip/IpInterfaceIpv4Set.h"
#include "ip/IpInterfaceIpv6AddressAdd.h"
#include "ip/IpInterfaceIpv6AddressList.h"
#include "ip/IpInterfaceIpv6AddressRemove.h"
#include "ip/IpInterfaceIpv6Get.h"
#include "ip/IpInterfaceIpv6Set.h"
#include "ip/IpInterfaceList.h"
#include "ip/IpInterfaceRemove.h"
#include "ip/IpInterfaceSet.h"
#include "ip/IpInterfaceTagAdd.h"
#include "ip/IpInterfaceTagGet.h"
#include "ip/IpInterfaceTagRemove.h"
#include "ip/IpIpsecSAAdd.h"
#include "ip/IpIpsecSAList.h"
#include "ip/IpIpsecSARemove.h"
#include "ip/IpIpsecSPAdd.h"
#include "ip/IpIpsecSPList.h"
#include "ip/IpIpsecSPRemove.h"
#include "ip/IpNeighborList.h"
#include "ip/IpNeighborRemove.h"
#include "ip/IpNetstackInstanceAdd.h"
#include "ip/IpNetstackInstanceGet.h"
#include "ip/IpNetstackInstanceList.h"
#include "ip/IpNetstackInstanceRemove.h"
#include "ip/IpNetstackInstanceSet.h"
#include "ip/IpRouteIpv4Add.h"
#include "ip/IpRouteIpv4List.h"
#include "ip/IpRouteIpv4Remove.h"
#include "ip/IpRouteIpv6Add.h"
#include "ip/IpRouteIpv6List.h"
#include "ip/IpRouteIpv6Remove.h"
#include "ip/IpSet.h"
#include "nic/NicAttachmentAdd.h"
#include "nic/NicAttachmentList.h"
#include "nic/NicAttachmentRemove.h"
#include "nic/NicCoalesceGet.h"
#include "nic/NicCoalesceHighGet.h"
#include "nic/NicCoalesceHighSet.h"
#include "nic/NicCoalesceLowGet.h"
#include "nic/NicCoalesceLowSet.h"
#include "nic/NicCoalesceSet.h"
#include "nic/NicCsoGet.h"
#include "nic/NicCsoSet.h"
#include "nic/NicDcbStatusGet.h"
#include "nic/NicDown.h"
#include "nic/NicEepromChange.h"
#include "nic/NicEepromDump.h"
#include "nic/NicGet.h"
#include "nic/NicHwCapActivatedList.h"
#include "nic/NicHwCapSupportedList.h"
#include "nic/NicList.h"
#include "nic/NicNegotiationRestart.h"
#include "nic/NicPauseParamsList.h"
#include "nic/NicPauseParamsSet.h"
#include "nic/NicRegisterDump.h"
#include "nic/NicQueueCountGet.h"
#include "nic/NicQueueCountSet.h"
#include "nic/NicQueueFilterClassList.h"
#include "nic/NicQueueLbPluginList.h"
#include "nic/NicQueueLbPluginSet.h"
#include "nic/NicQueueLbSettingList.h"
#include "nic/NicQueueLbSettingSet.h"
#include "nic/NicQueueLbStateList.h"
#include "nic/NicQueueLbStateSet.h"
#include "nic/NicRingCurrentGet.h"
#include "nic/NicRingCurrentSet.h"
#include "nic/NicRingPresetGet.h"
#include "nic/NicSelfTestRun.h"
#include "nic/NicSet.h"
#include "nic/NicSgGet.h"
#include "nic/NicSgSet.h"
#include "nic/NicSoftwareList.h"
#include "nic/NicSoftwareSet.h"
#include "nic/NicStatsGet.h"
#include "nic/NicTsoGet.h"
#include "nic/NicTsoSet.h"
#include "nic/NicUp.h"
#include "nic/NicVlanStatsGet.h"
#include "nic/NicVlanStatsSet.h"
#include "nic/SriovNicList.h"
#include "nic/VfList.h"
#include "nic/VfStats.h"
#include "runtime/EnsLcoreAdd.h"
#include "runtime/EnsLcoreAffinityGet.h"
#include "runtime/EnsLcoreAffinitySet.h"
#include "runtime/EnsLcoreList.h"
#include "runtime/EnsLcoreRemove.h"
#include "runtime/EnsLcoreSwitchAdd.h"
#include "runtime/EnsLcoreSwitchGet.h"
#include "runtime/EnsLcoreSwitchRemove.h"
#include "runtime/EnsMaxlcoresGet.h"
#include "runtime/EnsMaxlcoresSet.h"
#include "runtime/MulticastGroupList.h"
#include "runtime/PortFilterStatsGet.h"
#include "runtime/PortStatsGet.h"
#include "runtime/VMList.h"
#include "runtime/VMPortList.h"
#include "vswitch/LacpGetConfig.h"
#include "vswitch/LacpGetStats.h"
#include "vswitch/LacpGetStatus.h"
#include "vswitch/LacpSetTimeout.h"
#include "vswitch/VirtualSwitchDVSCorvaneList.h"
#include "vswitch/VirtualSwitchPortGroupAdd.h"
#include "vswitch/VirtualSwitchPortGroupList.h"
#include "vswitch/VirtualSwitchPortGroupPolicyFailoverGet.h"
#include "vswitch/VirtualSwitchPortGroupPolicyFailoverSet.h"
#include "vswitch/VirtualSwitchPortGroupPolicySecurityGet.h"
#include "vswitch/VirtualSwitchPortGroupPolicySecuritySet.h"
#include "vswitch/VirtualSwitchPortGroupPolicyShapingGet.h"
#include "vswitch/VirtualSwitchPortGroupPolicyShapingSet.h"
#include "vswitch/VirtualSwitchPortGroupRemove.h"
#include "vswitch/VirtualSwitchPortGroupSet.h"
#include "vswitch/VirtualSwitchStandardAdd.h"
#include "vswitch/VirtualSwitchStandardList.h"
#include "vswitch/VirtualSwitchStandardPolicyFailoverGet.h"
#include "vswitch/VirtualSwitchStandardPolicyFailoverSet.h"
#include "vswitch/VirtualSwitchStandardPolicySecurityGet.h"
#include "vswitch/VirtualSwitchStandardPolicySecuritySet.h"
#include "vswitch/VirtualSwitchStandardPolicyShapingGet.h"
#include "vswitch/VirtualSwitchStandardPolicyShapingSet.h"
#include "vswitch/VirtualSwitchStandardRemove.h"
#include "vswitch/VirtualSwitchStandardSet.h"
#include "vswitch/VirtualSwitchStandardUplinkAdd.h"
#include "vswitch/VirtualSwitchStandardUplinkRemove.h"

using Toolbase::AutoCli::Namespace;
using Toolbase::AutoCli::NamespaceNode;
using namespace CorvaneCli::NetworkNamespace;

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterNamespaces(void** root) {
  auto network = Namespace::New();
  network->SetDescription("Operations that pertain to the maintenance of networking on an Halden host. This includes a wide variety of commands to manipulate virtual networking components (vswitch, portgroup, etc) as well as local host IP, DNS and general host networking settings.");
  auto ip = Namespace::New();
  ip->SetDescription("Operations that can be performed on orvknics");
  ip->RegisterNamespaceNode(IpGet::New(), "get");
  ip->RegisterNamespaceNode(IpSet::New(), "set");
  auto ip_neighbor = Namespace::New();
  ip_neighbor->SetDescription("Operations that can be performed on arp tables");
  ip_neighbor->RegisterNamespaceNode(IpNeighborList::New(), "list");
  ip_neighbor->RegisterNamespaceNode(IpNeighborRemove::New(), "remove");
  ip->RegisterNamespaceNode(ip_neighbor, "neighbor");
  auto ip_connection = Namespace::New();
  ip_connection->SetDescription("List active tcpip connections");
  ip_connection->RegisterNamespaceNode(IpConnectionList::New(), "list");
  ip->RegisterNamespaceNode(ip_connection, "connection");
  auto ip_dns = Namespace::New();
  ip_dns->SetDescription("Operations pertaining to Domain Name Server configuration.");
  auto ip_dns_server = Namespace::New();
  ip_dns_server->SetDescription("Operations pertaining to DNS server configuration.");
  ip_dns_server->RegisterNamespaceNode(IpDNSServerList::New(), "list");
  ip_dns_server->RegisterNamespaceNode(IpDNSServerAdd::New(), "add");
  ip_dns_server->RegisterNamespaceNode(IpDNSServerRemove::New(), "remove");
  ip_dns->RegisterNamespaceNode(ip_dns_server, "server");
  auto ip_dns_search = Namespace::New();
  ip_dns_search->SetDescription("Operations pertaining to DNS search domain configuration.");
  ip_dns_search->RegisterNamespaceNode(IpDNSSearchAdd::New(), "add");
  ip_dns_search->RegisterNamespaceNode(IpDNSSearchRemove::New(), "remove");
  ip_dns_search->RegisterNamespaceNode(IpDNSSearchList::New(), "list");
  ip_dns->RegisterNamespaceNode(ip_dns_search, "search");
  ip->RegisterNamespaceNode(ip_dns, "dns");
  auto ip_route = Namespace::New();
  ip_route->SetDescription("Operations pertaining to route configuration");
  auto ip_route_ipv4 = Namespace::New();
  ip_route_ipv4->SetDescription("IPv4 route operations");
  ip_route_ipv4->RegisterNamespaceNode(IpRouteIpv4Add::New(), "add");
  ip_route_ipv4->RegisterNamespaceNode(IpRouteIpv4Remove::New(), "remove");
  ip_route_ipv4->RegisterNamespaceNode(IpRouteIpv4List::New(), "list");
  ip_route->RegisterNamespaceNode(ip_route_ipv4, "ipv4");
  auto ip_route_ipv6 = Namespace::New();
  ip_route_ipv6->SetDescription("IPv6 route operations");
  ip_route_ipv6->RegisterNamespaceNode(IpRouteIpv6Add::New(), "add");
  ip_route_ipv6->RegisterNamespaceNode(IpRouteIpv6Remove::New(), "remove");
  ip_route_ipv6->RegisterNamespaceNode(IpRouteIpv6List::New(), "list");
  ip_route->RegisterNamespaceNode(ip_route_ipv6, "ipv6");
  ip->RegisterNamespaceNode(ip_route, "route");
  auto ip_ipsec = Namespace::New();
  ip_ipsec->SetDescription("Operations on Internet Protocol Security");
  auto ip_ipsec_sa = Namespace::New();
  ip_ipsec_sa->SetDescription("Operations pertaining to Security Association");
  ip_ipsec_sa->RegisterNamespaceNode(IpIpsecSAAdd::New(), "add");
  ip_ipsec_sa->RegisterNamespaceNode(IpIpsecSARemove::New(), "remove");
  ip_ipsec_sa->RegisterNamespaceNode(IpIpsecSAList::New(), "list");
  ip_ipsec->RegisterNamespaceNode(ip_ipsec_sa, "sa");
  auto ip_ipsec_sp = Namespace::New();
  ip_ipsec_sp->SetDescription("Operations pertaining to Security Policy");
  ip_ipsec_sp->RegisterNamespaceNode(IpIpsecSPAdd::New(), "add");
  ip_ipsec_sp->RegisterNamespaceNode(IpIpsecSPRemove::New(), "remove");
  ip_ipsec_sp->RegisterNamespaceNode(IpIpsecSPList::New(), "list");
  ip_ipsec->RegisterNamespaceNode(ip_ipsec_sp, "sp");
  ip->RegisterNamespaceNode(ip_ipsec, "ipsec");
  auto ip_interface = Namespace::New();
  ip_interface->SetDescription("Operations having to do with the creation, management and deletion of Orvik network interfaces (orvknic).");
  ip_interface->RegisterNamespaceNode(IpInterfaceAdd::New(), "add");
  ip_interface->RegisterNamespaceNode(IpInterfaceRemove::New(), "remove");
  ip_interface->RegisterNamespaceNode(IpInterfaceList::New(), "list");
  ip_interface->RegisterNamespaceNode(IpInterfaceSet::New(), "set");
  auto ip_interface_ipv4 = Namespace::New();
  ip_interface_ipv4->SetDescription("Commands to get and set IPv4 settings for orvknic.");
  ip_interface_ipv4->RegisterNamespaceNode(IpInterfaceIpv4Get::New(), "get");
  ip_interface_ipv4->RegisterNamespaceNode(IpInterfaceIpv4Set::New(), "set");
  ip_interface->RegisterNamespaceNode(ip_interface_ipv4, "ipv4");
  auto ip_interface_ipv4_address = Namespace::New();
  ip_interface_ipv4_address->SetDescription("Commands for managing IPv4 addresses assigned to Orvik network interfaces.");
  ip_interface_ipv4_address->RegisterNamespaceNode(IpInterfaceIpv4Get::New(), "list");
  ip_interface_ipv4->RegisterNamespaceNode(ip_interface_ipv4_address, "address");
  auto ip_interface_ipv6 = Namespace::New();
  ip_interface_ipv6->SetDescription("Commands to get and set IPv6 settings for orvknic.");
  ip_interface_ipv6->RegisterNamespaceNode(IpInterfaceIpv6Set::New(), "set");
  ip_interface_ipv6->RegisterNamespaceNode(IpInterfaceIpv6Get::New(), "get");
  auto ip_interface_ipv6_address = Namespace::New();
  ip_interface_ipv6_address->SetDescription("Commands to list and update IPv6 addresses assigned to the system.");
  ip_interface_ipv6_address->RegisterNamespaceNode(IpInterfaceIpv6AddressList::New(), "list");
  ip_interface_ipv6_address->RegisterNamespaceNode(IpInterfaceIpv6AddressAdd::New(), "add");
  ip_interface_ipv6_address->RegisterNamespaceNode(IpInterfaceIpv6AddressRemove::New(), "remove");
  ip_interface_ipv6->RegisterNamespaceNode(ip_interface_ipv6_address, "address");
  ip_interface->RegisterNamespaceNode(ip_interface_ipv6, "ipv6");
  auto ip_interface_tag = Namespace::New();
  ip_interface_tag->SetDescription("Commands to add and remove tags on orvknics.");
  ip_interface_tag->RegisterNamespaceNode(IpInterfaceTagAdd::New(), "add");
  ip_interface_tag->RegisterNamespaceNode(IpInterfaceTagRemove::New(), "remove");
  ip_interface_tag->RegisterNamespaceNode(IpInterfaceTagGet::New(), "get");
  ip_interface->RegisterNamespaceNode(ip_interface_tag, "tag");
  ip->RegisterNamespaceNode(ip_interface, "interface");
  network->RegisterNamespaceNode(ip, "ip");
  auto ip_netstack = Namespace::New();
  ip_netstack->SetDescription("Operations having to do with the creation, management and deletion of Orvik Netstack Instances.");
  ip_netstack->RegisterNamespaceNode(IpNetstackInstanceList::New(), "list");
  ip_netstack->RegisterNamespaceNode(IpNetstackInstanceAdd::New(), "add");
  ip_netstack->RegisterNamespaceNode(IpNetstackInstanceRemove::New(), "remove");
  ip_netstack->RegisterNamespaceNode(IpNetstackInstanceGet::New(), "get");
  ip_netstack->RegisterNamespaceNode(IpNetstackInstanceSet::New(), "set");
  ip->RegisterNamespaceNode(ip_netstack, "netstack");
  auto ip_hosts = Namespace::New();
  ip_hosts->SetDescription("Operations pertaining to /etc/hosts");
  ip_hosts->RegisterNamespaceNode(IpHostsList::New(), "list");
  ip_hosts->RegisterNamespaceNode(IpHostsAdd::New(), "add");
  ip_hosts->RegisterNamespaceNode(IpHostsRemove::New(), "remove");
  ip->RegisterNamespaceNode(ip_hosts, "hosts");
  auto multicast = Namespace::New();
  multicast->SetDescription("Operations having to do with multicast");
  network->RegisterNamespaceNode(multicast, "multicast");
  auto multicast_group = Namespace::New();
  multicast_group->SetDescription("Operations to list multicast groups");
  multicast->RegisterNamespaceNode(multicast_group, "group");
  multicast_group->RegisterNamespaceNode(MulticastGroupList::New(), "list");
  auto nic = Namespace::New();
  nic->SetDescription("Operations having to do with the configuration of Network Interface Card and getting and updating the NIC settings.");
  nic->RegisterNamespaceNode(NicList::New(), "list");
  nic->RegisterNamespaceNode(NicUp::New(), "up");
  nic->RegisterNamespaceNode(NicGet::New(), "get");
  nic->RegisterNamespaceNode(NicSet::New(), "set");
  nic->RegisterNamespaceNode(NicDown::New(), "down");
  auto nic_stats = Namespace::New();
  nic_stats->SetDescription("Get packet statistics for a NIC");
  nic_stats->RegisterNamespaceNode(NicStatsGet::New(), "get");
  nic->RegisterNamespaceNode(nic_stats, "stats");
  auto nic_vlan = Namespace::New();
  nic_vlan->SetDescription("Get VLAN information for a NIC");
  nic->RegisterNamespaceNode(nic_vlan, "vlan");
  auto nic_vlan_stats = Namespace::New();
  nic_vlan_stats->SetDescription("Commands to access VLAN statistics for a NIC");
  nic_vlan_stats->RegisterNamespaceNode(NicVlanStatsGet::New(), "get");
  nic_vlan_stats->RegisterNamespaceNode(NicVlanStatsSet::New(), "set");
  nic_vlan->RegisterNamespaceNode(nic_vlan_stats, "stats");
  auto nic_coalesce = Namespace::New();
  nic_coalesce->SetDescription("Commands to access coalesce paramaters for a NIC");
  nic_coalesce->RegisterNamespaceNode(NicCoalesceGet::New(), "get");
  nic_coalesce->RegisterNamespaceNode(NicCoalesceSet::New(), "set");
  nic->RegisterNamespaceNode(nic_coalesce, "coalesce");
  auto nic_coalesce_low = Namespace::New();
  nic_coalesce_low->SetDescription("Commands to access coalesce parameters for a NIC at low packet rate");
  nic_coalesce_low->RegisterNamespaceNode(NicCoalesceLowGet::New(), "get");
  nic_coalesce_low->RegisterNamespaceNode(NicCoalesceLowSet::New(), "set");
  nic_coalesce->RegisterNamespaceNode(nic_coalesce_low, "low");
  auto nic_coalesce_high = Namespace::New();
  nic_coalesce_high->SetDescription("Commands to access coalesce parameters for a NIC at high packet rate");
  nic_coalesce_high->RegisterNamespaceNode(NicCoalesceHighGet::New(), "get");
  nic_coalesce_high->RegisterNamespaceNode(NicCoalesceHighSet::New(), "set");
  nic_coalesce->RegisterNamespaceNode(nic_coalesce_high, "high");
  auto nic_cso = Namespace::New();
  nic_cso->SetDescription("Commands to access checksum offload settings for a NIC");
  nic_cso->RegisterNamespaceNode(NicCsoGet::New(), "get");
  nic_cso->RegisterNamespaceNode(NicCsoSet::New(), "set");
  nic->RegisterNamespaceNode(nic_cso, "cso");
  auto nic_tso = Namespace::New();
  nic_tso->SetDescription("Commands to access TCP segmentation offload settings for a NIC");
  nic_tso->RegisterNamespaceNode(NicTsoGet::New(), "get");
  nic_tso->RegisterNamespaceNode(NicTsoSet::New(), "set");
  nic->RegisterNamespaceNode(nic_tso, "tso");
  auto nic_sg = Namespace::New();
  nic_sg->SetDescription("Commands to access scatter-gather settings for a NIC");
  nic_sg->RegisterNamespaceNode(NicSgGet::New(), "get");
  nic_sg->RegisterNamespaceNode(NicSgSet::New(), "set");
  nic->RegisterNamespaceNode(nic_sg, "sg");
  auto nic_pauseparams = Namespace::New();
  nic_pauseparams->SetDescription("Commands to access pause parameters for a NIC");
  nic_pauseparams->RegisterNamespaceNode(NicPauseParamsList::New(), "list");
  nic_pauseparams->RegisterNamespaceNode(NicPauseParamsSet::New(), "set");
  nic->RegisterNamespaceNode(nic_pauseparams, "pauseParams");
  auto nic_register = Namespace::New();
  nic_register->SetDescription("Commands to access registers for a NIC");
  nic_register->RegisterNamespaceNode(NicRegisterDump::New(), "dump");
  nic->RegisterNamespaceNode(nic_register, "register");
  auto nic_eeprom = Namespace::New();
  nic_eeprom->SetDescription("Commands to access EEPROM for a NIC");
  nic_eeprom->RegisterNamespaceNode(NicEepromDump::New(), "dump");
  nic_eeprom->RegisterNamespaceNode(NicEepromChange::New(), "change");
  nic->RegisterNamespaceNode(nic_eeprom, "eeprom");
  auto nic_negotiate = Namespace::New();
  nic_negotiate->SetDescription("Commands to access negotiation feature on a NIC");
  nic_negotiate->RegisterNamespaceNode(NicNegotiationRestart::New(), "restart");
  nic->RegisterNamespaceNode(nic_negotiate, "negotiate");
  auto nic_selftest = Namespace::New();
  nic_selftest->SetDescription("Commands to access self test feature on a NIC");
  nic_selftest->RegisterNamespaceNode(NicSelfTestRun::New(), "run");
  nic->RegisterNamespaceNode(nic_selftest, "selftest");
  auto nic_queue = Namespace::New();
  nic_queue->SetDescription("Commands to access RX/TX netqueue features on a NIC");
  nic->RegisterNamespaceNode(nic_queue, "queue");
  auto nic_queue_loadbalancer = Namespace::New();
  nic_queue_loadbalancer->SetDescription("Commands to access load balancer features of netqueue");
  nic_queue->RegisterNamespaceNode(nic_queue_loadbalancer, "loadbalancer");
  nic_queue_loadbalancer->RegisterNamespaceNode(NicQueueLbSettingList::New(), "list");
  nic_queue_loadbalancer->RegisterNamespaceNode(NicQueueLbSettingSet::New(), "set");
  auto nic_queue_loadbalancer_state = Namespace::New();
  nic_queue_loadbalancer_state->SetDescription("Commands to access load balancer state on a NIC");
  nic_queue_loadbalancer_state->RegisterNamespaceNode(NicQueueLbStateList::New(), "list");
  nic_queue_loadbalancer_state->RegisterNamespaceNode(NicQueueLbStateSet::New(), "set");
  nic_queue_loadbalancer->RegisterNamespaceNode(nic_queue_loadbalancer_state, "state");
  auto nic_queue_loadbalancer_plugin = Namespace::New();
  nic_queue_loadbalancer_plugin->SetDescription("Commands to access load balancer plugins on a NIC");
  nic_queue_loadbalancer_plugin->RegisterNamespaceNode(NicQueueLbPluginList::New(), "list");
  nic_queue_loadbalancer_plugin->RegisterNamespaceNode(NicQueueLbPluginSet::New(), "set");
  nic_queue_loadbalancer->RegisterNamespaceNode(nic_queue_loadbalancer_plugin, "plugin");
  auto nic_queue_count = Namespace::New();
  nic_queue_count->SetDescription("Commands to access netqueue count on a NIC");
  nic_queue_count->RegisterNamespaceNode(NicQueueCountGet::New(), "get");
  nic_queue_count->RegisterNamespaceNode(NicQueueCountSet::New(), "set");
  nic_queue->RegisterNamespaceNode(nic_queue_count, "count");
  auto nic_queue_filterclass = Namespace::New();
  nic_queue_filterclass->SetDescription("Commands to access supported filter class");
  nic_queue_filterclass->RegisterNamespaceNode(NicQueueFilterClassList::New(), "list");
  nic_queue->RegisterNamespaceNode(nic_queue_filterclass, "filterclass");
  auto nic_software = Namespace::New();
  nic_software->SetDescription("Commands to access NIC feature software simulation settings");
  nic_software->RegisterNamespaceNode(NicSoftwareList::New(), "list");
  nic_software->RegisterNamespaceNode(NicSoftwareSet::New(), "set");
  nic->RegisterNamespaceNode(nic_software, "software");
  auto nic_ring = Namespace::New();
  nic_ring->SetDescription("Commands to access NIC RX/TX ring buffer parameters");
  auto nic_ring_preset = Namespace::New();
  nic_ring_preset->SetDescription("Commands to access preset maximums for NIC RX/TX ring buffer parameters.");
  nic_ring_preset->RegisterNamespaceNode(NicRingPresetGet::New(), "get");
  nic_ring->RegisterNamespaceNode(nic_ring_preset, "preset");
  auto nic_ring_current = Namespace::New();
  nic_ring_current->SetDescription("Commands to access current NIC RX/TX ring buffer parameters");
  nic_ring_current->RegisterNamespaceNode(NicRingCurrentGet::New(), "get");
  nic_ring_current->RegisterNamespaceNode(NicRingCurrentSet::New(), "set");
  nic_ring->RegisterNamespaceNode(nic_ring_current, "current");
  nic->RegisterNamespaceNode(nic_ring, "ring");
  auto nic_hwcap = Namespace::New();
  nic_hwcap->SetDescription("Commands to access hardware capabilities on a NIC.");
  auto nic_hwcap_supported = Namespace::New();
  nic_hwcap_supported->SetDescription("Commands to access supported hardware capabilities of physical NICs.");
  nic_hwcap_supported->RegisterNamespaceNode(NicHwCapSupportedList::New(), "list");
  nic_hwcap->RegisterNamespaceNode(nic_hwcap_supported, "supported");
  auto nic_hwcap_activated = Namespace::New();
  nic_hwcap_activated->SetDescription("Commands to access activated hardware capabilities of physical NICs.");
  nic_hwcap_activated->RegisterNamespaceNode(NicHwCapActivatedList::New(), "list");
  nic_hwcap->RegisterNamespaceNode(nic_hwcap_activated, "activated");
  nic->RegisterNamespaceNode(nic_hwcap, "hwCap");
  auto nic_dcb = Namespace::New();
  nic_dcb->SetDescription("Commands regarding DCB (Data Center Bridging) protocol.");
  auto nic_dcb_status = Namespace::New();
  nic_dcb_status->SetDescription("Status information for DCB (Data Center Briding) protocol.");
  nic_dcb_status->RegisterNamespaceNode(NicDcbStatusGet::New(), "get");
  nic_dcb->RegisterNamespaceNode(nic_dcb_status, "status");
  nic->RegisterNamespaceNode(nic_dcb, "dcb");
  auto nic_attachment = Namespace::New();
  nic_attachment->SetDescription("Commands to access attachment info for a NIC.");
  nic_attachment->RegisterNamespaceNode(NicAttachmentAdd::New(), "add");
  nic_attachment->RegisterNamespaceNode(NicAttachmentRemove::New(), "remove");
  nic_attachment->RegisterNamespaceNode(NicAttachmentList::New(), "list");
  nic->RegisterNamespaceNode(nic_attachment, "attachment");
  network->RegisterNamespaceNode(nic, "nic");
  auto sriovnic = Namespace::New();
  sriovnic->SetDescription("Operations having to do with the configuration of SRIOV enabled Network Interface Card and getting and updating the NIC settings.");
  sriovnic->RegisterNamespaceNode(SriovNicList::New(), "list");
  auto sriovnic_vf = Namespace::New();
  sriovnic_vf->SetDescription("Operations related to VFs of a SRIOV capable pNIC");
  sriovnic_vf->RegisterNamespaceNode(VfList::New(), "list");
  sriovnic_vf->RegisterNamespaceNode(VfStats::New(), "stats");
  sriovnic->RegisterNamespaceNode(sriovnic_vf, "vf");
  network->RegisterNamespaceNode(sriovnic, "sriovnic");
  auto vswitch = Namespace::New();
  vswitch->SetDescription("Commands to list and manipulate Virtual Switches on an Halden host.");
  auto vswitch_standard = Namespace::New();
  vswitch_standard->SetDescription("Commands to list and manipulate Legacy Virtual Switches on an Halden host.");
  vswitch_standard->RegisterNamespaceNode(VirtualSwitchStandardAdd::New(), "add");
  vswitch_standard->RegisterNamespaceNode(VirtualSwitchStandardSet::New(), "set");
  vswitch_standard->RegisterNamespaceNode(VirtualSwitchStandardList::New(), "list");
  vswitch_standard->RegisterNamespaceNode(VirtualSwitchStandardRemove::New(), "remove");
  auto vswitch_standard_uplink = Namespace::New();
  vswitch_standard_uplink->SetDescription("Commands to add and remove uplink on given virtual switch.");
  vswitch_standard_uplink->RegisterNamespaceNode(VirtualSwitchStandardUplinkAdd::New(), "add");
  vswitch_standard_uplink->RegisterNamespaceNode(VirtualSwitchStandardUplinkRemove::New(), "remove");
  vswitch_standard->RegisterNamespaceNode(vswitch_standard_uplink, "uplink");
  auto vswitch_standard_policy = Namespace::New();
  vswitch_standard_policy->SetDescription("Commands to manipulate network policy settings governing the given virtual switch.");
  auto vswitch_standard_policy_shaping = Namespace::New();
  vswitch_standard_policy_shaping->SetDescription("Commands to manipulate shaping policy setting for the given virtual switch.");
  vswitch_standard_policy_shaping->RegisterNamespaceNode(VirtualSwitchStandardPolicyShapingGet::New(), "get");
  vswitch_standard_policy_shaping->RegisterNamespaceNode(VirtualSwitchStandardPolicyShapingSet::New(), "set");
  vswitch_standard_policy->RegisterNamespaceNode(vswitch_standard_policy_shaping, "shaping");
  auto vswitch_standard_policy_security = Namespace::New();
  vswitch_standard_policy_security->SetDescription("Commands to manipulate security policy setting for the given virtual switch.");
  vswitch_standard_policy_security->RegisterNamespaceNode(VirtualSwitchStandardPolicySecurityGet::New(), "get");
  vswitch_standard_policy_security->RegisterNamespaceNode(VirtualSwitchStandardPolicySecuritySet::New(), "set");
  vswitch_standard_policy->RegisterNamespaceNode(vswitch_standard_policy_security, "security");
  auto vswitch_standard_policy_failover = Namespace::New();
  vswitch_standard_policy_failover->SetDescription("Commands to manipulate failover policy setting for the given virtual switch.");
  vswitch_standard_policy_failover->RegisterNamespaceNode(VirtualSwitchStandardPolicyFailoverGet::New(), "get");
  vswitch_standard_policy_failover->RegisterNamespaceNode(VirtualSwitchStandardPolicyFailoverSet::New(), "set");
  vswitch_standard_policy->RegisterNamespaceNode(vswitch_standard_policy_failover, "failover");
  vswitch_standard->RegisterNamespaceNode(vswitch_standard_policy, "policy");
  auto vswitch_standard_portgroup = Namespace::New();
  vswitch_standard_portgroup->SetDescription("Commands to list and manipulate Port Groups on an Halden host.");
  vswitch_standard_portgroup->RegisterNamespaceNode(VirtualSwitchPortGroupList::New(), "list");
  vswitch_standard_portgroup->RegisterNamespaceNode(VirtualSwitchPortGroupAdd::New(), "add");
  vswitch_standard_portgroup->RegisterNamespaceNode(VirtualSwitchPortGroupRemove::New(), "remove");
  vswitch_standard_portgroup->RegisterNamespaceNode(VirtualSwitchPortGroupSet::New(), "set");
  auto vswitch_standard_portgroup_policy = Namespace::New();
  vswitch_standard_portgroup_policy->SetDescription("Commands to manipulate network policy settings governing the given portgroup.");
  auto vswitch_standard_portgroup_policy_shaping = Namespace::New();
  vswitch_standard_portgroup_policy_shaping->SetDescription("Commands to manipulate shaping policy setting for the given portgroup.");
  vswitch_standard_portgroup_policy_shaping->RegisterNamespaceNode(VirtualSwitchPortGroupPolicyShapingGet::New(), "get");
  vswitch_standard_portgroup_policy_shaping->RegisterNamespaceNode(VirtualSwitchPortGroupPolicyShapingSet::New(), "set");
  vswitch_standard_portgroup_policy->RegisterNamespaceNode(vswitch_standard_portgroup_policy_shaping, "shaping");
  auto vswitch_standard_portgroup_policy_failover = Namespace::New();
  vswitch_standard_portgroup_policy_failover->SetDescription("Commands to manipulate failover policy setting for the given portgroup.");
  vswitch_standard_portgroup_policy_failover->RegisterNamespaceNode(VirtualSwitchPortGroupPolicyFailoverGet::New(), "get");
  vswitch_standard_portgroup_policy_failover->RegisterNamespaceNode(VirtualSwitchPortGroupPolicyFailoverSet::New(), "set");
  vswitch_standard_portgroup_policy->RegisterNamespaceNode(vswitch_standard_portgroup_policy_failover, "failover");
  auto vswitch_standard_portgroup_policy_security = Namespace::New();
  vswitch_standard_portgroup_policy_security->SetDescription("Commands to manipulate security policy setting for the given portgroup.");
  vswitch_standard_portgroup_policy_security->RegisterNamespaceNode(VirtualSwitchPortGroupPolicySecurityGet::New(), "get");
  vswitch_standard_portgroup_policy_security->RegisterNamespaceNode(VirtualSwitchPortGroupPolicySecuritySet::New(), "set");
  vswitch_standard_portgroup_policy->RegisterNamespaceNode(vswitch_standard_portgroup_policy_security, "security");
  vswitch_standard_portgroup->RegisterNamespaceNode(vswitch_standard_portgroup_policy, "policy");
  vswitch_standard->RegisterNamespaceNode(vswitch_standard_portgroup, "portgroup");
  vswitch->RegisterNamespaceNode(vswitch_standard, "standard");
  auto vswitch_dvs = Namespace::New();
  vswitch_dvs->SetDescription("Commands to retrieve Distributed Virtual Switch information");
  auto vswitch_dvs_corvane = Namespace::New();
  vswitch_dvs_corvane->SetDescription("Commands to retrieve Corvane Tamarisk Distributed Switch information");
  vswitch_dvs_corvane->RegisterNamespaceNode(VirtualSwitchDVSCorvaneList::New(), "list");
  vswitch_dvs->RegisterNamespaceNode(vswitch_dvs_corvane, "corvane");
  vswitch->RegisterNamespaceNode(vswitch_dvs, "dvs");
  network->RegisterNamespaceNode(vswitch, "vswitch");
  auto firewall = Namespace::New();
  firewall->SetDescription("A set of commands for firewall related operations");
  firewall->RegisterNamespaceNode(FirewallGet::New(), "get");
  firewall->RegisterNamespaceNode(FirewallSet::New(), "set");
  firewall->RegisterNamespaceNode(FirewallLoad::New(), "load");
  firewall->RegisterNamespaceNode(FirewallRefresh::New(), "refresh");
  firewall->RegisterNamespaceNode(FirewallUnload::New(), "unload");
  auto firewall_ruleset = Namespace::New();
  firewall_ruleset->SetDescription("Commands to list and update firewall ruleset configuration");
  firewall_ruleset->RegisterNamespaceNode(FirewallRulesetList::New(), "list");
  firewall_ruleset->RegisterNamespaceNode(FirewallRulesetSet::New(), "set");
  auto firewall_ruleset_client = Namespace::New();
  firewall_ruleset_client->SetDescription("Commands related to firewall ruleset clients");
  firewall_ruleset_client->RegisterNamespaceNode(FirewallRulesetClientGet::New(), "get");
  firewall_ruleset_client->RegisterNamespaceNode(FirewallRulesetClientAdd::New(), "add");
  firewall_ruleset_client->RegisterNamespaceNode(FirewallRulesetClientRemove::New(), "remove");
  firewall_ruleset->RegisterNamespaceNode(firewall_ruleset_client, "client");
  auto firewall_ruleset_rule = Namespace::New();
  firewall_ruleset_rule->SetDescription("Commands to list rules in the ruleset");
  firewall_ruleset_rule->RegisterNamespaceNode(FirewallRulesetRuleList::New(), "list");
  firewall_ruleset->RegisterNamespaceNode(firewall_ruleset_rule, "rule");
  auto firewall_ruleset_allowedip = Namespace::New();
  firewall_ruleset_allowedip->SetDescription("Commands to list and add/remove allowedip on ruleset");
  firewall_ruleset_allowedip->RegisterNamespaceNode(FirewallRulesetAllowedipList::New(), "list");
  firewall_ruleset_allowedip->RegisterNamespaceNode(FirewallRulesetAllowedipAdd::New(), "add");
  firewall_ruleset_allowedip->RegisterNamespaceNode(FirewallRulesetAllowedipRemove::New(), "remove");
  firewall_ruleset->RegisterNamespaceNode(firewall_ruleset_allowedip, "allowedip");
  firewall->RegisterNamespaceNode(firewall_ruleset, "ruleset");
  network->RegisterNamespaceNode(firewall, "firewall");
  auto port = Namespace::New();
  port->SetDescription("Commands to get information about a port");
  network->RegisterNamespaceNode(port, "port");
  auto port_stats = Namespace::New();
  port_stats->SetDescription("Commands to get port statistics");
  port_stats->RegisterNamespaceNode(PortStatsGet::New(), "get");
  port->RegisterNamespaceNode(port_stats, "stats");
  auto port_filter = Namespace::New();
  port_filter->SetDescription("Commands to get port filter information");
  port->RegisterNamespaceNode(port_filter, "filter");
  auto port_filter_stats = Namespace::New();
  port_filter_stats->SetDescription("Commands to get port filter statistics");
  port_filter_stats->RegisterNamespaceNode(PortFilterStatsGet::New(), "get");
  port_filter->RegisterNamespaceNode(port_filter_stats, "stats");
  auto vm = Namespace::New();
  vm->SetDescription("A set of commands for VM related operations");
  network->RegisterNamespaceNode(vm, "vm");
  vm->RegisterNamespaceNode(VMList::New(), "list");
  auto vm_port = Namespace::New();
  vm_port->SetDescription("Command to list ports of a given VM");
  vm_port->RegisterNamespaceNode(VMPortList::New(), "list");
  vm->RegisterNamespaceNode(vm_port, "port");
  auto ens = Namespace::New();
  ens->SetDescription("Commands to list and manipulate Enhanced Networking Stack (ENS) feature on virtual switch.");
  auto ens_maxlcores = Namespace::New();
  ens_maxlcores->SetDescription("Commands to access maximum number of ENS contexts.");
  ens_maxlcores->RegisterNamespaceNode(EnsMaxlcoresGet::New(), "get");
  ens_maxlcores->RegisterNamespaceNode(EnsMaxlcoresSet::New(), "set");
  ens->RegisterNamespaceNode(ens_maxlcores, "maxLcores");
  auto ens_lcore = Namespace::New();
  ens_lcore->SetDescription("Commands to list and manipulate ENS context parameters.");
  ens_lcore->RegisterNamespaceNode(EnsLcoreAdd::New(), "add");
  ens_lcore->RegisterNamespaceNode(EnsLcoreRemove::New(), "remove");
  ens_lcore->RegisterNamespaceNode(EnsLcoreList::New(), "list");
  auto ens_lcore_switch = Namespace::New();
  ens_lcore_switch->SetDescription("Commands to access switch associated with given ENS context.");
  ens_lcore_switch->RegisterNamespaceNode(EnsLcoreSwitchGet::New(), "get");
  ens_lcore_switch->RegisterNamespaceNode(EnsLcoreSwitchAdd::New(), "add");
  ens_lcore_switch->RegisterNamespaceNode(EnsLcoreSwitchRemove::New(), "remove");
  ens_lcore->RegisterNamespaceNode(ens_lcore_switch, "switch");
  auto ens_lcore_affinity = Namespace::New();
  ens_lcore_affinity->SetDescription("Commands to access affinity for a given ENS context.");
  ens_lcore_affinity->RegisterNamespaceNode(EnsLcoreAffinityGet::New(), "get");
  ens_lcore_affinity->RegisterNamespaceNode(EnsLcoreAffinitySet::New(), "set");
  ens_lcore->RegisterNamespaceNode(ens_lcore_affinity, "affinity");
  ens->RegisterNamespaceNode(ens_lcore, "lcore");
  network->RegisterNamespaceNode(ens, "ens");
  auto vswitch_dvs_corvane_lacp = Namespace::New();
  vswitch_dvs_corvane_lacp->SetDescription("A set of commands for LACP related operations");
  auto vswitch_dvs_corvane_lacp_config = Namespace::New();
  vswitch_dvs_corvane_lacp_config->SetDescription("Command to get LACP configuration");
  vswitch_dvs_corvane_lacp_config->RegisterNamespaceNode(LacpGetConfig::New(), "get");
  vswitch_dvs_corvane_lacp->RegisterNamespaceNode(vswitch_dvs_corvane_lacp_config, "config");
  auto vswitch_dvs_corvane_lacp_status = Namespace::New();
  vswitch_dvs_corvane_lacp_status->SetDescription("Command to get LACP port status");
  vswitch_dvs_corvane_lacp_status->RegisterNamespaceNode(LacpGetStatus::New(), "get");
  vswitch_dvs_corvane_lacp->RegisterNamespaceNode(vswitch_dvs_corvane_lacp_status, "status");
  auto vswitch_dvs_corvane_lacp_stats = Namespace::New();
  vswitch_dvs_corvane_lacp_stats->SetDescription("Command to get LACP protocol statistics");
  vswitch_dvs_corvane_lacp_stats->RegisterNamespaceNode(LacpGetStats::New(), "get");
  vswitch_dvs_corvane_lacp->RegisterNamespaceNode(vswitch_dvs_corvane_lacp_stats, "stats");
  auto vswitch_dvs_corvane_lacp_timeout = Namespace::New();
  vswitch_dvs_corvane_lacp_timeout->SetDescription("Command to set LACP LAG timeout");
  vswitch_dvs_corvane_lacp_timeout->RegisterNamespaceNode(LacpSetTimeout::New(), "set");
  vswitch_dvs_corvane_lacp->RegisterNamespaceNode(vswitch_dvs_corvane_lacp_timeout, "timeout");
  vswitch_dvs_corvane->RegisterNamespaceNode(vswitch_dvs_corvane_lacp, "lacp");
  static_cast<NamespaceNode*>(*root)->RegisterNamespaceNode(network, "network");
}
