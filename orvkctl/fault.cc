#include "fault.h"

#include <cstdlib>
#include <map>
#include <sstream>

#include "hostctl/lib.h"

namespace OrvkCtl::Sim {
namespace {

std::map<std::string, std::string>& Faults() {
  static std::map<std::string, std::string> faults = [] {
    std::map<std::string, std::string> from_environment;
    if (char const* text = std::getenv("TOOLBASE_HOST_FAULTS")) {
      std::istringstream lines(text);
      std::string line;
      while (std::getline(lines, line)) {
        auto eq = line.find('=');
        if (eq != std::string::npos) from_environment[line.substr(0, eq)] = line.substr(eq + 1);
      }
    }
    return from_environment;
  }();
  return faults;
}

}  // namespace

void CheckFault(char const* operation) {
  auto& faults = Faults();
  if (faults.empty()) return;
  auto it = faults.find(operation);
  if (it == faults.end()) it = faults.find("*");
  if (it != faults.end()) throw HostCtl::Lib::HostCtlException(it->second);
}

void SetFaultForTest(std::string const& operation, std::string const& text) {
  Faults()[operation] = text;
}

void ClearFaultsForTest() { Faults().clear(); }

}  // namespace OrvkCtl::Sim
