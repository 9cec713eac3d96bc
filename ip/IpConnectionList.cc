#include <string>
#include <vector>

#include "hostctl/network_info.h"
#include "hostctl/resource.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kType = "type";
const std::string kAll = "all";
const std::string kTcp = "tcp";
const std::string kUdp = "udp";
const std::string kIp = "ip";
const std::string kProto = "Proto";
const std::string kRecvQ = "Recv Q";
const std::string kSendQ = "Send Q";
const std::string kLocalAddress = "Local Address";
const std::string kForeignAddress = "Foreign Address";
const std::string kState = "State";
const std::string kWorldId = "World ID";
const std::string kCcAlgo = "CC Algo";
const std::string kWorldName = "World Name";

// The TCP state words by state number; numbers past the table have none.
char const* const kStateWords[] = {"CLOSED",      "LISTEN",     "SYN_SENT",   "RCVD",
                                   "ESTABLISHED", "CLOSE_WAIT", "FIN_WAIT_1", "CLOSING",
                                   "LAST_ACK",    "FIN_WAIT_2", "TIME_WAIT"};

std::string StateWord(uint32_t state) {
  return state < std::size(kStateWords) ? kStateWords[state] : "";
}

// "[::1]:22" for an address with colons, "127.0.0.1:22" otherwise.
std::string Endpoint(std::string const& address, uint16_t port) {
  std::string portText = std::to_string(port);
  if (address.find(':') != std::string::npos) return "[" + address + "]:" + portText;
  return address + ":" + portText;
}
}  // namespace

NETWORK_COMMAND_NEW(IpConnectionList, Rows)

IpConnectionList::IpConnectionList() {
  SetDescription("List active TCP/IP connections");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(
      "fields:IpConnection",
      "Proto,Recv Q,Send Q,Local Address,Foreign Address,State,World ID,CC Algo,World Name");
}

std::shared_ptr<MetaStruct> IpConnectionList::GetOutputStructure() {
  auto result = MetaStruct::New("IpConnection");
  result->SetField(kProto, MetaString::New());
  result->SetField(kRecvQ, MetaInt::New());
  result->SetField(kSendQ, MetaInt::New());
  result->SetField(kLocalAddress, MetaString::New());
  result->SetField(kForeignAddress, MetaString::New());
  result->SetField(kState, MetaString::New());
  result->SetField(kWorldId, MetaInt::New());
  result->SetField(kCcAlgo, MetaString::New());
  result->SetField(kWorldName, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpConnectionList::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  auto type = Optional(kType, ParameterType::String, "t", "Connection type : %ENUM%");
  auto types = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  types->AddStringEnum("ip");
  types->AddStringEnum("tcp");
  types->AddStringEnum("udp");
  types->AddStringEnum("all");
  type->SetConstraint(types);
  spec->AddParameter(type);
  return spec;
}

void IpConnectionList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string type = kAll;
    std::string key = NetstackOrDefault(*input);
    if (input->HasParameter(kType)) type = input->GetParameter(kType);
    // TCP rows first, then UDP, then raw IP.
    for (auto const* protocol : {&kTcp, &kUdp, &kIp}) {
      if (type != kAll && type != *protocol) continue;
      OrvkCtl::Network::NetworkInfoImpl networkInfo;
      OrvkCtl::Resource::ResourceInfoImpl resourceInfo;
      std::vector<HostCtl::Network::TcpIpConnection> connections;
      if (protocol == &kTcp) {
        networkInfo.GetCurrentTcpOrvikConnections(connections, key);
      } else if (protocol == &kUdp) {
        networkInfo.GetCurrentUdpOrvikConnections(connections, key);
      } else {
        networkInfo.GetCurrentIpOrvikConnections(connections, key);
      }
      for (auto const& connection : connections) {
        auto row = GetOutputStructure();
        row->SetField(kProto, *protocol);
        row->SetField(kRecvQ, connection.recvQ);
        row->SetField(kSendQ, connection.sendQ);
        row->SetField(kLocalAddress, Endpoint(connection.localAddress, connection.localPort));
        row->SetField(kForeignAddress, Endpoint(connection.foreignAddress, connection.foreignPort));
        row->SetField(kState, StateWord(connection.state));
        row->SetField(kCcAlgo, connection.ccAlgo);
        row->SetField(kWorldId, connection.worldId);
        row->SetField(kWorldName, resourceInfo.GetWorldName(connection.worldId));
        list->Add(row);
      }
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get connection list.\n" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
