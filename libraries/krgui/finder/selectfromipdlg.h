#pragma once
// The dialog in which the user types the address of a device that discovery does not see. Whether anybody answers
// there is left to the finder.

#include "frame/modaldialog.h"
#include "krbase/krstring.h"

namespace krgui {

/// The dialog "Select From IP Address".
class SelectFromIPDlg final : public ModalDialog {
public:
  explicit SelectFromIPDlg(QWidget* aOwner);
  ~SelectFromIPDlg() override;

  /// The address as "a.b.c.d", fields left empty as 0; empty until the dialog ended with OK.
  const KrString& GetAddress() const { return mAddress; }

private:
  bool OnInitDialog() override;
  void OnOK() override;

  KrString mAddress;
};

} // namespace krgui
