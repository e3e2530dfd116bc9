#include "window/wantedcameras.h"

#include "window/showntext.h"

#include <algorithm>
#include <utility>

namespace krviewer {

namespace {

/// Of a camera's name in a message.
constexpr int kMostLettersOfName = 100;

} // namespace

void WantedCameras::Search(const QString& aName) {
  if (mIsOver || std::ranges::find(mWanted, aName) != mWanted.end())
    return;
  mWanted.push_back(aName);
  if (!mSearch.IsRunning())
    SearchNext();
}

void WantedCameras::End() {
  mIsOver = true;
  mSearch.End();
}

void WantedCameras::SearchNext() {
  if (mIsOver)
    return;
  if (mWanted.empty())
    return TellNotFound();
  const QString name = mWanted.front();
  mHost.getBar().Say({MessageKind::Information,
                      QStringLiteral("Looking for %1…").arg(GetShownName(name)),
                      {{QStringLiteral("&Cancel"), [this] { GiveUp(); }}},
                      /*canBeDismissed=*/false});
  mSearch.Start(name, [this, name](const CameraInfo& aCamera, const KrResult& aResult) {
    mWanted.pop_front();
    mHost.clearBars();
    if (aResult.IsOK()) {
      mHost.open(aCamera);
    } else {
      mNotFound += name;
      // Which others there are the finder shows better.
      mWhyNotFound = aResult == KrResult::Code::NotFound ? QString() : ToMessage(ToText(aResult.GetDescription()));
    }
    SearchNext();
  });
}

void WantedCameras::GiveUp() {
  mWanted.clear();
  mSearch.End();
  mHost.clearBars();
  TellNotFound();
}

// Of one that was shown before as it is known to the user, else as it was asked for.
QString WantedCameras::GetShownName(const QString& aName) const {
  for (const RecentCamera& camera : mRecent.GetAll())
    if (camera.id == aName)
      return ToLine(camera.name, kMostLettersOfName);
  return ToLine(aName, kMostLettersOfName);
}

void WantedCameras::TellNotFound() {
  const QStringList names = std::exchange(mNotFound, {});
  const QString reason = std::exchange(mWhyNotFound, {});
  if (names.isEmpty())
    return;
  QStringList shown;
  for (const QString& name : names)
    shown += GetShownName(name);
  const QString text =
      names.size() == 1
          ? QStringLiteral("%1 was not found. Check its cable and its power, or look for it among all cameras.")
          : QStringLiteral("%1 were not found. Check their cables and power, or look for them among all cameras.");
  const QString whole = text.arg(shown.join(QStringLiteral(", "))) + QLatin1Char('\n') + reason;
  const auto searchAgain = [this, names] {
    for (const QString& name : names)
      Search(name);
  };
  mHost.getBar().Say(
      {MessageKind::Warning,
       whole.trimmed(),
       {{QStringLiteral("Tr&y Again"), searchAgain}, {QStringLiteral("Fi&nd a Camera…"), [this] { mHost.find(); }}}});
}

} // namespace krviewer
