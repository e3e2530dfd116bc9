#pragma once
// A Camera Link camera behind a serial port: it needs power, hears and speaks only at its own speed, and answers when
// it is time. What it says is left to what it speaks.

#include "simulation/clcamera/icameratalk.h"
#include "simulation/labclcamera.h"
#include "simulation/serial/ilineend.h"

#include <deque>
#include <memory>

namespace krtransport {

/// Makes what a camera speaks.
std::unique_ptr<ICameraTalk> MakeCameraTalk(const LabCLCamera& aCamera);

/// Thread and ownership as ILineEnd. What the camera is set to stays from one opening of the port to the next.
class CLCameraEnd final : public ILineEnd {
public:
  /// aHasSpeed: whether the line has one; else every speed is the camera's.
  CLCameraEnd(const LabCLCamera& aCamera, bool aHasSpeed);

  void Open(std::uint32_t aRate, Waker aWaker) override;
  void Close() override {}
  void SetRate(std::uint32_t aRate) override { mLineRate = aRate; }
  void SetPower(bool aIsOn) override;
  std::size_t Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;
  std::size_t Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;
  std::uint64_t GetNextNs() const override;

private:
  struct Waiting {
    CameraAnswer answer;
    std::uint32_t rate;    // At which it is sent.
    std::size_t given = 0; // Bytes of it.
  };

  void Queue(CameraAnswer aAnswer, std::uint32_t aRate);
  bool Fits(std::uint32_t aRate) const { return !mHasSpeed || aRate == mLineRate; }

  const std::unique_ptr<ICameraTalk> mTalk;
  const bool mHasSpeed;
  const bool mNeedsCablePower;
  bool mIsPowered = true;
  std::uint32_t mLineRate = 0;
  std::uint64_t mNowNs = 0;     // When it was asked last.
  std::deque<Waiting> mWaiting; // Answers, in the order of their times.
  std::size_t mWaitingBytes = 0;
};

} // namespace krtransport
