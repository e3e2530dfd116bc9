#include "krbase/krstring.h"

#include "krbase/utf8sequence.h"

#include <utility>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;

/// A code point and the number of code units that it was read from.
struct Decoded {
  char32_t point;
  std::size_t length;
};

bool IsHighSurrogate(char32_t aUnit) {
  return aUnit >= 0xD800 && aUnit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t aUnit) {
  return aUnit >= 0xDC00 && aUnit <= 0xDFFF;
}

/// Reads the first code point of a text that is not empty.
Decoded DecodeUtf16(std::u16string_view aText) {
  const char32_t first = aText.front();
  if (!IsHighSurrogate(first) && !IsLowSurrogate(first))
    return {first, 1};
  if (IsHighSurrogate(first) && aText.size() > 1 && IsLowSurrogate(aText[1]))
    return {kFirstSupplementary + ((first - 0xD800) << 10) + (aText[1] - 0xDC00u), 2};
  return {kReplacement, 1};
}

void AppendUtf16(std::u16string& aText, char32_t aPoint) {
  if (aPoint < kFirstSupplementary) {
    aText.push_back(static_cast<char16_t>(aPoint));
    return;
  }
  const char32_t offset = aPoint - kFirstSupplementary;
  aText.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
  aText.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

} // namespace

KrString::KrString(const char* aUtf8) : mUtf8(aUtf8 ? aUtf8 : "") {}

KrString::KrString(std::string_view aUtf8) : mUtf8(aUtf8) {}

KrString::KrString(std::string aUtf8) : mUtf8(std::move(aUtf8)) {}

KrString::KrString(const char16_t* aWide) : KrString(aWide ? std::u16string_view(aWide) : std::u16string_view()) {}

KrString::KrString(std::u16string_view aWide) {
  mUtf8.reserve(aWide.size());
  while (!aWide.empty()) {
    const Decoded decoded = DecodeUtf16(aWide);
    krbase::AppendUtf8(mUtf8, decoded.point);
    aWide.remove_prefix(decoded.length);
  }
}

std::u16string KrString::ToWide() const {
  std::u16string wide;
  wide.reserve(mUtf8.size());
  std::string_view rest = mUtf8;
  while (!rest.empty()) {
    const krbase::Utf8Sequence sequence = krbase::ReadUtf8(rest);
    AppendUtf16(wide, sequence.point);
    rest.remove_prefix(sequence.length);
  }
  return wide;
}

KrString& KrString::operator+=(const KrString& aOther) {
  mUtf8 += aOther.mUtf8;
  return *this;
}

KrString operator+(const KrString& aLeft, const KrString& aRight) {
  KrString joined = aLeft;
  joined += aRight;
  return joined;
}
