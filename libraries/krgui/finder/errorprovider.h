#pragma once
// The mark beside a value that is doubtful, with the reason as its tooltip. Whether a value is doubtful is decided by
// the rules.

#include <QObject>
#include <QString>

#include <optional>

class QPoint;
class QWidget;

namespace krgui {

/// Draws and explains an error in a control of a dialog, which shows nothing while there is none.
///
/// Thread: user interface. Ownership: belongs to the control.
class ErrorProvider : public QObject {
public:
  /// The tools that a hit test finds: with and without an error.
  static constexpr int kErrorTool = 1;
  static constexpr int kNoErrorTool = 0xFFFF;

  explicit ErrorProvider(QWidget& aControl);

  /// The reason, shown at once; empty for no error.
  void SetText(const QString& aText);
  const QString& GetText() const { return mText; }
  /// The tool at a point of the control; nothing outside its client area.
  std::optional<int> HitTest(const QPoint& aPoint) const;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void Paint();
  void ShowToolTip(const QPoint& aPoint, const QPoint& aGlobal);

  QWidget& mControl;
  QString mText;
};

} // namespace krgui
