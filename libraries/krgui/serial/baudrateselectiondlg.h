#pragma once
// The dialog in which the user says the speed of a device's port that cannot tell it. What it is used for is left to
// the manager.

#include "frame/modaldialog.h"
#include "logic/serial/baudrates.h"

#include <cstdint>

namespace krgui {

/// The dialog "Device Serial Port Baud Rate".
class BaudRateSelectionDlg final : public ModalDialog {
public:
  explicit BaudRateSelectionDlg(QWidget* aOwner);
  ~BaudRateSelectionDlg() override;

  /// 9600 until the dialog ended with OK.
  std::uint32_t GetBaudRate() const { return mBaudRate; }

private:
  bool OnInitDialog() override;
  void OnOK() override;

  std::uint32_t mBaudRate = kHardCodedBaudRates[0];
};

} // namespace krgui
