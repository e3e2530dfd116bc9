#include "tonestore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using krbuffer::ToneDepth;
using krbuffer::ToneSettings;
using krbuffer::ToneStore;
using krbuffer::ToneTables;

namespace {

constexpr ToneDepth kGrey8{8, 0, false};
constexpr ToneDepth kGrey12{12, 0, false};
constexpr ToneDepth kColour8{8, 0, true};
constexpr ToneDepth kGrey2{2, 0, false};

void SetGamma(ToneStore& aStore, double aGamma) {
  aStore.ChangeSettings([aGamma](ToneSettings& aSettings) { aSettings.gamma = aGamma; });
}

} // namespace

TEST(ToneStore, NeutralSettings_NeedNoTables) {
  ToneStore store;

  EXPECT_EQ(store.GetTables(kGrey8), nullptr);
  EXPECT_EQ(store.GetTables(kGrey12), nullptr);
  EXPECT_EQ(store.GetTables(kColour8), nullptr);
}

TEST(ToneStore, SamplesOfFewerThan8Bits_AlwaysHaveATable) {
  ToneStore store;

  const std::shared_ptr<const ToneTables> tables = store.GetTables(kGrey2);

  ASSERT_NE(tables, nullptr);
  EXPECT_EQ(std::vector<int>(tables->GetGreyTable(), tables->GetGreyTable() + 4), (std::vector<int>{0, 85, 170, 255}));
}

TEST(ToneStore, WhiteBalance_NeedsTablesForColoursAlone) {
  ToneStore store;

  store.ChangeSettings([](ToneSettings& aSettings) { aSettings.whiteBalance.red = 2; });

  EXPECT_EQ(store.GetTables(kGrey8), nullptr);
  EXPECT_NE(store.GetTables(kColour8), nullptr);
}

TEST(ToneStore, Window_NeedsTablesForMoreThan8BitsAlone) {
  ToneStore store;

  store.ChangeSettings([](ToneSettings& aSettings) { aSettings.window = KrSampleWindow{1, 2}; });

  EXPECT_EQ(store.GetTables(kGrey8), nullptr);
  EXPECT_NE(store.GetTables(kGrey12), nullptr);
}

TEST(ToneStore, Tables_AreMadeOnceUntilTheSettingsChange) {
  ToneStore store;
  SetGamma(store, 2);

  const std::shared_ptr<const ToneTables> first = store.GetTables(kGrey12);
  const std::shared_ptr<const ToneTables> again = store.GetTables(kGrey12);
  SetGamma(store, 3);
  const std::shared_ptr<const ToneTables> changed = store.GetTables(kGrey12);

  EXPECT_EQ(first, again);
  EXPECT_NE(first, changed);
  EXPECT_LT(changed->GetGreyTable()[2048], first->GetGreyTable()[2048]);
}

TEST(ToneStore, SettingsThatChangeWhileTablesAreMade_AreThoseOfTheNextTables) {
  ToneStore* self = nullptr;
  int made = 0;
  ToneStore store([&](const ToneSettings& aSettings, const ToneDepth& aDepth) {
    if (++made == 1)
      SetGamma(*self, 3);
    return std::make_shared<const ToneTables>(aSettings, aDepth);
  });
  self = &store;
  SetGamma(store, 2);

  const std::shared_ptr<const ToneTables> old = store.GetTables(kGrey12);
  const std::shared_ptr<const ToneTables> present = store.GetTables(kGrey12);

  // 2048 of 4095 to the power of 2 and of 3.
  EXPECT_EQ(old->GetGreyTable()[2048], 64) << "those of the begin";
  EXPECT_EQ(present->GetGreyTable()[2048], 32);
  EXPECT_EQ(store.GetTables(kGrey12), present);
  EXPECT_EQ(made, 2);
}

TEST(ToneStore, TablesThatTwoMakeAtOnce_AreKeptOnce) {
  ToneStore* self = nullptr;
  std::shared_ptr<const ToneTables> first;
  ToneStore store([&](const ToneSettings& aSettings, const ToneDepth& aDepth) {
    auto tables = std::make_shared<const ToneTables>(aSettings, aDepth);
    if (!first) {
      first = tables;
      // Another asks, and is ready, before these are.
      first = self->GetTables(aDepth);
    }
    return tables;
  });
  self = &store;
  SetGamma(store, 2);

  const std::shared_ptr<const ToneTables> later = store.GetTables(kGrey12);

  EXPECT_NE(later, first);
  EXPECT_EQ(store.GetTables(kGrey12), first);
}

TEST(ToneStore, EachDepth_HasTablesOfItsOwn) {
  ToneStore store;
  SetGamma(store, 2);

  const std::shared_ptr<const ToneTables> grey = store.GetTables(kGrey12);
  const std::shared_ptr<const ToneTables> colour = store.GetTables(kColour8);

  EXPECT_EQ(store.GetTables(kGrey12), grey);
  EXPECT_EQ(store.GetTables(kColour8), colour);
  EXPECT_EQ(grey->GetGreyTable()[4095], 255);
  EXPECT_EQ(colour->GetTable(ToneTables::Channel::Blue)[255], 255);
}

TEST(ToneTables, ChannelThatNothingIsSetFor_LooksAsWithoutTables) {
  ToneSettings settings;
  settings.whiteBalance.red = 2;

  const ToneTables tables(settings, {12, 0, true});

  for (std::size_t sample = 0; sample < 4096; ++sample)
    ASSERT_EQ(tables.GetTable(ToneTables::Channel::Green)[sample], sample >> 4) << sample;
  EXPECT_EQ(tables.GetTable(ToneTables::Channel::Red)[1024], 128);
}
