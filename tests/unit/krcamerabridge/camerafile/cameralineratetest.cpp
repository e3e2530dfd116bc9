// The rate of a line that a camera file needs, and when it is the former one again.

#include "camerafile/camerafileport.h"

#include "await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace krcamerabridge {
namespace {

/// A line on which nothing comes, and from which whoever reads goes a while after he is told to.
class LingeringLine final : public ICameraLine {
public:
  static constexpr std::uint32_t kFormerRate = 1200;

  KrResult Read(std::uint8_t*, std::size_t, std::size_t& aRead, std::uint32_t,
                const std::stop_token& aCancel) override {
    aRead = 0;
    mIsInside = true;
    mIsInside.notify_all();
    EXPECT_TRUE(krtest::Await([&] { return aCancel.stop_requested(); }));
    for (int i = 0; i < 10'000; ++i)
      std::this_thread::yield();
    mIsInside = false;
    return KrResult::Code::Aborted;
  }
  KrResult Write(const std::uint8_t*, std::size_t, std::uint32_t, const std::stop_token&) override { return {}; }
  void DropReceived() override {}
  std::vector<std::uint32_t> GetSupportedBaudRates() override { return {}; }
  std::uint32_t GetBaudRate() override { return mRate; }
  KrResult SetBaudRate(std::uint32_t aBaudRate) override {
    mWasSetUnderReader = mWasSetUnderReader || mIsInside;
    mRate = aBaudRate;
    return {};
  }

  void AwaitReader() const { mIsInside.wait(false); }
  bool WasSetUnderReader() const { return mWasSetUnderReader; }

private:
  std::atomic<bool> mIsInside{false};
  std::uint32_t mRate = kFormerRate;
  bool mWasSetUnderReader = false;
};

} // namespace

TEST(CameraFilePort, DisconnectedWhileACommandIsOnTheLine_GivesTheLineItsRateAfterwards) {
  CameraFile file;
  KrStringList errors;
  ASSERT_TRUE(CameraFile::Load(KR_CAMERA_FILES "/camera-files/text-camera.yml", file, errors).IsOK());
  LingeringLine line;
  CameraFilePort port(file, line);
  ASSERT_TRUE(port.SetRate().IsOK());
  ASSERT_NE(line.GetBaudRate(), LingeringLine::kFormerRate);
  KrResult greeted;
  std::thread reader([&] { greeted = port.Greet(60'000); });
  line.AwaitReader();

  port.Disconnect({});
  reader.join();

  EXPECT_EQ(line.GetBaudRate(), LingeringLine::kFormerRate);
  EXPECT_FALSE(line.WasSetUnderReader());
  EXPECT_EQ(greeted, KrResult::Code::Aborted);
}

} // namespace krcamerabridge
