#include "bridge/bridgelink.h"

#include "bridgeends.h"

#include "krserial/krbulkselectorturn.h"

#include <gmock/gmock.h>

#include <future>
#include <memory>

using krserial::BridgeCounters;
using krserial::BridgeLink;
using krtest::Await;
using krtest::SocketEnd;
using testing::ElementsAre;

namespace {

class BridgeLinkTest : public testing::Test {
protected:
  // The end stays the link's.
  SocketEnd& Run(BridgeLink& aLink, std::optional<std::uint32_t> aBaudRate = {}) {
    auto owned = std::make_unique<SocketEnd>();
    SocketEnd& end = *owned;
    const KrResult running = aLink.Run(std::move(owned), aBaudRate);
    if (!running.IsOK())
      throw std::runtime_error(running.GetDescription().CStr());
    return end;
  }

  krtest::LockedAdapter adapter;
  std::shared_ptr<krtest::SerialLine> line = adapter.AddLine(0);
  BridgeCounters counters;
};

} // namespace

TEST_F(BridgeLinkTest, Run_SetsThePreferredSpeedAndTellsTheEnd) {
  BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);

  const SocketEnd& end = Run(link, 115200);

  EXPECT_EQ(adapter.GetSpeed(), "Baud115200");
  EXPECT_EQ(end.GetTold().current, 115200U);
  EXPECT_THAT(end.GetTold().supported, ElementsAre(9600, 19200, 115200));
  EXPECT_EQ(link.GetState(), KrSerialBridgeState::Running);
}

TEST_F(BridgeLinkTest, TheFarEndsSpeed_IsTheDevicesAndTold) {
  BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);
  SocketEnd& end = Run(link);

  EXPECT_TRUE(end.Ask(19200).IsOK());
  EXPECT_EQ(end.Ask(57600), KrResult::Code::NotSupported);

  EXPECT_EQ(adapter.GetSpeed(), "Baud19200");
  EXPECT_TRUE(Await([&] { return end.GetTold().current == 19200; }));
}

TEST_F(BridgeLinkTest, Configure_SetsTheHostsPortAndTheDevicesSpeed) {
  BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);
  SocketEnd& end = Run(link);

  EXPECT_TRUE(link.Configure({.baudRate = 115200, .parity = 1}).IsOK());

  EXPECT_EQ(end.GetConfiguration().parity, 1U);
  EXPECT_EQ(adapter.GetSpeed(), "Baud115200");
}

TEST_F(BridgeLinkTest, Configure_OfAPortThatRefuses_ChangesNothing) {
  BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);
  SocketEnd& end = Run(link);
  end.configureFailure = KrResult(KrResult::Code::NotSupported, "Not so.");

  EXPECT_EQ(link.Configure({.baudRate = 115200}), KrResult::Code::NotSupported);

  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
}

TEST_F(BridgeLinkTest, State_SaysWhichSideIsWaitedFor) {
  BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);
  SocketEnd& end = Run(link);

  end.Lose();
  EXPECT_TRUE(Await([&] { return link.GetState() == KrSerialBridgeState::WaitingForPort; }));
  end.Restore();
  EXPECT_TRUE(Await([&] { return link.GetState() == KrSerialBridgeState::Running; }));
  line->Lose();
  EXPECT_TRUE(Await([&] { return link.GetState() == KrSerialBridgeState::WaitingForDevice; }));

  EXPECT_FALSE(link.GetStateText().IsEmpty());
}

TEST_F(BridgeLinkTest, OfNoPort_OpensNoneAndReadsNone) {
  BridgeLink link(adapter, kNoDeviceSerial, counters);

  Run(link);

  EXPECT_EQ(line->CountOpenings(), 0);
  EXPECT_EQ(link.GetSpeed().Get(), 0U);
  EXPECT_EQ(link.GetState(), KrSerialBridgeState::Running);
}

TEST_F(BridgeLinkTest, OfAPortThatTheDeviceLacksOrAnotherHas_DoesNotRun) {
  BridgeLink lacking(adapter, KrDeviceSerial::Bulk3, counters);
  BridgeLink first(adapter, KrDeviceSerial::Serial0, counters);
  Run(first);
  BridgeLink second(adapter, KrDeviceSerial::Serial0, counters);

  EXPECT_EQ(lacking.Run(std::make_unique<SocketEnd>(), {}), KrResult::Code::NotSupported);
  EXPECT_EQ(second.Run(std::make_unique<SocketEnd>(), {}), KrResult::Code::Busy);
}

TEST_F(BridgeLinkTest, AnEndWhileTheDeviceIsAsked_StopsTheBytesFirstAndAsksNothingMore) {
  auto link = std::make_unique<BridgeLink>(adapter, KrDeviceSerial::Serial0, counters);
  SocketEnd& end = Run(*link);
  adapter.Hold();
  ASSERT_TRUE(Await([&] { return adapter.CountHeld() == 1; }));
  ASSERT_TRUE(Await([&] { return line->CountCalls() == 1; })) << "The line is read.";

  std::future<void> ending = std::async(std::launch::async, [&] { link.reset(); });

  EXPECT_TRUE(Await([&] { return line->CountCalls() == 0; })) << "While the device does not answer.";
  EXPECT_EQ(end.Ask(19200), KrResult::Code::Aborted);
  const int questions = adapter.CountQuestions();
  adapter.Release();
  ending.get();
  EXPECT_EQ(adapter.CountQuestions(), questions);
  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
}

TEST_F(BridgeLinkTest, AStop_EndsARunThatWaitsForTheDevicesSelector) {
  adapter.AddLine(static_cast<std::uint32_t>(KrDeviceSerial::Bulk0));
  adapter.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk0"};
  adapter.enumerations["BulkBaudRate"] = {{"Baud9600"}, "Baud9600"};
  const KrBulkSelectorTurn turn(adapter, KrDeviceSerial::Bulk1);
  BridgeLink link(adapter, KrDeviceSerial::Bulk0, counters);
  std::future<KrResult> running =
      std::async(std::launch::async, [&] { return link.Run(std::make_unique<SocketEnd>(), 9600); });

  link.GetStop().request_stop();

  EXPECT_EQ(running.get(), KrResult::Code::Aborted);
}

TEST_F(BridgeLinkTest, AHundredInARow_GiveThePortFreeEachTime) {
  line->SetLoopback(true);

  for (int round = 0; round < 100; ++round) {
    BridgeLink link(adapter, KrDeviceSerial::Serial0, counters);
    const SocketEnd& end = Run(link, round % 2 == 0 ? 9600 : 19200);
    if (round % 3 == 0) {
      end.Send("ping");
      ASSERT_EQ(end.Receive(4), "ping");
    }
  }

  EXPECT_EQ(line->CountOpenings(), 100);
  EXPECT_FALSE(line->IsOpen());
}
