#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "SriovNic";
const std::string kName = "Name";
const std::string kPciDevice = "PCI Device";
const std::string kDriver = "Driver";
const std::string kLink = "Link";
const std::string kSpeed = "Speed";
const std::string kDuplex = "Duplex";
const std::string kMacAddress = "MAC Address";
const std::string kMtu = "MTU";
const std::string kDescription = "Description";
const std::string kUnknown = "Unknown";
}  // namespace

NETWORK_COMMAND_NEW(SriovNicList, Rows)

SriovNicList::SriovNicList() {
  SetDescription(
      "This command will list the SRIOV Enabled NICs (PFs) currently installed and loaded on the "
      "system.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure,
                            "Name,PCI Device,Driver,Link,Speed,Duplex,MAC Address,MTU,Description");
}

std::shared_ptr<MetaStruct> SriovNicList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kName, MetaString::New());
  result->SetField(kPciDevice, MetaString::New());
  result->SetField(kDriver, MetaString::New());
  result->SetField(kLink, MetaString::New());
  result->SetField(kSpeed, MetaInt::New());
  result->SetField(kDuplex, MetaString::New());
  result->SetField(kMacAddress, MetaString::New());
  result->SetField(kMtu, MetaInt::New());
  result->SetField(kDescription, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> SriovNicList::GetInputSpecInternal() { return InputSpec::New(); }

void SriovNicList::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                   std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnics = networkInfo.GetSriovNics();
    for (auto const& pnic : pnics) {
      if (!pnic) continue;
      auto nic = GetOutputStructure();
      nic->SetField(kName, pnic->GetName());
      std::string pciDevice = "Pseudo";
      std::string vendor = kUnknown;
      std::string device = kUnknown;
      if (auto pci = pnic->GetPciDevice()) {
        pciDevice = pci->GetAddress();
        vendor = pci->GetVendorName();
        device = pci->GetDeviceName();
      }
      nic->SetField(kPciDevice, pciDevice);
      nic->SetField(kDriver, pnic->GetDriverName());
      nic->SetField(kLink, pnic->IsLinkUp() ? "Up" : "Down");
      nic->SetField(kSpeed, pnic->GetSpeed());
      nic->SetField(kDuplex, pnic->GetDuplex() == HostCtl::Network::DUPLEX_FULL ? "Full" : "Half");
      nic->SetField(kMacAddress, pnic->GetMacAddress().GetStringAddress());
      nic->SetField(kMtu, pnic->GetMtu());
      nic->SetField(kDescription, vendor + " " + device);
      list->Add(nic);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to list NICs.  Error was " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
