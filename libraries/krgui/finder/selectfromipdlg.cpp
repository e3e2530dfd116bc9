#include "finder/selectfromipdlg.h"

#include "krsystem/ipv4address.h"
#include "platform/ipaddresscontrol.h"
#include "res/templates.h"

namespace krgui {

namespace {

constexpr int kAddressID = 1125;

} // namespace

SelectFromIPDlg::SelectFromIPDlg(QWidget* aOwner, std::uint32_t aOffered)
    : ModalDialog(kSelectFromIPTemplateID, aOwner), mOffered(aOffered) {}

SelectFromIPDlg::~SelectFromIPDlg() = default;

bool SelectFromIPDlg::OnInitDialog() {
  auto* const address = GetControl<IPAddressControl>(kAddressID);
  if (mOffered != 0)
    address->SetAddress(mOffered);
  address->FocusField(0);
  return false;
}

void SelectFromIPDlg::OnOK() {
  mAddress = krsystem::FormatIPv4(GetControl<IPAddressControl>(kAddressID)->GetAddress());
  EndDialog(ModalResult::OK);
}

} // namespace krgui
