// Descriptions that nobody can make sense of: circles, endless chains, floods. Each gives an error in good time.

#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <functional>

using testing::HasSubstr;

namespace {

struct CircleCase {
  const char* name;
  std::string nodes; ///< With a node X.
  bool isReadable;   ///< Whether X has a value in spite of the circle.
};

void PrintTo(const CircleCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class Circle : public testing::TestWithParam<CircleCase> {};

std::string MakeInteger(const std::string& aName, const std::string& aContent) {
  return "<Integer Name=\"" + aName + "\">" + aContent + "</Integer>\n";
}

std::string MakeKnife(const std::string& aName, const std::string& aVariable, const std::string& aNode) {
  return "<IntSwissKnife Name=\"" + aName + "\"><pVariable Name=\"" + aVariable + "\">" + aNode +
         "</pVariable><Formula>" + aVariable + "</Formula></IntSwissKnife>\n";
}

// Everything that can be asked of any parameter; what comes of it is left to the sanitizers.
void AskEverything(KrGenParameterArray& aArray, const char* aName) {
  KrGenParameter* const parameter = aArray.Get(aName);
  ASSERT_NE(parameter, nullptr);
  KrString text;
  static_cast<void>(parameter->GetAccessMode());
  static_cast<void>(parameter->ToString(text));
  static_cast<void>(parameter->FromString("1"));
  if (auto* const integer = dynamic_cast<KrGenInteger*>(parameter)) {
    std::int64_t value = 0;
    std::vector<std::int64_t> values;
    KrGenRepresentation representation{};
    static_cast<void>(integer->GetValue(value));
    static_cast<void>(integer->SetValue(1));
    static_cast<void>(integer->GetMin(value));
    static_cast<void>(integer->GetMax(value));
    static_cast<void>(integer->GetIncrement(value));
    static_cast<void>(integer->GetValidValues(values));
    static_cast<void>(integer->GetRepresentation(representation));
    static_cast<void>(integer->GetUnit(text));
  }
}

} // namespace

TEST_P(Circle, OfNodes_IsFoundAndTheRestGoesOn) {
  const CircleCase& row = GetParam();
  DescribedCamera camera(row.nodes + MakeInteger("Sane", "<Value>4</Value>"));
  auto* const x = dynamic_cast<KrGenInteger*>(camera.array->Get("X"));
  ASSERT_NE(x, nullptr);
  std::int64_t value = 0;

  EXPECT_EQ(x->GetValue(value).IsOK(), row.isReadable);
  AskEverything(*camera.array, "X");
  EXPECT_EQ(Read(camera.Integer("Sane"), &KrGenInteger::GetValue), 4);
}

INSTANTIATE_TEST_SUITE_P(
    All, Circle,
    testing::Values(
        CircleCase{"ValueOfItself", MakeInteger("X", "<pValue>X</pValue>"), false},
        CircleCase{"TwoValues", MakeInteger("X", "<pValue>Y</pValue>") + MakeInteger("Y", "<pValue>X</pValue>"), false},
        CircleCase{"CopyOfItself",
                   MakeInteger("Y", "<Value>1</Value>") +
                       MakeInteger("X", "<pValue>Y</pValue><pValueCopy>X</pValueCopy>"),
                   true},
        CircleCase{"Formulas", MakeKnife("X", "A", "Y") + MakeKnife("Y", "A", "X"), false},
        CircleCase{"FormulaOverItsMaximum",
                   MakeKnife("Y", "A.Max", "X") + MakeInteger("X", "<Value>1</Value><pMax>Y</pMax>"), true},
        CircleCase{"Index",
                   MakeInteger("X", "<pIndex>X</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed>"
                                    "<ValueDefault>2</ValueDefault>"),
                   false},
        CircleCase{"Minimum",
                   MakeInteger("X", "<Value>1</Value><pMin>Y</pMin>") +
                       "<Integer Name=\"Y\"><pValue>Z</pValue></Integer>" + MakeKnife("Z", "A.Min", "X"),
                   true},
        CircleCase{"Implemented", MakeInteger("X", "<pIsImplemented>X</pIsImplemented><Value>1</Value>"), false},
        CircleCase{"Available",
                   MakeInteger("X", "<pIsAvailable>Y</pIsAvailable><Value>1</Value>") +
                       MakeInteger("Y", "<pIsAvailable>X</pIsAvailable><Value>1</Value>"),
                   false},
        CircleCase{"LockedByItself", MakeInteger("X", "<pIsLocked>X</pIsLocked><Value>1</Value>"), true},
        CircleCase{"LockedByItsAccess",
                   MakeInteger("X", "<pIsLocked>Y</pIsLocked><Value>1</Value>") + MakeKnife("Y", "A.AccessMode", "X"),
                   true},
        CircleCase{"AddressOfItself",
                   "<IntReg Name=\"X\"><pAddress>X</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
                   "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>",
                   false},
        CircleCase{"ConverterOverItself",
                   "<IntConverter Name=\"X\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                   "<pValue>X</pValue></IntConverter>",
                   false},
        CircleCase{"Invalidator",
                   MakeInteger("X", "<pInvalidator>Y</pInvalidator><Value>1</Value>") +
                       MakeInteger("Y", "<pInvalidator>X</pInvalidator><Value>1</Value>"),
                   true},
        CircleCase{"Selected", MakeInteger("X", "<Value>1</Value><pSelected>X</pSelected>"), true},
        CircleCase{"Error", MakeInteger("X", "<pError>X</pError><Value>0</Value>"), true}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(Circle, Message_NamesTheWayRound) {
  DescribedCamera camera(MakeKnife("X", "A", "Y") + MakeInteger("Y", "<pValue>Z</pValue>") +
                         MakeInteger("Z", "<pValue>X</pValue>"));
  std::int64_t value = 0;

  const KrResult read = camera.Integer("X").GetValue(value);

  EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("X"));
  EXPECT_FALSE(read.IsOK());
}

TEST(Chain, OfTenThousandNodes_IsAnErrorFromEitherEnd) {
  constexpr int kLength = 10'000;
  struct Row {
    const char* name;
    std::function<std::string(int)> make;
  };
  const auto next = [](int aIndex) { return "N" + std::to_string(aIndex + 1); };
  const auto open = [](int aIndex) { return " Name=\"N" + std::to_string(aIndex) + "\">"; };
  const Row kRows[] = {
      {"values", [&](int i) { return "<Integer" + open(i) + "<pValue>" + next(i) + "</pValue></Integer>\n"; }},
      {"copies",
       [&](int i) {
         return "<Integer" + open(i) + "<pValue>" + next(i) + "</pValue><pValueCopy>" + next(i) +
                "</pValueCopy></Integer>\n";
       }},
      {"availability",
       [&](int i) {
         return "<Integer" + open(i) + "<pIsAvailable>" + next(i) + "</pIsAvailable><Value>1</Value></Integer>\n";
       }},
      {"limits",
       [&](int i) { return "<Integer" + open(i) + "<Value>0</Value><pMax>" + next(i) + "</pMax></Integer>\n"; }},
      {"texts", [&](int i) { return "<String" + open(i) + "<pValue>" + next(i) + "</pValue></String>\n"; }},
      {"formulas",
       [&](int i) {
         return "<IntSwissKnife" + open(i) + "<pVariable Name=\"A\">" + next(i) +
                "</pVariable><Formula>A+1</Formula></IntSwissKnife>\n";
       }},
      {"converters",
       [&](int i) {
         return "<IntConverter" + open(i) +
                "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO"
                "</FormulaFrom><pValue>" +
                next(i) + "</pValue></IntConverter>\n";
       }},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    std::string nodes = MakeInteger("N" + std::to_string(kLength), "<Value>1</Value>");
    for (int i = 0; i < kLength; ++i)
      nodes += row.make(i);
    DescribedCamera camera(nodes);

    AskEverything(*camera.array, "N0");
    // From the end on each node finds what it stands on remembered already.
    for (int i = kLength; i >= 0; --i)
      static_cast<void>(camera.array->Get(KrString("N" + std::to_string(i)))->GetAccessMode());
    AskEverything(*camera.array, "N0");
  }
}

TEST(Chain, TooLong_SaysSo) {
  std::string nodes = MakeInteger("N10000", "<Value>1</Value>");
  for (int i = 0; i < 10'000; ++i)
    nodes += MakeInteger("N" + std::to_string(i), "<pValue>N" + std::to_string(i + 1) + "</pValue>");
  DescribedCamera camera(nodes);
  std::int64_t value = 0;

  EXPECT_FALSE(camera.Integer("N0").GetValue(value).IsOK());
  EXPECT_EQ(camera.Integer("N0").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_EQ(Read(camera.Integer("N9900"), &KrGenInteger::GetValue), 1);
}

// Forty levels of nodes that each use the next one twice: 2^40 ways down.
TEST(Chain, OfManyNodesInManyCopies_CanBeWritten) {
  constexpr int kChains = 20;
  constexpr int kNodes = 200;
  std::string nodes;
  std::string copies;
  for (int chain = 0; chain < kChains; ++chain) {
    const auto makeName = [&](int aNode) { return "N" + std::to_string(chain) + "x" + std::to_string(aNode); };
    for (int node = 1; node < kNodes; ++node)
      nodes += MakeInteger(makeName(node), "<pValue>" + makeName(node - 1) + "</pValue>");
    nodes += MakeInteger(makeName(0), "<Value>1</Value>");
    copies += (chain == 0 ? "<pValue>" : "<pValueCopy>") + makeName(kNodes - 1) +
              (chain == 0 ? "</pValue>" : "</pValueCopy>");
  }
  DescribedCamera camera(nodes + MakeInteger("Y", copies) + MakeInteger("X", "<pValue>Y</pValue>"));

  const KrResult result = camera.Integer("X").SetValue(7);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(Read(camera.Integer("N19x0"), &KrGenInteger::GetValue), 7);
}

TEST(Diamond, OfFormulas_IsComputedOncePerNode) {
  std::string nodes = MakeInteger("N40", "<Value>1</Value>");
  for (int i = 0; i < 40; ++i) {
    const std::string next = "N" + std::to_string(i + 1);
    nodes += "<IntSwissKnife Name=\"N" + std::to_string(i) + "\"><pVariable Name=\"A\">" + next +
             "</pVariable><pVariable Name=\"B\">" + next + "</pVariable><Formula>A+B</Formula></IntSwissKnife>\n";
  }
  DescribedCamera camera(nodes);

  EXPECT_EQ(Read(camera.Integer("N0"), &KrGenInteger::GetValue), std::int64_t{1} << 40);
  ASSERT_TRUE(camera.Integer("N40").SetValue(2).IsOK());
  EXPECT_EQ(Read(camera.Integer("N0"), &KrGenInteger::GetValue), std::int64_t{1} << 41);
}

TEST(Diamond, OfCopies_IsReadAndRefusedForWritingBeforeAnyByteLeaves) {
  std::string nodes = MakeRegister("N40", 0);
  for (int i = 0; i < 40; ++i) {
    const std::string next = "N" + std::to_string(i + 1);
    nodes += MakeInteger("N" + std::to_string(i), "<pValue>" + next + "</pValue><pValueCopy>" + next + "</pValueCopy>");
  }
  DescribedCamera camera(nodes);

  EXPECT_EQ(Read(camera.Integer("N0"), &KrGenInteger::GetValue), 0);
  EXPECT_EQ(camera.Integer("N0").SetValue(1), KrResult::Code::BadData);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(Diamond, OfPredicates_FindsItsReason) {
  std::string nodes = MakeInteger("N40", "<Value>0</Value>");
  for (int i = 0; i < 40; ++i) {
    const std::string next = "N" + std::to_string(i + 1);
    nodes +=
        MakeInteger("N" + std::to_string(i), "<pIsImplemented>" + next + "</pIsImplemented><pIsAvailable>" + next +
                                                 "</pIsAvailable><pIsLocked>" + next + "</pIsLocked><Value>1</Value>");
  }
  DescribedCamera camera(nodes);
  std::int64_t value = 0;

  EXPECT_EQ(camera.Integer("N0").GetValue(value), KrResult::Code::AccessDenied);
  EXPECT_EQ(camera.Integer("N0").SetValue(1), KrResult::Code::AccessDenied);
}

TEST(DanglingLink, OfEveryKind_IsAnErrorThatNamesIt) {
  struct Row {
    const char* name;
    const char* content;
    bool isReadable;
    bool isWritable;
  };
  constexpr Row kRows[] = {
      {"value", "<pValue>Missing</pValue>", false, false},
      {"copy", "<pValue>Fine</pValue><pValueCopy>Missing</pValueCopy>", true, false},
      {"index", "<pIndex>Missing</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed><ValueDefault>2</ValueDefault>",
       false, false},
      {"picked value",
       "<pIndex>Fine</pIndex><pValueIndexed Index=\"1\">Missing</pValueIndexed><ValueDefault>2</ValueDefault>", false,
       false},
      {"minimum", "<Value>1</Value><pMin>Missing</pMin>", true, false},
      {"maximum", "<Value>1</Value><pMax>Missing</pMax>", true, false},
      {"increment", "<Value>1</Value><pInc>Missing</pInc>", true, false},
      {"implemented", "<pIsImplemented>Missing</pIsImplemented><Value>1</Value>", false, false},
      {"available", "<pIsAvailable>Missing</pIsAvailable><Value>1</Value>", false, false},
      {"lock", "<pIsLocked>Missing</pIsLocked><Value>1</Value>", true, true},
      {"error", "<pError>Missing</pError><Value>1</Value>", true, true},
      {"alias", "<pAlias>Missing</pAlias><Value>1</Value>", true, true},
      {"invalidator", "<pInvalidator>Missing</pInvalidator><Value>1</Value>", true, true},
      {"selected", "<Value>1</Value><pSelected>Missing</pSelected>", true, true},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    DescribedCamera camera(MakeInteger("Fine", "<Value>1</Value>") + MakeInteger("X", row.content));
    std::int64_t value = 0;
    const KrResult read = camera.Integer("X").GetValue(value);
    const KrResult written = camera.Integer("X").SetValue(1);

    EXPECT_EQ(read.IsOK(), row.isReadable);
    EXPECT_EQ(written.IsOK(), row.isWritable);
    if (!row.isReadable) {
      EXPECT_EQ(read, KrResult::Code::BadData);
      EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("\"Missing\""));
    }
    if (!row.isWritable) {
      EXPECT_THAT(written.GetDescription().CStr(), HasSubstr("\"Missing\""));
    }
  }
}

TEST(Flood, OfEntries_IsFoundByValueAndByName) {
  constexpr int kCount = 100'000;
  std::string entries;
  for (int i = 0; i < kCount; ++i)
    entries +=
        "<EnumEntry Name=\"E" + std::to_string(i) + "\"><Value>" + std::to_string(i * 97) + "</Value></EnumEntry>";
  DescribedCamera camera("<Enumeration Name=\"X\">" + entries + "<Value>0</Value></Enumeration>");
  KrGenEnum& x = camera.Enum("X");

  EXPECT_EQ(x.GetEntriesCount(), static_cast<std::size_t>(kCount));
  for (int i = 0; i < kCount; i += 100)
    ASSERT_TRUE(x.SetValue(i * 97).IsOK());
  ASSERT_TRUE(x.SetEntry("E99999").IsOK());
  EXPECT_EQ(Read(x, &KrGenEnum::GetValue), 99'999 * 97);
}

TEST(Flood, OfValidValues_IsCutWithAFault) {
  constexpr std::size_t kMost = 65536;
  std::string list;
  for (std::size_t i = 0; i <= kMost; ++i)
    list += std::to_string(i) + ";";
  DescribedCamera camera(
      MakeInteger("X", "<Value>0</Value><ValidValueSet>" + list + "</ValidValueSet>") +
      MakeInteger("Full", "<Value>0</Value><ValidValueSet>" + list.substr(0, list.size() - 6) + "</ValidValueSet>"));
  std::vector<std::int64_t> values;
  KrStringList faults;

  ASSERT_TRUE(camera.Integer("X").GetValidValues(values).IsOK());
  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

  EXPECT_EQ(values.size(), kMost);
  EXPECT_TRUE(camera.Integer("X").SetValue(kMost - 1).IsOK());
  ASSERT_EQ(faults.GetCount(), 1u);
  EXPECT_THAT(faults[0].CStr(), HasSubstr("behind the first 65536 are left out"));
}

TEST(Flood, OfPickedValuesAndCopies_IsHandled) {
  std::string picked = "<pIndex>Index</pIndex>";
  std::string copies = "<pValue>Target</pValue>";
  for (int i = 0; i < 20'000; ++i) {
    picked += "<ValueIndexed Index=\"" + std::to_string(i) + "\">" + std::to_string(i * 2) + "</ValueIndexed>";
    copies += "<pValueCopy>Target</pValueCopy>";
  }
  DescribedCamera camera(MakeInteger("Index", "<Value>19999</Value>") + MakeInteger("Target", "<Value>1</Value>") +
                         MakeInteger("Picked", picked + "<ValueDefault>0</ValueDefault>") +
                         MakeInteger("Copied", copies));

  EXPECT_EQ(Read(camera.Integer("Picked"), &KrGenInteger::GetValue), 39'998);
  EXPECT_TRUE(camera.Integer("Copied").SetValue(5).IsOK());
}

TEST(Flood, OfExpressionsThatDoubleEachOther_IsComputed) {
  constexpr int kKnives = 3000;
  std::string expressions = "<Expression Name=\"E0\">A</Expression>";
  for (int i = 1; i <= 40; ++i) {
    const std::string previous = "E" + std::to_string(i - 1);
    expressions += "<Expression Name=\"E" + std::to_string(i) + "\">" + previous + "+" + previous + "</Expression>";
  }
  std::string nodes = MakeInteger("One", "<Value>1</Value>");
  for (int i = 0; i < kKnives; ++i)
    nodes += "<IntSwissKnife Name=\"X" + std::to_string(i) + "\"><pVariable Name=\"A\">One</pVariable>" + expressions +
             "<Formula>E40</Formula></IntSwissKnife>";
  DescribedCamera camera(nodes);

  for (int i = 0; i < kKnives; i += 100)
    EXPECT_EQ(Read(camera.Integer(("X" + std::to_string(i)).c_str()), &KrGenInteger::GetValue), std::int64_t{1} << 40);
}

TEST(Flood, OfOperations_CostsTheFormulasThatAreTooMany) {
  std::string formula = "1";
  for (int i = 1; i < 5000; ++i)
    formula += "+1";
  // A formula of 9,999 operations, of which 400 have room, and 400 operations more.
  std::string nodes;
  for (int i = 0; i < 401; ++i)
    nodes += "<IntSwissKnife Name=\"X" + std::to_string(i) + "\"><Formula>" + formula + "</Formula></IntSwissKnife>\n";
  nodes += "<IntSwissKnife Name=\"Small\"><Formula>2+1</Formula></IntSwissKnife>";
  DescribedCamera camera(nodes);
  std::int64_t value = 0;
  KrStringList faults;

  const KrResult read = camera.Integer("X400").GetValue(value);
  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

  EXPECT_EQ(Read(camera.Integer("X399"), &KrGenInteger::GetValue), 5000);
  EXPECT_EQ(read, KrResult::Code::BadData);
  EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("node \"X400\", line 407: the formula is not taken"));
  EXPECT_EQ(faults.GetCount(), 1u);
  EXPECT_EQ(Read(camera.Integer("Small"), &KrGenInteger::GetValue), 3);
}
