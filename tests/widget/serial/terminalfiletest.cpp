// The serial terminal's sending of files: choosing, progress, stopping, echo, statistics, and what cannot be sent.

#include "terminalfilefixture.h"

#include <QFileDialog>
#include <QFileSystemModel>
#include <QListView>
#include <QProgressBar>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Files : public TerminalFileTest {
protected:
  /// Answers the next file dialog with a typed path, or cancels it.
  void AnswerFileDialog(const QString& aPath) {
    DuringNextModalLoop([this, aPath](QWidget& aDialog) {
      mDialogTitle = aDialog.windowTitle();
      if (!aPath.isEmpty()) {
        aDialog.findChild<QLineEdit*>()->setText(aPath);
        QMetaObject::invokeMethod(&aDialog, "accept");
      }
      if (aDialog.isVisible())
        static_cast<QDialog&>(aDialog).reject();
    });
  }

  QString mDialogTitle;
};

} // namespace

TEST_F(Files, FileOf1000Bytes_GoesOutInFourChunks) {
  Open();
  const std::string bytes(1000, 'x');

  SendFile(MakeFile(bytes));

  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(mLine->GetSent(), bytes);
  EXPECT_THAT(mLine->GetWrites(), ElementsAre(256U, 256U, 256U, 232U));
}

TEST_F(Files, FileThatIsSent_IsEchoedAndSummedUp) {
  Open();
  const std::string file = MakeFile("hello");

  SendFile(file);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_TRUE(WaitFor([&] { return GetUtf8().find("hello") != std::string::npos; }));
  EXPECT_THAT(GetUtf8(), HasSubstr("\r\n\n0 second ("));
  EXPECT_THAT(GetUtf8(), HasSubstr(" milliseconds) taken to send: \r\n'" + file + "'\n\r\n"));
  EXPECT_THAT(GetUtf8(), HasSubstr("5/5 successfully transmitted bytes (100%)\n\r\n"));
  EXPECT_THAT(GetUtf8(), Not(HasSubstr("loopback")));
}

TEST_F(Files, EchoOff_FileIsNotShown) {
  Open();
  Check(id::kEcho, false);

  SendFile(MakeFile("hello"));

  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(GetUtf8().find("hello"), std::string::npos);
}

TEST_F(Files, LoopbackThatIsWhole_IsReportedSo) {
  mDevice.booleans["Uart0Loopback"] = true;
  mLine->SetLoopback(true);
  Open();
  Check(id::kEcho, false);
  Check(id::kValidation, true);

  SendFile(MakeFile(std::string(600, 'x')));

  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("600/600 bytes received from loopback (100%)\n\r\n"));
}

TEST_F(Files, LoopbackThatIsOffInTheDevice_NothingCounts) {
  mLine->SetLoopback(true);
  Open();
  Check(id::kValidation, true);

  SendFile(MakeFile(std::string(600, 'x')));

  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("0/600 bytes received from loopback (0%)\n\r\n"));
}

TEST_F(Files, UnderWay_SendingIsDisabledAndProgressShown) {
  Open();
  EXPECT_FALSE(Get(id::kProgress).isVisible());
  EXPECT_FALSE(Get(id::kStop).isEnabled());
  mLine->SetRoom(512);

  SendFile(MakeFile(std::string(1000, 'x')));

  EXPECT_FALSE(Get(id::kSend).isEnabled());
  EXPECT_FALSE(Get(id::kSendFile).isEnabled());
  EXPECT_TRUE(Get(id::kStop).isEnabled());
  EXPECT_TRUE(WaitFor([&] { return Get<QLabel>(id::kProgressText).text() == "512 of 1000 bytes"; }));
  EXPECT_EQ(Get(id::kProgress).findChild<QProgressBar*>()->value(), 512);
  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(AwaitEnd());
  EXPECT_FALSE(Get(id::kProgress).isVisible());
  EXPECT_FALSE(Get(id::kProgressText).isVisible());
  EXPECT_FALSE(Get(id::kStop).isEnabled());
}

TEST_F(Files, OtherClickedUnderWay_LeavesSendingDisabled) {
  Open();
  mLine->SetRoom(0);
  SendFile(MakeFile("hello"));

  Click(id::kOther);

  EXPECT_FALSE(Get(id::kSend).isEnabled());
  EXPECT_TRUE(Get(id::kOtherField).isEnabled());
}

TEST_F(Files, UnderWay_NothingOfTheOtherControlsMoves) {
  Open();
  const auto getPlaces = [&] {
    std::map<QString, QRect> places;
    for (const QWidget* widget : mWindow->GetWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
      places[widget->objectName()] = widget->geometry();
    return places;
  };
  const auto before = getPlaces();
  mLine->SetRoom(0);

  SendFile(MakeFile("hello"));
  ASSERT_TRUE(WaitFor([&] { return Get(id::kProgress).isVisible(); }));

  EXPECT_EQ(getPlaces(), before);
}

TEST_F(Files, Stop_EndsATransferThatTheLineBlocks) {
  Open();
  mLine->SetRoom(100);
  SendFile(MakeFile(std::string(1000, 'x')));
  ASSERT_TRUE(WaitFor([&] { return mLine->GetSent().size() == 100; }));

  Click(id::kStop);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("100/1000 successfully transmitted bytes (10%)\n\r\n"));
}

TEST_F(Files, FileThatCannotBeOpened_IsToldAndButtonsComeBack) {
  Open();
  const std::string missing = mFolder.GetFile("missing");
  for (const std::string& path : {missing, mFolder.GetPath().string(), std::string()}) {
    mBoxes.clear();
    AnswerBoxes(1);

    SendFile(path);

    ASSERT_TRUE(WaitFor([&] { return mBoxes.size() == 1; })) << path;
    EXPECT_EQ(mBoxes[0], "Error: The following file could not be opened: " + path);
    EXPECT_EQ(mPictures.back(), "Error");
    EXPECT_TRUE(AwaitEnd()) << path;
  }
  EXPECT_EQ(GetUtf8(), "");
}

TEST_F(Files, MarkupInAPath_IsShownAsItIs) {
  Open();
  AnswerBoxes(1);

  SendFile("<b>no</b>");

  ASSERT_TRUE(WaitFor([&] { return mBoxes.size() == 1; }));
  EXPECT_EQ(mBoxes[0], "Error: The following file could not be opened: <b>no</b>");
}

TEST_F(Files, WindowDeletedFromTheBoxOfAFile_EndsThere) {
  Open();
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  SendFile(mFolder.GetFile("missing"));

  EXPECT_TRUE(WaitFor([&] { return mWindow == nullptr; }));
}

TEST_F(Files, PortChangedUnderWay_EndsTheTransferAndSendsOnTheOther) {
  Open();
  mLine->SetRoom(0);
  SendFile(MakeFile(std::string(1000, 'x')));

  Pick(Get<QComboBox>(id::kPort), 1);

  ASSERT_TRUE(AwaitEnd());
  SendFile(MakeFile("other"));
  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(mBulk->GetSent(), "other");
}

TEST_F(Files, DeviceTakenAwayUnderWay_LeavesTheButtonsDisabled) {
  Open();
  mLine->SetRoom(0);
  SendFile(MakeFile("hello"));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_TRUE(WaitFor([&] { return !Get(id::kProgress).isVisible() && mWindow->GetWidget() != nullptr; }));
  EXPECT_FALSE(Get(id::kSend).isEnabled());
  EXPECT_FALSE(Get(id::kStop).isEnabled());
}

TEST_F(Files, FileChosen_GoesIntoItsField) {
  Open();
  const QString file = QString::fromStdString(MakeFile("hello"));
  AnswerFileDialog(file);

  Click(id::kBrowse);

  EXPECT_EQ(mDialogTitle, "Send file data");
  EXPECT_EQ(Get<QLineEdit>(id::kFile).text(), file);
}

TEST_F(Files, ChoiceCancelled_LeavesTheField) {
  Open();
  Type(id::kFile, "before");
  AnswerFileDialog({});

  Click(id::kBrowse);

  EXPECT_EQ(Get<QLineEdit>(id::kFile).text(), "before");
}

TEST_F(Files, FileThatDoesNotExist_CannotBeChosen) {
  Open();
  const QString missing = QString::fromStdString(mFolder.GetFile("missing"));
  DuringNextModalLoop([&](QWidget& aDialog) {
    AnswerBoxes(1);
    aDialog.findChild<QLineEdit*>()->setText(missing);
    QMetaObject::invokeMethod(&aDialog, "accept");
    EXPECT_TRUE(aDialog.isVisible());
    static_cast<QDialog&>(aDialog).reject();
  });

  Click(id::kBrowse);

  EXPECT_EQ(mBoxes, Boxes{"Send file data: There is no file \"" + missing.toStdString() + "\"."});
  EXPECT_EQ(Get<QLineEdit>(id::kFile).text(), "");
}

TEST_F(Files, PathOfMoreThan512Characters_IsRefused) {
  Open();
  QString deep = QString::fromStdString(mFolder.GetPath().string());
  while (deep.size() <= 512)
    deep += "/" + QString(100, QLatin1Char('d'));
  std::filesystem::create_directories(deep.toStdString());
  TemporaryFolder::WriteFile(deep.toStdString() + "/f", "hello");
  DuringNextModalLoop([&](QWidget& aDialog) {
    AnswerBoxes(1);
    aDialog.findChild<QLineEdit*>()->setText(deep + "/f");
    QMetaObject::invokeMethod(&aDialog, "accept");
  });

  Click(id::kBrowse);

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], HasSubstr("more than 512 characters"));
  EXPECT_EQ(Get<QLineEdit>(id::kFile).text(), "");
}

TEST_F(Files, NameThatIsNoUtf8_IsNotOffered) {
  Open();
  MakeFile("hello", "named.bin");
  MakeFile("hello", "no\xFFname.bin");
  QStringList offered;
  DuringNextModalLoop([&](QWidget& aDialog) {
    auto& dialog = static_cast<QFileDialog&>(aDialog);
    const QString folder = QString::fromStdString(mFolder.GetPath().string());
    const auto* view = dialog.findChild<QListView*>(QStringLiteral("listView"));
    bool isLoaded = false;
    QObject::connect(dialog.findChild<QFileSystemModel*>(), &QFileSystemModel::directoryLoaded, &dialog,
                     [&](const QString& aFolder) { isLoaded = isLoaded || aFolder == folder; });
    dialog.setDirectory(folder);
    EXPECT_TRUE(WaitFor([&] { return isLoaded; }));
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
      offered.append(view->model()->index(row, 0, view->rootIndex()).data().toString());
    dialog.reject();
  });

  Click(id::kBrowse);

  EXPECT_EQ(offered, QStringList{"named.bin"}) << offered.join(", ").toStdString();
}

TEST_F(Files, WindowDeletedWhileAFileIsChosen_EndsTheDialog) {
  Open();
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  Click(id::kBrowse);

  EXPECT_EQ(mWindow, nullptr);
}

} // namespace krgui
