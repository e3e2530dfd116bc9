#pragma once
// Waits for work in the background that may take long: how far it has come, and a button that ends it. What is done is
// left to who shows it.

#include "krbase/krresult.h"
#include "krgenicam/krgensettings.h"
#include "platform/backgroundtask.h"
#include "platform/modalloop.h"

#include <QTimer>

#include <atomic>
#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <optional>

class QProgressBar;
class QPushButton;

namespace krgui {

/// Thread: user interface, but for the work. Ownership: a local object of who shows it.
class ProgressDialog final : public ModalLoop {
public:
  /// Done on a thread, told by the progress' result when it is to end.
  using Work = std::function<void(const KrGenProgress& aProgress)>;

  /// How work that is to end before its time comes to its end.
  struct Ending {
    /// Ends what the work waits for; called again and again until the work has ended. None where nothing can be ended.
    std::function<void()> hurry = {};
    /// What cannot be hurried is abandoned: all that it uses is its own.
    BackgroundTask::WhenCancelled whenCancelled = BackgroundTask::WhenCancelled::Wait;
  };

  ProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText);
  ProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText, Ending aEnding);

  /// Shown once the work takes longer than a moment, and then for another one at least. OK when the work is done,
  /// Cancel when the user ended it: both after its end, unless it was abandoned. Gone when the owner went; the same is
  /// true of the work then.
  ModalResult Run(const Work& aWork);

  /// What the result of work is until it has one: work that throws has none.
  static KrResult MakeUnfinished();

private:
  /// What the work's thread and the dialog have in common.
  struct Progress {
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> total = 0;
    std::atomic<bool> isCancelled = false;
    std::promise<void> end;
  };

  void Tick();
  void CountTick();
  void ShowProgress();
  void EndWhenArrived();
  void Hurry() const;
  void OnAccept() override;
  void OnCancel() override;
  void OnEnd() override;

  const Ending mEnding;
  // The dialog's controls, which exist for as long as it runs.
  QProgressBar* mBar = nullptr;
  QPushButton* mCancel = nullptr;
  QTimer mTimer;
  int mMostTicks = 0;                  ///< For how long it waits for the keyboard.
  int mShownTicks = 0;                 ///< For how long the dialog has been on the screen,
  int mActiveTicks = 0;                ///< and has had the keyboard.
  std::optional<ModalResult> mOutcome; ///< Of the work, once it is done.
  std::shared_ptr<Progress> mProgress = std::make_shared<Progress>();
  BackgroundTask mTask;
};

} // namespace krgui
