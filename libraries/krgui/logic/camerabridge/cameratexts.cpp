#include "logic/camerabridge/cameratexts.h"

#include <algorithm>
#include <string>

namespace krgui {

namespace {

constexpr char kPart = '#';
constexpr char kXMLPart = '@';
constexpr int kTemplateParts = 2; ///< Directory and file.

KrString PutBlanks(std::string aText) {
  std::replace(aText.begin(), aText.end(), kPart, ' ');
  return KrString(std::move(aText));
}

/// What follows the second separator behind the first character; all where there are no two.
std::string CutTwoParts(const std::string& aText, char aSeparator) {
  const std::size_t first = aText.find(aSeparator, 1);
  if (first == std::string::npos)
    return aText;
  const std::size_t second = aText.find(aSeparator, first + 1);
  return second == std::string::npos ? aText : aText.substr(second + 1);
}

} // namespace

KrString ShortenTemplate(const KrString& aTemplate) {
  std::string text = aTemplate.ToUtf8();
  for (int part = 0; part < kTemplateParts; ++part) {
    if (text.find(kPart, 1) != std::string::npos)
      text.erase(0, text.find(kPart) + 1);
  }
  return PutBlanks(std::move(text));
}

KrString ShortenCameraID(const KrString& aCameraID) {
  return PutBlanks(CutTwoParts(aCameraID.ToUtf8(), kPart));
}

KrString ShortenXMLID(const KrString& aXMLID) {
  return KrString(CutTwoParts(aXMLID.ToUtf8(), kXMLPart));
}

KrString FormatBridgeStatus(std::optional<std::size_t> aParameterCount) {
  if (!aParameterCount)
    return "Parameters not available";
  return KrString("GenApi interface containing " + std::to_string(*aParameterCount) + " parameters available");
}

KrString FormatCameraState(const KrResult& aState) {
  if (aState.IsOK())
    return {};
  const bool isSilent = aState == KrResult::Code::TimeLimitExceeded;
  return (isSilent ? "The camera does not answer. " : "The connection is lost. ") + aState.GetDescription();
}

KrString FormatCameraFileError(const KrStringList& aMistakes) {
  KrString text = "Error loading Tolvan Camera File";
  text += aMistakes.IsEmpty() ? "." : ":";
  for (const KrString& mistake : aMistakes)
    text += "\r\n" + mistake;
  return text;
}

} // namespace krgui
