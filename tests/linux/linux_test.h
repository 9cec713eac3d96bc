// What the linux host's tests share: commands run in process against the
// sandbox's network stack, and the kernel's own view through `ip -j`.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

#include "support/harness.h"

namespace LinuxTest {

// The output of a shell command line; fails the test when it exits non-zero.
std::string Shell(std::string const& line);

// `ip -j ARGS` parsed.
nlohmann::json IpJson(std::string const& args);

// A command that must be refused, and what its message says.
struct Refusal {
  TestSupport::Args args;
  std::string message;
};

class LinuxHostTest : public TestSupport::HostTest {
 protected:
  // Runs `args`, expects it to succeed, and gives its output.
  std::string Ok(TestSupport::Args const& args);
  // Runs `args` and expects it to fail with `message` in its output.
  void Refused(TestSupport::Args const& args, std::string const& message);
};

}  // namespace LinuxTest
