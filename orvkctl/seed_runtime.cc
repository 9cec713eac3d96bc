#include "host_model.h"

namespace OrvkCtl::Sim {

void SeedRuntime(HostModel&) {}

}  // namespace OrvkCtl::Sim
