#include "plainterminal.h"

#include <QFontDatabase>

#include <array>

namespace benchmarks {

namespace {

constexpr QSize kViewSize(580, 320);
constexpr int kMostLines = 2500; // About what the terminal's transcript holds.
constexpr std::uint32_t kReadTimeoutMs = 250;

} // namespace

PlainTerminal::PlainTerminal() {
  mView.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  mView.setReadOnly(true);
  mView.setLineWrapMode(QPlainTextEdit::NoWrap);
  mView.setMaximumBlockCount(kMostLines);
  mView.resize(kViewSize);
  mView.show();
}

PlainTerminal::~PlainTerminal() {
  mThread.request_stop();
  mPort.Cancel();
  mThread = {};
}

KrResult PlainTerminal::Open(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort) {
  KrResult opened = mPort.Open(&aAdapter, aPort);
  if (opened.IsOK())
    mThread = std::jthread([this](const std::stop_token& aStop) { Receive(aStop); });
  return opened;
}

void PlainTerminal::Receive(const std::stop_token& aStop) {
  std::array<std::uint8_t, 64> bytes;
  while (!aStop.stop_requested()) {
    std::uint32_t read = 0;
    if (!mPort.Read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), read, kReadTimeoutMs).IsOK())
      continue;
    const QString text = QString::fromLatin1(reinterpret_cast<const char*>(bytes.data()), read);
    QMetaObject::invokeMethod(&mView, [this, text, read] {
      mView.moveCursor(QTextCursor::End);
      mView.insertPlainText(text);
      mView.ensureCursorVisible();
      mShown += read;
    });
  }
}

} // namespace benchmarks
