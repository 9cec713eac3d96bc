// The text parsers of the host's value types; FUZZ_PARSER picks the type.
// Whatever a parser accepts, its canonical text is accepted again and names
// the same value; the validity check and the constructor always agree.
#include <cstddef>
#include <cstdint>
#include <string>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace {

using HostCtl::Lib::HostCtlException;
using namespace HostCtl::Network;

template <typename T>
void RoundTrip(std::string const& text, bool valid) {
  try {
    T const value(text);
    if (!valid) __builtin_trap();  // constructed what the check refuses
    std::string const canonical = value.GetStringAddress();
    T const again(canonical);
    if (!(again == value) || again.GetStringAddress() != canonical) __builtin_trap();
  } catch (HostCtlException const&) {
    if (valid) __builtin_trap();  // refused what the check accepts
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
#if FUZZ_PARSER == 1
  RoundTrip<Ipv4Address>(text, Ipv4Address::IsValidAddress(text));
#elif FUZZ_PARSER == 2
  RoundTrip<Ipv6Address>(text, Ipv6Address::IsValidAddress(text));
#elif FUZZ_PARSER == 3
  RoundTrip<Ipv4Network>(text, Ipv4Network::IsValidAddressAndNetmask(text));
#elif FUZZ_PARSER == 4
  RoundTrip<Ipv6Network>(text, Ipv6Network::IsValidAddressAndNetmask(text));
#elif FUZZ_PARSER == 5
  RoundTrip<MacAddress>(text, MacAddress::IsValid(text));
#else
#error "FUZZ_PARSER must name a parser"
#endif
  return 0;
}
