#include "recording/savingstate.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <array>

namespace krviewer {

namespace {

constexpr quint32 kVersion = 1;
/// By the numbers that stand for them.
constexpr std::array kFormats = {krapps::FrameFileFormat::TIFF, krapps::FrameFileFormat::PNG,
                                 krapps::FrameFileFormat::Raw};

} // namespace

QByteArray SavingState::Save() const {
  const auto place = std::find(kFormats.begin(), kFormats.end(), format) - kFormats.begin();
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream << kVersion << folder << static_cast<quint32>(place);
  return bytes;
}

void SavingState::Restore(const QByteArray& aBytes) {
  QDataStream stream(aBytes);
  quint32 version = 0;
  QString read;
  quint32 place = 0;
  stream >> version >> read >> place;
  if (stream.status() != QDataStream::Ok || version != kVersion || place >= kFormats.size())
    return;
  folder = read;
  format = kFormats[place];
}

} // namespace krviewer
