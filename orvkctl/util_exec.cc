// Host programs: the simulated host records the command lines it is asked to
// run. A fault injected for "OrvkCtl_Exec" makes the run fail with status 1.
#include "fault.h"
#include "host_backend.h"
#include "hostctl/lib.h"
#include "hostctl/util.h"

namespace OrvkCtl::Util {

int OrvkCtl_Exec(std::string const& commandLine, bool, bool, bool) {
  try {
    Sim::CheckFault(Sim::Operation::Exec);
    Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
      host.ip.executed_commands.push_back(commandLine);
    });
  } catch (HostCtl::Lib::HostCtlException const&) {
    return 1;
  }
  return 0;
}

std::string MakeChildRpOrvkOption(int pool) {
  return "--resource-pool=host/system/child-" + std::to_string(pool);
}

}  // namespace OrvkCtl::Util
