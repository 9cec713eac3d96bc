// The linux host's tests change a real network stack, so they run only in a
// throw-away network and mount namespace: main() re-executes the test program
// through scripts/sandbox.sh, and refuses to run a test anywhere else.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Whether this process runs in the sandbox: a network namespace other than
// the one the sandbox was started from (and than init's, when that can be
// seen).
bool InSandbox() {
  char const* inside = getenv("TOOLBASE_SANDBOX");
  char const* from = getenv("TOOLBASE_SANDBOX_FROM");
  struct stat own {};
  if (!inside || std::strcmp(inside, "inside") != 0 || !from) return false;
  if (stat("/proc/self/ns/net", &own) != 0) return false;
  if (std::to_string(own.st_ino) == from) return false;
  struct stat init {};
  return stat("/proc/1/ns/net", &init) != 0 || init.st_ino != own.st_ino;
}

}  // namespace

int main(int argc, char** argv) {
  bool listing = false;
  for (int i = 1; i < argc; ++i) listing |= std::strcmp(argv[i], "--gtest_list_tests") == 0;
  if (!listing && !InSandbox()) {
    if (getenv("TOOLBASE_SANDBOX")) {
      std::fprintf(stderr, "Not in a network namespace of its own: refusing to run\n");
      return 1;
    }
    if (geteuid() != 0) {
      std::fprintf(stderr, "The linux host's tests need root for their namespace: skipped\n");
      return 77;
    }
    std::vector<char*> args{const_cast<char*>("bash"), const_cast<char*>(SANDBOX_SCRIPT)};
    for (int i = 0; i < argc; ++i) args.push_back(argv[i]);
    args.push_back(nullptr);
    execv("/bin/bash", args.data());
    std::perror("Cannot start the sandbox");
    return 1;
  }
  setenv("TOOLBASE_HOST", "linux", 1);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
