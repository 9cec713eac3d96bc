#include "kernel.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <netlink/errno.h>
#include <linux/rtnetlink.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/route/link.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

constexpr char kNamespaceFolder[] = "/run/netns/";

std::map<std::string, std::unique_ptr<nl_sock, SocketFree>>& Sockets() {
  static std::map<std::string, std::unique_ptr<nl_sock, SocketFree>> sockets;
  return sockets;
}

// A socket is bound to the namespace it was made in.
nl_sock* NewSocketIn(std::string const& netns) {
  nl_sock* sock = nullptr;
  int error = 0;
  InNamespace(netns, [&] {
    sock = nl_socket_alloc();
    error = sock ? nl_connect(sock, NETLINK_ROUTE) : -NLE_NOMEM;
  });
  if (error < 0) {
    if (sock) nl_socket_free(sock);
    FailNl("open a route netlink socket", error);
  }
  return sock;
}

// Opens the namespace's file; throws when there is none.
int OpenNamespace(std::string const& netns) {
  int fd = open((kNamespaceFolder + netns).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) FailErrno("enter netstack instance " + netns, errno);
  return fd;
}

}  // namespace

std::string NamespaceOf(std::string const& netstack) {
  return netstack == "defaultTcpipStack" ? std::string() : netstack;
}

std::vector<std::string> NamedNamespaces() {
  std::vector<std::string> names;
  DIR* folder = opendir(kNamespaceFolder);
  if (!folder) return names;
  while (dirent* entry = readdir(folder)) {
    if (entry->d_name[0] != '.') names.push_back(entry->d_name);
  }
  closedir(folder);
  std::sort(names.begin(), names.end());
  return names;
}

void AddNamespace(std::string const& netns) {
  std::string const what = "create netstack instance " + netns;
  mkdir(kNamespaceFolder, 0755);
  std::string const path = kNamespaceFolder + netns;
  Fd file{open(path.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0)};
  if (file.fd < 0) FailErrno(what, errno);
  Fd own{open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC)};
  if (own.fd < 0) FailErrno(what, errno);
  int error = 0;
  if (unshare(CLONE_NEWNET) != 0) {
    error = errno;
  } else {
    if (mount("/proc/thread-self/ns/net", path.c_str(), "none", MS_BIND, nullptr) != 0) {
      error = errno;
    }
    // Staying in another namespace would act on the wrong host: stop here.
    if (setns(own.fd, CLONE_NEWNET) != 0) std::abort();
  }
  if (error != 0) {
    unlink(path.c_str());
    FailErrno(what, error);
  }
}

void RemoveNamespace(std::string const& netns) {
  std::string const path = kNamespaceFolder + netns;
  Sockets().erase(netns);
  if (umount2(path.c_str(), MNT_DETACH) != 0 && errno != EINVAL) {
    FailErrno("remove netstack instance " + netns, errno);
  }
  if (unlink(path.c_str()) != 0) FailErrno("remove netstack instance " + netns, errno);
}

void InNamespace(std::string const& netns, std::function<void()> const& work) {
  if (netns.empty()) {
    work();
    return;
  }
  Fd other{OpenNamespace(netns)};
  Fd own{open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC)};
  if (own.fd < 0 || setns(other.fd, CLONE_NEWNET) != 0) {
    FailErrno("enter netstack instance " + netns, errno);
  }
  struct Back {
    int fd;
    // Staying in another namespace would act on the wrong host: stop here.
    ~Back() {
      if (setns(fd, CLONE_NEWNET) != 0) std::abort();
    }
  } back{own.fd};
  work();
}

std::string ReadSysctl(std::string const& path) {
  Fd file{open(("/proc/sys/" + path).c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.fd < 0) return {};
  char text[256];
  ssize_t n = read(file.fd, text, sizeof text - 1);
  if (n <= 0) return {};
  std::string value(text, static_cast<size_t>(n));
  while (!value.empty() && (value.back() == '\n' || value.back() == ' ')) value.pop_back();
  return value;
}

void WriteSysctl(std::string const& path, std::string const& value, std::string const& what) {
  Fd file{open(("/proc/sys/" + path).c_str(), O_WRONLY | O_CLOEXEC)};
  if (file.fd < 0) FailErrno(what, errno);
  std::string const line = value + "\n";
  if (write(file.fd, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    FailErrno(what, errno);
  }
}

nl_sock* RouteSocket(std::string const& netns) {
  auto& sock = Sockets()[netns];
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
void AddrFree::operator()(nl_addr* address) const { nl_addr_put(address); }

void Dump(std::string const& netns, int type, int family,
          std::function<void(nl_object*)> const& each, std::string const& what) {
  nl_sock* sock = RouteSocket(netns);
  rtgenmsg request{};
  request.rtgen_family = static_cast<unsigned char>(family);
  if (int error = nl_send_simple(sock, type, NLM_F_DUMP, &request, sizeof request); error < 0) {
    FailNl(what, error);
  }
  struct Reader {
    std::function<void(nl_object*)> const* each;
    static void Object(nl_object* object, void* self) {
      (*static_cast<Reader*>(self)->each)(object);
    }
    static int Message(nl_msg* message, void* self) {
      nl_msg_parse(message, Object, self);
      return NL_OK;
    }
  } reader{&each};
  // nl_socket_get_cb hands out a reference of its own, given back at once.
  nl_cb* shared = nl_socket_get_cb(sock);
  std::unique_ptr<nl_cb, void (*)(nl_cb*)> callbacks(nl_cb_clone(shared), nl_cb_put);
  nl_cb_put(shared);
  nl_cb_set(callbacks.get(), NL_CB_VALID, NL_CB_CUSTOM, Reader::Message, &reader);
  if (int error = nl_recvmsgs(sock, callbacks.get()); error < 0) FailNl(what, error);
}

std::string LinkName(nl_cache* links, int index) {
  char name[IFNAMSIZ] = {};
  return rtnl_link_i2name(links, index, name, sizeof name) ? name : "";
}

std::string AddressText(nl_addr* address) {
  char text[INET6_ADDRSTRLEN] = {};
  if (!address || nl_addr_get_len(address) == 0) return {};
  if (!inet_ntop(nl_addr_get_family(address), nl_addr_get_binary_addr(address), text,
                 sizeof text)) {
    return {};
  }
  return text;
}

std::string MacText(nl_addr* address) {
  if (!address || nl_addr_get_len(address) != 6) return {};
  auto const* bytes = static_cast<unsigned char const*>(nl_addr_get_binary_addr(address));
  char text[18];
  std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
                bytes[3], bytes[4], bytes[5]);
  return text;
}

Addr ParseAddr(std::string const& text, int family) {
  nl_addr* address = nullptr;
  if (int error = nl_addr_parse(text.c_str(), family, &address); error < 0) {
    throw HostCtlException("Invalid address " + text + ": " + nl_geterror(-error));
  }
  return Addr(address);
}
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
