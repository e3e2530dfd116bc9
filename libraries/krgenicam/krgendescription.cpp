#include "krgenicam/krgendescription.h"

#include "description/descriptionlocator.h"
#include "description/textencoding.h"
#include "description/unzipping.h"
#include "krbase/krwholefile.h"

#include <utility>

namespace {

KrResult Refuse(const KrString& aOrigin, const KrResult& aReason) {
  return {aReason.GetCode(), "The camera description " + aOrigin + " cannot be read: " + aReason.GetDescription()};
}

} // namespace

KrResult KrGenDescription::ReadFromDevice(IKrRegisterPort& aPort, KrGenBootstrap aBootstrap,
                                          KrGenDescription& aDescription, std::uint32_t aTimeoutMs,
                                          const std::stop_token& aCancel) {
  krgenicam::DescriptionLocator locator(aPort, aTimeoutMs, aCancel);
  return locator.Find(aBootstrap, [&aDescription](const std::string& aBytes, const std::string& aOrigin) {
    return ReadFromMemory(aBytes, aOrigin, aDescription);
  });
}

KrResult KrGenDescription::ReadFromFile(const KrString& aPath, KrGenDescription& aDescription) {
  std::string bytes;
  const KrResult result = KrReadWholeFile(aPath, kMaxBytes, bytes);
  if (result == KrResult::Code::OutOfRange || result == KrResult::Code::InvalidInput)
    return Refuse(aPath, {KrResult::Code::BadData, result.GetDescription()});
  return result.IsOK() ? ReadFromMemory(bytes, aPath, aDescription) : Refuse(aPath, result);
}

KrResult KrGenDescription::ReadFromMemory(std::string_view aBytes, const KrString& aOrigin,
                                          KrGenDescription& aDescription) {
  if (aBytes.size() > kMaxBytes)
    return Refuse(aOrigin, {KrResult::Code::BadData, "it has more than " + std::to_string(kMaxBytes >> 20) + " MiB."});
  std::string unpacked;
  const bool isZip = krgenicam::IsZip(aBytes);
  if (isZip) {
    if (KrResult result = krgenicam::Unzip(aBytes, kMaxBytes, unpacked); !result.IsOK())
      return Refuse(aOrigin, result);
  }
  std::string text;
  if (KrResult result = krgenicam::TakeAsUtf8(isZip ? std::string_view(unpacked) : aBytes, text); !result.IsOK())
    return Refuse(aOrigin, result);
  aDescription.mText = std::make_shared<const std::string>(std::move(text));
  aDescription.mOrigin = aOrigin;
  return {};
}

std::string_view KrGenDescription::GetText() const {
  return mText ? std::string_view(*mText) : std::string_view();
}
