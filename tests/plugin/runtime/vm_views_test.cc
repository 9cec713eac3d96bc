// The VM views against the simulated host: both walk every switch, standard
// and distributed, and must agree with each other and with the port list.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
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
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

const Args kVmList = {"network", "vm", "list"};

Args PortList(std::string const& world) { return {"network", "vm", "port", "list", "-w", world}; }

class VmViewsTest : public HostTest {
 protected:
  // The rows of `vm list`, whose order is not defined, sorted.
  std::vector<std::string> VmRows() {
    auto output = Execute(kVmList);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    std::vector<std::string> rows;
    auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
    if (!list) return rows;
    for (auto const& item : list->GetItems()) rows.push_back(MetaText(item));
    std::sort(rows.begin(), rows.end());
    return rows;
  }
  std::string Ports(std::string const& world) {
    auto output = Execute(PortList(world));
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    return MetaText(output->GetRootObject());
  }
};

TEST_F(VmViewsTest, ListsEveryVmOfBothKindsOfSwitch) {
  EXPECT_EQ(VmRows(), (std::vector<std::string>{
                          "{World ID=1000271,Name=web-01,Num Ports=1,Networks=[VM Network]}",
                          "{World ID=1000305,Name=db-01,Num Ports=1,Networks=[VM Network]}",
                          "{World ID=1000412,Name=app-01,Num Ports=1,Networks=[dvportgroup-1001]}",
                          "{World ID=1000433,Name=app-02,Num Ports=1,Networks=[dvportgroup-1001]}",
                          "{World ID=1000458,Name=repl-01,Num Ports=1,Networks=[dvportgroup-1002]}",
                      }));
  auto printed = Run({"network", "vm", "list"});
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_NE(printed.out.find("World ID"), std::string::npos);
  EXPECT_NE(printed.out.find("repl-01"), std::string::npos);
}

TEST_F(VmViewsTest, PortsOfAVmOnEachKindOfSwitch) {
  struct Case {
    char const* world;
    char const* ports;
  };
  for (Case const& c : {
           // Standard switch: no DVPort, filters active in both chains once
           // each, the inactive one left out; the team uplink's own port.
           Case{"1000271",
                "[{Port ID=33554437,vSwitch=vSwitch0,Portgroup=VM Network,DVPort ID=,"
                "MAC Address=02:1c:7e:00:11:01,IP Address=192.168.10.51,Team Uplink=ornic0,"
                "Uplink Port ID=33554433,Active Filters=[fw-mon.0,rate-guard.1]}]"},
           Case{"1000412",
                "[{Port ID=67108867,vSwitch=DSwitch-Prod,Portgroup=dvportgroup-1001,DVPort ID=0,"
                "MAC Address=02:1c:7e:00:21:01,IP Address=10.20.0.11,Team Uplink=ornic2,"
                "Uplink Port ID=67108865,Active Filters=[]}]"},
           // Its team uplink is a LAG member without a port of its own.
           Case{"1000458",
                "[{Port ID=67108869,vSwitch=DSwitch-Prod,Portgroup=dvportgroup-1002,DVPort ID=8,"
                "MAC Address=02:1c:7e:00:22:01,IP Address=10.30.0.5,Team Uplink=ornic2,"
                "Uplink Port ID=67108865,Active Filters=[]}]"},
       }) {
    SCOPED_TRACE(c.world);
    EXPECT_EQ(Ports(c.world), c.ports);
  }
}

TEST_F(VmViewsTest, AVmWithTwoPortsOnOneGroupCountsBoth) {
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    auto second = *OrvkCtl::Sim::FindPort(host.runtime, 33554438);
    second.id = 33554439;
    second.client = "db-01.eth1";
    second.mac_address = "02:1c:7e:00:11:03";
    host.runtime.ports.push_back(second);
  });
  auto rows = VmRows();
  EXPECT_NE(std::find(rows.begin(), rows.end(),
                      "{World ID=1000305,Name=db-01,Num Ports=2,Networks=[VM Network,VM Network]}"),
            rows.end());
  std::string ports = Ports("1000305");
  EXPECT_NE(ports.find("Port ID=33554438"), std::string::npos);
  EXPECT_NE(ports.find("Port ID=33554439"), std::string::npos);
}

TEST_F(VmViewsTest, UnknownWorldsAndHostFailures) {
  for (char const* world : {"0", "4242", "-1"}) {
    SCOPED_TRACE(world);
    auto output = Execute(PortList(world));
    EXPECT_EQ(output->GetErrorMessages(), Messages{"Couldn't find VM with given world ID"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  struct Case {
    char const* operation;
    Args args;
    char const* message;
  };
  for (Case const& c : {
           Case{"VirtualSwitchInfoImpl::GetAllSwitches", kVmList,
                "Unable to list VM's: host unreachable"},
           Case{"WorldImpl::GetWorldName", kVmList, "Unable to list VM's: host unreachable"},
           Case{"DVPortImpl::GetDVPortgroupId", kVmList, "Unable to list VM's: host unreachable"},
           Case{"PortImpl::GetWorldLeader", PortList("1000271"),
                "Unable to list ports for VM: host unreachable"},
           Case{"PortImpl::GetFilterStats", PortList("1000271"),
                "Unable to list ports for VM: host unreachable"},
       }) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "host unreachable");
    auto output = Execute(c.args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{c.message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
    ClearFaults();
  }
  // Only the uplink's port lookup fails: the row stays, with port ID 0.
  InjectFault("PnicImpl::GetPort", "no port");
  EXPECT_NE(Ports("1000271").find("Team Uplink=ornic0,Uplink Port ID=0,"), std::string::npos);
}

TEST_F(VmViewsTest, PrintsInEveryFormatter) {
  for (char const* formatter : {"simple", "table", "json", "xml", "csv"}) {
    SCOPED_TRACE(formatter);
    auto printed =
        Run({"--formatter", formatter, "network", "vm", "port", "list", "-w", "1000433"});
    EXPECT_EQ(printed.status, 0) << printed.err;
    EXPECT_NE(printed.out.find("02:1c:7e:00:21:02"), std::string::npos);
  }
  auto missing = Run({"network", "vm", "port", "list", "-w", "7"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("Couldn't find VM with given world ID"), std::string::npos);
}

}  // namespace
