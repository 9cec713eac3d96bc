#include "host_store.h"

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
#include <list>

#include "hostctl/lib.h"
#include "state_files.h"

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
  std::string path;  // as named, for messages
  StateLocation at;
  // The lock on the state, held until the process ends: shared to read,
  // exclusive from the first change on. -1 where none can be made (a
  // read-only folder), which leaves reading (`lock_error` says why).
  int lock_fd = -1;
  int lock_error = 0;
  bool exclusive = false;
  // The version of the file last read or written.
  StateFileId read_id;
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
  std::list<Snapshot> superseded;  // hosts read before another command's change
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

bool IsDefaultPath() {
  char const* path = std::getenv("TOOLBASE_HOST_STATE");
  return !path || !*path;
}

// Takes the lock for reading (LOCK_SH) or for changing (LOCK_EX). Stale
// temporary files go once it is exclusive. Reading goes on without a lock
// where none can be made; a change cannot.
void TakeLock(Store& store, int operation) {
  if (store.lock_fd < 0 && operation == LOCK_EX) {
    Fail("Cannot lock host state file " + store.path + ": cannot open", store.at.lock,
         store.lock_error);
  }
  if (store.lock_fd < 0) return;
  AcquireStateLock(store.at, store.lock_fd, operation);
  store.exclusive = operation == LOCK_EX;
  if (store.exclusive) RemoveStaleTemporaries(store.at);
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
    CheckStateSize(path, done);
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
  int fd = ReplaceStateFile(
      store.at, [&](int out) { WriteAll(out, document, store.path); }, store.read_id);
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
  int fd = OpenStateForReading(store.at, store.read_id);
  store.file_fd = fd;
  uint64_t total = 0;
  auto read_next = [&](char* data, size_t size) {
    size_t n = ReadAt(fd, data, size, -1, store.path);
    CheckStateSize(store.path, total += n);
    return n;
  };
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

// Opens the state: finds its file, takes the lock (`operation`, unless the
// host is only read here) and reads the file, or seeds a missing one.
void Open(Store& store, AreaSet areas = 0, int operation = LOCK_SH) {
  if (store.open) return;
  store.at = LocateState(StatePath(), store.read_only   ? MissingFolders::kAllow
                                      : IsDefaultPath() ? MissingFolders::kMake
                                                        : MissingFolders::kRefuse);
  store.path = store.at.path;
  if (!store.read_only) {
    if (store.lock_fd < 0) store.lock_fd = OpenStateLock(store.at, store.lock_error);
    if (!store.exclusive) TakeLock(store, operation);
  }
  bool exists = StateExists(store.at);
  if (!exists && !store.read_only && !store.exclusive) {
    TakeLock(store, LOCK_EX);  // seeding writes
    exists = StateExists(store.at);
  }
  if (!exists) {
    HostModel host = DefaultHost();
    if (!store.read_only) {
      HostDocument document;
      document.text = HostToJson(host);
      try {
        Save(store, std::move(document));
      } catch (...) {
        // Nothing of this state is left: not its lock either.
        if (!StateExists(store.at)) RemoveStateLock(store.at, store.lock_fd);
        store.exclusive = false;
        throw;
      }
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

// Forgets what was read of the file, for reading it again.
void Forget(Store& store) {
  Replace(store, {});  // the parses point into the texts
  CloseFile(store);
  store.texts.clear();
  store.fetched.clear();
  store.file_text.reset();
  store.open = false;
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

// Takes the lock for changing the host. A file that another command changed
// since it was read (while this one only held the lock to read) is read
// again, the areas loaded as before. What callers still hold of the host as
// it was read (an element, a list being walked) stays as it was, in
// `superseded`, until the process ends.
void BecomeWriter(Store& store) {
  if (!store.open) return Open(store, 0, LOCK_EX);
  if (store.exclusive) return;
  TakeLock(store, LOCK_EX);
  if (CurrentStateId(store.at) == store.read_id) return;
  AreaSet const loaded = store.current.loaded;
  ForgetTexts(store);
  store.superseded.push_back(std::move(store.current));
  Forget(store);
  Loaded(loaded);
}

}  // namespace

std::string StatePath() {
  if (char const* path = std::getenv("TOOLBASE_HOST_STATE"); path && *path) return path;
  return DefaultStatePath();
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
  if (!store.in_transaction) BecomeWriter(store);
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
  // or the write fail, read the loaded areas back from the file's text. A
  // command that changes the host twice is not stopped between the two.
  HoldStopSignalsForTheCommand();
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
  ReleaseStopSignalsOfTheCommand();
  Forget(store);
  store.read_only = false;
  EndTransaction(store);
  if (store.lock_fd >= 0) {
    close(store.lock_fd);
    store.lock_fd = -1;
  }
  store.exclusive = false;
  store.superseded.clear();
}

std::string StateFileBackend::BeginTransaction() {
  Store& store = TheStore();
  if (store.in_transaction) return "A host transaction is already in progress";
  try {
    if (store.read_only) {
      Open(store);
    } else {
      BecomeWriter(store);
      Open(store);
    }
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
