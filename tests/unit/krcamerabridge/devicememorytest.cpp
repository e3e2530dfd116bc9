#include "gencp/devicememory.h"

#include "memoryfixture.h"

namespace krcamerabridge {
namespace {

using krtest::HeardCommand;

class DeviceMemoryOnLine : public CommandCycleOnLine {};

// What is lost is missed soon, as much is lost.
class DeviceMemoryOnABadLine : public CommandCycleOnLine {
protected:
  DeviceMemoryOnABadLine() {
    hasty.SetBaudRate(921600);
    hasty.SetResponseTime(60);
  }

  CommandCycle hasty{line, {60, 60, 1, kGenerousMs, kGenerousMs}};
  DeviceMemory hastyMemory{hasty};
};

TEST_F(DeviceMemoryOnLine, LongRead_IsCutIntoTheLargestPackets) {
  ASSERT_TRUE(Read(kFeatures + 1, 2500).IsOK());

  EXPECT_EQ(bytes, camera.Peek(kFeatures + 1, 2500));
  std::vector<std::size_t> sizes;
  for (const HeardCommand& heard : camera.TakeHeard())
    sizes.push_back(heard.bytes);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1008, 1008, 484}));
}

TEST_F(DeviceMemoryOnLine, LongWrite_IsCutIntoTheLargestPackets) {
  const std::vector<std::uint8_t> written = MakeBytes(2001, 7);

  ASSERT_TRUE(memory.Write(kFeatures + 3, written, {}).IsOK());

  EXPECT_EQ(camera.Peek(kFeatures + 3, 2001), written);
  std::vector<std::size_t> sizes;
  for (const HeardCommand& heard : camera.TakeHeard())
    sizes.push_back(heard.bytes);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1000, 1000, 1}));
}

TEST_F(DeviceMemoryOnLine, CameraThatTakesLess_IsAskedForLess) {
  camera.SetMost(100, 70);
  const std::vector<std::uint8_t> written = MakeBytes(3000, 9);

  ASSERT_TRUE(memory.Write(kFeatures, written, {}).IsOK());
  ASSERT_TRUE(Read(kFeatures, 3000).IsOK());

  EXPECT_EQ(bytes, written);
}

TEST_F(DeviceMemoryOnLine, CameraThatAnswersLess_IsAskedForLess) {
  camera.SetFaults({.wrongLengths = 2});

  ASSERT_TRUE(Read(kFeatures, 1000).IsOK());

  EXPECT_EQ(bytes, camera.Peek(kFeatures, 1000));
}

TEST_F(DeviceMemoryOnLine, CameraThatTakesFewerThanEveryCameraDoes_RefusesClearly) {
  camera.SetMost(8, 8);

  EXPECT_EQ(Read(kFeatures, 1000), KrResult::Code::ProtocolError);
}

TEST_F(DeviceMemoryOnLine, RefusalThatIsNotOfTheSize_LeavesIt) {
  camera.SetMost(8, 8);
  ASSERT_EQ(Read(kFeatures, 1000), KrResult::Code::ProtocolError);
  ASSERT_EQ(memory.Write(kFeatures, MakeBytes(1000), {}), KrResult::Code::ProtocolError);
  camera.SetMost(0, 0);
  camera.TakeHeard();

  ASSERT_TRUE(Read(kFeatures, 1000).IsOK());
  ASSERT_TRUE(memory.Write(kFeatures, MakeBytes(1000), {}).IsOK());

  EXPECT_EQ(camera.TakeHeard().size(), 2u);
}

TEST_F(DeviceMemoryOnLine, WriteThatIsDoneInPart_IsGoneOnWith) {
  camera.SetFaults({.halfWrites = 1});
  const std::vector<std::uint8_t> written = MakeBytes(100, 5);

  ASSERT_TRUE(memory.Write(kFeatures, written, {}).IsOK());

  EXPECT_EQ(camera.Peek(kFeatures, 100), written);
  const std::vector<HeardCommand> writes = camera.TakeWrites();
  ASSERT_EQ(writes.size(), 2u);
  EXPECT_EQ(writes[1].address, kFeatures + 50);
  EXPECT_EQ(writes[1].bytes, 50u);
}

TEST_F(DeviceMemoryOnLine, WriteOfWhichNothingIsDone_IsAProtocolError) {
  camera.SetFaults({.halfWrites = 1});

  EXPECT_EQ(memory.Write(kFeatures, std::vector<std::uint8_t>{1}, {}), KrResult::Code::ProtocolError);
}

// What happens to the answers to a write, until it is given up.
struct LostAnswers {
  const char* name;
  krtest::CameraFaults faults;
  KrResult::Code code;
};

class WriteWithoutAnAnswer : public DeviceMemoryOnABadLine, public testing::WithParamInterface<LostAnswers> {
protected:
  // Each is sent four times, and heard as often.
  void ExpectFailedWrite() {
    hasty.SetResponseTime(1000);
    camera.SetFaults(GetParam().faults);
    EXPECT_EQ(hastyMemory.Write(kFeatures, MakeBytes(900), {}), GetParam().code);
    ASSERT_TRUE(camera.AwaitHeard(4));
  }
};

TEST_P(WriteWithoutAnAnswer, IsDoneOnceAndFails) {
  ExpectFailedWrite();

  EXPECT_EQ(camera.TakeWrites().size(), 1u);
  const std::vector<HeardCommand> heard = camera.TakeHeard();
  EXPECT_EQ(heard.size(), 4u);
  for (const HeardCommand& command : heard)
    EXPECT_EQ(command.request, heard[0].request);
}

TEST_P(WriteWithoutAnAnswer, LeavesTheSizeOfTheNext) {
  ExpectFailedWrite();
  camera.TakeWrites();
  camera.SetFaults({});
  hasty.SetResponseTime(20000);

  ASSERT_TRUE(hastyMemory.Write(kFeatures, MakeBytes(900, 2), {}).IsOK());

  EXPECT_EQ(camera.TakeWrites().size(), 1u);
  EXPECT_EQ(camera.Peek(kFeatures, 900), MakeBytes(900, 2));
}

INSTANTIATE_TEST_SUITE_P(GenCP, WriteWithoutAnAnswer,
                         testing::Values(LostAnswers{"Lost", {.lostAnswers = 1000}, KrResult::Code::TimeLimitExceeded},
                                         LostAnswers{
                                             "Damaged", {.damagedAnswers = 1000}, KrResult::Code::ProtocolError}),
                         [](const testing::TestParamInfo<LostAnswers>& aInfo) { return aInfo.param.name; });

// A repeat of a write whose answer was lost, and which is refused for what is wrong with the repeat.
class RefusedRepeat : public DeviceMemoryOnABadLine, public testing::WithParamInterface<std::uint16_t> {};

TEST_P(RefusedRepeat, OfAWriteThatMayBeDone_KeepsItsNumber) {
  hasty.SetResponseTime(500);
  camera.SetFaults({.lostAnswers = 1, .refusedRepeats = 2, .refusal = GetParam()});

  EXPECT_TRUE(hastyMemory.Write(kFeatures, MakeBytes(100), {}).IsOK());

  EXPECT_EQ(camera.TakeWrites().size(), 1u);
  const std::vector<HeardCommand> heard = camera.TakeHeard();
  EXPECT_GE(heard.size(), 4u);
  for (const HeardCommand& command : heard)
    EXPECT_EQ(command.request, heard[0].request);
}

INSTANTIATE_TEST_SUITE_P(GenCP, RefusedRepeat, testing::Values(0x8007, 0x800B, 0x800E));

TEST_F(DeviceMemoryOnABadLine, CameraThatIsSilentAtLongCommands_IsAskedAndToldLess) {
  hasty.SetResponseTime(300);
  camera.SetFaults({.mostHeard = 64});
  bytes.assign(2000, 0);

  ASSERT_TRUE(hastyMemory.Read(kFeatures, bytes, {}).IsOK());
  EXPECT_EQ(bytes, camera.Peek(kFeatures, 2000));

  ASSERT_TRUE(hastyMemory.Write(kFeatures, MakeBytes(1000, 3), {}).IsOK());
  EXPECT_EQ(camera.Peek(kFeatures, 1000), MakeBytes(1000, 3));
}

TEST_F(DeviceMemoryOnABadLine, OneBadMoment_DoesNotKeepReadsSmall) {
  hasty.SetResponseTime(300);
  camera.SetFaults({.mostHeard = 64});
  bytes.assign(200, 0);
  ASSERT_TRUE(hastyMemory.Read(kFeatures, bytes, {}).IsOK());
  camera.SetFaults({});
  bytes.assign(4000, 0);
  camera.TakeHeard();

  bool isLargest = false;
  for (int i = 0; i < 100 && !isLargest; ++i) {
    ASSERT_TRUE(hastyMemory.Read(kFeatures, bytes, {}).IsOK());
    isLargest = camera.TakeHeard().at(0).bytes == kMaxReadBytes;
  }

  EXPECT_TRUE(isLargest);
  EXPECT_EQ(bytes, camera.Peek(kFeatures, 4000));
}

// Each access is right, or says that it failed, on a line that loses, doubles and changes one byte of a thousand each.
TEST_F(DeviceMemoryOnABadLine, Accesses_AreRightOrFailClearly) {
  constexpr double kEach = 0.001;
  camera.SetFaults({.lost = kEach, .doubled = kEach, .changed = kEach});
  int right = 0;
  std::uint32_t size = 1;
  for (std::uint32_t i = 0; i < 50; ++i) {
    size = size * 7 % 1499 + 1;
    const std::vector<std::uint8_t> written = MakeBytes(size, i);
    const KrResult writing = hastyMemory.Write(kFeatures, written, {});
    bytes.assign(size, 0);
    const KrResult reading = hastyMemory.Read(kFeatures, bytes, {});
    for (const KrResult& result : {writing, reading}) {
      EXPECT_TRUE(result.IsOK() || result == KrResult::Code::TimeLimitExceeded ||
                  result == KrResult::Code::ProtocolError)
          << result.GetDescription().CStr();
    }
    if (writing.IsOK()) {
      ASSERT_EQ(camera.Peek(kFeatures, size), written) << i;
    }
    if (reading.IsOK()) {
      ASSERT_EQ(bytes, camera.Peek(kFeatures, size)) << i;
    }
    right += writing.IsOK() && reading.IsOK() ? 1 : 0;
  }

  EXPECT_GT(camera.CountFaults(), 50);
  EXPECT_GT(right, 20);
  camera.SetFaults({});
  ExpectRightRead();
}

} // namespace
} // namespace krcamerabridge
