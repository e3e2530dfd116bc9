#include "gigevision/statedlength.h"

#include "krbase/trim.h"
#include "krgenicam/krgendescription.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace krtransport {
namespace {

constexpr std::uint32_t kFirstURLRegister = 0x0200;
constexpr std::uint32_t kSecondURLRegister = 0x0400;
constexpr std::size_t kURLBytes = 512;

struct HexStart {
  std::uint64_t number = 0;
  bool isWhole = true; ///< Nothing but the number is in the field.
};

// What a field between semicolons begins with, blanks and "0x" apart.
HexStart ReadHex(std::string_view aField) {
  aField = krbase::Trim(aField);
  if (aField.starts_with("0x") || aField.starts_with("0X"))
    aField.remove_prefix(2);
  HexStart start;
  const char* const fieldEnd = aField.data() + aField.size();
  const auto [end, error] = std::from_chars(aField.data(), fieldEnd, start.number, 16);
  if (error == std::errc::result_out_of_range)
    start.number = std::numeric_limits<std::uint64_t>::max();
  start.isWhole = end == fieldEnd;
  return start;
}

} // namespace

std::uint64_t GetStatedLength(std::string_view aURL) {
  std::uint64_t length = 0;
  bool isBehindAddress = false;
  for (std::size_t semicolon = aURL.find(';'); semicolon != std::string_view::npos;) {
    const std::size_t next = aURL.find(';', semicolon + 1);
    const HexStart field = ReadHex(aURL.substr(semicolon + 1, next - semicolon - 1));
    if (isBehindAddress)
      length = std::max(length, field.number);
    // A file's name may have semicolons, too: what is behind a number may be the length.
    isBehindAddress = field.isWhole;
    semicolon = next;
  }
  return length;
}

KrResult CheckStatedLengths(GvcpClient& aClient) {
  for (const std::uint32_t address : {kFirstURLRegister, kSecondURLRegister}) {
    std::array<std::uint8_t, kURLBytes> bytes{};
    if (!aClient.ReadMemory(address, bytes, GvcpPatience{}).IsOK())
      continue;
    const std::string_view url(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (GetStatedLength(url.substr(0, url.find('\0'))) > KrGenDescription::kMaxBytes)
      return {
          KrResult::Code::BadData,
          "Opening the device: it states that its description has more than " +
              std::to_string(KrGenDescription::kMaxBytes >> 20) +
              " MiB, for which no memory is taken. Its firmware is damaged, or it is no camera; open it for reading "
              "only to look at it, and ask its maker for another firmware."};
  }
  return {};
}

} // namespace krtransport
