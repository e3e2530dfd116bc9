// What a simulated serial line is made of: its queue, its pace, its order.

#include "simulation/serial/bytequeue.h"
#include "simulation/serial/linefaults.h"
#include "simulation/serial/linepace.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using krtransport::ByteOrder;
using krtransport::ByteQueue;
using krtransport::LinePace;
using testing::ElementsAre;

namespace {

constexpr std::uint64_t kSecondNs = 1000000000;
constexpr std::uint64_t kMillisecondNs = 1000000;

std::size_t Push(ByteQueue& aQueue, const std::string& aText) {
  return aQueue.Push(reinterpret_cast<const std::uint8_t*>(aText.data()), aText.size());
}

std::string Pop(ByteQueue& aQueue, std::size_t aSize) {
  std::string text(aSize, '\0');
  text.resize(aQueue.Pop(reinterpret_cast<std::uint8_t*>(text.data()), aSize));
  return text;
}

// The places, from 1, of the bytes that are lost among so many.
std::vector<int> ListTaken(ByteOrder& aOrder, int aBytes) {
  std::vector<int> lost;
  for (int place = 1; place <= aBytes; ++place) {
    if (aOrder.TakeByte())
      lost.push_back(place);
  }
  return lost;
}

} // namespace

TEST(ByteQueue, Push_BeyondItsRoom_TakesWhatFits) {
  ByteQueue queue(4);

  EXPECT_EQ(Push(queue, "abc"), 3u);
  EXPECT_EQ(Push(queue, "def"), 1u);

  EXPECT_EQ(queue.GetRoom(), 0u);
  EXPECT_EQ(Pop(queue, 10), "abcd");
  EXPECT_TRUE(queue.IsEmpty());
}

TEST(ByteQueue, PushAndPop_AroundItsEnd_KeepTheOrder) {
  ByteQueue queue(5);
  std::string popped;
  std::string pushed;

  for (char letter = 'a'; letter <= 'z'; letter = static_cast<char>(letter + 2)) {
    const std::string pair = {letter, static_cast<char>(letter + 1)};
    pushed += pair;
    ASSERT_EQ(Push(queue, pair), 2u);
    if (queue.GetSize() > 2)
      popped += Pop(queue, 3);
  }
  popped += Pop(queue, 5);

  EXPECT_EQ(popped, pushed);
}

TEST(ByteQueue, PeekAndDrop_LeaveAndTakeTheOldest) {
  ByteQueue queue(8);
  Push(queue, "abcdef");
  std::array<std::uint8_t, 2> bytes = {};

  EXPECT_EQ(queue.Peek(bytes.data(), 2), 2u);
  EXPECT_THAT(bytes, ElementsAre('a', 'b'));
  EXPECT_EQ(queue.Drop(4), 4u);

  EXPECT_EQ(Pop(queue, 8), "ef");
  EXPECT_EQ(queue.Drop(1), 0u);
}

TEST(LinePace, Byte_At9600Baud_TakesItsTenBits) {
  LinePace pace;
  pace.SetRate(9600);

  pace.Begin(kSecondNs);

  EXPECT_EQ(pace.GetNextNs(), kSecondNs + 1041666);
  EXPECT_EQ(pace.GetDue(kSecondNs + 1041665, 100), 0u);
  EXPECT_EQ(pace.GetDue(kSecondNs + 1041666, 100), 1u);
  EXPECT_EQ(pace.GetDue(2 * kSecondNs, 2000), 960u);
  EXPECT_EQ(pace.GetDue(2 * kSecondNs, 7), 7u) << "no more than there are";
}

TEST(LinePace, Rates_OverTenSeconds_KeepTheirSpeed) {
  for (const std::uint32_t rate : {50u, 9600u, 115200u, 3000000u, 12000000u}) {
    LinePace pace;
    pace.SetRate(rate);
    pace.Begin(0);
    std::size_t sum = 0;

    for (std::uint64_t nowNs = 0; nowNs <= 10 * kSecondNs; nowNs += kMillisecondNs) {
      const std::size_t due = pace.GetDue(nowNs, 4096);
      pace.Advance(due);
      sum += due;
    }

    EXPECT_NEAR(static_cast<double>(sum), rate, 1 + rate * 1e-5) << "ten bits a byte, ten seconds";
  }
}

TEST(LinePace, Begin_WhileAByteIsOnItsWay_DoesNotStartItAnew) {
  LinePace pace;
  pace.SetRate(1000);
  pace.Begin(0);

  pace.Begin(5 * kMillisecondNs);
  EXPECT_EQ(pace.GetDue(10 * kMillisecondNs, 2), 1u);
  pace.Pause();

  EXPECT_EQ(pace.GetDue(20 * kMillisecondNs, 2), 0u);
  EXPECT_EQ(pace.GetNextNs(), LinePace::kNever);
}

TEST(LinePace, Hold_OfALineThatCouldNotDeliver_LeavesOneByteDue) {
  LinePace pace;
  pace.SetRate(1000);
  pace.Begin(0);

  pace.Hold(kSecondNs);

  EXPECT_EQ(pace.GetDue(kSecondNs, 50), 1u);
  EXPECT_EQ(pace.GetDue(kSecondNs + 30 * kMillisecondNs, 50), 4u);
}

TEST(LinePace, LineThatIsNotPaced_HasEverythingDueAtOnce) {
  LinePace pace;
  pace.SetRate(0);
  pace.Begin(7);

  EXPECT_EQ(pace.GetDue(7, 4096), 4096u);
  EXPECT_EQ(pace.GetNextNs(), 7u);
}

TEST(LinePace, Due_AfterAYear_IsAllThatWaits) {
  LinePace pace;
  pace.SetRate(12000000);
  pace.Begin(0);

  EXPECT_EQ(pace.GetDue(365 * 86400 * kSecondNs, 4096), 4096u);
}

TEST(ByteOrder, Orders_TakeTheBytesThatTheySay) {
  ByteOrder none;
  ByteOrder every;
  every.SetEvery(3);
  ByteOrder next;
  next.AddNext(2);
  next.AddNext(1);
  ByteOrder both;
  both.AddNext(1);
  both.SetEvery(4);

  EXPECT_THAT(ListTaken(none, 10), ElementsAre());
  EXPECT_THAT(ListTaken(every, 10), ElementsAre(3, 6, 9));
  EXPECT_THAT(ListTaken(next, 10), ElementsAre(1, 2, 3));
  EXPECT_THAT(ListTaken(both, 10), ElementsAre(1, 4, 8));
}

TEST(ByteOrder, SetEvery_OrderedAnew_CountsFromThere) {
  ByteOrder order;
  order.SetEvery(3);
  ASSERT_THAT(ListTaken(order, 2), ElementsAre());

  order.SetEvery(2);
  EXPECT_THAT(ListTaken(order, 4), ElementsAre(2, 4));
  order.SetEvery(0);

  EXPECT_THAT(ListTaken(order, 4), ElementsAre());
}
