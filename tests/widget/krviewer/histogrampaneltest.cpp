#include "panels/histogrampanel.h"

#include "darkpalette.h"
#include "panelfixture.h"
#include "panels/histogramplot.h"
#include "panels/numbertable.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <algorithm>

using krviewer::HistogramPanel;
using krviewer::HistogramPlot;
using krviewer::NumberTable;

namespace {

class HistogramPanelTest : public PanelTest {
protected:
  HistogramPanelTest() { mPanel.resize(500, 400); }

  void ShowPanel() {
    mPanel.show();
    ASSERT_TRUE(krtest::AwaitExposed(&mPanel));
  }
  QString GetFrameText() { return Find<QLabel>(mPanel, "histogramFrame")->text(); }
  QString GetCell(int aRow, int aColumn) {
    const QTableWidgetItem* const item = Find<NumberTable>(mPanel, "histogramNumbers")->item(aRow, aColumn);
    return item ? item->text() : QString();
  }
  bool AwaitFrame(std::uint64_t aFrameID) {
    const QString text = QStringLiteral("Frame %1").arg(aFrameID);
    return Await([&] { return GetFrameText().startsWith(text); });
  }
  QImage Grab() { return Find<HistogramPlot>(mPanel, "histogramPlot")->grab().toImage(); }

  HistogramPanel mPanel{mFrames};
};

} // namespace

TEST_F(HistogramPanelTest, numbersThatGrow_stayInSightWhereThereIsRoom) {
  QWidget page;
  auto* const layout = new QHBoxLayout(&page);
  auto* const table = new NumberTable({"Mean"});
  layout->addWidget(new QWidget, 1);
  layout->addWidget(table);
  table->SetRows(1);
  table->SetNumber(0, 0, "1", NumberTable::Emphasis::None);
  page.resize(800, 200);
  page.show();
  ASSERT_TRUE(krtest::AwaitExposed(&page));

  table->SetNumber(0, 0, "12345678901234567890", NumberTable::Emphasis::None);

  EXPECT_TRUE(Await([&] { return table->viewport()->width() >= table->horizontalHeader()->length(); }));
  EXPECT_TRUE(Await([&] { return !table->horizontalScrollBar()->isVisible(); }));
}

TEST_F(HistogramPanelTest, hiddenPanel_hearsOfNoFrame) {
  EXPECT_TRUE(mFrames.IsEmpty());
  GiveFrame(5);
  EXPECT_EQ(mPanel.GetCopied(), 0u);

  ShowPanel();
  GiveFrame(6);
  EXPECT_EQ(mPanel.GetCopied(), 1u);
  ASSERT_TRUE(AwaitFrame(2));

  mPanel.hide();
  EXPECT_TRUE(mFrames.IsEmpty());
  GiveFrame(7);
  EXPECT_EQ(mPanel.GetCopied(), 1u);
}

TEST_F(HistogramPanelTest, framesBetweenTwoLooks_areCopiedOnce) {
  ShowPanel();

  for (int i = 0; i < 100; ++i)
    GiveFrame(9);

  EXPECT_EQ(mPanel.GetCopied(), 1u);
}

TEST_F(HistogramPanelTest, frame_givesItsNumbers) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK());
  for (std::size_t i = 0; i < frame.GetSize(); ++i)
    frame.GetDataPointer()[i] = i % 4 == 0 ? 255 : 55;
  ShowPanel();

  GiveFrame(frame);

  ASSERT_TRUE(AwaitFrame(1));
  EXPECT_EQ(GetCell(0, 0), "105.0");
  EXPECT_EQ(GetCell(0, 1), "86.6");
  EXPECT_EQ(GetCell(0, 2), "55");
  EXPECT_EQ(GetCell(0, 3), "255");
  EXPECT_EQ(GetCell(0, 4), "0 %");
  EXPECT_EQ(GetCell(0, 5), "25.0 %");
}

TEST_F(HistogramPanelTest, clippedPixels_standOutFromOtherNumbers) {
  ShowPanel();
  GiveFrame(255);
  ASSERT_TRUE(AwaitFrame(1));
  const auto* const table = Find<NumberTable>(mPanel, "histogramNumbers");

  EXPECT_EQ(GetCell(0, 5), "100 %");
  EXPECT_NE(table->item(0, 5)->foreground().color(), table->item(0, 4)->foreground().color());
}

TEST_F(HistogramPanelTest, incompleteFrame_saysSo) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK());
  ShowPanel();

  GiveFrame(frame, KrBufferStatus::Incomplete);

  ASSERT_TRUE(AwaitFrame(1));
  EXPECT_EQ(GetFrameText(), "Frame 1, incomplete");
}

TEST_F(HistogramPanelTest, largeFrame_saysHowManyPixelsWereCounted) {
  ShowPanel();

  GiveFrame(7, KrPixel::Mono8, 2048, 1024);

  ASSERT_TRUE(AwaitFrame(1));
  EXPECT_EQ(GetFrameText(), "Frame 1, 524288 of 2097152 pixels");
}

TEST_F(HistogramPanelTest, frozenPanel_keepsWhatItShows) {
  ShowPanel();
  GiveFrame(5);
  ASSERT_TRUE(AwaitFrame(1));

  FindButton<QCheckBox>(mPanel, "Free&ze")->click();
  GiveFrame(6);
  EXPECT_EQ(mPanel.GetCopied(), 1u);

  FindButton<QCheckBox>(mPanel, "Free&ze")->click();
  GiveFrame(7);
  ASSERT_TRUE(AwaitFrame(3));
  EXPECT_EQ(GetCell(0, 0), "7.0");
}

TEST_F(HistogramPanelTest, coloursThatAreTakenOut_areNotDrawn) {
  ShowPanel();
  GiveFrame(90, KrPixel::BayerRG8);
  ASSERT_TRUE(AwaitFrame(1));
  auto* const colours = FindButton<QToolButton>(mPanel, "Co&lours");
  ASSERT_TRUE(colours->isEnabled());
  ASSERT_EQ(colours->menu()->actions().size(), 3);
  const QImage all = Grab();

  for (QAction* const action : colours->menu()->actions())
    if (action->text() != "&Red")
      action->trigger();

  EXPECT_NE(Grab(), all);
  EXPECT_EQ(Find<NumberTable>(mPanel, "histogramNumbers")->rowCount(), 3);
}

TEST_F(HistogramPanelTest, logarithmicScale_showsWhatFewPixelsHave) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(64, 64, KrPixel::Mono8).IsOK());
  std::fill_n(frame.GetDataPointer(), frame.GetSize(), std::uint8_t{200});
  frame.GetDataPointer()[0] = 60;
  ShowPanel();
  GiveFrame(frame);
  ASSERT_TRUE(AwaitFrame(1));
  const auto countDrawn = [this](const QImage& aPicture) {
    // Left of the middle and above the numbers there is the curve of the one pixel alone.
    int drawn = 0;
    const QRgb curve = mPanel.palette().color(QPalette::Text).rgb();
    for (int y = 0; y < aPicture.height() * 8 / 10; ++y)
      for (int x = aPicture.width() / 4; x < aPicture.width() / 2; ++x)
        drawn += aPicture.pixel(x, y) == curve ? 1 : 0;
    return drawn;
  };
  ASSERT_EQ(countDrawn(Grab()), 0);

  FindButton<QCheckBox>(mPanel, "Logarith&mic")->click();

  EXPECT_GT(countDrawn(Grab()), 0);
}

TEST_F(HistogramPanelTest, formatThatCannotBeCounted_isExplainedAndTheNextOneCounted) {
  ShowPanel();
  GiveFrame(0, KrPixel::Coord3D_C32f);
  ASSERT_TRUE(AwaitFrame(1));
  EXPECT_FALSE(Find<NumberTable>(mPanel, "histogramNumbers")->isVisible());

  GiveFrame(3);

  ASSERT_TRUE(AwaitFrame(2));
  EXPECT_TRUE(Find<NumberTable>(mPanel, "histogramNumbers")->isVisible());
}

TEST_F(HistogramPanelTest, everyControl_isReachedByKeyboardAndHasAName) {
  ShowPanel();
  GiveFrame(90, KrPixel::BayerRG8);
  ASSERT_TRUE(AwaitFrame(1));

  for (QAbstractButton* const button : {static_cast<QAbstractButton*>(FindButton<QCheckBox>(mPanel, "Logarith&mic")),
                                        static_cast<QAbstractButton*>(FindButton<QCheckBox>(mPanel, "Free&ze")),
                                        static_cast<QAbstractButton*>(FindButton<QToolButton>(mPanel, "Co&lours"))})
    EXPECT_TRUE((button->focusPolicy() & Qt::TabFocus) != 0) << button->text().toStdString();
  EXPECT_FALSE(Find<NumberTable>(mPanel, "histogramNumbers")->accessibleName().isEmpty());
}

TEST_F(HistogramPanelTest, anySizeAndTheme_isPainted) {
  ShowPanel();
  GiveFrame(90, KrPixel::RGB8);
  ASSERT_TRUE(AwaitFrame(1));
  for (const QPalette& palette : {QPalette(Qt::white), krgui::MakeDarkPalette()}) {
    mPanel.setPalette(palette);
    for (const QSize size : {QSize(1, 1), QSize(120, 90), QSize(2400, 1500)}) {
      mPanel.resize(size);
      EXPECT_EQ(Grab().pixelColor(0, 0), palette.color(QPalette::Base));
    }
  }
}
