#pragma once
// The descriptions that a camera has, by its manifest table (GenCP 1.3.1, manifest table), and what they are called.

#include "gencp/sha1.h"
#include "krbase/krstring.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace krcamerabridge {

constexpr std::size_t kManifestEntryBytes = 64;
/// More entries than that are not looked at.
constexpr std::uint64_t kMostManifestEntries = 64;

/// A description that can be read.
struct ManifestEntry {
  std::uint64_t address = 0;
  std::uint64_t size = 0; ///< In bytes, at least 1 and at most KrGenDescription::kMaxBytes.
  /// "SchemaVersion.1.1@XMLVersion.1.0.12"; "@2" and so on behind it where one before has the same.
  KrString xmlID = {};
  Sha1 sha1 = {}; ///< Of the file as it is stored; all zero where the camera does not say.

  friend bool operator==(const ManifestEntry&, const ManifestEntry&) = default;
};

/// The entries of a table, without the count before them, that are descriptions of the camera in a schema that can be
/// read, the best first: the newest schema, of one schema the newest version. Others, and the beginning of one at the
/// end, are left out.
std::vector<ManifestEntry> ReadManifest(std::span<const std::uint8_t> aTable);

} // namespace krcamerabridge
