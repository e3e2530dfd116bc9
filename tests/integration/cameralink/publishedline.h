#pragma once
// A port that is published for Camera Link programs, with the test in the place of the bridge: it collects what
// programs send, sends what the test wants, and records the speeds that are asked for.

#include "await.h"
#include "bridge/cameralinkend.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// A directory of sockets of the test's own.
class SocketFolder {
public:
  SocketFolder() { setenv("KRGUI_CAMERA_LINK_DIR", mFolder.GetFile("sockets").c_str(), 1); }
  ~SocketFolder() { unsetenv("KRGUI_CAMERA_LINK_DIR"); }

  std::string GetPath() const { return mFolder.GetFile("sockets"); }

private:
  TemporaryFolder mFolder;
};

/// The bytes that clprogram sends and expects.
inline std::vector<std::uint8_t> MakeLineBytes(std::size_t aCount) {
  std::vector<std::uint8_t> bytes(aCount);
  for (std::size_t i = 0; i < aCount; ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
  return bytes;
}

class PublishedLine {
public:
  enum class Taking { AtOnce, Later };

  explicit PublishedLine(const std::string& aName, Taking aTaking = Taking::AtOnce,
                         const krserial::DevicePortSpeed& aSpeed = {}) {
    const KrResult opened = krserial::CameraLinkEnd::Open(aName, true, mEnd);
    if (!opened.IsOK())
      throw std::runtime_error(opened.GetDescription().ToUtf8());
    mEnd->SetSpeedRequest([this](std::uint32_t aBaudRate) { return AskSpeed(aBaudRate); });
    mEnd->TellSpeed(aSpeed);
    if (aTaking == Taking::AtOnce) {
      Take();
      return;
    }
    // A look that does not wait makes programs be served.
    std::stop_source stopped;
    stopped.request_stop();
    std::size_t read = 0;
    EXPECT_EQ(mEnd->Read(nullptr, 0, read, stopped.get_token()).GetCode(), KrResult::Code::Aborted);
  }
  ~PublishedLine() { mTaker.request_stop(); }

  krserial::CameraLinkEnd& GetEnd() { return *mEnd; }

  /// Begins to take what programs send.
  void Take() {
    mTaker = std::jthread([this](const std::stop_token& aStop) {
      std::vector<std::uint8_t> bytes(1000);
      std::size_t read = 0;
      while (mEnd->Read(bytes.data(), bytes.size(), read, aStop).IsOK()) {
        const std::lock_guard lock(mMutex);
        mTaken.insert(mTaken.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(read));
        mChanged.notify_all();
      }
    });
  }
  /// Takes out what programs have sent, as soon as there are so many bytes; fewer when they do not come.
  std::vector<std::uint8_t> AwaitTaken(std::size_t aCount) {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mChanged.wait_for(lock, kLimit, [&] { return mTaken.size() >= aCount; }))
        << mTaken.size() << " bytes of " << aCount;
    return std::exchange(mTaken, {});
  }
  /// Gives bytes of the device; returns when all are taken.
  void Give(const std::vector<std::uint8_t>& aBytes) {
    std::size_t written = 0;
    const KrResult result = mEnd->Write(aBytes.data(), aBytes.size(), written, {});
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(written, aBytes.size());
    mEnd->TellEmpty();
  }

  /// What the device does with a speed from now on.
  void AnswerSpeeds(const KrResult& aResult) {
    const std::lock_guard lock(mMutex);
    mSpeedResult = aResult;
  }
  std::vector<std::uint32_t> GetAskedSpeeds() {
    const std::lock_guard lock(mMutex);
    return mAskedSpeeds;
  }

private:
  inline static const std::chrono::milliseconds kLimit = 2 * krtest::GetGenerousLimit();

  KrResult AskSpeed(std::uint32_t aBaudRate) {
    const std::lock_guard lock(mMutex);
    mAskedSpeeds.push_back(aBaudRate);
    return mSpeedResult;
  }

  std::mutex mMutex; // Guards what follows, up to the end.
  std::condition_variable mChanged;
  std::vector<std::uint8_t> mTaken;
  std::vector<std::uint32_t> mAskedSpeeds;
  KrResult mSpeedResult;

  std::unique_ptr<krserial::CameraLinkEnd> mEnd;
  std::jthread mTaker; // Ends before the end does.
};
