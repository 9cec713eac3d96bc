// Name resolution of the simulated host: the DNS client configuration per
// netstack instance and the user's hosts file lines, both kept in the ip
// area of the host state. This machine's own resolver files are never read.
#include <algorithm>
#include <cctype>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/dns.h"
#include "hostctl/network_types.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using Sim::CheckFault;
using Sim::Operation;

// A host or domain name: dot-separated labels of letters, digits and
// hyphens, 1 to 63 characters each, neither starting nor ending with a
// hyphen; 253 characters at most; one trailing dot allowed.
bool IsValidName(std::string name) {
  if (!name.empty() && name.back() == '.') name.pop_back();
  if (name.empty() || name.size() > 253) return false;
  size_t start = 0;
  while (start <= name.size()) {
    size_t end = name.find('.', start);
    if (end == std::string::npos) end = name.size();
    size_t length = end - start;
    if (length == 0 || length > 63 || name[start] == '-' || name[end - 1] == '-') return false;
    for (size_t i = start; i < end; ++i) {
      unsigned char c = static_cast<unsigned char>(name[i]);
      if (!std::isalnum(c) && c != '-') return false;
    }
    start = end + 1;
  }
  return true;
}

bool SameName(std::string const& a, std::string const& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) ==
           std::tolower(static_cast<unsigned char>(y));
  });
}

// The index of the hosts file line for `address` (canonical) and `hostName`,
// or the list's size when there is none.
size_t FindEntry(Sim::LazyList<Sim::HostsEntryState> const& entries, std::string const& address,
                 std::string const& hostName) {
  return entries.KeyIndex(address,
                          [&](size_t i) { return SameName(entries[i].hostname, hostName); });
}

// The canonical text of an IPv4 or IPv6 address; throws for anything else.
std::string CanonicalHostAddress(std::string const& text) {
  if (Ipv4Address::IsValidAddress(text)) return Ipv4Address(text).GetStringAddress();
  if (Ipv6Address::IsValidAddress(text)) return Ipv6Address(text).GetStringAddress();
  throw HostCtlException("Invalid IP address '" + text + "'");
}

void RequireNetstack(Sim::HostModel const& host, std::string const& key) {
  if (!Sim::FindNetstack(host.ip, key)) {
    throw HostCtlException("Netstack instance " + key + " does not exist");
  }
}

}  // namespace

DnsConfigImpl::DnsConfigImpl(std::string const& netstackKey) : key_(netstackKey) {}
DnsConfigImpl::~DnsConfigImpl() = default;

void DnsConfigImpl::Refresh() {
  CheckFault(Operation::DnsConfigImpl_Refresh);
  auto const& host = Sim::ReadHost(Sim::kAreaIp);
  RequireNetstack(host, key_);
  servers_.clear();
  domains_.clear();
  for (auto const& config : host.ip.dns) {
    if (config.netstack == key_) {
      servers_ = config.servers;
      domains_ = config.search_domains;
    }
  }
}

void DnsConfigImpl::AddUserNameServer(HostCtl::Network::IpAddress const& address) {
  CheckFault(Operation::DnsConfigImpl_AddUserNameServer);
  EnsureFresh();
  std::string text = address.GetStringAddress();
  Sim::CheckDnsServer(text);
  if (std::find(servers_.begin(), servers_.end(), text) != servers_.end()) {
    throw HostCtlException("DNS server " + text + " is already configured");
  }
  servers_.push_back(text);
}

void DnsConfigImpl::RemoveNameServer(HostCtl::Network::IpAddress const& address) {
  CheckFault(Operation::DnsConfigImpl_RemoveNameServer);
  EnsureFresh();
  std::string text = address.GetStringAddress();
  auto found = std::find(servers_.begin(), servers_.end(), text);
  if (found == servers_.end()) {
    throw HostCtlException("DNS server " + text + " is not configured");
  }
  servers_.erase(found);
}

void DnsConfigImpl::RemoveNameServers() {
  CheckFault(Operation::DnsConfigImpl_RemoveNameServers);
  EnsureFresh();
  servers_.clear();
}

std::vector<std::string> DnsConfigImpl::GetNameServers() {
  CheckFault(Operation::DnsConfigImpl_GetNameServers);
  EnsureFresh();
  return servers_;
}

void DnsConfigImpl::AddUserSearchDomain(std::string const& domain) {
  CheckFault(Operation::DnsConfigImpl_AddUserSearchDomain);
  EnsureFresh();
  if (!IsValidName(domain)) {
    throw HostCtlException("Invalid search domain '" + domain + "'");
  }
  for (auto const& listed : domains_) {
    if (SameName(listed, domain)) {
      throw HostCtlException("Search domain " + domain + " is already in the list");
    }
  }
  domains_.push_back(domain);
}

void DnsConfigImpl::RemoveSearchDomain(std::string const& domain) {
  CheckFault(Operation::DnsConfigImpl_RemoveSearchDomain);
  EnsureFresh();
  auto found = std::find_if(domains_.begin(), domains_.end(),
                            [&](std::string const& listed) { return SameName(listed, domain); });
  if (found == domains_.end()) {
    throw HostCtlException("Search domain " + domain + " is not in the list");
  }
  domains_.erase(found);
}

std::string DnsConfigImpl::GetSearchDomainsString() {
  CheckFault(Operation::DnsConfigImpl_GetSearchDomainsString);
  EnsureFresh();
  std::string text;
  for (auto const& domain : domains_) {
    if (!text.empty()) text += ' ';
    text += domain;
  }
  return text;
}

void DnsConfigImpl::SaveConfig() {
  CheckFault(Operation::DnsConfigImpl_SaveConfig);
  EnsureFresh();
  Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
    RequireNetstack(host, key_);
    auto& all = host.ip.dns;
    auto found = std::find_if(all.begin(), all.end(), [&](Sim::DnsConfigState const& config) {
      return config.netstack == key_;
    });
    if (found == all.end()) {
      all.push_back({key_, {}, {}});
      found = all.end() - 1;
    }
    found->servers = servers_;
    found->search_domains = domains_;
  });
}

HostsFileEntry::HostsFileEntry(std::string ipAddress, std::string hostName,
                               std::vector<std::string> aliases, std::string comment)
    : ip_address_(std::move(ipAddress)),
      host_name_(std::move(hostName)),
      aliases_(std::move(aliases)),
      comment_(std::move(comment)) {}

HostsFile::HostsFile() = default;
HostsFile::~HostsFile() = default;

void HostsFile::Refresh() { CheckFault(Operation::HostsFile_Refresh); }

void HostsFile::AddEntryFromUser(std::string const& ip, std::string const& hostName,
                                 std::vector<std::string> const& aliases,
                                 std::string const& comment) {
  CheckFault(Operation::HostsFile_AddEntryFromUser);
  std::string address = CanonicalHostAddress(ip);
  if (!IsValidName(hostName)) throw HostCtlException("Invalid host name '" + hostName + "'");
  for (auto const& alias : aliases) {
    if (!IsValidName(alias)) throw HostCtlException("Invalid alias '" + alias + "'");
  }
  if (comment.find_first_of("\r\n") != std::string::npos) {
    throw HostCtlException("The comment must fit on one line");
  }
  Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
    if (FindEntry(host.ip.hosts, address, hostName) < host.ip.hosts.size()) {
      throw HostCtlException("An entry for " + address + " " + hostName + " already exists");
    }
    host.ip.hosts.push_back({address, hostName, aliases, comment});
  });
}

void HostsFile::RemoveEntryFromUser(std::string const& ip, std::string const& hostName) {
  CheckFault(Operation::HostsFile_RemoveEntryFromUser);
  std::string address = CanonicalHostAddress(ip);
  Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
    auto& entries = host.ip.hosts;
    size_t const found = FindEntry(entries, address, hostName);
    if (found == entries.size()) {
      throw HostCtlException("No entry for " + address + " " + hostName + " in the hosts file");
    }
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(found));
  });
}

HostsFileEntryList HostsFile::GetEntriesFromConfig() {
  CheckFault(Operation::HostsFile_GetEntriesFromConfig);
  HostsFileEntryList entries;
  for (auto const& entry : Sim::ReadHost(Sim::kAreaIp).ip.hosts) {
    entries.push_back(
        std::make_shared<HostsFileEntry>(entry.ip, entry.hostname, entry.aliases, entry.comment));
  }
  return entries;
}

}  // namespace OrvkCtl::Network
