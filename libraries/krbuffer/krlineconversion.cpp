#include "krbuffer/krlineconversion.h"

#include "converterbody.h"
#include "krbuffer/krpixeltype.h"
#include "sourceimage.h"

#include <optional>
#include <utility>

namespace {

using krbuffer::ImageShape;
using krbuffer::LineConverter;
using krbuffer::SourceImage;

KrResult RefuseClosed() {
  return {KrResult::Code::InvalidInput, "Lines were to be converted without an image. Open the conversion first."};
}

bool AreSame(const ImageShape& aLeft, const ImageShape& aRight) {
  return aLeft.width == aRight.width && aLeft.height == aRight.height && aLeft.type == aRight.type &&
         aLeft.paddingX == aRight.paddingX && aLeft.paddingY == aRight.paddingY;
}

bool HasAlphaOfItsOwn(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aType);
  return format && (format->layout == KrPixelLayout::RGBa || format->layout == KrPixelLayout::BGRa);
}

} // namespace

struct KrLineConversion::Body {
  SourceImage source;
  bool hasAlpha = false;
  std::unique_ptr<LineConverter> converter;

  static std::unique_ptr<Body> Make(KrBufferConverter::Body& aConverter, const SourceImage& aSource) {
    auto body = std::make_unique<Body>();
    body->source = aSource;
    body->hasAlpha = HasAlphaOfItsOwn(aSource.shape.type);
    body->converter = krbuffer::MakeSourceConverter(aSource, KrPixel::BGRa8, aConverter.tones);
    return body;
  }

  KrResult Rebind(const SourceImage& aCopy) {
    if (!AreSame(aCopy.shape, source.shape) || !krbuffer::CheckSource(aCopy, KrPixel::BGRa8).IsOK())
      return {KrResult::Code::InvalidInput, "A conversion was to go on with an image of another size, format or "
                                            "padding, or with fewer bytes. Open it anew for that image."};
    source = aCopy;
    converter->Rebind(aCopy.data);
    return {};
  }

  KrResult ConvertAll(KrBufferConverter::Body& aConverter, KrBuffer& aDestination) const {
    if (krbuffer::ShareMemory(source, aDestination))
      return krbuffer::RefuseSharedMemory();
    krbuffer::WorkerPool* const workers = aConverter.FindPool(source.shape);
    const KrPayloadType payload = aDestination.GetPayloadType();
    aDestination.SetPayloadType(KrPayloadType::Image);
    IKrImage& image = *aDestination.GetImage();
    if (KrResult result = krbuffer::FitDestination(source.shape, KrPixel::BGRa8, image, true); !result.IsOK()) {
      aDestination.SetPayloadType(payload);
      return result;
    }
    aConverter.ConvertLines(*converter, image, false, workers);
    return {};
  }
};

KrLineConversion::KrLineConversion() = default;
KrLineConversion::~KrLineConversion() = default;
KrLineConversion::KrLineConversion(KrLineConversion&& aOther) noexcept = default;
KrLineConversion& KrLineConversion::operator=(KrLineConversion&& aOther) noexcept = default;

KrResult KrLineConversion::Open(const KrBufferConverter& aConverter, const IKrImage& aSource) {
  Close();
  try {
    const SourceImage source = krbuffer::AskSource(aSource);
    if (KrResult result = krbuffer::CheckSource(source, KrPixel::BGRa8); !result.IsOK())
      return result;
    mBody = Body::Make(*aConverter.mBody, source);
    return {};
  } catch (...) {
    return krbuffer::ExplainConversionEnd();
  }
}

KrResult KrLineConversion::Rebind(const IKrImage& aCopy) {
  if (!mBody)
    return RefuseClosed();
  try {
    return mBody->Rebind(krbuffer::AskSource(aCopy));
  } catch (...) {
    return krbuffer::ExplainConversionEnd();
  }
}

void KrLineConversion::Close() {
  mBody.reset();
}

bool KrLineConversion::IsOpen() const {
  return mBody != nullptr;
}

std::uint32_t KrLineConversion::GetWidth() const {
  return mBody ? mBody->source.shape.width : 0;
}

std::uint32_t KrLineConversion::GetHeight() const {
  return mBody ? mBody->source.shape.height : 0;
}

bool KrLineConversion::HasAlpha() const {
  return mBody && mBody->hasAlpha;
}

void KrLineConversion::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination) const {
  mBody->converter->ConvertLine(aLine, aDestination, krbuffer::StoreKind::Cached);
}

const std::uint8_t* KrLineConversion::FindLine(std::uint32_t aLine) const {
  return mBody->converter->FindLine(aLine);
}

KrResult KrLineConversion::ConvertAll(const KrBufferConverter& aConverter, KrBuffer& aDestination) const {
  if (!mBody)
    return RefuseClosed();
  try {
    return mBody->ConvertAll(*aConverter.mBody, aDestination);
  } catch (...) {
    return krbuffer::ExplainConversionEnd();
  }
}
