// The mark of a doubtful value: when it is drawn and where, what it says, and what a hit test finds.

#include "finder/errorprovider.h"
#include "finder/finderpictures.h"
#include "windowwait.h"

#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QToolTip>
#include <QWidget>

#include <gtest/gtest.h>

namespace krgui {

namespace {

constexpr int kExtent = 16;

struct Indicator {
  Indicator() {
    control.setPalette(QPalette(Qt::white));
    control.resize(30, 24);
    control.setAutoFillBackground(true);
  }

  /// The rectangle of all pixels that are not the background's, in device-independent pixels.
  QRect FindMark(qreal aScale) {
    QImage image(control.size() * aScale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(aScale);
    image.fill(Qt::white);
    control.render(&image, {}, {}, QWidget::DrawChildren);
    QRect mark;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixelColor(x, y) != QColor(Qt::white)) {
          mark |= QRect(x, y, 1, 1);
        }
      }
    }
    return mark;
  }

  QWidget control;
  ErrorProvider provider{control};
};

TEST(ErrorProvider, WithoutError_DrawsNothing) {
  Indicator indicator;

  EXPECT_TRUE(indicator.FindMark(1).isEmpty());
}

TEST(ErrorProvider, Error_DrawsSixteenPixelsInTheMiddleAtEveryScale) {
  for (const qreal scale : {1.0, 1.5, 2.0}) {
    Indicator indicator;
    indicator.provider.SetText(QStringLiteral("wrong"));

    const QRect mark = indicator.FindMark(scale);
    const QRectF place(QPointF(30 / 2 - 8, 24 / 2 - 8) * scale, QSizeF(kExtent, kExtent) * scale);

    EXPECT_TRUE(place.toAlignedRect().contains(mark)) << scale;
    EXPECT_GT(mark.width(), kExtent * scale * 0.7) << scale;
    EXPECT_GT(mark.height(), kExtent * scale * 0.7) << scale;
  }
}

struct SizeCase {
  const char* name;
  QSize control;
  QPoint place;
};

TEST(ErrorProvider, Error_IsThePictureBlendedIntoTheBackgroundInTheMiddleOfWholeHalves) {
  const SizeCase rows[] = {{"even", {30, 24}, {7, 4}},
                           {"odd", {31, 25}, {7, 4}},
                           {"as large as the picture", {16, 16}, {0, 0}},
                           {"smaller", {13, 11}, {-2, -3}}};
  const QColor background(40, 120, 200);
  for (const SizeCase& row : rows) {
    Indicator indicator;
    indicator.control.setPalette(background);
    indicator.control.resize(row.control);
    indicator.provider.SetText(QStringLiteral("wrong"));
    QImage expected(row.control, QImage::Format_ARGB32_Premultiplied);
    expected.fill(background);
    {
      QPainter painter(&expected);
      GetErrorPicture().paint(&painter, QRect(row.place, QSize(kExtent, kExtent)));
    }

    QImage shown(row.control, QImage::Format_ARGB32_Premultiplied);
    shown.fill(background);
    indicator.control.render(&shown, {}, {}, QWidget::DrawChildren);

    EXPECT_EQ(shown, expected) << row.name;
  }
}

/// Counts the times that a control is painted.
class PaintCounter : public QObject {
public:
  explicit PaintCounter(QWidget& aControl) { aControl.installEventFilter(this); }
  int count = 0;

private:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    count += aEvent->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
};

TEST(ErrorProvider, EveryText_IsPaintedBeforeSetTextReturns) {
  Indicator indicator;
  indicator.control.show();
  ASSERT_TRUE(krtest::AwaitExposed(&indicator.control));
  const PaintCounter paints(indicator.control);

  indicator.provider.SetText(QStringLiteral("wrong"));
  EXPECT_EQ(paints.count, 1);
  indicator.provider.SetText({});
  EXPECT_EQ(paints.count, 2);
}

TEST(ErrorProvider, TextSetWhileHidden_IsPaintedWhenShown) {
  Indicator indicator;
  const PaintCounter paints(indicator.control);

  indicator.provider.SetText(QStringLiteral("wrong"));
  EXPECT_EQ(paints.count, 0);
  indicator.control.show();

  EXPECT_TRUE(krtest::AwaitCondition([&] { return paints.count > 0; }));
}

TEST(ErrorProvider, ErrorThatIsCleared_DrawsNothingAgain) {
  Indicator indicator;
  indicator.provider.SetText(QStringLiteral("wrong"));

  indicator.provider.SetText({});

  EXPECT_TRUE(indicator.FindMark(1).isEmpty());
}

TEST(ErrorProvider, HitTest_TellsErrorAndNoErrorInTheWholeClientArea) {
  Indicator indicator;

  EXPECT_EQ(indicator.provider.HitTest({0, 0}), 0xFFFF);
  EXPECT_EQ(indicator.provider.HitTest({29, 23}), 0xFFFF);
  EXPECT_EQ(indicator.provider.HitTest({30, 23}), std::nullopt);
  EXPECT_EQ(indicator.provider.HitTest({-1, 0}), std::nullopt);

  indicator.provider.SetText(QStringLiteral("wrong"));

  EXPECT_EQ(indicator.provider.HitTest({0, 0}), 1);
}

void Hover(QWidget& aControl) {
  QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), aControl.mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(&aControl, &help);
}

TEST(ErrorProvider, PointerRests_ShowsTheErrorAsPlainText) {
  Indicator indicator;
  indicator.control.show();
  indicator.provider.SetText(QStringLiteral("a <b> & c"));

  Hover(indicator.control);

  EXPECT_EQ(QToolTip::text(), QStringLiteral("<qt><div style=\"white-space:pre-wrap\">a &lt;b&gt; &amp; c</div></qt>"));
  QToolTip::hideText();
}

TEST(ErrorProvider, PointerRestsWithoutError_ShowsNothing) {
  Indicator indicator;
  indicator.control.show();

  Hover(indicator.control);

  EXPECT_TRUE(QToolTip::text().isEmpty());
}

TEST(ErrorProvider, ScreenReader_FindsTheErrorAsName) {
  Indicator indicator;

  indicator.provider.SetText(QStringLiteral("wrong"));

  EXPECT_EQ(indicator.control.accessibleName(), QStringLiteral("wrong"));
}

} // namespace

} // namespace krgui
