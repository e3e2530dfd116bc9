#include "logic/browser/valueparsing.h"

#include <cstdio>
#include <cstdlib>
#include <locale.h>
#include <string_view>

namespace krgui {

namespace {

constexpr std::string_view kHexPrefix = "0x";
constexpr int kMostPart = 255;
constexpr int kBitsPerPart = 8;

/// The C library keeps this locale for the whole process; making it cannot fail.
locale_t GetPlainLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

/// The C locale for this thread, while it lives.
class PlainLocale {
public:
  PlainLocale() : mPrevious(uselocale(GetPlainLocale())) {}
  ~PlainLocale() { uselocale(mPrevious); }
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

private:
  const locale_t mPrevious;
};

std::optional<std::int64_t> ScanDecimal(const char* aText) {
  long long value = 0;
  return std::sscanf(aText, "%lld", &value) == 1 ? std::optional<std::int64_t>(value) : std::nullopt;
}

/// All 64 bits are the two's complement of the value.
std::optional<std::int64_t> ScanHexadecimal(const char* aText) {
  unsigned long long value = 0;
  return std::sscanf(aText, "%llX", &value) == 1 ? std::optional(static_cast<std::int64_t>(value)) : std::nullopt;
}

} // namespace

std::optional<std::int64_t> ParseInteger(const KrString& aText, bool aIsHexadecimal) {
  const PlainLocale plain;
  if (!aIsHexadecimal) {
    return ScanDecimal(aText.CStr());
  }
  const bool hasPrefix = aText.ToUtf8().starts_with(kHexPrefix);
  return ScanHexadecimal(aText.CStr() + (hasPrefix ? kHexPrefix.size() : 0));
}

double ParseFloat(const KrString& aText) {
  return strtod_l(aText.CStr(), nullptr, GetPlainLocale());
}

std::optional<std::uint32_t> ParseIPAddress(const KrString& aText) {
  const PlainLocale plain;
  long long parts[4] = {}; // Wider than what they may be: a part beyond the type would wrap into the range.
  if (std::sscanf(aText.CStr(), "%lli.%lli.%lli.%lli", &parts[0], &parts[1], &parts[2], &parts[3]) != 4) {
    return std::nullopt;
  }
  std::uint32_t address = 0;
  for (const long long part : parts) {
    if (part < 0 || part > kMostPart) {
      return std::nullopt;
    }
    address = (address << kBitsPerPart) | static_cast<std::uint32_t>(part);
  }
  return address;
}

} // namespace krgui
