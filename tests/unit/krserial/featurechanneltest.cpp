// What the channel of a line behind features asks of it, and when.

#include "featurechannel.h"

#include "krbase/krlogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace krserial {

namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t kGenerousMs = 60000;

/// Goes on where somebody waits, and as far as he does.
class TestClock final : public KrWaitClock {
public:
  TimePoint GetNow() const override { return now; }
  bool WaitUntil(std::condition_variable_any&, std::unique_lock<std::mutex>&, const std::stop_token& aStop,
                 TimePoint aEnd, const std::function<bool()>& aCondition) override {
    if (!aCondition() && !aStop.stop_requested())
      now = std::max(now, aEnd + lateness);
    return aCondition();
  }

  TimePoint now = std::chrono::steady_clock::now();
  milliseconds lateness{0}; ///< Of a host that is busy.
};

/// A line that does as the test says, and counts what it is asked.
class ScriptedLine : public IFeatureLine {
public:
  explicit ScriptedLine(std::shared_ptr<TestClock> aClock) : mClock(std::move(aClock)) {}

  KrResult Open() override { return {}; }
  KrResult Close() override {
    ++closings;
    return {};
  }
  KrResult Receive(std::vector<std::uint8_t>& aBytes) override {
    ++receives;
    Count();
    isAtRest = false;
    mClock->now += receiveTime;
    if (next < script.size())
      Append(aBytes, script[next++]);
    else
      Append(aBytes, always);
    return failure;
  }
  KrResult GetLoss() const override { return loss; }
  KrResult Transmit(const std::uint8_t*, std::size_t aSize, std::size_t& aTaken) override {
    Count();
    isAtRest = false;
    aTaken = std::min(aSize, room);
    transmits += 1;
    return {};
  }
  void Rest() override {
    Count();
    isAtRest = true;
  }

  std::vector<std::string> script; ///< What comes, by question; then always.
  std::string always;
  KrResult failure;
  KrResult loss;
  milliseconds receiveTime{0};
  std::size_t room = 2; ///< What it takes at once.
  std::size_t next = 0;
  int receives = 0;
  int transmits = 0;
  int closings = 0;
  bool isAtRest = true;
  std::shared_ptr<int> calls = std::make_shared<int>(0); ///< Outlives the line.

private:
  const std::shared_ptr<TestClock> mClock;

  void Count() { ++*calls; }
  static void Append(std::vector<std::uint8_t>& aBytes, const std::string& aText) {
    aBytes.insert(aBytes.end(), aText.begin(), aText.end());
  }
};

class FeatureChannelTest : public testing::Test {
protected:
  void MakeChannel() {
    auto made = std::make_unique<ScriptedLine>(clock);
    line = made.get();
    channel = std::make_unique<FeatureChannel>(lifetime, turn, std::move(made), clock);
  }
  void SetUp() override { MakeChannel(); }
  void OpenChannel() {
    ASSERT_TRUE(channel->Open().IsOK());
    line->receives = 0;
  }
  KrResult Read(std::uint32_t aTimeoutMs) {
    text.assign(64, '\0');
    std::size_t read = 0;
    KrResult result = channel->Read(reinterpret_cast<std::uint8_t*>(text.data()), text.size(), read, aTimeoutMs);
    text.resize(read);
    return result;
  }
  const std::shared_ptr<TestClock> clock = std::make_shared<TestClock>();
  std::shared_ptr<KrDeviceLifetime> lifetime = std::make_shared<KrDeviceLifetime>();
  std::shared_ptr<FeatureTurn> turn = std::make_shared<FeatureTurn>();
  std::unique_ptr<krsystem::IByteChannel> channel;
  ScriptedLine* line = nullptr;
  std::string text;
};

} // namespace

TEST_F(FeatureChannelTest, OpeningADeviceThatTalksWithoutEnd_EndsWithItsTime) {
  line->always = "x";
  line->receiveTime = milliseconds(60);

  ASSERT_TRUE(channel->Open().IsOK());

  EXPECT_EQ(line->receives, 4);
  EXPECT_TRUE(line->isAtRest);
}

TEST_F(FeatureChannelTest, Opening_DropsAllThatCameBefore) {
  line->script = std::vector<std::string>(100, "old");

  ASSERT_TRUE(channel->Open().IsOK());

  EXPECT_EQ(line->receives, 101);
}

TEST_F(FeatureChannelTest, AnIdlePort_IsAskedRarely) {
  OpenChannel();

  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(Read(250), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(line->receives, 8) << "at 0, 20, 60, 140, 300, 500, 700 and 900 ms";
  EXPECT_TRUE(line->isAtRest);
}

TEST_F(FeatureChannelTest, AnIdlePortOfABusyHost_IsAskedEvenMoreRarely) {
  OpenChannel();
  clock->lateness = milliseconds(100);

  const auto end = clock->now + milliseconds(1000);
  while (clock->now < end)
    EXPECT_EQ(Read(250), KrResult::Code::TimeLimitExceeded);

  EXPECT_LT(line->receives, 8);
}

TEST_F(FeatureChannelTest, ReadsShorterThanAPause_AskNoMoreOften) {
  OpenChannel();

  for (int i = 0; i < 500; ++i)
    EXPECT_EQ(Read(1), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(line->receives, 6) << "at 0, 20, 60, 140, 300 and 500 ms";
}

TEST_F(FeatureChannelTest, AReadThatDoesNotWait_AsksAtOnce) {
  OpenChannel();
  line->script = {"", "", "now"};

  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(Read(0).IsOK());

  EXPECT_EQ(text, "now");
}

TEST_F(FeatureChannelTest, ADeviceThatHasMore_IsAskedWithoutAPause) {
  OpenChannel();
  line->script = std::vector<std::string>(200, "a piece");

  // Calls that end before the shortest of pauses has.
  for (int i = 0; i < 200; ++i)
    ASSERT_TRUE(Read(1).IsOK()) << i;

  EXPECT_EQ(line->receives, 200);
}

TEST_F(FeatureChannelTest, Selectors_StayInABurstAndArePutBackAtItsEnd) {
  OpenChannel();
  line->script = {"first", "second"};

  ASSERT_TRUE(Read(kGenerousMs).IsOK());
  EXPECT_FALSE(line->isAtRest);
  ASSERT_TRUE(Read(kGenerousMs).IsOK());
  EXPECT_FALSE(line->isAtRest);
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);

  EXPECT_TRUE(line->isAtRest);
}

TEST_F(FeatureChannelTest, Selectors_ArePutBackAfterAMessage) {
  OpenChannel();
  std::size_t written = 0;

  ASSERT_TRUE(channel->Write(reinterpret_cast<const std::uint8_t*>("message"), 7, written, kGenerousMs).IsOK());

  EXPECT_EQ(line->transmits, 4);
  EXPECT_TRUE(line->isAtRest);
}

TEST_F(FeatureChannelTest, AFullLine_IsAskedAtItsPaceAlsoWhileReceivedBytesAreUnread) {
  OpenChannel();
  line->script = {"0123456789"};
  line->room = 0;
  std::uint8_t byte = 0;
  std::size_t read = 0;
  ASSERT_TRUE(channel->Read(&byte, 1, read, kGenerousMs).IsOK());
  std::size_t written = 0;

  EXPECT_EQ(channel->Write(&byte, 1, written, 180), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(line->transmits, 10) << "at 0, 20, and so on until 180 ms";
  EXPECT_EQ(written, 0U);
}

TEST_F(FeatureChannelTest, AnotherLineOfTheDevice_FindsSelectorsPutBack) {
  OpenChannel();
  ScriptedLine& first = *line;
  const std::unique_ptr<krsystem::IByteChannel> firstChannel = std::move(channel);
  first.script = {"more to come"};
  std::uint8_t byte = 0;
  std::size_t read = 0;
  ASSERT_TRUE(firstChannel->Read(&byte, 1, read, kGenerousMs).IsOK());
  ASSERT_FALSE(first.isAtRest);
  MakeChannel();

  OpenChannel();

  EXPECT_TRUE(first.isAtRest);
}

TEST_F(FeatureChannelTest, AChannelThatEnds_IsNotTouchedByTheNext) {
  OpenChannel();
  line->script = {"more to come"};
  ASSERT_TRUE(Read(kGenerousMs).IsOK());
  ASSERT_FALSE(line->isAtRest);
  const std::shared_ptr<int> calls = line->calls;

  MakeChannel();
  const int callsAtItsEnd = *calls;

  EXPECT_TRUE(channel->Open().IsOK());
  EXPECT_EQ(*calls, callsAtItsEnd);
}

TEST_F(FeatureChannelTest, ADeviceThatIsSilent_IsNotAskedToClose) {
  OpenChannel();
  line->failure = KrResult::Code::TimeLimitExceeded;
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);

  channel->Close();

  EXPECT_EQ(line->closings, 0);
}

TEST_F(FeatureChannelTest, ADeviceThatAnswersAgain_IsAskedToClose) {
  OpenChannel();
  line->failure = KrResult::Code::TimeLimitExceeded;
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
  line->failure = {};
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);

  channel->Close();

  EXPECT_EQ(line->closings, 1);
}

TEST_F(FeatureChannelTest, BytesOfAStepThatFailed_AreNotGiven) {
  OpenChannel();
  line->script = {"twice", "twice"};
  line->failure = KrResult::Code::ProtocolError;
  EXPECT_EQ(Read(0), KrResult::Code::ProtocolError);
  EXPECT_TRUE(line->isAtRest);
  line->failure = {};

  EXPECT_TRUE(Read(0).IsOK());

  EXPECT_EQ(text, "twice");
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
}

TEST_F(FeatureChannelTest, BytesThatAreLost_AreToldOnceAfterThoseBefore) {
  const KrLogCapture log;
  OpenChannel();
  line->script = {"before"};
  line->loss = KrResult(KrResult::Code::ProtocolError, "One byte is lost.");
  ASSERT_TRUE(Read(0).IsOK());
  EXPECT_EQ(text, "before");
  line->loss = {};

  EXPECT_EQ(Read(0), KrResult::Code::ProtocolError);

  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
}

TEST_F(FeatureChannelTest, BytesLostBeforeTheOpening_AreNotTold) {
  line->loss = KrResult(KrResult::Code::ProtocolError, "One byte is lost.");
  line->script = {"old"};
  ASSERT_TRUE(channel->Open().IsOK());
  line->loss = {};

  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
}

} // namespace krserial
