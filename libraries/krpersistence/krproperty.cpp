#include "krpersistence/krproperty.h"

#include "krbase/utf8cut.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace {

constexpr std::size_t kMostBytesQuoted = 100; // A message is for a line, a value may be a page.

std::string Quote(const KrString& aText) {
  const std::string& text = aText.ToUtf8();
  const std::string beginning(krbase::CutUtf8(text, kMostBytesQuoted));
  return "\"" + beginning + (beginning.size() < text.size() ? "…\"" : "\"");
}

} // namespace

KrProperty::KrProperty(const KrString& aName, const KrString& aValue) : mName(aName), mValue(aValue) {}

void KrProperty::SetName(const KrString& aName) {
  mName = aName;
}

void KrProperty::SetValue(const KrString& aValue) {
  mValue = aValue;
}

KrResult KrProperty::GetValue(std::int64_t& aValue) const {
  const std::string_view text = mValue.ToUtf8();
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isDecimal = error != std::errc::invalid_argument && end == text.data() + text.size();
  if (!isDecimal)
    return {KrResult::Code::BadData,
            "The property " + Quote(mName) + " holds " + Quote(mValue) + ", which is no decimal integer."};
  if (error != std::errc())
    return {KrResult::Code::OutOfRange,
            "The property " + Quote(mName) + " holds " + Quote(mValue) + ", which is beyond 64 bits."};
  aValue = value;
  return {};
}
