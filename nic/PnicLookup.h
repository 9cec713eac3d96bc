// Finding an uplink by the name the user gave, with the words each command
// uses for one the host does not have.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class NetworkInfo;
class Pnic;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// The wordings for an uplink that the host does not have.
enum class MissingPnicWords {
  InvalidName,  // "Invalid PNIC name <name>"
  NotFound,     // "Pnic with name <name> not found"
  NicNotFound,  // "NIC with name <name> not found"
  NoPnic,       // "There is no pnic with name <name>"
};

// The message for the missing uplink `name`.
std::string MissingPnicMessage(MissingPnicWords words, std::string const& name);

// The uplink `name`; null after adding the message of `words` to `output`.
// A failure of the host passes on as HostCtlException.
std::unique_ptr<HostCtl::Network::Pnic> FindNamedPnic(
    HostCtl::Network::NetworkInfo& networkInfo, std::string const& name,
    Toolbase::CallSpec::Output& output, MissingPnicWords words = MissingPnicWords::NotFound);

// The row of the dumps and the self test: the text fields `first` and
// "Value" in the record `structure`.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> TextPairStructure(std::string const& structure,
                                                                 std::string const& first);

// The help text of "nic-name" where a command works on one NIC.
extern const char kConfiguredNicHelp[];

// The body of `nic up` and `nic down`: the uplink "nic-name" names, with the
// words NoPnic when the host does not have it, gets the administrative state
// `up`; root `true`. A failure of the host passes on as HostCtlException.
void SetNamedPnicAdminUp(HostCtl::Network::NetworkInfo& networkInfo,
                         Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                         bool up);

// The uplinks a command runs over: the one `name` names, or all of them when
// `name` is null. False after adding the message of `words` for a name the
// host does not have.
bool SelectPnics(HostCtl::Network::NetworkInfo& networkInfo, std::string const* name,
                 Toolbase::CallSpec::Output& output, MissingPnicWords words,
                 std::vector<std::unique_ptr<HostCtl::Network::Pnic>>& pnics);

// The list read pattern of the NIC commands. The work list is the uplink
// that `option` names, or all uplinks when it is absent; an unknown name adds
// the message of `words` and gives null. Per uplink: a row from `newRow` with
// "NIC" set to its name, then `fill` in a try of its own; when that throws
// HostCtlException, `fallback` fills the value fields instead, so that one
// failing device does not spoil the list. Other failures pass on.
using PnicRowFill = std::function<void(HostCtl::Network::Pnic&, Toolbase::MetaObj::MetaStruct&)>;
std::shared_ptr<Toolbase::MetaObj::MetaList> PnicRows(
    HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
    std::string const& option, Toolbase::CallSpec::Output& output, MissingPnicWords words,
    std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
    PnicRowFill const& fill, std::function<void(Toolbase::MetaObj::MetaStruct&)> const& fallback);

}  // namespace CorvaneCli::NetworkNamespace
