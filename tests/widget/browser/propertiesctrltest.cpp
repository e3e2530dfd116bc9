// The property grid as an application uses it.

#include "krgui/propertiesctrl.h"

#include "gridfixture.h"
#include "windowwait.h"

namespace krgui {

namespace {

class PropertiesCtrlTest : public testing::Test {
protected:
  std::uint64_t AppendCategory(std::uint64_t aParent, const char* aName) {
    return mGrid.AppendCategory(aParent, aName, *mCamera.array->GetCategory(aName));
  }
  std::uint64_t AppendFeature(std::uint64_t aParent, const char* aName) {
    return mGrid.AppendFeature(aParent, aName, *mCamera.array->Get(aName));
  }
  void Show() {
    mGrid.resize(500, 300);
    mGrid.show();
    mGrid.activateWindow();
    Settle();
  }
  void Settle() {
    EXPECT_TRUE(krtest::AwaitCondition([this] {
      QApplication::processEvents();
      return mGrid.GetGrid().GetQueue()->IsEmpty();
    }));
  }

  DescribedCamera mCamera{MakeGridCamera()};
  PropertiesCtrl mGrid;
};

} // namespace

TEST_F(PropertiesCtrlTest, AppendedRows_AreShownWithTheirCategoriesOpen) {
  const std::uint64_t analog = AppendCategory(0, "Analog");
  const std::uint64_t gain = AppendFeature(analog, "Gain");
  const std::uint64_t plain = AppendFeature(0, "Plain");
  Show();

  EXPECT_NE(gain, 0U);
  EXPECT_FALSE(mGrid.GetGrid().FindRow(gain).isEmpty());
  EXPECT_LT(mGrid.GetGrid().FindRow(gain).top(), mGrid.GetGrid().FindRow(plain).top());
  EXPECT_EQ(mGrid.GetParameter(gain), mCamera.array->Get("Gain"));
  EXPECT_EQ(mGrid.GetParameter(analog), nullptr);
}

TEST_F(PropertiesCtrlTest, RowsUnderWhatIsNoCategory_AreRefused) {
  const std::uint64_t gain = AppendFeature(0, "Gain");

  EXPECT_EQ(AppendFeature(gain, "Plain"), 0U);
  EXPECT_EQ(AppendFeature(4711, "Plain"), 0U);
  EXPECT_EQ(AppendCategory(gain, "Analog"), 0U);
  EXPECT_EQ(mGrid.GetGrid().GetTree().GetFeatures().size(), 1U);
}

TEST_F(PropertiesCtrlTest, AppendingARow_LeavesTheSelection) {
  const std::uint64_t gain = AppendFeature(0, "Gain");
  Show();
  mGrid.Select(gain);

  AppendFeature(0, "Plain");
  Settle();

  EXPECT_EQ(mGrid.GetSelected(), gain);
}

TEST_F(PropertiesCtrlTest, RowAppendedOnTheScreen_IsMarkedThere) {
  Show();

  const std::uint64_t gain = AppendFeature(0, "Gain");
  EXPECT_TRUE(krtest::AwaitCondition([&] { return mGrid.GetGrid().GetTree().FindFeature(gain)->IsOnScreen(); }));
}

TEST_F(PropertiesCtrlTest, Refresh_ReadsAndShowsEveryFeature) {
  const std::uint64_t gain = AppendFeature(0, "Gain");
  Show();

  mGrid.Refresh();
  Settle();

  EXPECT_EQ(mGrid.GetGrid().GetTree().FindFeature(gain)->GetSnapshot().value, KrString("0 dB"));
  EXPECT_FALSE(mGrid.GetGrid().GetTree().FindFeature(gain)->HasChanged());
}

TEST_F(PropertiesCtrlTest, DisplayNames_AreShownByAllRowsAtOnceAndByLaterOnes) {
  const std::uint64_t first = AppendFeature(0, "Gain");
  Show();
  const auto paint = [this] { return mGrid.GetGrid().viewport()->grab().toImage(); };
  const QImage before = paint();

  mGrid.SetShowsDisplayNames(true);
  Settle();
  const QImage after = paint();
  const std::uint64_t second = AppendFeature(0, "Gain");

  const BrowserTree& tree = mGrid.GetGrid().GetTree();
  EXPECT_EQ(tree.FindFeature(first)->GetShownName(), KrString("Gain Display"));
  EXPECT_EQ(tree.FindFeature(second)->GetShownName(), KrString("Gain Display"));
  EXPECT_NE(after, before);
  mGrid.Clear();
  mGrid.SetShowsDisplayNames(false);
  AppendFeature(0, "Gain");
  EXPECT_EQ(paint(), before);
}

TEST_F(PropertiesCtrlTest, DisplayNamesOfCategories_AreShownAtOnceToo) {
  const std::uint64_t analog = AppendCategory(0, "Named");

  mGrid.SetShowsDisplayNames(true);

  EXPECT_EQ(mGrid.GetGrid().GetTree().FindCategory(analog)->GetShownName(), KrString("The Name"));
}

TEST_F(PropertiesCtrlTest, ChangeOfTheNames_RepaintsWhatIsOnTheScreen) {
  AppendFeature(0, "Gain");
  Show();
  struct Watch : QObject {
    bool eventFilter(QObject*, QEvent* aEvent) override {
      hasPainted = hasPainted || aEvent->type() == QEvent::Paint;
      return false;
    }
    bool hasPainted = false;
  } watch;
  mGrid.GetGrid().viewport()->installEventFilter(&watch);

  mGrid.SetShowsDisplayNames(true);

  EXPECT_TRUE(krtest::AwaitCondition([&] { return watch.hasPainted; }));
}

TEST_F(PropertiesCtrlTest, NamesOfEntries_FollowTheirFeaturesWithTheNextReading) {
  const std::uint64_t choice = AppendFeature(0, "Choice");
  Show();
  mGrid.Refresh();
  EXPECT_EQ(mGrid.GetGrid().GetTree().FindFeature(choice)->GetSnapshot().value, KrString("Low"));

  mGrid.SetShowsDisplayNames(true);
  mGrid.Refresh();

  EXPECT_EQ(mGrid.GetGrid().GetTree().FindFeature(choice)->GetSnapshot().value, KrString("The Low"));
}

TEST_F(PropertiesCtrlTest, SearchText_IsMarkedWhateverItsCaseAndSelectsNothing) {
  const std::uint64_t gain = AppendFeature(0, "Gain");
  const std::uint64_t plain = AppendFeature(0, "Plain");
  Show();
  const auto hasMark = [this](std::uint64_t aRow) {
    const QImage picture = mGrid.GetGrid().viewport()->grab(mGrid.GetGrid().FindRow(aRow)).toImage();
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixelColor(x, y) == QColor(0xFF, 0xFF, 0x00))
          return true;
      }
    }
    return false;
  };
  ASSERT_FALSE(hasMark(gain));

  mGrid.SetSearchText("GA");

  EXPECT_TRUE(hasMark(gain));
  EXPECT_FALSE(hasMark(plain));
  EXPECT_EQ(mGrid.GetSelected(), 0U);
  mGrid.SetSearchText({});
  EXPECT_FALSE(hasMark(gain));
}

TEST_F(PropertiesCtrlTest, SearchText_FollowsTheNamesThatAreShown) {
  AppendFeature(0, "Gain");
  Show();
  const auto paint = [this] { return mGrid.GetGrid().viewport()->grab().toImage(); };
  mGrid.SetShowsDisplayNames(true);
  const QImage before = paint();

  mGrid.SetSearchText("display");

  EXPECT_NE(paint(), before);
}

TEST_F(PropertiesCtrlTest, Selection_IsToldAndDescribed) {
  const std::uint64_t gain = AppendFeature(0, "Gain");
  Show();
  int told = 0;
  mGrid.SetSelectionHandler([&] { ++told; });

  mGrid.Select(gain);

  EXPECT_EQ(told, 1);
  EXPECT_EQ(mGrid.GetSelected(), gain);
  EXPECT_NE(mGrid.GetDescription(gain).ToUtf8().find("Feature Name: <b>Gain</b>"), std::string::npos);
  EXPECT_TRUE(mGrid.GetDescription(4711).IsEmpty());
  mGrid.Select(0);
  EXPECT_EQ(mGrid.GetSelected(), 0U);
}

TEST_F(PropertiesCtrlTest, WrittenValue_IsAChangeUntilItIsReset) {
  const std::uint64_t plain = AppendFeature(0, "Plain");
  Show();
  mGrid.Refresh();
  Settle();
  EXPECT_FALSE(mGrid.HasChanged());
  mGrid.setFocus();
  mGrid.Select(plain);
  Settle();
  QTest::keyPress(&mGrid.GetGrid(), Qt::Key_Return);
  Settle();
  ASSERT_NE(QApplication::focusWidget(), nullptr);

  QTest::keyClicks(QApplication::focusWidget(), "42");
  QTest::keyPress(QApplication::focusWidget(), Qt::Key_Return);
  Settle();

  EXPECT_TRUE(mGrid.HasChanged());
  EXPECT_EQ(mCamera.Peek(0x20, 1), (std::vector<std::uint8_t>{42}));
  mGrid.ResetChanged();
  EXPECT_FALSE(mGrid.HasChanged());
}

TEST_F(PropertiesCtrlTest, Cleared_HasNoRowsAndGivesNewNumbers) {
  const std::uint64_t gain = AppendFeature(0, "Gain");
  Show();
  mGrid.Select(gain);

  mGrid.Clear();
  const std::uint64_t again = AppendFeature(0, "Gain");

  EXPECT_NE(again, gain);
  EXPECT_EQ(mGrid.GetParameter(gain), nullptr);
  EXPECT_EQ(mGrid.GetSelected(), 0U);
}

} // namespace krgui
