// Saving and restoring features as users do it: file dialogs, progress, comparison, lists of problems, and windows that
// end at every step.

#include "browser/settingsactions.h"
#include "describedcamera.h"
#include "duringmodalloop.h"
#include "temporaryfolder.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

namespace krgui {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Step = std::function<void(QWidget&)>;

std::string MakeInteger(const std::string& aName, int aAddress, const std::string& aMore = "") {
  return "<Integer Name=\"" + aName + "\"><Streamable>Yes</Streamable>" + aMore + "<pValue>" + aName +
         "Reg</pValue></Integer><IntReg Name=\"" + aName + "Reg\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

const std::string kNodes = MakeInteger("Width", 0) + MakeInteger("Height", 4) +
                           MakeInteger("Locked", 8, "<pIsLocked>TLParamsLocked</pIsLocked>") +
                           MakeInteger("Small", 12, "<Max>10</Max>") +
                           "<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer>";

constexpr const char* kHeader = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n# GenApi persistence file (version 1.0.0)\n";

QPushButton* FindButton(QWidget& aDialog, const char* aText) {
  for (QPushButton* button : aDialog.findChildren<QPushButton*>()) {
    if (button->text().remove(QLatin1Char('&')) == QLatin1String(aText))
      return button;
  }
  ADD_FAILURE() << "no button " << aText << " in " << aDialog.windowTitle().toStdString();
  return nullptr;
}

Step Click(const char* aText) {
  return [aText](QWidget& aDialog) {
    if (QPushButton* const button = FindButton(aDialog, aText))
      QTest::mouseClick(button, Qt::LeftButton);
  };
}

Step PressEscape() {
  return [](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); };
}

/// Types a file's name into the file dialog, as users do, and presses Enter.
Step ChooseFile(const std::string& aFile) {
  return [aFile](QWidget& aDialog) {
    auto* const edit = aDialog.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    ASSERT_NE(qobject_cast<QFileDialog*>(&aDialog), nullptr);
    edit->setText(QString::fromStdString(aFile));
    QTest::keyClick(edit, Qt::Key_Return);
  };
}

std::string GetText(const QWidget& aDialog, const char* aLabel) {
  const auto* const label = aDialog.findChild<QLabel*>(QLatin1String(aLabel));
  return label ? label->text().toStdString() : "there is no label " + std::string(aLabel);
}

std::vector<std::string> GetRows(const QWidget& aDialog) {
  std::vector<std::string> rows;
  const auto* const view = aDialog.findChild<QAbstractItemView*>();
  if (!view)
    return rows;
  const QAbstractItemModel& model = *view->model();
  for (int row = 0; row < model.rowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
      cells.append(model.index(row, column).data().toString());
    rows.push_back(cells.join(QLatin1Char('|')).toStdString());
  }
  return rows;
}

/// A user who answers every dialog that comes, in turn; dialogs of progress are let alone unless a step asks for them.
class Answers {
public:
  struct Answer {
    const char* dialog; ///< Its object name; "message" for a message box.
    Step step;
  };

  explicit Answers(std::vector<Answer> aAnswers) : mAnswers(std::move(aAnswers)) {
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { Look(); });
    mTimer.start(0);
  }
  ~Answers() { EXPECT_EQ(mNext, mAnswers.size()) << "not asked: " << (AreDone() ? "" : mAnswers[mNext].dialog); }

private:
  bool AreDone() const { return mNext == mAnswers.size(); }
  static QString GetName(const QWidget& aDialog) {
    return aDialog.objectName().isEmpty() ? QStringLiteral("message") : aDialog.objectName();
  }

  void Look() {
    QWidget* const dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isActiveWindow() || dialog == mAnswered)
      return;
    const bool isMeant = !AreDone() && GetName(*dialog) == QLatin1String(mAnswers[mNext].dialog);
    if (!isMeant && GetName(*dialog) == QLatin1String("settingsprogress"))
      return;
    mAnswered = dialog;
    if (isMeant)
      return mAnswers[mNext++].step(*dialog);
    ADD_FAILURE() << "unexpected dialog " << GetName(*dialog).toStdString() << ": " << GetText(*dialog, "text");
    dialog->close();
  }

  std::vector<Answer> mAnswers;
  std::size_t mNext = 0;
  QPointer<QWidget> mAnswered;
  QTimer mTimer;
};

class SettingsActions : public testing::Test {
protected:
  SettingsActions() {
    owner->resize(400, 300);
    owner->show();
  }

  bool Save(const std::stop_token& aEnd = {}) { return SaveSettings(owner.get(), *camera.array, aEnd); }
  bool Restore(const std::stop_token& aEnd = {}) {
    return RestoreSettings(owner.get(), *camera.array, hasWritten, aEnd);
  }
  std::string WriteFile(const std::string& aLines) {
    const std::string file = folder.GetFile("settings.txt");
    TemporaryFolder::WriteFile(file, kHeader + aLines);
    return file;
  }
  int GetByte(std::uint64_t aAddress) { return camera.Peek(aAddress, 1).front(); }

  TemporaryFolder folder;
  DescribedCamera camera{kNodes};
  std::unique_ptr<QWidget> owner = std::make_unique<QWidget>();
  bool hasWritten = false;
};

TEST_F(SettingsActions, Save_ToANewFile_WritesAllStreamableFeatures) {
  camera.Poke(0, {7});
  const std::string file = folder.GetFile("new.txt");
  Answers answers({{"settingsfile", ChooseFile(file)}});

  EXPECT_TRUE(Save());

  EXPECT_THAT(TemporaryFolder::ReadFile(file), AllOf(HasSubstr("Width\t7\n"), HasSubstr("Height\t0\n")));
}

TEST_F(SettingsActions, Save_WithoutASuffix_AddsOneAndRemembersTheFolder) {
  std::string shown;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("plain"))},
                   {"settingsfile", [&](QWidget& aDialog) {
                      shown = qobject_cast<QFileDialog&>(aDialog).directory().absolutePath().toStdString();
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(Save());
  EXPECT_TRUE(Save());

  EXPECT_THAT(folder.GetNames(), testing::ElementsAre("plain.txt"));
  EXPECT_EQ(std::filesystem::path(shown), std::filesystem::canonical(folder.GetPath()));
}

TEST_F(SettingsActions, Save_OverAFileThatIsThere_AsksWithItsNameAsPlainText) {
  const std::string file = folder.GetFile("<b>x<b>.txt");
  TemporaryFolder::WriteFile(file, "mine");
  Qt::TextFormat format = Qt::AutoText;
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"message",
                    [&](QWidget& aDialog) {
                      text = GetText(aDialog, "text");
                      format = aDialog.findChild<QLabel*>(QStringLiteral("text"))->textFormat();
                      Click("No")(aDialog);
                    }},
                   {"settingsfile", PressEscape()}});

  EXPECT_TRUE(Save());

  EXPECT_EQ(TemporaryFolder::ReadFile(file), "mine");
  EXPECT_THAT(text, HasSubstr("<b>x<b>.txt"));
  EXPECT_EQ(format, Qt::PlainText);
}

TEST_F(SettingsActions, Save_OverAFileAndYes_ReplacesIt) {
  const std::string file = folder.GetFile("old.txt");
  TemporaryFolder::WriteFile(file, "mine");
  Answers answers({{"settingsfile", ChooseFile(file)}, {"message", Click("Yes")}});

  EXPECT_TRUE(Save());

  EXPECT_THAT(TemporaryFolder::ReadFile(file), HasSubstr("Width\t0\n"));
}

TEST_F(SettingsActions, Save_IntoAFolderThatIsNotThere_TellsTheReason) {
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("file.txt"))}, {"message", [&](QWidget& aDialog) {
                                                                                text = GetText(aDialog, "text");
                                                                                Click("OK")(aDialog);
                                                                              }}});
  camera.port.SetFault([this](const RegisterAccessRecord&) {
    std::filesystem::remove_all(folder.GetPath()); // After the user has chosen.
    return KrResult();
  });

  EXPECT_TRUE(Save());

  EXPECT_THAT(text, HasSubstr("could not be saved"));
}

void FailAtHeight(DescribedCamera& aCamera) {
  aCamera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == 4 ? KrResult(KrResult::Code::ProtocolError, "Refused <i>so</i>.") : KrResult();
  });
}

TEST_F(SettingsActions, Save_WithAFeatureThatCannotBeRead_TellsBeforeWritingAndWritesTheRestOnDemand) {
  FailAtHeight(camera);
  const std::string file = folder.GetFile("rest.txt");
  std::vector<std::string> rows;
  bool isWrittenBefore = true;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingsproblems", [&](QWidget& aDialog) {
                                                          rows = GetRows(aDialog);
                                                          isWrittenBefore = std::filesystem::exists(file);
                                                          Click("Save Anyway")(aDialog);
                                                        }}});

  EXPECT_TRUE(Save());

  EXPECT_THAT(rows, testing::ElementsAre(testing::StartsWith("Height|Cannot be read: ")));
  EXPECT_FALSE(isWrittenBefore);
  EXPECT_THAT(TemporaryFolder::ReadFile(file), AllOf(HasSubstr("Width\t0\n"), Not(HasSubstr("Height"))));
}

TEST_F(SettingsActions, Save_WithAFeatureThatCannotBeReadAndCancel_LeavesTheFileAsItIs) {
  FailAtHeight(camera);
  const std::string file = folder.GetFile("kept.txt");
  TemporaryFolder::WriteFile(file, "mine");
  Answers answers({{"settingsfile", ChooseFile(file)}, {"message", Click("Yes")}, {"settingsproblems", PressEscape()}});

  EXPECT_TRUE(Save());

  EXPECT_EQ(TemporaryFolder::ReadFile(file), "mine");
}

TEST_F(SettingsActions, Save_OfAClosedArray_ListsTheProblemAndWritesNothing) {
  camera.array->Close();
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"settingsproblems", Click("Close")}});

  EXPECT_TRUE(Save());

  EXPECT_TRUE(folder.GetNames().empty());
}

/// Holds the first access up until it is let go.
class HeldDevice {
public:
  explicit HeldDevice(DescribedCamera& aCamera) : mCamera(aCamera) {
    mCamera.port.SetFault([this](const RegisterAccessRecord&) {
      mIsHeld = true;
      while (!mIsLetGo)
        std::this_thread::yield();
      return KrResult();
    });
  }
  ~HeldDevice() { LetGo(); }
  /// Inside a loop of the user interface: returns when the device is being asked.
  void Await() const {
    EXPECT_TRUE(QTest::qWaitFor([this] { return mIsHeld.load(); }, 60'000));
  }
  void LetGo() { mIsLetGo = true; }

private:
  DescribedCamera& mCamera;
  std::atomic<bool> mIsHeld = false;
  std::atomic<bool> mIsLetGo = false;
};

TEST_F(SettingsActions, Save_CancelledWhileReading_WritesNothing) {
  HeldDevice device(camera);
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))},
                   {"settingsprogress", [&](QWidget& aDialog) {
                      device.Await();
                      Click("Cancel")(aDialog);
                      EXPECT_TRUE(aDialog.isVisible()) << "the work is still under way";
                      device.LetGo();
                    }}});

  EXPECT_TRUE(Save());

  EXPECT_TRUE(folder.GetNames().empty());
}

TEST_F(SettingsActions, Restore_OfADifferentFile_ShowsWhatDiffersAndSetsItOnOK) {
  const std::string file = WriteFile("Width\t0\nHeight\t9\nMissing\t1\nSmall\t0x5\n");
  std::vector<std::string> differing;
  std::vector<std::string> all;
  std::string heading;
  int heightBefore = -1;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison",
                    [&](QWidget& aDialog) {
                      heading = GetText(aDialog, "heading");
                      differing = GetRows(aDialog);
                      QTest::keyClick(&aDialog, Qt::Key_A, Qt::AltModifier);
                      all = GetRows(aDialog);
                      heightBefore = GetByte(4);
                      Click("Restore")(aDialog);
                    }},
                   {"settingsproblems", Click("Close")}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(differing,
              testing::ElementsAre("Height||0|9|", "Missing|||1|This device has no such feature.", "Small||0|0x5|"));
  EXPECT_EQ(all.size(), 4U);
  EXPECT_THAT(heading, HasSubstr("2 of 4 settings differ"));
  EXPECT_EQ(heightBefore, 0);
  EXPECT_EQ(GetByte(4), 9);
  EXPECT_EQ(GetByte(12), 5);
  EXPECT_TRUE(hasWritten);
}

TEST_F(SettingsActions, Restore_WithWrongValuesAndUnknownFeatures_ListsWhatFailedAndWhy) {
  const std::string file = WriteFile("Width\tabc\nSmall\t99\nMissing\t1\nHeight\t3\n");
  std::vector<std::string> rows;
  std::string copied;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", Click("Restore")},
                   {"settingsproblems", [&](QWidget& aDialog) {
                      rows = GetRows(aDialog);
                      Click("Copy All")(aDialog);
                      copied = QGuiApplication::clipboard()->text().toStdString();
                      Click("Close")(aDialog);
                    }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(rows,
              testing::UnorderedElementsAre(testing::StartsWith("Width|"), testing::StartsWith("Small|99 is wanted"),
                                            testing::StartsWith("Missing|There is no such parameter")));
  EXPECT_THAT(copied, AllOf(HasSubstr("Feature\tReason\n"), HasSubstr("Small\t99 is wanted")));
  EXPECT_EQ(GetByte(4), 3);
}

TEST_F(SettingsActions, Restore_OfALockedFeature_SaysWhoLocksIt) {
  ASSERT_TRUE(camera.Integer("TLParamsLocked").SetValue(1).IsOK());
  const std::string file = WriteFile("Locked\t5\n");
  std::vector<std::string> rows;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingscomparison", [&](QWidget& aDialog) {
                                                          rows = GetRows(aDialog);
                                                          Click("Cancel")(aDialog);
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(rows, testing::ElementsAre(testing::EndsWith("|Locked by TLParamsLocked (1).")));
  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_OfWhatTheDeviceHas_SaysThatNothingDiffers) {
  const std::string file = WriteFile("Width\t0x0\nMissing\t1\n");
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"message", [&](QWidget& aDialog) {
                                                          text = GetText(aDialog, "text");
                                                          Click("OK")(aDialog);
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(text, AllOf(HasSubstr("Nothing differs"), HasSubstr("1 of 2 settings")));
  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_OfWhatIsNoSettingsFile_SaysWhatIsWrong) {
  struct {
    const char* what;
    std::string bytes;
    const char* reason;
  } const rows[] = {
      {"another file", "hello\n", "could not be read"},
      {"a line without a value", std::string(kHeader) + "Width 5 x\tno\n=\n", "could not be read"},
      {"no features", kHeader, "There are no features"},
  };

  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string file = folder.GetFile("<i>odd</i>.txt");
    TemporaryFolder::WriteFile(file, row.bytes);
    std::string text;
    Answers answers({{"settingsfile", ChooseFile(file)}, {"message", [&](QWidget& aDialog) {
                                                            text = GetText(aDialog, "text");
                                                            Click("OK")(aDialog);
                                                          }}});

    EXPECT_TRUE(Restore());

    EXPECT_THAT(text, HasSubstr(row.reason));
    EXPECT_FALSE(hasWritten);
  }
}

TEST_F(SettingsActions, Restore_OfAFileThatIsNotThere_SaysSo) {
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("nowhere.txt"))}, {"message", [&](QWidget& aDialog) {
                                                                                   text = GetText(aDialog, "text");
                                                                                   Click("OK")(aDialog);
                                                                                 }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(text, AllOf(HasSubstr("nowhere.txt"), HasSubstr("could not be read")));
}

TEST_F(SettingsActions, Restore_OfALostDevice_SaysSoAndWritesNothing) {
  const std::string file = WriteFile("Width\t5\n");
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::ConnectionLost, "Gone."); });
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"message", [&](QWidget& aDialog) {
                                                          text = GetText(aDialog, "text");
                                                          Click("OK")(aDialog);
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(text, HasSubstr("could not be compared"));
  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_CancelledAtAStepBeforeOK_WritesNothing) {
  const std::string file = WriteFile("Width\t5\n");
  const std::vector<Answers::Answer> steps = {{"settingsfile", ChooseFile(file)}, {"settingscomparison", {}}};

  for (std::size_t last = 0; last < steps.size(); ++last) {
    std::vector<Answers::Answer> answers(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    answers.back().step = PressEscape();
    Answers user(answers);

    EXPECT_TRUE(Restore()) << last;

    EXPECT_EQ(GetByte(0), 0) << last;
    EXPECT_FALSE(hasWritten) << last;
  }
}

TEST_F(SettingsActions, Restore_CancelledWhileComparing_ShowsNothingMore) {
  const std::string file = WriteFile("Width\t5\n");
  HeldDevice device(camera);
  QPointer<QWidget> first;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingsprogress", [&](QWidget& aDialog) {
                                                          device.Await();
                                                          QTest::keyClick(QApplication::activeModalWidget(),
                                                                          Qt::Key_Escape);
                                                          EXPECT_NE(aDialog.objectName(), QString());
                                                          device.LetGo();
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_CancelledWhileWriting_LeavesWhatWasSetAndSaysHowMuchIsLeft) {
  const std::string file = WriteFile("Width\t5\nHeight\t6\n");
  std::atomic<bool> isHeld = false;
  std::atomic<bool> isLetGo = false;
  std::vector<std::string> rows;
  camera.port.SetFault([&](const RegisterAccessRecord& aRecord) {
    isHeld = isHeld || aRecord.isWrite;
    while (aRecord.isWrite && !isLetGo)
      std::this_thread::yield();
    return KrResult();
  });
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", Click("Restore")},
                   {"settingsprogress",
                    [&](QWidget& aDialog) {
                      EXPECT_TRUE(QTest::qWaitFor([&] { return isHeld.load(); }, 60'000));
                      Click("Cancel")(aDialog);
                      isLetGo = true;
                    }},
                   {"settingsproblems", [&](QWidget& aDialog) {
                      rows = GetRows(aDialog);
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(Restore());

  EXPECT_EQ(GetByte(0), 5);
  EXPECT_EQ(GetByte(4), 0);
  EXPECT_THAT(rows, testing::Contains(HasSubstr("1 further settings were not tried")));
  EXPECT_TRUE(hasWritten);
}

/// What takes the owner away, or what it shows.
struct Ending {
  const char* name;
  std::function<void(SettingsActions&, std::unique_ptr<QWidget>&, std::stop_source&)> end;
};

class SettingsActionsEnding : public SettingsActions, public testing::WithParamInterface<const char*> {
protected:
  void End() {
    if (std::string(GetParam()) == "OwnerDeleted")
      owner.reset();
    else
      mEnd.request_stop();
  }
  Step EndAtOnce() {
    return [this](QWidget&) { End(); };
  }

  std::stop_source mEnd;
};

TEST_P(SettingsActionsEnding, SaveAtEachDialog_EndsWithoutAFile) {
  FailAtHeight(camera);
  const std::string file = folder.GetFile("old.txt");
  TemporaryFolder::WriteFile(file, "mine");
  const std::vector<Answers::Answer> steps = {
      {"settingsfile", ChooseFile(file)}, {"message", Click("Yes")}, {"settingsproblems", {}}};

  for (std::size_t last = 0; last < steps.size(); ++last) {
    SCOPED_TRACE(steps[last].dialog);
    owner = std::make_unique<QWidget>();
    owner->show();
    mEnd = {};
    std::vector<Answers::Answer> answers(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    answers.back().step = EndAtOnce();
    Answers user(answers);

    EXPECT_FALSE(Save(mEnd.get_token()));

    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(TemporaryFolder::ReadFile(file), "mine");
  }
}

TEST_P(SettingsActionsEnding, RestoreAtEachDialog_EndsWithoutWritingBeforeOK) {
  const std::string file = WriteFile("Width\tabc\n");
  const std::vector<Answers::Answer> steps = {
      {"settingsfile", ChooseFile(file)}, {"settingscomparison", Click("Restore")}, {"settingsproblems", {}}};

  for (std::size_t last = 0; last < steps.size(); ++last) {
    SCOPED_TRACE(steps[last].dialog);
    owner = std::make_unique<QWidget>();
    owner->show();
    mEnd = {};
    std::vector<Answers::Answer> answers(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    answers.back().step = EndAtOnce();
    Answers user(answers);

    EXPECT_FALSE(Restore(mEnd.get_token()));

    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(hasWritten, last == 2);
  }
}

TEST_P(SettingsActionsEnding, WhileTheDeviceIsAsked_IsWaitedForAndEndsEverything) {
  HeldDevice device(camera);
  std::jthread release;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"settingsprogress", [&](QWidget&) {
                                                                                device.Await();
                                                                                // The access comes to its end while the
                                                                                // window waits for it.
                                                                                release = std::jthread(
                                                                                    [&] { device.LetGo(); });
                                                                                End();
                                                                              }}});

  EXPECT_FALSE(Save(mEnd.get_token()));

  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(folder.GetNames().empty());
}

TEST_P(SettingsActionsEnding, BeforeItBegins_ShowsNothing) {
  mEnd.request_stop();

  EXPECT_FALSE(Save(mEnd.get_token()));
  EXPECT_FALSE(Restore(mEnd.get_token()));
}

INSTANTIATE_TEST_SUITE_P(Ways, SettingsActionsEnding, testing::Values("OwnerDeleted", "EndRequested"),
                         [](const auto& aInfo) { return std::string(aInfo.param); });

TEST_F(SettingsActions, Restore_OfManyLongNamesAndValues_IsShownWithinTheScreen) {
  const std::string longText(10'000, 'x');
  std::string nodes;
  std::string lines;
  for (int i = 0; i < 5000; ++i) {
    const std::string name = "Text" + std::to_string(i) + (i < 20 ? longText : "");
    nodes += "<String Name=\"" + name + "\"><Streamable>Yes</Streamable><Value>a</Value></String>";
    lines += name + "\t" + (i < 20 ? longText.substr(0, 4000) : "b") + "\n";
  }
  DescribedCamera large(nodes);
  const std::string file = WriteFile(lines);
  int rows = 0;
  QSize size;
  std::string copied;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", [&](QWidget& aDialog) {
                      auto* const view = aDialog.findChild<QAbstractItemView*>();
                      rows = view->model()->rowCount();
                      size = aDialog.size();
                      view->selectionModel()->select(view->model()->index(0, 0),
                                                     QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
                      QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
                      copied = QGuiApplication::clipboard()->text().toStdString();
                      QTest::keyClick(view, Qt::Key_End);
                      aDialog.grab();
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(RestoreSettings(owner.get(), *large.array, hasWritten));

  EXPECT_EQ(rows, 5000);
  EXPECT_LT(size.width(), 1400);
  EXPECT_LT(size.height(), 900);
  EXPECT_THAT(copied, testing::StartsWith("Text0" + longText + "\t")) << "copied whole";
}

} // namespace
} // namespace krgui
