#include "logic/browser/browseroptions.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

void PrintTo(const BrowserOptions& aOptions, std::ostream* aStream) {
  *aStream << (aOptions.showsDisplayNames ? "display names, " : "feature names, ")
           << (aOptions.isTree ? "tree, refresh " : "list, refresh ") << static_cast<int>(aOptions.refreshMode)
           << ", visibility " << static_cast<int>(aOptions.visibility);
}

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs GetPairs(const KrPropertyList& aList) {
  Pairs pairs;
  for (const KrProperty& property : aList) {
    pairs.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
  }
  return pairs;
}

KrPropertyList MakeList(const Pairs& aPairs) {
  KrPropertyList list;
  for (const auto& [name, value] : aPairs) {
    list.Add({KrString(name), KrString(value)});
  }
  return list;
}

constexpr BrowserOptions Options(bool aShowsDisplayNames, bool aIsTree, KrGenRefresh aRefresh,
                                 KrGenVisibility aVisibility) {
  return {aShowsDisplayNames, aIsTree, aRefresh, aVisibility};
}

constexpr BrowserOptions kDefault;
constexpr BrowserOptions kOther = Options(false, false, KrGenRefresh::Manual, KrGenVisibility::Guru);

struct SaveRow {
  const char* name;
  BrowserOptions options;
  Pairs expected;
};

const std::vector<SaveRow> kSaveRows = {
    {"defaults",
     kDefault,
     {{"Visibilty", "Beginner"}, {"Names", "FeatureNames"}, {"View", "Tree"}, {"Refresh", "AutoRefresh"}}},
    {"everything else",
     Options(true, false, KrGenRefresh::Polling, KrGenVisibility::Expert),
     {{"Visibilty", "Expert"}, {"Names", "DisplayNames"}, {"View", "AlphabeticalList"}, {"Refresh", "PollingRefresh"}}},
    {"guru by hand",
     kOther,
     {{"Visibilty", "Guru"}, {"Names", "FeatureNames"}, {"View", "AlphabeticalList"}, {"Refresh", "ManualRefresh"}}},
    {"invisible",
     Options(false, true, KrGenRefresh::Automatic, KrGenVisibility::Invisible),
     {{"Visibilty", "Invisible"}, {"Names", "FeatureNames"}, {"View", "Tree"}, {"Refresh", "AutoRefresh"}}},
    {"numbers that have no word",
     Options(false, true, static_cast<KrGenRefresh>(9), static_cast<KrGenVisibility>(-1)),
     {{"Visibilty", ""}, {"Names", "FeatureNames"}, {"View", "Tree"}, {"Refresh", ""}}},
};

struct LoadRow {
  const char* name;
  BrowserOptions before;
  Pairs list;
  BrowserOptions expected;
};

const std::vector<LoadRow> kLoadRows = {
    {"an empty list changes nothing", kOther, {}, kOther},
    {"expert",
     kDefault,
     {{"Visibilty", "Expert"}},
     Options(false, true, KrGenRefresh::Automatic, KrGenVisibility::Expert)},
    {"guru", kDefault, {{"Visibilty", "Guru"}}, Options(false, true, KrGenRefresh::Automatic, KrGenVisibility::Guru)},
    {"invisible",
     kDefault,
     {{"Visibilty", "Invisible"}},
     Options(false, true, KrGenRefresh::Automatic, KrGenVisibility::Invisible)},
    {"a word in small letters is beginner",
     kOther,
     {{"Visibilty", "expert"}},
     Options(false, false, KrGenRefresh::Manual, KrGenVisibility::Beginner)},
    {"an empty visibility is beginner",
     kOther,
     {{"Visibilty", ""}},
     Options(false, false, KrGenRefresh::Manual, KrGenVisibility::Beginner)},
    {"the key spelled correctly is unknown", kOther, {{"Visibility", "Expert"}}, kOther},
    {"keys in small letters are unknown", kOther, {{"names", "DisplayNames"}, {"view", "Tree"}}, kOther},
    {"display names",
     kDefault,
     {{"Names", "DisplayNames"}},
     Options(true, true, KrGenRefresh::Automatic, KrGenVisibility::Beginner)},
    {"unknown names are feature names",
     Options(true, true, {}, {}),
     {{"Names", "displaynames"}},
     Options(false, true, {}, {})},
    {"display names keep the list they find",
     kOther,
     {{"Names", "DisplayNames"}, {"View", "Tree"}},
     Options(true, false, KrGenRefresh::Manual, KrGenVisibility::Guru)},
    {"display names keep the tree they find",
     kDefault,
     {{"Names", "DisplayNames"}, {"View", "AlphabeticalList"}},
     Options(true, true, KrGenRefresh::Automatic, KrGenVisibility::Beginner)},
    {"a view before the names in the list counts all the same",
     Options(true, true, {}, {}),
     {{"View", "AlphabeticalList"}, {"Names", "FeatureNames"}},
     Options(false, false, {}, {})},
    {"a view without names beside display names",
     Options(true, true, {}, {}),
     {{"View", "AlphabeticalList"}},
     Options(true, true, {}, {})},
    {"a view without names beside feature names",
     Options(false, true, {}, {}),
     {{"View", "AlphabeticalList"}},
     Options(false, false, {}, {})},
    {"an unknown view is a tree",
     Options(false, false, {}, {}),
     {{"View", "alphabeticallist"}},
     Options(false, true, {}, {})},
    {"polling", kDefault, {{"Refresh", "PollingRefresh"}}, Options(false, true, KrGenRefresh::Polling, {})},
    {"by hand", kDefault, {{"Refresh", "ManualRefresh"}}, Options(false, true, KrGenRefresh::Manual, {})},
    {"automatic",
     kOther,
     {{"Refresh", "AutoRefresh"}},
     Options(false, false, KrGenRefresh::Automatic, KrGenVisibility::Guru)},
    {"a word that is not one of the three is automatic",
     kOther,
     {{"Refresh", "Polling"}},
     Options(false, false, KrGenRefresh::Automatic, KrGenVisibility::Guru)},
    {"of equal names the first counts",
     kDefault,
     {{"Visibilty", "Guru"}, {"Visibilty", "Expert"}},
     Options(false, true, KrGenRefresh::Automatic, KrGenVisibility::Guru)},
};

} // namespace

TEST(SaveBrowserOptions, RowsOfOptions_GiveFourPropertiesInTheirOrder) {
  for (const SaveRow& row : kSaveRows) {
    KrPropertyList list;

    SaveBrowserOptions(row.options, list);

    EXPECT_EQ(GetPairs(list), row.expected) << row.name;
  }
}

TEST(SaveBrowserOptions, ListWithOtherProperties_KeepsOnlyTheBrowsers) {
  KrPropertyList list = MakeList({{"Gamma", "2"}, {"View", "old"}, {"Width", "640"}});

  SaveBrowserOptions(kDefault, list);

  EXPECT_EQ(GetPairs(list), kSaveRows.front().expected);
}

TEST(LoadBrowserOptions, RowsOfLists_GiveTheOptionsExpected) {
  for (const LoadRow& row : kLoadRows) {
    BrowserOptions options = row.before;

    LoadBrowserOptions(MakeList(row.list), options);

    EXPECT_EQ(options, row.expected) << row.name;
  }
}

TEST(LoadBrowserOptions, WhatWasSaved_ComesBackWhereNamesAndViewGoTogether) {
  for (const BrowserOptions& saved :
       {kDefault, kOther, Options(true, true, KrGenRefresh::Polling, KrGenVisibility::Invisible)}) {
    KrPropertyList list;
    SaveBrowserOptions(saved, list);
    BrowserOptions loaded;

    LoadBrowserOptions(list, loaded);

    EXPECT_EQ(loaded, saved);
  }
}

} // namespace krgui
