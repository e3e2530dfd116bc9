#pragma once
// What tests of the display on a real screen share: where its pixels are there, and hands for mouse and keyboard.

#include "displayfixture.h"
#include "serverhands.h"
#include "windowwait.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

class DisplayOnScreen : public KrDisplayWndTest {
protected:
  /// Where the client area is on the screen.
  QRect GetClient() const { return {mWindow.GetWidget()->mapToGlobal(QPoint(0, 0)), mWindow.GetWidget()->size()}; }
  /// The client area, or a part of it, as it is on the screen.
  QImage GrabClient(const QRect& aPart) const { return GrabScreen(aPart.translated(GetClient().topLeft())); }
  QImage GrabClient() const { return GrabClient(QRect(QPoint(0, 0), GetClient().size())); }

  /// A part of the client area comes to look like this.
  void ExpectOnScreen(const QRect& aPart, const QImage& aExpected, const std::string& aWhere = {}) const {
    EXPECT_TRUE(krtest::AwaitCondition([&] { return plainpicture::Compare(GrabClient(aPart), aExpected).empty(); }))
        << aWhere << ": " << plainpicture::Compare(GrabClient(aPart), aExpected);
  }
  /// An image that is fitted into the whole client area.
  void ExpectFitted(const KrBuffer& aMono8, QColor aBackground, const std::string& aWhere = {}) const {
    const QRect client(QPoint(0, 0), GetClient().size());
    ExpectOnScreen(client, plainpicture::Compute(client.size(), ToQImage(aMono8), aBackground), aWhere);
  }
  /// An image that is scrolled with both bars there, at the positions that the window tells.
  void ExpectScrolled(const KrBuffer& aMono8, double aFactor, const std::string& aWhere = {}) const {
    const QImage image = ToQImage(aMono8);
    const plainpicture::ScrolledView view(GetClient().size(), image.size(), aFactor, 18);
    ASSERT_TRUE(view.hasHorizontalBar && view.hasVerticalBar) << aWhere;
    EXPECT_TRUE(krtest::AwaitCondition([&] { return GetHorizontalBar().isVisible() && GetVerticalBar().isVisible(); }))
        << aWhere;
    // The positions may change with the next paint.
    std::string difference;
    const auto isThere = [&] {
      difference = plainpicture::Compare(
          GrabClient(QRect(QPoint(0, 0), view.view)),
          plainpicture::ComputeScrolled(view, image, mWindow.GetHScrollPos(), mWindow.GetVScrollPos()));
      return difference.empty();
    };
    EXPECT_TRUE(krtest::AwaitCondition(isThere)) << aWhere << ": " << difference;
  }
  void Await(const std::function<bool()>& aCondition, const char* aWhat) const {
    EXPECT_TRUE(krtest::AwaitCondition(aCondition)) << aWhat;
  }
  /// Moves the mouse to a point of the client area and waits until the display knows of it.
  void MoveMouse(QPoint aClientPoint) const {
    const QPoint point = GetClient().topLeft() + aClientPoint;
    krtest::MoveHands({"mousemove", QString::number(point.x()), QString::number(point.y())});
  }
};
