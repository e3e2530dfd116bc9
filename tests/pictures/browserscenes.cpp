#include "browser/propertiesgrid.h"
#include "krgui/genbrowsersearchbar.h"
#include "krgui/krgenbrowserwnd.h"
#include "scene.h"
#include "scenes.h"

#include <QAbstractButton>
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

} // namespace scene
