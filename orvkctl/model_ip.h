// The host's own IP stack: netstack instances, interfaces, routes, DNS, hosts file, IPsec: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

struct IpArea {};

}  // namespace OrvkCtl::Sim
