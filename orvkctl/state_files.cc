#include "state_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
namespace {

using HostCtl::Lib::HostCtlException;

[[noreturn]] void Fail(std::string const& what, std::string const& path, int error) {
  throw HostCtlException(what + " " + path + ": " + std::strerror(error));
}

std::string FolderOf(std::string const& path) {
  size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string NameOf(std::string const& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string UserName(uid_t uid) {
  passwd const* user = getpwuid(uid);
  return "user " + std::string(user ? user->pw_name : "?") + " (" + std::to_string(uid) + ")";
}

std::string GroupName(gid_t gid) {
  group const* found = getgrgid(gid);
  return "group " + std::string(found ? found->gr_name : "?") + " (" + std::to_string(gid) + ")";
}

// Who other than this user and root may write in a folder: empty if no one.
std::string OthersWriting(struct stat const& folder) {
  if (folder.st_uid != 0 && folder.st_uid != geteuid())
    return "it belongs to " + UserName(folder.st_uid);
  if (folder.st_mode & S_IWOTH) return "every user may write it";
  if ((folder.st_mode & S_IWGRP) && folder.st_gid != 0 && folder.st_gid != getegid()) {
    return GroupName(folder.st_gid) + " may write it";
  }
  return {};
}

// What a file that is not a regular one is, for a message.
char const* KindOf(mode_t mode) {
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  if (S_ISSOCK(mode)) return "a socket";
  if (S_ISLNK(mode)) return "a symbolic link";
  return "not a regular file";
}

[[noreturn]] void NotRegular(StateLocation const& at, std::string const& file, mode_t mode) {
  if (S_ISDIR(mode)) Fail("Cannot read host state file", at.path, EISDIR);
  std::string what = file == at.path ? "it" : file;
  throw HostCtlException("Cannot read host state file " + at.path + ": " + what + " is " +
                         KindOf(mode) + ", not a regular file");
}

// Looks `entry` up (into `info`; false when it does not exist) after
// checking its folder: the folder must exist (unless `missing` allows it),
// and if others may write it, it must be sticky and `entry` (if there) this
// user's own. Sets `shared` when others may write the folder.
bool LookUp(std::string const& path, std::string const& entry, MissingFolders missing,
            struct stat& info, bool& shared) {
  std::string folder = FolderOf(entry);
  struct stat folder_info {};
  if (stat(folder.c_str(), &folder_info) != 0) {
    if (errno == ENOENT && missing == MissingFolders::kAllow) return false;
    Fail("Cannot use host state file " + path + ": folder", folder, errno);
  }
  bool exists = lstat(entry.c_str(), &info) == 0;
  if (!exists && errno != ENOENT) Fail("Cannot use host state file", path, errno);
  std::string why = OthersWriting(folder_info);
  shared = !why.empty();
  if (!shared) return exists;
  bool const foreign_folder = folder_info.st_uid != 0 && folder_info.st_uid != geteuid();
  if (foreign_folder || !(folder_info.st_mode & S_ISVTX)) {
    throw HostCtlException("Cannot use host state file " + path + ": folder " + folder +
                           " is not safe: " + why +
                           (foreign_folder ? "" : " and it is not sticky"));
  }
  if (exists && info.st_uid != geteuid()) {
    throw HostCtlException("Cannot use host state file " + path + ": " + entry + " belongs to " +
                           UserName(info.st_uid) + ", in folder " + folder +
                           ", which other users may write");
  }
  return exists;
}

// A short hash of the state file's name, which its temporary files and a
// lock that a long name leaves no room for are named by.
std::string NameHash(std::string const& file) {
  uint64_t hash = 14695981039346656037ull;  // FNV-1a
  for (unsigned char c : NameOf(file)) hash = (hash ^ c) * 1099511628211ull;
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

// Temporary files are "<folder>/.toolbase-<hash>-<8 hex digits>.tmp": a
// fixed length, whatever the state file's name, and a pattern no user picks.
constexpr size_t kRandomDigits = 8;
constexpr char kTempSuffix[] = ".tmp";

std::string NewTempName(StateLocation const& at) {
  uint32_t random = 0;
  if (getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random) {
    random = static_cast<uint32_t>(getpid()) * 2654435761u ^ static_cast<uint32_t>(clock());
  }
  char digits[kRandomDigits + 1];
  std::snprintf(digits, sizeof digits, "%08x", random);
  return at.folder + "/" + StateTemporaryPrefix(at.file) + digits + kTempSuffix;
}

bool IsTempName(std::string const& name, std::string const& prefix) {
  size_t const suffix = sizeof kTempSuffix - 1;
  if (name.size() != prefix.size() + kRandomDigits + suffix) return false;
  if (name.compare(0, prefix.size(), prefix) != 0) return false;
  if (name.compare(name.size() - suffix, suffix, kTempSuffix) != 0) return false;
  for (size_t i = prefix.size(); i < prefix.size() + kRandomDigits; ++i) {
    if (!std::isxdigit(static_cast<unsigned char>(name[i]))) return false;
  }
  return true;
}

// Makes the folders of the default path that are missing, 0700 whatever the
// umask. `from`: the first that may be made (the home folder never is).
void MakeFolders(std::string const& file, std::string const& from) {
  std::vector<std::string> missing;
  for (std::string folder = FolderOf(file); folder.size() >= from.size();
       folder = FolderOf(folder)) {
    struct stat info {};
    if (stat(folder.c_str(), &info) == 0) break;
    missing.push_back(folder);
    if (folder == from) break;
  }
  for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
    if (mkdir(it->c_str(), 0700) != 0) return;  // the check of the folder says why
    chmod(it->c_str(), 0700);
  }
}

// Where the default state goes, and the first of its folders that may be made.
struct DefaultPlace {
  std::string file;
  std::string first_made;
};

DefaultPlace DefaultPlaceOfState() {
  std::string const tail = "/toolbase/host-state.json";
  // A relative XDG_STATE_HOME is ignored, as the XDG rules say.
  if (char const* state = std::getenv("XDG_STATE_HOME"); state && state[0] == '/') {
    return {state + tail, state};
  }
  if (char const* home = std::getenv("HOME"); home && home[0] == '/') {
    std::string base = home;
    while (base.size() > 1 && base.back() == '/') base.pop_back();
    if (base == "/") base.clear();
    return {base + "/.local/state" + tail, base + "/.local"};
  }
  throw HostCtlException(
      "Cannot tell where the host state file is: HOME is not set and XDG_STATE_HOME is not "
      "an absolute path; give one with --host-state or TOOLBASE_HOST_STATE");
}

// Waits for `operation` on `fd`; after a second says what it waits for.
void WaitForLock(StateLocation const& at, int fd, int operation) {
  int locked = flock(fd, operation | LOCK_NB);
  for (int tries = 0; locked != 0 && (errno == EWOULDBLOCK || errno == EINTR) && tries < 20;
       ++tries) {
    usleep(50 * 1000);
    locked = flock(fd, operation | LOCK_NB);
  }
  if (locked != 0 && errno == EWOULDBLOCK) {
    std::fprintf(stderr, "Waiting for another command to release the lock on %s ...\n",
                 at.path.c_str());
    while ((locked = flock(fd, operation)) != 0 && errno == EINTR) {
    }
  }
  if (locked != 0) Fail("Cannot lock host state file " + at.path + ": cannot lock", at.lock, errno);
}

StateFileId IdOf(struct stat const& info) {
  return {info.st_dev, info.st_ino, info.st_size, info.st_ctim};
}

}  // namespace

bool StateFileId::operator==(StateFileId const& other) const {
  return device == other.device && inode == other.inode && size == other.size &&
         changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
}

std::string DefaultStatePath() { return DefaultPlaceOfState().file; }

StateLocation LocateState(std::string const& path, MissingFolders missing) {
  if (missing == MissingFolders::kMake) {
    DefaultPlace place = DefaultPlaceOfState();
    if (place.file == path) MakeFolders(place.file, place.first_made);
  }
  StateLocation at;
  at.path = path;
  at.file = path;
  struct stat info {};
  bool exists = LookUp(path, at.file, missing, info, at.shared);
  // A link is followed once, here: the file it names is read, locked and
  // replaced, and the link stays a link.
  for (int hops = 0; exists && S_ISLNK(info.st_mode); ++hops) {
    if (hops == 40) Fail("Cannot use host state file", path, ELOOP);
    std::vector<char> target(PATH_MAX + 1);
    ssize_t size = readlink(at.file.c_str(), target.data(), PATH_MAX);
    if (size <= 0) Fail("Cannot use host state file", path, size < 0 ? errno : ENOENT);
    std::string next(target.data(), static_cast<size_t>(size));
    at.file = next[0] == '/' ? next : FolderOf(at.file) + "/" + next;
    exists = LookUp(path, at.file, missing, info, at.shared);
  }
  if (exists && !S_ISREG(info.st_mode)) NotRegular(at, at.file, info.st_mode);
  at.folder = FolderOf(at.file);
  std::string name = NameOf(at.file);
  // "<name>.lock", or a name of fixed length where that is too long.
  at.lock =
      at.folder + "/" +
      (name.size() + 5 <= NAME_MAX ? name + ".lock" : ".toolbase-" + NameHash(at.file) + ".lock");
  return at;
}

std::string StateTemporaryPrefix(std::string const& file) {
  return ".toolbase-" + NameHash(file) + "-";
}

bool StateExists(StateLocation const& at) {
  struct stat info {};
  return lstat(at.file.c_str(), &info) == 0;
}

StateFileId CurrentStateId(StateLocation const& at) {
  struct stat info {};
  return lstat(at.file.c_str(), &info) == 0 ? IdOf(info) : StateFileId{};
}

int OpenStateLock(StateLocation const& at, int& error) {
  int const flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  int fd = -1;
  for (int tries = 0; fd < 0 && tries < 100; ++tries) {
    fd = open(at.lock.c_str(), O_RDWR | flags);
    if (fd < 0 && (errno == EACCES || errno == EROFS)) fd = open(at.lock.c_str(), O_RDONLY | flags);
    if (fd >= 0 || errno != ENOENT) break;
    fd = open(at.lock.c_str(), O_RDWR | O_CREAT | O_EXCL | flags, 0600);
    if (fd >= 0) fchmod(fd, 0600);
    if (fd < 0 && errno != EEXIST) break;  // EEXIST: another made it meanwhile
  }
  if (fd < 0) {
    error = errno;
    if (error == EACCES || error == EROFS || error == EPERM) return -1;
    Fail("Cannot lock host state file " + at.path + ": cannot open", at.lock, error);
  }
  struct stat info {};
  if (fstat(fd, &info) != 0) {
    error = errno;
    close(fd);
    Fail("Cannot lock host state file " + at.path + ": cannot open", at.lock, error);
  }
  if (!S_ISREG(info.st_mode) || (at.shared && info.st_uid != geteuid())) {
    close(fd);
    throw HostCtlException(
        "Cannot lock host state file " + at.path + ": " + at.lock +
        (S_ISREG(info.st_mode)
             ? " belongs to " + UserName(info.st_uid) + ", in a folder other users may write"
             : std::string(" is ") + KindOf(info.st_mode) + ", not a regular file"));
  }
  return fd;
}

void AcquireStateLock(StateLocation const& at, int& fd, int operation) {
  for (;;) {
    WaitForLock(at, fd, operation);
    // A lock file removed while this waited (by a writer whose first write
    // failed) locks nothing: lock the one named so now.
    struct stat held {
    }, named{};
    if (fstat(fd, &held) == 0 && stat(at.lock.c_str(), &named) == 0 &&
        held.st_ino == named.st_ino && held.st_dev == named.st_dev) {
      return;
    }
    close(fd);
    int error = 0;
    fd = OpenStateLock(at, error);
    if (fd < 0) Fail("Cannot lock host state file " + at.path + ": cannot open", at.lock, error);
  }
}

void RemoveStateLock(StateLocation const& at, int& fd) {
  unlink(at.lock.c_str());
  close(fd);
  fd = -1;
}

void RemoveStaleTemporaries(StateLocation const& at) {
  std::string prefix = StateTemporaryPrefix(at.file);
  DIR* folder = opendir(at.folder.c_str());
  if (!folder) return;
  uid_t const me = geteuid();
  while (dirent* entry = readdir(folder)) {
    if (!IsTempName(entry->d_name, prefix)) continue;
    struct stat info {};
    if (fstatat(dirfd(folder), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(info.st_mode) && info.st_uid == me) {
      unlinkat(dirfd(folder), entry->d_name, 0);
    }
  }
  closedir(folder);
}

void CheckStateSize(std::string const& path, uint64_t size) {
  if (size <= static_cast<uint64_t>(kMaxStateSize)) return;
  throw HostCtlException("Cannot read host state file " + path +
                         ": it is larger than a host state may be (" +
                         std::to_string(kMaxStateSize >> 20) + " MiB)");
}

int OpenStateForReading(StateLocation const& at, StateFileId& id) {
  int fd = open(at.file.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) Fail("Cannot read host state file", at.path, errno);
  struct stat info {};
  if (fstat(fd, &info) != 0) {
    int error = errno;
    close(fd);
    Fail("Cannot read host state file", at.path, error);
  }
  if (!S_ISREG(info.st_mode)) {
    close(fd);
    NotRegular(at, at.file, info.st_mode);
  }
  try {
    CheckStateSize(at.path, static_cast<uint64_t>(info.st_size));
  } catch (...) {
    close(fd);
    throw;
  }
  id = IdOf(info);
  return fd;
}

int ReplaceStateFile(StateLocation const& at, std::function<void(int)> const& write,
                     StateFileId& id) {
  struct stat old {};
  bool const exists = lstat(at.file.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) NotRegular(at, at.file, old.st_mode);
  // Renaming over a file needs no right to write it: ask for that right.
  if (exists && faccessat(AT_FDCWD, at.file.c_str(), W_OK, AT_EACCESS) != 0) {
    Fail("Cannot write host state file", at.path, errno);
  }
  std::string temp;
  int fd = open(at.folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd < 0) {
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
      Fail("Cannot write host state file", at.path, errno);
    }
    // No unnamed files here: a new name, which nothing else may have.
    for (int tries = 0; fd < 0 && tries < 100; ++tries) {
      temp = NewTempName(at);
      fd = open(temp.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
      if (fd < 0 && errno != EEXIST) break;
    }
    if (fd < 0) Fail("Cannot write host state file", at.path, errno);
  }
  try {
    struct stat made {};
    if (fstat(fd, &made) != 0) Fail("Cannot write host state file", at.path, errno);
    if (exists && (made.st_uid != old.st_uid || made.st_gid != old.st_gid) &&
        fchown(fd, old.st_uid, old.st_gid) != 0) {
      Fail("Cannot write host state file " + at.path + ": cannot give the new file the owner of",
           at.file, errno);
    }
    if (fchmod(fd, exists ? old.st_mode & 07777 : 0600) != 0) {
      Fail("Cannot write host state file", at.path, errno);
    }
    write(fd);
    if (fsync(fd) != 0) Fail("Cannot write host state file", at.path, errno);
    if (temp.empty()) {
      std::string self = "/proc/self/fd/" + std::to_string(fd);
      int linked = -1;
      for (int tries = 0; linked != 0 && tries < 100; ++tries) {
        temp = NewTempName(at);
        linked = linkat(AT_FDCWD, self.c_str(), AT_FDCWD, temp.c_str(), AT_SYMLINK_FOLLOW);
        if (linked != 0 && errno != EEXIST) break;
      }
      if (linked != 0) {
        temp.clear();
        Fail("Cannot write host state file", at.path, errno);
      }
    }
    if (rename(temp.c_str(), at.file.c_str()) != 0) {
      Fail("Cannot replace host state file", at.path, errno);
    }
    if (fstat(fd, &made) == 0) id = IdOf(made);
  } catch (...) {
    close(fd);
    if (!temp.empty()) unlink(temp.c_str());
    throw;
  }
  int folder = open(at.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    fsync(folder);
    close(folder);
  }
  return fd;
}

}  // namespace OrvkCtl::Sim
