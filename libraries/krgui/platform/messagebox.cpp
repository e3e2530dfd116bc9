#include "platform/messagebox.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>

#include <algorithm>
#include <iterator>
#include <span>

namespace krgui {

namespace {

/// How wide a line of the text becomes before it is broken, in letters.
constexpr int kLettersPerLine = 64;
constexpr int kMostLines = 20;

constexpr struct {
  MessageIcon icon;
  QStyle::StandardPixmap picture;
  const char* name;
} kIcons[] = {
    {MessageIcon::Stop, QStyle::SP_MessageBoxCritical, "Error"},
    {MessageIcon::Exclamation, QStyle::SP_MessageBoxWarning, "Warning"},
    {MessageIcon::Information, QStyle::SP_MessageBoxInformation, "Information"},
    {MessageIcon::Question, QStyle::SP_MessageBoxQuestion, "Question"},
};

struct ButtonRow {
  ModalResult result;
  const char* text;
  Qt::Key key; ///< Presses it alone, as nothing in the box takes letters; Key_unknown for none.
};

constexpr ButtonRow kOKButtons[] = {{ModalResult::OK, "OK", Qt::Key_unknown}};
constexpr ButtonRow kYesNoButtons[] = {{ModalResult::Yes, "&Yes", Qt::Key_Y}, {ModalResult::No, "&No", Qt::Key_N}};

std::span<const ButtonRow> GetButtons(MessageButtons aButtons) {
  if (aButtons == MessageButtons::YesNo) {
    return kYesNoButtons;
  }
  return kOKButtons;
}

QString MakeLines(const QString& aText) {
  return QString(aText).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

class MessageBox final : public ModalLoop {
public:
  MessageBox(QWidget* aOwner, const QString& aText, const QString& aCaption, MessageIcon aIcon,
             MessageButtons aButtons, const QString& aDetail);
  ModalResult Run() { return RunLoop(); }

private:
  QLabel* MakePicture(MessageIcon aIcon);
  QWidget* MakeText(const QString& aText, const QString& aName);
  QWidget* MakeView(QLabel& aText);
  QPushButton* MakeButton(const ButtonRow& aButton);

  void OnAccept() override { EndLoop(mButtons.front().result); }
  void OnCancel() override { EndLoop(mButtons.back().result); }

  const std::span<const ButtonRow> mButtons;
};

MessageBox::MessageBox(QWidget* aOwner, const QString& aText, const QString& aCaption, MessageIcon aIcon,
                       MessageButtons aButtons, const QString& aDetail)
    : ModalLoop(aOwner), mButtons(GetButtons(aButtons)) {
  const QString text = MakeLines(aText);
  const QString detail = MakeLines(aDetail);
  DialogWindow& dialog = *GetDialog();
  auto* grid = new QGridLayout(&dialog);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  grid->addWidget(MakePicture(aIcon), 0, 0, detail.isEmpty() ? 1 : 2, 1, Qt::AlignTop);
  grid->addWidget(MakeText(text, QStringLiteral("text")), 0, 1);
  if (!detail.isEmpty())
    grid->addWidget(MakeText(detail, QStringLiteral("detail")), 1, 1);
  grid->setHorizontalSpacing(2 * grid->horizontalSpacing());
  grid->setVerticalSpacing(2 * grid->verticalSpacing());
  auto* row = new QHBoxLayout;
  row->addStretch();
  for (const ButtonRow& button : mButtons) {
    row->addWidget(MakeButton(button));
  }
  grid->addLayout(row, 2, 0, 1, 2);
  dialog.KeepDefaultButton();
  dialog.SetCaption(aCaption);
  dialog.setAccessibleDescription(detail.isEmpty() ? text : text + QLatin1Char('\n') + detail);
  dialog.findChild<QPushButton*>()->setDefault(true);
  dialog.findChild<QPushButton*>()->setFocus();
  // So that the size is known when the box is placed.
  grid->activate();
  dialog.adjustSize();
}

QLabel* MessageBox::MakePicture(MessageIcon aIcon) {
  auto* picture = new QLabel(GetDialog());
  picture->setTextFormat(Qt::PlainText);
  const auto* row =
      std::find_if(std::begin(kIcons), std::end(kIcons), [aIcon](const auto& aRow) { return aRow.icon == aIcon; });
  const QStyle& style = *picture->style();
  const int extent = style.pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, picture);
  picture->setPixmap(
      style.standardIcon(row->picture, nullptr, picture).pixmap(QSize(extent, extent), picture->devicePixelRatio()));
  picture->setObjectName(QStringLiteral("picture"));
  picture->setAccessibleName(QString::fromLatin1(row->name));
  return picture;
}

/// No wider than a line that reads well; a long word without blanks is not broken, and makes it wider.
QWidget* MessageBox::MakeText(const QString& aText, const QString& aName) {
  auto* label = new QLabel(GetDialog());
  label->setObjectName(aName);
  label->setTextFormat(Qt::PlainText);
  label->setText(aText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  const QFontMetrics metrics = label->fontMetrics();
  const int limit = kLettersPerLine * metrics.averageCharWidth();
  if (label->sizeHint().width() > limit) {
    label->setWordWrap(true);
    label->setFixedWidth(limit);
    label->setMinimumHeight(label->heightForWidth(limit));
  }
  const int height = label->wordWrap() ? label->heightForWidth(limit) : label->sizeHint().height();
  if (height > kMostLines * metrics.lineSpacing())
    return MakeView(*label);
  return label;
}

/// So that the answer stays on the screen, however many lines there are.
QWidget* MessageBox::MakeView(QLabel& aText) {
  aText.adjustSize();
  aText.setAlignment(Qt::AlignLeft | Qt::AlignTop);
  auto* view = new QScrollArea(GetDialog());
  view->setObjectName(QStringLiteral("lines"));
  view->setAccessibleName(QStringLiteral("Message"));
  // Without a mouse it is scrolled by its keys.
  view->setFocusPolicy(Qt::StrongFocus);
  view->setWidget(&aText);
  const int frame = 2 * view->frameWidth();
  const int bar = view->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view);
  view->setFixedSize(aText.width() + bar + frame, kMostLines * aText.fontMetrics().lineSpacing() + frame);
  return view;
}

QPushButton* MessageBox::MakeButton(const ButtonRow& aButton) {
  DialogWindow* dialog = GetDialog();
  auto* button = new QPushButton(QString::fromLatin1(aButton.text), dialog);
  const auto choose = [this, result = aButton.result] { EndLoop(result); };
  QObject::connect(button, &QPushButton::clicked, dialog, choose);
  if (aButton.key != Qt::Key_unknown) {
    auto* key = new QShortcut(QKeySequence(aButton.key), dialog);
    QObject::connect(key, &QShortcut::activated, dialog, choose);
  }
  return button;
}

} // namespace

ModalResult ShowMessage(QWidget* aOwner, const QString& aText, const QString& aCaption, MessageIcon aIcon,
                        MessageButtons aButtons, const QString& aDetail) {
  MessageBox box(aOwner, aText, aCaption, aIcon, aButtons, aDetail);
  return box.Run();
}

} // namespace krgui
