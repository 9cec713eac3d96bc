// The C entries of hostctl/transaction.h over the host store.
#include "hostctl/transaction.h"

#include <exception>
#include <string>

#include "host_store.h"

namespace {

// The text of the last failure, kept for the caller to read.
std::string& LastError() {
  static std::string text;
  return text;
}

template <typename F>
const char* Guard(F const& action) {
  try {
    action();
    return nullptr;
  } catch (std::exception const& error) {
    LastError() = error.what();
    return LastError().c_str();
  }
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) const char* OrvkCtl_BeginTransaction() {
  return Guard([] { OrvkCtl::Sim::HoldChanges(); });
}

__attribute__((visibility("default"))) void OrvkCtl_Savepoint() {
  OrvkCtl::Sim::MarkSavepoint();
}

__attribute__((visibility("default"))) void OrvkCtl_RollbackToSavepoint() {
  OrvkCtl::Sim::RollbackToSavepoint();
}

__attribute__((visibility("default"))) const char* OrvkCtl_CommitTransaction() {
  return Guard([] { OrvkCtl::Sim::CommitHeld(); });
}

__attribute__((visibility("default"))) void OrvkCtl_AbortTransaction() {
  OrvkCtl::Sim::AbortHeld();
}

}
