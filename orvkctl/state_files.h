// The files of the simulated host's state: where they are, and how they are
// opened, locked, read and replaced, so that no other user can read the keys
// they hold or make this process write where that user chooses.
//
// Every file made here (the state, its lock, a temporary) is made 0600 with
// O_EXCL and without following a link; a change keeps the mode and owner of
// the file it replaces. A folder that another user may write is used only
// when it is sticky and what this process uses in it is the user's own.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>

namespace OrvkCtl::Sim {

// The most a state file may hold; a larger one is refused, not read.
inline constexpr off_t kMaxStateSize = off_t{256} << 20;

// Where the state of a path is.
struct StateLocation {
  std::string path;     // as named (by the user or by default): messages name it
  std::string file;     // the file it names, symbolic links followed
  std::string folder;   // file's folder
  std::string lock;     // the lock file beside `file`
  bool shared = false;  // others may write `folder` (a sticky one): owners are checked
};

// What tells one version of the state file from another.
struct StateFileId {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  timespec changed{};
  bool operator==(StateFileId const& other) const;
};

// What to do about missing folders of the state's path.
enum class MissingFolders {
  kRefuse,  // a path given by the user
  kMake,    // the default path: made 0700 (never the home folder itself)
  kAllow,   // only reading: a missing folder holds no file
};

// Finds the file `path` names and checks the folders on the way (see
// above). Throws HostCtlException naming `path` when the file or a folder
// cannot be used, and why: a missing folder, one that is not safe, a path
// that is not a regular file.
StateLocation LocateState(std::string const& path, MissingFolders missing);

// The default state file: $XDG_STATE_HOME/toolbase/host-state.json for an
// absolute XDG_STATE_HOME, else ~/.local/state/toolbase/host-state.json.
// Throws HostCtlException when neither variable gives a folder.
std::string DefaultStatePath();

// Whether the state file exists, and which version it is (a zero id when it
// does not).
bool StateExists(StateLocation const& at);
StateFileId CurrentStateId(StateLocation const& at);

// Opens the lock file, making it if need be. Returns -1, with the errno in
// `error`, when it can neither be opened nor made for want of write access
// (a read-only folder or file system, another user's lock): a read goes on
// without it, a change fails. Throws HostCtlException on anything else (a
// link, a lock that is not a regular file or belongs to another user in a
// shared folder).
int OpenStateLock(StateLocation const& at, int& error);

// Takes `operation` (LOCK_SH or LOCK_EX) on the lock `fd`, waiting as long
// as it takes, and saying on standard error what it waits for after a
// second. Opens the lock again when the file was replaced while it waited.
void AcquireStateLock(StateLocation const& at, int& fd, int operation);

// Removes the lock file, which this process holds exclusively, and closes it.
void RemoveStateLock(StateLocation const& at, int& fd);

// How the names of the state file `file`'s temporary files begin: each is
// this, 8 hex digits and ".tmp", whatever the length of `file`'s name.
std::string StateTemporaryPrefix(std::string const& file);

// Removes the temporary files a writer killed mid-write left beside the
// state file: only those of this library, for this state file, belonging to
// this user. Only while holding the lock exclusively.
void RemoveStaleTemporaries(StateLocation const& at);

// Throws HostCtlException naming `path` when `size` bytes are more than a
// state file may hold.
void CheckStateSize(std::string const& path, uint64_t size);

// Opens the state file for reading; throws HostCtlException naming the path
// when it cannot be read, is not a regular file or is larger than
// kMaxStateSize.
int OpenStateForReading(StateLocation const& at, StateFileId& id);

// Replaces the state file atomically with what `write` writes to the file
// descriptor it is given: a temporary file in the same folder (unnamed
// while it is written, where the file system allows), with the old file's
// mode and owner (0600 for a new one), flushed and renamed over the file.
// Returns the file written, open for reading, and its id. On failure nothing
// is left behind and the state file is as it was.
int ReplaceStateFile(StateLocation const& at, std::function<void(int)> const& write,
                     StateFileId& id);

}  // namespace OrvkCtl::Sim
