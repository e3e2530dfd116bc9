#include "serial/baudrateselectiondlg.h"

#include "platform/toqstring.h"
#include "res/templates.h"
#include "serial/serialbridgeids.h"

#include <QComboBox>

namespace krgui {

BaudRateSelectionDlg::BaudRateSelectionDlg(QWidget* aOwner) : ModalDialog(kBaudRateSelectionTemplateID, aOwner) {}

BaudRateSelectionDlg::~BaudRateSelectionDlg() = default;

bool BaudRateSelectionDlg::OnInitDialog() {
  auto& list = *GetControl<QComboBox>(bridgeid::kDeviceBaudRate);
  list.setAccessibleName(QStringLiteral("Baud rate of the device serial port"));
  for (const std::uint32_t rate : kHardCodedBaudRates)
    list.addItem(ToQString(FormatBaudRate(rate)), rate);
  list.setCurrentIndex(list.findData(mBaudRate));
  return true;
}

void BaudRateSelectionDlg::OnOK() {
  mBaudRate = GetControl<QComboBox>(bridgeid::kDeviceBaudRate)->currentData().toUInt();
  EndDialog(ModalResult::OK);
}

} // namespace krgui
