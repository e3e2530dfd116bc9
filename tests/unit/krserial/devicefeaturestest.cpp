#include "devicefeatures.h"

#include "featuredevice.h"
#include "scopedvariable.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

namespace krserial {

namespace {

using krtest::FeatureDevice;
using krtest::FeaturePort;

// A camera that does not answer at first, asked by a clock of the test's.
class SilentCamera : public testing::Test {
protected:
  void SetUp() override { SetFailure(KrResult::Code::TimeLimitExceeded); }

  void SetFailure(const KrResult& aFailure) {
    device.Port().With([&](FeaturePort& aPort) { aPort.failure = aFailure; });
  }
  KrResult Ask() {
    DeviceFeatures::ChannelPointer channel;
    return features.Get(*device.device, KrDeviceSerial::Serial0, channel);
  }

  TemporaryFolder folder;
  const krtest::ScopedVariable settings{"XDG_CONFIG_HOME", folder.GetPath()};
  FeatureDevice device{krtest::MakeFileAccess()};
  DeviceFeatures::Clock::time_point now;
  DeviceFeatures features{device.device->GetLifetime(), [this] { return now; }};
};

} // namespace

TEST_F(SilentCamera, AskedAgainWithinAMoment_SaysTheSameWithoutAQuestion) {
  EXPECT_EQ(Ask(), KrResult::Code::TimeLimitExceeded);
  const int accesses = device.Port().accesses;
  SetFailure({});
  now += DeviceFeatures::kSilence - std::chrono::milliseconds(1);

  EXPECT_EQ(Ask(), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(device.Port().accesses, accesses);
}

TEST_F(SilentCamera, AskedAfterAMoment_Answers) {
  EXPECT_EQ(Ask(), KrResult::Code::TimeLimitExceeded);
  SetFailure({});

  now += DeviceFeatures::kSilence;

  EXPECT_TRUE(Ask().IsOK());
}

TEST_F(SilentCamera, TheMoment_BeginsWhenTheQuestionHasEnded) {
  device.Port().With([&](FeaturePort& aPort) { aPort.onFailure = [this] { now += 2 * DeviceFeatures::kSilence; }; });
  EXPECT_EQ(Ask(), KrResult::Code::TimeLimitExceeded);
  const int accesses = device.Port().accesses;

  EXPECT_EQ(Ask(), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(device.Port().accesses, accesses);
}

TEST(DeviceFeatures, AFeatureThatMayBeMissingAndCouldNotBeAskedFor_IsAskedForAgain) {
  std::string nodes = krtest::MakeFileAccess();
  const std::string begin = "<Integer Name=\"FileAccessOffset\">";
  nodes.insert(nodes.find(begin) + begin.size(), "<pIsImplemented>HasOffset</pIsImplemented>");
  FeatureDevice device(nodes + MakeIntReg("HasOffset", "0x4000"));
  ASSERT_NE(device.device->GetParameters(), nullptr);
  DeviceFeatures::Clock::time_point now;
  DeviceFeatures features(device.device->GetLifetime(), [&] { return now; });
  DeviceFeatures::ChannelPointer channel;
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });

  EXPECT_EQ(features.Get(*device.device, KrDeviceSerial::Serial0, channel), KrResult::Code::TimeLimitExceeded);

  device.Port().With([](FeaturePort& aPort) { aPort.failure = {}; });
  now += DeviceFeatures::kSilence;
  EXPECT_TRUE(features.Get(*device.device, KrDeviceSerial::Serial0, channel).IsOK());
  EXPECT_NE(channel, nullptr);
}

} // namespace krserial
