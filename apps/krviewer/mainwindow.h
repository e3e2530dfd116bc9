#pragma once
// The viewer's window: library windows side by side, each as wide as the user wants it. What they show is left to
// whoever embeds them.

#include <QSplitter>

class KrResult;
class KrWnd;

namespace krviewer {

/// Thread: user interface. Ownership: a window of its own; what is embedded in it is borrowed.
class MainWindow : public QSplitter {
  Q_OBJECT

public:
  MainWindow();

  /// Embeds a window at the right of those that are there. aShare is its share of the width, in parts of those of all.
  KrResult Embed(KrWnd& aWindow, int aShare);
  /// The embedded window whose keys Escape and Enter end the viewer, as they close one that stands alone.
  void SetEndingWindow(const KrWnd& aWindow) { mEndingWindow = &aWindow; }
  /// Opens it in the middle of the screen, in its preferred size where that fits.
  void ShowOnScreen(QSize aPreferredSize);

signals:
  /// The user wants to end the viewer; the window is still on the screen.
  void EndWanted();

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;
  void closeEvent(QCloseEvent* aEvent) override;

private:
  bool IsInEndingWindow() const;

  const KrWnd* mEndingWindow = nullptr;
  QList<int> mShares;
};

} // namespace krviewer
