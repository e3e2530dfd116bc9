#include "simulation/clcamera/gencpbootstrap.h"

#include "simulation/clcamera/clcameradescription.h"
#include "simulation/clcamera/sha1.h"

#include <algorithm>
#include <array>
#include <string>

namespace krtransport {

using namespace gencpregister;

namespace {

constexpr std::uint64_t kVersion = 0x0000;
constexpr std::uint64_t kCapability = 0x01C4;
constexpr std::uint64_t kMostResponseTime = 0x01CC;
constexpr std::uint64_t kManifestAddress = 0x01D0;
constexpr std::uint64_t kSerialAddress = 0x01D8;
constexpr std::uint64_t kTimestampIncrement = 0x01FC;
constexpr std::uint64_t kReserved = 0x0208;
constexpr std::uint64_t kEndianness = 0x020C;
constexpr std::uint64_t kInterfaceVersion = 0x0210;
constexpr std::uint64_t kManifest = 0x00021000;
constexpr std::uint64_t kSupportedRates = 0x00020000;
constexpr std::uint64_t kFirstDescription = 0x00100000;
constexpr std::uint64_t kDescriptionStride = 0x00100000;

constexpr std::uint32_t kGenCP13 = 0x00010003;
constexpr std::uint32_t kResponseTimeMs = 100;
constexpr std::uint32_t kHeartbeatMs = 3000;
constexpr std::uint64_t kHeartbeatOn = 1;
constexpr std::size_t kEntryBytes = 64;

// User-defined name, access privilege with heartbeat, timestamp, UTF-8, family name, serial port registers,
// endianness, written length in acknowledges, interface version.
constexpr std::uint64_t kCapabilities =
    1u << 0 | 1u << 1 | 1u << 3 | 1u << 4 | 1u << 8 | 1u << 9 | 1u << 10 | 1u << 11 | 1u << 14;

constexpr std::array<GenCPRate, 8> kRates = {{{9600, 0x01},
                                              {19200, 0x02},
                                              {38400, 0x04},
                                              {57600, 0x08},
                                              {115200, 0x10},
                                              {230400, 0x20},
                                              {460800, 0x40},
                                              {921600, 0x80}}};

using Bytes = CLCameraMemory::Bytes;

Bytes MakeInteger(std::uint32_t aValue) {
  Bytes bytes(4);
  EncodeInteger(aValue, bytes.data());
  return bytes;
}

Bytes MakeLong(std::uint64_t aValue) {
  Bytes bytes(8);
  EncodeLong(aValue, bytes.data());
  return bytes;
}

Bytes MakeText(const std::string& aText) {
  Bytes bytes(64);
  std::ranges::copy(aText, bytes.begin());
  return bytes;
}

// Where the description of a place is, and what is said of it.
Bytes MakeEntry(DescriptionFormat aFormat, std::size_t aIndex, const std::string& aStored) {
  Bytes entry(kEntryBytes);
  EncodeInteger(kDescriptionMajor << 24 | static_cast<std::uint32_t>(aIndex) << 16, entry.data());
  const std::uint32_t format = aFormat == DescriptionFormat::Zipped ? 1 : 0;
  EncodeInteger(kSchemaMajor << 24 | kSchemaMinor << 16 | format << 10, entry.data() + 4);
  EncodeLong(kFirstDescription + aIndex * kDescriptionStride, entry.data() + 8);
  EncodeLong(aStored.size(), entry.data() + 16);
  std::ranges::copy(MakeSha1(aStored), entry.begin() + 24);
  return entry;
}

void DefineManifest(CLCameraMemory& aMemory, const LabCLCamera& aCamera) {
  Bytes table = MakeLong(aCamera.descriptions.size());
  for (std::size_t i = 0; i < aCamera.descriptions.size(); ++i) {
    const std::string stored = MakeStoredDescription(aCamera, i);
    const Bytes entry = MakeEntry(aCamera.descriptions[i], i, stored);
    table.insert(table.end(), entry.begin(), entry.end());
    aMemory.Define(kFirstDescription + i * kDescriptionStride, RegisterAccess::ReadOnly,
                   {stored.begin(), stored.end()});
  }
  aMemory.Define(kManifest, RegisterAccess::ReadOnly, std::move(table));
}

std::uint32_t GetRateBits(const LabCLCamera& aCamera) {
  std::uint32_t bits = 0;
  for (const GenCPRate& rate : kRates)
    bits |= FindGenCPRate(aCamera, rate.bit) ? rate.bit : 0;
  return bits;
}

} // namespace

std::span<const GenCPRate> ListGenCPRates() {
  return kRates;
}

const GenCPRate* FindGenCPRate(const LabCLCamera& aCamera, std::uint32_t aBit) {
  const auto rate = std::ranges::find(kRates, aBit, &GenCPRate::bit);
  const bool isThere = rate != kRates.end() && std::ranges::find(aCamera.rates, rate->rate) != aCamera.rates.end();
  return isThere ? &*rate : nullptr;
}

void DefineGenCPRegisters(CLCameraMemory& aMemory, const LabCLCamera& aCamera) {
  constexpr auto kReadOnly = RegisterAccess::ReadOnly;
  constexpr auto kReadWrite = RegisterAccess::ReadWrite;
  aMemory.Define(kVersion, kReadOnly, MakeInteger(kGenCP13));
  aMemory.Define(kCapability, kReadOnly, MakeLong(kCapabilities));
  aMemory.Define(kMostResponseTime, kReadOnly, MakeInteger(kResponseTimeMs));
  aMemory.Define(kManifestAddress, kReadOnly, MakeLong(kManifest));
  aMemory.Define(kSerialAddress, kReadOnly, MakeLong(kSupportedRates));
  aMemory.Define(kDeviceConfiguration, kReadWrite, MakeLong(kHeartbeatOn));
  aMemory.Define(kHeartbeatTimeout, kReadWrite, MakeInteger(kHeartbeatMs));
  aMemory.Define(kTimestamp, kReadOnly, MakeLong(0));
  aMemory.Define(kTimestampLatch, RegisterAccess::WriteOnly, MakeInteger(0));
  aMemory.Define(kTimestampIncrement, kReadOnly, MakeLong(1));
  aMemory.Define(kAccessPrivilege, kReadWrite, MakeInteger(0));
  aMemory.Define(kReserved, kReadOnly, MakeInteger(0));
  aMemory.Define(kEndianness, kReadOnly, MakeInteger(0));
  aMemory.Define(kInterfaceVersion, kReadOnly, MakeText("1.3"));
  aMemory.Define(kSupportedRates, kReadOnly, MakeInteger(GetRateBits(aCamera)));
  aMemory.Define(kCurrentBaudRate, kReadWrite, MakeInteger(kRates.front().bit));
  DefineManifest(aMemory, aCamera);
}

} // namespace krtransport
