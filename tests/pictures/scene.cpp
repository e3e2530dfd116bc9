#include "scene.h"

#include "browser/propertiesgrid.h"
#include "duringmodalloop.h"
#include "krsystem/krsystem.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>

#include <algorithm>
#include <exception>

namespace scene {

void Require(const KrResult& aResult) {
  if (!aResult.IsOK())
    throw std::runtime_error(aResult.GetDescription().ToUtf8());
}

std::unique_ptr<KrDevice> OpenDevice(const KrString& aName) {
  KrSystem system;
  Require(system.Find());
  for (std::size_t index = 0; index < system.GetDeviceCount(); ++index) {
    const KrDeviceInfo& info = *system.GetDeviceInfo(index);
    if (info.GetUserDefinedName() != aName)
      continue;
    std::unique_ptr<KrDevice> device;
    Require(KrDevice::Open(info, KrDeviceAccess::Control, device));
    return device;
  }
  throw std::runtime_error("The lab has no device " + aName.ToUtf8() + ".");
}

QWidget& Show(KrWnd& aWindow, int aWidth, int aHeight) {
  aWindow.SetPosition(20, 20, aWidth, aHeight);
  Require(aWindow.ShowModeless(0));
  QWidget* const widget = aWindow.GetWidget();
  if (!widget || !krtest::AwaitActive(widget))
    throw std::runtime_error("The window did not come to the screen.");
  return *widget;
}

void Pick(const QWidget& aWindow, int aList, const QString& aEntry) {
  auto& list = Get<QComboBox>(aWindow, aList);
  const int index = list.findText(aEntry, Qt::MatchStartsWith);
  if (index < 0)
    throw std::runtime_error("There is no entry " + aEntry.toStdString() + ".");
  list.setCurrentIndex(index);
  Q_EMIT list.activated(index);
}

void AwaitFeatures(const QWidget& aWindow) {
  const auto* const grid = aWindow.findChild<krgui::PropertiesGrid*>();
  Await("feature with its value", [&] {
    return grid && !grid->GetTree().GetFeatures().empty() &&
           std::ranges::all_of(grid->GetTree().GetFeatures(), [](const auto& aFeature) { return aFeature->IsRead(); });
  });
}

void Focus(QWidget& aControl) {
  aControl.window()->activateWindow();
  if (!krtest::AwaitActive(aControl.window()))
    throw std::runtime_error("The window did not get the keyboard.");
  aControl.window()->setAttribute(Qt::WA_KeyboardFocusChange); // As the Tab key does.
  aControl.setFocus(Qt::TabFocusReason);
  Await("focus",
        [&aControl] { return aControl.hasFocus() || (aControl.focusProxy() && aControl.focusProxy()->hasFocus()); });
}

void InDialog(const std::function<void()>& aOpen, const std::function<void(QWidget& aDialog)>& aAct) {
  bool hasActed = false;
  std::exception_ptr failure; // Handlers of events are not left by exceptions.
  krgui::DuringNextModalLoop([&](QWidget& aDialog) {
    hasActed = true;
    try {
      aAct(aDialog);
    } catch (...) {
      failure = std::current_exception();
    }
    aDialog.close();
  });
  aOpen();
  if (failure)
    std::rethrow_exception(failure);
  if (!hasActed)
    throw std::runtime_error("No dialog was opened.");
}

} // namespace scene
