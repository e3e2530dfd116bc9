// The options of the feature browser's window: its dialog, and how they are kept in property lists.

#include "browserfixture.h"
#include "duringmodalloop.h"

#include "krpersistence/krpropertylist.h"

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::Pair;

/// The options dialog's lists.
struct OptionsDialog {
  explicit OptionsDialog(QWidget& aDialog) : dialog(aDialog) {}
  QComboBox& GetList(int aID) const { return *dialog.findChild<QComboBox*>(QStringLiteral("control%1").arg(aID)); }
  QComboBox& Names() const { return GetList(1141); }
  QComboBox& View() const { return GetList(1143); }
  QComboBox& Mode() const { return GetList(1144); }
  QWidget& ViewLabel() const { return *dialog.findChild<QWidget*>("control1142"); }
  void Press(const char* aText) const {
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
      if (button->text() == QLatin1String(aText))
        return button->click();
    }
    ADD_FAILURE() << "There is no button " << aText;
  }
  QWidget& dialog;
};

QStringList GetTexts(const QComboBox& aList) {
  QStringList texts;
  for (int index = 0; index < aList.count(); ++index)
    texts << aList.itemText(index);
  return texts;
}

std::vector<std::pair<std::string, std::string>> GetContent(const KrPropertyList& aList) {
  std::vector<std::pair<std::string, std::string>> content;
  for (const KrProperty& property : aList)
    content.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
  return content;
}

class Options : public GenBrowserTest {
protected:
  /// Opens the dialog by its button and lets a test act in it.
  void InDialog(std::function<void(const OptionsDialog&)> aAction) {
    bool hasActed = false;
    DuringNextModalLoop([&](QWidget& aDialog) {
      hasActed = true;
      aAction(OptionsDialog(aDialog));
    });
    mWindow.Click("Properties");
    EXPECT_TRUE(hasActed);
  }
};

} // namespace

TEST_F(Options, Dialog_OffersTheChoicesAndShowsWhatIs) {
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  Open();

  InDialog([](const OptionsDialog& aDialog) {
    EXPECT_EQ(aDialog.dialog.windowTitle(), "Browser Options");
    EXPECT_EQ(GetTexts(aDialog.Names()), QStringList({"Feature names", "Display names"}));
    EXPECT_EQ(GetTexts(aDialog.View()), QStringList({"Tree", "Alphabetical list"}));
    EXPECT_EQ(GetTexts(aDialog.Mode()), QStringList({"Polling", "Automatic", "Manual"}));
    EXPECT_EQ(aDialog.Names().currentIndex(), 0);
    EXPECT_EQ(aDialog.View().currentIndex(), 0);
    EXPECT_EQ(aDialog.Mode().currentIndex(), 2);
    EXPECT_EQ(aDialog.Names().accessibleName(), "Names");
    EXPECT_EQ(aDialog.View().accessibleName(), "View");
    EXPECT_EQ(aDialog.Mode().accessibleName(), "Refresh");
    aDialog.Press("Cancel");
  });
}

TEST_F(Options, DisplayNames_DisableTheViewAndSetItBackToTree) {
  Open();

  InDialog([](const OptionsDialog& aDialog) {
    EXPECT_TRUE(aDialog.View().isEnabled());
    EXPECT_TRUE(aDialog.ViewLabel().isEnabled());
    aDialog.View().setCurrentIndex(1);
    aDialog.Names().setCurrentIndex(1);
    EXPECT_FALSE(aDialog.View().isEnabled());
    EXPECT_FALSE(aDialog.ViewLabel().isEnabled());
    EXPECT_EQ(aDialog.View().currentText(), "Tree");
    aDialog.Names().setCurrentIndex(0);
    EXPECT_TRUE(aDialog.View().isEnabled());
    aDialog.Press("Cancel");
  });
}

TEST_F(Options, AlphabeticalList_ShowsAllFeaturesByNameWithoutCategories) {
  Open();

  InDialog([](const OptionsDialog& aDialog) {
    aDialog.View().setCurrentIndex(1);
    aDialog.Press("OK");
  });

  EXPECT_EQ(mWindow.GetRows(), "DigitalGainSelector Gain Height Loose PixelFormat Width");
  EXPECT_FALSE(mWindow.GetButton("Expand").isEnabled());
  EXPECT_FALSE(mWindow.GetButton("Collapse").isEnabled());
}

TEST_F(Options, TreeView_HasExpandAndCollapse) {
  Open();

  EXPECT_TRUE(mWindow.GetButton("Expand").isEnabled());
  EXPECT_TRUE(mWindow.GetButton("Collapse").isEnabled());
}

TEST_F(Options, DisplayNames_AreShownAfterOK) {
  Open();

  InDialog([](const OptionsDialog& aDialog) {
    aDialog.Names().setCurrentIndex(1);
    aDialog.Press("OK");
  });

  EXPECT_TRUE(mWindow.ShowsDisplayNames());
  EXPECT_EQ(mWindow.GetGrid().GetTree().FindFeature(mWindow.FindRow("Width"))->GetShownName(), "Columns");
}

TEST_F(Options, ManualModeByOK_EnablesRefresh) {
  Open();

  InDialog([](const OptionsDialog& aDialog) {
    aDialog.Mode().setCurrentIndex(2);
    aDialog.Press("OK");
  });

  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Manual);
  EXPECT_TRUE(mWindow.GetButton("Refresh").isEnabled());
}

TEST_F(Options, Cancel_ChangesNothing) {
  Open();
  const GridItem row = mWindow.FindRow("Width");

  InDialog([](const OptionsDialog& aDialog) {
    aDialog.View().setCurrentIndex(1);
    aDialog.Mode().setCurrentIndex(0);
    aDialog.Press("Cancel");
  });

  EXPECT_EQ(mWindow.FindRow("Width"), row);
  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Automatic);
}

TEST_F(Options, OKWithoutAnyChange_FillsNothingAnew) {
  Open();
  const GridItem row = mWindow.FindRow("Width");

  InDialog([](const OptionsDialog& aDialog) { aDialog.Press("OK"); });

  EXPECT_EQ(mWindow.FindRow("Width"), row);
}

TEST_F(Options, DisplayNamesAndListByLoad_AreShownInADisabledViewAndKeptByOK) {
  KrPropertyList list;
  list.Add({"View", "AlphabeticalList"});
  mWindow.LoadOptions(list);
  list.Clear();
  list.Add({"Names", "DisplayNames"});
  mWindow.LoadOptions(list);
  Open();
  const GridItem row = mWindow.FindRow("Width");

  InDialog([](const OptionsDialog& aDialog) {
    EXPECT_EQ(aDialog.Names().currentText(), "Display names");
    EXPECT_FALSE(aDialog.View().isEnabled());
    EXPECT_EQ(aDialog.View().currentText(), "Alphabetical list");
    aDialog.Press("OK");
  });

  EXPECT_EQ(mWindow.FindRow("Width"), row) << "a filling would have made another row";
  mWindow.SaveOptions(list);
  EXPECT_THAT(GetContent(list), testing::Contains(Pair("View", "AlphabeticalList")));
}

TEST(OptionsOfAWindow, NamesViewAndRefreshTogether_FillOnce) {
  DescribedCamera camera(MakeBrowserNodes());
  int fillings = 0;
  TestBrowserWnd window([&](KrGenParameter* aParameter) {
    fillings += aParameter->GetName() == "Width" ? 1 : 0;
    return true;
  });
  KrPropertyList list;
  list.Add({"Names", "DisplayNames"});
  window.LoadOptions(list);
  window.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  fillings = 0;
  DuringNextModalLoop([](QWidget& aDialog) {
    const OptionsDialog dialog(aDialog);
    dialog.Names().setCurrentIndex(0);
    dialog.View().setCurrentIndex(1);
    dialog.Mode().setCurrentIndex(2);
    dialog.Press("OK");
  });

  window.Click("Properties");

  EXPECT_EQ(fillings, 1);
  EXPECT_EQ(window.GetRefreshMode(), KrGenRefresh::Manual);
  EXPECT_FALSE(window.ShowsDisplayNames());
  EXPECT_EQ(window.GetRows(), "DigitalGainSelector Gain Height Loose PixelFormat Width");
}

TEST_F(Options, WindowClosedWhileTheDialogIsOpen_TakesTheDialogAlong) {
  Open();

  InDialog([this](const OptionsDialog& aDialog) {
    aDialog.View().setCurrentIndex(1);
    EXPECT_TRUE(mWindow.Close().IsOK());
  });

  EXPECT_EQ(mWindow.GetRows(), "closed");
}

TEST(OptionsOfAWindow, DeletedWhileTheDialogIsOpen_EndsTheDialog) {
  DescribedCamera camera(MakeBrowserNodes());
  auto window = std::make_unique<TestBrowserWnd>();
  window->SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  QAbstractButton& button = window->GetButton("Properties");
  DuringNextModalLoop([&](QWidget&) { window.reset(); });

  QTest::mouseClick(&button, Qt::LeftButton);

  EXPECT_EQ(window, nullptr);
}

// Property lists.

TEST_F(Options, Save_WritesTheFourWordsAndDropsWhatElseTheListHeld) {
  KrPropertyList list;
  list.Add({"Foreign", "1"});

  mWindow.SaveOptions(list);

  EXPECT_THAT(GetContent(list), ElementsAre(Pair("Visibilty", "Beginner"), Pair("Names", "FeatureNames"),
                                            Pair("View", "Tree"), Pair("Refresh", "AutoRefresh")));
}

TEST_F(Options, SaveOfAnOpenWindow_WritesWhatTheUserChose) {
  Open();
  mWindow.GetVisibilityList().setCurrentIndex(2);
  InDialog([](const OptionsDialog& aDialog) {
    aDialog.View().setCurrentIndex(1);
    aDialog.Mode().setCurrentIndex(0);
    aDialog.Press("OK");
  });

  KrPropertyList list;
  mWindow.SaveOptions(list);

  EXPECT_THAT(GetContent(list), ElementsAre(Pair("Visibilty", "Guru"), Pair("Names", "FeatureNames"),
                                            Pair("View", "AlphabeticalList"), Pair("Refresh", "PollingRefresh")));
}

TEST_F(Options, LoadIntoAnOpenWindow_SelectsTheVisibilityAndFillsAnew) {
  KrPropertyList list;
  list.Add({"Visibilty", "Guru"});
  list.Add({"View", "AlphabeticalList"});
  list.Add({"Refresh", "ManualRefresh"});
  Open();

  mWindow.LoadOptions(list);

  EXPECT_EQ(mWindow.GetVisibilityList().currentText(), "Guru");
  EXPECT_EQ(mWindow.GetRows(), "BlackLevel DigitalGainSelector Gain GainAuto GuruChoice Height InGuruCategory Loose "
                               "PixelFormat Width");
  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Manual);
  EXPECT_TRUE(mWindow.GetButton("Refresh").isEnabled());
}

TEST_F(Options, LoadOfDisplayNamesWithAList_KeepsTheCurrentView) {
  KrPropertyList list;
  list.Add({"Names", "DisplayNames"});
  list.Add({"View", "AlphabeticalList"});
  Open();

  mWindow.LoadOptions(list);

  EXPECT_TRUE(mWindow.ShowsDisplayNames());
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows) << "still a tree";
}

TEST_F(Options, LoadOfAnUnknownRefreshWord_ChoosesAutomatic) {
  KrPropertyList list;
  list.Add({"Refresh", "Polling"});
  mWindow.SetRefreshMode(KrGenRefresh::Manual);

  mWindow.LoadOptions(list);

  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Automatic);
}

TEST_F(Options, LoadOfAnEmptyList_ChangesNoOption) {
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  mWindow.SetVisibility(KrGenVisibility::Guru);
  Open();

  mWindow.LoadOptions({});

  EXPECT_EQ(mWindow.GetRows(), kGuruRows);
  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Manual);
}

TEST_F(Options, LoadOfInvisible_LeavesTheListWithoutSelectionAndShowsBeginners) {
  KrPropertyList list;
  list.Add({"Visibilty", "Invisible"});
  Open();

  mWindow.LoadOptions(list);

  EXPECT_EQ(mWindow.GetVisibilityList().currentIndex(), -1);
  EXPECT_EQ(mWindow.GetRows(), kBeginnerRows);
}

} // namespace krgui
