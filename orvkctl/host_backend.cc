#include "host_backend.h"

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

}  // extern "C"
