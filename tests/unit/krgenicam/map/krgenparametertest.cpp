#include "krgenicam/krgenparameter.h"

#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string kNodes = R"(
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Image</pFeature></Category>
<Category Name="Image"><pFeature>Width</pFeature></Category>
<Integer Name="Width" NameSpace="Standard"><ToolTip>Tip</ToolTip><Description>Words</Description>
  <DisplayName>Image Width</DisplayName><Visibility>Guru</Visibility><DocuURL>http://example</DocuURL>
  <IsDeprecated>Yes</IsDeprecated><pAlias>Raw</pAlias><pCastAlias>Cast</pCastAlias><Streamable>Yes</Streamable>
  <Value>4</Value></Integer>
<Integer Name="Raw"><Value>1</Value><pSelected>Width</pSelected><pSelected>Cast</pSelected></Integer>
<Float Name="Cast"><Value>0.1</Value></Float>
<Integer Name="Zero"><Value>0</Value></Integer>
<Integer Name="One"><Value>1</Value></Integer>
<Integer Name="NotImplemented"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>
<Integer Name="NotAvailable"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>
<Integer Name="Locked"><pIsLocked>One</pIsLocked><Value>1</Value></Integer>
<Integer Name="WriteOnly"><ImposedAccessMode>WO</ImposedAccessMode><Value>1</Value></Integer>
<Enumeration Name="Format">
  <EnumEntry Name="Mono8"><DisplayName>Mono 8</DisplayName><Value>1</Value></EnumEntry>
  <EnumEntry Name="Mono12"><Value>2</Value><NumericValue>2.5</NumericValue><IsSelfClearing>Yes</IsSelfClearing>
  </EnumEntry>
  <EnumEntry Name="Hidden"><pIsAvailable>Zero</pIsAvailable><Value>3</Value></EnumEntry>
  <Value>1</Value></Enumeration>
<Boolean Name="Flag"><Value>false</Value></Boolean>
<String Name="Text"><Value>abc</Value></String>
<Command Name="Start"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
<Node Name="Plain"/>
<Register Name="Bytes"><Address>0x300</Address><Length>3</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
)" + MakeRegister("StartReg", 0x400);

} // namespace

TEST(KrGenParameter, Texts_AreThoseOfTheDescription) {
  DescribedCamera camera(kNodes);
  KrGenParameter& width = camera.Integer("Width");

  EXPECT_EQ(width.GetName(), "Width");
  KrString text;
  ASSERT_TRUE(width.GetDisplayName(text).IsOK());
  EXPECT_EQ(text, "Image Width");
  ASSERT_TRUE(width.GetToolTip(text).IsOK());
  EXPECT_EQ(text, "Tip");
  ASSERT_TRUE(width.GetDescription(text).IsOK());
  EXPECT_EQ(text, "Words");
  ASSERT_TRUE(width.GetDocuURL(text).IsOK());
  EXPECT_EQ(text, "http://example");
  ASSERT_TRUE(camera.Float("Cast").GetDisplayName(text).IsOK());
  EXPECT_EQ(text, "Cast");
}

TEST(KrGenParameter, Properties_AreThoseOfTheDescription) {
  DescribedCamera camera(kNodes);
  KrGenParameter& width = camera.Integer("Width");
  KrGenParameter& cast = camera.Float("Cast");

  EXPECT_EQ(width.GetType(), KrGenType::Integer);
  KrGenNameSpace nameSpace{};
  ASSERT_TRUE(width.GetNameSpace(nameSpace).IsOK());
  EXPECT_EQ(nameSpace, KrGenNameSpace::Standard);
  EXPECT_EQ(Read(width, &KrGenParameter::GetVisibility), KrGenVisibility::Guru);
  EXPECT_FALSE(width.IsVisible(KrGenVisibility::Expert));
  EXPECT_TRUE(width.IsVisible(KrGenVisibility::Guru));
  EXPECT_TRUE(Read(width, &KrGenParameter::IsStreamable));
  EXPECT_FALSE(Read(cast, &KrGenParameter::IsStreamable));
  EXPECT_TRUE(Read(width, &KrGenParameter::IsDeprecated));
  EXPECT_FALSE(Read(cast, &KrGenParameter::IsDeprecated));
  EXPECT_EQ(width.GetLine(), 10u);
}

TEST(KrGenParameter, GetCategory_OfSeveral_IsTheFirstAndGetCategoriesAll) {
  DescribedCamera camera(kNodes);
  KrStringList paths;

  ASSERT_TRUE(camera.Integer("Width").GetCategories(paths).IsOK());

  EXPECT_EQ(camera.Integer("Width").GetCategory(), "Root");
  EXPECT_THAT(ToVector(paths), ElementsAre(KrString("Root"), KrString("Root\\Image")));
  EXPECT_EQ(camera.Integer("Raw").GetCategory(), "");
}

TEST(KrGenParameter, AliasesAndSelectors_LeadToTheParameters) {
  DescribedCamera camera(kNodes);
  KrGenParameterList selected, selecting;

  ASSERT_TRUE(camera.Integer("Raw").GetSelectedParameters(selected).IsOK());
  ASSERT_TRUE(camera.Float("Cast").GetSelectingParameters(selecting).IsOK());

  EXPECT_EQ(camera.Integer("Width").GetAlias(), camera.array->Get("Raw"));
  EXPECT_EQ(camera.Integer("Width").GetCastAlias(), camera.array->Get("Cast"));
  EXPECT_EQ(camera.Integer("Raw").GetAlias(), nullptr);
  EXPECT_EQ(camera.Integer("Raw").GetCastAlias(), nullptr);
  EXPECT_THAT(ToVector(selected), ElementsAre(camera.array->Get("Width"), camera.array->Get("Cast")));
  EXPECT_THAT(ToVector(selecting), ElementsAre(camera.array->Get("Raw")));
}

TEST(KrGenParameter, Selectors_ThatSelectOneAnotherWithoutEnd_AreListedUpToTheLimit) {
  constexpr int kCount = 100'000;
  std::string nodes = "<Integer Name=\"S" + std::to_string(kCount) + "\"><Value>0</Value></Integer>\n";
  for (int i = 0; i < kCount; ++i)
    nodes += "<Integer Name=\"S" + std::to_string(i) + "\"><Value>0</Value><pSelected>S" + std::to_string(i + 1) +
             "</pSelected></Integer>\n";
  DescribedCamera camera(nodes);
  KrGenParameterList selectors;

  selectors.AddSelectorsOf(camera.Integer("S100000"));

  ASSERT_EQ(selectors.GetCount(), 15u);
  EXPECT_EQ(selectors[0]->GetName(), "S99985");
  EXPECT_EQ(selectors[14]->GetName(), "S99999");
}

TEST(KrGenParameter, Selected_ThatAreNamedAgain_AreListedOnceInTheOrderOfTheDescription) {
  DescribedCamera camera(R"(
<Integer Name="First"><Value>0</Value><pSelected>B</pSelected><pSelected>A</pSelected><pSelected>B</pSelected>
  <pSelected>A</pSelected></Integer>
<Integer Name="Second"><Value>0</Value><pSelected>A</pSelected><pSelected>A</pSelected><pSelected>B</pSelected></Integer>
<Integer Name="A"><Value>0</Value></Integer><Integer Name="B"><Value>0</Value></Integer>)");
  KrGenParameterList ofFirst, ofSecond, selectingA;

  ASSERT_TRUE(camera.Integer("First").GetSelectedParameters(ofFirst).IsOK());
  ASSERT_TRUE(camera.Integer("Second").GetSelectedParameters(ofSecond).IsOK());
  ASSERT_TRUE(camera.Integer("A").GetSelectingParameters(selectingA).IsOK());

  EXPECT_THAT(ToVector(ofFirst), ElementsAre(camera.array->Get("B"), camera.array->Get("A")));
  EXPECT_THAT(ToVector(ofSecond), ElementsAre(camera.array->Get("A"), camera.array->Get("B")));
  EXPECT_THAT(ToVector(selectingA), ElementsAre(camera.array->Get("First"), camera.array->Get("Second")));
}

TEST(KrGenParameter, Access_ByPredicates_IsToldByAllOperations) {
  struct {
    const char* name;
    KrGenAccessMode mode;
    bool isImplemented, isAvailable, isReadable, isWritable;
  } constexpr kRows[] = {
      {"NotImplemented", KrGenAccessMode::NotImplemented, false, false, false, false},
      {"NotAvailable", KrGenAccessMode::NotAvailable, true, false, false, false},
      {"Locked", KrGenAccessMode::ReadOnly, true, true, true, false},
      {"WriteOnly", KrGenAccessMode::WriteOnly, true, true, false, true},
      {"Width", KrGenAccessMode::ReadWrite, true, true, true, true},
  };
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows) {
    KrGenParameter& parameter = *camera.array->Get(row.name);
    EXPECT_EQ(parameter.GetAccessMode(), row.mode) << row.name;
    EXPECT_EQ(parameter.IsImplemented(), row.isImplemented) << row.name;
    EXPECT_EQ(parameter.IsAvailable(), row.isAvailable) << row.name;
    EXPECT_EQ(parameter.IsReadable(), row.isReadable) << row.name;
    EXPECT_EQ(parameter.IsWritable(), row.isWritable) << row.name;
  }
}

TEST(KrGenParameter, GetValue_WithoutAccess_IsDeniedWithTheReason) {
  DescribedCamera camera(kNodes);
  std::int64_t value = 5;

  const KrResult unavailable = camera.Integer("NotAvailable").GetValue(value);
  const KrResult range = camera.Integer("NotAvailable").GetMax(value);
  const KrResult locked = camera.Integer("Locked").SetValue(1);

  EXPECT_TRUE(unavailable == KrResult::Code::AccessDenied);
  EXPECT_THAT(unavailable.GetDescription().ToUtf8(), HasSubstr("\"Zero\""));
  EXPECT_TRUE(range == KrResult::Code::AccessDenied);
  EXPECT_TRUE(locked == KrResult::Code::AccessDenied);
  EXPECT_THAT(locked.GetDescription().ToUtf8(), HasSubstr("locked"));
  EXPECT_EQ(value, 5);
}

TEST(KrGenParameter, SetValue_OfAMapThatIsReadOnly_IsDenied) {
  DescribedCamera camera(kNodes, {.isReadOnly = true});

  EXPECT_TRUE(camera.Integer("StartReg").SetValue(1) == KrResult::Code::AccessDenied);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(KrGenParameter, ToStringAndFromString_OfEachType_GoBothWays) {
  struct {
    const char* name;
    const char* given;
    const char* kept;
  } constexpr kRows[] = {
      {"Width", "-12", "-12"},  {"Width", " 0x1F ", "31"},  {"Cast", "0.1", "0.1"},
      {"Cast", "1e3", "1000"},  {"Flag", "TRUE", "1"},      {"Flag", "0", "0"},
      {"Flag", "1", "1"},       {"Flag", "false", "0"},     {"Format", "Mono12", "Mono12"},
      {"Format", "1", "Mono8"}, {"Text", " a b ", " a b "}, {"Bytes", "0aFf10", "0AFF10"},
  };
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows) {
    KrGenParameter& parameter = *camera.array->Get(row.name);
    const KrResult result = parameter.FromString(row.given);
    EXPECT_TRUE(result.IsOK()) << row.name << ": " << result.GetDescription().CStr();
    KrString text;
    EXPECT_TRUE(parameter.ToString(text).IsOK()) << row.name;
    EXPECT_EQ(text, row.kept) << row.name;
  }
}

TEST(KrGenParameter, FromString_TextThatIsNoValue_IsInvalidInput) {
  struct {
    const char* name;
    const char* text;
  } constexpr kRows[] = {{"Width", "wide"},  {"Width", ""},       {"Cast", "nan"},    {"Cast", "1.0x"},
                         {"Flag", "2"},      {"Flag", "Yes"},     {"Format", "Mono"}, {"Format", "9"},
                         {"Bytes", "0a0b0"}, {"Bytes", "0a0bxx"}, {"Bytes", "0a0b"},  {"Start", "1"},
                         {"Plain", "1"}};
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows)
    EXPECT_TRUE(camera.array->Get(row.name)->FromString(row.text) == KrResult::Code::InvalidInput)
        << row.name << " " << row.text;
}

TEST(KrGenParameter, FromString_NumberBeyondAll_IsRefusedByTheTextThatWasGiven) {
  DescribedCamera camera("<Float Name='Gain'><Value>1</Value><Min>0</Min><Max>24</Max></Float>");

  for (const char* text : {"1e400", "-1e400"}) {
    const KrResult result = camera.array->Get("Gain")->FromString(text);

    EXPECT_TRUE(result == KrResult::Code::OutOfRange);
    EXPECT_EQ(result.GetDescription().ToUtf8(),
              "\"Gain\" cannot be set to \"" + std::string(text) + "\": it takes 0 to 24.");
  }
}

TEST(KrGenParameter, ToString_WithoutAValueOrAccess_Fails) {
  DescribedCamera camera(kNodes);
  KrString text("kept");

  EXPECT_TRUE(camera.Command("Start").ToString(text) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(camera.array->Get("Plain")->ToString(text) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(camera.Integer("WriteOnly").ToString(text) == KrResult::Code::AccessDenied);
  EXPECT_EQ(text, "kept");
}

TEST(KrGenParameter, EntriesOfAnEnumeration_ByIndexValueAndName_AreTheSame) {
  DescribedCamera camera(kNodes);
  KrGenEnum& format = camera.Enum("Format");
  KrGenEnumEntry* byIndex = nullptr;
  KrGenEnumEntry* byValue = nullptr;
  KrGenEnumEntry* byName = nullptr;

  ASSERT_EQ(format.GetEntriesCount(), 3u);
  ASSERT_TRUE(format.GetEntryByIndex(1, byIndex).IsOK());
  ASSERT_TRUE(format.GetEntryByValue(2, byValue).IsOK());
  ASSERT_TRUE(format.GetEntryByName("Mono12", byName).IsOK());

  EXPECT_EQ(byIndex, byValue);
  EXPECT_EQ(byIndex, byName);
  EXPECT_EQ(byIndex->GetName(), "Mono12");
  EXPECT_EQ(Read(*byIndex, &KrGenEnumEntry::IsSelfClearing), true);
  std::int64_t value = 0;
  double numeric = 0.0;
  ASSERT_TRUE(byIndex->GetValue(value).IsOK());
  ASSERT_TRUE(byIndex->GetNumericValue(numeric).IsOK());
  EXPECT_EQ(value, 2);
  EXPECT_EQ(numeric, 2.5);
}

TEST(KrGenParameter, EntriesOfAnEnumeration_ThatAreNotThere_AreNotFound) {
  DescribedCamera camera(kNodes);
  KrGenEnumEntry* entry = nullptr;

  EXPECT_TRUE(camera.Enum("Format").GetEntryByIndex(3, entry) == KrResult::Code::NotFound);
  EXPECT_TRUE(camera.Enum("Format").GetEntryByValue(4, entry) == KrResult::Code::NotFound);
  EXPECT_TRUE(camera.Enum("Format").GetEntryByName("Mono", entry) == KrResult::Code::NotFound);
  EXPECT_EQ(entry, nullptr);
}

TEST(KrGenParameter, GetAvailableEntries_WithOneThatIsNot_LeavesItOut) {
  DescribedCamera camera(kNodes);
  KrStringList names;

  ASSERT_TRUE(camera.Enum("Format").GetAvailableEntries(names).IsOK());

  EXPECT_THAT(ToVector(names), ElementsAre(KrString("Mono8"), KrString("Mono12")));
}

TEST(KrGenParameter, IncrementsOfNumbers_WhereThereAreNone_AreOneAndNotFound) {
  DescribedCamera camera(kNodes);
  double increment = 0.0;

  EXPECT_EQ(Read(camera.Integer("Width"), &KrGenInteger::GetIncrement), 1);
  EXPECT_FALSE(camera.Float("Cast").HasIncrement());
  EXPECT_TRUE(camera.Float("Cast").GetIncrement(increment) == KrResult::Code::NotFound);
}
