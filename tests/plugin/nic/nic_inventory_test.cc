// The NIC inventory and state commands against the simulated host.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase::MetaObj;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::PnicState;
using TestSupport::HostTest;

// A value as one line of text: lists joined by "|", unset values as "<unset>".
std::string Text(std::shared_ptr<MetaObject> const& value) {
  if (!value) return "<absent>";
  if (!value->HasValue()) return "<unset>";
  switch (value->GetKind()) {
    case Kind::Bool:
      return static_cast<MetaBool const&>(*value).GetValue() ? "true" : "false";
    case Kind::Int:
      return std::to_string(static_cast<MetaInt const&>(*value).GetValue());
    case Kind::String:
      return static_cast<MetaString const&>(*value).GetValue();
    case Kind::List: {
      std::string text;
      for (auto const& item : static_cast<MetaList const&>(*value).GetItems()) {
        text += (text.empty() ? "" : "|") + Text(item);
      }
      return text;
    }
    case Kind::Struct: {
      std::string text;
      for (auto const& [key, field] : static_cast<MetaStruct const&>(*value).GetFields()) {
        text += (text.empty() ? "" : ";") + key + "=" + Text(field);
      }
      return "{" + text + "}";
    }
  }
  return "?";
}

std::map<std::string, std::string> FieldsOf(std::shared_ptr<MetaObject> const& value) {
  std::map<std::string, std::string> fields;
  auto record = std::dynamic_pointer_cast<MetaStruct>(value);
  if (!record) return fields;
  for (auto const& [key, field] : record->GetFields()) fields[key] = Text(field);
  return fields;
}

void ChangeNic(std::string const& name, std::function<void(PnicState&)> const& change) {
  OrvkCtl::Sim::ChangeHost([&](HostModel& host) { change(*FindPnic(host.nic, name)); });
}

class NicInventoryTest : public HostTest {
 protected:
  // The rows of `network nic list`, each as its fields.
  std::vector<std::map<std::string, std::string>> ListRows() {
    auto output = Execute({"network", "nic", "list"});
    EXPECT_TRUE(output->GetErrorMessages().empty());
    std::vector<std::map<std::string, std::string>> rows;
    auto list = std::dynamic_pointer_cast<MetaList>(output->GetRootObject());
    if (!list) return rows;
    for (auto const& item : list->GetItems()) rows.push_back(FieldsOf(item));
    return rows;
  }

  std::map<std::string, std::string> GetNic(std::string const& name) {
    auto output = Execute({"network", "nic", "get", "-n", name});
    EXPECT_TRUE(output->GetErrorMessages().empty());
    return FieldsOf(output->GetRootObject());
  }
};

TEST_F(NicInventoryTest, ListShowsEveryUplinkOfTheDefaultHost) {
  auto result = Run({"network", "nic", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')),
            "Name    PCI Device    Driver  Admin Status  Link Status  Speed  Duplex  MAC Address"
            "        MTU   Description");

  struct Row {
    char const *name, *pci, *driver, *link, *admin, *status, *speed, *duplex, *mac, *mtu,
        *description;
  };
  std::vector<Row> expected = {
      {"ornic0", "0000:18:00.0", "bwgbe", "Up", "Up", "Up", "1000", "Full", "d2:6e:a0:00:10:00",
       "1500", "Brightwater Semiconductor BW-4T Quad Port Gigabit Ethernet Controller"},
      {"ornic1", "0000:18:00.1", "bwgbe", "Up", "Up", "Up", "1000", "Full", "d2:6e:a0:00:10:01",
       "1500", "Brightwater Semiconductor BW-4T Quad Port Gigabit Ethernet Controller"},
      {"ornic2", "0000:3b:00.0", "kmnet", "Up", "Up", "Up", "25000", "Full", "d2:6e:a0:00:25:00",
       "9000", "Kestrel Microsystems KM-2500 Dual Port 25GbE SFP28 Adapter"},
      {"ornic3", "0000:3b:00.1", "kmnet", "Down", "Down", "Down", "0", "Half", "d2:6e:a0:00:25:01",
       "9000", "Kestrel Microsystems KM-2500 Dual Port 25GbE SFP28 Adapter"},
      {"ornic4", "Pseudo", "olusb", "Down", "Up", "Down", "0", "Half", "d2:6e:a0:7c:00:31", "1500",
       "Ostrava Labs OL-U3 USB 3.0 Gigabit Adapter"},
  };
  auto rows = ListRows();
  ASSERT_EQ(rows.size(), expected.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(expected[i].name);
    std::map<std::string, std::string> want = {{"Name", expected[i].name},
                                               {"PCI Device", expected[i].pci},
                                               {"Driver", expected[i].driver},
                                               {"Link", expected[i].link},
                                               {"Admin Status", expected[i].admin},
                                               {"Link Status", expected[i].status},
                                               {"Speed", expected[i].speed},
                                               {"Duplex", expected[i].duplex},
                                               {"MAC Address", expected[i].mac},
                                               {"MTU", expected[i].mtu},
                                               {"Description", expected[i].description}};
    EXPECT_EQ(rows[i], want);
  }
}

TEST_F(NicInventoryTest, PseudoDescriptorGivesVendorAndDevice) {
  std::string longVendor(50, 'V');
  struct Case {
    std::string descriptor;
    std::string description;
  };
  std::vector<Case> cases = {
      {"USB-NIC:Acme:Net100", "Acme Net100"},
      {"ACPI-NIC:Acme:Net100", "Acme Net100"},
      {"SomeThing:Acme:Net100", "Unknown Unknown"},
      {"USB-NICv2:Acme:Net100", "Acme Net100"},    // a prefix of the first token
      {"ACPI-NI:Acme:Net100", "Unknown Unknown"},  // too short a prefix
      {"usb-nic:Acme:Net100", "Unknown Unknown"},  // case counts
      {"::USB-NIC::Acme:Net100", "Acme Net100"},   // empty tokens are skipped
      {"USB-NIC:Acme", "Acme Unknown"},
      {"USB-NIC", "Unknown Unknown"},
      {"USB-NI", "Unknown Unknown"},
      {"", "Unknown Unknown"},
      // Only the first 63 characters count: the device is cut short.
      {"USB-NIC:" + longVendor + ":Device100", longVendor + " Devi"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE("descriptor '" + c.descriptor + "'");
    ChangeNic("ornic4", [&](PnicState& nic) { nic.pseudo_descriptor = c.descriptor; });
    auto rows = ListRows();
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[4]["PCI Device"], "Pseudo");
    EXPECT_EQ(rows[4]["Description"], c.description);
  }
}

TEST_F(NicInventoryTest, UnreadableDescriptorDoesNotStopTheListing) {
  InjectFault("PnicImpl::GetPseudoDescriptor", "descriptor unreadable");
  auto rows = ListRows();
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows[4]["Description"], "Unknown Unknown");
  EXPECT_EQ(rows[4]["MTU"], "1500");
}

TEST_F(NicInventoryTest, ListOfAHostWithoutUplinksIsEmpty) {
  OrvkCtl::Sim::ChangeHost([](HostModel& host) { host.nic.pnics.clear(); });
  auto result = Run({"network", "nic", "list"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  auto output = Execute({"network", "nic", "list"});
  auto list = std::dynamic_pointer_cast<MetaList>(output->GetRootObject());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->GetCount(), 0u);
}

TEST_F(NicInventoryTest, ListDuplexIsFullOnlyForFull) {
  for (uint32_t duplex : {0u, 1u, 2u, 7u}) {
    SCOPED_TRACE(duplex);
    ChangeNic("ornic0", [&](PnicState& nic) { nic.duplex = duplex; });
    EXPECT_EQ(ListRows()[0]["Duplex"], duplex == 1 ? "Full" : "Half");
  }
}

TEST_F(NicInventoryTest, ListFailureDropsEveryRow) {
  for (char const* operation :
       {"NetworkInfoImpl::GetPnics", "PnicImpl::GetPciDevice", "PciDevice::GetAddress",
        "PciDevice::GetDeviceName", "PnicImpl::IsLinkStatusUp", "PnicImpl::GetMtu"}) {
    SCOPED_TRACE(operation);
    ClearFaults();
    InjectFault(operation, "driver not responding");
    auto output = Execute({"network", "nic", "list"});
    EXPECT_EQ(output->GetErrorMessages(),
              std::vector<std::string>{"Unable to list NICs.  Error was driver not responding"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(NicInventoryTest, ListFailureToReachTheHostIsNotHandled) {
  InjectFault("NetworkFactory::GetNetworkInfo", "host unreachable");
  auto result = Run({"network", "nic", "list"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "Error: host unreachable\n");
}

TEST_F(NicInventoryTest, GetShowsACopperPortWhole) {
  auto result = Run({"network", "nic", "get", "--nic-name", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Name: ornic0\n"
            "Supported Ports: TP\n"
            "Supports Auto Negotiation: true\n"
            "Advertised Link Modes: 10BaseT/Half, 10BaseT/Full, 100BaseT/Half, 100BaseT/Full, "
            "1000BaseT/Full\n"
            "Advertised Auto Negotiation: true\n"
            "Cable Type: Twisted Pair\n"
            "PHY Address: 1\n"
            "Virtual Address: d2:6e:a0:00:10:00\n"
            "Transceiver: internal\n"
            "Auto Negotiation: true\n"
            "Supports Wakeon: true\n"
            "Wakeon: MagicPacket(tm)\n"
            "Current Message Level: 7\n"
            "Link Detected: true\n"
            "Supports Pause: true\n"
            "Pause Autonegotiate: true\n"
            "Pause RX: true\n"
            "Pause TX: true\n"
            "Link Status: Up\n"
            "Driver Info:\n"
            "   Driver: bwgbe\n"
            "   Version: 2.4.1.0-1\n"
            "   Firmware Version: 1.18.3, 0x80000c4a\n"
            "   Bus Info: 0000:18:00.0\n");
}

TEST_F(NicInventoryTest, GetOfDevicesWithoutOptionalFeatures) {
  // ornic2 supports neither wake-on nor message levels.
  auto fibre = GetNic("ornic2");
  EXPECT_EQ(fibre["Supports Wakeon"], "false");
  EXPECT_EQ(fibre["Wakeon"], "None");
  EXPECT_EQ(fibre["Current Message Level"], "-1");
  EXPECT_EQ(fibre["Transceiver"], "external");
  EXPECT_EQ(fibre["Supported Ports"], "FIBRE|DA");
  // ornic4 supports wake-on with nothing armed, and has no pause frames.
  auto usb = GetNic("ornic4");
  EXPECT_EQ(usb["Supports Wakeon"], "true");
  EXPECT_EQ(usb["Wakeon"], "");
  EXPECT_EQ(usb["Supports Pause"], "false");
  for (char const* field : {"Pause Autonegotiate", "Pause RX", "Pause TX"}) {
    EXPECT_EQ(usb[field], "<unset>") << field;
  }
  EXPECT_EQ(usb["Link Detected"], "false");
  EXPECT_EQ(usb["Driver Info"], "{Driver=olusb;Version=1.12-2;Firmware Version=N/A;Bus Info=N/A}");
}

TEST_F(NicInventoryTest, GetNamesEveryPortType) {
  ChangeNic("ornic0", [](PnicState& nic) { nic.supported_ports = {0, 1, 2, 3, 4, 5, 6, 7, 99}; });
  EXPECT_EQ(GetNic("ornic0")["Supported Ports"],
            "TP|AUI|BNC|MII|FIBRE|DA|BACKPLANE|UNKNOWN|UNKNOWN");
  std::vector<std::string> cable = {"Twisted Pair", "AUI",       "BNC", "MII", "FIBRE",
                                    "DA",           "BACKPLANE", "",    ""};
  std::vector<uint32_t> ports = {0, 1, 2, 3, 4, 5, 6, 7, 4000000000u};
  for (size_t i = 0; i < ports.size(); ++i) {
    SCOPED_TRACE(ports[i]);
    ChangeNic("ornic0", [&](PnicState& nic) { nic.port = ports[i]; });
    EXPECT_EQ(GetNic("ornic0")["Cable Type"], cable[i]);
  }
}

TEST_F(NicInventoryTest, GetNamesEveryWakeOnMode) {
  ChangeNic("ornic0", [](PnicState& nic) { nic.wake_on = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}; });
  EXPECT_EQ(GetNic("ornic0")["Wakeon"],
            "PHY Activity|Unicast Messagess|Multicast Messages|Broadcast Messages|ARP|"
            "MagicPacket(tm)|Enable SecureOn(tm) Password for" +
                std::string(28, ' ') + "MagicPacket(tm)|Unsupported|Disabled|None");
}

TEST_F(NicInventoryTest, GetNamesEveryLinkMode) {
  std::vector<std::string> media = {
      "Unknown", "None",    "Unknown", "BaseT",     "BaseX",    "BaseKX",     "BaseSX",
      "BaseLX",  "BaseKR",  "BaseLR",  "BaseSR",    "BaseER",   "BaseTwinax", "BaseTwinaxLong",
      "BaseLRM", "BaseCR1", "BaseKR2", "BaseMLD2",  "BaseKR4",  "BaseKX4",    "BaseCR4",
      "BaseSR4", "BaseLR4", "BaseR4",  "BaseSGMII", "BaseSFI",  "XLPPI",      "BaseCX-SGMII",
      "BaseDR4", "BaseFR4", "AUI-8",   "AUI-4",     "BaseSR16", "BaseFR8",    "BaseLR8",
      "AUI-16",  "BaseER4", "BaseER8", "BaseCX4",   "BaseCR2",  "Unknown"};
  ChangeNic("ornic0", [](PnicState& nic) {
    nic.advertised_link_modes.clear();
    for (int32_t value = -1; value <= 39; ++value) {
      nic.advertised_link_modes.push_back({10, 1, value});
    }
  });
  std::string expected;
  for (auto const& word : media)
    expected += std::string(expected.empty() ? "" : "|") + "10" + word + "/Full";
  EXPECT_EQ(GetNic("ornic0")["Advertised Link Modes"], expected);

  ChangeNic("ornic0", [](PnicState& nic) {
    nic.advertised_link_modes = {{0, 1, 2}, {100, 2, 2}, {100, 3, 2}, {1000, 0, 3}, {-10, 1, 2}};
  });
  EXPECT_EQ(GetNic("ornic0")["Advertised Link Modes"],
            "Auto|100BaseT/Half|100BaseT/|1000BaseX/Auto|-10BaseT/Full");
}

TEST_F(NicInventoryTest, GetTransceiverWords) {
  for (auto [value, word] :
       std::vector<std::pair<uint32_t, char const*>>{{0, "internal"}, {1, "external"}, {2, ""}}) {
    SCOPED_TRACE(value);
    ChangeNic("ornic1", [&](PnicState& nic) { nic.transceiver = value; });
    EXPECT_EQ(GetNic("ornic1")["Transceiver"], word);
  }
}

TEST_F(NicInventoryTest, DownAndUpChangeTheAdminStateForGood) {
  auto result = Run({"network", "nic", "down", "-n", "ornic1"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  Reload();
  auto row = ListRows()[1];
  EXPECT_EQ(row["Admin Status"], "Down");
  EXPECT_EQ(row["Link Status"], "Down");
  EXPECT_EQ(row["Speed"], "0");
  EXPECT_EQ(GetNic("ornic1")["Link Status"], "Down");

  ASSERT_EQ(Run({"network", "nic", "up", "--nic-name", "ornic3"}).status, 0);
  ASSERT_EQ(Run({"network", "nic", "up", "--nic-name", "ornic3"}).status, 0);
  Reload();
  row = ListRows()[3];
  EXPECT_EQ(row["Admin Status"], "Up");
  EXPECT_EQ(row["Link Status"], "Up");
  EXPECT_EQ(row["Speed"], "25000");
  EXPECT_EQ(GetNic("ornic3")["Link Detected"], "true");
}

TEST_F(NicInventoryTest, UnknownNicIsReportedAndChangesNothing) {
  struct Case {
    std::vector<std::string> args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "get", "-n", "ornic9"}, "There is no pnic with name ornic9"},
      {{"network", "nic", "up", "-n", "ornic9"}, "There is no pnic with name ornic9"},
      {{"network", "nic", "down", "-n", "ornic9"}, "There is no pnic with name ornic9"},
      {{"network", "nic", "down", "-n", "ORNIC0"}, "There is no pnic with name ORNIC0"},
      {{"network", "nic", "negotiate", "restart", "-n", "ornic9"},
       "Pnic with name ornic9 not found"},
  };
  ASSERT_EQ(ListRows().size(), 5u);  // the state file exists from here on
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(c.args, {c.message});
  }
}

TEST_F(NicInventoryTest, NegotiationRestartReachesTheDriver) {
  auto result = Run({"network", "nic", "negotiate", "restart", "--ornic", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  Reload();
  EXPECT_EQ(FindPnic(OrvkCtl::Sim::ReadHost().nic, "ornic0")->negotiation_restarts, 1u);

  // The driver refuses where there is nothing to negotiate.
  std::string before = StateFileText();
  result = Run({"network", "nic", "negotiate", "restart", "-n", "ornic3"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "Unable to restart negotiation on ornic3: device is down\n");
  result = Run({"network", "nic", "negotiate", "restart", "-n", "ornic2"});
  EXPECT_EQ(result.err, "Unable to restart negotiation on ornic2: auto negotiation is disabled\n");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NicInventoryTest, HandlersReportTheHostTextAlone) {
  struct Case {
    std::vector<std::string> args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "get", "-n", "ornic0"}, "NetworkInfoImpl::GetPnicByName"},
      {{"network", "nic", "get", "-n", "ornic0"}, "PnicImpl::GetInfo"},
      {{"network", "nic", "get", "-n", "ornic0"}, "PnicImpl::GetPauseParams"},
      {{"network", "nic", "get", "-n", "ornic0"}, "PnicImpl::GetDriverInfo"},
      {{"network", "nic", "get", "-n", "ornic0"}, "PnicImpl::IsLinkUp"},
      {{"network", "nic", "up", "-n", "ornic3"}, "NetworkInfoImpl::GetPnicByName"},
      {{"network", "nic", "up", "-n", "ornic3"}, "PnicImpl::SetAdminUp"},
      {{"network", "nic", "down", "-n", "ornic0"}, "NetworkInfoImpl::GetPnicByName"},
      {{"network", "nic", "down", "-n", "ornic0"}, "PnicImpl::SetAdminUp"},
      {{"network", "nic", "negotiate", "restart", "-n", "ornic0"},
       "NetworkInfoImpl::GetPnicByName"},
      {{"network", "nic", "negotiate", "restart", "-n", "ornic0"}, "PnicImpl::RestartNegotiation"},
  };
  ASSERT_EQ(ListRows().size(), 5u);
  std::string before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[2] + " " + c.operation);
    ClearFaults();
    InjectFault(c.operation, "device busy");
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{"device busy"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  EXPECT_EQ(StateFileText(), before);
}

}  // namespace
