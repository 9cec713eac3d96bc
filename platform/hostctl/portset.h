// The set of ports behind a virtual switch.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

// Every operation reads the host and throws Lib::HostCtlException when the
// portset no longer exists or the host cannot be read.
class Portset : public virtual Lib::HostCtlObject {
 public:
  ~Portset() override;

  virtual std::string GetName() = 0;
  // The names of all uplink ports of the switch, physical or not.
  virtual std::vector<std::string> GetUplinks() = 0;
  virtual int GetNumPorts() = 0;
  // The physical NICs connected to the switch as uplinks, in the switch's
  // own order.
  virtual std::vector<std::string> GetConnectedUplinks() = 0;
  virtual int GetNumUsedPorts() = 0;
  // The kind of the switch's implementation, as a word.
  virtual std::string GetClass() = 0;

  // The number of ports a new standard switch gets when none is asked for.
  static const int32_t DEF_NUM_PORTS;
};

}  // namespace HostCtl::Network
