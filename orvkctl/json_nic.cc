// JSON form of the nic area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(LinkModeState, speed, duplex, media)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PauseState, supported, auto_negotiation, rx, tx,
                                                rx_resolution, tx_resolution)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    PnicState, name, pci_address, pci_vendor, pci_device, pseudo_descriptor, driver, driver_version,
    firmware_version, mac, mtu, admin_up, carrier, speed, duplex, supported_ports, port,
    supported_link_modes, advertised_link_modes, supports_auto_negotiation,
    advertised_auto_negotiation, auto_negotiation, phy_address, transceiver, supports_wake_on,
    supported_wake_on, wake_on, supports_message_level, message_level, virtual_address, pause,
    negotiation_restarts)

void to_json(nlohmann::json& j, NicArea const& area) {
  j = nlohmann::json::object();
  j["pnics"] = area.pnics;
}

void from_json(nlohmann::json const& j, NicArea& area) {
  area = NicArea();
  if (j.contains("pnics")) j.at("pnics").get_to(area.pnics);
}

}  // namespace OrvkCtl::Sim
