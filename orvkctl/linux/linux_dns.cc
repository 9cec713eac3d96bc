// The resolver configuration of each netstack instance and the hosts file:
// etc/resolv.conf and etc/hosts under the root folder for defaultTcpipStack,
// etc/netns/<key>/resolv.conf for another (where `ip netns exec` finds it).
// These files are often bind mounts or links to a local resolver's, so they
// are rewritten in place, and every line the host did not ask to change
// stays as it was.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <sstream>

#include "kernel.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::DnsConfigState;
using Sim::HostsEntryState;

std::string ResolverPath(std::string const& netstack) {
  std::string const netns = NamespaceOf(netstack);
  return RootFolder() + (netns.empty() ? "etc/resolv.conf" : "etc/netns/" + netns + "/resolv.conf");
}

std::string HostsPath() { return RootFolder() + "etc/hosts"; }

// The file's text; "" when there is none.
std::string ReadText(std::string const& path) { return ReadFile(path).value_or(""); }

// Writes `text` into the file itself, through a link or a bind mount alike.
void WriteInPlace(std::string const& path, std::string const& text) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) FailErrno("write " + path, errno);
  bool const written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  int const error = errno;
  close(fd);
  if (!written) FailErrno("write " + path, error);
}

std::vector<std::string> Lines(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> Words(std::string const& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

DnsConfigState ParseResolver(std::string const& netstack, std::string const& text) {
  DnsConfigState config{netstack, {}, {}};
  for (auto const& line : Lines(text)) {
    auto words = Words(line.substr(0, line.find_first_of("#;")));
    if (words.size() >= 2 && words[0] == "nameserver") config.servers.push_back(words[1]);
    // The last of "search" and "domain" is the one in force.
    if (!words.empty() && (words[0] == "search" || words[0] == "domain")) {
      config.search_domains.assign(words.begin() + 1, words.end());
    }
  }
  return config;
}

// `text` with its name servers and, when `search` is set, its search list
// replaced by `config`'s, where they were.
std::string ResolverText(std::string const& text, DnsConfigState const& config, bool servers,
                         bool search) {
  std::string out;
  bool servers_placed = !servers;
  bool search_placed = !search;
  auto put_servers = [&] {
    for (auto const& server : config.servers) out += "nameserver " + server + "\n";
    servers_placed = true;
  };
  auto put_search = [&] {
    if (!config.search_domains.empty()) {
      out += "search";
      for (auto const& domain : config.search_domains) out += " " + domain;
      out += "\n";
    }
    search_placed = true;
  };
  for (auto const& line : Lines(text)) {
    auto const words = Words(line);
    std::string const first = words.empty() ? "" : words[0];
    if (servers && first == "nameserver") {
      if (!servers_placed) put_servers();
      continue;
    }
    if (search && (first == "search" || first == "domain")) {
      if (!search_placed) put_search();
      continue;
    }
    out += line + "\n";
  }
  if (!search_placed) put_search();
  if (!servers_placed) put_servers();
  return out;
}

// One line of a hosts file, as an entry when it is one.
bool ParseHostsLine(std::string const& line, HostsEntryState& entry) {
  size_t const hash = line.find('#');
  auto words = Words(line.substr(0, hash));
  if (words.size() < 2) return false;
  entry.ip = words[0];
  entry.hostname = words[1];
  entry.aliases.assign(words.begin() + 2, words.end());
  entry.comment.clear();
  if (hash != std::string::npos) {
    entry.comment = line.substr(hash + 1);
    entry.comment.erase(0, entry.comment.find_first_not_of(" \t"));
  }
  return true;
}

template <class List>
bool Same(List const& a, List const& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

std::string HostsLine(HostsEntryState const& entry) {
  std::string line = entry.ip + "\t" + entry.hostname;
  for (auto const& alias : entry.aliases) line += " " + alias;
  if (!entry.comment.empty()) line += "\t# " + entry.comment;
  return line + "\n";
}

// `text` holding the entries `entries`: lines of entries that stay are kept
// as they were written, the others' removed, new ones added at the end.
std::string HostsText(std::string const& text, std::vector<HostsEntryState> const& entries) {
  std::vector<bool> placed(entries.size(), false);
  std::string out;
  for (auto const& line : Lines(text)) {
    HostsEntryState entry;
    if (!ParseHostsLine(line, entry)) {
      out += line + "\n";
      continue;
    }
    for (size_t i = 0; i < entries.size(); ++i) {
      if (placed[i] || !(entries[i] == entry)) continue;
      placed[i] = true;
      out += line + "\n";
      break;
    }
  }
  for (size_t i = 0; i < entries.size(); ++i) {
    if (!placed[i]) out += HostsLine(entries[i]);
  }
  return out;
}

DnsConfigState ConfigOf(HostModel const& host, std::string const& netstack) {
  for (auto const& config : host.ip.dns) {
    if (config.netstack == netstack) return config;
  }
  return {netstack, {}, {}};
}

// A step that rewrites file `path` with `make` applied to its text, and
// writes back the text it found.
Step RewriteStep(std::string const& what, std::string const& path,
                 std::function<std::string(std::string const&)> make) {
  auto found = std::make_shared<std::string>();
  return {what,
          [=] {
            *found = ReadText(path);
            WriteInPlace(path, make(*found));
          },
          [=] { WriteInPlace(path, *found); }};
}

}  // namespace

void ReadResolution(HostModel& host) {
  host.ip.dns.clear();
  for (auto const& netstack : host.ip.netstacks) {
    auto config = ParseResolver(netstack.key, ReadText(ResolverPath(netstack.key)));
    if (!config.servers.empty() || !config.search_domains.empty()) {
      host.ip.dns.push_back(std::move(config));
    }
  }
  host.ip.hosts.clear();
  for (auto const& line : Lines(ReadText(HostsPath()))) {
    HostsEntryState entry;
    if (ParseHostsLine(line, entry)) host.ip.hosts.push_back(std::move(entry));
  }
}

void PlanResolution(HostModel const& before, HostModel const& after, Plan& plan) {
  for (auto const& netstack : after.ip.netstacks) {
    if (!Sim::FindNetstack(before.ip, netstack.key)) continue;
    auto const was = ConfigOf(before, netstack.key);
    auto const now = ConfigOf(after, netstack.key);
    bool const servers = was.servers != now.servers;
    bool const search = was.search_domains != now.search_domains;
    if (!servers && !search) continue;
    plan.push_back(RewriteStep("set the DNS configuration of " + netstack.key,
                               ResolverPath(netstack.key), [=](std::string const& text) {
                                 return ResolverText(text, now, servers, search);
                               }));
  }
  if (!Same(before.ip.hosts, after.ip.hosts)) {
    std::vector<HostsEntryState> const entries(after.ip.hosts.begin(), after.ip.hosts.end());
    plan.push_back(RewriteStep("write the hosts file", HostsPath(),
                               [entries](std::string const& text) { return HostsText(text, entries); }));
  }
}

// An instance whose configuration was emptied shows no entry when read.
void KeepResolution(HostModel const& after, HostModel& reread) {
  for (auto const& config : after.ip.dns) {
    bool const empty = config.servers.empty() && config.search_domains.empty();
    bool const held = std::any_of(reread.ip.dns.begin(), reread.ip.dns.end(),
                                  [&](auto const& other) { return other.netstack == config.netstack; });
    if (empty && !held) reread.ip.dns.push_back(config);
  }
  FollowOrder(after.ip.dns, reread.ip.dns, [](DnsConfigState const& config) { return config.netstack; });
}

}  // namespace OrvkCtl::Linux
