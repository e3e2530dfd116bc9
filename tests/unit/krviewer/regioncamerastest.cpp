// The region of interest of cameras whose features are others than usual.

#include "region/regionaccess.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

using namespace krviewer;
using testing::HasSubstr;

namespace {

// A fixed height of 480 lines, without an offset.
constexpr const char* kHeight = R"(<Integer Name="Height"><Value>480</Value><Min>480</Min><Max>480</Max></Integer>)";

std::string WithHeight(const std::string& aNodes) {
  return aNodes + kHeight;
}

RegionLimits Read(DescribedCamera& aCamera) {
  RegionLimits limits;
  const KrResult read = ReadRegion(*aCamera.array, limits);
  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  return limits;
}

} // namespace

TEST(RegionOfACamera, WithoutOffsets_IsResizedAlone) {
  DescribedCamera camera(
      WithHeight(R"(<Integer Name="Width"><Value>640</Value><Min>64</Min><Max>800</Max><Inc>32</Inc></Integer>)"));

  const RegionLimits limits = Read(camera);

  EXPECT_TRUE(limits.x.isOffsetFixed);
  EXPECT_EQ(GetFullSpan(limits.x), (RegionSpan{0, 800}));
  EXPECT_TRUE(limits.y.isLengthFixed);
  EXPECT_TRUE(WriteRegion(*camera.array, {{0, 96}, {0, 480}}).IsOK());
  EXPECT_EQ(Read(camera).x.present.length, 96);
}

TEST(RegionOfACamera, WidthLimitThatDependsOnTheOffset_IsTheSensorsTogetherWithIt) {
  DescribedCamera camera(WithHeight(R"(
<Integer Name="Width"><Value>600</Value><Min>16</Min><pMax>WidthRoom</pMax><Inc>8</Inc></Integer>
<Integer Name="OffsetX"><Value>100</Value><Min>0</Min><pMax>OffsetRoom</pMax><Inc>4</Inc></Integer>
<IntSwissKnife Name="WidthRoom"><pVariable Name="O">OffsetX</pVariable><Formula>1000-O</Formula></IntSwissKnife>
<IntSwissKnife Name="OffsetRoom"><pVariable Name="W">Width</pVariable><Formula>1000-W</Formula></IntSwissKnife>)"));

  EXPECT_EQ(Read(camera).x.extent, 1000);
  EXPECT_TRUE(WriteRegion(*camera.array, {{800, 200}, {0, 480}}).IsOK());
  EXPECT_TRUE(WriteFullRegion(*camera.array).IsOK());
  EXPECT_EQ(Read(camera).x.present, (RegionSpan{0, 1000}));
}

TEST(RegionOfACamera, WidthLimitThatDoesNotDependOnTheOffset_IsTheSensors) {
  DescribedCamera camera(WithHeight(R"(
<Integer Name="Width"><Value>600</Value><Min>16</Min><Max>1000</Max></Integer>
<Integer Name="OffsetX"><Value>100</Value><Min>0</Min><pMax>OffsetRoom</pMax></Integer>
<IntSwissKnife Name="OffsetRoom"><pVariable Name="W">Width</pVariable><Formula>1000-W</Formula></IntSwissKnife>)"));

  EXPECT_EQ(Read(camera).x.extent, 1000);
}

TEST(RegionOfACamera, BinnedSensor_HasTheBinnedSize) {
  DescribedCamera camera(WithHeight(R"(
<Integer Name="BinningHorizontal"><Value>2</Value></Integer>
<IntSwissKnife Name="WidthMax"><pVariable Name="B">BinningHorizontal</pVariable><Formula>1000/B</Formula></IntSwissKnife>
<Integer Name="Width"><Value>500</Value><Min>16</Min><pMax>WidthMax</pMax></Integer>
<Integer Name="OffsetX"><Value>0</Value><Min>0</Min><pMax>OffsetRoom</pMax></Integer>
<IntSwissKnife Name="OffsetRoom"><pVariable Name="W">Width</pVariable><pVariable Name="M">WidthMax</pVariable>
  <Formula>M-W</Formula></IntSwissKnife>)"));

  EXPECT_EQ(GetFullSpan(Read(camera).x), (RegionSpan{0, 500}));
}

TEST(RegionOfACamera, WidthThatCanNeverBeSet_IsFixed) {
  DescribedCamera camera(WithHeight(R"(
<Integer Name="Width"><ImposedAccessMode>RO</ImposedAccessMode><Value>640</Value><Min>64</Min><Max>800</Max></Integer>)"));

  const RegionLimits limits = Read(camera);

  EXPECT_TRUE(limits.x.isLengthFixed);
  EXPECT_TRUE(limits.IsFixed());
}

TEST(RegionOfACamera, WithoutASize_IsNoneAndSaysWhy) {
  DescribedCamera camera(kHeight);
  RegionLimits limits;

  const KrResult read = ReadRegion(*camera.array, limits);

  EXPECT_TRUE(read == KrResult::Code::NotSupported);
  EXPECT_THAT(read.GetDescription().ToUtf8(), HasSubstr("Width"));
}

TEST(RegionOfACamera, LimitsThatNoSensorHas_AreRefusedWithTheirFeature) {
  for (const char* limit : {"9223372036854775807", "281474976710657"}) {
    DescribedCamera camera(WithHeight(std::string(R"(<Integer Name="Width"><Value>640</Value><Min>1</Min><Max>)") +
                                      limit + "</Max></Integer>"));
    RegionLimits limits;

    const KrResult read = ReadRegion(*camera.array, limits);

    EXPECT_TRUE(read == KrResult::Code::BadData) << limit;
    EXPECT_THAT(read.GetDescription().ToUtf8(), HasSubstr("Width"));
  }
}

TEST(RegionOfACamera, ValueBeyondItsLimits_IsValidAsItIs) {
  DescribedCamera camera(
      WithHeight(R"(<Integer Name="Width"><Value>640</Value><Min>64</Min><Max>600</Max></Integer>)"));

  EXPECT_EQ(Read(camera).x.extent, 640);
}
