#include "browser/settingsowner.h"

namespace krgui {

SettingsOwner::SettingsOwner(QWidget* aOwner, const std::stop_token& aEnd)
    : mWidget(new DialogWindow(*this, DialogWindow::Style::Child, aOwner)), mEnd(aEnd, [this] { End(); }) {
  if (mWidget && aOwner)
    mWidget->setGeometry(aOwner->rect());
}

SettingsOwner::~SettingsOwner() {
  End();
}

/// What is shown belongs to the widget, and its loops end with it.
void SettingsOwner::End() {
  if (DialogWindow* const widget = mWidget) {
    widget->Detach();
    delete widget;
  }
}

void SettingsOwner::OnDialogParentEnd() {
  End();
}

} // namespace krgui
