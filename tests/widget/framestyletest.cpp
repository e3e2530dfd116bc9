// What a window is on the screen: a child inside its parent, a window owned by it, or a dialog of its own.

#include "testwnd.h"

#include <QPushButton>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

namespace krgui {

namespace {

TEST(Wnd, CreateIn_WithAPopupsTemplate_IsAChildWithoutFrame) {
  QWidget parent;
  parent.show();
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  EXPECT_FALSE(window.GetWidget()->isWindow());
  EXPECT_EQ(window.GetWidget()->parentWidget(), &parent);
}

TEST(Wnd, Create_WithAPopupsTemplate_IsAWindowOwnedByTheParent) {
  QWidget parent;
  parent.show();
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());

  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Child);
  EXPECT_TRUE(window.GetWidget()->isWindow());
  EXPECT_EQ(window.GetWidget()->parentWidget(), &parent);
  EXPECT_EQ(window.GetWidget()->windowHandle()->transientParent(), parent.windowHandle());
  EXPECT_TRUE(window.GetWidget()->windowFlags().testFlag(Qt::WindowTitleHint));
}

TEST(Wnd, Create_WithAPopupsTemplate_IsNotClosedByOKCancelOrCloseBox) {
  QWidget parent;
  parent.show();
  TestWnd window(kDeviceFinderTraits);
  ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());

  qobject_cast<QPushButton*>(window.GetControl(1))->click();
  qobject_cast<QPushButton*>(window.GetControl(2))->click();
  window.GetWidget()->close();

  EXPECT_EQ(window.record->accepts, 1);
  EXPECT_EQ(window.record->cancels, 2);
  EXPECT_TRUE(window.GetWidget()->isVisible());
}

struct FrameCase {
  const char* name;
  KrResult (*show)(TestWnd& aWindow);
};

class DialogFrame : public testing::TestWithParam<FrameCase> {};

TEST_P(DialogFrame, Popup_HasCaptionSystemMenuAndADialogsFrame) {
  TestWnd window;
  Qt::WindowFlags flags;
  window.onInitDialog = [&] { flags = window.GetWidget()->windowFlags(); };
  QTimer::singleShot(0, qApp, [&] {
    if (window.GetShowMode() == Wnd::Mode::Modal) {
      window.EndDialog(1);
    }
  });

  ASSERT_TRUE(GetParam().show(window).IsOK());

  EXPECT_EQ(flags & Qt::WindowType_Mask, Qt::Dialog);
  EXPECT_TRUE(flags.testFlags(Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint));
}

INSTANTIATE_TEST_SUITE_P(Modes, DialogFrame,
                         testing::Values(FrameCase{"Modeless",
                                                   [](TestWnd& aWindow) { return aWindow.ShowModeless(0); }},
                                         FrameCase{"Modal", [](TestWnd& aWindow) { return aWindow.ShowModal(0); }}),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

} // namespace krgui
