// The way to a real camera, an independent program: packets of its stream that are lost, doubled or out of order,
// commands and answers that are lost, and a camera that ends or stops while it is found, opened or streams.
//
// Beside the cases here, the counts of lost packets one by one are in gigevisionpathtest, floods and wrong answers in
// gigevisionfloodtest and gvcpclienttest, hosts without a way to the camera in network/.

#include "await.h"
#include "camerarelay.h"
#include "caselimit.h"
#include "faultlab.h"
#include "gigevisionfixture.h"
#include "packetpatience.h"
#include "parametertext.h"

#include "gigevision/gigevisiontransport.h"
#include "krdevice/krstream.h"
#include "krgenicam/krgeninteger.h"
#include "krsystem/transportregistry.h"

#include <arv.h>

#include <atomic>
#include <mutex>

namespace krtest {

namespace {

constexpr const char* kCameraAddress = "127.0.0.2";
constexpr const char* kRelayAddress = "127.0.0.3";
constexpr std::int64_t kFaultyWidth = 512;
constexpr std::int64_t kFaultyHeight = 256;
constexpr int kFramesUnderFault = 20;
constexpr std::uint32_t kFramePeriodUs = 20'000;

FakeCameraOptions MakeCameraOptions() {
  FakeCameraOptions options;
  options.address = kCameraAddress;
  return options;
}

/// The camera's pattern runs along diagonals: a frame that is said to be whole and is not breaks it.
bool IsWholePattern(const IKrImage& aImage, const KrBuffer& aBuffer) {
  const auto* const pixels = static_cast<const std::uint8_t*>(aBuffer.GetDataPointer());
  const std::size_t width = aImage.GetWidth();
  for (std::size_t y = 0; y + 1 < aImage.GetHeight(); ++y)
    for (std::size_t x = 0; x + 1 < width; ++x)
      if (pixels[(y + 1) * width + x] != pixels[y * width + x + 1])
        return false;
  return true;
}

class FaultyPath : public testing::Test {
protected:
  static void SetUpTestSuite() {
    AddLoopbackAddress(kCameraAddress);
    AddLoopbackAddress(kRelayAddress);
  }
  static void TearDownTestSuite() { arv_shutdown(); }
  FaultyPath() {
    krsystem::RegisterTransport(mTransport);
    mCamera.SetFramePeriod(kFramePeriodUs);
  }
  ~FaultyPath() override { krsystem::UnregisterTransport(mTransport); }

  void MakeRelay(RelayOrders aOrders) {
    mRelay.emplace(kRelayAddress, kCameraAddress, std::move(aOrders));
    ASSERT_TRUE(mSystem.FindDevice(kRelayAddress, &mInfo).IsOK());
  }
  /// Opens the camera and reads its description.
  KrResult Open(std::unique_ptr<KrDevice>& aDevice) {
    KrResult result = KrDevice::Open(*mInfo, KrDeviceAccess::Control, aDevice);
    KrGenParameterArray* parameters = nullptr;
    return result.IsOK() ? aDevice->GetParameters(parameters) : result;
  }
  static KrResult SetSize(KrGenParameterArray& aParameters) {
    KrResult set = aParameters.GetInteger("Width")->SetValue(kFaultyWidth);
    return set.IsOK() ? aParameters.GetInteger("Height")->SetValue(kFaultyHeight) : set;
  }
  struct Seen {
    int complete = 0;
    int incomplete = 0;
    bool isWhole = true; ///< Whether the complete ones are.
  };
  /// Frames, until aIsEnough says so.
  static KrResult Watch(KrStream& aStream, Seen& aSeen, const std::function<bool(const Seen&)>& aIsEnough) {
    KrResult result;
    const bool isOver = Await([&] {
      KrBuffer* buffer = nullptr;
      result = aStream.Retrieve(buffer, kGenerousTimeoutMs);
      if (!result.IsOK())
        return true;
      const bool isComplete = buffer->GetStatus() == KrBufferStatus::Complete;
      ++(isComplete ? aSeen.complete : aSeen.incomplete);
      if (isComplete)
        aSeen.isWhole = aSeen.isWhole && IsWholePattern(*buffer->GetImage(), *buffer);
      result = aStream.Release(buffer);
      return !result.IsOK() || aIsEnough(aSeen);
    });
    EXPECT_TRUE(isOver);
    return result;
  }

  FakeCamera mCamera{MakeCameraOptions()};
  const std::shared_ptr<krsystem::ITransport> mTransport = std::make_shared<krtransport::GigEVisionTransport>();
  std::optional<CameraRelay> mRelay;
  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  KrLogCapture mLog;
};

/// What the receiver counted, for the words of a failure.
std::string DescribeCounters(KrGenParameterArray& aStream) {
  std::string described;
  for (std::size_t i = 0; i < aStream.GetCount(); ++i) {
    KrString name;
    EXPECT_TRUE(aStream[i]->GetName(name).IsOK());
    if (name.ToUtf8().ends_with("Count"))
      described += name.ToUtf8() + " " + ReadText(aStream, name.CStr()).ToUtf8() + "; ";
  }
  return described;
}

/// What happens to packets of the first frames; all later ones come as they should.
struct PacketRow {
  const char* name;
  bool (*isHurt)(const StreamPacket&);
  std::function<bool(const StreamPacket&)> RelayOrders::*order;
  bool losesFrames; ///< Whether frames must come incomplete by it; otherwise all come whole.
};

bool IsUnderFault(const StreamPacket& aPacket) {
  return aPacket.frame <= kFramesUnderFault;
}

bool IsEveryTenth(const StreamPacket& aPacket) {
  return IsUnderFault(aPacket) && aPacket.number % 10 == 3;
}

constexpr PacketRow kPackets[] = {
    {"EveryTenthLost", IsEveryTenth, &RelayOrders::isLost, true},
    {"EveryLeaderLost",
     [](const StreamPacket& aPacket) { return IsUnderFault(aPacket) && aPacket.format == kLeaderFormat; },
     &RelayOrders::isLost, true},
    {"EveryTrailerLost",
     [](const StreamPacket& aPacket) { return IsUnderFault(aPacket) && aPacket.format == kTrailerFormat; },
     &RelayOrders::isLost, true},
    {"EveryTenthTwice", IsEveryTenth, &RelayOrders::isDoubled, false},
    {"AllTwice", IsUnderFault, &RelayOrders::isDoubled, false},
    {"EveryTenthOvertaken", IsEveryTenth, &RelayOrders::isOvertaken, false},
    {"EveryOtherOvertaken",
     [](const StreamPacket& aPacket) {
       return IsUnderFault(aPacket) && aPacket.format == kPayloadFormat && aPacket.number % 2 == 1;
     },
     &RelayOrders::isOvertaken, false},
};

class FaultyPackets : public FaultyPath, public testing::WithParamInterface<PacketRow> {};

} // namespace

TEST_P(FaultyPackets, OfTheFirstFrames_AreToldByTheFramesAndTheStreamGoesOnWhole) {
  const CaseLimit limit([] { return std::string(GetParam().name); });
  RelayOrders orders;
  orders.largestTrial = 1500;
  orders.*GetParam().order = GetParam().isHurt;
  ASSERT_NO_FATAL_FAILURE(MakeRelay(orders));
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(device).IsOK());
  ASSERT_TRUE(SetSize(*device->GetParameters()).IsOK());
  KrStream stream(*device);
  KrGenParameterArray* receiver = nullptr;
  ASSERT_TRUE(stream.GetParameters(receiver).IsOK());
  ASSERT_NO_FATAL_FAILURE(WaitForPackets(stream));
  ASSERT_TRUE(stream.Start().IsOK());

  Seen seen;
  const KrResult watched = Watch(
      stream, seen, [&](const Seen& aSeen) { return mRelay->GetFrames() > kFramesUnderFault && aSeen.complete > 0; });
  Seen later;
  const KrResult further = Watch(stream, later, [](const Seen& aSeen) { return aSeen.complete == 10; });

  const testing::ScopedTrace trace(__FILE__, __LINE__, DescribeCounters(*receiver));
  EXPECT_TRUE(watched.IsOK()) << watched.GetDescription().CStr();
  EXPECT_TRUE(further.IsOK()) << further.GetDescription().CStr();
  EXPECT_TRUE(seen.isWhole && later.isWhole) << "a frame that is said to be whole is not";
  EXPECT_EQ(later.incomplete, 0);
  const KrStreamStatistics statistics = stream.GetStatistics();
  if (GetParam().losesFrames) {
    EXPECT_GT(statistics.incomplete + statistics.missingFrames, 0U);
    EXPECT_GT(statistics.missingPackets, 0U);
  } else {
    EXPECT_EQ(seen.incomplete, 0);
    EXPECT_EQ(statistics.incomplete, 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(Packets, FaultyPackets, testing::ValuesIn(kPackets), NameRow<PacketRow>);

namespace {

/// Commands of the control protocol, counted by the relay.
class FaultyCommands : public FaultyPath {
protected:
  /// Hears nothing of commands from one on, or of that one alone.
  RelayOrders MakeOrders() {
    RelayOrders orders;
    orders.isUnheard = [this](std::uint16_t) {
      const int command = mCount++;
      return mFirstUnheard >= 0 && (mIsUnheardFromThere ? command >= mFirstUnheard : command == mFirstUnheard);
    };
    return orders;
  }
  void Listen() {
    mFirstUnheard = -1;
    mCount = 0;
  }
  /// How many commands it takes to open the camera.
  int CountCommands() {
    Listen();
    std::unique_ptr<KrDevice> device;
    EXPECT_TRUE(Open(device).IsOK());
    return mCount;
  }

  std::atomic<int> mCount = 0;
  std::atomic<int> mFirstUnheard = -1;
  std::atomic<bool> mIsUnheardFromThere = false;
};

} // namespace

TEST_F(FaultyCommands, OneLostWhileItIsOpened_IsSentAgain) {
  ASSERT_NO_FATAL_FAILURE(MakeRelay(MakeOrders()));
  const int commands = CountCommands();
  ASSERT_GT(commands, 4);

  for (const int command : {0, commands / 2, commands - 1}) {
    const CaseLimit limit([=] { return "command " + std::to_string(command); });
    Listen();
    mFirstUnheard = command;
    std::unique_ptr<KrDevice> device;
    const KrResult opened = Open(device);
    EXPECT_TRUE(opened.IsOK()) << command << ": " << opened.GetDescription().CStr();
  }
}

TEST_F(FaultyCommands, NoneHeardFromAnyStepOfOpeningOn_IsSaidAndItOpensAfterwards) {
  ASSERT_NO_FATAL_FAILURE(MakeRelay(MakeOrders()));
  const int commands = CountCommands();
  mIsUnheardFromThere = true;

  for (const int command : {commands / 4, commands / 2}) {
    const CaseLimit limit([=] { return "command " + std::to_string(command); });
    Listen();
    mFirstUnheard = command;
    std::unique_ptr<KrDevice> device;
    const KrResult opened = Open(device);
    EXPECT_TRUE(SaysWhatHappened(opened, {kRelayAddress}, kDeviceAdvice)) << command;
    EXPECT_THAT(opened.GetCode(), testing::AnyOf(KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost,
                                                 KrResult::Code::NotFound))
        << command << ": " << opened.GetDescription().CStr();

    Listen();
    device.reset();
    KrResult again;
    EXPECT_TRUE(Await([&] { // Who controls it may stay known for a heartbeat.
      again = Open(device);
      return again != KrResult::Code::AccessDenied;
    }));
    EXPECT_TRUE(again.IsOK()) << command << ": " << again.GetDescription().CStr();
  }
}

namespace {

/// The camera's program ends, or stops, and comes again.
struct ProcessRow {
  const char* name;
  void (*hurt)(std::unique_ptr<FakeCamera>&);
  void (*mend)(std::unique_ptr<FakeCamera>&);
};

constexpr ProcessRow kProcesses[] = {
    {"Killed", [](std::unique_ptr<FakeCamera>& aCamera) { aCamera->Kill(); },
     [](std::unique_ptr<FakeCamera>& aCamera) { aCamera = std::make_unique<FakeCamera>(MakeCameraOptions()); }},
    {"Stopped", [](std::unique_ptr<FakeCamera>& aCamera) { aCamera->Pause(); },
     [](std::unique_ptr<FakeCamera>& aCamera) { aCamera->Resume(); }},
};

class FaultyProcess : public testing::TestWithParam<ProcessRow> {
protected:
  static void SetUpTestSuite() { AddLoopbackAddress(kCameraAddress); }
  static void TearDownTestSuite() { arv_shutdown(); }
  FaultyProcess() { krsystem::RegisterTransport(mTransport); }
  ~FaultyProcess() override { krsystem::UnregisterTransport(mTransport); }

  void Hurt() { GetParam().hurt(mCamera); }
  void Mend() { GetParam().mend(mCamera); }
  KrResult Find() { return mSystem.FindDevice(kCameraAddress, &mInfo); }
  KrResult Open() { return KrDevice::Open(*mInfo, KrDeviceAccess::Control, mDevice); }
  // Found, opened, read and streamed anew.
  void ExpectUsable() {
    mDevice.reset();
    EXPECT_TRUE(Await([this] { return Find().IsOK() && Open().IsOK(); }));
    ASSERT_NE(mDevice, nullptr);
    KrGenParameterArray* parameters = nullptr;
    ASSERT_TRUE(mDevice->GetParameters(parameters).IsOK());
    KrStream stream(*mDevice);
    ASSERT_TRUE(stream.Start().IsOK());
    KrBuffer* buffer = nullptr;
    const KrResult retrieved = stream.Retrieve(buffer, kGenerousTimeoutMs);
    EXPECT_TRUE(retrieved.IsOK()) << retrieved.GetDescription().CStr();
  }

  std::unique_ptr<FakeCamera> mCamera = std::make_unique<FakeCamera>(MakeCameraOptions());
  const std::shared_ptr<krsystem::ITransport> mTransport = std::make_shared<krtransport::GigEVisionTransport>();
  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  std::unique_ptr<KrDevice> mDevice;
  const CaseLimit mLimit{[] { return std::string(GetParam().name); }};
  KrLogCapture mLog;
};

} // namespace

TEST_P(FaultyProcess, BeforeItIsLookedFor_IsNotFoundAndUsedAfterwards) {
  Hurt();

  const KrResult found = Find();

  EXPECT_EQ(found, KrResult::Code::NotFound);
  EXPECT_TRUE(SaysWhatHappened(found, {kCameraAddress}, kDeviceAdvice));
  Mend();
  ExpectUsable();
}

TEST_P(FaultyProcess, BetweenFindingAndOpening_IsSaidAndUsedAfterwards) {
  ASSERT_TRUE(Find().IsOK());
  Hurt();

  const KrResult opened = Open();

  EXPECT_TRUE(SaysWhatHappened(opened, {kCameraAddress}, kDeviceAdvice));
  Mend();
  ExpectUsable();
}

TEST_P(FaultyProcess, BetweenOpeningAndReading_IsSaidAndUsedAfterwards) {
  ASSERT_TRUE(Find().IsOK() && Open().IsOK());
  Hurt();
  KrGenParameterArray* parameters = nullptr;

  const KrResult read = mDevice->GetParameters(parameters);

  EXPECT_TRUE(SaysWhatHappened(read, {kCameraAddress}, kDeviceAdvice));
  Mend();
  ExpectUsable();
}

TEST_P(FaultyProcess, BetweenReadingAndStreaming_IsSaidAndUsedAfterwards) {
  ASSERT_TRUE(Find().IsOK() && Open().IsOK());
  KrGenParameterArray* parameters = nullptr;
  ASSERT_TRUE(mDevice->GetParameters(parameters).IsOK());
  Hurt();

  {
    KrStream stream(*mDevice);
    const KrResult started = stream.Start();
    EXPECT_TRUE(SaysWhatHappened(started, {kCameraAddress, "PayloadSize"}, kDeviceAdvice));
  }

  Mend();
  ExpectUsable();
}

TEST_P(FaultyProcess, WhileItStreams_IsSaidAndUsedAfterwards) {
  ASSERT_TRUE(Find().IsOK() && Open().IsOK());
  {
    KrStream stream(*mDevice);
    ASSERT_TRUE(stream.Start().IsOK());
    KrBuffer* buffer = nullptr;
    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousTimeoutMs).IsOK());
    ASSERT_TRUE(stream.Release(buffer).IsOK());
    Hurt();

    KrResult ended;
    EXPECT_TRUE(Await([&] { // The frames that came before are there.
      ended = stream.Retrieve(buffer, kGenerousTimeoutMs);
      return !ended.IsOK() || !stream.Release(buffer).IsOK();
    }));

    EXPECT_EQ(ended, KrResult::Code::ConnectionLost);
    EXPECT_TRUE(SaysWhatHappened(ended, {kCameraAddress}, kDeviceAdvice));
  }
  Mend();
  ExpectUsable();
}

INSTANTIATE_TEST_SUITE_P(Ways, FaultyProcess, testing::ValuesIn(kProcesses), NameRow<ProcessRow>);

} // namespace krtest
