#include "finder/diagnosisdialog.h"

#include "logic/finder/findingstext.h"
#include "logic/finder/hostdiagnosis.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace krgui {

namespace {

constexpr int kPreferredLetters = 100;
constexpr int kPreferredLines = 24;

QPushButton* MakeButton(const QString& aText, QWidget* aParent) {
  auto* button = new QPushButton(aText, aParent);
  button->setAutoDefault(false);
  return button;
}

QString FindText(const HostDiagnosis& aDiagnosis) {
  const KrString text =
      aDiagnosis.result.IsOK() ? FormatFindings(aDiagnosis.findings) : FormatDiagnosisFailure(aDiagnosis.result);
  return QString::fromStdU16String(text.ToWide());
}

} // namespace

DiagnosisDialog::DiagnosisDialog(QWidget* aOwner) : ModalLoop(aOwner) {
  DialogWindow& dialog = *GetDialog();
  dialog.setObjectName(QStringLiteral("diagnosis"));
  dialog.SetCaption(QStringLiteral("Why is my camera not here?"));

  auto* text = new QPlainTextEdit(QStringLiteral("Looking..."), &dialog);
  mText = text;
  text->setReadOnly(true);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text->setTabChangesFocus(true);
  text->setAccessibleName(QStringLiteral("Findings"));
  auto* copy = MakeButton(QStringLiteral("Copy"), &dialog);
  copy->setEnabled(false);
  mCopy = copy;
  auto* close = MakeButton(QStringLiteral("Close"), &dialog);
  close->setDefault(true);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(copy);
  buttons->addWidget(close);
  auto* content = new QVBoxLayout(&dialog);
  content->addWidget(text);
  content->addLayout(buttons);

  QObject::connect(copy, &QPushButton::clicked, text,
                   [text] { QGuiApplication::clipboard()->setText(text->toPlainText()); });
  QObject::connect(close, &QPushButton::clicked, &dialog, &DialogWindow::reject);
  const QFontMetrics metrics = text->fontMetrics();
  dialog.resize(metrics.averageCharWidth() * kPreferredLetters, metrics.lineSpacing() * kPreferredLines);
  dialog.SetPreferredSize(dialog.size());
  close->setFocus();
}

DiagnosisDialog::~DiagnosisDialog() = default;

ModalResult DiagnosisDialog::Run() {
  StartLooking();
  return RunLoop();
}

void DiagnosisDialog::StartLooking() {
  const auto diagnosis = std::make_shared<HostDiagnosis>();
  mLooking.Start([diagnosis](const std::stop_token& aStop) { *diagnosis = DiagnoseHost(aStop); },
                 [this, diagnosis] {
                   mText->setPlainText(FindText(*diagnosis));
                   mCopy->setEnabled(true);
                 });
}

void DiagnosisDialog::OnEnd() {
  mLooking.Cancel();
}

void DiagnosisDialog::OnAccept() {
  EndLoop(ModalResult::OK);
}

void DiagnosisDialog::OnCancel() {
  EndLoop(ModalResult::Cancel);
}

} // namespace krgui
