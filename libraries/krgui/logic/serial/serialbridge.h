#pragma once
// One serial port of a device and the way in which the host reaches it: none, by a COM port, or by the Camera Link
// serial functions. Moving the bytes is left to KrSerialBridge; which ports there are, to SerialBridgeList.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"
#include "krserial/krserialbridge.h"
#include "krserial/krserialportconfiguration.h"
#include "logic/serial/baudrates.h"
#include "logic/serial/bridgekind.h"

#include <array>
#include <cstdint>
#include <memory>

class IKrDeviceAdapter;

namespace krgui {

/// Thread: one at a time. Ownership: owns its KrSerialBridge, which is there exactly while the kind is not None;
/// borrows the adapter for as long as it lives.
class SerialBridge {
public:
  explicit SerialBridge(IKrDeviceAdapter* aAdapter);
  ~SerialBridge();
  SerialBridge(const SerialBridge&) = delete;
  SerialBridge& operator=(const SerialBridge&) = delete;

  KrDeviceSerial GetPort() const { return mPort; }
  void SetPort(KrDeviceSerial aPort) { mPort = aPort; }
  /// Whether COM ports that the host lacks are made; from the next start on.
  void SetCreatingPorts(bool aIsOn) { mIsCreatingPorts = aIsOn; }

  BridgeKind GetKind() const { return mKind; }
  /// Another kind ends what the bridge does; the same one does nothing.
  void SetKind(BridgeKind aKind);

  /// 0 without a bridge.
  std::uint32_t GetBaudRate() const;
  /// What the Camera Link functions show; empty for other kinds.
  KrString GetName() const;
  /// The device's port, for example "Serial0".
  KrString GetPortName() const;
  /// The host's port, for example "COM3"; empty without one.
  KrString GetCOMPort() const;
  /// A default one without a COM port.
  KrSerialPortConfiguration GetConfiguration() const;
  /// "115200 baud, even parity, 8 bits, 1 stop bit"; "Not selected" without a COM port.
  KrString GetDescription() const;

  /// Of kind COMPort; others return OK. A link that runs is ended before, and its configuration taken over.
  KrResult StartCOMPort(const KrString& aCOMPort);
  /// Of kind CameraLinkDLL; others return OK. Without a device port the name alone is published.
  KrResult StartCLDLL(const KrString& aName, bool aIsWithoutDevicePort);
  /// Of kind COMPort; others return OK.
  KrResult SetConfiguration(const KrSerialPortConfiguration& aConfiguration);
  /// WrongState without a bridge.
  KrResult SetHardCodedBaudRate(std::uint32_t aBaudRate);
  void ResetStatistics();
  /// The user is being asked for the baud rate that the device cannot say: until he has said it, the bridge is none to
  /// be saved. Ends with the kind.
  void SetAskingForBaudRate(bool aIsAsking) { mIsAskingForBaudRate = aIsAsking; }
  bool IsAskingForBaudRate() const { return mIsAskingForBaudRate; }

  /// Whether the device's port has told at least one rate that it can have.
  bool AreBaudRatesKnown() const { return mAreBaudRatesKnown; }
  /// Which of kBaudRates it has told.
  const std::array<bool, kBaudRates.size()>& GetSupportedBaudRates() const { return mSupportedBaudRates; }
  /// Null without a bridge; valid until the kind or the COM port changes.
  const KrSerialBridge* GetBridge() const { return mBridge.get(); }

  /// Takes the settings of the kind that is set, and starts a COM port's link at once. False, with a line for the user,
  /// at the first failure; the link then stays as it is.
  bool Load(const KrPropertyList& aProperties, KrStringList& aErrors);
  /// Adds the settings of the kind that is set.
  void Save(KrPropertyList& aProperties) const;

private:
  bool LoadCOMPort(const KrPropertyList& aProperties, KrStringList& aErrors);
  bool LoadCLDLL(const KrPropertyList& aProperties, KrStringList& aErrors);
  bool Fail(KrStringList& aErrors, const KrString& aReason) const;
  void RefreshSupportedBaudRates();

  BridgeKind mKind = BridgeKind::None;
  IKrDeviceAdapter* mAdapter;
  std::unique_ptr<KrSerialBridge> mBridge;
  KrDeviceSerial mPort = KrDeviceSerial::Invalid;
  bool mIsCreatingPorts = false;
  bool mAreBaudRatesKnown = false;
  bool mIsAskingForBaudRate = false;
  std::array<bool, kBaudRates.size()> mSupportedBaudRates = {};
};

} // namespace krgui
