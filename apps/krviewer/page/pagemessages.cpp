#include "page/pagemessages.h"

#include "window/showntext.h"

namespace krviewer {

namespace {

/// A camera may have thousands of settings.
constexpr std::size_t kMostLines = 3;
/// A text of a camera may be of any length.
constexpr int kMostLetters = 300;

QString GetStateText(const PageState& aState) {
  if (aState.isLeaving)
    return QStringLiteral("disconnecting");
  if (aState.isAway)
    return QStringLiteral("disconnected");
  switch (aState.progress.state) {
  case AcquisitionState::Connecting:
    return QStringLiteral("connecting");
  case AcquisitionState::Connected:
    return QStringLiteral("stopped");
  case AcquisitionState::Lost:
    return aState.progress.isRefused ? QStringLiteral("camera back, cannot be started")
                                     : QStringLiteral("camera lost, waiting for it to come back");
  case AcquisitionState::Failed:
    return QStringLiteral("not connected");
  default:
    return aState.isWorking ? QStringLiteral("asking the cameras behind its ports") : QString();
  }
}

BarMessage::Button MakeButton(Remedy aRemedy, const PageRemedies& aRemedies) {
  switch (aRemedy) {
  case Remedy::TryAgain:
    return {QStringLiteral("Tr&y Again"), aRemedies.connect};
  case Remedy::ConfigureIP:
    return {QStringLiteral("Set &Address…"), aRemedies.setAddress};
  case Remedy::OpenFinder:
    return {QStringLiteral("Fi&nd a Camera…"), aRemedies.find};
  case Remedy::Start:
    return {QStringLiteral("&Start"), aRemedies.start};
  case Remedy::Restart:
    return {QStringLiteral("&Restart"), aRemedies.restart};
  case Remedy::Trigger:
    return {QStringLiteral("Tri&gger"), aRemedies.trigger};
  case Remedy::Disconnect:
    break;
  }
  return {QStringLiteral("&Disconnect"), aRemedies.disconnect};
}

std::vector<BarMessage::Button> MakeButtons(const Advice& aAdvice, const PageRemedies& aRemedies) {
  std::vector<BarMessage::Button> buttons;
  for (const Remedy remedy : aAdvice.remedies)
    buttons.push_back(MakeButton(remedy, aRemedies));
  return buttons;
}

// Why frames do not come, or the camera is not as it was, of one that is connected.
BarMessage MakeConnectedMessage(const PageState& aState, const PageRemedies& aRemedies) {
  if (!aState.advice.text.IsEmpty())
    return {MessageKind::Warning, ToText(aState.advice.text), MakeButtons(aState.advice, aRemedies)};
  const KrStringList& different = aState.progress.settings.different;
  if (!different.IsEmpty())
    return {MessageKind::Warning,
            QStringLiteral("The camera is back, but not set as before:\n%1").arg(JoinLines(different))};
  return {};
}

BarMessage MakeConnectingMessage(const PageState& aState, const PageRemedies& aRemedies) {
  const QString advice = ToText(aState.advice.text);
  const QString text = QStringLiteral("Connecting to %1…").arg(aState.name);
  return {.text = advice.isEmpty() ? text : text + QLatin1Char('\n') + advice,
          .buttons = MakeButtons(aState.advice, aRemedies),
          .canBeDismissed = false};
}

} // namespace

QString JoinLines(const KrStringList& aLines) {
  QStringList lines;
  for (const KrString& line : aLines) {
    if (static_cast<std::size_t>(lines.size()) == kMostLines) {
      lines += QStringLiteral("And %1 more.").arg(aLines.GetCount() - kMostLines);
      break;
    }
    lines += ToLine(ToText(line), kMostLetters);
  }
  return lines.join(QLatin1Char('\n'));
}

QString MakePageTitle(const PageState& aState) {
  const QString text = GetStateText(aState);
  return text.isEmpty() ? aState.name : aState.name + QStringLiteral(" - ") + text;
}

BarMessage MakePageMessage(const PageState& aState, const PageRemedies& aRemedies) {
  if (aState.isLeaving)
    return {.text = QStringLiteral("Disconnecting %1…").arg(aState.name), .canBeDismissed = false};
  if (aState.isAway)
    return {MessageKind::Information,
            QStringLiteral("%1 is disconnected: others may use it now.").arg(aState.name),
            {{QStringLiteral("C&onnect"), aRemedies.connect}}};
  switch (aState.progress.state) {
  case AcquisitionState::Connecting:
    return MakeConnectingMessage(aState, aRemedies);
  case AcquisitionState::Lost:
    return {MessageKind::Warning, ToText(aState.advice.text), MakeButtons(aState.advice, aRemedies)};
  case AcquisitionState::Failed:
    return {MessageKind::Error, QStringLiteral("%1 cannot be shown.\n%2").arg(aState.name, ToText(aState.advice.text)),
            MakeButtons(aState.advice, aRemedies)};
  default:
    return MakeConnectedMessage(aState, aRemedies);
  }
}

} // namespace krviewer
