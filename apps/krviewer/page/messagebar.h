#pragma once
// A line above the picture that says what is wrong and what can be done about it, with buttons that do it. It waits for
// nobody. What is said, and when, is left to its owner.

#include <QFrame>
#include <QString>

#include <functional>
#include <vector>

class QBoxLayout;
class QHBoxLayout;
class QLabel;
class QToolButton;

namespace krviewer {

enum class MessageKind { Information, Warning, Error };

/// What the bar says.
struct BarMessage {
  struct Button {
    QString text; ///< With its mnemonic.
    std::function<void()> run;
  };

  MessageKind kind = MessageKind::Information;
  QString text; ///< Shown as it is; empty for no bar.
  std::vector<Button> buttons = {};
  bool canBeDismissed = true;
};

/// Thread: user interface. Ownership: a child of its parent.
class MessageBar : public QFrame {
  Q_OBJECT

public:
  explicit MessageBar(QWidget* aParent = nullptr);

  /// Says this from now on. The same text once more changes nothing, so that what the user has dismissed stays away.
  void Say(const BarMessage& aMessage);
  /// Says it in other words, with the same buttons.
  void Reword(const QString& aText);
  /// Says nothing.
  void Clear() { Say({}); }
  QString GetText() const { return mText; }

protected:
  void changeEvent(QEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void showEvent(QShowEvent* aEvent) override;

private:
  void AddButton(const BarMessage::Button& aButton);
  void UpdateColours();
  void UpdateMnemonics();

  QLabel* const mIcon;
  QLabel* const mLabel;
  QBoxLayout* const mSaid; ///< The text, and the buttons beside it or below.
  QHBoxLayout* const mButtons;
  QToolButton* const mDismiss;
  MessageKind mKind = MessageKind::Information;
  QString mText;
  bool mIsColouring = false;
};

} // namespace krviewer
