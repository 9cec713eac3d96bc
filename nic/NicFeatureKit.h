// What `network nic software` and `network nic hwCap` share: the table of
// software simulated functions, and the walk of their list commands over the
// uplinks named by the repeatable `ornic` parameter, or over all of them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class NetworkInfo;
class Pnic;
struct PnicHwCapabilities;
struct PnicSoftwareSimulation;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// One software simulated function: its column, its parameter of
// `software set` with the description, its mask bit and its bool in the
// record.
struct SoftwareSimulationSetting {
  char const* column;
  char const* parameter;
  char const* description;
  uint32_t mask;
  bool HostCtl::Network::PnicSoftwareSimulation::*value;
};

// The fourteen functions in the order of the columns and parameters.
extern const SoftwareSimulationSetting kSoftwareSimulationSettings[14];

// The value of a list command's row that could not be read.
extern const std::string kNotAvailable;

// The optional repeatable `ornic` parameter of the list commands.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewOrnicListParameter();

// Fills the value fields of `row` for `pnic`; a HostCtlException from the
// host turns them into kNotAvailable instead.
struct PnicRowFiller {
  std::function<void(HostCtl::Network::Pnic& pnic, Toolbase::MetaObj::MetaStruct& row)> fill;
  std::function<void(Toolbase::MetaObj::MetaStruct& row)> fillNotAvailable;
};

// Adds one row per uplink to `list`: the uplinks named by `ornic` in the
// order given, or all of them. Each row comes from `newRow`, has NIC set and
// is filled by `filler`. Returns false after adding
// "Can't find PNIC with name <name>" for an unknown name; the caller then
// sets no root.
bool ListPnicRows(HostCtl::Network::NetworkInfo& networkInfo,
                  Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                  Toolbase::MetaObj::MetaList& list,
                  std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow,
                  PnicRowFiller const& filler);

// The names of the set bits 0 to 30 of `bits`, each followed by three blanks.
std::string HwCapText(uint64_t bits);

// One of the two hwCap lists: its column and the bits of the record it shows.
struct HwCapColumn {
  char const* column;
  uint64_t HostCtl::Network::PnicHwCapabilities::*bits;
};
extern const HwCapColumn kHwCapSupported;
extern const HwCapColumn kHwCapActivated;

// The empty `Settings` row of a hwCap list: NIC and the column.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> HwCapStructure(HwCapColumn const& kind);

// The rows of a hwCap list, as ListPnicRows makes them; null after its
// message for an unknown name.
std::shared_ptr<Toolbase::MetaObj::MetaList> ListHwCaps(HostCtl::Network::NetworkInfo& networkInfo,
                                                        Toolbase::CallSpec::Input const& input,
                                                        Toolbase::CallSpec::Output& output,
                                                        HwCapColumn const& kind);

}  // namespace CorvaneCli::NetworkNamespace
