#include "serial/serialbridgemanagerwnd.h"

#include "krdevice/ikrdeviceadapter.h"
#include "logic/serial/bridgedisplay.h"
#include "logic/serial/hostportlist.h"
#include "platform/guardedcall.h"
#include "platform/messagebox.h"
#include "platform/onchosen.h"
#include "platform/waitcursor.h"
#include "serial/baudrateselectiondlg.h"
#include "serial/bridgecontrols.h"
#include "serial/serialcomportconfigdlg.h"
#include "serial/showresulterror.h"

#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSize>
#include <QTimer>

#include <optional>

namespace krgui {

namespace {

constexpr int kRefreshPeriodMs = 250;

constexpr const char* kNotPublished = "Unable to start Camera Link DLL bridge.";
constexpr const char* kNotConfigured = "Unable to change serial COM port configuration.";
constexpr const char* kNoBaudRateTitle = "Device Serial Port Baud Rate";
constexpr const char* kNoBaudRateText =
    "The baud rate of the device serial port cannot be accessed through its GenICam interface.\r\n\r\n"
    "Configure the serial COM port baud rate to match the hard-coded device serial port baud rate.";

} // namespace

SerialBridge* SerialBridgeManagerWnd::Moment::FindBridge() const {
  const std::shared_ptr<SerialBridgeList> list = bridges.lock();
  SerialBridge* const bridge = list && list->GetDeviceText() == deviceText ? list->Find(port) : nullptr;
  return bridge != nullptr && bridge->GetKind() == kind && bridge->GetCOMPort() == comPort ? bridge : nullptr;
}

SerialBridge* SerialBridgeManagerWnd::Moment::FindShownBridge() const {
  const std::shared_ptr<SerialBridgeList> list = bridges.lock();
  return !opening.expired() && list && list->GetGeneration() == generation ? list->Find(port) : nullptr;
}

SerialBridgeManagerWnd::SerialBridgeManagerWnd() : TabledWnd(kSerialBridgeManagerTraits) {
  SetTitle("Serial Communication Bridge");
}

SerialBridgeManagerWnd::~SerialBridgeManagerWnd() {
  Dispose();
}

KrResult SerialBridgeManagerWnd::SetDevice(IKrDeviceAdapter* aAdapter) {
  std::optional<WaitCursor> cursor;
  if (mControls)
    cursor.emplace();
  KrString text;
  // One that throws is a device without a name.
  (void)CallGuarded("Asking for the device's name", [&] {
    text = aAdapter != nullptr ? aAdapter->GetDeviceText() : KrString();
    return KrResult();
  });
  mBridges->SetDevice(aAdapter, text);
  Refresh();
  return {};
}

void SerialBridgeManagerWnd::SetCreatingPorts(bool aIsOn) {
  mBridges->SetCreatingPorts(aIsOn);
  if (mControls) {
    mControls->GetCOMPortList().SetOfferingNewPort(aIsOn);
    mControls->GetCOMPortList().Refresh();
  }
}

KrResult SerialBridgeManagerWnd::Load(const KrPropertyList& aProperties, KrStringList& aErrors) {
  std::optional<WaitCursor> cursor;
  if (mControls)
    cursor.emplace();
  mBridges->Load(aProperties, aErrors);
  Refresh();
  return {};
}

KrResult SerialBridgeManagerWnd::Save(KrPropertyList& aProperties) const {
  mBridges->Save(aProperties);
  return {};
}

KrResult SerialBridgeManagerWnd::Recover() {
  return {KrResult::Code::NotOffered, "The serial bridge manager offers no recovery of its bridges."};
}

bool SerialBridgeManagerWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  mOpening = std::make_shared<const bool>(true);
  mControls = std::make_unique<BridgeControls>(*GetWidget(), [this](int aID) { return GetControl(aID); });
  COMPortList& ports = mControls->GetCOMPortList();
  ports.SetOfferingNewPort(mBridges->IsCreatingPorts());
  ports.SetFindBridged([this] { return FindBridgedPorts(); });
  ports.SetOnRefreshed([this] {
    mControls->Enable();
    ShowState();
  });
  mConnections = std::make_unique<QObject>();
  WireControls();
  Refresh();
  // A child takes the focus when it is clicked, not from what surrounds it.
  return GetShowMode() != Mode::Child;
}

void SerialBridgeManagerWnd::OnSize(const QSize& aSize) {
  Wnd::OnSize(aSize);
  if (mControls)
    mControls->LayOut(aSize);
}

void SerialBridgeManagerWnd::OnOK() {}

void SerialBridgeManagerWnd::OnDestroy() {
  mOpening.reset();
  mConnections.reset();
  mControls.reset();
  Wnd::OnDestroy();
}

void SerialBridgeManagerWnd::WireControls() {
  QObject* const context = mConnections.get();
  const auto call = [this](auto aHandler) { return [this, aHandler] { CallHandler([&] { (this->*aHandler)(); }); }; };
  QObject::connect(&mControls->GetPortList(), &QComboBox::activated, context,
                   call(&SerialBridgeManagerWnd::ShowSelectedPort));
  QObject::connect(&mControls->GetCOMPortControl(), &QComboBox::activated, context,
                   call(&SerialBridgeManagerWnd::ChooseCOMPort));
  QObject::connect(&mControls->GetConfigureButton(), &QPushButton::clicked, context,
                   call(&SerialBridgeManagerWnd::Configure));
  QObject::connect(&mControls->GetResetButton(), &QPushButton::clicked, context, [this] {
    if (SerialBridge* const bridge = GetSelectedBridge())
      bridge->ResetStatistics();
  });
  std::uint32_t kind = 0;
  for (const QRadioButton* button : mControls->GetKindButtons()) {
    OnChosen(*button, *context,
             [this, chosen = static_cast<BridgeKind>(kind)] { CallHandler([this, chosen] { ChooseKind(chosen); }); });
    ++kind;
  }
  auto* const timer = new QTimer(context);
  QObject::connect(timer, &QTimer::timeout, context, [this] { Tick(); });
  timer->start(kRefreshPeriodMs);
}

SerialBridgeManagerWnd::Moment SerialBridgeManagerWnd::GetMoment(const SerialBridge& aBridge) const {
  return {.opening = mOpening,
          .bridges = mBridges,
          .generation = mBridges->GetGeneration(),
          .deviceText = mBridges->GetDeviceText(),
          .port = aBridge.GetPort(),
          .kind = aBridge.GetKind(),
          .comPort = aBridge.GetCOMPort()};
}

SerialBridge* SerialBridgeManagerWnd::GetSelectedBridge() const {
  return mBridges->Find(mControls->GetSelectedPort());
}

std::vector<std::uint32_t> SerialBridgeManagerWnd::FindBridgedPorts() const {
  KrStringList names;
  for (const auto& bridge : mBridges->GetBridges())
    names.Add(bridge->GetCOMPort());
  return GetCOMPortNumbers(names);
}

/// Shows the bridges as they are now. Without a selected port, what depends on one stays, even if its bridge has gone.
void SerialBridgeManagerWnd::Refresh() {
  if (!mControls)
    return;
  mControls->ListPorts(mBridges->GetBridges());
  mControls->GetCOMPortList().Refresh();
  // A kind that is being chosen at this moment comes to nothing.
  mControls->RestoreKind();
  ShowSelectedPort();
  Tick();
}

void SerialBridgeManagerWnd::Tick() {
  const SerialBridge* const bridge = GetSelectedBridge();
  mControls->ShowStatistics(bridge);
  mControls->ShowBaudRates(bridge);
  ShowState();
}

void SerialBridgeManagerWnd::ShowSelectedPort() {
  const SerialBridge* const bridge = GetSelectedBridge();
  if (bridge == nullptr)
    return;
  mControls->CheckKind(bridge->GetKind());
  if (bridge->GetKind() == BridgeKind::COMPort) {
    ShowCOMPort(*bridge);
  } else {
    mControls->GetCOMPortList().Select({});
    mControls->ShowDescription(bridge->GetDescription());
  }
  mControls->ShowCameraLinkName(GetCameraLinkText(*bridge));
  mControls->Enable();
  Tick();
}

/// The description of a bridge without a COM port is the last one's.
void SerialBridgeManagerWnd::ShowCOMPort(const SerialBridge& aBridge) {
  const KrString port = aBridge.GetCOMPort();
  mControls->GetCOMPortList().Select(port);
  if (!port.IsEmpty())
    mControls->ShowDescription(aBridge.GetDescription());
}

void SerialBridgeManagerWnd::ShowState() {
  mControls->ShowState(
      GetBridgeStateText(GetSelectedBridge(), {.hasDevice = mBridges->HasDevice(),
                                               .hasPorts = !mBridges->GetBridges().empty(),
                                               .hasCOMPorts = !mControls->GetCOMPortList().IsEmpty()}));
}

/// After a kind was chosen: none of the COM ports is selected, whichever the bridge has.
void SerialBridgeManagerWnd::ShowKind(const SerialBridge& aBridge) {
  mControls->CheckKind(aBridge.GetKind());
  mControls->GetCOMPortList().Select({});
  mControls->ShowDescription("Not selected");
  mControls->ShowCameraLinkName(GetCameraLinkText(aBridge));
  mControls->Enable();
  mControls->ShowBaudRates(&aBridge);
}

void SerialBridgeManagerWnd::ChooseKind(BridgeKind aKind) {
  SerialBridge* bridge = GetSelectedBridge();
  if (bridge == nullptr) {
    mControls->RestoreKind();
    return;
  }
  const Moment moment = GetMoment(*bridge);
  bool isChanged = bridge->GetKind() != aKind;
  if (aKind == BridgeKind::CameraLinkDLL) {
    isChanged = true;
    if (!StartCameraLink(*bridge))
      return;
    bridge = moment.FindShownBridge();
  } else {
    const WaitCursor cursor;
    bridge->SetKind(aKind);
    if (aKind == BridgeKind::COMPort)
      mControls->GetCOMPortList().Refresh();
  }
  ShowKind(*bridge);
  if (isChanged)
    mControls->ListPorts(mBridges->GetBridges());
  ShowState();
}

/// False when the window or its bridges are others now.
bool SerialBridgeManagerWnd::StartCameraLink(SerialBridge& aBridge) {
  if (aBridge.GetKind() == BridgeKind::CameraLinkDLL) {
    const WaitCursor cursor;
    aBridge.SetKind(BridgeKind::None);
    return true;
  }
  const Moment moment = GetMoment(aBridge);
  KrResult result;
  {
    const WaitCursor cursor;
    aBridge.SetKind(BridgeKind::CameraLinkDLL);
    result = aBridge.StartCLDLL(mBridges->MakeCLDLLName(aBridge), false);
    // Before the box, which may be all that is left of the window.
    if (!result.IsOK())
      aBridge.SetKind(BridgeKind::None);
  }
  if (!result.IsOK())
    ShowResultError(*this, kNotPublished, result);
  else if (!aBridge.AreBaudRatesKnown())
    AskForBaudRate(aBridge);
  return moment.FindShownBridge() != nullptr;
}

/// A bridge of which nobody says the rate ends. One that was made anew while the dialog was open had its rate said.
void SerialBridgeManagerWnd::AskForBaudRate(SerialBridge& aBridge) {
  aBridge.SetAskingForBaudRate(true);
  const Moment moment = GetMoment(aBridge);
  BaudRateSelectionDlg dialog(GetWidget());
  const ModalResult answer = dialog.Run();
  SerialBridge* const bridge = moment.FindBridge();
  if (bridge == nullptr || !bridge->IsAskingForBaudRate()) {
    if (answer == ModalResult::OK && !moment.opening.expired())
      TellEnd(moment.port, kNotPublished);
  } else if (answer == ModalResult::OK) {
    bridge->SetAskingForBaudRate(false);
    // Every rate of the list is taken.
    (void)bridge->SetHardCodedBaudRate(dialog.GetBaudRate());
  } else {
    bridge->SetKind(BridgeKind::None);
  }
}

/// An answer of the user's came too late.
void SerialBridgeManagerWnd::TellEnd(KrDeviceSerial aPort, const KrString& aWhat) {
  ShowResultError(*this, aWhat,
                  {KrResult::Code::ConnectionLost,
                   "The bridge on " + ::GetPortName(aPort) + " was ended while the dialog was open."});
}

void SerialBridgeManagerWnd::ChooseCOMPort() {
  SerialBridge* const bridge = GetSelectedBridge();
  const std::optional<std::uint32_t> number = mControls->GetCOMPortList().GetSelected();
  if (bridge == nullptr || bridge->GetKind() != BridgeKind::COMPort || !number) {
    mControls->GetCOMPortList().Restore();
    return;
  }
  const KrString name = FormatCOMPort(*number);
  const bool isRunning =
      bridge->GetCOMPort() == name && bridge->GetBridge()->GetState() == KrSerialBridgeState::Running;
  const Moment moment = GetMoment(*bridge);
  if (!isRunning && !StartCOMPort(*bridge, name))
    return;
  ShowCOMPort(*moment.FindShownBridge());
  mControls->Enable();
  Tick();
}

/// False when the window or its bridges are others now.
bool SerialBridgeManagerWnd::StartCOMPort(SerialBridge& aBridge, const KrString& aName) {
  const Moment moment = GetMoment(aBridge);
  const bool hadCOMPort = !aBridge.GetCOMPort().IsEmpty();
  KrResult result;
  {
    const WaitCursor cursor;
    result = aBridge.StartCOMPort(aName);
  }
  if (!result.IsOK())
    ShowResultError(*this, "Error opening serial COM port.", result);
  else if (!hadCOMPort && !aBridge.AreBaudRatesKnown())
    ShowMessage(GetWidget(), QString::fromLatin1(kNoBaudRateText), QString::fromLatin1(kNoBaudRateTitle),
                MessageIcon::Information);
  return moment.FindShownBridge() != nullptr;
}

void SerialBridgeManagerWnd::Configure() {
  SerialBridge* bridge = GetSelectedBridge();
  if (bridge == nullptr || bridge->GetKind() != BridgeKind::COMPort)
    return;
  const Moment moment = GetMoment(*bridge);
  SerialCOMPortConfigDlg dialog(bridge->GetConfiguration(), *bridge->GetBridge(), GetWidget());
  const ModalResult answer = dialog.Run();
  if (moment.opening.expired())
    return;
  bridge = moment.FindBridge();
  if (answer == ModalResult::OK && bridge == nullptr) {
    TellEnd(moment.port, kNotConfigured);
  } else if (answer == ModalResult::OK) {
    KrResult result;
    {
      const WaitCursor cursor;
      result = bridge->SetConfiguration(dialog.GetConfiguration());
    }
    if (!result.IsOK())
      ShowResultError(*this, kNotConfigured, result);
  }
  if (!moment.opening.expired())
    ShowSelectedCOMPort();
}

/// The description changes by a configuration, or by another bridge that has been set up meanwhile.
void SerialBridgeManagerWnd::ShowSelectedCOMPort() {
  const SerialBridge* const bridge = GetSelectedBridge();
  if (bridge != nullptr && bridge->GetKind() == BridgeKind::COMPort)
    ShowCOMPort(*bridge);
}

} // namespace krgui
