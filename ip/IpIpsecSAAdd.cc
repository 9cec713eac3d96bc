#include <cstdint>
#include <string>

#include "hostctl/ipsec.h"
#include "hostctl/network_types.h"
#include "ip/IpCommands.h"
#include "ip/IpsecKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kSaName = "sa-name";
const std::string kSaSource = "sa-source";
const std::string kSaDestination = "sa-destination";
const std::string kSaMode = "sa-mode";
const std::string kSaSpi = "sa-spi";
const std::string kEncryptionAlgorithm = "encryption-algorithm";
const std::string kEncryptionKey = "encryption-key";
const std::string kIntegrityAlgorithm = "integrity-algorithm";
const std::string kIntegrityKey = "integrity-key";
const std::string kAny = "any";
const std::string kAnyAddress = "::";
const std::string kNullAlgorithm = "null";
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSAAdd, Bool)

IpIpsecSAAdd::IpIpsecSAAdd() { SetDescription("Add a Security Association."); }

std::shared_ptr<InputSpec> IpIpsecSAAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewIpsecParameter(kSaName, "n", ParameterType::String, true,
                                       "Name for the Security Association to be added."));
  spec->AddParameter(NewIpsecParameter(
      kSaSource, "s", ParameterType::String, true,
      "Ipv6 address of Security Association source. Can be specified as 'any' or a correct IPv6 "
      "address."));
  spec->AddParameter(NewIpsecParameter(
      kSaDestination, "d", ParameterType::String, true,
      "Ipv6 address of Security Association destination. Can be specified as 'any' or a correct "
      "IPv6 address."));
  spec->AddParameter(NewIpsecParameter(kSaMode, "m", ParameterType::String, false,
                                       "Security Association mode. Should be one in set %ENUM%.",
                                       {"transport", "tunnel"}));
  spec->AddParameter(NewIpsecParameter(kSaSpi, "p", ParameterType::String, true,
                                       "SPI value for the Security Association(hex)."));
  spec->AddParameter(NewIpsecParameter(
      kEncryptionAlgorithm, "e", ParameterType::String, true,
      "Encryption algorithm for the Security Association. Should be one in set %ENUM%.",
      {"null", "3des-cbc", "aes128-cbc"}));
  spec->AddParameter(NewIpsecParameter(
      kEncryptionKey, "k", ParameterType::String, false,
      "Encryption key(ASCII or hex). Length of hex key is dependent upon algorithm used. Required "
      "when a encryption algorithm has been specified."));
  spec->AddParameter(NewIpsecParameter(
      kIntegrityAlgorithm, "i", ParameterType::String, true,
      "Integrity algorithm for the Security Association. Should be one in set %ENUM%.",
      {"hmac-sha1", "hmac-sha2-256"}));
  spec->AddParameter(NewIpsecParameter(
      kIntegrityKey, "K", ParameterType::String, true,
      "Integrity key(ASCII or hex). Length of hex key is dependent upon algorithm used."));
  spec->FindParameter(kEncryptionKey)->SetSecret(true);
  spec->FindParameter(kIntegrityKey)->SetSecret(true);
  return spec;
}

void IpIpsecSAAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                   std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::IpSecConfigImpl;
  try {
    IpSecConfigImpl config;
    HostCtl::Network::IpSecSadParam record;
    record.name = input->GetParameter(kSaName);
    std::string source = input->GetParameter(kSaSource);
    std::string destination = input->GetParameter(kSaDestination);
    if (source == kAny) source = kAnyAddress;
    if (destination == kAny) destination = kAnyAddress;
    record.source = HostCtl::Network::Ipv6Address(source);
    record.destination = HostCtl::Network::Ipv6Address(destination);
    std::string const& spiText = input->GetParameter(kSaSpi);
    if (!ParseSpi(spiText, true, record.spi)) {
      output->AddErrorMessage("Check the input value for '--sa-spi'. Should be hex integer. Got " +
                              spiText);
      return;
    }
    std::string mode = input->HasParameter(kSaMode) ? input->GetParameter(kSaMode) : "";
    record.mode = IpSecConfigImpl::StringToIpSecMode(mode);
    std::string const& encryption = input->GetParameter(kEncryptionAlgorithm);
    record.encryptAlgo = IpSecConfigImpl::StringToIpSecEncyptAlgo(encryption);
    record.authAlgo =
        IpSecConfigImpl::StringToIpSecAuthAlgo(input->GetParameter(kIntegrityAlgorithm));
    record.authKey = input->GetParameter(kIntegrityKey);
    if (input->HasParameter(kEncryptionKey)) {
      record.encryptKey = input->GetParameter(kEncryptionKey);
    } else if (encryption != kNullAlgorithm) {
      output->AddErrorMessage("Missing encryption key");
      return;
    }
    config.AddSADConfig(record);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
