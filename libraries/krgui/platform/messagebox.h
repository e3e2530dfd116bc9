#pragma once
// Message boxes: a text, a picture that says how grave it is, and the answers to choose from. What is asked, and what
// follows from the answer, is left to the windows.

#include "platform/modalloop.h"

#include <QString>

class QWidget;

namespace krgui {

enum class MessageIcon {
  Stop,        ///< It was refused.
  Exclamation, ///< It deserves a thought.
  Information,
  Question,
};

enum class MessageButtons {
  OK,
  YesNo,
};

/// Shows a message and waits for the answer: OK, Yes or No. Enter presses the focused button, at first OK or Yes;
/// Escape and the close box answer OK, where there is nothing else, or No. Gone when aOwner ended first.
///
/// aText is plain text, whatever it holds; "\r\n" and "\n" begin a new line. Many lines are scrolled. aDetail, which is
/// so too, stands below it. Thread: user interface.
ModalResult ShowMessage(QWidget* aOwner, const QString& aText, const QString& aCaption, MessageIcon aIcon,
                        MessageButtons aButtons = MessageButtons::OK, const QString& aDetail = {});

} // namespace krgui
