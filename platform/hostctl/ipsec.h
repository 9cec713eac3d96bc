// IPv6 IPsec: the host's Security Association and Security Policy databases.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace HostCtl::Network {

// Index of IpSecConfigImpl::SA_STATE.
enum IpSecSaState : uint32_t { SaLarval = 0, SaMature = 1, SaDying = 2, SaDead = 3, SaNoState = 4 };
// Index of IpSecConfigImpl::SA_MODE.
enum IpSecMode : uint32_t { ModeTransport = 0, ModeTunnel = 1, ModeAny = 2 };
// Index of IpSecConfigImpl::SA_ENCPT_ALG.
enum IpSecEncryptAlgo : uint32_t {
  EncryptNull = 0,
  Encrypt3DesCbc = 1,
  EncryptAes128Cbc = 2,
  EncryptNone = 3
};
// Index of IpSecConfigImpl::SA_AUTH_ALG.
enum IpSecAuthAlgo : uint32_t { AuthHmacSha1 = 0, AuthHmacSha256 = 1, AuthNone = 2 };
// Index of IpSecConfigImpl::SP_UL_PROTO_TYPE.
enum IpSecULProtoType : uint32_t {
  ProtoAny = 0,
  ProtoTcp = 1,
  ProtoUdp = 2,
  ProtoIcmp6 = 3,
  ProtoNone = 4
};
// Index of IpSecConfigImpl::SP_DIRECTION.
enum IpSecDirection : uint32_t { DirectionIn = 0, DirectionOut = 1, DirectionNone = 2 };
// Index of IpSecConfigImpl::SP_ACTION.
enum IpSecAction : uint32_t { ActionNone = 0, ActionDiscard = 1, ActionIpsec = 2, ActionUnset = 3 };

// A Security Association. Lifetime in seconds, 0 for no limit.
struct IpSecSadParam {
  std::string name;
  uint64_t addTime = 0;
  uint64_t useTime = 0;
  IpSecSaState state = SaNoState;
  uint64_t bytesProcessed = 0;
  uint64_t lifetime = 0;
  uint32_t spi = 0;
  Ipv6Address source;
  Ipv6Address destination;
  IpSecMode mode = ModeAny;
  IpSecEncryptAlgo encryptAlgo = EncryptNone;
  std::string encryptKey;
  IpSecAuthAlgo authAlgo = AuthNone;
  std::string authKey;
};

// A Security Policy. Port 0 stands for any port. An SA name of "UNKNOWN"
// marks a policy whose own SA was deleted.
struct IpSecSpdParam {
  uint64_t addTime = 0;
  uint64_t useTime = 0;
  Ipv6Address source;
  uint32_t sourcePrefixLength = 0;
  uint32_t sourcePort = 0;
  Ipv6Address destination;
  uint32_t destinationPrefixLength = 0;
  uint32_t destinationPort = 0;
  IpSecULProtoType protocol = ProtoNone;
  IpSecDirection direction = DirectionNone;
  IpSecAction action = ActionUnset;
  IpSecMode mode = ModeAny;
  std::string saName;
  std::string name;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The host's IPsec databases. Making the object reads nothing; every
// operation throws HostCtlException when the host cannot be read or a change
// is refused.
class IpSecConfigImpl : public virtual Lib::OrvkCtlObject {
 public:
  IpSecConfigImpl();
  ~IpSecConfigImpl() override;
  void Refresh() override;

  // The words of each enumerator, indexed by its value.
  static char const* const SA_STATE[];
  static char const* const SA_MODE[];
  static char const* const SA_ENCPT_ALG[];
  static char const* const SA_AUTH_ALG[];
  static char const* const SP_UL_PROTO_TYPE[];
  static char const* const SP_DIRECTION[];
  static char const* const SP_ACTION[];

  // Word to enumerator. An empty text gives the host's default: transport,
  // null encryption, hmac-sha1, any protocol, direction out, action ipsec.
  // An unknown word is refused.
  static HostCtl::Network::IpSecMode StringToIpSecMode(std::string const& text);
  static HostCtl::Network::IpSecEncryptAlgo StringToIpSecEncyptAlgo(std::string const& text);
  static HostCtl::Network::IpSecAuthAlgo StringToIpSecAuthAlgo(std::string const& text);
  static HostCtl::Network::IpSecULProtoType StringToIpSecULProtoType(std::string const& text);
  static HostCtl::Network::IpSecDirection StringToIpSecDirection(std::string const& text);
  static HostCtl::Network::IpSecAction StringToIpSecAction(std::string const& text);

  // Adds a Security Association. Refuses an empty or used name, the name
  // "auto" (kept for SAs negotiated by key exchange), an SPI below 256, an
  // SPI already used between the same two addresses, and keys that do not
  // fit their algorithm: ASCII of the key's length in bytes, or that many
  // bytes in hex (with or without "0x"): 3des-cbc 24, aes128-cbc 16,
  // hmac-sha1 20, hmac-sha2-256 32 bytes; null encryption takes no key.
  void AddSADConfig(HostCtl::Network::IpSecSadParam const& param);
  // Removes the named SA; policies that used it keep the SA name "UNKNOWN".
  void RemoveSADConfig(std::string const& name);
  // Removes the SA negotiated by key exchange with that source, destination
  // and SPI.
  void RemoveAutoSADConfig(HostCtl::Network::IpSecSadParam const& param);
  // Removes every SA.
  void FlushSADConfig();
  // Replaces `list` with all SAs, in the order they were added.
  void GetSADConfigList(std::list<HostCtl::Network::IpSecSadParam>& list);
  // Adds a policy. Refuses an empty or used name, a port over 65535, a
  // prefix length over 128, and, for the action ipsec, an SA name that no
  // SA has.
  void AddSPDConfig(HostCtl::Network::IpSecSpdParam const& param);
  void RemoveSPDConfig(std::string const& name);
  void FlushSPDConfig();
  void GetSPDConfigList(std::list<HostCtl::Network::IpSecSpdParam>& list);
};

}  // namespace OrvkCtl::Network
