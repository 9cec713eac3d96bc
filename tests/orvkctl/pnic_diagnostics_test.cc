// The simulated host's EEPROM images, as kept in the state file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/lib.h"
#include "hostctl/pnic.h"
#include "support/harness.h"

namespace {

using OrvkCtl::Sim::ReadHost;

class PnicDiagnosticsTest : public TestSupport::HostTest {};

TEST_F(PnicDiagnosticsTest, SeededImagesAreSoundAndSurviveTheStateFile) {
  for (auto const& nic : ReadHost().nic.pnics) {
    SCOPED_TRACE(nic.name);
    EXPECT_EQ(OrvkCtl::Sim::EepromChecksumValid(nic.eeprom), !nic.eeprom.bytes.empty());
  }
  auto host = OrvkCtl::Sim::HostFromJson(StateFileText());
  EXPECT_EQ(host.nic.pnics, ReadHost().nic.pnics);
  // Two lowercase hex digits per byte, the MAC address first.
  EXPECT_NE(StateFileText().find("\"eeprom\":\"d26ea0001000200400001210"), std::string::npos);
}

TEST_F(PnicDiagnosticsTest, ImagesThatAreNoHexAreCorrupt) {
  ReadHost();
  std::string text = StateFileText();
  auto at = text.find("\"eeprom\":\"d2");
  ASSERT_NE(at, std::string::npos);
  for (std::string bad : {"\"eeprom\":\"x2", "\"eeprom\":\"d\",\"x\":\""}) {
    SCOPED_TRACE(bad);
    std::string corrupt = text;
    corrupt.replace(at, 12, bad);
    EXPECT_ANY_THROW(OrvkCtl::Sim::HostFromJson(corrupt));
  }
}

TEST_F(PnicDiagnosticsTest, DumpsAppendToWhatTheCallerHolds) {
  OrvkCtl::Network::PnicImpl nic("ornic2");
  std::vector<unsigned char> bytes = {0xaa};
  nic.GetEepromDump(bytes, 0, 500);
  // From 500 to the end of the 512 bytes: erased space.
  std::vector<unsigned char> expected(13, 0xff);
  expected[0] = 0xaa;
  EXPECT_EQ(bytes, expected);
  std::vector<uint32_t> registers = {7};
  nic.GetRegisterDump(registers);
  EXPECT_EQ(registers.size(), 23u);
  EXPECT_EQ(registers[10], 9000u);  // the MTU
}

}  // namespace
