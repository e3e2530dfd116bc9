#pragma once
// The serial terminal's implementation window: ports, sending, files and the transcript. What bytes look like is
// decided in logic/serial, threads belong to the session, controls are found and enabled by TerminalControls.

#include "frame/tabledwnd.h"
#include "krserial/krdeviceserial.h"
#include "logic/serial/transcriptencoder.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

class IKrDeviceAdapter;
class QObject;
class QTimer;

namespace krgui {

class EnterKey;
class LineSettings;
class TerminalControls;
class TerminalSession;

class SerialTerminalWnd : public TabledWnd {
public:
  SerialTerminalWnd();
  ~SerialTerminalWnd() override;

  /// Of an open window it may show a message box, after which the window may have gone.
  KrResult SetDevice(IKrDeviceAdapter* aAdapter);
  KrDeviceSerial GetSerialPort() const { return mPort; }
  /// As SetDevice.
  KrResult SetSerialPort(KrDeviceSerial aPort);
  /// UTF-16 units that did not reach the transcript, as too much came at once.
  std::uint64_t GetDroppedUnits() const { return mEncoder.GetDroppedUnits(); }

protected:
  bool OnInitDialog() override;
  bool OnMessage(const Message& aMessage) override;
  /// The Enter key sends; it does not end the dialog.
  void OnOK() override;
  void OnDestroy() override;

private:
  /// What may have changed while a message box was open.
  struct Moment {
    std::weak_ptr<const bool> opening;
    std::uint64_t portOpenings = 0;
  };

  Moment GetMoment() const { return {mOpening, mPortOpenings}; }
  /// Of no object: this one may have gone with the window.
  static bool IsWindowGone(const Moment& aMoment) { return aMoment.opening.expired(); }
  bool IsPortOpen() const;

  void WireControls();
  void WirePortControls();
  void WireSending();
  void WireTranscript();
  void FillPortList();
  /// Shows a message box where it fails: the window may have gone afterwards.
  void OpenPort();
  void ClosePort();
  void ShowRest();
  void PickPort();
  void UpdateControls();
  void SwitchOther();
  void ShowPortState(const QString& aStatus, const QString& aHint);

  void Send();
  std::vector<std::uint8_t> MakeMessage(const Moment& aMoment, bool& aIsGood);
  bool ShowSendError(std::u16string_view aText, const Moment& aMoment);
  void ChooseFile();
  void SendFile();
  void ShowProgress();
  void ShowTransferMessage(const Message& aMessage);
  void ShowTransferFailure(std::int64_t aNumber);
  void EndTransfer();
  void Save();

  IKrDeviceAdapter* mAdapter = nullptr;
  KrDeviceSerial mPort = KrDeviceSerial::Serial0;
  TranscriptEncoder mEncoder;
  /// The state of "Echo sent data", for the thread that sends a file, too.
  const std::shared_ptr<std::atomic<bool>> mEcho = std::make_shared<std::atomic<bool>>(false);
  bool mIsLoopbackOn = false; ///< As the device's parameter was read last.
  int mTransfers = 0;         ///< Begun, and not yet told to have ended.
  std::uint64_t mPortOpenings = 0;

  // What follows is null while the window is not open.
  std::unique_ptr<TerminalSession> mSession;
  std::unique_ptr<TerminalControls> mControls;
  std::unique_ptr<LineSettings> mLineSettings;
  std::unique_ptr<EnterKey> mEnterKey;
  /// What the controls call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  QTimer* mProgressTimer = nullptr;     ///< Owned by mConnections.
  std::shared_ptr<const bool> mOpening; ///< Expires with the opening.
};

} // namespace krgui
