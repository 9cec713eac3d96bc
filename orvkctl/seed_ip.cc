#include "host_model.h"

namespace OrvkCtl::Sim {

void SeedIp(HostModel&) {}

}  // namespace OrvkCtl::Sim
