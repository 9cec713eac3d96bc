// What the `network nic queue` commands share: the table of load balancer
// settings, the words for an unknown uplink, and the walk of the read
// commands over the uplinks' netqueue records.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "frame/KitDeclarations.h"
#include "nic/PnicLookup.h"

namespace HostCtl::Network {
class NetworkInfo;
class Pnic;
struct PnicNetqueueInfo;
}  // namespace HostCtl::Network

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

// The body of the read commands with one row per uplink: asks the host for
// its network information, then walks as WalkNetqueue does; each row comes
// from `newRow`, with "NIC" set to the uplink's name and the rest set by
// `fill`. Root the list of rows, or none after a message.
using NetqueueRowFill = std::function<void(Toolbase::MetaObj::MetaStruct& row,
                                           HostCtl::Network::PnicNetqueueInfo const& info)>;
void ListNetqueueRows(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                      bool byName, MissingPnicWords words,
                      std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
                      NetqueueRowFill const& fill);

// The body of the `set` commands: the uplink that "ornic" names, asked of the
// host's network information (an unknown name adds the message of `words`
// and ends it); `fill` writes the request into a fresh record and says
// whether there is anything to hand to the uplink. Root `true`.
void SetNetqueue(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                 MissingPnicWords words,
                 std::function<bool(HostCtl::Network::PnicNetqueueInfo& info)> const& fill);

}  // namespace CorvaneCli::NetworkNamespace
