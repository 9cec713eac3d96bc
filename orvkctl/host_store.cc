#include "host_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
namespace {

using HostCtl::Lib::HostCtlException;

struct Store {
  std::string path;
  int lock_fd = -1;
  std::optional<HostModel> host;
  // Changes held in memory: the host at HoldChanges and at the savepoint.
  bool holding = false;
  bool dirty = false;
  std::optional<HostModel> at_begin;
  std::optional<HostModel> savepoint;
};

Store& TheStore() {
  static Store store;
  return store;
}

[[noreturn]] void Fail(std::string const& what, std::string const& path, int error) {
  throw HostCtlException(what + " " + path + ": " + std::strerror(error));
}

void WriteAll(int fd, std::string const& data, std::string const& path) {
  size_t done = 0;
  while (done < data.size()) {
    ssize_t n = write(fd, data.data() + done, data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) Fail("Cannot write host state file", path, errno);
    done += static_cast<size_t>(n);
  }
}

// Writes `text` to `path` atomically: a temporary file beside it, flushed,
// renamed over the old one, and the folder flushed.
void SaveAtomically(std::string const& path, std::string const& text) {
  std::string temp = path + ".tmp." + std::to_string(getpid());
  int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) Fail("Cannot write host state file", temp, errno);
  try {
    WriteAll(fd, text, temp);
    if (fsync(fd) != 0) Fail("Cannot write host state file", temp, errno);
  } catch (...) {
    close(fd);
    unlink(temp.c_str());
    throw;
  }
  close(fd);
  if (rename(temp.c_str(), path.c_str()) != 0) {
    int error = errno;
    unlink(temp.c_str());
    Fail("Cannot replace host state file", path, error);
  }
  std::string dir = std::filesystem::path(path).parent_path().string();
  int dir_fd = open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir_fd >= 0) {
    fsync(dir_fd);
    close(dir_fd);
  }
}

void Lock(Store& store) {
  std::filesystem::path path(store.path);
  std::error_code error;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
  std::string lock_path = store.path + ".lock";
  int fd = open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) Fail("Cannot open host state lock", lock_path, errno);
  while (flock(fd, LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    int lock_error = errno;
    close(fd);
    Fail("Cannot lock host state", lock_path, lock_error);
  }
  store.lock_fd = fd;
}

HostModel Load(std::string const& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error) && !error) {
    HostModel host = DefaultHost();
    SaveAtomically(path, HostToJson(host));
    return host;
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail("Cannot read host state file", path, errno ? errno : EIO);
  std::stringstream text;
  text << file.rdbuf();
  try {
    return HostFromJson(text.str());
  } catch (std::exception const& error) {
    throw HostCtlException("Host state file " + path + " is corrupt: " + error.what());
  }
}

HostModel& Loaded() {
  Store& store = TheStore();
  if (store.host) return *store.host;
  store.path = StatePath();
  if (store.lock_fd < 0) Lock(store);
  store.host = Load(store.path);
  return *store.host;
}

}  // namespace

std::string StatePath() {
  if (char const* path = std::getenv("TOOLBASE_HOST_STATE"); path && *path) return path;
  std::filesystem::path base;
  if (char const* state = std::getenv("XDG_STATE_HOME"); state && *state) {
    base = state;
  } else if (char const* home = std::getenv("HOME"); home && *home) {
    base = std::filesystem::path(home) / ".local" / "state";
  } else {
    base = std::filesystem::temp_directory_path();
  }
  return (base / "toolbase" / "host-state.json").string();
}

HostModel const& ReadHost() { return Loaded(); }

void ChangeHost(std::function<void(HostModel&)> const& change) {
  HostModel& host = Loaded();
  HostModel changed = host;
  change(changed);
  Store& store = TheStore();
  if (store.holding) {
    store.dirty = true;
  } else {
    SaveAtomically(store.path, HostToJson(changed));
  }
  host = std::move(changed);
}

void HoldChanges() {
  Store& store = TheStore();
  store.at_begin = Loaded();
  store.savepoint = store.at_begin;
  store.holding = true;
  store.dirty = false;
}

void MarkSavepoint() {
  Store& store = TheStore();
  if (store.holding) store.savepoint = Loaded();
}

void RollbackToSavepoint() {
  Store& store = TheStore();
  if (store.holding && store.savepoint) store.host = store.savepoint;
}

void CommitHeld() {
  Store& store = TheStore();
  if (!store.holding) return;
  if (store.dirty) {
    try {
      SaveAtomically(store.path, HostToJson(*store.host));
    } catch (...) {
      store.host = store.at_begin;
      store.holding = false;
      throw;
    }
  }
  store.holding = false;
  store.at_begin.reset();
  store.savepoint.reset();
}

void AbortHeld() {
  Store& store = TheStore();
  if (!store.holding) return;
  store.host = store.at_begin;
  store.holding = false;
  store.at_begin.reset();
  store.savepoint.reset();
}

void ResetHostForTest() {
  Store& store = TheStore();
  store.host.reset();
  store.holding = false;
  store.at_begin.reset();
  store.savepoint.reset();
  if (store.lock_fd >= 0) {
    close(store.lock_fd);
    store.lock_fd = -1;
  }
}

}  // namespace OrvkCtl::Sim
