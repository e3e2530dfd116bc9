#include "acquisition/devicethermometer.h"

#include "labfixture.h"

using krviewer::DeviceThermometer;

namespace {

class DeviceThermometerTest : public LabTest {
protected:
  void SetUp() override { ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK()); }
  void TearDown() override { mThermometer.Leave(); }

  std::unique_ptr<KrDevice> mDevice;
  DeviceThermometer mThermometer{std::chrono::milliseconds(1)};
};

} // namespace

TEST_F(DeviceThermometerTest, CameraThatGetsWarmer_IsAskedAgainAndAgain) {
  mThermometer.Follow(*mDevice->GetParameters());
  ASSERT_TRUE(WaitUntil([&] { return mThermometer.GetCelsius().has_value(); }));
  const double first = *mThermometer.GetCelsius();

  EXPECT_TRUE(WaitUntil([&] { return mThermometer.GetCelsius().value_or(first) != first; }));
}

TEST_F(DeviceThermometerTest, Left_SaysNothingMore) {
  mThermometer.Follow(*mDevice->GetParameters());
  ASSERT_TRUE(WaitUntil([&] { return mThermometer.GetCelsius().has_value(); }));

  mThermometer.Leave();

  EXPECT_FALSE(mThermometer.GetCelsius().has_value());
}

TEST_F(DeviceThermometerTest, CameraThatIsGone_HasNoTemperature) {
  mThermometer.Follow(*mDevice->GetParameters());
  ASSERT_TRUE(WaitUntil([&] { return mThermometer.GetCelsius().has_value(); }));

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(WaitUntil([&] { return !mThermometer.GetCelsius().has_value(); }));
}
