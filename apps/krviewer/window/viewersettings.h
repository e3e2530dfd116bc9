#pragma once
// What the viewer keeps from one run to the next: where its window and its panels were, and which cameras it showed.
// What is in the file may be anything: what makes no sense is as if it were not there.

#include "acquisition/hostsettings.h"
#include "window/recentcameras.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QSettings;

namespace krviewer {

/// Thread: user interface. Writes when it is told something, and at its end at the latest.
class ViewerSettings {
public:
  /// aFile is an INI file, which need not exist; with an empty name nothing is kept beyond this object.
  explicit ViewerSettings(const QString& aFile);
  ~ViewerSettings();

  /// The file of whoever runs the program.
  static QString GetUserFile();

  /// What is wrong with the file, for its user; empty where nothing is. What it makes no sense of is left out; one that
  /// is far too long, or that is none, stays as it is and nothing is kept. Before anything is kept.
  QString TakeTrouble();
  /// Writes what is not written yet.
  void Write();
  /// That something could not be written, and why, for the user; empty where all could be, and once it was told.
  QString TakeWriteTrouble();

  /// Where the window was, and how a camera's page was; empty where none was kept, or not as it was written.
  QByteArray GetWindowLayout() const { return Get(QLatin1String(kWindowLayout)); }
  void SetWindowLayout(const QByteArray& aLayout) { Set(QLatin1String(kWindowLayout), aLayout); }
  /// Of the camera with this unique ID, or, where none was kept of that, as the last page was.
  QByteArray GetPageState(const QString& aCameraID = {}) const;
  /// Keeps it for its camera as long as that is among the recent ones, and for those of which nothing is kept.
  void SetPageState(const QByteArray& aState, const QString& aCameraID = {});

  /// What was set of the host's side of the camera with this unique ID, which is of no use for another.
  HostSettings GetHostSettings(const QString& aCameraID) const;
  /// Keeps it as long as the camera is among the recent ones.
  void SetHostSettings(const HostSettings& aSettings, const QString& aCameraID);

  RecentCameras GetRecentCameras() const;
  void SetRecentCameras(const RecentCameras& aCameras);

private:
  static constexpr const char* kWindowLayout = "window/layout";

  QByteArray Get(const QString& aName) const;
  void Set(const QString& aName, const QByteArray& aBytes);
  bool IsRecent(const QString& aCameraID) const;
  void Forget(const char* aGroup, const RecentCameras& aCameras);

  std::unique_ptr<QSettings> mSettings; ///< Null where nothing is kept.
  QString mRefusal;                     ///< Why the file is not touched; empty where it is.
  bool mHasToldWriting = false;
};

} // namespace krviewer
