// The IPsec databases of the simulated host: Security Associations and
// Security Policies, kept in the ip area.
#include <algorithm>
#include <cctype>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/ipsec.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;
using Sim::IpSecSaRecord;
using Sim::IpSecSpRecord;
namespace Net = HostCtl::Network;

// SPIs below this are reserved.
constexpr uint32_t kMinSpi = 256;
constexpr uint32_t kMaxPort = 65535;
constexpr uint32_t kMaxPrefix = 128;
constexpr Sim::AreaSet kIpsecAreas = Sim::kAreaIp | Sim::kAreaIpsec;

template <size_t N>
uint32_t WordToIndex(char const* const (&words)[N], size_t count, std::string const& text,
                     uint32_t fallback, char const* what) {
  if (text.empty()) return fallback;
  for (size_t i = 0; i < count && i < N; ++i) {
    if (text == words[i]) return static_cast<uint32_t>(i);
  }
  throw HostCtlException(std::string("Invalid ") + what + " '" + text + "'");
}

bool IsHex(std::string const& text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

// A key fits when it is `bytes` ASCII characters or `bytes` bytes in hex.
void CheckKey(std::string const& key, size_t bytes, char const* algorithm, char const* what) {
  std::string hex = key.rfind("0x", 0) == 0 ? key.substr(2) : key;
  bool fits = (key.size() == bytes) || (hex.size() == 2 * bytes && IsHex(hex));
  if (!fits) {
    throw HostCtlException(std::string("Invalid ") + what + " key for " + algorithm +
                           ": it must be " + std::to_string(bytes) + " ASCII characters or " +
                           std::to_string(2 * bytes) + " hex digits");
  }
}

std::string Canonical(Net::Ipv6Address const& address) { return address.GetStringAddress(); }

}  // namespace

char const* const IpSecConfigImpl::SA_STATE[] = {"larval", "mature", "dying", "dead", "unknown"};
char const* const IpSecConfigImpl::SA_MODE[] = {"transport", "tunnel", "any"};
char const* const IpSecConfigImpl::SA_ENCPT_ALG[] = {"null", "3des-cbc", "aes128-cbc", "none"};
char const* const IpSecConfigImpl::SA_AUTH_ALG[] = {"hmac-sha1", "hmac-sha2-256", "none"};
char const* const IpSecConfigImpl::SP_UL_PROTO_TYPE[] = {"any", "tcp", "udp", "icmp6", "none"};
char const* const IpSecConfigImpl::SP_DIRECTION[] = {"in", "out", "none"};
char const* const IpSecConfigImpl::SP_ACTION[] = {"none", "discard", "ipsec", "unset"};

IpSecConfigImpl::IpSecConfigImpl() = default;
IpSecConfigImpl::~IpSecConfigImpl() = default;

void IpSecConfigImpl::Refresh() {
  CheckFault(Operation::IpSecConfigImpl_Refresh);
  Sim::ReadHost(kIpsecAreas);
}

Net::IpSecMode IpSecConfigImpl::StringToIpSecMode(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecMode);
  return static_cast<Net::IpSecMode>(
      WordToIndex(SA_MODE, 2, text, Net::ModeTransport, "IPsec mode"));
}

Net::IpSecEncryptAlgo IpSecConfigImpl::StringToIpSecEncyptAlgo(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecEncyptAlgo);
  return static_cast<Net::IpSecEncryptAlgo>(
      WordToIndex(SA_ENCPT_ALG, 3, text, Net::EncryptNull, "encryption algorithm"));
}

Net::IpSecAuthAlgo IpSecConfigImpl::StringToIpSecAuthAlgo(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecAuthAlgo);
  return static_cast<Net::IpSecAuthAlgo>(
      WordToIndex(SA_AUTH_ALG, 2, text, Net::AuthHmacSha1, "integrity algorithm"));
}

Net::IpSecULProtoType IpSecConfigImpl::StringToIpSecULProtoType(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecULProtoType);
  return static_cast<Net::IpSecULProtoType>(
      WordToIndex(SP_UL_PROTO_TYPE, 4, text, Net::ProtoAny, "upper layer protocol"));
}

Net::IpSecDirection IpSecConfigImpl::StringToIpSecDirection(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecDirection);
  return static_cast<Net::IpSecDirection>(
      WordToIndex(SP_DIRECTION, 2, text, Net::DirectionOut, "flow direction"));
}

Net::IpSecAction IpSecConfigImpl::StringToIpSecAction(std::string const& text) {
  CheckFault(Operation::IpSecConfigImpl_StringToIpSecAction);
  return static_cast<Net::IpSecAction>(
      WordToIndex(SP_ACTION, 3, text, Net::ActionIpsec, "policy action"));
}

void IpSecConfigImpl::AddSADConfig(Net::IpSecSadParam const& param) {
  CheckFault(Operation::IpSecConfigImpl_AddSADConfig);
  if (param.name.empty()) throw HostCtlException("A Security Association needs a name");
  if (param.name == "auto") {
    throw HostCtlException("The name 'auto' is reserved for negotiated Security Associations");
  }
  if (param.name == Sim::kRemovedSaName) {
    throw HostCtlException("The name '" + param.name +
                           "' is reserved: policies name it for a removed Security Association");
  }
  if (param.spi < kMinSpi) {
    throw HostCtlException("SPI " + std::to_string(param.spi) + " is reserved: use 256 or above");
  }
  if (param.mode > Net::ModeTunnel) throw HostCtlException("Invalid Security Association mode");
  switch (param.encryptAlgo) {
    case Net::EncryptNull:
      if (!param.encryptKey.empty()) {
        throw HostCtlException("The null encryption algorithm takes no key");
      }
      break;
    case Net::Encrypt3DesCbc:
      CheckKey(param.encryptKey, 24, "3des-cbc", "encryption");
      break;
    case Net::EncryptAes128Cbc:
      CheckKey(param.encryptKey, 16, "aes128-cbc", "encryption");
      break;
    default:
      throw HostCtlException("Invalid encryption algorithm");
  }
  switch (param.authAlgo) {
    case Net::AuthHmacSha1:
      CheckKey(param.authKey, 20, "hmac-sha1", "integrity");
      break;
    case Net::AuthHmacSha256:
      CheckKey(param.authKey, 32, "hmac-sha2-256", "integrity");
      break;
    default:
      throw HostCtlException("Invalid integrity algorithm");
  }
  IpSecSaRecord record;
  record.name = param.name;
  record.lifetime = param.lifetime;
  record.spi = param.spi;
  record.source = Canonical(param.source);
  record.destination = Canonical(param.destination);
  record.mode = param.mode;
  record.encrypt_algo = param.encryptAlgo;
  record.encrypt_key = param.encryptKey;
  record.auth_algo = param.authAlgo;
  record.auth_key = param.authKey;
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    for (auto const& sa : host.ip.ipsec_sas) {
      if (sa.name == record.name) {
        throw HostCtlException("Security Association " + record.name + " already exists");
      }
      if (sa.spi == record.spi && sa.source == record.source &&
          sa.destination == record.destination) {
        throw HostCtlException("SPI " + std::to_string(record.spi) + " is already used between " +
                               record.source + " and " + record.destination + " by " + sa.name);
      }
    }
    host.ip.ipsec_sas.push_back(record);
  });
}

namespace {

// Policies that used a removed SA keep the mark of a deleted SA.
void OrphanPolicies(HostModel& host, std::string const& name) {
  for (auto& sp : host.ip.ipsec_sps) {
    if (!sp.sa_name.empty() && sp.sa_name == name) sp.sa_name = Sim::kRemovedSaName;
  }
}

}  // namespace

void IpSecConfigImpl::RemoveSADConfig(std::string const& name) {
  CheckFault(Operation::IpSecConfigImpl_RemoveSADConfig);
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    auto& sas = host.ip.ipsec_sas;
    auto it = std::find_if(sas.begin(), sas.end(),
                           [&](auto const& sa) { return sa.name == name && !sa.automatic; });
    if (it == sas.end()) throw HostCtlException("Security Association " + name + " not found");
    sas.erase(it);
    OrphanPolicies(host, name);
  });
}

void IpSecConfigImpl::RemoveAutoSADConfig(Net::IpSecSadParam const& param) {
  CheckFault(Operation::IpSecConfigImpl_RemoveAutoSADConfig);
  std::string source = Canonical(param.source);
  std::string destination = Canonical(param.destination);
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    auto& sas = host.ip.ipsec_sas;
    auto it = std::find_if(sas.begin(), sas.end(), [&](auto const& sa) {
      return sa.automatic && sa.spi == param.spi && sa.source == source &&
             sa.destination == destination;
    });
    if (it == sas.end()) {
      throw HostCtlException("No negotiated Security Association from " + source + " to " +
                             destination + " with SPI " + std::to_string(param.spi));
    }
    sas.erase(it);
  });
}

void IpSecConfigImpl::FlushSADConfig() {
  CheckFault(Operation::IpSecConfigImpl_FlushSADConfig);
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    for (auto const& sa : host.ip.ipsec_sas) {
      if (!sa.automatic) OrphanPolicies(host, sa.name);
    }
    host.ip.ipsec_sas.clear();
  });
}

void IpSecConfigImpl::GetSADConfigList(std::list<Net::IpSecSadParam>& list) {
  CheckFault(Operation::IpSecConfigImpl_GetSADConfigList);
  list.clear();
  for (auto const& sa : Sim::ReadHost(kIpsecAreas).ip.ipsec_sas) {
    Net::IpSecSadParam param;
    param.name = sa.name;
    param.state = static_cast<Net::IpSecSaState>(sa.state);
    param.lifetime = sa.lifetime;
    param.spi = sa.spi;
    param.source = Net::Ipv6Address(sa.source);
    param.destination = Net::Ipv6Address(sa.destination);
    param.mode = static_cast<Net::IpSecMode>(sa.mode);
    param.encryptAlgo = static_cast<Net::IpSecEncryptAlgo>(sa.encrypt_algo);
    param.encryptKey = sa.encrypt_key;
    param.authAlgo = static_cast<Net::IpSecAuthAlgo>(sa.auth_algo);
    param.authKey = sa.auth_key;
    list.push_back(param);
  }
}

void IpSecConfigImpl::AddSPDConfig(Net::IpSecSpdParam const& param) {
  CheckFault(Operation::IpSecConfigImpl_AddSPDConfig);
  if (param.name.empty()) throw HostCtlException("A Security Policy needs a name");
  if (param.sourcePort > kMaxPort || param.destinationPort > kMaxPort) {
    throw HostCtlException("Invalid port: ports must be between 0 and 65535");
  }
  if (param.sourcePrefixLength > kMaxPrefix || param.destinationPrefixLength > kMaxPrefix) {
    throw HostCtlException("Invalid prefix length: it must be between 0 and 128");
  }
  if (param.protocol > Net::ProtoIcmp6 || param.direction > Net::DirectionOut ||
      param.action > Net::ActionIpsec || param.mode > Net::ModeAny) {
    throw HostCtlException("Invalid Security Policy setting");
  }
  IpSecSpRecord record;
  record.name = param.name;
  record.source = Canonical(param.source);
  record.source_prefix = param.sourcePrefixLength;
  record.source_port = param.sourcePort;
  record.destination = Canonical(param.destination);
  record.destination_prefix = param.destinationPrefixLength;
  record.destination_port = param.destinationPort;
  record.protocol = param.protocol;
  record.direction = param.direction;
  record.action = param.action;
  record.mode = param.mode;
  record.sa_name = param.saName;
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    for (auto const& sp : host.ip.ipsec_sps) {
      if (sp.name == record.name) {
        throw HostCtlException("Security Policy " + record.name + " already exists");
      }
    }
    if (!record.sa_name.empty()) {
      auto const& sas = host.ip.ipsec_sas;
      if (std::none_of(sas.begin(), sas.end(), [&](auto const& sa) {
            return !sa.automatic && sa.name == record.sa_name;
          })) {
        throw HostCtlException("Security Association " + record.sa_name + " not found");
      }
    }
    host.ip.ipsec_sps.push_back(record);
  });
}

void IpSecConfigImpl::RemoveSPDConfig(std::string const& name) {
  CheckFault(Operation::IpSecConfigImpl_RemoveSPDConfig);
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) {
    auto& sps = host.ip.ipsec_sps;
    auto it = std::find_if(sps.begin(), sps.end(), [&](auto const& sp) { return sp.name == name; });
    if (it == sps.end()) throw HostCtlException("Security Policy " + name + " not found");
    sps.erase(it);
  });
}

void IpSecConfigImpl::FlushSPDConfig() {
  CheckFault(Operation::IpSecConfigImpl_FlushSPDConfig);
  Sim::ChangeHost(kIpsecAreas, [&](HostModel& host) { host.ip.ipsec_sps.clear(); });
}

void IpSecConfigImpl::GetSPDConfigList(std::list<Net::IpSecSpdParam>& list) {
  CheckFault(Operation::IpSecConfigImpl_GetSPDConfigList);
  list.clear();
  for (auto const& sp : Sim::ReadHost(kIpsecAreas).ip.ipsec_sps) {
    Net::IpSecSpdParam param;
    param.name = sp.name;
    param.source = Net::Ipv6Address(sp.source);
    param.sourcePrefixLength = sp.source_prefix;
    param.sourcePort = sp.source_port;
    param.destination = Net::Ipv6Address(sp.destination);
    param.destinationPrefixLength = sp.destination_prefix;
    param.destinationPort = sp.destination_port;
    param.protocol = static_cast<Net::IpSecULProtoType>(sp.protocol);
    param.direction = static_cast<Net::IpSecDirection>(sp.direction);
    param.action = static_cast<Net::IpSecAction>(sp.action);
    param.mode = static_cast<Net::IpSecMode>(sp.mode);
    param.saName = sp.sa_name;
    list.push_back(param);
  }
}

}  // namespace OrvkCtl::Network
