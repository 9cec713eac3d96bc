// `network ip interface tag` against the simulated host: the library's tag
// vocabulary, and the rule that dedicated netstack instances and the default
// one do not share a service's tag.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

const char kSupported[] =
    "Supported tags are: Management, Livehop, FaultTolerance, StorageReplication, "
    "ReplicationBulk, TamariskProvisioning, ObjectStorage, ObjectStorageWitness, NetworkStorage, "
    "ClusterHeartbeat, BackupTransfer, Telemetry, HostSync";

Args Tag(char const* verb, char const* nic, char const* tag) {
  return {"network", "ip", "interface", "tag", verb, "-i", nic, "-t", tag};
}
Args TagGet(char const* nic) { return {"network", "ip", "interface", "tag", "get", "-i", nic}; }

class InterfaceTagTest : public HostTest {
 protected:
  void ExpectSuccess(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    EXPECT_EQ(MetaText(output->GetRootObject()), "true");
  }
  void ExpectFailure(Args const& args, Messages const& messages) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), messages);
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  std::string Tags(char const* nic) {
    auto output = Execute(TagGet(nic));
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    return MetaText(output->GetRootObject());
  }
  // A second interface, orvk1, on the dedicated instance "livehop".
  void AddLivehopInterface() {
    OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
      auto nic = host.ip.interfaces.front();
      nic.name = "orvk1";
      nic.mac = "d2:6e:a0:00:10:01";
      nic.netstack = "livehop";
      nic.portgroup = "VM Network";
      nic.tags = {};
      host.ip.interfaces.push_back(nic);
    });
  }
};

TEST_F(InterfaceTagTest, AddRemoveAndGetPersist) {
  EXPECT_EQ(Tags("orvk0"), "{Tags=[Management]}");
  ExpectSuccess(Tag("add", "orvk0", "Telemetry"));
  // A dedicated instance that is up but has no interface does not block.
  ExpectSuccess(Tag("add", "orvk0", "Livehop"));
  ExpectSuccess(Tag("remove", "orvk0", "Management"));
  Reload();
  EXPECT_EQ(Tags("orvk0"), "{Tags=[Telemetry,Livehop]}");
  ExpectSuccess(Tag("remove", "orvk0", "Telemetry"));
  ExpectSuccess(Tag("remove", "orvk0", "Livehop"));
  EXPECT_EQ(Tags("orvk0"), "{Tags=[]}");
  auto printed = Run({"network", "ip", "interface", "tag", "get", "-i", "orvk0"});
  ASSERT_EQ(printed.status, 0) << printed.err;
}

TEST_F(InterfaceTagTest, BadNamesAndMissingInterfacesChangeNothing) {
  SeedHost();
  std::string before = StateFileText();
  ExpectFailure(Tag("add", "orvk0", "nonsense"), {"Invalid tag name nonsense", kSupported});
  // The name is checked before the interface is looked for.
  ExpectFailure(Tag("remove", "orvk9", "management"), {"Invalid tag name management", kSupported});
  ExpectFailure(Tag("add", "orvk9", "Telemetry"), {"Unable to find orvknic with name orvk9"});
  ExpectFailure(Tag("remove", "orvk9", "Telemetry"), {"Unable to find orvknic with name orvk9"});
  ExpectFailure(TagGet("orvk9"), {"Unable to find an interface with name orvk9"});
  // The library refuses to clear a tag that is not set.
  ExpectFailure(Tag("remove", "orvk0", "Telemetry"),
                {"Error removing tag Telemetry from interface orvk0. Error was : Tag 12 is not set "
                 "on orvk0"});
  EXPECT_EQ(StateFileText(), before);
  // Help follows the library's vocabulary.
  auto help = Run({"network", "ip", "interface", "tag", "add", "--help"});
  EXPECT_NE(help.out.find("Adds a tag on a given Orvik network interface. Supported"),
            std::string::npos);
  EXPECT_NE(help.out.find("ClusterHeartbeat"), std::string::npos);
}

TEST_F(InterfaceTagTest, DedicatedInstancesKeepTheirServicesApart) {
  AddLivehopInterface();
  struct Case {
    char const* nic;
    char const* tag;
    char const* message;
  };
  for (Case const& c : {
           // "livehop" is up and has an interface now.
           Case{"orvk0", "Livehop",
                "Failed to add Livehop tag when dedicated stack is instantiated"},
           Case{"orvk1", "Livehop",
                "Failed to add Livehop tag when dedicated stack is instantiated"},
           // An interface of "livehop" takes no other service's tag.
           Case{"orvk1", "FaultTolerance", "netstack mismatch for tagFaultTolerance"},
           Case{"orvk1", "Management", "netstack mismatch for tagManagement"},
       }) {
    SCOPED_TRACE(std::string(c.nic) + " " + c.tag);
    ExpectFailure(Tag("add", c.nic, c.tag), {c.message});
  }
  // With "livehop" down, the interface of the default instance takes it.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    OrvkCtl::Sim::FindNetstack(host.ip, "livehop")->state = 0;
  });
  ExpectSuccess(Tag("add", "orvk0", "Livehop"));
  // Removing is not limited by instance.
  ExpectSuccess(Tag("remove", "orvk0", "Management"));
}

TEST_F(InterfaceTagTest, HostFailuresNameTheTagAndInterface) {
  struct Case {
    char const* operation;
    Args args;
    char const* message;
  };
  for (Case const& c : {
           Case{"OrvkNicImpl::AddTag", Tag("add", "orvk0", "Telemetry"),
                "Error setting tag Telemetry on interface orvk0. Error was : boom"},
           Case{"NetworkInfoImpl::GetNetstackInstanceState", Tag("add", "orvk0", "Livehop"),
                "Error setting tag Livehop on interface orvk0. Error was : boom"},
           Case{"OrvkNicImpl::RemoveTag", Tag("remove", "orvk0", "Management"),
                "Error removing tag Management from interface orvk0. Error was : boom"},
           Case{"OrvkNicImpl::GetTags", TagGet("orvk0"),
                "Error getting tags on interface orvk0. Error was : boom"},
       }) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "boom");
    ExpectFailure(c.args, {c.message});
    ClearFaults();
  }
}

}  // namespace
