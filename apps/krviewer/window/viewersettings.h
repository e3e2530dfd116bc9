#pragma once
// What the viewer keeps from one run to the next: where its window and its panels were, and which cameras it showed.
// What is in the file may be anything: what makes no sense is as if it were not there.

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

  /// Where the window was, and how a camera's page was; empty where none was kept, or not as it was written.
  QByteArray GetWindowLayout() const { return Get(kWindowLayout); }
  void SetWindowLayout(const QByteArray& aLayout) { Set(kWindowLayout, aLayout); }
  QByteArray GetPageState() const { return Get(kPageState); }
  void SetPageState(const QByteArray& aLayout) { Set(kPageState, aLayout); }

  RecentCameras GetRecentCameras() const;
  void SetRecentCameras(const RecentCameras& aCameras);

private:
  static constexpr const char* kWindowLayout = "window/layout";
  static constexpr const char* kPageState = "page/state";

  QByteArray Get(const char* aName) const;
  void Set(const char* aName, const QByteArray& aBytes);

  std::unique_ptr<QSettings> mSettings; ///< Null where nothing is kept.
};

} // namespace krviewer
