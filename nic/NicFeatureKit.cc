#include "nic/NicFeatureKit.h"

#include <vector>

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using HostCtl::Network::PnicSoftwareSimulation;

namespace {
const std::string kNic = "NIC";
// The bits of a capability set that are named; the ones above are not.
constexpr unsigned kNamedHwCapBits = 31;
}  // namespace

const std::string kNotAvailable = "N/A";

const SoftwareSimulationSetting kSoftwareSimulationSettings[14] = {
    {"IPv4 CSO", "ipv4cso", "Configure IPv4 checksum offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV4_CSO, &PnicSoftwareSimulation::ipv4Cso},
    {"IPv4 TSO", "ipv4tso", "Configure IPv4 TCP segmentation offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV4_TSO, &PnicSoftwareSimulation::ipv4Tso},
    {"Scatter Gather", "sg", "Configure scatter gather software simulation.",
     PnicSoftwareSimulation::MASK_SG, &PnicSoftwareSimulation::scatterGather},
    {"Offset Based Offload", "obo",
     "Configure offset based encapsulation offload software simulation.",
     PnicSoftwareSimulation::MASK_OBO, &PnicSoftwareSimulation::offsetBasedOffload},
    {"VXLAN Encap", "vxlanencap", "Configure VXLAN encapsulation offload software simulation.",
     PnicSoftwareSimulation::MASK_VXLAN_ENCAP, &PnicSoftwareSimulation::vxlanEncap},
    {"Geneve Offload", "geneveoffload",
     "Configure Geneve encapsulation offload software simulation.",
     PnicSoftwareSimulation::MASK_GENEVE_OFFLOAD, &PnicSoftwareSimulation::geneveOffload},
    {"IPv6 TSO", "ipv6tso", "Configure IPv6 TCP segmentation offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV6_TSO, &PnicSoftwareSimulation::ipv6Tso},
    {"IPv6 TSO Ext", "ipv6tsoext",
     "Configure IPv6 extend header TCP segmentation offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV6_TSO_EXT, &PnicSoftwareSimulation::ipv6TsoExt},
    {"IPv6 CSO", "ipv6cso", "Configure IPv6 checksum offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV6_CSO, &PnicSoftwareSimulation::ipv6Cso},
    {"IPv6 CSO Ext", "ipv6csoext",
     "Configure IPv6 extend header checksum offload software simulation.",
     PnicSoftwareSimulation::MASK_IPV6_CSO_EXT, &PnicSoftwareSimulation::ipv6CsoExt},
    {"High DMA", "highdma", "Configure high DMA software simulation.",
     PnicSoftwareSimulation::MASK_HIGH_DMA, &PnicSoftwareSimulation::highDma},
    {"Scatter Gather MP", "sgsp",
     "Configure scatter gather span multiple pages software simulation.",
     PnicSoftwareSimulation::MASK_SG_SPAN_PAGES, &PnicSoftwareSimulation::scatterGatherSpanPages},
    {"VLAN Tagging", "tagging", "Configure TX VLAN tagging software simulation.",
     PnicSoftwareSimulation::MASK_TAGGING, &PnicSoftwareSimulation::vlanTagging},
    {"VLAN Untagging", "untagging", "Configure RX VLAN untagging software simulation.",
     PnicSoftwareSimulation::MASK_UNTAGGING, &PnicSoftwareSimulation::vlanUntagging},
};

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewOrnicListParameter() {
  using namespace Toolbase::CallSpec;
  auto ornic = Optional(kOrnic, ParameterType::StringList, "n",
                        "Limit the output to only the physical NICS with the specified names.");
  return ornic;
}

bool ListPnicRows(HostCtl::Network::NetworkInfo& networkInfo,
                  Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  Toolbase::MetaObj::MetaList& list,
                  std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
                  PnicRowFiller const& filler) {
  HostCtl::Network::PnicList pnics;
  if (input.HasParameter(kOrnic)) {
    std::vector<std::string> names;
    input.GetParameterList(kOrnic, names);
    for (auto const& name : names) {
      auto pnic = networkInfo.GetPnicByName(name);
      if (!pnic) {
        output.AddErrorMessage("Can't find PNIC with name " + name);
        return false;
      }
      pnics.push_back(std::move(pnic));
    }
  } else {
    pnics = networkInfo.GetPnics();
  }
  for (auto const& pnic : pnics) {
    auto row = newRow();
    row->SetField(kNic, pnic->GetName());
    try {
      filler.fill(*pnic, *row);
    } catch (HostCtl::Lib::HostCtlException const&) {
      filler.fillNotAvailable(*row);
    }
    list.Add(row);
  }
  return true;
}

std::string HwCapText(uint64_t bits) {
  std::string text;
  for (unsigned bit = 0; bit < kNamedHwCapBits; ++bit) {
    if (bits & (uint64_t{1} << bit)) {
      text += OrvkCtl::Network::PnicImpl::GetHwCapName(static_cast<uint8_t>(bit));
      text += "   ";
    }
  }
  return text;
}

const HwCapColumn kHwCapSupported{"Device Hardware Cap Supported",
                                  &HostCtl::Network::PnicHwCapabilities::supported};
const HwCapColumn kHwCapActivated{"Device Hardware Cap Activated",
                                  &HostCtl::Network::PnicHwCapabilities::activated};

std::shared_ptr<Toolbase::MetaObj::MetaStruct> HwCapStructure(HwCapColumn const& kind) {
  auto result = Toolbase::MetaObj::MetaStruct::New("Settings");
  result->SetField(kNic, Toolbase::MetaObj::MetaString::New());
  result->SetField(kind.column, Toolbase::MetaObj::MetaString::New());
  return result;
}

std::shared_ptr<Toolbase::MetaObj::MetaList> ListHwCaps(HostCtl::Network::NetworkInfo& networkInfo,
                                                        Toolbase::CallSpec::Input const& input,
                                                        Toolbase::CallSpec::Output& output,
                                                        HwCapColumn const& kind) {
  using Toolbase::MetaObj::MetaStruct;
  auto list =
      Toolbase::MetaObj::MetaList::New(Toolbase::MetaObj::MetaType::Struct, HwCapStructure(kind));
  PnicRowFiller filler;
  filler.fill = [&](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
    HostCtl::Network::PnicHwCapabilities caps;
    pnic.GetHwCapabilities(caps);
    row.SetField(kind.column, HwCapText(caps.*kind.bits));
  };
  filler.fillNotAvailable = [&](MetaStruct& row) { row.SetField(kind.column, kNotAvailable); };
  if (!ListPnicRows(
          networkInfo, input, output, *list, [&] { return HwCapStructure(kind); }, filler)) {
    return nullptr;
  }
  return list;
}

}  // namespace CorvaneCli::NetworkNamespace
