#include "bridge/portspeed.h"

#include "bridgeends.h"

#include <gmock/gmock.h>

using krserial::DevicePortSpeed;
using krserial::PortSpeed;
using krtest::Await;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class PortSpeedTest : public testing::Test {
protected:
  void Start() {
    speed.AskSupported();
    speed.Start([this](const DevicePortSpeed& aSpeed) {
      const std::scoped_lock lock(mutex);
      told.push_back(aSpeed.current);
    });
  }
  std::vector<std::uint32_t> GetTold() {
    const std::scoped_lock lock(mutex);
    return told;
  }

  krtest::LockedAdapter adapter;
  krserial::BridgeStatus status;
  std::mutex mutex; // Guards what was told.
  std::vector<std::uint32_t> told;
  PortSpeed speed{adapter, KrDeviceSerial::Serial0, status};
};

} // namespace

TEST_F(PortSpeedTest, Start_KnowsWhatTheDeviceSays) {
  Start();

  EXPECT_THAT(speed.GetSupported(), ElementsAre(9600, 19200, 115200));
  EXPECT_EQ(speed.Get(), 9600U);
  EXPECT_THAT(GetTold(), ElementsAre(9600));
}

TEST_F(PortSpeedTest, AChangeBySomebodyElse_IsSeenAndTold) {
  Start();

  adapter.SetSpeed("Baud115200");

  EXPECT_TRUE(Await([this] { return speed.Get() == 115200; }));
  EXPECT_TRUE(Await([this] { return GetTold() == std::vector<std::uint32_t>{9600, 115200}; }));
}

TEST_F(PortSpeedTest, Request_OfASpeedThatTheDeviceHas_SetsIt) {
  Start();

  EXPECT_TRUE(speed.Request(19200).IsOK());

  EXPECT_EQ(adapter.GetSpeed(), "Baud19200");
  EXPECT_TRUE(Await([this] { return GetTold().back() == 19200; }));
  EXPECT_EQ(status.GetText(), KrString());
}

TEST_F(PortSpeedTest, Request_OfAnotherSpeed_IsRefusedAndNotedUntilTheNextThatIsNot) {
  Start();

  EXPECT_EQ(speed.Request(57600), KrResult::Code::NotSupported);
  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
  EXPECT_THAT(status.GetText().ToUtf8(), HasSubstr("57600"));
  EXPECT_TRUE(speed.Request(115200).IsOK());

  EXPECT_EQ(status.GetText(), KrString());
}

TEST_F(PortSpeedTest, Refusal_IsForgottenWithWhoeverHasAsked) {
  Start();
  ASSERT_EQ(speed.Request(57600), KrResult::Code::NotSupported);

  EXPECT_TRUE(speed.Request(0).IsOK());

  EXPECT_EQ(status.GetText(), KrString());
  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
}

TEST_F(PortSpeedTest, Prefer_OfAnotherSpeed_IsNoFault) {
  Start();

  speed.Prefer(57600);
  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
  speed.Prefer(19200);

  EXPECT_EQ(adapter.GetSpeed(), "Baud19200");
  EXPECT_EQ(status.GetText(), KrString());
}

TEST_F(PortSpeedTest, ADeviceThatCannotSay_HasTheHardCodedSpeed) {
  adapter.HideSpeed();
  Start();
  EXPECT_EQ(speed.Get(), 0U);

  speed.SetHardCoded(57600);

  EXPECT_EQ(speed.Get(), 57600U);
  EXPECT_THAT(speed.GetSupported(), IsEmpty());
  EXPECT_TRUE(Await([this] { return GetTold() == std::vector<std::uint32_t>{0, 57600}; }));
  EXPECT_TRUE(speed.Request(57600).IsOK());
  EXPECT_EQ(speed.Request(9600), KrResult::Code::NotFound);
  EXPECT_EQ(status.GetText(), KrString());
}

TEST_F(PortSpeedTest, ADeviceThatCanSay_OverrulesTheHardCodedSpeed) {
  speed.SetHardCoded(57600);

  Start();

  EXPECT_EQ(speed.Get(), 9600U);
}

TEST_F(PortSpeedTest, ADeviceThatDoesNotAnswer_KeepsWhatItSaidLast) {
  Start();
  adapter.FailReading({KrResult::Code::TimeLimitExceeded, "No answer."});

  const int before = adapter.CountQuestions();
  ASSERT_TRUE(Await([&] { return adapter.CountQuestions() > before + 1; }));

  EXPECT_EQ(speed.Get(), 9600U);
}
