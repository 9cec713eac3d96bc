// Data Center Bridging state of one physical NIC.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
struct DcbState;
}

namespace HostCtl::Network {

// What the device's DCB engine offers.
struct DcbCapabilities {
  uint8_t priorityGroup = 0;        // bool
  uint8_t priorityFlowControl = 0;  // bool
  uint8_t upToTcMap = 0;            // bool
  uint8_t pgTrafficClasses = 0;
  uint8_t pfcTrafficClasses = 0;
};

// The IEEE ETS configuration; every array holds one byte per traffic class.
struct DcbIeeeEtsConfig {
  uint8_t willing = 0;
  uint8_t capacity = 0;
  std::string creditBasedShaperSupported;
  uint8_t txBandwidth[8] = {};
  uint8_t rxBandwidth[8] = {};
  uint8_t tsaAssignment[8] = {};
  uint8_t priorityAssignment[8] = {};
  uint8_t recommendedTcBandwidth[8] = {};
  uint8_t recommendedTsaAssignment[8] = {};
  uint8_t recommendedPriorityAssignment[8] = {};
};

// The IEEE PFC configuration. The frame counters are kept per traffic class
// in one byte each, so they wrap.
struct DcbIeeePfcConfig {
  uint8_t trafficClasses = 0;
  uint8_t pfcMask = 0;  // one bit per priority
  uint8_t macsecBypass = 0;
  uint8_t delay = 0;
  uint8_t sentFrames[8] = {};
  uint8_t receivedFrames[8] = {};
};

// One row of the DCB application table.
struct DcbApp {
  std::string appType;
  std::string protocolId;
  std::string userPriority;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The DCB state of the NIC of that name. Making the object reads nothing; the
// first question reads the device and later ones answer from that copy.
// Every question throws HostCtlException for an unknown NIC ("Physical NIC
// <name> not found") and for a device without DCB.
class DcbInfoImpl : public virtual Lib::OrvkCtlObject {
 public:
  explicit DcbInfoImpl(std::string const& nicName);
  ~DcbInfoImpl() override;
  void Refresh() override;

  // 0 unknown, 1 CEN, 2 CEE, 3 IEEE.
  uint32_t GetMode();
  bool IsEnabled();
  HostCtl::Network::DcbCapabilities GetCapabilities();
  bool IsPfcEnabled();
  // One bit per priority with PFC on.
  uint8_t GetPfcConfig();
  HostCtl::Network::DcbIeeeEtsConfig GetIeeeEtsConfig();
  HostCtl::Network::DcbIeeePfcConfig GetIeeePfcConfig();
  std::vector<HostCtl::Network::DcbApp> GetAppInfo();

 private:
  Sim::DcbState const& Cached();

  std::string name_;
  std::unique_ptr<Sim::DcbState> cached_;
};

}  // namespace OrvkCtl::Network
