#include "finder/selectfromipdlg.h"

#include "krsystem/ipv4address.h"
#include "platform/ipaddresscontrol.h"
#include "res/templates.h"

namespace krgui {

namespace {

constexpr int kAddressID = 1125;

} // namespace

SelectFromIPDlg::SelectFromIPDlg(QWidget* aOwner) : ModalDialog(kSelectFromIPTemplateID, aOwner) {}

SelectFromIPDlg::~SelectFromIPDlg() = default;

bool SelectFromIPDlg::OnInitDialog() {
  GetControl<IPAddressControl>(kAddressID)->FocusField(0);
  return false;
}

void SelectFromIPDlg::OnOK() {
  mAddress = krsystem::FormatIPv4(GetControl<IPAddressControl>(kAddressID)->GetAddress());
  EndDialog(ModalResult::OK);
}

} // namespace krgui
