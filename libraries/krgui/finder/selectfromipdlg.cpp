#include "finder/selectfromipdlg.h"

#include "res/templates.h"

namespace krgui {

SelectFromIPDlg::SelectFromIPDlg(QWidget* aOwner) : ModalDialog(kSelectFromIPTemplateID, aOwner) {}

SelectFromIPDlg::~SelectFromIPDlg() = default;

} // namespace krgui
