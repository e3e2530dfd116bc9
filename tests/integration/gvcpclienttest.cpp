// Devices on the control channel that ask for patience, answer what nobody asked, or never stop sending.

#include "await.h"
#include "gvcpresponder.h"

#include "gigevision/deviceprobe.h"
#include "gigevision/gvcpclient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace {

using namespace krtransport;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::uint32_t kRegister = 0x0A00;
const GvcpPatience kGenerous{krtest::GetGenerousLimit(), 3, 3 * krtest::GetGenerousLimit()};

class GvcpClientTest : public testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(GvcpClient::Connect(kLoopback, std::nullopt, mClient).IsOK()); }

  KrResult Read(const GvcpPatience& aPatience, const std::stop_token& aStop = {}) {
    return mClient.ReadRegister(kRegister, mValue, aPatience, aStop);
  }

  GvcpClient mClient;
  std::uint32_t mValue = 0;
};

std::vector<std::uint8_t> MakeForeignAcknowledge(std::span<const std::uint8_t> aCommand) {
  auto answer = MakeReadAcknowledge(aCommand, 1);
  answer[6] ^= 0x7F; // The high byte of the number: a change of the low one could give that of the next request.
  return answer;
}

TEST_F(GvcpClientTest, ReadRegister_PendingThenAnswer_GivesTheValue) {
  const GvcpResponder responder([](auto aCommand) {
    return Datagrams{MakePendingAcknowledge(aCommand, 1000), MakeReadAcknowledge(aCommand, 7)};
  });

  const KrResult result = Read(kGenerous);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mValue, 7u);
}

TEST_F(GvcpClientTest, ReadRegister_PendingLongerThanATry_IsWaitedForAndNotAskedAgain) {
  std::atomic<int> commands{0};
  const GvcpResponder responder([&](auto aCommand) {
    ++commands;
    return Datagrams{MakePendingAcknowledge(aCommand, 60000)};
  });

  const KrResult result = Read({seconds(2), 3, seconds(3)});

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(commands, 1);
}

TEST_F(GvcpClientTest, ReadRegister_PendingWithoutEnd_EndsWithTheTotal) {
  const GvcpResponder responder([](auto aCommand) { return Datagrams{MakePendingAcknowledge(aCommand, 60000)}; },
                                GvcpAnswers::WithoutEnd);

  EXPECT_EQ(Read({milliseconds(50), 3, milliseconds(200)}), KrResult::Code::TimeLimitExceeded);
}

TEST_F(GvcpClientTest, ReadRegister_AnswersToOtherRequests_TakesItsOwn) {
  const GvcpResponder responder([](auto aCommand) {
    return Datagrams{MakeForeignAcknowledge(aCommand), MakeForeignAcknowledge(aCommand),
                     MakeReadAcknowledge(aCommand, 7)};
  });

  const KrResult result = Read(kGenerous);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mValue, 7u);
}

TEST_F(GvcpClientTest, ReadRegister_WrongDatagramsWithoutEnd_EndsWithTheTotal) {
  const GvcpResponder responder([](auto aCommand) { return Datagrams(16, MakeForeignAcknowledge(aCommand)); },
                                GvcpAnswers::WithoutEnd);

  EXPECT_EQ(Read({milliseconds(50), 3, milliseconds(200)}), KrResult::Code::TimeLimitExceeded);
}

TEST_F(GvcpClientTest, ReadRegister_StoppedDuringAFlood_ReturnsAborted) {
  std::promise<void> asked;
  std::atomic<bool> isAsked{false};
  const GvcpResponder responder(
      [&](auto aCommand) {
        if (!isAsked.exchange(true))
          asked.set_value();
        return Datagrams(16, MakeForeignAcknowledge(aCommand));
      },
      GvcpAnswers::WithoutEnd);
  std::stop_source stop;
  auto read = std::async(std::launch::async, [&] { return Read({hours(1), 1, hours(1)}, stop.get_token()); });
  asked.get_future().wait();

  stop.request_stop();

  EXPECT_EQ(read.get(), KrResult::Code::Aborted);
}

TEST_F(GvcpClientTest, ProbeDevice_AnswersThatComeTooLate_AreThoseOfADeviceThatLives) {
  std::vector<std::uint8_t> former;
  const GvcpResponder responder([&](std::span<const std::uint8_t> aCommand) {
    Datagrams late;
    if (!former.empty())
      late = {MakeReadAcknowledge(former, 2)};
    former.assign(aCommand.begin(), aCommand.end());
    return late;
  });

  EXPECT_EQ(ProbeDevice(mClient), ProbeFinding::Withheld);
}

TEST_F(GvcpClientTest, ProbeDevice_NoAnswerAtAll_IsSilence) {
  const GvcpResponder responder([](auto) { return Datagrams(); });

  EXPECT_EQ(ProbeDevice(mClient), ProbeFinding::Silent);
}

} // namespace
