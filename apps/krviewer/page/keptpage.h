#pragma once
// What is kept of a camera's page from one run to the next, as the bytes that stand for it in the file of settings.
// What its parts mean is left to those who gave them.

#include <QByteArray>
#include <QStringList>

#include <array>
#include <optional>

namespace krviewer {

struct KeptPage {
  QByteArray layout = {};                  ///< Of the panels.
  QByteArray recording = {};               ///< How frames are recorded.
  QByteArray saving = {};                  ///< How a frame is saved.
  std::array<QStringList, 3> options = {}; ///< Of the camera's features, of the stream's, of the connection's.
  bool isCreatingPorts = false;

  QByteArray Save() const;
  /// Nothing for bytes that are not such a page's, or are of another version. Takes memory for what is there, whatever
  /// it announces.
  static std::optional<KeptPage> Read(const QByteArray& aBytes);
};

} // namespace krviewer
