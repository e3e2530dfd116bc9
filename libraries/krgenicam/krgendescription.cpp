#include "krgenicam/krgendescription.h"

#include <utility>

namespace {

KrResult Refuse(const KrString& aOrigin, const std::string& aReason) {
  return {KrResult::Code::BadData, "The camera description " + aOrigin.ToUtf8() + " cannot be used: " + aReason};
}

} // namespace

KrResult KrGenDescription::ReadFromMemory(std::string_view aBytes, const KrString& aOrigin,
                                          KrGenDescription& aDescription) {
  if (aBytes.size() > kMaxBytes)
    return Refuse(aOrigin, "it has more than " + std::to_string(kMaxBytes >> 20) + " MiB.");
  const std::size_t end = aBytes.find_last_not_of('\0');
  std::string text(aBytes.substr(0, end == std::string_view::npos ? 0 : end + 1));
  if (text.starts_with("\xEF\xBB\xBF"))
    text.erase(0, 3);
  if (text.empty())
    return Refuse(aOrigin, "it is empty.");
  aDescription.mText = std::make_shared<const std::string>(std::move(text));
  aDescription.mOrigin = aOrigin;
  return {};
}

std::string_view KrGenDescription::GetText() const {
  return mText ? std::string_view(*mText) : std::string_view();
}
