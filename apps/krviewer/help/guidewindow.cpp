#include "help/guidewindow.h"

#include "help/guidebrowser.h"

#include <QDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

namespace krviewer {

namespace {

/// Of the window at first, in letters of program code and in lines.
constexpr int kWidth = 124;
constexpr int kHeight = 40;

QPushButton* AddButton(QHBoxLayout& aRow, const QString& aText) {
  auto* const button = new QPushButton(aText);
  button->setAutoDefault(false);
  aRow.addWidget(button);
  return button;
}

QLayout* MakeButtons(QDialog& aWindow, GuideBrowser& aBrowser, const QUrl& aGuide) {
  auto* const row = new QHBoxLayout;
  QPushButton* const back = AddButton(*row, QStringLiteral("&Back"));
  QPushButton* const forward = AddButton(*row, QStringLiteral("&Forward"));
  QPushButton* const begin = AddButton(*row, QStringLiteral("Be&ginning"));
  row->addStretch(1);
  QPushButton* const close = AddButton(*row, QStringLiteral("&Close"));
  for (QPushButton* const button : {back, forward})
    button->setEnabled(false);
  QObject::connect(back, &QPushButton::clicked, &aBrowser, &QTextBrowser::backward);
  QObject::connect(forward, &QPushButton::clicked, &aBrowser, &QTextBrowser::forward);
  QObject::connect(&aBrowser, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
  QObject::connect(&aBrowser, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
  QObject::connect(begin, &QPushButton::clicked, &aBrowser, [&aBrowser, aGuide] { aBrowser.Follow(aGuide); });
  QObject::connect(close, &QPushButton::clicked, &aWindow, &QDialog::reject);
  return row;
}

} // namespace

bool ShowGuide(QWidget& aWindow, const QString& aFile) {
  const QString name = QStringLiteral("guideWindow");
  if (auto* const open = aWindow.findChild<QDialog*>(name)) {
    open->raise();
    open->activateWindow();
    return true;
  }
  const QFileInfo file(aFile);
  if (!file.isFile() || !file.isReadable())
    return false;
  auto* const window = new QDialog(&aWindow);
  window->setObjectName(name);
  window->setWindowTitle(QStringLiteral("Guide"));
  window->setAttribute(Qt::WA_DeleteOnClose);
  auto* const browser = new GuideBrowser;
  auto* const state = new QLabel;
  state->setTextFormat(Qt::PlainText);
  state->setWordWrap(true);
  state->hide();
  QObject::connect(browser, &GuideBrowser::Told, state, [state](const QString& aText) {
    state->setText(aText);
    state->setVisible(!aText.isEmpty());
  });
  const QUrl guide = QUrl::fromLocalFile(file.canonicalFilePath());
  auto* const layout = new QVBoxLayout(window);
  layout->addWidget(browser, 1);
  layout->addWidget(state);
  layout->addLayout(MakeButtons(*window, *browser, guide));
  const QFontMetrics code(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  const QSize wanted(code.horizontalAdvance(QLatin1Char('0')) * kWidth, window->fontMetrics().height() * kHeight);
  window->resize(wanted.boundedTo(aWindow.screen()->availableSize()));
  window->show();
  // With its size, as pictures are fitted to it.
  browser->setSource(guide);
  browser->setFocus();
  return true;
}

} // namespace krviewer
