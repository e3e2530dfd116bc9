#pragma once
// The window on whose behalf settings are saved or restored: everything that is shown meanwhile belongs to it, and goes
// with it, or when what is saved is taken away. What is shown is left to the actions.

#include "platform/dialogwindow.h"

#include <QPointer>

#include <functional>
#include <stop_token>

namespace krgui {

/// Thread: user interface, on which aEnd is requested, too. Ownership: a local object of the action.
class SettingsOwner final : private DialogOwner {
public:
  SettingsOwner(QWidget* aOwner, const std::stop_token& aEnd);
  ~SettingsOwner();
  SettingsOwner(const SettingsOwner&) = delete;
  SettingsOwner& operator=(const SettingsOwner&) = delete;

  bool IsAlive() const { return !mWidget.isNull(); }
  /// An invisible child of the owner, as large, to which dialogs are to belong; null once it is over.
  QWidget* GetWidget() const { return mWidget; }

private:
  void End();

  void OnDialogAccept() override {}
  void OnDialogCancel() override {}
  void OnDialogClose() override {}
  void OnDialogResize(const QSize&) override {}
  void OnDialogExpose() override {}
  void OnDialogDying() override {}
  void OnDialogParentEnd() override;

  QPointer<DialogWindow> mWidget;
  std::stop_callback<std::function<void()>> mEnd;
};

} // namespace krgui
