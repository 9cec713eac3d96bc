#include <string>
#include <vector>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kPciDevice = "PCI Device";
const std::string kDriver = "Driver";
const std::string kLink = "Link";
const std::string kAdminStatus = "Admin Status";
const std::string kLinkStatus = "Link Status";
const std::string kSpeed = "Speed";
const std::string kDuplex = "Duplex";
const std::string kMacAddress = "MAC Address";
const std::string kMtu = "MTU";
const std::string kDescription = "Description";
const std::string kUp = "Up";
const std::string kDown = "Down";
const std::string kUnknown = "Unknown";

// Vendor and device of a NIC without PCI function, from its descriptor
// "<kind>:<vendor>:<device>". Only the first 63 characters count, and only the
// kinds "USB-NIC" and "ACPI-NIC" (as prefixes of the first token) are read;
// anything else, or a missing token, is "Unknown".
void DescribePseudoDevice(std::string const& descriptor, std::string& vendor, std::string& device) {
  vendor = kUnknown;
  device = kUnknown;
  std::string copy(descriptor.c_str());
  if (copy.size() > 63) copy.resize(63);
  std::vector<std::string> tokens;
  size_t start = 0;
  while (start <= copy.size()) {
    size_t end = copy.find(':', start);
    if (end == std::string::npos) end = copy.size();
    if (end > start) tokens.push_back(copy.substr(start, end - start));
    start = end + 1;
  }
  if (copy.empty() || tokens.empty() || descriptor.size() <= 6) return;
  bool known = tokens[0].compare(0, 7, "USB-NIC") == 0;
  if (!known && descriptor.size() > 7) known = tokens[0].compare(0, 8, "ACPI-NIC") == 0;
  if (!known) return;
  if (tokens.size() > 1) vendor = tokens[1];
  if (tokens.size() > 2) device = tokens[2];
}
}  // namespace

NETWORK_COMMAND_NEW(NicList, Rows)

NicList::NicList() {
  SetDescription(
      "This command will list the Physical NICs currently installed and loaded on the system.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(
      "fields:Nic",
      "Name,PCI Device,Driver,Admin Status,Link Status,Speed,Duplex,MAC Address,MTU,Description");
}

std::shared_ptr<MetaStruct> NicList::GetOutputStructure() {
  auto result = MetaStruct::New("Nic");
  result->SetField(kName, MetaString::New());
  result->SetField(kPciDevice, MetaString::New());
  result->SetField(kDriver, MetaString::New());
  result->SetField(kLink, MetaString::New());
  result->SetField(kAdminStatus, MetaString::New());
  result->SetField(kLinkStatus, MetaString::New());
  result->SetField(kSpeed, MetaInt::New());
  result->SetField(kDuplex, MetaString::New());
  result->SetField(kMacAddress, MetaString::New());
  result->SetField(kMtu, MetaInt::New());
  result->SetField(kDescription, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicList::GetInputSpecInternal() { return InputSpec::New(); }

void NicList::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                              std::shared_ptr<Output> const& output) {
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    auto pnics = networkInfo->GetPnics();
    for (auto const& pnic : pnics) {
      if (!pnic) continue;
      auto nic = GetOutputStructure();
      nic->SetField(kName, pnic->GetName());
      std::string pciDevice;
      std::string vendor;
      std::string device;
      if (auto pci = pnic->GetPciDevice()) {
        pciDevice = pci->GetAddress();
        vendor = pci->GetVendorName();
        device = pci->GetDeviceName();
      } else {
        pciDevice = "Pseudo";
        try {
          DescribePseudoDevice(pnic->GetPseudoDescriptor(), vendor, device);
        } catch (HostCtl::Lib::HostCtlException const&) {
          vendor = kUnknown;
          device = kUnknown;
        }
      }
      nic->SetField(kPciDevice, pciDevice);
      nic->SetField(kDriver, pnic->GetDriverName());
      nic->SetField(kLink, pnic->IsLinkUp() ? kUp : kDown);
      nic->SetField(kAdminStatus, pnic->IsAdminUp() ? kUp : kDown);
      nic->SetField(kLinkStatus, pnic->IsLinkStatusUp() ? kUp : kDown);
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
