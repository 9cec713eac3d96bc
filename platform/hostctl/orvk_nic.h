// One Orvik network interface: a network endpoint of the host itself.
#pragma once

#include <cstdint>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class OrvkNic : public virtual Lib::HostCtlObject {
 public:
  ~OrvkNic() override;

  // Bounds of an interface's MTU in bytes, both included.
  static const int32_t MIN_MTU;
  static const int32_t MAX_MTU;
};

}  // namespace HostCtl::Network
