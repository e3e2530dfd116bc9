// A manifest table of any content: what is taken of it is within the limits, and each entry has a name of its own.

#include "gencp/manifest.h"
#include "krgenicam/krgendescription.h"
#include "require.h"

#include <set>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const auto entries = krcamerabridge::ReadManifest(std::span(aData, aSize));

  Require(entries.size() <= aSize / krcamerabridge::kManifestEntryBytes);
  std::set<KrString> names;
  for (const krcamerabridge::ManifestEntry& entry : entries) {
    Require(entry.size > 0 && entry.size <= KrGenDescription::kMaxBytes);
    Require(entry.size - 1 <= UINT64_MAX - entry.address);
    Require(names.insert(entry.xmlID).second);
  }
  return 0;
}
