#include "camerabridge/camerabridgemanagerwnd.h"

#include "camerabridge/cameracontrols.h"
#include "frame/progressdialog.h"
#include "frame/questionowner.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgenicam/krgenparameterarray.h"
#include "logic/camerabridge/cameratexts.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"
#include "platform/waitcursor.h"

#include <QSize>

#include <optional>
#include <vector>

namespace krgui {

namespace {

namespace id = cameraid;

constexpr const char* kTitle = "Frame Grabber Camera Bridge";

KrResult ReportCancelled() {
  return {KrResult::Code::Cancelled, "The camera bridges were cancelled before all of them were done."};
}

} // namespace

bool CameraBridgeManagerWnd::Moment::IsOfPresentBridges() const {
  const std::shared_ptr<CameraBridgeList> list = bridges.lock();
  return list && list->GetGeneration() == generation;
}

bool CameraBridgeManagerWnd::Moment::IsShown() const {
  return !opening.expired() && IsOfPresentBridges();
}

CameraBridgeEntry* CameraBridgeManagerWnd::Moment::FindEntry() const {
  return IsOfPresentBridges() ? bridges.lock()->Find(port) : nullptr;
}

CameraBridgeEntry* CameraBridgeManagerWnd::Moment::FindShownEntry() const {
  return opening.expired() ? nullptr : FindEntry();
}

/// That something is asked, whatever is thrown meanwhile.
class CameraBridgeManagerWnd::Asking {
public:
  Asking(const std::shared_ptr<Opening>& aOpening, bool Opening::*aFlag) : mOpening(aOpening), mFlag(aFlag) {
    (*aOpening).*mFlag = true;
  }
  ~Asking() {
    if (const std::shared_ptr<Opening> opening = mOpening.lock())
      (*opening).*mFlag = false;
  }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;

private:
  const std::weak_ptr<Opening> mOpening;
  bool Opening::*const mFlag;
};

CameraBridgeManagerWnd::CameraBridgeManagerWnd() : TabledWnd(kCameraBridgeManagerTraits) {}

CameraBridgeManagerWnd::~CameraBridgeManagerWnd() {
  Dispose();
}

KrResult CameraBridgeManagerWnd::SetStream(KrStream* aStream) {
  mBridges->SetStream(aStream);
  return {};
}

KrResult CameraBridgeManagerWnd::Load(const KrConfigurationReader& aReader, KrStringList& aErrors) {
  EndWork();
  mBrowser.SetGenParameterArray(nullptr);
  mBridges->BeginAnew();
  const Moment moment = GetMoment(KrDeviceSerial::Invalid);
  if (mBridges->IsWithoutPorts())
    FindPorts();
  if (!moment.IsOfPresentBridges() || mBridges->IsWithoutPorts())
    return ReportCancelled();
  const KrResult result =
      AskAll("Connecting the cameras...", [&bridges = *mBridges, &aReader, &aErrors](const KrGenProgress& aProgress) {
        return bridges.Load(aReader, aErrors, aProgress);
      });
  if (moment.IsOfPresentBridges())
    mBridges->ReadBack();
  if (moment.IsShown()) {
    ShowEntry();
    FillBrowser();
  }
  return result;
}

KrResult CameraBridgeManagerWnd::Save(KrConfigurationWriter& aWriter) {
  if (IsBusy())
    return {KrResult::Code::Busy, "The camera bridges cannot be saved while a camera is asked for something else."};
  return AskAll("Reading the cameras...", [&bridges = *mBridges, &aWriter](const KrGenProgress& aProgress) {
    return bridges.Save(aWriter, aProgress);
  });
}

KrResult CameraBridgeManagerWnd::Recover() {
  return {KrResult::Code::NotOffered, "The camera bridge manager offers no recovery of its bridges."};
}

int CameraBridgeManagerWnd::GetBridgeCount() const {
  return static_cast<int>(mBridges->GetEntries().size());
}

KrCameraBridge* CameraBridgeManagerWnd::GetBridge(int aIndex) const {
  return aIndex >= 0 && aIndex < GetBridgeCount()
             ? mBridges->GetEntries().at(static_cast<std::size_t>(aIndex)).bridge.get()
             : nullptr;
}

KrDeviceSerial CameraBridgeManagerWnd::GetBridgePort(int aIndex) const {
  return aIndex >= 0 && aIndex < GetBridgeCount() ? mBridges->GetEntries().at(static_cast<std::size_t>(aIndex)).port
                                                  : KrDeviceSerial::Invalid;
}

void CameraBridgeManagerWnd::SetPCFVisible(bool aIsVisible) {
  mIsPCFVisible = aIsVisible;
  // What is under way applies the states at its end.
  if (mControls && !IsBusy())
    ApplyStates();
}

bool CameraBridgeManagerWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  SetTitle(kTitle);
  mOpening = std::make_shared<Opening>();
  mControls = std::make_unique<CameraControls>([this](int aID) { return GetControl(aID); });
  mConnections = std::make_unique<QObject>();
  CreateBrowser();
  mBridges->ReadBack();
  if (!mControls->GetBrowserPlace())
    mControls->DisableForeign(*GetWidget());
  WireControls();
  mOpening->mustFindPorts = mBridges->IsWithoutPorts();
  ShowDevice();
  // A child takes the focus when it is clicked, not from what surrounds it.
  return GetShowMode() != Mode::Child;
}

void CameraBridgeManagerWnd::OnSize(const QSize& aSize) {
  Wnd::OnSize(aSize);
  if (!mControls)
    return;
  mControls->LayOut(aSize);
  PlaceBrowser();
}

void CameraBridgeManagerWnd::OnOK() {}

void CameraBridgeManagerWnd::OnDestroy() {
  EndWork();
  mOpening.reset();
  mConnections.reset();
  mBrowser.SetGenParameterArray(nullptr);
  // A template without a place for it has none.
  [[maybe_unused]] const KrResult closed = mBrowser.Close();
  mControls.reset();
  Wnd::OnDestroy();
}

CameraBridgeManagerWnd::Moment CameraBridgeManagerWnd::GetMoment(KrDeviceSerial aPort) const {
  return {mOpening, mBridges, mBridges->GetGeneration(), aPort};
}

CameraBridgeEntry* CameraBridgeManagerWnd::GetSelectedEntry() const {
  return mBridges->Find(mControls->GetPort());
}

bool CameraBridgeManagerWnd::Await(const Order& aOrder) {
  const std::weak_ptr<Opening> opening = mOpening;
  std::optional<Asking> asking(std::in_place, mOpening, aOrder.isOfDevice ? &Opening::isDeviceAsked : &Opening::isBusy);
  std::optional<WaitCursor> cursor;
  if (aOrder.cursor == Cursor::Wait)
    cursor.emplace();
  ModalResult result = ModalResult::Gone;
  {
    const QuestionOwner owner(GetWidget(), mWorkEnd.get_token());
    ProgressDialog dialog(owner.GetWidget(), ToQString(GetTitle()), aOrder.text,
                          {.hurry = aOrder.hurry, .whenCancelled = aOrder.whenCancelled});
    result = dialog.Run(aOrder.work);
  }
  asking.reset();
  if (const std::shared_ptr<Opening> open = opening.lock()) {
    ApplyStates();
    if (open->IsBehind())
      CatchUpSoon();
  }
  return result == ModalResult::OK;
}

bool CameraBridgeManagerWnd::Ask(CameraBridgeEntry& aEntry, const char* aText, Cursor aCursor,
                                 const std::function<void(KrCameraBridge& aBridge)>& aWork) {
  KrCameraBridge& bridge = *aEntry.bridge;
  return Await({.text = QString::fromLatin1(aText),
                .cursor = aCursor,
                .work = [&](const KrGenProgress&) { aWork(bridge); },
                .hurry = [&bridge] { bridge.Cancel(); }});
}

KrResult CameraBridgeManagerWnd::AskAll(const char* aText,
                                        const std::function<KrResult(const KrGenProgress& aProgress)>& aWork) {
  // Nobody is there to wait, or to cancel.
  if (!mControls)
    return aWork([](std::size_t, std::size_t) { return true; });
  KrResult result = ProgressDialog::MakeUnfinished();
  const bool isDone = Await({.text = QString::fromLatin1(aText),
                             .cursor = Cursor::Usual,
                             .work = [&](const KrGenProgress& aProgress) { result = aWork(aProgress); },
                             .hurry = [&bridges = *mBridges] { bridges.Cancel(); }});
  // What had come to its end before is no less done.
  return isDone || result.IsOK() ? result : ReportCancelled();
}

/// What is under way has ended afterwards.
void CameraBridgeManagerWnd::EndWork() {
  mWorkEnd.request_stop();
  mWorkEnd = std::stop_source();
  if (mOpening)
    mOpening->isBusy = mOpening->isDeviceAsked = false;
}

void CameraBridgeManagerWnd::CreateBrowser() {
  // Always OK.
  [[maybe_unused]] const KrResult set = mBrowser.SetRefreshMode(KrGenRefresh::Polling);
  if (!mControls->GetBrowserPlace())
    return;
  // A child of a widget that exists.
  [[maybe_unused]] const KrResult created = mBrowser.CreateIn(GetWidget());
  PlaceBrowser();
}

void CameraBridgeManagerWnd::PlaceBrowser() {
  if (QWidget* const browser = mBrowser.GetWidget())
    browser->setGeometry(*mControls->GetBrowserPlace());
}

/// The device's ports, and the first of them.
void CameraBridgeManagerWnd::ShowDevice() {
  std::vector<KrDeviceSerial> ports;
  for (const CameraBridgeEntry& entry : mBridges->GetEntries())
    ports.push_back(entry.port);
  mControls->ListPorts(ports);
  ShowEntry();
}

/// What the selected port's bridge is now. What takes longer follows soon: templates that are to
/// be chosen from, and what the device says.
void CameraBridgeManagerWnd::ShowEntry() {
  mControls->ShowNothing();
  mBrowser.SetGenParameterArray(nullptr);
  mOpening->mustFillBrowser = mOpening->mustFetchTemplates = mOpening->isBrowserLeftEmpty = false;
  CameraBridgeEntry* const entry = GetSelectedEntry();
  mControls->CheckKind(entry ? entry->kind : CameraBridgeKind::None);
  if (entry)
    ShowKind(*entry);
  ShowSwitches();
  ApplyStates();
  Tick();
  ShowFactsSoon();
}

void CameraBridgeManagerWnd::ShowKind(CameraBridgeEntry& aEntry) {
  const CameraBridgeTexts& texts = aEntry.texts;
  const bool isConnected = aEntry.bridge->IsConnected();
  mOpening->mustFillBrowser = isConnected && aEntry.kind != CameraBridgeKind::None && mControls->GetBrowserPlace();
  if (aEntry.kind == CameraBridgeKind::CameraFile) {
    mControls->SetText(id::kPath, ToQString(texts.path));
    mControls->SetText(id::kCameraFileStatus, ToQString(texts.status));
  } else if (aEntry.kind == CameraBridgeKind::CLProtocol && isConnected) {
    mControls->Fill(id::kTemplate, {texts.driverTemplate});
    mControls->Fill(id::kCLProtocolXML, {texts.xmlID});
    mControls->SetText(id::kProbeStatus, ToPlainLine(texts.probeStatus));
    mControls->SetText(id::kCLProtocolStatus, ToQString(texts.status));
  } else if (aEntry.kind == CameraBridgeKind::CLProtocol) {
    mOpening->mustFetchTemplates = mControls->Has(id::kTemplate);
  } else if (aEntry.kind == CameraBridgeKind::GenCP && isConnected) {
    aEntry.xmlIDs.Clear();
    aEntry.xmlIDs.Add(texts.xmlID);
    mControls->Fill(id::kGenCPXML, {texts.xmlID});
    mControls->SetText(id::kGenCPStatus, ToQString(texts.status));
  }
}

/// What the selected port's bridge has, and the device; without a port, nothing of one that was there before.
void CameraBridgeManagerWnd::ShowSwitches() const {
  const CameraBridgeEntry* const entry = GetSelectedEntry();
  mControls->Check(id::kSynchronization, entry && entry->bridge->GetParametersSyncEnabled());
  mControls->Check(id::kPoCL, mOpening->poCL.isOn);
  mControls->Select(id::kSource, entry ? entry->bridge->GetSource() : KrString());
}

void CameraBridgeManagerWnd::ShowParameters(const CameraBridgeEntry& aEntry) {
  mOpening->mustFillBrowser = mOpening->isBrowserLeftEmpty = false;
  mBrowser.SetGenParameterArray(aEntry.bridge->GetParameters());
}

/// With the parameters of a bridge that may have been connected by others, so that nobody has read them before.
void CameraBridgeManagerWnd::FillBrowser() {
  CameraBridgeEntry* entry = GetSelectedEntry();
  KrGenParameterArray* const parameters = entry ? entry->bridge->GetParameters() : nullptr;
  if (!std::exchange(mOpening->mustFillBrowser, false) || !parameters)
    return;
  const Moment moment = GetMoment(entry->port);
  std::stop_source stop;
  const bool isDone = Await(
      {.text = QStringLiteral("Reading the camera's parameters..."),
       .work = [parameters, &stop](
                   const KrGenProgress& aProgress) { (void)ReadParameters(*parameters, aProgress, stop.get_token()); },
       .hurry = [&stop] { stop.request_stop(); }});
  entry = moment.FindShownEntry();
  if (!entry)
    return;
  if (isDone)
    ShowParameters(*entry);
  else
    mOpening->isBrowserLeftEmpty = true;
}

void CameraBridgeManagerWnd::ApplyStates() {
  const CameraBridgeEntry* const entry = GetSelectedEntry();
  const QWidget* const focused = GetWidget()->window()->focusWidget();
  const bool isNewLayout =
      mControls->Enable(GetCameraBridgeEnabling({.hasPort = entry != nullptr,
                                                 .kind = entry ? entry->kind : CameraBridgeKind::None,
                                                 .isConnected = entry && entry->bridge->IsConnected(),
                                                 .hasTemplates = mControls->HasItems(id::kTemplate),
                                                 .hasCLProtocolXMLs = mControls->HasItems(id::kCLProtocolXML),
                                                 .hasGenCPXMLs = mControls->HasItems(id::kGenCPXML),
                                                 .hasSources = mControls->HasItems(id::kSource),
                                                 .isPoCLSupported = mOpening->poCL.isSupported,
                                                 .isCameraFileVisible = mIsPCFVisible}));
  if (focused && GetWidget()->isAncestorOf(focused) && !focused->isEnabled())
    FocusNextStep();
  if (!isNewLayout)
    return;
  mControls->LayOut(GetWidget()->size());
  PlaceBrowser();
}

/// The toolkit gives the keyboard of a control that is disabled to the next in the row, which may be the source's list,
/// where a key would choose. What a user wants next is a description of the camera that was found, or its parameters.
void CameraBridgeManagerWnd::FocusNextStep() const {
  auto* const descriptions = mControls->Find<QWidget>(id::kCLProtocolXML);
  QWidget* const browser = mBrowser.GetWidget();
  if (descriptions && descriptions->isEnabled())
    return descriptions->setFocus(Qt::OtherFocusReason);
  if (!browser)
    return;
  const auto takesTab = [browser](const QWidget& aWidget) {
    return browser->isAncestorOf(&aWidget) && aWidget.isEnabled() && (aWidget.focusPolicy() & Qt::TabFocus) != 0;
  };
  QWidget* next = browser->nextInFocusChain();
  while (next != browser && !takesTab(*next))
    next = next->nextInFocusChain();
  next->setFocus(Qt::OtherFocusReason);
}

void CameraBridgeManagerWnd::Tick() const {
  const CameraBridgeEntry* const entry = GetSelectedEntry();
  mControls->ShowStatistics(entry ? entry->bridge->GetBytesSentToCamera() : 0,
                            entry ? entry->bridge->GetBytesReceivedFromCamera() : 0);
  // What could not be carried to the device, and why.
  mControls->Explain(id::kSynchronization, entry ? ToQString(entry->bridge->GetParametersSyncText()) : QString());
  mControls->SetText(id::kState, entry ? ToPlainLine(FormatCameraState(entry->bridge->GetCameraState())) : QString());
}

} // namespace krgui
