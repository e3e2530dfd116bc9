// The drawing surfaces of widgets on X11: which there are, where they draw, and what becomes of them with a server that
// stops. The server is the test's own.

#include "platform/drawingsurface.h"

#include "await.h"
#include "displaypictures.h"
#include "surfacedrawing.h"
#include "windowwait.h"
#include "xvfbserver.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace krgui {

namespace {

using krtest::Await;

XvfbServer* theServer = nullptr;

// A widget that the toolkit never draws into.
class DrawnWidget : public QWidget {
public:
  explicit DrawnWidget(QWidget* aParent) : QWidget(aParent) {
    for (const auto attribute :
         {Qt::WA_NativeWindow, Qt::WA_PaintOnScreen, Qt::WA_OpaquePaintEvent, Qt::WA_NoSystemBackground}) {
      setAttribute(attribute);
    }
  }
  QPaintEngine* paintEngine() const override { return nullptr; }
};

class WidgetSurface : public testing::TestWithParam<SurfaceKind> {
protected:
  void SetUp() override {
    mDialog.setGeometry(100, 80, 500, 400);
    mWidget = std::make_unique<DrawnWidget>(&mDialog);
    mWidget->setGeometry(30, 40, 320, 240);
    mDialog.show();
    ASSERT_TRUE(krtest::AwaitExposed(&mDialog));
  }
  bool IsSoonShown(const Grab& aPicture) const {
    const QRect place(mWidget->mapToGlobal(QPoint(0, 0)), QSize(aPicture.width, aPicture.height));
    return Await([&] { return ToGrab(GrabScreen(place)) == aPicture; });
  }
  static Grab ToGrab(const QImage& aImage) {
    Grab grab = MakeUniform(aImage.width(), aImage.height(), 0);
    for (int y = 0; y < grab.height; ++y) {
      for (int x = 0; x < grab.width; ++x) {
        grab.pixels[static_cast<std::size_t>(y * grab.width + x)] = aImage.pixel(x, y) & 0xffffff;
      }
    }
    return grab;
  }

  QWidget mDialog;
  std::unique_ptr<DrawnWidget> mWidget;
};

TEST_P(WidgetSurface, Frame_IsOnTheScreenWhereTheWidgetIs) {
  const auto surface = MakeDrawingSurface(*mWidget, GetParam());
  ASSERT_EQ(surface->GetKind(), GetParam());
  EXPECT_EQ(surface->GetPicture(), nullptr);

  ASSERT_TRUE(Show(*surface, MakePicture(320, 240, 1)));

  EXPECT_TRUE(IsSoonShown(MakePicture(320, 240, 1)));
}

TEST_P(WidgetSurface, FramesOfAnotherThread_AreShownWhileThisOneIsBusy) {
  const auto surface = MakeDrawingSurface(*mWidget, GetParam());
  std::thread drawing([&] {
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
      EXPECT_TRUE(Show(*surface, MakePicture(320, 240, seed)));
    }
  });

  drawing.join();

  EXPECT_TRUE(IsSoonShown(MakePicture(320, 240, 10)));
}

TEST_P(WidgetSurface, ControlsOfTheToolkitInside_KeepTheirPixels) {
  DrawnWidget inside(mWidget.get());
  inside.setGeometry(50, 60, 70, 80);
  inside.show();
  ASSERT_TRUE(krtest::AwaitExposed(inside.windowHandle()));
  const auto own = MakeDrawingSurface(inside, GetParam());
  const auto surface = MakeDrawingSurface(*mWidget, GetParam());
  ASSERT_TRUE(Show(*own, MakeUniform(70, 80, 0xabcdef)));

  ASSERT_TRUE(Show(*surface, MakeUniform(320, 240, 0x102030)));

  Grab expected = MakeUniform(320, 240, 0x102030);
  for (int y = 60; y < 140; ++y) {
    std::fill_n(expected.pixels.begin() + y * 320 + 50, 70, 0xabcdef);
  }
  EXPECT_TRUE(IsSoonShown(expected));
}

TEST_P(WidgetSurface, WidgetEnds_SurfaceIsLost) {
  const auto surface = MakeDrawingSurface(*mWidget, GetParam());
  ASSERT_TRUE(Show(*surface, MakePicture(320, 240, 1)));

  mWidget.reset();

  // The toolkit tells the server some time later.
  EXPECT_TRUE(krtest::AwaitCondition([&] { return !Show(*surface, MakePicture(320, 240, 2)); }));
  EXPECT_TRUE(surface->IsLost());
}

TEST_P(WidgetSurface, EnvironmentNamesAnotherDisplay_SurfaceIsWhereTheToolkitIs) {
  setenv("DISPLAY", ":64999", 1);

  const auto surface = MakeDrawingSurface(*mWidget, GetParam());

  setenv("DISPLAY", theServer->GetDisplayName().c_str(), 1);
  EXPECT_EQ(surface->GetKind(), GetParam());
}

TEST_P(WidgetSurface, ServerHasStopped_PictureIsPaintedInstead) {
  theServer->Stop();

  const auto surface = MakeDrawingSurface(*mWidget, GetParam());

  theServer->Continue();
  EXPECT_EQ(surface->GetKind(), SurfaceKind::Invalidation);
  EXPECT_EQ(MakeDrawingSurface(*mWidget, GetParam())->GetKind(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Kinds, WidgetSurface,
                         testing::Values(SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV,
                                         SurfaceKind::PlainPut),
                         [](const auto& aInfo) { return GetName(aInfo.param); });

TEST(WidgetSurfaceOnX11, BestKind_IsMemoryByDescriptor) {
  DrawnWidget widget(nullptr);

  EXPECT_TRUE(CanDrawNatively());
  EXPECT_EQ(MakeDrawingSurface(widget)->GetKind(), SurfaceKind::SharedDescriptor);
}

TEST(WidgetSurfaceOnX11, WorstKind_IsGivenWhereItIsAskedFor) {
  DrawnWidget widget(nullptr);

  EXPECT_EQ(MakeDrawingSurface(widget, SurfaceKind::Invalidation)->GetKind(), SurfaceKind::Invalidation);
}

void FailOnWarning(QtMsgType aType, const QMessageLogContext&, const QString& aText) {
  if (aType != QtDebugMsg && aType != QtInfoMsg) {
    ADD_FAILURE() << "The toolkit warned: " << aText.toStdString();
  }
}

} // namespace

} // namespace krgui

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleMock(&aArgumentCount, aArguments);
  krgui::XvfbServer server;
  krgui::theServer = &server;
  setenv("DISPLAY", server.GetDisplayName().c_str(), 1);
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  qInstallMessageHandler(krgui::FailOnWarning);
  return RUN_ALL_TESTS();
}
