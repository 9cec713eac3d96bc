// What the IPsec commands share: the SPI option's parsing, and the words for
// a lifetime.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

// Reads `text` as a hexadecimal SPI, with or without "0x". Strict parsing
// also refuses text left over after the number; either way false means the
// number itself did not parse. `spi` receives what was read (0 on failure).
bool ParseSpi(std::string const& text, bool strict, uint32_t& spi);

// A parameter of an IPsec command; `words`, when given, are the only values
// allowed.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewIpsecParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    bool required, char const* description, std::initializer_list<char const*> words = {});

// A lifetime in seconds as "1h 1m 1s " (each part only when not 0, each
// followed by a blank); 0 is "infinite".
std::string ConvertToHrsMinsAndSecs(uint64_t seconds);

}  // namespace CorvaneCli::NetworkNamespace
