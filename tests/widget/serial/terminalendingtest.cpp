// The serial terminal at its end: closing, deletion, a parent's end, while it is busy; and what the next opening finds.

#include "temporaryfolder.h"
#include "terminalfixture.h"
#include "windowwait.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

namespace krgui {

namespace {

class Endings : public TerminalTest {
protected:
  void SendFileThatBlocks() {
    mLine->SetRoom(300);
    TemporaryFolder::WriteFile(mFolder.GetFile("data"), std::string(100'000, 'x'));
    Type(id::kFile, QString::fromStdString(mFolder.GetFile("data")));
    Click(id::kSendFile);
    ASSERT_TRUE(WaitFor([&] { return mLine->GetSent().size() == 300; }));
  }

  /// Leaves text that the screen does not show yet.
  void AppendBehind() {
    GetTranscript().Append(u"first");
    while (GetTranscript().GetShownText() == GetText())
      GetTranscript().Append(u"more");
  }
  /// Handles events, but deletes nothing that was left for later, until the transcript shows its text.
  [[nodiscard]] static bool AwaitShown(const QPointer<RollingEdit>& aTranscript) {
    const auto isOver = [&] { return !aTranscript || aTranscript->GetShownText() == aTranscript->GetText(); };
    const bool isSo = krtest::Await([&] {
      if (!isOver())
        QCoreApplication::processEvents();
      return isOver();
    });
    return isSo && aTranscript;
  }

  TemporaryFolder mFolder;
};

} // namespace

TEST_F(Endings, Close_ClosesThePort) {
  Open();

  ASSERT_TRUE(mWindow->Close().IsOK());

  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
}

TEST_F(Endings, CloseBox_ClosesThePort) {
  Open();

  mWindow->GetWidget()->close();

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, WindowClosedWhileAFileIsSent_EndsTheTransfer) {
  Open();
  SendFileThatBlocks();

  ASSERT_TRUE(mWindow->Close().IsOK());

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, WindowDeletedWhileAFileIsSent_EndsTheTransfer) {
  Open();
  SendFileThatBlocks();

  mWindow.reset();

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, WindowDeletedFromABoxWhileAFileIsSent_EndsBoth) {
  Open();
  SendFileThatBlocks();
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  Click(id::kBrowse);

  EXPECT_EQ(mWindow, nullptr);
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, WindowDeletedWhileTheMenuOfTheFilesIsOpen_EndsCleanly) {
  Open();
  QPointer<QMenu> menu;
  DuringNextModalLoop([&](QWidget& aDialog) {
    auto* const files = aDialog.findChild<QAbstractItemView*>("treeView");
    ASSERT_NE(files, nullptr);
    QContextMenuEvent event(QContextMenuEvent::Mouse, {1, 1}, files->viewport()->mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(files->viewport(), &event);
    menu = files->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->actions().isEmpty());
    mWindow.reset();
  });

  Click(id::kBrowse);

  EXPECT_EQ(mWindow, nullptr);
  EXPECT_EQ(menu, nullptr);
}

TEST_F(Endings, WindowDeletedWhileReceiving_EndsCleanly) {
  Open();
  for (int count = 0; count < 100; ++count)
    mLine->Receive("a line of text\r\n");

  mWindow.reset();

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, ClosedBeforeAllIsShown_LeavesATranscriptThatShowsItAlone) {
  Open();
  AppendBehind();
  const QPointer<RollingEdit> transcript = &GetTranscript();

  ASSERT_TRUE(mWindow->Close().IsOK());

  EXPECT_TRUE(AwaitShown(transcript));
}

TEST_F(Endings, ClosedBeforeAllIsShownInAHandlerThatAsksTheUser_LeavesATranscriptThatShowsItAlone) {
  Open();
  bool isShown = false;
  QEventLoop loop;
  QTimer::singleShot(0, &loop, [&] {
    AppendBehind();
    const QPointer<RollingEdit> transcript = &GetTranscript();
    ASSERT_TRUE(mWindow->Close().IsOK());
    // As a dialog of the application does, which is a loop within.
    isShown = AwaitShown(transcript);
    loop.quit();
  });

  loop.exec();

  EXPECT_TRUE(isShown);
}

TEST_F(Endings, ClosedByATimerWhileReceiving_EndsCleanly) {
  for (int round = 0; round < 10; ++round) {
    Open();
    QEventLoop loop;
    QPointer<RollingEdit> transcript = &GetTranscript();
    QTimer feed;
    QObject::connect(&feed, &QTimer::timeout, &loop, [&] { mLine->Receive(std::string(100, 'A') + "\r\n"); });
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &loop, [&] {
      if (GetText().size() < 1000)
        return;
      end.stop();
      feed.stop();
      ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
      ASSERT_TRUE(mWindow->Close().IsOK());
      QObject::connect(transcript, &QObject::destroyed, &loop, &QEventLoop::quit);
    });
    feed.start(1);
    end.start(0);

    loop.exec();

    EXPECT_FALSE(mLine->IsOpen());
  }
}

TEST_F(Endings, ReopenedWhileMessagesOfAFileWait_IsReadyToSend) {
  Open();
  SendFileThatBlocks();
  ASSERT_TRUE(mWindow->Close().IsOK());
  mLine->SetRoom(SIZE_MAX);

  Open();

  EXPECT_TRUE(Get(id::kSendFile).isEnabled());
  Type(id::kData, "A");
  Click(id::kSend);
  EXPECT_TRUE(WaitFor([&] { return mLine->GetSent().ends_with("A\r"); }));
}

TEST_F(Endings, Reopened_KeepsTheDisplayFormatAndThePort) {
  Open();
  Click(id::kShowHybrid);
  ASSERT_TRUE(mWindow->SetSerialPort(KrDeviceSerial::Bulk0).IsOK());
  ASSERT_TRUE(mWindow->Close().IsOK());

  Open();

  EXPECT_TRUE(Get<QRadioButton>(id::kShowHybrid).isChecked());
  EXPECT_TRUE(mBulk->IsOpen());
  mBulk->Receive("A");
  EXPECT_TRUE(WaitFor([&] { return GetText().starts_with(u"41 "); }));
}

TEST_F(Endings, Reopened_StartsWithAnEmptyTranscriptAndTheFirstChoices) {
  Open();
  mLine->Receive("A");
  ASSERT_TRUE(AwaitText(u"A"));
  Check(id::kSendHexadecimal, true);
  Check(id::kEcho, false);
  ASSERT_TRUE(mWindow->Close().IsOK());

  Open();

  EXPECT_EQ(GetText(), u"");
  EXPECT_TRUE(Get<QRadioButton>(id::kSendASCII).isChecked());
  EXPECT_TRUE(Get<QCheckBox>(id::kEcho).isChecked());
}

TEST_F(Endings, DeviceThatVanishesWhileOpen_CanBeClosedAndTakenOut) {
  Open();
  SendFileThatBlocks();

  mLine->Lose();
  ASSERT_TRUE(WaitFor([&] { return GetStatus() == "Connection lost"; }));

  EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  EXPECT_TRUE(mWindow->Close().IsOK());
}

TEST_F(Endings, Embedded_WorksAndEndsWithItsParent) {
  auto host = std::make_unique<QWidget>();
  auto* layout = new QVBoxLayout(host.get());
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(host.get()).IsOK());
  layout->addWidget(mWindow->GetWidget());
  host->show();
  ASSERT_TRUE(krtest::AwaitActive(host.get()));
  EXPECT_FALSE(mWindow->GetWidget()->isWindow());
  Get(id::kData).setFocus();
  Type(id::kData, "A");
  QTest::keyClick(&Get(id::kData), Qt::Key_Return);
  EXPECT_TRUE(AwaitSent("A\r"));

  host.reset();

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, EnterOutsideAnEmbeddedTerminal_IsNotItsOwn) {
  QWidget host;
  auto* layout = new QVBoxLayout(&host);
  auto* field = new QLineEdit;
  layout->addWidget(field);
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(&host).IsOK());
  layout->addWidget(mWindow->GetWidget());
  host.show();
  ASSERT_TRUE(krtest::AwaitActive(&host));
  Type(id::kData, "A");
  bool isReturned = false;
  QObject::connect(field, &QLineEdit::returnPressed, field, [&] { isReturned = true; });
  field->setFocus();

  QTest::keyClick(field, Qt::Key_Return);

  EXPECT_TRUE(isReturned);
  Click(id::kSend);
  EXPECT_TRUE(AwaitSent("A\r"));
}

TEST_F(Endings, EscapeInAModelessWindow_ClosesItAndThePort) {
  Open();
  ASSERT_TRUE(mLine->IsOpen());

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, EscapeInAnEmbeddedTerminal_DoesNothing) {
  QWidget host;
  auto* layout = new QVBoxLayout(&host);
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(&host).IsOK());
  layout->addWidget(mWindow->GetWidget());
  host.show();
  ASSERT_TRUE(krtest::AwaitActive(&host));

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);

  ASSERT_NE(mWindow->GetWidget(), nullptr);
  EXPECT_TRUE(mWindow->GetWidget()->isVisible());
  EXPECT_TRUE(mLine->IsOpen());
}

TEST_F(Endings, Modal_SendsOnEnterAndEndsByEscapeAsCancelled) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  DuringNextModalLoop([this](QWidget& aDialog) {
    Type(id::kData, "A");
    QTest::keyClick(&Get(id::kData), Qt::Key_Return);
    EXPECT_TRUE(AwaitSent("A\r"));
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(mWindow->ShowModal(0).GetCode(), KrResult::Code::Cancelled);

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Endings, WindowDeletedFromTheBoxOfItsOpening_IsNotShown) {
  mLine->FailOpening(KrResult::Code::Busy);
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  EXPECT_EQ(mWindow->ShowModeless(0).GetCode(), KrResult::Code::Failed);

  EXPECT_EQ(mWindow, nullptr);
}

} // namespace krgui
