#include "randomcamera.h"

#include "krgui/krdisplaywnd.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

namespace {

constexpr KrPixelType kTypes[] = {KrPixel::Mono8,    KrPixel::Mono10p,  KrPixel::Mono12p,    KrPixel::Mono12Packed,
                                  KrPixel::Mono16,   KrPixel::BayerRG8, KrPixel::BayerGB12p, KrPixel::BayerRG10,
                                  KrPixel::RGB8,     KrPixel::BGR8,     KrPixel::BGRa8,      KrPixel::RGB12,
                                  KrPixel::YUV422_8, KrPixel::Mono1p,   KrPixel::YCbCr8,     KrPixel::Coord3D_C32f};
// The code of no format.
constexpr KrPixelType kUnknownType = 0x81080099;

} // namespace

RandomCamera::RandomCamera(KrDisplayWnd& aWindow, SharedSize& aSize, std::uint32_t aSeed)
    : mWindow(aWindow), mSize(aSize), mRandom(aSeed) {
  constexpr std::size_t kMostBytesPerPixel = 6;
  mNoise.resize(std::size_t(kMostWidth) * kMostHeight * kMostBytesPerPixel);
  std::generate(mNoise.begin(), mNoise.end(), [&] { return static_cast<std::uint8_t>(mRandom()); });
}

std::uint32_t RandomCamera::Draw(std::uint32_t aFirst, std::uint32_t aLast) {
  return std::uniform_int_distribution<std::uint32_t>(aFirst, aLast)(mRandom);
}

std::shared_ptr<KrBuffer> RandomCamera::MakeFrame(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType) {
  auto frame = std::make_shared<KrBuffer>();
  if (!frame->GetImage()->Alloc(aWidth, aHeight, aType).IsOK()) {
    ++mFailures;
    return frame;
  }
  for (std::size_t begin = 0; begin < frame->GetSize(); begin += mNoise.size())
    std::memcpy(frame->GetDataPointer() + begin, mNoise.data(), std::min(mNoise.size(), frame->GetSize() - begin));
  return frame;
}

void RandomCamera::GiveLargest() {
  for (const KrPixelType type : kTypes) {
    const std::shared_ptr<const KrBuffer> frame = MakeFrame(kMostWidth, kMostHeight, type);
    mFailures += mWindow.Display(*frame, false).IsOK() ? 0 : 1;
    mFailures += mWindow.DisplayHeld(frame, false).IsOK() ? 0 : 1;
    mWindow.GetInternalBuffer();
  }
}

void RandomCamera::Step() {
  const std::uint32_t choice = Draw(0, 99);
  if (choice < 80)
    GiveFrames();
  else if (choice < 83)
    GiveBadFrame();
  else if (choice < 86)
    mWindow.Clear();
  else if (choice < 94)
    ChangeText();
  else
    Ask();
}

void RandomCamera::ChangeSize() {
  const bool isSmall = Draw(0, 3) != 0;
  const std::uint32_t width = Draw(1, isSmall ? 300 : kMostWidth);
  mSize = width << 16 | Draw(1, isSmall ? 300 : kMostHeight);
}

/// A few of the same size and format, as cameras send them.
void RandomCamera::GiveFrames() {
  if (Draw(0, 9) == 0)
    ChangeSize();
  const std::uint32_t size = mSize;
  const std::shared_ptr<const KrBuffer> frame =
      MakeFrame(size >> 16, size & 0xFFFF, kTypes[Draw(0, std::size(kTypes) - 1)]);
  const bool isHeld = Draw(0, 1) != 0;
  for (std::uint32_t count = Draw(1, 8); count > 0; --count)
    mFailures += (isHeld ? mWindow.DisplayHeld(frame, false) : mWindow.Display(*frame, false)).IsOK() ? 0 : 1;
}

void RandomCamera::GiveBadFrame() {
  ++mRefusals;
  KrBuffer frame;
  if (Draw(0, 1) != 0) {
    frame.SetPayloadType(KrPayloadType::RawData);
  } else {
    const bool isMade = frame.Alloc(64).IsOK() && frame.DescribeImage(8, 8, kUnknownType).IsOK();
    mFailures += isMade ? 0 : 1;
  }
  mFailures += mWindow.Display(frame, false).IsOK() ? 1 : 0;
}

void RandomCamera::ChangeText() {
  std::string text;
  for (std::uint32_t line = Draw(0, 4); line > 0; --line)
    text += std::string(Draw(0, 40), static_cast<char>(Draw('A', 'z'))) + "\n";
  mWindow.SetTextOverlay(KrString(text.c_str()));
}

void RandomCamera::Ask() {
  mWindow.GetInternalBuffer();
  const KrString text = mWindow.GetTextOverlay();
  const KrDisplayStatistics statistics = mWindow.GetStatistics();
  mFailures += statistics.shown <= statistics.received ? 0 : 1;
}
