// IPsec of the linux host: Security Policies are the kernel's xfrm policies,
// Security Associations its xfrm states (ESP), both of the process's network
// namespace, read and changed over xfrm netlink with the requests every other
// part of the backend sends (nothing more is loaded). The databases are
// read only when an operation names them (kAreaIpsec), so other listings do
// not pay for them.
//
// What xfrm cannot hold, the names, the backend keeps: an SA by its kernel
// identity (destination and SPI), a policy by its selector and direction.
// What the kernel holds and the backend did not make shows too: an SA as a
// negotiated one ("auto"), a policy named after its kernel index. A policy
// that asks for one SA pins the SA's SPI and addresses in its template; when
// that SA is gone, it names "UNKNOWN". Keys go to the kernel and nowhere else:
// not into the kept state, nor into any message.
#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/xfrm.h>
#include <libmnl/libmnl.h>
#include <string.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "host_rules.h"
#include "hostctl/ipsec.h"
#include "hostctl/lib.h"
#include "hostctl/network_types.h"
#include "kernel.h"
#include "linux_host.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using HostCtl::Lib::HostCtlException;
using Sim::IpSecSaRecord;
using Sim::IpSecSpRecord;
namespace Net = HostCtl::Network;

// ---- Talking to the kernel ------------------------------------------------

// Sends `request`; throws "Cannot <what>: <the system's words>" when the
// kernel refuses.
void Change(Request& request, std::string const& what) {
  if (int error = request.Send(); error != 0) FailErrno(what, error);
}

// A copy of the fixed part of a message of `type`, or nothing for another or
// a short one. (Messages are aligned to 4 bytes; these parts hold 64-bit
// counters.)
template <class T>
std::optional<T> FixedPart(nlmsghdr const* header, int type) {
  if (header->nlmsg_type != type || mnl_nlmsg_get_payload_len(header) < sizeof(T)) return {};
  T part;
  std::memcpy(&part, mnl_nlmsg_get_payload(header), sizeof part);
  return part;
}

// The attributes of an xfrm message whose fixed part is `size` bytes, by
// type (null for those it has not).
std::vector<nlattr const*> Attributes(nlmsghdr const* header, size_t size) {
  std::vector<nlattr const*> attributes(XFRMA_MAX + 1);
  if (mnl_nlmsg_get_payload_len(header) < MNL_ALIGN(size)) return attributes;
  mnl_attr_parse(
      header, static_cast<unsigned>(size),
      [](nlattr const* attribute, void* table) {
        auto& found = *static_cast<std::vector<nlattr const*>*>(table);
        if (uint16_t const type = mnl_attr_get_type(attribute); type < found.size()) {
          found[type] = attribute;
        }
        return MNL_CB_OK;
      },
      &attributes);
  return attributes;
}

// The payload of `attribute` (a part of 4-byte fields only, as a message's
// attributes are aligned to 4 bytes), or null when it is missing or short.
template <class T>
T const* Payload(nlattr const* attribute) {
  static_assert(alignof(T) <= 4);
  if (!attribute || mnl_attr_get_payload_len(attribute) < sizeof(T)) return nullptr;
  return static_cast<T const*>(mnl_attr_get_payload(attribute));
}

// ---- Addresses --------------------------------------------------------------

// An address of the host's records ("2001:db8::1", "::ffff:10.0.0.1") as
// xfrm has it: an IPv4-mapped address is IPv4, its prefix 96 shorter.
struct XfrmAddress {
  bool ipv4 = false;
  xfrm_address_t address{};
  uint8_t prefix = 0;
};

bool IsMapped(Net::Ipv6Address::Bytes const& bytes) {
  static constexpr uint8_t kMapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
  return std::memcmp(bytes.data(), kMapped, sizeof kMapped) == 0;
}

// `any` answers whether the record's text means any address ("::" with
// prefix 0), which fits either family.
XfrmAddress ToXfrm(std::string const& text, uint32_t prefix, bool ipv4) {
  auto const bytes = Net::Ipv6Address(text).GetBytes();
  XfrmAddress out;
  out.ipv4 = ipv4;
  if (ipv4) {
    std::memcpy(&out.address.a4, bytes.data() + 12, 4);
    out.prefix = static_cast<uint8_t>(prefix >= 96 ? prefix - 96 : 0);
  } else {
    std::memcpy(out.address.a6, bytes.data(), 16);
    out.prefix = static_cast<uint8_t>(prefix);
  }
  return out;
}

// Whether a record's pair of addresses is IPv4 for the kernel: both mapped,
// or one mapped and the other any.
bool PairIsIpv4(std::string const& a, uint32_t a_prefix, std::string const& b, uint32_t b_prefix) {
  auto kind = [](std::string const& text, uint32_t prefix) {
    auto const bytes = Net::Ipv6Address(text).GetBytes();
    if (IsMapped(bytes) && prefix >= 96) return 1;  // IPv4
    if (text == "::" && prefix == 0) return 0;      // either
    return 2;                                       // IPv6
  };
  int const x = kind(a, a_prefix);
  int const y = kind(b, b_prefix);
  return x != 2 && y != 2 && (x == 1 || y == 1);
}

// The record's text of an xfrm address of `family`; `prefix` is made an
// IPv6 prefix length (0 stays 0: any address of either family is "::/0").
std::string FromXfrm(int family, xfrm_address_t const& address, uint32_t* prefix = nullptr) {
  Net::Ipv6Address::Bytes bytes{};
  if (family == AF_INET) {
    bool const any = address.a4 == 0 && (!prefix || *prefix == 0);
    if (!any) {
      bytes[10] = bytes[11] = 0xff;
      std::memcpy(bytes.data() + 12, &address.a4, 4);
      if (prefix) *prefix += 96;
    }
  } else {
    std::memcpy(bytes.data(), address.a6, 16);
  }
  return Net::Ipv6Address(bytes).GetStringAddress();
}

// ---- Security Associations ---------------------------------------------

struct Algorithm {
  uint32_t index;      // the record's enumerator
  char const* kernel;  // the kernel's name
  size_t key_bytes;
  unsigned truncation_bits;
};
constexpr Algorithm kEncryption[] = {
    {Net::EncryptNull, "ecb(cipher_null)", 0, 0},
    {Net::Encrypt3DesCbc, "cbc(des3_ede)", 24, 0},
    {Net::EncryptAes128Cbc, "cbc(aes)", 16, 0},
};
constexpr Algorithm kIntegrity[] = {
    {Net::AuthHmacSha1, "hmac(sha1)", 20, 96},
    {Net::AuthHmacSha256, "hmac(sha256)", 32, 128},
};

template <size_t N>
Algorithm const& AlgorithmOf(Algorithm const (&table)[N], uint32_t index) {
  for (auto const& algorithm : table) {
    if (algorithm.index == index) return algorithm;
  }
  throw HostCtlException("This IPsec algorithm is not available on a linux host");
}

// The record's enumerator of a kernel algorithm; `none` for another.
template <size_t N>
uint32_t IndexOf(Algorithm const (&table)[N], char const* name, uint32_t none) {
  for (auto const& algorithm : table) {
    if (std::strncmp(algorithm.kernel, name, 64) == 0) return algorithm.index;
  }
  return none;
}

// Holds key bytes and wipes them when it goes.
struct Secret {
  std::vector<unsigned char> bytes;
  Secret() = default;
  Secret(Secret const&) = delete;
  ~Secret() {
    if (!bytes.empty()) explicit_bzero(bytes.data(), bytes.size());
  }
};

// Fills `out` with the `size` bytes of xfrm_algo(_auth) header `head` and
// the key: `bytes` ASCII characters, or as many bytes in hex (with or
// without "0x"). The host library checked the key's form before.
void BuildAlgorithm(void const* head, size_t size, std::string const& key, size_t bytes,
                    Secret& out) {
  out.bytes.assign(size + bytes, 0);
  std::memcpy(out.bytes.data(), head, size);
  if (key.size() == bytes) {
    std::memcpy(out.bytes.data() + size, key.data(), bytes);
    return;
  }
  size_t const skip = key.rfind("0x", 0) == 0 ? 2 : 0;
  for (size_t i = 0; i < bytes && skip + 2 * i + 1 < key.size(); ++i) {
    char pair[3] = {key[skip + 2 * i], key[skip + 2 * i + 1], 0};
    out.bytes[size + i] = static_cast<unsigned char>(std::strtoul(pair, nullptr, 16));
    explicit_bzero(pair, sizeof pair);
  }
}

// What the kernel's refusal of a new SA means, in words.
std::string SaRefusal(int error, Algorithm const& encryption, Algorithm const& integrity) {
  std::string const pair = std::string(encryption.kernel) + " with " + integrity.kernel;
  switch (error) {
    case EPROTONOSUPPORT:
      return "the kernel does not have ESP, so it has none of the algorithms of IPsec (" + pair +
             " asked)";
    case ENOSYS:
    case ENOENT:
      return "the kernel does not have the algorithm " + pair;
    case EEXIST:
      return "the kernel has an SA with that destination and SPI already";
    default:
      return std::strerror(error);
  }
}

xfrm_usersa_id SaId(IpSecSaRecord const& sa) {
  bool const ipv4 = PairIsIpv4(sa.source, 128, sa.destination, 128);
  xfrm_usersa_id id{};
  id.daddr = ToXfrm(sa.destination, 128, ipv4).address;
  id.spi = htonl(sa.spi);
  id.family = ipv4 ? AF_INET : AF_INET6;
  id.proto = IPPROTO_ESP;
  return id;
}

void AddSa(IpSecSaRecord const& sa) {
  std::string const what = "add Security Association " + sa.name;
  Algorithm const& encryption = AlgorithmOf(kEncryption, sa.encrypt_algo);
  Algorithm const& integrity = AlgorithmOf(kIntegrity, sa.auth_algo);
  bool const ipv4 = PairIsIpv4(sa.source, 128, sa.destination, 128);
  xfrm_usersa_id const id = SaId(sa);
  xfrm_usersa_info info{};
  info.id.daddr = id.daddr;
  info.id.spi = id.spi;
  info.id.proto = id.proto;
  info.saddr = ToXfrm(sa.source, 128, ipv4).address;
  info.family = id.family;
  info.sel.family = id.family;
  info.mode = sa.mode == Net::ModeTunnel ? XFRM_MODE_TUNNEL : XFRM_MODE_TRANSPORT;
  info.replay_window = 32;
  info.lft.soft_byte_limit = info.lft.hard_byte_limit = XFRM_INF;
  info.lft.soft_packet_limit = info.lft.hard_packet_limit = XFRM_INF;
  info.lft.hard_add_expires_seconds = sa.lifetime;

  xfrm_algo crypt{};
  std::strncpy(crypt.alg_name, encryption.kernel, sizeof crypt.alg_name - 1);
  crypt.alg_key_len = static_cast<unsigned>(encryption.key_bytes * 8);
  Secret crypt_key;
  BuildAlgorithm(&crypt, sizeof crypt, sa.encrypt_key, encryption.key_bytes, crypt_key);
  xfrm_algo_auth auth{};
  std::strncpy(auth.alg_name, integrity.kernel, sizeof auth.alg_name - 1);
  auth.alg_key_len = static_cast<unsigned>(integrity.key_bytes * 8);
  auth.alg_trunc_len = integrity.truncation_bits;
  Secret auth_key;
  BuildAlgorithm(&auth, sizeof auth, sa.auth_key, integrity.key_bytes, auth_key);

  Request request(XFRM_MSG_NEWSA, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, NETLINK_XFRM);
  request.Append(&info, sizeof info)
      .Put(XFRMA_ALG_CRYPT, crypt_key.bytes.data(), crypt_key.bytes.size())
      .Put(XFRMA_ALG_AUTH_TRUNC, auth_key.bytes.data(), auth_key.bytes.size());
  if (int error = request.Send(); error != 0) {
    throw HostCtlException("Cannot " + what + ": " + SaRefusal(error, encryption, integrity));
  }
}

// An SA or a policy as the kernel holds it (an SA with its keys), for putting
// it back: only in memory, wiped when it goes.
using Saved = std::shared_ptr<Secret>;

// Asks the kernel for the object `id` names (`size` bytes) with `type`,
// keeps its answer in `saved`; throws "Cannot <what>: ..." when it has none.
void Save(int type, void const* id, size_t size, Saved const& saved, std::string const& what) {
  Request get(type, 0, NETLINK_XFRM);
  get.Append(id, size);
  if (int error = get.Send({}, [&](nlmsghdr const* header) {
        auto const* data = static_cast<unsigned char const*>(mnl_nlmsg_get_payload(header));
        saved->bytes.assign(data, data + mnl_nlmsg_get_payload_len(header));
      });
      error != 0) {
    FailErrno(what, error);
  }
}

// Gives the kernel back what Save kept, as a new object of `type`.
void Restore(Saved const& saved, int type, std::string const& what) {
  if (!saved || saved->bytes.empty()) return;
  Request request(type, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, NETLINK_XFRM);
  Change(request.Append(saved->bytes.data(), saved->bytes.size()), what);
}

// Takes SA `sa` out of the kernel; gives what puts it back.
Saved RemoveSa(IpSecSaRecord const& sa) {
  std::string const what = "remove Security Association " + sa.name;
  xfrm_usersa_id const id = SaId(sa);
  auto saved = std::make_shared<Secret>();
  Save(XFRM_MSG_GETSA, &id, sizeof id, saved, what);
  Request remove(XFRM_MSG_DELSA, NLM_F_ACK, NETLINK_XFRM);
  Change(remove.Append(&id, sizeof id), what);
  return saved;
}

// The kernel's ESP SAs, named as `kept` names them, in its order.
std::vector<IpSecSaRecord> ReadSas(std::vector<IpSecSaRecord> const& kept) {
  std::vector<IpSecSaRecord> sas;
  Request dump(XFRM_MSG_GETSA, NLM_F_DUMP, NETLINK_XFRM);
  int const error = dump.Send({}, [&](nlmsghdr const* header) {
    auto const info = FixedPart<xfrm_usersa_info>(header, XFRM_MSG_NEWSA);
    if (!info || info->id.proto != IPPROTO_ESP) return;
    auto attributes = Attributes(header, sizeof *info);
    IpSecSaRecord sa;
    sa.spi = ntohl(info->id.spi);
    sa.source = FromXfrm(info->family, info->saddr);
    sa.destination = FromXfrm(info->family, info->id.daddr);
    sa.mode = info->mode == XFRM_MODE_TUNNEL ? Net::ModeTunnel : Net::ModeTransport;
    sa.lifetime = info->lft.hard_add_expires_seconds;
    sa.state = Net::SaMature;
    sa.encrypt_algo = Net::EncryptNone;
    if (auto const* crypt = Payload<xfrm_algo>(attributes[XFRMA_ALG_CRYPT])) {
      sa.encrypt_algo = IndexOf(kEncryption, crypt->alg_name, Net::EncryptNone);
    }
    sa.auth_algo = Net::AuthNone;
    if (auto const* auth = Payload<xfrm_algo_auth>(attributes[XFRMA_ALG_AUTH_TRUNC])) {
      sa.auth_algo = IndexOf(kIntegrity, auth->alg_name, Net::AuthNone);
    } else if (auto const* plain = Payload<xfrm_algo>(attributes[XFRMA_ALG_AUTH])) {
      sa.auth_algo = IndexOf(kIntegrity, plain->alg_name, Net::AuthNone);
    }
    sa.name = "auto";
    sa.automatic = true;
    for (auto const& known : kept) {
      if (!known.automatic && known.spi == sa.spi && known.destination == sa.destination) {
        sa.name = known.name;
        sa.automatic = false;
      }
    }
    sas.push_back(std::move(sa));
  });
  if (error != 0) FailErrno("read the IPsec Security Associations", error);
  return sas;
}

// ---- Security Policies ----------------------------------------------------

constexpr uint8_t kProtocols[] = {0, IPPROTO_TCP, IPPROTO_UDP, IPPROTO_ICMPV6};

xfrm_selector Selector(IpSecSpRecord const& sp) {
  bool const ipv4 = PairIsIpv4(sp.source, sp.source_prefix, sp.destination, sp.destination_prefix);
  XfrmAddress const source = ToXfrm(sp.source, sp.source_prefix, ipv4);
  XfrmAddress const destination = ToXfrm(sp.destination, sp.destination_prefix, ipv4);
  xfrm_selector selector{};
  selector.family = ipv4 ? AF_INET : AF_INET6;
  selector.saddr = source.address;
  selector.prefixlen_s = source.prefix;
  selector.daddr = destination.address;
  selector.prefixlen_d = destination.prefix;
  selector.sport = htons(static_cast<uint16_t>(sp.source_port));
  selector.sport_mask = sp.source_port ? 0xffff : 0;
  selector.dport = htons(static_cast<uint16_t>(sp.destination_port));
  selector.dport_mask = sp.destination_port ? 0xffff : 0;
  selector.proto = sp.protocol < std::size(kProtocols) ? kProtocols[sp.protocol] : 0;
  return selector;
}

// A policy of the kernel's forward direction reads as direction "none".
uint8_t Direction(IpSecSpRecord const& sp) {
  return sp.direction == Net::DirectionIn    ? XFRM_POLICY_IN
         : sp.direction == Net::DirectionOut ? XFRM_POLICY_OUT
                                             : XFRM_POLICY_FWD;
}

void AddPolicy(IpSecSpRecord const& sp, std::vector<IpSecSaRecord> const& sas,
               std::string const& what) {
  xfrm_userpolicy_info info{};
  info.sel = Selector(sp);
  info.dir = Direction(sp);
  info.action = sp.action == Net::ActionDiscard ? XFRM_POLICY_BLOCK : XFRM_POLICY_ALLOW;
  info.lft.soft_byte_limit = info.lft.hard_byte_limit = XFRM_INF;
  info.lft.soft_packet_limit = info.lft.hard_packet_limit = XFRM_INF;
  Request request(XFRM_MSG_NEWPOLICY, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, NETLINK_XFRM);
  request.Append(&info, sizeof info);
  if (sp.action == Net::ActionIpsec) {
    xfrm_user_tmpl tmpl{};
    tmpl.id.proto = IPPROTO_ESP;
    tmpl.family = info.sel.family;
    tmpl.mode = sp.mode == Net::ModeTunnel ? XFRM_MODE_TUNNEL : XFRM_MODE_TRANSPORT;
    tmpl.aalgos = tmpl.ealgos = tmpl.calgos = ~0u;
    for (auto const& sa : sas) {
      if (sp.sa_name.empty() || sa.automatic || sa.name != sp.sa_name) continue;
      bool const ipv4 = PairIsIpv4(sa.source, 128, sa.destination, 128);
      tmpl.family = ipv4 ? AF_INET : AF_INET6;
      tmpl.id.spi = htonl(sa.spi);
      tmpl.id.daddr = ToXfrm(sa.destination, 128, ipv4).address;
      tmpl.saddr = ToXfrm(sa.source, 128, ipv4).address;
    }
    request.Put(XFRMA_TMPL, &tmpl, sizeof tmpl);
  }
  Change(request, what);
}

// A policy another tool made is named "policy-<its kernel index>".
constexpr char kKernelPolicyPrefix[] = "policy-";

// The kernel index in such a name, or 0 for another name.
uint32_t KernelIndex(std::string const& name) {
  size_t const length = sizeof kKernelPolicyPrefix - 1;
  if (name.rfind(kKernelPolicyPrefix, 0) != 0 || name.size() == length ||
      name.find_first_not_of("0123456789", length) != std::string::npos) {
    return 0;
  }
  return static_cast<uint32_t>(std::strtoul(name.c_str() + length, nullptr, 10));
}

// Takes policy `sp` out of the kernel; gives what puts it back.
Saved RemovePolicy(IpSecSpRecord const& sp, std::string const& what) {
  xfrm_userpolicy_id id{};
  id.dir = Direction(sp);
  // A protocol the records have no word for: only its index finds it.
  if (sp.protocol == Net::ProtoNone) {
    id.index = KernelIndex(sp.name);
  } else {
    id.sel = Selector(sp);
  }
  auto saved = std::make_shared<Secret>();
  Save(XFRM_MSG_GETPOLICY, &id, sizeof id, saved, what);
  Change(Request(XFRM_MSG_DELPOLICY, NLM_F_ACK, NETLINK_XFRM).Append(&id, sizeof id), what);
  return saved;
}

// Whether two records name the same kernel policy: its selector and
// direction.
bool SamePolicy(IpSecSpRecord const& a, IpSecSpRecord const& b) {
  return a.source == b.source && a.source_prefix == b.source_prefix &&
         a.source_port == b.source_port && a.destination == b.destination &&
         a.destination_prefix == b.destination_prefix && a.destination_port == b.destination_port &&
         a.protocol == b.protocol && a.direction == b.direction;
}

// The kernel's policies of the main type, named as `kept` names them, with
// the names of the SAs `sas` their templates pin.
std::vector<IpSecSpRecord> ReadPolicies(std::vector<IpSecSpRecord> const& kept,
                                        std::vector<IpSecSaRecord> const& sas) {
  std::vector<IpSecSpRecord> sps;
  Request dump(XFRM_MSG_GETPOLICY, NLM_F_DUMP, NETLINK_XFRM);
  int const error = dump.Send({}, [&](nlmsghdr const* header) {
    auto const info = FixedPart<xfrm_userpolicy_info>(header, XFRM_MSG_NEWPOLICY);
    if (!info || info->dir >= XFRM_POLICY_MAX) return;  // (a socket's own policy)
    auto attributes = Attributes(header, sizeof *info);
    if (auto const* type = Payload<xfrm_userpolicy_type>(attributes[XFRMA_POLICY_TYPE]);
        type && type->type != XFRM_POLICY_TYPE_MAIN) {
      return;
    }
    IpSecSpRecord sp;
    xfrm_selector const& selector = info->sel;
    sp.source_prefix = selector.prefixlen_s;
    sp.source = FromXfrm(selector.family, selector.saddr, &sp.source_prefix);
    sp.destination_prefix = selector.prefixlen_d;
    sp.destination = FromXfrm(selector.family, selector.daddr, &sp.destination_prefix);
    sp.source_port = selector.sport_mask ? ntohs(selector.sport) : 0;
    sp.destination_port = selector.dport_mask ? ntohs(selector.dport) : 0;
    sp.protocol = Net::ProtoNone;
    for (uint32_t i = 0; i < std::size(kProtocols); ++i) {
      if (kProtocols[i] == selector.proto) sp.protocol = i;
    }
    sp.direction = info->dir == XFRM_POLICY_IN    ? Net::DirectionIn
                   : info->dir == XFRM_POLICY_OUT ? Net::DirectionOut
                                                  : Net::DirectionNone;
    sp.mode = Net::ModeAny;
    sp.action = info->action == XFRM_POLICY_BLOCK ? Net::ActionDiscard : Net::ActionNone;
    nlattr const* templates = attributes[XFRMA_TMPL];
    if (auto const* tmpl = Payload<xfrm_user_tmpl>(templates)) {
      sp.action = info->action == XFRM_POLICY_BLOCK ? Net::ActionDiscard : Net::ActionIpsec;
      sp.mode = tmpl->mode == XFRM_MODE_TUNNEL ? Net::ModeTunnel : Net::ModeTransport;
      if (tmpl->id.spi != 0) {
        std::string const destination = FromXfrm(tmpl->family, tmpl->id.daddr);
        sp.sa_name = Sim::kRemovedSaName;
        for (auto const& sa : sas) {
          if (sa.spi == ntohl(tmpl->id.spi) && sa.destination == destination) sp.sa_name = sa.name;
        }
      }
    }
    sp.name = kKernelPolicyPrefix + std::to_string(info->index);
    for (auto const& known : kept) {
      // (A name of that form was the kernel's index then, not now.)
      if (KernelIndex(known.name) != 0 || !SamePolicy(known, sp)) continue;
      sp.name = known.name;
      // A policy asked without a mode gets a transport template.
      if (known.mode == Net::ModeAny && sp.mode == Net::ModeTransport) sp.mode = Net::ModeAny;
    }
    sps.push_back(std::move(sp));
  });
  if (error != 0) FailErrno("read the IPsec Security Policies", error);
  return sps;
}

// ---- The family -------------------------------------------------------------

void ReadIpsec(HostModel& host) {
  auto& ip = host.ip;
  std::vector<IpSecSaRecord> sas = ReadSas(ip.ipsec_sas);
  FollowOrder(ip.ipsec_sas, sas, [](IpSecSaRecord const& sa) { return sa.name; });
  std::vector<IpSecSpRecord> sps = ReadPolicies(ip.ipsec_sps, sas);
  FollowOrder(ip.ipsec_sps, sps, [](IpSecSpRecord const& sp) { return sp.name; });
  ip.ipsec_sas = std::move(sas);
  ip.ipsec_sps = std::move(sps);
}

template <class T, class Same>
bool Holds(std::vector<T> const& rows, T const& row, Same same) {
  return std::any_of(rows.begin(), rows.end(), [&](T const& other) { return same(row, other); });
}

bool SameSa(IpSecSaRecord const& a, IpSecSaRecord const& b) {
  return a.spi == b.spi && a.destination == b.destination;
}
bool SameSp(IpSecSpRecord const& a, IpSecSpRecord const& b) {
  // A policy whose SA went keeps its template: no change of the kernel's.
  bool const orphaned = b.sa_name == Sim::kRemovedSaName || a.sa_name == Sim::kRemovedSaName;
  return a.name == b.name && SamePolicy(a, b) && a.action == b.action && a.mode == b.mode &&
         (orphaned || a.sa_name == b.sa_name);
}

// Policies that go, SAs that go, SAs that come, policies that come: a
// policy never names an SA the kernel lacks.
void PlanIpsec(HostModel const& before, HostModel const& after, Plan& plan) {
  auto const& was = before.ip;
  auto const& now = after.ip;
  for (auto const& sp : was.ipsec_sps) {
    if (Holds(now.ipsec_sps, sp, SameSp)) continue;
    std::string const what = "remove Security Policy " + sp.name;
    auto saved = std::make_shared<Saved>();
    plan.push_back({what, [sp, what, saved] { *saved = RemovePolicy(sp, what); },
                    [sp, saved] {
                      Restore(*saved, XFRM_MSG_NEWPOLICY, "put back Security Policy " + sp.name);
                    }});
  }
  for (auto const& sa : was.ipsec_sas) {
    if (Holds(now.ipsec_sas, sa, SameSa)) continue;
    auto saved = std::make_shared<Saved>();
    plan.push_back({"remove Security Association " + sa.name,
                    [sa, saved] { *saved = RemoveSa(sa); },
                    [sa, saved] {
                      Restore(*saved, XFRM_MSG_NEWSA, "put back Security Association " + sa.name);
                    }});
  }
  for (auto const& sa : now.ipsec_sas) {
    if (Holds(was.ipsec_sas, sa, SameSa)) continue;
    plan.push_back(
        {"add Security Association " + sa.name, [sa] { AddSa(sa); }, [sa] { RemoveSa(sa); }});
  }
  for (auto const& sp : now.ipsec_sps) {
    if (Holds(was.ipsec_sps, sp, SameSp)) continue;
    if (KernelIndex(sp.name) != 0) {
      throw HostCtlException("The name " + sp.name +
                             " is the linux host's own, for policies other tools made: choose "
                             "another");
    }
    std::string const what = "add Security Policy " + sp.name;
    auto const sas = now.ipsec_sas;
    plan.push_back({what, [sp, sas, what] { AddPolicy(sp, sas, what); },
                    [sp] { RemovePolicy(sp, "take back Security Policy " + sp.name); }});
  }
}

// Names are kept, the rest is the kernel's: nothing to copy.
void KeepIpsec(HostModel const&, HostModel&) {}

}  // namespace

Family IpsecFamily() { return {"ipsec", Sim::kAreaIpsec, ReadIpsec, PlanIpsec, KeepIpsec}; }

}  // namespace OrvkCtl::Linux
