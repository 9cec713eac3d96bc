// `network nic set`: option rules, comparison against the record, and the
// separate link call.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using OrvkCtl::Sim::PnicState;
using TestSupport::HostTest;

PnicState const& Nic(char const* name) { return *FindPnic(OrvkCtl::Sim::ReadHost().nic, name); }

class NicSetTest : public HostTest {
 protected:
  std::vector<std::string> Set(std::vector<std::string> const& options) {
    std::vector<std::string> args = {"network", "nic", "set"};
    args.insert(args.end(), options.begin(), options.end());
    return args;
  }

  void ExpectOk(std::vector<std::string> const& options) {
    auto output = Execute(Set(options));
    EXPECT_TRUE(output->GetErrorMessages().empty())
        << (output->GetErrorMessages().empty() ? "" : output->GetErrorMessages()[0]);
    EXPECT_EQ(TestSupport::MetaText(output->GetRootObject()), "true");
  }
};

TEST_F(NicSetTest, ChangesReachTheDevice) {
  ExpectOk({"-n", "ornic2", "-p", "fibre", "-t", "internal", "-V", "D2:6E:A0:00:25:99"});
  ExpectOk({"-n", "ornic0", "-P", "5", "-w", "gu", "-l", "15"});
  Reload();
  EXPECT_EQ(Nic("ornic2").port, 4u);
  EXPECT_EQ(Nic("ornic2").transceiver, 0u);
  EXPECT_EQ(Nic("ornic2").virtual_address, "d2:6e:a0:00:25:99");
  EXPECT_EQ(Nic("ornic0").phy_address, 5u);
  EXPECT_EQ(Nic("ornic0").wake_on, (std::vector<uint32_t>{1, 5}));
  EXPECT_EQ(Nic("ornic0").message_level, 15u);

  auto result = Run({"network", "nic", "get", "-n", "ornic2"});
  EXPECT_NE(result.out.find("Cable Type: FIBRE"), std::string::npos) << result.out;
}

TEST_F(NicSetTest, SpeedAndDuplexOrAutoNegotiation) {
  ExpectOk({"-n", "ornic1", "-S", "100", "-D", "half"});
  EXPECT_FALSE(Nic("ornic1").auto_negotiation);
  EXPECT_EQ(Nic("ornic1").speed, 100u);
  EXPECT_EQ(Nic("ornic1").duplex, 2u);

  // Nothing else changes, yet --auto is still a change of its own.
  ExpectOk({"-n", "ornic1", "-p", "tp", "--auto"});
  EXPECT_TRUE(Nic("ornic1").auto_negotiation);
  EXPECT_EQ(Nic("ornic1").speed, 1000u);
  EXPECT_EQ(Nic("ornic1").duplex, 1u);

  // The link call is made even for the settings in force.
  ExpectOk({"-n", "ornic2", "--speed", "25000", "--duplex", "full"});
  EXPECT_EQ(Nic("ornic2").speed, 25000u);
}

TEST_F(NicSetTest, OptionRulesComeBeforeTheHost) {
  struct Case {
    std::vector<std::string> options;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"-n", "ornic9", "-S", "100"},
       "The --speed and --duplex options must be specified together"},
      {{"-n", "ornic0", "-a", "-D", "full"},
       "The --speed and --duplex options must be specified together"},
      {{"-n", "ornic9", "-a", "-S", "100", "-D", "full"},
       "The options --speed and --duplex cannot be specified with the --auto option."},
      {{"-n", "ornic9", "-p", "tp"}, "There is no pnic with name ornic9"},
      {{"-n", "ornic0"}, "There is no change for nic ornic0"},
      {{"-n", "ornic0", "-p", "tp"}, "There is no change for nic ornic0"},
      {{"-n", "ornic0", "-P", "-1"}, "There is no change for nic ornic0"},
      {{"-n", "ornic0", "-P", "1", "-V", "d2:6e:a0:00:10:00"}, "There is no change for nic ornic0"},
      {{"-n", "ornic0", "-P", "0"}, "Invalid PHY address value."},
      {{"-n", "ornic0", "-l", "3", "-P", "-2"}, "Invalid PHY address value."},
      {{"-n", "ornic0", "-w", "d"}, "Invalid wol value."},
      {{"-n", "ornic0", "-w", "pd"}, "Invalid wol value."},
      {{"-n", "ornic2", "-w", "d"}, "Not Support wol."},
      {{"-n", "ornic2", "-l", "0"}, "Not Support msglvl."},
      // What the device refuses, the library words.
      {{"-n", "ornic0", "-p", "fibre"}, "Port type 4 is not supported by ornic0"},
      {{"-n", "ornic0", "-P", "40"}, "PHY address 40 of ornic0 is out of range 0 to 31"},
      {{"-n", "ornic0", "-w", "a"}, "Wake-on-LAN by ARP is not supported by ornic0"},
      {{"-n", "ornic0", "-V", "01:00:5e:00:00:01"},
       "Virtual address 01:00:5e:00:00:01 for ornic0 is not a unicast address"},
      {{"-n", "ornic0", "-S", "10000", "-D", "full"},
       "Speed 10000 Mbps full duplex is not supported by ornic0"},
      {{"-n", "ornic2", "-S", "25000", "-D", "half"},
       "Speed 25000 Mbps half duplex is not supported by ornic2"},
  };
  Execute({"network", "nic", "list"});  // the state file exists from here on
  std::string before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    auto output = Execute(Set(c.options));
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  Reload();
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NicSetTest, WakeOnIsAlwaysAChange) {
  InjectFault("PnicImpl::SetInfo", "SetInfo called");
  // Magic packet alone is armed already, and still it is written.
  auto output = Execute(Set({"-n", "ornic0", "-w", "g"}));
  EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{"SetInfo called"});
}

TEST_F(NicSetTest, ConstraintsAreTheFrameworks) {
  for (auto const& options :
       std::vector<std::vector<std::string>>{{"-n", "ornic0", "-p", "coax"},
                                             {"-n", "ornic0", "-t", "optical"},
                                             {"-n", "ornic0", "-w", "px"},
                                             {"-n", "ornic0", "-S", "1001", "-D", "full"},
                                             {"-n", "ornic0", "-S", "1000", "-D", "auto"}}) {
    SCOPED_TRACE(options[2] + " " + options[3]);
    EXPECT_EQ(Run(Set(options)).status, 2);
  }
}

TEST_F(NicSetTest, HostFailuresStopBeforeOrAfterTheFirstWrite) {
  struct Case {
    char const* operation;
    bool portApplied;
  };
  std::vector<Case> cases = {
      {"NetworkInfoImpl::GetPnicByName", false},
      {"PnicImpl::GetInfo", false},
      {"PnicImpl::SetInfo", false},
      {"PnicImpl::SetSpeedAndDuplex", true},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    OrvkCtl::Sim::ChangeHost(
        [](OrvkCtl::Sim::HostModel& host) { FindPnic(host.nic, "ornic2")->port = 5; });
    InjectFault(c.operation, "driver timed out");
    auto result = Run(Set({"-n", "ornic2", "-p", "fibre", "-S", "10000", "-D", "full"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "driver timed out\n");
    EXPECT_EQ(Nic("ornic2").port, c.portApplied ? 4u : 5u);
  }
}

}  // namespace
