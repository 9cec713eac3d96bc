// The command classes of `network nic` and `network sriovnic`, one per leaf; each is made only by
// its New() and defined in the source file of its name.
#pragma once

#include <string>
#include <vector>

#include "frame/CommandKit.h"

namespace HostCtl::Network {
struct PnicInfo;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// `network nic attachment add`: attaches a branch uplink to a trunk uplink with
// a VLAN ID.
class NicAttachmentAdd : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicAttachmentAdd)
};

// `network nic attachment list`: the branch uplinks of one or all trunks.
class NicAttachmentList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicAttachmentList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic attachment remove`: detaches a branch uplink from its trunk.
class NicAttachmentRemove : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicAttachmentRemove)
};

// `network nic coalesce get`: the general interrupt coalescing settings of physical NICs.
class NicCoalesceGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic coalesce high get`: interrupt coalescing of a NIC above its high packet rate.
class NicCoalesceHighGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceHighGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic coalesce high set`: changes interrupt coalescing of a NIC above its high packet
// rate.
class NicCoalesceHighSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceHighSet)
};

// `network nic coalesce low get`: interrupt coalescing of a NIC below its low packet rate.
class NicCoalesceLowGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceLowGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic coalesce low set`: changes interrupt coalescing of a NIC below its low packet rate.
class NicCoalesceLowSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceLowSet)
};

// `network nic coalesce set`: changes the general interrupt coalescing settings of a NIC.
class NicCoalesceSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCoalesceSet)
};

// `network nic cso get`: checksum offload settings of physical NICs.
class NicCsoGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCsoGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic cso set`: turns RX and TX checksum offload of a NIC on or off together.
class NicCsoSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicCsoSet)
};

// "<mode> - <word>": 0 Unknown, 1 CEN Mode, 2 CEE Mode, 3 IEEE Mode.
std::string DcbModeToString(unsigned int mode);
// Eight 0/1 digits, bit 0 first, separated by blanks.
std::string DcbIntMaskToString(unsigned char mask);
// The first eight bytes of `array` in decimal, separated by blanks.
std::string DcbArrayToString(unsigned char* array);

// `network nic dcb status get`: the Data Center Bridging state of one NIC.
class NicDcbStatusGet : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicDcbStatusGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbCapabilitiesStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbIeeePfcConfigStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbIeeeEtsConfigStructure();
  std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetDcbAppsStructure();
};

// `network nic down`: takes a physical NIC down.
class NicDown : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicDown)
};

// `network nic eeprom change`: writes one double word, or an image file, to the
// EEPROM of one uplink.
class NicEepromChange : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicEepromChange)
};

// `network nic eeprom dump`: the EEPROM of one uplink as rows of hex bytes.
class NicEepromDump : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicEepromDump)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
  // One row per aligned block of 16 bytes; the first row is padded so that
  // each byte stands in the column of its address.
  std::shared_ptr<Toolbase::MetaObj::MetaList> DumpBinary(unsigned int offset,
                                                          std::vector<unsigned char>& bytes);
};

// `network nic get`: everything the host knows of one physical NIC.
class NicGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic hwCap activated list`: the hardware capabilities in use on each device, by name.
class NicHwCapActivatedList : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicHwCapActivatedList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic hwCap supported list`: the hardware capabilities each device supports, by name.
class NicHwCapSupportedList : public Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicHwCapSupportedList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic list`: one row per physical NIC.
class NicList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic negotiate restart`: renegotiates the link of a physical NIC.
class NicNegotiationRestart : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicNegotiationRestart)
};

// `network nic pauseParams list`: flow control (pause frames) of physical NICs.
class NicPauseParamsList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicPauseParamsList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic pauseParams set`: changes flow control (pause frames) of a NIC.
class NicPauseParamsSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicPauseParamsSet)
};

// `network nic queue count get`: the TX and RX netqueue counts, per uplink.
class NicQueueCountGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueCountGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic queue count set`: sets the TX and/or RX netqueue count of a NIC.
class NicQueueCountSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueCountSet)
};

// `network nic queue filterclass list`: the filter classes netqueue supports, per uplink.
class NicQueueFilterClassList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueFilterClassList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic queue loadbalancer plugin list`: the balancer plugins of each uplink, one row per
// plugin.
class NicQueueLbPluginList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbPluginList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic queue loadbalancer plugin set`: turns one balancer plugin of a NIC on or off.
class NicQueueLbPluginSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbPluginSet)
};

// `network nic queue loadbalancer list`: the load balancer settings of every uplink with netqueue.
class NicQueueLbSettingList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbSettingList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic queue loadbalancer set`: allows or disallows load balancer settings of a NIC.
class NicQueueLbSettingSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbSettingSet)
};

// `network nic queue loadbalancer state list`: whether the netqueue balancer runs, per uplink.
class NicQueueLbStateList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbStateList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic queue loadbalancer state set`: turns the netqueue balancer of a NIC on or off.
class NicQueueLbStateSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicQueueLbStateSet)
};

// `network nic register dump`: the registers of one uplink, 16 values a row.
class NicRegisterDump : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicRegisterDump)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic ring current get`: the ring sizes a NIC uses.
class NicRingCurrentGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicRingCurrentGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic ring current set`: resizes the rings of a NIC.
class NicRingCurrentSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicRingCurrentSet)
};

// `network nic ring preset get`: the largest ring sizes a NIC allows.
class NicRingPresetGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicRingPresetGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic selftest run`: runs the self test of one uplink and reports it.
class NicSelfTestRun : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSelfTestRun)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic set`: changes the general settings, speed and duplex of a NIC.
class NicSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSet)
  // Lays the parameters given in `input` over `info`, setting the change flag
  // of each field that really changes. Returns whether anything changed.
  // Throws HostCtl::Lib::HostCtlException for a bad PHY address or
  // wake-on-LAN letter and for options the device does not support.
  bool GetInfoFromParam(std::shared_ptr<Toolbase::CallSpec::Input> const& input,
                        HostCtl::Network::PnicInfo& info);
};

// `network nic sg get`: scatter-gather settings of physical NICs.
class NicSgGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSgGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic sg set`: turns scatter-gather of a NIC on or off.
class NicSgSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSgSet)
};

// `network nic software list`: which offload functions the host simulates in software, per uplink.
class NicSoftwareList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSoftwareList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic software set`: starts or stops software simulation of offload functions of a NIC.
class NicSoftwareSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicSoftwareSet)
};

// `network nic stats get`: packet and error counters of one NIC.
class NicStatsGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicStatsGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic tso get`: TCP segmentation offload settings of physical NICs.
class NicTsoGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicTsoGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic tso set`: turns TCP segmentation offload of a NIC on or off.
class NicTsoSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicTsoSet)
};

// `network nic up`: brings a physical NIC up.
class NicUp : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicUp)
};

// `network nic vlan stats get`: per-VLAN packet counters of a NIC, kept by its switch.
class NicVlanStatsGet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicVlanStatsGet)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network nic vlan stats set`: turns per-VLAN counters of a NIC on or off.
class NicVlanStatsSet : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(NicVlanStatsSet)
};

// `network sriovnic list`: the SR-IOV enabled NICs (physical functions).
class SriovNicList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(SriovNicList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network sriovnic vf list`: the virtual functions of one SR-IOV NIC.
class VfList : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VfList)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

// `network sriovnic vf stats`: the counters of one virtual function.
class VfStats : public virtual Toolbase::AutoCli::Command {
  NETWORK_COMMAND(VfStats)
  virtual std::shared_ptr<Toolbase::MetaObj::MetaStruct> GetOutputStructure();
};

}  // namespace CorvaneCli::NetworkNamespace
