#include "krgui/krdevicefinderwnd.h"
#include "platform/ipaddresscontrol.h"
#include "popups.h"
#include "scene.h"
#include "scenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
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
// Of the dialogs.
constexpr int kAddress = 1038;
constexpr int kMask = 1041;
constexpr int kGateway = 1043;
constexpr int kWantedAddress = 1125;

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

// Before there is anything that devices could be reached by.
void TakeEmptyFinder(PictureBook& aBook) {
  KrDeviceFinderWnd finder;
  const QWidget& window = Show(finder, 800, 480);
  aBook.Save(*finder.GetWidget(), "finder-empty");
  InDialog([&] { Get<QAbstractButton>(window, kDiagnose).click(); },
           [&](QWidget& aDialog) { aBook.Save(aDialog, "finder-diagnosis-empty"); });
}

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
  Focus(Get<QTreeWidget>(window, kTree));
  aBook.Save(*finder.GetWidget(), "finder-foreign");
  InDialog([&] { click(kSetAddress); },
           [&](QWidget& aDialog) {
             aBook.Save(aDialog, "finder-set-address");
             Get<krgui::IPAddressControl>(aDialog, kAddress).SetAddress(0x0A141E28);
             Get<krgui::IPAddressControl>(aDialog, kMask).SetAddress(0xFF00FF00);
             Get<krgui::IPAddressControl>(aDialog, kGateway).SetAddress(0xFFFFFFFF);
             aBook.Save(aDialog, "finder-set-address-refused");
           });
  InDialog([&] { click(kSelectFromAddress); },
           [&](QWidget& aDialog) {
             Get<krgui::IPAddressControl>(aDialog, kWantedAddress).SetAddress(0xC0A84D0B);
             aBook.Save(aDialog, "finder-select-address-typed");
           });
  for (const char* const device : {"SIM-0102", "sim1", "USB"})
    if (FindRow(window, device)) {
      Select(window, device);
      Await("list of a device", [] { return true; });
      aBook.Save(*finder.GetWidget(), QStringLiteral("finder-") + QString::fromLatin1(device).toLower());
    }
  auto& tree = Get<QTreeWidget>(window, kTree);
  SavePopup(aBook, "finder-menu", [&] {
    const QPoint point = tree.visualItemRect(FindRow(window, "10.20.30.40")).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, tree.viewport()->mapToGlobal(point));
    QApplication::sendEvent(tree.viewport(), &event);
  });
  finder.SetPosition(20, 20, 10, 10);
  aBook.Save(*finder.GetWidget(), "finder-small");
}

} // namespace scene
