// Virtual switching: standard switches, port groups, distributed switches: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

struct VswitchArea {};

}  // namespace OrvkCtl::Sim
