// Where values come from and go to: copies, and what an index picks.

#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

const std::string kCopies = MakeRegister("A", 0) + MakeRegister("B", 4) + MakeRegister("C", 8) +
                            "<Integer Name=\"X\"><pValueCopy>A</pValueCopy><pValue>B</pValue>"
                            "<pValueCopy>C</pValueCopy></Integer>";

const std::string kMultiplexer = MakeRegister("Raw", 0) + R"(
<Integer Name="Selector"><Value>0</Value></Integer>
<Integer Name="Second"><Value>22</Value><Min>20</Min><Max>30</Max><Unit>mm</Unit><Representation>HexNumber</Representation></Integer>
<Integer Name="X"><pIndex>Selector</pIndex>
  <ValueIndexed Index="1">11</ValueIndexed>
  <pValueIndexed Index="2">Second</pValueIndexed>
  <pValueIndexed Index="0x3">Raw</pValueIndexed>
  <pValueIndexed Index="4">Missing</pValueIndexed>
  <ValueIndexed Index="1">111</ValueIndexed>
  <ValueDefault>99</ValueDefault>
</Integer>
)";

} // namespace

TEST(ValueCopies, Write_GoesToAllInTheOrderOfTheDocument) {
  DescribedCamera camera(kCopies);

  ASSERT_TRUE(camera.Integer("X").SetValue(7).IsOK());

  std::vector<std::uint64_t> addresses;
  for (const RegisterAccessRecord& record : camera.port.TakeRecords()) {
    if (record.isWrite)
      addresses.push_back(record.address);
  }
  EXPECT_THAT(addresses, testing::ElementsAre(0, 4, 8));
}

TEST(ValueCopies, Read_TakesTheValueItselfAlone) {
  DescribedCamera camera(kCopies);
  camera.Poke(0, {1, 0, 0, 0});
  camera.Poke(4, {2, 0, 0, 0});
  camera.Poke(8, {3, 0, 0, 0});

  EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), 2);
}

TEST(ValueCopies, OneThatRefuses_KeepsEveryByteFromLeaving) {
  struct Row {
    const char* name;
    std::string copy;
  };
  const Row kRows[] = {
      {"out of range", "<Integer Name=\"C\"><Value>1</Value><Max>5</Max></Integer>"},
      {"locked", MakeRegister("C", 8, "RW", "<pIsLocked>One</pIsLocked>")},
      {"read only", MakeRegister("C", 8, "RO")},
      {"no such entry", "<Enumeration Name=\"C\"><EnumEntry Name=\"E\"><Value>1</Value></EnumEntry><Value>1</Value>"
                        "</Enumeration>"},
      {"missing", ""},
      {"limit that fails", "<Integer Name=\"C\"><Value>1</Value><pMax>Missing</pMax></Integer>"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    DescribedCamera camera(MakeRegister("A", 0) + MakeRegister("B", 4) + row.copy +
                           "<Integer Name=\"One\"><Value>1</Value></Integer>"
                           "<Integer Name=\"X\"><pValue>A</pValue><pValueCopy>B</pValueCopy><pValueCopy>C</pValueCopy>"
                           "<Min>0</Min><Max>100</Max></Integer>");

    EXPECT_FALSE(camera.Integer("X").SetValue(7).IsOK());
    EXPECT_EQ(camera.port.CountWrites(), 0u);
  }
}

TEST(ValueCopies, DifferentIncrements_MakeItReadOnly) {
  DescribedCamera camera("<Integer Name=\"A\"><Value>0</Value><Min>0</Min><Inc>2</Inc></Integer>"
                         "<Integer Name=\"B\"><Value>0</Value><Min>0</Min><Inc>4</Inc></Integer>"
                         "<Integer Name=\"X\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>"
                         "<Integer Name=\"Own\"><pValue>A</pValue><pValueCopy>B</pValueCopy><Inc>4</Inc></Integer>");

  EXPECT_EQ(camera.Integer("X").GetAccessMode(), KrGenAccessMode::ReadOnly);
  const KrResult refused = camera.Integer("X").SetValue(4);
  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("different steps"));
  EXPECT_TRUE(camera.Integer("Own").SetValue(4).IsOK());
}

TEST(ValueCopies, WriteOnlyCopy_LeavesTheNodeReadable) {
  DescribedCamera camera(MakeRegister("A", 0) + MakeRegister("B", 4, "WO") +
                         "<Integer Name=\"X\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>");

  EXPECT_EQ(camera.Integer("X").GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(Multiplexer, Index_PicksTheValueOrTheDefault) {
  DescribedCamera camera(kMultiplexer);
  camera.Poke(0, {33, 0, 0, 0});
  constexpr std::int64_t kRows[][2] = {{0, 99}, {1, 11}, {2, 22}, {3, 33}, {-1, 99}, {5, 99}};
  for (const auto& [index, value] : kRows) {
    SCOPED_TRACE(index);
    ASSERT_TRUE(camera.Integer("Selector").SetValue(index).IsOK());

    EXPECT_EQ(Read(camera.Integer("X"), &KrGenInteger::GetValue), value);
  }
}

TEST(Multiplexer, Write_ChangesThePickedValueAlone) {
  DescribedCamera camera(kMultiplexer);
  KrGenInteger& x = camera.Integer("X");
  KrGenInteger& selector = camera.Integer("Selector");

  ASSERT_TRUE(x.SetValue(50).IsOK());
  ASSERT_TRUE(selector.SetValue(1).IsOK());
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 11);
  ASSERT_TRUE(x.SetValue(51).IsOK());
  ASSERT_TRUE(selector.SetValue(2).IsOK());
  ASSERT_TRUE(x.SetValue(25).IsOK());
  EXPECT_EQ(Read(camera.Integer("Second"), &KrGenInteger::GetValue), 25);
  ASSERT_TRUE(selector.SetValue(7).IsOK());
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 50);
  ASSERT_TRUE(selector.SetValue(1).IsOK());
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 51);
}

TEST(Multiplexer, LimitsAndUnit_AreThoseOfThePickedNode) {
  DescribedCamera camera(kMultiplexer);
  KrGenInteger& x = camera.Integer("X");
  ASSERT_TRUE(camera.Integer("Selector").SetValue(2).IsOK());

  EXPECT_EQ(Read(x, &KrGenInteger::GetMin), 20);
  EXPECT_EQ(Read(x, &KrGenInteger::GetMax), 30);
  EXPECT_STREQ(Read<KrString>(x, &KrGenInteger::GetUnit).CStr(), "mm");
  EXPECT_EQ(Read(x, &KrGenInteger::GetRepresentation), KrGenRepresentation::HexNumber);
  EXPECT_EQ(x.SetValue(31), KrResult::Code::OutOfRange);
}

TEST(Multiplexer, PickedNodeThatIsMissing_IsAFaultUntilAnotherIsPicked) {
  DescribedCamera camera(kMultiplexer);
  KrGenInteger& x = camera.Integer("X");
  ASSERT_TRUE(camera.Integer("Selector").SetValue(4).IsOK());
  std::int64_t value = 0;

  EXPECT_EQ(x.GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_EQ(x.GetValue(value), KrResult::Code::BadData);
  ASSERT_TRUE(camera.Integer("Selector").SetValue(1).IsOK());
  EXPECT_EQ(Read(x, &KrGenInteger::GetValue), 11);
}

TEST(Multiplexer, IndexThatCannotBeRead_MakesItNotAvailableAndIsNamed) {
  DescribedCamera camera(MakeRegister("Selector", 0, "WO") +
                         "<Float Name=\"X\"><pIndex>Selector</pIndex><ValueIndexed Index=\"0\">1.5</ValueIndexed>"
                         "<ValueDefault>2.5</ValueDefault></Float>");
  double value = 0.0;

  EXPECT_EQ(camera.Float("X").GetAccessMode(), KrGenAccessMode::NotAvailable);
  const KrResult read = camera.Float("X").GetValue(value);
  EXPECT_EQ(read, KrResult::Code::AccessDenied);
  EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("\"Selector\""));
}

TEST(Multiplexer, FloatValues_ArePickedAndWritten) {
  DescribedCamera camera("<Integer Name=\"Selector\"><Value>1</Value></Integer>"
                         "<Float Name=\"Other\"><Value>4.5</Value></Float>"
                         "<Float Name=\"X\"><pIndex>Selector</pIndex><ValueIndexed Index=\"1\">1.5</ValueIndexed>"
                         "<pValueDefault>Other</pValueDefault></Float>");

  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), 1.5);
  ASSERT_TRUE(camera.Float("X").SetValue(-3.25).IsOK());
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), -3.25);
  ASSERT_TRUE(camera.Integer("Selector").SetValue(9).IsOK());
  EXPECT_EQ(Read(camera.Float("X"), &KrGenFloat::GetValue), 4.5);
}

TEST(ErrorNode, OfTheNodeBehind_IsAskedAroundTheCacheAndEndsTheWrite) {
  DescribedCamera camera(
      MakeRegister("ErrorReg", 16) + MakeRegister("A", 0, "RW", "<pError>Verdict</pError>") + MakeRegister("B", 4) +
      "<Enumeration Name=\"Verdict\"><EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry>"
      "<EnumEntry Name=\"TooLarge\"><ToolTip>Take less</ToolTip><Value>2</Value></EnumEntry><pValue>ErrorReg</pValue>"
      "</Enumeration>"
      "<Integer Name=\"X\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>"
      "<Float Name=\"Y\"><pValue>X</pValue></Float>");
  ASSERT_TRUE(camera.Float("Y").SetValue(1.0).IsOK());

  camera.Poke(16, {2});
  const KrResult refused = camera.Float("Y").SetValue(7.0);

  EXPECT_EQ(refused, KrResult::Code::ProtocolError);
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("TooLarge (Take less)"));
  EXPECT_EQ(camera.Peek(4, 1)[0], 1);
}

TEST(WrongWord, OfAnyProperty_IsNotedWithItsLineAndTheDefaultTaken) {
  struct Row {
    const char* content;
    const char* value;
    const char* fault;
  };
  constexpr Row kRows[] = {
      {"<Integer Name=\"X\"><Value>many</Value></Integer>", "0", "\"many\" is not a whole number"},
      {"<Integer Name=\"X\"><Value>3</Value><Min>low</Min></Integer>", "3", "\"low\" is not a whole number"},
      {"<Integer Name=\"X\"><Value>3</Value><ValidValueSet>1,x;2</ValidValueSet></Integer>", "3",
       "parted by semicolons"},
      {"<Integer Name=\"X\"><Value>3</Value><Representation>Roman</Representation></Integer>", "3", "\"Roman\""},
      {"<Float Name=\"X\"><Value>3</Value><Max>NaN</Max></Float>", "3", "\"NaN\" is not a number"},
      {"<Boolean Name=\"X\"><Value>maybe</Value></Boolean>", "0", "\"maybe\" is not true or false"},
      {"<Boolean Name=\"X\"><Value>true</Value><OnValue>on</OnValue></Boolean>", "1", "\"on\" is not a whole number"},
      {"<Integer "
       "Name=\"X\"><pIndex>Index</pIndex><ValueIndexed>1</ValueIndexed><ValueDefault>2</ValueDefault></Integer>",
       "2", "no Index"},
      {"<Converter Name=\"X\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO+1</FormulaFrom><pValue>Index</pValue>"
       "<Slope>Steep</Slope></Converter>",
       "1", "\"Steep\" is not one of"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.content);
    DescribedCamera camera(std::string("<Integer Name=\"Index\"><Value>0</Value></Integer>\n") + row.content);
    KrString value;
    KrStringList faults;

    ASSERT_TRUE(camera.array->Get("X")->ToString(value).IsOK());
    ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

    EXPECT_STREQ(value.CStr(), row.value);
    ASSERT_EQ(faults.GetCount(), 1u);
    EXPECT_THAT(faults[0].CStr(), HasSubstr(row.fault));
    EXPECT_THAT(faults[0].CStr(), HasSubstr("X"));
  }
}
