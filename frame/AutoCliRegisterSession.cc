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

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterSession(Session* session) {
  session->AddGlobalOption({"host-state", "path",
                            "Host state file of the simulated host (default: "
                            "$XDG_STATE_HOME/toolbase/host-state.json).",
                            OrvkCtl_SetHostState, true});
  session->SetTransaction({OrvkCtl_BeginTransaction, OrvkCtl_Savepoint,
                           OrvkCtl_RollbackToSavepoint, OrvkCtl_CommitTransaction,
                           OrvkCtl_AbortTransaction, OrvkCtl_ReadOnly});
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
