#include "page/keptpage.h"

#include <QDataStream>
#include <QIODevice>
#include <QString>

namespace krviewer {

namespace {

constexpr quint32 kVersion = 2;
// The length of a text, behind which there may be no letter.
constexpr qint64 kLeastTextBytes = 4;

// As the toolkit reads a list, but for the memory that it takes at once for all that is announced.
void ReadTexts(QDataStream& aStream, QStringList& aTexts) {
  quint32 count = 0;
  aStream >> count;
  if (static_cast<qint64>(count) > aStream.device()->bytesAvailable() / kLeastTextBytes) {
    aStream.setStatus(QDataStream::ReadCorruptData);
    return;
  }
  for (quint32 index = 0; index < count && aStream.status() == QDataStream::Ok; ++index) {
    QString text;
    aStream >> text;
    aTexts.append(text);
  }
}

} // namespace

QByteArray KeptPage::Save() const {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream << kVersion << layout << recording << saving;
  for (const QStringList& texts : options)
    stream << texts;
  stream << isCreatingPorts;
  return bytes;
}

std::optional<KeptPage> KeptPage::Read(const QByteArray& aBytes) {
  QDataStream stream(aBytes);
  quint32 version = 0;
  KeptPage page;
  stream >> version >> page.layout >> page.recording >> page.saving;
  for (QStringList& texts : page.options)
    ReadTexts(stream, texts);
  stream >> page.isCreatingPorts;
  if (stream.status() != QDataStream::Ok || version != kVersion)
    return std::nullopt;
  return page;
}

} // namespace krviewer
