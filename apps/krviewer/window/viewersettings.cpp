#include "window/viewersettings.h"

#include "window/writereason.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace krviewer {

namespace {

constexpr const char* kRecentCameras = "cameras/recent";
constexpr const char* kID = "id";
constexpr const char* kName = "name";
constexpr const char* kPageState = "page/state";
constexpr const char* kPages = "pages";
constexpr const char* kHosts = "hosts";
constexpr const char* kHostSideNames[kHostSides] = {"stream", "connection"};
/// Of each side; a host has far fewer.
constexpr int kMostHostSettings = 200;

/// Layouts are written with a sum of their bytes, as the toolkit is not to be given what somebody else has written.
constexpr qsizetype kMostBytes = 1 << 16;
/// The toolkit reads it as a whole; ours is a hundredth of that.
constexpr qint64 kMostFileBytes = qint64{16} << 20;

QByteArray Seal(const QByteArray& aBytes) {
  return QByteArray::number(qChecksum(aBytes)) + ':' + aBytes.toBase64();
}

QByteArray Unseal(const QByteArray& aSealed) {
  const qsizetype colon = aSealed.indexOf(':');
  if (colon < 0 || aSealed.size() > kMostBytes)
    return {};
  const auto bytes = QByteArray::fromBase64Encoding(aSealed.mid(colon + 1), QByteArray::AbortOnBase64DecodingErrors);
  return bytes && QByteArray::number(qChecksum(*bytes)) == aSealed.first(colon) ? *bytes : QByteArray();
}

// A name in the file for an ID of a device, which may hold anything.
QString MakePageName(const QString& aCameraID) {
  return QString::fromLatin1(aCameraID.toUtf8().toHex());
}

QString MakePageKey(const QString& aCameraID) {
  return QLatin1String(kPages) + QLatin1Char('/') + MakePageName(aCameraID);
}

QString MakeHostKey(const QString& aCameraID) {
  return QLatin1String(kHosts) + QLatin1Char('/') + MakePageName(aCameraID);
}

std::unique_ptr<QSettings> OpenFile(const QString& aFile) {
  return std::make_unique<QSettings>(aFile, QSettings::IniFormat);
}

// Why the toolkit is not to open it: it would wait for a pipe without end, and takes all that there is.
QString FindRefusal(const QString& aFile) {
  const QFileInfo file(aFile);
  QString what;
  if (file.exists() && !file.isFile() && !file.isDir())
    what = QStringLiteral("is no file");
  else if (file.size() > kMostFileBytes && file.isFile())
    what = QStringLiteral("has more than 16 MiB and is not read");
  if (what.isEmpty())
    return what;
  return QStringLiteral("What should hold the settings, %1, %2: windows and recent cameras are not kept. Move it away.")
      .arg(QDir::toNativeSeparators(aFile), what);
}

} // namespace

ViewerSettings::ViewerSettings(const QString& aFile) : mRefusal(FindRefusal(aFile)) {
  if (!aFile.isEmpty() && mRefusal.isEmpty())
    mSettings = OpenFile(aFile);
}

ViewerSettings::~ViewerSettings() = default;

QString ViewerSettings::GetUserFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return folder.isEmpty() ? folder : folder + QStringLiteral("/krgui/krviewer.ini");
}

QString ViewerSettings::TakeTrouble() {
  if (!mSettings)
    return mRefusal;
  static_cast<void>(mSettings->allKeys()); // Before, only parts of the file have been looked at.
  const QSettings::Status status = mSettings->status();
  if (status == QSettings::NoError)
    return {};
  const QString file = QDir::toNativeSeparators(mSettings->fileName());
  if (status == QSettings::FormatError) {
    mSettings = OpenFile(mSettings->fileName()); // It remembers the first trouble alone.
    return QStringLiteral("The settings in %1 are damaged: what could not be read of them begins anew.").arg(file);
  }
  mHasToldWriting = true;
  return QStringLiteral("The settings in %1 cannot be read or written: windows and recent cameras are not kept. Check "
                        "the rights of the file and of its folder.")
      .arg(file);
}

void ViewerSettings::Write() {
  if (mSettings)
    mSettings->sync();
}

QString ViewerSettings::TakeWriteTrouble() {
  if (!mSettings || mHasToldWriting || mSettings->status() != QSettings::AccessError)
    return {};
  mHasToldWriting = true;
  const QString reason = FindWriteReason(mSettings->fileName());
  return QStringLiteral("The settings cannot be written to %1%2. What is changed of windows, panels and recent cameras "
                        "is not kept. Make room on the disk, or check the rights of the file and of its folder.")
      .arg(QDir::toNativeSeparators(mSettings->fileName()),
           reason.isEmpty() ? QString() : QStringLiteral(": ") + reason);
}

QByteArray ViewerSettings::Get(const QString& aName) const {
  return mSettings ? Unseal(mSettings->value(aName).toByteArray()) : QByteArray();
}

void ViewerSettings::Set(const QString& aName, const QByteArray& aBytes) {
  if (mSettings)
    mSettings->setValue(aName, Seal(aBytes));
}

QByteArray ViewerSettings::GetPageState(const QString& aCameraID) const {
  const QByteArray own = aCameraID.isEmpty() ? QByteArray() : Get(MakePageKey(aCameraID));
  return own.isEmpty() ? Get(QLatin1String(kPageState)) : own;
}

void ViewerSettings::SetPageState(const QByteArray& aState, const QString& aCameraID) {
  Set(QLatin1String(kPageState), aState);
  if (IsRecent(aCameraID))
    Set(MakePageKey(aCameraID), aState);
}

HostSettings ViewerSettings::GetHostSettings(const QString& aCameraID) const {
  HostSettings settings;
  if (!mSettings || aCameraID.isEmpty())
    return settings;
  mSettings->beginGroup(MakeHostKey(aCameraID));
  for (std::size_t side = 0; side < kHostSides; ++side) {
    mSettings->beginGroup(QLatin1String(kHostSideNames[side]));
    const QStringList names = mSettings->childKeys();
    for (const QString& name : names.first(std::min<qsizetype>(names.size(), kMostHostSettings)))
      settings[side].push_back({name.toStdString(), mSettings->value(name).toString().toStdString()});
    mSettings->endGroup();
  }
  mSettings->endGroup();
  return settings;
}

void ViewerSettings::SetHostSettings(const HostSettings& aSettings, const QString& aCameraID) {
  if (!mSettings || !IsRecent(aCameraID))
    return;
  mSettings->remove(MakeHostKey(aCameraID));
  mSettings->beginGroup(MakeHostKey(aCameraID));
  for (std::size_t side = 0; side < kHostSides; ++side)
    for (const KrGenSetting& setting : aSettings[side])
      mSettings->setValue(QLatin1String(kHostSideNames[side]) + QLatin1Char('/') +
                              QString::fromUtf8(setting.name.CStr()),
                          QString::fromUtf8(setting.value.CStr()));
  mSettings->endGroup();
}

bool ViewerSettings::IsRecent(const QString& aCameraID) const {
  const RecentCameras recent = GetRecentCameras();
  return std::ranges::any_of(recent.GetAll(), [&](const RecentCamera& aCamera) { return aCamera.id == aCameraID; });
}

// So that the file does not grow with each camera that was ever shown.
void ViewerSettings::Forget(const char* aGroup, const RecentCameras& aCameras) {
  QSet<QString> kept;
  for (const RecentCamera& camera : aCameras.GetAll())
    kept.insert(MakePageName(camera.id));
  mSettings->beginGroup(QLatin1String(aGroup));
  for (const QString& name : mSettings->childKeys() + mSettings->childGroups())
    if (!kept.contains(name))
      mSettings->remove(name);
  mSettings->endGroup();
}

RecentCameras ViewerSettings::GetRecentCameras() const {
  RecentCameras cameras;
  if (!mSettings)
    return cameras;
  // A file may claim any number of them.
  const int count = static_cast<int>(
      std::min<qsizetype>(mSettings->beginReadArray(QLatin1String(kRecentCameras)), RecentCameras::kMost));
  for (int index = count - 1; index >= 0; --index) {
    mSettings->setArrayIndex(index);
    cameras.Add({mSettings->value(QLatin1String(kID)).toString(), mSettings->value(QLatin1String(kName)).toString()});
  }
  mSettings->endArray();
  return cameras;
}

void ViewerSettings::SetRecentCameras(const RecentCameras& aCameras) {
  if (!mSettings)
    return;
  for (const char* const group : {kPages, kHosts})
    Forget(group, aCameras);
  mSettings->remove(QLatin1String(kRecentCameras));
  const QList<RecentCamera>& all = aCameras.GetAll();
  mSettings->beginWriteArray(QLatin1String(kRecentCameras), static_cast<int>(all.size()));
  for (int index = 0; index < all.size(); ++index) {
    mSettings->setArrayIndex(index);
    mSettings->setValue(QLatin1String(kID), all[index].id);
    mSettings->setValue(QLatin1String(kName), all[index].name);
  }
  mSettings->endArray();
}

} // namespace krviewer
