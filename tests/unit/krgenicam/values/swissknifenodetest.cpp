#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <limits>

using testing::HasSubstr;

namespace {

const std::string kNodes = MakeRegister("Raw", 0) + MakeRegister("Hidden", 4, "WO") + R"(
<Integer Name="Width"><Visibility>Expert</Visibility><Value>640</Value><Min>16</Min><Max>1280</Max><Inc>8</Inc></Integer>
<Float Name="Gain"><Value>1.5</Value><Min>-2</Min><Max>12.5</Max></Float>
<Boolean Name="Reverse"><Value>true</Value></Boolean>
<Integer Name="Constant"><ImposedAccessMode>RO</ImposedAccessMode><Value>3</Value></Integer>
<Integer Name="Gone"><pIsImplemented>Zero</pIsImplemented><Value>3</Value></Integer>
<Integer Name="Away"><pIsAvailable>Zero</pIsAvailable><Value>3</Value></Integer>
<Integer Name="Zero"><Value>0</Value></Integer>
<Enumeration Name="Mode">
  <EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <EnumEntry Name="On"><Value>7</Value><NumericValue>0.5</NumericValue></EnumEntry>
  <Value>7</Value>
</Enumeration>
<IntReg Name="Around"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>WriteAround</Cachable><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="OverAround"><pValue>Around</pValue></Integer>
)";

struct VariableCase {
  const char* name;
  const char* variable;
  const char* node;
  std::int64_t value;
};

void PrintTo(const VariableCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class SwissKnifeVariable : public testing::TestWithParam<VariableCase> {};

std::string MakeKnife(const std::string& aVariables, const std::string& aFormula) {
  return kNodes + "<IntSwissKnife Name=\"X\">" + aVariables + "<Formula>" + aFormula + "</Formula></IntSwissKnife>";
}

} // namespace

TEST_P(SwissKnifeVariable, Suffix_SaysWhatOfTheNode) {
  const VariableCase& row = GetParam();
  DescribedCamera camera(MakeKnife(std::string("<pVariable Name=\"") + row.variable + "\">" + row.node + "</pVariable>",
                                   std::string(row.variable) + " + 0"));

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), row.value);
}

INSTANTIATE_TEST_SUITE_P(
    All, SwissKnifeVariable,
    testing::Values(
        VariableCase{"NoSuffix", "A", "Width", 640}, VariableCase{"Value", "A.Value", "Width", 640},
        VariableCase{"Minimum", "A.Min", "Width", 16}, VariableCase{"Maximum", "A.Max", "Width", 1280},
        VariableCase{"Increment", "A.Inc", "Width", 8}, VariableCase{"Visibility", "A.Visibility", "Width", 1},
        VariableCase{"ReadWrite", "A.AccessMode", "Width", 4}, VariableCase{"ReadOnly", "A.AccessMode", "Constant", 3},
        VariableCase{"WriteOnly", "A.AccessMode", "Hidden", 2}, VariableCase{"NotAvailable", "A.AccessMode", "Away", 1},
        VariableCase{"NotImplemented", "A.AccessMode", "Gone", 0},
        VariableCase{"CachingByDefault", "A.CachingMode", "Raw", 1},
        VariableCase{"CachingOfWhatIsBehind", "A.CachingMode", "OverAround", 2},
        VariableCase{"Entry", "A.Entry.On", "Mode", 7}, VariableCase{"Enumeration", "A", "Mode", 7},
        VariableCase{"EnumerationsLargest", "A.Max", "Mode", 7}, VariableCase{"Boolean", "A", "Reverse", 1},
        VariableCase{"FloatMaximum", "A.Max", "Gain", 13}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(SwissKnifeNode, Formula_FollowsItsVariables) {
  DescribedCamera camera(
      MakeKnife("<pVariable Name=\"W\">Width</pVariable><pVariable Name=\"W.Max\">Width</pVariable>"
                "<Constant Name=\"BORDER\">2</Constant><Expression Name=\"INNER\">W - BORDER</Expression>",
                "W.Max - INNER * BORDER"));

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 4);
  ASSERT_TRUE(camera.Integer("Width").SetValue(16).IsOK());
  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 1252);
}

TEST(SwissKnifeNode, RangeAndAccess_OfItsType) {
  DescribedCamera camera("<SwissKnife Name=\"Real\"><Formula>7 / 2</Formula><Unit>mm</Unit></SwissKnife>"
                         "<IntSwissKnife Name=\"Whole\"><Formula>7 / 2</Formula></IntSwissKnife>");

  EXPECT_EQ(Read(camera.Float("Real"), &KrGenFloat::GetValue), 3.5);
  EXPECT_EQ(Read(camera.Float("Real"), &KrGenFloat::GetMax), std::numeric_limits<double>::max());
  EXPECT_FALSE(camera.Float("Real").HasIncrement());
  EXPECT_STREQ(Read<KrString>(camera.Float("Real"), &KrGenFloat::GetUnit).CStr(), "mm");
  EXPECT_EQ(Read(camera.Integer("Whole"), &KrGenInteger::GetValue), 3);
  EXPECT_EQ(Read(camera.Integer("Whole"), &KrGenInteger::GetMin), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(Read(camera.Integer("Whole"), &KrGenInteger::GetIncrement), 1);
  EXPECT_EQ(camera.Integer("Whole").GetAccessMode(), KrGenAccessMode::ReadOnly);
  EXPECT_EQ(camera.Integer("Whole").SetValue(3), KrResult::Code::AccessDenied);
}

TEST(SwissKnifeNode, VariableBehindTheQuestionMark_IsNotReadInVain) {
  DescribedCamera camera(
      MakeKnife("<pVariable Name=\"Z\">Zero</pVariable><pVariable Name=\"R\">Raw</pVariable>", "Z ? R : 5"));

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 5);
  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(SwissKnifeNode, VariableThatCannotBeRead_MakesItNotAvailableAndIsNamed) {
  for (const char* const node : {"Hidden", "Away", "Gone"}) {
    SCOPED_TRACE(node);
    DescribedCamera camera(MakeKnife(std::string("<pVariable Name=\"A\">") + node + "</pVariable>", "A"));
    std::int64_t value = 0;

    EXPECT_EQ(camera.Integer("X").GetAccessMode(), KrGenAccessMode::NotAvailable);
    const KrResult read = camera.Integer("X").GetValue(value);
    EXPECT_EQ(read, KrResult::Code::AccessDenied);
    EXPECT_THAT(read.GetDescription().CStr(), HasSubstr(std::string("because of \"") + node + "\""));
  }
}

TEST(SwissKnifeNode, VariableThatIsNotUsed_DoesNotMatter) {
  DescribedCamera camera(
      MakeKnife("<pVariable Name=\"A\">Hidden</pVariable><pVariable Name=\"B\">Missing</pVariable>", "3"));

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 3);
}

TEST(SwissKnifeNode, FormulaThatIsNone_IsAFaultThatNamesNodeAndLine) {
  struct Row {
    const char* name;
    const char* variables;
    const char* formula;
  };
  constexpr Row kRows[] = {
      {"syntax", "", "1 +"},
      {"unknown name", "", "A"},
      {"unknown suffix", "<pVariable Name=\"A.Color\">Width</pVariable>", "A.Color"},
      {"missing node", "<pVariable Name=\"A\">Missing</pVariable>", "A"},
      {"entry of no enumeration", "<pVariable Name=\"A.Entry.On\">Width</pVariable>", "A.Entry.On"},
      {"missing entry", "<pVariable Name=\"A.Entry.Away\">Mode</pVariable>", "A.Entry.Away"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    DescribedCamera camera(MakeKnife(row.variables, row.formula));
    std::int64_t value = 9;

    const KrResult read = camera.Integer("X").GetValue(value);

    EXPECT_EQ(read, KrResult::Code::BadData);
    EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("node \"X\", line"));
    EXPECT_EQ(value, 9);
  }
}

TEST(SwissKnifeNode, DivisionByZero_IsAnErrorUntilTheDivisorChanges) {
  DescribedCamera camera(MakeKnife("<pVariable Name=\"Z\">Zero</pVariable>", "10 / Z"));
  std::int64_t value = 0;

  EXPECT_EQ(camera.Integer("X").GetValue(value), KrResult::Code::OutOfRange);
  ASSERT_TRUE(camera.Integer("Zero").SetValue(5).IsOK());
  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 2);
}

TEST(SwissKnifeNode, FormulaWithoutValue_NamesNodeAndLine) {
  DescribedCamera camera(
      "<Integer Name=\"Zero\"><Value>0</Value></Integer>\n"
      "<IntSwissKnife Name=\"X\"><pVariable Name=\"Z\">Zero</pVariable>\n"
      "<Formula>10 / Z</Formula></IntSwissKnife>\n"
      "<SwissKnife Name=\"Y\"><Formula>LN(0)</Formula></SwissKnife>\n"
      "<SwissKnife Name=\"Huge\"><Formula>1e30</Formula></SwissKnife>\n"
      "<IntSwissKnife Name=\"W\"><pVariable Name=\"H\">Huge</pVariable><Formula>H</Formula></IntSwissKnife>");
  std::int64_t whole = 0;
  double real = 0.0;

  const KrResult byZero = camera.Integer("X").GetValue(whole);
  const KrResult outsideDomain = camera.Float("Y").GetValue(real);
  const KrResult beyondWhole = camera.Integer("W").GetValue(whole);

  EXPECT_EQ(byZero, KrResult::Code::OutOfRange);
  EXPECT_STREQ(byZero.GetDescription().CStr(), "The camera's description, node \"X\", line 9: the formula has no value "
                                               "now. Formula: column 4: division by zero.");
  EXPECT_EQ(outsideDomain, KrResult::Code::OutOfRange);
  EXPECT_THAT(outsideDomain.GetDescription().CStr(), HasSubstr("node \"Y\", line 10: "));
  EXPECT_EQ(beyondWhole, KrResult::Code::OutOfRange);
  EXPECT_THAT(beyondWhole.GetDescription().CStr(), HasSubstr("node \"W\", line 12: "));
}

TEST(SwissKnifeNode, FaultOfAVariable_StaysAsItIs) {
  DescribedCamera camera(
      MakeRegister("Raw", 0) +
      "<IntSwissKnife Name=\"Inner\"><Formula>1 / 0</Formula></IntSwissKnife>"
      "<IntSwissKnife Name=\"X\"><pVariable Name=\"A\">Inner</pVariable><Formula>A + 1</Formula></IntSwissKnife>"
      "<IntSwissKnife Name=\"Y\"><pVariable Name=\"A\">Raw</pVariable><Formula>A + 1</Formula></IntSwissKnife>");
  camera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer."); });
  std::int64_t value = 0;

  const KrResult ofKnife = camera.Integer("X").GetValue(value);
  const KrResult ofInner = camera.Integer("Inner").GetValue(value);
  const KrResult ofPort = camera.Integer("Y").GetValue(value);
  const KrResult ofRaw = camera.Integer("Raw").GetValue(value);

  EXPECT_STREQ(ofKnife.GetDescription().CStr(), ofInner.GetDescription().CStr());
  EXPECT_THAT(ofKnife.GetDescription().CStr(), HasSubstr("node \"Inner\""));
  EXPECT_EQ(ofPort, KrResult::Code::TimeLimitExceeded);
  EXPECT_STREQ(ofPort.GetDescription().CStr(), ofRaw.GetDescription().CStr());
}
