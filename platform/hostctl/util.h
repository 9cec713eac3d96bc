// Running host programs on behalf of a command.
#pragma once

#include <string>

namespace OrvkCtl::Util {

// Runs `commandLine` through the host's shell and returns its exit status, 0
// on success. `wait` waits for it to end, `quiet` drops its output and
// `inheritEnvironment` passes the caller's environment on. Failures are told
// by the status only; this function does not throw. The simulated host
// records the line in its state and runs nothing.
int OrvkCtl_Exec(std::string const& commandLine, bool inheritEnvironment, bool wait, bool quiet);

// The option word that puts a child process into resource pool `pool`.
std::string MakeChildRpOrvkOption(int pool);

}  // namespace OrvkCtl::Util
