#include "krsystem/krsystem.h"

#include "discoveryround.h"
#include "krbase/krlogger.h"
#include "systemfixtures.h"

#include <future>

using krsystem::kFreelyTakenDevices;
using krsystem::kMostDevices;
using krsystem::kMostInterfaces;
using testing::ElementsAre;

namespace {

// A sink that answers its first call only when the flood is over: nothing is taken while it runs.
class SlowSink : public RecordingSink {
public:
  explicit SlowSink(std::future<void> aFlooded) : mFlooded(std::move(aFlooded)) {
    onFound = [this](const KrDeviceInfo&, bool& aIgnore) {
      if (mFlooded.valid())
        mFlooded.get();
      aIgnore = true;
    };
  }

private:
  std::future<void> mFlooded;
};

krsystem::GEVFields MakeNumbered(const KrString& aID, std::size_t aNumber) {
  krsystem::GEVFields camera = MakeCamera(aID);
  camera.serialNumber = std::to_string(aNumber);
  return camera;
}

} // namespace

TEST(KrSystemFlood, SameDevicesAgainAndAgain_AreReportedOnceEach) {
  constexpr std::size_t kAnswers = 50'000;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  std::promise<void> flooded;
  transport->discover = [&](const krsystem::DiscoveryRequest&, const krsystem::DeviceReport& aReport) {
    for (std::size_t i = 0; i < kAnswers; ++i)
      aReport(0, MakeCamera(std::to_string(i % 3)));
    flooded.set_value();
    return KrResult();
  };
  KrSystem system;
  SlowSink sink(flooded.get_future());
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(sink.GetIDs(), ElementsAre("0", "1", "2"));
}

TEST(KrSystemFlood, EverNewDevicesInOneRound_AreTakenUpToTheLimitAndThatIsLoggedOnce) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  std::promise<void> flooded;
  transport->discover = [&](const krsystem::DiscoveryRequest&, const krsystem::DeviceReport& aReport) {
    for (std::size_t i = 0; i < 3 * kMostDevices; ++i)
      aReport(0, MakeCamera(std::to_string(i)));
    flooded.set_value();
    return KrResult();
  };
  KrSystem system;
  SlowSink sink(flooded.get_future());
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(sink.GetIDs().size(), kFreelyTakenDevices);
  EXPECT_EQ(log.GetRecords().size(), 2u) << "of the round's limit, and of the system's";
}

TEST(KrSystemFlood, EverNewDevicesInManyRounds_LeaveRoomForADeviceThatComesLate) {
  constexpr std::size_t kInARound = 1024;
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  std::size_t number = 0;
  bool isLateThere = false;
  transport->discover = [&](const krsystem::DiscoveryRequest&, const krsystem::DeviceReport& aReport) {
    for (std::size_t i = 0; i < kInARound; ++i)
      aReport(0, MakeCamera(std::to_string(number++)));
    if (isLateThere)
      aReport(0, MakeCamera("late"));
    aReport(0, MakeCamera("early"));
    return KrResult();
  };
  KrSystem system;
  for (std::size_t round = 0; round < 3 * kMostDevices / kInARound; ++round)
    ASSERT_TRUE(system.Find().IsOK());
  EXPECT_THAT(ListDevices(system), ElementsAre("early")) << "the flood is left out, who was there is not";
  isLateThere = true;

  EXPECT_TRUE(system.Find().IsOK());
  EXPECT_THAT(ListDevices(system), ElementsAre("early")) << "once may be anybody";
  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("late", "early"));
  EXPECT_EQ(log.GetRecords().size(), 1u);
}

TEST(KrSystemFlood, DeviceThatChangesWhenHalfIsFull_IsListedAnewInTheSecondRound) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  std::size_t number = 0;
  KrString address = "10.0.0.2";
  transport->discover = [&](const krsystem::DiscoveryRequest&, const krsystem::DeviceReport& aReport) {
    aReport(0, MakeCamera("a", address));
    while (number < kFreelyTakenDevices + 1)
      aReport(0, MakeCamera(std::to_string(number++)));
    return KrResult();
  };
  KrSystem system;
  ASSERT_TRUE(system.Find().IsOK());
  address = "10.0.0.3";

  ASSERT_TRUE(system.Find().IsOK());
  ASSERT_TRUE(system.Find().IsOK());

  ASSERT_EQ(system.GetDeviceCount(), 1u);
  EXPECT_EQ(dynamic_cast<const KrDeviceInfoGEV&>(*system.GetDeviceInfo(0)).GetIPAddress(), address);
}

TEST(KrSystemFlood, EverNewInterfaces_AreTakenUpToTheLimitAndThatIsLoggedOnce) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  for (std::size_t i = 0; i <= kMostInterfaces; ++i)
    transport->interfaces.push_back(MakeAdapter("veth" + KrString(std::to_string(i))));
  transport->answers = {{0, MakeCamera("a")}, {kMostInterfaces, MakeCamera("b")}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_EQ(system.GetInterfaceCount(), kMostInterfaces);
  EXPECT_THAT(ListDevices(system), ElementsAre("a", "b")) << "one behind an interface that is not listed";
  EXPECT_EQ(log.GetRecords().size(), 1u);
}

TEST(KrSystemFlood, OneIDWithEverNewTexts_TakesNoRoomFromOthers) {
  const KrLogCapture log;
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->discover = [](const krsystem::DiscoveryRequest&, const krsystem::DeviceReport& aReport) {
    for (std::size_t i = 0; i < 2 * kMostDevices; ++i)
      aReport(0, MakeNumbered("a", i));
    aReport(0, MakeCamera("b"));
    return KrResult();
  };
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("a", "b"));
  EXPECT_TRUE(log.GetRecords().empty());
}

TEST(KrSystemFlood, AnswersForNoInterface_AreLeftOut) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{1, MakeCamera("a")}, {static_cast<std::size_t>(-1), MakeCamera("b")}, {0, MakeCamera("c")}};
  KrSystem system;

  EXPECT_TRUE(system.Find().IsOK());

  EXPECT_THAT(ListDevices(system), ElementsAre("c"));
}

TEST(KrSystemFlood, Cancel_FromTheSinkDuringAFlood_NoFurtherDeviceIsReported) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->discover = [](const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) {
    for (std::size_t i = 0; !aRequest.cancel.stop_requested(); ++i)
      aReport(0, MakeCamera(std::to_string(i)));
    return KrResult(KrResult::Code::Aborted);
  };
  KrSystem system;
  RecordingSink sink;
  sink.onFound = [&system](const KrDeviceInfo&, bool&) { system.Cancel(); };
  EXPECT_TRUE(system.RegisterEventSink(&sink).IsOK());

  EXPECT_TRUE(system.Find() == KrResult::Code::Aborted);

  EXPECT_THAT(sink.GetIDs(), ElementsAre("0"));
}
