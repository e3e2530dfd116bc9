// The mark of a doubtful value: when it is drawn and where, what it says, and what a hit test finds.

#include "finder/errorprovider.h"

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

  EXPECT_EQ(QToolTip::text(), QStringLiteral("<p>a &lt;b&gt; &amp; c</p>"));
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
