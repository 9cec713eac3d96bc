// Holding host changes in memory, so that a caller can apply a series of
// commands all or nothing. Looked up by name (dlsym) by the framework, which
// does not link the host library: hence plain C entries.
//
// Between Begin and Commit/Abort every change stays in memory; the state file
// is written once, atomically, by Commit, and is not touched by Abort.
#pragma once

extern "C" {
// Holds changes in memory from now on; loads and locks the host. Null on
// success, else the reason (valid until the next call into the library).
const char* OrvkCtl_BeginTransaction();
// Marks the in-memory host as the point RollbackToSavepoint returns to.
void OrvkCtl_Savepoint();
void OrvkCtl_RollbackToSavepoint();
// Writes everything changed since Begin, once and atomically. Null on
// success, else the reason; the file is then as it was before Begin.
const char* OrvkCtl_CommitTransaction();
// Drops everything changed since Begin; the file stays untouched.
void OrvkCtl_AbortTransaction();
}
