// EEPROM and register dumps, EEPROM changes and self tests of the uplinks.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;

// The magic keys of the default host's gigabit and 25GbE ports, in decimal.
const std::string kGigabitMagic = "188817210";
const std::string kSfp28Magic = "203759418";

// Rows of ornic0's EEPROM: its MAC address, then the init and id words.
const std::string kRow0 = "d2 6e a0 00 10 00 20 04 00 00 12 10 00 00 00 00 ";
const std::string kRow1 = "31 4b 07 0a c3 44 41 0b 3a 1f 41 0b 3a 1f 10 3c ";

std::string Row(std::string const& offset, std::string const& value) {
  return "{Offset=" + offset + ",Value=" + value + "}";
}

class NicDiagnosticsTest : public HostTest {
 protected:
  std::string Dump(std::string const& nic, std::string const& offset, std::string const& length) {
    std::vector<std::string> args = {"network", "nic", "eeprom", "dump", "-n", nic};
    if (!offset.empty()) args.insert(args.end(), {"-o", offset});
    if (!length.empty()) args.insert(args.end(), {"-l", length});
    return Ok(args);
  }

  std::string WriteFile(std::string const& name, std::string const& bytes) {
    std::string path = dir_ + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
};

TEST_F(NicDiagnosticsTest, EepromRowsStandInTheColumnsOfTheirAddresses) {
  struct Case {
    char const* offset;
    char const* length;
    std::string rows;
  };
  std::vector<Case> cases = {
      {"0", "20", "[" + Row("0000", kRow0) + "," + Row("0010", "31 4b 07 0a ") + "]"},
      {"15", "2", "[" + Row("0000", std::string(45, ' ') + "00 ") + "," + Row("0010", "31 ") + "]"},
      {"18", "3", "[" + Row("0010", "      07 0a c3 ") + "]"},
      {"", "16", "[" + Row("0000", kRow0) + "]"},
      // Reading at the very end gives no bytes: one row of padding alone.
      {"256", "", "[" + Row("0100", "") + "]"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.offset) + "+" + c.length);
    EXPECT_EQ(Dump("ornic0", c.offset, c.length), c.rows);
  }
  // Without a length the dump runs to the end: 256 bytes in 16 rows.
  auto whole = Execute({"network", "nic", "eeprom", "dump", "-n", "ornic0"});
  auto const& rows = static_cast<Toolbase::MetaObj::MetaList&>(*whole->GetRootObject());
  EXPECT_EQ(rows.GetCount(), 16u);
}

TEST_F(NicDiagnosticsTest, EepromDumpPrintsAsATable) {
  auto result = Run({"network", "nic", "eeprom", "dump", "-n", "ornic0", "-o", "16", "-l", "4"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("Offset"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("0010    31 4b 07 0a"), std::string::npos) << result.out;
}

TEST_F(NicDiagnosticsTest, DiagnosticFailuresShowTheBareText) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "eeprom", "dump", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "register", "dump", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "selftest", "run", "-n", "ornic9"}, "Pnic with name ornic9 not found"},
      {{"network", "nic", "eeprom", "change", "-n", "ornic9", "-m", "1"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "eeprom", "dump", "-n", "ornic4"},
       "EEPROM access is not supported by ornic4"},
      {{"network", "nic", "register", "dump", "-n", "ornic4"},
       "Register dump is not supported by ornic4"},
      {{"network", "nic", "selftest", "run", "-n", "ornic4"},
       "Self test is not supported by ornic4"},
      {{"network", "nic", "eeprom", "dump", "-n", "ornic0", "-o", "250", "-l", "7"},
       "EEPROM range 250+7 is beyond the 256 bytes of ornic0's EEPROM"},
      {{"network", "nic", "eeprom", "dump", "-n", "ornic0", "-o", "-1"},
       "EEPROM range 4294967295+0 is beyond the 256 bytes of ornic0's EEPROM"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[2] + " " + c.message);
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  struct Fault {
    char const* operation;
    std::vector<std::string> args;
  };
  std::vector<Fault> faults = {
      {"PnicImpl::GetEepromDump", {"network", "nic", "eeprom", "dump", "-n", "ornic0"}},
      {"PnicImpl::GetRegisterDump", {"network", "nic", "register", "dump", "-n", "ornic0"}},
      {"PnicImpl::RunSelfTest", {"network", "nic", "selftest", "run", "-n", "ornic0"}},
      {"PnicImpl::SetEepromValue",
       {"network", "nic", "eeprom", "change", "-n", "ornic0", "-m", "1", "-o", "0", "-v", "0"}},
      {"PnicImpl::SetEepromFile",
       {"network", "nic", "eeprom", "change", "-n", "ornic0", "-m", "1", "-f", "/x"}},
      {"NetworkInfoImpl::GetPnicByName", {"network", "nic", "selftest", "run", "-n", "ornic0"}},
  };
  for (auto const& f : faults) {
    SCOPED_TRACE(f.operation);
    InjectFault(f.operation, "driver not responding");
    auto output = Execute(f.args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{"driver not responding"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
    ClearFaults();
  }
}

TEST_F(NicDiagnosticsTest, RegistersComeSixteenToARowCountedInValues) {
  auto rows = Ok({"network", "nic", "register", "dump", "-n", "ornic0"});
  // 22 registers: the control word with link, full duplex and gigabit speed,
  // the status word with the link up, then the MAC address in the receive
  // address registers; the second row starts at 0x10 although it holds the
  // 17th value, not the 17th byte.
  EXPECT_EQ(rows.find("[{Offset=0000,Value=100261 80283 110 10000000 200000 8002 103f0fa a06ed2 "
                      "80000010 5dc "),
            0u)
      << rows;
  auto second = rows.find("{Offset=0010,Value=");
  ASSERT_NE(second, std::string::npos) << rows;
  EXPECT_EQ(rows.find("{Offset=", second + 1), std::string::npos) << rows;
  // The counters of ornic0 follow: 18442311 packets received is 0x1196847.
  EXPECT_NE(rows.find(" 1196847 "), std::string::npos) << rows;

  // A port taken down shows neither the set-link-up bit nor the link.
  auto down = Ok({"network", "nic", "register", "dump", "-n", "ornic3"});
  EXPECT_EQ(down.find("[{Offset=0000,Value=100201 80080 "), 0u) << down;
}

TEST_F(NicDiagnosticsTest, SelfTestReportsResultThenInfo) {
  struct Case {
    std::vector<std::string> args;
    std::string rows;
  };
  auto info = [](std::string const& text) { return "{Item=Info,Value=" + text + "}"; };
  std::vector<Case> cases = {
      {{"-n", "ornic0"},
       "[{Item=Result,Value=Passed}," + info("EEPROM test (online): passed") + "," +
           info("Link test (online): passed") + "," + info("Register test (offline): passed") +
           "," + info("Interrupt test (offline): passed") + "," +
           info("Loopback test (offline): passed") + "]"},
      // Any number but zero runs online only.
      {{"-n", "ornic0", "-o", "5"},
       "[{Item=Result,Value=Passed}," + info("EEPROM test (online): passed") + "," +
           info("Link test (online): passed") + "]"},
      {{"-n", "ornic0", "-o", "0"}, ""},
      // ornic3 is down: no link and no loopback, a result and not an error.
      {{"-n", "ornic3", "--online", "-1"},
       "[{Item=Result,Value=Failed}," + info("EEPROM test (online): passed") + "," +
           info("Link test (online): FAILED") + "]"},
  };
  std::string offline;
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args.back());
    std::vector<std::string> args = {"network", "nic", "selftest", "run"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    auto rows = Ok(args);
    if (c.rows.empty()) {
      EXPECT_EQ(rows, offline);
    } else {
      EXPECT_EQ(rows, c.rows);
    }
    if (offline.empty()) offline = rows;
  }

  auto result = Run({"network", "nic", "selftest", "run", "-n", "ornic3"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("Result  Failed"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Loopback test (offline): FAILED"), std::string::npos) << result.out;
}

TEST_F(NicDiagnosticsTest, EepromChangeOptionRules) {
  std::vector<std::string> const base = {"network", "nic",    "eeprom", "change",
                                         "-n",      "ornic0", "-m",     kGigabitMagic};
  struct Case {
    std::vector<std::string> options;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"-f", "/tmp/x", "-v", "1"},
       "Parameter --file can't be specified together with --offset and --value"},
      {{"-f", "/tmp/x", "-o", "1", "-v", "1"},
       "Parameter --file can't be specified together with --offset and --value"},
      {{"-o", "4"}, "Need to specify atleast one of --offset, --value or --file"},
      {{"-v", "4"}, "Need to specify atleast one of --offset, --value or --file"},
      {{}, "Need to specify atleast one of --offset, --value or --file"},
      {{"-o", "-1", "-v", "1"},
       "EEPROM range 4294967295+4 is beyond the 256 bytes of ornic0's EEPROM"},
      {{"-o", "254", "-v", "1"}, "EEPROM range 254+4 is beyond the 256 bytes of ornic0's EEPROM"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    auto args = base;
    args.insert(args.end(), c.options.begin(), c.options.end());
    Refused(args, {c.message});
  }
  Refused({"network", "nic", "eeprom", "change", "-n", "ornic0", "-m", kSfp28Magic, "-o", "0", "-v",
           "1"},
          {"Invalid EEPROM magic key 0x0c251f3a for ornic0"});
  // Magic is required: the line is refused before the command runs.
  EXPECT_EQ(
      Run({"network", "nic", "eeprom", "change", "-n", "ornic0", "-o", "0", "-v", "1"}).status, 2);
}

TEST_F(NicDiagnosticsTest, EepromValueIsWrittenLittleEndianAndKeptSound) {
  auto result = Run({"network", "nic", "eeprom", "change", "-n", "ornic0", "-m", kGigabitMagic,
                     "-o", "32", "-v", "3735928559"});  // 0xdeadbeef
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  Reload();
  EXPECT_EQ(Dump("ornic0", "32", "4"), "[" + Row("0020", "ef be ad de ") + "]");
  // The checksum word was brought along, so the self test still passes.
  EXPECT_EQ(Ok({"network", "nic", "selftest", "run", "-n", "ornic0", "-o", "1"})
                .find("{Item=Result,Value=Passed}"),
            1u);
}

TEST_F(NicDiagnosticsTest, EepromFileIsReadByTheLibrary) {
  std::vector<std::string> const base = {"network", "nic", "eeprom",      "change", "-n",
                                         "ornic0",  "-m",  kGigabitMagic, "-f"};
  auto change = [&](std::string const& file) {
    auto args = base;
    args.push_back(file);
    return args;
  };
  std::string missing = dir_ + "/missing.bin";
  Refused(change(missing),
          {"Unable to open EEPROM file " + missing + ": No such file or directory"});
  Refused(change(dir_), {"Unable to read EEPROM file " + dir_ + ": Is a directory"});
  std::string empty = WriteFile("empty.bin", "");
  Refused(change(empty), {"EEPROM file " + empty + " is empty"});
  std::string large = WriteFile("large.bin", std::string(257, '\x11'));
  Refused(change(large),
          {"EEPROM file " + large + " is larger than the 256 bytes of ornic0's EEPROM"});

  // A short image replaces the leading bytes as it is, checksum and all: the
  // self test then finds the image unsound.
  std::string image = WriteFile("image.bin", std::string("\x02\x00\x5e\x10\x00\x01", 6));
  auto result = Run(change(image));
  ASSERT_EQ(result.status, 0) << result.err;
  Reload();
  EXPECT_EQ(Dump("ornic0", "0", "8"), "[" + Row("0000", "02 00 5e 10 00 01 20 04 ") + "]");
  EXPECT_EQ(Ok({"network", "nic", "selftest", "run", "-n", "ornic0", "-o", "1"}),
            "[{Item=Result,Value=Failed},{Item=Info,Value=EEPROM test (online): FAILED},"
            "{Item=Info,Value=Link test (online): passed}]");
  // The other port of the card keeps its own EEPROM.
  EXPECT_EQ(Dump("ornic1", "0", "6"), "[" + Row("0000", "d2 6e a0 00 10 01 ") + "]");
}

}  // namespace
