// Offloads, interrupt coalescing, rings and counters of a physical NIC.
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/pnic.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::PnicOffloadParams;
using HostCtl::Network::PnicRingParams;
using Sim::CheckFault;
using Sim::Operation;
using Sim::PnicState;

void CheckCoalesceSupported(PnicState const& nic) {
  if (!nic.coalesce.supported) {
    throw HostCtlException("Interrupt coalescing is not supported by " + nic.name);
  }
}

void CheckRingsSupported(PnicState const& nic) {
  if (!nic.ring.supported) {
    throw HostCtlException("Ring parameters are not supported by " + nic.name);
  }
}

void CheckLimit(PnicState const& nic, char const* what, uint32_t value, uint32_t maximum) {
  if (value > maximum) {
    throw HostCtlException(std::string(what) + " " + std::to_string(value) + " of " + nic.name +
                           " is beyond the maximum of " + std::to_string(maximum));
  }
}

// Sets one ring; `current` is its field in the state.
void ResizeRing(PnicState const& nic, char const* ring, uint32_t size, uint32_t maximum,
                uint32_t& current) {
  if (maximum == 0) throw HostCtlException(nic.name + " has no " + ring + " ring");
  if (size == 0) {
    throw HostCtlException(std::string(ring) + " ring size of " + nic.name + " must be at least 1");
  }
  if (size > maximum) {
    throw HostCtlException(std::string(ring) + " ring size " + std::to_string(size) + " of " +
                           nic.name + " exceeds the preset maximum of " + std::to_string(maximum));
  }
  current = size;
}

}  // namespace

void PnicImpl::GetOffloadParams(HostCtl::Network::PnicOffloadParams& params) {
  CheckFault(Operation::PnicImpl_GetOffloadParams);
  auto const& offload = Cached().offload;
  params.rxChecksum = offload.rx_checksum;
  params.txChecksum = offload.tx_checksum;
  params.scatterGather = offload.scatter_gather;
  params.tcpSegmentation = offload.tcp_segmentation;
  params.largeReceive = offload.large_receive;
  params.genericReceive = offload.generic_receive;
  params.offloadEngine = offload.engine;
}

void PnicImpl::SetOffloadParams(HostCtl::Network::PnicOffloadParams& params) {
  CheckFault(Operation::PnicImpl_SetOffloadParams);
  Change([&](PnicState& nic) {
    auto& offload = nic.offload;
    auto refuse = [&](char const* what) {
      throw HostCtlException(std::string(what) + " is not supported by " + name_);
    };
    if (params.mask & PnicOffloadParams::MASK_RX_CHECKSUM) {
      if (params.rxChecksum && !offload.can_checksum) refuse("RX checksum offload");
      offload.rx_checksum = params.rxChecksum;
    }
    if (params.mask & PnicOffloadParams::MASK_TX_CHECKSUM) {
      if (params.txChecksum && !offload.can_checksum) refuse("TX checksum offload");
      offload.tx_checksum = params.txChecksum;
    }
    if (params.mask & PnicOffloadParams::MASK_SCATTER_GATHER) {
      if (params.scatterGather && !offload.can_scatter_gather) refuse("Scatter-gather");
      offload.scatter_gather = params.scatterGather;
    }
    if (params.mask & PnicOffloadParams::MASK_TCP_SEGMENTATION) {
      if (params.tcpSegmentation && !offload.can_tcp_segmentation) {
        refuse("TCP segmentation offload");
      }
      offload.tcp_segmentation = params.tcpSegmentation;
    }
  });
}

void PnicImpl::GetCoalesceParams(HostCtl::Network::PnicCoalesceParams& params) {
  CheckFault(Operation::PnicImpl_GetCoalesceParams);
  auto const& nic = Cached();
  CheckCoalesceSupported(nic);
  auto const& c = nic.coalesce;
  params.adaptiveRx = c.adaptive_rx;
  params.adaptiveTx = c.adaptive_tx;
  params.statsBlockMicroseconds = c.stats_block_usecs;
  params.sampleInterval = c.sample_interval;
  params.lowPacketRate = c.pkt_rate_low;
  params.highPacketRate = c.pkt_rate_high;
  params.rxMicroseconds = c.rx_usecs;
  params.rxMaxFrames = c.rx_frames;
  params.rxMicrosecondsIrq = c.rx_usecs_irq;
  params.rxMaxFramesIrq = c.rx_frames_irq;
  params.txMicroseconds = c.tx_usecs;
  params.txMaxFrames = c.tx_frames;
  params.txMicrosecondsIrq = c.tx_usecs_irq;
  params.txMaxFramesIrq = c.tx_frames_irq;
  params.rxMicrosecondsLow = c.rx_usecs_low;
  params.rxMaxFramesLow = c.rx_frames_low;
  params.txMicrosecondsLow = c.tx_usecs_low;
  params.txMaxFramesLow = c.tx_frames_low;
  params.rxMicrosecondsHigh = c.rx_usecs_high;
  params.rxMaxFramesHigh = c.rx_frames_high;
  params.txMicrosecondsHigh = c.tx_usecs_high;
  params.txMaxFramesHigh = c.tx_frames_high;
}

void PnicImpl::SetCoalesceParams(HostCtl::Network::PnicCoalesceParams& params) {
  CheckFault(Operation::PnicImpl_SetCoalesceParams);
  Change([&](PnicState& nic) {
    CheckCoalesceSupported(nic);
    auto& c = nic.coalesce;
    struct Limit {
      char const* what;
      uint32_t value;
      uint32_t maximum;
    };
    Limit const limits[] = {
        {"RX microseconds", params.rxMicroseconds, c.max_microseconds},
        {"RX maximum frames", params.rxMaxFrames, c.max_frames},
        {"TX microseconds", params.txMicroseconds, c.max_microseconds},
        {"TX maximum frames", params.txMaxFrames, c.max_frames},
        {"RX microseconds at low packet rate", params.rxMicrosecondsLow, c.max_microseconds},
        {"RX maximum frames at low packet rate", params.rxMaxFramesLow, c.max_frames},
        {"TX microseconds at low packet rate", params.txMicrosecondsLow, c.max_microseconds},
        {"TX maximum frames at low packet rate", params.txMaxFramesLow, c.max_frames},
        {"RX microseconds at high packet rate", params.rxMicrosecondsHigh, c.max_microseconds},
        {"RX maximum frames at high packet rate", params.rxMaxFramesHigh, c.max_frames},
        {"TX microseconds at high packet rate", params.txMicrosecondsHigh, c.max_microseconds},
        {"TX maximum frames at high packet rate", params.txMaxFramesHigh, c.max_frames},
    };
    for (auto const& limit : limits) CheckLimit(nic, limit.what, limit.value, limit.maximum);
    if (params.sampleInterval < 1 || params.sampleInterval > 3600) {
      throw HostCtlException("Sample interval " + std::to_string(params.sampleInterval) + " of " +
                             name_ + " is out of range 1 to 3600 seconds");
    }
    if (params.lowPacketRate > params.highPacketRate) {
      throw HostCtlException("Low packet rate " + std::to_string(params.lowPacketRate) + " of " +
                             name_ + " is above its high packet rate " +
                             std::to_string(params.highPacketRate));
    }
    c.adaptive_rx = params.adaptiveRx;
    c.adaptive_tx = params.adaptiveTx;
    c.stats_block_usecs = params.statsBlockMicroseconds;
    c.sample_interval = params.sampleInterval;
    c.pkt_rate_low = params.lowPacketRate;
    c.pkt_rate_high = params.highPacketRate;
    c.rx_usecs = params.rxMicroseconds;
    c.rx_frames = params.rxMaxFrames;
    c.rx_usecs_irq = params.rxMicrosecondsIrq;
    c.rx_frames_irq = params.rxMaxFramesIrq;
    c.tx_usecs = params.txMicroseconds;
    c.tx_frames = params.txMaxFrames;
    c.tx_usecs_irq = params.txMicrosecondsIrq;
    c.tx_frames_irq = params.txMaxFramesIrq;
    c.rx_usecs_low = params.rxMicrosecondsLow;
    c.rx_frames_low = params.rxMaxFramesLow;
    c.tx_usecs_low = params.txMicrosecondsLow;
    c.tx_frames_low = params.txMaxFramesLow;
    c.rx_usecs_high = params.rxMicrosecondsHigh;
    c.rx_frames_high = params.rxMaxFramesHigh;
    c.tx_usecs_high = params.txMicrosecondsHigh;
    c.tx_frames_high = params.txMaxFramesHigh;
  });
}

void PnicImpl::GetRingParams(HostCtl::Network::PnicRingParams& preset,
                             HostCtl::Network::PnicRingParams& current) {
  CheckFault(Operation::PnicImpl_GetRingParams);
  auto const& nic = Cached();
  CheckRingsSupported(nic);
  auto const& ring = nic.ring;
  preset.rx = ring.max_rx;
  preset.rxMini = ring.max_rx_mini;
  preset.rxJumbo = ring.max_rx_jumbo;
  preset.tx = ring.max_tx;
  current.rx = ring.rx;
  current.rxMini = ring.rx_mini;
  current.rxJumbo = ring.rx_jumbo;
  current.tx = ring.tx;
}

void PnicImpl::SetRingParams(HostCtl::Network::PnicRingParams& params) {
  CheckFault(Operation::PnicImpl_SetRingParams);
  Change([&](PnicState& nic) {
    CheckRingsSupported(nic);
    auto& ring = nic.ring;
    if (params.mask & PnicRingParams::MASK_RX) {
      ResizeRing(nic, "RX", params.rx, ring.max_rx, ring.rx);
    }
    if (params.mask & PnicRingParams::MASK_RX_MINI) {
      ResizeRing(nic, "RX mini", params.rxMini, ring.max_rx_mini, ring.rx_mini);
    }
    if (params.mask & PnicRingParams::MASK_RX_JUMBO) {
      ResizeRing(nic, "RX jumbo", params.rxJumbo, ring.max_rx_jumbo, ring.rx_jumbo);
    }
    if (params.mask & PnicRingParams::MASK_TX) {
      ResizeRing(nic, "TX", params.tx, ring.max_tx, ring.tx);
    }
  });
}

void PnicImpl::GetPnicStats(HostCtl::Network::PnicStats& stats) {
  CheckFault(Operation::PnicImpl_GetPnicStats);
  auto const& s = Cached().stats;
  stats.packetsSent = s.tx_packets;
  stats.packetsReceived = s.rx_packets;
  stats.bytesSent = s.tx_bytes;
  stats.bytesReceived = s.rx_bytes;
  stats.transmitErrors = s.tx_errors;
  stats.receiveErrors = s.rx_errors;
  stats.transmitDropped = s.tx_dropped;
  stats.receiveDropped = s.rx_dropped;
  stats.multicastReceived = s.rx_multicast;
  stats.broadcastReceived = s.rx_broadcast;
  stats.multicastSent = s.tx_multicast;
  stats.broadcastSent = s.tx_broadcast;
  stats.receiveLengthErrors = s.rx_length_errors;
  stats.receiveOverErrors = s.rx_over_errors;
  stats.receiveCrcErrors = s.rx_crc_errors;
  stats.receiveFrameErrors = s.rx_frame_errors;
  stats.receiveFifoErrors = s.rx_fifo_errors;
  stats.receiveMissedErrors = s.rx_missed_errors;
  stats.transmitAbortedErrors = s.tx_aborted_errors;
  stats.transmitFifoErrors = s.tx_fifo_errors;
  stats.transmitCarrierErrors = s.tx_carrier_errors;
  stats.transmitHeartbeatErrors = s.tx_heartbeat_errors;
  stats.transmitWindowErrors = s.tx_window_errors;
  stats.collisions = s.collisions;
}

}  // namespace OrvkCtl::Network
