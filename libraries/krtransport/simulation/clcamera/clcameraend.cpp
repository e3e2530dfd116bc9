#include "simulation/clcamera/clcameraend.h"

#include "simulation/clcamera/clprotocolcamera.h"
#include "simulation/clcamera/gencpcamera.h"
#include "simulation/clcamera/textcamera.h"

#include <algorithm>
#include <utility>

namespace krtransport {

namespace {

// Nothing more is heard while so much is to be said, as with hardware handshake.
constexpr std::size_t kMostWaitingBytes = 16384;

} // namespace

std::unique_ptr<ICameraTalk> MakeCameraTalk(const LabCLCamera& aCamera) {
  switch (aCamera.protocol) {
  case CLCameraProtocol::CLProtocol:
    return std::make_unique<CLProtocolCamera>(aCamera);
  case CLCameraProtocol::Text:
    return std::make_unique<TextCamera>(aCamera);
  default:
    return std::make_unique<GenCPCamera>(aCamera);
  }
}

CLCameraEnd::CLCameraEnd(const LabCLCamera& aCamera, bool aHasSpeed)
    : mTalk(MakeCameraTalk(aCamera)), mHasSpeed(aHasSpeed), mNeedsCablePower(aCamera.isPoweredByCable) {}

void CLCameraEnd::Open(std::uint32_t aRate, Waker) {
  mLineRate = aRate;
  mWaiting.clear();
  mWaitingBytes = 0;
  mTalk->ForgetPart();
}

void CLCameraEnd::SetPower(bool aIsOn) {
  if (!mNeedsCablePower)
    return;
  mIsPowered = aIsOn;
  mWaiting.clear();
  mWaitingBytes = 0;
  if (aIsOn)
    mTalk->Restart();
}

std::size_t CLCameraEnd::Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) {
  mNowNs = aNowNs;
  std::size_t taken = 0;
  while (taken < aSize && mWaitingBytes < kMostWaitingBytes) {
    const std::uint32_t rate = mTalk->GetRate(aNowNs);
    const std::uint8_t byte = aBytes[taken++];
    // What comes at another speed is no byte to the camera.
    if (!mIsPowered || !Fits(rate))
      continue;
    mTalk->Hear(byte, aNowNs, [&](CameraAnswer aAnswer) { Queue(std::move(aAnswer), rate); });
  }
  return taken;
}

// What is due sooner goes first, but for what is being sent.
void CLCameraEnd::Queue(CameraAnswer aAnswer, std::uint32_t aRate) {
  mWaitingBytes += aAnswer.bytes.size();
  const auto isLater = [&](const Waiting& aWaiting) {
    return aWaiting.given == 0 && aWaiting.answer.dueNs > aAnswer.dueNs;
  };
  const auto place = std::ranges::find_if(mWaiting, isLater);
  mWaiting.insert(place, {.answer = std::move(aAnswer), .rate = aRate});
}

std::size_t CLCameraEnd::Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) {
  mNowNs = aNowNs;
  std::size_t given = 0;
  while (!mWaiting.empty() && mWaiting.front().answer.dueNs <= aNowNs && given < aSize) {
    Waiting& first = mWaiting.front();
    const std::vector<std::uint8_t>& bytes = first.answer.bytes;
    const std::size_t left = bytes.size() - first.given;
    if (Fits(first.rate)) {
      const std::size_t size = std::min(left, aSize - given);
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(first.given), size, aBytes + given);
      first.given += size;
      given += size;
      mWaitingBytes -= size;
    } else {
      first.given = bytes.size();
      mWaitingBytes -= left;
    }
    if (first.given == bytes.size())
      mWaiting.pop_front();
  }
  return given;
}

// What is due already is asked for without being told so, as soon as the line has room.
std::uint64_t CLCameraEnd::GetNextNs() const {
  const bool isWaiting = !mWaiting.empty() && mWaiting.front().answer.dueNs > mNowNs;
  return isWaiting ? mWaiting.front().answer.dueNs : kNever;
}

} // namespace krtransport
