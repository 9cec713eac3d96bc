// Loading a state file: any text is either refused with an exception or read
// into a host whose JSON text reads back to the same text. Read as the store
// reads it, lists of records left as their texts until used, a text that
// loads gives the same host once every record is read.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include "host_store.h"

namespace {

// `text` loaded field by field with its lists left as texts, then every
// record of them read.
std::string LoadedLazily(std::string const& text) {
  auto owned = std::make_shared<std::string>(text);
  auto const views = OrvkCtl::Sim::SplitHostDocument(*owned);
  auto const& fields = OrvkCtl::Sim::HostFields();
  OrvkCtl::Sim::HostModel host;
  OrvkCtl::Sim::ElementTexts texts;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!views[i].empty()) fields[i].load(views[i], host, &texts, false, owned);
  }
  for (auto const& vswitch : host.vswitch.standard_switches) {
    for (auto const& group : vswitch.port_groups) (void)group.name;
  }
  for (auto const& nic : host.nic.pnics) (void)nic.name;
  return OrvkCtl::Sim::HostToJson(host);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  std::string json;
  try {
    json = OrvkCtl::Sim::HostToJson(OrvkCtl::Sim::HostFromJson(text));
  } catch (std::exception const&) {
    return 0;  // refused: the store reports it with the file's path
  }
  try {
    if (OrvkCtl::Sim::HostToJson(OrvkCtl::Sim::HostFromJson(json)) != json) __builtin_trap();
    if (LoadedLazily(text) != json) __builtin_trap();
  } catch (std::exception const&) {
    __builtin_trap();  // the library wrote what it cannot read back
  }
  return 0;
}
