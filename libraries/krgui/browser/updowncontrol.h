#pragma once
// Two arrows beside the edit box of an integer, which step its value while they are held. It knows no value: what a
// step does is left to whoever listens.

#include <QWidget>

class QToolButton;

namespace krgui {

/// Never takes the focus from the edit box.
///
/// Thread: user interface. Ownership: belongs to its parent widget.
class UpDownControl : public QWidget {
  Q_OBJECT

public:
  explicit UpDownControl(QWidget* aParent);

  /// The edit box that has the focus in this control's stead: clicked, nothing else would keep the grid behind from
  /// taking it.
  void SetEditBox(QWidget& aEditBox) { setFocusProxy(&aEditBox); }
  /// Names the buttons for assistive technology, after the feature that they step.
  void SetFeatureName(const QString& aName);
  /// How wide it wants to be.
  static int GetPreferredWidth(const QWidget& aBeside);

Q_SIGNALS:
  /// An arrow was pressed, or is held.
  void Stepped(bool aIsUp);
  /// The arrow was let go.
  void Released();

protected:
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  QToolButton* MakeButton(bool aIsUp);

  QToolButton* mUp;
  QToolButton* mDown;
};

} // namespace krgui
