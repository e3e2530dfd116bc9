#include "logic/serial/receiving.h"

#include "krbase/krlogger.h"
#include "logic/serial/terminalmessages.h"
#include "scriptedline.h"

#include <gmock/gmock.h>

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace {

using krgui::LoopbackCheck;
using krgui::Message;
using krgui::MessageQueue;
using krgui::Receiving;
using krgui::TranscriptEncoder;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class CollectedTranscript : public krgui::ITranscript {
public:
  void RemoveLastLine() override {}
  void Append(std::u16string_view aText) override { text += aText; }
  void SetEmpty() override { text.clear(); }

  std::u16string text;
};

/// What one read comes to, and how much time it takes.
struct Step {
  std::string bytes;
  KrResult::Code code = KrResult::Code::OK;
  milliseconds time{0};
};

constexpr KrResult::Code kNothing = KrResult::Code::TimeLimitExceeded;

/// Runs a receiver through steps, on this thread; the one behind the last stops it.
class ReceivingTest : public testing::Test {
protected:
  ReceivingTest() {
    mQueue->Open();
    mLine.onRead = [this] { return GiveStep(); };
  }

  void Run(std::deque<Step> aSteps) {
    mSteps = std::move(aSteps);
    Receiving receiving(
        mLine, mEncoder, mCheck, [this] { return mIsLoopbackOn; }, mQueue, [this] { return mNow; },
        [this](milliseconds aDuration, const std::stop_token&) { mPauses.push_back(aDuration); });
    receiving.Run(mStop.get_token());
  }

  std::vector<Message> TakeAll() {
    std::vector<Message> messages;
    while (std::optional<MessageQueue::Taken> taken = mQueue->Take())
      messages.push_back(taken->Get());
    return messages;
  }

  std::u16string Flush() {
    CollectedTranscript transcript;
    mEncoder.FlushPending(transcript);
    return transcript.text;
  }

  krtest::ScriptedLine mLine;
  TranscriptEncoder mEncoder;
  LoopbackCheck mCheck;
  std::shared_ptr<MessageQueue> mQueue = std::make_shared<MessageQueue>();
  std::stop_source mStop;
  milliseconds mNow{1000};
  bool mIsLoopbackOn = false;
  /// Called at each step, before it.
  std::function<void()> mOnStep = [] {};
  std::vector<milliseconds> mPauses;

private:
  std::pair<KrResult, std::string> GiveStep() {
    mOnStep();
    if (mSteps.empty()) {
      mStop.request_stop();
      return {KrResult(kNothing), {}};
    }
    const Step step = mSteps.front();
    mSteps.pop_front();
    mNow += step.time;
    return {KrResult(step.code), step.bytes};
  }

  std::deque<Step> mSteps;
};

const Message kFlush = {krgui::kFlushTranscriptMessage, 0, 0};

TEST_F(ReceivingTest, Start_IsLogged) {
  const KrLogCapture capture;

  Run({});

  const std::vector<KrLogRecord> records = capture.GetRecords();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].level, KrLogLevel::Info);
  EXPECT_EQ(records[0].channel, "KrGUILib");
  EXPECT_EQ(records[0].function, "SerialTerminalWnd::RxThread");
  EXPECT_EQ(records[0].text, "Terminal thread started");
}

TEST_F(ReceivingTest, Reads_AskFor64BytesAndWait250Milliseconds) {
  Run({{"A"}, {"", kNothing}});

  ASSERT_EQ(mLine.reads.size(), 3U);
  for (const krtest::ScriptedLine::ReadCall& read : mLine.reads) {
    EXPECT_EQ(read.size, 64U);
    EXPECT_EQ(read.timeoutMs, 250U);
  }
}

TEST_F(ReceivingTest, StoppedBeforeItStarts_ReadsNothing) {
  mStop.request_stop();

  Run({{"A"}});

  EXPECT_THAT(mLine.reads, IsEmpty());
}

TEST_F(ReceivingTest, ReceivedBytes_AreRenderedInOrder) {
  Run({{"one "}, {"", kNothing}, {"two "}, {"", KrResult::Code::ProtocolError}, {"three"}});

  EXPECT_EQ(Flush(), u"one two three");
}

TEST_F(ReceivingTest, FailuresOtherThanTheTimeLimit_ArePausedAfter) {
  Run({{"", KrResult::Code::SystemError}, {"", kNothing}, {"A"}, {"", KrResult::Code::ConnectionLost}});

  EXPECT_THAT(mPauses, ElementsAre(milliseconds(250), milliseconds(250)));
}

TEST_F(ReceivingTest, TimeLimitAndSuccess_AreNotPausedAfter) {
  Run({{"", kNothing}, {"A"}, {"", kNothing}});

  EXPECT_THAT(mPauses, IsEmpty());
}

TEST_F(ReceivingTest, StopDuringThePause_EndsAtOnce) {
  Receiving receiving(
      mLine, mEncoder, mCheck, [] { return false; }, mQueue, [this] { return mNow; },
      [this](milliseconds, const std::stop_token& aStop) {
        mStop.request_stop();
        // The true pause, of a length that the test would not survive.
        (void)krbase::Rest(std::chrono::hours(24), aStop);
      });
  mLine.onRead = [] { return std::pair(KrResult(KrResult::Code::ConnectionLost), std::string()); };

  receiving.Run(mStop.get_token());

  EXPECT_EQ(mLine.reads.size(), 1U);
}

TEST_F(ReceivingTest, NothingReceived_NeverAsksForAFlush) {
  Run({{"", kNothing, milliseconds(250)}, {"", kNothing, milliseconds(1000)}});

  EXPECT_THAT(TakeAll(), IsEmpty());
}

TEST_F(ReceivingTest, FewBytesSoonAfterTheStart_AskForNoFlush) {
  Run({{std::string(63, 'x'), KrResult::Code::OK, milliseconds(249)}});

  EXPECT_THAT(TakeAll(), IsEmpty());
}

TEST_F(ReceivingTest, FewBytesWhen250MillisecondsHavePassed_AskForAFlush) {
  Run({{"x", KrResult::Code::OK, milliseconds(249)}, {"", kNothing, milliseconds(1)}});

  EXPECT_THAT(TakeAll(), ElementsAre(kFlush));
}

TEST_F(ReceivingTest, SixtyFourBytes_AskForAFlushAtOnce) {
  Run({{std::string(64, 'x')}});

  EXPECT_THAT(TakeAll(), ElementsAre(kFlush));
}

TEST_F(ReceivingTest, SixtyFourBytesInParts_AskForAFlushAtOnce) {
  Run({{std::string(40, 'x')}, {std::string(24, 'x')}});

  EXPECT_THAT(TakeAll(), ElementsAre(kFlush));
}

TEST_F(ReceivingTest, RequestThatWaits_IsNotPostedAgain) {
  Run({{std::string(64, 'x')}, {std::string(64, 'x')}, {std::string(64, 'x'), KrResult::Code::OK, milliseconds(300)}});

  EXPECT_THAT(TakeAll(), ElementsAre(kFlush));
}

TEST_F(ReceivingTest, BytesAfterARequest_WaitFor250MillisecondsFromIt) {
  std::vector<std::size_t> counts;
  mOnStep = [&] {
    // The window takes the request and flushes.
    const std::vector<Message> messages = TakeAll();
    counts.push_back(messages.size());
    if (!messages.empty())
      Flush();
  };

  Run({{std::string(64, 'x'), KrResult::Code::OK, milliseconds(100)},
       {"x", KrResult::Code::OK, milliseconds(249)},
       {"", kNothing, milliseconds(1)}});

  EXPECT_THAT(counts, ElementsAre(0, 1, 0, 1));
}

TEST_F(ReceivingTest, BytesThatOthersRendered_AreFlushedToo) {
  const std::string echo(64, 'e');
  mEncoder.RenderBytes(reinterpret_cast<const std::uint8_t*>(echo.data()), 64);

  Run({{"", kNothing}});

  EXPECT_THAT(TakeAll(), ElementsAre(kFlush));
}

TEST_F(ReceivingTest, LoopbackOn_MatchesWhatIsExpected) {
  mIsLoopbackOn = true;
  mCheck.Expect(std::vector<std::uint8_t>{'A', 'B', 'C'});
  mCheck.AddWritten(3);

  Run({{"A"}, {"BC"}});

  EXPECT_EQ(mCheck.GetOutstanding(), 0U);
}

TEST_F(ReceivingTest, LoopbackOff_MatchesNothing) {
  mCheck.Expect(std::vector<std::uint8_t>{'A', 'B', 'C'});
  mCheck.AddWritten(3);

  Run({{"ABC"}});

  EXPECT_EQ(mCheck.GetOutstanding(), 3U);
}

TEST_F(ReceivingTest, BytesOfAFailedRead_AreNotShown) {
  mIsLoopbackOn = true;
  mCheck.Expect(std::vector<std::uint8_t>{'A'});
  mCheck.AddWritten(1);

  Run({{"A", KrResult::Code::ProtocolError}});

  EXPECT_EQ(Flush(), u"");
  EXPECT_EQ(mCheck.GetOutstanding(), 1U);
}

TEST_F(ReceivingTest, ClosedQueue_IsReceivedForAllTheSame) {
  mQueue->Close();

  Run({{std::string(64, 'x')}, {"y"}});

  EXPECT_EQ(Flush(), std::u16string(64, 'x') + u"y");
}

} // namespace
