// The set of ports behind a virtual switch.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

class Port;

// The packets of one VLAN on one uplink.
struct UplinkVlanStats {
  uint16_t vlanId = 0;
  uint64_t packetsReceived = 0;
  uint64_t packetsSent = 0;
};

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
  // The switch's ports that have a client (uplinks included), in the
  // switch's order; owned by the caller.
  virtual std::vector<std::unique_ptr<Port>> GetPorts() = 0;
  // Per-VLAN packet counters of one of the switch's connected uplinks (as
  // GetConnectedUplinks names them), one element per VLAN seen, by ascending
  // VLAN ID, owned by the caller. Empty while collection is off for that
  // uplink. Refuses a name that is not a connected uplink of the switch.
  virtual std::vector<std::unique_ptr<UplinkVlanStats>> GetUplinkVlanStats(
      std::string const& uplink);
  // Turns collection on or off for a connected uplink. Turning it on starts
  // the counters at zero for VLAN 0 and each VLAN of the switch's port
  // groups; turning it off drops them. Setting the state in force changes
  // nothing.
  virtual void SetUplinkVlanStats(std::string const& uplink, bool enabled);

  // The number of ports a new standard switch gets when none is asked for.
  static const int32_t DEF_NUM_PORTS;
};

}  // namespace HostCtl::Network
