// Doors to the kernel for the linux backend: route netlink sockets per
// network namespace (libnl), the ethtool ioctl, and the kernel's errors as
// the library's exception.
#pragma once

#include <memory>
#include <string>

struct nl_sock;
struct nl_cache;
struct rtnl_link;

namespace OrvkCtl::Linux {

// The network namespace of a netstack instance: "" for the process's own
// (defaultTcpipStack), else the name of a namespace in /run/netns.
std::string NamespaceOf(std::string const& netstack);

// A route netlink socket in namespace `netns` ("" for the process's own),
// made on first use and kept until the process ends.
nl_sock* RouteSocket(std::string const& netns = {});

// Throws HostCtlException "Cannot <what>: <the kernel's reason>" for a libnl
// error number (negative or not).
[[noreturn]] void FailNl(std::string const& what, int error);
// The same for an errno value.
[[noreturn]] void FailErrno(std::string const& what, int error);

struct CacheFree {
  void operator()(nl_cache* cache) const;
};
using Cache = std::unique_ptr<nl_cache, CacheFree>;
struct LinkFree {
  void operator()(rtnl_link* link) const;
};
using Link = std::unique_ptr<rtnl_link, LinkFree>;

// The links of namespace `netns`, as the kernel holds them now.
Cache LinkCache(std::string const& netns = {});
// The link of that name in `netns`, or null.
Link FindLink(std::string const& name, std::string const& netns = {});

// Applies `change` (a link made with rtnl_link_alloc, holding the attributes
// to change) to the link `name`; throws with `what` on refusal.
void ChangeLink(std::string const& name, rtnl_link* change, std::string const& what,
                std::string const& netns = {});

// Sets the MTU of link `name`, or brings it up or down.
void SetLinkMtu(std::string const& name, int mtu, std::string const& netns = {});
void SetLinkUp(std::string const& name, bool up, std::string const& netns = {});

// Whether `link` is a bridge.
bool IsBridge(rtnl_link* link);

// The index of link `name` in `netns`; throws with `what` when there is none.
int LinkIndex(std::string const& name, std::string const& what, std::string const& netns = {});

// Bridges of the process's namespace: made (down, with the kernel's
// defaults), deleted (its ports are released), and a link made a port of
// bridge `master` or, with an empty `master`, released from its bridge.
void AddBridge(std::string const& name);
void DeleteLink(std::string const& name, std::string const& what);
void SetMaster(std::string const& name, std::string const& master);

// Runs an ethtool command on device `name` of the process's namespace;
// returns 0 or the errno of the refusal.
int Ethtool(std::string const& name, void* command);

}  // namespace OrvkCtl::Linux
