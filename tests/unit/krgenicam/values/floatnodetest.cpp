#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using testing::ElementsAre;

namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const std::string kTargets = MakeRegister("Raw", 0) + MakeFloatRegister("RealRaw", 8) + R"(
<Integer Name="Whole"><Value>4</Value><Min>-10</Min><Max>10</Max></Integer>
<Enumeration Name="Gain">
  <EnumEntry Name="Low"><Value>0</Value><NumericValue>0.5</NumericValue></EnumEntry>
  <EnumEntry Name="Middle"><Value>1</Value></EnumEntry>
  <EnumEntry Name="High"><Value>2</Value><NumericValue>4.25</NumericValue></EnumEntry>
  <Value>0</Value>
</Enumeration>
<Float Name="Limit"><Value>2.5</Value></Float>
)";

struct RangeCase {
  const char* name;
  const char* node;
  double minimum;
  double maximum;
};

void PrintTo(const RangeCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class FloatRange : public testing::TestWithParam<RangeCase> {};

} // namespace

TEST_P(FloatRange, Limits_AsDescribed) {
  const RangeCase& row = GetParam();
  DescribedCamera camera(kTargets + "<Float Name=\"X\">" + row.node + "</Float>");

  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetMin), row.minimum);
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetMax), row.maximum);
}

INSTANTIATE_TEST_SUITE_P(
    All, FloatRange,
    testing::Values(RangeCase{"ValueAlone", "<Value>1.5</Value>", -kLargest, kLargest},
                    RangeCase{"OwnLimits", "<Value>1</Value><Min>-1.5</Min><Max>1e3</Max>", -1.5, 1000.0},
                    RangeCase{"LinkedLimit", "<Value>1</Value><pMin>Whole</pMin><pMax>Limit</pMax>", 4.0, 2.5},
                    RangeCase{"OfWholeTarget", "<pValue>Whole</pValue>", -10.0, 10.0},
                    RangeCase{"OfRegister", "<pValue>Raw</pValue>", 0.0, 4294967295.0},
                    RangeCase{"OfEnumeration", "<pValue>Gain</pValue>", 0.5, 4.25},
                    RangeCase{"OwnInsteadOfTargets", "<pValue>Whole</pValue><Max>100</Max>", -10.0, 100.0}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(FloatNode, WholeTarget_GetsTheNearestNumber) {
  DescribedCamera camera(kTargets + "<Float Name=\"X\"><pValue>Whole</pValue></Float>");

  ASSERT_TRUE(camera.Float("X").SetValue(2.6).IsOK());
  EXPECT_EQ(Read(camera.Integer("Whole"), &KrGenInteger::GetValue), 3);
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), 3.0);
  ASSERT_TRUE(camera.Float("X").SetValue(-2.6).IsOK());
  EXPECT_EQ(Read(camera.Integer("Whole"), &KrGenInteger::GetValue), -3);
}

TEST(FloatNode, EnumerationAsTarget_IsReadByNumericValueAndSetToTheNearestEntry) {
  DescribedCamera camera(kTargets + "<Float Name=\"X\"><pValue>Gain</pValue></Float>");
  KrGenFloat& x = camera.Float("X");

  EXPECT_EQ(Read(x, &KrGenFloat::GetValue), 0.5);
  ASSERT_TRUE(x.SetValue(3.0).IsOK());
  EXPECT_EQ(Read(camera.Enum("Gain"), &KrGenEnum::GetValue), 2);
  EXPECT_EQ(Read(x, &KrGenFloat::GetValue), 4.25);
  ASSERT_TRUE(x.SetValue(1.2).IsOK());
  EXPECT_EQ(Read(x, &KrGenFloat::GetValue), 1.0);
}

TEST(FloatNode, WhatIsNoNumber_IsRefused) {
  DescribedCamera camera("<Float Name=\"X\"><Value>1</Value></Float>"
                         "<Float Name=\"Endless\"><Value>1</Value><Max>INF</Max></Float>");

  EXPECT_EQ(camera.Float("X").SetValue(std::nan("")), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.Float("X").SetValue(kInfinity), KrResult::Code::OutOfRange);
  EXPECT_TRUE(camera.Float("Endless").SetValue(kInfinity).IsOK());
  EXPECT_EQ(camera.Float("Endless").SetValue(-kInfinity), KrResult::Code::OutOfRange);
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), 1.0);
}

TEST(FloatNode, TooLargeForTheTarget_IsRefusedBeforeAnyByteLeaves) {
  DescribedCamera camera(kTargets + "<Float Name=\"X\"><pValue>Raw</pValue><Min>-1e300</Min><Max>1e300</Max></Float>");

  for (const double value : {-1.0, 4294967296.0, 1e19, 1e300, -1e300})
    EXPECT_EQ(camera.Float("X").SetValue(value), KrResult::Code::OutOfRange) << value;
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(FloatNode, Increment_IsThereOrNotAndNeverEnforced) {
  DescribedCamera camera("<Float Name=\"X\"><Value>1</Value><Min>0</Min><Inc>0.25</Inc></Float>"
                         "<Float Name=\"Y\"><Value>1</Value></Float>");
  double increment = 7.0;

  EXPECT_TRUE(camera.Float("X").HasIncrement());
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetIncrement), 0.25);
  EXPECT_TRUE(camera.Float("X").SetValue(0.3).IsOK());
  EXPECT_FALSE(camera.Float("Y").HasIncrement());
  EXPECT_EQ(camera.Float("Y").GetIncrement(increment), KrResult::Code::NotFound);
  EXPECT_EQ(increment, 7.0);
}

TEST(FloatNode, IncrementOfWhatHasNoNumber_IsNotTakenForNone) {
  DescribedCamera camera("<Category Name=\"Other\"/>"
                         "<Float Name=\"X\"><Value>1</Value><pInc>Other</pInc></Float>"
                         "<Float Name=\"Y\"><Value>1</Value></Float>");
  double increment = 0.0;

  EXPECT_EQ(camera.Float("X").GetIncrement(increment), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.Float("Y").GetIncrement(increment), KrResult::Code::NotFound);
}

TEST(FloatNode, Shown_OwnBeforeTargetsBeforeDefaults) {
  DescribedCamera camera(
      "<Float Name=\"Behind\"><Value>1</Value><Unit>us</Unit><Representation>Logarithmic</Representation>"
      "<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>9</DisplayPrecision></Float>"
      "<Float Name=\"X\"><pValue>Behind</pValue><Unit>ms</Unit></Float>"
      "<Float Name=\"Bare\"><Value>1</Value></Float>");
  KrGenFloat& x = camera.Float("X");
  KrGenFloat& bare = camera.Float("Bare");

  EXPECT_STREQ(Read<KrString>(x, &KrGenFloat::GetUnit).CStr(), "ms");
  EXPECT_EQ(Read(x, &KrGenFloat::GetRepresentation), KrGenRepresentation::Logarithmic);
  EXPECT_EQ(Read(x, &KrGenFloat::GetDisplayNotation), KrGenDisplayNotation::Scientific);
  EXPECT_EQ(Read(x, &KrGenFloat::GetDisplayPrecision), 9);
  EXPECT_EQ(Read(bare, &KrGenFloat::GetRepresentation), KrGenRepresentation::PureNumber);
  EXPECT_EQ(Read(bare, &KrGenFloat::GetDisplayNotation), KrGenDisplayNotation::Automatic);
  EXPECT_EQ(Read(bare, &KrGenFloat::GetDisplayPrecision), 6);
}

TEST(FloatNode, ValidValuesOfTheTarget_AreItsOwn) {
  DescribedCamera camera("<Integer Name=\"Whole\"><Value>1</Value><ValidValueSet>1;4;2</ValidValueSet></Integer>"
                         "<Float Name=\"X\"><pValue>Whole</pValue></Float>");

  EXPECT_THAT(Read(camera.Float("X"), &KrGenFloat::GetValidValues), ElementsAre(1.0, 2.0, 4.0));
  EXPECT_EQ(camera.Float("X").SetValue(3.0), KrResult::Code::OutOfRange);
}
