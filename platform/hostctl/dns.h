// Name resolution of the host: the DNS client configuration of a netstack
// instance, and the user's entries of the hosts file.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace HostCtl::Network {
class IpAddress;
}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The name servers and search domains of one netstack instance, by key.
// Making the object reads nothing; the first question reads the
// configuration, and changes stay in this object until SaveConfig writes
// them. Every operation throws HostCtl::Lib::HostCtlException when the host
// fails or the instance does not exist.
class DnsConfigImpl : public virtual Lib::OrvkCtlObject {
 public:
  explicit DnsConfigImpl(std::string const& netstackKey);
  ~DnsConfigImpl() override;
  void Refresh() override;

  // Appends a server; throws for one already configured.
  void AddUserNameServer(HostCtl::Network::IpAddress const& address);
  // Throws for a server that is not configured.
  void RemoveNameServer(HostCtl::Network::IpAddress const& address);
  void RemoveNameServers();
  // The servers, in the order of use, as canonical address texts.
  std::vector<std::string> GetNameServers();

  // Appends a domain; throws for a malformed name and for one already listed.
  void AddUserSearchDomain(std::string const& domain);
  // Throws for a domain that is not listed.
  void RemoveSearchDomain(std::string const& domain);
  // The domains in the order of use, separated by single blanks; empty when
  // there are none.
  std::string GetSearchDomainsString();

  // Writes the configuration as this object holds it.
  void SaveConfig();

 private:
  std::string key_;
  std::vector<std::string> servers_;
  std::vector<std::string> domains_;
};

// One line of the hosts file.
class HostsFileEntry {
 public:
  HostsFileEntry(std::string ipAddress, std::string hostName, std::vector<std::string> aliases,
                 std::string comment);
  std::string const& GetIpAddress() const { return ip_address_; }
  std::string const& GetHostName() const { return host_name_; }
  std::vector<std::string> const& GetAliases() const { return aliases_; }
  std::string const& GetComment() const { return comment_; }

 private:
  std::string ip_address_;
  std::string host_name_;
  std::vector<std::string> aliases_;
  std::string comment_;
};

using HostsFileEntryList = std::vector<std::shared_ptr<HostsFileEntry>>;

// The hosts file of the host. Making the object reads nothing; every
// operation reads or changes the file at once and throws
// HostCtl::Lib::HostCtlException when the host fails.
class HostsFile : public virtual Lib::OrvkCtlObject {
 public:
  HostsFile();
  ~HostsFile() override;
  void Refresh() override;

  // Adds a line. Refuses an address that is not IPv4 or IPv6, a malformed
  // host name or alias, a comment that spans lines, and an entry with the
  // same address and host name as one already there.
  void AddEntryFromUser(std::string const& ip, std::string const& hostName,
                        std::vector<std::string> const& aliases, std::string const& comment);
  // Removes the line with that address and host name; throws when there is
  // none.
  void RemoveEntryFromUser(std::string const& ip, std::string const& hostName);
  // The lines the user made, in file order (the host's own loopback lines are
  // not among them).
  HostsFileEntryList GetEntriesFromConfig();
};

}  // namespace OrvkCtl::Network
