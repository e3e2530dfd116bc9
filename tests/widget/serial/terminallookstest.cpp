// The serial terminal's looks: title, limits, fonts, and which controls follow a resize.

#include "contrast.h"
#include "terminalfixture.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QTextBlock>

#include <map>

namespace krgui {

namespace {

class Looks : public TerminalTest {
protected:
  std::map<QString, QRect> GetPlaces() const {
    std::map<QString, QRect> places;
    for (const QWidget* widget : mWindow->GetWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (widget->property("controlID").toInt() > 0)
        places[widget->objectName()] = widget->geometry();
    }
    return places;
  }
  void SetHeight(int aHeight) {
    mWindow->SetPosition(0, 0, 608, aHeight);
    ASSERT_TRUE(WaitFor([&] { return mWindow->GetWidget()->height() == aHeight; }));
  }
};

} // namespace

TEST_F(Looks, Title_IsSetFromTheBeginning) {
  EXPECT_STREQ(mWindow->GetTitle().CStr(), "Device Serial Communication");

  Open();

  EXPECT_EQ(mWindow->GetWidget()->windowTitle(), "Device Serial Communication");
}

TEST_F(Looks, Width_IsFixedAndHeightIsLimited) {
  Open();

  EXPECT_EQ(mWindow->GetWidget()->minimumSize(), QSize(608, 350));
  EXPECT_EQ(mWindow->GetWidget()->maximumSize(), QSize(608, 2000));
  EXPECT_EQ(mWindow->GetWidget()->width(), 608);
}

TEST_F(Looks, Resize_ChangesTranscriptAndItsGroupAlone) {
  Open();
  SetHeight(600);
  const auto before = GetPlaces();

  for (const int height : {2000, 700, 350}) {
    SetHeight(height);
    const auto after = GetPlaces();
    for (const auto& [name, place] : before) {
      const bool follows = name == "control1058" || name == "control1063";
      EXPECT_EQ(after.at(name), place.adjusted(0, 0, 0, follows ? height - 600 : 0)) << name.toStdString();
    }
  }
}

TEST_F(Looks, SmallestWindow_ShowsTheNewestLineAndTheEmptyOneBehindIt) {
  Open();
  SetHeight(350);

  mLine->Receive(std::string(200, 'W') + "\r\nolder\r\nnewest\r\n");
  ASSERT_TRUE(WaitFor([&] { return GetText().ends_with(u"newest\r\n"); }));

  const RollingEdit& transcript = GetTranscript();
  const QTextCursor newest(transcript.document()->findBlockByNumber(2));
  const QRect line = transcript.cursorRect(newest);
  EXPECT_TRUE(transcript.viewport()->rect().contains(line.center()));
  EXPECT_GE(line.top(), 0);
  EXPECT_LE(line.bottom() + line.height(), transcript.viewport()->height());
}

TEST_F(Looks, DataFieldAndTranscript_HaveAFixedPitchFontWithLinesOf14Pixels) {
  Open();

  for (const QFont& font : {GetTranscript().font(), Get(id::kData).font()}) {
    EXPECT_TRUE(QFontInfo(font).fixedPitch()) << font.family().toStdString();
    EXPECT_NEAR(QFontMetricsF(font).height(), 14, 1.5);
  }
  EXPECT_FALSE(Get(id::kFile).font() == GetTranscript().font());
}

TEST_F(Looks, HybridLine_FitsIntoTheWindow) {
  Open();
  Click(id::kShowHybrid);
  mLine->Receive(std::string(1600, 'W'));
  ASSERT_TRUE(WaitFor([&] { return !GetText().empty() && IsShown(); }));

  EXPECT_EQ(GetTranscript().horizontalScrollBar()->maximum(), 0);
}

TEST_F(Looks, SpeedList_HasRoomForItsWidestUsualEntry) {
  Open();
  const auto& list = Get<QComboBox>(id::kSpeed);
  QStyleOptionComboBox option;
  option.initFrom(&list);

  const QRect room = list.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &list);

  EXPECT_GE(room.width(), list.fontMetrics().horizontalAdvance("Baud12000000"));
  const auto& label = Get<QLabel>(id::kSpeedLabel);
  EXPECT_GE(label.width(), label.sizeHint().width());
}

TEST_F(Looks, LongLine_CanBeScrolledTo) {
  Open();
  mLine->Receive(std::string(500, 'W'));
  ASSERT_TRUE(WaitFor([&] { return GetText().size() == 500 && IsShown(); }));

  EXPECT_GT(GetTranscript().horizontalScrollBar()->maximum(), 0);
}

TEST_F(Looks, Transcript_HasBothScrollBars) {
  Open();

  EXPECT_TRUE(GetTranscript().horizontalScrollBar()->isVisible());
  EXPECT_TRUE(GetTranscript().verticalScrollBar()->isVisible());
}

TEST_F(Looks, Rows_HaveTheirControlsInLine) {
  Open();
  const std::vector<std::vector<int>> rows = {{id::kPortLabel, id::kPort, id::kSpeed, id::kLoopback, id::kStatus},
                                              {id::kSendASCII, id::kSendHexadecimal},
                                              {id::kData, id::kSend},
                                              {id::kCR, id::kLF, id::kNull, id::kOther, id::kOtherField, id::kHexLabel},
                                              {id::kFile, id::kBrowse, id::kSendFile, id::kStop},
                                              {id::kValidation, id::kProgress, id::kProgressText},
                                              {id::kShowASCII, id::kShowHexadecimal, id::kShowHybrid},
                                              {id::kClear, id::kSave}};

  for (const std::vector<int>& row : rows) {
    const int middle = Get(row.front()).geometry().center().y();
    for (const int control : row)
      EXPECT_NEAR(Get(control).geometry().center().y(), middle, 1) << control;
  }
  EXPECT_EQ(Get(id::kShowHybrid).y(), Get(id::kShowASCII).y());
}

TEST_F(Looks, WhatIsSaidInPlaceOfTheTranscript_CanBeReadInLightAndDark) {
  const QPalette before = QApplication::palette();
  for (const QColor& window : {QColor(239, 239, 239), QColor(53, 53, 53)}) {
    QPalette palette(window, window);
    QApplication::setPalette(palette);
    mWindow = std::make_unique<KrSerialTerminalWnd>();
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

    const QImage image = GetTranscript().viewport()->grab().toImage();

    EXPECT_GE(GetContrast(image), 4.5) << window.name().toStdString();
  }
  QApplication::setPalette(before);
}

TEST_F(Looks, NoDevice_IsSaidInPlaceOfTheTranscript) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(GetStatus(), "No device");
  EXPECT_EQ(GetTranscript().GetHint(), "There is no device to talk to.");
  EXPECT_EQ(GetTranscript().toPlainText(), "");
}

} // namespace krgui
