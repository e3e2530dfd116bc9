#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double kLargest = std::numeric_limits<double>::max();

const std::string kTargets = MakeRegister("Raw", 0) + MakeFloatRegister("RealRaw", 8) + R"(
<Integer Name="Ticks"><Value>100</Value><Min>10</Min><Max>1000</Max><ValidValueSet>10;100;1000</ValidValueSet></Integer>
<Integer Name="Free"><Value>5</Value></Integer>
<Integer Name="FromOne"><Value>5</Value><Min>1</Min></Integer>
<Integer Name="Symmetric"><Value>5</Value><Min>-10</Min><Max>10</Max></Integer>
<Integer Name="Narrow"><Value>0</Value><Min>-1</Min><Max>1</Max></Integer>
<Integer Name="Wide"><Value>0</Value><Min>-9223372036854775807</Min><Max>9223372036854775806</Max></Integer>
<Integer Name="FromTheLargest"><pValue>FromOne</pValue><pValueCopy>OnlyTheLargest</pValueCopy></Integer>
<Integer Name="OnlyTheLargest"><Value>9223372036854775807</Value><Min>9223372036854775807</Min></Integer>
<Integer Name="ToTheSmallest"><pValue>ToTen</pValue><pValueCopy>OnlyTheSmallest</pValueCopy></Integer>
<Integer Name="ToTen"><Value>5</Value><Max>10</Max></Integer>
<Integer Name="OnlyTheSmallest"><Value>-9223372036854775808</Value><Max>-9223372036854775808</Max></Integer>
<Float Name="SymmetricReal"><Value>5</Value><Min>-10</Min><Max>10</Max></Float>
<FloatReg Name="Single"><Address>16</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
<Endianess>LittleEndian</Endianess></FloatReg>
<Float Name="OverSingle"><pValue>Single</pValue></Float>
<Float Name="SingleFromOne"><pValue>Single</pValue><Min>1</Min></Float>
<Float Name="OverFree"><pValue>Free</pValue></Float>
<IntReg Name="Short"><Address>20</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Float Name="OverShort"><pValue>Short</pValue></Float>
<Integer Name="IP"><pValue>Free</pValue><Representation>IPV4Address</Representation></Integer>
<Integer Name="FromZero"><Value>5</Value><Min>0</Min><Max>100</Max></Integer>
<Float Name="Real"><Value>2</Value><Min>0.1</Min><Max>0.3</Max><Inc>0.1</Inc></Float>
<Integer Name="Scale"><Value>2</Value></Integer>
)";

std::string MakeConverter(const std::string& aTarget, const std::string& aTo, const std::string& aFrom,
                          const std::string& aRest = {}) {
  return kTargets + "<Converter Name=\"X\"><pVariable Name=\"S\">Scale</pVariable><FormulaTo>" + aTo +
         "</FormulaTo><FormulaFrom>" + aFrom + "</FormulaFrom><pValue>" + aTarget + "</pValue>" + aRest +
         "</Converter>";
}

struct LimitCase {
  const char* name;
  const char* target;
  const char* from;
  const char* slope;
  double minimum;
  double maximum;
};

void PrintTo(const LimitCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class ConverterLimits : public testing::TestWithParam<LimitCase> {};

} // namespace

TEST_P(ConverterLimits, OfTheTarget_AreConverted) {
  const LimitCase& row = GetParam();
  DescribedCamera camera(MakeConverter(row.target, "FROM", row.from, std::string("<Slope>") + row.slope + "</Slope>"));

  EXPECT_DOUBLE_EQ(Read(camera.Float("X"), &KrGenFloat::GetMin), row.minimum);
  EXPECT_DOUBLE_EQ(Read(camera.Float("X"), &KrGenFloat::GetMax), row.maximum);
}

INSTANTIATE_TEST_SUITE_P(
    All, ConverterLimits,
    testing::Values(LimitCase{"Increasing", "Ticks", "TO * 0.5", "Increasing", 5.0, 500.0},
                    LimitCase{"Decreasing", "Ticks", "1000 - TO", "Decreasing", 0.0, 990.0},
                    LimitCase{"Varying", "Ticks", "TO * 0.5", "Varying", -kLargest, kLargest},
                    LimitCase{"AutomaticRising", "Ticks", "TO * 0.5", "Automatic", 5.0, 500.0},
                    LimitCase{"AutomaticFalling", "Ticks", "1000 / TO", "Automatic", 1.0, 100.0},
                    LimitCase{"ByVariable", "Ticks", "TO * S", "", 20.0, 2000.0},
                    LimitCase{"NoLimits", "Free", "TO * 2", "Automatic", -kLargest, kLargest},
                    LimitCase{"NoUpperLimitRising", "FromOne", "TO * 2", "Automatic", 2.0, kLargest},
                    LimitCase{"NoUpperLimitFalling", "FromOne", "10 / TO", "Automatic", -kLargest, 10.0},
                    LimitCase{"NoValueAtOneEnd", "FromZero", "100 / TO", "Automatic", 1.0, kLargest},
                    LimitCase{"FloatTarget", "Real", "TO * 10", "Automatic", 1.0, 3.0},
                    LimitCase{"EqualEnds", "Symmetric", "TO * TO", "Automatic", -kLargest, kLargest},
                    LimitCase{"EqualEndsOfThreeValues", "Narrow", "TO * TO", "Automatic", -kLargest, kLargest},
                    LimitCase{"EqualEndsOfFloats", "SymmetricReal", "TO * TO", "Automatic", -kLargest, kLargest},
                    LimitCase{"HillBetweenUnequalEnds", "Symmetric", "TO * (TO - 1)", "Automatic", -kLargest, kLargest},
                    LimitCase{"NoValueInside", "Symmetric", "1 / TO", "Automatic", -kLargest, kLargest},
                    LimitCase{"Constant", "Symmetric", "TO * 0 + 7", "Automatic", 7.0, 7.0},
                    LimitCase{"NearlyAllWholeNumbers", "Wide", "TO > 0", "Automatic", 0.0, 1.0},
                    LimitCase{"NothingAboveTheMinimum", "FromTheLargest", "TO * 2", "Automatic", -kLargest, kLargest},
                    LimitCase{"NothingBelowTheMaximum", "ToTheSmallest", "TO * 2", "Automatic", -kLargest, kLargest},
                    LimitCase{"RegisterOfFourBytes", "Single", "TO * 1000", "Automatic", -kLargest, kLargest},
                    LimitCase{"FloatOverFourBytes", "OverSingle", "TO * 1000", "Automatic", -kLargest, kLargest},
                    LimitCase{"FourBytesWithMinimum", "SingleFromOne", "TO * 10", "Automatic", 10.0, kLargest},
                    LimitCase{"FloatOverWholeWithoutLimits", "OverFree", "TO * 2", "Automatic", -kLargest, kLargest},
                    LimitCase{"RegisterOfTwoBytes", "Short", "TO * 2", "Automatic", 0.0, 131070.0},
                    LimitCase{"FloatOverTwoBytes", "OverShort", "TO * 2", "Automatic", 0.0, 131070.0},
                    LimitCase{"LimitsOfRepresentation", "IP", "TO * 2", "Automatic", 0.0, 2.0 * 0xFFFFFFFF}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(ConverterNode, SquareOverBothSigns_TakesWhatIsInside) {
  DescribedCamera camera(MakeConverter("Symmetric", "SQRT(FROM)", "TO * TO"));

  EXPECT_TRUE(camera.Float("X").SetValue(25.0).IsOK());
  EXPECT_EQ(camera.Float("X").SetValue(400.0), KrResult::Code::OutOfRange);
}

TEST(ConverterNode, VariableThatCannotBeRead_FailsTheLimits) {
  DescribedCamera camera(MakeRegister("Gain", 4) +
                         "<Integer Name=\"Ticks\"><Value>100</Value><Min>10</Min><Max>1000</Max></Integer>"
                         "<Converter Name=\"X\"><pVariable Name=\"S\">Gain</pVariable><FormulaTo>FROM</FormulaTo>"
                         "<FormulaFrom>TO * S</FormulaFrom><pValue>Ticks</pValue></Converter>");
  camera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer."); });
  double limit = 1.5;

  EXPECT_EQ(camera.Float("X").GetMin(limit), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(camera.Float("X").GetMax(limit), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(limit, 1.5);
}

TEST(ConverterNode, VariableWithoutValue_FailsTheLimits) {
  DescribedCamera camera("<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                         "<Integer Name=\"Ticks\"><Value>100</Value><Min>10</Min><Max>1000</Max></Integer>"
                         "<SwissKnife Name=\"Knife\"><pVariable Name=\"Z\">Zero</pVariable><Formula>1 / Z</Formula>"
                         "</SwissKnife>"
                         "<Converter Name=\"X\"><pVariable Name=\"S\">Knife</pVariable><FormulaTo>FROM</FormulaTo>"
                         "<FormulaFrom>TO * S</FormulaFrom><pValue>Ticks</pValue></Converter>");
  double limit = 0.0;

  EXPECT_EQ(camera.Float("X").GetMax(limit), KrResult::Code::OutOfRange);
  ASSERT_TRUE(camera.Integer("Zero").SetValue(2).IsOK());
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetMax), 500.0);
}

TEST(ConverterNode, FormulaThatIsNone_FailsTheLimits) {
  DescribedCamera camera(MakeConverter("Ticks", "FROM", "TO +"));
  double limit = 0.0;

  EXPECT_EQ(camera.Float("X").GetMax(limit), KrResult::Code::BadData);
}

TEST(ConverterNode, IncrementThatCannotBeRead_IsNotTakenForNone) {
  DescribedCamera camera(MakeRegister("Step", 4) +
                         "<Float Name=\"Behind\"><Value>2</Value><pInc>Step</pInc></Float>"
                         "<Converter Name=\"X\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                         "<pValue>Behind</pValue><IsLinear>Yes</IsLinear></Converter>");
  camera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer."); });
  double increment = 0.0;

  EXPECT_EQ(camera.Float("X").GetIncrement(increment), KrResult::Code::TimeLimitExceeded);
}

TEST(ConverterNode, Value_IsConvertedBothWays) {
  DescribedCamera camera(MakeConverter("Raw", "FROM * 10 / S", "TO * S / 10.0"));
  KrGenFloat& x = camera.Float("X");
  camera.Poke(0, {7, 0, 0, 0});

  EXPECT_DOUBLE_EQ(Read(x, &KrGenFloat::GetValue), 1.4);
  ASSERT_TRUE(x.SetValue(3.0).IsOK());
  EXPECT_EQ(camera.Peek(0, 1)[0], 15);
  ASSERT_TRUE(camera.Integer("Scale").SetValue(4).IsOK());
  EXPECT_DOUBLE_EQ(Read(x, &KrGenFloat::GetValue), 6.0);
}

TEST(ConverterNode, WholeTarget_GetsTheNearestNumber) {
  DescribedCamera camera(MakeConverter("Raw", "FROM * 10", "TO / 10"));

  ASSERT_TRUE(camera.Float("X").SetValue(1.26).IsOK());
  EXPECT_EQ(camera.Peek(0, 1)[0], 13);
}

TEST(ConverterNode, ValueBeyondTheTarget_IsRefusedBeforeAnyByteLeaves) {
  DescribedCamera camera(MakeConverter("Raw", "FROM * 10", "TO / 10") +
                         "<Converter Name=\"Y\"><FormulaTo>FROM * 1e30</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                         "<pValue>Raw</pValue><Slope>Varying</Slope></Converter>"
                         "<Converter Name=\"Z\"><FormulaTo>SQRT(FROM)</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                         "<pValue>Raw</pValue><Slope>Varying</Slope></Converter>");

  EXPECT_EQ(camera.Float("X").SetValue(-1.0), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Float("X").SetValue(429496730.0), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Float("Y").SetValue(1.0), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Float("Z").SetValue(-1.0), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Float("X").SetValue(std::nan("")), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(ConverterNode, OwnLimits_CanBeSetInSpiteOfRounding) {
  DescribedCamera camera(MakeConverter("Real", "FROM / 3", "TO * 3"));
  KrGenFloat& x = camera.Float("X");

  EXPECT_TRUE(x.SetValue(Read(x, &KrGenFloat::GetMax)).IsOK());
  EXPECT_TRUE(x.SetValue(Read(x, &KrGenFloat::GetMin)).IsOK());
}

TEST(ConverterNode, ValidValues_AreConvertedAndAscending) {
  DescribedCamera camera(MakeConverter("Ticks", "1000 / FROM", "1000 / TO"));

  EXPECT_THAT(Read(camera.Float("X"), &KrGenFloat::GetValidValues), ElementsAre(1.0, 10.0, 100.0));
}

TEST(ConverterNode, Increment_OnlyWhereItIsLinear) {
  DescribedCamera linear(MakeConverter("Real", "FROM / 10", "TO * 10 + 3", "<IsLinear>Yes</IsLinear>"));
  DescribedCamera any(MakeConverter("Real", "FROM / 10", "TO * 10 + 3"));

  EXPECT_THAT(Read(linear.Float("X"), &KrGenFloat::GetIncrement), DoubleNear(1.0, 1e-12));
  EXPECT_FALSE(any.Float("X").HasIncrement());
}

TEST(ConverterNode, Enumeration_IsConvertedByNumericValue) {
  DescribedCamera camera(
      "<Enumeration Name=\"Mode\"><EnumEntry Name=\"A\"><Value>0</Value><NumericValue>1.5</NumericValue>"
      "</EnumEntry><EnumEntry Name=\"B\"><Value>1</Value><NumericValue>4</NumericValue></EnumEntry>"
      "<Value>0</Value></Enumeration>" +
      MakeConverter("Mode", "FROM / 2", "TO * 2", "<Slope>Varying</Slope>"));

  EXPECT_DOUBLE_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), 3.0);
  ASSERT_TRUE(camera.Float("X").SetValue(7.0).IsOK());
  EXPECT_EQ(Read(camera.Enum("Mode"), &KrGenEnum::GetValue), 1);
}

TEST(ConverterNode, Access_NeedsTargetAndVariables) {
  struct Row {
    const char* name;
    std::string raw;
    std::string scale;
    KrGenAccessMode mode;
  };
  const Row kRows[] = {
      {"both", MakeRegister("R", 0), MakeRegister("V", 4), KrGenAccessMode::ReadWrite},
      {"target read only", MakeRegister("R", 0, "RO"), MakeRegister("V", 4), KrGenAccessMode::ReadOnly},
      {"target write only", MakeRegister("R", 0, "WO"), MakeRegister("V", 4), KrGenAccessMode::WriteOnly},
      {"variable read only", MakeRegister("R", 0), MakeRegister("V", 4, "RO"), KrGenAccessMode::ReadWrite},
      {"variable write only", MakeRegister("R", 0), MakeRegister("V", 4, "WO"), KrGenAccessMode::NotAvailable},
      {"variable missing", MakeRegister("R", 0), "", KrGenAccessMode::NotAvailable},
      {"target missing", "", MakeRegister("V", 4), KrGenAccessMode::NotAvailable},
      {"target not implemented", MakeRegister("R", 0, "RW", "<pIsImplemented>Zero</pIsImplemented>"),
       MakeRegister("V", 4), KrGenAccessMode::NotImplemented},
      {"target locked", MakeRegister("R", 0, "RW", "<pIsLocked>One</pIsLocked>"), MakeRegister("V", 4),
       KrGenAccessMode::ReadOnly},
      {"variable locked", MakeRegister("R", 0), MakeRegister("V", 4, "RW", "<pIsLocked>One</pIsLocked>"),
       KrGenAccessMode::ReadWrite},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    DescribedCamera camera(
        "<Integer Name=\"Zero\"><Value>0</Value></Integer><Integer Name=\"One\"><Value>1</Value></Integer>" + row.raw +
        row.scale +
        "<IntConverter Name=\"X\"><pVariable Name=\"V\">V</pVariable><FormulaTo>FROM + V</FormulaTo>"
        "<FormulaFrom>TO - V</FormulaFrom><pValue>R</pValue></IntConverter>");

    EXPECT_EQ(camera.Integer("X").GetAccessMode(), row.mode);
  }
}

TEST(IntConverterNode, SixtyFourBits_StayExact) {
  DescribedCamera camera("<Integer Name=\"Raw\"><Value>0</Value></Integer>"
                         "<IntConverter Name=\"X\"><FormulaTo>FROM - 1</FormulaTo><FormulaFrom>TO + 1</FormulaFrom>"
                         "<pValue>Raw</pValue></IntConverter>");
  constexpr std::int64_t kOdd = 0x7FFFFFFFFFFFFFF1;

  ASSERT_TRUE(camera.Integer("X").SetValue(kOdd).IsOK());
  EXPECT_EQ(Read(camera.Integer("Raw"), &KrGenInteger::GetValue), kOdd - 1);
  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), kOdd);
  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetIncrement), 1);
}

TEST(IntConverterNode, FormulaThatIsNone_FailsReadingOrWriting) {
  DescribedCamera camera("<Integer Name=\"Raw\"><Value>0</Value></Integer>"
                         "<IntConverter Name=\"X\"><FormulaTo>FROM (</FormulaTo><FormulaFrom>TO ?</FormulaFrom>"
                         "<pValue>Raw</pValue></IntConverter>"
                         "<IntConverter Name=\"Bare\"/>");
  std::int64_t value = 0;

  EXPECT_EQ(camera.Integer("X").GetValue(value), KrResult::Code::BadData);
  EXPECT_EQ(camera.Integer("X").SetValue(1), KrResult::Code::BadData);
  EXPECT_EQ(camera.Integer("Bare").GetValue(value), KrResult::Code::BadData);
}

TEST(ConverterNode, VariableOfReservedName_GivesWay) {
  DescribedCamera camera(
      "<Integer Name=\"Raw\"><Value>5</Value></Integer><Integer Name=\"Other\"><Value>9</Value></Integer>"
      "<IntConverter Name=\"X\"><pVariable Name=\"TO\">Other</pVariable><FormulaTo>FROM</FormulaTo>"
      "<FormulaFrom>TO</FormulaFrom><pValue>Raw</pValue></IntConverter>");

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 5);
}

TEST(ConverterNode, SettingWithoutValueForTheTarget_NamesNodeAndLine) {
  DescribedCamera camera(
      "<Integer Name=\"Target\"><Value>5</Value></Integer>\n"
      "<Converter Name=\"X\">\n<FormulaTo>100 / FROM</FormulaTo>\n<FormulaFrom>100 / TO</FormulaFrom>"
      "<pValue>Target</pValue><Slope>Varying</Slope></Converter>");

  const KrResult written = camera.Float("X").SetValue(0.0);

  EXPECT_EQ(written, KrResult::Code::OutOfRange);
  EXPECT_STREQ(written.GetDescription().CStr(),
               "The camera's description, node \"X\", line 9: the formula has no value "
               "now. Formula: column 5: division by zero.");
  EXPECT_EQ(Read(camera.Integer("Target"), &KrGenInteger::GetValue), 5);
}
