#include "fault.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
namespace {

using HostCtl::Lib::HostCtlException;

// The text of each operation's fault, and of "*"; none set for most runs.
struct Faults {
  std::vector<std::pair<Operation, std::string>> of;
  std::optional<std::string> every;
  bool any = false;

  // False, setting nothing, when `name` is neither an operation's nor "*".
  bool Set(std::string_view name, std::string text) {
    Operation operation;
    if (name == "*") {
      every = std::move(text);
    } else if (FindOperation(name, operation)) {
      auto at = std::ranges::find(of, operation, &std::pair<Operation, std::string>::first);
      if (at == of.end()) at = of.insert(at, {operation, {}});
      at->second = std::move(text);
    } else {
      return false;
    }
    any = true;
    return true;
  }
};

std::string NoSuchOperation(std::string_view name) {
  return "No host operation is named \"" + std::string(name) +
         "\" (a fault names one as Class::Operation, or \"*\")";
}

// TOOLBASE_HOST_FAULTS, read once. An error in it stays, to be thrown by
// every host operation.
struct EnvironmentFaults {
  Faults faults;
  std::optional<std::string> error;
};

EnvironmentFaults ReadEnvironment() {
  EnvironmentFaults read;
  char const* text = std::getenv("TOOLBASE_HOST_FAULTS");
  if (!text) return read;
  std::string_view rest(text);
  while (!rest.empty() && !read.error) {
    size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.empty()) continue;
    size_t eq = line.find('=');
    if (eq == std::string_view::npos) {
      read.error = "TOOLBASE_HOST_FAULTS: \"" + std::string(line) + "\" is not Class::Operation=text";
    } else if (!read.faults.Set(line.substr(0, eq), std::string(line.substr(eq + 1)))) {
      read.error = "TOOLBASE_HOST_FAULTS: " + NoSuchOperation(line.substr(0, eq));
    }
  }
  return read;
}

EnvironmentFaults& TheFaults() {
  static EnvironmentFaults faults = ReadEnvironment();
  return faults;
}

}  // namespace

bool FindOperation(std::string_view name, Operation& out) {
  // The names are sorted but for the last one: few enough to look through.
  for (size_t i = 0; i < kOperationCount; ++i) {
    if (kOperationNames[i] == name) {
      out = static_cast<Operation>(i);
      return true;
    }
  }
  return false;
}

void CheckFault(Operation operation) {
  auto& state = TheFaults();
  if (state.error) [[unlikely]] throw HostCtlException(*state.error);
  if (!state.faults.any) [[likely]] return;
  auto const& of = state.faults.of;
  auto at = std::ranges::find(of, operation, &std::pair<Operation, std::string>::first);
  if (at != of.end()) throw HostCtlException(at->second);
  if (state.faults.every) throw HostCtlException(*state.faults.every);
}

void SetFaultForTest(std::string const& operation, std::string const& text) {
  if (!TheFaults().faults.Set(operation, text)) throw HostCtlException(NoSuchOperation(operation));
}

void ClearFaultsForTest() {
  TheFaults().faults = {};
}

}  // namespace OrvkCtl::Sim
