// The serial ports of simulated cameras: who may open them, waiting, loss of the camera, loopback, loss on order.

#include "seriallinefixture.h"

#include "simulation/serial/serialline.h"

#include <gmock/gmock.h>

#include <future>
#include <numeric>

using testing::HasSubstr;

namespace {

constexpr const char* kEcho = "{port: Serial0, behind: echo, paced: false}";
constexpr const char* kNothing = "{port: Serial0, paced: false}";

std::string MakeBytes(std::size_t aSize) {
  std::string bytes(aSize, '\0');
  std::uint32_t state = 1;
  for (char& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<char>(state >> 24);
  }
  return bytes;
}

class EchoTest : public SerialLineTest {
protected:
  EchoTest() : SerialLineTest(MakeSerialLab(kEcho)) {}
};

class OpenEndTest : public SerialLineTest {
protected:
  OpenEndTest() : SerialLineTest(MakeSerialLab(kNothing)) {}

  KrResult Read(krsystem::IByteChannel& aChannel, std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {}) {
    std::uint8_t byte = 0;
    std::size_t read = 99;
    const KrResult result = aChannel.Read(&byte, 1, read, aTimeoutMs, aCancel);
    EXPECT_EQ(read, result.IsOK() ? 1u : 0u);
    return result;
  }
};

} // namespace

TEST_F(SerialLineTest, BuiltInLab_EachCamera_HasItsPorts) {
  struct Row {
    const char* id;
    std::vector<std::uint32_t> ports;
  };
  const Row kRows[] = {{kMonoMAC, {0, 1, 2}},
                       {kColourMAC, {}},
                       {"4B5200000101", {0, 2, 3}},
                       {"4B5200000102", {}},
                       {"02:4b:52:00:78:12", {0, 1, 2}}};

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.id);
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(Open(row.id, device).IsOK());
    std::vector<std::uint32_t> ports;
    for (std::uint32_t number = 0; number < 12; ++number) {
      if (device->GetByteChannel(number))
        ports.push_back(number);
    }

    EXPECT_EQ(ports, row.ports);
  }
}

TEST_F(EchoTest, Echo_OfWhatWasWritten_ComesBack) {
  const Channel channel = OpenPort(0);

  EXPECT_TRUE(Write(*channel, "hello").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 5), "hello");
}

TEST_F(EchoTest, Echo_OfAMegabyte_IsWholeAndInOrder) {
  const Channel channel = OpenPort(0);
  const std::string bytes = MakeBytes(1 << 20);

  auto writing = std::async(std::launch::async, [&] { return Write(*channel, bytes); });
  const std::string read = ReadBytes(*channel, bytes.size());

  EXPECT_TRUE(writing.get().IsOK());
  EXPECT_TRUE(read == bytes) << "the bytes differ";
  EXPECT_EQ(GetCounts(0).sent, bytes.size());
  EXPECT_EQ(GetCounts(0).received, bytes.size());
  EXPECT_EQ(GetCounts(0).overflowed, 0u);
}

TEST_F(EchoTest, Open_WhileAnotherHasIt_IsBusy) {
  const Channel first = OpenPort(0);
  const Channel second = mDevice->GetByteChannel(0);

  EXPECT_EQ(first->Open(), KrResult::Code::Busy);
  EXPECT_EQ(second->Open(), KrResult::Code::Busy);
  second->Close();
  EXPECT_TRUE(Write(*first, "a").IsOK()) << "closing what is closed leaves the other open";
  first->Close();

  EXPECT_TRUE(second->Open().IsOK());
  EXPECT_EQ(Write(*first, "a"), KrResult::Code::WrongState);
}

TEST_F(EchoTest, Open_AfterTheHolderHasGone_Succeeds) {
  OpenPort(0).reset();

  EXPECT_TRUE(mDevice->GetByteChannel(0)->Open().IsOK());
}

TEST_F(EchoTest, Open_Anew_DropsWhatWasReceived) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(Write(*channel, "old").IsOK());
  ASSERT_TRUE(WaitUntil([&] { return GetCounts(0).received == 3; }));

  channel->Close();
  ASSERT_TRUE(channel->Open().IsOK());
  ASSERT_TRUE(Write(*channel, "new").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 3), "new");
}

TEST_F(EchoTest, Open_OfAMonitor_IsDenied) {
  std::unique_ptr<KrDevice> monitor;
  ASSERT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor).IsOK());

  EXPECT_EQ(monitor->GetByteChannel(0)->Open(), KrResult::Code::AccessDenied);
}

TEST_F(OpenEndTest, Read_WithoutBytes_FailsAfterItsLimit) {
  const Channel channel = OpenPort(0);

  EXPECT_EQ(Read(*channel, 0), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Read(*channel, 20), KrResult::Code::TimeLimitExceeded);
}

TEST_F(OpenEndTest, Read_OfAClosedPort_IsWrongState) {
  const Channel channel = OpenPort(0);
  channel->Close();
  channel->Close();

  EXPECT_EQ(Read(*channel, kGenerousLimitMs), KrResult::Code::WrongState);
  EXPECT_EQ(Write(*channel, "a"), KrResult::Code::WrongState);
}

TEST_F(OpenEndTest, Write_WithNothingBehind_GoesNowhere) {
  const Channel channel = OpenPort(0);

  EXPECT_TRUE(Write(*channel, std::string(100000, 'a')).IsOK());

  EXPECT_EQ(Read(*channel, 0), KrResult::Code::TimeLimitExceeded);
}

namespace {

// What ends calls that wait, and with what.
struct EndRow {
  const char* name;
  KrResult::Code code;
  void (*end)(krsystem::IByteChannel& aChannel, krtransport::SimulationTransport& aLab,
              std::unique_ptr<KrDevice>& aDevice, std::stop_source& aCancel);
};

const EndRow kEnds[] = {
    {"closing", KrResult::Code::Aborted, [](auto& aChannel, auto&, auto&, auto&) { aChannel.Close(); }},
    {"cancelling", KrResult::Code::Aborted, [](auto&, auto&, auto&, auto& aCancel) { aCancel.request_stop(); }},
    {"loss of the camera", KrResult::Code::ConnectionLost,
     [](auto&, auto& aLab, auto&, auto&) { EXPECT_TRUE(aLab.Lose(kMonoMAC).IsOK()); }},
    {"end of the device", KrResult::Code::ConnectionLost, [](auto&, auto&, auto& aDevice, auto&) { aDevice.reset(); }},
};

void PrintTo(const EndRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

class StandingClock final : public krtransport::ICameraClock {
public:
  std::uint64_t GetNowNs() const override { return 1; }
  bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t,
                 const std::function<bool()>& aIsWoken) override {
    aWake.wait(aLock, aIsWoken);
    return true;
  }
};

// A line on which nothing ever arrives: what is written fills the transmit queue and stays there.
class StandingLineTest : public SerialLineTest {
protected:
  StandingLineTest() : SerialLineTest(MakeSerialLab("{port: Serial0}"), std::make_shared<StandingClock>()) {}
};

class WaitingCallsTest : public StandingLineTest, public testing::WithParamInterface<EndRow> {};

} // namespace

TEST_P(WaitingCallsTest, WaitingCalls_End_AtOnce) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(Write(*channel, std::string(krtransport::SerialLine::kTransmitBytes, 'a')).IsOK()) << "fits the queue";
  std::stop_source cancel;
  std::atomic<int> begun = 0;
  std::size_t written = 99;
  auto reading = std::async(std::launch::async, [&] {
    std::uint8_t byte = 0;
    std::size_t read = 0;
    ++begun;
    return channel->Read(&byte, 1, read, kGenerousLimitMs, cancel.get_token());
  });
  auto writing = std::async(std::launch::async, [&] {
    const std::uint8_t byte = 0;
    ++begun;
    return channel->Write(&byte, 1, written, kGenerousLimitMs, cancel.get_token());
  });
  ASSERT_TRUE(WaitUntil([&] { return begun == 2; }));

  GetParam().end(*channel, *mLab, mDevice, cancel);

  // A call that begins after the port was closed finds it closed.
  const auto expected = [](const KrResult& aResult) {
    return aResult == GetParam().code || (GetParam().name == kEnds[0].name && aResult == KrResult::Code::WrongState);
  };
  EXPECT_PRED1(expected, reading.get());
  EXPECT_PRED1(expected, writing.get());
  EXPECT_EQ(written, 0u);
}

INSTANTIATE_TEST_SUITE_P(Ends, WaitingCallsTest, testing::ValuesIn(kEnds));

TEST_F(StandingLineTest, Write_IntoAFullQueue_TakesWhatFitsUntilItsLimit) {
  const Channel channel = OpenPort(0);
  const std::vector<std::uint8_t> bytes(5000);
  std::size_t written = 0;

  EXPECT_EQ(channel->Write(bytes.data(), bytes.size(), written, 10), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(written, krtransport::SerialLine::kTransmitBytes);
}

TEST_F(EchoTest, Channel_AfterTheLossOfItsCamera_StaysLost) {
  const Channel lost = OpenPort(0);
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_EQ(Write(*lost, "a"), KrResult::Code::ConnectionLost);
  lost->Close();
  EXPECT_EQ(lost->Open(), KrResult::Code::ConnectionLost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_EQ(lost->Open(), KrResult::Code::ConnectionLost) << "the device has to be opened anew";
}

TEST_F(EchoTest, Port_OfACameraThatIsBack_IsOpenedAnewWhileTheLostChannelIsStillHeld) {
  const Channel lost = OpenPort(0);
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  mDevice.reset();

  const Channel channel = OpenPort(0);
  lost->Close();

  EXPECT_TRUE(Write(*channel, "again").IsOK());
  EXPECT_EQ(ReadBytes(*channel, 5), "again");
}

TEST_F(OpenEndTest, Loopback_SwitchedOn_BringsBackWhatIsWritten) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(GetArray().GetBoolean("Uart0Loopback")->SetValue(true).IsOK());

  EXPECT_TRUE(Write(*channel, "loop").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 4), "loop");
}

TEST_F(EchoTest, Loopback_SwitchedOn_SendsNothingToWhatIsBehind) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(GetArray().GetBoolean("Uart0Loopback")->SetValue(true).IsOK());
  ASSERT_TRUE(Write(*channel, "loop").IsOK());
  ASSERT_EQ(ReadBytes(*channel, 4), "loop");

  ASSERT_TRUE(GetArray().GetBoolean("Uart0Loopback")->SetValue(false).IsOK());
  ASSERT_TRUE(Write(*channel, "echo").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 4), "echo") << "the echo has heard nothing of the loop";
}

TEST_F(OpenEndTest, Loopback_OfAMegabyte_IsWholeAndInOrder) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(GetArray().GetBoolean("Uart0Loopback")->SetValue(true).IsOK());
  const std::string bytes = MakeBytes(1 << 20);

  auto writing = std::async(std::launch::async, [&] { return Write(*channel, bytes); });

  EXPECT_TRUE(ReadBytes(*channel, bytes.size()) == bytes) << "the bytes differ";
  EXPECT_TRUE(writing.get().IsOK());
}

TEST_F(EchoTest, LoseSerialBytes_EveryThird_LosesThatMany) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->LoseSerialBytes(0, KrSerialDirection::Received, 3).IsOK());

  ASSERT_TRUE(Write(*channel, "abcdefgh").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 6), "abdegh");
  EXPECT_EQ(GetCounts(0).lostReceived, 2u);
  EXPECT_EQ(GetCounts(0).received, 6u);
}

TEST_F(EchoTest, LoseNextSerialBytes_OfWhatIsSent_NeverReachTheEcho) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->LoseNextSerialBytes(0, KrSerialDirection::Sent, 2).IsOK());

  ASSERT_TRUE(Write(*channel, "abcd").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 2), "cd");
  EXPECT_EQ(GetCounts(0).sent, 4u);
  EXPECT_EQ(GetCounts(0).lostSent, 2u);
  EXPECT_EQ(GetCounts(0).lostReceived, 0u);
}

TEST_F(EchoTest, RepeatSerialBytes_InBothDirections_LetsThemComeTwice) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->RepeatSerialBytes(0, KrSerialDirection::Sent, 3).IsOK());
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->RepeatNextSerialBytes(0, KrSerialDirection::Received, 1).IsOK());

  ASSERT_TRUE(Write(*channel, "abcd").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 6), "aabccd");
  EXPECT_EQ(GetCounts(0).sent, 4u);
  EXPECT_EQ(GetCounts(0).repeatedSent, 1u);
  EXPECT_EQ(GetCounts(0).repeatedReceived, 1u);
  EXPECT_EQ(GetCounts(0).received, 6u);
}

TEST_F(EchoTest, RepeatSerialBytes_OfEveryByteOfAMegabyte_LosesNone) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->RepeatSerialBytes(0, KrSerialDirection::Sent, 1).IsOK());
  const std::string bytes = MakeBytes(1 << 20);
  std::string expected;
  for (const char byte : bytes)
    expected.append(2, byte);

  auto writing = std::async(std::launch::async, [&] { return Write(*channel, bytes); });

  EXPECT_TRUE(ReadBytes(*channel, expected.size()) == expected) << "the bytes differ";
  EXPECT_TRUE(writing.get().IsOK());
}

TEST_F(EchoTest, CorruptSerialBytes_InBothDirections_ChangesOneBit) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->CorruptSerialBytes(0, KrSerialDirection::Received, 2).IsOK());
  ASSERT_TRUE(mLab->GetFaults(kMonoMAC)->CorruptNextSerialBytes(0, KrSerialDirection::Sent, 1).IsOK());

  ASSERT_TRUE(Write(*channel, "abcd").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 4), "qrct");
  EXPECT_EQ(GetCounts(0).corruptedReceived, 2u);
  EXPECT_EQ(GetCounts(0).corruptedSent, 1u);
}

TEST_F(EchoTest, EndSerialFaults_AfterOrders_LosesNoMore) {
  const Channel channel = OpenPort(0);
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  ASSERT_TRUE(faults->LoseSerialBytes(0, KrSerialDirection::Sent, 2).IsOK());
  ASSERT_TRUE(faults->LoseNextSerialBytes(0, KrSerialDirection::Received, 5).IsOK());
  ASSERT_TRUE(faults->RepeatSerialBytes(0, KrSerialDirection::Sent, 1).IsOK());
  ASSERT_TRUE(faults->CorruptNextSerialBytes(0, KrSerialDirection::Received, 5).IsOK());
  ASSERT_TRUE(faults->SilenceSerialPort(0, true).IsOK());

  faults->EndSerialFaults();
  ASSERT_TRUE(Write(*channel, "abcd").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 4), "abcd");
}

TEST_F(EchoTest, SerialOrders_ForAPortThatIsNotThere_AreNotFound) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  KrSimulatedSerialCounts counts;

  EXPECT_EQ(faults->LoseSerialBytes(1, KrSerialDirection::Sent, 1), KrResult::Code::NotFound);
  EXPECT_EQ(faults->LoseNextSerialBytes(10, KrSerialDirection::Sent, 1), KrResult::Code::NotFound);
  EXPECT_EQ(faults->RepeatSerialBytes(1, KrSerialDirection::Sent, 1), KrResult::Code::NotFound);
  EXPECT_EQ(faults->CorruptNextSerialBytes(1, KrSerialDirection::Sent, 1), KrResult::Code::NotFound);
  EXPECT_EQ(faults->SilenceSerialPort(1, true), KrResult::Code::NotFound);
  EXPECT_EQ(faults->GetSerialCounts(2, counts), KrResult::Code::NotFound);
}

namespace {

class LossyLabTest : public SerialLineTest {
protected:
  LossyLabTest()
      : SerialLineTest(MakeSerialLab("{port: Bulk3, behind: echo, paced: false, lostSent: {every: 1000},"
                                     " lostReceived: {next: 1}}")) {}
};

// Nobody reads while this line sends: it loses what does not fit.
class OverflowTest : public SerialLineTest {
protected:
  OverflowTest() : SerialLineTest(MakeSerialLab("{port: Serial0, behind: echo, paced: false, flowControl: false}")) {}
};

} // namespace

TEST_F(LossyLabTest, LabsLoss_OfEveryThousandthByte_IsExact) {
  const Channel channel = OpenPort(5);
  const std::string bytes = MakeBytes(10000);
  std::string expected;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if ((i + 1) % 1000 != 0)
      expected += bytes[i];
  }
  expected.erase(0, 1);

  ASSERT_TRUE(Write(*channel, bytes).IsOK());

  EXPECT_TRUE(ReadBytes(*channel, expected.size()) == expected) << "the bytes differ";
  EXPECT_EQ(GetCounts(5).lostSent, 10u);
  EXPECT_EQ(GetCounts(5).lostReceived, 1u);
}

TEST_F(OverflowTest, ReceiveQueue_ThatNobodyReads_LosesAndCountsWhatOverflows) {
  const Channel channel = OpenPort(0);
  constexpr std::size_t kMore = 5000;
  const std::string bytes = MakeBytes(krtransport::SerialLine::kReceiveBytes + kMore);

  ASSERT_TRUE(Write(*channel, bytes).IsOK());
  ASSERT_TRUE(WaitUntil([&] { return GetCounts(0).overflowed == kMore; }));

  EXPECT_TRUE(ReadWaiting(*channel) == bytes.substr(0, krtransport::SerialLine::kReceiveBytes)) << "the bytes differ";
}

TEST_F(EchoTest, ReceiveQueue_ThatNobodyReads_HoldsUpTheLineUntilItIsRead) {
  const Channel channel = OpenPort(0);
  const std::string bytes = MakeBytes(60000);
  auto writing = std::async(std::launch::async, [&] { return Write(*channel, bytes); });
  ASSERT_TRUE(WaitUntil([&] { return GetCounts(0).received == krtransport::SerialLine::kReceiveBytes; }));

  EXPECT_TRUE(ReadBytes(*channel, bytes.size()) == bytes) << "the bytes differ";

  EXPECT_TRUE(writing.get().IsOK());
  EXPECT_EQ(GetCounts(0).overflowed, 0u);
}
