// Saving and restoring features as users do it: file dialogs, progress, comparison and lists of problems.

#include "settingsactionsfixture.h"

namespace krgui {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

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
                      shown = qobject_cast<QFileDialog*>(&aDialog)->directory().absolutePath().toStdString();
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(Save());
  EXPECT_TRUE(Save());

  EXPECT_THAT(folder.GetNames(), testing::ElementsAre("plain.txt"));
  EXPECT_EQ(std::filesystem::path(shown), std::filesystem::canonical(folder.GetPath()));
}

TEST_F(SettingsActions, Save_OfADeviceWithAnyName_ProposesNothingButLettersInTheFolder) {
  const struct {
    const char* model;
    const char* proposed;
  } rows[] = {
      {"T-100", "T-100.txt"},         {"../../etc/passwd", "______etc_passwd.txt"},
      {"/dev/null", "_dev_null.txt"}, {"~&#10;$(reboot)%s&lt;b&gt;", "____reboot__s_b_.txt"},
      {"", "settings.txt"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.model);
    std::string text = MakeDescription(kNodes);
    text.replace(text.find("\"Model\""), 7, '"' + std::string(row.model) + '"');
    KrGenDescription description;
    std::unique_ptr<KrGenParameterArray> array;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(text, "test", description).IsOK());
    ASSERT_TRUE(KrGenParameterArray::Open(description, camera.port, {}, array).IsOK());
    std::string proposed;
    Answers answers({{"settingsfile", [&](QWidget& aDialog) {
                        proposed = aDialog.findChild<QLineEdit*>()->text().toStdString();
                        PressEscape()(aDialog);
                      }}});

    EXPECT_TRUE(SaveSettings(owner.get(), *array, {}));

    EXPECT_EQ(proposed, row.proposed);
  }
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

TEST_F(SettingsActions, Save_OfNothing_SaysWhy) {
  constexpr const char* kStream = "<Integer Name=\"TLParamsLocked\"><Value>1</Value></Integer>";
  struct {
    const char* what;
    std::string nodes;
    const char* text;
  } const rows[] = {
      {"nothing is streamable while a stream runs",
       std::string(kStream) + "<Integer Name=\"Width\"><pIsLocked>TLParamsLocked</pIsLocked><Value>1</Value></Integer>",
       "marks none of its features as streamable"},
      {"nothing can be set",
       MakeInteger("Width", 0, "<pIsLocked>One</pIsLocked>") + "<Integer Name=\"One\"><Value>1</Value></Integer>",
       "can be both read and set"},
  };

  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    DescribedCamera device(row.nodes);
    std::string text;
    Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"message", [&](QWidget& aDialog) {
                                                                                  text = GetText(aDialog, "text");
                                                                                  Click("OK")(aDialog);
                                                                                }}});

    EXPECT_TRUE(SaveSettings(owner.get(), *device.array));

    EXPECT_THAT(text, AllOf(HasSubstr(row.text), Not(HasSubstr("stream runs"))));
    EXPECT_TRUE(folder.GetNames().empty());
  }
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
                      QTest::keyClick(aDialog.findChild<QCheckBox*>(), Qt::Key_Space);
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

TEST_F(SettingsActions, Restore_OfAFeatureBehindAHundredThousandSelectors_ComparesIt) {
  constexpr int kCount = 100'000;
  std::string nodes = MakeInteger("Width", 0);
  for (int i = 0; i < kCount; ++i)
    nodes += "<Integer Name=\"S" + std::to_string(i) + "\"><Value>0</Value><Min>0</Min><Max>0</Max><pSelected>" +
             (i + 1 < kCount ? "S" + std::to_string(i + 1) : "Width") + "</pSelected></Integer>\n";
  DescribedCamera deep(nodes);
  const std::string file = WriteFile("Width\t9\n");
  std::vector<std::string> rows;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingscomparison", [&](QWidget& aDialog) {
                                                          rows = GetRows(aDialog);
                                                          Click("Cancel")(aDialog);
                                                        }}});

  EXPECT_TRUE(RestoreSettings(owner.get(), *deep.array, hasWritten, {}));

  EXPECT_THAT(rows, testing::ElementsAre(testing::StartsWith("Width|")));
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
  const std::string file = WriteFile("Width\t0x0\n");
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"message", [&](QWidget& aDialog) {
                                                          text = GetText(aDialog, "text");
                                                          Click("OK")(aDialog);
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(text, HasSubstr("Nothing differs"));
  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_OfNothingThatCanDiffer_ListsWhatTheDeviceDoesNotHave) {
  struct {
    const char* what;
    const char* lines;
    const char* heading;
  } constexpr kRows[] = {
      {"all are missing", "Missing\t1\n", "this device has none of the features in \"settings.txt\""},
      {"the rest is the same", "Width\t0\nMissing\t1\n", "what this device has of \"settings.txt\" is as in the file"},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    std::string heading;
    std::vector<std::string> rows;
    Answers answers({{"settingsfile", ChooseFile(WriteFile(row.lines))}, {"settingscomparison", [&](QWidget& aDialog) {
                                                                            heading = GetText(aDialog, "heading");
                                                                            rows = GetRows(aDialog);
                                                                            Click("Close")(aDialog);
                                                                          }}});

    EXPECT_TRUE(Restore());

    EXPECT_THAT(heading, AllOf(HasSubstr(row.heading), Not(HasSubstr("Nothing differs"))));
    EXPECT_THAT(rows, testing::ElementsAre("Missing|||1|This device has no such feature."));
    EXPECT_FALSE(hasWritten);
  }
}

TEST_F(SettingsActions, Restore_OfValuesThatCannotBeSet_SaysSoBeforeAnythingIsWritten) {
  const std::string file = WriteFile("Width\tabc\nSmall\t99\n");
  std::vector<std::string> rows;
  Answers answers({{"settingsfile", ChooseFile(file)}, {"settingscomparison", [&](QWidget& aDialog) {
                                                          rows = GetRows(aDialog);
                                                          Click("Cancel")(aDialog);
                                                        }}});

  EXPECT_TRUE(Restore());

  EXPECT_THAT(rows, testing::ElementsAre("Width||0|abc|The value is no whole number of 64 bits.",
                                         "Small||0|99|It is above the maximum of the moment."));
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
    const std::string file = folder.GetFile("<i>odd<i>.txt");
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

TEST_F(SettingsActions, Restore_WindowAsSmallAsItGoes_LaysNoControlOverAnother) {
  const std::string file = WriteFile("Width\t0\nHeight\t9\nMissing\t1\nSmall\t0x5\n");
  int controls = 0;
  std::vector<std::string> overlaps;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", [&](QWidget& aDialog) {
                      aDialog.resize(1, 1);
                      QTest::qWait(0);
                      const auto children = aDialog.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
                      for (const QWidget* child : children) {
                        controls += child->isVisible();
                        for (const QWidget* other : children)
                          if (child < other && child->geometry().intersects(other->geometry()))
                            overlaps.push_back((child->objectName() + " and " + other->objectName()).toStdString());
                      }
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(Restore());

  EXPECT_GT(controls, 5);
  EXPECT_THAT(overlaps, testing::IsEmpty());
}

TEST_F(SettingsActions, Restore_OfManyLongNamesAndValues_IsShownWithinTheScreen) {
  const std::string longName(1000, 'x');
  const std::string longValue(4000, 'x');
  std::string nodes;
  std::string lines;
  for (int i = 0; i < 5000; ++i) {
    const std::string name = "Text" + std::to_string(i) + (i < 20 ? longName : "");
    nodes += "<String Name=\"" + name + "\"><Streamable>Yes</Streamable><Value>a</Value></String>";
    lines += name + "\t" + (i < 20 ? longValue : "b") + "\n";
  }
  DescribedCamera large(nodes);
  const std::string file = WriteFile(lines);
  int rows = 0;
  QSize size;
  std::string copied;
  QString cell;
  QString toolTip;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", [&](QWidget& aDialog) {
                      auto* const view = aDialog.findChild<QAbstractItemView*>();
                      rows = view->model()->rowCount();
                      cell = view->model()->index(0, 0).data().toString();
                      toolTip = view->model()->index(0, 0).data(Qt::ToolTipRole).toString();
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
  EXPECT_THAT(copied, testing::StartsWith("Text0" + longName + "\t")) << "copied whole";
  EXPECT_EQ(cell, "Text0" + QString(595, 'x') + QChar(0x2026));
  EXPECT_EQ(toolTip.count('x'), cell.count('x'));
}

} // namespace
} // namespace krgui
