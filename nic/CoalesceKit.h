// What `nic coalesce low` and `nic coalesce high` share: the two bands of the
// coalescing record differ only in their fields and in one word.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/KitDeclarations.h"
#include "hostctl/pnic.h"

namespace CorvaneCli::NetworkNamespace {

// One band: its word ("low", "high"), where the rate stands of the band
// ("below", "above"), the structure of its `get`, and its five fields.
struct CoalesceBand {
  char const* word;
  char const* side;
  char const* structure;
  uint32_t HostCtl::Network::PnicCoalesceParams::*packetRate;
  uint32_t HostCtl::Network::PnicCoalesceParams::*rxMicroseconds;
  uint32_t HostCtl::Network::PnicCoalesceParams::*rxMaxFrames;
  uint32_t HostCtl::Network::PnicCoalesceParams::*txMicroseconds;
  uint32_t HostCtl::Network::PnicCoalesceParams::*txMaxFrames;
};

extern const CoalesceBand kLowBand;
extern const CoalesceBand kHighBand;

// The output directives of a band's `get`, in the order they are set.
std::vector<std::pair<std::string, std::string>> BandDirectives(CoalesceBand const& band);
// The empty structure of a band's `get`.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> BandStructure(CoalesceBand const& band);
// The body of a band's `get`: the filled structure of the uplink `ornic`
// names. An unknown name is thrown as HostCtlException.
std::shared_ptr<Toolbase::MetaObj::MetaStruct> ReadBand(Toolbase::CallSpec::Input const& input,
                                                        CoalesceBand const& band);

// The parameters of a band's `set`: `ornic` and the five numbers.
void AddBandParameters(Toolbase::CallSpec::InputSpec& spec, CoalesceBand const& band);
// The body of a band's `set`: reads the record, lays the numbers given over
// the band's fields, narrowed to the record's 32 bits, and writes it back;
// root `true`. An unknown name adds its message and sets no root.
void WriteBand(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
               CoalesceBand const& band);

}  // namespace CorvaneCli::NetworkNamespace
