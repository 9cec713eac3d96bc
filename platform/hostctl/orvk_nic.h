// One Orvik network interface: a network endpoint of the host itself, and the
// view of all of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace HostCtl::Network {

// A service mark of an interface. Valid tags are 1 to 13; NoTag (14) stands
// for no tag at all.
enum OrvkNicTagType : int {
  MIN_TAG = 1,
  MAX_TAG = 13,
  NoTag = 14,
};

// The switch port an interface uses.
class OrvkNicPort : public virtual Lib::HostCtlObject {
 public:
  ~OrvkNicPort() override;
  virtual uint32_t GetPortId() = 0;
};

// One interface, by name. The accessors marked cached read the host once, at
// the first such question, and answer later ones from the object; the others
// read or change the host at each call. Every operation throws
// Lib::HostCtlException when the interface no longer exists, the host cannot
// be read, or a change is refused.
class OrvkNic : public virtual Lib::HostCtlObject {
 public:
  // One multicast group the interface has joined.
  struct MulticastGroup {
    std::string interface;
    std::string group;       // the group's IP address
    std::string linkLayer;   // the group's link-layer (MAC) address
    int32_t refcount = 0;    // how many users joined it
  };

  ~OrvkNic() override;

  // Cached: "orvk0" and the like.
  virtual std::string GetInterfaceName() = 0;
  // Cached.
  virtual uint32_t GetMtu() = 0;
  // Refuses values outside MIN_MTU..MAX_MTU.
  virtual void SetMtu(uint32_t mtu) = 0;
  // Cached.
  virtual MacAddress GetMacAddress() = 0;
  // Cached: the configuration in force.
  virtual IpConfig GetIpConfig() = 0;
  // Cached: the configuration stored for the next boot.
  virtual IpConfig GetConfiguredIpConfig() = 0;
  // Applies `config` at once and stores it. Refuses a static IPv4 address of
  // 0.0.0.0, a netmask that is not a run of leading one bits, a gateway
  // outside the interface's network, and an IPv4 address that another
  // interface of the same netstack instance holds.
  virtual void SetIpConfig(IpConfig config) = 0;
  // What the interface is attached to, owned by the caller; null if the
  // connection point is gone.
  virtual std::unique_ptr<ConnectionPoint> GetConnectionPoint() = 0;
  // The switch port in use, owned by the caller; null if there is none.
  virtual std::unique_ptr<OrvkNicPort> GetPort() = 0;
  virtual void Enable() = 0;
  virtual void Disable() = 0;
  virtual bool IsEnabled() = 0;
  // Deletes the interface, its routes and its switch port.
  virtual void Remove() = 0;
  // Cached: the number of RX dispatch queues.
  virtual uint32_t GetNumRxQueue() = 0;
  // Cached: the TSO maximum segment size.
  virtual uint32_t GetTsoMss() = 0;
  virtual std::string GetNetstackInstanceKey() = 0;
  // Replaces `tags` with the tags set on the interface, in the order set.
  virtual void GetTags(std::vector<OrvkNicTagType>& tags) = 0;
  // Sets a tag; setting one that is set already changes nothing. Refuses a
  // value outside 1..13. `persistOnly` is not used by this host.
  virtual void AddTag(OrvkNicTagType tag, bool persistOnly) = 0;
  // Clears a tag. Refuses a tag that is not set.
  virtual void RemoveTag(OrvkNicTagType tag) = 0;
  // Makes the changes made through this object permanent. The host applies
  // every change at once, so this only checks that the interface exists.
  virtual void Commit() = 0;
  // Appends the groups the interface has joined to `groups`: the all-hosts
  // groups of its address families, the solicited-node group of each IPv6
  // address, then the groups its users joined.
  virtual void GetMulticastGroups(std::vector<MulticastGroup>& groups) = 0;

  // Bounds of an interface's MTU in bytes, both included.
  static const int32_t MIN_MTU;
  static const int32_t MAX_MTU;
};

using OrvkNicList = std::vector<std::unique_ptr<OrvkNic>>;

// The view of the host's Orvik network interfaces, as the network view hands
// it out.
class OrvikNicInfo : public virtual Lib::HostCtlObject {
 public:
  ~OrvikNicInfo() override;
  // All interfaces of all netstack instances, in the order they were made,
  // owned by the caller. Throws Lib::HostCtlException when the host fails.
  virtual OrvkNicList GetOrvikNics() = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The interface of that name, as the library implements it. Making the object
// reads nothing; the name is checked at the first question.
class OrvkNicImpl : public virtual HostCtl::Network::OrvkNic, public virtual Lib::OrvkCtlObject {
 public:
  explicit OrvkNicImpl(std::string const& name);
  ~OrvkNicImpl() override;

  // Reads the cached members; throws HostCtlException if the interface is
  // gone.
  void Refresh() override;

  std::string GetInterfaceName() override;
  uint32_t GetMtu() override;
  void SetMtu(uint32_t mtu) override;
  HostCtl::Network::MacAddress GetMacAddress() override;
  HostCtl::Network::IpConfig GetIpConfig() override;
  HostCtl::Network::IpConfig GetConfiguredIpConfig() override;
  void SetIpConfig(HostCtl::Network::IpConfig config) override;
  std::unique_ptr<HostCtl::Network::ConnectionPoint> GetConnectionPoint() override;
  std::unique_ptr<HostCtl::Network::OrvkNicPort> GetPort() override;
  void Enable() override;
  void Disable() override;
  bool IsEnabled() override;
  void Remove() override;
  uint32_t GetNumRxQueue() override;
  uint32_t GetTsoMss() override;
  std::string GetNetstackInstanceKey() override;
  void GetTags(std::vector<HostCtl::Network::OrvkNicTagType>& tags) override;
  void AddTag(HostCtl::Network::OrvkNicTagType tag, bool persistOnly) override;
  void RemoveTag(HostCtl::Network::OrvkNicTagType tag) override;
  void Commit() override;
  void GetMulticastGroups(std::vector<MulticastGroup>& groups) override;

 private:
  std::string name_;
  uint32_t mtu_ = 0;
  HostCtl::Network::MacAddress mac_;
  HostCtl::Network::IpConfig ip_config_;
  HostCtl::Network::IpConfig configured_ip_config_;
  uint32_t num_rx_queue_ = 0;
  uint32_t tso_mss_ = 0;
};

// The tag of that name (as OrvkNicTagIdToName spells it, case included);
// NoTag for an unknown name.
HostCtl::Network::OrvkNicTagType OrvkNicTagNameToId(std::string const& name);
// The name of a tag; "None" for NoTag and any value outside 1..13.
std::string OrvkNicTagIdToName(HostCtl::Network::OrvkNicTagType tag);

// The host's Orvik network interfaces. Making the object reads nothing. Lists
// are in the order the interfaces were made and are owned by the caller.
// Every operation throws HostCtlException when the host cannot be read.
class OrvikNicInfoImpl : public virtual HostCtl::Network::OrvikNicInfo,
                         public virtual Lib::OrvkCtlObject {
 public:
  OrvikNicInfoImpl();
  ~OrvikNicInfoImpl() override;
  void Refresh() override;

  // All interfaces of all netstack instances.
  HostCtl::Network::OrvkNicList GetOrvikNics() override;
  // The interfaces of one instance; empty for a key no interface has.
  HostCtl::Network::OrvkNicList GetOrvikNicsByInstanceKey(std::string const& key);
  // Appends to `names` the names of the interfaces of one instance.
  void GetOrvikNicNamesByInstanceKey(std::vector<std::string>& names, std::string const& key);
  // The interfaces on which `tag` is set.
  HostCtl::Network::OrvkNicList GetOrvikNicsByTag(HostCtl::Network::OrvkNicTagType tag);
  // The interface of that name, or null. `includeHidden` is not used by this
  // host.
  std::unique_ptr<HostCtl::Network::OrvkNic> GetOrvikNicByInterface(std::string const& name,
                                                                    bool includeHidden);

  // Creates an interface on `point`, in the netstack instance `key`, with the
  // IP configuration `config`, and returns it. An empty `name` takes the
  // lowest free orvkN, a default `mac` a fresh address, an `mtu` of 0 1500 and
  // a `numRxQueue` of 0 one queue; `flags` and `hidden` are not used by this
  // host. Refuses a null or invalid connection point, one that already has
  // an interface, an unknown netstack instance, a name in use or not of the
  // form orvk0..orvk255, a multicast or used MAC address, an MTU outside
  // MIN_MTU..MAX_MTU and a queue count over 1000.
  std::unique_ptr<HostCtl::Network::OrvkNic> AddOrvikNic(
      HostCtl::Network::ConnectionPoint* point, std::string const& key,
      HostCtl::Network::IpConfig const& config, HostCtl::Network::MacAddress const& mac,
      uint32_t flags, uint32_t mtu, uint32_t numRxQueue, std::string const& name, bool hidden);
  // Removes the interface of instance `key` on `point`. Refuses a null
  // connection point and one without an interface of that instance.
  void RemoveOrvikNic(HostCtl::Network::ConnectionPoint* point, std::string const& key);
};

}  // namespace OrvkCtl::Network
