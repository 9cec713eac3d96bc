// The host object: a second way to the network and system views, for
// commands that reach the library through the host rather than an Impl.
#pragma once

#include <memory>

#include "hostctl/lib.h"

namespace HostCtl {

namespace Network {
class NetworkInfo;
}
namespace System {
class SystemInfo;
}

class Host : public virtual Lib::HostCtlObject {
 public:
  ~Host() override;
  // The views, owned by the caller. Making them reads nothing.
  static std::unique_ptr<Network::NetworkInfo> GetNetworkInfo();
  static std::unique_ptr<System::SystemInfo> GetSystemInfo();
};

class HostFactory {
 public:
  // The host this process runs on, owned by the caller.
  static std::unique_ptr<Host> GetHost();
};

}  // namespace HostCtl
