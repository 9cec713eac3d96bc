// Open sockets of each netstack instance: the kernel's socket tables
// (/proc/net/{tcp,udp,raw}{,6} as seen from inside the instance's
// namespace), TCP, UDP and raw.
#include <arpa/inet.h>
#include <sys/socket.h>

#include <cstdio>
#include <cstring>
#include <fstream>

#include "kernel.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::ConnectionState;

// The host numbers TCP states from closed (0) to time-wait (10); the
// kernel from established (1) to closing (11).
uint32_t TcpState(unsigned kernel) {
  static constexpr uint32_t kStates[] = {0, 4, 2, 3, 6, 9, 10, 0, 5, 8, 1, 7};
  return kernel < std::size(kStates) ? kStates[kernel] : 0;
}

// "0100007F:0016" (IPv4) or 32 hex digits and a port (IPv6), as the kernel
// prints them: each 32-bit word in the machine's order.
bool Endpoint(char const* text, bool ipv6, std::string& address, uint16_t& port) {
  uint32_t words[4] = {};
  int const count = ipv6 ? 4 : 1;
  for (int i = 0; i < count; ++i) {
    char word[9] = {};
    std::memcpy(word, text + 8 * i, 8);
    words[i] = static_cast<uint32_t>(std::strtoul(word, nullptr, 16));
  }
  char const* colon = text + 8 * count;
  if (*colon != ':') return false;
  port = static_cast<uint16_t>(std::strtoul(colon + 1, nullptr, 16));
  char buffer[INET6_ADDRSTRLEN] = {};
  if (!inet_ntop(ipv6 ? AF_INET6 : AF_INET, words, buffer, sizeof buffer)) return false;
  address = buffer;
  return true;
}

void ReadTable(std::string const& netstack, char const* file, char const* protocol, bool ipv6,
               std::vector<ConnectionState>& out) {
  std::ifstream table(std::string("/proc/thread-self/net/") + file);
  std::string line;
  std::getline(table, line);  // the heading
  while (std::getline(table, line)) {
    char local[64], remote[64];
    unsigned state = 0;
    unsigned long send_q = 0, recv_q = 0;
    if (std::sscanf(line.c_str(), " %*u: %63s %63s %x %lx:%lx", local, remote, &state, &send_q,
                    &recv_q) != 5) {
      continue;
    }
    ConnectionState socket;
    socket.netstack = netstack;
    socket.protocol = protocol;
    socket.send_q = static_cast<uint32_t>(send_q);
    socket.recv_q = static_cast<uint32_t>(recv_q);
    socket.state = std::strcmp(protocol, "tcp") == 0 ? TcpState(state) : 0;
    if (!Endpoint(local, ipv6, socket.local_address, socket.local_port) ||
        !Endpoint(remote, ipv6, socket.foreign_address, socket.foreign_port)) {
      continue;
    }
    out.push_back(std::move(socket));
  }
}

}  // namespace

void ReadConnections(HostModel& host) {
  std::vector<ConnectionState> sockets;
  for (auto const& netstack : host.ip.netstacks) {
    InNamespace(NamespaceOf(netstack.key), [&] {
      for (bool ipv6 : {false, true}) {
        ReadTable(netstack.key, ipv6 ? "tcp6" : "tcp", "tcp", ipv6, sockets);
        ReadTable(netstack.key, ipv6 ? "udp6" : "udp", "udp", ipv6, sockets);
        ReadTable(netstack.key, ipv6 ? "raw6" : "raw", "ip", ipv6, sockets);
      }
    });
  }
  host.ip.connections = std::move(sockets);
}

}  // namespace OrvkCtl::Linux
