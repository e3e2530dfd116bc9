// The serial terminal's sending of what is typed: every format with every trailer, echo, and what is told of bad text.

#include "terminalfixture.h"

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kHelp = "Bytes must be provided as pairs of hexadecimal digits\nseparated by spaces.\n\n"
                          "Example: 03 64 70 6D AB 43 72 01 02";

class Sending : public TerminalTest {
protected:
  /// Sends a text, without a trailer unless a test chooses one.
  void Send(const QString& aText, bool aIsHexadecimal = false) {
    Check(aIsHexadecimal ? id::kSendHexadecimal : id::kSendASCII, true);
    Type(id::kData, aText);
    Click(id::kSend);
  }
  void OpenWithoutTrailer() {
    Open();
    Check(id::kCR, false);
  }
  /// On a line that takes nothing: messages without echo until one more does not fit.
  void FillLine() {
    Check(id::kEcho, false);
    mLine->SetRoom(0);
    for (std::size_t sent = 0; sent <= kMostWaiting; sent += kLongMessage)
      Send(QString(kLongMessage, QLatin1Char('x')));
  }

  static constexpr std::size_t kMostWaiting = 1 << 20;
  static constexpr int kLongMessage = 32'000;
};

struct SendRow {
  const char* name;
  const char16_t* text;
  bool isHexadecimal;
  std::string sent;
};

const SendRow kSendRows[] = {
    {"nine pairs", u"03 64 70 6D AB 43 72 01 02", true, "\x03\x64\x70\x6D\xAB\x43\x72\x01\x02"},
    {"a digit alone", u"3 64", true, "\x03\x64"},
    {"pairs without blanks", u"0364", true, "\x03\x64"},
    {"lower case", u"ab", true, "\xAB"},
    {"a letter of Latin-1", u"\u00E9", false, "\xE9"},
    {"a letter beyond Latin-1", u"\u20AC", false, "\xAC"},
    {"digits as text", u"41", false, "41"},
};

struct TrailerRow {
  const char* name;
  bool cr, lf, null, other;
  std::string sent;
};

const TrailerRow kTrailerRows[] = {
    {"none", false, false, false, false, "A"s},      {"CR", true, false, false, false, "A\r"s},
    {"LF", false, true, false, false, "A\n"s},       {"NULL", false, false, true, false, "A\0"s},
    {"other", false, false, false, true, "A\xFF"s},  {"CR and LF", true, true, false, false, "A\r\n"s},
    {"all", true, true, true, true, "A\r\n\0\xFF"s},
};

} // namespace

TEST_F(Sending, EachText_GoesOutAsItsFormatSays) {
  OpenWithoutTrailer();
  std::string sent;
  for (const SendRow& row : kSendRows) {
    Send(QString::fromUtf16(row.text), row.isHexadecimal);

    sent += row.sent;
    EXPECT_TRUE(AwaitSent(sent)) << row.name;
  }
}

TEST_F(Sending, EachTrailer_FollowsTheDataInOrder) {
  for (const bool isHexadecimal : {false, true}) {
    mWindow = std::make_unique<KrSerialTerminalWnd>();
    Open();
    Type(id::kOtherField, "ff");
    std::string sent = mLine->GetSent();
    for (const TrailerRow& row : kTrailerRows) {
      Check(id::kCR, row.cr);
      Check(id::kLF, row.lf);
      Check(id::kNull, row.null);
      Check(id::kOther, row.other);
      Send(isHexadecimal ? "41" : "A", isHexadecimal);

      sent += row.sent;
      EXPECT_TRUE(AwaitSent(sent)) << row.name << (isHexadecimal ? " in hexadecimal" : " in ASCII");
    }
  }
}

TEST_F(Sending, NewWindow_AppendsCRAndEchoesInASCII) {
  Open();

  Send("A");

  EXPECT_TRUE(AwaitSent("A\r"));
  EXPECT_TRUE(AwaitText(u"A\r\n"));
}

TEST_F(Sending, DataAndTrailer_AreOneWrite) {
  Open();
  Check(id::kLF, true);

  Send("ABC");

  ASSERT_TRUE(AwaitSent("ABC\r\n"));
  EXPECT_THAT(mLine->GetWrites(), ElementsAre(5U));
}

TEST_F(Sending, EmptyFieldWithoutTrailer_PutsNothingOnTheLine) {
  OpenWithoutTrailer();

  Send("");
  Send("A");

  EXPECT_TRUE(AwaitSent("A"));
  EXPECT_THAT(mBoxes, IsEmpty());
}

TEST_F(Sending, EmptyHexadecimalField_SendsOnlyTheTrailer) {
  Open();

  Send("", true);

  EXPECT_TRUE(AwaitSent("\r"));
}

TEST_F(Sending, BadHexadecimalData_IsToldAndNothingIsSentOrEchoed) {
  Open();
  for (const char* text : {"12G4", "0x12"}) {
    mBoxes.clear();
    AnswerBoxes(1);
    Send(text, true);
    EXPECT_THAT(mBoxes, ElementsAre("Error: Error parsing send data string.\n\n" + kHelp)) << text;
    EXPECT_EQ(mPictures.back(), "Warning");
  }
  Send("42", true);

  EXPECT_TRUE(AwaitSent("B\r"));
  EXPECT_TRUE(AwaitText(u"B\r\n"));
}

TEST_F(Sending, BadOtherTrailer_IsToldTwiceAndTheRestIsSent) {
  Open();
  Check(id::kOther, true);
  Type(id::kOtherField, "ZZ");
  AnswerBoxes(2);

  Send("A");

  const std::string box = "Error: Error parsing other trailer string.\n\n" + kHelp;
  EXPECT_THAT(mBoxes, ElementsAre(box, box));
  EXPECT_THAT(mPictures, ElementsAre("Warning", "Warning"));
  EXPECT_TRUE(AwaitSent("A\r"));
}

TEST_F(Sending, BadOtherTrailerThatIsNotChosen_IsNotTold) {
  Open();
  Type(id::kOtherField, "ZZ");

  Send("A");

  EXPECT_TRUE(AwaitSent("A\r"));
  EXPECT_THAT(mBoxes, IsEmpty());
}

TEST_F(Sending, EchoOff_ShowsOnlyWhatComes) {
  Open();
  Check(id::kEcho, false);
  Send("A");
  ASSERT_TRUE(AwaitSent("A\r"));

  mLine->Receive("B");

  EXPECT_TRUE(AwaitText(u"B"));
}

TEST_F(Sending, WriteThatFails_IsNotTold) {
  Open();
  mLine->Lose();

  Send("A");

  EXPECT_TRUE(AwaitText(u"A\r\n"));
  EXPECT_THAT(mBoxes, IsEmpty());
}

TEST_F(Sending, LineThatTakesNothing_LeavesTheWindowFree) {
  Open();
  mLine->SetRoom(0);

  for (int count = 0; count < 20; ++count)
    Send("A");
  mLine->SetRoom(SIZE_MAX);

  std::string all;
  for (int count = 0; count < 20; ++count)
    all += "A\r";
  EXPECT_TRUE(AwaitSent(all));
}

TEST_F(Sending, MoreThanCanWait_IsToldInTheWindow) {
  OpenWithoutTrailer();

  FillLine();

  EXPECT_THAT(GetStatus(), StartsWith("Line busy"));
}

TEST_F(Sending, LineThatHasTakenAll_IsNotBusyAnyMore) {
  OpenWithoutTrailer();
  FillLine();

  mLine->SetRoom(SIZE_MAX);

  EXPECT_TRUE(WaitFor([&] { return GetStatus() == "Open"; }));
}

TEST_F(Sending, MessageThatStillFits_EndsTheWordsOfTheOneThatDidNot) {
  OpenWithoutTrailer();
  FillLine();

  Send("A");

  EXPECT_EQ(GetStatus(), "Open");
}

TEST_F(Sending, DeviceThatVanishesWhileTheLineIsBusy_IsToldInstead) {
  OpenWithoutTrailer();
  FillLine();

  mLine->Lose();

  EXPECT_TRUE(WaitFor([&] { return GetStatus() == "Connection lost"; }));
  Send("A");
  EXPECT_EQ(GetStatus(), "Connection lost");
}

TEST_F(Sending, MessageThatIsNotSent_IsNotEchoed) {
  OpenWithoutTrailer();
  FillLine();
  Check(id::kEcho, true);

  Send(QString(kLongMessage, QLatin1Char('y')));
  Send("A");

  EXPECT_TRUE(AwaitText(u"A"));
}

TEST_F(Sending, PortChangedFromTheErrorBox_NothingIsSentToTheOther) {
  Open();
  Check(id::kOther, true);
  Type(id::kOtherField, "ZZ");
  DuringNextModalLoop([this](QWidget& aBox) {
    EXPECT_TRUE(mWindow->SetSerialPort(KrDeviceSerial::Bulk0).IsOK());
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });

  Send("A");
  Check(id::kOther, false);
  Send("B");

  EXPECT_TRUE(WaitFor([&] { return mBulk->GetSent() == "B\r"; }));
  EXPECT_EQ(mLine->GetSent(), "");
}

TEST_F(Sending, WindowDeletedFromEitherErrorBox_EndsThere) {
  for (int survived = 0; survived < 2; ++survived) {
    mWindow = std::make_unique<KrSerialTerminalWnd>();
    Open();
    Check(id::kOther, true);
    Type(id::kOtherField, "ZZ");
    DuringNextModalLoop([this, survived](QWidget& aBox) {
      if (survived == 0) {
        mWindow.reset();
        return;
      }
      DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });
      QTest::keyClick(&aBox, Qt::Key_Escape);
    });

    Send("A");

    EXPECT_EQ(mWindow, nullptr) << survived;
    EXPECT_EQ(mLine->GetSent(), "") << survived;
  }
}

} // namespace krgui
