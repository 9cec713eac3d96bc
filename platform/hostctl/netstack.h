// Netstack instances: the independent TCP/IP stacks of the host, each with its
// own interfaces, routes, DNS and connections.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {

// One netstack instance, by key. The key is its identity; the name is a
// changeable label. Some settings (maximum of connections, IPv6) are applied
// only when the instance is created in the kernel: the instance keeps the
// configured value and the value in force apart.
//
// The `persist` flags of the setters: true keeps the change across reboots;
// false makes it last until the next reboot. The simulated host does not
// reboot, so both change the stored setting.
//
// Every operation that reads or changes the host throws
// Lib::HostCtlException when the instance no longer exists, the host cannot
// be read, or a value is refused.
class NetstackInstance : public virtual Lib::HostCtlObject {
 public:
  // The state word of an instance that is up. An instance that exists only
  // in the configuration has state 0.
  static const uint32_t STATE_UP;

  ~NetstackInstance() override;

  virtual std::string GetInstanceKey() = 0;
  // Cached after the first read.
  virtual std::string GetInstanceName() = 0;
  // Refuses an empty name.
  virtual void SetInstanceName(std::string const& name, bool persist) = 0;
  // Configured maximum of connections.
  virtual uint32_t GetMaxConnections() = 0;
  // Refuses values outside MIN_MAX_CONNECTIONS..MAX_MAX_CONNECTIONS. Takes
  // effect when the instance is next created in the kernel.
  virtual void SetMaxConnections(uint32_t maxConnections, bool persist) = 0;
  virtual std::string GetCongestionControlAlgorithm() = 0;
  // Refuses a name that is not one of
  // NetstackInstanceImpl::GetCongestionControlAlgorithmList(). Applies to
  // new connections.
  virtual void SetCongestionControlAlgorithm(std::string const& algorithm, bool persist) = 0;
  // IPv6 as in force; cached after the first read.
  virtual bool GetCurrentIpv6Enabled() = 0;
  // Takes effect when the instance is next created in the kernel.
  virtual void SetIpv6Enabled(bool enabled, bool persist) = 0;
  // IPv6 as configured; cached after the first read.
  virtual bool GetIpv6Enabled() = 0;
  // "disabled", "enabled" or "echo-only"; other words are refused.
  virtual void SetEcnStatus(std::string const& status) = 0;
  // Cached after the first read.
  virtual std::string GetEcnStatus() = 0;
  // STATE_UP, or 0; cached after the first read.
  virtual uint32_t GetState() = 0;
  // Maximum of connections in force, 0 while the instance is down; cached
  // after the first read.
  virtual uint32_t GetCurrentMaxConnections() = 0;
  // Creates the instance in the kernel with its configured settings. Does
  // nothing for an instance that is up.
  virtual void Enable() = 0;
  // Destroys the instance in the kernel and keeps its configuration. Refuses
  // the default instance and an instance that has interfaces. Does nothing
  // for an instance that is down.
  virtual void Disable() = 0;

  // Bounds of the maximum of connections, both included.
  static const uint32_t MIN_MAX_CONNECTIONS;
  static const uint32_t MAX_MAX_CONNECTIONS;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

class NetstackInstanceImpl : public virtual HostCtl::Network::NetstackInstance,
                             public virtual Lib::OrvkCtlObject {
 public:
  // An instance of the host, by key. Making the object reads nothing.
  explicit NetstackInstanceImpl(std::string const& key);
  // A new instance, not yet on the host, for NetworkInfoImpl::
  // AddNetstackInstance. Its name is its key. `flags` is kept with the
  // instance as given. Until it is added, the getters answer with these
  // values and the setters are refused.
  NetstackInstanceImpl(std::string const& key, uint32_t maxConnections,
                       std::string const& ccAlgorithm, bool ipv6Enabled, uint32_t flags,
                       std::string const& ecnStatus);
  ~NetstackInstanceImpl() override;

  // The congestion control algorithms the host offers, in a fixed order;
  // "newreno" is among them. Reads nothing from the host.
  static std::vector<std::string> GetCongestionControlAlgorithmList();

  // Reads the instance; an instance not yet added keeps the values it was
  // made with. Throws HostCtlException for an instance that was on the host
  // and is no longer.
  void Refresh() override;

  std::string GetInstanceKey() override;
  std::string GetInstanceName() override;
  void SetInstanceName(std::string const& name, bool persist) override;
  uint32_t GetMaxConnections() override;
  void SetMaxConnections(uint32_t maxConnections, bool persist) override;
  std::string GetCongestionControlAlgorithm() override;
  void SetCongestionControlAlgorithm(std::string const& algorithm, bool persist) override;
  bool GetCurrentIpv6Enabled() override;
  void SetIpv6Enabled(bool enabled, bool persist) override;
  bool GetIpv6Enabled() override;
  void SetEcnStatus(std::string const& status) override;
  std::string GetEcnStatus() override;
  uint32_t GetState() override;
  uint32_t GetCurrentMaxConnections() override;
  void Enable() override;
  void Disable() override;

  // The value given as `flags` when the instance was made.
  uint32_t GetFlags();

 private:
  std::string key_;
  // True for an object made by the second constructor that has not been
  // found on the host yet.
  bool detached_ = false;
  std::string name_;
  uint32_t state_ = 0;
  uint32_t maxConnections_ = 0;
  uint32_t currentMaxConnections_ = 0;
  std::string ccAlgorithm_;
  bool ipv6Enabled_ = false;
  bool currentIpv6Enabled_ = false;
  std::string ecnStatus_;
  uint32_t flags_ = 0;
};

}  // namespace OrvkCtl::Network
