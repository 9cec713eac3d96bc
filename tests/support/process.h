// A toolbase process running beside the test, to be watched and signalled
// while it works: for tests of what a signal does to a batch, and of two
// commands that meet at the host's lock.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace TestSupport {

class ToolbaseProcess {
 public:
  // Starts `toolbase ARGS...` with `environment` added, its output going to
  // temporary files; the signals `ignored` are ignored in it from the start
  // (as nohup does).
  explicit ToolbaseProcess(std::vector<std::string> const& args,
                           std::map<std::string, std::string> const& environment = {},
                           std::vector<int> const& ignored = {});
  // Kills the process if it still runs.
  ~ToolbaseProcess();
  ToolbaseProcess(ToolbaseProcess const&) = delete;
  ToolbaseProcess& operator=(ToolbaseProcess const&) = delete;

  // Waits until `ready()` is true, asking about every millisecond; false
  // when the process ended first or `seconds` passed.
  bool WaitUntil(std::function<bool()> const& ready, double seconds = 60);
  // Waits until the process has a handler of its own for `signal`.
  bool WaitUntilCatching(int signal, double seconds = 60);
  // Waits until its standard error holds `text`.
  bool WaitForError(std::string const& text, double seconds = 60);

  void Signal(int signal) const;

  struct Ending {
    int status = -1;  // the exit status; -1 when a signal ended it
    int signal = 0;   // the signal that ended it, else 0
    std::string out;
    std::string err;
  };
  // Waits for the end of the process.
  Ending Wait();

 private:
  bool Running();

  pid_t pid_ = -1;
  bool reaped_ = false;
  int wait_status_ = 0;
  std::string out_path_;
  std::string err_path_;
};

// In a child just forked: adds `environment` and becomes `toolbase ARGS...`
// (exit status 127 when it cannot).
[[noreturn]] void ExecToolbase(std::vector<std::string> args,
                               std::map<std::string, std::string> const& environment);

}  // namespace TestSupport
