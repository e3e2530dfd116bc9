#pragma once
// A line to a camera that is the test's: a pair of sockets, the program's line at one end, a thread with the camera at
// the other, and what can go wrong in between.

#include "line/icameraline.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace krtest {

/// The program's end. Thread: as ICameraLine. Ownership: borrows the socket.
class SocketLine final : public krcamerabridge::ICameraLine {
public:
  explicit SocketLine(int aSocket) : mSocket(aSocket) {}

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;
  void DropReceived() override;
  std::vector<std::uint32_t> GetSupportedBaudRates() override { return {}; }
  std::uint32_t GetBaudRate() override { return 0; }
  KrResult SetBaudRate(std::uint32_t) override { return KrResult::Code::NotSupported; }

private:
  KrResult Await(short aEvents, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const;

  const int mSocket;
};

/// The camera's end. Thread: any. What does not work throws.
class CameraEnd {
public:
  /// Gets all that comes in pieces of any size, and gives what the camera says to it.
  using Camera = std::function<std::string(std::string_view)>;

  explicit CameraEnd(Camera aCamera);
  ~CameraEnd();
  CameraEnd(const CameraEnd&) = delete;
  CameraEnd& operator=(const CameraEnd&) = delete;

  krcamerabridge::ICameraLine& GetLine() { return mLine; }
  /// Of both directions, one byte in aEvery is lost, changed or doubled; 0 for none.
  void SetFaults(unsigned aEvery, unsigned aSeed);
  /// How many there were so far.
  int CountFaults();
  /// While it is silent the camera gets what comes, and what it says is lost.
  void SetSilent(bool aIsSilent) { mIsSilent = aIsSilent; }
  /// While answers are held back they are collected, and sent when they are not any more.
  void HoldBack(bool aIsHeld);
  /// Sends bytes that nobody asked for.
  void Say(std::string_view aBytes);
  /// Waits until the camera has got so many bytes in all; false where that takes longer than is generous.
  bool AwaitBytes(std::size_t aCount);
  /// Breaks the line.
  void HangUp();

private:
  void Run(const std::stop_token& aStop);
  std::string Damage(std::string_view aBytes);
  void Send(std::string_view aBytes);

  int mSockets[2] = {-1, -1};
  SocketLine mLine;
  Camera mCamera;
  std::atomic<bool> mIsSilent{false};
  std::mutex mMutex; // Guards the members from here to the thread.
  std::condition_variable mChanged;
  std::size_t mCount = 0;
  bool mIsHeld = false;
  std::string mHeld;
  unsigned mEvery = 0;
  std::minstd_rand mRandom;
  int mFaults = 0;
  std::jthread mThread;
};

} // namespace krtest
