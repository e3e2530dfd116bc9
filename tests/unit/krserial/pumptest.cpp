// What a bridge moves while all is well: order, completeness, bounds, counters, the end.

#include "hostendreader.h"
#include "pumpfixture.h"

#include <algorithm>
#include <future>

using krserial::Pump;
using krtest::Await;
using krtest::PumpTest;

namespace {

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;
// More than both buffers of the smallest socket hold, with what the system adds.
constexpr std::size_t kSocketRoom = std::size_t{64} * 1024;

} // namespace

TEST_F(PumpTest, AMegabyteEachWayAtOnce_ComesWholeAndInOrder) {
  const std::string toDevice = MakeMixedBytes(kMegabyte, 1);
  const std::string toHost = MakeMixedBytes(kMegabyte, 2);
  line->Receive(toHost);

  const std::future<void> sending = std::async(std::launch::async, [&] { end.Send(toDevice); });
  const bool isHostServed = end.Receive(kMegabyte) == toHost;
  const bool isDeviceServed = Await([&] { return line->GetSent().size() >= kMegabyte; });

  EXPECT_TRUE(isHostServed);
  EXPECT_TRUE(isDeviceServed);
  EXPECT_TRUE(line->GetSent() == toDevice);
  EXPECT_TRUE(Await([&] { return counters.sentToDevice == kMegabyte; }));
  EXPECT_EQ(counters.receivedFromDevice, kMegabyte);
}

TEST_F(PumpTest, AHostThatDoesNotRead_StopsItsDirectionAlone) {
  const std::string toHost = MakeMixedBytes(4 * kMegabyte, 2);
  const std::string toDevice = MakeMixedBytes(kMegabyte, 1);
  line->Receive(toHost);
  ASSERT_TRUE(Await([&] { return end.HasBytes(); }));

  end.Send(toDevice);

  ASSERT_TRUE(Await([&] { return line->GetSent().size() >= kMegabyte; }));
  EXPECT_TRUE(line->GetSent() == toDevice);
  EXPECT_LE(counters.receivedFromDevice, Pump::kBlockSize + kSocketRoom);
  EXPECT_TRUE(end.Receive(toHost.size()) == toHost) << "the rest waits in the device";
}

TEST_F(PumpTest, ADeviceThatTakesNothing_StopsItsDirectionAlone) {
  line->SetRoom(100);
  const std::string toHost = MakeMixedBytes(kMegabyte, 2);
  const std::string chunk = MakeMixedBytes(kMegabyte, 1);
  line->Receive(toHost);

  const bool isHostServed = end.Receive(kMegabyte) == toHost;
  std::size_t sent = 0;
  ASSERT_TRUE(Await([&] {
    const std::size_t more = end.SendSome(chunk.substr(sent));
    sent += more;
    return more == 0 && line->GetSent().size() == 100;
  }));

  EXPECT_TRUE(isHostServed);
  EXPECT_LE(sent, Pump::kBlockSize + kSocketRoom);
  line->SetRoom(kMegabyte);
  EXPECT_TRUE(IsSent(chunk.substr(0, sent)));
}

TEST_F(PumpTest, SingleBytes_GoEachWayWithoutWaitingForMore) {
  line->SetLoopback(true);

  for (const char byte : std::string("ping pong")) {
    end.Send(std::string(1, byte));
    ASSERT_EQ(end.Receive(1), std::string(1, byte));
  }
}

TEST_F(PumpTest, APortOfAKnownSpeed_GetsPiecesOfAQuarterOfASecond) {
  speed.AskSupported();
  speed.Start([](const krserial::DevicePortSpeed&) {});
  const std::string bytes = MakeMixedBytes(10000, 1);

  end.Send(bytes);

  ASSERT_TRUE(IsSent(bytes));
  EXPECT_LE(std::ranges::max(line->GetWrites()), 240U) << "9600 baud, ten bits a byte";
}

TEST_F(PumpTest, Reset_OfTheCounters_CountsFromThere) {
  end.Send("some bytes");
  ASSERT_TRUE(Await([&] { return counters.sentToDevice == 10; }));

  counters.Reset();
  line->Receive("answer");
  ASSERT_EQ(end.Receive(6), "answer");

  EXPECT_EQ(counters.sentToDevice, 0U);
  EXPECT_EQ(counters.receivedFromDevice, 6U);
}

TEST_F(PumpTest, Destruction_WhileBothDirectionsAreBlocked_Ends) {
  line->SetRoom(0);
  line->Receive(MakeMixedBytes(kMegabyte, 1));
  end.SendSome("for the device");
  ASSERT_TRUE(Await([&] { return !line->GetWrites().empty() && end.HasBytes(); }));

  std::future<void> ending = std::async(std::launch::async, [&] { pump.reset(); });

  ASSERT_EQ(ending.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  EXPECT_LT(line->GetSent().size(), 1U);
}

TEST_F(PumpTest, Destruction_WhileBothDirectionsWait_Ends) {
  ASSERT_TRUE(Await([&] { return line->CountReads() > 0; }));

  std::future<void> ending = std::async(std::launch::async, [&] { pump.reset(); });

  EXPECT_EQ(ending.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}
