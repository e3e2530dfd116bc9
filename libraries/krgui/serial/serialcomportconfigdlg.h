#pragma once
// The dialog in which the user sets the COM port of a serial bridge. Applying it is left to the manager.

#include "frame/modaldialog.h"
#include "krserial/krserialportconfiguration.h"

class KrSerialBridge;

namespace krgui {

/// The dialog "Serial COM Port Configuration". The bridge is asked for its rates while the dialog is made, and may end
/// while it runs.
class SerialCOMPortConfigDlg final : public ModalDialog {
public:
  SerialCOMPortConfigDlg(const KrSerialPortConfiguration& aConfiguration, const KrSerialBridge& aBridge,
                         QWidget* aOwner);
  ~SerialCOMPortConfigDlg() override;

  /// As it was given; once the dialog ended with OK, as it was chosen. What was not chosen is 0xFFFFFFFF.
  const KrSerialPortConfiguration& GetConfiguration() const { return mConfiguration; }

private:
  void OnOK() override;

  KrSerialPortConfiguration mConfiguration;
};

} // namespace krgui
