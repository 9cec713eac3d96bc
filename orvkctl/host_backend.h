// The one way the library's Impl classes reach the host: a HostBackend gives
// them the host's state as a HostModel, area by area, and takes their changes
// whole. The simulated host's state file (host_store.h) is the backend so
// far; another (a real network stack) implements this interface and is chosen
// in Backend(), without a change to any Impl class or to the plug-in.
//
// An operation names every area it reads or changes:
//   ReadHost(kAreaNic | kAreaVswitch).nic ...
//   ChangeHost(kAreaFirewall, [&](HostModel& host) { host.firewall.enabled = true; });
// What spans areas (what a removal takes with it, which NIC may serve where)
// is in host_rules.h, which the Impl classes call inside their changes.
#pragma once

#include <signal.h>

#include <functional>
#include <string>

#include "host_model.h"

namespace OrvkCtl::Sim {

// Sets of areas of the host.
using AreaSet = unsigned;
inline constexpr AreaSet kAreaHost = 1u << 0;  // hostname, modules
inline constexpr AreaSet kAreaFirewall = 1u << 1;
inline constexpr AreaSet kAreaNic = 1u << 2;
inline constexpr AreaSet kAreaIp = 1u << 3;
inline constexpr AreaSet kAreaVswitch = 1u << 4;
inline constexpr AreaSet kAreaRuntime = 1u << 5;
inline constexpr AreaSet kAreaAll = (1u << 6) - 1;
// Within the ip area, its IPsec databases: an operation on them names this
// beside kAreaIp. The simulated host keeps them with the ip area, so this
// loads nothing more there; a real host reads its kernel's only when asked.
inline constexpr AreaSet kAreaIpsec = 1u << 6;

class HostBackend {
 public:
  virtual ~HostBackend() = default;

  // The host as it stands, with at least `areas` loaded; the members of
  // other areas may be empty. The reference stays valid, and the areas
  // loaded, until the process ends or Reset; a later Commit changes what it
  // refers to. Throws HostCtlException, naming where the state comes from,
  // when it cannot be read or holds what the host cannot have; nothing is
  // loaded or changed then.
  virtual HostModel const& Load(AreaSet areas) = 0;

  // Loads `areas`, applies `change` to them and makes the result the host:
  // all or nothing. If `change` throws, or the result cannot be stored
  // (HostCtlException naming where), the host stays as it was, as stored and
  // as loaded, and the exception passes on. Inside a transaction the result
  // is the host for this process, and stored at CommitTransaction.
  virtual void Commit(AreaSet areas, std::function<void(HostModel&)> const& change) = 0;

  // A transaction gathers the changes of many operations (a batch) into one
  // store. BeginTransaction loads the host if need be; it and
  // CommitTransaction return an empty text, or why they failed (also for a
  // transaction already begun); a failed commit drops the changes.
  // RollbackToSavepoint returns to the host as it was at the last Savepoint
  // (or at the beginning); AbortTransaction drops every change.
  virtual std::string BeginTransaction() = 0;
  virtual void Savepoint() = 0;
  virtual void RollbackToSavepoint() = 0;
  virtual std::string CommitTransaction() = 0;
  virtual void AbortTransaction() = 0;

  // From now on nothing is stored: a change outside a transaction throws
  // HostCtlException, one inside stays in memory and CommitTransaction
  // refuses it; the state file backend makes no lock file and does not seed
  // a missing file (it reads as the default host).
  virtual void SetReadOnly() = 0;

  // Forgets what was loaded, ends any transaction and the read-only mode, so that the next Load
  // reads the host again (for tests, which also change the state's path).
  virtual void Reset() = 0;
};

// The backend of this process, chosen at its first use by TOOLBASE_HOST:
// "sim" (or unset) for the state file, "linux" for the network stack the
// process runs in. Throws HostCtlException for another kind, or when the
// linux backend's library cannot be loaded.
HostBackend& Backend();

// Why `kind` names no host kind, or an empty text when it names one.
std::string HostKindError(std::string const& kind);

// Shorthands for the Impl classes. ReadHost() and ChangeHost(change) without
// a set take every area.
inline HostModel const& ReadHost(AreaSet areas) { return Backend().Load(areas); }
inline HostModel const& ReadHost() { return Backend().Load(kAreaAll); }
inline void ChangeHost(AreaSet areas, std::function<void(HostModel&)> const& change) {
  Backend().Commit(areas, change);
}
inline void ChangeHost(std::function<void(HostModel&)> const& change) {
  Backend().Commit(kAreaAll, change);
}
inline void ResetHostForTest() { Backend().Reset(); }

// The signals that end a process by default (SIGINT, SIGTERM, SIGHUP,
// SIGPIPE, SIGQUIT) wait while the host is between a change's steps, so
// that none leaves it half-changed: what comes meanwhile is delivered when
// they are released (a batch's own handler only takes note of it).
class StopSignalsHeld {
 public:
  StopSignalsHeld();
  ~StopSignalsHeld();
  StopSignalsHeld(StopSignalsHeld const&) = delete;
  StopSignalsHeld& operator=(StopSignalsHeld const&) = delete;

 private:
  sigset_t before_;
};

// Outside a transaction one command may change the host more than once (an
// interface is added, then configured): from its first change on, the stop
// signals wait until the process ends, which it then does with the command
// done. Backends call this before a change outside a transaction; Reset
// releases them (a transaction's owner decides between its changes).
void HoldStopSignalsForTheCommand();
void ReleaseStopSignalsOfTheCommand();

}  // namespace OrvkCtl::Sim
