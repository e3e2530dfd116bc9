// The feature browser's context menu: saving and restoring features where the window goes on, ends or gets another
// array meanwhile.

#include "browser/genbrowserwnd.h"
#include "browser/propertiesgrid.h"
#include "settingsactionsfixture.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>

namespace krgui {
namespace {

using testing::HasSubstr;

const std::string kTree =
    "<Category Name=\"Root\"><pFeature>Width</pFeature><pFeature>Height</pFeature></Category>" + kNodes;

class BrowserMenu : public testing::Test {
protected:
  void SetUp() override {
    window->SetRefreshMode(KrGenRefresh::Manual);
    window->SetGenParameterArray(camera.array.get());
    ASSERT_TRUE(window->ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitActive(window->GetWidget()));
  }
  /// Opens the menu and chooses an item.
  void Choose(const char* aText) {
    auto& grid = *window->GetWidget()->findChild<PropertiesGrid*>();
    const QPoint point = grid.FindRow(grid.GetTree().GetFeatures().front()->GetItem()).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, grid.viewport()->mapToGlobal(point));
    QApplication::sendEvent(grid.viewport(), &event);
    auto* menu = window->GetWidget()->findChild<QMenu*>("menu1509");
    ASSERT_NE(menu, nullptr);
    for (QAction* action : menu->actions()) {
      if (action->text().remove(QLatin1Char('&')) == QLatin1String(aText))
        return action->trigger();
    }
    ADD_FAILURE() << "There is no item " << aText;
  }
  std::string WriteFile(const std::string& aLines) {
    const std::string file = folder.GetFile("settings.txt");
    TemporaryFolder::WriteFile(file, kHeader + aLines);
    return file;
  }
  std::string GetWidth() const {
    const auto& grid = *window->GetWidget()->findChild<PropertiesGrid*>();
    return grid.GetTree().GetFeatures().front()->GetSnapshot().value.ToUtf8();
  }

  TemporaryFolder folder;
  DescribedCamera camera{kTree};
  std::unique_ptr<GenBrowserWnd> window = std::make_unique<GenBrowserWnd>(FeatureFilter());
};

TEST_F(BrowserMenu, SaveFeatures_WritesTheChosenFile) {
  const std::string file = folder.GetFile("new.txt");
  Answers answers({{"settingsfile", ChooseFile(file)}});

  Choose("Save Features...");

  EXPECT_THAT(TemporaryFolder::ReadFile(file), HasSubstr("Width\t0\n"));
  EXPECT_FALSE(window->HasChanged());
}

TEST_F(BrowserMenu, RestoreFeatures_ShowsWhatIsNewAndCountsAsChanged) {
  const std::string file = WriteFile("Width\t7\n");
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingscomparison", Click("Restore")}});

  Choose("Restore Features...");

  EXPECT_TRUE(window->HasChanged());
  EXPECT_EQ(GetWidth(), "7 ");
}

TEST_F(BrowserMenu, WindowOpenedAnewWhileRestoringTellsItsProblems_CountsAsChanged) {
  const std::string file = WriteFile("Width\t7\nSmall\t99\n");
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", Click("Restore")},
                   {"settingsproblems", [this](QWidget&) {
                      EXPECT_TRUE(window->Close().IsOK());
                      EXPECT_TRUE(window->ShowModeless(0).IsOK());
                    }}});

  Choose("Restore Features...");

  EXPECT_TRUE(window->IsOpen());
  EXPECT_TRUE(window->HasChanged());
}

TEST_F(BrowserMenu, RestoreFeatures_CancelledBeforeAnythingIsWritten_CountsAsUnchanged) {
  const std::string file = WriteFile("Width\t7\n");
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingscomparison", PressEscape()}});

  Choose("Restore Features...");

  EXPECT_FALSE(window->HasChanged());
  EXPECT_EQ(GetWidth(), "0 ");
}

TEST_F(BrowserMenu, ArrayTakenAwayWhileADialogIsOpen_EndsTheDialog) {
  Answers answers({{"settingsfile", [this](QWidget&) {
                      window->SetGenParameterArray(nullptr);
                      camera.array.reset();
                    }}});

  Choose("Restore Features...");

  EXPECT_TRUE(window->IsOpen());
  EXPECT_FALSE(window->HasChanged());
}

TEST_F(BrowserMenu, WindowClosedWhileADialogIsOpen_EndsTheDialog) {
  Answers answers({{"settingsfile", [this](QWidget&) { EXPECT_TRUE(window->Close().IsOK()); }}});

  Choose("Save Features...");

  EXPECT_FALSE(window->IsOpen());
}

TEST_F(BrowserMenu, WindowDeletedWhileADialogIsOpen_EndsTheDialog) {
  Answers answers({{"settingsfile", [this](QWidget&) { window.reset(); }}});

  Choose("Restore Features...");

  EXPECT_EQ(window, nullptr);
}

} // namespace
} // namespace krgui
