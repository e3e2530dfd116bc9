// The serial terminal closed and opened anew while a box or a dialog of it is on the screen: what comes back from the
// box finds another opening, and does nothing in it.

#include "terminalfilefixture.h"

namespace krgui {

namespace {

class Boxes : public TerminalFileTest {
protected:
  /// Closes the window and opens it anew from the next box or dialog.
  void ReopenFromTheBox() {
    mHasReopened = false;
    DuringNextModalLoop([this](QWidget&) { Reopen(); });
  }
  void Reopen() {
    ASSERT_TRUE(mWindow->Close().IsOK());
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
    mHasReopened = true;
  }
  /// The new opening is as any other, and works.
  void ExpectFresh() {
    ASSERT_TRUE(mHasReopened);
    EXPECT_TRUE(WaitFor([] { return QApplication::activeModalWidget() == nullptr; })) << "the box has gone";
    EXPECT_EQ(GetText(), u"");
    EXPECT_EQ(Get<QLineEdit>(id::kFile).text(), "");
    EXPECT_TRUE(Get(id::kSendFile).isEnabled());
    const std::size_t before = mLine->GetSent().size();
    Type(id::kData, "A");
    Click(id::kSend);
    EXPECT_TRUE(WaitFor([&] { return mLine->GetSent().substr(before) == "A\r"; }));
  }

  bool mHasReopened = false;
};

} // namespace

TEST_F(Boxes, ReopenedFromTheErrorOfBadData_SendsNothingOfIt) {
  Open();
  Check(id::kSendHexadecimal, true);
  Type(id::kData, "G");
  ReopenFromTheBox();

  QTest::keyClick(&Get(id::kData), Qt::Key_Return);

  EXPECT_EQ(mLine->GetSent(), "");
  ExpectFresh();
}

TEST_F(Boxes, ReopenedFromTheErrorOfABadTrailer_SendsNothingOfIt) {
  Open();
  Check(id::kOther, true);
  Type(id::kOtherField, "ZZ");
  Type(id::kData, "A");
  ReopenFromTheBox();

  Click(id::kSend);

  EXPECT_EQ(mLine->GetSent(), "");
  ExpectFresh();
}

TEST_F(Boxes, ReopenedWhileAFileIsChosen_ChoosesNone) {
  Open();
  ReopenFromTheBox();

  Click(id::kBrowse);

  ExpectFresh();
}

TEST_F(Boxes, ReopenedWhileTheTranscriptIsSaved_SavesNothing) {
  Open();
  mLine->Receive("abc");
  ASSERT_TRUE(AwaitText(u"abc"));
  ReopenFromTheBox();

  Click(id::kSave);

  ExpectFresh();
}

TEST_F(Boxes, ReopenedFromTheErrorOfAFile_HasNoTransfer) {
  Open();
  ReopenFromTheBox();

  SendFile(mFolder.GetFile("missing"));

  ASSERT_TRUE(WaitFor([&] { return mHasReopened; }));
  ExpectFresh();
}

TEST_F(Boxes, ReopenedFromTheErrorOfAPort_TriesThatAgain) {
  Open();
  mBulk->FailOpening(KrResult::Code::Busy);
  DuringNextModalLoop([this](QWidget&) {
    mBulk->FailOpening({});
    Reopen();
  });

  Pick(Get<QComboBox>(id::kPort), 1);

  ASSERT_TRUE(mHasReopened);
  EXPECT_TRUE(mBulk->IsOpen());
  EXPECT_EQ(GetStatus(), "Open");
  ASSERT_TRUE(mWindow->SetSerialPort(KrDeviceSerial::Serial0).IsOK());
  ExpectFresh();
}

TEST_F(Boxes, ReopenedFromTheErrorOfItsOpening_IsOpen) {
  mLine->FailOpening(KrResult::Code::Busy);
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  DuringNextModalLoop([this](QWidget&) {
    mLine->FailOpening({});
    Reopen();
  });

  (void)mWindow->ShowModeless(0); // What it gives belongs to an opening that has ended.

  ExpectFresh();
}

} // namespace krgui
