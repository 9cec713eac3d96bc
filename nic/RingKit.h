// What `nic ring current get` and `nic ring preset get` share: one read of the
// ring records of the NIC that "nic-name" names, shown as one row. They differ
// in the record they show and in the names it stands under.
#pragma once

#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class NetworkInfo;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

enum class RingView {
  Current,  // the current sizes, as "RX", "RX Mini", "RX Jumbo", "TX"
  Preset,   // the maximums, under those names and again as "Max RX" ... "Max TX"
};

// The row of the view: its structure "RingInfo" with its integer fields.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> RingStructure(RingView view);
// The value of the view's `fields:` directive, and the directive's name.
std::string RingFields(RingView view);
extern const std::string kRingFieldsDirective;

// Finds the NIC "nic-name" names ("NIC with name <name> not found" when the
// host does not have it, and false), reads its ring records and fills `row`
// with the view's record. A failure of the host passes on as HostCtlException.
bool ReadRing(HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
              Toolbase::CallSpec::Output& output, RingView view,
              Toolbase::MetaObj::MetaStruct& row);

}  // namespace CorvaneCli::NetworkNamespace
