// What the `network nic queue` commands share: the table of load balancer
// settings, the words for an unknown uplink, and the walk of the read
// commands over the uplinks' netqueue records.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "nic/PnicLookup.h"

namespace HostCtl::Network {
class NetworkInfo;
class Pnic;
struct PnicNetqueueInfo;
}  // namespace HostCtl::Network
namespace Toolbase::CallSpec {
class Input;
class Output;
}  // namespace Toolbase::CallSpec

namespace CorvaneCli::NetworkNamespace {

// One load balancer setting: its column, its parameter of
// `loadbalancer set` with the description, and whether the first letter of
// its column tells support ("S"/"U") or is always "N".
struct LbSetting {
  char const* column;
  char const* parameter;
  char const* description;
  bool showsSupport;
};

// The eleven settings, in the order of the record, the columns and the
// parameters; setting i is bit 1 << i of the settings mask.
extern const LbSetting kLbSettings[11];

// Makes the rows of one uplink from its netqueue record.
using NetqueueRows =
    std::function<void(HostCtl::Network::Pnic& pnic, HostCtl::Network::PnicNetqueueInfo const&)>;

// The read walk. With the optional `ornic` given (for commands that have it:
// `byName`), only that uplink, and a failing read is the command's error;
// otherwise all uplinks, and one whose read fails makes no row. Returns
// false after adding a message to `output`; the caller then sets no root.
bool WalkNetqueue(HostCtl::Network::NetworkInfo& networkInfo,
                  Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  bool byName, MissingPnicWords words, NetqueueRows const& rows);

}  // namespace CorvaneCli::NetworkNamespace
