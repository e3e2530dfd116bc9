#include "window/writereason.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace krviewer {

namespace {

/// A disk that has less room is full.
constexpr qint64 kFewestBytes = 1 << 16;
/// More are not tried, however long the file is.
constexpr qint64 kMostBytes = qint64{16} << 20;

} // namespace

QString FindWriteReason(const QString& aFile) {
  const QFileInfo file(aFile);
  std::error_code error;
  std::filesystem::create_directories(file.absolutePath().toStdString(), error);
  if (error)
    return QString::fromStdString(error.message());
  if (file.exists() && ::access(QFile::encodeName(aFile).constData(), W_OK) != 0)
    return QString::fromStdString(std::generic_category().message(errno));
  QTemporaryFile trial(file.absolutePath() + QStringLiteral("/.krviewer-XXXXXX.tmp"));
  if (!trial.open())
    return trial.errorString();
  QByteArray rest(std::clamp(file.size(), kFewestBytes, kMostBytes), ' ');
  // A disk that takes a part gives its reason with the next one.
  while (!rest.isEmpty()) {
    const qint64 written = trial.write(rest);
    if (written <= 0)
      return trial.errorString();
    rest.remove(0, written);
  }
  return trial.flush() ? QString() : trial.errorString();
}

} // namespace krviewer
