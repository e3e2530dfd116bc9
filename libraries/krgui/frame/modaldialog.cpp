#include "frame/modaldialog.h"

#include "platform/buttonids.h"
#include "res/templates.h"

#include <cstdint>
#include <limits>

namespace krgui {

namespace {

/// Such a dialog is as large as its font makes it.
constexpr QSize kNoMaximum(std::numeric_limits<std::int16_t>::max(), std::numeric_limits<std::int16_t>::max());

} // namespace

ModalDialog::ModalDialog(int aTemplateID, QWidget* aOwner) : ModalLoop(aOwner) {
  const DialogTemplate* dialogTemplate = FindTemplate(aTemplateID);
  Q_ASSERT(dialogTemplate != nullptr);
  DialogWindow& dialog = *GetDialog();
  mControls = std::make_unique<DialogControls>(*dialogTemplate, dialog, kNoMaximum);
  dialog.setFixedSize(mControls->GetTemplateSize());
  dialog.SetButtons(mControls->Get(kOKID), mControls->Get(kCancelID));
  dialog.SetCaption(
      QString::fromUtf8(dialogTemplate->caption.data(), static_cast<qsizetype>(dialogTemplate->caption.size())));
}

ModalDialog::~ModalDialog() = default;

ModalResult ModalDialog::Run() {
  if (GetDialog() == nullptr) {
    return ModalResult::Gone;
  }
  const bool focusesDefault = OnInitDialog();
  if (DialogWindow* dialog = GetDialog(); dialog != nullptr && !HasEnded()) {
    dialog->KeepDefaultButton();
    OnSize(dialog->size());
    if (focusesDefault) {
      dialog->FocusDefaultControl();
    }
  }
  return RunLoop();
}

bool ModalDialog::OnInitDialog() {
  return true;
}

void ModalDialog::OnOK() {
  EndDialog(ModalResult::OK);
}

void ModalDialog::OnCancel() {
  EndDialog(ModalResult::Cancel);
}

void ModalDialog::EndDialog(ModalResult aResult) {
  EndLoop(aResult);
}

void ModalDialog::OnAccept() {
  OnOK();
}

/// The first layout, and whoever gives the dialog another size.
void ModalDialog::OnSize(const QSize& aSize) {
  if (mControls) {
    mControls->Layout(aSize);
  }
}

QWidget* ModalDialog::FindControl(int aID) const {
  return GetDialog() == nullptr ? nullptr : mControls->Get(aID);
}

} // namespace krgui
