#include "browser/genbrowsercombobox.h"
#include "browser/propertiesgrid.h"
#include "krgui/genbrowsersearchbar.h"
#include "krgui/krgenbrowserwnd.h"
#include "popups.h"
#include "scene.h"
#include "scenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QTest>
#include <QTextEdit>

namespace scene {

namespace {

constexpr int kWidth = 520;
constexpr int kHeight = 620;

QAbstractButton& FindButton(const QWidget& aWindow, const QString& aToolTip) {
  for (auto* const button : aWindow.findChildren<QAbstractButton*>())
    if (button->toolTip() == aToolTip)
      return *button;
  throw std::runtime_error("There is no button " + aToolTip.toStdString() + ".");
}

// Searches as a user does, and goes so many matches on.
void Search(QWidget& aWindow, const QString& aText, int aFurther) {
  auto* const field = aWindow.findChild<QLineEdit*>();
  QWidget* const grid = aWindow.findChild<krgui::PropertiesGrid*>();
  QTest::keyClick(grid, Qt::Key_F, Qt::ControlModifier);
  Await("search field", [&] { return field && field->isVisible() && field->hasFocus(); });
  QTest::keyClicks(field, aText);
  for (int i = 0; i < aFurther; ++i)
    QTest::keyClick(field, Qt::Key_Return);
}

void AwaitDescription(const QWidget& aWindow, const QString& aText) {
  const auto* const pane = aWindow.findChild<QTextEdit*>();
  Await("description", [&] { return pane && pane->toPlainText().contains(aText); });
}

krgui::GridItem FindItem(const krgui::PropertiesGrid& aGrid, const char* aName) {
  for (const auto& feature : aGrid.GetTree().GetFeatures())
    if (feature->GetName() == KrString(aName))
      return feature->GetItem();
  throw std::runtime_error(std::string("There is no feature ") + aName + ".");
}

// Clicks a feature's value as a user does.
void ClickValue(const QWidget& aWindow, const char* aName) {
  auto& grid = *aWindow.findChild<krgui::PropertiesGrid*>();
  grid.Select(FindItem(grid, aName));
  const QRect row = grid.FindRow(FindItem(grid, aName));
  QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(row.right() - 40, row.center().y()));
  AwaitDescription(aWindow, aName);
}

// The same of one that can be edited.
void OpenEditor(const QWidget& aWindow, const char* aName) {
  ClickValue(aWindow, aName);
  const auto& grid = *aWindow.findChild<krgui::PropertiesGrid*>();
  Await("editor", [&] { return grid.GetEdited() == FindItem(grid, aName); });
}

} // namespace

void TakeBrowser(PictureBook& aBook) {
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-mono");
  KrGenParameterArray* array = nullptr;
  Require(device->GetParameters(array));
  KrGenBrowserWnd browser;
  browser.SetGenParameterArray(array);
  Require(browser.SetVisibility(KrGenVisibility::Guru));
  QWidget& window = Show(browser, kWidth, kHeight);
  AwaitFeatures(window);
  Search(window, "trigger", 5);
  AwaitDescription(window, "TriggerDelay");
  aBook.Save(window, "browser-search");
  QTest::keyClick(window.findChild<QLineEdit*>(), Qt::Key_Escape);
  InDialog([&] { FindButton(window, "Properties").click(); },
           [&](QWidget& aDialog) { aBook.Save(aDialog, "browser-options"); });
  Require(browser.Close());

  Require(browser.SetVisibility(KrGenVisibility::Beginner));
  QWidget& again = Show(browser, kWidth, kHeight);
  AwaitFeatures(again);
  Search(again, "ExposureTime", 0);
  AwaitDescription(again, "ExposureTime");
  QTest::keyClick(again.findChild<QLineEdit*>(), Qt::Key_Escape);
  aBook.Save(again, "browser");
}

// The editor of each kind of feature, the lists and tooltips, and the grid without features.
void TakeBrowserEditors(PictureBook& aBook) {
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-mono");
  KrGenBrowserWnd browser;
  QWidget& empty = Show(browser, kWidth, 300);
  aBook.Save(empty, "browser-empty");
  Require(browser.Close());
  KrGenParameterArray* array = nullptr;
  Require(device->GetParameters(array));
  browser.SetGenParameterArray(array);
  Require(browser.SetVisibility(KrGenVisibility::Guru));
  QWidget& window = Show(browser, kWidth, 360);
  AwaitFeatures(window);
  for (const char* const name :
       {"Width", "ExposureTime", "DeviceUserID", "PixelFormat", "ReverseX", "TriggerSoftware", "TriggerSelector"}) {
    OpenEditor(window, name);
    aBook.Save(window, "editor-" + QString::fromLatin1(name).toLower());
  }
  ClickValue(window, "DeviceVendorName");
  aBook.Save(window, "editor-none");
  OpenEditor(window, "PixelFormat");
  SavePopup(aBook, "editor-list", [&window] { window.findChild<krgui::GenBrowserComboBox*>()->showPopup(); });
  krgui::PropertiesGrid& grid = *window.findChild<krgui::PropertiesGrid*>();
  const QRect row = grid.FindRow(FindItem(grid, "PixelFormat"));
  SaveToolTip(aBook, "browser-tooltip", *grid.viewport(), row.center());
  SavePopup(aBook, "browser-menu", [&grid, &row] {
    QContextMenuEvent event(QContextMenuEvent::Mouse, row.topLeft() + QPoint(5, 5),
                            grid.viewport()->mapToGlobal(row.center()));
    QApplication::sendEvent(grid.viewport(), &event);
  });
  Focus(FindButton(window, "Expand"));
  aBook.Save(window, "browser-tool-focus");
  Focus(*window.findChild<QWidget*>("splitter"));
  aBook.Save(window, "browser-splitter-focus");
  Search(window, "there is none", 0);
  aBook.Save(window, "browser-search-none");
  browser.SetPosition(20, 20, 10, 10);
  aBook.Save(window, "browser-small");
}

} // namespace scene
