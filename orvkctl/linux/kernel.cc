#include "kernel.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <linux/veth.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>

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

struct SocketClose {
  void operator()(mnl_socket* sock) const { mnl_socket_close(sock); }
};
using Socket = std::unique_ptr<mnl_socket, SocketClose>;

constexpr char kNamespaceFolder[] = "/run/netns/";

// A netlink socket per namespace and protocol (route, xfrm), made on first
// use and kept until the process ends (or its namespace is removed).
std::map<std::pair<std::string, int>, Socket>& Sockets() {
  static std::map<std::pair<std::string, int>, Socket> sockets;
  return sockets;
}

// Forgets the sockets of namespace `netns`.
void ForgetSockets(std::string const& netns) {
  std::erase_if(Sockets(), [&](auto const& entry) { return entry.first.first == netns; });
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
  ForgetSockets(netns);
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

std::optional<std::string> ReadFile(std::string const& path) {
  Fd file{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.fd < 0) return std::nullopt;
  std::string text;
  char buffer[4096];
  for (;;) {
    ssize_t const n = read(file.fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return std::nullopt;
    if (n == 0) return text;
    text.append(buffer, static_cast<size_t>(n));
  }
}

std::string ReadSysctl(std::string const& path) {
  std::string value = ReadFile("/proc/sys/" + path).value_or("");
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

namespace {

// A socket is bound to the namespace it was made in.
mnl_socket* SocketIn(std::string const& netns, int protocol) {
  auto& sock = Sockets()[{netns, protocol}];
  if (sock) return sock.get();
  int error = 0;
  InNamespace(netns, [&] {
    sock.reset(mnl_socket_open2(protocol, SOCK_CLOEXEC));
    if (!sock || mnl_socket_bind(sock.get(), 0, MNL_SOCKET_AUTOPID) < 0) error = errno;
  });
  if (error != 0) {
    Sockets().erase({netns, protocol});
    FailNl(protocol == NETLINK_ROUTE ? "open a route netlink socket" : "open a netlink socket",
           error);
  }
  return sock.get();
}

// What the kernel's replies are handed to, and what went wrong in it.
struct Receiver {
  std::function<void(nlmsghdr const*)> const* each;
  std::exception_ptr failure;
  static int Message(nlmsghdr const* message, void* self) {
    auto* receiver = static_cast<Receiver*>(self);
    try {
      if (receiver->each) (*receiver->each)(message);
    } catch (...) {
      receiver->failure = std::current_exception();
      return MNL_CB_ERROR;
    }
    return MNL_CB_OK;
  }
};

// Sends `message` in `netns` and hands each reply to `each` until the
// kernel's acknowledgement or the end of a dump: 0, or the errno of a
// refusal.
int Exchange(std::string const& netns, int protocol, nlmsghdr* message,
             std::function<void(nlmsghdr const*)> const* each) {
  static unsigned sequence = 0;
  mnl_socket* sock = SocketIn(netns, protocol);
  message->nlmsg_seq = ++sequence;
  if (mnl_socket_sendto(sock, message, message->nlmsg_len) < 0) return errno;
  // Room for the largest dump message the kernel makes: fewer reads.
  static std::unique_ptr<char[]> const buffer(new char[32768]);
  Receiver receiver{each, nullptr};
  int result = MNL_CB_OK;
  int error = 0;
  while (result > MNL_CB_STOP) {
    ssize_t const size = mnl_socket_recvfrom(sock, buffer.get(), 32768);
    if (size < 0) {
      if (errno == EINTR) continue;
      result = MNL_CB_ERROR;
      error = errno;
      break;
    }
    errno = 0;
    result = mnl_cb_run(buffer.get(), static_cast<size_t>(size), sequence,
                        mnl_socket_get_portid(sock), Receiver::Message, &receiver);
    if (result == MNL_CB_ERROR) error = errno != 0 ? errno : EIO;
  }
  if (result == MNL_CB_ERROR && (receiver.failure || error == EPROTO || error == ESRCH)) {
    // Replies may be left unread: the next request gets a socket of its own.
    Sockets().erase({netns, protocol});
  }
  if (receiver.failure) std::rethrow_exception(receiver.failure);
  return result == MNL_CB_ERROR ? error : 0;
}

// Calls `use` for each attribute of the `size` bytes at `begin`.
template <class Use>
void EachAttr(void const* begin, size_t size, Use&& use) {
  auto const* attr = static_cast<nlattr const*>(begin);
  int left = static_cast<int>(size);
  while (mnl_attr_ok(attr, left)) {
    use(attr);
    left -= static_cast<int>(MNL_ALIGN(attr->nla_len));
    attr = mnl_attr_next(attr);
  }
}
// ... of a message after its family header of `header` bytes.
template <class Use>
void EachAttr(nlmsghdr const* message, size_t header, Use&& use) {
  if (message->nlmsg_len < MNL_NLMSG_HDRLEN + MNL_ALIGN(header)) return;
  EachAttr(mnl_nlmsg_get_payload_offset(message, header),
           message->nlmsg_len - MNL_NLMSG_HDRLEN - MNL_ALIGN(header), use);
}
// ... nested in `nest`.
template <class Use>
void EachNested(nlattr const* nest, Use&& use) {
  EachAttr(mnl_attr_get_payload(nest), mnl_attr_get_payload_len(nest), use);
}

uint32_t U32(nlattr const* attr) {
  return mnl_attr_get_payload_len(attr) >= sizeof(uint32_t) ? mnl_attr_get_u32(attr) : 0;
}
std::string Text(nlattr const* attr) {
  auto const* text = static_cast<char const*>(mnl_attr_get_payload(attr));
  return std::string(text, strnlen(text, mnl_attr_get_payload_len(attr)));
}
std::string AddressOf(int family, nlattr const* attr) {
  return AddressText(family, mnl_attr_get_payload(attr), mnl_attr_get_payload_len(attr));
}

// The family header of a message, or null for a message too short for it.
template <class T>
T const* HeaderOf(nlmsghdr const* message) {
  if (message->nlmsg_len < MNL_NLMSG_HDRLEN + sizeof(T)) return nullptr;
  return static_cast<T const*>(mnl_nlmsg_get_payload(message));
}

// A link from an RTM_NEWLINK message; with `names_only` no more than its
// index and name.
bool ParseLink(nlmsghdr const* message, LinkInfo& link, bool names_only) {
  auto const* info = HeaderOf<ifinfomsg>(message);
  if (!info) return false;
  link.index = info->ifi_index;
  link.type = info->ifi_type;
  link.flags = info->ifi_flags;
  EachAttr(message, sizeof(ifinfomsg), [&](nlattr const* attr) {
    uint16_t const type = mnl_attr_get_type(attr);
    if (type == IFLA_IFNAME) {
      link.name = Text(attr);
      return;
    }
    if (names_only) return;
    switch (type) {
      case IFLA_MTU:
        link.mtu = U32(attr);
        break;
      case IFLA_MASTER:
        link.master = static_cast<int>(U32(attr));
        break;
      case IFLA_CARRIER:
        link.carrier = mnl_attr_get_payload_len(attr) >= 1 && mnl_attr_get_u8(attr) != 0;
        break;
      case IFLA_ADDRESS:
        if (mnl_attr_get_payload_len(attr) == 6) link.mac = AddressOf(AF_PACKET, attr);
        break;
      case IFLA_STATS64:
        std::memcpy(&link.stats, mnl_attr_get_payload(attr),
                    std::min<size_t>(sizeof link.stats, mnl_attr_get_payload_len(attr)));
        break;
      case IFLA_LINKINFO:
        EachNested(attr, [&](nlattr const* info_attr) {
          if (mnl_attr_get_type(info_attr) == IFLA_INFO_KIND) link.kind = Text(info_attr);
        });
        break;
      default:
        break;
    }
  });
  return true;
}

// Dumps the links of `netns`, each to `use`.
void DumpLinks(std::string const& netns, bool names_only,
               std::function<void(LinkInfo&&)> const& use) {
  struct {
    ifinfomsg info;
    alignas(4) nlattr mask_attr;
    uint32_t mask;
  } request{};
  request.info.ifi_family = AF_UNSPEC;
  request.mask_attr.nla_type = IFLA_EXT_MASK;
  request.mask_attr.nla_len = sizeof(nlattr) + sizeof(uint32_t);
  // Counters only when they are wanted.
  request.mask = names_only ? RTEXT_FILTER_SKIP_STATS : 0;
  Dump(
      netns, RTM_GETLINK, &request, sizeof request,
      [&](nlmsghdr const* message) {
        LinkInfo link;
        if (ParseLink(message, link, names_only)) use(std::move(link));
      },
      "read the network devices");
}

// Dumps the objects of message type `type` in `netns` into records: `fill`
// makes one from a message's family header (`Header`) and attributes, or
// returns false for an object not wanted.
template <class Header, class Record, class Fill>
std::vector<Record> DumpRecords(std::string const& netns, uint16_t type, std::string const& what,
                                Fill&& fill) {
  std::vector<Record> records;
  Header const request{};
  Dump(
      netns, type, &request, sizeof request,
      [&](nlmsghdr const* message) {
        auto const* header = HeaderOf<Header>(message);
        Record record;
        if (header && fill(*header, message, record)) records.push_back(std::move(record));
      },
      what);
  return records;
}

// The texts the kernel's refusals are told with.
char const* Reason(int error) {
  switch (error) {
    case ENOENT:
    case ESRCH:
      return "Object not found";
    case EBADF:
    case ENOTSOCK:
      return "Bad socket";
    case EAGAIN:
      return "Try again";
    case ENOMEM:
    case ENOBUFS:
      return "Out of memory";
    case EACCES:
      return "No Access";
    case EFAULT:
    case EINVAL:
    case ENOPROTOOPT:
      return "Invalid input data or parameter";
    case EBUSY:
      return "Object busy";
    case EEXIST:
    case EADDRINUSE:
      return "Object exists";
    case ERANGE:
      return "Input data out of range";
    case EPROTONOSUPPORT:
      return "Protocol mismatch";
    case EAFNOSUPPORT:
      return "Address family not supported";
    case EADDRNOTAVAIL:
      return "Invalid address for specified address family";
    default:
      return std::strerror(error);
  }
}

}  // namespace

void FailNl(std::string const& what, int error) {
  throw HostCtlException("Cannot " + what + ": " + Reason(error < 0 ? -error : error));
}

void FailErrno(std::string const& what, int error) {
  throw HostCtlException("Cannot " + what + ": " + std::strerror(error));
}

Request::Request(uint16_t type, uint16_t flags, int protocol) : protocol_(protocol) {
  message_ = mnl_nlmsg_put_header(buffer_);
  message_->nlmsg_type = type;
  message_->nlmsg_flags = NLM_F_REQUEST | NLM_F_ACK | flags;
}

Request::~Request() {
  // What went out may hold a key.
  explicit_bzero(buffer_, sizeof buffer_);
}

void* Request::PutHeader(size_t size) {
  if (MNL_ALIGN(message_->nlmsg_len + size) > sizeof buffer_) {
    throw HostCtlException("A netlink request is too long");
  }
  return mnl_nlmsg_put_extra_header(message_, size);
}

Request& Request::Append(void const* data, size_t size) {
  std::memcpy(PutHeader(size), data, size);
  return *this;
}

Request& Request::Put(uint16_t type, void const* data, size_t size) {
  if (!mnl_attr_put_check(message_, sizeof buffer_, type, size, data)) {
    throw HostCtlException("A netlink request is too long");
  }
  return *this;
}

void Request::PutU32(uint16_t type, uint32_t value) { Put(type, &value, sizeof value); }

void Request::PutText(uint16_t type, std::string const& text) {
  Put(type, text.c_str(), text.size() + 1);
}

nlattr* Request::Begin(uint16_t type) {
  nlattr* nest = mnl_attr_nest_start_check(message_, sizeof buffer_, type);
  if (!nest) throw HostCtlException("A netlink request is too long");
  return nest;
}

void Request::End(nlattr* nest) { mnl_attr_nest_end(message_, nest); }

int Request::Send(std::string const& netns) {
  return Exchange(netns, protocol_, message_, nullptr);
}

int Request::Send(std::string const& netns, std::function<void(nlmsghdr const*)> const& each) {
  return Exchange(netns, protocol_, message_, &each);
}

void Request::Run(std::string const& what, std::string const& netns) {
  if (int error = Send(netns); error != 0) FailNl(what, error);
}

void Dump(std::string const& netns, uint16_t type, void const* header, size_t size,
          std::function<void(nlmsghdr const*)> const& each, std::string const& what) {
  alignas(8) char buffer[256];
  nlmsghdr* message = mnl_nlmsg_put_header(buffer);
  message->nlmsg_type = type;
  message->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  std::memcpy(mnl_nlmsg_put_extra_header(message, size), header, size);
  if (int error = Exchange(netns, NETLINK_ROUTE, message, &each); error != 0) FailNl(what, error);
}

std::vector<LinkInfo> Links(std::string const& netns) {
  std::vector<LinkInfo> links;
  DumpLinks(netns, false, [&](LinkInfo&& link) { links.push_back(std::move(link)); });
  return links;
}

std::map<int, std::string> LinkNames(std::string const& netns) {
  std::map<int, std::string> names;
  DumpLinks(netns, true, [&](LinkInfo&& link) { names[link.index] = std::move(link.name); });
  return names;
}

std::optional<LinkInfo> FindLink(std::string const& name, std::string const& netns) {
  if (name.empty() || name.size() >= IFNAMSIZ) return std::nullopt;
  Request request(RTM_GETLINK, 0);
  request.Header<ifinfomsg>().ifi_family = AF_UNSPEC;
  request.PutText(IFLA_IFNAME, name);
  std::optional<LinkInfo> found;
  int const error = request.Send(netns, [&](nlmsghdr const* message) {
    LinkInfo link;
    if (message->nlmsg_type == RTM_NEWLINK && ParseLink(message, link, false)) found = link;
  });
  if (error == ENODEV) return std::nullopt;
  if (error != 0) FailNl("read network device " + name, error);
  return found;
}

int LinkIndex(std::string const& name, std::string const& what, std::string const& netns) {
  auto const link = FindLink(name, netns);
  if (!link) FailErrno(what, ENODEV);
  return link->index;
}

std::vector<AddressInfo> Addresses(std::string const& netns) {
  return DumpRecords<ifaddrmsg, AddressInfo>(
      netns, RTM_GETADDR, "read the addresses",
      [](ifaddrmsg const& info, nlmsghdr const* message, AddressInfo& address) {
        address.index = static_cast<int>(info.ifa_index);
        address.family = info.ifa_family;
        address.prefix = info.ifa_prefixlen;
        address.scope = info.ifa_scope;
        address.flags = info.ifa_flags;
        std::string peer;
        EachAttr(message, sizeof(ifaddrmsg), [&](nlattr const* attr) {
          switch (mnl_attr_get_type(attr)) {
            case IFA_LOCAL:
              address.local = AddressOf(address.family, attr);
              break;
            case IFA_ADDRESS:
              peer = AddressOf(address.family, attr);
              break;
            case IFA_FLAGS:
              address.flags = U32(attr);
              break;
            default:
              break;
          }
        });
        // IPv6 addresses come with IFA_ADDRESS only.
        if (address.local.empty()) address.local = peer;
        return true;
      });
}

std::vector<RouteInfo> Routes(std::string const& netns) {
  return DumpRecords<rtmsg, RouteInfo>(
      netns, RTM_GETROUTE, "read the routes",
      [](rtmsg const& info, nlmsghdr const* message, RouteInfo& route) {
        // A table above 255 reads RT_TABLE_COMPAT here: none is the main one.
        if (info.rtm_table != RT_TABLE_MAIN || info.rtm_type != RTN_UNICAST) return false;
        route.family = info.rtm_family;
        route.table = info.rtm_table;
        route.type = info.rtm_type;
        route.protocol = info.rtm_protocol;
        route.prefix = info.rtm_dst_len;
        EachAttr(message, sizeof(rtmsg), [&](nlattr const* attr) {
          switch (mnl_attr_get_type(attr)) {
            case RTA_TABLE:
              route.table = U32(attr);
              break;
            case RTA_DST:
              route.destination = AddressOf(route.family, attr);
              break;
            case RTA_GATEWAY:
              route.gateway = AddressOf(route.family, attr);
              break;
            case RTA_OIF:
              route.link = static_cast<int>(U32(attr));
              break;
            case RTA_MULTIPATH:
              route.multipath = true;
              break;
            default:
              break;
          }
        });
        return true;
      });
}

std::vector<NeighborInfo> Neighbors(std::string const& netns) {
  return DumpRecords<ndmsg, NeighborInfo>(
      netns, RTM_GETNEIGH, "read the neighbors",
      [](ndmsg const& info, nlmsghdr const* message, NeighborInfo& neighbor) {
        if (info.ndm_state & (NUD_NOARP | NUD_FAILED | NUD_NONE)) return false;
        neighbor.family = info.ndm_family;
        neighbor.index = info.ndm_ifindex;
        neighbor.state = info.ndm_state;
        EachAttr(message, sizeof(ndmsg), [&](nlattr const* attr) {
          switch (mnl_attr_get_type(attr)) {
            case NDA_DST:
              neighbor.address = AddressOf(neighbor.family, attr);
              break;
            case NDA_LLADDR:
              neighbor.mac = AddressOf(AF_PACKET, attr);
              break;
            default:
              break;
          }
        });
        return true;
      });
}

Address ParseAddr(std::string const& text, int family) {
  Address address;
  address.family = family;
  auto fail = [&]() -> Address {
    throw HostCtlException("Invalid address " + text + ": Invalid input data or parameter");
  };
  if (family == AF_PACKET) {
    unsigned bytes[6];
    char end = 0;
    if (std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%c", &bytes[0], &bytes[1], &bytes[2],
                    &bytes[3], &bytes[4], &bytes[5], &end) != 6) {
      return fail();
    }
    address.size = 6;
    for (int i = 0; i < 6; ++i) address.bytes[i] = static_cast<unsigned char>(bytes[i]);
    return address;
  }
  address.size = family == AF_INET6 ? 16 : 4;
  int const bits = static_cast<int>(address.size * 8);
  if (text == "default" || text == "any") return address;
  size_t const slash = text.find('/');
  address.prefix = bits;
  if (slash != std::string::npos) {
    std::string const length = text.substr(slash + 1);
    char* end = nullptr;
    long const prefix = std::strtol(length.c_str(), &end, 10);
    if (length.empty() || *end != '\0' || prefix < 0 || prefix > bits) return fail();
    address.prefix = static_cast<int>(prefix);
  }
  if ((family != AF_INET && family != AF_INET6) ||
      inet_pton(family, text.substr(0, slash).c_str(), address.bytes) != 1) {
    return fail();
  }
  return address;
}

std::string AddressText(int family, void const* bytes, size_t size) {
  if ((family == AF_INET && size == 4) || (family == AF_INET6 && size == 16)) {
    char text[INET6_ADDRSTRLEN] = {};
    return inet_ntop(family, bytes, text, sizeof text) ? text : "";
  }
  if (size != 6) return {};
  constexpr char kDigits[] = "0123456789abcdef";
  auto const* b = static_cast<unsigned char const*>(bytes);
  std::string text(17, ':');
  for (size_t i = 0; i < 6; ++i) {
    text[3 * i] = kDigits[b[i] >> 4];
    text[3 * i + 1] = kDigits[b[i] & 0xf];
  }
  return text;
}

namespace {

// A change of link `name` of `netns`: the header is the link's, by name.
struct LinkChange : Request {
  LinkChange(std::string const& name, uint16_t type = RTM_NEWLINK) : Request(type, 0) {
    Header<ifinfomsg>().ifi_family = AF_UNSPEC;
    PutText(IFLA_IFNAME, name);
  }
};

}  // namespace

void SetLinkMtu(std::string const& name, int mtu, std::string const& netns) {
  LinkChange change(name);
  change.PutU32(IFLA_MTU, static_cast<uint32_t>(mtu));
  change.Run("set the MTU of " + name + " to " + std::to_string(mtu), netns);
}

void SetLinkUp(std::string const& name, bool up, std::string const& netns) {
  Request change(RTM_NEWLINK, 0);
  auto& info = change.Header<ifinfomsg>();
  info.ifi_change = IFF_UP;
  info.ifi_flags = up ? IFF_UP : 0;
  change.PutText(IFLA_IFNAME, name);
  change.Run((up ? "bring up " : "bring down ") + name, netns);
}

void AddBridge(std::string const& name) {
  // Exclusive: never take over a link of that name.
  Request add(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
  add.Header<ifinfomsg>().ifi_family = AF_UNSPEC;
  add.PutText(IFLA_IFNAME, name);
  nlattr* info = add.Begin(IFLA_LINKINFO);
  add.PutText(IFLA_INFO_KIND, "bridge");
  add.End(info);
  add.Run("create bridge " + name);
}

void DeleteLink(std::string const& name, std::string const& what) {
  LinkChange(name, RTM_DELLINK).Run(what);
}

void SetMaster(std::string const& name, std::string const& master) {
  std::string const what = master.empty() ? "release " + name + " from its bridge"
                                          : "add " + name + " to bridge " + master;
  int const bridge = master.empty() ? 0 : LinkIndex(master, what);
  LinkChange change(name);
  change.PutU32(IFLA_MASTER, static_cast<uint32_t>(bridge));
  change.Run(what);
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
