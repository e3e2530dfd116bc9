#pragma once
// Where what is saved goes until the user says something else.

#include <QDir>
#include <QStandardPaths>
#include <QString>

namespace krviewer {

/// The user's folder of a kind, which not every system makes; else the one of all that is the user's.
inline QString FindFolder(QStandardPaths::StandardLocation aKind) {
  const QString folder = QStandardPaths::writableLocation(aKind);
  return !folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath();
}

} // namespace krviewer
