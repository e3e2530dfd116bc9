#include "logic/browser/browseroptions.h"

namespace krgui {

namespace {

// The first key has always been spelled so; settings that were stored must stay readable.
constexpr const char* kVisibilityKey = "Visibilty";
constexpr const char* kNamesKey = "Names";
constexpr const char* kViewKey = "View";
constexpr const char* kRefreshKey = "Refresh";

constexpr const char* kDisplayNames = "DisplayNames";
constexpr const char* kFeatureNames = "FeatureNames";
constexpr const char* kTree = "Tree";
constexpr const char* kAlphabeticalList = "AlphabeticalList";

template <typename Value>
struct Word {
  const char* text;
  Value value;
};

constexpr Word<KrGenVisibility> kVisibilityWords[] = {
    {"Beginner", KrGenVisibility::Beginner},
    {"Expert", KrGenVisibility::Expert},
    {"Guru", KrGenVisibility::Guru},
    {"Invisible", KrGenVisibility::Invisible},
};

constexpr Word<KrGenRefresh> kRefreshWords[] = {
    {"PollingRefresh", KrGenRefresh::Polling},
    {"AutoRefresh", KrGenRefresh::Automatic},
    {"ManualRefresh", KrGenRefresh::Manual},
};

/// Empty for a value that has no word.
template <typename Value, std::size_t kCount>
const char* FindWord(const Word<Value> (&aWords)[kCount], Value aValue) {
  for (const Word<Value>& word : aWords) {
    if (word.value == aValue) {
      return word.text;
    }
  }
  return "";
}

template <typename Value, std::size_t kCount>
Value FindValue(const Word<Value> (&aWords)[kCount], const KrString& aText, Value aOtherwise) {
  for (const Word<Value>& word : aWords) {
    if (aText == KrString(word.text)) {
      return word.value;
    }
  }
  return aOtherwise;
}

} // namespace

void SaveBrowserOptions(const BrowserOptions& aOptions, KrPropertyList& aList) {
  aList.Clear();
  aList.Add({kVisibilityKey, KrString(FindWord(kVisibilityWords, aOptions.visibility))});
  aList.Add({kNamesKey, KrString(aOptions.showsDisplayNames ? kDisplayNames : kFeatureNames)});
  aList.Add({kViewKey, KrString(aOptions.isTree ? kTree : kAlphabeticalList)});
  aList.Add({kRefreshKey, KrString(FindWord(kRefreshWords, aOptions.refreshMode))});
}

void LoadBrowserOptions(const KrPropertyList& aList, BrowserOptions& aOptions) {
  if (const KrProperty* visibility = aList.GetProperty(kVisibilityKey)) {
    aOptions.visibility = FindValue(kVisibilityWords, visibility->GetValue(), KrGenVisibility::Beginner);
  }
  if (const KrProperty* names = aList.GetProperty(kNamesKey)) {
    aOptions.showsDisplayNames = names->GetValue() == KrString(kDisplayNames);
  }
  // Display names go with the tree, so a stored view counts only beside feature names.
  if (const KrProperty* view = aList.GetProperty(kViewKey); view && !aOptions.showsDisplayNames) {
    aOptions.isTree = view->GetValue() != KrString(kAlphabeticalList);
  }
  if (const KrProperty* refresh = aList.GetProperty(kRefreshKey)) {
    aOptions.refreshMode = FindValue(kRefreshWords, refresh->GetValue(), KrGenRefresh::Automatic);
  }
}

} // namespace krgui
