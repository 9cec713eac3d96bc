// Commands over a state file: the input is the host state file, and commands
// that read every area, then a few that change it, run on it through the
// plug-in as `toolbase` runs them. Whatever the file holds, a command
// succeeds or fails with a message (never a crash); the reading commands
// leave the file as it was, and a file refused as corrupt stays untouched.
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "cli.h"
#include "host_store.h"
#include "toolbase/auto_cli.h"

namespace {

std::string const& StatePath() {
  static std::string const path =
      "/tmp/toolbase-fuzz-state-commands-" + std::to_string(getpid()) + ".json";
  return path;
}

Toolbase::AutoCli::NamespaceNode& Root() {
  static auto root = [] {
    setenv("TOOLBASE_HOST_STATE", StatePath().c_str(), 1);
    auto node = Toolbase::Cli::NewRoot();
    Toolbase::Cli::LoadPlugins(TOOLBASE_PLUGIN_DIR, *node);
    return node;
  }();
  return *root;
}

std::string FileText() {
  std::ifstream in(StatePath(), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Runs `line` on the host as the file has it: words split at blanks, a '~'
// standing for a blank within a word.
int Run(std::string const& line, std::string& err) {
  std::vector<std::string> args;
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    for (char& c : word) c = c == '~' ? ' ' : c;
    args.push_back(word);
  }
  OrvkCtl::Sim::ResetHostForTest();  // each command a process of its own
  std::ostringstream out;
  std::ostringstream errors;
  int const status = Toolbase::Cli::Run(args, Root(), out, errors);
  err = errors.str();
  if (status < 0 || status > 2) __builtin_trap();
  if (status != 0 && err.empty()) __builtin_trap();  // a failure always says why
  return status;
}

// Commands that read every area of the host, its long lists and the records
// that commands look up by name.
char const* const kReading[] = {
    "network firewall get",
    "network firewall ruleset list",
    "network firewall ruleset rule list",
    "network firewall ruleset allowedip list",
    "network firewall ruleset client get -r webManagement",
    "network nic list",
    "network nic get -n ornic0",
    "network nic get -n ornic4",
    "network nic stats get -n ornic2",
    "network nic pauseParams list",
    "network nic coalesce get",
    "network nic ring current get -n ornic2",
    "network nic hwCap activated list",
    "network nic software list",
    "network nic queue count get",
    "network nic queue loadbalancer plugin list",
    "network nic dcb status get -n ornic2",
    "network nic attachment list",
    "network nic vlan stats get -n ornic0",
    "network nic cso get",
    "network sriovnic list",
    "network sriovnic vf list -n ornic2",
    "network ip get",
    "network ip interface list",
    "network ip interface ipv4 get",
    "network ip interface ipv6 get",
    "network ip interface ipv6 address list",
    "network ip interface tag get -i orvk0",
    "network ip route ipv4 list",
    "network ip route ipv6 list",
    "network ip neighbor list",
    "network ip dns server list",
    "network ip dns search list",
    "network ip hosts list",
    "network ip connection list",
    "network ip netstack list",
    "network ip ipsec sa list",
    "network ip ipsec sp list",
    "network multicast group list",
    "network vswitch standard list",
    "network vswitch standard portgroup list",
    "network vswitch standard policy failover get -v vSwitch0",
    "network vswitch standard portgroup policy failover get -p VM~Network",
    "network vswitch dvs corvane list",
    "network vswitch dvs corvane lacp config get",
    "network vswitch dvs corvane lacp status get",
    "network vswitch dvs corvane lacp stats get",
    "network vm list",
    "network vm port list -w 1000271",
    "network port stats get -p 33554437",
    "network port filter stats get -p 33554437",
    "network ens lcore list",
    "network ens maxLcores get",
};

// Commands that change the host, on the areas of the reading ones.
char const* const kChanging[] = {
    "network firewall set -e false",
    "network firewall ruleset set -r sshServer -e false",
    "network nic down -n ornic0",
    "network ip interface ipv4 set -i orvk0 -t dhcp",
    "network vswitch standard portgroup add -p fuzz -v vSwitch0",
    "network vswitch standard uplink remove -u ornic0 -v vSwitch0",
    "network ip interface remove -i orvk0",
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  std::string err;
  std::ofstream(StatePath(), std::ios::binary | std::ios::trunc) << text;
  for (char const* line : kReading) {
    Run(line, err);
    if (FileText() != text) __builtin_trap();  // reading changed the file
  }
  // An earlier change may succeed where its areas are sound, so each
  // refusal is checked against the file as that command found it.
  for (char const* line : kChanging) {
    std::string const before = FileText();
    bool const corrupt = Run(line, err) == 1 && err.find(" is corrupt") != std::string::npos;
    if (corrupt && FileText() != before) __builtin_trap();  // a corrupt file was changed
  }
  return 0;
}
