// What a local user or a careless one could do to a root user's command:
// plant a plug-in, make one fail while it loads, leave a batch's standard
// input idle, read a secret back from a message or a core file.
#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "support/harness.h"
#include "support/process.h"
#include "workflow/temp_dir_test.h"

namespace {

namespace fs = std::filesystem;
using TestSupport::RunProcess;
using TestSupport::RunResult;

std::string const kHello = std::string(TEST_PLUGIN_DIR) + "/libhello.so";

class SecurityTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    plugins_ = dir_ + "/plugins";
    fs::create_directory(plugins_);
  }

  RunResult Run(std::vector<std::string> const& args) {
    return RunProcess(args, {{"TOOLBASE_PLUGIN_PATH", plugins_},
                             {"TOOLBASE_HOST_STATE", dir_ + "/host.json"}});
  }

  // Copies a plug-in into the test's plug-in folder under `name`.
  std::string Plant(std::string const& from, std::string const& name) {
    std::string to = plugins_ + "/" + name;
    fs::copy_file(from, to);
    return to;
  }

  // The hello plug-in answers, and so does the network one beside it.
  void ExpectOthersWork() {
    auto hello = Run({"hello", "greet", "--name", "x"});
    EXPECT_EQ(hello.status, 0) << hello.err;
    EXPECT_EQ(hello.out, "Hello, x!\n");
    auto network = Run({"network", "firewall", "get"});
    EXPECT_EQ(network.status, 0) << network.err;
  }

  std::string plugins_;
};

uid_t Nobody() {
  passwd const* nobody = getpwnam("nobody");
  return nobody ? nobody->pw_uid : 65534;
}

TEST_F(SecurityTest, PluginsThatOthersCouldHaveWrittenAreRefused) {
  ASSERT_EQ(geteuid(), 0u) << "ownership is tested as root";
  struct Case {
    char const* what;
    bool on_folder;
    uid_t owner;
    mode_t mode;
    char const* reason;
  };
  Case const cases[] = {
      {"world-writable folder", true, 0, 0777, "every user may write it"},
      {"folder of another user", true, Nobody(), 0755, "belongs to user nobody"},
      {"file of another user", false, Nobody(), 0755, "belongs to user nobody"},
      {"world-writable file", false, 0, 0757, "every user may write it"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.what);
    fs::remove_all(plugins_);
    fs::create_directory(plugins_);
    std::string const file = Plant(kHello, "libhello.so");
    std::string const& target = row.on_folder ? plugins_ : file;
    ASSERT_EQ(chown(target.c_str(), row.owner, 0), 0);
    ASSERT_EQ(chmod(target.c_str(), row.mode), 0);

    auto run = Run({"hello", "greet"});
    EXPECT_EQ(run.status, 2) << "the planted plug-in must not run";
    std::string const named = row.on_folder ? "plug-in folder " + plugins_ + " is not trusted"
                                            : "plug-in " + file + " is not trusted";
    EXPECT_NE(run.err.find(named), std::string::npos) << run.err;
    EXPECT_NE(run.err.find(row.reason), std::string::npos) << run.err;
    auto network = Run({"network", "firewall", "get"});
    EXPECT_EQ(network.status, 0) << network.err;
  }
}

TEST_F(SecurityTest, APluginThatFailsToRegisterIsNamedAndTheOthersWork) {
  Plant(kHello, "libhello.so");
  struct Case {
    char const* plugin;
    char const* says;
  };
  Case const cases[] = {
      {"libthrow_error.so", "failed to register: the configuration is missing"},
      {"libthrow_other.so", "failed to register: it threw something that is not a std::exception"},
      {"libcrash.so", "crashed while loading (segmentation fault); skipped"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.plugin);
    std::string const file = Plant(std::string(FAULTY_PLUGIN_DIR) + "/" + row.plugin, row.plugin);
    auto run = Run({"hello", "greet", "--name", "x"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Hello, x!\n");
    EXPECT_NE(run.err.find("plug-in " + file + " " + row.says), std::string::npos) << run.err;
    // What it registered before it failed is not in the tree.
    auto help = Run({"--help"});
    EXPECT_EQ(help.out.find("half-registered"), std::string::npos) << help.out;
    fs::remove(file);
  }
}

TEST_F(SecurityTest, APluginForAnotherMachineOrUnderTwoNamesIsNamed) {
  std::string const foreign = Plant(kHello, "libforeign.so");
  {
    // The ELF header's machine field, made AArch64's (or x86-64's there).
    std::fstream file(foreign, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(18);
#if defined(__aarch64__)
    char const machine[2] = {62, 0};
#else
    char const machine[2] = {static_cast<char>(183), 0};
#endif
    file.write(machine, 2);
  }
  auto run = Run({"network", "firewall", "get"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.err.find("cannot load plug-in " + foreign + ": it is built for"),
            std::string::npos)
      << run.err;
  EXPECT_EQ(run.err.find("No such file"), std::string::npos) << run.err;
  fs::remove(foreign);

  std::string const first = Plant(kHello, "libhello.so");
  std::string const copy = Plant(kHello, "libhello2.so");
  std::string const link = plugins_ + "/libhello3.so";
  fs::create_hard_link(first, link);
  auto twice = Run({"hello", "greet"});
  EXPECT_EQ(twice.status, 0) << twice.err;
  EXPECT_NE(twice.err.find("plug-in " + copy + " failed to register: 'hello' is already "
                           "registered by plug-in " + first),
            std::string::npos)
      << twice.err;
  EXPECT_NE(twice.err.find("plug-in " + link + " is the same file as " + first),
            std::string::npos)
      << twice.err;
}

TEST_F(SecurityTest, UsageErrorsNeverShowASecretKey) {
  std::string const key = "0123456789abcdef0123456789abcdefSECRET";
  // The encryption key without its -k: a stray word, which may be the key.
  auto run = Run({"network", "ip", "ipsec", "sa", "add", "-n", "sa1", "-s", "any", "-d", "any",
                  "-p", "100", "-e", "aes128-cbc", key, "-i", "hmac-sha1", "-K", key});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Unexpected argument number 11"), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find("SECRET"), std::string::npos) << run.err;

  // Nor does a batch document, which repeats each line.
  std::string const batch = dir_ + "/keys.txt";
  std::ofstream(batch) << "network ip ipsec sa add -n sa1 -s any -d any -p 100 -e aes128-cbc -k "
                       << key << " -i hmac-sha1 -K " << key << "\n";
  auto document = Run({"--formatter", "json", "--batch", batch});
  EXPECT_NE(document.out.find("\"network ip ipsec sa add (parameters not shown"),
            std::string::npos)
      << document.out;
  EXPECT_EQ(document.out.find("SECRET"), std::string::npos) << document.out;
  EXPECT_EQ(document.err.find("SECRET"), std::string::npos) << document.err;

  // Other values are shown escaped and cut.
  auto odd = Run({"network", "nic", std::string("li\nst\x01") + std::string(200, 'x')});
  EXPECT_EQ(odd.status, 2);
  EXPECT_NE(odd.err.find("Unknown word 'li\\nst\\x01xxx"), std::string::npos) << odd.err;
  EXPECT_NE(odd.err.find("\u2026' (206 bytes)"), std::string::npos) << odd.err;
}

// A child toolbase process with a pipe on its standard input.
struct Child {
  pid_t pid = -1;
  int input = -1;
};

Child Start(std::vector<std::string> args, std::map<std::string, std::string> const& env) {
  int fds[2];
  if (pipe(fds) != 0) return {};
  pid_t pid = fork();
  if (pid == 0) {
    dup2(fds[0], 0);
    close(fds[1]);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    dup2(null, 2);
    TestSupport::ExecToolbase(std::move(args), env);
  }
  close(fds[0]);
  return {pid, fds[1]};
}

// Whether /proc/locks shows a process blocked on the file with inode `inode`.
bool AWaiterBlocksOn(std::string const& inode) {
  std::ifstream locks("/proc/locks");
  std::string line;
  while (std::getline(locks, line)) {
    if (line.find("->") != std::string::npos && line.find(":" + inode + " ") != std::string::npos) {
      return true;
    }
  }
  return false;
}

// Waits up to `seconds` for `pid`; its exit status, or -1 when it still runs.
int WaitFor(pid_t pid, int seconds) {
  for (int i = 0; i < seconds * 20; ++i) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : -2;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return -1;
}

TEST_F(SecurityTest, AnIdleBatchOnStandardInputHoldsNoLockAndNoCoreFile) {
  std::map<std::string, std::string> env{{"TOOLBASE_HOST_STATE", dir_ + "/host.json"}};
  ASSERT_EQ(Run({"network", "firewall", "get"}).status, 0);
  Child batch = Start({"--batch", "-"}, env);
  ASSERT_GT(batch.pid, 0);
  std::string const line = "network firewall set --enabled false\n";
  ASSERT_EQ(write(batch.input, line.data(), line.size()), static_cast<ssize_t>(line.size()));

  // A crash while it holds keys leaves no core file. The limit is set as the
  // batch starts, which may take a while on a loaded machine.
  std::string const no_core = "Max core file size        0                    0";
  std::string text;
  for (int i = 0; i < 200 && text.find(no_core) == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::ifstream limits("/proc/" + std::to_string(batch.pid) + "/limits");
    text.assign(std::istreambuf_iterator<char>(limits), std::istreambuf_iterator<char>());
  }
  EXPECT_NE(text.find(no_core), std::string::npos) << text;

  Child other = Start({"network", "firewall", "set", "--enabled", "true"}, env);
  close(other.input);
  int const other_status = WaitFor(other.pid, 10);
  if (other_status == -1) kill(other.pid, SIGKILL), waitpid(other.pid, nullptr, 0);
  EXPECT_EQ(other_status, 0) << "a change waited for the idle batch";

  close(batch.input);
  EXPECT_EQ(WaitFor(batch.pid, 10), 0);
  auto state = Run({"network", "firewall", "get"});
  EXPECT_NE(state.out.find("Enabled: false"), std::string::npos) << state.out;
}

TEST_F(SecurityTest, ACommandWaitingForTheLockSaysSoAfterASecond) {
  std::string const state = dir_ + "/host.json";
  ASSERT_EQ(Run({"network", "firewall", "get"}).status, 0);
  int lock = open((state + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  struct stat held {};
  ASSERT_EQ(fstat(lock, &held), 0);
  // Release once the command blocks on the lock, which it does only after
  // saying so: a slow start on a loaded machine must not shorten the wait.
  std::thread release([lock, inode = std::to_string(held.st_ino)] {
    for (int i = 0; i < 600 && !AWaiterBlocksOn(inode); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    close(lock);
  });
  auto run = Run({"network", "firewall", "set", "--enabled", "false"});
  release.join();
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.err.find("Waiting for another command to release the lock on " + state),
            std::string::npos)
      << run.err;
}

TEST_F(SecurityTest, AnUnclosedQuoteInABatchIsReadOnceAndNamesItsLine) {
  std::string const path = dir_ + "/batch.txt";
  {
    std::ofstream batch(path);
    batch << "network firewall get\n\n# it's a comment\nnetwork nic list --formatter 'json\n";
    for (int i = 0; i < 2000; ++i) batch << "network nic list\n";
  }
  // How the cost grows with the batch is measured by BM_BatchWithAnUnclosedQuote.
  auto run = Run({"--batch", path});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Error: the quote (') opened on line 4 is never closed"),
            std::string::npos)
      << run.err;
}

}  // namespace
