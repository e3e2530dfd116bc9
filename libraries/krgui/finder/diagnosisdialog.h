#pragma once
// The answer to "Why is my camera not here?": looked for while the dialog is open, then text to read, select and copy.
// What counts as a reason is decided by discovery.

#include "platform/backgroundtask.h"
#include "platform/modalloop.h"

class QPlainTextEdit;
class QPushButton;

namespace krgui {

class DiagnosisDialog final : public ModalLoop {
public:
  explicit DiagnosisDialog(QWidget* aOwner);
  ~DiagnosisDialog();

  ModalResult Run();

private:
  void StartLooking();
  void OnAccept() override;
  void OnCancel() override;
  void OnEnd() override;

  // The dialog's controls, which exist for as long as it runs.
  QPlainTextEdit* mText = nullptr;
  QPushButton* mCopy = nullptr;
  BackgroundTask mLooking;
};

} // namespace krgui
