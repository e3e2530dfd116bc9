// Which rows the feature browser's window shows, and when it fills them anew.

#include "browserfixture.h"

#include "controlhands.h"
#include "krbase/krlogger.h"
#include "krgui/krgenbrowserwnd.h"
#include "windowwait.h"

#include <algorithm>
#include <new>

namespace krgui {

namespace {

class Filling : public GenBrowserTest {};

} // namespace

TEST_F(Filling, FirstShowing_HasTheFeaturesForBeginnersInTheirCategories) {
  Open();

  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
  EXPECT_EQ(mWindow.GetVisibilityList().currentText(), "Beginner");
}

TEST_F(Filling, WindowWithoutArray_IsEmptyAndTakesOneWhileItIsOpen) {
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  const std::string before = mWindow.GetRows();
  mWindow.SetGenParameterArray(mCamera.array.get());

  EXPECT_EQ(before, "");
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
}

TEST_F(Filling, NullForTheArray_EmptiesTheWindowAndLetsTheArrayGo) {
  Open();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));

  mWindow.SetGenParameterArray(nullptr);
  mCamera.array.reset();

  EXPECT_EQ(mWindow.GetRows(), "");
  EXPECT_EQ(mWindow.GetDescription().toPlainText(), "");
}

TEST_F(Filling, SameArrayAgain_FillsNothingAnewAndKeepsTheChangedFlag) {
  Open();
  const GridItem row = mWindow.FindRow("Width");
  mWindow.GetGrid().SetChanged(true);

  mWindow.SetGenParameterArray(mCamera.array.get());

  EXPECT_EQ(mWindow.FindRow("Width"), row) << "a filling would have made another row";
  EXPECT_TRUE(mWindow.HasChanged());
}

TEST_F(Filling, AnotherArray_FillsAnewAndClearsTheChangedFlag) {
  DescribedCamera other("<Category Name=\"Root\"><pFeature>Only</pFeature></Category>"
                        "<Integer Name=\"Only\"><Value>1</Value></Integer>");
  Open();
  mWindow.GetGrid().SetChanged(true);

  mWindow.SetGenParameterArray(other.array.get());

  EXPECT_EQ(mWindow.GetRows(), "Only");
  EXPECT_FALSE(mWindow.HasChanged());
  mWindow.SetGenParameterArray(nullptr);
}

TEST_F(Filling, AnotherVisibilityOrMode_FillsAnewAndKeepsTheChangedFlag) {
  Open();
  mWindow.GetGrid().SetChanged(true);

  mWindow.GetVisibilityList().setCurrentIndex(1);
  EXPECT_TRUE(mWindow.HasChanged());
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  EXPECT_TRUE(mWindow.HasChanged());

  EXPECT_EQ(mWindow.GetRows(), kExpertRows);
}

TEST_F(Filling, HundredThousandCategoriesInEachOther_AreShownAsFarAsTreesGo) {
  constexpr int kDepth = 100'000;
  std::string nodes = "<Integer Name=\"Only\"><Value>1</Value></Integer>"
                      "<Category Name=\"Root\"><pFeature>C0</pFeature></Category>";
  for (int i = 0; i < kDepth; ++i)
    nodes += "<Category Name=\"C" + std::to_string(i) + "\"><pFeature>" +
             (i + 1 < kDepth ? "C" + std::to_string(i + 1) : "Only") + "</pFeature></Category>";
  DescribedCamera deep(nodes);
  Open();

  mWindow.SetGenParameterArray(deep.array.get());

  EXPECT_NE(mWindow.FindRow("Only"), kNoItem);
  EXPECT_TRUE(mWindow.GetGrid().isVisible());
  mWindow.SetGenParameterArray(nullptr);
}

TEST_F(Filling, ChoiceInTheVisibilityList_IsStoredAndFillsAnew) {
  Open();

  mWindow.GetVisibilityList().setCurrentIndex(1);
  EXPECT_EQ(mWindow.GetRows(), kExpertRows);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Expert);

  mWindow.GetVisibilityList().setCurrentIndex(2);
  EXPECT_EQ(mWindow.GetRows(), kGuruRows);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Guru);
}

TEST_F(Filling, WheelOverTheVisibilityList_ChoosesNothing) {
  Open();

  EXPECT_FALSE(krtest::TurnWheel(mWindow.GetVisibilityList(), false));

  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Beginner);
}

TEST_F(Filling, ChoiceInTheVisibilityList_DecidesWhichEntriesAreOffered) {
  const auto countOffered = [this] {
    mWindow.GetGrid().Select(mWindow.FindRow("PixelFormat"));
    const QComboBox* list = nullptr;
    EXPECT_TRUE(WaitFor([&] {
      list = mWindow.GetGrid().viewport()->findChild<QComboBox*>(QStringLiteral("choiceEditor"));
      return list && list->isVisible();
    }));
    return list ? list->count() : 0;
  };
  Open();
  EXPECT_EQ(countOffered(), 1);

  mWindow.GetVisibilityList().setCurrentIndex(1);

  EXPECT_EQ(countOffered(), 2);
}

TEST_F(Filling, SetVisibility_OfAnOpenWindow_SelectsInTheListAndFillsNothingAnew) {
  Open();

  mWindow.SetVisibility(KrGenVisibility::Guru);

  EXPECT_EQ(mWindow.GetVisibilityList().currentText(), "Guru");
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Guru);
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
}

TEST_F(Filling, SetVisibility_BeforeShowing_IsWhatIsShown) {
  mWindow.SetVisibility(KrGenVisibility::Guru);
  Open();

  EXPECT_EQ(mWindow.GetRows(), kGuruRows);
  EXPECT_EQ(mWindow.GetVisibilityList().currentText(), "Guru");
}

TEST_F(Filling, Invisible_LeavesTheListWithoutSelectionAndShowsTheFeaturesForBeginners) {
  mWindow.SetVisibility(KrGenVisibility::Invisible);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Invisible) << "as long as there is no window";

  Open();

  EXPECT_EQ(mWindow.GetVisibilityList().currentIndex(), -1);
  EXPECT_EQ(mWindow.GetVisibilityList().count(), 3);
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Beginner);
}

TEST_F(Filling, Categories_AreAllOpenAndTheFirstRowIsOnTop) {
  Open();

  EXPECT_TRUE(mWindow.GetGrid().FindRow(mWindow.FindRow("Width")).isValid());
  EXPECT_TRUE(mWindow.GetGrid().FindRow(mWindow.FindRow("Gain")).isValid());
  EXPECT_EQ(mWindow.GetGrid().FindRow(mWindow.FindRow("Loose")).top(), 0);
}

TEST_F(Filling, CollapseAndExpand_CloseAndOpenAllCategoriesAndSelectNothing) {
  Open();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));

  mWindow.Click("Collapse");
  EXPECT_FALSE(mWindow.GetGrid().FindRow(mWindow.FindRow("Width")).isValid());
  EXPECT_EQ(mWindow.GetGrid().GetSelected(), kNoItem);

  mWindow.Click("Expand");
  EXPECT_TRUE(mWindow.GetGrid().FindRow(mWindow.FindRow("Width")).isValid());
  EXPECT_EQ(mWindow.GetGrid().GetSelected(), kNoItem);
}

TEST(FillingOfManyRows, ExpandAndCollapse_PutTheFirstCategoryOnTop) {
  std::string nodes = "<Category Name=\"Root\"><pFeature>Loose</pFeature><pFeature>One</pFeature>"
                      "<pFeature>Two</pFeature></Category><Integer Name=\"Loose\"><Value>1</Value></Integer>";
  for (const std::string category : {"One", "Two"}) {
    std::string features;
    for (int i = 0; i < 100; ++i) {
      const std::string name = category + std::to_string(i);
      features += "<pFeature>" + name + "</pFeature>";
      nodes += "<Integer Name=\"" + name + "\"><Value>1</Value></Integer>";
    }
    nodes += "<Category Name=\"" + category + "\">" + features + "</Category>";
  }
  DescribedCamera camera(nodes);
  TestBrowserWnd window;
  window.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));

  for (const char* row : {"Two99", "Two50"}) {
    window.GetGrid().Select(window.FindRow(row));
    ASSERT_LT(window.GetGrid().FindRow(window.FindRow("One")).top(), 0);
    window.Click("Expand");
    EXPECT_EQ(window.GetGrid().FindRow(window.FindRow("One")).top(), 0) << row;
  }
  window.GetGrid().Select(window.FindRow("Two99"));
  window.Click("Collapse");
  EXPECT_TRUE(window.GetGrid().viewport()->rect().contains(window.GetGrid().FindRow(window.FindRow("One"))));
  EXPECT_TRUE(window.GetGrid().viewport()->rect().contains(window.GetGrid().FindRow(window.FindRow("Two"))));
}

// The application's filter.

TEST(FillingWithAFilter, SelectionThatGoesWithTheRows_IsIgnoredUntilTheNewOnesAreThere) {
  DescribedCamera camera(MakeBrowserNodes());
  TestBrowserWnd* window = nullptr;
  QString description;
  TestBrowserWnd filling([&](KrGenParameter*) {
    EXPECT_EQ(window->GetGrid().GetSelected(), kNoItem);
    description = window->GetDescription().toPlainText();
    return true;
  });
  window = &filling;
  filling.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(filling.ShowModeless(0).IsOK());
  filling.GetGrid().Select(filling.FindRow("Width"));
  ASSERT_TRUE(WaitFor([&] { return filling.GetDescription().toPlainText().startsWith("Columns\n"); }));

  filling.GetVisibilityList().setCurrentIndex(1);

  EXPECT_TRUE(description.startsWith("Columns\n")) << "what was selected before";
  EXPECT_EQ(filling.GetDescription().toPlainText(), "");
}

/// Shows everything, but copies of it cannot be made while memory is short.
struct FilterForWantOfMemory {
  explicit FilterForWantOfMemory(const bool& aIsMemoryShort) : isMemoryShort(&aIsMemoryShort) {}
  FilterForWantOfMemory(const FilterForWantOfMemory& aOther) : isMemoryShort(aOther.isMemoryShort) {
    if (*isMemoryShort)
      throw std::bad_alloc();
  }
  bool operator()(KrGenParameter*) const { return true; }

  const bool* isMemoryShort;
};

TEST(FillingWithAFilter, MemoryThatIsShort_LeavesAnEmptyWindowThatCanBeFilledAgain) {
  DescribedCamera camera(MakeBrowserNodes());
  bool isMemoryShort = false;
  TestBrowserWnd window{FilterForWantOfMemory(isMemoryShort)};
  window.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const KrLogCapture capture;

  isMemoryShort = true;
  window.GetVisibilityList().setCurrentIndex(1);

  EXPECT_EQ(window.GetRows(), "");
  EXPECT_TRUE(window.GetGrid().updatesEnabled());
  const std::vector<KrLogRecord> records = capture.GetRecords();
  EXPECT_TRUE(std::any_of(records.begin(), records.end(),
                          [](const KrLogRecord& aRecord) { return aRecord.level == KrLogLevel::Error; }));
  isMemoryShort = false;
  window.GetVisibilityList().setCurrentIndex(0);
  EXPECT_EQ(window.GetRows(), kBeginnerRows);
}

TEST(FillingWithAFilter, HiddenFeature_IsNotShown) {
  DescribedCamera camera(MakeBrowserNodes());
  std::vector<std::string> asked;
  TestBrowserWnd window([&](KrGenParameter* aParameter) {
    asked.push_back(aParameter->GetName().ToUtf8());
    return aParameter->GetName() != "Gain";
  });
  window.SetGenParameterArray(camera.array.get());

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.GetRows(), "Loose ImageFormatControl[Width Height PixelFormat] AnalogControl[DigitalGainSelector]");
  EXPECT_THAT(asked, testing::ElementsAre("Loose", "Width", "Height", "PixelFormat", "GuruChoice", "Gain",
                                          "DigitalGainSelector"))
      << "those that are visible and implemented, in visible and implemented categories";
}

TEST(FillingWithAFilter, FilterThatClosesTheWindow_LeavesNoRowAndNoWindow) {
  DescribedCamera camera(MakeBrowserNodes());
  int calls = 0;
  TestBrowserWnd* window = nullptr;
  TestBrowserWnd closing([&](KrGenParameter*) {
    ++calls;
    EXPECT_TRUE(window->Close().IsOK());
    return true;
  });
  window = &closing;
  closing.SetGenParameterArray(camera.array.get());

  (void)closing.ShowModeless(0);
  camera.array.reset();
  DeleteWhatIsLeft();

  EXPECT_EQ(closing.GetRows(), "closed");
  EXPECT_EQ(calls, 1) << "nobody is asked for a window that is gone";
}

TEST(FillingWithAFilter, FilterThatClosesTheWindowInALaterFilling_LeavesNoRowAndNoWindow) {
  DescribedCamera camera(MakeBrowserNodes());
  bool closes = false;
  TestBrowserWnd* window = nullptr;
  TestBrowserWnd closing([&](KrGenParameter*) {
    if (closes && window->IsOpen()) {
      EXPECT_TRUE(window->Close().IsOK());
    }
    return true;
  });
  window = &closing;
  closing.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(closing.ShowModeless(0).IsOK());

  closes = true;
  closing.GetVisibilityList().setCurrentIndex(2);
  camera.array.reset();
  DeleteWhatIsLeft();

  EXPECT_EQ(closing.GetRows(), "closed");
}

TEST(FillingWithAFilter, FilterThatDeletesTheWindow_EndsTheFilling) {
  DescribedCamera camera(MakeBrowserNodes());
  int calls = 0;
  std::unique_ptr<TestBrowserWnd> window;
  window = std::make_unique<TestBrowserWnd>([&](KrGenParameter*) {
    ++calls;
    window.reset();
    return true;
  });
  window->SetGenParameterArray(camera.array.get());

  (void)window->ShowModeless(0);
  camera.array.reset();
  DeleteWhatIsLeft();

  EXPECT_EQ(window, nullptr);
  EXPECT_EQ(calls, 1);
}

TEST(FillingWithAFilter, FilterThatSetsAnotherArray_ShowsThatOne) {
  DescribedCamera camera(MakeBrowserNodes());
  DescribedCamera other("<Category Name=\"Root\"><pFeature>Only</pFeature></Category>"
                        "<Integer Name=\"Only\"><Value>1</Value></Integer>");
  TestBrowserWnd* window = nullptr;
  TestBrowserWnd changing([&](KrGenParameter*) {
    window->SetGenParameterArray(other.array.get());
    return true;
  });
  window = &changing;
  changing.SetGenParameterArray(camera.array.get());

  ASSERT_TRUE(changing.ShowModeless(0).IsOK());

  EXPECT_EQ(changing.GetRows(), "Only");
}

// The public class.

TEST(PublicBrowser, OverrideOfIsParameterDisplayed_HidesFeatures) {
  class OnlyWidth : public KrGenBrowserWnd {
  public:
    ~OnlyWidth() override { DeleteWnd(); }
    bool IsParameterDisplayed(KrGenParameter* aParameter) override { return aParameter->GetName() == "Width"; }
  };
  DescribedCamera camera(MakeBrowserNodes());
  OnlyWidth browser;
  browser.SetGenParameterArray(camera.array.get());

  ASSERT_TRUE(browser.ShowModeless(0).IsOK());

  const auto& features = browser.GetWidget()->findChild<PropertiesGrid*>()->GetTree().GetFeatures();
  ASSERT_EQ(features.size(), 1u);
  EXPECT_EQ(features[0]->GetName(), "Width");
}

TEST(PublicBrowser, WithoutOverride_ShowsEveryFeature) {
  KrGenBrowserWnd browser;

  EXPECT_TRUE(browser.IsParameterDisplayed(nullptr));
}

TEST(PublicBrowser, Setters_AreForwarded) {
  DescribedCamera camera(MakeBrowserNodes());
  KrGenBrowserWnd browser;

  EXPECT_TRUE(browser.SetVisibility(KrGenVisibility::Expert).IsOK());
  EXPECT_TRUE(browser.SetRefreshMode(KrGenRefresh::Manual).IsOK());
  KrPropertyList list;
  EXPECT_TRUE(browser.Save(list).IsOK());
  KrGenBrowserWnd other;
  EXPECT_TRUE(other.Load(list).IsOK());

  EXPECT_EQ(other.GetVisibility(), KrGenVisibility::Expert);
  EXPECT_EQ(other.GetRefreshMode(), KrGenRefresh::Manual);
  EXPECT_FALSE(other.HasChanged());
  other.ResetChanged();
  other.Refresh();
}

TEST(PublicBrowser, ChangedFlagAndRefresh_AreForwarded) {
  DescribedCamera camera(MakeBrowserNodes());
  KrGenBrowserWnd browser;
  browser.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(browser.SetRefreshMode(KrGenRefresh::Manual).IsOK());
  ASSERT_TRUE(browser.ShowModeless(0).IsOK());
  auto* const grid = browser.GetWidget()->findChild<PropertiesGrid*>();
  ASSERT_NE(grid, nullptr);
  const auto getWidth = [grid] {
    for (const auto& feature : grid->GetTree().GetFeatures()) {
      if (feature->GetName() == "Width")
        return feature->GetSnapshot().value;
    }
    return KrString("There is no row.");
  };

  grid->SetChanged(true);
  EXPECT_TRUE(browser.HasChanged());
  browser.ResetChanged();
  EXPECT_FALSE(browser.HasChanged());

  EXPECT_EQ(getWidth(), "0 ");
  camera.Poke(kWidthAddress, {65, 0, 0, 0});
  browser.Refresh();
  EXPECT_EQ(getWidth(), "65 ");
}

} // namespace krgui
