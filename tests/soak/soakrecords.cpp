#include "soakrecords.h"

#include <QApplication>
#include <QLabel>
#include <QMessageLogContext>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

/// What a browser writes whose camera has gone or does not answer.
constexpr std::string_view kPollingFailed = "Polling the device failed and is tried again";
/// What a display writes where the bars' thumbs are moved alone, to a place that was one a moment ago.
constexpr std::string_view kOutOfBounds = "Coordinates out of bounds";

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

void SoakRecords::BeginTrouble(const std::vector<std::string>& aNames) {
  mIsCameraInTrouble = true;
  mTroubled.insert(aNames.begin(), aNames.end());
}

bool SoakRecords::IsExpected(const KrLogRecord& aRecord) const {
  const std::string text = aRecord.text.ToUtf8();
  if (aRecord.level < KrLogLevel::Warning || text.starts_with(kOutOfBounds))
    return true;
  const auto isSaid = [&](std::string_view aPart) { return text.find(aPart) != text.npos; };
  return text.starts_with(kPollingFailed) && std::ranges::any_of(mTroubled, isSaid);
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
  mTroubled.clear();
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
