#include "recording/recordsettings.h"

#include <QDataStream>
#include <QDir>
#include <QIODevice>

#include <initializer_list>

namespace krviewer {

namespace {

constexpr quint32 kVersion = 1;
constexpr std::uint64_t kBytesPerMB = 1'000'000;

bool IsFormat(qint32 aNumber) {
  return aNumber >= static_cast<qint32>(krapps::FrameFileFormat::PNG) &&
         aNumber <= static_cast<qint32>(krapps::FrameFileFormat::Raw);
}

bool IsSound(const RecordSettings& aSettings) {
  for (const int value : {aSettings.mostFrames, aSettings.mostSeconds, aSettings.mostDiskMB, aSettings.freeDiskMB})
    if (value < 0)
      return false;
  return aSettings.everyNth >= 1 && aSettings.queueMB >= 1;
}

} // namespace

RecordingOptions RecordSettings::MakeOptions(const QString& aName, const KrString& aDeviceID) const {
  const auto toBytes = [](int aMegabytes) { return static_cast<std::uint64_t>(aMegabytes) * kBytesPerMB; };
  RecordingOptions options;
  options.folder = QDir(folder).filePath(aName).toStdString();
  options.format = format;
  options.takesIncomplete = takesIncomplete;
  options.everyNth = static_cast<std::uint64_t>(everyNth);
  options.mostFrames = static_cast<std::uint64_t>(mostFrames);
  options.mostSeconds = static_cast<std::uint64_t>(mostSeconds);
  options.mostDiskBytes = toBytes(mostDiskMB);
  options.freeDiskBytes = toBytes(freeDiskMB);
  options.mostQueuedBytes = toBytes(queueMB);
  options.deviceID = aDeviceID;
  options.software = "krviewer " KRGUI_VERSION;
  return options;
}

QByteArray RecordSettings::Save() const {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream << kVersion << folder << static_cast<qint32>(format) << takesIncomplete;
  for (const int value : {everyNth, mostFrames, mostSeconds, mostDiskMB, freeDiskMB, queueMB})
    stream << qint32{value};
  return bytes;
}

void RecordSettings::Restore(const QByteArray& aBytes) {
  QDataStream stream(aBytes);
  quint32 version = 0;
  qint32 number = 0;
  RecordSettings read;
  stream >> version >> read.folder >> number >> read.takesIncomplete;
  for (int* const value :
       {&read.everyNth, &read.mostFrames, &read.mostSeconds, &read.mostDiskMB, &read.freeDiskMB, &read.queueMB}) {
    qint32 kept = 0;
    stream >> kept;
    *value = kept;
  }
  if (stream.status() != QDataStream::Ok || version != kVersion || !IsFormat(number) || !IsSound(read))
    return;
  read.format = static_cast<krapps::FrameFileFormat>(number);
  *this = read;
}

} // namespace krviewer
