#include "kernel.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <netlink/errno.h>
#include <netlink/netlink.h>
#include <netlink/route/link.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>

#include "hostctl/lib.h"

namespace OrvkCtl::Linux {

using HostCtl::Lib::HostCtlException;

namespace {

// Closes a file descriptor when it goes.
struct Fd {
  int fd = -1;
  ~Fd() {
    if (fd >= 0) close(fd);
  }
};

struct SocketFree {
  void operator()(nl_sock* sock) const { nl_socket_free(sock); }
};

// A socket is bound to the namespace it was made in: make it there, then
// return to the process's own.
nl_sock* NewSocketIn(std::string const& netns) {
  Fd own;
  Fd other;
  if (!netns.empty()) {
    own.fd = open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC);
    other.fd = open(("/run/netns/" + netns).c_str(), O_RDONLY | O_CLOEXEC);
    if (other.fd < 0) FailErrno("enter netstack instance " + netns, errno);
    if (own.fd < 0 || setns(other.fd, CLONE_NEWNET) != 0) {
      FailErrno("enter netstack instance " + netns, errno);
    }
  }
  nl_sock* sock = nl_socket_alloc();
  int error = sock ? nl_connect(sock, NETLINK_ROUTE) : -NLE_NOMEM;
  if (!netns.empty() && setns(own.fd, CLONE_NEWNET) != 0) {
    // Staying in another namespace would act on the wrong host: stop here.
    std::abort();
  }
  if (error < 0) {
    if (sock) nl_socket_free(sock);
    FailNl("open a route netlink socket", error);
  }
  return sock;
}

}  // namespace

std::string NamespaceOf(std::string const& netstack) {
  return netstack == "defaultTcpipStack" ? std::string() : netstack;
}

nl_sock* RouteSocket(std::string const& netns) {
  static std::map<std::string, std::unique_ptr<nl_sock, SocketFree>> sockets;
  auto& sock = sockets[netns];
  if (!sock) sock.reset(NewSocketIn(netns));
  return sock.get();
}

void FailNl(std::string const& what, int error) {
  throw HostCtlException("Cannot " + what + ": " + nl_geterror(error < 0 ? -error : error));
}

void FailErrno(std::string const& what, int error) {
  throw HostCtlException("Cannot " + what + ": " + std::strerror(error));
}

void CacheFree::operator()(nl_cache* cache) const { nl_cache_free(cache); }
void LinkFree::operator()(rtnl_link* link) const { rtnl_link_put(link); }

Cache LinkCache(std::string const& netns) {
  nl_cache* cache = nullptr;
  if (int error = rtnl_link_alloc_cache(RouteSocket(netns), AF_UNSPEC, &cache); error < 0) {
    FailNl("read the network devices", error);
  }
  return Cache(cache);
}

Link FindLink(std::string const& name, std::string const& netns) {
  rtnl_link* link = nullptr;
  int error = rtnl_link_get_kernel(RouteSocket(netns), 0, name.c_str(), &link);
  if (error == -NLE_OBJ_NOTFOUND || error == -NLE_NODEV) return nullptr;
  if (error < 0) FailNl("read network device " + name, error);
  return Link(link);
}

void ChangeLink(std::string const& name, rtnl_link* change, std::string const& what,
                std::string const& netns) {
  Link link = FindLink(name, netns);
  if (!link) FailErrno(what, ENODEV);
  if (int error = rtnl_link_change(RouteSocket(netns), link.get(), change, 0); error < 0) {
    FailNl(what, error);
  }
}

void SetLinkMtu(std::string const& name, int mtu, std::string const& netns) {
  Link change(rtnl_link_alloc());
  rtnl_link_set_mtu(change.get(), static_cast<unsigned>(mtu));
  ChangeLink(name, change.get(), "set the MTU of " + name + " to " + std::to_string(mtu), netns);
}

void SetLinkUp(std::string const& name, bool up, std::string const& netns) {
  Link change(rtnl_link_alloc());
  up ? rtnl_link_set_flags(change.get(), IFF_UP) : rtnl_link_unset_flags(change.get(), IFF_UP);
  ChangeLink(name, change.get(), (up ? "bring up " : "bring down ") + name, netns);
}

bool IsBridge(rtnl_link* link) {
  char const* kind = rtnl_link_get_type(link);
  return kind && std::strcmp(kind, "bridge") == 0;
}

int LinkIndex(std::string const& name, std::string const& what, std::string const& netns) {
  Link link = FindLink(name, netns);
  if (!link) FailErrno(what, ENODEV);
  return rtnl_link_get_ifindex(link.get());
}

void AddBridge(std::string const& name) {
  Link link(rtnl_link_alloc());
  rtnl_link_set_name(link.get(), name.c_str());
  if (int error = rtnl_link_set_type(link.get(), "bridge"); error < 0) {
    FailNl("create bridge " + name, error);
  }
  // Exclusive: never take over a link of that name.
  int const error = rtnl_link_add(RouteSocket(), link.get(), NLM_F_CREATE | NLM_F_EXCL);
  if (error < 0) FailNl("create bridge " + name, error);
}

void DeleteLink(std::string const& name, std::string const& what) {
  Link link(rtnl_link_alloc());
  rtnl_link_set_name(link.get(), name.c_str());
  if (int error = rtnl_link_delete(RouteSocket(), link.get()); error < 0) FailNl(what, error);
}

void SetMaster(std::string const& name, std::string const& master) {
  std::string const what =
      master.empty() ? "release " + name + " from its bridge" : "add " + name + " to bridge " + master;
  int const index = LinkIndex(name, what);
  int const error = master.empty()
                        ? rtnl_link_release_ifindex(RouteSocket(), index)
                        : rtnl_link_enslave_ifindex(RouteSocket(), LinkIndex(master, what), index);
  if (error < 0) FailNl(what, error);
}

int Ethtool(std::string const& name, void* command) {
  static int const sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (sock < 0) return errno;
  ifreq request{};
  if (name.size() >= sizeof(request.ifr_name)) return ENODEV;
  std::memcpy(request.ifr_name, name.c_str(), name.size() + 1);
  request.ifr_data = static_cast<char*>(command);
  // Some commands answer with a positive number of flags: still a success.
  return ioctl(sock, SIOCETHTOOL, &request) >= 0 ? 0 : errno;
}

}  // namespace OrvkCtl::Linux
