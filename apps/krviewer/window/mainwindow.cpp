#include "window/mainwindow.h"

#include "pictures.h"
#include "window/keysbox.h"
#include "window/showntext.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

namespace krviewer {

namespace {

constexpr QSize kPreferredSize(1200, 800);
// The part of the screen that a window never exceeds at first, where there is a screen.
constexpr double kLargestShareOfScreen = 0.9;
constexpr int kNoticeMs = 5000;
/// Of a camera's name on its tab.
constexpr int kMostLetters = 40;
constexpr int kMostLettersOfTitle = 200;

} // namespace

MainWindow::MainWindow(bool aIsOwn)
    : mIsOwn(aIsOwn), mParts(new QStackedWidget), mFirstPage(new FirstPage), mTabs(new QTabWidget),
      mBar(new MessageBar), mFigures(new FigureBar), mMenus(new MainMenus(*this, [this] { return GetCurrentPage(); })) {
  auto* const whole = new QWidget;
  auto* const layout = new QVBoxLayout(whole);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(mBar);
  layout->addWidget(mParts, 1);
  mTabs->setTabsClosable(true);
  mTabs->setMovable(true);
  mTabs->setDocumentMode(true);
  mTabs->setElideMode(Qt::ElideRight);
  mTabs->tabBar()->setAccessibleName(QStringLiteral("Cameras"));
  mParts->addWidget(mFirstPage);
  mParts->addWidget(mTabs);
  setCentralWidget(whole);
  statusBar()->setSizeGripEnabled(true);
  statusBar()->addWidget(mFigures, 1);
  connect(mTabs, &QTabWidget::tabCloseRequested, this, [this](int aIndex) { emit PageEndWanted(GetPage(aIndex)); });
  ConnectMenus();
  LookAgain();
}

void MainWindow::ConnectMenus() {
  connect(mMenus, &MainMenus::CloseCameraWanted, this, [this] {
    if (CameraPage* const page = GetCurrentPage())
      emit PageEndWanted(page);
  });
  connect(mMenus, &MainMenus::MoveWanted, this, [this] {
    if (CameraPage* const page = GetCurrentPage())
      emit MoveWanted(page);
  });
  connect(mMenus, &MainMenus::StepWanted, this, &MainWindow::Step);
  connect(mMenus, &MainMenus::KeysWanted, this, [this] { ShowKeysBox(*this); });
  connect(mMenus, &MainMenus::FullScreenWanted, this, &MainWindow::SwitchFullScreen);
}

void MainWindow::SetRecentCameras(const RecentCameras& aCameras) {
  mMenus->SetRecentCameras(aCameras);
  mFirstPage->SetRecentCameras(aCameras);
}

CameraPage* MainWindow::GetPage(int aIndex) const {
  return qobject_cast<CameraPage*>(mTabs->widget(aIndex));
}

CameraPage* MainWindow::GetCurrentPage() const {
  return GetPage(mTabs->currentIndex());
}

QList<CameraPage*> MainWindow::GetPages() const {
  QList<CameraPage*> pages;
  for (int index = 0; index < mTabs->count(); ++index)
    pages += GetPage(index);
  return pages;
}

void MainWindow::AddPage(CameraPage& aPage) {
  mTabs->addTab(&aPage, QString());
  mParts->setCurrentWidget(mTabs);
  mTabs->setCurrentWidget(&aPage);
  LookAgain();
  aPage.setFocus();
}

void MainWindow::RemovePage(CameraPage& aPage) {
  mTabs->removeTab(mTabs->indexOf(&aPage));
  aPage.hide();
  aPage.setParent(nullptr);
  if (mTabs->count() == 0) {
    mParts->setCurrentWidget(mFirstPage);
    mFirstPage->setFocus();
  }
  LookAgain();
}

bool MainWindow::BringForward(CameraPage& aPage) {
  if (mTabs->indexOf(&aPage) < 0)
    return false;
  mTabs->setCurrentWidget(&aPage);
  if (isMinimized())
    showNormal();
  raise();
  activateWindow();
  aPage.setFocus();
  return true;
}

void MainWindow::ShowOnScreen(const QByteArray& aLayout) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  const QSize largest = IsWithoutDisplay() ? kPreferredSize : screen.size() * kLargestShareOfScreen;
  QRect place(QPoint(), kPreferredSize.boundedTo(largest));
  place.moveCenter(screen.center());
  setGeometry(place);
  if (!aLayout.isEmpty() && restoreGeometry(aLayout))
    setWindowState(windowState() & ~(Qt::WindowFullScreen | Qt::WindowMinimized));
  show();
}

void MainWindow::LookAgain() {
  for (int index = 0; index < mTabs->count(); ++index) {
    const QString title = GetPage(index)->GetTitle();
    const QString text = ToEntry(ToLine(ToText(GetPage(index)->GetCamera().GetDisplayID()), kMostLetters));
    // Setting the same text once more would lay the tabs out anew.
    if (mTabs->tabText(index) != text)
      mTabs->setTabText(index, text);
    mTabs->setTabToolTip(index, ToToolTip(title));
    ShowTrouble(index);
  }
  const CameraPage* const page = GetCurrentPage();
  setWindowTitle(page ? ToTitle(ToLine(page->GetTitle(), kMostLettersOfTitle)) : QStringLiteral("krviewer"));
  ShowFigures(page);
  mMenus->LookAgain({.pages = mTabs->count(), .isOwn = mIsOwn, .isFullScreen = isFullScreen()});
}

// A camera behind others may need its user.
void MainWindow::ShowTrouble(int aIndex) {
  const bool isInTrouble = GetPage(aIndex)->IsInTrouble();
  if (isInTrouble == mTabs->tabIcon(aIndex).isNull())
    mTabs->setTabIcon(aIndex, isInTrouble ? style()->standardIcon(QStyle::SP_MessageBoxWarning) : QIcon());
}

void MainWindow::ShowFigures(const CameraPage* aPage) {
  if (!aPage)
    mFigures->Clear();
  else if (isVisible())
    mFigures->Show(aPage->GetFigures());
}

void MainWindow::Notice(const QString& aText) {
  statusBar()->showMessage(aText, kNoticeMs);
}

void MainWindow::SwitchFullScreen() {
  setWindowState(windowState() ^ Qt::WindowFullScreen);
}

// Also where the window manager has switched it.
void MainWindow::FollowFullScreen() {
  if (std::exchange(mIsFullScreen, isFullScreen()) == isFullScreen())
    return;
  mMenus->SetShown(!mIsFullScreen);
  statusBar()->setVisible(!mIsFullScreen);
  mTabs->tabBar()->setVisible(!mIsFullScreen);
  LookAgain();
}

void MainWindow::Step(int aStep) {
  const int count = mTabs->count();
  if (count < 2)
    return;
  mTabs->setCurrentIndex((mTabs->currentIndex() + aStep + count) % count);
  GetCurrentPage()->setFocus();
}

bool MainWindow::focusNextPrevChild(bool aIsNext) {
  CameraPage* const page = GetCurrentPage();
  QWidget* const focused = focusWidget();
  QWidget* const stop = page ? page->GetPanels().FindTabStop(focused ? *focused : *this, aIsNext) : nullptr;
  if (!stop)
    return QMainWindow::focusNextPrevChild(aIsNext);
  stop->setFocus(aIsNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

void MainWindow::keyPressEvent(QKeyEvent* aEvent) {
  if (aEvent->key() == Qt::Key_Escape && isFullScreen())
    SwitchFullScreen();
  else
    QMainWindow::keyPressEvent(aEvent);
}

void MainWindow::changeEvent(QEvent* aEvent) {
  QMainWindow::changeEvent(aEvent);
  if (aEvent->type() == QEvent::WindowStateChange)
    FollowFullScreen();
}

void MainWindow::closeEvent(QCloseEvent* aEvent) {
  emit EndWanted();
  aEvent->accept();
}

} // namespace krviewer
