// Whether a name is that of a physical NIC: the test behind every uplink name
// a switch takes.
#include "fault.h"
#include "host_backend.h"
#include "hostctl/pnic.h"
#include "vswitch_policy.h"

namespace OrvkCtl::Sim {

bool IsPhysicalNic(HostModel const& host, std::string const& name) {
  return FindPnic(host.nic, name) != nullptr;
}

}  // namespace OrvkCtl::Sim

namespace OrvkCtl::Network {

bool PnicImpl::IsValidPnic(std::string const& name) {
  Sim::CheckFault(Sim::Operation::PnicImpl_IsValidPnic);
  return Sim::IsPhysicalNic(Sim::ReadHost(Sim::kAreaNic), name);
}

}  // namespace OrvkCtl::Network
