#pragma once
// What scenes share: devices of the simulated lab, windows that are waited for, controls by their ids. A scene that
// does not come about throws std::runtime_error with what it wanted.

#include "krdevice/krdevice.h"
#include "krgui/krwnd.h"
#include "windowwait.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace scene {

/// Throws what a result says unless it is OK.
void Require(const KrResult& aResult);

/// Handles events until a condition holds.
template <typename Condition>
void Await(const char* aWhat, Condition aCondition) {
  if (!krtest::AwaitCondition(aCondition))
    throw std::runtime_error(std::string("There was no ") + aWhat + ".");
}

/// A device of the lab by its user-defined name, opened with control.
std::unique_ptr<KrDevice> OpenDevice(const KrString& aName);

/// Shows a window in a size and waits until it has the keyboard.
QWidget& Show(KrWnd& aWindow, int aWidth, int aHeight);

/// The control of an id in a window.
template <typename Control = QWidget>
Control& Get(const QWidget& aWindow, int aID) {
  auto* const control = aWindow.findChild<Control*>(QStringLiteral("control%1").arg(aID));
  if (!control)
    throw std::runtime_error("There is no control " + std::to_string(aID) + ".");
  return *control;
}

/// Picks an entry of a list as a user does.
void Pick(const QWidget& aWindow, int aList, const QString& aEntry);

/// Waits until a feature browser in a window has features, and has read all of them.
void AwaitFeatures(const QWidget& aWindow);

/// Lets a window have the keyboard, and a control of it.
void Focus(QWidget& aControl);

/// Does what opens a modal dialog, and acts in that before it is closed.
void InDialog(const std::function<void()>& aOpen, const std::function<void(QWidget& aDialog)>& aAct);

} // namespace scene
