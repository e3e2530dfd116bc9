#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

const std::string kMode = MakeRegister("Raw", 0) + R"(
<Integer Name="HasFast"><Value>1</Value></Integer>
<Integer Name="HasOld"><Value>0</Value></Integer>
<Enumeration Name="Mode">
  <EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Slow"><Value>10</Value><NumericValue>0.5</NumericValue></EnumEntry>
  <EnumEntry Name="Fast"><pIsAvailable>HasFast</pIsAvailable><Value>0x20</Value></EnumEntry>
  <EnumEntry Name="Old"><pIsImplemented>HasOld</pIsImplemented><Value>-3</Value></EnumEntry>
  <pValue>Raw</pValue>
</Enumeration>
)";

std::vector<std::string> GetAvailable(KrGenEnum& aEnum) {
  KrStringList names;
  EXPECT_TRUE(aEnum.GetAvailableEntries(names).IsOK());
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < names.GetCount(); ++i)
    texts.emplace_back(names[i].CStr());
  return texts;
}

std::string GetEntry(KrGenEnum& aEnum) {
  return Read<KrString>(aEnum, &KrGenEnum::GetEntry).CStr();
}

} // namespace

TEST(EnumerationNode, ValueAndEntry_GoTogether) {
  DescribedCamera camera(kMode);
  KrGenEnum& mode = camera.Enum("Mode");

  EXPECT_EQ(GetEntry(mode), "Off");
  ASSERT_TRUE(mode.SetValue(10).IsOK());
  EXPECT_EQ(GetEntry(mode), "Slow");
  ASSERT_TRUE(mode.SetEntry("Fast").IsOK());
  EXPECT_EQ(Read(mode, &KrGenEnum::GetValue), 0x20);
  EXPECT_EQ(camera.Peek(0, 1)[0], 0x20);
}

TEST(EnumerationNode, Entries_InTheOrderOfTheDescriptionByValueAndByName) {
  DescribedCamera camera(kMode);
  KrGenEnum& mode = camera.Enum("Mode");
  KrGenEnumEntry* entry = nullptr;

  EXPECT_EQ(mode.GetEntriesCount(), 4u);
  ASSERT_TRUE(mode.GetEntryByIndex(1, entry).IsOK());
  EXPECT_STREQ(entry->GetName().CStr(), "Slow");
  EXPECT_EQ(Read(*entry, &KrGenEnumEntry::GetNumericValue), 0.5);
  ASSERT_TRUE(mode.GetEntryByValue(-3, entry).IsOK());
  EXPECT_STREQ(entry->GetName().CStr(), "Old");
  EXPECT_EQ(entry->GetAccessMode(), KrGenAccessMode::NotImplemented);
  ASSERT_TRUE(mode.GetEntryByName("Fast", entry).IsOK());
  EXPECT_EQ(Read(*entry, &KrGenEnumEntry::GetNumericValue), 32.0);
  EXPECT_EQ(mode.GetEntryByValue(5, entry), KrResult::Code::NotFound);
}

TEST(EnumerationNode, EntriesThatCanBeChosen_FollowTheirPredicates) {
  DescribedCamera camera(kMode);

  EXPECT_THAT(GetAvailable(camera.Enum("Mode")), testing::ElementsAre("Off", "Slow", "Fast"));
  ASSERT_TRUE(camera.Integer("HasFast").SetValue(0).IsOK());
  EXPECT_THAT(GetAvailable(camera.Enum("Mode")), testing::ElementsAre("Off", "Slow"));
}

TEST(EnumerationNode, ValueOfNoEntry_IsRefusedWithThoseThatCanBeChosen) {
  DescribedCamera camera(kMode);

  for (const KrResult& refused : {camera.Enum("Mode").SetValue(5), camera.Enum("Mode").SetEntry("off")}) {
    EXPECT_EQ(refused, KrResult::Code::InvalidInput);
    EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("Off, Slow, Fast."));
  }
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(EnumerationNode, EntryThatCannotBeChosen_IsDeniedByName) {
  DescribedCamera camera(kMode);
  ASSERT_TRUE(camera.Integer("HasFast").SetValue(0).IsOK());

  const KrResult refused = camera.Enum("Mode").SetEntry("Fast");

  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("\"Fast\""));
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("Off, Slow."));
  EXPECT_EQ(camera.Enum("Mode").SetValue(-3), KrResult::Code::AccessDenied);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(EnumerationNode, DevicesValueOfNoEntry_IsReadAsNumberAlone) {
  DescribedCamera camera(kMode);
  camera.Poke(0, {77});
  KrString name("kept");

  EXPECT_EQ(Read(camera.Enum("Mode"), &KrGenEnum::GetValue), 77);
  EXPECT_EQ(camera.Enum("Mode").GetEntry(name), KrResult::Code::BadData);
  EXPECT_STREQ(name.CStr(), "kept");
}

TEST(EnumerationNode, Access_NeedsEntries) {
  struct Row {
    const char* predicates;
    KrGenAccessMode mode;
  };
  constexpr Row kRows[] = {{"<pIsImplemented>Zero</pIsImplemented>", KrGenAccessMode::NotImplemented},
                           {"<pIsAvailable>Zero</pIsAvailable>", KrGenAccessMode::ReadOnly},
                           {"", KrGenAccessMode::ReadWrite}};
  for (const Row& row : kRows) {
    DescribedCamera camera(std::string("<Integer Name=\"Zero\"><Value>0</Value></Integer><Enumeration Name=\"X\">"
                                       "<EnumEntry Name=\"A\">") +
                           row.predicates +
                           "<Value>0</Value></EnumEntry><EnumEntry Name=\"B\"><pIsImplemented>Zero</pIsImplemented>"
                           "<Value>1</Value></EnumEntry><Value>0</Value></Enumeration>");

    EXPECT_EQ(camera.Enum("X").GetAccessMode(), row.mode) << row.predicates;
  }
}

TEST(EnumerationNode, FloatOverIt_TakesTheNearestEntryThatCanBeChosen) {
  DescribedCamera camera(kMode + "<Float Name=\"X\"><pValue>Mode</pValue></Float>");

  ASSERT_TRUE(camera.Float("X").SetValue(30.0).IsOK());
  EXPECT_EQ(GetEntry(camera.Enum("Mode")), "Fast");
  ASSERT_TRUE(camera.Integer("HasFast").SetValue(0).IsOK());
  ASSERT_TRUE(camera.Float("X").SetValue(30.0).IsOK());
  EXPECT_EQ(GetEntry(camera.Enum("Mode")), "Slow");
}

TEST(EnumerationNode, EntriesOfSchemaOneZero_AreNodesOfTheirOwn) {
  DescribedCamera camera(
      "<EnumEntry Name=\"EnumEntry_Mode_A\"><Value>1</Value><Symbolic>A</Symbolic></EnumEntry>"
      "<EnumEntry Name=\"B\"><Value>2</Value></EnumEntry>"
      "<Enumeration Name=\"Mode\"><pEnumEntry>EnumEntry_Mode_A</pEnumEntry><pEnumEntry>B</pEnumEntry>"
      "<Value>1</Value></Enumeration>");

  EXPECT_EQ(GetEntry(camera.Enum("Mode")), "A");
  ASSERT_TRUE(camera.Enum("Mode").SetEntry("B").IsOK());
  EXPECT_EQ(Read(camera.Enum("Mode"), &KrGenEnum::GetValue), 2);
}

TEST(EnumerationNode, TwinsAndUselessEntries_AreNotedAndTheFirstCounts) {
  DescribedCamera camera("<Enumeration Name=\"Mode\"><EnumEntry Name=\"A\"><Value>1</Value></EnumEntry>"
                         "<EnumEntry Name=\"B\"><Value>1</Value></EnumEntry>"
                         "<EnumEntry Name=\"C\"><Value>nothing</Value></EnumEntry>"
                         "<EnumEntry Name=\"D\"/><Value>1</Value></Enumeration>");
  KrStringList faults;
  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());
  std::string all;
  for (std::size_t i = 0; i < faults.GetCount(); ++i)
    all += std::string(faults[i].CStr()) + "\n";

  EXPECT_EQ(GetEntry(camera.Enum("Mode")), "A");
  EXPECT_EQ(camera.Enum("Mode").GetEntriesCount(), 2u);
  EXPECT_THAT(all, HasSubstr("\"B\" has the value of \"A\""));
  EXPECT_THAT(all, HasSubstr("left out"));
}

TEST(EnumerationNode, SelfClearingEntry_IsReadAroundTheCacheUntilTheDeviceLeavesIt) {
  DescribedCamera camera(MakeRegister("Raw", 0) +
                         "<Enumeration Name=\"Auto\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
                         "<EnumEntry Name=\"Once\"><Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
                         "<pValue>Raw</pValue></Enumeration>");
  KrGenEnum& automatic = camera.Enum("Auto");

  EXPECT_EQ(GetEntry(automatic), "Off");
  camera.Poke(0, {1});
  EXPECT_EQ(GetEntry(automatic), "Off") << "cached as long as nothing says otherwise";
  ASSERT_TRUE(automatic.SetEntry("Once").IsOK());
  EXPECT_EQ(GetEntry(automatic), "Once");
  camera.Poke(0, {0});
  EXPECT_EQ(GetEntry(automatic), "Off");
  camera.Poke(0, {1});
  EXPECT_EQ(GetEntry(automatic), "Off") << "cached again";
}

TEST(EnumerationNode, SelfClearingEntryLeft_IsHeardOfByWhatStandsOnIt) {
  DescribedCamera camera(
      MakeRegister("Raw", 0) +
      "<Enumeration Name=\"Auto\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
      "<EnumEntry Name=\"Once\"><Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
      "<pValue>Raw</pValue></Enumeration>"
      "<IntSwissKnife Name=\"Double\"><pVariable Name=\"A\">Auto</pVariable><Formula>A*2</Formula>"
      "</IntSwissKnife><Integer Name=\"Exposure\"><pIsLocked>Auto</pIsLocked><Value>1</Value></Integer>");
  ASSERT_TRUE(camera.Enum("Auto").SetEntry("Once").IsOK());

  EXPECT_EQ(Read(camera.Integer("Double"), &KrGenInteger::GetValue), 2);
  EXPECT_EQ(camera.Integer("Exposure").GetAccessMode(), KrGenAccessMode::ReadOnly);
  camera.Poke(0, {0});
  EXPECT_EQ(Read(camera.Integer("Double"), &KrGenInteger::GetValue), 0);
  EXPECT_EQ(camera.Integer("Exposure").GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(EnumerationNode, MoreThanTwentyEntries_AreNotAllListed) {
  std::string entries;
  for (int i = 0; i < 30; ++i)
    entries += "<EnumEntry Name=\"E" + std::to_string(i) + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";
  DescribedCamera camera("<Enumeration Name=\"X\">" + entries + "<Value>0</Value></Enumeration>");

  const KrResult refused = camera.Enum("X").SetValue(99);

  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("E19, …"));
  EXPECT_THAT(refused.GetDescription().CStr(), Not(HasSubstr("E20")));
}
