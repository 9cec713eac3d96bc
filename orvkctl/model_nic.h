// Physical NICs: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

struct NicArea {};

}  // namespace OrvkCtl::Sim
