#include "host_model.h"

namespace OrvkCtl::Sim {

void SeedVswitch(HostModel&) {}

}  // namespace OrvkCtl::Sim
