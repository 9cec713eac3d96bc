// JSON form of the nic area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

void to_json(nlohmann::json& j, NicArea const&) { j = nlohmann::json::object(); }
void from_json(nlohmann::json const&, NicArea&) {}

}  // namespace OrvkCtl::Sim
