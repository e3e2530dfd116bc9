// Programs with serial bridges: the viewer, whose camera comes and goes, and the example.

#include "await.h"
#include "bridgeuser.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krgenparameterarraycl.h"
#include "page/camerapage.h"
#include "viewerwithports.h"
#include "windowwait.h"

#include <QMessageBox>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <gmock/gmock.h>

#include <csignal>
#include <string>

namespace {

using krtest::SocatLine;
using krtest::SocatProcess;
using testing::AllOf;
using testing::HasSubstr;

const int kProgramLimitMs = krtest::GetGenerousMs();
const QString kMessage = "Serial Bridges";

class BridgingViewer : public ViewerUser {
protected:
  void SetUp() override {
    UseHostPortsOfTheTest();
    ViewerUser::SetUp();
  }
  /// A setup in a file that links Bulk0 to a port of the host.
  static QString WriteSetup(const char* aHostPort) {
    KrPropertyList bridges;
    bridges.Add({"Bulk0", "COMPort"});
    bridges.Add({"Bulk0Port", aHostPort});
    bridges.Add({"Bulk0COMPortBaudRate", 115200});
    return WriteSetup(bridges);
  }
  static QString WriteSetup(const KrPropertyList& aBridges) {
    KrConfigurationWriter writer;
    EXPECT_TRUE(writer.Store("SerialBridges", aBridges).IsOK());
    const QString path = TerminalLab::Get().GetPath("setup.xml");
    EXPECT_TRUE(writer.Save(path.toStdString()).IsOK());
    return path;
  }
  /// Chooses an entry of the menu "Tools" by its letter, types a file's name into the dialog that comes, and waits
  /// until the file is used.
  static void UseFile(UserHands& aUser, const QString& aLetter, const QString& aTitle, const QString& aPath) {
    aUser.Press("alt+t");
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press(aLetter);
    ASSERT_TRUE(aUser.AwaitWindow(aTitle));
    aUser.Type(aPath);
    aUser.Press("Return");
    aUser.AwaitNoWindow(aTitle);
    aUser.Await("the file used", [] {
      const QMainWindow& viewer = *FindViewer();
      auto* const page = viewer.findChild<krviewer::CameraPage*>();
      return page && page->GetTools().GetSerialBridges().CanUseFiles() &&
             viewer.findChild<QAction*>("saveSerialBridges")->isEnabled();
    });
  }
  static void LoadSetup(UserHands& aUser, const QString& aPath) { UseFile(aUser, "l", "Load Bridge Setup", aPath); }
  void LoseCamera(UserHands& aUser) {
    mFaults->Disappear();
    aUser.Await("the camera gone", [] { return !IsToolOffered(kBridgesKey); });
  }
  void ReturnCamera(UserHands& aUser) {
    mFaults->Return();
    aUser.Await("the camera back", [] { return IsToolOffered(kBridgesKey); });
  }
  /// The text of the viewer's message that is shown; empty where there is none.
  static QString FindMessage(const UserHands& aUser) {
    QString text;
    aUser.Await("a look", [&] {
      for (const QWidget* const window : QApplication::topLevelWidgets())
        if (const auto* const box = qobject_cast<const QMessageBox*>(window); box && box->isVisible())
          text = box->text();
      return true;
    });
    return text;
  }
  /// Waits for a message.
  static QString AwaitMessage(UserHands& aUser) {
    aUser.AwaitWindow(kMessage);
    return FindMessage(aUser);
  }
  static void CloseMessage(UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitWindow(kMessage));
    aUser.Press("Return");
    aUser.AwaitNoWindow(kMessage);
  }
};

template <typename Client>
void ExpectAnswer(Client& aClient) {
  aClient.Send(kQuestion);
  EXPECT_EQ(aClient.Await(kAnswer.size()), kAnswer);
}

} // namespace

TEST_F(BridgingViewer, ManagerOpenedByItsKey_LinksAPortAndOutlivesItsWindow) {
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    aUser.Press("alt+t");
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press("c"); // "Create COM Ports"
    aUser.Press("ctrl+b");
    const BridgeHands hands(aUser);
    ASSERT_TRUE(hands.AwaitOpen());
    hands.Link("Bulk0", "COM1");
    aUser.Press("Escape");
    ASSERT_TRUE(aUser.AwaitNoWindow(kManager));

    SocatProcess client(GetHostPortPath("com1") + ",rawer");
    ExpectAnswer(client);
  });

  EXPECT_FALSE(QFile::exists(QString::fromStdString(GetHostPortPath("com1"))));
}

TEST_F(BridgingViewer, SetupLoaded_StartsItsBridgesAndIsSavedAsItWas) {
  const SocatLine line(GetHostPortPath("com3"));
  const QString path = WriteSetup("COM3");
  const QString saved = TerminalLab::Get().GetPath("saved.xml");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    UseFile(aUser, "v", "Save Bridge Setup", saved);
  });

  KrConfigurationReader reader;
  KrPropertyList bridges;
  ASSERT_TRUE(reader.Load(saved.toStdString()).IsOK());
  ASSERT_TRUE(reader.Restore("SerialBridges", bridges).IsOK());
  ASSERT_EQ(bridges.GetCount(), 6u);
  EXPECT_EQ(bridges.GetProperty("Bulk0")->GetValue(), "COMPort");
  EXPECT_EQ(bridges.GetProperty("Bulk0Port")->GetValue(), "COM3");
  EXPECT_EQ(bridges.GetProperty("Bulk0COMPortBaudRate")->GetValue(), "115200");
}

TEST_F(BridgingViewer, SetupLoadedWhileTheCameraIsAway_StartsWhenItIsBack) {
  SocatLine client(GetHostPortPath("com3"));
  const QString path = WriteSetup("COM3");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoseCamera(aUser);
    LoadSetup(aUser, path);
    ReturnCamera(aUser);

    ExpectAnswer(client);
  });
}

TEST_F(BridgingViewer, SetupWithBridgesThatDoNotStart_IsToldInOneMessage) {
  const QString path = WriteSetup("COM77");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);

    EXPECT_THAT(AwaitMessage(aUser).toStdString(),
                HasSubstr("Serial bridge on Bulk0: Unable to open serial port COM77: "));
    CloseMessage(aUser);
  });
}

TEST_F(BridgingViewer, SetupWithALongText_IsToldInALineThatTheScreenHasRoomFor) {
  KrPropertyList bridges;
  for (const char* const port : {"Serial0", "Serial1", "Bulk0", "Bulk1", "Bulk2", "Bulk3"})
    bridges.Add({port, "bad\x01\ntype" + std::string(100'000, 'x')});
  const QString path = WriteSetup(bridges);
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);

    const QString text = AwaitMessage(aUser);
    EXPECT_THAT(text.toStdString(), AllOf(HasSubstr("…"), HasSubstr("And 1 more: see the details.")));
    EXPECT_LT(text.size(), 2'000);
    EXPECT_EQ(text.count('\n'), 2 * 6) << "six lines, with an empty one between";
    EXPECT_FALSE(text.contains(QChar(1)));
    CloseMessage(aUser);
  });
}

TEST_F(BridgingViewer, SetupThatDidNotStart_IsSavedWhole) {
  const QString path = WriteSetup("COM77");
  const QString saved = TerminalLab::Get().GetPath("whole.xml");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    CloseMessage(aUser);
    UseFile(aUser, "v", "Save Bridge Setup", saved);
  });

  KrConfigurationReader reader;
  KrPropertyList bridges;
  ASSERT_TRUE(reader.Load(saved.toStdString()).IsOK());
  ASSERT_TRUE(reader.Restore("SerialBridges", bridges).IsOK());
  ASSERT_NE(bridges.GetProperty("Bulk0Port"), nullptr);
  EXPECT_EQ(bridges.GetProperty("Bulk0Port")->GetValue(), "COM77");
  EXPECT_EQ(bridges.GetProperty("Bulk0COMPortBaudRate")->GetValue(), "115200");
}

TEST_F(BridgingViewer, MistakeInASetupLoadedWhileTheCameraIsAway_IsToldOnceWhenItIsBack) {
  KrPropertyList bridges;
  bridges.Add({"Bulk0", "COMPort"});
  const QString path = WriteSetup(bridges);
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoseCamera(aUser);
    LoadSetup(aUser, path);
    ReturnCamera(aUser);
    EXPECT_THAT(AwaitMessage(aUser).toStdString(), HasSubstr("Serial bridge on Bulk0: Port parameter missing."));
    CloseMessage(aUser);

    LoseCamera(aUser);
    ReturnCamera(aUser);

    EXPECT_EQ(FindMessage(aUser), "");
  });
}

TEST_F(BridgingViewer, FileThatIsNoSetup_IsTold) {
  const QString path = WriteFile("damaged.xml", "<no setup>");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);

    EXPECT_THAT(AwaitMessage(aUser).toStdString(), HasSubstr("damaged.xml"));
    CloseMessage(aUser);
  });
}

TEST_F(BridgingViewer, CameraLostAndBack_HasItsBridgesAgain) {
  SocatLine client(GetHostPortPath("com3"));
  const QString path = WriteSetup("COM3");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    ExpectAnswer(client);
    for (int round = 2; round < 4; ++round) {
      LoseCamera(aUser);
      ReturnCamera(aUser);

      client.Send(kQuestion);
      EXPECT_EQ(client.Await(round * kAnswer.size()).size(), round * kAnswer.size());
    }
  });
}

TEST_F(BridgingViewer, CameraLostAndBackWhileItsBridgeIsConfigured_TakesTheAnswer) {
  const SocatLine line(GetHostPortPath("com3"));
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    aUser.Press("ctrl+b");
    const BridgeHands hands(aUser);
    ASSERT_TRUE(hands.AwaitOpen());
    hands.Link("Bulk0", "COM3");
    const QString dialog = "Serial COM Port Configuration";
    aUser.Click(kManager, bridge::kConfigure);
    ASSERT_TRUE(aUser.AwaitWindow(dialog));

    LoseCamera(aUser);
    ReturnCamera(aUser);
    Pick(aUser, dialog, bridge::kBaudRate, "115200 baud");
    aUser.Click(dialog, 1);
    aUser.AwaitNoWindow(dialog);

    hands.PickPort("Bulk0");
    hands.AwaitText(bridge::kDescription, "115200 baud, no parity, 8 bits, 1 stop bit");
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kManager);
  });
}

TEST_F(BridgingViewer, BridgeThatDoesNotStartWhenTheCameraIsBack_IsToldAndStartsTheNextTime) {
  auto client = std::make_optional<SocatLine>(GetHostPortPath("com3"));
  const QString path = WriteSetup("COM3");
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    ExpectAnswer(*client);
    LoseCamera(aUser);
    client.reset();
    ReturnCamera(aUser);
    EXPECT_THAT(AwaitMessage(aUser).toStdString(),
                HasSubstr("Serial bridge on Bulk0: Unable to open serial port COM3: "));
    CloseMessage(aUser);

    LoseCamera(aUser);
    client.emplace(GetHostPortPath("com3"));
    ReturnCamera(aUser);

    ExpectAnswer(*client);
  });
}

TEST_F(BridgingViewer, CameraLostAndBack_HasItsCameraLinkPortPublishedAgain) {
  KrPropertyList bridges;
  bridges.Add({"Bulk0", "CLDLL"});
  const QString path = WriteSetup(bridges);
  const auto countPublished = [] {
    KrStringList names;
    EXPECT_TRUE(KrGenParameterArrayCL::GetPortIDs(names).IsOK());
    return names.GetCount();
  };
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    EXPECT_EQ(countPublished(), 1u);

    LoseCamera(aUser);
    EXPECT_EQ(countPublished(), 0u);
    ReturnCamera(aUser);

    EXPECT_EQ(countPublished(), 1u);
    EXPECT_EQ(FindMessage(aUser), "");
  });
}

TEST_F(BridgingViewer, PortThatABridgeHas_IsBusyForTheTerminal) {
  SocatLine line(TerminalLab::Get().GetFastLine());
  SocatLine client(GetHostPortPath("com3"));
  KrPropertyList bridges;
  bridges.Add({"Serial0", "COMPort"});
  bridges.Add({"Serial0Port", "COM3"});
  const QString path = WriteSetup(bridges);
  RunViewer([&](UserHands& aUser, const TerminalHands&) {
    LoadSetup(aUser, path);
    client.Send("by the bridge");
    EXPECT_EQ(line.Await(13), "by the bridge");

    aUser.Press("ctrl+t");

    EXPECT_THAT(ReadBox(aUser), AllOf(HasSubstr("Busy"), HasSubstr("Serial0")));
    client.Send(", still");
    EXPECT_EQ(line.Await(20), "by the bridge, still");
  });
}

TEST(BridgeExample, LinksAPortUntilItIsInterrupted) {
  const QTemporaryDir folder;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", folder.path());
  QProcess example;
  example.setProcessEnvironment(environment);
  QString output;
  const auto awaitOutput = [&](const QString& aPattern) {
    QRegularExpressionMatch match;
    EXPECT_TRUE(krtest::AwaitCondition([&] {
      output += QString::fromUtf8(example.readAllStandardOutput());
      match = QRegularExpression(aPattern).match(output);
      return match.hasMatch();
    })) << output.toStdString()
        << example.readAllStandardError().toStdString();
    return match.captured(1);
  };
  example.start(KR_EXAMPLE_PATH, {"--simulate", "--create", "sim-mono", "Serial0", "COM9"});
  const QString path = awaitOutput("path=(.*)\n");
  ASSERT_TRUE(path.startsWith(folder.path())) << path.toStdString();

  SocatProcess client(path.toStdString() + ",rawer");
  client.Send("*IDN?\r");
  EXPECT_EQ(client.Await(39), "Simulated Instrument,SIM-0001-Serial0\r\n");
  awaitOutput("(to the camera 6 bytes, from it 39 bytes)");

  ASSERT_EQ(kill(static_cast<pid_t>(example.processId()), SIGINT), 0);
  ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));
  EXPECT_EQ(example.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(example.exitCode(), 0);
  EXPECT_FALSE(QFile::exists(path));
}

TEST(BridgeExample, PortThatTheHostLacks_IsSaid) {
  const QTemporaryDir folder;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", folder.path());
  QProcess example;
  example.setProcessEnvironment(environment);
  example.start(KR_EXAMPLE_PATH, {"--simulate", "sim-mono", "Serial0", "COM999"});
  ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));

  EXPECT_EQ(example.exitCode(), 1);
  EXPECT_THAT(example.readAllStandardError().toStdString(), HasSubstr("COM999"));
}

TEST(BridgeExample, Help_IsShownAndNoError) {
  for (const char* option : {"--help", "-h"}) {
    QProcess example;
    example.start(KR_EXAMPLE_PATH, {option});

    ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));
    EXPECT_EQ(example.exitCode(), 0) << option;
    EXPECT_THAT(example.readAllStandardOutput().toStdString(), HasSubstr("usage: ")) << option;
    EXPECT_EQ(example.readAllStandardError(), "") << option;
  }
}

TEST(BridgeExample, UnknownOption_IsSaid) {
  QProcess example;
  example.start(KR_EXAMPLE_PATH, {"--simulated", "sim-mono", "Serial0", "COM999"});

  ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));
  EXPECT_EQ(example.exitCode(), 64);
  EXPECT_THAT(example.readAllStandardError().toStdString(),
              AllOf(HasSubstr("There is no option --simulated."), HasSubstr("usage: ")));
}

TEST(BridgeExample, PortThatTheCameraLacks_IsSaidWithThoseThatItHas) {
  for (const char* port : {"serial0", "Serial7", "CLDLL"}) {
    QProcess example;
    example.start(KR_EXAMPLE_PATH, {"--simulate", "sim-mono", port, "COM999"});

    ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));
    EXPECT_EQ(example.exitCode(), 1) << port;
    EXPECT_THAT(example.readAllStandardError().toStdString(),
                AllOf(HasSubstr("no serial port " + std::string(port) + ". It has: Serial0, "), HasSubstr("Bulk0")));
  }
}

TEST(BridgeExample, SpeedThatIsNoNumber_ShowsTheUsage) {
  for (const char* const speed : {"fast", "115200x", "4294976896", "", "-9600"}) {
    QProcess example;
    example.start(KR_EXAMPLE_PATH, {"--simulate", "sim-mono", "Serial0", "COM999", speed});
    ASSERT_TRUE(example.waitForFinished(kProgramLimitMs));

    EXPECT_EQ(example.exitCode(), 64) << speed;
    EXPECT_THAT(example.readAllStandardError().toStdString(), HasSubstr("usage: ")) << speed;
  }
}
