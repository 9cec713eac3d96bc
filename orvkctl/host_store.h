// Persistence of the simulated host.
//
// The state lives in one JSON file: the path given by TOOLBASE_HOST_STATE, or
// $XDG_STATE_HOME/toolbase/host-state.json, or
// ~/.local/state/toolbase/host-state.json. It is read when a command first
// touches the host; from then on the process holds an exclusive lock on
// "<path>.lock" until it ends, so that concurrent commands see each other's
// changes whole. A missing file is seeded with DefaultHost(). Every change is
// written through at once, atomically (temporary file, fsync, rename).
#pragma once

#include <functional>
#include <string>

#include "host_model.h"

namespace OrvkCtl::Sim {

// The state file this process uses.
std::string StatePath();

// The host as it stands. Loads (and locks) on first use. Throws
// HostCtlException naming the file when it cannot be read, is corrupt, or
// cannot be locked; the file is left untouched then.
HostModel const& ReadHost();

// Applies `change` to a copy of the host and writes the copy through; only
// then does it become the host. If `change` or the write throws, the host
// and the file stay as they were and the exception passes on.
void ChangeHost(std::function<void(HostModel&)> const& change);

// Holding changes in memory (see hostctl/transaction.h). While held,
// ChangeHost changes only the loaded host; CommitHeld writes it once (only if
// anything changed) and AbortHeld returns to the host as it was at HoldChanges.
void HoldChanges();
void MarkSavepoint();
void RollbackToSavepoint();
void CommitHeld();
void AbortHeld();

// Forgets the loaded host and releases the lock, so that the next use loads
// the file again (from the path then in force). For tests.
void ResetHostForTest();

// JSON conversion; throws std::exception on a malformed document.
std::string HostToJson(HostModel const& host);
HostModel HostFromJson(std::string const& text);

}  // namespace OrvkCtl::Sim
