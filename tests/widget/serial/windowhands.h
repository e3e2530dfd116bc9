#pragma once
// A user's hands for tests of the serial windows: picks entries and answers message boxes.

#include "duringmodalloop.h"

#include <QComboBox>
#include <QLabel>
#include <QTest>

#include <string>
#include <vector>

namespace krgui {

class WindowHands {
protected:
  /// Picks an entry as the user does.
  static void Pick(QComboBox& aList, int aIndex) {
    aList.setCurrentIndex(aIndex);
    Q_EMIT aList.activated(aIndex);
  }
  static std::vector<std::string> GetEntries(const QComboBox& aList) {
    std::vector<std::string> entries;
    for (int index = 0; index < aList.count(); ++index)
      entries.push_back(aList.itemText(index).toStdString());
    return entries;
  }

  /// Message boxes that were answered with OK, each its caption and its text.
  using Boxes = std::vector<std::string>;
  /// Of a message box, what its picture is called for those who do not see it.
  static std::string GetPicture(const QWidget& aBox) {
    const auto* const picture = aBox.findChild<QLabel*>(QStringLiteral("picture"));
    return picture ? picture->accessibleName().toStdString() : std::string();
  }
  /// Answers the next message boxes, so many.
  void AnswerBoxes(int aCount) {
    if (aCount == 0)
      return;
    DuringNextModalLoop([this, aCount](QWidget& aBox) {
      const auto* text = aBox.findChild<QLabel*>(QStringLiteral("text"));
      mBoxes.push_back((aBox.windowTitle() + ": " + (text ? text->text() : QString())).toStdString());
      mPictures.push_back(GetPicture(aBox));
      AnswerBoxes(aCount - 1);
      QTest::keyClick(&aBox, Qt::Key_Escape);
    });
  }

  Boxes mBoxes;
  std::vector<std::string> mPictures; ///< Of the same boxes.
};

} // namespace krgui
