#include "popups.h"

#include "scene.h"

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace scene {

void SavePopup(PictureBook& aBook, const QString& aName, const std::function<void()>& aOpen) {
  aOpen();
  Await("menu or list", [] {
    const QWidget* const open = QApplication::activePopupWidget();
    return open && open->isVisible();
  });
  QWidget* const popup = QApplication::activePopupWidget();
  aBook.Save(*popup, aName);
  popup->close();
}

void SaveToolTip(PictureBook& aBook, const QString& aName, QWidget& aWidget, const QPoint& aPoint) {
  QHelpEvent asked(QEvent::ToolTip, aPoint, aWidget.mapToGlobal(aPoint));
  QApplication::sendEvent(&aWidget, &asked);
  QWidget* tip = nullptr;
  Await("tooltip", [&tip] {
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::ranges::find_if(
        windows, [](const QWidget* aOne) { return aOne->isVisible() && aOne->inherits("QTipLabel"); });
    tip = found == windows.end() ? nullptr : *found;
    return tip != nullptr;
  });
  aBook.Save(tip->grab().toImage(), aName); // At once: it goes with the next event under it.
  QToolTip::hideText();
  Await("end of the tooltip", [] { return !QToolTip::isVisible(); });
}

} // namespace scene
