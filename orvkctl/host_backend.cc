#include "host_backend.h"

#include <dlfcn.h>
#include <link.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

#include "host_store.h"
#include "hostctl/lib.h"
#include "hostctl/transaction.h"

namespace OrvkCtl::Sim {

namespace {

sigset_t HoldStopSignals() {
  sigset_t held;
  sigset_t before;
  sigemptyset(&held);
  for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT}) sigaddset(&held, signal);
  pthread_sigmask(SIG_BLOCK, &held, &before);
  return before;
}

// The mask in force before the command's first change, while they wait.
std::optional<sigset_t>& HeldForTheCommand() {
  static std::optional<sigset_t> before;
  return before;
}

// The real host's backend lives in a library of its own beside this one, so
// that neither it nor the netlink libraries it needs load for the simulated
// host. It is opened by full path (a sanitizer's dlopen does not search run
// paths), then by name.
std::unique_ptr<HostBackend> NewLinuxBackend() {
  constexpr char kName[] = "liborvkctl-linux.so";
  std::string path = kName;
  // The library this code is in; unlike dladdr, no search of its symbols.
  dl_find_object self_object{};
  if (_dl_find_object(reinterpret_cast<void*>(&NewLinuxBackend), &self_object) == 0 &&
      self_object.dlfo_link_map && self_object.dlfo_link_map->l_name) {
    std::string self = self_object.dlfo_link_map->l_name;
    if (auto slash = self.rfind('/'); slash != std::string::npos) {
      path = self.substr(0, slash + 1) + kName;
    }
  }
  void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (!handle) handle = dlopen(kName, RTLD_LAZY | RTLD_LOCAL);
  using Make = HostBackend* (*)();
  void* entry = handle ? dlsym(handle, "OrvkCtl_NewLinuxBackend") : nullptr;
  if (!entry) {
    char const* why = dlerror();
    throw HostCtl::Lib::HostCtlException(std::string("Cannot load the linux host backend: ") +
                                    (why ? why : kName));
  }
  return std::unique_ptr<HostBackend>(reinterpret_cast<Make>(entry)());
}

}  // namespace

std::string HostKindError(std::string const& kind) {
  if (kind.empty() || kind == "sim" || kind == "linux") return {};
  return "Unknown host kind '" + kind + "': the hosts are sim (the simulated host) and linux";
}

HostBackend& Backend() {
  static std::unique_ptr<HostBackend> const backend = [] {
    char const* kind = getenv("TOOLBASE_HOST");
    std::string const name = kind ? kind : "";
    if (auto error = HostKindError(name); !error.empty()) {
      throw HostCtl::Lib::HostCtlException("TOOLBASE_HOST: " + error);
    }
    return name == "linux" ? NewLinuxBackend() : NewStateFileBackend();
  }();
  return *backend;
}

StopSignalsHeld::StopSignalsHeld() : before_(HoldStopSignals()) {}
StopSignalsHeld::~StopSignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void HoldStopSignalsForTheCommand() {
  if (!HeldForTheCommand()) HeldForTheCommand() = HoldStopSignals();
}

void ReleaseStopSignalsOfTheCommand() {
  if (auto& before = HeldForTheCommand()) {
    pthread_sigmask(SIG_SETMASK, &*before, nullptr);
    before.reset();
  }
}

}  // namespace OrvkCtl::Sim

namespace {

// The text a C entry point returns: valid until the next call.
char const* Message(std::string text) {
  static std::string message;
  message = std::move(text);
  return message.empty() ? nullptr : message.c_str();
}

}  // namespace

extern "C" {

const char* OrvkCtl_BeginTransaction() { return Message(OrvkCtl::Sim::Backend().BeginTransaction()); }

void OrvkCtl_Savepoint() { OrvkCtl::Sim::Backend().Savepoint(); }

void OrvkCtl_RollbackToSavepoint() { OrvkCtl::Sim::Backend().RollbackToSavepoint(); }

const char* OrvkCtl_CommitTransaction() { return Message(OrvkCtl::Sim::Backend().CommitTransaction()); }

void OrvkCtl_AbortTransaction() { OrvkCtl::Sim::Backend().AbortTransaction(); }

const char* OrvkCtl_SetHostState(const char* path) {
  std::string const name = path ? path : "";
  if (name.empty()) return Message("Option --host-state needs a file path, got an empty one");
  struct stat info {};
  if (stat(name.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    return Message("Option --host-state needs a file path, but " + name + " is a folder");
  }
  // StatePath() and the default-path checks read the variable.
  setenv("TOOLBASE_HOST_STATE", name.c_str(), 1);
  return nullptr;
}

const char* OrvkCtl_SetHost(const char* kind) {
  std::string const name = kind ? kind : "";
  if (name.empty()) return Message("Option --host needs a host kind (sim or linux), got an empty one");
  if (auto error = OrvkCtl::Sim::HostKindError(name); !error.empty()) return Message(error);
  // Backend() reads the variable at the host's first use.
  setenv("TOOLBASE_HOST", name.c_str(), 1);
  return nullptr;
}

void OrvkCtl_ReadOnly() { OrvkCtl::Sim::Backend().SetReadOnly(); }

}  // extern "C"
