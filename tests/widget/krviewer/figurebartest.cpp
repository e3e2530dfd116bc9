#include "panels/figurebar.h"

#include "contrast.h"
#include "darkpalette.h"
#include "panels/graphcolours.h"
#include "window/showntext.h"

#include <QLabel>

#include <gtest/gtest.h>

using krviewer::FigureBar;
using krviewer::ShownFigures;

namespace {

class FigureBarTest : public testing::Test {
protected:
  FigureBarTest() {
    mBar.resize(mBar.sizeHint());
    mBar.show();
  }
  const QLabel* Find(const QString& aText) const {
    for (const QLabel* const label : mBar.findChildren<QLabel*>())
      if (label->text().contains(aText))
        return label;
    ADD_FAILURE() << "There is no " << aText.toStdString();
    return nullptr;
  }
  QStringList ListVisible() const {
    QStringList texts;
    for (const QLabel* const label : mBar.findChildren<QLabel*>())
      if (label->isVisible() && !label->text().isEmpty())
        texts += label->text();
    return texts;
  }
  static KrDisplayPixel MakePixel() {
    return {.x = 12, .y = 34, .raw = {1, {1023}, {'Y'}}, .red = 255, .green = 255, .blue = 255};
  }

  FigureBar mBar;
};

} // namespace

TEST_F(FigureBarTest, beforeAnything_isEmpty) {
  EXPECT_TRUE(ListVisible().isEmpty());
}

TEST_F(FigureBarTest, wideBar_showsEverything) {
  mBar.Show({.framesPerSecond = 30, .frames = 5, .temperatureC = 45.5, .pixel = MakePixel()});
  mBar.resize(mBar.sizeHint());

  EXPECT_EQ(ListVisible(),
            (QStringList{"x 12  y 34   raw 1023   shown 255", "30.0 frames/s", "0.0 MB/s", "5 frames", "incomplete 0",
                         "missing frames 0", "missing packets 0", "resent 0", "discarded 0", "45.5 °C"}));
}

TEST_F(FigureBarTest, noFigure_overlapsAnother) {
  mBar.Show({.framesPerSecond = 30, .frames = 5, .temperatureC = 45.5, .pixel = MakePixel()});
  for (int width = 10; width < mBar.sizeHint().width() + 50; width += 37) {
    mBar.resize(width, mBar.height());
    QRect last;
    for (const QLabel* const label : mBar.findChildren<QLabel*>()) {
      if (!label->isVisible())
        continue;
      EXPECT_GE(label->x(), last.isNull() ? 0 : last.right() + 1) << width;
      EXPECT_LE(label->geometry().right(), width);
      last = label->geometry();
    }
  }
}

TEST_F(FigureBarTest, narrowBar_keepsTheRateAndWhatWasLost) {
  mBar.Show({.framesPerSecond = 30, .frames = 5, .statistics = {.incomplete = 3}});

  mBar.resize(mBar.fontMetrics().averageCharWidth() * 50, mBar.height());

  EXPECT_EQ(ListVisible(), (QStringList{"30.0 frames/s", "⚠ incomplete 3"}));
}

TEST_F(FigureBarTest, changingNumbers_moveNothing) {
  mBar.Show({.framesPerSecond = 9.9, .frames = 1});
  const QRect rate = Find("frames/s")->geometry();
  const QRect resent = Find("resent")->geometry();

  mBar.Show({.framesPerSecond = 111.1, .frames = 123456, .statistics = {.resentPackets = 999}, .pixel = MakePixel()});

  EXPECT_EQ(Find("frames/s")->geometry(), rate);
  EXPECT_EQ(Find("resent")->geometry(), resent);
}

TEST_F(FigureBarTest, growingLosses_moveNothingAfterTheFirst) {
  mBar.Show({.statistics = {.discarded = 10}});
  mBar.resize(mBar.sizeHint());
  const QRect rate = Find("frames/s")->geometry();

  mBar.Show({.statistics = {.discarded = 99}});

  EXPECT_EQ(Find("frames/s")->geometry(), rate);
}

TEST_F(FigureBarTest, longerNumbers_keepTheirRoomAndAreNotCut) {
  mBar.Show({.frames = 1'000'000'000'000});
  mBar.resize(mBar.sizeHint());
  const QLabel* const label = Find("1000000000000 frames");
  const QRect place = label->geometry();
  EXPECT_GE(place.width(), label->fontMetrics().horizontalAdvance(label->text()));

  mBar.Show({.frames = 7});

  EXPECT_EQ(label->text(), "7 frames");
  EXPECT_EQ(label->geometry(), place);
}

TEST_F(FigureBarTest, losses_standOutByMarkColourAndWeightUntilTheyAreGone) {
  mBar.Show({.statistics = {.discarded = 1}});
  const QLabel* const label = Find("discarded 1");
  EXPECT_EQ(label->text(), "⚠ discarded 1");
  EXPECT_TRUE(label->font().bold());
  EXPECT_EQ(label->palette().color(QPalette::WindowText), krviewer::GetWarningColour(mBar.palette()));

  mBar.Show({});

  EXPECT_EQ(label->text(), "discarded 0");
  EXPECT_FALSE(label->font().bold());
}

TEST_F(FigureBarTest, losses_haveRoomForTheMarkToo) {
  for (const std::uint64_t discarded : {1u, 9u, 119u, 126u, 4'711u}) {
    FigureBar bar;
    bar.Show({.statistics = {.discarded = discarded}});
    bar.resize(bar.sizeHint());
    bar.show();
    int seen = 0;

    for (const QLabel* const label : bar.findChildren<QLabel*>())
      if (label->isVisible() && label->text().contains("discarded")) {
        ++seen;
        EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
      }

    EXPECT_EQ(seen, 1);
  }
}

TEST_F(FigureBarTest, everyFigure_saysWhatItMeans) {
  const QList<QLabel*> labels = mBar.findChildren<QLabel*>();
  EXPECT_FALSE(labels.isEmpty());
  for (const QLabel* const label : labels) {
    EXPECT_FALSE(label->toolTip().isEmpty());
    EXPECT_EQ(krviewer::ToToolTip(label->accessibleDescription()), label->toolTip());
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
  }
}

TEST_F(FigureBarTest, cleared_isEmptyAgain) {
  mBar.Show({.frames = 5});

  mBar.Clear();

  EXPECT_TRUE(ListVisible().isEmpty());
}

TEST_F(FigureBarTest, largerFont_hasRoomForItsTexts) {
  mBar.Show({.framesPerSecond = 30, .frames = 5});
  QFont font = mBar.font();
  font.setPointSize(font.pointSize() * 2);

  mBar.setFont(font);
  mBar.resize(mBar.sizeHint());

  const QLabel* const label = Find("frames/s");
  EXPECT_EQ(label->font().pointSize(), font.pointSize());
  EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
}

TEST_F(FigureBarTest, theme_isFollowed) {
  mBar.Show({.statistics = {.discarded = 1}});

  mBar.setPalette(krgui::MakeDarkPalette());

  const QLabel* const label = Find("discarded 1");
  EXPECT_EQ(label->palette().color(QPalette::WindowText), krviewer::GetWarningColour(krgui::MakeDarkPalette()));
}

TEST(GraphColours, everyColour_canBeReadOnItsGround) {
  for (const QPalette& palette : {QPalette(Qt::white), krgui::MakeDarkPalette()}) {
    const double base = krgui::GetLuminance(palette.color(QPalette::Base));
    const auto getContrast = [base](const QColor& aColour) {
      const double luminance = krgui::GetLuminance(aColour);
      return (std::max(base, luminance) + 0.05) / (std::min(base, luminance) + 0.05);
    };
    EXPECT_GE(getContrast(krviewer::GetWarningColour(palette)), 4.5);
    for (const char component : {'Y', 'R', 'G', 'B', 'U', 'V'})
      EXPECT_GE(getContrast(krviewer::GetComponentColour(palette, component)), 4.5) << component;
  }
}
