#include "camerafile/commandtemplate.h"

#include "camerafile/templatereader.h"

#include <algorithm>
#include <iterator>

namespace krcamerabridge {

namespace {

// The bytes of a part before the sums and lengths are known, which get zeros.
std::optional<std::string> BuildPart(const TemplatePart& aPart) {
  switch (aPart.kind) {
  case TemplatePart::Kind::Literal:
    return aPart.text;
  case TemplatePart::Kind::Check:
  case TemplatePart::Kind::Length:
    return EncodeWire(aPart.format, std::int64_t{0});
  default:
    return std::nullopt;
  }
}

bool Patch(std::string& aBytes, std::size_t aPlace, const TemplatePart& aPart, std::int64_t aNumber) {
  const std::optional<std::string> number = EncodeWire(aPart.format, aNumber);
  if (!number || number->size() != GetFixedSize(aPart.format))
    return false;
  aBytes.replace(aPlace, number->size(), *number);
  return true;
}

} // namespace

CommandTemplate ParseCommandTemplate(std::string_view aText, bool aIsBinary, std::vector<std::string>& aProblems) {
  TemplateReader reader(aText, aProblems);
  CommandTemplate read = aIsBinary ? reader.ReadBytes() : reader.ReadText();
  if (read.size() <= kMostTemplateParts)
    return read;
  aProblems.push_back("the template has more than " + std::to_string(kMostTemplateParts) + " parts");
  return {};
}

const TemplatePart* FindPart(const CommandTemplate& aTemplate, TemplatePart::Kind aKind) {
  const auto part = std::ranges::find(aTemplate, aKind, &TemplatePart::kind);
  return part == aTemplate.end() ? nullptr : &*part;
}

std::string_view GetEnding(const CommandTemplate& aTemplate) {
  if (aTemplate.empty() || aTemplate.back().kind != TemplatePart::Kind::Literal)
    return {};
  return aTemplate.back().text;
}

std::size_t GetFixedPartSize(const TemplatePart& aPart) {
  return aPart.kind == TemplatePart::Kind::Literal ? aPart.text.size() : GetFixedSize(aPart.format);
}

bool HasFixedWholeNumber(const TemplatePart& aPart) {
  return IsWholeNumber(aPart.format) && GetFixedSize(aPart.format) > 0;
}

std::string FindAnswerProblem(const CommandTemplate& aTemplate) {
  const auto isFree = [](const TemplatePart& aPart) { return GetFixedPartSize(aPart) == 0; };
  const auto last = std::find_if(aTemplate.rbegin(), aTemplate.rend(), isFree);
  if (last == aTemplate.rend())
    return {};
  for (auto part = aTemplate.begin(); part + 1 != last.base(); ++part)
    if (isFree(*part) && part[1].kind != TemplatePart::Kind::Literal)
      return "what can have any length has to be followed by fixed characters or bytes";
  return {};
}

CommandTemplate Join(const CommandTemplate& aFirst, const CommandTemplate& aSecond) {
  CommandTemplate joined = aFirst;
  for (const TemplatePart& part : aSecond)
    if (part.kind == TemplatePart::Kind::Literal && !joined.empty() &&
        joined.back().kind == TemplatePart::Kind::Literal)
      joined.back().text += part.text;
    else
      joined.push_back(part);
  return joined;
}

std::optional<std::string> BuildCommand(const CommandTemplate& aTemplate, const ChecksumRule& aRule) {
  std::string bytes;
  std::vector<std::size_t> places;
  for (const TemplatePart& part : aTemplate) {
    places.push_back(bytes.size());
    const std::optional<std::string> built = BuildPart(part);
    if (!built)
      return std::nullopt;
    bytes += *built;
  }
  // Lengths first, as sums are made of them, too.
  for (const TemplatePart::Kind kind : {TemplatePart::Kind::Length, TemplatePart::Kind::Check})
    for (std::size_t i = 0; i < aTemplate.size(); ++i) {
      if (aTemplate[i].kind != kind)
        continue;
      const std::size_t behind = bytes.size() - places[i] - GetFixedSize(aTemplate[i].format);
      const std::int64_t number = kind == TemplatePart::Kind::Length
                                      ? static_cast<std::int64_t>(behind) + aTemplate[i].added
                                      : aRule.Compute(std::string_view(bytes).substr(0, places[i]));
      if (!Patch(bytes, places[i], aTemplate[i], number))
        return std::nullopt;
    }
  return bytes;
}

} // namespace krcamerabridge
