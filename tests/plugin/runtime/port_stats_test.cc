// The port statistics commands against the simulated host.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "hostctl/port.h"
#include "support/meta_text.h"
// The comparator and the port lookup are free functions of the plug-in, which
// the tests do not link: compiled in here.
#include "runtime/PortFilterStatsGet.cc"
#include "runtime/VmPortWalk.cc"
#include "support/harness.h"
#include "toolbase/call_spec.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

using PortStatsTest = HostTest;

TEST_F(PortStatsTest, PacketStatisticsOfPortsOnBothKindsOfSwitch) {
  EXPECT_EQ(Ok({"network", "port", "stats", "get", "-p", "33554437"}),
            "[{Port ID=33554437,Packets received=3080112,Packets sent=2815004,Bytes "
            "received=3255108842,Bytes sent=2894712330,Broadcast packets received=21914,Broadcast "
            "packets sent=1865,Multicast packets received=68002,Multicast packets sent=9120,"
            "Unicast packets received=2990196,Unicast packets sent=2804019,Receive packets "
            "dropped=14,Transmit packets dropped=0}]");
  std::string dvs = Ok({"network", "port", "stats", "get", "--portid", "67108869"});
  EXPECT_NE(dvs.find("Port ID=67108869,Packets received=1022987"), std::string::npos);
  // No multicast received: unicast is received less broadcast.
  EXPECT_NE(dvs.find("Unicast packets received=1022686"), std::string::npos);
  auto printed = Run({"network", "port", "stats", "get", "-p", "33554437"});
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_NE(printed.out.find("Packet statistics for port 33554437"), std::string::npos);
}

TEST_F(PortStatsTest, FiltersFollowAPacketsWayAndUplinksSeeTheChainsReversed) {
  EXPECT_EQ(Ok({"network", "port", "filter", "stats", "get", "-p", "33554437"}),
            "[{Filter name=fw-mon.0,Filter direction=Receive,Packets in=3080112,Packets "
            "out=3079908,Packets dropped=204,Packets filtered=204,Packets faulted=0,Packets "
            "queued=12,Packets injected=3,Packet errors=0},"
            "{Filter name=rate-guard.1,Filter direction=Receive,Packets in=3079908,Packets "
            "out=3079908,Packets dropped=0,Packets filtered=,Packets faulted=,Packets queued=,"
            "Packets injected=,Packet errors=},"
            "{Filter name=rate-guard.1,Filter direction=Transmit,Packets in=2815015,Packets "
            "out=2815015,Packets dropped=0,Packets filtered=,Packets faulted=,Packets queued=,"
            "Packets injected=,Packet errors=},"
            "{Filter name=fw-mon.0,Filter direction=Transmit,Packets in=2815004,Packets "
            "out=2814993,Packets dropped=11,Packets filtered=11,Packets faulted=0,Packets "
            "queued=12,Packets injected=3,Packet errors=0}]");
  std::string uplink = Ok({"network", "port", "filter", "stats", "get", "-p", "67108866"});
  EXPECT_NE(uplink.find("Filter name=uplink-mirror.0,Filter direction=Receive"), std::string::npos);
  EXPECT_EQ(Ok({"network", "port", "filter", "stats", "get", "-p", "33554438"}), "[]");
}

TEST_F(PortStatsTest, UnknownPortsAndHostFailures) {
  for (char const* id : {"0", "12345", "-33554437"}) {
    SCOPED_TRACE(id);
    Refused({"network", "port", "stats", "get", "-p", id}, {"Couldn't find requested port"});
    Refused({"network", "port", "filter", "stats", "get", "-p", id},
            {"Couldn't find requested port"});
  }
  struct Case {
    Args args;
    char const* operation;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"stats", "get", "-p", "33554437"},
       "PortImpl::GetPacketStats",
       "Unable to get stats for port: boom"},
      {{"stats", "get", "-p", "67108867"},
       "VirtualSwitchInfoImpl::GetAllSwitches",
       "Unable to get stats for port: boom"},
      {{"filter", "stats", "get", "-p", "33554437"},
       "PortImpl::GetFilterStats",
       "Unable to get filter stats for port: boom"},
      {{"filter", "stats", "get", "-p", "67108866"},
       "DVSwitchImpl::GetPorts",
       "Unable to get filter stats for port: boom"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "boom");
    Args args = {"network", "port"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    Refused(args, {c.message});
    ClearFaults();
  }
}

TEST(SortFilterStatsTest, InboundAscendingThenOutboundDescending) {
  using HostCtl::Network::FilterStats;
  std::vector<std::unique_ptr<FilterStats>> filters;
  for (auto [key, outbound] : std::vector<std::pair<char const*, bool>>{
           {"b", true}, {"a", false}, {"ab", false}, {"a", true}, {"b", false}}) {
    auto filter = std::make_unique<FilterStats>();
    filter->chainKey = key;
    filter->isOutbound = outbound;
    filters.push_back(std::move(filter));
  }
  std::sort(filters.begin(), filters.end(), CorvaneCli::NetworkNamespace::sortFilterStats);
  std::string order;
  for (auto const& filter : filters) {
    order += std::string(filter->isOutbound ? "out:" : "in:") + filter->chainKey + " ";
  }
  EXPECT_EQ(order, "in:a in:ab in:b out:b out:a ");
  for (auto const& filter : filters) {
    EXPECT_FALSE(CorvaneCli::NetworkNamespace::sortFilterStats(filter, filter));
  }
}

}  // namespace
