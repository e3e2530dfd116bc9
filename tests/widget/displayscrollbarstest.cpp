// The scroll bars of the display: when they are there, what the user does to them, and what the application may do.

#include "display/displaywnd.h"
#include "displayfixture.h"
#include "windowwait.h"

#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSlider>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr QSize kImage(1000, 800);

class KrDisplayWndScrollBarsTest : public KrDisplayWndTest {
protected:
  void SetUp() override {
    Open(400, 300);
    ASSERT_TRUE(mWindow.Display(mImage, false).IsOK());
    Grab();
  }

  int GetBarThickness() const { return int(std::lround(18 * GetRatio())); }
  plainpicture::ScrolledView GetExpectedView(double aFactor) const {
    return {GetDeviceSize(), kImage, aFactor, GetBarThickness()};
  }

  /// What is seen beside the bars is the image at this place.
  void ExpectPicture(int aHorizontal, int aVertical, const char* aWhere) {
    const plainpicture::ScrolledView view = GetExpectedView(1.0);
    EXPECT_EQ(plainpicture::Compare(Grab().copy(QRect(QPoint(0, 0), view.view)),
                                    plainpicture::ComputeScrolled(view, ToQImage(mImage), aHorizontal, aVertical)),
              "")
        << aWhere;
  }

  const KrBuffer mImage = MakeNoise(1000, 800);
};

QRect FindPart(QScrollBar& aBar, QStyle::SubControl aPart) {
  QStyleOptionSlider option;
  option.initFrom(&aBar);
  option.orientation = aBar.orientation();
  option.minimum = aBar.minimum();
  option.maximum = aBar.maximum();
  option.sliderPosition = aBar.sliderPosition();
  option.sliderValue = aBar.value();
  option.singleStep = aBar.singleStep();
  option.pageStep = aBar.pageStep();
  option.subControls = QStyle::SC_All;
  if (aBar.orientation() == Qt::Horizontal)
    option.state |= QStyle::State_Horizontal;
  return aBar.style()->subControlRect(QStyle::CC_ScrollBar, &option, aPart, &aBar);
}

// Keeps the messages that the window gets.
class RecordingWnd : public krgui::DisplayWnd {
public:
  ~RecordingWnd() override { Dispose(); }
  bool Has(std::uint32_t aNumber, std::uint64_t aFirst) const {
    return std::any_of(mMessages.begin(), mMessages.end(), [&](const krgui::Message& aMessage) {
      return aMessage.number == aNumber && aMessage.first == aFirst;
    });
  }
  void Forget() { mMessages.clear(); }

protected:
  bool OnMessage(const krgui::Message& aMessage) override {
    mMessages.push_back(aMessage);
    return DisplayWnd::OnMessage(aMessage);
  }

private:
  std::vector<krgui::Message> mMessages;
};

struct PaintCounter : QObject {
  explicit PaintCounter(QWidget& aWidget) { aWidget.installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* aEvent) override {
    count += aEvent->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
  int count = 0;
};

struct Side {
  const char* name;
  QScrollBar* bar;
  int (KrDisplayWnd::*getPosition)() const;
  KrResult (KrDisplayWnd::*setPosition)(int);
  void (KrDisplayWnd::*getRange)(int&, int&) const;
  int extent;
  int page;
};

} // namespace

TEST_F(KrDisplayWndScrollBarsTest, Bars_OfAFittedImage_AreHidden) {
  EXPECT_FALSE(GetHorizontalBar().isVisible());
  EXPECT_FALSE(GetVerticalBar().isVisible());
}

TEST_F(KrDisplayWndScrollBarsTest, Bars_OfALargerImage_LieAtTheEdgesCentred) {
  mWindow.Zoom1_1();
  Grab();

  const plainpicture::ScrolledView view = GetExpectedView(1.0);
  const QRect client = GetView().rect();
  ASSERT_TRUE(GetHorizontalBar().isVisible());
  ASSERT_TRUE(GetVerticalBar().isVisible());
  EXPECT_EQ(GetHorizontalBar().geometry(), QRect(0, client.height() - 18, client.width() - 18, 18));
  EXPECT_EQ(GetVerticalBar().geometry(), QRect(client.width() - 18, 0, 18, client.height() - 18));
  EXPECT_EQ(GetHorizontalBar().minimum(), 0);
  EXPECT_EQ(GetHorizontalBar().maximum(), view.GetHorizontalExtent());
  EXPECT_EQ(GetHorizontalBar().pageStep(), view.GetHorizontalPage());
  EXPECT_EQ(GetHorizontalBar().value(), view.GetHorizontalMiddle());
  EXPECT_EQ(GetVerticalBar().maximum(), view.GetVerticalExtent());
  EXPECT_EQ(GetVerticalBar().pageStep(), view.GetVerticalPage());
  EXPECT_EQ(GetVerticalBar().value(), view.GetVerticalMiddle());
  ExpectPicture(view.GetHorizontalMiddle(), view.GetVerticalMiddle(), "centred");
}

TEST_F(KrDisplayWndScrollBarsTest, Corner_BetweenTheBars_HasTheDialogsColourInEveryTheme) {
  mWindow.Zoom1_1();
  Grab();
  for (const auto& [dialog, button] : {std::pair{QColor(40, 44, 52), QColor(60, 66, 78)}, {Qt::white, Qt::lightGray}}) {
    QPalette palette = GetView().palette();
    palette.setColor(QPalette::Window, dialog);
    palette.setColor(QPalette::Button, button);
    mWindow.GetWidget()->setPalette(palette);

    const QImage picture = Grab();

    const QSize view = GetExpectedView(1.0).view;
    const QRect corner(view.width(), view.height(), picture.width() - view.width(), picture.height() - view.height());
    EXPECT_EQ(plainpicture::Count(picture, corner, dialog), corner.width() * corner.height())
        << dialog.name().toStdString();
  }
}

TEST_F(KrDisplayWndScrollBarsTest, ScrollingWithoutARange_ChangesNothingAndPaints) {
  int least = -1, greatest = -1;
  mWindow.GetHScrollRange(least, greatest);
  ASSERT_EQ(greatest, 0);
  const QImage before = Grab();
  PaintCounter paints(GetView());

  GetHorizontalBar().triggerAction(QAbstractSlider::SliderPageStepAdd);

  EXPECT_TRUE(krtest::AwaitCondition([&] { return paints.count > 0; }));
  EXPECT_EQ(mWindow.GetHScrollPos(), 0);
  EXPECT_EQ(plainpicture::Compare(Grab(), before), "");
}

TEST_F(KrDisplayWndScrollBarsTest, Bars_AfterAResize_LieAtTheNewEdgesAndGoWhenTheImageFits) {
  mWindow.Zoom1_1();
  Grab();

  mWindow.SetPosition(50, 50, 320, 240);
  Grab();

  EXPECT_EQ(GetHorizontalBar().geometry(), QRect(0, 222, 302, 18));
  EXPECT_EQ(GetVerticalBar().geometry(), QRect(302, 0, 18, 222));

  mWindow.SetPosition(50, 50, 1010, 810);
  Grab();

  EXPECT_FALSE(GetHorizontalBar().isVisible());
  EXPECT_FALSE(GetVerticalBar().isVisible());
}

TEST_F(KrDisplayWndScrollBarsTest, Bars_OfAWindowOpenedAgain_AreWhereTheyWere) {
  mWindow.Zoom1_1();
  Grab();
  ASSERT_TRUE(mWindow.SetHScrollPos(70).IsOK());
  QTest::keyClick(&GetVerticalBar(), Qt::Key_End);
  const int vertical = mWindow.GetVScrollPos();
  Grab();
  ASSERT_TRUE(mWindow.Close().IsOK());

  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  Grab();

  EXPECT_TRUE(GetHorizontalBar().isVisible());
  EXPECT_TRUE(GetVerticalBar().isVisible());
  EXPECT_EQ(GetHorizontalBar().geometry(), QRect(0, 282, 382, 18));
  EXPECT_EQ(GetVerticalBar().geometry(), QRect(382, 0, 18, 282));
  EXPECT_EQ(mWindow.GetVScrollPos(), vertical);
  EXPECT_EQ(GetVerticalBar().value(), vertical);
  ExpectPicture(mWindow.GetHScrollPos(), vertical, "opened again");
}

TEST_F(KrDisplayWndScrollBarsTest, Bars_OfAnImageThatIsTooWideAlone_AreTheHorizontalOne) {
  ASSERT_TRUE(mWindow.Display(MakeNoise(2000, 100), false).IsOK());
  mWindow.Zoom1_1();

  Grab();

  EXPECT_TRUE(GetHorizontalBar().isVisible());
  EXPECT_FALSE(GetVerticalBar().isVisible());
  EXPECT_EQ(GetHorizontalBar().geometry(), QRect(0, 282, 400, 18));
}

TEST_F(KrDisplayWndScrollBarsTest, Keys_OnEitherBar_ScrollAsTheirCodesSay) {
  mWindow.Zoom1_1();
  Grab();
  const plainpicture::ScrolledView view = GetExpectedView(1.0);
  const Side sides[] = {{"horizontal", &GetHorizontalBar(), &KrDisplayWnd::GetHScrollPos, &KrDisplayWnd::SetHScrollPos,
                         &KrDisplayWnd::GetHScrollRange, view.GetHorizontalExtent(), view.GetHorizontalPage()},
                        {"vertical", &GetVerticalBar(), &KrDisplayWnd::GetVScrollPos, &KrDisplayWnd::SetVScrollPos,
                         &KrDisplayWnd::GetVScrollRange, view.GetVerticalExtent(), view.GetVerticalPage()}};
  for (const Side& side : sides) {
    const bool isHorizontal = side.bar->orientation() == Qt::Horizontal;
    const Qt::Key less = isHorizontal ? Qt::Key_Left : Qt::Key_Up;
    const Qt::Key more = isHorizontal ? Qt::Key_Right : Qt::Key_Down;
    const struct {
      const char* name;
      int from;
      Qt::Key key;
      int to;
    } rows[] = {
        {"line less", 50, less, 49},
        {"line less at the least", 0, less, 0},
        {"line more", 50, more, 51},
        {"line more at the most", side.extent, more, side.extent},
        {"page less", side.page + 7, Qt::Key_PageUp, 7},
        {"page less beyond the least", 5, Qt::Key_PageUp, 0},
        {"page more", 5, Qt::Key_PageDown, side.page + 5},
        {"page more beyond the most", side.extent - 5, Qt::Key_PageDown, side.extent},
        {"least", 50, Qt::Key_Home, 0},
        {"most", 50, Qt::Key_End, side.extent},
    };
    for (const auto& row : rows) {
      ASSERT_TRUE((mWindow.*side.setPosition)(row.from).IsOK());

      QTest::keyClick(side.bar, row.key);

      EXPECT_EQ((mWindow.*side.getPosition)(), row.to) << side.name << ", " << row.name;
      EXPECT_EQ(side.bar->value(), row.to) << side.name << ", " << row.name;
    }
  }
  const int horizontal = mWindow.GetHScrollPos();
  const int vertical = mWindow.GetVScrollPos();
  ExpectPicture(horizontal, vertical, "after all");
}

TEST_F(KrDisplayWndScrollBarsTest, Clicks_OnABarsParts_ScrollTheImage) {
  mWindow.Zoom1_1();
  Grab();
  QScrollBar& bar = GetHorizontalBar();
  const plainpicture::ScrolledView view = GetExpectedView(1.0);
  const int middle = view.GetHorizontalMiddle();

  QTest::mouseClick(&bar, Qt::LeftButton, {}, FindPart(bar, QStyle::SC_ScrollBarAddLine).center());
  EXPECT_EQ(mWindow.GetHScrollPos(), middle + 1);
  QTest::mouseClick(&bar, Qt::LeftButton, {}, FindPart(bar, QStyle::SC_ScrollBarSubLine).center());
  EXPECT_EQ(mWindow.GetHScrollPos(), middle);
  QTest::mouseClick(&bar, Qt::LeftButton, {}, FindPart(bar, QStyle::SC_ScrollBarAddPage).center());
  EXPECT_EQ(mWindow.GetHScrollPos(), std::min(middle + view.GetHorizontalPage(), view.GetHorizontalExtent()));
  ExpectPicture(mWindow.GetHScrollPos(), mWindow.GetVScrollPos(), "a page to the right");
}

TEST_F(KrDisplayWndScrollBarsTest, Thumb_DraggedToTheTop_ShowsTheFirstRowOnTop) {
  mWindow.Zoom1_1();
  Grab();
  QScrollBar& bar = GetVerticalBar();
  const QPoint thumb = FindPart(bar, QStyle::SC_ScrollBarSlider).center();

  QTest::mousePress(&bar, Qt::LeftButton, {}, thumb);
  QTest::mouseMove(&bar, QPoint(thumb.x(), thumb.y() - 20));
  EXPECT_LT(mWindow.GetVScrollPos(), GetExpectedView(1.0).GetVerticalMiddle());
  ExpectPicture(mWindow.GetHScrollPos(), mWindow.GetVScrollPos(), "while it is dragged");
  QTest::mouseMove(&bar, QPoint(thumb.x(), -500));
  QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(thumb.x(), 0));

  EXPECT_EQ(mWindow.GetVScrollPos(), 0);
  ExpectPicture(mWindow.GetHScrollPos(), 0, "at the top");
  const plainpicture::ScrolledView view = GetExpectedView(1.0);
  EXPECT_EQ(view.FindSource(0, 0).top(), 0);
}

TEST_F(KrDisplayWndScrollBarsTest, Range_OfEither_RunsToTheExtentAndThePage) {
  mWindow.Zoom1_1();
  Grab();
  const plainpicture::ScrolledView view = GetExpectedView(1.0);
  int least = -1, greatest = -1;

  mWindow.GetHScrollRange(least, greatest);
  EXPECT_EQ(least, 0);
  EXPECT_EQ(greatest, view.GetHorizontalExtent() + view.GetHorizontalPage());
  mWindow.GetVScrollRange(least, greatest);
  EXPECT_EQ(least, 0);
  EXPECT_EQ(greatest, view.GetVerticalExtent() + view.GetVerticalPage());
}

TEST_F(KrDisplayWndScrollBarsTest, SetScrollPos_InTheRange_MovesTheThumbAlone) {
  mWindow.Zoom1_1();
  Grab();
  const int horizontal = mWindow.GetHScrollPos();
  const int vertical = mWindow.GetVScrollPos();
  int least = -1, greatest = -1;
  mWindow.GetHScrollRange(least, greatest);

  EXPECT_TRUE(mWindow.SetHScrollPos(0).IsOK());
  EXPECT_TRUE(mWindow.SetVScrollPos(3).IsOK());

  EXPECT_EQ(mWindow.GetHScrollPos(), 0);
  EXPECT_EQ(GetHorizontalBar().value(), 0);
  EXPECT_EQ(mWindow.GetVScrollPos(), 3);
  EXPECT_EQ(GetVerticalBar().value(), 3);
  ExpectPicture(horizontal, vertical, "only the thumbs have moved");
  EXPECT_TRUE(mWindow.SetHScrollPos(greatest).IsOK());
  EXPECT_EQ(mWindow.GetHScrollPos(), greatest);
}

TEST_F(KrDisplayWndScrollBarsTest, SetScrollPos_OutsideTheRange_IsRefusedWithTheRange) {
  mWindow.Zoom1_1();
  Grab();
  const int position = mWindow.GetHScrollPos();
  int least = -1, greatest = -1;
  mWindow.GetHScrollRange(least, greatest);

  const KrResult beyond = mWindow.SetHScrollPos(greatest + 1);
  const KrResult below = mWindow.SetVScrollPos(-1);

  EXPECT_EQ(beyond.GetCodeNumber(), 16385u);
  EXPECT_NE(beyond.GetDescription().ToUtf8().find(std::to_string(greatest + 1)), std::string::npos);
  EXPECT_NE(beyond.GetDescription().ToUtf8().find("0 to " + std::to_string(greatest)), std::string::npos);
  EXPECT_EQ(below.GetCodeNumber(), 16385u);
  EXPECT_NE(below.GetDescription().ToUtf8().find("vertical"), std::string::npos);
  EXPECT_EQ(mWindow.GetHScrollPos(), position);
}

TEST_F(KrDisplayWndScrollBarsTest, Changes_ByTheProgram_NotifyNobody) {
  mWindow.Zoom1_1();
  Grab();
  QSignalSpy value(&GetHorizontalBar(), &QScrollBar::valueChanged);
  QSignalSpy range(&GetHorizontalBar(), &QScrollBar::rangeChanged);
  QSignalSpy action(&GetHorizontalBar(), &QScrollBar::actionTriggered);

  EXPECT_TRUE(mWindow.SetHScrollPos(1).IsOK());
  mWindow.ZoomIn();
  Grab();
  mWindow.ZoomFit();
  Grab();

  EXPECT_EQ(value.count() + range.count() + action.count(), 0);
}

TEST_F(KrDisplayWndScrollBarsTest, Handles_AreThoseOfTheBarsWhileTheWindowIsOpen) {
  EXPECT_EQ(mWindow.GetHScrollHandle(), GetHorizontalBar().winId());
  EXPECT_EQ(mWindow.GetVScrollHandle(), GetVerticalBar().winId());
  EXPECT_NE(mWindow.GetHScrollHandle(), mWindow.GetVScrollHandle());

  EXPECT_TRUE(mWindow.Close().IsOK());

  EXPECT_EQ(mWindow.GetHScrollHandle(), 0u);
  EXPECT_EQ(mWindow.GetVScrollHandle(), 0u);
}

TEST_F(KrDisplayWndScrollBarsTest, Positions_OfAClosedWindow_AreThoseItHad) {
  mWindow.Zoom1_1();
  Grab();
  const int position = mWindow.GetHScrollPos();

  EXPECT_TRUE(mWindow.Close().IsOK());

  EXPECT_EQ(mWindow.GetHScrollPos(), position);
  EXPECT_TRUE(mWindow.SetHScrollPos(2).IsOK());
  EXPECT_EQ(mWindow.GetHScrollPos(), 2);
}

TEST_F(KrDisplayWndScrollBarsTest, Bars_ForTheKeyboard_TakeTheFocusByTabAlone) {
  EXPECT_EQ(GetHorizontalBar().focusPolicy(), Qt::TabFocus);
  EXPECT_FALSE(GetHorizontalBar().accessibleName().isEmpty());
  EXPECT_FALSE(GetVerticalBar().accessibleName().isEmpty());
  EXPECT_FALSE(GetView().accessibleName().isEmpty());
}

TEST(DisplayWndMessages, Paint_OfAnImageThatFits_PostsThatTheBarsBeHidden) {
  RecordingWnd window;
  window.SetPosition(50, 50, 400, 300);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const KrBuffer image = MakeGrey(2000, 100, 1);
  ASSERT_TRUE(window.Display(image.GetImage()).IsOK());
  ASSERT_TRUE(window.DoEvents().IsOK());
  EXPECT_TRUE(window.Has(2082, 0x1001));
  EXPECT_TRUE(window.Has(2082, 0x1002));
  window.Zoom1_1();
  window.Forget();

  ASSERT_TRUE(window.DoEvents().IsOK());

  EXPECT_FALSE(window.Has(2082, 0x1001));
  EXPECT_TRUE(window.Has(2082, 0x1002));
}

TEST(DisplayWndMessages, HideScrollBar_ByItsBits_HidesOrShowsOneBar) {
  krgui::DisplayWnd window;
  window.SetPosition(50, 50, 400, 300);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const KrBuffer image = MakeGrey(1000, 800, 1);
  ASSERT_TRUE(window.Display(image.GetImage()).IsOK());
  window.Zoom1_1();
  ASSERT_TRUE(window.DoEvents().IsOK());
  const auto* horizontal = window.GetWidget()->findChild<QScrollBar*>("control1044");
  const auto* vertical = window.GetWidget()->findChild<QScrollBar*>("control1046");
  ASSERT_TRUE(horizontal->isVisible() && vertical->isVisible());
  const struct {
    const char* name;
    std::uint64_t bits;
    bool isHorizontalShown;
    bool isVerticalShown;
  } rows[] = {
      {"hide the horizontal one", 0x1001, false, true},   {"hide the vertical one", 0x1002, false, false},
      {"show the horizontal one", 0x2001, true, false},   {"show the vertical one", 0x2002, true, true},
      {"both bits mean horizontal", 0x1003, false, true}, {"no bit means none", 0x1000, false, true},
  };
  for (const auto& row : rows) {
    window.GetQueue()->Post({2082, row.bits, 0});

    ASSERT_TRUE(window.DoEvents().IsOK());

    EXPECT_EQ(!horizontal->isHidden(), row.isHorizontalShown) << row.name;
    EXPECT_EQ(!vertical->isHidden(), row.isVerticalShown) << row.name;
  }
}
