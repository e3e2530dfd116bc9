#include "diagnosistext.h"

#include "jsonwriter.h"
#include "plaintext.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace krtool {

namespace {

// By the number of their kind.
constexpr std::string_view kKinds[] = {
    "NoTransport",       "AdapterDown",        "NoCarrier",       "NoAddress", "ForeignSubnet",
    "ReversePathFilter", "ReceiveBufferLimit", "USBPermission",   "USBMemory", "USBSpeed",
    "AddressConflict",   "SharedMAC",          "SubnetNotUnique", "NoAdapter", "NoAnswer"};

std::string_view GetKindWord(KrFindingKind aKind) {
  const auto place = static_cast<std::size_t>(aKind);
  return place < std::size(kKinds) ? kKinds[place] : "Unknown";
}

// Every line of a text that may have several, indented. Its own line ends stay, as a command is to be copied.
std::string Indent(const KrString& aText) {
  std::string indented;
  const std::string& text = aText.ToUtf8();
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    indented += "    " + krapps::MakeField(std::string_view(text).substr(start, end - start)) + "\n";
    start = end + 1;
  }
  return indented;
}

} // namespace

std::string FormatFindings(const std::vector<KrFinding>& aFindings) {
  if (aFindings.empty())
    return "Nothing was found that would keep devices away.\n";
  std::string text;
  for (const KrFinding& finding : aFindings)
    text += krapps::MakeField(KrGetFindingSentence(finding)) + "\n" + Indent(finding.remedy);
  return text;
}

std::string FormatFindingsJson(const std::vector<KrFinding>& aFindings) {
  JsonWriter writer;
  writer.BeginObject();
  writer.Key("findings");
  writer.BeginArray();
  for (const KrFinding& finding : aFindings) {
    writer.BeginObject();
    writer.TextMember("kind", GetKindWord(finding.kind));
    writer.TextMember("subject", finding.subject);
    writer.TextMember("text", finding.text);
    writer.TextMember("remedy", finding.remedy);
    writer.EndObject();
  }
  writer.EndArray();
  writer.EndObject();
  return writer.GetText() + "\n";
}

} // namespace krtool
