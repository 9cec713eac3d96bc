// JSON conversion of each area of the host model, for host_json.cc. Each
// json_<area>.cc declares the fields of its area's records with JSON_RECORD
// (json_codec.h), the area's own record last.
#pragma once

#include "host_model.h"
#include "json_codec.h"

namespace OrvkCtl::Sim {

#define JSON_AREA(Area)                                                  \
  JSON_HIDDEN void ReadJson(JsonValue const& value, Area& out);          \
  JSON_HIDDEN void WriteJson(JsonWriter& writer, Area const& record);    \
  JSON_HIDDEN void WriteJsonDiff(JsonWriter& writer, Area const& record, \
                                 ElementTexts const& texts);             \
  JSON_HIDDEN bool SameJson(Area const& a, Area const& b);

JSON_AREA(NicArea)
JSON_AREA(IpArea)
JSON_AREA(VswitchArea)
JSON_AREA(RuntimeArea)

#undef JSON_AREA

// The key of an area's lists (LazyList) whose records a load leaves as their
// texts; empty for an area without.
template <class Area>
inline constexpr std::string_view kLazyKey = {};
template <>
inline constexpr std::string_view kLazyKey<NicArea> = "pnics";
template <>
inline constexpr std::string_view kLazyKey<VswitchArea> = "port_groups";

}  // namespace OrvkCtl::Sim
