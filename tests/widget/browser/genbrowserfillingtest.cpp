// Which rows the feature browser's window shows, and when it fills them anew.

#include "browserfixture.h"

#include "krgui/krgenbrowserwnd.h"

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

TEST_F(Filling, ChoiceInTheVisibilityList_IsStoredAndFillsAnew) {
  Open();

  mWindow.GetVisibilityList().setCurrentIndex(1);
  EXPECT_EQ(mWindow.GetRows(), kExpertRows);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Expert);

  mWindow.GetVisibilityList().setCurrentIndex(2);
  EXPECT_EQ(mWindow.GetRows(), kGuruRows);
  EXPECT_EQ(mWindow.GetVisibility(), KrGenVisibility::Guru);
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

// The application's filter.

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

} // namespace krgui
