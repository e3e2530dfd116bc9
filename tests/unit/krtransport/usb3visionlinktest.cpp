#include "usb3vision/usb3visionlink.h"

#include "await.h"
#include "usb3vision/readonlychannel.h"
#include "usbfakelinksink.h"
#include "usbtesttree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using namespace krtransport;

const std::uint32_t kLongMs = krtest::GetGenerousMs();

// Registers that hold their own addresses, and that keep silent while they are told to.
class FakeChannel final : public IRegisterChannel {
public:
  RegisterLimits GetLimits() const override { return {.lastAddress = UINT64_MAX, .alignment = 1, .maxBytes = 16}; }
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override {
    std::unique_lock lock(mMutex);
    ++mReadCount;
    mChanged.notify_all();
    mChanged.wait(lock, [this] { return !mIsSilent; });
    for (std::uint8_t& byte : aData)
      byte = static_cast<std::uint8_t>(aAddress++);
    return {};
  }
  KrResult Write(std::uint64_t, std::span<const std::uint8_t> aData) override {
    const std::lock_guard lock(mMutex);
    mWritten += aData.size();
    return {};
  }
  void SetSilent(bool aSilent) {
    const std::lock_guard lock(mMutex);
    mIsSilent = aSilent;
    mChanged.notify_all();
  }
  std::size_t GetWritten() {
    const std::lock_guard lock(mMutex);
    return mWritten;
  }

private:
  std::mutex mMutex; // Guards the members below.
  std::condition_variable mChanged;
  bool mIsSilent = false;
  int mReadCount = 0;
  std::size_t mWritten = 0;
};

class FakeStreamDevice final : public IStreamDevice {
public:
  KrResult GetPayloadSize(std::uint64_t& aBytes) override {
    aBytes = 100;
    return {};
  }
  KrResult CreateStream(std::uint64_t, StreamPointer&) override { return KrResult::Code::NotSupported; }
  KrResult StartAcquisition() override { return {}; }
  KrResult StopAcquisition() override { return {}; }
};

class Usb3VisionLinkTest : public testing::Test {
protected:
  std::unique_ptr<Usb3VisionLink> MakeLink() {
    Usb3VisionLink::Parts parts(MakeSubject().device);
    parts.channel = mChannel;
    parts.streamDevice = std::make_shared<FakeStreamDevice>();
    parts.release = [this] {
      ++mReleaseCount;
      mReleaser = std::this_thread::get_id();
    };
    return std::make_unique<Usb3VisionLink>(MakeSubject(), std::move(parts));
  }
  UsbWatch::Subject MakeSubject() {
    return {.roots = mTree.GetRoots(),
            .device = ReadUsbDevices(mTree.GetRoots()).at(0),
            .period = std::chrono::milliseconds(5)};
  }

  UsbTestTree mTree{"superspeed"};
  std::shared_ptr<FakeChannel> mChannel = std::make_shared<FakeChannel>();
  std::atomic<int> mReleaseCount{0};
  std::atomic<std::thread::id> mReleaser;
  UsbFakeLinkSink mSink;
};

TEST_F(Usb3VisionLinkTest, Registers_AnyAddressAndLength_AreReadInPieces) {
  const auto link = MakeLink();
  std::array<std::uint8_t, 35> bytes{};

  const KrResult result = link->GetRegisterPort().Read(0x10003, bytes.data(), bytes.size(), kLongMs);

  EXPECT_TRUE(result.IsOK());
  for (std::size_t i = 0; i < bytes.size(); ++i)
    EXPECT_EQ(bytes[i], static_cast<std::uint8_t>(3 + i)) << "at " << i;
}

TEST_F(Usb3VisionLinkTest, Registers_OfASilentDevice_FailUntilItAnswersAgain) {
  const auto link = MakeLink();
  std::uint32_t value = 0;
  mChannel->SetSilent(true);

  const KrResult inTime = link->GetRegisterPort().Read(0, &value, sizeof(value), 10);
  const KrResult atOnce = link->GetRegisterPort().Read(0, &value, sizeof(value), kLongMs);
  mChannel->SetSilent(false);
  const bool isAnsweringAgain =
      krtest::Await([&] { return link->GetRegisterPort().Read(0, &value, sizeof(value), kLongMs).IsOK(); });

  EXPECT_EQ(inTime, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(atOnce, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(atOnce.GetDescription().ToUtf8(), testing::HasSubstr("a moment ago")) << "it did not wait itself";
  for (const KrResult& silent : {inTime, atOnce})
    EXPECT_THAT(silent.GetDescription().ToUtf8(), testing::StartsWith("The device at USB port 2-1 did not answer"));
  EXPECT_TRUE(isAnsweringAgain);
  EXPECT_TRUE(link->IsConnected());
}

TEST_F(Usb3VisionLinkTest, Watch_SilenceReportedWhileTheDeviceAnswers_AsksOnceMore) {
  std::mutex mutex; // Guards the number of questions.
  std::condition_variable asked;
  int questions = 0;
  UsbWatch* self = nullptr;
  const auto probe = [&] {
    const std::lock_guard lock(mutex);
    if (++questions == 1)
      self->ReportSilence();
    asked.notify_all();
    return KrResult();
  };
  UsbWatch watch(MakeSubject(), probe, [](const KrResult&) {});
  self = &watch;

  watch.ReportSilence();

  std::unique_lock lock(mutex);
  EXPECT_TRUE(asked.wait_for(lock, krtest::GetGenerousLimit(), [&] { return questions == 2; }));
  lock.unlock();
  watch.Stop();
  EXPECT_FALSE(watch.IsSilent());
}

TEST_F(Usb3VisionLinkTest, Loss_UnpluggedDevice_EndsAccessesAndIsTold) {
  const auto link = MakeLink();
  link->SetSink(&mSink);

  mTree.Unplug("2-1");

  ASSERT_TRUE(mSink.WaitForLoss());
  EXPECT_EQ(mSink.GetReason(), KrResult::Code::ConnectionLost);
  EXPECT_FALSE(link->IsConnected());
  std::uint32_t value = 0;
  EXPECT_EQ(link->GetRegisterPort().Read(0, &value, sizeof(value), kLongMs), KrResult::Code::ConnectionLost);
  KrBuffer* buffer = nullptr;
  EXPECT_EQ(link->GetBufferSource(0)->Retrieve(buffer, kLongMs), KrResult::Code::ConnectionLost);
  link->SetSink(nullptr);
}

TEST_F(Usb3VisionLinkTest, Loss_RestartedDevice_ShowsByItsNewAddress) {
  const auto link = MakeLink();
  link->SetSink(&mSink);

  mTree.SetAttribute("2-1", "devnum", "6\n");

  EXPECT_TRUE(mSink.WaitForLoss());
  EXPECT_TRUE(mSink.WaitForReturn());
  link->SetSink(nullptr);
}

TEST_F(Usb3VisionLinkTest, Return_DevicePluggedInAgain_IsTold) {
  const auto link = MakeLink();
  link->SetSink(&mSink);
  mTree.Unplug("2-1");
  ASSERT_TRUE(mSink.WaitForLoss());

  mTree.PlugIn("2-1", 9);

  EXPECT_TRUE(mSink.WaitForReturn());
  EXPECT_FALSE(link->IsConnected());
  link->SetSink(nullptr);
}

TEST_F(Usb3VisionLinkTest, GiveBackControl_OpenDevice_ReleasesItOnceWithoutWordOfLoss) {
  auto link = MakeLink();
  link->SetSink(&mSink);

  link->GiveBackControl();
  link->GiveBackControl();

  EXPECT_EQ(mReleaseCount, 1);
  EXPECT_NE(mReleaser.load(), std::this_thread::get_id());
  EXPECT_FALSE(link->IsConnected());
  std::uint32_t value = 0;
  EXPECT_EQ(link->GetRegisterPort().Read(0, &value, sizeof(value), kLongMs), KrResult::Code::ConnectionLost);
  link.reset();
  EXPECT_EQ(mSink.GetLostCount(), 0);
}

TEST_F(Usb3VisionLinkTest, Destruction_OpenDevice_ReleasesItOnTheThreadThatUsedIt) {
  auto link = MakeLink();

  link.reset();

  EXPECT_EQ(mReleaseCount, 1);
  EXPECT_NE(mReleaser.load(), std::this_thread::get_id());
}

TEST_F(Usb3VisionLinkTest, Monitor_ReadsButNeitherWritesNorStreams) {
  Usb3VisionLink::Parts parts(MakeSubject().device);
  parts.channel = std::make_shared<ReadOnlyChannel>(mChannel);
  parts.release = [] {};
  Usb3VisionLink link(MakeSubject(), std::move(parts));
  std::uint32_t value = 0;

  EXPECT_TRUE(link.GetRegisterPort().Read(4, &value, sizeof(value), kLongMs).IsOK());
  EXPECT_EQ(link.GetRegisterPort().Write(4, &value, sizeof(value), kLongMs), KrResult::Code::AccessDenied);
  EXPECT_EQ(mChannel->GetWritten(), 0u);
  EXPECT_EQ(link.GetBufferSource(0), nullptr);
  EXPECT_EQ(link.GetBootstrap(), KrGenBootstrap::GenCP);
}

TEST_F(Usb3VisionLinkTest, BufferSource_HasOneChannel) {
  const auto link = MakeLink();

  EXPECT_NE(link->GetBufferSource(0), nullptr);
  EXPECT_EQ(link->GetBufferSource(1), nullptr);
}

struct AccessRow {
  const char* name;
  std::uint32_t maxCommand;
  std::uint32_t maxAcknowledge;
  std::size_t maxAccess;
};

const AccessRow kAccesses[] = {
    {"CommandIsTheShorter", 1024, 1024, 1004},
    {"AcknowledgeIsTheShorter", 1024, 512, 500},
    {"LongerThanALengthCanTell", 1u << 20, 1u << 20, 65535},
    {"NoRoomInACommand", 20, 1024, 0},
    {"NoRoomInAnAcknowledge", 1024, 12, 0},
    {"RoomForOneByte", 21, 13, 1},
    {"AllOnes", 0xFFFFFFFF, 0xFFFFFFFF, 65535},
};

class Usb3VisionAccess : public testing::TestWithParam<AccessRow> {};

TEST_P(Usb3VisionAccess, MaxRegisterAccess_TransferSizes_LeaveRoomForTheirHeaders) {
  EXPECT_EQ(GetMaxRegisterAccess(GetParam().maxCommand, GetParam().maxAcknowledge), GetParam().maxAccess);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Usb3VisionAccess, testing::ValuesIn(kAccesses),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace
