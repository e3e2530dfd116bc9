#include "clprogram.h"
#include "krserial/krgenparameterarraycl.h"
#include "publishedline.h"

#include <gmock/gmock.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using krserial::CameraLinkEnd;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kMegabyte = 1024 * 1024;

std::vector<std::string> ListPorts() {
  KrStringList ids;
  const KrResult result = KrGenParameterArrayCL::GetPortIDs(ids);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  std::vector<std::string> names;
  for (const KrString& id : ids)
    names.push_back(id.ToUtf8());
  return names;
}

class CameraLink : public testing::Test {
protected:
  SocketFolder mFolder;
};

TEST_F(CameraLink, PublishedPorts_AreListedByNameAndIndex) {
  const PublishedLine second("Model X 00:11:22-Serial1");
  const PublishedLine first("Model X 00:11:22-Serial0");
  ClProgram program;

  EXPECT_EQ(program.Ask("count"), "0 2");
  EXPECT_EQ(program.Ask("identifier 0 100"), "0 25 Model X 00:11:22-Serial0");
  EXPECT_EQ(program.Ask("identifier 1 100"), "0 25 Model X 00:11:22-Serial1");
  EXPECT_EQ(program.Ask("identifier 2 100"), "-10005 100 untouched");
  EXPECT_EQ(program.Ask("init 0 2"), "-10005 0");
  EXPECT_THAT(ListPorts(), ElementsAre("Model X 00:11:22-Serial0", "Model X 00:11:22-Serial1"));
}

TEST_F(CameraLink, TwoBridgesOfOneName_AreToldApart) {
  PublishedLine first("Camera");
  PublishedLine second("Camera");
  ClProgram program;
  program.Ask("count");
  ASSERT_EQ(program.Ask("init 0 1"), "0 0");

  EXPECT_EQ(program.Ask("identifier 1 100"), "0 11 Camera (2)");
  EXPECT_EQ(program.Ask("write 0 3 60000"), "0 3");
  EXPECT_EQ(second.AwaitTaken(3), MakeLineBytes(3));
}

TEST_F(CameraLink, Indexes_AreThoseOfTheLastCount) {
  const PublishedLine kept("B");
  ClProgram program;
  ASSERT_EQ(program.Ask("count"), "0 1");
  const PublishedLine before("A");

  EXPECT_EQ(program.Ask("identifier 0 100"), "0 2 B");
  EXPECT_EQ(program.Ask("count"), "0 2");
  EXPECT_EQ(program.Ask("identifier 0 100"), "0 2 A");
}

TEST_F(CameraLink, PortThatHasGoneSinceTheCount_IsNoPortAnyMoreEvenIfItsFileIsAnothers) {
  auto gone = std::make_unique<PublishedLine>("Gone");
  ClProgram program;
  ASSERT_EQ(program.Ask("count"), "0 1");
  gone.reset();

  EXPECT_EQ(program.Ask("init 0 0"), "-10005 0");
  const PublishedLine other("Other");
  EXPECT_EQ(program.Ask("init 0 0"), "-10005 0");
}

TEST_F(CameraLink, ProgramThatNeverCounts_OpensThePortThatIsThere) {
  ClProgram program;
  EXPECT_EQ(program.Ask("init 0 0"), "-10005 0");

  const PublishedLine line("Camera");

  EXPECT_EQ(program.Ask("init 0 0"), "0 0");
}

TEST_F(CameraLink, Texts_FollowTheRulesForBuffers) {
  const PublishedLine line("Camera");
  ClProgram program;
  program.Ask("count");

  EXPECT_EQ(program.Ask("identifier 0 0"), "-10001 7 untouched");
  EXPECT_EQ(program.Ask("identifier 0 6"), "-10001 7 untouched");
  EXPECT_EQ(program.Ask("identifier 0 7"), "0 7 Camera");
  EXPECT_EQ(program.Ask("maker 0 100"), "3 0 6 KrGUI");
  EXPECT_EQ(program.Ask("maker 0 5"), "3 -10001 6 untouched");
}

TEST_F(CameraLink, ErrorTexts_AreThereForEveryCodeOfTheStandardAndNoOther) {
  ClProgram program;

  for (const int code : {0, -10001, -10002, -10003, -10004, -10005, -10006, -10007, -10008, -10009, -10010, -10011,
                         -10012, -10098, -10099}) {
    const std::string answer = program.Ask("text " + std::to_string(code) + " 200");
    EXPECT_TRUE(answer.starts_with("0 ") && answer.ends_with(".")) << code << ": " << answer;
  }
  EXPECT_EQ(program.Ask("text -10004 200"), "0 23 The time limit passed.");
  EXPECT_EQ(program.Ask("text -10004 22"), "-10001 23 untouched");
  EXPECT_EQ(program.Ask("text -10013 200"), "-10007 200 untouched");
  EXPECT_EQ(program.Ask("text 1 200"), "-10007 200 untouched");
}

TEST_F(CameraLink, Megabyte_ArrivesWholeEachWay) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  const std::vector<std::uint8_t> bytes = MakeLineBytes(kMegabyte);

  EXPECT_EQ(program.Ask("write 0 1048576 100000"), "0 1048576");
  EXPECT_EQ(line.AwaitTaken(kMegabyte), bytes);
  program.Send("read 0 1048576 100000");
  line.Give(bytes);
  EXPECT_EQ(program.Await(), "0 1048576 right");
}

TEST_F(CameraLink, Read_TakesAllOrNothing) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  const std::vector<std::uint8_t> bytes = MakeLineBytes(5);

  line.Give({bytes.begin(), bytes.begin() + 3});
  EXPECT_EQ(program.Ask("read 0 5 100"), "-10004 5 untouched");
  EXPECT_EQ(program.Ask("read 0 5 0"), "-10004 5 untouched");
  program.Send("read 0 5 100000");
  line.Give({bytes.begin() + 3, bytes.end()});
  EXPECT_EQ(program.Await(), "0 5 right");
  EXPECT_EQ(program.Ask("available 0"), "0 0");
}

TEST_F(CameraLink, WriteThatTheDeviceDoesNotTake_TellsHowMuchWent) {
  PublishedLine line("Camera", PublishedLine::Taking::Later);
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  program.Send("write 0 4194304 500");
  const std::string answer = program.Await();
  line.Take();

  ASSERT_TRUE(answer.starts_with("-10004 ")) << answer;
  const std::size_t written = std::stoul(answer.substr(7));
  EXPECT_LT(written, 4 * kMegabyte);
  EXPECT_GT(written, std::size_t{64} * 1024);
  EXPECT_EQ(line.AwaitTaken(written), MakeLineBytes(written));
  EXPECT_EQ(program.Ask("write 0 10 100000"), "0 10");
  EXPECT_EQ(line.AwaitTaken(10), MakeLineBytes(10));
}

TEST_F(CameraLink, AvailableBytes_AreCountedAndFlushed) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  line.Give(MakeLineBytes(10));

  while (program.Ask("available 0") == "0 0" && !HasFailure()) {
  }
  EXPECT_EQ(program.Ask("available 0"), "0 10");
  EXPECT_EQ(program.Ask("flush 0"), "0 0");
  EXPECT_EQ(program.Ask("available 0"), "0 0");
  line.Give(MakeLineBytes(4));
  EXPECT_EQ(program.Ask("read 0 4 100000"), "0 4 right");
}

TEST_F(CameraLink, Speeds_AreTheDevicesAndTheDefaultIsSetAtTheOpening) {
  PublishedLine line("Camera", PublishedLine::Taking::AtOnce, {{9600, 14400, 115200, 921600}, 115200});
  ClProgram program;

  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  EXPECT_THAT(line.GetAskedSpeeds(), ElementsAre(9600U));
  EXPECT_EQ(program.Ask("speeds 0"), "0 145");
  EXPECT_EQ(program.Ask("speed 0 128"), "0 0");
  EXPECT_EQ(program.Ask("speed 0 2"), "-10008 0");
  EXPECT_EQ(program.Ask("speed 0 3"), "-10008 0");
  EXPECT_EQ(program.Ask("speed 0 0"), "-10008 0");
  EXPECT_EQ(program.Ask("speed 0 1073741824"), "-10008 0");
  EXPECT_THAT(line.GetAskedSpeeds(), ElementsAre(9600U, 921600U));
}

TEST_F(CameraLink, SpeedThatTheDeviceRefuses_IsToldToTheProgram) {
  PublishedLine line("Camera", PublishedLine::Taking::AtOnce, {{19200, 38400}, 19200});
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  line.AnswerSpeeds(KrResult::Code::NotSupported);
  EXPECT_EQ(program.Ask("speed 0 4"), "-10008 0");
  line.AnswerSpeeds(KrResult::Code::ConnectionLost);
  EXPECT_EQ(program.Ask("speed 0 4"), "-10004 0");
  line.AnswerSpeeds({});
  EXPECT_EQ(program.Ask("speed 0 4"), "0 0");
  EXPECT_THAT(line.GetAskedSpeeds(), ElementsAre(38400U, 38400U, 38400U))
      << "A port without 9600 baud is left as it is.";
}

TEST_F(CameraLink, DeviceThatCannotSayItsSpeeds_HasTheOneThatItIsTakenFor) {
  PublishedLine line("Camera", PublishedLine::Taking::AtOnce, {{}, 57600});
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  EXPECT_EQ(program.Ask("speeds 0"), "0 8");
  EXPECT_EQ(program.Ask("speed 0 8"), "0 0");
  EXPECT_EQ(program.Ask("speed 0 1"), "-10008 0");
  EXPECT_THAT(line.GetAskedSpeeds(), IsEmpty());
}

TEST_F(CameraLink, SpeedsThatChange_ReachTheProgramThatIsThere) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  ASSERT_EQ(program.Ask("speeds 0"), "0 0");

  line.GetEnd().TellSpeed({{}, 230400});

  std::string answer;
  do
    answer = program.Ask("speeds 0");
  while (answer == "0 0");
  EXPECT_EQ(answer, "0 32");
}

TEST_F(CameraLink, SecondSession_IsRefusedUntilTheFirstIsClosed) {
  PublishedLine line("Camera");
  ClProgram first;
  ClProgram second;
  ASSERT_EQ(first.Ask("init 0 0"), "0 0");

  EXPECT_EQ(second.Ask("init 0 0"), "-10003 0");
  EXPECT_EQ(first.Ask("init 1 0"), "-10003 0");
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(first.Ask("close 0"), "0 0");
    EXPECT_EQ(second.Ask("init 0 0"), "0 0");
    EXPECT_EQ(second.Ask("close 0"), "0 0");
    EXPECT_EQ(first.Ask("init 0 0"), "0 0");
  }
}

TEST_F(CameraLink, PortWithoutALine_IsListedAndAlwaysInUse) {
  std::unique_ptr<CameraLinkEnd> end;
  ASSERT_TRUE(CameraLinkEnd::Open("No line", false, end).IsOK());
  ClProgram program;

  EXPECT_EQ(program.Ask("count"), "0 1");
  EXPECT_EQ(program.Ask("init 0 0"), "-10003 0");
  EXPECT_EQ(program.Ask("init 0 0"), "-10003 0");
}

TEST_F(CameraLink, BytesWithoutAProgram_AreDropped) {
  PublishedLine line("Camera");
  line.Give(MakeLineBytes(3 * kMegabyte));
  ClProgram program;

  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  EXPECT_EQ(program.Ask("available 0"), "0 0");
  line.Give(MakeLineBytes(2));
  EXPECT_EQ(program.Ask("read 0 2 100000"), "0 2 right");
}

TEST_F(CameraLink, ProgramThatDoesNotRead_HoldsTheWriterUntilItIsStopped) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  const std::vector<std::uint8_t> bytes = MakeLineBytes(16 * kMegabyte);
  std::size_t written = 0;
  KrResult result;

  std::jthread writer(
      [&](const std::stop_token& aStop) { result = line.GetEnd().Write(bytes.data(), bytes.size(), written, aStop); });
  ASSERT_EQ(program.Ask("read 0 1000 100000"), "0 1000 right");
  writer.request_stop();
  writer.join();

  EXPECT_EQ(result.GetCode(), KrResult::Code::Aborted);
  EXPECT_GE(written, 1000U);
  EXPECT_LT(written, kMegabyte);
}

TEST_F(CameraLink, ProgramThatIsKilled_LeavesItsBytesAndTheNextStartsEmpty) {
  PublishedLine line("Camera", PublishedLine::Taking::Later);
  ClProgram next;
  {
    ClProgram killed;
    ASSERT_EQ(killed.Ask("init 0 0"), "0 0");
    ASSERT_EQ(killed.Ask("write 0 100000 100000"), "0 100000");
    line.Give(MakeLineBytes(500)); // Of which it reads none.
    killed.Kill();
  }
  line.Take();

  EXPECT_EQ(line.AwaitTaken(100'000), MakeLineBytes(100'000));
  ASSERT_EQ(next.Ask("init 0 0"), "0 0");
  EXPECT_EQ(next.Ask("available 0"), "0 0");
  EXPECT_EQ(next.Ask("write 0 7 100000"), "0 7");
  EXPECT_EQ(line.AwaitTaken(7), MakeLineBytes(7));
}

TEST_F(CameraLink, BridgeThatEnds_EndsEveryCallOfItsProgram) {
  auto line = std::make_unique<PublishedLine>("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  line->Give(MakeLineBytes(2));
  ASSERT_EQ(program.Ask("read 0 1 100000"), "0 1 right");

  program.Send("read 0 2 4000000000");
  line.reset();

  EXPECT_EQ(program.Await(), "-10006 2 untouched");
  EXPECT_EQ(program.Ask("available 0"), "0 1") << "What had come can still be read.";
  EXPECT_EQ(program.Ask("write 0 1 100000"), "-10006 1");
  EXPECT_EQ(program.Ask("flush 0"), "-10006 0");
  EXPECT_EQ(program.Ask("speed 0 1"), "-10006 0");
  EXPECT_EQ(program.Ask("count"), "0 0");
}

TEST_F(CameraLink, BridgeThatEndsWithoutHavingTakenAll_LeavesWhatItGaveBefore) {
  auto line = std::make_unique<PublishedLine>("Camera", PublishedLine::Taking::Later);
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  ASSERT_TRUE(program.Ask("write 0 4194304 500").starts_with("-10004 ")) << "More waits than the bridge takes.";
  line->Give(MakeLineBytes(64 * 1024 + 3000)); // As many wait in the bridge, so that the rest is on its way.

  line.reset();

  EXPECT_EQ(program.Ask("read 0 3000 100000"), "0 3000 right");
  EXPECT_EQ(program.Ask("flush 0"), "-10006 0");
}

TEST_F(CameraLink, BridgeWhoseProcessIsKilled_IsTakenFromTheList) {
  const pid_t bridge = fork();
  if (bridge == 0) {
    std::unique_ptr<CameraLinkEnd> end;
    std::uint8_t byte = 0;
    std::size_t read = 0;
    if (!CameraLinkEnd::Open("Killed", true, end).IsOK())
      _exit(1);
    (void)end->Read(&byte, 1, read, {}); // For ever.
    _exit(1);
  }
  ClProgram program;
  std::string count;
  do
    count = program.Ask("count");
  while (count == "0 0" && waitpid(bridge, nullptr, WNOHANG) == 0);
  ASSERT_EQ(count, "0 1");
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  program.Send("read 0 1 4000000000");
  kill(bridge, SIGKILL);
  waitpid(bridge, nullptr, 0);

  EXPECT_EQ(program.Await(), "-10006 1 untouched");
  EXPECT_THAT(ListPorts(), IsEmpty());
  EXPECT_EQ(program.Ask("init 1 0"), "-10005 0");
}

TEST_F(CameraLink, WrongReferencesAndNullPointers_AreToldApart) {
  PublishedLine line("Camera");
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  const std::string none = "-10006 -10006 -10006 -10006 -10006 -10006";
  const std::string null = "-10011 -10011 -10011 -10011 -10011 -10011 -10011 -10011 -10011 -10011 -10011 -10011";

  EXPECT_EQ(program.Ask("nulls 0"), null);
  EXPECT_EQ(program.Ask("without 3"), none) << "A null reference.";
  EXPECT_EQ(program.Ask("without 99"), none) << "An address of the program's.";
  EXPECT_EQ(program.Ask("close 0"), "0 0");
  EXPECT_EQ(program.Ask("without 0"), none) << "A reference that was closed.";
}

} // namespace
