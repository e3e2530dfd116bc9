#include "logic/browser/treeitemdata.h"

#include "nodebench.h"
#include "portgate.h"
#include "threadstate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using namespace krgui;

namespace {

const std::string kNodes = "<Integer Name=\"Width\"><pValue>Raw</pValue><Max>100</Max></Integer>"
                           "<Integer Name=\"Gain\"><Value>0</Value></Integer>" +
                           MakeUncachedRegister("Raw", 0);

constexpr int kReadings = 5000;

} // namespace

TEST(NodeThreads, Snapshots_AreEachOfOneReading) {
  NodeBench camera(kNodes);
  const auto node = camera.MakeReadNode("Width");
  std::atomic<int> running = 2;
  const auto refresh = [&] {
    for (int count = 0; count < kReadings; ++count) {
      camera.Poke(0, {static_cast<std::uint8_t>(count % 2 == 0 ? 50 : 200), 0, 0, 0});
      node->Refresh();
    }
    --running;
  };
  int mixed = 0;

  {
    std::jthread automatic(refresh);
    std::jthread polling(refresh);
    while (running > 0) {
      const RowSnapshot snapshot = node->GetSnapshot();
      mixed += snapshot.hasError == (snapshot.value == KrString("200 ")) ? 0 : 1;
      if (node->HasChanged())
        (void)node->GetValue(true);
    }
  }

  EXPECT_EQ(mixed, 0);
}

TEST(NodeThreads, ReadingThatBeganEarlier_DoesNotReplaceALaterOne) {
  NodeBench camera(kNodes);
  const auto node = camera.MakeReadNode("Gain");
  std::atomic<int> others = 0;
  std::atomic<bool> isOver = false;
  int stale = 0;

  {
    std::jthread automatic([&] {
      for (; !isOver; ++others)
        node->Refresh();
    });
    for (int value = 1; others < kReadings || value < kReadings; ++value) {
      EXPECT_TRUE(camera.Integer("Gain").SetValue(value).IsOK());
      node->Refresh();
      stale += GetText(*node) == std::to_string(value) + " " ? 0 : 1;
    }
    isOver = true;
  }

  EXPECT_EQ(stale, 0);
}

TEST(NodeThreads, WhileTheDeviceIsAsked_TheNodeCanBeLookedAtAndChanged) {
  NodeBench camera(kNodes);
  const auto node = camera.MakeReadNode("Width");
  camera.AwaitNotifications();
  PortGate gate;
  gate.CloseAt(camera.port, 0);
  std::jthread reader([&] { node->Refresh(); });
  ASSERT_TRUE(gate.AwaitReached());

  node->SetValueText("7");
  node->SetError("No.");
  node->MarkRedrawPending();
  EXPECT_TRUE(node->HasChanged());
  EXPECT_EQ(node->GetValue(true), KrString("7"));
  EXPECT_FALSE(node->HasChanged());
  EXPECT_EQ(node->GetError(), KrString("No."));
  EXPECT_TRUE(node->GetSnapshot().hasError);
  EXPECT_TRUE(node->HasError());
  EXPECT_TRUE(node->GetAccess().isReadable);
  EXPECT_TRUE(node->GetAccessReason().IsEmpty());
  node->ClearError();

  gate.Open();
  reader.join();
  EXPECT_EQ(GetText(*node), "0 ");
}

TEST(NodeThreads, DestructionDuringANotification_WaitsForItsEnd) {
  NodeBench camera(kNodes);
  PortGate gate;
  // Is called before the node, so that nothing but the node's own reading comes to the gate.
  RecordingSink first([&](KrGenParameter&) { gate.CloseAt(camera.port, 0); });
  first.Listen(*camera.array->Get("Width"));
  auto node = camera.MakeReadNode("Width");
  camera.AwaitNotifications();
  camera.Poke(0, {7, 0, 0, 0});
  ASSERT_TRUE(camera.array->Invalidate("Raw").IsOK());
  ASSERT_TRUE(gate.AwaitReached());

  krtest::CallBeside destruction([&] { node.reset(); });

  EXPECT_TRUE(destruction.Waits()) << "the node reads at this moment";
  gate.Open();
  destruction.Join();
  EXPECT_THAT(camera.TakeMessages(), testing::ElementsAre(Message{kRowChangedMessage, NodeBench::kItem, 0}))
      << "the notification came to its end";
  camera.port.SetFault({});
  camera.AwaitNotifications();
}

TEST(NodeThreads, NodesThatComeAndGo_WhileTheFeatureChanges_AreNeverToldAfterTheirEnd) {
  NodeBench camera(kNodes);
  std::atomic<bool> isOver = false;
  std::atomic<int> writes = 0;
  std::jthread writer([&] {
    for (; !isOver; ++writes)
      EXPECT_TRUE(camera.Integer("Gain").SetValue(writes % 100).IsOK());
  });

  for (int round = 0; round < 500 || writes < 500; ++round) {
    const auto node = camera.MakeReadNode("Gain");
    EXPECT_FALSE(node->HasError());
  }

  isOver = true;
  writer.join();
  for (const Message& message : camera.TakeMessages())
    EXPECT_EQ(message, (Message{kRowChangedMessage, NodeBench::kItem, 0}));
}
