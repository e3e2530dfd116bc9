#pragma once
// The hands of a user of the feature browser: what he does to find, to set and to choose. Which browser it is, and on
// what camera, is the test's; its window is the one that holds the rows.

#include "userhands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

namespace browseruser {

inline const QString kOptions = "Browser Options";

// Controls of the browser and its options dialog.
inline constexpr int kOptionsButton = 1082;
inline constexpr int kRefreshButton = 1085;
inline constexpr int kVisibility = 1087;
inline constexpr int kPrevious = 1091;
inline constexpr int kNext = 1092;
inline constexpr int kCloseSearch = 1093;
inline constexpr int kSearchResult = 1094;
inline constexpr int kGrid = 1095;
inline constexpr int kNames = 1141;
inline constexpr int kView = 1143;
inline constexpr int kRefresh = 1144;
inline constexpr int kOk = 1;

// Looks; user-interface thread alone.

/// The one of the active window, where there are several.
inline QTreeView* FindGrid() {
  if (const QWidget* const active = QApplication::activeWindow())
    if (auto* const grid = active->findChild<QTreeView*>("propertiesGrid"))
      return grid;
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (auto* const grid = window->findChild<QTreeView*>("propertiesGrid"))
      return grid;
  return nullptr;
}

inline QString GetSelectedName() {
  const QTreeView* const grid = FindGrid();
  return grid ? grid->currentIndex().siblingAtColumn(0).data().toString() : QString();
}

/// An editor, or what stands in it, has the keyboard.
inline bool HasEditorFocus() {
  const QTreeView* const grid = FindGrid();
  const QWidget* const focused = QApplication::focusWidget();
  return grid && focused && focused != grid && focused != grid->viewport() && grid->isAncestorOf(focused);
}

inline bool HasSearchFocus() {
  return !HasEditorFocus() && qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr;
}

inline QString GetSearchResult() {
  const QTreeView* const grid = FindGrid();
  const auto* const label =
      grid ? grid->window()->findChild<QLabel*>("control" + QString::number(kSearchResult)) : nullptr;
  return label ? label->text() : QString();
}

/// The button inside its place can be pressed.
inline bool IsRefreshOffered() {
  const QTreeView* const grid = FindGrid();
  const auto* const place =
      grid ? grid->window()->findChild<QWidget*>("control" + QString::number(kRefreshButton)) : nullptr;
  const auto* const button = place ? place->findChild<QAbstractButton*>() : nullptr;
  return button && button->isEnabled();
}

// Deeds; the script's thread. False, and a failed test, where one of their steps came to nothing.

inline bool OpenSearch(UserHands& aUser) {
  aUser.Press("ctrl+f");
  return aUser.Await("the search field", HasSearchFocus);
}

/// Finds a feature by the search field and gives the keyboard back to the rows.
inline bool Find(UserHands& aUser, const QString& aName) {
  if (!OpenSearch(aUser))
    return false;
  aUser.Type(aName);
  if (!aUser.Await(aName + " found", [&] { return GetSelectedName() == aName; }))
    return false;
  aUser.Press("ctrl+f");
  return aUser.Await("the rows with the keyboard", [] { return FindGrid() && FindGrid()->hasFocus(); });
}

/// Writes a number into the feature of a name, by keyboard alone.
inline bool SetNumber(UserHands& aUser, const QString& aWindow, const QString& aName, const QString& aValue) {
  if (!Find(aUser, aName))
    return false;
  aUser.Press("Return");
  if (!aUser.Await("the editor of " + aName, HasEditorFocus))
    return false;
  aUser.Press("ctrl+a");
  aUser.Type(aValue);
  aUser.Press("Return");
  return aUser.AwaitRow(aWindow, kGrid, aName + " | " + aValue);
}

/// Chooses the next or an earlier entry of a drop-down list.
inline bool Choose(UserHands& aUser, const QString& aWindow, int aList, const QString& aKey, int aTimes = 1) {
  aUser.Click(aWindow, aList);
  if (!aUser.AwaitMenu())
    return false;
  aUser.Press(aKey, aTimes);
  aUser.Press("Return");
  return aUser.Await("the list closed", [] { return QApplication::activePopupWidget() == nullptr; });
}

inline bool OpenOptions(UserHands& aUser, const QString& aWindow) {
  aUser.Click(aWindow, kOptionsButton);
  return aUser.AwaitWindow(kOptions);
}

inline bool AcceptOptions(UserHands& aUser, const QString& aWindow) {
  aUser.Click(kOptions, kOk);
  return aUser.AwaitNoWindow(kOptions) && aUser.AwaitWindow(aWindow);
}

} // namespace browseruser
