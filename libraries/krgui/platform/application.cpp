#include "platform/application.h"

#include <QApplication>
#include <QDir>
#include <QString>
#include <QStringList>
#include <QThread>

#include <xcb/xcb.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace krgui {

namespace {

KrResult Fail(const QString& aReason) {
  return {KrResult::Code::Failed,
          KrString((QStringLiteral("The window could not be created: ") + aReason).toStdString())};
}

// As the toolkit reads them, but in a program that has other rights than its user.
QString GetVariable(const char* aName, const char* aOtherwise = "") {
  const char* const value = ::secure_getenv(aName);
  return QString::fromLocal8Bit(value != nullptr ? value : aOtherwise);
}

bool CanOpenX11() {
  using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;
  const Connection connection(xcb_connect(nullptr, nullptr), &xcb_disconnect);
  return xcb_connection_has_error(connection.get()) == 0;
}

bool CanOpenWayland() {
  QString path = GetVariable("WAYLAND_DISPLAY", "wayland-0");
  if (!QDir::isAbsolutePath(path)) {
    path = GetVariable("XDG_RUNTIME_DIR") + QLatin1Char('/') + path;
  }
  const QByteArray name = path.toLocal8Bit();
  sockaddr_un address = {};
  if (static_cast<std::size_t>(name.size()) >= sizeof address.sun_path) {
    return false;
  }
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) {
    return false;
  }
  const bool canOpen = ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(descriptor);
  return canOpen;
}

/// True when the toolkit's plugin for a platform is installed; without one it ends the process.
bool HasPlugin(const QString& aPlatform) {
  QStringList folders = {GetVariable("QT_QPA_PLATFORM_PLUGIN_PATH")};
  for (const QString& path : QCoreApplication::libraryPaths()) {
    folders.append(path + QStringLiteral("/platforms"));
  }
  folders.removeAll(QString());
  const QStringList pattern = {QStringLiteral("libq%1*.so").arg(aPlatform)};
  return std::any_of(folders.cbegin(), folders.cend(),
                     [&](const QString& aFolder) { return !QDir(aFolder).entryList(pattern).isEmpty(); });
}

bool CanOpen(const QString& aPlatform) {
  if (!HasPlugin(aPlatform)) {
    return false;
  }
  if (aPlatform == QLatin1String("xcb")) {
    return CanOpenX11();
  }
  return !aPlatform.startsWith(QLatin1String("wayland")) || CanOpenWayland();
}

/// The platforms that the toolkit will try, as the environment says.
QStringList GetCandidates() {
  QStringList candidates;
  for (const QString& entry : GetVariable("QT_QPA_PLATFORM").split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    // What follows a colon are the platform's own arguments.
    candidates.append(entry.section(QLatin1Char(':'), 0, 0));
  }
  if (candidates.isEmpty()) {
    candidates = {QStringLiteral("wayland"), QStringLiteral("xcb")};
  }
  return candidates;
}

KrResult CheckDisplay() {
  const QStringList candidates = GetCandidates();
  if (std::any_of(candidates.cbegin(), candidates.cend(), CanOpen)) {
    return {};
  }
  return Fail(
      QStringLiteral("no display can be opened as %1 (DISPLAY is \"%2\", WAYLAND_DISPLAY is \"%3\"). Run the "
                     "program in a graphical session, or set DISPLAY or QT_QPA_PLATFORM.")
          .arg(candidates.join(QStringLiteral(" or ")), GetVariable("DISPLAY"), GetVariable("WAYLAND_DISPLAY")));
}

void MakeApplication() {
  // The toolkit keeps references to both for as long as the application object lives.
  static int argumentCount = 1;
  static char* arguments[] = {program_invocation_name, nullptr};
  // Never deleted: windows in the host's static objects may end after anything that this library could hook into.
  static const QApplication* const application = new QApplication(argumentCount, arguments);
  Q_UNUSED(application);
  // When the process ends is the host's business.
  QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace

KrResult EnsureApplication() {
  const QCoreApplication* application = QCoreApplication::instance();
  if (application == nullptr) {
    if (KrResult result = CheckDisplay(); !result.IsOK()) {
      return result;
    }
    MakeApplication();
    return {};
  }
  if (qobject_cast<const QApplication*>(application) == nullptr) {
    return Fail(QStringLiteral("the program's application object is a %1. Make it a QApplication.")
                    .arg(QString::fromLatin1(application->metaObject()->className())));
  }
  if (QThread::currentThread() != application->thread()) {
    return Fail(QStringLiteral("this is not the user-interface thread. Call it on the thread of the QApplication."));
  }
  return {};
}

} // namespace krgui
