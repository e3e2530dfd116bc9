#include "window/mainmenus.h"

#include "window/showntext.h"
#include "window/toolglyphs.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace krviewer {

namespace {

/// Of a camera's name in the menu.
constexpr int kMostLetters = 60;

} // namespace

MainMenus::MainMenus(QMainWindow& aWindow, const std::function<CameraPage*()>& aGetPage)
    : QObject(&aWindow), mWindow(aWindow), mPageActions(aWindow, aGetPage),
      mToolBar(aWindow.addToolBar(QStringLiteral("Tool Bar"))) {
  QMenu& file = *aWindow.menuBar()->addMenu(QStringLiteral("&File"));
  QAction* const find =
      Add(file, "find", QStringLiteral("Find a &Camera…"), QKeySequence(Qt::CTRL | Qt::Key_O), &MainMenus::FindWanted);
  find->setIcon(MakeToolIcon(ToolGlyph::Find));
  Add(file, "simulation", QStringLiteral("Si&mulated Camera"), {}, &MainMenus::SimulationWanted);
  mRecent = file.addMenu(QStringLiteral("&Recent Cameras"));
  mPageActions.AddTo(file, CommandMenu::File);
  file.addSeparator();
  mCloseCamera = Add(file, "closeCamera", QStringLiteral("Close Camer&a"), QKeySequence(Qt::CTRL | Qt::Key_W),
                     &MainMenus::CloseCameraWanted);
  Add(file, "quit", QStringLiteral("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), &MainMenus::QuitWanted);

  mPageActions.AddTo(*aWindow.menuBar()->addMenu(QStringLiteral("&Camera")), CommandMenu::Camera);

  QMenu& view = *aWindow.menuBar()->addMenu(QStringLiteral("&View"));
  mPageActions.AddTo(view, CommandMenu::View);
  mPageActions.AddTo(*view.addMenu(QStringLiteral("Mov&e Panel")), CommandMenu::MovePanel);
  view.addSeparator();
  mFullScreen =
      Add(view, "fullScreen", QStringLiteral("F&ull Screen"), QKeySequence(Qt::Key_F11), &MainMenus::FullScreenWanted);
  mFullScreen->setCheckable(true);
  mMove = Add(view, "move", {}, {}, &MainMenus::MoveWanted);
  AddSteps(view);

  QMenu& tools = *aWindow.menuBar()->addMenu(QStringLiteral("&Tools"));
  tools.setToolTipsVisible(true); // Which say why an entry cannot be chosen.
  mPageActions.AddTo(tools, CommandMenu::Tools);
  tools.addSeparator();
  Add(tools, "ipConfiguration", QStringLiteral("&IP Configuration…"), {}, &MainMenus::AddressesWanted);

  QMenu& help = *aWindow.menuBar()->addMenu(QStringLiteral("&Help"));
  Add(help, "guide", QStringLiteral("&Guide"), {}, &MainMenus::GuideWanted);
  Add(help, "keys", QStringLiteral("&Keys"), QKeySequence(Qt::Key_F1), &MainMenus::KeysWanted);
  Add(help, "about", QStringLiteral("&About krviewer"), {}, &MainMenus::AboutWanted);

  mToolBar->setObjectName(QStringLiteral("toolBar"));
  mToolBar->setMovable(false);
  mToolBar->toggleViewAction()->setVisible(false);
  mToolBar->addAction(find);
  mPageActions.AddTo(*mToolBar);
  SetRecentCameras({});
  LookAgain({});
}

QAction* MainMenus::Add(QMenu& aMenu, const char* aName, const QString& aText, const QKeySequence& aKey,
                        Signal aSignal) {
  auto* const action = new QAction(aText, &mWindow);
  action->setObjectName(QLatin1String(aName));
  action->setShortcut(aKey);
  if (aSignal)
    connect(action, &QAction::triggered, this, aSignal);
  // So that the keys work while the menus are hidden.
  mWindow.addAction(action);
  aMenu.addAction(action);
  return action;
}

void MainMenus::AddSteps(QMenu& aMenu) {
  const auto add = [&](const char* aName, const QString& aText, const QKeySequence& aKey, int aStep) {
    QAction* const action = Add(aMenu, aName, aText, aKey, nullptr);
    connect(action, &QAction::triggered, this, [this, aStep] { emit StepWanted(aStep); });
    return action;
  };
  mNext = add("nextCamera", QStringLiteral("&Next Camera"), QKeySequence(Qt::CTRL | Qt::Key_PageDown), 1);
  mPrevious = add("previousCamera", QStringLiteral("&Previous Camera"), QKeySequence(Qt::CTRL | Qt::Key_PageUp), -1);
}

void MainMenus::SetRecentCameras(const RecentCameras& aCameras) {
  mRecent->clear();
  int number = 0;
  for (const RecentCamera& camera : aCameras.GetAll()) {
    QAction* const action =
        mRecent->addAction(QStringLiteral("&%1  %2").arg(++number).arg(ToEntry(ToLine(camera.name, kMostLetters))));
    connect(action, &QAction::triggered, this, [this, id = camera.id] { emit CameraWanted(id); });
  }
  mRecent->addSeparator();
  QAction* const forget = mRecent->addAction(QStringLiteral("&Clear"));
  forget->setObjectName(QStringLiteral("clearRecent"));
  connect(forget, &QAction::triggered, this, &MainMenus::ForgetWanted);
  mRecent->menuAction()->setEnabled(!aCameras.GetAll().isEmpty());
}

void MainMenus::LookAgain(const WindowLook& aLook) {
  mCloseCamera->setEnabled(aLook.pages > 0);
  mFullScreen->setChecked(aLook.isFullScreen);
  mMove->setEnabled(aLook.pages > 0);
  mMove->setText(aLook.isOwn ? QStringLiteral("&Back to the Tabs") : QStringLiteral("&Move to a Window of Its Own"));
  mNext->setEnabled(aLook.pages > 1);
  mPrevious->setEnabled(aLook.pages > 1);
  mPageActions.LookAgain();
}

void MainMenus::SetShown(bool aIsShown) {
  mWindow.menuBar()->setVisible(aIsShown);
  mToolBar->setVisible(aIsShown);
}

} // namespace krviewer
