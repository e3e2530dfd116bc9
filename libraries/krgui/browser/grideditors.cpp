#include "browser/grideditors.h"

#include "browser/editorwidgets.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/gridmessages.h"
#include "logic/browser/shownvalue.h"
#include "logic/browser/treeitemdata.h"
#include "platform/messagebox.h"
#include "platform/toqstring.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace krgui {

namespace {

constexpr const char* kErrorCaption = "Error";
constexpr const char* kWriteFailure = "Error writing value:\r\n";
constexpr const char* kCommandFailure = "Error executing command:\r\n";
constexpr const char* kInvalidAddress = "Invalid IP Address.";

/// How long a text the device takes; 0 where nobody says.
std::int64_t FindMostBytes(const TreeItemData& aNode) {
  std::int64_t length = 0;
  auto* string = dynamic_cast<KrGenString*>(aNode.GetParameter());
  return string != nullptr && string->GetMaxLength(length).IsOK() ? length : 0;
}

EditorContent MakeContent(const TreeItemData& aNode, EditorKind aKind, KrGenVisibility aVisibility) {
  EditorContent content;
  content.kind = aKind;
  content.name = aNode.GetShownName();
  switch (aKind) {
  case EditorKind::Choice:
    content.choices = ListChoices(aNode, aVisibility);
    break;
  case EditorKind::Text:
    content.mostBytes = FindMostBytes(aNode);
    content.text = GetEditText(aNode, false);
    break;
  case EditorKind::Number:
    content.hasUpDown = HasUpDown(aNode);
    content.isHexadecimal = IsEditedInHexadecimal(aNode);
    content.text = GetEditText(aNode, content.isHexadecimal);
    break;
  case EditorKind::Command:
    content.text = aNode.GetName();
    break;
  case EditorKind::None:
    break;
  }
  return content;
}

} // namespace

/// One that outlives a message box is found by its pointer, which is null once it has gone.
class GridEditors::Body final : public QObject, private IEditorWatcher {
public:
  explicit Body(IEditorHost& aHost) : mHost(aHost) {}

  void UpdateRow(GridItem aItem);
  void Reposition(bool aTakesFocus);
  GridItem GetEdited() const { return mEdited; }
  void CloseWithoutWriting();
  void CloseByCategoryPress();
  void NotePressHandled();
  void HandleCommit();
  void Abandon();
  bool HasFocus() const { return mWidgets.HasFocus(); }

private:
  /// What an editor held when it was closed, or the command whose button was pressed.
  struct PendingEdit {
    GridItem item = kNoItem;
    EditInput input;
    bool isEndedByPress = false; ///< By the press on the grid that is being handled.
  };

  bool Open(GridItem aItem);
  void RefillWithNewValue(const TreeItemData& aNode);
  void Close();
  void CloseAndCommit(Qt::FocusReason aReason);
  void PostCommit(PendingEdit aEdit);
  bool IsPending(GridItem aItem) const;
  void FinishWriting(TreeItemData& aNode, const EditInput& aInput);
  void FinishCommand(TreeItemData& aNode);
  bool ShowFailure(const QString& aText, MessageIcon aIcon);
  void ShowAgain(GridItem aItem);
  void TellRowChanged(GridItem aItem) { mHost.GetMessages().PostOnce({kRowChangedMessage, aItem, 1}); }

  void OnKeyDown(Qt::Key aKey) override;
  void OnFocusLost(Qt::FocusReason aReason) override;
  void OnChoiceMade() override { EndByFocus(); }
  void OnListLeft() override;
  void OnCommandClicked() override;
  void OnStep(bool aIsUp) override;
  void OnStepsEnd() override { mAcceleration.Reset(); }
  void EndByFocus();

  IEditorHost& mHost;
  EditorWidgets mWidgets{*this};
  GridItem mEdited = kNoItem;
  GridItem mWithoutEditor = kNoItem; ///< A row whose type has no editor, so that the device is not asked again.
  /// Nobody was sent back to the grid from this row's editor since it was selected.
  bool mMayTakeFocus = true;
  bool mWantsFocus = false; ///< The focus was asked for while the row's last edit still was to be written.
  StepAcceleration mAcceleration;
  std::deque<PendingEdit> mPending;
};

// Opening and closing.

void GridEditors::Body::UpdateRow(GridItem aItem) {
  if (aItem == kNoItem || aItem != mHost.GetSelectedItem()) {
    return;
  }
  TreeItemData* node = mHost.FindFeatureNode(aItem);
  if (node == nullptr || !TakesValue(node->GetSnapshot())) {
    Close();
  } else if (mEdited == aItem) {
    RefillWithNewValue(*node);
  } else if (IsEditable(node->GetSnapshot()) && mEdited == kNoItem && !IsPending(aItem) && mWithoutEditor != aItem &&
             !mHost.GetEditorRect(aItem).isEmpty()) {
    Open(aItem);
  }
}

bool GridEditors::Body::Open(GridItem aItem) {
  TreeItemData* node = mHost.FindFeatureNode(aItem);
  const EditorKind kind = node != nullptr ? ChooseEditor(*node) : EditorKind::None;
  if (kind == EditorKind::None) {
    // A type without an editor stays so; what cannot be written at the moment, or still runs, may be later.
    mWithoutEditor = node != nullptr && !CanHaveEditor(*node) ? aItem : kNoItem;
    return false;
  }
  mEdited = aItem;
  mAcceleration.Reset();
  mWidgets.Open(mHost.GetEditorParent(), MakeContent(*node, kind, mHost.GetEntryVisibility()));
  mWidgets.Place(mHost.GetEditorRect(aItem));
  // Whoever clicks a value works with its editor: its keys, Escape among them, are the editor's.
  if (mMayTakeFocus && mHost.WasValueCellClicked()) {
    mWidgets.TakeFocus();
  }
  return true;
}

/// What the user typed or chose stays; an editor that shows what the device has goes on to do so, or goes with what is
/// too long for it.
void GridEditors::Body::RefillWithNewValue(const TreeItemData& aNode) {
  const EditorContent& content = mWidgets.GetContent();
  if (content.kind == EditorKind::Command || mWidgets.IsInUse()) {
    return;
  }
  if (IsEditable(aNode.GetSnapshot())) {
    mWidgets.Refill(GetEditText(aNode, content.isHexadecimal), FindChoice(aNode, content.choices));
  } else {
    Close();
  }
}

void GridEditors::Body::Reposition(bool aTakesFocus) {
  const GridItem selected = mHost.GetSelectedItem();
  if (mEdited == kNoItem && IsPending(selected)) {
    mWantsFocus = mWantsFocus || aTakesFocus;
    return;
  }
  if (aTakesFocus && mHost.FindFeatureNode(selected) != nullptr) {
    mHost.BringIntoView(selected);
  }
  // An editor that nobody sees is not to take the keys.
  const bool canTakeFocus = aTakesFocus && !mHost.GetEditorRect(selected).isEmpty();
  if (mEdited == kNoItem && !(canTakeFocus && Open(selected))) {
    return;
  }
  mWidgets.Place(mHost.GetEditorRect(mEdited));
  if (canTakeFocus) {
    mWidgets.TakeFocus();
  }
}

void GridEditors::Body::Close() {
  const GridItem item = std::exchange(mEdited, kNoItem);
  if (item == kNoItem) {
    return;
  }
  if (mWidgets.HoldsFocus()) {
    // Else the toolkit would give it to whatever comes next in the window.
    mHost.FocusGrid();
  }
  mWidgets.Hide();
  if (TreeItemData* node = mHost.FindFeatureNode(item)) {
    node->MarkRedrawPending();
  }
  mHost.RepaintRow(item);
  TellRowChanged(item);
}

void GridEditors::Body::CloseWithoutWriting() {
  Close();
  mMayTakeFocus = true;
  mWantsFocus = false;
}

void GridEditors::Body::CloseByCategoryPress() {
  CloseWithoutWriting();
  std::erase_if(mPending, [](const PendingEdit& aEdit) { return aEdit.isEndedByPress; });
}

/// What an earlier press has ended is written, whatever is pressed next.
void GridEditors::Body::NotePressHandled() {
  for (PendingEdit& edit : mPending) {
    edit.isEndedByPress = false;
  }
}

void GridEditors::Body::Abandon() {
  mPending.clear();
  mWantsFocus = false;
  mMayTakeFocus = true;
  if (std::exchange(mEdited, kNoItem) == kNoItem) {
    return;
  }
  if (mWidgets.HoldsFocus()) {
    mHost.FocusGrid();
  }
  mWidgets.Hide();
}

// What the user does. An edit that has ended already is not ended again by the focus that moves because of it.

void GridEditors::Body::OnKeyDown(Qt::Key aKey) {
  if (mEdited == kNoItem) {
    return;
  }
  if (aKey == Qt::Key_Escape) {
    mMayTakeFocus = false;
    Close();
  } else if (aKey == Qt::Key_Tab || mWidgets.TakeInput().kind != EditorKind::Command) {
    EndByFocus();
  }
}

void GridEditors::Body::EndByFocus() {
  mHost.FocusGrid();
  // Where the grid cannot have it, the edit ends all the same.
  OnFocusLost(Qt::OtherFocusReason);
}

void GridEditors::Body::OnFocusLost(Qt::FocusReason aReason) {
  if (mEdited != kNoItem) {
    mMayTakeFocus = false;
    CloseAndCommit(aReason);
  }
}

/// The device is not asked inside of the event by which the focus went. A press gives the focus first and is handled by
/// the grid then, before anything else is.
void GridEditors::Body::CloseAndCommit(Qt::FocusReason aReason) {
  PendingEdit edit{mEdited, mWidgets.TakeInput(), aReason == Qt::MouseFocusReason && mHost.HasGridFocus()};
  if (edit.input.kind != EditorKind::Command) {
    PostCommit(std::move(edit));
  }
  Close();
}

/// What came while the list was open was kept from it.
void GridEditors::Body::OnListLeft() {
  if (mEdited != kNoItem) {
    TellRowChanged(mEdited);
  }
}

void GridEditors::Body::OnCommandClicked() {
  if (mEdited != kNoItem) {
    PostCommit({mEdited, mWidgets.TakeInput(), false});
  }
}

void GridEditors::Body::OnStep(bool aIsUp) {
  TreeItemData* node = mHost.FindFeatureNode(mEdited);
  if (node == nullptr) {
    return;
  }
  // A stepped value is written when the focus is lost, so that it must be there.
  mWidgets.TakeFocus();
  if (const std::optional<KrString> text = StepText(*node, mWidgets.GetText(), mAcceleration, aIsUp)) {
    mWidgets.SetSteppedText(*text);
  }
}

// Writing.

void GridEditors::Body::PostCommit(PendingEdit aEdit) {
  mPending.push_back(std::move(aEdit));
  if (!mHost.GetMessages().Post({kCommitMessage, 0, 0})) {
    mPending.pop_back();
  }
}

bool GridEditors::Body::IsPending(GridItem aItem) const {
  return std::any_of(mPending.begin(), mPending.end(),
                     [aItem](const PendingEdit& aEdit) { return aEdit.item == aItem; });
}

void GridEditors::Body::HandleCommit() {
  if (mPending.empty()) {
    return;
  }
  const PendingEdit edit = std::move(mPending.front());
  mPending.pop_front();
  TreeItemData* node = mHost.FindFeatureNode(edit.item);
  if (node == nullptr) {
    return;
  }
  if (edit.input.kind == EditorKind::Command) {
    FinishCommand(*node);
  } else {
    FinishWriting(*node, edit.input);
  }
}

void GridEditors::Body::FinishWriting(TreeItemData& aNode, const EditInput& aInput) {
  const GridItem item = aNode.GetItem();
  KrResult failure;
  const EditOutcome outcome = WriteEdit(aNode, aInput, failure);
  if (outcome == EditOutcome::Written) {
    mHost.NoteWritten();
  }
  if (outcome == EditOutcome::InvalidIPAddress &&
      !ShowFailure(QLatin1String(kInvalidAddress), MessageIcon::Exclamation)) {
    return;
  }
  if (outcome == EditOutcome::Failed &&
      !ShowFailure(QLatin1String(kWriteFailure) + ToQString(failure.GetDescription()), MessageIcon::Stop)) {
    return;
  }
  ShowAgain(item);
}

void GridEditors::Body::FinishCommand(TreeItemData& aNode) {
  const GridItem item = aNode.GetItem();
  const KrResult result = ExecuteCommand(aNode);
  if (!result.IsOK() &&
      !ShowFailure(QLatin1String(kCommandFailure) + ToQString(result.GetDescription()), MessageIcon::Stop)) {
    return;
  }
  TreeItemData* node = mHost.FindFeatureNode(item);
  // Of one that cannot be read only its being asked tells whether it still runs.
  const bool keepsButton = node != nullptr && ChooseEditor(*node) != EditorKind::None;
  if (mEdited == item && !keepsButton) {
    Close();
  }
  ShowAgain(item);
}

/// False when the editors have gone meanwhile, or the window has: nothing may be touched then. Rows may have gone in
/// any case.
bool GridEditors::Body::ShowFailure(const QString& aText, MessageIcon aIcon) {
  const QPointer<Body> self(this);
  const ModalResult result = ShowMessage(mHost.GetMessageOwner(), aText, QLatin1String(kErrorCaption), aIcon);
  return result != ModalResult::Gone && self;
}

/// The row that was edited shows what the device has now, the selected one has its editor.
void GridEditors::Body::ShowAgain(GridItem aItem) {
  if (mHost.FindFeatureNode(aItem) != nullptr) {
    mHost.RepaintRow(aItem);
    TellRowChanged(aItem);
  }
  UpdateRow(mHost.GetSelectedItem());
  Reposition(std::exchange(mWantsFocus, false));
}

// The class itself.

GridEditors::GridEditors(IEditorHost& aHost) : mBody(std::make_unique<Body>(aHost)) {}

GridEditors::~GridEditors() = default;

void GridEditors::UpdateRow(GridItem aItem) {
  mBody->UpdateRow(aItem);
}

void GridEditors::Reposition(bool aTakesFocus) {
  mBody->Reposition(aTakesFocus);
}

GridItem GridEditors::GetEdited() const {
  return mBody->GetEdited();
}

void GridEditors::CloseWithoutWriting() {
  mBody->CloseWithoutWriting();
}

void GridEditors::CloseByCategoryPress() {
  mBody->CloseByCategoryPress();
}

void GridEditors::NotePressHandled() {
  mBody->NotePressHandled();
}

void GridEditors::HandleCommit() {
  mBody->HandleCommit();
}

void GridEditors::Abandon() {
  mBody->Abandon();
}

bool GridEditors::HasFocus() const {
  return mBody->HasFocus();
}

} // namespace krgui
