#pragma once
// The dialog in which the user types the address of a device that discovery does not see. Whether anybody answers
// there is left to the finder.

#include "frame/modaldialog.h"
#include "krbase/krstring.h"

#include <cstdint>

namespace krgui {

/// The dialog "Select From IP Address".
class SelectFromIPDlg final : public ModalDialog {
public:
  /// aOffered, the first field in its most significant byte, is in the fields at first; 0 leaves them empty.
  explicit SelectFromIPDlg(QWidget* aOwner, std::uint32_t aOffered = 0);
  ~SelectFromIPDlg() override;

  /// The address as "a.b.c.d", fields left empty as 0; empty until the dialog ended with OK.
  const KrString& GetAddress() const { return mAddress; }

private:
  bool OnInitDialog() override;
  void OnOK() override;

  const std::uint32_t mOffered;
  KrString mAddress;
};

} // namespace krgui
