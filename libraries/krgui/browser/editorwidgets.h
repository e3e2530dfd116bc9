#pragma once
// The widgets of the in-place editors and what the user does to them. At most one editor is shown; each is made when it
// is first needed. Which one is opened on which row, and what happens to what it holds, is left to GridEditors.

#include "browser/dyncontrol.h"
#include "logic/browser/featureediting.h"
#include "logic/display/wheelsteps.h"

#include <QPointer>
#include <QRect>

class QFocusEvent;
class QLineEdit;
class QPushButton;

namespace krgui {

class GenBrowserComboBox;
class UpDownControl;

/// Who is told what the user does to the open editor.
class IEditorWatcher {
public:
  /// A key that ends the edit went down.
  virtual void OnKeyDown(Qt::Key aKey) = 0;
  /// The editor has lost the focus to something that ends the edit.
  virtual void OnFocusLost(Qt::FocusReason aReason) = 0;
  /// An item was chosen in the combo box's open list; the list was closed without a choice.
  virtual void OnChoiceMade() = 0;
  virtual void OnListLeft() = 0;
  virtual void OnCommandClicked() = 0;
  /// The up-down control, its keys or the wheel step once; and none of them is held any more.
  virtual void OnStep(bool aIsUp) = 0;
  virtual void OnStepsEnd() = 0;

protected:
  ~IEditorWatcher() = default;
};

/// What an editor is opened with.
struct EditorContent {
  EditorKind kind = EditorKind::None;
  KrString name; ///< The feature's, for assistive technology.
  /// Of an edit box, which takes it as it is, so that it is short: GetEditText gives no other; of a button its caption,
  /// which is made plain and cut.
  KrString text;
  Choices choices;
  bool isHexadecimal = false;
  bool hasUpDown = false;
  std::int64_t mostBytes = 0; ///< How long the text may become; 0 for as long as the user likes.
};

/// Thread: user interface. Ownership: borrows watcher and parent, which may end first; the widgets are the parent's.
class EditorWidgets final : public EditorKeyReceiver {
public:
  explicit EditorWidgets(IEditorWatcher& aWatcher) : mWatcher(aWatcher) {}

  /// Fills the editor of a kind, which is shown when it is placed. Another one that is open is hidden.
  void Open(QWidget& aParent, EditorContent aContent);
  /// What the open editor was filled with.
  const EditorContent& GetContent() const { return mContent; }
  /// Shows another value of the device in the open editor: the edit box's text, or the combo box's item.
  void Refill(const KrString& aText, int aSelected);
  /// Shows the open editor in a cell; where the cell is empty, out of sight.
  void Place(const QRect& aCell);
  void Hide();

  /// Gives the open editor the focus; an edit box that nobody has typed into gets its whole text selected.
  void TakeFocus();
  /// The open editor has the focus of its window, whether or not that is the active one.
  bool HoldsFocus() const;
  /// The open editor, or its list, is where keys go.
  bool HasFocus() const;
  /// Filling it now would take something from under the user's hands.
  bool IsInUse() const;
  EditInput TakeInput() const;
  KrString GetText() const;
  /// What a step has made of the text.
  void SetSteppedText(const KrString& aText);

  void OnEditorKey(const EditorKey& aKey) override;
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  QWidget* MakeEditor(QWidget& aParent, EditorKind aKind);
  QLineEdit* MakeEditBox(QWidget& aParent, const char* aName);
  QWidget* MakeComboBox(QWidget& aParent);
  QWidget* MakeButton(QWidget& aParent);
  void MakeUpDown(QWidget& aParent);
  void Fill();
  QLineEdit* GetOpenEditBox() const;
  bool HasUpDown() const { return mContent.hasUpDown && mContent.kind == EditorKind::Number; }
  void Touch();
  void HandleListEnd();
  bool EndsEdit(const QFocusEvent& aEvent) const;
  bool HandleWheel(QEvent& aEvent);
  bool HandleStepKey(QEvent& aEvent);

  IEditorWatcher& mWatcher;
  QPointer<GenBrowserComboBox> mComboBox;
  QPointer<QLineEdit> mTextBox;
  QPointer<QLineEdit> mNumberBox;
  QPointer<UpDownControl> mUpDown;
  QPointer<QPushButton> mButton;
  QPointer<QWidget> mOpen; ///< The editor that is open; null for none.
  EditorContent mContent;
  bool mIsTouched = false;
  bool mIsFilling = false;
  bool mIsUsed = false; ///< The user pressed a key or a mouse button in it.
  WheelSteps mWheel;
};

} // namespace krgui
