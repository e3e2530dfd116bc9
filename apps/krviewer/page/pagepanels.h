#pragma once
// The panels around a camera's picture: docked, floating, tabbed or hidden, as the user likes them, and as they were
// the last time. What is in a panel is left to whoever adds it.

#include <QByteArray>
#include <QObject>
#include <QString>

#include <map>
#include <set>

class QDockWidget;
class QMainWindow;

namespace krviewer {

/// The panels that a page may have; the numbers are not kept.
enum class Panel { Features, StreamFeatures, TransportFeatures, Histogram, LineProfile, Intervals, Recording };

/// Thread: user interface. Ownership: the area owns the panels.
class PagePanels : public QObject {
  Q_OBJECT

public:
  /// aArea holds the picture, and panels at its sides.
  explicit PagePanels(QMainWindow& aArea);

  /// Adds a panel; the ones that are added while others of the same side are there become tabs of theirs. aName,
  /// without blanks, is what its place is kept under.
  void Add(Panel aPanel, const QString& aName, const QString& aTitle, QWidget* aContent, Qt::DockWidgetArea aSide);
  bool Has(Panel aPanel) const { return mDocks.contains(aPanel); }
  /// Whether the user wants to see it; it may be behind another, or on a page that is behind others.
  bool IsShown(Panel aPanel) const;
  /// Shows the panel, in front of those that share its place, or hides it. Nothing for one that there is not.
  void Show(Panel aPanel, bool aIsShown);
  /// The panels that float leave the screen with their page, and come back with it.
  void SetPageShown(bool aIsShown);
  /// How wide a side is, once the page is on the screen.
  void SetWidth(Panel aPanel, int aWidth);

  /// The places of all, for RestoreLayout.
  QByteArray SaveLayout();
  /// False for bytes that are no layout of these panels, which changes nothing.
  bool RestoreLayout(const QByteArray& aLayout);

private:
  void PutBack();

  QMainWindow& mArea;
  std::map<Panel, QDockWidget*> mDocks;
  std::set<QDockWidget*> mPutAside; ///< Those that float, of a page that is not shown.
  bool mIsPageShown = true;
  bool mHasRoomBelow = false; ///< The panels under the picture are as high as the user has them.
};

} // namespace krviewer
