// The display on a screen whose scale is another one: every pixel of its native windows is looked at, as the server has
// them. The scale comes from the environment.

#include "displaypictures.h"
#include "displayscreen.h"
#include "windowwait.h"

#include <xcb/xcb.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <memory>

namespace {

constexpr QColor kGrey(0x80, 0x80, 0x80);

template <typename T>
std::unique_ptr<T, decltype(&std::free)> Keep(T* aReply) {
  return {aReply, &std::free};
}

std::string Describe(const QRect& aRect) {
  return std::to_string(aRect.width()) + "x" + std::to_string(aRect.height()) + " at " + std::to_string(aRect.x()) +
         "," + std::to_string(aRect.y());
}

class DisplayAtAScale : public DisplayOnScreen {
protected:
  static xcb_connection_t* GetConnection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  }
  // Where a window is on the screen, in the server's pixels.
  static QRect FindNative(WId aID) {
    const auto window = static_cast<xcb_window_t>(aID);
    const auto geometry = Keep(xcb_get_geometry_reply(GetConnection(), xcb_get_geometry(GetConnection(), window), {}));
    if (!geometry)
      return {};
    const auto place = Keep(xcb_translate_coordinates_reply(
        GetConnection(), xcb_translate_coordinates(GetConnection(), window, geometry->root, 0, 0), {}));
    return place ? QRect(place->dst_x, place->dst_y, geometry->width, geometry->height) : QRect();
  }
  // What the window around leaves of the view's: each is rounded for itself.
  QRect FindNativeView() const {
    return FindNative(GetView().internalWinId()) & FindNative(GetView().window()->internalWinId());
  }
  // Qt tells the new size as soon as it has asked for it; the server's windows follow.
  void Resize(const QSize& aSize) {
    mWindow.SetPosition(50, 50, aSize.width(), aSize.height());
    const auto isSizedNatively = [&] {
      const QSize native = FindNativeView().size();
      return std::abs(native.width() - aSize.width() * GetRatio()) <= 1.0 &&
             std::abs(native.height() - aSize.height() * GetRatio()) <= 1.0;
    };
    EXPECT_TRUE(krtest::AwaitCondition(isSizedNatively)) << Describe(FindNativeView());
  }
  static QImage GrabNative(const QRect& aRect) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(GetConnection())).data->root;
    const auto reply = Keep(xcb_get_image_reply(
        GetConnection(),
        xcb_get_image(GetConnection(), XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(aRect.x()),
                      static_cast<std::int16_t>(aRect.y()), static_cast<std::uint16_t>(aRect.width()),
                      static_cast<std::uint16_t>(aRect.height()), ~0U),
        {}));
    if (!reply)
      return {};
    return QImage(xcb_get_image_data(reply.get()), aRect.width(), aRect.height(), QImage::Format_RGB32).copy();
  }
  QImage GrabView() const { return GrabNative(FindNativeView()); }

  void ExpectFittedNatively(const KrBuffer& aImage, const std::string& aWhere) const {
    std::string difference;
    const auto isThere = [&] {
      const QImage seen = GrabView();
      if (seen.isNull())
        return false;
      difference = plainpicture::Compare(seen, plainpicture::Compute(seen.size(), ToQImage(aImage), kGrey));
      return difference.empty();
    };
    EXPECT_TRUE(krtest::AwaitCondition(isThere)) << aWhere << ": " << difference;
  }
  plainpicture::ScrolledView GetNativeView(const KrBuffer& aImage) const {
    return {FindNativeView().size(), ToQImage(aImage).size(), 1.0, int(std::lround(18 * GetRatio()))};
  }
  void ExpectOneToOneNatively(const KrBuffer& aImage, const std::string& aWhere) const {
    std::string difference;
    const auto isThere = [&] {
      const plainpicture::ScrolledView view = GetNativeView(aImage);
      if (!GetHorizontalBar().isVisible() || !GetVerticalBar().isVisible())
        return false;
      difference = plainpicture::Compare(
          GrabView().copy(QRect(QPoint(0, 0), view.view)),
          plainpicture::ComputeScrolled(view, ToQImage(aImage), mWindow.GetHScrollPos(), mWindow.GetVScrollPos()));
      return difference.empty();
    };
    EXPECT_TRUE(krtest::AwaitCondition(isThere)) << aWhere << ": " << difference;
  }
  // The bars' windows come to lie beside the picture and to reach the view's edges, but for what rounding takes.
  void ExpectBarsNatively(const KrBuffer& aImage, const std::string& aWhere) const {
    const QPoint origin = FindNativeView().topLeft();
    const QSize client = FindNativeView().size();
    const QSize view = GetNativeView(aImage).view;
    const QRect horizontal(0, view.height(), view.width(), client.height() - view.height());
    const QRect vertical(view.width(), 0, client.width() - view.width(), view.height());
    const auto find = [&](HWND aBar) { return FindNative(aBar).translated(-origin); };
    EXPECT_TRUE(krtest::AwaitCondition([&] { return IsAlmost(find(mWindow.GetHScrollHandle()), horizontal); }))
        << aWhere << ": " << Describe(find(mWindow.GetHScrollHandle()));
    EXPECT_TRUE(krtest::AwaitCondition([&] { return IsAlmost(find(mWindow.GetVScrollHandle()), vertical); }))
        << aWhere << ": " << Describe(find(mWindow.GetVScrollHandle()));
  }
  // Equal, but for a pixel for each edge where the scale is a fraction.
  bool IsAlmost(const QRect& aFirst, const QRect& aSecond) const {
    const int slack = GetRatio() == std::floor(GetRatio()) ? 0 : 1;
    const int differences[] = {aFirst.left() - aSecond.left(), aFirst.top() - aSecond.top(),
                               aFirst.right() - aSecond.right(), aFirst.bottom() - aSecond.bottom()};
    return std::all_of(std::begin(differences), std::end(differences),
                       [slack](int aDifference) { return std::abs(aDifference) <= slack; });
  }
};

} // namespace

TEST_F(DisplayAtAScale, FittedImage_InWindowsOfManySizes_FillsEachPixel) {
  Open(400, 300);
  const KrBuffer image = MakeNoise(320, 200);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFittedNatively(image, "first");
  for (const QSize size : {QSize(401, 301), QSize(403, 299), QSize(398, 302), QSize(402, 303)}) {
    Resize(size);

    ExpectFittedNatively(image, Describe(FindNativeView()));
  }
}

TEST_F(DisplayAtAScale, OneToOne_WithItsBars_IsOnePixelForOne) {
  const KrBuffer image = MakeNoise(1300, 1100);
  Open(400, 300);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  mWindow.Zoom1_1();
  for (const QSize size : {QSize(400, 300), QSize(401, 301), QSize(398, 299)}) {
    Resize(size);

    ExpectOneToOneNatively(image, Describe(FindNativeView()));
    ExpectBarsNatively(image, Describe(FindNativeView()));
  }
  QTest::keyClick(&GetHorizontalBar(), Qt::Key_End);
  QTest::keyClick(&GetVerticalBar(), Qt::Key_End);
  ExpectOneToOneNatively(image, "at the end");
}

TEST_F(DisplayAtAScale, MappingOfAPixel_LeadsToWhereItIsOnTheScreen) {
  KrBuffer image = MakeGrey(64, 48, 0);
  image.GetDataPointer()[21 * 64 + 37] = 255;
  Open(400, 300);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  for (const QSize size : {QSize(400, 300), QSize(401, 301), QSize(637, 299)}) {
    Resize(size);

    QRect seen;
    QRectF told;
    const auto isThere = [&] {
      seen = FindWhite(GrabView());
      const std::optional<KrDisplayMapping> mapping = mWindow.GetMapping();
      if (seen.isEmpty() || !mapping)
        return false;
      told = QRectF(QPointF(mapping->ToWidgetX(37), mapping->ToWidgetY(21)),
                    QPointF(mapping->ToWidgetX(38), mapping->ToWidgetY(22)));
      const auto isNear = [this](double aTold, int aSeen) { return std::abs(aTold * GetRatio() - aSeen) <= 0.5001; };
      return isNear(told.left(), seen.left()) && isNear(told.top(), seen.top()) &&
             isNear(told.right(), seen.right() + 1) && isNear(told.bottom(), seen.bottom() + 1);
    };
    EXPECT_TRUE(krtest::AwaitCondition(isThere)) << Describe(seen) << ", not at " << told.left() << "," << told.top()
                                                 << " to " << told.right() << "," << told.bottom();
  }
}

TEST_F(DisplayAtAScale, Window_OpenedAgainAtOneToOne_HasItsBars) {
  const KrBuffer image = MakeNoise(1300, 1100);
  Open(400, 300);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  mWindow.Zoom1_1();
  ExpectOneToOneNatively(image, "before");
  ASSERT_TRUE(mWindow.Close().IsOK());

  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  ExpectOneToOneNatively(image, "opened again");
  ExpectBarsNatively(image, "opened again");
}

TEST_F(DisplayAtAScale, Embedded_AtEveryPlace_FillsEachPixel) {
  QWidget window;
  window.setGeometry(60, 60, 400, 300);
  auto* box = new QWidget(&window);
  box->setGeometry(0, 0, 301, 201);
  ASSERT_TRUE(mWindow.CreateIn(box).IsOK());
  mWindow.SetPosition(0, 0, 301, 201);
  window.show();
  ASSERT_TRUE(krtest::AwaitExposed(&window));
  const KrBuffer image = MakeNoise(320, 200);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  for (const QPoint place : {QPoint(0, 0), QPoint(1, 1), QPoint(2, 3), QPoint(3, 2), QPoint(5, 5), QPoint(10, 20)}) {
    box->move(place);
    Await([&] { return GetView().windowHandle() && GetView().windowHandle()->position() == place; }, "the place");

    ExpectFittedNatively(image, Describe(FindNativeView()));
  }
  ASSERT_TRUE(mWindow.Close().IsOK());
}

TEST_F(DisplayAtAScale, Picture_OfTheWindow_LeavesNoPixelOut) {
  Open(401, 301);
  const KrBuffer image = MakeGrey(401, 301, 7);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFittedNatively(image, "on the screen");

  const QImage picture = Grab();

  const int seen = plainpicture::Count(picture, picture.rect(), QColor(7, 7, 7));
  const int background = plainpicture::Count(picture, picture.rect(), kGrey);
  EXPECT_GE(seen, (picture.width() - 1) * (picture.height() - 1) * 99 / 100);
  EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 255);
  EXPECT_LE(picture.width() * picture.height() - seen - background, picture.width() + picture.height());
}
