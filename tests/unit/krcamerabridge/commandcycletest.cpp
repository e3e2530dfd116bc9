#include "gencp/commandcycle.h"

#include "memoryfixture.h"

#include <future>
#include <set>

namespace krcamerabridge {
namespace {

using krtest::HeardCommand;

// What is lost on purpose is missed soon.
class HastyCycleOnLine : public CommandCycleOnLine {
protected:
  HastyCycleOnLine() : CommandCycleOnLine(kQuickTimes) {}
};

TEST_F(CommandCycleOnLine, Requests_CountFromOneAfterAProbeByZero) {
  Answer answer;

  ASSERT_TRUE(cycle.Probe(1, answer, {}).IsOK());
  ASSERT_TRUE(Read(kFeatures, 4).IsOK());
  ASSERT_TRUE(Read(kFeatures, 4).IsOK());

  std::vector<std::uint16_t> requests;
  for (const HeardCommand& heard : camera.TakeHeard())
    requests.push_back(heard.request);
  EXPECT_EQ(requests, (std::vector<std::uint16_t>{0, 1, 2}));
  EXPECT_EQ(answer.specific, (std::vector<std::uint8_t>{0, 1, 0, 3}));
}

TEST_F(CommandCycleOnLine, Requests_AreNeverZeroAgain) {
  for (int i = 0; i < 0xFFFF; ++i) {
    Answer answer;
    ASSERT_TRUE(cycle.Run({kReadMemoryCommand, BuildReadMemory(0, 4), 4}, answer, {}).IsOK());
    if (i % 4096 == 0)
      camera.TakeHeard();
  }
  camera.TakeHeard();

  ASSERT_TRUE(Read(kFeatures, 4).IsOK());

  EXPECT_EQ(camera.TakeHeard().at(0).request, 1);
}

TEST_F(HastyCycleOnLine, LostAnswer_IsAskedForAgainByTheSameRequest) {
  camera.SetFaults({.lostAnswers = 3});

  ExpectRightRead();

  const std::vector<HeardCommand> heard = camera.TakeHeard();
  ASSERT_GE(heard.size(), 2u);
  EXPECT_EQ(heard[0].flags, kRequestAcknowledge);
  EXPECT_EQ(heard[1].flags, kRequestAcknowledge | kCommandResend);
  EXPECT_EQ(heard[1].request, heard[0].request);
}

TEST_F(HastyCycleOnLine, SilentCamera_IsAskedFourTimes) {
  camera.SetFaults({.isSilent = true});

  const KrResult result = Read(kFeatures, 4);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(camera.TakeHeard().size(), 4u);
}

TEST_F(CommandCycleOnLine, AnswersToOthers_AreForNobody) {
  camera.SetFaults({.hasForeignAnswers = true});

  for (int i = 0; i < 20; ++i)
    ExpectRightRead();
}

TEST_F(CommandCycleOnLine, RubbishBetweenPackets_IsSkipped) {
  camera.SetFaults({.hasRubbish = true});

  for (int i = 0; i < 20; ++i)
    ExpectRightRead();
}

TEST_F(CommandCycleOnLine, AnswerOfWrongLength_IsAProtocolError) {
  camera.SetFaults({.wrongLengths = 1});

  EXPECT_EQ(Read(kFeatures, 16), KrResult::Code::ProtocolError);

  ExpectRightRead();
}

TEST_F(CommandCycleOnLine, Refusal_IsInTheCamerasWords) {
  const KrResult result = Read(0x12345678, 4);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_NE(result.GetDescription().ToUtf8().find("0x12345678"), std::string::npos);
  EXPECT_NE(result.GetDescription().ToUtf8().find("0x8003"), std::string::npos);
}

TEST_F(CommandCycleOnLine, BusyCamera_IsAskedUntilItHasTime) {
  camera.SetFaults({.busyAnswers = 5});

  ExpectRightRead();

  std::set<std::uint16_t> requests;
  for (const HeardCommand& heard : camera.TakeHeard())
    requests.insert(heard.request);
  EXPECT_EQ(requests.size(), 6u);
}

TEST_F(HastyCycleOnLine, CameraThatAsksForTime_IsAwaitedLongerThanOneThatIsSilent) {
  // It works for nearly two seconds, and one that says nothing is given up after some hundred milliseconds.
  camera.SetFaults({.pendingAnswers = 3, .pendingMs = 600});

  ExpectRightRead();

  EXPECT_EQ(camera.GetFaults().pendingAnswers, 0);
}

TEST_F(HastyCycleOnLine, AnswerBehindThePendingTime_HasItsTimeOnTheLine) {
  cycle.SetBaudRate(100); // On which an answer takes seconds.
  camera.SetFaults({.pendingAnswers = 1, .pendingMs = 10, .lateMs = 600});

  ExpectRightRead();

  EXPECT_EQ(camera.TakeHeard().size(), 1u);
}

TEST_F(CommandCycleOnLine, Stop_EndsTheWaitForAPendingCamera) {
  camera.SetFaults({.pendingAnswers = 1, .pendingMs = 2000});
  std::stop_source stop;
  auto reading = std::async(std::launch::async, [&] { return Read(kFeatures, 16, stop.get_token()); });
  ASSERT_TRUE(camera.AwaitHeard(1));

  stop.request_stop();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  // The answer that nobody wanted is out of the way before the next command.
  ExpectRightRead();
  const std::vector<HeardCommand> heard = camera.TakeHeard();
  ASSERT_EQ(heard.size(), 2u);
  EXPECT_NE(heard[0].request, heard[1].request);
}

} // namespace
} // namespace krcamerabridge
