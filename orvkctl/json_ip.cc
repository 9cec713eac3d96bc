// JSON form of the ip area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(RouteState, network, gateway, interface, source)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetstackRoutes, netstack, ipv4, ipv6,
                                                ipv4_config_gateway, ipv6_config_gateway)

void to_json(nlohmann::json& j, IpArea const& area) {
  j = nlohmann::json::object();
  j["routes"] = area.routes;
}

void from_json(nlohmann::json const& j, IpArea& area) {
  area = IpArea();
  if (j.contains("routes")) j.at("routes").get_to(area.routes);
}

}  // namespace OrvkCtl::Sim
