// Uplink attachments and the SR-IOV views of the default host.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;

const std::string kSeededAttachment =
    "{Trunk=ornic2,Branch=ornic3,Branch MAC=d2:6e:a0:00:25:01,VLAN ID=300}";

class AttachmentSriovTest : public HostTest {
 protected:
  static std::vector<std::string> Add(std::string const& trunk, std::string const& branch,
                                      std::string const& vlan) {
    return {"network", "nic", "attachment", "add", "-t", trunk, "-b", branch, "-v", vlan};
  }
  static std::vector<std::string> Remove(std::string const& trunk, std::string const& branch) {
    return {"network", "nic", "attachment", "remove", "-t", trunk, "-b", branch};
  }
};

TEST_F(AttachmentSriovTest, AttachmentsPersistInAttachOrder) {
  EXPECT_EQ(Ok({"network", "nic", "attachment", "list"}), "[" + kSeededAttachment + "]");
  EXPECT_EQ(Ok(Add("ornic0", "ornic4", "4094")), "true");
  EXPECT_EQ(Ok(Add("ornic0", "ornic1", "0")), "true");
  Reload();
  std::string const ornic0 =
      "{Trunk=ornic0,Branch=ornic4,Branch MAC=d2:6e:a0:7c:00:31,VLAN ID=4094},"
      "{Trunk=ornic0,Branch=ornic1,Branch MAC=d2:6e:a0:00:10:01,VLAN ID=0}";
  EXPECT_EQ(Ok({"network", "nic", "attachment", "list"}),
            "[" + ornic0 + "," + kSeededAttachment + "]");
  EXPECT_EQ(Ok({"network", "nic", "attachment", "list", "-t", "ornic0"}), "[" + ornic0 + "]");
  // A NIC without branches lists nothing and reports nothing.
  EXPECT_EQ(Ok({"network", "nic", "attachment", "list", "--trunk", "ornic3"}), "[]");

  EXPECT_EQ(Ok(Remove("ornic0", "ornic4")), "true");
  EXPECT_EQ(Ok(Remove("ornic2", "ornic3")), "true");
  Reload();
  EXPECT_EQ(Ok({"network", "nic", "attachment", "list"}),
            "[{Trunk=ornic0,Branch=ornic1,Branch MAC=d2:6e:a0:00:10:01,VLAN ID=0}]");
}

TEST_F(AttachmentSriovTest, AttachmentRefusals) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  std::vector<Case> cases = {
      // The names are compared before any lookup, NIC or not.
      {Add("nothing", "nothing", "5"), "Trunk uplink and branch uplink need to be different."},
      {Add("ornic9", "ornic1", "5"), "Invalid trunk PNIC name ornic9"},
      {Add("ornic0", "ornic9", "5"), "Invalid branch PNIC name ornic9"},
      {Add("ornic0", "ornic3", "5"),
       "Failed to attach uplink ornic3 to ornic0: Uplink ornic3 is already attached to trunk "
       "ornic2"},
      {Add("ornic0", "ornic2", "5"),
       "Failed to attach uplink ornic2 to ornic0: Uplink ornic2 is a trunk and can't be attached "
       "as a branch"},
      {Add("ornic3", "ornic1", "5"),
       "Failed to attach uplink ornic1 to ornic3: Uplink ornic3 is a branch of ornic2 and can't be "
       "a trunk"},
      {Add("ornic2", "ornic4", "300"),
       "Failed to attach uplink ornic4 to ornic2: VLAN ID 300 is already used on trunk ornic2 by "
       "ornic3"},
      {Remove("ornic9", "ornic3"), "Invalid PNIC name ornic9"},
      // The branch is not checked by the command; the library's words follow.
      {Remove("ornic2", "ornic9"),
       "Failed to detach uplink ornic9 from ornic2: Uplink ornic9 is not attached to trunk ornic2"},
      {Remove("ornic0", "ornic3"),
       "Failed to detach uplink ornic3 from ornic0: Uplink ornic3 is not attached to trunk ornic0"},
      {{"network", "nic", "attachment", "list", "-t", "ornic9"}, "Invalid PNIC name ornic9"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(c.args, {c.message});
  }
  // The top of a port group's range is refused by the constraint.
  auto result = Run(Add("ornic0", "ornic4", "4095"));
  EXPECT_EQ(result.status, 2) << result.out;
  EXPECT_EQ(Run(Add("ornic0", "ornic4", "-1")).status, 2);
}

TEST_F(AttachmentSriovTest, AttachmentFaultsCarryTheirPrefix) {
  struct Case {
    char const* operation;
    std::vector<std::string> args;
    std::string message;
  };
  std::vector<Case> cases = {
      {"PnicImpl::AddAttachment", Add("ornic0", "ornic4", "7"),
       "Failed to attach uplink ornic4 to ornic0: bus error"},
      {"NetworkInfoImpl::GetPnicByName", Add("ornic0", "ornic4", "7"),
       "Failed to attach uplink ornic4 to ornic0: bus error"},
      {"PnicImpl::RemoveAttachment", Remove("ornic2", "ornic3"),
       "Failed to detach uplink ornic3 from ornic2: bus error"},
      {"NetworkFactory::GetNetworkInfo",
       {"network", "nic", "attachment", "list"},
       "Unable to list uplink's attachment info: bus error"},
      {"PnicImpl::GetMacAddress",
       {"network", "nic", "attachment", "list"},
       "Unable to list uplink's attachment info: bus error"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "bus error");
    Refused(c.args, {c.message});
    ClearFaults();
  }
}

TEST_F(AttachmentSriovTest, SriovNicListShowsThePhysicalFunctions) {
  EXPECT_EQ(Ok({"network", "sriovnic", "list"}),
            "[{Name=ornic2,PCI Device=0000:3b:00.0,Driver=kmnet,Link=Up,Speed=25000,Duplex=Full,"
            "MAC Address=d2:6e:a0:00:25:00,MTU=9000,Description=Kestrel Microsystems KM-2500 Dual "
            "Port 25GbE SFP28 Adapter}]");
  // A function without PCI device and without link.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    OrvkCtl::Sim::FindPnic(host.nic, "ornic4")->sriov.enabled = true;
  });
  EXPECT_NE(Ok({"network", "sriovnic", "list"})
                .find("{Name=ornic4,PCI Device=Pseudo,Driver=olusb,Link=Down,Speed=0,Duplex=Half,"
                      "MAC Address=d2:6e:a0:7c:00:31,MTU=1500,Description=Unknown Unknown}"),
            std::string::npos);

  auto table = Run({"network", "sriovnic", "list"});
  ASSERT_EQ(table.status, 0) << table.err;
  EXPECT_EQ(table.out.find("Name    PCI Device    Driver"), 0u) << table.out;
  InjectFault("NetworkInfoImpl::GetSriovNics", "PF table locked");
  auto output = Execute({"network", "sriovnic", "list"});
  EXPECT_EQ(output->GetErrorMessages(),
            std::vector<std::string>{"Unable to list NICs.  Error was PF table locked"});
}

TEST_F(AttachmentSriovTest, VirtualFunctionsAndTheirCounters) {
  EXPECT_EQ(Ok({"network", "sriovnic", "vf", "list", "-n", "ornic2"}),
            "[{VF ID=0,Active=true,PCI Address=0000:3b:02.0,Owner World ID=1000412},"
            "{VF ID=1,Active=true,PCI Address=0000:3b:02.1,Owner World ID=1000458},"
            "{VF ID=2,Active=false,PCI Address=0000:3b:02.2,Owner World ID=0},"
            "{VF ID=3,Active=false,PCI Address=0000:3b:02.3,Owner World ID=0}]");
  auto stats = Ok({"network", "sriovnic", "vf", "stats", "-n", "ornic2", "-v", "1"});
  EXPECT_EQ(
      stats.find("[{NIC Name=ornic2,VF ID=1,Rx Unicast Pkt=882104,Rx Unicast Bytes=711209983,"), 0u)
      << stats;
  EXPECT_NE(stats.find("Tx Discards=0,Tx TSO Pkts=512330,Tx TSO Bytes=7302211876}]"),
            std::string::npos)
      << stats;

  auto simple = Run({"network", "sriovnic", "vf", "stats", "-n", "ornic2", "-v", "0"});
  ASSERT_EQ(simple.status, 0) << simple.err;
  // The directives name other types than the record's, so the record is
  // printed whole, without heading.
  EXPECT_EQ(simple.out.find("NIC Name: ornic2\nVF ID: 0\nRx Unicast Pkt: 4410233\n"), 0u)
      << simple.out;
  EXPECT_EQ(simple.out.find("Statistics for"), std::string::npos) << simple.out;

  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"network", "sriovnic", "vf", "list", "-n", "ornic9"},
       "There is no SRIOV Nic with name ornic9"},
      {{"network", "sriovnic", "vf", "stats", "-n", "ornic9", "-v", "0"},
       "There is no SRIOV Nic with name ornic9"},
      {{"network", "sriovnic", "vf", "list", "-n", "ornic0"},
       "There is no SRIOV Nic with name ornic0"},
      {{"network", "sriovnic", "vf", "stats", "-n", "ornic2", "-v", "9"},
       "Unable to get VF Stats. Error:Physical NIC ornic2 has no VF 9"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  InjectFault("NetworkInfoImpl::GetSriovNicVFInfo", "VF table locked");
  auto output = Execute({"network", "sriovnic", "vf", "list", "-n", "ornic2"});
  EXPECT_EQ(output->GetErrorMessages(),
            std::vector<std::string>{"Unable to get VF Info. Error:VF table locked"});
}

// The executable itself: exit status and the bytes on each stream.
TEST_F(AttachmentSriovTest, ExecutableExitStatusAndStreams) {
  std::map<std::string, std::string> env = {{"TOOLBASE_HOST_STATE", state_path_}};
  auto refused = TestSupport::RunProcess(Add("ornic0", "ornic4", "4095"), env);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err.rfind("Error: Parameter --vlan-id value 4095 is out of range", 0), 0u)
      << refused.err;

  env["TOOLBASE_HOST_FAULTS"] = "PnicImpl::AddAttachment=driver busy";
  auto failed = TestSupport::RunProcess(Add("ornic0", "ornic4", "12"), env);
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.out, "");
  EXPECT_EQ(failed.err, "Failed to attach uplink ornic4 to ornic0: driver busy\n");

  env.erase("TOOLBASE_HOST_FAULTS");
  auto vfs = TestSupport::RunProcess(
      {"--formatter", "csv", "network", "sriovnic", "vf", "list", "-n", "ornic2"}, env);
  EXPECT_EQ(vfs.status, 0) << vfs.err;
  EXPECT_EQ(vfs.out,
            "VF ID,Active,PCI Address,Owner World ID\n"
            "0,true,0000:3b:02.0,1000412\n"
            "1,true,0000:3b:02.1,1000458\n"
            "2,false,0000:3b:02.2,0\n"
            "3,false,0000:3b:02.3,0\n");
}

}  // namespace
