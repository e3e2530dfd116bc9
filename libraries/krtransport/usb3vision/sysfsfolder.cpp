#include "usb3vision/sysfsfolder.h"

#include "usb3vision/usbtext.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

namespace krtransport {
namespace {

constexpr std::size_t kMaxLine = 4096; // The kernel gives no attribute more than a page.
constexpr std::size_t kMaxEntries = 4096;

} // namespace

std::string SysfsFolder::ReadText(std::string_view aName) const {
  const std::vector<std::uint8_t> bytes = ReadBytes(aName, kMaxLine);
  std::string_view line(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return CleanUsbText(line.substr(0, line.find('\n')));
}

std::optional<std::uint32_t> SysfsFolder::ReadNumber(std::string_view aName, int aBase, std::uint32_t aMax) const {
  const std::string text = ReadText(aName);
  std::string_view digits = text;
  digits.remove_prefix(std::min(digits.find_first_not_of(' '), digits.size()));
  if (aBase == 16 && (digits.starts_with("0x") || digits.starts_with("0X")))
    digits.remove_prefix(2);
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, aBase);
  if (error != std::errc() || number > aMax)
    return std::nullopt;
  return number;
}

std::vector<std::uint8_t> SysfsFolder::ReadBytes(std::string_view aName, std::size_t aMaxBytes) const {
  std::error_code error;
  const std::filesystem::path path = mPath / aName;
  // A folder can be opened like a file, and reading it throws.
  if (!std::filesystem::is_regular_file(path, error))
    return {};
  std::ifstream file(path, std::ios::binary);
  std::vector<std::uint8_t> bytes(aMaxBytes);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

std::string SysfsFolder::ReadLinkName(std::string_view aName) const {
  std::error_code error;
  const auto target = std::filesystem::read_symlink(mPath / aName, error);
  return error ? std::string() : CleanUsbText(target.filename().string());
}

std::vector<std::string> ListFolder(const std::filesystem::path& aPath) {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entry(aPath, error);
  while (!error && entry != std::filesystem::directory_iterator() && names.size() < kMaxEntries) {
    names.push_back(entry->path().filename().string());
    entry.increment(error);
  }
  std::ranges::sort(names);
  return names;
}

} // namespace krtransport
