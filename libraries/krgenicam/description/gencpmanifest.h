#pragma once
// The manifest table of a GenCP device: which descriptions it has (GenCP 1.3.1, manifest table). Reading registers is
// left to the locator.

#include "description/descriptionurl.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace krgenicam {

constexpr std::size_t kGenCPEntryBytes = 64;

/// One description that a device has.
struct GenCPManifestEntry {
  RegisterRange range;
  std::string name; ///< For people: its place in the table, its schema and version.
};

/// The entries of a table, without the count before them, that are descriptions of the device in a schema that can be
/// read: the newest schema first, of one schema the newest version first. The checksum is not looked at, as makers
/// disagree on what it is of.
std::vector<GenCPManifestEntry> ReadGenCPManifest(std::span<const unsigned char> aTable, bool aIsBigEndian);

/// A number of up to 8 bytes at an offset.
std::uint64_t ReadRegisterNumber(std::span<const unsigned char> aBytes, bool aIsBigEndian);

} // namespace krgenicam
