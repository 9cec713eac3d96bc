// Standard switches: Linux bridges, their uplinks the NICs enslaved to them;
// port groups are the backend's own names for groups of a bridge's ports.
#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

namespace {

void ReadSwitches(HostModel& host) {
  host.vswitch.distributed_switches.clear();
}

void PlanSwitches(HostModel const&, HostModel const&, Plan&) {}

void KeepSwitches(HostModel const&, HostModel&) {}

}  // namespace

Family VswitchFamily() {
  return {"vswitch", Sim::kAreaVswitch, ReadSwitches, PlanSwitches, KeepSwitches};
}

}  // namespace OrvkCtl::Linux
