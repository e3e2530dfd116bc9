#include "browser/errorbutton.h"

#include "browsedcamera.h"
#include "paintcounter.h"
#include "platform/systemcolours.h"
#include "res/bitmaps.h"
#include "windowwait.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

using krgui::ErrorButton;
using krgui::ErrorSource;

class ErrorButtons : public testing::Test {
protected:
  ErrorButtons() {
    mWindow.resize(200, 100);
    mButton.setGeometry(10, 10, 24, 24);
    mGain.ClearError();
    mWidth.ClearError();
  }
  ~ErrorButtons() override { QToolTip::hideText(); }

  void Show() {
    mWindow.show();
    mWindow.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mWindow));
  }

  ErrorSource GetSource() { return {&mCamera.tree.GetFeatures(), {}}; }

  /// Rests on the button as the mouse does; gives the tooltip as it is read.
  QString RestOnButton() {
    QHelpEvent help(QEvent::ToolTip, {5, 5}, mButton.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&mButton, &help);
    return GetToolTip();
  }
  static QString GetToolTip() {
    QTextDocument document;
    document.setHtml(QToolTip::text());
    return QToolTip::isVisible() ? document.toPlainText() : QString();
  }

  QString GetAccessible(QAccessible::Text aText) {
    return QAccessible::queryAccessibleInterface(&mButton)->text(aText);
  }

  /// What the button looks like with a picture on it.
  QImage Expect(int aBitmapID) {
    const double ratio = mButton.devicePixelRatioF();
    QImage page(QSizeF(24 * ratio, 24 * ratio).toSize(), QImage::Format_RGB32);
    page.setDevicePixelRatio(ratio);
    page.fill(krgui::GetSystemColour(mButton.palette(), krgui::SystemColour::ButtonFace));
    QPainter painter(&page);
    painter.drawImage(4, 4, krgui::LoadBitmap(aBitmapID, ratio));
    return page;
  }
  QImage Grab() { return mButton.grab().toImage().convertToFormat(QImage::Format_RGB32); }

  krgui::BrowsedCamera mCamera{krgui::MakeInteger("Gain", 0) + krgui::MakeInteger("Width", 8)};
  krgui::TreeItemData& mGain = mCamera.Node("Gain");
  krgui::TreeItemData& mWidth = mCamera.Node("Width");
  QWidget mWindow;
  ErrorButton& mButton = *new ErrorButton(&mWindow);
};

} // namespace

TEST_F(ErrorButtons, WithoutASource_ThereAreNoErrors) {
  mButton.LookAgain();

  EXPECT_FALSE(mButton.ShowsErrors());
  EXPECT_TRUE(mButton.GetErrors().IsEmpty());
  EXPECT_EQ(Grab(), Expect(krgui::kNoErrorBitmapID));
}

TEST_F(ErrorButtons, FeatureInError_IsShownAtTheNextLook) {
  mButton.SetSource(GetSource());
  EXPECT_FALSE(mButton.ShowsErrors());
  mGain.SetError("No answer.");
  EXPECT_FALSE(mButton.ShowsErrors());

  mButton.LookAgain();
  EXPECT_TRUE(mButton.ShowsErrors());
  EXPECT_EQ(Grab(), Expect(krgui::kErrorBitmapID));

  mGain.ClearError();
  mButton.LookAgain();
  EXPECT_FALSE(mButton.ShowsErrors());
  EXPECT_EQ(Grab(), Expect(krgui::kNoErrorBitmapID));
}

TEST_F(ErrorButtons, NewSource_IsLookedAtAtOnce) {
  mGain.SetError("No answer.");

  mButton.SetSource(GetSource());
  EXPECT_TRUE(mButton.ShowsErrors());

  mButton.SetSource(std::nullopt);
  EXPECT_FALSE(mButton.ShowsErrors());
  EXPECT_TRUE(mButton.GetErrors().IsEmpty());
}

TEST_F(ErrorButtons, LookThatFindsTheSameState_DoesNotRepaint) {
  mGain.SetError("No answer.");
  mButton.SetSource(GetSource());
  Show();
  PaintCounter counter(mButton);

  mWidth.SetError("No answer either.");
  mButton.LookAgain();
  mButton.LookAgain();
  QApplication::processEvents();
  EXPECT_EQ(counter.mCount, 0);

  mGain.ClearError();
  mWidth.ClearError();
  mButton.LookAgain();
  QApplication::processEvents();
  EXPECT_EQ(counter.mCount, 1);
}

TEST_F(ErrorButtons, Tooltip_ListsTheErrors) {
  mGain.SetError("No answer.");
  mWidth.SetError("Too wide.");
  mButton.SetSource({{&mCamera.tree.GetFeatures(), "Device"}});
  Show();

  EXPECT_EQ(RestOnButton(), "[Device, Gain] No answer.\n[Device, Width] Too wide.");
  EXPECT_EQ(mButton.GetErrors(), "[Device, Gain] No answer.\r\n[Device, Width] Too wide.");
}

TEST_F(ErrorButtons, TooltipWithoutErrors_IsNotShown) {
  mButton.SetSource(GetSource());
  Show();

  RestOnButton();

  EXPECT_FALSE(QToolTip::isVisible());
}

TEST_F(ErrorButtons, Tooltip_IsAsOldAsTheErrorsNotAsTheLook) {
  mButton.SetSource(GetSource());
  Show();
  mGain.SetError("No answer.");

  EXPECT_EQ(RestOnButton(), "[Gain] No answer.");
}

TEST_F(ErrorButtons, MarkupInAnError_IsText) {
  mGain.SetError("<b>bold</b> & <img src=\"f\">");
  mButton.SetSource(GetSource());
  Show();

  EXPECT_EQ(RestOnButton(), "[Gain] <b>bold</b> & <img src=\"f\">");
}

TEST_F(ErrorButtons, BlanksAndLineEndsInAnError_AreKept) {
  mGain.SetError("No  answer:\n  three   times.\r\nGave up.");
  mButton.SetSource(GetSource());

  EXPECT_EQ(RestOnButton(), "[Gain] No  answer:\n  three   times.\nGave up.");
}

TEST_F(ErrorButtons, EndlessError_DoesNotOutgrowTheScreen) {
  mGain.SetError(KrString(std::string(10000, 'x')));
  mButton.SetSource(GetSource());
  Show();

  const QString toolTip = RestOnButton();

  EXPECT_LT(toolTip.size(), 400);
  EXPECT_TRUE(toolTip.startsWith("[Gain] xxx"));
  EXPECT_TRUE(toolTip.endsWith(QChar(0x2026)));
}

TEST_F(ErrorButtons, ClickAndSpace_ShowTheErrors) {
  mGain.SetError("No answer.");
  mButton.SetSource(GetSource());
  Show();

  QTest::mouseClick(&mButton, Qt::LeftButton);
  EXPECT_EQ(GetToolTip(), "[Gain] No answer.");
  QToolTip::hideText();
  ASSERT_TRUE(krtest::AwaitCondition([] { return !QToolTip::isVisible(); }));

  mButton.setFocus(Qt::TabFocusReason);
  QTest::keyClick(&mButton, Qt::Key_Space);
  EXPECT_EQ(GetToolTip(), "[Gain] No answer.");
}

TEST_F(ErrorButtons, AssistiveTechnology_HearsTheList) {
  mButton.SetSource(GetSource());
  EXPECT_EQ(GetAccessible(QAccessible::Name), "Errors");
  EXPECT_EQ(GetAccessible(QAccessible::Description), "");

  mGain.SetError("No answer.");
  mButton.LookAgain();
  EXPECT_EQ(GetAccessible(QAccessible::Description), "[Gain] No answer.");

  mGain.ClearError();
  mButton.LookAgain();
  EXPECT_EQ(GetAccessible(QAccessible::Description), "");
}

TEST_F(ErrorButtons, Focus_IsSeenAndReachedByKeyboard) {
  Show();
  EXPECT_EQ(mButton.focusPolicy() & Qt::TabFocus, Qt::TabFocus);
  mButton.clearFocus();
  const QImage without = Grab();

  mButton.setFocus(Qt::TabFocusReason);

  EXPECT_NE(Grab(), without);
}
