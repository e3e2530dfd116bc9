// The application's own tests: it is given a camera that misbehaves on order. No camera, network, display or right is
// needed, and no test waits for a time: each waits for what it ordered.

#include "inspection.h"
#include "krtransport/krsimulatedfaults.h"
#include "krtransport/krtransport.h"

#include <gtest/gtest.h>

#include <chrono>

/// The camera of lab.yaml, open, with the orders to it.
class InspectionTest : public testing::Test {
protected:
  // A process has one lab. Nothing real is asked.
  static void SetUpTestSuite() {
    const KrResult installed =
        KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true, .labFile = LAB_FILE});
    ASSERT_TRUE(installed.IsOK()) << installed.GetDescription().CStr();
    const KrResult found = KrFindSimulatedFaults("02:00:00:00:00:10", sFaults);
    ASSERT_TRUE(found.IsOK()) << found.GetDescription().CStr();
  }
  static void TearDownTestSuite() { sFaults.reset(); }

  void SetUp() override {
    const KrResult opened = OpenCamera("line-1", mCamera);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  }

  static inline std::shared_ptr<KrSimulatedFaults> sFaults;
  std::unique_ptr<KrDevice> mCamera;
};

TEST_F(InspectionTest, LostPackets_PartsPassOnceMore) {
  sFaults->LosePackets(3, 2); // Two packets of each of the next three frames.

  const InspectionReport report = Inspect(*mCamera, 10);

  EXPECT_TRUE(report.result.IsOK()) << report.result.GetDescription().CStr();
  EXPECT_EQ(report.inspected, 10u);
  EXPECT_EQ(report.spoilt, 3u);
}

TEST_F(InspectionTest, CameraThatIsSilent_IsToldAndUsedAgainWhenItAnswers) {
  ASSERT_TRUE(SetExposureTime(*mCamera, 2000).IsOK());

  sFaults->SilenceRegisters();
  EXPECT_TRUE(SetExposureTime(*mCamera, 3000) == KrResult::Code::TimeLimitExceeded);
  sFaults->EndRegisterFaults();

  // How soon an answer is believed again is the library's business.
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  KrResult set;
  do
    set = SetExposureTime(*mCamera, 3000);
  while (!set.IsOK() && std::chrono::steady_clock::now() < limit);
  EXPECT_TRUE(set.IsOK()) << set.GetDescription().CStr();
}

TEST_F(InspectionTest, CameraThatVanishes_EndsTheInspectionWithAReason) {
  std::uint32_t frames = 0;
  const InspectionReport report = Inspect(*mCamera, 1'000'000, [&] {
    if (++frames == 5)
      sFaults->Disappear(); // As if its cable were pulled.
  });
  sFaults->Return();

  EXPECT_TRUE(report.result == KrResult::Code::ConnectionLost) << report.result.GetDescription().CStr();
  EXPECT_GE(report.inspected, 5u);
}

TEST_F(InspectionTest, CameraThatSomebodyElseHas_IsRefused) {
  sFaults->RefuseOpening(true);
  std::unique_ptr<KrDevice> second;
  EXPECT_TRUE(OpenCamera("line-1", second) == KrResult::Code::AccessDenied);
  sFaults->RefuseOpening(false);

  EXPECT_TRUE(OpenCamera("line-2", second) == KrResult::Code::NotFound);
}
