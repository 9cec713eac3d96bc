// The host object hands out working views of the same host.
#include "hostctl/host.h"

#include <gtest/gtest.h>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/system.h"
#include "support/harness.h"

namespace {

class HostFactoryTest : public TestSupport::HostTest {};

TEST_F(HostFactoryTest, ViewsSeeTheSameHostAsTheImplementations) {
  auto host = HostCtl::HostFactory::GetHost();
  ASSERT_NE(host, nullptr);
  auto system = host->GetSystemInfo();
  system->SetFirewallEnabled(false);
  OrvkCtl::System::SystemInfoImpl direct;
  EXPECT_FALSE(direct.IsFirewallEnabled());
  auto network = HostCtl::Host::GetNetworkInfo();
  EXPECT_EQ(network->GetPnics().size(), OrvkCtl::Network::NetworkInfoImpl().GetPnics().size());
}

TEST_F(HostFactoryTest, FailsWithTheInjectedText) {
  InjectFault("HostFactory::GetHost", "host unreachable");
  try {
    HostCtl::HostFactory::GetHost();
    ADD_FAILURE() << "no failure";
  } catch (HostCtl::Lib::HostCtlException const& error) {
    EXPECT_EQ(error.message, "host unreachable");
  }
}

}  // namespace
