// JSON form of the vswitch area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

void to_json(nlohmann::json& j, VswitchArea const&) { j = nlohmann::json::object(); }
void from_json(nlohmann::json const&, VswitchArea&) {}

}  // namespace OrvkCtl::Sim
