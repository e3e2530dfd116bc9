#pragma once
// Letters with Alt belong to the dialog: one that is nobody's mnemonic at the moment is not a letter to be typed.

#include <QObject>

class QEvent;
class QWidget;

namespace krgui {

/// Keeps the fields of a dialog, those that are made later included, from taking a letter with Alt as their text. The
/// key goes on to what surrounds the field.
///
/// Thread: user interface. Ownership: the dialog's.
class AltLetters : public QObject {
public:
  explicit AltLetters(QWidget& aDialog);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  bool IsField(const QObject* aWatched) const;

  QWidget& mDialog;
};

} // namespace krgui
