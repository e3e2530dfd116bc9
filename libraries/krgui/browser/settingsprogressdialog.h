#pragma once
// Waits for settings that are read or written in the background: how far it has come, and a button that ends it. What
// is done is left to who shows it.

#include "krgenicam/krgensettings.h"
#include "platform/backgroundtask.h"
#include "platform/modalloop.h"

#include <QTimer>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>

class QProgressBar;
class QPushButton;

namespace krgui {

/// Thread: user interface, but for the work. Ownership: a local object of who shows it.
class SettingsProgressDialog final : public ModalLoop {
public:
  /// Done on a thread, told by the progress' result when it is to end.
  using Work = std::function<void(const KrGenProgress& aProgress)>;

  SettingsProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText);

  /// Shown once the work takes longer than a moment. OK when the work is done, Cancel when the user ended it: both
  /// after its end. Gone when the owner went; the work has ended then, too.
  ModalResult Run(const Work& aWork);

private:
  /// What the work's thread and the dialog have in common.
  struct Progress {
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> total = 0;
    std::atomic<bool> isCancelled = false;
  };

  void ShowProgress();
  void OnAccept() override;
  void OnCancel() override;
  void OnEnd() override;

  // The dialog's controls, which exist for as long as it runs.
  QProgressBar* mBar = nullptr;
  QPushButton* mCancel = nullptr;
  QTimer mTimer;
  std::shared_ptr<Progress> mProgress = std::make_shared<Progress>();
  BackgroundTask mTask;
};

} // namespace krgui
