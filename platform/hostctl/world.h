// Worlds: the host's schedulable entities. A running VM is led by one world,
// whose id the switch ports of the VM carry.
#pragma once

#include <string>

#include "hostctl/lib.h"

namespace OrvkCtl::Resource {

// One world, by id. Making the object reads nothing.
class WorldImpl : public virtual Lib::OrvkCtlObject {
 public:
  explicit WorldImpl(unsigned long id);
  ~WorldImpl() override;
  // Checks that the world exists; throws HostCtlException if not.
  void Refresh() override;

  // The world's name: a five-character prefix of the scheduler's ("vmm0:")
  // and the VM's display name. Throws for an unknown world.
  std::string GetWorldName();

 private:
  unsigned long id_;
};

}  // namespace OrvkCtl::Resource
