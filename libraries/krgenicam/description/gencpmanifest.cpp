#include "description/gencpmanifest.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace krgenicam {

namespace {

struct Version {
  std::uint32_t number; // Major in bits 24 to 31, minor in bits 16 to 23, for files a sub-minor number below.

  std::uint32_t GetMajor() const { return number >> 24; }
  std::uint32_t GetMinor() const { return number >> 16 & 0xFF; }
  std::string ToText() const { return std::to_string(GetMajor()) + "." + std::to_string(GetMinor()); }
};

struct RatedEntry {
  std::uint32_t schema;
  std::uint32_t file;
  GenCPManifestEntry entry;
};

constexpr std::uint32_t kNewestSchema = 0x0101;
constexpr std::uint32_t kFileTypeMask = 7; // 0 is the device's description, 1 one of chunk data.

} // namespace

std::uint64_t ReadRegisterNumber(std::span<const unsigned char> aBytes, bool aIsBigEndian) {
  std::uint64_t number = 0;
  for (std::size_t index = 0; index < aBytes.size(); ++index)
    number = number << 8 | aBytes[aIsBigEndian ? index : aBytes.size() - 1 - index];
  return number;
}

std::vector<GenCPManifestEntry> ReadGenCPManifest(std::span<const unsigned char> aTable, bool aIsBigEndian) {
  std::vector<RatedEntry> rated;
  for (std::size_t offset = 0; offset + kGenCPEntryBytes <= aTable.size(); offset += kGenCPEntryBytes) {
    const auto read = [&](std::size_t aField, std::size_t aBytes) {
      return ReadRegisterNumber(aTable.subspan(offset + aField, aBytes), aIsBigEndian);
    };
    const Version file{static_cast<std::uint32_t>(read(0, 4))};
    const Version schema{static_cast<std::uint32_t>(read(4, 4))};
    const std::uint32_t schemaNumber = schema.number >> 16;
    if ((schema.number & kFileTypeMask) != 0 || schemaNumber > kNewestSchema)
      continue;
    rated.push_back(
        {schemaNumber,
         file.number,
         {{read(8, 8), read(16, 8)},
          "entry " + std::to_string(offset / kGenCPEntryBytes + 1) + " of the manifest table (schema " +
              schema.ToText() + ", version " + file.ToText() + "." + std::to_string(file.number & 0xFFFF) + ")"}});
  }
  std::ranges::stable_sort(rated, [](const RatedEntry& aLeft, const RatedEntry& aRight) {
    return std::pair(aLeft.schema, aLeft.file) > std::pair(aRight.schema, aRight.file);
  });
  std::vector<GenCPManifestEntry> entries;
  for (RatedEntry& entry : rated)
    entries.push_back(std::move(entry.entry));
  return entries;
}

} // namespace krgenicam
