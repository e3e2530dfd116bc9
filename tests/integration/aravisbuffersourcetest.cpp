// Streams of Aravis' own fake device, which needs no network, under a source whose I/O thread the tests hold up.

#include "await.h"

#include "aravis/aravisbuffersource.h"

#include <gtest/gtest.h>

#include <arv.h>

#include <array>
#include <future>
#include <thread>

namespace {

using namespace krtransport;

constexpr std::size_t kFrameBytes = 64 * 64;
const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();

/// Counts what happens to its streams, and can be told what to do while one is made.
class FakeStreamDevice final : public IStreamDevice {
public:
  FakeStreamDevice() {
    GErrorHolder error;
    mDevice.reset(arv_fake_device_new("GV01", error.Out()));
    arv_device_set_integer_feature_value(mDevice.get(), "Width", 64, error.Out());
    arv_device_set_integer_feature_value(mDevice.get(), "Height", 64, error.Out());
    EXPECT_FALSE(error.IsSet()) << error.GetText();
  }

  KrResult GetPayloadSize(std::uint64_t& aBytes) override {
    aBytes = kFrameBytes;
    return {};
  }
  KrResult CreateStream(std::uint64_t, StreamPointer& aStream) override {
    GErrorHolder error;
    aStream.reset(arv_device_create_stream(mDevice.get(), nullptr, nullptr, error.Out()));
    EXPECT_NE(aStream, nullptr) << error.GetText();
    arv_stream_set_emit_signals(aStream.get(), TRUE);
    ++mMade;
    if (mOnMade)
      mOnMade();
    return {};
  }
  KrResult StartAcquisition() override { return Execute("AcquisitionStart"); }
  KrResult StopAcquisition() override { return Execute("AcquisitionStop"); }
  void OnStreamReleased(bool) override { ++mReleased; }

  std::function<void()> mOnMade;
  std::atomic<int> mMade{0};
  std::atomic<int> mReleased{0};

private:
  KrResult Execute(const char* aCommand) {
    GErrorHolder error;
    arv_device_execute_command(mDevice.get(), aCommand, error.Out());
    return error.IsSet() ? KrResult(KrResult::Code::ProtocolError, error.GetText()) : KrResult();
  }

  GObjectPointer<ArvDevice> mDevice;
};

class AravisBufferSourceTest : public testing::Test {
protected:
  static void TearDownTestSuite() { arv_shutdown(); }

  KrResult Start() {
    for (KrBuffer& buffer : mBuffers)
      if (!buffer.Alloc(kFrameBytes).IsOK() || !mSource.Queue(&buffer).IsOK())
        return KrResult::Code::SystemError;
    return mSource.Start();
  }

  const KrResult mLoss{KrResult::Code::ConnectionLost, "Control was given back."};
  std::array<KrBuffer, 3> mBuffers;
  std::shared_ptr<FakeStreamDevice> mDevice = std::make_shared<FakeStreamDevice>();
  IoThread mIoThread;
  AravisBufferSource mSource{mIoThread, mDevice};
};

TEST_F(AravisBufferSourceTest, Start_BuffersQueued_FillsThem) {
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;

  const KrResult result = mSource.Retrieve(buffer, kGenerousTimeoutMs, {});

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(buffer->GetStatus(), KrBufferStatus::Complete);
}

TEST_F(AravisBufferSourceTest, Stop_RightAfterDetach_ReturnsWhenTheStreamHasEnded) {
  ASSERT_TRUE(Start().IsOK());
  std::promise<void> gate;
  mIoThread.Post([opened = gate.get_future().share()](const std::atomic<bool>&) {
    opened.wait();
    return KrResult();
  });
  mSource.Detach(mLoss, true);
  int releasedAtStop = 0;
  std::thread stopping([&] {
    mSource.Stop();
    releasedAtStop = mDevice->mReleased;
  });

  gate.set_value();
  stopping.join();

  EXPECT_EQ(releasedAtStop, 1);
}

TEST_F(AravisBufferSourceTest, Detach_RacingWithStopAndStart_LeavesNoStreamBehind) {
  for (int i = 0; i < 50; ++i) {
    IoThread ioThread;
    AravisBufferSource source(ioThread, mDevice);
    std::array<KrBuffer, 3> buffers;
    for (KrBuffer& buffer : buffers) {
      ASSERT_TRUE(buffer.Alloc(kFrameBytes).IsOK());
      ASSERT_TRUE(source.Queue(&buffer).IsOK());
    }
    std::thread givingBack([&] {
      ioThread.Interrupt(mLoss);
      source.Detach(mLoss, true);
    });

    static_cast<void>(source.Start()); // Whether it comes in time is the race.
    source.Stop();
    for (KrBuffer& buffer : buffers)
      buffer.Free();
    givingBack.join();
    EXPECT_EQ(source.Start(), KrResult::Code::ConnectionLost);
  }

  EXPECT_EQ(mDevice->mReleased, mDevice->mMade);
}

TEST_F(AravisBufferSourceTest, Start_LeftWhileItsStreamIsMade_ReleasesTheStream) {
  mDevice->mOnMade = [this] { mIoThread.Interrupt(mLoss); };

  const KrResult result = Start();

  mSource.Stop();
  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
  const KrResult drained = mIoThread.RunToEnd([](const std::atomic<bool>&) { return KrResult(); });
  EXPECT_TRUE(drained.IsOK());
  EXPECT_EQ(mDevice->mMade, 1);
  EXPECT_EQ(mDevice->mReleased, 1);
}

TEST_F(AravisBufferSourceTest, Start_DetachedWhileItsStreamIsMade_ReleasesTheStream) {
  mDevice->mOnMade = [this] { mSource.Detach(mLoss, true); };

  const KrResult result = Start();

  mSource.Stop();
  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
  EXPECT_EQ(mDevice->mReleased, 1);
}

} // namespace
