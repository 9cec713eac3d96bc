// JSON form of the runtime area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

void to_json(nlohmann::json& j, RuntimeArea const&) { j = nlohmann::json::object(); }
void from_json(nlohmann::json const&, RuntimeArea&) {}

}  // namespace OrvkCtl::Sim
