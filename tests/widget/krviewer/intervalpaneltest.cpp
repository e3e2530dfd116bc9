#include "panels/intervalpanel.h"

#include "darkpalette.h"
#include "gate.h"
#include "hangingdisk.h"
#include "panelfixture.h"
#include "panels/intervalplot.h"
#include "panels/numbertable.h"
#include "temporaryfolder.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <filesystem>
#include <thread>

using krviewer::IntervalPanel;
using krviewer::IntervalPlot;
using krviewer::NumberTable;

namespace {

constexpr std::uint64_t kMillisecond = 1'000'000;

class IntervalPanelTest : public PanelTest {
protected:
  void ShowPanel() {
    mPanel.resize(500, 400);
    mPanel.show();
    ASSERT_TRUE(krtest::AwaitExposed(&mPanel));
  }
  /// Frames of the camera's clock 10 ms apart that arrive so many milliseconds apart.
  void GiveFrames(int aCount, std::uint64_t aMilliseconds) {
    for (int i = 0; i < aCount; ++i) {
      mNowNs += aMilliseconds * kMillisecond;
      GiveFrame(1);
    }
  }
  QString GetState() { return Find<QLabel>(mPanel, "intervalState")->text(); }
  /// With plain blanks where lines are not wrapped.
  QString GetLosses() { return Find<QLabel>(mPanel, "intervalLosses")->text().replace(QChar::Nbsp, ' '); }
  QString GetCell(int aRow, int aColumn) {
    return Find<NumberTable>(mPanel, "intervalNumbers")->item(aRow, aColumn)->text();
  }
  QImage Grab() { return Find<IntervalPlot>(mPanel, "intervalPlot")->grab().toImage(); }

  IntervalPanel mPanel{mFrames, [this] { return mNowNs; }};
};

} // namespace

TEST_F(IntervalPanelTest, withoutFrames_saysSo) {
  ShowPanel();

  EXPECT_EQ(GetState(), "No frame has come yet.");
  EXPECT_EQ(GetCell(0, 1), "–");
}

TEST_F(IntervalPanelTest, framesWhileItIsHidden_areRemembered) {
  GiveFrames(50, 12);

  ShowPanel();

  EXPECT_EQ(GetState(), "Acquisition is running.");
  EXPECT_EQ(GetCell(0, 0), "12.000");
  EXPECT_EQ(GetCell(0, 1), "12.000");
  EXPECT_EQ(GetCell(0, 3), "0.000");
  EXPECT_EQ(GetCell(1, 1), "10.000");
  EXPECT_TRUE(GetLosses().startsWith("50 frames"));
}

TEST_F(IntervalPanelTest, losses_areCountedByTheirKind) {
  ShowPanel();
  mPanel.TakeIn({});
  GiveFrames(3, 12);
  mFrameID += 4;
  GiveFrames(1, 60);
  mPanel.TakeIn({.discarded = 2});

  EXPECT_TRUE(
      Await([this] { return GetLosses() == "4 frames   ▼ incomplete 0   ✕ missing frames 4   ■ discarded 2"; }));
}

TEST_F(IntervalPanelTest, stoppedAcquisition_saysSoAndWhy) {
  ShowPanel();
  Start();
  ASSERT_TRUE(Await([this] { return GetState() == "Acquisition is running."; }));

  End({KrResult::Code::ConnectionLost, "The cable was pulled."});

  EXPECT_TRUE(Await([this] { return GetState() == "Acquisition is stopped. The cable was pulled."; }));
}

TEST_F(IntervalPanelTest, cameraThatIsLost_isSaidSoBeforeItsStreamHasEnded) {
  ShowPanel();
  Start();
  ASSERT_TRUE(Await([this] { return GetState() == "Acquisition is running."; }));

  mPanel.SetLost(true);
  EXPECT_TRUE(Await([this] { return GetState() == "The camera is lost."; }));
  mPanel.SetLost(false);

  EXPECT_TRUE(Await([this] { return GetState() == "Acquisition is running."; }));
}

TEST_F(IntervalPanelTest, reset_forgetsThePast) {
  GiveFrames(10, 12);
  ShowPanel();
  ASSERT_TRUE(GetLosses().startsWith("10 frames"));

  QTest::keyClick(FindButton<QPushButton>(mPanel, "Re&set"), Qt::Key_Space);

  EXPECT_TRUE(GetLosses().startsWith("0 frames"));
}

TEST_F(IntervalPanelTest, longerTime_showsWhatWasBefore) {
  GiveFrames(10, 12);
  mNowNs += 20'000 * kMillisecond;
  ShowPanel();
  ASSERT_TRUE(GetLosses().startsWith("0 frames"));

  QTest::keyClick(mPanel.findChild<QComboBox*>(), Qt::Key_Down);

  EXPECT_TRUE(GetLosses().startsWith("10 frames"));
}

TEST_F(IntervalPanelTest, export_savesWhatWasShown) {
  const TemporaryFolder folder;
  GiveFrames(2, 500);
  ShowPanel();

  FindButton<QPushButton>(mPanel, "&Export…")->click();
  const QPointer<QFileDialog> dialog = mPanel.findChild<QFileDialog*>();
  ASSERT_TRUE(dialog);
  GiveFrames(5, 500); // While a name is looked for.
  emit dialog->fileSelected(QString::fromStdString(folder.GetFile("intervals.csv")));
  dialog->close();

  ASSERT_TRUE(Await([&] { return std::filesystem::exists(folder.GetFile("intervals.csv")); }));
  const std::string table = TemporaryFolder::ReadFile(folder.GetFile("intervals.csv"));
  EXPECT_EQ(std::ranges::count(table, '\n'), 3);
  EXPECT_TRUE(Await([&] { return dialog.isNull(); }));
}

TEST_F(IntervalPanelTest, exportThatFails_isTold) {
  const TemporaryFolder folder;
  ShowPanel();

  FindButton<QPushButton>(mPanel, "&Export…")->click();
  auto* const dialog = mPanel.findChild<QFileDialog*>();
  ASSERT_TRUE(dialog);
  emit dialog->fileSelected(QString::fromStdString(folder.GetFile("none/intervals.csv")));

  ASSERT_TRUE(Await([this] { return mPanel.findChild<QMessageBox*>() != nullptr; }));
  const auto* const box = mPanel.findChild<QMessageBox*>();
  EXPECT_EQ(box->textFormat(), Qt::PlainText);
  EXPECT_TRUE(box->text().contains("none/intervals.csv"));
}

TEST_F(IntervalPanelTest, exportToADiskThatHangs_holdsNothingUp) {
  // Who has been on such a disk is on it for good.
  static const TemporaryFolder folder;
  static HangingDisk disk(folder.GetPath().string());
  ASSERT_TRUE(disk.Enter());
  Gate seen;
  const std::jthread recovery([&seen] {
    (void)seen.AwaitReached(); // Or so late that the test has failed.
    disk.Recover();
  });
  ShowPanel();
  disk.Hang();

  FindButton<QPushButton>(mPanel, "&Export…")->click();
  auto* const dialog = mPanel.findChild<QFileDialog*>();
  ASSERT_TRUE(dialog);
  emit dialog->fileSelected(QString::fromStdString(folder.GetFile("intervals.csv")));

  EXPECT_TRUE(Await([&] { return disk.CountWaiting() > 0; }));
  EXPECT_FALSE(std::filesystem::exists(folder.GetFile("intervals.csv")));
  GiveFrames(10, 12);
  EXPECT_TRUE(Await([this] { return GetLosses().startsWith("10 frames"); }));

  seen.Pass();
  EXPECT_TRUE(Await([&] { return std::filesystem::exists(folder.GetFile("intervals.csv")); }));
}

TEST_F(IntervalPanelTest, lossesInThePlot_areDrawnInAnyTheme) {
  for (const QPalette& palette : {QPalette(Qt::white), krgui::MakeDarkPalette()}) {
    mPanel.setPalette(palette);
    ShowPanel();
    mPanel.TakeIn({});
    FindButton<QPushButton>(mPanel, "Re&set")->click();
    GiveFrames(20, 100);
    mPanel.hide();
    ShowPanel();
    const QImage without = Grab();

    mPanel.TakeIn({.discarded = 1});
    mPanel.hide();
    ShowPanel();

    EXPECT_NE(Grab(), without);
  }
}

TEST_F(IntervalPanelTest, numbers_standWhereThereIsRoomForThem) {
  ShowPanel();
  const auto* const plot = Find<IntervalPlot>(mPanel, "intervalPlot");
  const auto* const numbers = Find<NumberTable>(mPanel, "intervalNumbers");
  const auto getPlace = [this](const QWidget* aWidget) {
    return QRect(aWidget->mapTo(&mPanel, QPoint(0, 0)), aWidget->size());
  };

  mPanel.resize(900, 220);
  EXPECT_TRUE(Await([&] { return getPlace(numbers).left() > getPlace(plot).right(); }));

  mPanel.resize(360, 600);
  EXPECT_TRUE(Await([&] { return getPlace(numbers).top() > getPlace(plot).bottom(); }));
}

TEST_F(IntervalPanelTest, panelThatIsGone_hearsOfNoFrame) {
  krviewer::FrameSinks frames("a frame sink", "test", {"IntervalPanelTest", "intervalpaneltest"});
  {
    const IntervalPanel panel(frames);
    EXPECT_FALSE(frames.IsEmpty());
  }

  EXPECT_TRUE(frames.IsEmpty());
}
