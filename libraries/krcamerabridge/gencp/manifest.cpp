#include "gencp/manifest.h"

#include "gencp/packet.h"
#include "krgenicam/krgendescription.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace krcamerabridge {

namespace {

constexpr std::uint64_t kNewestSchema = 0x0101; // Major and minor number, a byte each.
constexpr std::uint64_t kZipFormat = 1;         // 0 is XML.

struct RatedEntry {
  std::uint64_t schema;
  std::uint64_t version;
  ManifestEntry entry;
};

bool IsReadable(std::uint64_t aKind, const ManifestEntry& aEntry) {
  const bool isOfDevice = (aKind & 7) == 0; // 1 would be of chunk data.
  const bool isKnownFormat = (aKind >> 10 & 0x3F) <= kZipFormat;
  const bool isSized = aEntry.size > 0 && aEntry.size <= KrGenDescription::kMaxBytes;
  return isOfDevice && isKnownFormat && aKind >> 16 <= kNewestSchema && isSized &&
         aEntry.size - 1 <= UINT64_MAX - aEntry.address;
}

std::string GetXMLID(std::uint64_t aSchema, std::uint64_t aVersion) {
  return "SchemaVersion." + std::to_string(aSchema >> 8) + "." + std::to_string(aSchema & 0xFF) + "@XMLVersion." +
         std::to_string(aVersion >> 24) + "." + std::to_string(aVersion >> 16 & 0xFF) + "." +
         std::to_string(aVersion & 0xFFFF);
}

std::vector<RatedEntry> ReadEntries(std::span<const std::uint8_t> aTable) {
  std::vector<RatedEntry> rated;
  for (; aTable.size() >= kManifestEntryBytes; aTable = aTable.subspan(kManifestEntryBytes)) {
    const std::uint64_t version = ReadNumber(aTable.subspan(0, 4));
    const std::uint64_t kind = ReadNumber(aTable.subspan(4, 4));
    ManifestEntry entry{ReadNumber(aTable.subspan(8, 8)), ReadNumber(aTable.subspan(16, 8))};
    std::ranges::copy(aTable.subspan(24, entry.sha1.size()), entry.sha1.begin());
    if (IsReadable(kind, entry))
      rated.push_back({kind >> 16, version, entry});
  }
  return rated;
}

} // namespace

std::vector<ManifestEntry> ReadManifest(std::span<const std::uint8_t> aTable) {
  std::vector<RatedEntry> rated = ReadEntries(aTable);
  std::ranges::stable_sort(rated, [](const RatedEntry& aLeft, const RatedEntry& aRight) {
    return std::tie(aLeft.schema, aLeft.version) > std::tie(aRight.schema, aRight.version);
  });
  std::vector<ManifestEntry> entries;
  int alike = 1;
  for (std::size_t i = 0; i < rated.size(); ++i) {
    const bool isRepeated = i > 0 && rated[i].schema == rated[i - 1].schema && rated[i].version == rated[i - 1].version;
    alike = isRepeated ? alike + 1 : 1;
    rated[i].entry.xmlID =
        GetXMLID(rated[i].schema, rated[i].version) + (isRepeated ? "@" + std::to_string(alike) : std::string());
    entries.push_back(rated[i].entry);
  }
  return entries;
}

} // namespace krcamerabridge
