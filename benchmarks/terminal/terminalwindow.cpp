#include "terminalwindow.h"

#include "checked.h"
#include "logic/serial/transcriptencoder.h"
#include "serial/rollingedit.h"
#include "serial/terminalids.h"

#include <QAbstractButton>
#include <QLineEdit>

namespace benchmarks {

namespace {

constexpr double kQuietMs = 600;
/// Of the transcript, which keeps half of its 32,768 at least.
constexpr std::size_t kFewestUnits = 16'384;

/// Keeps everything.
class WholeTranscript final : public krgui::ITranscript {
public:
  void RemoveLastLine() override {
    const std::size_t end = text.rfind(u"\r\n");
    text.erase(end == std::u16string::npos ? 0 : end + 2);
  }
  void Append(std::u16string_view aText) override { text += aText; }
  void SetEmpty() override { text.clear(); }

  std::u16string text;
};

std::u16string Encode(const std::string& aBytes, krgui::DisplayFormat aFormat) {
  constexpr std::size_t kAtOnce = 1'000; // Fits into the encoder in every format.
  krgui::TranscriptEncoder encoder;
  WholeTranscript transcript;
  encoder.SetDisplayFormat(transcript, aFormat);
  for (std::size_t begin = 0; begin < aBytes.size(); begin += kAtOnce) {
    const std::string chunk = aBytes.substr(begin, kAtOnce);
    encoder.RenderBytes(reinterpret_cast<const std::uint8_t*>(chunk.data()), static_cast<std::uint32_t>(chunk.size()));
    encoder.FlushPending(transcript);
  }
  return transcript.text;
}

namespace id = krgui::terminalid;

} // namespace

TerminalWindow::TerminalWindow(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, krgui::DisplayFormat aFormat)
    : mFormat(aFormat) {
  Check(mWindow.SetDevice(&aAdapter));
  Check(mWindow.SetSerialPort(aPort));
  Check(mWindow.ShowModeless(0));
  Get<QAbstractButton>(static_cast<int>(aFormat)).click();
  auto* const transcript = mWindow.GetWidget()->findChild<krgui::RollingEdit*>();
  QObject::connect(transcript, &QPlainTextEdit::textChanged, transcript,
                   [this] { mLastChangeMs = static_cast<double>(mClock.nsecsElapsed()) / 1e6; });
  mClock.start();
}

TerminalWindow::~TerminalWindow() {
  Check(mWindow.Close());
}

template <typename Control>
Control& TerminalWindow::Get(int aControl) const {
  return *mWindow.GetWidget()->findChild<Control*>("control" + QString::number(aControl));
}

void TerminalWindow::SendFile(const KrString& aPath, bool aEchoes) {
  if (Get<QAbstractButton>(id::kEcho).isChecked() != aEchoes)
    Get<QAbstractButton>(id::kEcho).click();
  Get<QLineEdit>(id::kFile).setText(QString::fromStdString(aPath.ToUtf8()));
  Get<QAbstractButton>(id::kSendFile).click();
}

bool TerminalWindow::IsSendingFile() const {
  return !Get<QAbstractButton>(id::kSendFile).isEnabled();
}

bool TerminalWindow::ShowsEndOf(const std::string& aBytes) const {
  const std::u16string_view shown = mWindow.GetWidget()->findChild<krgui::RollingEdit*>()->GetShownText();
  return shown.size() >= kFewestUnits && Encode(aBytes, mFormat).ends_with(shown);
}

bool TerminalWindow::IsQuiet() const {
  return mLastChangeMs >= 0 && static_cast<double>(mClock.nsecsElapsed()) / 1e6 - mLastChangeMs > kQuietMs;
}

} // namespace benchmarks
