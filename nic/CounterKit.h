// What the NIC statistics commands share: a table of the counters a row
// shows, each a field the user reads and the 64-bit member of the host record
// behind it, in the order shown.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

template <typename Record>
struct Counter {
  char const* field;
  uint64_t Record::*member;
};

// The fields of `counters` joined by commas, for a `fields:` directive.
template <typename Record>
std::string CounterFields(std::span<Counter<Record> const> counters) {
  std::string fields;
  fields.reserve(counters.size() * 24);
  for (auto const& counter : counters) {
    if (!fields.empty()) fields += ',';
    fields += counter.field;
  }
  return fields;
}

// Adds the field of each counter to `row`, an empty integer.
template <typename Record>
void AddCounterFields(Toolbase::MetaObj::MetaStruct& row,
                      std::span<Counter<Record> const> counters) {
  for (auto const& counter : counters)
    row.SetField(counter.field, Toolbase::MetaObj::MetaInt::New());
}

// Sets the field of each counter to its member of `stats`.
template <typename Record>
void FillCounters(Toolbase::MetaObj::MetaStruct& row, std::span<Counter<Record> const> counters,
                  Record const& stats) {
  for (auto const& counter : counters) {
    row.SetField(counter.field, static_cast<unsigned long>(stats.*counter.member));
  }
}

}  // namespace CorvaneCli::NetworkNamespace
