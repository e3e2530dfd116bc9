#pragma once
// The base of dialogs inside a window: made from a template, run in a modal loop, ended with OK or Cancel. A derived
// dialog fills its controls and says what OK does.

#include "platform/dialogbuilder.h"
#include "platform/modalloop.h"

#include <memory>

namespace krgui {

/// A modal dialog from a template.
///
/// Thread: user interface. Ownership: a local object of the function that shows it, as ModalLoop.
///
///     ForceIPDlg dialog(system, adapter, device, GetWidget());
///     const ModalResult result = dialog.Run();
///     if (result == ModalResult::Gone)
///       return; // This window may be gone, too.
class ModalDialog : public ModalLoop {
public:
  /// aOwner: the window that the dialog belongs to, is centred on, and ends with; null for none.
  ModalDialog(int aTemplateID, QWidget* aOwner);
  virtual ~ModalDialog();

  /// Shows the dialog and returns what it ended with: OK, Cancel or Gone. Once.
  ModalResult Run();

protected:
  /// The controls exist, nothing is on the screen yet. True gives the focus to the default control.
  virtual bool OnInitDialog();
  /// The Enter key or the button with id 1. By default ends the dialog with OK.
  virtual void OnOK();
  /// The Escape key, the button with id 2 or the close box. By default ends the dialog with Cancel.
  void OnCancel() override;

  void EndDialog(ModalResult aResult);
  /// A control by its template id; null when the template lacks it or is of another class, or the dialog is gone.
  template <typename Control>
  Control* GetControl(int aID) const {
    return qobject_cast<Control*>(FindControl(aID));
  }

private:
  void OnAccept() override;
  void OnSize(const QSize& aSize) override;
  QWidget* FindControl(int aID) const;

  std::unique_ptr<DialogControls> mControls;
};

} // namespace krgui
