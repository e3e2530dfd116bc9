#include "userhands.h"

#include "windowwait.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QTreeView>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

namespace {

// Looks; user-interface thread alone.

QWidget* FindWindow(const QString& aTitle) {
  const QWidgetList windows = QApplication::topLevelWidgets();
  const auto window = std::find_if(windows.begin(), windows.end(), [&](const QWidget* aWindow) {
    return aWindow->isVisible() && aWindow->windowTitle() == aTitle;
  });
  return window == windows.end() ? nullptr : *window;
}

QWidget* FindControl(const QString& aTitle, int aControl) {
  const QWidget* window = FindWindow(aTitle);
  return window == nullptr ? nullptr : window->findChild<QWidget*>("control" + QString::number(aControl));
}

QTreeView* FindTree(const QString& aTitle, int aControl) {
  QWidget* control = FindControl(aTitle, aControl);
  auto* tree = qobject_cast<QTreeView*>(control);
  return tree != nullptr || control == nullptr ? tree : control->findChild<QTreeView*>();
}

QString GetRowText(const QModelIndex& aFirstColumn) {
  QStringList columns;
  for (int column = 0; column < aFirstColumn.model()->columnCount(aFirstColumn.parent()); ++column)
    columns.append(aFirstColumn.siblingAtColumn(column).data().toString());
  return columns.join(" | ");
}

// Goes through all rows from the top until aTake returns true.
bool ForEachRow(const QAbstractItemModel& aModel, const QModelIndex& aParent, int aLevel,
                const std::function<bool(const QModelIndex&, int)>& aTake) {
  for (int row = 0; row < aModel.rowCount(aParent); ++row) {
    const QModelIndex index = aModel.index(row, 0, aParent);
    if (aTake(index, aLevel) || ForEachRow(aModel, index, aLevel + 1, aTake))
      return true;
  }
  return false;
}

QStringList ListRows(const QTreeView* aTree) {
  QStringList rows;
  if (aTree != nullptr)
    ForEachRow(*aTree->model(), {}, 0, [&](const QModelIndex& aIndex, int aLevel) {
      rows.append(QString(2 * aLevel, ' ') + GetRowText(aIndex));
      return false;
    });
  return rows;
}

bool HasRow(const QString& aTitle, int aControl, const QString& aText) {
  return !ListRows(FindTree(aTitle, aControl)).filter(aText).isEmpty();
}

// The middle of the first row that contains a text, on the screen; nothing where it is not to be seen.
QPoint FindRow(const QString& aTitle, int aControl, const QString& aText) {
  QPoint point;
  QTreeView* tree = FindTree(aTitle, aControl);
  if (tree != nullptr)
    ForEachRow(*tree->model(), {}, 0, [&](const QModelIndex& aIndex, int) {
      if (!GetRowText(aIndex).contains(aText))
        return false;
      tree->scrollTo(aIndex);
      point = tree->viewport()->mapToGlobal(tree->visualRect(aIndex).center());
      return true;
    });
  return point;
}

// The windows on the screen by their titles, the active one marked.
QString ListWindows() {
  QStringList titles;
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible())
      titles.append('"' + window->windowTitle() + (window->isActiveWindow() ? "\" (active)" : "\""));
  }
  return titles.join(", ");
}

void RunXdotool(const QStringList& aArguments) {
  QProcess process;
  process.start("xdotool", aArguments);
  EXPECT_TRUE(process.waitForFinished(UserHands::kLimitMs) && process.exitCode() == 0)
      << "xdotool " << aArguments.join(' ').toStdString() << ": " << process.readAllStandardError().toStdString();
}

// The window that the window manager knows to be active; 0 for none.
qulonglong FindActiveWindow() {
  QProcess process;
  process.start("xdotool", {"getactivewindow"});
  EXPECT_TRUE(process.waitForFinished(UserHands::kLimitMs));
  return process.readAllStandardOutput().trimmed().toULongLong();
}

// Whether any widget got a double click; user-interface thread alone.
class DoubleClickWatch : public QObject {
public:
  DoubleClickWatch() { qApp->installEventFilter(this); }
  bool IsSeen() const { return mIsSeen; }

private:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override {
    mIsSeen = mIsSeen || aEvent->type() == QEvent::MouseButtonDblClick;
    return QObject::eventFilter(aWatched, aEvent);
  }

  bool mIsSeen = false;
};

// What a script left open, from the top.
void CloseTopWindow() {
  QWidget* window = QApplication::activePopupWidget();
  if (window == nullptr)
    window = QApplication::activeModalWidget();
  if (window == nullptr)
    window = QApplication::activeWindow();
  // Also without the keyboard, so that a test ends that failed by losing it.
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (auto open = windows.begin(); window == nullptr && open != windows.end(); ++open)
    window = (*open)->isVisible() ? *open : nullptr;
  if (window != nullptr)
    window->close();
}

} // namespace

void UserHands::Glance(const std::function<void()>& aLook) const {
  mWindows.Ask(aLook);
}

bool UserHands::Await(const QString& aWhat, const std::function<bool()>& aCondition, int aLimitMs) const {
  const bool isSo = QTest::qWaitFor(
      [&] {
        bool answer = false;
        Glance([&] { answer = aCondition(); });
        return answer;
      },
      aLimitMs);
  EXPECT_TRUE(isSo) << "The user waited in vain: " << aWhat.toStdString() << "; open are " << DescribeWindows();
  return isSo;
}

std::string UserHands::DescribeWindows() const {
  QString windows;
  Glance([&] { windows = ListWindows(); });
  return windows.toStdString();
}

bool UserHands::AwaitWindow(const QString& aTitle) const {
  return AwaitActive("the window " + aTitle, [&] { return FindWindow(aTitle); });
}

bool UserHands::AwaitActive(const QString& aWhat, const std::function<const QWidget*()>& aFind, int aLimitMs) const {
  qulonglong id = 0;
  const bool isActive = Await(
      aWhat,
      [&] {
        const QWidget* const window = aFind();
        id = window != nullptr && window->isActiveWindow() ? window->internalWinId() : 0;
        return id != 0;
      },
      aLimitMs);
  // The window manager takes its own keys, as those that close a window, for the one that it knows to be active.
  const bool isKnown = isActive && krtest::AwaitCondition([id] { return FindActiveWindow() == id; });
  EXPECT_EQ(isKnown, isActive) << "The window manager does not know " << aWhat.toStdString();
  return isKnown;
}

bool UserHands::AwaitNoWindow(const QString& aTitle) const {
  return Await("the window " + aTitle + " gone", [&] { return FindWindow(aTitle) == nullptr; });
}

bool UserHands::AwaitMenu() const {
  return Await("a menu", [] { return QApplication::activePopupWidget() != nullptr; });
}

bool UserHands::AwaitEnabled(const QString& aTitle, int aControl) const {
  return Await("control " + QString::number(aControl) + " enabled", [&] {
    const QWidget* control = FindControl(aTitle, aControl);
    return control != nullptr && control->isEnabled();
  });
}

bool UserHands::AwaitFields(const QString& aTitle, int aControl) const {
  return Await("a whole address in the control " + QString::number(aControl), [&] {
    const QWidget* control = FindControl(aTitle, aControl);
    const auto fields = control == nullptr ? QList<QLineEdit*>() : control->findChildren<QLineEdit*>();
    return !fields.isEmpty() && std::none_of(fields.cbegin(), fields.cend(),
                                             [](const QLineEdit* aField) { return aField->text().isEmpty(); });
  });
}

bool UserHands::AwaitRow(const QString& aTitle, int aControl, const QString& aText) const {
  const bool isSo = Await("the row " + aText, [&] { return HasRow(aTitle, aControl, aText); });
  EXPECT_TRUE(isSo) << GetRows(aTitle, aControl).join('\n').toStdString();
  return isSo;
}

bool UserHands::AwaitNoRow(const QString& aTitle, int aControl, const QString& aText) const {
  return Await("the row " + aText + " gone",
               [&] { return FindTree(aTitle, aControl) != nullptr && !HasRow(aTitle, aControl, aText); });
}

QStringList UserHands::GetRows(const QString& aTitle, int aControl) const {
  QStringList rows;
  Glance([&] { rows = ListRows(FindTree(aTitle, aControl)); });
  return rows;
}

bool UserHands::IsEnabled(const QString& aTitle, int aControl) const {
  bool isEnabled = false;
  Glance([&] {
    const QWidget* control = FindControl(aTitle, aControl);
    isEnabled = control != nullptr && control->isEnabled();
  });
  return isEnabled;
}

QString UserHands::GetMessage(const QString& aTitle) const {
  QString text;
  Glance([&] {
    const QWidget* window = FindWindow(aTitle);
    const auto* label = window == nullptr ? nullptr : window->findChild<QLabel*>("text");
    text = label == nullptr ? QString() : label->text();
  });
  return text;
}

QPoint UserHands::FindPoint(const QString& aTitle, int aControl,
                            const std::function<QPoint(const QWidget& aControl)>& aChoose) const {
  QPoint point;
  Glance([&] {
    if (const QWidget* const control = FindControl(aTitle, aControl))
      point = control->mapToGlobal(aChoose(*control));
  });
  EXPECT_FALSE(point.isNull()) << aTitle.toStdString() << " has no control " << aControl;
  return point;
}

void UserHands::Click(const QString& aTitle, int aControl) const {
  ClickAt(FindPoint(aTitle, aControl, [](const QWidget& aWidget) { return aWidget.rect().center(); }), {"1"});
}

void UserHands::ClickMark(const QString& aTitle, int aControl) const {
  const auto choose = [](const QWidget& aWidget) { return QPoint(aWidget.height() / 2, aWidget.height() / 2); };
  ClickAt(FindPoint(aTitle, aControl, choose), {"1"});
}

void UserHands::ClickRow(const QString& aTitle, int aControl, const QString& aText, const QStringList& aClicks) const {
  QPoint point;
  Glance([&] { point = FindRow(aTitle, aControl, aText); });
  EXPECT_FALSE(point.isNull()) << aTitle.toStdString() << " has no row " << aText.toStdString();
  ClickAt(point, aClicks);
}

void UserHands::DoubleClickRow(const QString& aTitle, int aControl, const QString& aText) const {
  // Both clicks are one double click, however late the server gets the second.
  std::unique_ptr<DoubleClickWatch> watch;
  int interval = 0;
  Glance([&] {
    watch = std::make_unique<DoubleClickWatch>();
    interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(kLimitMs);
  });
  ClickRow(aTitle, aControl, aText, {"--repeat", "2", "--delay", "40", "1"});
  Await("the double click", [&] { return watch->IsSeen(); });
  Glance([&] {
    watch.reset();
    QApplication::setDoubleClickInterval(interval);
  });
}

void UserHands::RightClickRow(const QString& aTitle, int aControl, const QString& aText) const {
  ClickRow(aTitle, aControl, aText, {"3"});
}

void UserHands::Press(const QString& aKey, int aTimes) const {
  RunXdotool({"key", "--repeat", QString::number(aTimes), aKey});
}

void UserHands::Type(const QString& aText) const {
  RunXdotool({"type", aText});
}

void UserHands::Hold(const QString& aKey) const {
  RunXdotool({"keydown", aKey});
}

void UserHands::Release(const QString& aKey) const {
  RunXdotool({"keyup", aKey});
}

void UserHands::TakePicture(const QString& aPath) const {
  Glance([&] { EXPECT_TRUE(QApplication::primaryScreen()->grabWindow().save(aPath)) << aPath.toStdString(); });
}

void UserHands::ClickAt(const QPoint& aScreenPoint, const QStringList& aClicks) const {
  // The server counts in its own pixels, whatever the toolkit's scale.
  const QPoint point = aScreenPoint * qApp->devicePixelRatio();
  // Not with --sync, which waits in vain for a mouse that is there already.
  RunXdotool(QStringList{"mousemove", QString::number(point.x()), QString::number(point.y()), "click"} + aClicks);
}

void RunWithUser(const std::function<void()>& aShow, const std::function<void(UserHands&)>& aScript) {
  std::atomic<bool> isClosed = false;
  QEventLoop afterwards;
  krtest::WindowCalls windows;
  std::thread user([&] {
    UserHands hands(windows);
    aScript(hands);
    hands.Await("all windows closed", [&] {
      if (!isClosed)
        CloseTopWindow();
      return isClosed.load();
    });
    windows.Post([&] { afterwards.quit(); });
  });
  aShow();
  isClosed = true;
  afterwards.exec();
  user.join();
}
