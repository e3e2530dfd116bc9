#pragma once
// The node behind a row of the feature browser: one feature or one category with everything that grid, tooltip and
// description pane show of it. How a value becomes text is left to valuetext.h, the description to descriptiontext.h,
// the rows to the browser tree.

#include "krgenicam/krgencategory.h"
#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenparameter.h"
#include "logic/browser/accessflags.h"
#include "logic/browser/featurereading.h"
#include "logic/browser/gridmessages.h"
#include "logic/browser/readingorder.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

namespace krgui {

/// What a row is painted from: one consistent copy.
struct RowSnapshot {
  KrString value;       ///< Empty until the value has been read once.
  FeatureNumber number; ///< What the value's text was made from.
  bool hasError = false;
  bool isRead = false; ///< The value has been read once.
  bool isCut = false;  ///< The value is the beginning of a text that the device has: nothing to be written back.
  bool isTooLongToEdit = false;
  AccessFlags access;
};

/// A node. Of what the device and its description say it keeps no text that is longer than KeepText leaves it, but its
/// name, whose length the description's reader limits. A feature's node is its event sink for its whole life, but for
/// the moments in which who reads it next makes the array forget it.
///
/// Thread: construction and destruction on the user-interface thread; Refresh and OnParameterUpdate on any; the rest
/// on any, each consistent in itself. No lock is held while the device is asked.
/// Ownership: the browser tree's; borrows feature or category, which must outlive it.
class TreeItemData final : public KrGenEventSink {
public:
  /// A category's node.
  TreeItemData(const KrString& aName, RowNotifier aNotifier, GridItem aItem, KrGenCategory& aCategory,
               bool aShowsDisplayNames);
  /// A feature's node; registers as the feature's event sink.
  TreeItemData(const KrString& aName, RowNotifier aNotifier, GridItem aItem, KrGenParameter& aParameter,
               bool aShowsDisplayNames);
  ~TreeItemData() override;
  TreeItemData(const TreeItemData&) = delete;
  TreeItemData& operator=(const TreeItemData&) = delete;

  /// Reads access and value from the device; waits as long as the registers need. Every failure becomes the error.
  void Refresh();
  /// The value's text; empty until it has been read once, and then nothing is acknowledged either. With aAcknowledge
  /// what is there now is what HasChanged compares with.
  KrString GetValue(bool aAcknowledge);
  /// Whether value, error state, access or the redraw mark differ from what was acknowledged last.
  bool HasChanged() const;
  /// The value's text after an edit, kept as one that was read; what was there before counts as acknowledged.
  void SetValueText(const KrString& aText);
  void SetError(const KrString& aText);
  void ClearError();
  bool HasError() const { return mHasError; }
  KrString GetError() const;
  /// The error's text, or nothing without one: of one moment, whoever sets and clears it meanwhile.
  std::optional<KrString> FindError() const;
  /// An editor on the row was closed: the next HasChanged is true.
  void MarkRedrawPending();

  /// The value, error state and access as they are now, in one consistent copy; acknowledges nothing.
  RowSnapshot GetSnapshot() const;
  AccessFlags GetAccess() const;

  const KrString& GetToolTip() const { return mToolTip; }
  /// Why the feature is not what it might be: which node locks it or makes it not available, or that its value is too
  /// long. Empty where there is nothing to say. Found out when the access changes, so of two nodes that lock it one may
  /// still name the first.
  KrString GetAccessReason() const;
  /// What the description pane shows, with its mark-up; asks the device for bounds.
  KrString GetDescription() const;
  bool HasSelectors() const { return !mSelecting.empty(); }
  bool IsSelector() const { return !mSelected.empty(); }
  bool IsIPAddress() const { return mIsIPAddress; }
  bool IsMACAddress() const { return mIsMACAddress; }
  bool ShowsDisplayNames() const { return mShowsDisplayNames; }
  /// From the next reading on the value, where it is an entry's name, follows.
  void SetShowsDisplayNames(bool aShowsDisplayNames) { mShowsDisplayNames = aShowsDisplayNames; }

  const KrString& GetName() const { return mName; }
  const KrString& GetDisplayName() const { return mDisplayName; }
  /// The name that the row shows.
  const KrString& GetShownName() const { return mShowsDisplayNames ? mDisplayName : mName; }
  const KrString& GetNameSpaceText() const { return mNameSpaceText; }
  const KrString& GetVisibilityText() const { return mVisibilityText; }
  const KrString& GetTypeText() const { return mTypeText; }
  const KrString& GetStreamableText() const { return mStreamableText; }
  const std::vector<KrGenParameter*>& GetSelectingParameters() const { return mSelecting; }
  const std::vector<KrGenParameter*>& GetSelectedParameters() const { return mSelected; }

  /// Null for a category's node.
  KrGenParameter* GetParameter() const { return mParameter; }
  /// Null for a feature's node.
  KrGenCategory* GetCategory() const { return mCategory; }
  GridItem GetItem() const { return mItem; }

  /// The depth of the row, from 0 on, as the grid found it.
  int GetLevel() const { return mLevel; }
  void SetLevel(int aLevel) { mLevel = aLevel; }
  /// Whether the row is on the screen: written by the user interface, read by the refresh.
  bool IsOnScreen() const { return mIsOnScreen; }
  void SetOnScreen(bool aIsOnScreen) { mIsOnScreen = aIsOnScreen; }
  /// Whether the value has been read once.
  bool IsRead() const;

  void OnParameterUpdate(KrGenParameter* aParameter) override;
  /// Hears of no change until ListenAgain, and waits for the call that is under way. For who reads the node after that:
  /// what has changed meanwhile is found by that reading. Nothing for a category's node.
  void StopListening();
  void ListenAgain();

  /// Ascending by name, case-sensitive.
  static bool IsNameLess(const TreeItemData& aLeft, const TreeItemData& aRight) { return aLeft.mName < aRight.mName; }

private:
  /// What can change, as it is or as it was acknowledged.
  struct Content {
    KrString value;
    FeatureNumber number;
    bool isCut = false;
    bool isTooLongToEdit = false;
    bool hasError = false;
    KrString error;
    AccessFlags access;
  };

  /// Of a feature.
  void ReadTexts();
  AccessReason GetKnownReason() const;
  /// With the lock held.
  void PutError(bool aHasError, KrString aError);

  const KrString mName;
  const RowNotifier mNotifier;
  const GridItem mItem;
  KrGenParameter* const mParameter;
  KrGenCategory* const mCategory;
  std::atomic<bool> mShowsDisplayNames;
  bool mIsIPAddress = false;
  bool mIsMACAddress = false;
  int mLevel = 0;
  std::atomic<bool> mIsOnScreen = false;
  std::atomic<bool> mHasError = false; ///< As in mNow, for those who ask without the lock.
  KrString mToolTip;
  KrString mNameSpaceText;
  KrString mDisplayName;
  KrString mVisibilityText;
  KrString mTypeText;
  KrString mStreamableText;
  std::vector<KrGenParameter*> mSelecting;
  std::vector<KrGenParameter*> mSelected;

  ReadingOrder mReadings; ///< Accepts with the lock held.

  mutable std::mutex mMutex; ///< Guards the members from here on; never held while the device is asked.
  Content mNow;
  Content mAcknowledged;
  AccessReason mAccessReason;
  bool mIsRedrawPending = false;
  bool mIsRead = false;
};

} // namespace krgui
