#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

struct RangeCase {
  const char* name;
  const char* node;
  std::int64_t minimum;
  std::int64_t maximum;
  std::int64_t increment;
};

void PrintTo(const RangeCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

const std::string kTargets = MakeRegister("Raw", 0) + R"(
<Integer Name="Narrow"><Value>4</Value><Min>4</Min><Max>64</Max><Inc>4</Inc></Integer>
<Float Name="Real"><Value>1.5</Value><Min>0.5</Min><Max>9.5</Max></Float>
<Boolean Name="Switch"><Value>true</Value></Boolean>
<Enumeration Name="Mode"><EnumEntry Name="A"><Value>3</Value></EnumEntry><EnumEntry Name="B"><Value>7</Value></EnumEntry><Value>3</Value></Enumeration>
<Integer Name="Five"><Value>5</Value></Integer>
)";

class IntegerRange : public testing::TestWithParam<RangeCase> {};

} // namespace

TEST_P(IntegerRange, LimitsAndIncrement_AsDescribed) {
  const RangeCase& row = GetParam();
  DescribedCamera camera(kTargets + "<Integer Name=\"X\">" + row.node + "</Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_EQ(Read(x, &KrGenInteger::GetMin), row.minimum);
  EXPECT_EQ(Read(x, &KrGenInteger::GetMax), row.maximum);
  EXPECT_EQ(Read(x, &KrGenInteger::GetIncrement), row.increment);
}

INSTANTIATE_TEST_SUITE_P(
    All, IntegerRange,
    testing::Values(
        RangeCase{"ValueAlone", "<Value>1</Value>", kLowest, kHighest, 1},
        RangeCase{"OwnLimits", "<Value>1</Value><Min>0x10</Min><Max>0x20</Max><Inc>2</Inc>", 16, 32, 2},
        RangeCase{"NegativeMinimum", "<Value>1</Value><Min>-16</Min><Max>0x20</Max><Inc>2</Inc>", -16, 32, 2},
        RangeCase{"LinkedLimits", "<Value>1</Value><pMin>Five</pMin><pMax>Narrow</pMax><pInc>Five</pInc>", 5, 4, 5},
        RangeCase{"OfRegister", "<pValue>Raw</pValue>", 0, 0xFFFFFFFF, 1},
        RangeCase{"OfTarget", "<pValue>Narrow</pValue>", 4, 64, 4},
        RangeCase{"OwnInsteadOfTargets", "<pValue>Narrow</pValue><Min>0</Min><Max>100</Max><Inc>1</Inc>", 0, 100, 1},
        RangeCase{"OneOwnLimit", "<pValue>Narrow</pValue><Max>32</Max>", 4, 32, 4},
        RangeCase{"OfFloatInside", "<pValue>Real</pValue>", 1, 9, 1},
        RangeCase{"OfBoolean", "<pValue>Switch</pValue>", 0, 1, 1},
        RangeCase{"OfEnumeration", "<pValue>Mode</pValue>", 3, 7, 1},
        RangeCase{"CommonToAllCopies",
                  "<pValueCopy>Raw</pValueCopy><pValue>Five</pValue><pValueCopy>Switch</pValueCopy>", 0, 1, 1},
        RangeCase{"IPv4Address", "<Value>1</Value><Representation>IPV4Address</Representation>", 0, 0xFFFFFFFF, 1},
        RangeCase{"MACAddress", "<Value>1</Value><Representation>MACAddress</Representation>", 0, 0xFFFFFFFFFFFF, 1},
        RangeCase{"IPv4AddressOfNarrowTarget", "<pValue>Narrow</pValue><Representation>IPV4Address</Representation>", 4,
                  64, 4},
        RangeCase{"NoIncrement", "<Value>1</Value><Inc>0</Inc>", kLowest, kHighest, 1}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(IntegerNode, TargetOfOtherKind_IsReadAndWrittenAsWholeNumber) {
  struct Row {
    const char* target;
    std::int64_t value;
    std::int64_t next;
  };
  constexpr Row kRows[] = {{"Raw", 0, 17}, {"Real", 2, 5}, {"Switch", 1, 0}, {"Mode", 3, 7}, {"Narrow", 4, 8}};
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.target);
    DescribedCamera camera(kTargets + "<Integer Name=\"X\"><pValue>" + row.target + "</pValue></Integer>");
    KrGenInteger& x = camera.Integer("X");

    EXPECT_EQ(Read(x, &KrGenInteger::GetValue), row.value);
    EXPECT_TRUE(x.SetValue(row.next).IsOK());
    EXPECT_EQ(Read(x, &KrGenInteger::GetValue), row.next);
  }
}

TEST(IntegerNode, Value_RefusedOutsideRangeAndOffIncrement) {
  DescribedCamera camera("<Integer Name=\"X\"><Value>1</Value><Min>1</Min><Max>10</Max><Inc>3</Inc></Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_EQ(x.SetValue(0), KrResult::Code::OutOfRange);
  EXPECT_EQ(x.SetValue(11), KrResult::Code::OutOfRange);
  EXPECT_EQ(x.SetValue(5), KrResult::Code::OutOfRange);
  EXPECT_TRUE(x.SetValue(7).IsOK());
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 7);
}

TEST(IntegerNode, StepsWithoutLowerLimit_CountFromZero) {
  DescribedCamera camera("<Integer Name=\"X\"><Value>0</Value><Inc>10</Inc></Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_TRUE(x.SetValue(30).IsOK());
  EXPECT_TRUE(x.SetValue(-20).IsOK());
  EXPECT_EQ(x.SetValue(-15), KrResult::Code::OutOfRange);
}

TEST(IntegerNode, StepsThroughAllSixtyFourBits_AreExact) {
  DescribedCamera camera("<Integer Name=\"X\"><Value>0</Value><Min>-9223372036854775807</Min><Inc>2</Inc></Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_TRUE(x.SetValue(kHighest).IsOK());
  EXPECT_EQ(x.SetValue(kHighest - 1), KrResult::Code::OutOfRange);
}

TEST(IntegerNode, ValidValues_SortedWithinRangeAndTheOnlyOnes) {
  DescribedCamera camera("<Integer Name=\"X\"><Value>2</Value><Min>1</Min><Max>0x40</Max>"
                         "<ValidValueSet>16; 2,0x40 ; 128;2;;-5</ValidValueSet></Integer>"
                         "<Integer Name=\"Y\"><pValue>X</pValue><Max>16</Max></Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_THAT(Read(x, &KrGenInteger::GetValidValues), ElementsAre(2, 16, 64));
  EXPECT_THAT(Read(camera.Integer("Y"), &KrGenInteger::GetValidValues), ElementsAre(2, 16));
  const KrResult refused = x.SetValue(3);
  EXPECT_EQ(refused, KrResult::Code::OutOfRange);
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("2, 16, 64"));
  EXPECT_TRUE(x.SetValue(16).IsOK());
}

TEST(IntegerNode, ValidValuesFarBehind_AreTheOnlyOnesInFront) {
  DescribedCamera camera(
      "<Integer Name=\"Behind\"><Value>1</Value><ValidValueSet>1;4</ValidValueSet></Integer>"
      "<Integer Name=\"Other\"><Value>1</Value></Integer><Integer Name=\"Pick\"><Value>0</Value></Integer>"
      "<IntConverter Name=\"Twice\"><FormulaTo>FROM / 2</FormulaTo><FormulaFrom>TO * 2</FormulaFrom>"
      "<pValue>Behind</pValue></IntConverter>"
      "<Integer Name=\"Picked\"><pIndex>Pick</pIndex><pValueIndexed Index=\"0\">Twice</pValueIndexed>"
      "<pValueDefault>Other</pValueDefault></Integer>"
      "<Integer Name=\"X\"><pValue>Picked</pValue><Inc>5</Inc></Integer>");

  EXPECT_TRUE(camera.Integer("X").SetValue(8).IsOK());
  const KrResult refused = camera.Integer("X").SetValue(5);
  EXPECT_EQ(refused, KrResult::Code::OutOfRange);
  EXPECT_THAT(refused.GetDescription().CStr(), testing::HasSubstr("\"X\" cannot be set to 5: it takes only"));
  ASSERT_TRUE(camera.Integer("Pick").SetValue(1).IsOK());
  EXPECT_TRUE(camera.Integer("X").SetValue(5).IsOK());
}

TEST(IntegerNode, NoValidValues_IsEmpty) {
  DescribedCamera camera("<Integer Name=\"X\"><Value>2</Value></Integer>");

  EXPECT_THAT(Read(camera.Integer("X"), &KrGenInteger::GetValidValues), IsEmpty());
}

TEST(IntegerNode, LimitThatCannotBeRead_FailsTheRangeAndWritingButNotReading) {
  DescribedCamera camera(MakeRegister("Raw", 0) + MakeRegister("Limit", 4, "WO") +
                         "<Integer Name=\"X\"><pValue>Raw</pValue><pMax>Limit</pMax></Integer>");
  KrGenInteger& x = camera.Integer("X");
  std::int64_t maximum = 0;

  EXPECT_EQ(x.GetMax(maximum), KrResult::Code::AccessDenied);
  EXPECT_EQ(x.SetValue(1), KrResult::Code::AccessDenied);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 0);
  EXPECT_EQ(x.GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(IntegerNode, LimitThatChanges_HoldsAtOnce) {
  DescribedCamera camera("<Integer Name=\"Limit\"><Value>10</Value></Integer>"
                         "<Integer Name=\"X\"><Value>1</Value><pMax>Limit</pMax></Integer>");

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetMax), 10);
  ASSERT_TRUE(camera.Integer("Limit").SetValue(20).IsOK());
  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetMax), 20);
  EXPECT_TRUE(camera.Integer("X").SetValue(15).IsOK());
}

TEST(IntegerNode, WithoutAnyValue_IsAFaultOfTheDescription) {
  DescribedCamera camera("<Integer Name=\"X\"></Integer>");
  std::int64_t value = 5;

  const KrResult read = camera.Integer("X").GetValue(value);

  EXPECT_EQ(read, KrResult::Code::BadData);
  EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("\"X\""));
  EXPECT_EQ(value, 5);
}

TEST(IntegerNode, UnitAndRepresentation_OwnOrThoseOfTheTarget) {
  DescribedCamera camera(
      "<Integer Name=\"Behind\"><Value>1</Value><Unit>us</Unit><Representation>HexNumber</Representation></Integer>"
      "<Integer Name=\"X\"><pValue>Behind</pValue><Unit>ms</Unit></Integer>");
  KrGenInteger& x = camera.Integer("X");

  EXPECT_EQ(Read(x, &KrGenInteger::GetRepresentation), KrGenRepresentation::HexNumber);
  EXPECT_STREQ(Read<KrString>(x, &KrGenInteger::GetUnit).CStr(), "ms");
}
