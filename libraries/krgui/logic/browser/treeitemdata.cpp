#include "logic/browser/treeitemdata.h"

#include "krgenicam/krgenparameterlist.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/browserwords.h"
#include "logic/browser/descriptiontext.h"
#include "logic/browser/valuetext.h"

#include <utility>

namespace krgui {

namespace {

using GetList = KrResult (KrGenParameter::*)(KrGenParameterList&);

std::vector<KrGenParameter*> ReadList(KrGenParameter& aFeature, GetList aGetter) {
  KrGenParameterList list;
  if (!(aFeature.*aGetter)(list).IsOK())
    return {};
  return {list.begin(), list.end()};
}

// A text that cannot be had stays empty.
template <typename Feature>
void ReadShownTexts(const Feature& aFeature, KrString& aToolTip, KrString& aDisplayName) {
  (void)aFeature.GetToolTip(aToolTip);
  (void)aFeature.GetDisplayName(aDisplayName);
  aToolTip = KeepText(std::move(aToolTip));
  aDisplayName = KeepText(std::move(aDisplayName));
}

} // namespace

TreeItemData::TreeItemData(const KrString& aName, RowNotifier aNotifier, GridItem aItem, KrGenCategory& aCategory,
                           bool aShowsDisplayNames)
    : mName(aName), mNotifier(std::move(aNotifier)), mItem(aItem), mParameter(nullptr), mCategory(&aCategory),
      mShowsDisplayNames(aShowsDisplayNames), mTypeText("Category") {
  ReadShownTexts(aCategory, mToolTip, mDisplayName);
  KrGenNameSpace nameSpace{};
  if (aCategory.GetNameSpace(nameSpace).IsOK())
    mNameSpaceText = NameSpaceToText(nameSpace);
}

TreeItemData::TreeItemData(const KrString& aName, RowNotifier aNotifier, GridItem aItem, KrGenParameter& aParameter,
                           bool aShowsDisplayNames)
    : mName(aName), mNotifier(std::move(aNotifier)), mItem(aItem), mParameter(&aParameter), mCategory(nullptr),
      mShowsDisplayNames(aShowsDisplayNames), mIsIPAddress(IsIPAddressName(aName)),
      mIsMACAddress(IsMACAddressName(aName)) {
  ReadTexts();
  mSelected = ReadList(aParameter, &KrGenParameter::GetSelectedParameters);
  mSelecting = ReadList(aParameter, &KrGenParameter::GetSelectingParameters);
  // Comes last, as a notification may follow at once.
  ListenAgain();
}

TreeItemData::~TreeItemData() {
  // While the node is still whole and none of its locks is held.
  StopListening();
}

void TreeItemData::StopListening() {
  if (mParameter)
    (void)mParameter->UnregisterEventSink(this); // Refused only to a sink that is not registered.
}

void TreeItemData::ListenAgain() {
  if (mParameter)
    (void)mParameter->RegisterEventSink(this); // Refused also where the host has no thread: the user refreshes then.
}

void TreeItemData::ReadTexts() {
  ReadShownTexts(*mParameter, mToolTip, mDisplayName);
  KrGenNameSpace nameSpace{};
  if (mParameter->GetNameSpace(nameSpace).IsOK())
    mNameSpaceText = NameSpaceToText(nameSpace);
  KrGenVisibility visibility{};
  if (mParameter->GetVisibility(visibility).IsOK())
    mVisibilityText = VisibilityToText(visibility);
  bool isStreamable = false;
  if (mParameter->IsStreamable(isStreamable).IsOK())
    mStreamableText = isStreamable ? "True" : "False";
  KrGenType type{};
  if (mParameter->GetType(type).IsOK())
    mTypeText = TypeToText(type);
}

void TreeItemData::Refresh() {
  if (!mParameter) {
    const std::lock_guard lock(mMutex);
    mNow.access = {};
    mNow.value.Clear();
    mIsRead = true;
    return;
  }
  const std::uint64_t number = mReadings.Begin();
  FeatureReading reading =
      ReadFeature(*mParameter,
                  {.isMACAddress = mIsMACAddress, .isIPAddress = mIsIPAddress, .showsDisplayNames = mShowsDisplayNames},
                  GetKnownReason());

  // Everything at once: whoever looks meanwhile sees value and error of one reading.
  const std::lock_guard lock(mMutex);
  if (!mReadings.Accept(number))
    return;
  mNow.access = reading.access;
  if (!reading.keepsValue) {
    mNow.value = std::move(reading.value);
    mNow.isCut = reading.isCut;
    mNow.number = reading.number;
  }
  // Of what cannot be read nothing is edited but what the user types.
  mNow.isTooLongToEdit = reading.isTooLongToEdit;
  PutError(reading.hasError, std::move(reading.error));
  mAccessReason = std::move(reading.accessReason);
  mIsRead = true;
}

void TreeItemData::PutError(bool aHasError, KrString aError) {
  mNow.hasError = aHasError;
  mNow.error = std::move(aError);
  mHasError = aHasError;
}

KrString TreeItemData::GetValue(bool aAcknowledge) {
  const std::lock_guard lock(mMutex);
  if (!mIsRead)
    return {};
  if (aAcknowledge) {
    mAcknowledged = mNow;
    mIsRedrawPending = false;
  }
  return mNow.value;
}

bool TreeItemData::HasChanged() const {
  const std::lock_guard lock(mMutex);
  // Another error's text alone is no change: the row shows the same.
  return mNow.value != mAcknowledged.value || mNow.hasError != mAcknowledged.hasError ||
         mNow.access != mAcknowledged.access || mIsRedrawPending;
}

void TreeItemData::SetValueText(const KrString& aText) {
  const std::lock_guard lock(mMutex);
  mAcknowledged.value = std::move(mNow.value);
  mNow.value = KeepText(aText);
  const bool isString = dynamic_cast<KrGenString*>(mParameter) != nullptr;
  mNow.isCut = isString && IsTooLong(aText);
  mNow.isTooLongToEdit = isString && IsTooLongToEdit(aText);
}

void TreeItemData::SetError(const KrString& aText) {
  const std::lock_guard lock(mMutex);
  PutError(true, KeepText(aText));
}

void TreeItemData::ClearError() {
  const std::lock_guard lock(mMutex);
  PutError(false, {});
}

KrString TreeItemData::GetError() const {
  const std::lock_guard lock(mMutex);
  return mNow.error;
}

std::optional<KrString> TreeItemData::FindError() const {
  // Most features have none, and thousands are asked once a second.
  if (!mHasError)
    return std::nullopt;
  const std::lock_guard lock(mMutex);
  return mNow.hasError ? std::optional(mNow.error) : std::nullopt;
}

void TreeItemData::MarkRedrawPending() {
  const std::lock_guard lock(mMutex);
  mIsRedrawPending = true;
}

RowSnapshot TreeItemData::GetSnapshot() const {
  const std::lock_guard lock(mMutex);
  return {.value = mIsRead ? mNow.value : KrString(),
          .number = mNow.number,
          .hasError = mNow.hasError,
          .isRead = mIsRead,
          .isCut = mNow.isCut,
          .isTooLongToEdit = mNow.isTooLongToEdit,
          .access = mNow.access};
}

AccessFlags TreeItemData::GetAccess() const {
  const std::lock_guard lock(mMutex);
  return mNow.access;
}

KrString TreeItemData::GetAccessReason() const {
  const std::lock_guard lock(mMutex);
  if (!mNow.isTooLongToEdit)
    return mAccessReason.text;
  return (mAccessReason.text.IsEmpty() ? KrString() : mAccessReason.text + "\n") + kCutValueText;
}

AccessReason TreeItemData::GetKnownReason() const {
  const std::lock_guard lock(mMutex);
  return mAccessReason;
}

KrString TreeItemData::GetDescription() const {
  return FormatDescription(*this);
}

bool TreeItemData::IsRead() const {
  const std::lock_guard lock(mMutex);
  return mIsRead;
}

void TreeItemData::OnParameterUpdate(KrGenParameter* /*aParameter*/) {
  Refresh();
  if (HasChanged())
    mNotifier.TellRowChanged(mItem);
}

} // namespace krgui
