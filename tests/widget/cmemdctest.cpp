#include "platform/cmemdc.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QPicture>

#include <gtest/gtest.h>

namespace {

using krgui::CMemDC;

QImage MakePage(const QSize& aPixels, double aRatio) {
  QImage page(aPixels, QImage::Format_ARGB32_Premultiplied);
  page.setDevicePixelRatio(aRatio);
  page.fill(Qt::white);
  return page;
}

void DrawPattern(QPainter& aPainter) {
  aPainter.fillRect(QRect(2, 3, 10, 6), Qt::blue);
  aPainter.fillRect(QRect(4, 5, 3, 2), Qt::red);
  aPainter.setPen(Qt::darkGreen);
  aPainter.drawLine(2, 3, 11, 8);
}

struct TargetRow {
  const char* name;
  double ratio;
  QTransform transform;
};

const TargetRow kTargets[] = {
    {"plain", 1.0, {}},
    {"moved", 1.0, QTransform::fromTranslate(7, 4)},
    {"enlarged", 1.0, QTransform::fromScale(2, 2)},
    {"twice the pixels", 2.0, {}},
    {"twice the pixels, moved", 2.0, QTransform::fromTranslate(7, 4)},
    {"one and a half, moved by whole pixels", 1.5, QTransform::fromTranslate(4, 2)},
    {"moved before the origin", 1.0, QTransform::fromTranslate(-4, -4)},
    {"turned", 1.0, QTransform::fromTranslate(30, 2).rotate(90)},
};

} // namespace

TEST(CMemDC, WhatIsDrawn_ComesToTheSamePlaceAsWithoutIt) {
  for (const TargetRow& row : kTargets) {
    QImage direct = MakePage({60, 50}, row.ratio);
    {
      QPainter painter(&direct);
      painter.setTransform(row.transform);
      DrawPattern(painter);
    }
    QImage buffered = MakePage({60, 50}, row.ratio);
    {
      QPainter painter(&buffered);
      painter.setTransform(row.transform);
      CMemDC surface(painter, QRect(0, 0, 16, 12));
      EXPECT_TRUE(surface.IsDrawingIntoMemory()) << row.name;
      DrawPattern(surface.GetPainter());
    }
    EXPECT_EQ(direct, buffered) << row.name;
  }
}

TEST(CMemDC, WindowAndViewport_AreThoseOfTheTarget) {
  QImage direct = MakePage({40, 40}, 1.0);
  QImage buffered = MakePage({40, 40}, 1.0);
  for (QImage* page : {&direct, &buffered}) {
    QPainter painter(page);
    painter.setWindow(-10, -10, 20, 20);
    painter.setViewport(0, 0, 40, 40);
    if (page == &direct) {
      painter.fillRect(QRect(-5, -4, 3, 2), Qt::red);
      continue;
    }
    CMemDC surface(painter);
    surface.GetPainter().fillRect(QRect(-5, -4, 3, 2), Qt::red);
  }

  EXPECT_EQ(direct, buffered);
  EXPECT_EQ(buffered.pixelColor(10, 12), QColor(Qt::red));
}

TEST(CMemDC, Target_IsUntouchedUntilTheEnd) {
  QImage page = MakePage({20, 20}, 1.0);
  const QImage before = page.copy();
  QPainter painter(&page);
  {
    CMemDC surface(painter, page.rect());
    surface.GetPainter().fillRect(page.rect(), Qt::red);

    EXPECT_EQ(page, before);
  }

  EXPECT_EQ(page.pixelColor(19, 19), QColor(Qt::red));
}

TEST(CMemDC, WithoutARectangle_ItIsTheClipBox) {
  QImage page = MakePage({20, 20}, 1.0);
  QPainter painter(&page);
  painter.translate(2, 2);
  painter.setClipRect(3, 3, 5, 5);
  {
    CMemDC surface(painter);
    EXPECT_EQ(surface.GetPainter().device()->width(), 5);
    EXPECT_EQ(surface.GetPainter().device()->height(), 5);
    surface.GetPainter().fillRect(-10, -10, 100, 100, Qt::red);
  }

  EXPECT_EQ(page.pixelColor(4, 4), QColor(Qt::white));
  EXPECT_EQ(page.pixelColor(5, 5), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(9, 9), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(10, 10), QColor(Qt::white));
}

TEST(CMemDC, WithoutRectangleAndClip_ItIsTheWholeTarget) {
  for (const double ratio : {1.0, 2.0}) {
    QImage page = MakePage({20, 20}, ratio);
    {
      QPainter painter(&page);
      painter.translate(3, 3);
      CMemDC surface(painter);
      surface.GetPainter().fillRect(-10, -10, 100, 100, Qt::red);
    }
    EXPECT_EQ(page.pixelColor(0, 0), QColor(Qt::red)) << ratio;
    EXPECT_EQ(page.pixelColor(19, 19), QColor(Qt::red)) << ratio;
  }
}

TEST(CMemDC, OutsideTheRectangle_NothingIsCopied) {
  QImage page = MakePage({20, 20}, 1.0);
  {
    QPainter painter(&page);
    CMemDC surface(painter, QRect(5, 5, 4, 4));
    surface.GetPainter().fillRect(page.rect(), Qt::red);
  }

  EXPECT_EQ(page.pixelColor(4, 5), QColor(Qt::white));
  EXPECT_EQ(page.pixelColor(5, 5), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(8, 8), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(9, 8), QColor(Qt::white));
}

TEST(CMemDC, WhatWasNotDrawnOn_StaysAsItWas) {
  QImage page = MakePage({20, 20}, 1.0);
  page.fill(Qt::yellow);
  {
    QPainter painter(&page);
    CMemDC surface(painter, page.rect());
    surface.GetPainter().fillRect(0, 0, 5, 5, Qt::red);
  }

  EXPECT_EQ(page.pixelColor(4, 4), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(5, 5), QColor(Qt::yellow));
}

TEST(CMemDC, RectangleWithoutAnythingOfTheTarget_DrawsNothing) {
  struct Row {
    const char* name;
    QRect rect;
  };
  for (const Row& row : {Row{"empty", {}}, Row{"beside", {100, 0, 10, 10}}, Row{"before", {-50, -50, 10, 10}}}) {
    QImage page = MakePage({20, 20}, 1.0);
    const QImage before = page.copy();
    {
      QPainter painter(&page);
      CMemDC surface(painter, row.rect);
      surface.GetPainter().fillRect(-200, -200, 400, 400, Qt::red);
    }
    EXPECT_EQ(page, before) << row.name;
  }
}

TEST(CMemDC, RectangleLargerThanTheTarget_TakesNoMoreMemoryThanTheTarget) {
  QImage page = MakePage({20, 20}, 1.0);
  {
    QPainter painter(&page);
    CMemDC surface(painter, QRect(-1000000, -1000000, 2000000, 2000000));
    EXPECT_EQ(surface.GetPainter().device()->width(), 20);
    surface.GetPainter().fillRect(page.rect(), Qt::red);
  }

  EXPECT_EQ(page.pixelColor(0, 0), QColor(Qt::red));
  EXPECT_EQ(page.pixelColor(19, 19), QColor(Qt::red));
}

TEST(CMemDC, Target_KeepsItsStateAndLendsItsTools) {
  QImage page = MakePage({20, 20}, 1.0);
  QPainter painter(&page);
  painter.translate(1, 2);
  painter.setClipRect(0, 0, 9, 9);
  painter.setPen(Qt::red);
  painter.setBrush(Qt::green);
  {
    CMemDC surface(painter);
    EXPECT_EQ(surface.GetPainter().pen(), painter.pen());
    EXPECT_EQ(surface.GetPainter().brush(), painter.brush());
    EXPECT_EQ(surface.GetPainter().font(), painter.font());
    surface.GetPainter().setPen(Qt::blue);
  }

  EXPECT_EQ(painter.transform(), QTransform::fromTranslate(1, 2));
  EXPECT_EQ(painter.clipBoundingRect(), QRectF(0, 0, 9, 9));
  EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
}

TEST(CMemDC, PrintingTarget_IsDrawnOnDirectly) {
  QBuffer file;
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  QPdfWriter writer(&file);
  QPainter painter(&writer);

  const CMemDC surface(painter, QRect(0, 0, 100, 100));

  EXPECT_FALSE(surface.IsDrawingIntoMemory());
  EXPECT_EQ(&const_cast<CMemDC&>(surface).GetPainter(), &painter);
}

TEST(CMemDC, PrintingTarget_GetsNothingCopiedAtTheEnd) {
  // A recording says exactly what was drawn.
  QPicture direct;
  {
    QPainter painter(&direct);
    DrawPattern(painter);
  }
  QPicture buffered;
  {
    QPainter painter(&buffered);
    CMemDC surface(painter, QRect(0, 0, 16, 12));
    EXPECT_FALSE(surface.IsDrawingIntoMemory());
    DrawPattern(surface.GetPainter());
  }

  EXPECT_EQ(QByteArray(direct.data(), direct.size()), QByteArray(buffered.data(), buffered.size()));
}
