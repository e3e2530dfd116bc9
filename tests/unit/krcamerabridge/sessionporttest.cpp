#include "line/sessionport.h"

#include "gencp/accesstime.h"
#include "krbase/rest.h"
#include "threadstate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace krcamerabridge {
namespace {

/// Answers a little later than at once, a question for a single byte never, and counts how it is closed.
class SlowSession final : public ILineSession {
public:
  SlowSession(std::uint64_t aLineMs, std::atomic<int>& aClosings) : mLineMs(aLineMs), mClosings(aClosings) {}

  KrResult Read(std::uint64_t, std::span<std::uint8_t> aData, const std::stop_token& aStop) override {
    if (!krbase::Rest(std::chrono::milliseconds(aData.size() > 1 ? 100 : 60'000), aStop))
      return {KrResult::Code::Aborted, "Who asked has left."};
    std::ranges::fill(aData, std::uint8_t{7});
    return {};
  }
  KrResult Write(std::uint64_t, std::span<const std::uint8_t>, const std::stop_token&) override { return {}; }
  KrResult Probe(const std::stop_token&) override { return {}; }
  void Close(const std::stop_token& aStop) override { mClosings += aStop.stop_requested() ? 100 : 1; }
  std::uint64_t GetLineMs(std::size_t aBytes) const override { return aBytes > 1 ? mLineMs : 0; }

private:
  const std::uint64_t mLineMs;
  std::atomic<int>& mClosings;
};

class SlowPort final : public SessionPort {
public:
  SlowPort() : SessionPort("slow") {}
  KrResult Connect(std::uint64_t aLineMs, std::atomic<int>& aClosings) {
    if (KrResult result = CheckUnconnected(); !result.IsOK())
      return result;
    Begin(std::make_unique<SlowSession>(aLineMs, aClosings));
    return {};
  }
};

class SessionPortTest : public testing::Test {
protected:
  std::atomic<int> closings{0};
  SlowPort port;
  std::array<std::uint8_t, 2> bytes{};
};

TEST_F(SessionPortTest, Limit_GrowsByTheTimeThatTheLineNeeds) {
  ASSERT_TRUE(port.Connect(60000, closings).IsOK());

  EXPECT_TRUE(port.Read(0, bytes.data(), 2, 1).IsOK()) << "of a millisecond, and a minute for the line";
  EXPECT_EQ(bytes[1], 7);
  EXPECT_EQ(port.Read(0, bytes.data(), 1, 1), KrResult::Code::TimeLimitExceeded) << "of a millisecond alone";
}

TEST_F(SessionPortTest, LimitBeyondAllNumbers_IsTheLongest) {
  ASSERT_TRUE(port.Connect(UINT64_C(1) << 40, closings).IsOK());

  EXPECT_TRUE(port.Read(0, bytes.data(), 2, 1).IsOK());
}

TEST_F(SessionPortTest, LimitOfZero_IsRefusedHoweverSlowTheLine) {
  ASSERT_TRUE(port.Connect(60000, closings).IsOK());

  EXPECT_EQ(port.Read(0, bytes.data(), 2, 0), KrResult::Code::InvalidInput);
}

TEST_F(SessionPortTest, Disconnect_ClosesTheSessionOnceAndTellsItWhoHasLeft) {
  ASSERT_TRUE(port.Connect(0, closings).IsOK());
  EXPECT_EQ(port.Connect(0, closings), KrResult::Code::WrongState);
  std::stop_source stop;
  stop.request_stop();

  port.Disconnect(stop.get_token());
  port.Disconnect();

  EXPECT_EQ(closings, 100);
  EXPECT_EQ(port.Read(0, bytes.data(), 2, 1000), KrResult::Code::WrongState);
}

/// Whether somebody is inside of a session, when he may leave, and how it was closed.
struct Visit {
  std::atomic<bool> isInside{false};
  std::atomic<bool> mayLeave{false};
  std::atomic<int> closings{0};
  std::atomic<int> closingsOnVisitor{0};
};

/// Its visitor stays until he may leave.
class VisitedSession final : public ILineSession {
public:
  explicit VisitedSession(Visit& aVisit) : mVisit(aVisit) {}

  KrResult Read(std::uint64_t, std::span<std::uint8_t>, const std::stop_token&) override { return {}; }
  KrResult Write(std::uint64_t, std::span<const std::uint8_t>, const std::stop_token&) override { return {}; }
  KrResult Probe(const std::stop_token&) override { return {}; }
  void Close(const std::stop_token&) override {
    mVisit.closingsOnVisitor += mVisit.isInside ? 1 : 0;
    ++mVisit.closings;
  }
  std::uint64_t GetLineMs(std::size_t) const override {
    Visit& visit = mVisit;
    visit.isInside = true;
    visit.isInside.notify_all();
    visit.mayLeave.wait(false);
    visit.isInside = false;
    return 0;
  }

private:
  Visit& mVisit;
};

class VisitedPort final : public SessionPort {
public:
  explicit VisitedPort(Visit& aVisit) : SessionPort("visited") { Begin(std::make_unique<VisitedSession>(aVisit)); }
};

TEST(SessionPort, Disconnect_WhileSomebodyIsInside_ClosesNothingUnderHim) {
  Visit visit;
  VisitedPort port(visit);
  KrResult result;
  std::thread visitor([&] {
    std::array<std::uint8_t, 4> bytes{};
    result = port.Read(0, bytes.data(), bytes.size(), 60'000);
  });
  visit.isInside.wait(false);

  krtest::CallBeside closing([&] { port.Disconnect(); });
  EXPECT_TRUE(closing.Waits());
  visit.mayLeave = true;
  visit.mayLeave.notify_all();
  closing.Join();
  visitor.join();

  EXPECT_EQ(visit.closings, 1);
  EXPECT_EQ(visit.closingsOnVisitor, 0);
  EXPECT_EQ(result, KrResult::Code::Aborted);
}

TEST(GenCPAccessTime, LineTime_GrowsWithLengthAndSlowness) {
  struct Case {
    const char* name;
    std::size_t bytes;
    std::uint32_t baudRate;
    std::uint32_t responseMs;
    std::uint64_t lineMs;
  };
  // A piece of 64 bytes has 108 on the line, 112.5 ms at 9600 baud, each twice.
  constexpr std::array cases = {
      Case{"nothing", 0, 9600, 100, 0},
      Case{"a packet", 1000, 9600, 100, 0},
      Case{"a byte more is a piece", 1001, 9600, 100, 425},
      Case{"a whole piece", 1064, 9600, 100, 425},
      Case{"two pieces", 1065, 9600, 100, 850},
      Case{"a faster line", 1064, 96000, 100, 222},
      Case{"a slower camera", 1064, 9600, 1000, 2225},
      Case{"20,000 bytes, which need some 22 s on the line alone", 20000, 9600, 100, 126225},
      Case{"16 MiB", std::size_t{16} << 20, 9600, 100, 111404825},
      Case{"a rate that nobody knows", 1001, 0, 0, 2160000},
  };
  for (const Case& row : cases)
    EXPECT_EQ(GetAccessLineMs(row.bytes, row.baudRate, row.responseMs), row.lineMs) << row.name;
}

} // namespace
} // namespace krcamerabridge
