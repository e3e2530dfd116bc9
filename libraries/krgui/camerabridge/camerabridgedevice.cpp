// The frame grabber of the camera bridge manager: its bridges made anew, and what is asked of the device itself.

#include "camerabridge/camerabridgemanagerwnd.h"
#include "camerabridge/cameracontrols.h"
#include "camerabridge/grabberquestions.h"
#include "frame/progressdialog.h"
#include "serial/showresulterror.h"

#include <QTimer>

#include <utility>

namespace krgui {

namespace {

namespace id = cameraid;

} // namespace

KrResult CameraBridgeManagerWnd::SetDevice(KrDevice* aDevice) {
  EndWork();
  // The browser's thread asks the cameras that end here.
  mBrowser.SetGenParameterArray(nullptr);
  const auto ended = std::make_shared<EndingBridges>(mBridges->SetDevice(aDevice));
  const Moment moment = GetMoment(KrDeviceSerial::Invalid);
  if (mControls) {
    mOpening->ForgetDevice();
    mControls->Clear(id::kSource);
    ShowDevice();
  }
  EndBridges(ended);
  if (moment.IsOfPresentBridges())
    FindPorts();
  return {};
}

/// Returns when none of them uses its device any more.
void CameraBridgeManagerWnd::EndBridges(const std::shared_ptr<EndingBridges>& aBridges) {
  if (!mControls)
    return aBridges->EndSoon();
  // It comes to its end also where the user does not want to wait: only sooner.
  if (!aBridges->AreNone())
    (void)Await({.text = QStringLiteral("Disconnecting the cameras..."),
                 .work = [aBridges](const KrGenProgress&) { aBridges->End(); },
                 .hurry = [aBridges] { aBridges->Hurry(); }});
}

/// Makes the bridges, and shows them; none where the user, or the window's end, ends the search, which the next opening
/// begins anew.
void CameraBridgeManagerWnd::FindPorts() {
  const Moment moment = GetMoment(KrDeviceSerial::Invalid);
  if (mBridges->IsWithoutPorts()) {
    const auto ports = std::make_shared<std::optional<std::vector<KrDeviceSerial>>>();
    const auto work = [questions = GrabberQuestions(*mBridges->GetDevice()), ports](const KrGenProgress& aProgress) {
      *ports = questions.FindPorts(aProgress);
    };
    if (!mControls)
      work([](std::size_t, std::size_t) { return true; });
    else if (!AskDevice("Looking for the serial ports...", work) || !moment.IsOfPresentBridges())
      return;
    // Meanwhile somebody else may have found them.
    if (mBridges->IsWithoutPorts())
      mBridges->MakeEntries(ports->value_or(std::vector<KrDeviceSerial>()));
  }
  if (!mControls)
    return;
  ShowDevice();
  ShowFacts();
}

/// What the device's own controls show: its sources, once in an opening, and Power over Camera Link.
void CameraBridgeManagerWnd::ShowFacts() {
  mOpening->mustShowFacts = false;
  KrDevice* const device = mBridges->GetDevice();
  if (!device)
    return;
  struct Answer {
    std::optional<KrStringList> sources;
    PoCLState poCL;
  };
  const auto answer = std::make_shared<Answer>();
  const Moment moment = GetMoment(KrDeviceSerial::Invalid);
  const bool isDone =
      AskDevice("Asking the frame grabber...", [questions = GrabberQuestions(*device), answer,
                                                hasSources = mOpening->hasSources](const KrGenProgress& aProgress) {
        if (!hasSources)
          answer->sources = questions.ListSources(aProgress);
        answer->poCL = questions.GetPoCL();
      });
  if (!isDone || !moment.IsShown())
    return;
  if (answer->sources) {
    mOpening->hasSources = true;
    mControls->Fill(id::kSource, {answer->sources->begin(), answer->sources->end()});
  }
  mOpening->poCL = answer->poCL;
  ShowSwitches();
  ApplyStates();
}

void CameraBridgeManagerWnd::SwitchPoCL() {
  KrDevice* const device = mBridges->GetDevice();
  if (!device)
    return;
  struct Answer {
    KrResult result = ProgressDialog::MakeUnfinished();
    PoCLState poCL;
  };
  const auto answer = std::make_shared<Answer>();
  const Moment moment = GetMoment(KrDeviceSerial::Invalid);
  const bool isDone =
      AskDevice("Switching Power over Camera Link...", [questions = GrabberQuestions(*device), answer,
                                                        isOn = mControls->IsChecked(id::kPoCL)](const KrGenProgress&) {
        answer->result = questions.SetPoCL(isOn);
        answer->poCL = questions.GetPoCL();
      });
  if (!moment.IsShown())
    return;
  if (isDone)
    mOpening->poCL = answer->poCL;
  else
    ShowFactsSoon(); // Nobody knows yet what became of it.
  mControls->Check(id::kPoCL, mOpening->poCL.isOn);
  ApplyStates();
  if (isDone && !answer->result.IsOK())
    ShowResultError(*this, "Error switching Power over Camera Link.", answer->result);
}

/// What is asked of the device borrows nothing of this window, so that nothing has to wait for a device that is slow.
bool CameraBridgeManagerWnd::AskDevice(const char* aText,
                                       std::function<void(const KrGenProgress& aProgress)> aQuestion) {
  return Await({.text = QString::fromLatin1(aText),
                .work = std::move(aQuestion),
                .whenCancelled = BackgroundTask::WhenCancelled::Abandon,
                .isOfDevice = true});
}

void CameraBridgeManagerWnd::ShowFactsSoon() {
  mOpening->mustShowFacts = true;
  CatchUpSoon();
}

/// Not at once: a window that is about to open cannot wait, and what is under way comes first.
void CameraBridgeManagerWnd::CatchUpSoon() {
  QTimer::singleShot(0, mConnections.get(), [this] { CallHandler([this] { CatchUp(); }); });
}

void CameraBridgeManagerWnd::CatchUp() {
  // What is under way calls again at its end.
  if (mOpening->isBusy || mOpening->isDeviceAsked)
    return;
  if (std::exchange(mOpening->mustFindPorts, false))
    FindPorts();
  else if (mOpening->mustFillBrowser)
    FillBrowser();
  else if (mOpening->mustShowFacts)
    ShowFacts();
  else if (std::exchange(mOpening->mustFetchTemplates, false))
    FetchTemplates();
}

} // namespace krgui
