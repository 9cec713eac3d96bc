// Doors to the kernel for the linux backend: route netlink per network
// namespace (links, addresses, routes and neighbors read into plain records,
// change requests sent and acknowledged), the ethtool ioctl, and the
// kernel's errors as the library's exception.
#pragma once

#include <linux/if_link.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct nlattr;
struct nlmsghdr;

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

// The whole text of file `path`, or nothing when it cannot be read.
std::optional<std::string> ReadFile(std::string const& path);

// The value of the sysctl file `path` under /proc/sys/ (e.g.
// "net/ipv4/tcp_ecn"), without its line end; "" when it does not exist. The
// calling thread's namespace decides which one: call inside InNamespace.
std::string ReadSysctl(std::string const& path);
// Writes it; throws "Cannot <what>: <reason>".
void WriteSysctl(std::string const& path, std::string const& value, std::string const& what);

// Throws HostCtlException "Cannot <what>: <reason>" for the errno of a
// refused netlink request (negative or not).
[[noreturn]] void FailNl(std::string const& what, int error);
// The same for an errno value of any other call.
[[noreturn]] void FailErrno(std::string const& what, int error);

// One netlink request (route netlink unless `protocol` says another, such
// as NETLINK_XFRM): a message of type `type` (RTM_NEWLINK, ...) with its
// family header and attributes, sent with an acknowledgement asked for.
// Put the header first, then the attributes. Its bytes are wiped when it
// goes (a request may hold a key).
class Request {
 public:
  Request(uint16_t type, uint16_t flags, int protocol = 0 /* NETLINK_ROUTE */);
  ~Request();
  Request(Request const&) = delete;
  Request& operator=(Request const&) = delete;

  template <class T>
  T& Header() {
    return *static_cast<T*>(PutHeader(sizeof(T)));
  }
  // `size` bytes of a fixed part as they are.
  Request& Append(void const* data, size_t size);
  Request& Put(uint16_t type, void const* data, size_t size);
  void PutU32(uint16_t type, uint32_t value);
  void PutText(uint16_t type, std::string const& text);
  // A nested attribute: the attributes put until End are its.
  nlattr* Begin(uint16_t type);
  void End(nlattr* nest);

  // Sends it in namespace `netns` and waits for the kernel's answer: 0, or
  // the errno of its refusal.
  int Send(std::string const& netns = {});
  // The same, handing each reply (a GET's answer) to `each` first.
  int Send(std::string const& netns, std::function<void(nlmsghdr const*)> const& each);
  // The same, throwing "Cannot <what>: <reason>" on refusal.
  void Run(std::string const& what, std::string const& netns = {});

 private:
  void* PutHeader(size_t size);
  alignas(8) char buffer_[2048];
  nlmsghdr* message_;
  int protocol_;
};

// Dumps the kernel's objects of message type `type` (RTM_GETROUTE,
// RTM_GETNEIGH, ...) in `netns`, the request's family header `header`
// (`size` bytes), calling `each` for every message as it comes. Throws
// "Cannot <what>: ...".
void Dump(std::string const& netns, uint16_t type, void const* header, size_t size,
          std::function<void(nlmsghdr const*)> const& each, std::string const& what);

// A network device as route netlink tells it.
struct LinkInfo {
  int index = 0;
  std::string name;
  unsigned type = 0;   // ARPHRD_*
  unsigned flags = 0;  // IFF_*
  uint32_t mtu = 0;
  int master = 0;  // the index of its bridge, or 0
  bool carrier = false;
  std::string kind;  // "bridge", "veth", ...; "" for a device without one
  std::string mac;   // "02:00:00:00:10:00", or "" for another kind of address
  rtnl_link_stats64 stats{};
};

// The links of namespace `netns`, as the kernel holds them now.
std::vector<LinkInfo> Links(std::string const& netns = {});
// The link of that name in `netns`, or nothing.
std::optional<LinkInfo> FindLink(std::string const& name, std::string const& netns = {});
// The names of the links of `netns`, by index: no more of them is read.
std::map<int, std::string> LinkNames(std::string const& netns = {});
// The index of link `name` in `netns`; throws with `what` when there is none.
int LinkIndex(std::string const& name, std::string const& what, std::string const& netns = {});

// An address of a link.
struct AddressInfo {
  int index = 0;  // of its link
  int family = 0;
  int prefix = 0;
  int scope = 0;
  unsigned flags = 0;  // IFA_F_*
  std::string local;   // "10.0.0.1", "2001:db8::1"
};
std::vector<AddressInfo> Addresses(std::string const& netns = {});

// A unicast route of the main table (the only ones read).
struct RouteInfo {
  int family = 0;
  unsigned table = 0;
  unsigned type = 0;
  unsigned protocol = 0;
  int prefix = 0;
  std::string destination;  // "" for the default route
  std::string gateway;      // "" for none
  int link = 0;             // the index of its outgoing link
  bool multipath = false;
};
std::vector<RouteInfo> Routes(std::string const& netns = {});

// An entry of a neighbor table: those the kernel keeps without resolving
// (NOARP), failed ones and unresolved ones are not read.
struct NeighborInfo {
  int family = 0;
  int index = 0;       // of its link
  unsigned state = 0;  // NUD_*
  std::string address;
  std::string mac;
};
std::vector<NeighborInfo> Neighbors(std::string const& netns = {});

// An address parsed from its text: "10.0.0.0/8", "2001:db8::1", "default";
// "02:00:00:00:10:00" for AF_PACKET (a MAC).
struct Address {
  int family = 0;
  int prefix = 0;  // all of its bits when the text gives none
  size_t size = 0;
  unsigned char bytes[16] = {};
};
// Throws for text that is no address of `family`.
Address ParseAddr(std::string const& text, int family);
// The text of `size` bytes of `family` (AF_INET, AF_INET6; a MAC for 6
// bytes of another family), or "" when it has none.
std::string AddressText(int family, void const* bytes, size_t size);

// Sets the MTU of link `name`, or brings it up or down.
void SetLinkMtu(std::string const& name, int mtu, std::string const& netns = {});
void SetLinkUp(std::string const& name, bool up, std::string const& netns = {});

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
