#pragma once
// The serial bridge manager's implementation window: which port of a device is bridged, and how. The bridges and their
// settings are SerialBridgeList's, the controls are found, filled and laid out by BridgeControls.

#include "frame/tabledwnd.h"
#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"
#include "logic/serial/serialbridgelist.h"

#include <cstdint>
#include <memory>
#include <vector>

class IKrDeviceAdapter;
class QObject;

namespace krgui {

class BridgeControls;

class SerialBridgeManagerWnd : public TabledWnd {
public:
  SerialBridgeManagerWnd();
  ~SerialBridgeManagerWnd() override;

  KrResult SetDevice(IKrDeviceAdapter* aAdapter);
  void SetCreatingPorts(bool aIsOn);
  KrResult Load(const KrPropertyList& aProperties, KrStringList& aErrors);
  KrResult Save(KrPropertyList& aProperties) const;
  static KrResult Recover();

protected:
  bool OnInitDialog() override;
  void OnSize(const QSize& aSize) override;
  /// The Enter key does nothing.
  void OnOK() override;
  void OnDestroy() override;

private:
  /// What a message box or dialog is about. While it is open the window may be closed or deleted, and the bridges made
  /// anew, for this device or another one.
  struct Moment {
    std::weak_ptr<const bool> opening;
    std::weak_ptr<SerialBridgeList> bridges; ///< Ends with this object.
    std::uint64_t generation = 0;
    KrString deviceText;
    KrDeviceSerial port = KrDeviceSerial::Invalid;
    BridgeKind kind = BridgeKind::None;
    KrString comPort;

    /// The bridge of the same port of the same device, if it is set up in the same way; it may have been made anew.
    /// Null otherwise.
    SerialBridge* FindBridge() const;
    /// The bridge that it was, of a window that is still open; null otherwise.
    SerialBridge* FindShownBridge() const;
  };

  Moment GetMoment(const SerialBridge& aBridge) const;
  SerialBridge* GetSelectedBridge() const;
  /// The numbers of the host's ports that bridges have, also of those that are away.
  std::vector<std::uint32_t> FindBridgedPorts() const;

  void WireControls();
  void Refresh();
  void Tick();
  void ShowSelectedPort();
  void ShowCOMPort(const SerialBridge& aBridge);
  void ShowSelectedCOMPort();
  void ShowKind(const SerialBridge& aBridge);
  void ShowState();

  void ChooseKind(BridgeKind aKind);
  bool StartCameraLink(SerialBridge& aBridge);
  void AskForBaudRate(SerialBridge& aBridge);
  void TellEnd(KrDeviceSerial aPort, const KrString& aWhat);
  void ChooseCOMPort();
  bool StartCOMPort(SerialBridge& aBridge, const KrString& aName);
  void Configure();

  /// Shared with nobody; a weak pointer to it tells of this object's end.
  const std::shared_ptr<SerialBridgeList> mBridges = std::make_shared<SerialBridgeList>();

  // What follows is null while the window is not open.
  std::unique_ptr<BridgeControls> mControls;
  /// What the controls and the timer call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  std::shared_ptr<const bool> mOpening; ///< Expires with the opening.
};

} // namespace krgui
