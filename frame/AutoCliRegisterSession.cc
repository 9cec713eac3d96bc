// The plug-in's session: the global option that names the host state file,
// the host library's transaction, and the list commands whose records name
// what a parameter takes. Everything is forwarded to the host library.
#include <initializer_list>

#include "hostctl/transaction.h"
#include "toolbase/session.h"

using Toolbase::AutoCli::CompletionSource;
using Toolbase::AutoCli::GlobalOption;
using Toolbase::AutoCli::Session;
using Toolbase::AutoCli::Transaction;

namespace {

// Local doors to the library's entries: the plug-in hands out their
// addresses, so loading it looks up none of the library's names; each is
// bound when first called.
char const* SetHostState(char const* path) { return OrvkCtl_SetHostState(path); }
char const* SetHost(char const* kind) { return OrvkCtl_SetHost(kind); }
char const* Begin() { return OrvkCtl_BeginTransaction(); }
void Savepoint() { OrvkCtl_Savepoint(); }
void Rollback() { OrvkCtl_RollbackToSavepoint(); }
char const* Commit() { return OrvkCtl_CommitTransaction(); }
void Abort() { OrvkCtl_AbortTransaction(); }
void ReadOnly() { OrvkCtl_ReadOnly(); }

}  // namespace

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterSession(Session* session) {
  session->AddGlobalOption({"host-state", "path",
                            "Host state file of the simulated host (default: "
                            "$XDG_STATE_HOME/toolbase/host-state.json).",
                            SetHostState, true});
  session->AddGlobalOption({"host", "kind",
                            "Host to administer: sim, the simulated host (default), or linux, "
                            "the network stack this process runs in (also TOOLBASE_HOST).",
                            SetHost, false});
  session->SetTransaction({Begin, Savepoint, Rollback, Commit, Abort, ReadOnly});
  for (auto const& source : {
           CompletionSource{"nic-name", "network nic list", "Name"},
           CompletionSource{"vswitch-name", "network vswitch standard list", "Name"},
           CompletionSource{"portgroup-name", "network vswitch standard portgroup list", "Name"},
           CompletionSource{"interface-name", "network ip interface list", "Name"},
           CompletionSource{"netstack", "network ip netstack list", "Key"},
           CompletionSource{"ip", "network ip hosts list", "IP address"},
           CompletionSource{"hostname", "network ip hosts list", "HostName"},
       }) {
    session->AddCompletionSource(source);
  }
}
