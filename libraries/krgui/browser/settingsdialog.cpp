#include "browser/settingsdialog.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextDocument>
#include <QTextOption>
#include <QVBoxLayout>

namespace krgui {

namespace {

constexpr int kPreferredLetters = 130;
constexpr int kPreferredLines = 32;
/// Below them a heading that wraps would push table, details and buttons over each other.
constexpr int kLeastLetters = 65;
constexpr int kLeastLines = 22;
constexpr int kDetailLines = 5;

} // namespace

SettingsDialog::SettingsDialog(QWidget* aOwner, const SettingsDialogTexts& aTexts, const QString& aTableName,
                               const std::vector<int>& aShares)
    : ModalLoop(aOwner), mHasChoice(!aTexts.accept.isEmpty()) {
  DialogWindow& dialog = *GetDialog();
  dialog.setObjectName(aTexts.objectName);
  dialog.SetCaption(aTexts.caption);
  auto* heading = new QLabel(&dialog);
  heading->setObjectName(QStringLiteral("heading"));
  heading->setTextFormat(Qt::PlainText);
  heading->setText(aTexts.heading);
  heading->setWordWrap(true);
  heading->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long name must not make the dialog wider than the screen.
  QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  policy.setHeightForWidth(true);
  heading->setSizePolicy(policy);
  mTable = new SettingsTable(aTableName, aShares, &dialog);

  mButtonRow = new QHBoxLayout;
  mButtonRow->addStretch();
  QPushButton* const copy = AddButton(QStringLiteral("Copy All"));
  QPushButton* const accept = mHasChoice ? AddButton(aTexts.accept) : nullptr;
  QPushButton* const cancel = AddButton(aTexts.cancel);
  auto* content = new QVBoxLayout(&dialog);
  content->addWidget(heading);
  content->addWidget(mTable, 1);
  content->addWidget(MakeDetails());
  content->addLayout(mButtonRow);

  QObject::connect(copy, &QPushButton::clicked, mTable, [this] { mTable->CopyAll(); });
  dialog.SetButtons(accept, cancel);
  dialog.KeepDefaultButton();
  (accept ? accept : cancel)->setDefault(true);
  const QFontMetrics metrics = mTable->fontMetrics();
  dialog.setMinimumSize(metrics.averageCharWidth() * kLeastLetters, metrics.lineSpacing() * kLeastLines);
  dialog.resize(metrics.averageCharWidth() * kPreferredLetters, metrics.lineSpacing() * kPreferredLines);
  dialog.SetPreferredSize(dialog.size());
  mTable->setFocus();
}

SettingsDialog::~SettingsDialog() = default;

/// What cells are too narrow for, also for those who have no mouse to see it as a tooltip.
QWidget* SettingsDialog::MakeDetails() {
  auto* details = new QPlainTextEdit(GetDialog());
  details->setObjectName(QStringLiteral("details"));
  details->setAccessibleName(QStringLiteral("Selected row"));
  details->setReadOnly(true);
  details->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  details->setTabChangesFocus(true);
  details->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  details->setFixedHeight(kDetailLines * details->fontMetrics().lineSpacing() + 2 * details->frameWidth() +
                          static_cast<int>(2 * details->document()->documentMargin()));
  QObject::connect(mTable, &SettingsTable::CurrentChanged, details,
                   [this, details] { details->setPlainText(mTable->DescribeCurrent()); });
  return details;
}

QPushButton* SettingsDialog::AddButton(const QString& aText) {
  auto* button = new QPushButton(aText, GetDialog());
  mButtonRow->addWidget(button);
  return button;
}

void SettingsDialog::OnAccept() {
  EndLoop(mHasChoice ? ModalResult::OK : ModalResult::Cancel);
}

void SettingsDialog::OnCancel() {
  EndLoop(ModalResult::Cancel);
}

} // namespace krgui
