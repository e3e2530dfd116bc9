#include "serial/terminalcontrols.h"

#include "platform/choicelist.h"
#include "platform/plainline.h"
#include "res/templates.h"
#include "serial/rollingedit.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>

namespace krgui {

namespace {

namespace id = terminalid;

/// Usable whether or not a port is open, or by rules of their own.
constexpr int kSelfWilledIDs[] = {id::kPort, id::kPortLabel, id::kSpeed,        id::kLoopback, id::kStatus,
                                  id::kStop, id::kProgress,  id::kProgressText, id::kPause,    id::kSave};

constexpr struct {
  int id;
  const char* name;
} kNames[] = {
    {id::kSendASCII, "Send as ASCII"},
    {id::kSendHexadecimal, "Send as hexadecimal"},
    {id::kCR, "Append CR"},
    {id::kLF, "Append LF"},
    {id::kNull, "Append NULL"},
    {id::kOther, "Append other bytes"},
    {id::kOtherField, "Other bytes to append, in hexadecimal"},
    {id::kBrowse, "Choose the file to send"},
    {id::kStop, "Stop sending the file"},
    {id::kShowASCII, "Display as ASCII"},
    {id::kShowHexadecimal, "Display as hexadecimal"},
    {id::kShowHybrid, "Display as hexadecimal and ASCII"},
    {id::kPause, "Pause the transcript"},
    {id::kClear, "Clear the transcript"},
    {id::kSave, "Save the transcript"},
};

constexpr double kFontHeight = 14;
/// The toolkit counts progress in 32 bits.
constexpr int kProgressSteps = 1000;

/// A line of the font has the height; of the fixed-pitch font of the system where there is no Courier New.
QFont MakeTerminalFont() {
  const QString family = QStringLiteral("Courier New");
  QFont font = QFontDatabase::hasFamily(family) ? QFont(family) : QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  int pixels = static_cast<int>(kFontHeight);
  font.setPixelSize(pixels);
  while (pixels > 1 && QFontMetricsF(font).height() > kFontHeight + 0.5)
    font.setPixelSize(--pixels);
  return font;
}

bool IsSelfWilled(int aID) {
  return std::find(std::begin(kSelfWilledIDs), std::end(kSelfWilledIDs), aID) != std::end(kSelfWilledIDs);
}

/// A place and what fills it.
void Fill(QWidget& aPlace, QWidget& aWidget) {
  auto* layout = new QVBoxLayout(&aPlace);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(&aWidget);
  // Smaller than it would like, as the window may be.
  layout->setSizeConstraint(QLayout::SetNoConstraint);
}

} // namespace

TerminalControls::TerminalControls(const Lookup& aLookup, DisplayFormat aFormat) : mLookup(aLookup) {
  MakeTranscript();
  MakeProgressBar();
  NameControls();
  for (QComboBox* list : {&GetPortList(), &GetSpeedList()})
    new ChoiceList(*list);
  const QFont font = MakeTerminalFont();
  GetDataField().setFont(font);
  mTranscript->setFont(font);
  Get<QRadioButton>(id::kSendASCII).setChecked(true);
  Get<QRadioButton>(static_cast<int>(aFormat)).setChecked(true);
  Get<QCheckBox>(id::kCR).setChecked(true);
  GetEchoBox().setChecked(true);
  Enable(false, false);
}

void TerminalControls::MakeTranscript() {
  QWidget& place = Get<QWidget>(id::kTranscript);
  mTranscript = new RollingEdit(&place);
  mTranscript->setObjectName(QStringLiteral("transcript"));
  mTranscript->setAccessibleName(QStringLiteral("Transcript"));
  mTranscript->setMinimumSize(0, 0);
  Fill(place, *mTranscript);
  QWidget::setTabOrder(&GetSaveButton(), mTranscript);
  QObject::connect(mTranscript, &QPlainTextEdit::textChanged, &mConnections, [this] { EnableView(); });
}

void TerminalControls::MakeProgressBar() {
  QWidget& place = Get<QWidget>(id::kProgress);
  mProgressBar = new QProgressBar(&place);
  mProgressBar->setAccessibleName(QStringLiteral("File transfer"));
  mProgressBar->setRange(0, kProgressSteps);
  mProgressBar->setTextVisible(false);
  mProgressBar->setMinimumSize(0, 0);
  Fill(place, *mProgressBar);
}

void TerminalControls::NameControls() const {
  for (const auto& row : kNames)
    Get<QWidget>(row.id).setAccessibleName(QString::fromLatin1(row.name));
  auto& hexLabel = Get<QLabel>(id::kHexLabel);
  hexLabel.setBuddy(&Get<QWidget>(id::kOtherField));
}

std::array<QRadioButton*, 3> TerminalControls::GetDisplayFormatButtons() const {
  return {&Get<QRadioButton>(static_cast<int>(DisplayFormat::ASCII)),
          &Get<QRadioButton>(static_cast<int>(DisplayFormat::Hexadecimal)),
          &Get<QRadioButton>(static_cast<int>(DisplayFormat::Hybrid))};
}

SendFormat TerminalControls::GetSendFormat() const {
  return Get<QRadioButton>(id::kSendHexadecimal).isChecked() ? SendFormat::Hexadecimal : SendFormat::ASCII;
}

TrailerChoice TerminalControls::GetTrailer() const {
  return {.cr = Get<QCheckBox>(id::kCR).isChecked(),
          .lf = Get<QCheckBox>(id::kLF).isChecked(),
          .null = Get<QCheckBox>(id::kNull).isChecked(),
          .other = GetOtherBox().isChecked(),
          .otherText = Get<QLineEdit>(id::kOtherField).text().toStdU16String()};
}

DisplayFormat TerminalControls::GetDisplayFormat() const {
  for (const DisplayFormat format : {DisplayFormat::Hexadecimal, DisplayFormat::Hybrid}) {
    if (Get<QRadioButton>(static_cast<int>(format)).isChecked())
      return format;
  }
  return DisplayFormat::ASCII;
}

void TerminalControls::Enable(bool aIsPortOpen, bool aIsSendingFile) {
  for (const ControlTemplate& control : FindTemplate(kSerialTerminalTraits.popupTemplate)->controls) {
    if (control.controlClass == ControlClass::GroupBox || IsSelfWilled(control.id))
      continue;
    const bool isOther = control.id == id::kOtherField || control.id == id::kHexLabel;
    const bool isSending = control.id == id::kSend || control.id == id::kSendFile;
    Get<QWidget>(control.id)
        .setEnabled(aIsPortOpen && (!isOther || GetOtherBox().isChecked()) && (!isSending || !aIsSendingFile));
  }
  GetStopButton().setEnabled(aIsPortOpen && aIsSendingFile);
  mIsPortOpen = aIsPortOpen;
  EnableView();
}

/// What came before the port was closed can still be saved, and a pause ended.
void TerminalControls::EnableView() {
  const bool hasText = !mTranscript->document()->isEmpty();
  GetSaveButton().setEnabled(hasText);
  GetPauseBox().setEnabled(mIsPortOpen || hasText || GetPauseBox().isChecked());
}

void TerminalControls::ShowPort(const QString& aWords, bool aIsOpen) {
  mStatus.SetPort(aWords.toStdU16String(), aIsOpen);
  ShowStatus();
}

void TerminalControls::ShowBusy(bool aIsBusy) {
  mStatus.SetBusy(aIsBusy);
  ShowStatus();
}

void TerminalControls::ShowStatus() {
  const std::u16string_view words = mStatus.GetWords();
  SetLine(id::kStatus, QString::fromUtf16(words.data(), static_cast<qsizetype>(words.size())));
}

void TerminalControls::ShowProgress(std::uint64_t aWritten, std::uint64_t aFileSize) {
  const double share = aFileSize > 0 ? static_cast<double>(aWritten) / static_cast<double>(aFileSize) : 0;
  mProgressBar->setValue(static_cast<int>(std::clamp(share, 0.0, 1.0) * kProgressSteps));
  SetLine(id::kProgressText, QStringLiteral("%1 of %2 bytes").arg(aWritten).arg(aFileSize));
  Get<QWidget>(id::kProgress).show();
  Get<QWidget>(id::kProgressText).show();
}

void TerminalControls::HideProgress() {
  Get<QWidget>(id::kProgress).hide();
  Get<QWidget>(id::kProgressText).hide();
}

/// What does not fit is told by the tooltip.
void TerminalControls::SetLine(int aLabel, const QString& aText) const {
  auto& label = Get<QLabel>(aLabel);
  const QString fitting = label.fontMetrics().elidedText(aText, Qt::ElideRight, label.width());
  label.setText(fitting);
  label.setAccessibleName(aText);
  label.setToolTip(fitting == aText ? QString() : ToPlainToolTip(aText));
}

} // namespace krgui
