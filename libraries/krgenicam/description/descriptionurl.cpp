#include "description/descriptionurl.h"

#include "description/lexical.h"
#include "krgenicam/krgendescription.h"

#include <algorithm>
#include <optional>

namespace krgenicam {

namespace {

KrResult Refuse(const std::string& aReason) {
  return {KrResult::Code::BadData, aReason};
}

// The part behind the last semicolon, which is taken off.
std::optional<std::string_view> TakeLastField(std::string_view& aText) {
  const std::size_t semicolon = aText.rfind(';');
  if (semicolon == std::string_view::npos)
    return std::nullopt;
  const std::string_view field = aText.substr(semicolon + 1);
  aText = aText.substr(0, semicolon);
  return field;
}

KrResult ParseLocal(std::string_view aFields, RegisterRange& aRange) {
  std::string_view fields = Trim(aFields.substr(0, aFields.find('?')));
  const std::optional<std::string_view> length = TakeLastField(fields);
  const std::optional<std::string_view> address = TakeLastField(fields);
  if (!length || !address)
    return Refuse("it should name a file, an address and a length, parted by semicolons.");
  const std::optional<std::uint64_t> parsedAddress = ParseHex(*address);
  const std::optional<std::uint64_t> parsedLength = ParseHex(*length);
  if (!parsedAddress)
    return Refuse("its address " + QuoteDeviceText(*address) + " is no hexadecimal number.");
  if (!parsedLength)
    return Refuse("its length " + QuoteDeviceText(*length) + " is no hexadecimal number.");
  const RegisterRange range{*parsedAddress, *parsedLength};
  KrResult result = CheckRange(range);
  if (result.IsOK())
    aRange = range;
  return result;
}

} // namespace

KrResult ParseDescriptionUrl(std::string_view aUrl, RegisterRange& aRange) {
  const std::string_view url = Trim(aUrl);
  if (url.empty())
    return Refuse("it is empty.");
  const std::size_t colon = url.find(':');
  const std::string_view scheme = Trim(url.substr(0, colon));
  if (colon != std::string_view::npos && EqualsIgnoringCase(scheme, "Local"))
    return ParseLocal(url.substr(colon + 1), aRange);
  if (EqualsIgnoringCase(scheme, "File"))
    return {KrResult::Code::NotSupported, "it names a file of this computer, which a device has no say in. If you have "
                                          "that file and trust it, read the description from there."};
  if (EqualsIgnoringCase(scheme, "http") || EqualsIgnoringCase(scheme, "https"))
    return {KrResult::Code::NotSupported,
            "it names a server, which is not asked. Fetch that file and read the description from there."};
  return Refuse("it is no URL that begins with Local:, File: or http:.");
}

KrResult CheckRange(const RegisterRange& aRange) {
  if (aRange.length == 0)
    return Refuse("its length is 0.");
  if (aRange.length > KrGenDescription::kMaxBytes)
    return Refuse("its length is more than " + std::to_string(KrGenDescription::kMaxBytes >> 20) + " MiB.");
  if (aRange.length - 1 > ~aRange.address)
    return Refuse("it would end beyond the last address.");
  return {};
}

std::string QuoteDeviceText(std::string_view aText) {
  constexpr std::size_t kLongest = 120;
  std::string text(aText.substr(0, kLongest));
  std::ranges::replace_if(
      text, [](char aByte) { return static_cast<unsigned char>(aByte) < 0x20 || aByte == 0x7F; }, '?');
  return "\"" + text + (aText.size() > kLongest ? "…\"" : "\"");
}

} // namespace krgenicam
