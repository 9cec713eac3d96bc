// JSON conversion of each area of the host model, for host_json.cc. Each
// json_<area>.cc defines its area's pair; NLOHMANN_DEFINE_TYPE_* macros serve
// for the records inside an area.
#pragma once

#include <nlohmann/json.hpp>

#include "host_model.h"

namespace OrvkCtl::Sim {

void to_json(nlohmann::json& j, NicArea const& area);
void from_json(nlohmann::json const& j, NicArea& area);
void to_json(nlohmann::json& j, IpArea const& area);
void from_json(nlohmann::json const& j, IpArea& area);
void to_json(nlohmann::json& j, VswitchArea const& area);
void from_json(nlohmann::json const& j, VswitchArea& area);
void to_json(nlohmann::json& j, RuntimeArea const& area);
void from_json(nlohmann::json const& j, RuntimeArea& area);

}  // namespace OrvkCtl::Sim
