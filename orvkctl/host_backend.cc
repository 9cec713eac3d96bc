#include "host_backend.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <memory>
#include <string>

#include "host_store.h"
#include "hostctl/transaction.h"

namespace OrvkCtl::Sim {

HostBackend& Backend() {
  static std::unique_ptr<HostBackend> const backend = NewStateFileBackend();
  return *backend;
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

void OrvkCtl_ReadOnly() { OrvkCtl::Sim::Backend().SetReadOnly(); }

}  // extern "C"
