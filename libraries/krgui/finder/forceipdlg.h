#pragma once
// The dialog that gives a device on the network another IP configuration, so that this host can reach it. Which values
// are doubtful and which are refused is decided by the rules of logic/finder/ipcheck.h, sending by KrDevice's classes.

#include "frame/modaldialog.h"
#include "krbase/krresult.h"
#include "logic/finder/ipcheck.h"
#include "platform/backgroundtask.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class KrDeviceInfo;
class KrNetworkAdapter;
class KrSystem;

namespace krgui {

class ErrorProvider;
class IPAddressControl;

/// The dialog "Set IP Address". Run() gives OK only after a configuration was sent, and Cancel at once for a device
/// that has no address.
///
/// Ownership: borrows the system, one of its adapters, and one of its devices, of GigE Vision or of the older protocol.
class ForceIPDlg final : public ModalDialog {
public:
  ForceIPDlg(KrSystem& aSystem, const KrNetworkAdapter& aAdapter, const KrDeviceInfo& aDevice, QWidget* aOwner);
  ~ForceIPDlg() override;

private:
  struct DeviceKind;

  /// Null for devices that have no address.
  static const DeviceKind* FindKind(const KrDeviceInfo& aDevice);

  bool OnInitDialog() override;
  void OnOK() override;
  void OnCancel() override;
  void OnEnd() override;

  void Connect();
  /// The user chose one of the adapter's addresses: the device gets a place in its subnet.
  void ChooseAddress(std::size_t aIndex);
  IPValues ReadValues() const;
  /// The addresses of the system's other devices, those with another MAC address.
  std::vector<std::uint32_t> ListTakenAddresses() const;
  /// The live check, with its marks; whether any value is doubtful.
  bool Check();
  void ShowError(int aControlID, ErrorProvider& aIndicator, const KrString& aError);
  /// Sends the configuration, which takes up to about two seconds, and ends the dialog then. Is not waited for when the
  /// owner window ends first.
  void Send(const IPValues& aValues);

  void Propose();
  void OnProposed(const KrResult& aResult, const KrString& aAddress, const QString& aTextBefore);
  void EndProposing();

  KrSystem& mSystem;
  const KrNetworkAdapter& mAdapter;
  const KrDeviceInfo& mDevice;
  const DeviceKind* const mKind;
  // They belong to their controls.
  ErrorProvider* const mAddressError;
  ErrorProvider* const mMaskError;
  ErrorProvider* const mGatewayError;
  std::size_t mChosen = 0; ///< Which of the adapter's addresses.
  BackgroundTask mSending{BackgroundTask::WhenCancelled::Abandon};
  BackgroundTask mProposing;
};

} // namespace krgui
