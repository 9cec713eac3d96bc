// Run-time views: VMs, ports, ENS: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

struct RuntimeArea {};

}  // namespace OrvkCtl::Sim
