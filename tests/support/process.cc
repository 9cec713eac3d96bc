#include "support/process.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

namespace TestSupport {

namespace {

std::string TextOf(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string TemporaryFile(char const* what) {
  std::string name = std::string("/tmp/toolbase-") + what + "-XXXXXX";
  int fd = mkstemp(name.data());
  if (fd >= 0) close(fd);
  return name;
}

}  // namespace

ToolbaseProcess::ToolbaseProcess(std::vector<std::string> const& args,
                                 std::map<std::string, std::string> const& environment,
                                 std::vector<int> const& ignored)
    : out_path_(TemporaryFile("out")), err_path_(TemporaryFile("err")) {
  pid_ = fork();
  if (pid_ != 0) return;
  int out = open(out_path_.c_str(), O_WRONLY);
  int err = open(err_path_.c_str(), O_WRONLY);
  dup2(out, 1);
  dup2(err, 2);
  for (int signal : ignored) ::signal(signal, SIG_IGN);
  ExecToolbase(args, environment);
}

void ExecToolbase(std::vector<std::string> args,
                  std::map<std::string, std::string> const& environment) {
  for (auto const& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  std::string program = TOOLBASE_EXECUTABLE;
  std::vector<char*> argv{program.data()};
  for (auto& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  execv(program.c_str(), argv.data());
  _exit(127);
}

ToolbaseProcess::~ToolbaseProcess() {
  if (pid_ > 0 && Running()) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  unlink(out_path_.c_str());
  unlink(err_path_.c_str());
}

bool ToolbaseProcess::Running() {
  if (reaped_) return false;
  if (waitpid(pid_, &wait_status_, WNOHANG) == pid_) reaped_ = true;
  return !reaped_;
}

bool ToolbaseProcess::WaitUntil(std::function<bool()> const& ready, double seconds) {
  auto const end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (std::chrono::steady_clock::now() < end) {
    if (ready()) return true;
    if (!Running()) return ready();
    std::this_thread::sleep_for(std::chrono::microseconds(500));
  }
  return false;
}

bool ToolbaseProcess::WaitUntilCatching(int signal, double seconds) {
  std::string const status_path = "/proc/" + std::to_string(pid_) + "/status";
  return WaitUntil(
      [&] {
        std::string const status = TextOf(status_path);
        size_t at = status.find("SigCgt:");
        if (at == std::string::npos) return false;
        unsigned long long const caught = std::strtoull(status.c_str() + at + 7, nullptr, 16);
        return ((caught >> (signal - 1)) & 1) != 0;
      },
      seconds);
}

bool ToolbaseProcess::WaitForError(std::string const& text, double seconds) {
  return WaitUntil([&] { return TextOf(err_path_).find(text) != std::string::npos; }, seconds);
}

void ToolbaseProcess::Signal(int signal) const { kill(pid_, signal); }

ToolbaseProcess::Ending ToolbaseProcess::Wait() {
  if (!reaped_) {
    while (waitpid(pid_, &wait_status_, 0) < 0 && errno == EINTR) {
    }
    reaped_ = true;
  }
  Ending ending;
  if (WIFEXITED(wait_status_)) ending.status = WEXITSTATUS(wait_status_);
  if (WIFSIGNALED(wait_status_)) ending.signal = WTERMSIG(wait_status_);
  ending.out = TextOf(out_path_);
  ending.err = TextOf(err_path_);
  return ending;
}

}  // namespace TestSupport
