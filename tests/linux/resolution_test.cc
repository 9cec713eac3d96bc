// DNS configuration, hosts file and connections of a linux host: files
// under the sandbox's root folder, sockets of the sandbox's namespace.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

class ResolutionTest : public LinuxHostTest {
 protected:
  static std::string Root() { return std::getenv("TOOLBASE_LINUX_ROOT"); }

  static std::string Read(std::string const& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  static void Write(std::string const& path, std::string const& text) {
    std::ofstream(path) << text;
  }
};

TEST_F(ResolutionTest, DnsChangesRewriteOnlyTheirLinesInPlace) {
  // The resolver file is a link to another's, as with a local resolver.
  Write(Root() + "/resolver.conf", "# by hand\noptions edns0\nnameserver 192.0.2.53\n");
  Shell("ln -sf " + Root() + "/resolver.conf " + Root() + "/etc/resolv.conf");
  Ok({"network", "ip", "dns", "server", "add", "-s", "192.0.2.54"});
  Ok({"network", "ip", "dns", "search", "add", "-d", "example.org"});
  Ok({"network", "ip", "dns", "server", "remove", "-s", "192.0.2.53"});
  EXPECT_EQ(Read(Root() + "/resolver.conf"),
            "# by hand\noptions edns0\nnameserver 192.0.2.54\nsearch example.org\n");
  EXPECT_FALSE(Shell("test -L " + Root() + "/etc/resolv.conf && echo link").empty());

  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess({"network", "ip", "dns", "server", "list"});
  EXPECT_NE(other.out.find("192.0.2.54"), std::string::npos) << other.out;

  // Another instance has a file of its own.
  Ok({"network", "ip", "netstack", "add", "-N", "blue"});
  Ok({"network", "ip", "dns", "server", "add", "-s", "192.0.2.99", "-N", "blue"});
  EXPECT_EQ(Read(Root() + "/etc/netns/blue/resolv.conf"), "nameserver 192.0.2.99\n");
  EXPECT_EQ(Read(Root() + "/resolver.conf").find("192.0.2.99"), std::string::npos);
}

TEST_F(ResolutionTest, HostsEntriesComeAndGoKeepingOtherLines) {
  Write(Root() + "/etc/hosts", "127.0.0.1\tlocalhost\n# keep me\n10.0.0.9  old.example  old # by hand\n");
  auto const listed = json::parse(Ok({"network", "ip", "hosts", "list", "--formatter", "json"}));
  ASSERT_EQ(listed.size(), 2u) << listed;
  EXPECT_EQ(listed[1]["Comment"], "by hand");

  Ok({"network", "ip", "hosts", "add", "-I", "10.1.0.40", "-H", "db.example.com", "-A", "db", "-C",
      "Database"});
  Ok({"network", "ip", "hosts", "remove", "-I", "10.0.0.9", "-H", "old.example"});
  EXPECT_EQ(Read(Root() + "/etc/hosts"),
            "127.0.0.1\tlocalhost\n# keep me\n10.1.0.40\tdb.example.com db\t# Database\n");
  Refused({"network", "ip", "hosts", "add", "-I", "bad", "-H", "x"}, "bad");
  Refused({"network", "ip", "hosts", "remove", "-I", "10.0.0.9", "-H", "old.example"}, "No entry");
  EXPECT_EQ(Read(Root() + "/etc/hosts"),
            "127.0.0.1\tlocalhost\n# keep me\n10.1.0.40\tdb.example.com db\t# Database\n");
}

TEST_F(ResolutionTest, ConnectionsAreTheKernelsSockets) {
  int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(8123);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  int datagram = socket(AF_INET6, SOCK_DGRAM, 0);
  sockaddr_in6 any{};
  any.sin6_family = AF_INET6;
  any.sin6_port = htons(5353);
  ASSERT_EQ(bind(datagram, reinterpret_cast<sockaddr*>(&any), sizeof any), 0);

  auto const rows = json::parse(Ok({"network", "ip", "connection", "list", "--formatter", "json"}));
  std::vector<std::string> listed;
  for (auto const& row : rows) {
    listed.push_back(row["Proto"].get<std::string>() + " " +
                     row["Local Address"].get<std::string>() + " " +
                     row["State"].get<std::string>());
  }
  std::sort(listed.begin(), listed.end());
  EXPECT_EQ(listed, (std::vector<std::string>{"tcp 127.0.0.1:8123 LISTEN", "udp [::]:5353 CLOSED"}));
  // The same as the kernel's own tool reports.
  std::string const kernel = Shell("ss -H -tuan");
  EXPECT_NE(kernel.find("127.0.0.1:8123"), std::string::npos) << kernel;
  EXPECT_NE(kernel.find(":5353"), std::string::npos) << kernel;
  close(listener);
  close(datagram);
}

}  // namespace
}  // namespace LinuxTest
