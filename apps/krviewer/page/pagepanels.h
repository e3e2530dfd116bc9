#pragma once
// The panels around a camera's picture: docked, floating, tabbed or hidden, as the user likes them, and as they were
// the last time. What is in a panel is left to whoever adds it.

#include "page/sidewidth.h"

#include <QByteArray>
#include <QObject>
#include <QSize>
#include <QString>

#include <map>
#include <set>

class QDockWidget;
class QMainWindow;
class QWidget;

namespace krviewer {

/// The panels that a page may have; the numbers are not kept.
enum class Panel { Features, StreamFeatures, TransportFeatures, Histogram, LineProfile, Intervals, Recording };

/// Where a panel can be.
enum class PanelPlace { Left, Right, Bottom, Floating };

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
  /// Whether it is on the screen, or would be if its page were: not behind another panel's tab.
  bool IsInFront(Panel aPanel) const;
  /// Shows the panel, in front of those that share its place, or hides it. Nothing for one that there is not.
  void Show(Panel aPanel, bool aIsShown);
  /// Whether the keyboard is, or was before it went to the menus, in a panel.
  bool HasFocusedPanel() const { return mFocused && IsDockShown(*mFocused); }
  /// Moves that panel, which keeps the keyboard. Nothing without one.
  void MoveFocused(PanelPlace aPlace);
  /// Where the tabulator is to lead to from a widget of the page's window instead of into a panel behind another's tab:
  /// such a panel is not hidden, but lies beside the page, where nobody sees the keyboard. Null where it leads to none.
  QWidget* FindTabStop(QWidget& aFrom, bool aIsNext) const;
  /// The panels that float leave the screen with their page, and come back with it.
  void SetPageShown(bool aIsShown);
  /// How wide a side is, once the page is on the screen. From then on the panels leave the picture its part of it.
  void SetWidth(Panel aPanel, int aWidth);
  /// The same for a layout that was restored: what was too small to be of use is larger where there is room for it.
  void FitRestored();
  /// The page is shown again, in another size perhaps than when it was shown last.
  void FitAgain();

  /// The places of all, for RestoreLayout.
  QByteArray SaveLayout();
  /// False for bytes that are no layout of these panels, which changes nothing.
  bool RestoreLayout(const QByteArray& aLayout);

protected:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;

private:
  bool IsDockShown(QDockWidget& aDock) const;
  QDockWidget* FindFront(Qt::DockWidgetArea aSide) const;
  void NoteResize(QDockWidget& aDock);
  void FitSides(QSize aBefore);
  void FitSide(Qt::DockWidgetArea aSide, int aBefore, int aPage);
  void LimitSide(Qt::DockWidgetArea aSide);
  void NoteFocus(QWidget* aFocused);
  bool IsBehind(const QWidget& aWidget) const;
  void TakeKeyboardAlong(QDockWidget& aDock);
  void PutBack();

  QMainWindow& mArea;
  std::map<Panel, QDockWidget*> mDocks;
  std::set<QDockWidget*> mPutAside;     ///< Those that float, of a page that is not shown.
  std::set<const QDockWidget*> mBehind; ///< Those that are behind the tab of another one.
  QDockWidget* mFocused = nullptr;      ///< With the keyboard; null when that is elsewhere on the page.
  std::map<Qt::DockWidgetArea, SideWidth> mSides;
  bool mIsPageShown = true;
  bool mHasRoomBelow = false; ///< The panels under the picture are as high as the user has them.
  bool mIsFitted = false;     ///< Sizes are those of a page on the screen.
  bool mIsFitting = false;    ///< It is not the user who resizes panels.
  QSize mAreaSize;            ///< As the panels were fitted to it last.
};

} // namespace krviewer
