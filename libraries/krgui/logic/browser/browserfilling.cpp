#include "logic/browser/browserfilling.h"

#include "krbase/krlogger.h"
#include "logic/browser/browsertree.h"

#include <algorithm>
#include <exception>
#include <string>
#include <unordered_map>

namespace krgui {

namespace {

constexpr char kSeparator = '\\';
constexpr std::string_view kRoot = "root";
constexpr KrLogSite kFilterSite = {"GenBrowserWnd::IsParameterDisplayed", "genbrowserwnd"};

bool IsRoot(std::string_view aComponent) {
  return std::equal(aComponent.begin(), aComponent.end(), kRoot.begin(), kRoot.end(), [](char ofPath, char ofRoot) {
    return ofPath == ofRoot || (ofPath >= 'A' && ofPath <= 'Z' && ofPath - 'A' + 'a' == ofRoot);
  });
}

void LogFilterFailure(const KrString& aFeature, const std::string& aReason) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Error, kFilterSite,
           "The application's filter failed for the feature \"" + aFeature +
               "\", which is therefore shown: " + KrString(aReason));
}

/// An exception of the application's code must not leave the tree half filled: the feature is shown.
bool AskFilter(const FeatureFilter& aFilter, KrGenParameter& aFeature) {
  // Taken before, as the filter may have had the feature's array taken away.
  const KrString name = aFeature.GetName();
  try {
    return aFilter(&aFeature);
  } catch (const std::exception& error) {
    LogFilterFailure(name, error.what());
  } catch (...) {
    LogFilterFailure(name, "an exception without a text");
  }
  return true;
}

bool HasVisibleEntry(const KrGenEnum& aEnumeration, KrGenVisibility aVisibility) {
  const std::size_t count = aEnumeration.GetEntriesCount();
  for (std::size_t i = 0; i < count; ++i) {
    KrGenEnumEntry* entry = nullptr;
    if (aEnumeration.GetEntryByIndex(i, entry).IsOK() && entry->IsVisible(aVisibility)) {
      return true;
    }
  }
  return false;
}

/// The checks that decide whether a feature is shown. Remembers what it found out about categories, as thousands of
/// features may be in one, of which each may have to ask the device.
class FeatureChecks {
public:
  FeatureChecks(KrGenParameterArray& aArray, KrGenVisibility aVisibility, const FeatureFilter& aFilter,
                const std::function<bool()>& aGoesOn)
      : mArray(aArray), mVisibility(aVisibility), mFilter(aFilter), mGoesOn(aGoesOn) {}

  /// The filter has ended the filling: neither the array nor its features are touched any more.
  bool IsOver() const { return mIsOver; }

  bool IsShown(KrGenParameter& aFeature, const std::string& aPath) {
    if (!aFeature.IsVisible(mVisibility) || !aFeature.IsImplemented() || !IsCategoryShown(FindFilterCategory(aPath))) {
      return false;
    }
    if (mFilter && !IsWanted(aFeature)) {
      return false;
    }
    const auto* enumeration = dynamic_cast<const KrGenEnum*>(&aFeature);
    return !enumeration || HasVisibleEntry(*enumeration, mVisibility);
  }

private:
  bool IsWanted(KrGenParameter& aFeature) {
    const bool isWanted = AskFilter(mFilter, aFeature);
    mIsOver = mGoesOn && !mGoesOn();
    return isWanted && !mIsOver;
  }
  bool IsCategoryShown(std::string_view aName) {
    const auto [entry, isNew] = mCategories.try_emplace(std::string(aName), false);
    if (isNew) {
      KrGenCategory* const category = mArray.GetCategory(KrString(aName));
      entry->second = category && category->IsVisible(mVisibility) && category->IsImplemented();
    }
    return entry->second;
  }

  KrGenParameterArray& mArray;
  const KrGenVisibility mVisibility;
  const FeatureFilter& mFilter;
  const std::function<bool()>& mGoesOn;
  bool mIsOver = false;
  std::unordered_map<std::string, bool> mCategories;
};

/// The rows of category paths, made where they are first needed. Remembers the last one, as features of one category
/// mostly follow each other by the thousand; all paths together may be far larger than the description.
class CategoryRows {
public:
  CategoryRows(KrGenParameterArray& aArray, BrowserTree& aTree) : mArray(aArray), mTree(aTree) {}

  GridItem FindOrMake(const std::string& aPath) {
    if (aPath != mLastPath) {
      mLastPath = aPath;
      mLastRow = kNoItem;
      for (const std::string_view component : SplitCategoryPath(aPath)) {
        mLastRow = Descend(mLastRow, KrString(component));
      }
    }
    return mLastRow;
  }

private:
  /// A component that names no category has nothing to show: what is below it comes under its parent.
  GridItem Descend(GridItem aParent, const KrString& aName) {
    const GridItem child = mTree.FindChild(aParent, aName);
    if (mTree.FindCategory(child)) {
      return child;
    }
    KrGenCategory* const category = mArray.GetCategory(aName);
    return category ? mTree.AppendCategory(aParent, aName, *category) : aParent;
  }

  KrGenParameterArray& mArray;
  BrowserTree& mTree;
  std::string mLastPath; ///< The empty one has no rows.
  GridItem mLastRow = kNoItem;
};

} // namespace

std::string_view FindFilterCategory(std::string_view aPath) {
  const std::size_t last = aPath.rfind(kSeparator);
  const bool isInside = last != aPath.npos && last != 0 && last + 1 != aPath.size();
  return isInside ? aPath.substr(last + 1) : aPath;
}

std::vector<std::string_view> SplitCategoryPath(std::string_view aPath) {
  std::vector<std::string_view> components;
  while (!aPath.empty()) {
    const std::size_t end = std::min(aPath.find(kSeparator), aPath.size());
    const std::string_view component = aPath.substr(0, end);
    if (!component.empty() && !IsRoot(component)) {
      components.push_back(component);
    }
    aPath.remove_prefix(std::min(end + 1, aPath.size()));
  }
  return components;
}

bool IsFeatureShown(KrGenParameterArray& aArray, KrGenParameter& aFeature, KrGenVisibility aVisibility,
                    const FeatureFilter& aFilter) {
  return FeatureChecks(aArray, aVisibility, aFilter, {}).IsShown(aFeature, aFeature.GetCategory().ToUtf8());
}

void FillBrowserTree(KrGenParameterArray& aArray, const BrowserOptions& aOptions, const FeatureFilter& aFilter,
                     BrowserTree& aTree, const std::function<bool()>& aGoesOn) {
  aTree.SetShowsDisplayNames(aOptions.showsDisplayNames);
  FeatureChecks checks(aArray, aOptions.visibility, aFilter, aGoesOn);
  CategoryRows rows(aArray, aTree);
  const std::size_t count = aArray.GetCount();
  for (std::size_t i = 0; i < count && !checks.IsOver(); ++i) {
    KrGenParameter& feature = *aArray[i];
    const KrString path = feature.GetCategory();
    if (checks.IsShown(feature, path.ToUtf8())) {
      const GridItem parent = aOptions.isTree ? rows.FindOrMake(path.ToUtf8()) : kNoItem;
      aTree.AppendFeature(parent, feature.GetName(), feature);
    }
  }
  if (!aOptions.isTree) {
    aTree.SortByName();
  }
}

void ReadBeforeFilling(KrGenParameterArray& aArray, const std::function<bool()>& aGoesOn) {
  const std::size_t count = aArray.GetCount();
  for (std::size_t i = 0; i < count && aGoesOn(); ++i)
    (void)IsFeatureShown(aArray, *aArray[i], KrGenVisibility::Guru, {});
}

} // namespace krgui
