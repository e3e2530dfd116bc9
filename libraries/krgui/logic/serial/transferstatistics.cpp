#include "logic/serial/transferstatistics.h"

#include <array>
#include <charconv>

namespace krgui {

namespace {

std::string FormatPercentage(std::uint64_t aPart, std::uint64_t aWhole) {
  const double percentage = aWhole == 0 ? 0.0 : static_cast<double>(aPart) * 100.0 / static_cast<double>(aWhole);
  std::array<char, 32> digits{};
  char* const end =
      std::to_chars(digits.data(), digits.data() + digits.size(), percentage, std::chars_format::general, 4).ptr;
  return std::string(digits.data(), end);
}

std::u16string FormatShare(std::uint64_t aPart, std::uint64_t aWhole, const std::string& aWhat) {
  return KrString(std::to_string(aPart) + "/" + std::to_string(aWhole) + aWhat + " (" +
                  FormatPercentage(aPart, aWhole) + "%)\n")
      .ToWide();
}

} // namespace

std::u16string FormatTransferTime(std::uint64_t aMilliseconds, const KrString& aPath) {
  const std::uint64_t seconds = aMilliseconds / 1000;
  // One whole second has the plural, too: the lines are read by scripts that know them so.
  return KrString("\r\n\n" + std::to_string(seconds) + " second" + (seconds > 0 ? "s " : " ") + "(" +
                  std::to_string(aMilliseconds) + " milliseconds) taken to send: \r\n'" + aPath.ToUtf8() + "'\n")
      .ToWide();
}

std::u16string FormatTransferred(std::uint64_t aWritten, std::uint64_t aFileSize) {
  return FormatShare(aWritten, aFileSize, " successfully transmitted bytes");
}

std::u16string FormatReturned(std::uint64_t aWritten, std::uint64_t aOutstanding) {
  return FormatShare(aWritten - aOutstanding, aWritten, " bytes received from loopback");
}

} // namespace krgui
