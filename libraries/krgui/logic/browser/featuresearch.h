#pragma once
// Finding features by a part of their name. Which rows are selected and highlighted is left to the search bar.

#include "krbase/krstring.h"
#include "logic/browser/griditem.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace krgui {

class TreeItemData;

/// Lower-case letters for upper-case ones, of all scripts that have them, whatever the locale.
KrString ToLowerCase(const KrString& aText);
/// Where the first match of a lower-case text begins in the lower-cased name, and how long it is, in UTF-16 units of
/// the name as it is written; nothing where it does not occur or is empty.
struct TextMatch {
  std::size_t position = 0;
  std::size_t length = 0;
  friend bool operator==(const TextMatch&, const TextMatch&) = default;
};
std::optional<TextMatch> FindMatch(const KrString& aName, const KrString& aLowerCaseText);
/// "Result 2 of 7", or "No result found" for a count of 0; at most 31 characters.
KrString FormatResult(std::size_t aPosition, std::size_t aCount);

/// The results of a search and the current one among them.
class FeatureSearch {
public:
  /// Finds the features whose name contains the text, in the order of the list; the first is the current one. By
  /// display names or by feature names.
  void Find(const std::vector<std::unique_ptr<TreeItemData>>& aFeatures, const KrString& aLowerCaseText,
            bool aByDisplayName);
  void Clear();
  /// The next result, after the last the first again; kNoItem without any.
  GridItem MoveToNext();
  /// The previous result, before the first the last.
  GridItem MoveToPrevious();
  GridItem GetCurrent() const;
  /// The current one's place, from 1 on; 0 without any.
  std::size_t GetPosition() const;
  std::size_t GetCount() const { return mResults.size(); }

private:
  std::vector<GridItem> mResults;
  std::size_t mCurrent = 0;
};

} // namespace krgui
