#pragma once
// The dialog that gives a device on the network another IP configuration, so that this host can reach it. Which values
// are doubtful and which are refused is decided by the rules of logic/finder/ipcheck.h, sending by KrDevice's classes.

#include "frame/modaldialog.h"

class KrDeviceInfo;
class KrNetworkAdapter;
class KrSystem;

namespace krgui {

/// The dialog "Set IP Address". Run() gives OK only after a configuration was sent.
///
/// Ownership: borrows the system, one of its adapters, and one of its devices, of GigE Vision or of the older protocol.
class ForceIPDlg final : public ModalDialog {
public:
  ForceIPDlg(KrSystem& aSystem, const KrNetworkAdapter& aAdapter, const KrDeviceInfo& aDevice, QWidget* aOwner);
  ~ForceIPDlg() override;

private:
  KrSystem& mSystem;
  const KrNetworkAdapter& mAdapter;
  const KrDeviceInfo& mDevice;
};

} // namespace krgui
