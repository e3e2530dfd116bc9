#include "camerafile/answermatching.h"

#include <algorithm>
#include <span>

namespace krcamerabridge {

namespace {

using Kind = TemplatePart::Kind;

// Takes a message apart, part by part.
class Matcher {
public:
  Matcher(const CommandTemplate& aTemplate, const ChecksumRule& aRule, std::string_view aMessage)
      : mParts(aTemplate), mRule(aRule), mMessage(aMessage) {}

  std::optional<AnswerContent> Match() {
    for (std::size_t i = 0; i < mParts.size(); ++i) {
      const std::optional<std::size_t> size = FindSize(i);
      if (!size || *size > mMessage.size() - mPlace || !Take(mParts[i], mMessage.substr(mPlace, *size)))
        return std::nullopt;
      mPlace += *size;
    }
    return mPlace == mMessage.size() ? std::optional(mContent) : std::nullopt;
  }

private:
  // What has no length of its own ends at the next literal; the last such part where the rest just fits.
  std::optional<std::size_t> FindSize(std::size_t aIndex) const {
    if (const std::size_t fixed = GetFixedPartSize(mParts[aIndex]); fixed > 0)
      return fixed;
    std::size_t behind = 0;
    bool isLast = true;
    for (std::size_t i = aIndex + 1; i < mParts.size(); ++i) {
      const std::size_t fixed = GetFixedPartSize(mParts[i]);
      behind += fixed;
      isLast = isLast && fixed > 0;
    }
    const std::size_t left = mMessage.size() - mPlace;
    if (isLast)
      return behind <= left ? std::optional(left - behind) : std::nullopt;
    const std::size_t end = mMessage.find(mParts[aIndex + 1].text, mPlace);
    return end == std::string_view::npos ? std::nullopt : std::optional(end - mPlace);
  }

  bool TakeNumber(const TemplatePart& aPart, std::string_view aBytes, std::int64_t& aNumber) const {
    const std::optional<WireValue> value = DecodeWire(aPart.format, aBytes);
    const auto* const number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    if (number)
      aNumber = *number;
    return number != nullptr;
  }

  bool Take(const TemplatePart& aPart, std::string_view aBytes) {
    std::int64_t number = 0;
    switch (aPart.kind) {
    case Kind::Literal:
      return aBytes == aPart.text;
    case Kind::Value:
      mContent.value = DecodeWire(aPart.format, aBytes);
      return mContent.value.has_value();
    case Kind::Check:
      return TakeNumber(aPart, aBytes, number) && number == mRule.Compute(mMessage.substr(0, mPlace));
    case Kind::Length:
      return TakeNumber(aPart, aBytes, number) &&
             number == static_cast<std::int64_t>(mMessage.size() - mPlace - aBytes.size()) + aPart.added;
    case Kind::Skip:
      return true;
    case Kind::Text:
      mContent.text = std::get<std::string>(DecodeWire({.kind = WireKind::Text, .size = aPart.format.size}, aBytes)
                                                .value_or(WireValue(std::string()))); // A text is never refused.
      return true;
    case Kind::Code:
      if (!TakeNumber(aPart, aBytes, number))
        return false;
      mContent.code = number;
      return true;
    case Kind::Feature:
      return false;
    }
    return false;
  }

  const std::span<const TemplatePart> mParts;
  const ChecksumRule& mRule;
  const std::string_view mMessage;
  std::size_t mPlace = 0;
  AnswerContent mContent;
};

// The parts at the beginning that have a length of their own, up to one that says the length of the rest.
struct Beginning {
  std::size_t size = 0;   ///< Of these parts.
  std::size_t count = 0;  ///< Of these parts.
  bool isDenied = false;  ///< A literal among them is not what was received.
  bool hasLength = false; ///< The last of them is a length.
};

Beginning FindBeginning(const CommandTemplate& aTemplate, std::string_view aReceived) {
  Beginning beginning;
  for (const TemplatePart& part : aTemplate) {
    const std::size_t size = GetFixedPartSize(part);
    if (size == 0)
      break;
    if (part.kind == Kind::Literal && beginning.size < aReceived.size()) {
      const std::string_view there = aReceived.substr(beginning.size, size);
      beginning.isDenied = beginning.isDenied || !std::string_view(part.text).starts_with(there);
    }
    beginning.size += size;
    ++beginning.count;
    beginning.hasLength = part.kind == Kind::Length;
    if (beginning.hasLength)
      break;
  }
  return beginning;
}

MessageSize Need(std::size_t aSize, std::string_view aReceived, std::size_t aLeast) {
  if (aSize < aLeast)
    return {MessageSize::State::Never};
  return {aReceived.size() < aSize ? MessageSize::State::More : MessageSize::State::Known, aSize};
}

} // namespace

std::optional<AnswerContent> MatchAnswer(const CommandTemplate& aTemplate, const ChecksumRule& aRule,
                                         std::string_view aMessage) {
  return Matcher(aTemplate, aRule, aMessage).Match();
}

MessageSize MeasureMessage(const CommandTemplate& aTemplate, std::string_view aReceived, std::size_t aLeast) {
  constexpr std::size_t kMostMessageBytes = 2560; // A template and the longest text in it.
  const Beginning beginning = FindBeginning(aTemplate, aReceived);
  if (beginning.isDenied)
    return {MessageSize::State::Never};
  if (!beginning.hasLength && beginning.count == aTemplate.size())
    return Need(beginning.size, aReceived, aLeast);
  if (aReceived.size() < beginning.size)
    return {MessageSize::State::More};
  if (beginning.hasLength) {
    const TemplatePart& part = aTemplate[beginning.count - 1];
    const std::size_t size = GetFixedPartSize(part);
    const std::optional<WireValue> value = DecodeWire(part.format, aReceived.substr(beginning.size - size, size));
    const auto* const number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    if (!number || *number < part.added || *number - part.added > static_cast<std::int64_t>(kMostMessageBytes))
      return {MessageSize::State::Never};
    return Need(beginning.size + static_cast<std::size_t>(*number - part.added), aReceived, aLeast);
  }
  // It ends with its last literal, behind the part that has no length and all that have one.
  const std::string_view ending = GetEnding(aTemplate);
  std::size_t fixed = 0;
  for (const TemplatePart& part : aTemplate)
    fixed += GetFixedPartSize(part);
  const std::size_t end = aReceived.find(ending, std::max(fixed, aLeast) - ending.size());
  if (end != std::string_view::npos)
    return Need(end + ending.size(), aReceived, aLeast);
  return {aReceived.size() > kMostMessageBytes ? MessageSize::State::Never : MessageSize::State::More};
}

} // namespace krcamerabridge
