// Loading a state file: any text is either refused with an exception or read
// into a host whose JSON text reads back to the same text.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

#include "host_store.h"

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
  } catch (std::exception const&) {
    __builtin_trap();  // the library wrote what it cannot read back
  }
  return 0;
}
