#include "mainwindow.h"

#include "krgui/krwnd.h"
#include "pictures.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

namespace krviewer {

namespace {

// The part of the screen that a window never exceeds at first, where there is a screen.
constexpr double kLargestShareOfScreen = 0.9;

bool IsEndingKey(const QKeyEvent& aEvent) {
  const bool isPlain = (aEvent.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  const bool isKey = aEvent.key() == Qt::Key_Escape || aEvent.key() == Qt::Key_Return || aEvent.key() == Qt::Key_Enter;
  return isPlain && isKey && !aEvent.isAutoRepeat();
}

} // namespace

MainWindow::MainWindow() : mSplitter(new QSplitter) {
  mSplitter->setChildrenCollapsible(false);
  setCentralWidget(mSplitter);
}

KrResult MainWindow::Embed(KrWnd& aWindow, int aShare) {
  auto* const place = new QWidget;
  auto* const layout = new QVBoxLayout(place);
  layout->setContentsMargins(0, 0, 0, 0);
  mSplitter->addWidget(place);
  mSplitter->setStretchFactor(mSplitter->count() - 1, aShare);
  mShares += aShare;
  KrResult result = aWindow.CreateIn(place);
  if (result.IsOK())
    layout->addWidget(aWindow.GetWidget());
  return result;
}

QAction* MainWindow::AddTool(const QString& aText, const QKeySequence& aShortcut) {
  if (!mTools)
    mTools = menuBar()->addMenu(QStringLiteral("&Tools"));
  return mTools->addAction(aText, aShortcut);
}

void MainWindow::ShowOnScreen(QSize aPreferredSize) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  const int menuHeight = mTools ? menuBar()->sizeHint().height() : 0;
  const QSize preferred = aPreferredSize + QSize(0, menuHeight);
  const QSize largest = IsWithoutDisplay() ? preferred : screen.size() * kLargestShareOfScreen;
  QRect place(QPoint(), preferred.boundedTo(largest));
  place.moveCenter(screen.center());
  setGeometry(place);
  // In proportion: the splitter makes of them what there is.
  QList<int> widths;
  for (const int share : mShares)
    widths += share * place.width();
  mSplitter->setSizes(widths);
  show();
}

bool MainWindow::IsInEndingWindow() const {
  const QWidget* const focused = QApplication::focusWidget();
  const QWidget* const ending = mEndingWindow ? mEndingWindow->GetWidget() : nullptr;
  return ending && (!focused || focused == this || focused == ending || ending->isAncestorOf(focused));
}

void MainWindow::keyPressEvent(QKeyEvent* aEvent) {
  if (IsEndingKey(*aEvent) && IsInEndingWindow())
    close();
  else
    QMainWindow::keyPressEvent(aEvent);
}

void MainWindow::closeEvent(QCloseEvent* aEvent) {
  emit EndWanted();
  aEvent->accept();
}

} // namespace krviewer
