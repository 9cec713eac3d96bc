// What the offload commands (`cso`, `tso`, `sg`, each with `get` and `set`)
// share: they differ only in the flags of the offload record they show and
// write, and in the name of their structure.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frame/KitDeclarations.h"
#include "hostctl/pnic.h"

namespace HostCtl::Network {
class NetworkInfo;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// One column of a `get`: its field and the flag of the record it shows.
struct OffloadColumn {
  char const* field;
  bool HostCtl::Network::PnicOffloadParams::*flag;
};

// One offload family: the structure of its `get` with its one or two
// columns behind "NIC", and the mask bits its `set` writes (all its flags,
// to one value). Constant data, built with the library image.
struct OffloadKind {
  char const* structure;
  OffloadColumn columns[2];
  int columnCount;
  uint8_t mask;
  OffloadColumn const* begin() const { return columns; }
  OffloadColumn const* end() const { return columns + columnCount; }
};

extern const OffloadKind kChecksumOffload;      // cso
extern const OffloadKind kSegmentationOffload;  // tso
extern const OffloadKind kScatterGather;        // sg

// The empty row of a `get`: "NIC" and the columns, all strings.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> OffloadStructure(OffloadKind const& kind);
// The value of its `fields:` directive: "NIC" and the columns, joined by commas.
std::string OffloadFields(OffloadKind const& kind);

// The rows of a `get` over the uplink `ornic` names or all of them: "on" or
// "off" per column, "N/A" for a device whose record cannot be read. Null
// after the message for an unknown name.
std::shared_ptr<Toolbase::MetaObj::MetaList> ListOffload(HostCtl::Network::NetworkInfo& networkInfo,
                                                         Toolbase::CallSpec::Input const& input,
                                                         Toolbase::CallSpec::Output& output,
                                                         OffloadKind const& kind);

// The body of a `set`: finds the uplink `ornic` names, reads its record,
// writes `enable` to the family's flags with their mask and hands it back;
// root `true`. An unknown name adds its message and sets no root.
void SetOffload(HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
                Toolbase::CallSpec::Output& output, OffloadKind const& kind);

}  // namespace CorvaneCli::NetworkNamespace
