// Fault injection: makes a host operation throw HostCtlException with a
// chosen text, so the callers' failure paths can be exercised.
//
// Operations are declared in host_operations.h, which gives each its name,
// "Class::Operation", e.g. "SystemInfoImpl::SetFirewallEnabled". Faults come
// from SetFaultForTest, and from the environment variable
// TOOLBASE_HOST_FAULTS (read at the first host operation): lines of
// "Class::Operation=text"; the name "*" matches every operation. A name that
// is no operation's is refused: with the environment variable, every host
// operation then throws HostCtlException saying so.
#pragma once

#include <string>
#include <string_view>

#include "host_operations.h"

namespace OrvkCtl::Sim {

// Throws the injected HostCtlException if a fault is set for `operation`.
// Every host operation calls this first.
void CheckFault(Operation operation);

// The operation of that fault name, or false.
bool FindOperation(std::string_view name, Operation& out);

// Throws HostCtlException when `operation` is neither an operation's name
// nor "*".
void SetFaultForTest(std::string const& operation, std::string const& text);
void ClearFaultsForTest();

}  // namespace OrvkCtl::Sim
