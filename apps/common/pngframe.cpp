#include "pngframe.h"

#include "shownimage.h"

#include <png.h>

#include <string>
#include <vector>

namespace krapps {

namespace {

// The library's description of an image, freed on every way out.
struct PngImage : png_image {
  explicit PngImage(const IKrImage& aImage) : png_image() {
    version = PNG_IMAGE_VERSION;
    width = aImage.GetWidth();
    height = aImage.GetHeight();
    format = aImage.GetPixelType() == KrPixel::Mono8 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
  }
  ~PngImage() { png_image_free(this); }
  PngImage(const PngImage&) = delete;
  PngImage& operator=(const PngImage&) = delete;
};

} // namespace

KrResult WritePng(const KrBuffer& aFrame, const FrameFileOptions& aOptions, KrAtomicFile& aFile) {
  const KrString failed = "The file \"" + aOptions.fileName + "\" cannot be written: ";
  KrBuffer shown;
  if (KrResult made = MakeShownImage(*aFrame.GetImage(), shown); !made.IsOK())
    return {made.GetCode(), failed + made.GetDescription()};

  PngImage image(*shown.GetImage());
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<std::uint8_t> file(size);
  if (!png_image_write_to_memory(&image, file.data(), &size, 0, shown.GetDataPointer(), 0, nullptr))
    return {KrResult::Code::NotSupported, failed + image.message + "."};
  return aFile.Write(file.data(), size);
}

} // namespace krapps
