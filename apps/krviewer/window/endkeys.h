#pragma once
// Ctrl+Q and Ctrl+W where there are no menus that have them: in the windows of the terminal, of bridges, of the finder
// and in boxes. What quitting means is left to the viewer.

#include <QObject>

namespace krviewer {

/// While it lives, Ctrl+W closes the window that has the keyboard, wherever in it that is, and Ctrl+Q asks for the
/// program's end. Windows with menus keep these keys, and questions that have to be answered first.
///
/// Thread: user interface.
class EndKeys : public QObject {
  Q_OBJECT

public:
  EndKeys();

signals:
  /// From the loop, not from the window's key.
  void QuitWanted();

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
};

} // namespace krviewer
