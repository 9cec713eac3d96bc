// Doors to the kernel for the linux backend: route netlink sockets per
// network namespace (libnl), the ethtool ioctl, and the kernel's errors as
// the library's exception.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct nl_addr;
struct nl_object;
struct nl_sock;
struct nl_cache;
struct rtnl_link;

namespace OrvkCtl::Linux {

// The network namespace of a netstack instance: "" for the process's own
// (defaultTcpipStack), else the name of a namespace in /run/netns.
std::string NamespaceOf(std::string const& netstack);

// The named network namespaces (/run/netns), sorted.
std::vector<std::string> NamedNamespaces();
// Makes namespace `netns` and its file in /run/netns, as `ip netns add`
// does; throws if it exists.
void AddNamespace(std::string const& netns);
// Removes namespace `netns`'s file; the namespace goes with its last user.
void RemoveNamespace(std::string const& netns);

// Runs `work` with the calling thread in namespace `netns` ("" for the
// process's own), then returns to the process's own.
void InNamespace(std::string const& netns, std::function<void()> const& work);

// The value of the sysctl file `path` under /proc/sys/ (e.g.
// "net/ipv4/tcp_ecn"), without its line end; "" when it does not exist. The
// calling thread's namespace decides which one: call inside InNamespace.
std::string ReadSysctl(std::string const& path);
// Writes it; throws "Cannot <what>: <reason>".
void WriteSysctl(std::string const& path, std::string const& value, std::string const& what);

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

// Dumps the kernel's objects of message type `type` (RTM_GETROUTE,
// RTM_GETNEIGH, ...) and `family` in `netns`, calling `each` for every one
// as it comes: unlike a cache, nothing is merged or dropped (two routes to
// one network on two links stay two). Throws "Cannot <what>: ...".
void Dump(std::string const& netns, int type, int family,
          std::function<void(nl_object*)> const& each, std::string const& what);

// The name of link `index` in `links`, or "" when it has none there.
std::string LinkName(nl_cache* links, int index);

// An address as text without its prefix length ("10.0.0.1", "fe80::1").
std::string AddressText(nl_addr* address);
// "02:00:00:00:10:00" for a 6-byte link-layer address; "" otherwise.
std::string MacText(nl_addr* address);

struct AddrFree {
  void operator()(nl_addr* address) const;
};
using Addr = std::unique_ptr<nl_addr, AddrFree>;
// Parses an address text of `family` (AF_INET, AF_INET6, AF_LLC for a MAC);
// throws for bad text.
Addr ParseAddr(std::string const& text, int family);

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
