// The region of interest of simulated cameras.

#include "region/regionaccess.h"

#include "krdevice/krstream.h"
#include "labfixture.h"

using namespace krviewer;

namespace {

class RegionAccessTest : public LabTest {
protected:
  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    ASSERT_TRUE(mDevice->GetParameters(mParameters).IsOK());
  }
  std::int64_t Get(const char* aName) {
    std::int64_t value = -1;
    EXPECT_TRUE(mParameters->GetInteger(aName)->GetValue(value).IsOK()) << aName;
    return value;
  }
  void ExpectRegion(const Region& aRegion) {
    EXPECT_EQ(Get("OffsetX"), aRegion.x.offset);
    EXPECT_EQ(Get("Width"), aRegion.x.length);
    EXPECT_EQ(Get("OffsetY"), aRegion.y.offset);
    EXPECT_EQ(Get("Height"), aRegion.y.length);
  }

  std::unique_ptr<KrDevice> mDevice;
  KrGenParameterArray* mParameters = nullptr;
};

} // namespace

TEST_F(RegionAccessTest, Limits_AreTheSensors) {
  RegionLimits limits;

  ASSERT_TRUE(ReadRegion(*mParameters, limits).IsOK());

  EXPECT_EQ(limits.GetPresent(), (Region{{0, 1280}, {0, 960}}));
  EXPECT_EQ(limits.x.extent, 1280);
  EXPECT_EQ(limits.y.extent, 960);
  EXPECT_FALSE(limits.x.isOffsetFixed);
  EXPECT_FALSE(limits.x.isLengthFixed);
}

TEST_F(RegionAccessTest, Limits_OfASmallRegion_AreStillTheSensors) {
  ASSERT_TRUE(WriteRegion(*mParameters, {{320, 640}, {100, 480}}).IsOK());
  RegionLimits limits;

  ASSERT_TRUE(ReadRegion(*mParameters, limits).IsOK());

  EXPECT_EQ(limits.GetPresent(), (Region{{320, 640}, {100, 480}}));
  EXPECT_EQ(limits.x.extent, 1280);
  EXPECT_EQ(limits.y.extent, 960);
}

TEST_F(RegionAccessTest, Limits_WhileTheCameraStreams_AreNotFixed) {
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  RegionLimits limits;

  ASSERT_TRUE(ReadRegion(*mParameters, limits).IsOK());

  EXPECT_FALSE(limits.x.isLengthFixed);
  EXPECT_FALSE(limits.x.isOffsetFixed);
}

TEST_F(RegionAccessTest, Regions_AreSetFromEachToEach) {
  const Region regions[] = {{{0, 1280}, {0, 960}},    {{640, 640}, {480, 480}}, {{0, 640}, {0, 480}},
                            {{960, 320}, {720, 240}}, {{320, 640}, {240, 480}}, {{0, 1280}, {0, 960}}};
  for (const Region& region : regions) {
    const KrResult written = WriteRegion(*mParameters, region);

    EXPECT_TRUE(written.IsOK()) << FormatRegion(region) << ": " << written.GetDescription().CStr();
    ExpectRegion(region);
  }
}

TEST_F(RegionAccessTest, FullRegion_IsAllOfTheSensorAgain) {
  ASSERT_TRUE(WriteRegion(*mParameters, {{640, 320}, {480, 240}}).IsOK());

  ASSERT_TRUE(WriteFullRegion(*mParameters).IsOK());

  ExpectRegion({{0, 1280}, {0, 960}});
}

TEST_F(RegionAccessTest, RegionThatIsRefusedHalfway_LeavesTheOneBefore) {
  ASSERT_TRUE(WriteRegion(*mParameters, {{320, 640}, {240, 480}}).IsOK());

  const KrResult written = WriteRegion(*mParameters, {{0, 320}, {0, 961}}); // One line more than there are.

  EXPECT_TRUE(written == KrResult::Code::OutOfRange);
  const std::string text = written.GetDescription().ToUtf8();
  EXPECT_NE(text.find("320 x 961 at 0, 0"), std::string::npos) << text;
  EXPECT_NE(text.find("The region 640 x 480 at 320, 240 is set again."), std::string::npos) << text;
  ExpectRegion({{320, 640}, {240, 480}});
}

TEST_F(RegionAccessTest, SizeThatIsLocked_IsToldAndNothingIsChanged) {
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());

  const KrResult written = WriteRegion(*mParameters, {{320, 640}, {240, 480}});

  EXPECT_TRUE(written == KrResult::Code::AccessDenied) << written.GetDescription().CStr();
  ExpectRegion({{0, 1280}, {0, 960}});
}

TEST_F(RegionAccessTest, CameraThatIsGone_SaysSo) {
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  const KrResult written = WriteRegion(*mParameters, {{320, 640}, {240, 480}});

  EXPECT_FALSE(written.IsOK());
  EXPECT_FALSE(written.GetDescription().IsEmpty());
}
