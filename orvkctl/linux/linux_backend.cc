// The linux backend: loads read the kernel over what the backend kept; a
// commit plans kernel steps, applies them, reads the kernel again and keeps
// the change only when the kernel holds what was asked.
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "host_store.h"
#include "hostctl/lib.h"
#include "kernel.h"
#include "linux_host.h"

namespace OrvkCtl::Linux {

using HostCtl::Lib::HostCtlException;

std::string const& RootFolder() {
  static std::string const root = [] {
    char const* root = std::getenv("TOOLBASE_LINUX_ROOT");
    std::string folder = root && *root ? root : "/";
    if (folder.back() != '/') folder += '/';
    return folder;
  }();
  return root;
}

void NotAvailable(std::string const& what) {
  throw HostCtlException(what + " is not available on a " + kHostKind + " host");
}

std::vector<Family> const& Families() {
  static std::vector<Family> const families = {NetstackFamily(), VswitchFamily(), NicFamily(),
                                               IpFamily(),       IpsecFamily(),   HostFamily(),
                                               FirewallFamily(), RuntimeFamily()};
  return families;
}

namespace {

// Copies the areas `areas` of `from` into `to`.
void CopyAreas(AreaSet areas, HostModel const& from, HostModel& to) {
  if (areas & Sim::kAreaHost) to.hostname = from.hostname, to.modules = from.modules;
  if (areas & Sim::kAreaFirewall) to.firewall = from.firewall;
  if (areas & Sim::kAreaNic) to.nic = from.nic;
  if (areas & Sim::kAreaIp) to.ip = from.ip;
  if (areas & Sim::kAreaIpsec) {
    to.ip.ipsec_sas = from.ip.ipsec_sas;
    to.ip.ipsec_sps = from.ip.ipsec_sps;
  }
  if (areas & Sim::kAreaVswitch) to.vswitch = from.vswitch;
  if (areas & Sim::kAreaRuntime) to.runtime = from.runtime;
}

// Clears from `host` what the backend never writes down nor compares: IPsec
// keys (they go to the kernel only), and the multicast memberships (live).
void ForgetUnkept(HostModel& host) {
  for (auto& sa : host.ip.ipsec_sas) {
    sa.encrypt_key.clear();
    sa.auth_key.clear();
  }
  host.runtime.memberships_reported = false;
  host.runtime.memberships.clear();
}

// The areas `areas` of `host` as JSON, the rest left empty, without what is
// not kept.
std::string AreasJson(HostModel const& host, AreaSet areas) {
  HostModel only;
  CopyAreas(areas, host, only);
  ForgetUnkept(only);
  return Sim::HostToJson(only);
}

// The "field":value around the first place where `asked` and `held` differ.
std::string Difference(std::string const& asked, std::string const& held) {
  size_t at = 0;
  while (at < asked.size() && at < held.size() && asked[at] == held[at]) ++at;
  auto token = [at](std::string const& text) {
    size_t begin = text.find_last_of(",{[", at == 0 ? 0 : at - 1);
    begin = begin == std::string::npos ? 0 : begin + 1;
    size_t end = text.find_first_of(",}]", at);
    std::string part = text.substr(begin, end == std::string::npos ? std::string::npos : end - begin);
    if (part.size() > 80) part = part.substr(0, 77) + "...";
    return part.empty() ? std::string("nothing") : part;
  };
  return "asked for " + token(asked) + ", the host holds " + token(held);
}

// The inode of the process's network namespace: the backend's files are per
// namespace.
std::string NamespaceId() {
  struct stat info {};
  if (stat("/proc/self/ns/net", &info) != 0) FailErrno("read the network namespace", errno);
  return std::to_string(info.st_ino);
}

class LinuxBackend final : public Sim::HostBackend {
 public:
  HostModel const& Load(AreaSet areas) override {
    Open();
    if (AreaSet missing = areas & ~loaded_; missing != 0) {
      HostModel fresh = Read(missing);
      CopyAreas(missing, fresh, host_);
      loaded_ |= missing;
    }
    return host_;
  }

  void Commit(AreaSet areas, std::function<void(HostModel&)> const& change) override {
    Load(areas);
    HostModel after = host_;
    change(after);
    if (read_only_ && !in_transaction_) throw HostCtlException("The host is open only for reading");
    // Planning only reads: a dry run plans too, so that what the host would
    // refuse is refused there as well, and then applies nothing.
    Plan plan;
    for (auto const& family : Families()) {
      if (family.areas & areas) family.plan(host_, after, plan);
    }
    if (read_only_) {
      CopyAreas(areas, after, host_);
      return;
    }
    std::string const old_kept = kept_text_;
    HostModel kept = kept_;
    CopyAreas(areas, after, kept);
    ForgetUnkept(kept);
    std::string const new_kept = Sim::HostToJson(kept);
    plan.push_back({"keep the host's names", [this, new_kept] { StoreKept(new_kept); },
                    [this, old_kept] { StoreKept(old_kept); }});

    // Outside a transaction one command may commit more than once (an
    // interface is added, then configured): from its first change on the
    // signals wait for the end of the process, which then ends with the
    // command done. A transaction's owner decides between its commits.
    if (!in_transaction_) Sim::HoldStopSignalsForTheCommand();
    Sim::StopSignalsHeld held;
    std::vector<Step> done;
    try {
      for (auto& step : plan) {
        step.apply();
        done.push_back(std::move(step));
      }
      // Read over what is kept now: what the kernel holds is told apart by
      // it (a new interface's link is no NIC).
      HostModel reread = Read(areas, kept);
      for (auto const& family : Families()) {
        if (family.areas & areas) family.keep(after, reread);
      }
      std::string const asked = AreasJson(after, areas);
      std::string const held = AreasJson(reread, areas);
      if (asked != held) {
        throw HostCtlException("This change is not available on a " + std::string(kHostKind) +
                               " host, or the host did not take it (" + Difference(asked, held) +
                               "); nothing was changed");
      }
    } catch (...) {
      Undo(done, 0);
      throw;
    }
    kept_ = std::move(kept);
    CopyAreas(areas, after, host_);
    if (in_transaction_) {
      for (auto& step : done) applied_.push_back(std::move(step));
    }
  }

  std::string BeginTransaction() override {
    if (in_transaction_) return "A transaction is already in progress";
    try {
      Open();
    } catch (std::exception const& error) {
      return error.what();
    }
    in_transaction_ = true;
    applied_.clear();
    savepoint_ = 0;
    saved_host_ = host_;
    saved_loaded_ = loaded_;
    return {};
  }

  void Savepoint() override {
    savepoint_ = applied_.size();
    saved_host_ = host_;
    saved_loaded_ = loaded_;
  }

  void RollbackToSavepoint() override {
    Sim::StopSignalsHeld held;
    Undo(applied_, savepoint_);
    applied_.resize(savepoint_);
    host_ = saved_host_;
    loaded_ = saved_loaded_;
    ReadKept();
  }

  std::string CommitTransaction() override {
    if (!in_transaction_) return "No transaction is in progress";
    in_transaction_ = false;
    applied_.clear();
    if (read_only_) return "The host is open only for reading: nothing was changed";
    return {};
  }

  void AbortTransaction() override {
    Sim::StopSignalsHeld held;
    Undo(applied_, 0);
    applied_.clear();
    in_transaction_ = false;
    loaded_ = 0;
    host_ = HostModel();
    if (opened_) ReadKept();
  }

  void SetReadOnly() override { read_only_ = true; }

  void Reset() override {
    if (lock_fd_ >= 0) close(lock_fd_);
    Sim::ReleaseStopSignalsOfTheCommand();
    *this = LinuxBackend();
  }

 private:
  // Takes the host's lock and reads what was kept, once.
  void Open() {
    if (opened_) return;
    folder_ = RootFolder() + "run/toolbase";
    std::string const id = NamespaceId();
    kept_path_ = folder_ + "/linux-" + id + ".json";
    if (!read_only_) {
      // One lock for every namespace under this root: a command here may
      // change another namespace (a netstack instance) and its files.
      std::string const lock_path = folder_ + "/linux.lock";
      auto open_lock = [&] {
        return open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
      };
      lock_fd_ = open_lock();
      // The folder is made by the first command only.
      if (lock_fd_ < 0 && errno == ENOENT) {
        std::error_code ignored;
        std::filesystem::create_directories(folder_, ignored);
        chmod(folder_.c_str(), 0700);
        lock_fd_ = open_lock();
      }
      if (lock_fd_ < 0) FailErrno("lock " + lock_path, errno);
      // As on the simulated host: a wait of more than a second is told.
      int locked = flock(lock_fd_, LOCK_EX | LOCK_NB);
      for (int tries = 0; locked != 0 && tries < 20; ++tries) {
        usleep(50 * 1000);
        locked = flock(lock_fd_, LOCK_EX | LOCK_NB);
      }
      if (locked != 0) {
        std::fprintf(stderr, "Waiting for another command to release the lock on %s ...\n",
                     lock_path.c_str());
        while (flock(lock_fd_, LOCK_EX) != 0 && errno == EINTR) {
        }
      }
    }
    ReadKept();
    opened_ = true;
  }

  void ReadKept() {
    auto text = ReadFile(kept_path_);
    if (!text) {
      kept_ = HostModel();
      kept_text_.clear();
      return;
    }
    kept_text_ = std::move(*text);
    try {
      kept_ = Sim::HostFromJson(kept_text_);
    } catch (std::exception const& error) {
      throw HostCtlException("The linux host's own state file " + kept_path_ +
                             " is corrupt: " + error.what());
    }
  }

  // Writes the kept state whole, by rename; an empty text removes the file.
  void StoreKept(std::string const& text) {
    if (text.empty()) {
      unlink(kept_path_.c_str());
      kept_text_.clear();
      return;
    }
    std::string const temporary = kept_path_ + ".new";
    int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) FailErrno("write " + temporary, errno);
    bool const written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    int const error = errno;
    close(fd);
    if (!written || rename(temporary.c_str(), kept_path_.c_str()) != 0) {
      unlink(temporary.c_str());
      FailErrno("write " + kept_path_, written ? errno : error);
    }
    kept_text_ = text;
  }

  // The host as the kernel and the kept state `kept` have it now, for
  // `areas`.
  HostModel Read(AreaSet areas) { return Read(areas, kept_); }
  HostModel Read(AreaSet areas, HostModel const& kept) {
    HostModel host = kept;
    for (auto const& family : Families()) {
      if (family.areas & areas) family.read(host);
    }
    return host;
  }

  // Undoes `steps` from the last down to index `from`; says what could not
  // be undone.
  static void Undo(std::vector<Step>& steps, size_t from) {
    for (size_t i = steps.size(); i-- > from;) {
      if (!steps[i].undo) continue;
      try {
        steps[i].undo();
      } catch (std::exception const& error) {
        std::fprintf(stderr, "Warning: could not undo \"%s\": %s\n", steps[i].what.c_str(),
                     error.what());
      }
    }
  }

  bool opened_ = false;
  bool read_only_ = false;
  bool in_transaction_ = false;
  int lock_fd_ = -1;
  std::string folder_;
  std::string kept_path_;
  std::string kept_text_;
  HostModel kept_;
  HostModel host_;
  AreaSet loaded_ = 0;
  std::vector<Step> applied_;
  size_t savepoint_ = 0;
  HostModel saved_host_;
  AreaSet saved_loaded_ = 0;
};

}  // namespace

}  // namespace OrvkCtl::Linux

extern "C" __attribute__((visibility("default"))) OrvkCtl::Sim::HostBackend*
OrvkCtl_NewLinuxBackend() {
  return new OrvkCtl::Linux::LinuxBackend();
}
