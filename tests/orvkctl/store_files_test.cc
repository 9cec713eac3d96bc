// The state's files as another user, a careless one or an unsafe folder
// would have them: modes and owners, default folders, planted links and
// files, odd paths, read-only places, long names.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <thread>

#include "host_store.h"
#include "hostctl/lib.h"
#include "state_file_test.h"
#include "state_files.h"
#include "support/harness.h"

namespace {

namespace fs = std::filesystem;
using OrvkCtl::Sim::HostModel;
using OrvkCtl::Sim::kAreaHost;

constexpr uid_t kNobody = 65534;

// What a host call says: empty when it works.
std::string Outcome(std::function<void()> const& call) {
  try {
    call();
    return "";
  } catch (HostCtl::Lib::HostCtlException const& error) {
    return error.message;
  }
}
std::string Read() {
  return Outcome([] { OrvkCtl::Sim::ReadHost(kAreaHost); });
}
std::string Change(std::string const& hostname = "changed") {
  return Outcome([&] {
    OrvkCtl::Sim::ChangeHost(kAreaHost, [&](HostModel& host) { host.hostname = hostname; });
  });
}

mode_t Mode(std::string const& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}
uid_t Owner(std::string const& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 ? info.st_uid : 0;
}

std::vector<std::string> Names(std::string const& folder) {
  std::vector<std::string> names;
  for (auto const& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class StoreFilesTest : public TestSupport::StateFileTest {
 protected:
  void Use(std::string const& path) {
    setenv("TOOLBASE_HOST_STATE", path.c_str(), 1);
    Reload();
  }
  std::string Hostname(std::string const& path) {
    std::ifstream file(path);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    return OrvkCtl::Sim::HostFromJson(text).hostname;
  }
  // Runs `body` in a child process with the host forgotten, as user nobody
  // when `as_nobody`; what it returns, or nothing when the child could not
  // become nobody (or `prepare` failed).
  std::optional<std::string> InChild(
      std::function<std::string()> const& body, bool as_nobody,
      std::function<bool()> const& prepare = [] { return true; }) {
    int fds[2];
    if (pipe(fds) != 0) return std::nullopt;
    pid_t pid = fork();
    if (pid == 0) {
      close(fds[0]);
      if (!prepare()) _exit(99);
      if (as_nobody &&
          (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
        _exit(99);
      }
      OrvkCtl::Sim::ResetHostForTest();
      std::string said = body();
      if (write(fds[1], said.data(), said.size()) < 0) _exit(98);
      _exit(0);
    }
    close(fds[1]);
    std::string said;
    char buffer[4096];
    for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;) said.append(buffer, n);
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return said;
  }
};

TEST_F(StoreFilesTest, NewFilesArePrivateAndAChangeKeepsModeAndOwner) {
  mode_t const umask_before = umask(0);
  EXPECT_EQ(Change(), "");
  umask(umask_before);
  EXPECT_EQ(Mode(state_path_), 0600u);
  EXPECT_EQ(Mode(state_path_ + ".lock"), 0600u);

  struct Case {
    mode_t mode;
    uid_t owner;
  };
  for (Case const row : {Case{0640, geteuid()}, Case{0644, geteuid()}, Case{0600, kNobody}}) {
    SCOPED_TRACE(std::to_string(row.mode) + " " + std::to_string(row.owner));
    if (row.owner != geteuid() && geteuid() != 0) continue;
    ASSERT_EQ(chmod(state_path_.c_str(), row.mode), 0);
    ASSERT_EQ(chown(state_path_.c_str(), row.owner, static_cast<gid_t>(-1)), 0);
    Reload();
    EXPECT_EQ(Change("mode-" + std::to_string(row.mode)), "");
    EXPECT_EQ(Hostname(state_path_), "mode-" + std::to_string(row.mode));
    EXPECT_EQ(Mode(state_path_), row.mode);
    EXPECT_EQ(Owner(state_path_), row.owner);
  }
}

TEST_F(StoreFilesTest, DefaultFoldersArePrivateAndNeverShared) {
  std::string const home = dir_ + "/home";
  std::string const saved_home = getenv("HOME") ? getenv("HOME") : "";
  std::string const saved_tmpdir = getenv("TMPDIR") ? getenv("TMPDIR") : "";
  fs::create_directories(dir_ + "/cwd");
  fs::create_directories(dir_ + "/tmp");
  fs::path const cwd = fs::current_path();
  fs::current_path(dir_ + "/cwd");
  setenv("TMPDIR", (dir_ + "/tmp").c_str(), 1);
  struct Case {
    char const* name;
    std::optional<std::string> home, xdg;
    std::vector<std::string> made;  // folders made, the state file's last
    std::string refused;
  };
  std::string const home_state = home + "/.local/state/toolbase";
  std::vector<Case> const cases = {
      {"home", home, {}, {home + "/.local", home + "/.local/state", home_state}, ""},
      {"absolute XDG_STATE_HOME", home, dir_ + "/xdg", {dir_ + "/xdg", dir_ + "/xdg/toolbase"}, ""},
      {"relative XDG_STATE_HOME", home, "relative", {home_state}, ""},
      {"no home", {}, {}, {}, "HOME is not set and XDG_STATE_HOME is not an absolute path"},
      {"no home, relative XDG_STATE_HOME", {}, "relative", {}, "HOME is not set"},
      {"missing home", dir_ + "/gone", {}, {}, "folder " + dir_ + "/gone"},
  };
  setenv("TOOLBASE_HOST_STATE", "", 1);
  for (auto const& row : cases) {
    SCOPED_TRACE(row.name);
    fs::remove_all(home);
    fs::create_directory(home);
    row.home ? setenv("HOME", row.home->c_str(), 1) : unsetenv("HOME");
    row.xdg ? setenv("XDG_STATE_HOME", row.xdg->c_str(), 1) : unsetenv("XDG_STATE_HOME");
    Reload();
    mode_t const umask_before = umask(0);
    std::string said = Read();
    umask(umask_before);
    if (row.refused.empty()) {
      EXPECT_EQ(said, "");
      for (auto const& folder : row.made) EXPECT_EQ(Mode(folder), 0700u) << folder;
      EXPECT_EQ(Mode(row.made.back() + "/host-state.json"), 0600u);
    } else {
      EXPECT_NE(said.find(row.refused), std::string::npos) << said;
    }
    EXPECT_TRUE(fs::is_empty(dir_ + "/tmp"));
    EXPECT_TRUE(fs::is_empty(dir_ + "/cwd"));
    EXPECT_FALSE(fs::exists(dir_ + "/gone"));
  }
  // Only reading (completion, a dry run) makes no folder.
  fs::remove_all(home);
  fs::create_directory(home);
  setenv("HOME", home.c_str(), 1);
  Reload();
  OrvkCtl::Sim::Backend().SetReadOnly();
  EXPECT_EQ(Read(), "");
  EXPECT_TRUE(fs::is_empty(home));

  fs::current_path(cwd);
  saved_home.empty() ? unsetenv("HOME") : setenv("HOME", saved_home.c_str(), 1);
  saved_tmpdir.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", saved_tmpdir.c_str(), 1);
  unsetenv("XDG_STATE_HOME");
}

TEST_F(StoreFilesTest, FoldersOthersMayWriteAreRefusedUnlessStickyAndTheirFilesOwn) {
  if (geteuid() != 0) GTEST_SKIP() << "ownership is tested as root";
  ASSERT_EQ(Read(), "");
  std::string const seeded = StateFileText();
  struct Case {
    char const* name;
    mode_t mode;
    uid_t folder_owner;
    gid_t folder_group;
    std::optional<uid_t> file_owner;  // none: no file yet
    std::string refused;
  };
  Case const cases[] = {
      {"writable by all", 0777, 0, 0, 0,
       "is not safe: every user may write it and it is not sticky"},
      {"writable by another group", 0775, 0, kNobody, 0, "may write it and it is not sticky"},
      {"another user's", 0755, kNobody, 0, 0, "is not safe: it belongs to user nobody (65534)"},
      {"sticky, another user's file", 01777, 0, 0, kNobody,
       "belongs to user nobody (65534), in folder"},
      {"sticky, own file", 01777, 0, 0, 0, ""},
      {"sticky, no file yet", 01777, 0, 0, {}, ""},
  };
  int n = 0;
  for (auto const& row : cases) {
    SCOPED_TRACE(row.name);
    std::string const folder = dir_ + "/shared" + std::to_string(n++);
    std::string const path = folder + "/host.json";
    fs::create_directory(folder);
    if (row.file_owner) {
      std::ofstream(path) << seeded;
      ASSERT_EQ(chown(path.c_str(), *row.file_owner, 0), 0);
    }
    ASSERT_EQ(chown(folder.c_str(), row.folder_owner, row.folder_group), 0);
    ASSERT_EQ(chmod(folder.c_str(), row.mode), 0);
    Use(path);
    std::string said = Change();
    if (row.refused.empty()) {
      EXPECT_EQ(said, "");
      EXPECT_EQ(Hostname(path), "changed");
      continue;
    }
    EXPECT_NE(said.find("Cannot use host state file " + path), std::string::npos) << said;
    EXPECT_NE(said.find(row.refused), std::string::npos) << said;
    EXPECT_EQ(Names(folder), std::vector<std::string>{"host.json"});
    EXPECT_EQ(Hostname(path), "halden-01");
  }
}

TEST_F(StoreFilesTest, PlantedLinksMakeNoFileWhereTheyPoint) {
  ASSERT_EQ(Read(), "");
  std::string const victim = dir_ + "/victim";
  fs::create_symlink(victim, state_path_ + ".lock.planted");
  fs::remove(state_path_ + ".lock");
  fs::rename(state_path_ + ".lock.planted", state_path_ + ".lock");
  Reload();
  std::string said = Change();
  EXPECT_EQ(said, "Cannot lock host state file " + state_path_ + ": cannot open " + state_path_ +
                      ".lock: Too many levels of symbolic links");
  EXPECT_FALSE(fs::exists(victim));

  if (geteuid() != 0) return;
  // Another user's link in a sticky folder that everyone may write.
  std::string const shared = dir_ + "/shared";
  fs::create_directory(shared);
  ASSERT_EQ(chmod(shared.c_str(), 01777), 0);
  std::string const link = shared + "/host.json";
  fs::create_symlink(victim, link);
  ASSERT_EQ(lchown(link.c_str(), kNobody, kNobody), 0);
  Use(link);
  said = Change();
  EXPECT_NE(said.find(link + " belongs to user nobody (65534)"), std::string::npos) << said;
  EXPECT_FALSE(fs::exists(victim));
}

TEST_F(StoreFilesTest, ALinkedStateIsChangedWhereItPointsAndStaysALink) {
  fs::create_directory(dir_ + "/real");
  std::string const link = dir_ + "/link.json";
  fs::create_symlink("real/host.json", link);
  Use(link);
  EXPECT_EQ(Change("first"), "");
  Reload();
  EXPECT_EQ(Change("second"), "");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Hostname(dir_ + "/real/host.json"), "second");
  EXPECT_EQ(Names(dir_ + "/real"), (std::vector<std::string>{"host.json", "host.json.lock"}));
  EXPECT_FALSE(fs::exists(link + ".lock"));
}

TEST_F(StoreFilesTest, WhatIsNotARegularFileIsRefusedWithItsPath) {
  struct Case {
    char const* name;
    std::function<void(std::string const&)> make;
    std::string says;
  };
  std::vector<Case> const cases = {
      {"FIFO", [](auto const& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); },
       ": it is a FIFO, not a regular file"},
      {"link to a device", [](auto const& path) { fs::create_symlink("/dev/zero", path); },
       ": /dev/zero is a character device, not a regular file"},
      {"over 256 MiB",
       [](auto const& path) {
         std::ofstream(path).flush();
         fs::resize_file(path, 300 << 20);
       },
       ": it is larger than a host state may be (256 MiB)"},
  };
  for (auto const& row : cases) {
    SCOPED_TRACE(row.name);
    std::string const path = dir_ + "/" + row.name;
    row.make(path);
    Use(path);
    EXPECT_EQ(Read(), "Cannot read host state file " + path + row.says);
    EXPECT_EQ(Change(), "Cannot read host state file " + path + row.says);
  }
}

TEST_F(StoreFilesTest, OnlyThisLibrarysTemporariesAreRemoved) {
  ASSERT_EQ(Read(), "");
  std::string const ours = OrvkCtl::Sim::StateTemporaryPrefix(state_path_);
  std::vector<std::string> const kept = {
      "host-state.json.tmp.backup",
      "host-state.json.tmp.4242",
      "other.json",
      OrvkCtl::Sim::StateTemporaryPrefix(dir_ + "/other.json") + "0123abcd.tmp",
      ours + "0123abcd.tmp.old",
  };
  for (auto const& name : kept) std::ofstream(dir_ + "/" + name) << "keep";
  std::ofstream(dir_ + "/" + ours + "0123abcd.tmp") << "left by a killed writer";
  Reload();
  EXPECT_EQ(Change(), "");
  std::vector<std::string> expected = kept;
  expected.insert(expected.end(), {"host-state.json", "host-state.json.lock"});
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Names(dir_), expected);
}

TEST_F(StoreFilesTest, ReadersShareTheLock) {
  ASSERT_EQ(Read(), "");
  Reload();  // seeding took the lock alone
  int lock = open((state_path_ + ".lock").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_SH), 0);
  std::atomic<bool> done = false;
  std::thread release([&] {  // so that a reader wanting the lock alone does not wait forever
    for (int i = 0; i < 100 && !done; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    flock(lock, LOCK_UN);
  });
  auto run = TestSupport::RunProcess({"network", "firewall", "get"});
  done = true;
  release.join();
  close(lock);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err.find("Waiting"), std::string::npos) << run.err;
}

// Another command's change lands between this one's read and its first
// change: the change is made on top of it, the areas read are read again, and
// what was taken from the host before stays readable.
TEST_F(StoreFilesTest, AChangeAfterAReadIsMadeOnTopOfAChangeInBetween) {
  ASSERT_EQ(Read(), "");
  Reload();
  HostModel const& host = OrvkCtl::Sim::ReadHost();
  ASSERT_FALSE(host.firewall.rulesets.empty());
  auto const& ruleset = host.firewall.rulesets.front();
  std::string const id = ruleset.id;
  HostModel other = OrvkCtl::Sim::HostFromJson(StateFileText());
  other.firewall.enabled = false;
  std::ofstream(dir_ + "/other") << OrvkCtl::Sim::HostToJson(other);
  fs::rename(dir_ + "/other", state_path_);  // as a writer replaces it

  EXPECT_EQ(Change("mine"), "");
  EXPECT_FALSE(host.firewall.enabled);
  EXPECT_EQ(ruleset.id, id);
  auto written = OrvkCtl::Sim::HostFromJson(StateFileText());
  EXPECT_EQ(written.hostname, "mine");
  EXPECT_FALSE(written.firewall.enabled);
}

TEST_F(StoreFilesTest, ReadingWorksWhereNothingMayBeWritten) {
  if (geteuid() != 0) GTEST_SKIP() << "another user and a read-only mount need root";
  ASSERT_EQ(chmod(dir_.c_str(), 0755), 0);
  std::string const seeded = (Read(), StateFileText());
  auto const read_then_change = [] { return Read() + "|" + Change(); };
  struct Case {
    char const* name;
    bool as_nobody;
    uid_t folder_owner;
    bool lock;  // a lock file is there
    std::string change_says;
    std::function<bool(std::string const&)> prepare;
  };
  auto const nothing = [](std::string const&) { return true; };
  auto const read_only_mount = [](std::string const& folder) {
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
           mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
  };
  Case const cases[] = {
      {"another user's lock, folder not writable", true, 0, true,
       ": cannot open LOCK: Permission denied", nothing},
      {"folder not writable, no lock", true, 0, false, ": cannot open LOCK: Permission denied",
       nothing},
      {"a file that may only be read", true, kNobody, false, ": Permission denied", nothing},
      {"read-only file system", false, 0, true, ": Read-only file system", read_only_mount},
  };
  int n = 0;
  for (auto const& row : cases) {
    SCOPED_TRACE(row.name);
    std::string const folder = dir_ + "/place" + std::to_string(n++);
    std::string const path = folder + "/host.json";
    fs::create_directory(folder);
    std::ofstream(path) << seeded;
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    if (row.lock) {
      std::ofstream(path + ".lock").flush();
      ASSERT_EQ(chmod((path + ".lock").c_str(), 0600), 0);
    }
    ASSERT_EQ(chown(folder.c_str(), row.folder_owner, row.folder_owner), 0);
    setenv("TOOLBASE_HOST_STATE", path.c_str(), 1);
    auto said = InChild(read_then_change, row.as_nobody, [&] { return row.prepare(folder); });
    if (!said) GTEST_SKIP() << "cannot run as nobody or mount read-only here";
    std::string change_says = row.change_says;
    if (size_t at = change_says.find("LOCK"); at != std::string::npos) {
      change_says.replace(at, 4, path + ".lock");
    }
    EXPECT_EQ(said->substr(0, 1), "|") << "the read failed: " << *said;
    EXPECT_NE(said->find(path + change_says), std::string::npos) << *said;
    EXPECT_EQ(Hostname(path), "halden-01");
  }
}

TEST_F(StoreFilesTest, LongNamesWorkAndAFailedFirstWriteLeavesNothing) {
  for (size_t length : {250, 255}) {
    SCOPED_TRACE(length);
    std::string const folder = dir_ + "/long" + std::to_string(length);
    fs::create_directory(folder);
    std::string const name(length, 'n');
    Use(folder + "/" + name);
    EXPECT_EQ(Change(), "");
    EXPECT_EQ(Hostname(folder + "/" + name), "changed");
    // The lock is "<name>.lock" where that fits, else a name of fixed length.
    auto names = Names(folder);
    ASSERT_EQ(names.size(), 2u);
    std::string const lock = names[0] == name ? names[1] : names[0];
    EXPECT_EQ(length == 250 ? lock : lock.substr(0, 10) + lock.substr(lock.size() - 5),
              length == 250 ? name + ".lock" : ".toolbase-.lock");
  }

  std::string const folder = dir_ + "/full";
  fs::create_directory(folder);
  setenv("TOOLBASE_HOST_STATE", (folder + "/host.json").c_str(), 1);
  auto said = InChild(Read, false, [] {
    rlimit limit{64, 64};
    signal(SIGXFSZ, SIG_IGN);
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
  });
  ASSERT_TRUE(said);
  EXPECT_EQ(*said, "Cannot write host state file " + folder + "/host.json: File too large");
  EXPECT_TRUE(fs::is_empty(folder));
}

}  // namespace
