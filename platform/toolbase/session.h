// What a plug-in may offer the framework beside its command tree: global
// options of its own, the transaction of its host, and where the values of
// its parameters can be completed from.
//
// A plug-in that needs any of these exports, beside AutoCli_RegisterNamespaces,
//   extern "C" void AutoCli_RegisterSession(Toolbase::AutoCli::Session* session);
// which the framework calls once, right after AutoCli_RegisterNamespaces,
// with a registry that lives as long as the process. Everything handed over
// is plain data and function addresses: text is kept by its address and must
// outlive the process's use of the plug-in (string literals do).
#pragma once

namespace Toolbase::AutoCli {

// A global option owned by a plug-in, e.g. `--state-file PATH`. It is taken
// before the command's words, after them (unless the command has a parameter
// of that name), and before --batch for the whole batch; never on a batch
// line.
struct GlobalOption {
  // Without the leading "--".
  char const* name;
  // What the value is, shown in help: --name=<value_name>.
  char const* value_name;
  // One sentence for --help and the manual page.
  char const* description;
  // Called with the value before any command of the plug-in runs. Returns
  // null when the value is usable, else a one-line message: the line is then
  // a usage error and nothing runs.
  char const* (*apply)(char const* value);
  // True when the value names a file, so that completion offers file names.
  bool takes_file;
};

// The plug-in's host held in memory, so that many lines make one change, or
// a dry run makes none. Every entry is required.
struct Transaction {
  // From now on changes stay in memory. Null, or a message on failure.
  char const* (*begin)();
  // Marks the state that `rollback` returns to (between batch lines).
  void (*savepoint)();
  void (*rollback)();
  // Writes every change since `begin` at once and ends the transaction.
  // Null, or a message on failure (the changes are then dropped).
  char const* (*commit)();
  // Drops every change since `begin`; nothing is written.
  void (*abort)();
  // Optional (may be null): from now on nothing is created, locked or
  // written; changes inside a transaction stay in memory. Called before
  // completion looks up names and before a dry run begins.
  void (*read_only)();
};

// Where the values of a parameter come from when completing: a list command
// of the plug-in's tree and the field of its records that holds the value.
// Applies to every parameter of that long name under the plug-in's words.
struct CompletionSource {
  char const* parameter;  // long name, without "--"
  char const* command;    // the command's words, separated by blanks
  char const* field;      // a string field of each record
};

// The registry handed to AutoCli_RegisterSession.
class Session {
 public:
  // A name already taken (by the framework or another plug-in) is refused
  // with a warning and the option ignored.
  virtual void AddGlobalOption(GlobalOption const& option) = 0;
  virtual void SetTransaction(Transaction const& transaction) = 0;
  virtual void AddCompletionSource(CompletionSource const& source) = 0;

 protected:
  ~Session() = default;
};

}  // namespace Toolbase::AutoCli

// The optional second entry of a plug-in.
using AutoCliRegisterSessionFn = void (*)(Toolbase::AutoCli::Session* session);
