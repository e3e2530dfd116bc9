// Whatever format, size and bytes a frame may have: it is converted as a whole or refused, always to the same pixels,
// by reads within its bytes alone; and what one pixel is said to hold is the same before and after it was unpacked.
//
// The first byte chooses the format: one of the table's or, behind them, the code in the four bytes that follow. Then
// come width and height, the padding of lines and image, what is set of the colours (a byte each), and the image's
// bytes.

#include "pixeltypetable.h"
#include "require.h"

#include "krbuffer/krbufferconverter.h"
#include "krbuffer/krlineconversion.h"
#include "krbuffer/krpixelvalue.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kBytesPerPixel = 4;
constexpr int kThreads = 1; // Others show the same, more slowly.

// A copy of bytes behind which nothing can be read, so that what reads beyond them ends the program, whatever it was
// compiled with.
class FencedBytes {
public:
  explicit FencedBytes(Bytes aBytes) {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t room = (aBytes.size() + page - 1) / page * page;
    mSize = room + page;
    mMemory = ::mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    Require(mMemory != MAP_FAILED);
    auto* const begin = static_cast<std::uint8_t*>(mMemory);
    Require(::mprotect(begin + room, page, PROT_NONE) == 0);
    mBytes = begin + (room - aBytes.size());
    std::ranges::copy(aBytes, mBytes);
  }
  ~FencedBytes() { ::munmap(mMemory, mSize); }
  FencedBytes(const FencedBytes&) = delete;
  FencedBytes& operator=(const FencedBytes&) = delete;

  std::uint8_t* Get() const { return mBytes; }

private:
  void* mMemory = nullptr;
  std::size_t mSize = 0;
  std::uint8_t* mBytes = nullptr;
};

std::uint8_t TakeByte(Bytes& aInput) {
  if (aInput.empty())
    return 0;
  const std::uint8_t byte = aInput.front();
  aInput = aInput.subspan(1);
  return byte;
}

KrPixelType TakeType(Bytes& aInput) {
  const std::size_t row = TakeByte(aInput);
  if (row < krbuffer::kPixelTypes.size())
    return krbuffer::kPixelTypes[row].type;
  KrPixelType type = 0;
  for (int i = 0; i < 4; ++i)
    type = type << 8 | TakeByte(aInput);
  return type;
}

// A bit for each setting that is not at its default, and the values by the others.
void SetColours(KrBufferConverter& aConverter, std::uint8_t aChoice) {
  const double degree = (aChoice >> 3) / 31.0;
  if ((aChoice & 1) != 0)
    Require(aConverter.SetWhiteBalance({degree * 16, 1, 16 - degree * 16}).IsOK());
  if ((aChoice & 2) != 0)
    Require(aConverter.SetGamma(0.1 + degree * 9).IsOK());
  if ((aChoice & 4) != 0)
    Require(aConverter.SetSampleWindow({-300 * degree, 70000 * degree + 1e-300}).IsOK());
}

std::vector<std::uint8_t> Convert(const KrBufferConverter& aConverter, const IKrImage& aImage, bool aIsBottomUp) {
  KrBuffer shown;
  if (!RequireReason(aConverter.Convert(&aImage, &shown, true, aIsBottomUp)))
    return {};
  const IKrImage& image = *shown.GetImage();
  Require(image.GetPixelType() == KrPixel::BGRa8 && image.GetWidth() == aImage.GetWidth());
  Require(image.GetHeight() == aImage.GetHeight());
  return {image.GetDataPointer(), image.GetDataPointer() + image.GetImageSize()};
}

// Line by line, and in the other order, come the same pixels.
void CheckLines(const KrBufferConverter& aConverter, const IKrImage& aImage, const std::vector<std::uint8_t>& aShown) {
  KrLineConversion lines;
  Require(lines.Open(aConverter, aImage).IsOK() == !aShown.empty());
  if (aShown.empty())
    return;
  const std::vector<std::uint8_t> turned = Convert(aConverter, aImage, true);
  Require(turned.size() == aShown.size());
  const std::size_t bytes = aImage.GetWidth() * kBytesPerPixel;
  std::vector<std::uint8_t> line(bytes);
  for (std::uint32_t number = 0; number < aImage.GetHeight(); ++number) {
    const Bytes shown = std::span(aShown).subspan(number * bytes, bytes);
    const Bytes mirrored = std::span(turned).subspan((aImage.GetHeight() - 1 - number) * bytes, bytes);
    lines.ConvertLine(number, line.data());
    Require(std::ranges::equal(shown, line) && std::ranges::equal(shown, mirrored));
    if (const std::uint8_t* const found = lines.FindLine(number))
      Require(std::memcmp(found, line.data(), bytes) == 0);
    for (std::size_t alpha = 3; alpha < bytes && !lines.HasAlpha(); alpha += kBytesPerPixel)
      Require(line[alpha] == 0xFF);
  }
}

bool IsSame(const KrPixelValue& aFirst, const KrPixelValue& aSecond) {
  const auto count = static_cast<std::size_t>(aFirst.sampleCount);
  // No number is equal to itself only by its bytes.
  return aFirst.sampleCount == aSecond.sampleCount &&
         std::memcmp(aFirst.samples.data(), aSecond.samples.data(), count * sizeof(double)) == 0;
}

void CheckPixels(const KrBufferConverter& aConverter, const IKrImage& aImage) {
  KrBuffer unpacked;
  const auto type = KrGetUnpackedPixelType(aImage.GetPixelType());
  bool isUnpacked = type && KrBufferConverter::IsConversionSupported(aImage.GetPixelType(), *type);
  if (isUnpacked) {
    Require(unpacked.GetImage()->Alloc(aImage.GetWidth(), aImage.GetHeight(), *type).IsOK());
    // What is set of the colours holds for BGRa8 alone, which is its own unpacked format.
    const KrBufferConverter plain(kThreads);
    const KrBufferConverter& converter = *type == KrPixel::BGRa8 ? plain : aConverter;
    isUnpacked = RequireReason(converter.Convert(&aImage, &unpacked, false, false));
    Require(isUnpacked);
  }
  for (std::uint32_t y = 0; y < aImage.GetHeight(); ++y)
    for (std::uint32_t x = 0; x < aImage.GetWidth(); ++x) {
      KrPixelValue value;
      const KrResult read = KrReadPixel(aImage, x, y, value);
      Require(read.IsOK() || read == KrResult::Code::NotSupported);
      Require(value.sampleCount >= (RequireReason(read) ? 1 : 0) && value.sampleCount <= 4);
      KrPixelValue again;
      if (read.IsOK() && isUnpacked && KrReadPixel(*unpacked.GetImage(), x, y, again).IsOK())
        Require(IsSame(value, again));
    }
  KrPixelValue none;
  Require(KrReadPixel(aImage, aImage.GetWidth(), 0, none) == KrResult::Code::InvalidInput);
  Require(KrReadPixel(aImage, 0, aImage.GetHeight(), none) == KrResult::Code::InvalidInput && none.sampleCount == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  Bytes input(aData, aSize);
  const KrPixelType type = TakeType(input);
  const std::uint32_t width = TakeByte(input);
  const std::uint32_t height = TakeByte(input);
  const std::uint32_t paddingX = TakeByte(input);
  const std::uint32_t paddingY = TakeByte(input);
  KrBufferConverter converter(kThreads);
  SetColours(converter, TakeByte(input));
  if (input.empty())
    return 0;

  const FencedBytes memory(input);
  KrBuffer buffer;
  Require(buffer.Attach(memory.Get(), input.size()).IsOK());
  if (!RequireReason(buffer.DescribeImage(width, height, type, paddingX, paddingY)))
    return 0;
  const IKrImage& image = *buffer.GetImage();
  Require(image.GetImageSize() <= input.size());

  const std::vector<std::uint8_t> shown = Convert(converter, image, false);
  Require(shown.empty() != KrBufferConverter::IsConversionSupported(type, KrPixel::BGRa8));
  CheckLines(converter, image, shown);
  CheckPixels(converter, image);
  return 0;
}
