#include "soakrecords.h"

#include <QApplication>
#include <QLabel>
#include <QMessageLogContext>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace {

/// What is written where a camera has gone or does not answer, and where the bars' thumbs are moved alone, to a place
/// that was one a moment ago.
constexpr std::array<std::string_view, 2> kExpected = {"Polling the device failed and is tried again",
                                                       "Coordinates out of bounds"};

bool IsExpected(const KrLogRecord& aRecord) {
  const std::string text = aRecord.text.ToUtf8();
  return aRecord.level < KrLogLevel::Warning ||
         std::ranges::any_of(kExpected, [&](std::string_view aPart) { return text.find(aPart) != text.npos; });
}

/// The toolkit's warnings are records, too.
void TakeToolkitMessage(QtMsgType aType, const QMessageLogContext&, const QString& aText) {
  const KrLogLevel level = aType == QtDebugMsg || aType == QtInfoMsg ? KrLogLevel::Info : KrLogLevel::Warning;
  KrLogger("Qt").Log(level, {"Qt", "qt"}, aText.toStdString());
}

} // namespace

SoakRecords::SoakRecords() {
  qInstallMessageHandler(TakeToolkitMessage);
  QObject::connect(&mAnswering, &QTimer::timeout, [this] { AnswerBox(); });
  mAnswering.start(0);
}

SoakRecords::~SoakRecords() {
  qInstallMessageHandler(nullptr);
}

void SoakRecords::Take() {
  for (const KrLogRecord& record : mCapture.GetRecords()) {
    if (IsExpected(record)) {
      ++mExpected;
      continue;
    }
    ++mUnexpected;
    std::printf("unexpected: [%s] %s: %s\n", record.channel.CStr(), record.function.CStr(), record.text.CStr());
  }
  mCapture.Clear();
}

/// Dialogs that wait for a camera end by themselves.
void SoakRecords::AnswerBox() {
  QWidget* const dialog = QApplication::activeModalWidget();
  const auto* const text = dialog ? dialog->findChild<QLabel*>("text") : nullptr;
  if (!text || !text->isVisible())
    return;
  ++mBoxes;
  if (!mIsCameraInTrouble) {
    ++mUnexpected;
    std::printf("unexpected message box: %s\n", text->text().toUtf8().constData());
  }
  dialog->close();
}
