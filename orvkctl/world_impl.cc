// Worlds of the simulated host: the VMs that lead switch ports.
#include "fault.h"
#include "host_backend.h"
#include "hostctl/world.h"

namespace OrvkCtl::Resource {
namespace {

Sim::WorldState const& ReadWorld(unsigned long id) {
  for (auto const& world : Sim::ReadHost(Sim::kAreaRuntime).runtime.worlds) {
    if (world.id == id) return world;
  }
  throw HostCtl::Lib::HostCtlException("World " + std::to_string(id) + " not found");
}

}  // namespace

WorldImpl::WorldImpl(unsigned long id) : id_(id) {}
WorldImpl::~WorldImpl() = default;

void WorldImpl::Refresh() {
  Sim::CheckFault(Sim::Operation::WorldImpl_Refresh);
  ReadWorld(id_);
}

std::string WorldImpl::GetWorldName() {
  Sim::CheckFault(Sim::Operation::WorldImpl_GetWorldName);
  return ReadWorld(id_).name;
}

}  // namespace OrvkCtl::Resource
