#pragma once
// The viewer's window: library windows side by side, each as wide as the user wants it, under a menu of further ones.
// What they show is left to whoever embeds them.

#include <QKeySequence>
#include <QList>
#include <QMainWindow>

class KrResult;
class KrWnd;
class QAction;
class QMenu;
class QSplitter;

namespace krviewer {

/// Thread: user interface. Ownership: a window of its own; what is embedded in it is borrowed.
class MainWindow : public QMainWindow {
  Q_OBJECT

public:
  MainWindow();

  /// Embeds a window at the right of those that are there. aShare is its share of the width, in parts of those of all.
  KrResult Embed(KrWnd& aWindow, int aShare);
  /// Adds an entry to the menu "Tools", which a window without entries does not have. Belongs to this window.
  QAction* AddTool(const QString& aText, const QKeySequence& aShortcut);
  /// The embedded window whose keys Escape and Enter end the viewer, as they close one that stands alone.
  void SetEndingWindow(const KrWnd& aWindow) { mEndingWindow = &aWindow; }
  /// Opens it in the middle of the screen, with the preferred size under the menu where that fits.
  void ShowOnScreen(QSize aPreferredSize);

signals:
  /// The user wants to end the viewer; the window is still on the screen.
  void EndWanted();

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;
  void closeEvent(QCloseEvent* aEvent) override;

private:
  bool IsInEndingWindow() const;

  QSplitter* const mSplitter;
  QMenu* mTools = nullptr;
  const KrWnd* mEndingWindow = nullptr;
  QList<int> mShares;
};

} // namespace krviewer
