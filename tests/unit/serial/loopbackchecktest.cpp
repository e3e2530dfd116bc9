#include "logic/serial/loopbackcheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace {

using krgui::LoopbackCheck;

std::vector<std::uint8_t> ToBytes(const std::string& aText) {
  return {aText.begin(), aText.end()};
}

struct Exchange {
  const char* name;
  std::string sent;
  std::string received;
  std::uint64_t outstanding;
};

class LoopbackCheckTable : public testing::TestWithParam<Exchange> {};

// What is expected is looked at from its front alone: each entry is used up by the comparison that it takes part in.
const Exchange kExchanges[] = {
    {"Everything", "ABCDEF", "ABCDEF", 0},
    {"Nothing", "ABCDEF", "", 6},
    {"LostByteCostsItsOwnEntry", "ABCDEF", "ABDEF", 1},
    {"LostFirstByte", "ABCDEF", "BCDEF", 1},
    {"LostLastByte", "ABCDEF", "ABCDE", 1},
    {"TwoLostBytes", "ABCDEF", "ACEF", 2},
    {"UnexpectedByteThatIsNowhereDrainsAll", "ABCDEF", "ABxCDEF", 4},
    {"UnexpectedByteDrainsUntilItMatches", "ABCDEF", "ABECDEF", 3},
    {"ByteTwiceDrainsAll", "ABCDEF", "AABCDEF", 5},
    {"MoreThanExpected", "ABC", "ABCDEF", 0},
    {"EqualBytes", "AAAA", "AAA", 1},
    {"AllByteValues", std::string("\0\xFF\x80", 3), std::string("\0\xFF\x80", 3), 0},
};

TEST_P(LoopbackCheckTable, Matching_CountsWhatIsOutstanding) {
  const Exchange& exchange = GetParam();
  LoopbackCheck check;
  check.Begin();
  check.Expect(ToBytes(exchange.sent));
  check.AddWritten(exchange.sent.size());

  check.Match(ToBytes(exchange.received));

  EXPECT_EQ(check.GetOutstanding(), exchange.outstanding);
}

TEST_P(LoopbackCheckTable, MatchingByteByByte_CountsTheSame) {
  const Exchange& exchange = GetParam();
  LoopbackCheck check;
  check.Begin();
  check.Expect(ToBytes(exchange.sent));
  check.AddWritten(exchange.sent.size());

  for (const std::uint8_t byte : ToBytes(exchange.received))
    check.Match({&byte, 1});

  EXPECT_EQ(check.GetOutstanding(), exchange.outstanding);
}

INSTANTIATE_TEST_SUITE_P(, LoopbackCheckTable, testing::ValuesIn(kExchanges),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(LoopbackCheck, MoreThanItKeeps_StaysOutstanding) {
  const std::vector<std::uint8_t> bytes(LoopbackCheck::kMostExpected);
  LoopbackCheck check;
  check.Begin();
  for (int part = 0; part < 2; ++part) {
    check.Expect(bytes);
    check.AddWritten(bytes.size());
  }

  for (int part = 0; part < 2; ++part)
    check.Match(bytes);

  EXPECT_EQ(check.GetOutstanding(), LoopbackCheck::kMostExpected);
}

TEST(LoopbackCheck, BytesThatComeBackBeforeTheyAreCounted_AreNotOutstandingInTheEnd) {
  LoopbackCheck check;
  check.Begin();
  check.Expect(ToBytes("AB"));

  check.Match(ToBytes("AB"));
  check.AddWritten(2);

  EXPECT_EQ(check.GetOutstanding(), 0U);
}

TEST(LoopbackCheck, Begin_KeepsWhatIsExpected) {
  LoopbackCheck check;
  check.Expect(ToBytes("AB"));
  check.AddWritten(5);

  check.Begin();
  check.AddWritten(2);
  check.Match(ToBytes("AB"));

  EXPECT_EQ(check.GetOutstanding(), 0U);
}

TEST(LoopbackCheck, End_ForgetsAll) {
  LoopbackCheck check;
  check.Expect(ToBytes("AB"));
  check.AddWritten(2);

  check.End();

  EXPECT_EQ(check.GetOutstanding(), 0U);
  check.Match(ToBytes("AB"));
  EXPECT_EQ(check.GetOutstanding(), 0U) << "nothing was expected any more";
}

TEST(LoopbackCheck, AMegabyteThatLosesOneByteInAThousand_MissesThoseAlone) {
  constexpr std::size_t kMegabyte = 1'000'000;
  constexpr std::size_t kRead = 64;
  // Of few values, so that many a lost byte equals its neighbours.
  std::mt19937 random(1);
  std::vector<std::uint8_t> sent(kMegabyte);
  for (std::uint8_t& byte : sent)
    byte = static_cast<std::uint8_t>(std::uniform_int_distribution<int>('a', 'd')(random));
  std::vector<std::uint8_t> received;
  for (std::size_t i = 0; i < sent.size(); ++i)
    if ((i + 1) % 1000 != 0)
      received.push_back(sent[i]);
  LoopbackCheck check;
  check.Begin();
  check.Expect(sent);
  check.AddWritten(sent.size());

  for (std::size_t i = 0; i < received.size(); i += kRead)
    check.Match(std::span(received).subspan(i, std::min(kRead, received.size() - i)));

  EXPECT_EQ(check.GetOutstanding(), 1000U);
}

TEST(LoopbackCheck, SenderAndReceiverAtOnce_LoseNoCount) {
  constexpr std::uint64_t kRounds = 20000;
  LoopbackCheck check;
  check.Begin();
  const std::vector<std::uint8_t> bytes = ToBytes("loop");
  std::thread receiver([&] {
    for (std::uint64_t round = 0; round < kRounds; ++round)
      check.Match({});
  });

  for (std::uint64_t round = 0; round < kRounds; ++round) {
    check.Expect(bytes);
    check.AddWritten(bytes.size());
  }
  receiver.join();
  for (std::uint64_t round = 0; round < kRounds; ++round)
    check.Match(bytes);

  EXPECT_EQ(check.GetOutstanding(), 0U);
}

} // namespace
