// The host's worlds (processes and VM executables) by id.
#pragma once

#include <string>

#include "hostctl/lib.h"

namespace OrvkCtl::Resource {

// Making the object reads nothing.
class ResourceInfoImpl : public virtual Lib::OrvkCtlObject {
 public:
  ResourceInfoImpl();
  ~ResourceInfoImpl() override;
  void Refresh() override;

  // The name of the world; empty for an id the host does not run (a world
  // that has ended). Throws HostCtl::Lib::HostCtlException when the host
  // fails.
  std::string GetWorldName(unsigned long worldId);
};

}  // namespace OrvkCtl::Resource
