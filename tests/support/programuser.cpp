#include "programuser.h"

#include <QElapsedTimer>
#include <QRect>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

/// Between two looks, so that the program is not kept from its work by answering.
constexpr std::chrono::milliseconds kPause{20};

bool IsWindow(const AccessibleItem& aItem) {
  return aItem.role == "frame" || aItem.role == "dialog" || aItem.role == "window" || aItem.role == "alert";
}

void RunXdotool(const QStringList& aArguments) {
  QProcess process;
  process.start("xdotool", aArguments);
  EXPECT_TRUE(process.waitForFinished(ProgramUser::kLimitMs) && process.exitCode() == 0)
      << "xdotool " << aArguments.join(' ').toStdString() << ": " << process.readAllStandardError().toStdString();
}

// The title of the window that the window manager knows to be active; empty where there is none.
QString GetActiveTitle() {
  QProcess process;
  process.start("xdotool", {"getactivewindow", "getwindowname"});
  EXPECT_TRUE(process.waitForFinished(ProgramUser::kLimitMs));
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

qint64 Start(QProcess& aProcess, const QString& aProgram, const QStringList& aArguments,
             const QProcessEnvironment& aEnvironment, const std::function<void()>& aInChild) {
  aProcess.setProcessEnvironment(aEnvironment);
  aProcess.setChildProcessModifier(aInChild);
  aProcess.start(aProgram, aArguments);
  EXPECT_TRUE(aProcess.waitForStarted(ProgramUser::kLimitMs)) << aProcess.errorString().toStdString();
  return aProcess.processId();
}

} // namespace

ProgramUser::ProgramUser(const QString& aProgram, const QStringList& aArguments,
                         const QProcessEnvironment& aEnvironment, const std::function<void()>& aInChild)
    : mScreen(Start(mProcess, aProgram, aArguments, aEnvironment, aInChild)) {}

ProgramUser::~ProgramUser() {
  if (mProcess.state() == QProcess::NotRunning)
    return;
  mProcess.terminate();
  if (!mProcess.waitForFinished(kLimitMs))
    mProcess.kill();
  mProcess.waitForFinished(kLimitMs);
}

bool ProgramUser::Await(const QString& aWhat, const std::function<bool()>& aCondition) {
  QElapsedTimer timer;
  timer.start();
  bool isSo = aCondition();
  while (!isSo && timer.elapsed() < kLimitMs) {
    std::this_thread::sleep_for(kPause);
    isSo = aCondition();
  }
  EXPECT_TRUE(isSo) << "The user waited in vain: " << aWhat.toStdString()
                    << (IsRunning() ? "" : "; the program has ended")
                    << (mScreen.IsThere() ? "" : "; no windows of it are known") << "; to be seen is\n"
                    << DescribeScreen().toStdString() << "printed was\n"
                    << GetOutput().toStdString() << GetErrors().toStdString();
  return isSo;
}

QString ProgramUser::DescribeScreen() {
  QString text;
  for (const AccessibleItem& item : mScreen.GetItems())
    if (!item.name.isEmpty())
      text += item.role + " \"" + item.name + '"' + (item.isActive ? " active" : "") +
              (item.isFocused ? " focused" : "") + (item.isEnabled ? "\n" : " disabled\n");
  return text;
}

std::optional<AccessibleItem> ProgramUser::FindWindow(const QString& aTitle) {
  return mScreen.Find([&](const AccessibleItem& aItem) { return IsWindow(aItem) && aItem.name.startsWith(aTitle); });
}

bool ProgramUser::AwaitWindow(const QString& aTitle) {
  // Both the program and the window manager, which takes some keys for itself, have to know.
  return Await("the window " + aTitle, [&] {
    const std::optional<AccessibleItem> window = FindWindow(aTitle);
    return window && window->isActive && GetActiveTitle().startsWith(aTitle);
  });
}

bool ProgramUser::AwaitNoWindow(const QString& aTitle) {
  return Await("no window " + aTitle, [&] { return !FindWindow(aTitle); });
}

bool ProgramUser::Has(const QString& aText) {
  return mScreen.Find([&](const AccessibleItem& aItem) { return aItem.name.contains(aText); }).has_value();
}

bool ProgramUser::AwaitText(const QString& aText) {
  return Await("the text " + aText, [&] { return Has(aText); });
}

bool ProgramUser::AwaitNoText(const QString& aText) {
  return Await("no text " + aText, [&] { return !Has(aText); });
}

std::optional<AccessibleItem> ProgramUser::FindControl(const QString& aRole, const QString& aName) {
  return mScreen.Find(
      [&](const AccessibleItem& aItem) { return aItem.isEnabled && aItem.role == aRole && aItem.name == aName; });
}

std::optional<AccessibleItem> ProgramUser::AwaitControl(const QString& aRole, const QString& aName) {
  std::optional<AccessibleItem> found;
  Await(aRole + ' ' + aName, [&] {
    found = FindControl(aRole, aName);
    return found.has_value();
  });
  return found;
}

AccessibleItem ProgramUser::GetFocused() {
  // A list says it of itself and of its row; the tab in front, whatever has the keyboard.
  AccessibleItem focused;
  const std::optional<AccessibleItem> window =
      mScreen.Find([](const AccessibleItem& aItem) { return IsWindow(aItem) && aItem.isActive; });
  if (window)
    for (const AccessibleItem& item : mScreen.GetItems(*window))
      if (item.isFocused && item.role != "page tab")
        focused = item;
  return focused;
}

bool ProgramUser::AwaitFocus(const QString& aName) {
  return Await("the keyboard at " + aName, [&] { return GetFocused().name == aName; });
}

void ProgramUser::Press(const QString& aKey, int aTimes) const {
  RunXdotool({"key", "--repeat", QString::number(aTimes), aKey});
}

void ProgramUser::Type(const QString& aText) const {
  RunXdotool({"type", aText});
}

bool ProgramUser::Choose(const QString& aMenuKey, const QString& aEntry, const QString& aEntryKey) {
  Press("alt+" + aMenuKey);
  if (!AwaitControl("menu item", aEntry))
    return false;
  Press(aEntryKey);
  return Await("the menu closed",
               [&] { return !mScreen.Find([](const AccessibleItem& aItem) { return aItem.role == "popup menu"; }); });
}

void ProgramUser::MoveMouse(const QPoint& aPoint) const {
  RunXdotool({"mousemove", QString::number(aPoint.x()), QString::number(aPoint.y())});
}

void ProgramUser::Click(const QPoint& aPoint, int aButton) const {
  MoveMouse(aPoint);
  RunXdotool({"click", QString::number(aButton)});
}

bool ProgramUser::Click(const QString& aRole, const QString& aName) {
  constexpr int kLooks = 4;
  QRect place;
  int looks = 0;
  // What has just appeared may move yet, with its window or in it.
  const bool isThere = Await(aRole + ' ' + aName + " at one place", [&] {
    const std::optional<AccessibleItem> item = FindControl(aRole, aName);
    const QRect now = item ? mScreen.GetPlace(*item) : QRect();
    looks = item && now == place ? looks + 1 : 0;
    place = now;
    return looks == kLooks;
  });
  if (isThere)
    Click(place.center());
  return isThere;
}

void ProgramUser::ResizeWindow(QSize aSize) const {
  RunXdotool({"getactivewindow", "windowsize", QString::number(aSize.width()), QString::number(aSize.height())});
}

void ProgramUser::Drag(const QPoint& aFrom, const QPoint& aTo) const {
  MoveMouse(aFrom);
  RunXdotool({"mousedown", "1"});
  MoveMouse((aFrom + aTo) / 2);
  MoveMouse(aTo);
  RunXdotool({"mouseup", "1"});
}

bool ProgramUser::IsRunning() {
  return !mProcess.waitForFinished(0) && mProcess.state() == QProcess::Running;
}

int ProgramUser::AwaitEnd() {
  EXPECT_TRUE(mProcess.state() == QProcess::NotRunning || mProcess.waitForFinished(kLimitMs))
      << DescribeScreen().toStdString();
  return mProcess.state() == QProcess::NotRunning && mProcess.exitStatus() == QProcess::NormalExit ? mProcess.exitCode()
                                                                                                   : -1;
}

QString ProgramUser::GetOutput() {
  mProcess.waitForReadyRead(0);
  mOutput += QString::fromUtf8(mProcess.readAllStandardOutput());
  return mOutput;
}

QString ProgramUser::GetErrors() {
  mProcess.waitForReadyRead(0);
  mErrors += QString::fromUtf8(mProcess.readAllStandardError());
  return mErrors;
}
