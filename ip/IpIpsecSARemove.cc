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
const std::string kRemoveAll = "remove-all";
const std::string kSaSource = "sa-source";
const std::string kSaDestination = "sa-destination";
const std::string kSaSpi = "sa-spi";
const std::string kAutoName = "auto";
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSARemove, Bool)

IpIpsecSARemove::IpIpsecSARemove() {
  SetDescription("Operation to remove Security Association(s)");
}

std::shared_ptr<InputSpec> IpIpsecSARemove::GetInputSpecInternal() {
  return InputSpecOf(
      {NewIpsecParameter(
           kSaName, "n", ParameterType::String, false,
           "Name for the Security Association to be removed. Specify 'auto' to remove an auto SA."),
       NewIpsecParameter(kRemoveAll, "a", ParameterType::Flag, false,
                         "Set to remove all Security Associations."),
       NewIpsecParameter(kSaSource, "s", ParameterType::String, false,
                         "Ipv6 address of Security Association source. This option needs to be "
                         "specified when removing an auto SA."),
       NewIpsecParameter(kSaDestination, "d", ParameterType::String, false,
                         "Ipv6 address of Security Association destination. This option needs to "
                         "be specified when removing an auto SA."),
       NewIpsecParameter(kSaSpi, "p", ParameterType::String, false,
                         "SPI value for the Security Association (hex). This option needs to be "
                         "specified when removing an auto SA")});
}

void IpIpsecSARemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::IpSecConfigImpl config;
    bool hasName = input->HasParameter(kSaName);
    std::string name = hasName ? input->GetParameter(kSaName) : "";
    bool all = input->HasParameter(kRemoveAll);
    bool source = input->HasParameter(kSaSource);
    bool destination = input->HasParameter(kSaDestination);
    bool spi = input->HasParameter(kSaSpi);
    if (hasName && name != kAutoName && !all && !source && !destination && !spi) {
      config.RemoveSADConfig(name);
    } else if (hasName && name == kAutoName && !all && source && destination && spi) {
      HostCtl::Network::IpSecSadParam record;
      record.name = name;
      record.source = HostCtl::Network::Ipv6Address(input->GetParameter(kSaSource));
      record.destination = HostCtl::Network::Ipv6Address(input->GetParameter(kSaDestination));
      // No check here: a text that does not parse gives whatever was read.
      ParseSpi(input->GetParameter(kSaSpi), false, record.spi);
      config.RemoveAutoSADConfig(record);
    } else if (name.empty() && !hasName && all && !source && !destination && !spi) {
      config.FlushSADConfig();
    } else {
      output->AddErrorMessage(
          "Can not figure out which operation you want to perform.\n"
          "Remove a unique SA: Only specify the '--sa-name' option to remove a normal SA.\n"
          "Remove an auto SA: Set the '--sa-name' to 'auto'. You should also specify "
          "'--sa-source', '--sa-destination' and '--sa-spi' and omit '--remove-all' when removing "
          "an auto SA.\n"
          "Remove all SAs: You should only set the flag '--remove-all' to remove all SAs.");
      return;
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
