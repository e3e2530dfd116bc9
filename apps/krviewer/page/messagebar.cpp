#include "page/messagebar.h"

#include "window/mnemonics.h"
#include "window/toolglyphs.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

#include <utility>

namespace krviewer {

namespace {

/// A bar with room for fewer letters has its buttons below the text.
constexpr int kFewLetters = 90;
/// How much of the sign's colour is in the bar's background.
constexpr double kTint = 0.18;

QColor GetSignColour(MessageKind aKind) {
  switch (aKind) {
  case MessageKind::Information:
    return {0x2f, 0x7f, 0xd0};
  case MessageKind::Warning:
    return {0xe0, 0x9a, 0x10};
  case MessageKind::Error:
    return {0xd0, 0x30, 0x30};
  }
  return {};
}

QStyle::StandardPixmap GetSign(MessageKind aKind) {
  switch (aKind) {
  case MessageKind::Warning:
    return QStyle::SP_MessageBoxWarning;
  case MessageKind::Error:
    return QStyle::SP_MessageBoxCritical;
  default:
    return QStyle::SP_MessageBoxInformation;
  }
}

QColor Mix(const QColor& aBase, const QColor& aTint) {
  const auto mix = [](int aFrom, int aTo) { return static_cast<int>(aFrom + (aTo - aFrom) * kTint); };
  return {mix(aBase.red(), aTint.red()), mix(aBase.green(), aTint.green()), mix(aBase.blue(), aTint.blue())};
}

} // namespace

MessageBar::MessageBar(QWidget* aParent)
    : QFrame(aParent), mIcon(new QLabel), mLabel(new QLabel), mSaid(new QBoxLayout(QBoxLayout::LeftToRight)),
      mButtons(new QHBoxLayout), mDismiss(new QToolButton) {
  setObjectName(QStringLiteral("messageBar"));
  setAutoFillBackground(true);
  mLabel->setObjectName(QStringLiteral("message"));
  mIcon->setTextFormat(Qt::PlainText);
  mLabel->setTextFormat(Qt::PlainText);
  mLabel->setWordWrap(true);
  mLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
  mDismiss->setAutoRaise(true);
  mDismiss->setIcon(MakeToolIcon(ToolGlyph::Close)); // The style's own is hardly seen on a dark bar.
  mDismiss->setFocusPolicy(Qt::StrongFocus);
  mDismiss->setAccessibleName(QStringLiteral("Dismiss the message"));
  mDismiss->setToolTip(QStringLiteral("Dismiss the message"));
  connect(mDismiss, &QToolButton::clicked, this, &QWidget::hide);
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(mIcon, 0, Qt::AlignTop);
  layout->addLayout(mSaid, 1);
  mSaid->addWidget(mLabel, 1);
  mSaid->addLayout(mButtons);
  layout->addWidget(mDismiss, 0, Qt::AlignTop);
  hide();
}

void MessageBar::Say(const BarMessage& aMessage) {
  if (aMessage.text == mText)
    return;
  mText = aMessage.text;
  mKind = aMessage.kind;
  mLabel->setText(mText);
  setAccessibleName(mText);
  const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  mIcon->setPixmap(style()->standardIcon(GetSign(mKind)).pixmap(QSize(size, size), devicePixelRatioF()));
  // A button may be the one that says this: it ends when it has been clicked.
  while (QLayoutItem* const item = mButtons->takeAt(0)) {
    item->widget()->hide();
    item->widget()->deleteLater();
    delete item;
  }
  for (const BarMessage::Button& button : aMessage.buttons)
    AddButton(button);
  mDismiss->setVisible(aMessage.canBeDismissed);
  UpdateColours();
  UpdateMnemonics();
  // At last, as it is placed at once, by what it has by then.
  setVisible(!mText.isEmpty());
}

void MessageBar::Reword(const QString& aText) {
  if (aText == mText)
    return;
  mText = aText;
  mLabel->setText(aText);
  setAccessibleName(aText);
}

void MessageBar::AddButton(const BarMessage::Button& aButton) {
  auto* const button = new QPushButton(aButton.text);
  button->setAutoDefault(true);
  connect(button, &QPushButton::clicked, this, [run = aButton.run] { run(); });
  mButtons->addWidget(button);
  // The layout would show it some time later.
  button->show();
}

// What is said beside anything that the window may hold must not take a letter from it.
void MessageBar::UpdateMnemonics() {
  QSet<QChar> taken = FindMnemonics(*window(), this);
  for (int index = 0; index < mButtons->count(); ++index) {
    auto* const button = qobject_cast<QPushButton*>(mButtons->itemAt(index)->widget());
    button->setText(MarkFreeLetter(button->text(), taken));
    taken.insert(GetMnemonic(button->text()));
  }
}

void MessageBar::resizeEvent(QResizeEvent* aEvent) {
  const bool isNarrow = width() < kFewLetters * fontMetrics().averageCharWidth();
  const auto direction = isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
  if (mSaid->direction() != direction) {
    mSaid->setDirection(direction);
    mButtons->setAlignment(isNarrow ? Qt::AlignLeft : Qt::Alignment());
  }
  QFrame::resizeEvent(aEvent);
}

void MessageBar::showEvent(QShowEvent* aEvent) {
  QFrame::showEvent(aEvent);
  UpdateMnemonics();
}

void MessageBar::changeEvent(QEvent* aEvent) {
  QFrame::changeEvent(aEvent);
  if (aEvent->type() == QEvent::PaletteChange || aEvent->type() == QEvent::StyleChange)
    UpdateColours();
}

// The window's own colours, tinted: its text stays as legible as it is, on light and on dark ones.
void MessageBar::UpdateColours() {
  if (std::exchange(mIsColouring, true))
    return;
  const QWidget* const around = parentWidget();
  QPalette colours = around ? around->palette() : QPalette();
  colours.setColor(QPalette::Window, Mix(colours.color(QPalette::Window), GetSignColour(mKind)));
  setPalette(colours);
  mIsColouring = false;
}

} // namespace krviewer
