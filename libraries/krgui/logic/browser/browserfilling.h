#pragma once
// Fills the browser tree from a parameter array: which features are shown at a visibility, and under which categories.

#include "krgenicam/krgenparameterarray.h"
#include "logic/browser/browseroptions.h"

#include <functional>
#include <string_view>
#include <vector>

namespace krgui {

class BrowserTree;

/// The application's own filter; true shows the feature.
using FeatureFilter = std::function<bool(KrGenParameter*)>;

/// The category by which a feature is filtered: the last component of its category path.
std::string_view FindFilterCategory(std::string_view aPath);
/// The components of a category path that make rows: all but those that say "root" in any case.
std::vector<std::string_view> SplitCategoryPath(std::string_view aPath);
/// Whether a feature is shown; may ask the device what is implemented.
bool IsFeatureShown(KrGenParameterArray& aArray, KrGenParameter& aFeature, KrGenVisibility aVisibility,
                    const FeatureFilter& aFilter);
/// Appends all features that are shown, with their categories in tree view, sorted by name in the alphabetical list.
/// The tree is empty before. aGoesOn is asked after each call of the filter, which is the application's code and may
/// have made the filling needless: with false nothing more is asked or appended. Without it everything is appended.
void FillBrowserTree(KrGenParameterArray& aArray, const BrowserOptions& aOptions, const FeatureFilter& aFilter,
                     BrowserTree& aTree, const std::function<bool()>& aGoesOn = {});
/// Asks the device what FillBrowserTree will ask it, so that the array remembers it by then: where asking takes long,
/// another thread does so before the window is filled. False of aGoesOn, which is asked before each feature, ends it.
void ReadBeforeFilling(KrGenParameterArray& aArray, const std::function<bool()>& aGoesOn);

} // namespace krgui
