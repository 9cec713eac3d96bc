// Transactions over the simulated host, for running many command lines as
// one change, and the session settings of a process: which state file, and
// whether the host is only read. C linkage: a plug-in hands these entries to
// the framework as its session (toolbase/session.h).
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

// Names the host state file for the rest of the process in place of the
// default one (call before the host is first used). Returns nullptr, or a
// message (valid until the next call) when `path` is empty or a folder.
const char* OrvkCtl_SetHostState(const char* path);
// Chooses the host for the rest of the process (call before the host is
// first used): "sim", the simulated host of the state file (the default), or
// "linux", the network stack the process runs in. Returns nullptr, or a
// message (valid until the next call) for another kind.
const char* OrvkCtl_SetHost(const char* kind);
// From now on nothing reaches the disk: no lock file is made, a missing state
// file reads as the default host and is not created, a change outside a
// transaction throws HostCtlException, and one inside stays in memory (a
// commit refuses it). For looking up names while a user types, and dry runs.
void OrvkCtl_ReadOnly();
}
