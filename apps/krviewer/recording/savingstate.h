#pragma once
// Where and in which format a frame was saved last, as the bytes that are kept for the next one. Saving is
// FrameSaver's.

#include "framefile.h"

#include <QByteArray>
#include <QString>

namespace krviewer {

/// Thread: a value.
struct SavingState {
  QString folder;
  krapps::FrameFileFormat format = krapps::FrameFileFormat::TIFF;

  QByteArray Save() const;
  /// Bytes that are no such state change nothing.
  void Restore(const QByteArray& aBytes);

  friend bool operator==(const SavingState&, const SavingState&) = default;
};

} // namespace krviewer
