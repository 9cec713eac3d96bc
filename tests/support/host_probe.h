// A read-only look at the host through the host control library's public
// interfaces, for tests that check what a command left behind without
// reaching into the simulated store.
#pragma once

#include <string>
#include <vector>

namespace TestSupport::Probe {

// The tags of the Orvik interface `name`, in the host's order; empty for an
// interface the host does not have.
std::vector<int> InterfaceTags(std::string const& name);

}  // namespace TestSupport::Probe
