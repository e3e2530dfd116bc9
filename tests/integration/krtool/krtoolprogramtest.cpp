#include "fakecamera.h"
#include "programrun.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::MatchesRegex;

constexpr const char* kClosingLine =
    "frames=[0-9]+ incomplete=[0-9]+ missing=[0-9]+ resent=[0-9]+ fps=[0-9]+\\.[0-9]+ MBps=[0-9]+\\.[0-9]+\n";

// The texts of one key of all objects in an array.
std::vector<std::string> ListTexts(const QJsonValue& aObjects, const char* aKey) {
  std::vector<std::string> texts;
  for (const QJsonValue& object : aObjects.toArray())
    texts.push_back(object.toObject()[aKey].toString().toStdString());
  return texts;
}

TEST(KrTool, HelpAndVersion_GoToStandardOutput) {
  ProgramRun help(KRTOOL_PATH, {"--help"});
  ProgramRun version(KRTOOL_PATH, {"--version"});

  EXPECT_EQ(help.Finish(), 0);
  EXPECT_EQ(version.Finish(), 0);
  EXPECT_THAT(help.GetOutput(), HasSubstr("krtool stream DEVICE"));
  EXPECT_THAT(version.GetOutput(), MatchesRegex("krtool [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(KrTool, CommandLineThatIsNotUnderstood_ExitsWith2) {
  ProgramRun none(KRTOOL_PATH, {});
  ProgramRun wrong(KRTOOL_PATH, {"stream", "cam", "--frames", "some"});

  EXPECT_EQ(none.Finish(), 2);
  EXPECT_EQ(wrong.Finish(), 2);
  EXPECT_EQ(none.GetOutput() + wrong.GetOutput(), "");
  EXPECT_THAT(wrong.GetErrors(), HasSubstr("\"some\""));
}

TEST(KrTool, NetworkWithoutCamera_IsListedAsSuch) {
  ProgramRun run(KRTOOL_PATH, {"list", "--timeout", "100"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), HasSubstr("No devices found. Asked were: lo"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("krtool list --simulate"));
}

TEST(KrTool, UnknownDevice_ExitsWith1AndSaysSo) {
  ProgramRun run(KRTOOL_PATH, {"stream", "nobody", "--frames", "3"});

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_EQ(run.GetOutput(), "");
  EXPECT_THAT(run.GetErrors(), HasSubstr("\"nobody\""));
}

TEST(KrTool, Simulation_IsOfferedBesideTheNetwork) {
  ProgramRun list(KRTOOL_PATH, {"list", "--simulate", "--json"});
  ProgramRun stream(KRTOOL_PATH, {"stream", "sim-mono", "--simulate", "--frames", "3"});

  EXPECT_EQ(list.Finish(), 0);
  EXPECT_EQ(stream.Finish(), 0) << stream.GetErrors();
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(list.GetOutput())).object();
  EXPECT_THAT(ListTexts(object["interfaces"], "uniqueID"),
              IsSupersetOf({"02:4b:52:00:77:01", "02:4b:52:00:78:01", "02:4b:52:00:79:01", "simusb0"}));
  EXPECT_THAT(ListTexts(object["devices"], "userDefinedName"),
              IsSupersetOf({"sim-mono", "sim-foreign", "sim-zero", "sim-busy", "sim-usb", "sim-usb-locked"}));
  EXPECT_THAT(stream.GetOutput(), MatchesRegex(kClosingLine));
}

TEST(KrTool, IndependentCamera_IsListedOnItsAdapter) {
  const FakeCamera camera("KRT01");
  ASSERT_TRUE(camera.IsAnswering());

  ProgramRun run(KRTOOL_PATH, {"list"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), HasSubstr("KRT01"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("1 device\n"));
}

TEST(KrTool, IndependentCamera_StreamsByAddressAndByUniqueID) {
  const FakeCamera camera("KRT02");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun list(KRTOOL_PATH, {"list", "--json"});
  ASSERT_EQ(list.Finish(), 0);
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(list.GetOutput())).object();
  const std::string uniqueID = object["devices"].toArray()[0].toObject()["uniqueID"].toString().toStdString();

  for (const std::string& name : {std::string("127.0.0.1"), uniqueID}) {
    ProgramRun run(KRTOOL_PATH, {"stream", name, "--frames", "10"});

    EXPECT_EQ(run.Finish(), 0) << name << ": " << run.GetErrors();
    EXPECT_THAT(run.GetOutput(), MatchesRegex(kClosingLine)) << name;
    EXPECT_THAT(run.GetOutput(), testing::StartsWith("frames=10 ")) << name;
  }
}

TEST(KrTool, CtrlC_EndsTheStreamWithTheClosingLine) {
  const FakeCamera camera("KRT03");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun run(KRTOOL_PATH, {"stream", "127.0.0.1", "--frames", "1000000"});
  ASSERT_TRUE(run.AwaitError("Streaming from")) << run.GetErrors();

  run.Signal(SIGINT);

  EXPECT_EQ(run.Finish(), 128 + SIGINT) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), MatchesRegex(kClosingLine));
}

TEST(KrTool, CameraThatDies_EndsTheStreamWithItsReasonAndTheClosingLine) {
  FakeCamera camera("KRT04");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun run(KRTOOL_PATH, {"stream", "127.0.0.1", "--frames", "1000000", "--timeout", "50000"});
  ASSERT_TRUE(run.AwaitError("Streaming from")) << run.GetErrors();

  camera.Kill();

  EXPECT_EQ(run.Finish(), 1) << run.GetErrors();
  EXPECT_THAT(run.GetErrors(), HasSubstr("krtool: the stream of"));
  EXPECT_THAT(run.GetOutput(), MatchesRegex(kClosingLine));
}

void ExpectFree(const std::string& aAddress) {
  ProgramRun next(KRTOOL_PATH, {"stream", aAddress, "--frames", "1"});
  EXPECT_EQ(next.Finish(), 0) << next.GetErrors();
}

TEST(KrTool, TerminatedInTheMiddleOfAStream_EndsWithTheClosingLineAndTheCameraFree) {
  const FakeCamera camera("KRT05");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun run(KRTOOL_PATH, {"stream", "127.0.0.1", "--frames", "1000000"});
  ASSERT_TRUE(run.AwaitError("Streaming from")) << run.GetErrors();

  run.Signal(SIGTERM);

  EXPECT_EQ(run.Finish(), 128 + SIGTERM) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), MatchesRegex(kClosingLine));
  ExpectFree("127.0.0.1");
}

TEST(KrTool, OutputThatNobodyReads_EndsTheStreamWithItsReasonAndTheCameraFree) {
  const FakeCamera camera("KRT06");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun run(KRTOOL_PATH, {"stream", "127.0.0.1", "--frames", "10"});
  run.CloseOutput();

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_THAT(run.GetErrors(), HasSubstr("the output could not be written"));
  ExpectFree("127.0.0.1");
}

} // namespace
