#pragma once
// Reads the attributes of one folder of sysfs: small files of one line each that may be missing, vanish at any moment
// or hold anything.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krtransport {

/// Thread: any; a value.
class SysfsFolder {
public:
  explicit SysfsFolder(std::filesystem::path aPath) : mPath(std::move(aPath)) {}

  const std::filesystem::path& GetPath() const { return mPath; }
  /// An attribute's line without its end, cleaned for showing; empty where it is missing.
  std::string ReadText(std::string_view aName) const;
  /// An attribute that is a number in a base of 10 or 16, with or without "0x", and at most aMax. What follows the
  /// number after a blank or as a unit is passed over ("896mA"). Nothing where it is missing or no such number.
  std::optional<std::uint32_t> ReadNumber(std::string_view aName, int aBase, std::uint32_t aMax = UINT32_MAX) const;
  /// An attribute's bytes, at most aMaxBytes of them.
  std::vector<std::uint8_t> ReadBytes(std::string_view aName, std::size_t aMaxBytes) const;
  /// The last part of what a symbolic link names, for example of "driver"; empty where there is no link.
  std::string ReadLinkName(std::string_view aName) const;

private:
  std::filesystem::path mPath;
};

/// The names of a folder's entries in their order, at most 4096; none where there is no such folder.
std::vector<std::string> ListFolder(const std::filesystem::path& aPath);

} // namespace krtransport
