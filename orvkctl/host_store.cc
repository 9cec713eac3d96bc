#include "host_store.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
namespace {

using HostCtl::Lib::HostCtlException;

// The host as loaded: the value text of every field as the file has it, and
// the fields of the areas in `loaded` parsed into `host`. Fields of loaded
// areas are written from `host`, the others from their text.
struct Snapshot {
  HostModel host;
  AreaSet loaded = 0;
};

// Copies (or moves) the members of `areas` from `from` into `to`; members of
// other areas are left as they are. Lists a host may have thousands of
// records in (LazyList) share their records with the copy until changed.
template <class From>
void TakeAreas(From&& from, HostModel& to, AreaSet areas) {
  if (areas & kAreaHost) {
    to.hostname = std::forward<From>(from).hostname;
    to.modules = std::forward<From>(from).modules;
  }
  if (areas & kAreaFirewall) to.firewall = std::forward<From>(from).firewall;
  if (areas & kAreaNic) to.nic = std::forward<From>(from).nic;
  if (areas & kAreaIp) to.ip = std::forward<From>(from).ip;
  if (areas & kAreaVswitch) to.vswitch = std::forward<From>(from).vswitch;
  if (areas & kAreaRuntime) to.runtime = std::forward<From>(from).runtime;
}

// Areas of the host as they were at a point of a transaction: those of
// `kept`, in `host`.
struct KeptAreas {
  HostModel host;
  AreaSet kept = 0;

  // Keeps the areas of `areas` not kept yet, as `before` has them.
  void Keep(HostModel const& before, AreaSet areas) {
    TakeAreas(before, host, areas & ~kept);
    kept |= areas;
  }
  void Clear() {
    host = {};
    kept = 0;
  }
};

struct Store {
  std::string path;
  int lock_fd = -1;
  bool open = false;
  // Each field's value text as the file has it (`texts`), once fetched: views
  // into the whole file as last written or read (`file_text`), or into the
  // field's own text (`field_texts`) when only some fields were read. Shared
  // with the lists of records (LazyList) still to be read from them.
  std::shared_ptr<std::string> file_text;
  std::vector<std::string_view> texts;
  std::vector<bool> fetched;
  // While some are not fetched: the file, still open, and where they are in it.
  int file_fd = -1;
  std::vector<FieldSpan> spans;
  std::vector<std::shared_ptr<std::string>> field_texts;
  Snapshot current;
  // Whether file_text says its records are all as this library writes them;
  // if so, the texts of the elements of current.host's arrays in it, while
  // both stay as they were read.
  bool compact = false;
  ElementTexts element_texts;
  // A transaction: changes stay in `current` until committed. What the
  // areas were at its beginning and at the last savepoint, each kept when a
  // change first touches it after them.
  bool in_transaction = false;
  bool changed_in_transaction = false;
  bool savepoint_set = false;
  KeptAreas begin;
  KeptAreas savepoint;
  // Only read: no lock, no seeded file, no change (SetReadOnly).
  bool read_only = false;
};

Store& TheStore() {
  static Store store;
  return store;
}

[[noreturn]] void Fail(std::string const& what, std::string const& path, int error) {
  throw HostCtlException(what + " " + path + ": " + std::strerror(error));
}

// Writes `document` whole, its pieces from where they are.
void WriteAll(int fd, HostDocument const& document, std::string const& path) {
  std::vector<iovec> parts;
  parts.reserve(2 * document.pieces.size() + 1);
  auto add = [&](char const* data, size_t size) {
    if (size > 0) parts.push_back({const_cast<char*>(data), size});
  };
  size_t at = 0;
  for (auto const& piece : document.pieces) {
    add(document.text.data() + at, piece.at - at);
    add(piece.text.data(), piece.text.size());
    at = piece.at;
  }
  add(document.text.data() + at, document.text.size() - at);
  size_t next = 0;
  while (next < parts.size()) {
    int count = static_cast<int>(std::min<size_t>(parts.size() - next, IOV_MAX));
    ssize_t n = writev(fd, parts.data() + next, count);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) Fail("Cannot write host state file", path, errno);
    // Past what was written; into the part written in part.
    auto done = static_cast<size_t>(n);
    while (next < parts.size() && done >= parts[next].iov_len) done -= parts[next++].iov_len;
    if (done > 0) {
      parts[next].iov_base = static_cast<char*>(parts[next].iov_base) + done;
      parts[next].iov_len -= done;
    }
  }
}

std::string FolderOf(std::string const& path) {
  std::string dir = std::filesystem::path(path).parent_path().string();
  return dir.empty() ? "." : dir;
}

std::string TempPrefix(std::string const& path) {
  return std::filesystem::path(path).filename().string() + ".tmp.";
}

// Removes temporary files a writer killed mid-write left beside `path`. Only
// called under the lock, when no other writer can be using one.
void RemoveStaleTemporaries(std::string const& path) {
  std::string dir = FolderOf(path);
  std::string prefix = TempPrefix(path);
  DIR* folder = opendir(dir.c_str());
  if (!folder) return;
  while (dirent* entry = readdir(folder)) {
    if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) == 0) {
      unlinkat(dirfd(folder), entry->d_name, 0);
    }
  }
  closedir(folder);
}

// Writes `document` to `path` atomically: an unnamed temporary file in the
// same folder, filled and flushed, then named and renamed over the old one,
// and the folder flushed. A writer killed before the rename leaves nothing;
// one killed between naming and renaming leaves a temporary that the next
// command removes under the lock. Returns the file written, open for reading.
int SaveAtomically(std::string const& path, HostDocument const& document) {
  std::string dir = FolderOf(path);
  std::string temp = dir + "/" + TempPrefix(path) + std::to_string(getpid());
  int fd = open(dir.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0644);
  bool unnamed = fd >= 0;
  if (!unnamed) fd = open(temp.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) Fail("Cannot write host state file", path, errno);
  try {
    WriteAll(fd, document, path);
    if (fsync(fd) != 0) Fail("Cannot write host state file", path, errno);
    if (unnamed) {
      std::string self = "/proc/self/fd/" + std::to_string(fd);
      unlink(temp.c_str());
      if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, temp.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        Fail("Cannot write host state file", path, errno);
      }
    }
  } catch (...) {
    close(fd);
    if (!unnamed) unlink(temp.c_str());
    throw;
  }
  if (rename(temp.c_str(), path.c_str()) != 0) {
    int error = errno;
    close(fd);
    unlink(temp.c_str());
    Fail("Cannot replace host state file", path, error);
  }
  int dir_fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir_fd >= 0) {
    fsync(dir_fd);
    close(dir_fd);
  }
  return fd;
}

bool IsDefaultPath() {
  char const* path = std::getenv("TOOLBASE_HOST_STATE");
  return !path || !*path;
}

void Lock(Store& store) {
  std::string dir = FolderOf(store.path);
  if (IsDefaultPath()) {
    std::error_code ignored;
    std::filesystem::create_directories(dir, ignored);
  }
  struct stat info {};
  if (stat(dir.c_str(), &info) != 0) {
    Fail("Cannot use host state file " + store.path + ": folder", dir, errno);
  }
  if (stat(store.path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    Fail("Cannot read host state file", store.path, EISDIR);
  }
  std::string lock_path = store.path + ".lock";
  int fd = open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) Fail("Cannot lock host state file " + store.path + ": cannot open", lock_path, errno);
  // Another command may hold the lock: wait for it, and after a second say
  // what is waited for, so that the wait is not taken for a hang.
  int locked = flock(fd, LOCK_EX | LOCK_NB);
  for (int tries = 0; locked != 0 && (errno == EWOULDBLOCK || errno == EINTR) && tries < 20;
       ++tries) {
    usleep(50 * 1000);
    locked = flock(fd, LOCK_EX | LOCK_NB);
  }
  if (locked != 0 && errno == EWOULDBLOCK) {
    std::fprintf(stderr, "Waiting for another command to release the lock on %s ...\n",
                 store.path.c_str());
    while ((locked = flock(fd, LOCK_EX)) != 0 && errno == EINTR) {
    }
  }
  if (locked != 0) {
    int lock_error = errno;
    close(fd);
    Fail("Cannot lock host state file " + store.path + ": cannot lock", lock_path, lock_error);
  }
  store.lock_fd = fd;
}

[[noreturn]] void Corrupt(std::string const& path, std::string const& why) {
  throw HostCtlException("Host state file " + path + " is corrupt: " + why);
}

// Up to `size` bytes at `offset`, fewer only at the file's end.
size_t ReadAt(int fd, char* data, size_t size, off_t offset, std::string const& path) {
  size_t done = 0;
  while (done < size) {
    ssize_t n = offset < 0 ? read(fd, data + done, size - done)
                           : pread(fd, data + done, size - done, offset + static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) Fail("Cannot read host state file", path, errno);
    if (n == 0) break;
    done += static_cast<size_t>(n);
  }
  return done;
}

// The whole file `fd`, from its start.
std::string ReadFile(int fd, std::string const& path) {
  std::string text;
  struct stat info {};
  size_t size = fstat(fd, &info) == 0 && info.st_size > 0 ? static_cast<size_t>(info.st_size) : 0;
  // Read straight into the string; grow only if the file grew meanwhile.
  text.resize(size + 1);
  size_t done = 0;
  for (;;) {
    if (done == text.size()) text.resize(text.size() * 2);
    size_t n = ReadAt(fd, text.data() + done, text.size() - done, static_cast<off_t>(done), path);
    done += n;
    if (n == 0 || done < text.size()) break;
  }
  text.resize(done);
  return text;
}

void CloseFile(Store& store) {
  if (store.file_fd >= 0) close(store.file_fd);
  store.file_fd = -1;
  store.spans.clear();
  store.field_texts.clear();
}

// Makes the value texts of the fields of `areas` known, reading them from the
// file where they are not yet.
void Fetch(Store& store, AreaSet areas) {
  auto const& fields = HostFields();
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!(fields[i].area & areas) || store.fetched[i]) continue;
    auto owned = std::make_shared<std::string>();
    std::string& text = *owned;
    FieldSpan span = store.spans[i];
    text.resize(span.size);
    if (ReadAt(store.file_fd, text.data(), text.size(), static_cast<off_t>(span.offset),
               store.path) != span.size) {
      Corrupt(store.path, "it was cut short while in use");
    }
    store.texts[i] = text;
    store.field_texts[i] = std::move(owned);
    store.fetched[i] = true;
  }
}

// The document to write: the fields of `loaded` areas from `host`, the
// others as the file has them. What the file says of `host`'s arrays that
// still holds is copied (store.element_texts).
HostDocument Compose(Store& store, HostModel const& host, AreaSet loaded) {
  Fetch(store, kAreaAll);
  return ComposeHostDocument(store.texts, store.compact || (loaded & kAreaAll) == kAreaAll, host,
                             loaded, &store.element_texts);
}

void ForgetTexts(Store& store) {
  store.element_texts.arrays.clear();
  store.element_texts.parses.clear();
}

// Makes `snapshot` the host; what was known of the old one's texts goes.
void Replace(Store& store, Snapshot snapshot) {
  ForgetTexts(store);
  store.current = std::move(snapshot);
}

// Writes `document` and makes it the file's known text: the document when
// it is whole; else the file written, read again only where it is used.
void Save(Store& store, HostDocument document) {
  int fd = SaveAtomically(store.path, document);
  ForgetTexts(store);
  CloseFile(store);
  if (document.pieces.empty()) {
    close(fd);
    store.file_text = std::make_shared<std::string>(std::move(document.text));
    store.texts = SplitHostDocument(*store.file_text, &store.compact);
    store.fetched.assign(store.texts.size(), true);
    return;
  }
  size_t count = HostFields().size();
  store.file_fd = fd;
  store.spans = std::move(document.spans);
  store.compact = document.compact;
  store.file_text.reset();
  store.texts.assign(count, {});
  store.fetched.assign(count, false);
  store.field_texts.assign(count, {});
}

// Reads the file: in the line layout, where each field is, and the texts of
// the fields of `areas`; a file laid out otherwise, whole.
void Read(Store& store, AreaSet areas) {
  int fd = open(store.path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) Fail("Cannot read host state file", store.path, errno);
  store.file_fd = fd;
  auto read_next = [&](char* data, size_t size) { return ReadAt(fd, data, size, -1, store.path); };
  if (ScanHostDocument(read_next, store.spans, &store.compact)) {
    size_t count = HostFields().size();
    store.texts.assign(count, {});
    store.fetched.assign(count, false);
    store.field_texts.assign(count, {});
    Fetch(store, areas);
    return;
  }
  store.file_text = std::make_shared<std::string>(ReadFile(fd, store.path));
  CloseFile(store);
  try {
    store.texts = SplitHostDocument(*store.file_text, &store.compact);
  } catch (std::exception const& error) {
    store.file_text.reset();
    Corrupt(store.path, error.what());
  }
  store.fetched.assign(store.texts.size(), true);
}

void Open(Store& store, AreaSet areas = 0) {
  if (store.open) return;
  store.path = StatePath();
  if (store.lock_fd < 0 && !store.read_only) Lock(store);
  if (!store.read_only) RemoveStaleTemporaries(store.path);
  struct stat info {};
  if (stat(store.path.c_str(), &info) != 0 && errno == ENOENT) {
    HostModel host = DefaultHost();
    if (!store.read_only) {
      HostDocument document;
      document.text = HostToJson(host);
      Save(store, std::move(document));
    }
    Replace(store, {std::move(host), kAreaAll});
  } else {
    try {
      Read(store, areas);
    } catch (...) {
      CloseFile(store);
      throw;
    }
    Replace(store, {});
  }
  store.open = true;
}

HostModel& Loaded(AreaSet areas) {
  Store& store = TheStore();
  Open(store, areas);
  AreaSet missing = areas & ~store.current.loaded;
  if (missing) {
    Fetch(store, missing);
    auto const& fields = HostFields();
    for (size_t i = 0; i < fields.size(); ++i) {
      if (!(fields[i].area & missing) || store.texts[i].empty()) continue;
      try {
        // A field read on its own is a string of the store's: parsed where
        // it is, not copied.
        bool const own = !store.field_texts.empty();
        std::shared_ptr<void const> owner = own ? store.field_texts[i] : store.file_text;
        fields[i].load(store.texts[i], store.current.host,
                       store.compact ? &store.element_texts : nullptr, own, owner);
      } catch (std::exception const& error) {
        ForgetTexts(store);
        Corrupt(store.path, "in \"" + std::string(fields[i].key) + "\": " + error.what());
      }
    }
    store.current.loaded |= missing;
  }
  return store.current.host;
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

namespace {

// Returns the host to `point`: the areas it kept, as they were there (the
// other areas are as they were there already).
void RollBack(Store& store, KeptAreas const& point) {
  TakeAreas(point.host, store.current.host, point.kept);
  ForgetTexts(store);
}

void EndTransaction(Store& store) {
  store.in_transaction = false;
  store.savepoint_set = false;
  store.begin.Clear();
  store.savepoint.Clear();
}

// The state file as the host's backend.
class StateFileBackend final : public HostBackend {
 public:
  HostModel const& Load(AreaSet areas) override { return Loaded(areas); }
  void Commit(AreaSet areas, std::function<void(HostModel&)> const& change) override;
  std::string BeginTransaction() override;
  void Savepoint() override;
  void RollbackToSavepoint() override;
  std::string CommitTransaction() override;
  void AbortTransaction() override;
  void SetReadOnly() override;
  void Reset() override;
};

void StateFileBackend::Commit(AreaSet areas, std::function<void(HostModel&)> const& change) {
  Store& store = TheStore();
  if (store.read_only && !store.in_transaction) {
    throw HostCtlException("The host is only read here; nothing was changed");
  }
  HostModel& host = Loaded(areas);
  if (store.in_transaction) {
    // The host holds the transaction's changes, which the file does not: the
    // change works on the host itself, and a copy of the areas it names
    // (which shares the records of long lists) takes them back should it
    // fail. The first change of an area since the beginning or the savepoint
    // keeps what it was there.
    AreaSet const loaded = store.current.loaded;
    HostModel before;
    TakeAreas(host, before, areas);
    try {
      change(host);
    } catch (...) {
      TakeAreas(std::move(before), host, areas);
      // Areas the change read through ReadHost() are read again when used.
      store.current.loaded = loaded;
      ForgetTexts(store);
      throw;
    }
    store.begin.Keep(before, areas);
    if (store.savepoint_set) store.savepoint.Keep(before, areas);
    store.changed_in_transaction = true;
    return;
  }
  if (!store.compact) {
    // Written otherwise: this change writes every area anew, as far as they
    // load (a corrupt one stays as it is, and the file without the mark).
    try {
      Loaded(kAreaAll);
    } catch (HostCtl::Lib::HostCtlException const&) {
    }
  }
  // Outside a transaction the host is what the file says: change it in place
  // (copying a large area costs more than the change) and, should the change
  // or the write fail, read the loaded areas back from the file's text.
  try {
    change(host);
    Save(store, Compose(store, host, store.current.loaded));
  } catch (...) {
    Snapshot restored{{}, store.current.loaded};
    Fetch(store, restored.loaded);
    auto const& fields = HostFields();
    for (size_t i = 0; i < fields.size(); ++i) {
      if ((fields[i].area & restored.loaded) && !store.texts[i].empty()) {
        fields[i].load(store.texts[i], restored.host, nullptr, false, nullptr);
      }
    }
    Replace(store, std::move(restored));
    throw;
  }
}

void StateFileBackend::Reset() {
  Store& store = TheStore();
  store.open = false;
  store.read_only = false;
  Replace(store, {});  // the parses point into the texts
  CloseFile(store);
  store.texts.clear();
  store.fetched.clear();
  store.file_text.reset();
  EndTransaction(store);
  if (store.lock_fd >= 0) {
    close(store.lock_fd);
    store.lock_fd = -1;
  }
}

std::string StateFileBackend::BeginTransaction() {
  Store& store = TheStore();
  if (store.in_transaction) return "A host transaction is already in progress";
  try {
    Open(store);
  } catch (std::exception const& error) {
    return error.what();
  }
  store.in_transaction = true;
  store.changed_in_transaction = false;
  return {};
}

void StateFileBackend::Savepoint() {
  Store& store = TheStore();
  if (!store.in_transaction) return;
  store.savepoint.Clear();
  store.savepoint_set = true;
}

void StateFileBackend::RollbackToSavepoint() {
  Store& store = TheStore();
  if (!store.in_transaction) return;
  RollBack(store, store.savepoint_set ? store.savepoint : store.begin);
}

std::string StateFileBackend::CommitTransaction() {
  Store& store = TheStore();
  if (!store.in_transaction) return {};
  if (!store.changed_in_transaction) {
    EndTransaction(store);
    return {};
  }
  if (store.read_only) {
    RollBack(store, store.begin);
    EndTransaction(store);
    return "The host is only read here; no change was written";
  }
  try {
    Save(store, Compose(store, store.current.host, store.current.loaded));
  } catch (std::exception const& error) {
    RollBack(store, store.begin);
    EndTransaction(store);
    return error.what();
  }
  EndTransaction(store);
  return {};
}

void StateFileBackend::SetReadOnly() { TheStore().read_only = true; }

void StateFileBackend::AbortTransaction() {
  Store& store = TheStore();
  if (!store.in_transaction) return;
  RollBack(store, store.begin);
  EndTransaction(store);
}

}  // namespace

std::unique_ptr<HostBackend> NewStateFileBackend() { return std::make_unique<StateFileBackend>(); }

}  // namespace OrvkCtl::Sim
