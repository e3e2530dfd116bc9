#pragma once
// How the user wants recordings to be, as it is typed and kept. What becomes of it is the panel's and the recorder's.

#include "recording/recordingoptions.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace krviewer {

struct RecordSettings {
  QString folder; ///< Around the recordings' own ones.
  krapps::FrameFileFormat format = krapps::FrameFileFormat::Raw;
  bool takesIncomplete = false;
  int everyNth = 1;
  int mostFrames = 0; ///< 0 for no limit, as for the next two.
  int mostSeconds = 0;
  int mostDiskMB = 0;
  int freeDiskMB = 1000;
  int queueMB = 512;

  /// A recording by the name of its folder.
  RecordingOptions MakeOptions(const QString& aName, const KrString& aDeviceID) const;

  QByteArray Save() const;
  /// Bytes that are no such settings change nothing.
  void Restore(const QByteArray& aBytes);
};

} // namespace krviewer
