#include "krgui/krdevicefinderwnd.h"
#include "scene.h"
#include "scenes.h"

#include <QAbstractButton>
#include <QPlainTextEdit>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace scene {

namespace {

constexpr int kSetAddress = 1002;
constexpr int kSelectFromAddress = 1011;
constexpr int kShowUnreachable = 1040;
constexpr int kTree = 1049;
constexpr int kDiagnose = 1139;

QTreeWidgetItem* FindRow(const QWidget& aFinder, const QString& aText) {
  for (QTreeWidgetItemIterator row(&Get<QTreeWidget>(aFinder, kTree)); *row; ++row)
    if ((*row)->text(0).contains(aText))
      return *row;
  return nullptr;
}

void Select(const QWidget& aFinder, const QString& aText) {
  Await("device in the tree", [&] { return FindRow(aFinder, aText) != nullptr; });
  Get<QTreeWidget>(aFinder, kTree).setCurrentItem(FindRow(aFinder, aText));
}

} // namespace

void TakeFinder(PictureBook& aBook) {
  KrDeviceFinderWnd finder;
  const QWidget& window = Show(finder, 800, 480);
  const auto click = [&window](int aButton) { Get<QAbstractButton>(window, aButton).click(); };
  Await("device behind the last interface", [&] { return FindRow(window, "SIM-0102") != nullptr; });
  Select(window, "192.168.77.11");
  aBook.Save(*finder.GetWidget(), "finder");

  InDialog([&] { click(kDiagnose); },
           [&](QWidget& aDialog) {
             const auto* const text = aDialog.findChild<QPlainTextEdit*>();
             Await("diagnosis", [&] { return text && text->toPlainText().contains("sim2"); });
             aBook.Save(aDialog, "finder-diagnosis");
           });
  InDialog([&] { click(kSelectFromAddress); }, [&](QWidget& aDialog) { aBook.Save(aDialog, "finder-select-address"); });
  click(kShowUnreachable);
  Select(window, "10.20.30.40");
  Await("way to set an address", [&] { return Get(window, kSetAddress).isEnabled(); });
  InDialog([&] { click(kSetAddress); }, [&](QWidget& aDialog) { aBook.Save(aDialog, "finder-set-address"); });
}

} // namespace scene
