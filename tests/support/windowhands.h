#pragma once
// What a user does in the library's windows again and again: looks at their controls by id, picks from lists, answers
// message boxes. Deeds are the script's thread's.

#include "userhands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>

#include <string>

/// Looks; user-interface thread alone.
template <typename Control>
Control* FindControlOf(const QString& aTitle, int aControl) {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->windowTitle() == aTitle)
      if (auto* const control = window->findChild<Control*>("control" + QString::number(aControl)))
        return control;
  return nullptr;
}

/// The text of the library's message box that is open; empty where there is none. Looks.
inline QString GetBoxText() {
  for (const QWidget* const window : QApplication::topLevelWidgets())
    if (const auto* const text = window->findChild<QLabel*>("text"); text && text->isVisible())
      return text->text();
  return {};
}

/// Waits for a message box, which has its window's title, and closes it; gives what it said. A wait may have been on
/// the screen before, from which the window manager brings the keyboard.
inline std::string ReadBox(const UserHands& aUser, int aLimitMs = UserHands::kLimitMs) {
  QString text;
  aUser.AwaitActive(
      "a message",
      [&] {
        text = GetBoxText();
        return text.isEmpty() ? nullptr : QApplication::activeModalWidget();
      },
      aLimitMs);
  aUser.Press("Return");
  aUser.Await("the message closed", [] { return GetBoxText().isEmpty(); });
  return text.toStdString();
}

/// Picks an entry of a list of a window with the mouse and, in the list that opens, the keys.
inline void Pick(const UserHands& aUser, const QString& aTitle, int aList, const QString& aEntry) {
  aUser.Click(aTitle, aList);
  if (!aUser.AwaitMenu())
    return;
  aUser.Press("Home");
  const QComboBox* list = nullptr;
  int place = -1;
  aUser.Await("the entry " + aEntry, [&] {
    list = FindControlOf<QComboBox>(aTitle, aList);
    place = list ? list->findText(aEntry) : -1;
    return place >= 0;
  });
  if (place > 0)
    aUser.Press("Down", place);
  aUser.Press("Return");
  aUser.Await(aEntry + " chosen", [=] {
    const auto* const chosen = FindControlOf<QComboBox>(aTitle, aList);
    return !QApplication::activePopupWidget() && chosen && chosen->currentText() == aEntry;
  });
}

/// Waits for one of several buttons to be the one that is checked.
inline bool AwaitChecked(const UserHands& aUser, const QString& aTitle, int aButton) {
  return aUser.Await("the button " + QString::number(aButton) + " checked", [=] {
    const auto* const button = FindControlOf<QAbstractButton>(aTitle, aButton);
    return button && button->isChecked();
  });
}
