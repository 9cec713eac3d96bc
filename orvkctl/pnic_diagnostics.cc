// Diagnostics of a physical NIC: register dump, EEPROM access and self test.
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/pnic.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;
using Sim::PnicState;

constexpr uint32_t kSpeedBits1000 = 0x200, kSpeedBits100 = 0x100;

std::string Hex(uint32_t value) {
  char text[16];
  snprintf(text, sizeof text, "0x%08x", value);
  return text;
}

void CheckDiagnostics(PnicState const& nic, char const* what) {
  if (!nic.diagnostics)
    throw HostCtlException(std::string(what) + " is not supported by " + nic.name);
}

void CheckEeprom(PnicState const& nic) {
  if (nic.eeprom.bytes.empty())
    throw HostCtlException("EEPROM access is not supported by " + nic.name);
}

void CheckMagic(PnicState const& nic, uint32_t magic) {
  if (magic != nic.eeprom_magic) {
    throw HostCtlException("Invalid EEPROM magic key " + Hex(magic) + " for " + nic.name);
  }
}

// Refuses [offset, offset + length) beyond the EEPROM.
void CheckRange(PnicState const& nic, uint64_t offset, uint64_t length) {
  uint64_t size = nic.eeprom.bytes.size();
  if (offset > size || length > size - offset) {
    throw HostCtlException("EEPROM range " + std::to_string(offset) + "+" + std::to_string(length) +
                           " is beyond the " + std::to_string(size) + " bytes of " + nic.name +
                           "'s EEPROM");
  }
}

uint32_t Low(uint64_t value) { return static_cast<uint32_t>(value & 0xffffffff); }
uint32_t High(uint64_t value) { return static_cast<uint32_t>(value >> 32); }

}  // namespace

// The registers follow the device's state: control and status reflect the
// link, the receive address registers the MAC address, the length and
// interrupt registers the rings and coalescing, the rest the counters.
void PnicImpl::GetRegisterDump(std::vector<uint32_t>& values) {
  CheckFault(Operation::PnicImpl_GetRegisterDump);
  auto const& nic = Cached();
  CheckDiagnostics(nic, "Register dump");
  bool up = LinkUp(nic);
  uint32_t speed = nic.speed >= 1000 ? kSpeedBits1000 : nic.speed >= 100 ? kSpeedBits100 : 0;
  uint32_t fullDuplex = nic.duplex == HostCtl::Network::DUPLEX_FULL ? 1 : 0;
  uint32_t control = 0x00100000 | speed | fullDuplex | (nic.admin_up ? 0x40 : 0) |
                     (nic.auto_negotiation ? 0x20 : 0);
  uint32_t status = 0x00080080 | (up ? 0x2 | speed | fullDuplex : 0);
  HostCtl::Network::MacAddress mac(nic.mac);
  auto const& b = mac.GetBytes();
  uint32_t receiveAddressLow =
      uint32_t{b[0]} | uint32_t{b[1]} << 8 | uint32_t{b[2]} << 16 | uint32_t{b[3]} << 24;
  uint32_t receiveAddressHigh = uint32_t{b[4]} | uint32_t{b[5]} << 8 | 0x80000000;
  uint32_t receiveControl = (nic.admin_up ? 0x2 : 0) | (nic.mtu > 1500 ? 0x20 : 0) | 0x8000;
  uint32_t flowControl = (nic.pause.rx ? 0x08000000 : 0) | (nic.pause.tx ? 0x10000000 : 0);
  values.insert(values.end(), {control,
                               status,
                               0x00000110,
                               0x10000000,
                               nic.phy_address << 21,
                               receiveControl,
                               0x0103f0fa,
                               receiveAddressLow,
                               receiveAddressHigh,
                               static_cast<uint32_t>(nic.mtu),
                               nic.ring.rx * 16,
                               nic.ring.tx * 16,
                               nic.coalesce.rx_usecs * 4,
                               flowControl,
                               Low(nic.stats.rx_packets),
                               Low(nic.stats.tx_packets),
                               Low(nic.stats.rx_bytes),
                               High(nic.stats.rx_bytes),
                               Low(nic.stats.tx_bytes),
                               High(nic.stats.tx_bytes),
                               Low(nic.stats.rx_crc_errors),
                               Low(nic.stats.rx_missed_errors)});
}

void PnicImpl::GetEepromDump(std::vector<unsigned char>& bytes, uint32_t length, uint32_t offset) {
  CheckFault(Operation::PnicImpl_GetEepromDump);
  auto const& nic = Cached();
  CheckEeprom(nic);
  uint64_t size = nic.eeprom.bytes.size();
  // Length 0 reads to the end, which at the very end is nothing.
  uint64_t count = length == 0 && offset <= size ? size - offset : length;
  CheckRange(nic, offset, count);
  auto first = nic.eeprom.bytes.begin() + offset;
  bytes.insert(bytes.end(), first, first + static_cast<std::ptrdiff_t>(count));
}

void PnicImpl::SetEepromValue(uint32_t magic, uint32_t offset, uint32_t value) {
  CheckFault(Operation::PnicImpl_SetEepromValue);
  Change([&](PnicState& nic) {
    CheckEeprom(nic);
    CheckMagic(nic, magic);
    CheckRange(nic, offset, 4);
    for (uint32_t i = 0; i < 4; ++i) {
      nic.eeprom.bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i) & 0xff);
    }
    // A change of single values keeps the image sound, as the driver does.
    Sim::SealEeprom(nic.eeprom);
  });
}

// The file is a raw image from offset 0, written as it is: its checksum is
// its own affair, which the self test then judges.
void PnicImpl::SetEepromFile(uint32_t magic, std::string const& file) {
  CheckFault(Operation::PnicImpl_SetEepromFile);
  auto const& current = Cached();
  CheckEeprom(current);
  CheckMagic(current, magic);
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) {
    throw HostCtlException("Unable to read EEPROM file " + file + ": " + std::strerror(EISDIR));
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    throw HostCtlException("Unable to open EEPROM file " + file + ": " + std::strerror(errno));
  }
  size_t const size = current.eeprom.bytes.size();
  std::vector<uint8_t> image;
  image.reserve(size);
  char byte;
  while (image.size() <= size && in.get(byte)) image.push_back(static_cast<uint8_t>(byte));
  if (in.bad() || (!in.eof() && image.size() <= size)) {
    throw HostCtlException("Unable to read EEPROM file " + file + ": " + std::strerror(errno));
  }
  if (image.empty()) throw HostCtlException("EEPROM file " + file + " is empty");
  if (image.size() > size) {
    throw HostCtlException("EEPROM file " + file + " is larger than the " + std::to_string(size) +
                           " bytes of " + name_ + "'s EEPROM");
  }
  Change([&](PnicState& nic) {
    CheckEeprom(nic);
    CheckRange(nic, 0, image.size());
    std::copy(image.begin(), image.end(), nic.eeprom.bytes.begin());
  });
}

void PnicImpl::RunSelfTest(HostCtl::Network::PnicSelfTestResult& result, bool online) {
  CheckFault(Operation::PnicImpl_RunSelfTest);
  auto const& nic = Cached();
  CheckDiagnostics(nic, "Self test");
  auto report = [&](char const* test, bool passed) {
    result.info.push_back(std::string(test) + (passed ? "passed" : "FAILED"));
    if (!passed) result.failed = true;
  };
  report("EEPROM test (online): ", Sim::EepromChecksumValid(nic.eeprom));
  report("Link test (online): ", LinkUp(nic));
  if (online) return;
  report("Register test (offline): ", true);
  report("Interrupt test (offline): ", true);
  // Frames looped back inside the device need its MAC to be up.
  report("Loopback test (offline): ", nic.admin_up);
}

}  // namespace OrvkCtl::Network
