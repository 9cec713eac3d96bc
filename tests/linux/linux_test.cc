#include "linux_test.h"

#include <stdio.h>

#include <array>

namespace LinuxTest {

std::string Shell(std::string const& line) {
  std::string output;
  FILE* pipe = popen(line.c_str(), "r");
  if (!pipe) {
    ADD_FAILURE() << "cannot run " << line;
    return output;
  }
  std::array<char, 4096> buffer;
  size_t n;
  while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) output.append(buffer.data(), n);
  int const status = pclose(pipe);
  EXPECT_EQ(status, 0) << line << "\n" << output;
  return output;
}

nlohmann::json IpJson(std::string const& args) {
  return nlohmann::json::parse(Shell("ip -j " + args), nullptr, false);
}

std::string LinuxHostTest::Ok(TestSupport::Args const& args) {
  auto run = Run(args);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return run.out;
}

void LinuxHostTest::Refused(TestSupport::Args const& args, std::string const& message) {
  auto run = Run(args);
  EXPECT_NE(run.status, 0) << run.out;
  EXPECT_NE((run.out + run.err).find(message), std::string::npos) << run.out << run.err;
}

}  // namespace LinuxTest
