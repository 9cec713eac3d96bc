// `network vswitch dvs corvane list` against the simulated host.
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

std::string Port(int id, bool inUse, char const* group, char const* client) {
  return "{Port ID=" + std::to_string(id) + ",In Use=" + (inUse ? "true" : "false") +
         ",DVPortgroup ID=" + group + ",Client=[" + client + "]}";
}

std::string DefaultSwitch() {
  std::string ports;
  for (int id = 0; id < 12; ++id) {
    char const* group = id < 8 ? "dvportgroup-1001" : "dvportgroup-1002";
    char const* client = id == 0   ? "app-01.eth0"
                         : id == 1 ? "app-02.eth0"
                         : id == 8 ? "repl-01.eth1"
                                   : "";
    ports += (ports.empty() ? "" : ",") + Port(id, *client != 0, group, client);
  }
  return "{Name=DSwitch-Prod,KDS ID=50 1e 7a 3c 9d 42 b1 08-6f 55 c2 e9 10 a4 7d 33,"
         "Class=tamarisk-dvs,Num Ports=20,Used Ports=6,Configured Ports=12,MTU=9000,"
         "CDP Status=listen,Beacon Timeout=-1,Uplinks=[ornic2,ornic3],Corvane Branded=true,"
         "DVPort=[" +
         ports + "]}";
}

class DvsTest : public HostTest {
 protected:
  Toolbase::CallSpec::Output const& Out(Args const& args) {
    output_ = Execute(args);
    return *output_;
  }
  std::shared_ptr<Toolbase::CallSpec::Output> output_;
};

TEST_F(DvsTest, ListsTheDefaultSwitchWithItsPortsAndPhysicalUplinksOnly) {
  for (Args const& args :
       {Args{"network", "vswitch", "dvs", "corvane", "list"},
        Args{"network", "vswitch", "dvs", "corvane", "list", "-v", "DSwitch-Prod"},
        Args{"network", "vswitch", "dvs", "corvane", "list", "--kds-name", ""}}) {
    SCOPED_TRACE(args.back());
    auto const& output = Out(args);
    EXPECT_EQ(output.GetErrorMessages(), Messages{});
    EXPECT_EQ(MetaText(output.GetRootObject()), "[" + DefaultSwitch() + "]");
  }
  auto printed = Run({"network", "vswitch", "dvs", "corvane", "list"});
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_NE(printed.out.find("DSwitch-Prod"), std::string::npos);
}

TEST_F(DvsTest, UnknownNameFailsAndAHostWithoutSwitchesListsNothing) {
  auto const& unknown = Out({"network", "vswitch", "dvs", "corvane", "list", "-v", "nope"});
  EXPECT_EQ(unknown.GetErrorMessages(), Messages{"Distributed switch nope not found"});
  EXPECT_EQ(unknown.GetRootObject(), nullptr);

  OrvkCtl::Sim::ChangeHost(
      [](OrvkCtl::Sim::HostModel& host) { host.vswitch.distributed_switches.clear(); });
  auto const& none = Out({"network", "vswitch", "dvs", "corvane", "list"});
  EXPECT_EQ(none.GetErrorMessages(), Messages{});
  EXPECT_EQ(MetaText(none.GetRootObject()), "[]");
}

TEST_F(DvsTest, HostFailuresGiveTheLibraryTextAlone) {
  for (char const* operation :
       {"VirtualSwitchInfoImpl::GetDVSwitches", "NetworkInfoImpl::GetPnics",
        "DVSwitchImpl::GetDVPorts", "DVPortImpl::IsInUse", "DVSwitchImpl::GetUplinks"}) {
    SCOPED_TRACE(operation);
    InjectFault(operation, "dvs unreachable");
    auto const& output = Out({"network", "vswitch", "dvs", "corvane", "list"});
    EXPECT_EQ(output.GetErrorMessages(), Messages{"dvs unreachable"});
    EXPECT_EQ(output.GetRootObject(), nullptr);
    ClearFaults();
  }
}

}  // namespace
