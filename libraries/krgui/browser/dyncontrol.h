#pragma once
// A control that stands in a cell of the property grid. Its only own behaviour is that of its keys: those that end an
// edit are handed over, and no key goes on to the grid or the dialog around.

#include <QKeyEvent>
#include <QPointer>

#include <algorithm>
#include <iterator>

namespace krgui {

/// A key that ends an edit, down or up.
struct EditorKey {
  Qt::Key key = Qt::Key_unknown; ///< Enter of the keypad comes as Return, Shift+Tab as Tab.
  bool isDown = false;
  bool isRepeat = false; ///< The key is held down.
};

/// Whether a key event is handed over, and as what.
inline bool FindEditorKey(const QKeyEvent& aEvent, EditorKey& aKey) {
  constexpr struct {
    Qt::Key key;
    Qt::Key meaning;
  } kKeys[] = {{Qt::Key_Return, Qt::Key_Return},
               {Qt::Key_Enter, Qt::Key_Return},
               {Qt::Key_Escape, Qt::Key_Escape},
               {Qt::Key_Tab, Qt::Key_Tab},
               {Qt::Key_Backtab, Qt::Key_Tab}};
  const auto* found = std::find_if(std::begin(kKeys), std::end(kKeys),
                                   [&aEvent](const auto& aRow) { return aRow.key == aEvent.key(); });
  // Ctrl+Tab turns the pages of the window around.
  if (found == std::end(kKeys) || (found->meaning == Qt::Key_Tab && (aEvent.modifiers() & Qt::ControlModifier) != 0)) {
    return false;
  }
  aKey = {found->meaning, aEvent.type() == QEvent::KeyPress, aEvent.isAutoRepeat()};
  return true;
}

/// Who is told of the keys. A QObject, so that a control that outlives it tells nobody.
class EditorKeyReceiver : public QObject {
public:
  virtual void OnEditorKey(const EditorKey& aKey) = 0;
};

/// Thread: user interface. Ownership: belongs to its parent widget; borrows the receiver, which may end first.
template <typename Control>
class DynControl final : public Control {
public:
  DynControl(QWidget* aParent, EditorKeyReceiver& aReceiver) : Control(aParent), mReceiver(&aReceiver) {}

protected:
  bool event(QEvent* aEvent) override {
    EditorKey key;
    switch (aEvent->type()) {
    case QEvent::ShortcutOverride:
      if (FindEditorKey(static_cast<const QKeyEvent&>(*aEvent), key)) {
        aEvent->accept();
        return true;
      }
      return Control::event(aEvent);
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (!FindEditorKey(static_cast<const QKeyEvent&>(*aEvent), key)) {
        Control::event(aEvent);
      } else if (mReceiver) {
        mReceiver->OnEditorKey(key);
      }
      // What the control has no use for would move the selection in the grid.
      aEvent->accept();
      return true;
    default:
      return Control::event(aEvent);
    }
  }

private:
  QPointer<EditorKeyReceiver> mReceiver;
};

} // namespace krgui
