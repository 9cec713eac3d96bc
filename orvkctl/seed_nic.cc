#include "host_model.h"

namespace OrvkCtl::Sim {

void SeedNic(HostModel&) {}

}  // namespace OrvkCtl::Sim
