// A fixture for tests that write the host state file by hand.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host_store.h"
#include "hostctl/lib.h"
#include "support/harness.h"

namespace TestSupport {

class StateFileTest : public HostTest {
 protected:
  void WriteState(std::string const& text) { std::ofstream(state_path_) << text; }

  // Writes `text` as the state file and expects reading and changing the host
  // to fail as a corrupt file whose message contains `reason`, the file left
  // byte for byte as written.
  void ExpectCorruptAndUntouched(std::string const& text, std::string const& reason) {
    SCOPED_TRACE(text);
    Reload();
    WriteState(text);
    try {
      OrvkCtl::Sim::ReadHost();
      ADD_FAILURE() << "accepted";
    } catch (HostCtl::Lib::HostCtlException const& error) {
      EXPECT_EQ(error.message.rfind("Host state file " + state_path_ + " is corrupt: ", 0), 0u)
          << error.message;
      EXPECT_NE(error.message.find(reason), std::string::npos) << error.message;
    }
    EXPECT_THROW(
        OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) { host.hostname = "x"; }),
        HostCtl::Lib::HostCtlException);
    EXPECT_EQ(StateFileText(), text);
  }
};

}  // namespace TestSupport
