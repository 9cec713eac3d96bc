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
const std::string kSpName = "sp-name";
const std::string kSaName = "sa-name";
const std::string kSpSource = "sp-source";
const std::string kSpDestination = "sp-destination";
const std::string kSpMode = "sp-mode";
const std::string kSourcePort = "source-port";
const std::string kDestinationPort = "destination-port";
const std::string kAction = "action";
const std::string kUpperLayerProtocol = "upper-layer-protocol";
const std::string kFlowDirection = "flow-direction";
const std::string kAny = "any";
const std::string kIpsecAction = "ipsec";

std::string TextOrEmpty(Input const& input, std::string const& name) {
  return input.HasParameter(name) ? input.GetParameter(name) : std::string();
}

// "any" stands for the default network ::/0.
HostCtl::Network::Ipv6Network NetworkOf(std::string const& text) {
  return text == kAny ? HostCtl::Network::Ipv6Network() : HostCtl::Network::Ipv6Network(text);
}
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSPAdd, Bool)

IpIpsecSPAdd::IpIpsecSPAdd() { SetDescription("Add a Security Policy."); }

std::shared_ptr<InputSpec> IpIpsecSPAdd::GetInputSpecInternal() {
  return InputSpecOf(
      {NewIpsecParameter(kSpName, "n", ParameterType::String, true,
                         "Name for the Security Policy to be added."),
       NewIpsecParameter(kSaName, "a", ParameterType::String, false,
                         "Name for the Security Association. Not being Specified lets orvik "
                         "automatically choose an Security Association. If no applicable Security "
                         "Association exists, then orvik may request one using IKE."),
       NewIpsecParameter(kSpSource, "s", ParameterType::String, true,
                         "Ipv6 address and prefix length of Security Policy source. Can be "
                         "specified as 'any' or a correct IPv6 network address."),
       NewIpsecParameter(kSpDestination, "d", ParameterType::String, true,
                         "Ipv6 address and prefix length of Security Policy destination. Can be "
                         "specified as 'any' or a correct Ipv6 network address."),
       NewIpsecParameter(kSpMode, "m", ParameterType::String, false,
                         "Security Policy mode. Should be one in set %ENUM%.",
                         {"transport", "tunnel"}),
       NewIpsecParameter(kSourcePort, "p", ParameterType::Int, true,
                         "Source Port for Security Policy. '0' stands for 'any'"),
       NewIpsecParameter(kDestinationPort, "P", ParameterType::Int, true,
                         "Destination Port for Security Policy. '0' stands for 'any'"),
       NewIpsecParameter(kAction, "A", ParameterType::String, false,
                         "Action for Security Policy. Should be one in set %ENUM%.",
                         {"none", "discard", "ipsec"}),
       NewIpsecParameter(kUpperLayerProtocol, "u", ParameterType::String, false,
                         "Upper layer protocol for Security Policy, Should be one in set %ENUM%.",
                         {"any", "tcp", "udp", "icmp6"}),
       NewIpsecParameter(kFlowDirection, "w", ParameterType::String, false,
                         "Flow direction for Security Policy. Should be one in set %ENUM%.",
                         {"in", "out"})});
}

void IpIpsecSPAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                   std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::IpSecConfigImpl;
  try {
    IpSecConfigImpl config;
    HostCtl::Network::IpSecSpdParam record;
    std::string saName = TextOrEmpty(*input, kSaName);
    long sourcePort = input->GetParameterInt(kSourcePort);
    long destinationPort = input->GetParameterInt(kDestinationPort);
    auto source = NetworkOf(input->GetParameter(kSpSource));
    record.source = source.GetAddress();
    record.sourcePrefixLength = source.GetNetmask();
    record.sourcePort = static_cast<uint32_t>(sourcePort);
    auto destination = NetworkOf(input->GetParameter(kSpDestination));
    record.destination = destination.GetAddress();
    record.destinationPrefixLength = destination.GetNetmask();
    record.destinationPort = static_cast<uint32_t>(destinationPort);
    std::string mode = TextOrEmpty(*input, kSpMode);
    std::string protocol = TextOrEmpty(*input, kUpperLayerProtocol);
    std::string direction = TextOrEmpty(*input, kFlowDirection);
    std::string action = TextOrEmpty(*input, kAction);
    record.protocol = IpSecConfigImpl::StringToIpSecULProtoType(protocol);
    record.direction = IpSecConfigImpl::StringToIpSecDirection(direction);
    record.action = IpSecConfigImpl::StringToIpSecAction(action);
    // Mode and SA name mean something only to the action ipsec.
    if (action == kIpsecAction) {
      record.mode = IpSecConfigImpl::StringToIpSecMode(mode);
      record.saName = saName;
    }
    record.name = input->GetParameter(kSpName);
    config.AddSPDConfig(record);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
