#include "streamcommand.h"
#include "krtransport/krsimulatedfaults.h"
#include "labfixture.h"

#include <csignal>
#include <functional>
#include <optional>
#include <sstream>
#include <utility>

namespace krtool {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kClosingLine =
    "frames=[0-9]+ incomplete=[0-9]+ missing=[0-9]+ resent=[0-9]+ fps=[0-9]+\\.[0-9]+ MBps=[0-9]+\\.[0-9]+\n";

// Keeps what is written and calls back once, when the stream is said to have begun.
class AnnouncementBuffer : public std::stringbuf {
public:
  std::function<void()> onBegin;

protected:
  int sync() override {
    if (onBegin && str().find("Streaming from") != std::string::npos)
      std::exchange(onBegin, nullptr)();
    return 0;
  }
};

class StreamCommand : public LabTest {
protected:
  int Run(const char* aDevice, std::uint64_t aFrames, std::optional<std::uint32_t> aTimeoutMs = {}) {
    std::ostream errors(&mErrors);
    return RunStream(mSystem, {.verb = Verb::Stream, .device = aDevice, .timeoutMs = aTimeoutMs, .frames = aFrames},
                     mOut, errors);
  }

  std::ostringstream mOut;
  AnnouncementBuffer mErrors;
};

TEST_F(StreamCommand, FramesAskedFor_AreTakenAndCounted) {
  const int exitCode = Run("sim-colour", 5);

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), MatchesRegex(kClosingLine));
  EXPECT_THAT(mOut.str(), testing::StartsWith("frames=5 incomplete=0 missing=0 resent=0 "));
}

TEST_F(StreamCommand, EveryKindOfName_ReachesTheCamera) {
  for (const char* name : {"sim-mono", "02:4b:52:00:77:10", "02-4B-52-00-77-10", "192.168.77.10"}) {
    mOut.str("");

    EXPECT_EQ(Run(name, 1), 0) << name << mErrors.str();
    EXPECT_THAT(mOut.str(), MatchesRegex(kClosingLine)) << name;
  }
}

TEST_F(StreamCommand, UnknownDevice_FailsWithoutClosingLine) {
  const int exitCode = Run("nobody", 5);

  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), testing::AllOf(HasSubstr("\"nobody\""), HasSubstr("sim-mono")));
}

TEST_F(StreamCommand, UnreachableCamera_IsNamedAsSuch) {
  const int exitCode = Run("sim-foreign", 5);

  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), HasSubstr("cannot reach it"));
}

TEST_F(StreamCommand, AddressThatNobodyHas_Fails) {
  const int exitCode = Run("192.168.77.99", 5);

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("192.168.77.99"));
}

TEST_F(StreamCommand, CtrlC_EndsItWithTheClosingLineAndTheSignalsCode) {
  mErrors.onBegin = [] { std::raise(SIGINT); };

  const int exitCode = Run("sim-mono", 1'000'000);

  EXPECT_EQ(exitCode, 128 + SIGINT) << mErrors.str();
  EXPECT_THAT(mOut.str(), MatchesRegex(kClosingLine));
}

TEST_F(StreamCommand, FramesThatNeverCame_AreSaid) {
  mErrors.onBegin = [this] {
    const auto faults = mLab->GetFaults("02:4b:52:00:77:10");
    faults->DelayPackets(1, 1, 1); // One frame comes before those that do not.
    faults->DropFrames(3);
  };

  const int exitCode = Run("sim-mono", 5);

  EXPECT_EQ(exitCode, 0);
  EXPECT_THAT(mErrors.str(), HasSubstr("3 frames never came"));
}

TEST_F(StreamCommand, CameraLost_FailsWithTheReasonAndTheClosingLine) {
  mErrors.onBegin = [this] { EXPECT_TRUE(mLab->Lose("02:4b:52:00:77:10").IsOK()); };

  const int exitCode = Run("sim-mono", 1'000'000, 600'000);

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("krtool: the stream of"));
  EXPECT_THAT(mOut.str(), MatchesRegex(kClosingLine));
}

TEST_F(StreamCommand, NoFrameWithinTheTimeLimit_FailsWithTheClosingLine) {
  // At 30 frames a second there is a wait of more than one millisecond between two of them.
  const int exitCode = Run("sim-mono", 1'000'000, 1);

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("No frame came within 1 ms"));
  EXPECT_THAT(mOut.str(), MatchesRegex(kClosingLine));
}

TEST_F(StreamCommand, Camera_IsFreeAgainAfterwards) {
  EXPECT_EQ(Run("sim-mono", 1), 0);
  EXPECT_EQ(Run("sim-mono", 1), 0) << mErrors.str();
}

} // namespace
} // namespace krtool
