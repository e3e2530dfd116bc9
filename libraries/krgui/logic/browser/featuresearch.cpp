#include "logic/browser/featuresearch.h"

#include "logic/browser/treeitemdata.h"

#include <algorithm>
#include <locale.h>
#include <string>
#include <wctype.h>

namespace krgui {

namespace {

constexpr std::size_t kMostResultCharacters = 31;

constexpr char32_t kFirstBeyondAscii = 0x80;
constexpr char32_t kFirstPair = 0x10000;
constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr int kPairBits = 10;

bool IsAscii(const std::string& aText) {
  return std::all_of(aText.begin(), aText.end(), [](char character) { return (character & 0x80) == 0; });
}

char LowerAscii(char aCharacter) {
  return aCharacter >= 'A' && aCharacter <= 'Z' ? static_cast<char>(aCharacter - 'A' + 'a') : aCharacter;
}

/// The letters of all scripts, whatever locale the process has; null where the system lacks them.
locale_t GetLetterLocale() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return locale;
}

char32_t LowerCodePoint(char32_t aCodePoint) {
  if (aCodePoint < kFirstBeyondAscii) {
    return static_cast<char32_t>(LowerAscii(static_cast<char>(aCodePoint)));
  }
  const locale_t letters = GetLetterLocale();
  return letters ? static_cast<char32_t>(towlower_l(static_cast<wint_t>(aCodePoint), letters)) : aCodePoint;
}

std::size_t CountUnits(char32_t aCodePoint) {
  return aCodePoint < kFirstPair ? 1 : 2;
}

/// aText comes from a KrString, so its surrogates are in pairs.
std::u32string ToCodePoints(const std::u16string& aText) {
  std::u32string points;
  points.reserve(aText.size());
  for (std::size_t i = 0; i < aText.size(); ++i) {
    char32_t point = aText[i];
    if (point >= kFirstHigh && point < kFirstLow && i + 1 < aText.size()) {
      point = kFirstPair + ((point - kFirstHigh) << kPairBits) + (aText[++i] - kFirstLow);
    }
    points += point;
  }
  return points;
}

void AppendUnits(char32_t aCodePoint, std::u16string& aText) {
  if (aCodePoint < kFirstPair) {
    aText += static_cast<char16_t>(aCodePoint);
    return;
  }
  const char32_t offset = aCodePoint - kFirstPair;
  aText += static_cast<char16_t>(kFirstHigh + (offset >> kPairBits));
  aText += static_cast<char16_t>(kFirstLow + (offset & ((1U << kPairBits) - 1)));
}

/// What nearly all names of features are; there one byte is one unit, before and after.
std::optional<TextMatch> FindInAscii(const std::string& aName, const std::string& aLowerCaseText) {
  const auto match = std::search(aName.begin(), aName.end(), aLowerCaseText.begin(), aLowerCaseText.end(),
                                 [](char ofName, char ofText) { return LowerAscii(ofName) == ofText; });
  if (match == aName.end()) {
    return std::nullopt;
  }
  return TextMatch{static_cast<std::size_t>(match - aName.begin()), aLowerCaseText.size()};
}

/// Compares code point by code point, as a letter's lower case may need another number of units than the letter.
std::optional<TextMatch> FindInCodePoints(const std::u32string& aName, const std::u32string& aLowerCaseText) {
  const auto match = std::search(aName.begin(), aName.end(), aLowerCaseText.begin(), aLowerCaseText.end(),
                                 [](char32_t ofName, char32_t ofText) { return LowerCodePoint(ofName) == ofText; });
  if (match == aName.end()) {
    return std::nullopt;
  }
  const auto matchEnd = match + static_cast<std::ptrdiff_t>(aLowerCaseText.size());
  TextMatch units;
  std::for_each(aName.begin(), match, [&](char32_t point) { units.position += CountUnits(point); });
  std::for_each(match, matchEnd, [&](char32_t point) { units.length += CountUnits(point); });
  return units;
}

} // namespace

KrString ToLowerCase(const KrString& aText) {
  if (IsAscii(aText.ToUtf8())) {
    std::string lower = aText.ToUtf8();
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerAscii);
    return KrString(std::move(lower));
  }
  std::u16string lower;
  for (const char32_t point : ToCodePoints(aText.ToWide())) {
    AppendUnits(LowerCodePoint(point), lower);
  }
  return KrString(std::u16string_view(lower));
}

std::optional<TextMatch> FindMatch(const KrString& aName, const KrString& aLowerCaseText) {
  if (aLowerCaseText.IsEmpty()) {
    return std::nullopt;
  }
  if (IsAscii(aName.ToUtf8())) {
    return FindInAscii(aName.ToUtf8(), aLowerCaseText.ToUtf8());
  }
  return FindInCodePoints(ToCodePoints(aName.ToWide()), ToCodePoints(aLowerCaseText.ToWide()));
}

KrString FormatResult(std::size_t aPosition, std::size_t aCount) {
  if (aCount == 0) {
    return "No result found";
  }
  const std::string text = "Result " + std::to_string(aPosition) + " of " + std::to_string(aCount);
  return KrString(text.substr(0, kMostResultCharacters));
}

void FeatureSearch::Find(const std::vector<std::unique_ptr<TreeItemData>>& aFeatures, const KrString& aLowerCaseText,
                         bool aByDisplayName) {
  Clear();
  for (const std::unique_ptr<TreeItemData>& feature : aFeatures) {
    if (FindMatch(aByDisplayName ? feature->GetDisplayName() : feature->GetName(), aLowerCaseText)) {
      mResults.push_back(feature->GetItem());
    }
  }
}

void FeatureSearch::Clear() {
  mResults.clear();
  mCurrent = 0;
}

GridItem FeatureSearch::MoveToNext() {
  if (!mResults.empty()) {
    mCurrent = (mCurrent + 1) % mResults.size();
  }
  return GetCurrent();
}

GridItem FeatureSearch::MoveToPrevious() {
  if (!mResults.empty()) {
    mCurrent = (mCurrent == 0 ? mResults.size() : mCurrent) - 1;
  }
  return GetCurrent();
}

GridItem FeatureSearch::GetCurrent() const {
  return mResults.empty() ? kNoItem : mResults[mCurrent];
}

std::size_t FeatureSearch::GetPosition() const {
  return mResults.empty() ? 0 : mCurrent + 1;
}

} // namespace krgui
