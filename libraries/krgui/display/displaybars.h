#pragma once
// Ties a display's two scroll bars to the view: they show its model, and what the user does to them becomes scroll
// codes. When they are placed is left to the window.

#include "logic/display/displaycontent.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <qwindowdefs.h>

#include <functional>
#include <memory>

class QScrollBar;

namespace krgui {

/// The scroll bars of one opening.
///
/// Thread: user interface. Ownership: borrows the bars, which may end before it.
class DisplayBars {
public:
  /// aOnScroll is called when the user has scrolled the view, which then is to be painted. Either bar may be null.
  DisplayBars(std::shared_ptr<DisplayContent> aContent, QScrollBar* aHorizontal, QScrollBar* aVertical,
              std::function<void()> aOnScroll);

  /// Keeps what a paint found, for when the paint is over.
  void Keep(const BarChanges& aChanges);
  /// What a paint found last for a bar.
  BarChange::Kind GetKind(ViewAxis aAxis) const { return GetSide(aAxis).kind; }
  /// Places, raises and shows the bars that are wanted, in device pixels of a client area of this pixel ratio.
  void Place(double aPixelRatio);
  /// Puts the bars back to where they were placed last.
  void Restore();
  /// Shows or hides a bar.
  void SetVisible(ViewAxis aAxis, bool aIsVisible);
  /// Lets the bars show range, page and position of their models; tells nobody.
  void Refresh();
  /// The native window of a bar, which is made when there is none; 0 where there is no bar.
  WId GetHandle(ViewAxis aAxis) const;

private:
  struct Side {
    Side(ViewAxis aAxis, QScrollBar* aBar) : axis(aAxis), bar(aBar) {}

    const ViewAxis axis;
    QPointer<QScrollBar> bar;
    BarChange::Kind kind = BarChange::Kind::None; ///< The last one that asked for something.
    PixelRect wanted;                             ///< In device pixels.
    QRect placed;                                 ///< In device-independent pixels; null before the first time.
  };

  Side& GetSide(ViewAxis aAxis) { return mSides[aAxis == ViewAxis::Horizontal ? 0 : 1]; }
  const Side& GetSide(ViewAxis aAxis) const { return mSides[aAxis == ViewAxis::Horizontal ? 0 : 1]; }
  void Watch(Side& aSide);
  void OnAction(ViewAxis aAxis, int aAction);
  void Refresh(Side& aSide);

  const std::shared_ptr<DisplayContent> mContent;
  const std::function<void()> mOnScroll;
  Side mSides[2];
  QObject mConnections; ///< End with this object.
};

} // namespace krgui
