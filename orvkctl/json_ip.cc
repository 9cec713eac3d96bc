// JSON form of the ip area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

void to_json(nlohmann::json& j, IpArea const&) { j = nlohmann::json::object(); }
void from_json(nlohmann::json const&, IpArea&) {}

}  // namespace OrvkCtl::Sim
