// Fault injection: makes a named host operation throw HostCtlException with a
// chosen text, so the callers' failure paths can be exercised.
//
// Operations are named "Class::Operation", e.g. "SystemInfoImpl::SetFirewallEnabled".
// Faults come from SetFaultForTest, and from the environment variable
// TOOLBASE_HOST_FAULTS (read once): lines of "Class::Operation=text"; the name
// "*" matches every operation.
#pragma once

#include <string>

namespace OrvkCtl::Sim {

// Throws the injected HostCtlException if a fault is set for `operation`.
// Every host operation calls this first.
void CheckFault(char const* operation);

void SetFaultForTest(std::string const& operation, std::string const& text);
void ClearFaultsForTest();

}  // namespace OrvkCtl::Sim
