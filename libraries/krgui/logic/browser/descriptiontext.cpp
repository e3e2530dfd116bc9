#include "logic/browser/descriptiontext.h"

#include "krbase/utf8cut.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenregister.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/browserwords.h"
#include "logic/browser/markup.h"
#include "logic/browser/treeitemdata.h"
#include "logic/browser/valuetext.h"

#include <cstddef>
#include <string>

namespace krgui {

namespace {

// Beyond what anybody reads, and well before laying it out would keep the window from being used.
constexpr std::size_t kMostTextBytes = std::size_t{256} << 10;
constexpr std::size_t kMostTitleBytes = 1024;

// The beginning of a text that is longer, with a sign of that.
KrString Cut(const KrString& aText, std::size_t aMostBytes) {
  constexpr std::size_t kLongestTag = 4;
  const std::string& text = aText.ToUtf8();
  if (text.size() <= aMostBytes)
    return aText;
  // Not within a character, and not within a tag.
  std::size_t end = krbase::CutUtf8(text, aMostBytes).size();
  if (const std::size_t tag = text.find_last_of("<>", end - 1);
      tag != std::string::npos && text[tag] == '<' && end - tag < kLongestTag)
    end = tag;
  return text.substr(0, end) + "…";
}

KrString Bold(const KrString& aText) {
  return "<b>" + aText + "</b>";
}

// A text of the camera's, with an end for a bold run that lacks one: it is not to reach over what follows.
KrString Enclose(const KrString& aText) {
  return LeavesBold(aText.ToUtf8()) ? aText + "</b>" : aText;
}

// What a getter gives. Where it fails the value stays what it is without one: the row tells of failures, the
// description shows what there is.
template <typename Value, typename Feature, typename Getter>
Value ReadOr(Feature& aFeature, Getter aGetter, Value aValue) {
  (void)(aFeature.*aGetter)(aValue);
  return aValue;
}

// Asks for the limits of one description. A device that did not answer one question in time is not asked the others:
// the user waits for them.
class LimitReader {
public:
  template <typename Value, typename Feature, typename Getter>
  Value ReadOr(Feature& aFeature, Getter aGetter, Value aValue) {
    if (!mIsSilent)
      mIsSilent = (aFeature.*aGetter)(aValue).GetCode() == KrResult::Code::TimeLimitExceeded;
    return aValue;
  }

private:
  bool mIsSilent = false;
};

using GetText = KrResult (KrGenParameter::*)(KrString&) const;

KrString FormatSelectors(const TreeItemData& aNode) {
  const auto& selectors = aNode.GetSelectingParameters();
  if (selectors.empty())
    return {};
  KrString names;
  for (const KrGenParameter* selector : selectors) {
    if (!names.IsEmpty())
      names += ", ";
    names += Bold(ReadOr(*selector, static_cast<GetText>(&KrGenParameter::GetName), KrString()));
  }
  return (selectors.size() == 1 ? "Selector: " : "Selectors: ") + names + "\n\n";
}

KrString FormatIntegerPart(KrGenInteger& aInteger) {
  LimitReader limits;
  const auto representation = ReadOr(aInteger, &KrGenInteger::GetRepresentation, KrGenRepresentation::PureNumber);
  const auto min = limits.ReadOr(aInteger, &KrGenInteger::GetMin, std::int64_t{0});
  const auto max = limits.ReadOr(aInteger, &KrGenInteger::GetMax, std::int64_t{0});
  const auto increment = limits.ReadOr(aInteger, &KrGenInteger::GetIncrement, std::int64_t{0});
  return "\n" + FormatBounds(min, max, representation == KrGenRepresentation::HexNumber) +
         "Increment: " + Bold(FormatInteger(increment, false)) + "\n";
}

KrString FormatFloatPart(KrGenFloat& aFloat) {
  LimitReader limits;
  const auto min = limits.ReadOr(aFloat, &KrGenFloat::GetMin, 0.0);
  const auto max = limits.ReadOr(aFloat, &KrGenFloat::GetMax, 0.0);
  return "\nMin: " + Bold(FormatFloat(min)) + " Max: " + Bold(FormatFloat(max)) + "\n";
}

KrString FormatStringPart(KrGenString& aString) {
  LimitReader limits;
  using Ask = KrResult (KrGenParameter::*)(bool&);
  const bool isAvailable = limits.ReadOr(aString, static_cast<Ask>(&KrGenParameter::IsAvailable), false);
  const auto length = isAvailable ? limits.ReadOr(aString, &KrGenString::GetMaxLength, std::int64_t{0}) : 0;
  return "\nMax Length: " + Bold(FormatInteger(length, false)) + " bytes\n";
}

KrString FormatRegisterPart(KrGenRegister& aRegister) {
  const auto length = ReadOr(aRegister, &KrGenRegister::GetLength, std::int64_t{0});
  return "\nThis feature can only be accessed programmatically.\nLength: " + Bold(FormatInteger(length, false)) +
         " bytes\n";
}

KrString FormatTypePart(KrGenParameter& aFeature) {
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aFeature))
    return FormatIntegerPart(*integer);
  if (auto* const string = dynamic_cast<KrGenString*>(&aFeature))
    return FormatStringPart(*string);
  if (auto* const number = dynamic_cast<KrGenFloat*>(&aFeature))
    return FormatFloatPart(*number);
  if (auto* const memory = dynamic_cast<KrGenRegister*>(&aFeature))
    return FormatRegisterPart(*memory);
  return {};
}

// An entry's number in hexadecimal digits: 32 bits, as its register mostly has, unless it needs more.
KrString FormatEntryDigits(std::int64_t aValue) {
  const bool isShort = aValue >= INT32_MIN && aValue <= INT32_MAX;
  return FormatHexDigits(isShort ? static_cast<std::uint32_t>(aValue) : static_cast<std::uint64_t>(aValue));
}

KrString FormatEntry(const KrGenEnumEntry& aEntry) {
  const auto name = ReadOr(aEntry, static_cast<GetText>(&KrGenParameter::GetName), KrString());
  const auto displayName = ReadOr(aEntry, &KrGenParameter::GetDisplayName, KrString());
  const auto description = ReadOr(aEntry, &KrGenParameter::GetDescription, KrString());
  const auto value = ReadOr(aEntry, &KrGenEnumEntry::GetValue, std::int64_t{0});
  const auto nameSpace = ReadOr(aEntry, &KrGenParameter::GetNameSpace, KrGenNameSpace::Standard);
  const auto visibility = ReadOr(aEntry, &KrGenParameter::GetVisibility, KrGenVisibility::Beginner);
  KrString text = Bold(displayName) + "\n";
  if (!description.IsEmpty())
    text += Enclose(description) + "\n";
  text += "\nEnum Entry Name: " + Bold(name) + "\n";
  text += "Enum Entry Value: " + Bold(FormatInteger(value, false) + " (0x" + FormatEntryDigits(value) + ")") + "\n";
  text += "Name Space: " + Bold(NameSpaceToText(nameSpace)) + "\n";
  text += "Visibility:" + Bold(VisibilityToText(visibility)) + "\n\n";
  return text;
}

KrString FormatEntries(const KrGenEnum& aEnumeration) {
  using Count = KrResult (KrGenEnum::*)(std::size_t&) const;
  const auto count = ReadOr(aEnumeration, static_cast<Count>(&KrGenEnum::GetEntriesCount), std::size_t{0});
  KrString text;
  for (std::size_t index = 0; index < count && text.GetLength() <= kMostTextBytes; ++index) {
    KrGenEnumEntry* entry = nullptr;
    if (aEnumeration.GetEntryByIndex(index, entry).IsOK())
      text += FormatEntry(*entry);
  }
  return text;
}

KrString FormatFeature(const TreeItemData& aNode, KrGenParameter& aFeature) {
  KrString text = FormatSelectors(aNode);
  text += Enclose(ReadOr(aFeature, &KrGenParameter::GetDescription, KrString()));
  if (!text.IsEmpty())
    text += "\n";
  text += FormatTypePart(aFeature);
  text += "\nFeature Name: " + Bold(aNode.GetName()) + "\n";
  text += "Type: " + Bold(aNode.GetTypeText()) + "\n";
  text += "Name Space: " + Bold(aNode.GetNameSpaceText()) + "\n";
  text += "Visibility: " + Bold(aNode.GetVisibilityText()) + "\n";
  text += "Streamable: " + Bold(aNode.GetStreamableText()) + "\n";
  const auto* const enumeration = dynamic_cast<const KrGenEnum*>(&aFeature);
  const KrString entries = enumeration ? FormatEntries(*enumeration) : KrString();
  if (!entries.IsEmpty())
    text += "\n" + entries;
  return text;
}

KrString FormatCategory(const TreeItemData& aNode, const KrGenCategory& aCategory) {
  KrString text;
  (void)aCategory.GetDescription(text); // Without one there is none to show.
  text = Enclose(text);
  if (!text.IsEmpty())
    text += "\n";
  text += "\nCategory Name: " + Bold(aNode.GetName()) + "\n";
  text += "Type: " + Bold(aNode.GetTypeText()) + "\n";
  text += "Name Space: " + Bold(aNode.GetNameSpaceText()) + "\n";
  return text;
}

} // namespace

KrString FormatDescriptionTitle(const TreeItemData& aNode) {
  return Cut(aNode.GetDisplayName(), kMostTitleBytes);
}

KrString FormatDescription(const TreeItemData& aNode) {
  KrString text;
  if (KrGenParameter* const feature = aNode.GetParameter())
    text = FormatFeature(aNode, *feature);
  else if (const KrGenCategory* const category = aNode.GetCategory())
    text = FormatCategory(aNode, *category);
  return Enclose(Cut(text, kMostTextBytes));
}

} // namespace krgui
