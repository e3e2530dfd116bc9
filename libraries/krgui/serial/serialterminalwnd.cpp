#include "serial/serialterminalwnd.h"

#include "krdevice/ikrdeviceadapter.h"
#include "logic/serial/terminalmessages.h"
#include "platform/messagebox.h"
#include "platform/onchosen.h"
#include "platform/toqstring.h"
#include "serial/enterkey.h"
#include "serial/linesettings.h"
#include "serial/rollingedit.h"
#include "serial/showresulterror.h"
#include "serial/terminalcontrols.h"
#include "serial/terminalfiles.h"
#include "serial/terminalsession.h"

#include <QPointer>
#include <QSignalBlocker>
#include <QTimer>

#include <utility>

namespace krgui {

namespace {

constexpr std::size_t kTranscriptLimit = 32'768;
/// Faster than the eye follows text; showing each flush of a fast line would take most of a processor.
constexpr int kShowPeriodMs = 33;
/// The transcript shows every so many appends while a file is sent.
constexpr std::int32_t kTransferPace = 10;
constexpr int kOtherTrailerErrors = 2;
constexpr int kProgressPeriodMs = 250;
/// So many echoed bytes fit into the encoder in every format; a fast file brings more before the port's thread asks.
constexpr std::uint32_t kMostEchoedBytes = 2'048;

} // namespace

SerialTerminalWnd::SerialTerminalWnd() : TabledWnd(kSerialTerminalTraits) {
  SetTitle("Device Serial Communication");
}

SerialTerminalWnd::~SerialTerminalWnd() {
  Dispose();
}

bool SerialTerminalWnd::IsPortOpen() const {
  return mSession && mSession->IsOpen();
}

KrResult SerialTerminalWnd::SetDevice(IKrDeviceAdapter* aAdapter) {
  mAdapter = aAdapter;
  if (!mControls)
    return {};
  FillPortList();
  if (!mAdapter) {
    ClosePort();
    ShowPortState("No device", "There is no device to talk to.");
    return {};
  }
  // After a success the window may have gone.
  if (SetSerialPort(mPort).IsOK())
    return {};
  const QVariant first = mControls->GetPortList().itemData(0);
  if (first.isValid() && SetSerialPort(static_cast<KrDeviceSerial>(first.toInt())).IsOK())
    return {};
  mAdapter = nullptr;
  ClosePort();
  ShowPortState("No serial port", "The device has no serial port.");
  return {KrResult::Code::NotSupported, "The device has no serial port."};
}

KrResult SerialTerminalWnd::SetSerialPort(KrDeviceSerial aPort) {
  if (!mAdapter) {
    mPort = aPort;
    return {};
  }
  if (!KrDeviceSerialPort::IsSupported(mAdapter, aPort))
    return {KrResult::Code::NotSupported, KrString("The device has no serial port ") + GetPortName(aPort) + "."};
  mPort = aPort;
  if (!mControls)
    return {};
  QComboBox& list = mControls->GetPortList();
  if (const int entry = list.findData(static_cast<int>(aPort)); entry >= 0) {
    const QSignalBlocker blocker(list);
    list.setCurrentIndex(entry);
  }
  CallHandler([this] { OpenPort(); });
  return {};
}

bool SerialTerminalWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  mOpening = std::make_shared<const bool>(true);
  mTransfers = 0;
  mControls =
      std::make_unique<TerminalControls>([this](int aID) { return GetControl(aID); }, mEncoder.GetDisplayFormat());
  mLineSettings = std::make_unique<LineSettings>(mControls->GetSpeedList(), mControls->GetLoopbackBox());
  mSession = std::make_unique<TerminalSession>(mEncoder, GetQueue());
  mSession->SetLoopbackOn(mIsLoopbackOn);
  mConnections = std::make_unique<QObject>();
  WireControls();
  const Moment moment = GetMoment();
  // What it gives shows in the window.
  (void)SetDevice(mAdapter);
  if (IsWindowGone(moment))
    return false;
  RollingEdit& transcript = mControls->GetTranscript();
  transcript.ClearPending();
  transcript.SetLimit(kTranscriptLimit);
  transcript.SetShowPeriod(kShowPeriodMs);
  mEncoder.ClearTranscript(transcript);
  *mEcho = mControls->GetEchoBox().isChecked();
  UpdateControls();
  // A child takes the focus when it is clicked, not from what surrounds it.
  if (GetShowMode() != Mode::Child && IsPortOpen())
    mControls->GetDataField().setFocus();
  return GetShowMode() != Mode::Child;
}

void SerialTerminalWnd::OnOK() {}

void SerialTerminalWnd::OnDestroy() {
  mOpening.reset();
  mEnterKey.reset();
  mConnections.reset();
  mProgressTimer = nullptr;
  mSession.reset();
  mLineSettings.reset();
  mControls.reset();
  Wnd::OnDestroy();
}

void SerialTerminalWnd::WireControls() {
  WirePortControls();
  WireSending();
  WireTranscript();
}

void SerialTerminalWnd::WirePortControls() {
  QObject* context = mConnections.get();
  QObject::connect(&mControls->GetPortList(), &QComboBox::activated, context,
                   [this] { CallHandler([this] { PickPort(); }); });
  QObject::connect(&mControls->GetSpeedList(), &QComboBox::activated, context, [this] {
    // What the device makes of it is its own business.
    if (mAdapter && IsPortOpen())
      (void)mLineSettings->WriteSpeed(*mAdapter, mPort);
  });
  // Assistive technology changes marks without a click.
  QObject::connect(&mControls->GetLoopbackBox(), &QCheckBox::toggled, context, [this] {
    mControls->GetLoopbackBox().repaint(); // Its mark, before the device is waited for.
    if (mAdapter && IsPortOpen())
      (void)mLineSettings->WriteLoopback(*mAdapter, mPort);
  });
}

void SerialTerminalWnd::WireSending() {
  QObject* context = mConnections.get();
  const auto onClick = [this, context](const QAbstractButton& aButton, void (SerialTerminalWnd::*aHandler)()) {
    QObject::connect(&aButton, &QAbstractButton::clicked, context,
                     [this, aHandler] { CallHandler([this, aHandler] { (this->*aHandler)(); }); });
  };
  onClick(mControls->GetSendButton(), &SerialTerminalWnd::Send);
  onClick(mControls->GetBrowseButton(), &SerialTerminalWnd::ChooseFile);
  onClick(mControls->GetSendFileButton(), &SerialTerminalWnd::SendFile);
  onClick(mControls->GetSaveButton(), &SerialTerminalWnd::Save);
  QObject::connect(&mControls->GetOtherBox(), &QCheckBox::toggled, context, [this] {
    mControls->GetOtherBox().repaint();
    CallHandler([this] { SwitchOther(); });
  });
  QObject::connect(&mControls->GetStopButton(), &QAbstractButton::clicked, context, [this] { mSession->StopFile(); });
  // A line that takes nothing stops the messages of progress.
  mProgressTimer = new QTimer(context);
  QObject::connect(mProgressTimer, &QTimer::timeout, context, [this] { ShowProgress(); });
  mEnterKey = std::make_unique<EnterKey>(*GetWidget(), [this] {
    CallHandler([this] {
      if (!mControls->GetDataField().text().isEmpty())
        mControls->GetSendButton().click();
    });
  });
}

void SerialTerminalWnd::WireTranscript() {
  QObject* context = mConnections.get();
  for (const QRadioButton* button : mControls->GetDisplayFormatButtons())
    OnChosen(*button, *context,
             [this] { mEncoder.SetDisplayFormat(mControls->GetTranscript(), mControls->GetDisplayFormat()); });
  QObject::connect(&mControls->GetEchoBox(), &QCheckBox::toggled, context, [this](bool aIsOn) { *mEcho = aIsOn; });
  QObject::connect(&mControls->GetPauseBox(), &QCheckBox::toggled, context,
                   [this](bool aIsOn) { mControls->GetTranscript().SetPaused(aIsOn); });
  QObject::connect(&mControls->GetClearButton(), &QAbstractButton::clicked, context,
                   [this] { mEncoder.ClearTranscript(mControls->GetTranscript()); });
}

void SerialTerminalWnd::FillPortList() {
  QComboBox& list = mControls->GetPortList();
  const QSignalBlocker blocker(list);
  // What the user would choose from is no more.
  list.hidePopup();
  list.clear();
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    if (mAdapter && KrDeviceSerialPort::IsSupported(mAdapter, port))
      list.addItem(ToQString(GetPortName(port)), static_cast<int>(port));
  }
}

void SerialTerminalWnd::OpenPort() {
  // Closing takes the focus from what cannot be used then.
  const QPointer<QWidget> focus = GetWidget()->window()->focusWidget();
  ClosePort();
  LineSettings::Select(*mAdapter, mPort);
  const KrResult result = mSession->Open(mAdapter, mPort);
  const QString port = ToQString(GetPortName(mPort));
  if (!result.IsOK()) {
    ShowPortState("Not open", port + " is not open. Choose it once more to try again.");
    ShowResultError(*this, "Unable to open port.", result);
    return;
  }
  ++mPortOpenings;
  UpdateControls();
  ShowPortState("Open", {});
  if (focus && focus->isEnabled() && GetWidget()->isAncestorOf(focus))
    focus->setFocus();
}

void SerialTerminalWnd::ClosePort() {
  ++mPortOpenings;
  const bool wasOpen = IsPortOpen();
  mSession->Close();
  // Nobody asks for it any more.
  if (wasOpen)
    ShowRest();
  UpdateControls();
}

/// What has come of bytes and was not flushed yet.
void SerialTerminalWnd::ShowRest() {
  RollingEdit& transcript = mControls->GetTranscript();
  mEncoder.FlushPending(transcript);
  transcript.Flush();
}

void SerialTerminalWnd::PickPort() {
  if (!mAdapter)
    return;
  const QVariant picked = mControls->GetPortList().currentData();
  if (picked.isValid())
    mPort = static_cast<KrDeviceSerial>(picked.toInt());
  OpenPort();
}

void SerialTerminalWnd::UpdateControls() {
  const bool isOpen = IsPortOpen();
  mControls->Enable(isOpen, mTransfers > 0);
  if (const std::optional<bool> loopback = mLineSettings->Refresh(isOpen ? mAdapter : nullptr, mPort)) {
    mIsLoopbackOn = *loopback;
    mSession->SetLoopbackOn(mIsLoopbackOn);
  }
}

/// Who wants other bytes says which ones.
void SerialTerminalWnd::SwitchOther() {
  UpdateControls();
  if (mControls->GetOtherBox().isChecked())
    mControls->GetOtherField().setFocus();
}

void SerialTerminalWnd::ShowPortState(const QString& aStatus, const QString& aHint) {
  mControls->ShowPort(aStatus, IsPortOpen() && !mSession->IsLost());
  mControls->GetTranscript().SetHint(aHint);
}

bool SerialTerminalWnd::OnMessage(const Message& aMessage) {
  if (!mControls)
    return Wnd::OnMessage(aMessage);
  RollingEdit& transcript = mControls->GetTranscript();
  switch (aMessage.number) {
  case kFlushTranscriptMessage:
    mEncoder.FlushPending(transcript);
    return true;
  case kTransferMessage:
    ShowTransferMessage(aMessage);
    return true;
  case kTransferEndedMessage:
    EndTransfer();
    return true;
  case kTranscriptPaceMessage:
    transcript.SetUpdateInterval(1);
    transcript.Flush();
    return true;
  case kTransferProgressMessage:
    ShowProgress();
    return true;
  case kTransferFailedMessage:
    ShowTransferFailure(aMessage.second);
    return true;
  case kPortLostMessage:
    if (mSession->IsLost())
      ShowPortState("Connection lost", "The device does not answer any more.");
    return true;
  case kLineTakesAgainMessage:
    // Else another message may have been refused since.
    if (!mSession->IsSending())
      mControls->ShowBusy(false);
    return true;
  default:
    return Wnd::OnMessage(aMessage);
  }
}

void SerialTerminalWnd::Send() {
  const Moment moment = GetMoment();
  bool isGood = false;
  const std::vector<std::uint8_t> message = MakeMessage(moment, isGood);
  if (!isGood || !IsPortOpen())
    return;
  // Only what goes out is echoed, and before anything can answer it.
  const bool isTaken = mSession->Send(message, [this, &message] {
    if (*mEcho)
      mEncoder.RenderBytes(message.data(), static_cast<std::uint32_t>(message.size()));
  });
  mControls->ShowBusy(!isTaken);
  // What is typed next takes its place, and Enter sends it again.
  if (mControls->GetDataField().hasFocus())
    mControls->GetDataField().selectAll();
}

/// The data with its trailer; no good when the data is not, or when the port is another one after the message boxes.
std::vector<std::uint8_t> SerialTerminalWnd::MakeMessage(const Moment& aMoment, bool& aIsGood) {
  ParsedBytes data = EncodeSendData(mControls->GetDataField().text().toStdU16String(), mControls->GetSendFormat());
  if (!data.ok) {
    (void)ShowSendError(kSendDataError, aMoment);
    return {};
  }
  const ParsedBytes trailer = BuildTrailer(mControls->GetTrailer());
  for (int error = 0; !trailer.ok && error < kOtherTrailerErrors; ++error) {
    if (!ShowSendError(kOtherTrailerError, aMoment))
      return {};
  }
  data.bytes.insert(data.bytes.end(), trailer.bytes.begin(), trailer.bytes.end());
  aIsGood = true;
  return std::move(data.bytes);
}

/// Whether the window and its open port are still the same.
bool SerialTerminalWnd::ShowSendError(std::u16string_view aText, const Moment& aMoment) {
  ShowMessage(GetWidget(), QString::fromUtf16(aText.data(), static_cast<qsizetype>(aText.size())),
              QStringLiteral("Error"), MessageIcon::Exclamation);
  return !IsWindowGone(aMoment) && aMoment.portOpenings == mPortOpenings;
}

void SerialTerminalWnd::ChooseFile() {
  const Moment moment = GetMoment();
  const QString file = AskForFileToSend(GetWidget());
  if (!file.isEmpty() && !IsWindowGone(moment))
    mControls->GetFileField().setText(file);
}

void SerialTerminalWnd::SendFile() {
  if (!IsPortOpen() || mTransfers > 0)
    return;
  ++mTransfers;
  mControls->GetTranscript().SetUpdateInterval(kTransferPace);
  mControls->Enable(true, true);
  mSession->GetMailbox().SetProgress({});
  mProgressTimer->start(kProgressPeriodMs);
  mSession->SendFile({.path = ToKrString(mControls->GetFileField().text()),
                      .validatesLoopback = mControls->GetValidationBox().isChecked(),
                      .echoes = [echo = mEcho] { return echo->load(); }});
}

void SerialTerminalWnd::ShowProgress() {
  const TransferProgress progress = mSession->GetMailbox().GetProgress();
  // Without a size nothing has begun yet.
  if (mTransfers > 0 && progress.fileSize > 0)
    mControls->ShowProgress(progress.written, progress.fileSize);
}

void SerialTerminalWnd::ShowTransferMessage(const Message& aMessage) {
  TransferMailbox& mailbox = mSession->GetMailbox();
  RollingEdit& transcript = mControls->GetTranscript();
  if (aMessage.first == kEchoChunk) {
    const std::vector<std::uint8_t> chunk = mailbox.TakeChunk(aMessage.second);
    mEncoder.RenderBytes(chunk.data(), static_cast<std::uint32_t>(chunk.size()));
    if (mEncoder.GetUnflushedBytes() >= kMostEchoedBytes)
      mEncoder.FlushPending(transcript);
  } else {
    // What the file's echo still holds back comes before what is told of the file.
    mEncoder.FlushPending(transcript);
    transcript.Append(mailbox.TakeLine(aMessage.second) + u"\r\n");
  }
}

void SerialTerminalWnd::ShowTransferFailure(std::int64_t aNumber) {
  const QString path = QString::fromStdU16String(mSession->GetMailbox().TakeLine(aNumber));
  ShowMessage(GetWidget(), QStringLiteral("The following file could not be opened: ") + path, QStringLiteral("Error"),
              MessageIcon::Stop);
}

void SerialTerminalWnd::EndTransfer() {
  if (mTransfers > 0)
    --mTransfers;
  if (mTransfers > 0)
    return;
  // Its echo may have come after the port was closed.
  if (!IsPortOpen())
    ShowRest();
  mProgressTimer->stop();
  mControls->HideProgress();
  mControls->Enable(IsPortOpen(), false);
}

/// What is on the screen, up to what has come by now unless that is paused.
void SerialTerminalWnd::Save() {
  RollingEdit& transcript = mControls->GetTranscript();
  if (!transcript.IsPaused())
    ShowRest();
  SaveTranscript(GetWidget(), transcript.GetShownText());
}

} // namespace krgui
