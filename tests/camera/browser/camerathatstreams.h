#pragma once
// A camera of a test's own that streams while its features are changed, with what its picture looks like.

#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

/// Thread: construction and destruction on one thread, the rest on any. Failures fail the test.
class CameraThatStreams {
public:
  /// aDescription: in place of the camera's own.
  explicit CameraThatStreams(const KrDeviceInfo& aInfo, const KrGenDescription* aDescription = nullptr) {
    const KrResult opened = KrDevice::Open(aInfo, KrDeviceAccess::Control, mDevice);
    EXPECT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    if (mDevice && aDescription) {
      EXPECT_TRUE(mDevice->SetDescription(*aDescription).IsOK());
    }
    if (mDevice)
      mThread = std::jthread([this](std::stop_token aStop) { Stream(aStop); });
  }

  /// Only where the camera could be opened.
  KrDevice& GetDevice() { return *mDevice; }
  /// Null when the camera could not be opened.
  KrGenParameterArray* GetParameters() { return mDevice ? mDevice->GetParameters() : nullptr; }
  /// The mean of the bytes of the last frame; negative before the first.
  double GetBrightness() const { return mBrightness; }
  /// The last frame was not the same as the one before.
  bool IsMoving() const { return mIsMoving; }

private:
  void Stream(const std::stop_token& aStop) {
    KrStream stream(*mDevice);
    const KrResult started = stream.Start();
    EXPECT_TRUE(started.IsOK()) << started.GetDescription().CStr();
    while (started.IsOK() && !aStop.stop_requested()) {
      KrBuffer* buffer = nullptr;
      static_cast<void>(stream.Retrieve(buffer, 500)); // None may come for a while.
      if (!buffer)
        continue;
      Look(*buffer->GetImage());
      EXPECT_TRUE(stream.Release(buffer).IsOK());
    }
  }
  void Look(const IKrImage& aImage) {
    const std::uint8_t* const bytes = aImage.GetDataPointer();
    std::vector<std::uint8_t> frame(bytes, bytes + aImage.GetImageSize());
    double sum = 0;
    for (const std::uint8_t byte : frame)
      sum += byte;
    mBrightness = sum / static_cast<double>(frame.size());
    mIsMoving = frame != mLast;
    mLast = std::move(frame);
  }

  std::unique_ptr<KrDevice> mDevice;
  std::atomic<double> mBrightness = -1;
  std::atomic<bool> mIsMoving = true;
  std::vector<std::uint8_t> mLast; ///< The thread's own.
  std::jthread mThread;            ///< Last, so that it ends before what it uses.
};
