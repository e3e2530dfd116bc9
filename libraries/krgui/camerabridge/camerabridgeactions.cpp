// What the user does in the camera bridge manager.

#include "camerabridge/camerabridgemanagerwnd.h"
#include "camerabridge/cameracontrols.h"
#include "frame/filequestion.h"
#include "frame/progressdialog.h"
#include "frame/questionowner.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgenicam/krgenparameterarray.h"
#include "logic/camerabridge/cameratexts.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"
#include "serial/showresulterror.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <optional>
#include <vector>

namespace krgui {

namespace {

namespace id = cameraid;

constexpr int kTickPeriodMs = 500;

/// The text of an item; nothing for the place of no item.
std::optional<KrString> FindText(const KrStringList& aTexts, int aIndex) {
  const auto index = static_cast<std::size_t>(aIndex);
  return aIndex >= 0 && index < aTexts.GetCount() ? std::optional(aTexts[index]) : std::nullopt;
}

std::vector<KrString> ToItems(const KrStringList& aTexts, KrString (*aShorten)(const KrString&)) {
  std::vector<KrString> items;
  for (const KrString& text : aTexts)
    items.push_back(aShorten(text));
  return items;
}

} // namespace

void CameraBridgeManagerWnd::WireControls() {
  QObject* const context = mConnections.get();
  const auto onClick = [this, context](int aButton, void (CameraBridgeManagerWnd::*aHandler)()) {
    if (const auto* const button = mControls->Find<QAbstractButton>(aButton))
      QObject::connect(button, &QAbstractButton::clicked, context,
                       [this, aHandler] { Perform([this, aHandler] { (this->*aHandler)(); }); });
  };
  onClick(id::kProbe, &CameraBridgeManagerWnd::Probe);
  onClick(id::kCLProtocolConnect, &CameraBridgeManagerWnd::ConnectCLProtocol);
  onClick(id::kGenCPConnect, &CameraBridgeManagerWnd::ConnectGenCP);
  onClick(id::kBrowse, &CameraBridgeManagerWnd::ChooseCameraFile);
  onClick(id::kLoad, &CameraBridgeManagerWnd::LoadCameraFile);
  onClick(id::kReset, &CameraBridgeManagerWnd::ResetStatistics);
  WireMarks();
  WireLists();
  auto* const timer = new QTimer(context);
  QObject::connect(timer, &QTimer::timeout, context, [this] { Tick(); });
  timer->start(kTickPeriodMs);
}

/// Assistive technology changes marks without a click.
void CameraBridgeManagerWnd::WireMarks() {
  const auto onToggle = [this](int aButton, const std::function<void(bool aIsOn)>& aAction) {
    if (auto* const button = mControls->Find<QAbstractButton>(aButton))
      QObject::connect(button, &QAbstractButton::toggled, mConnections.get(), [this, button, aAction](bool aIsOn) {
        // A button that is clicked paints itself afterwards, and a camera may be asked until then.
        button->update();
        Perform([aAction, aIsOn] { aAction(aIsOn); });
      });
  };
  for (const CameraBridgeKind kind : CameraControls::kKinds) {
    onToggle(CameraControls::GetKindButton(kind), [this, kind](bool aIsOn) {
      if (aIsOn)
        ChooseKind(kind);
    });
  }
  onToggle(id::kSynchronization, [this](bool) { SwitchSynchronization(); });
  onToggle(id::kPoCL, [this](bool) { mOpening->isDeviceAsked ? ShowSwitches() : SwitchPoCL(); });
}

void CameraBridgeManagerWnd::WireLists() {
  const auto onChoice = [this](int aList, void (CameraBridgeManagerWnd::*aHandler)()) {
    if (const auto* const list = mControls->Find<QComboBox>(aList))
      QObject::connect(list, &QComboBox::activated, mConnections.get(),
                       [this, aHandler] { Perform([this, aHandler] { (this->*aHandler)(); }); });
  };
  onChoice(id::kDevicePort, &CameraBridgeManagerWnd::ChoosePort);
  for (const int list : {id::kTemplate, id::kCLProtocolXML, id::kGenCPXML})
    onChoice(list, &CameraBridgeManagerWnd::ApplyStates);
  onChoice(id::kSource, &CameraBridgeManagerWnd::ChooseSource);
}

/// Dialogs keep the user's hands off a window that waits, but not those of assistive technology. A bridge takes one
/// call at a time.
void CameraBridgeManagerWnd::Perform(const std::function<void()>& aAction) {
  if (!IsBusy())
    return CallHandler(aAction);
  mControls->RestoreChoices();
  ShowSwitches();
}

void CameraBridgeManagerWnd::ChoosePort() {
  if (!mControls->TakePort() && !mOpening->isBrowserLeftEmpty)
    return;
  ShowEntry();
  FillBrowser();
}

void CameraBridgeManagerWnd::ChooseKind(CameraBridgeKind aKind) {
  CameraBridgeEntry* entry = GetSelectedEntry();
  if (!entry)
    return mControls->RestoreChoices();
  if (entry->kind == aKind)
    return;
  const Moment moment = GetMoment(entry->port);
  mBrowser.SetGenParameterArray(nullptr);
  // Before the wait, in which it may be loaded or opened anew.
  entry->Reset(aKind);
  // It comes to its end also where the user does not want to wait.
  if (entry->bridge->IsConnected())
    (void)Ask(*entry, "Disconnecting the camera...", Cursor::Usual,
              [](KrCameraBridge& aBridge) { aBridge.Disconnect(); });
  if (!moment.IsShown())
    return;
  // The templates are fetched by what shows a bridge of CL Protocol.
  ShowEntry();
  if (aKind == CameraBridgeKind::GenCP)
    FetchGenCPXMLIDs();
}

void CameraBridgeManagerWnd::FetchTemplates() {
  CameraBridgeEntry* entry = GetSelectedEntry();
  if (!entry || IsBusy() || entry->kind != CameraBridgeKind::CLProtocol || entry->bridge->IsConnected())
    return;
  const Moment moment = GetMoment(entry->port);
  mControls->Clear(id::kTemplate);
  mControls->Clear(id::kCLProtocolXML);
  entry->templates.Clear();
  entry->xmlIDs.Clear();
  struct Answer {
    KrResult result = ProgressDialog::MakeUnfinished();
    KrStringList templates;
  };
  const auto answer = std::make_shared<Answer>();
  const bool isDone = Await({.text = QStringLiteral("Looking for CL Protocol drivers..."),
                             .work =
                                 [answer](const KrGenProgress&) {
                                   answer->result = KrCameraBridge::GetCLProtocolTemplates(answer->templates);
                                 },
                             .whenCancelled = BackgroundTask::WhenCancelled::Abandon});
  entry = moment.FindShownEntry();
  if (!entry || !isDone)
    return;
  if (!answer->result.IsOK())
    return ShowResultError(*this, "Error retrieving CL Protocol options.", answer->result);
  entry->templates = answer->templates;
  mControls->Fill(id::kTemplate, ToItems(entry->templates, ShortenTemplate));
  ApplyStates();
}

void CameraBridgeManagerWnd::FetchGenCPXMLIDs() {
  CameraBridgeEntry* entry = GetSelectedEntry();
  const Moment moment = GetMoment(entry->port);
  KrResult result = ProgressDialog::MakeUnfinished();
  KrStringList xmlIDs;
  const bool isDone = Ask(*entry, "Looking for a GenCP camera...", Cursor::Wait,
                          [&](KrCameraBridge& aBridge) { result = aBridge.GetGenCPXMLIDs(xmlIDs); });
  entry = moment.FindShownEntry();
  if (!entry || (!isDone && !result.IsOK()))
    return;
  if (!result.IsOK())
    return ShowResultError(*this, "Error retrieving GenCP XML IDs.", result);
  entry->xmlIDs = xmlIDs;
  mControls->Fill(id::kGenCPXML, {xmlIDs.begin(), xmlIDs.end()});
  ApplyStates();
}

void CameraBridgeManagerWnd::Probe() {
  CameraBridgeEntry* entry = GetSelectedEntry();
  const std::optional<KrString> driverTemplate =
      entry ? FindText(entry->templates, mControls->GetSelected(id::kTemplate)) : std::nullopt;
  if (!driverTemplate)
    return;
  const Moment moment = GetMoment(entry->port);
  mControls->Clear(id::kCLProtocolXML);
  entry->xmlIDs.Clear();
  KrResult result = ProgressDialog::MakeUnfinished();
  KrString cameraID;
  KrStringList xmlIDs;
  const bool isDone = Ask(*entry, "Looking for a CL Protocol camera...", Cursor::Wait, [&](KrCameraBridge& aBridge) {
    result = aBridge.ProbeCLProtocol(*driverTemplate, cameraID, xmlIDs);
  });
  entry = moment.FindShownEntry();
  if (!entry || (!isDone && !result.IsOK()))
    return;
  if (!result.IsOK())
    return ShowResultError(*this, "Error retrieving CL Protocol XML IDs.", result);
  mControls->SetText(id::kProbeStatus, ToPlainLine(ShortenCameraID(cameraID)));
  entry->xmlIDs = xmlIDs;
  mControls->Fill(id::kCLProtocolXML, ToItems(xmlIDs, ShortenXMLID));
  ApplyStates();
}

void CameraBridgeManagerWnd::ConnectCLProtocol() {
  CameraBridgeEntry* const entry = GetSelectedEntry();
  if (!entry)
    return;
  const std::optional<KrString> driverTemplate = FindText(entry->templates, mControls->GetSelected(id::kTemplate));
  const std::optional<KrString> xmlID = FindText(entry->xmlIDs, mControls->GetSelected(id::kCLProtocolXML));
  if (!driverTemplate || !xmlID)
    return;
  CameraBridgeTexts texts;
  texts.driverTemplate = ShortenTemplate(*driverTemplate);
  texts.probeStatus = ToKrString(mControls->GetText(id::kProbeStatus));
  texts.xmlID = ShortenXMLID(*xmlID);
  Connect(*entry,
          {.cursor = Cursor::Wait,
           .texts = texts,
           .status = id::kCLProtocolStatus,
           .connect = [&](KrCameraBridge& aBridge) { return aBridge.ConnectCLProtocol(*driverTemplate, *xmlID); },
           .failure = [](KrCameraBridge&) { return KrString("Error connecting CL Protocol camera."); }});
}

void CameraBridgeManagerWnd::ConnectGenCP() {
  CameraBridgeEntry* const entry = GetSelectedEntry();
  const std::optional<KrString> xmlID =
      entry ? FindText(entry->xmlIDs, mControls->GetSelected(id::kGenCPXML)) : std::nullopt;
  if (!xmlID)
    return;
  CameraBridgeTexts texts;
  texts.xmlID = *xmlID;
  Connect(*entry, {.cursor = Cursor::Usual,
                   .texts = texts,
                   .status = id::kGenCPStatus,
                   .connect = [&](KrCameraBridge& aBridge) { return aBridge.ConnectGenCP(*xmlID); },
                   .failure = [](KrCameraBridge&) { return KrString("Error connecting GenCP camera."); }});
}

void CameraBridgeManagerWnd::LoadCameraFile() {
  CameraBridgeEntry* const entry = GetSelectedEntry();
  if (!entry)
    return;
  CameraBridgeTexts texts;
  texts.path = ToKrString(mControls->GetText(id::kPath));
  Connect(*entry, {.cursor = Cursor::Wait,
                   .texts = texts,
                   .status = id::kCameraFileStatus,
                   .connect =
                       [&](KrCameraBridge& aBridge) {
                         aBridge.Disconnect();
                         return aBridge.ConnectTolvanCameraFile(texts.path);
                       },
                   .failure =
                       [](KrCameraBridge& aBridge) {
                         return FormatCameraFileError(aBridge.GetTolvanCameraFileParserErrors());
                       }});
}

void CameraBridgeManagerWnd::Connect(CameraBridgeEntry& aEntry, const Connection& aConnection) {
  const Moment moment = GetMoment(aEntry.port);
  mBrowser.SetGenParameterArray(nullptr);
  KrResult result = ProgressDialog::MakeUnfinished();
  KrCameraBridge& bridge = *aEntry.bridge;
  const bool wasConnected = bridge.IsConnected();
  std::stop_source stop;
  const auto work = [&](const KrGenProgress& aProgress) {
    result = aConnection.connect(bridge);
    if (!result.IsOK() || ReadParameters(*bridge.GetParameters(), aProgress, stop.get_token()))
      return;
    bridge.Disconnect();
    result = {KrResult::Code::Aborted, "Reading the camera's parameters was cancelled."};
  };
  const auto hurry = [&bridge, &stop] {
    bridge.Cancel();
    stop.request_stop();
  };
  const bool isDone = Await(
      {.text = QStringLiteral("Connecting the camera..."), .cursor = aConnection.cursor, .work = work, .hurry = hurry});
  CameraBridgeEntry* const entry = moment.FindShownEntry();
  if (!entry)
    return;
  if (result.IsOK())
    entry->texts = aConnection.texts;
  ShowParameters(*entry);
  ApplyStates();
  // That of a connection before has become wrong.
  if (result.IsOK() || wasConnected) {
    entry->UpdateStatus();
    mControls->SetText(aConnection.status, ToQString(entry->texts.status));
  }
  if (isDone && !result.IsOK())
    ShowResultError(*this, aConnection.failure(*entry->bridge), result);
}

void CameraBridgeManagerWnd::ChooseCameraFile() {
  const Moment moment = GetMoment(mControls->GetPort());
  QString folder = mFolder;
  QString file;
  {
    const QuestionOwner owner(GetWidget(), mWorkEnd.get_token());
    file = AskForExistingFile(
        owner.GetWidget(),
        {.objectName = QStringLiteral("camerafile"),
         .caption = QStringLiteral("Select Tolvan Camera File"),
         .filters = {QStringLiteral("Tolvan Camera Files (*.yml)(*.yml)"), QStringLiteral("All files (*.*)(*)")},
         .hidesPatterns = true},
        folder);
  }
  if (file.isEmpty() || !moment.FindShownEntry())
    return;
  mFolder = folder;
  mControls->SetText(id::kPath, file);
}

/// What the bridge then has is shown, whether or not it is what was wanted.
void CameraBridgeManagerWnd::ChooseSource() {
  CameraBridgeEntry* entry = GetSelectedEntry();
  if (!entry)
    return;
  const KrString source = mControls->GetSelectedText(id::kSource);
  const Moment moment = GetMoment(entry->port);
  KrResult result = ProgressDialog::MakeUnfinished();
  const bool isDone = Ask(*entry, "Setting the camera bridge...", Cursor::Usual,
                          [&](KrCameraBridge& aBridge) { result = aBridge.SetSource(source); });
  entry = moment.FindShownEntry();
  if (!entry)
    return;
  ShowSwitches();
  if (isDone && !result.IsOK())
    ShowResultError(*this, "Error selecting the source.", result);
}

void CameraBridgeManagerWnd::SwitchSynchronization() {
  const bool isOn = mControls->IsChecked(id::kSynchronization);
  if (const CameraBridgeEntry* const entry = GetSelectedEntry())
    (void)entry->bridge->SetParametersSyncEnabled(isOn); // Always OK; what cannot be carried then is told by Tick.
}

void CameraBridgeManagerWnd::ResetStatistics() {
  if (const CameraBridgeEntry* const entry = GetSelectedEntry())
    entry->bridge->ResetStatistics();
}

} // namespace krgui
