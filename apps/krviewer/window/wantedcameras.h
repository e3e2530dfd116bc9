#pragma once
// The cameras that the user wants by their names: they are looked for one after the other, and a window's bar says
// which, and which were not found. What becomes of those that are found is left to the viewer.

#include "page/messagebar.h"
#include "window/camerasearch.h"
#include "window/recentcameras.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <utility>

namespace krviewer {

/// What the search does in the viewer.
struct WantedCamerasHost {
  std::function<void(const CameraInfo&)> open; ///< A camera was found.
  std::function<MessageBar&()> getBar;         ///< Where it is said what is looked for.
  std::function<void()> clearBars;             ///< What was said in any window is over.
  std::function<void()> find;                  ///< The user wants to see all cameras.
};

/// Thread: user interface. Ownership: borrows the recent cameras.
class WantedCameras {
public:
  /// aRecent says how cameras are known to the user that were shown before.
  WantedCameras(WantedCamerasHost aHost, const RecentCameras& aRecent) : mHost(std::move(aHost)), mRecent(aRecent) {}

  /// Looks for a camera by its ID, address, serial number or name, behind those that are looked for already.
  void Search(const QString& aName);
  /// Goes on where a search is over; to be called often.
  void Follow() { mSearch.Follow(); }
  /// Looks for none any more, and says nothing.
  void End();

private:
  void SearchNext();
  void GiveUp();
  QString GetShownName(const QString& aName) const;
  void TellNotFound();

  const WantedCamerasHost mHost;
  const RecentCameras& mRecent;
  CameraSearch mSearch;
  bool mIsOver = false;
  std::deque<QString> mWanted; ///< Cameras that are still to be looked for.
  QStringList mNotFound;       ///< Those of the same searches that were not found, to be told together.
  QString mWhyNotFound;        ///< What there is to be said of the last of them beside that.
};

} // namespace krviewer
