// The set of ports behind a virtual switch.
#pragma once

#include <cstdint>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class Portset : public virtual Lib::HostCtlObject {
 public:
  ~Portset() override;

  // The number of ports a new standard switch gets when none is asked for.
  static const int32_t DEF_NUM_PORTS;
};

}  // namespace HostCtl::Network
