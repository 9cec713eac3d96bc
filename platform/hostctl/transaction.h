// Transactions over the simulated host, for running many command lines as
// one change. The host control library exports these with C linkage so the
// framework can find them with dlsym in a plug-in's handle without linking
// the library.
#pragma once

extern "C" {

// From now on changes are applied to the loaded host in memory only, and
// written to the state file once, by OrvkCtl_CommitTransaction. Loads (and
// locks) the host if not yet loaded. Returns nullptr, or a message on failure
// (also when a transaction is already in progress).
const char* OrvkCtl_BeginTransaction();
// Marks the current in-memory host as the point to which
// OrvkCtl_RollbackToSavepoint returns (used between batch lines).
void OrvkCtl_Savepoint();
void OrvkCtl_RollbackToSavepoint();
// Writes every change made since BeginTransaction at once, atomically, and
// ends the transaction. Returns nullptr, or a message (valid until the next call).
// When the write fails, the changes are dropped and the file stays as it was.
const char* OrvkCtl_CommitTransaction();
// Drops every change made since BeginTransaction; the file stays as it was.
void OrvkCtl_AbortTransaction();
}
