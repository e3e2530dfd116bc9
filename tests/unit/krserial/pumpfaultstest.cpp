// What a bridge does when one of its sides fails, and when it comes back.

#include "hostendreader.h"
#include "krbase/krlogger.h"
#include "pumpfixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <utility>

using krtest::Await;
using krtest::PumpTest;
using testing::HasSubstr;

namespace {

constexpr std::size_t kBlock = krserial::Pump::kBlockSize;

// A line of texts, which cannot carry a zero byte.
class TextLine : public krtest::SerialLine {
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    const std::size_t zero = static_cast<std::size_t>(std::find(aBytes, aBytes + aSize, 0) - aBytes);
    KrResult written;
    if (zero > 0)
      written = SerialLine::Write(aBytes, zero, aWritten, aTimeoutMs, aCancel);
    else
      aWritten = 0;
    return written.IsOK() && zero < aSize ? KrResult(KrResult::Code::InvalidInput, "No zero.") : written;
  }
};

class TextPumpTest : public PumpTest {
protected:
  TextPumpTest() : PumpTest(std::make_shared<TextLine>()) {}
};

// A line that says once, in front of what came, that bytes were lost.
class DamagedLine : public krtest::SerialLine {
public:
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    if (!std::exchange(mHasSaid, true))
      return {KrResult::Code::ProtocolError, "Some bytes were lost."};
    return SerialLine::Read(aBytes, aSize, aRead, aTimeoutMs, aCancel);
  }

private:
  bool mHasSaid = false; // Of the thread that reads.
};

class DamagedPumpTest : public PumpTest {
protected:
  DamagedPumpTest() : PumpTest(std::make_shared<DamagedLine>()) {}
};

} // namespace

TEST_F(PumpTest, ADevicePortThatFailsToRead_IsOpenedAgain) {
  line->FailReading({KrResult::Code::SystemError, "The line is cut."});
  ASSERT_TRUE(Await([&] { return line->CountOpenings() > 1; }));
  ASSERT_TRUE(Await([&] { return status.HasDeviceFailed(); }));

  line->FailReading({});
  ASSERT_TRUE(Await([&] { return !status.HasDeviceFailed() && line->IsOpen(); }));
  end.Send("to the device");
  line->Receive("to the host");

  EXPECT_TRUE(IsSent("to the device"));
  EXPECT_EQ(end.Receive(11), "to the host");
}

TEST_F(PumpTest, ADevicePortThatFailsToWrite_GetsTheRestWhenItIsOpenedAgain) {
  line->FailWriting({KrResult::Code::SystemError, "The line is cut."});
  end.Send("all of it");
  ASSERT_TRUE(Await([&] { return line->CountOpenings() > 1; }));

  line->FailWriting({});

  EXPECT_TRUE(IsSent("all of it"));
  EXPECT_TRUE(Await([&] { return !status.HasDeviceFailed(); }));
}

TEST_F(PumpTest, ADeviceThatIsLost_IsSaidToBe_AndItsBytesWait) {
  line->Lose();
  ASSERT_TRUE(Await([&] { return status.HasDeviceFailed(); }));
  end.Send("for later");

  EXPECT_THAT(status.GetText().ToUtf8(), HasSubstr("Serial0"));
  EXPECT_TRUE(Await([&] { return status.GetText().ToUtf8().find("The device is gone.") != std::string::npos; }));
  EXPECT_EQ(line->GetSent(), "");
  line->Restore();
  EXPECT_TRUE(IsSent("for later"));
}

TEST_F(PumpTest, Destruction_WhileTheDeviceIsLost_Ends) {
  line->Lose();
  ASSERT_TRUE(Await([&] { return status.HasDeviceFailed(); }));

  std::future<void> ending = std::async(std::launch::async, [&] { pump.reset(); });

  EXPECT_EQ(ending.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}

TEST_F(DamagedPumpTest, BytesThatTheDeviceLost_CostNoOthers) {
  line->Receive("the others");

  EXPECT_EQ(end.Receive(10), "the others");
  EXPECT_EQ(line->CountOpenings(), 1);
  EXPECT_FALSE(status.HasDeviceFailed());
}

TEST_F(TextPumpTest, AByteThatTheLineCannotCarry_IsDroppedAlone) {
  const KrLogCapture log;
  const std::string text("\0one\0\0two", 9);

  end.Send(text);

  EXPECT_TRUE(IsSent("onetwo"));
  EXPECT_EQ(log.GetRecords().size(), 1U) << "once, not for each byte";
}

TEST_F(PumpTest, AHostsPortThatIsLost_IsTakenAgain) {
  end.Lose();
  ASSERT_TRUE(Await([&] { return status.IsPortLost(); }));
  EXPECT_THAT(status.GetText().ToUtf8(), HasSubstr("The socket has ended."));

  end.Restore();
  ASSERT_TRUE(Await([&] { return end.CountRecoveries() == 1 && !status.IsPortLost(); }));
  end.Send("to the device");
  line->Receive("to the host");

  EXPECT_TRUE(IsSent("to the device"));
  EXPECT_EQ(end.Receive(11), "to the host");
  EXPECT_EQ(status.GetText(), KrString());
}

TEST_F(PumpTest, WhileTheHostsPortIsLost_TheNewestOfTheDeviceWait) {
  const std::string bytes = MakeMixedBytes(kBlock + 36000, 1);
  end.Lose();
  ASSERT_TRUE(Await([&] { return status.IsPortLost(); }));

  line->Receive(bytes);
  ASSERT_TRUE(Await([&] { return counters.receivedFromDevice == bytes.size(); }));
  end.Restore();
  ASSERT_TRUE(Await([&] { return end.CountRecoveries() == 1 && !status.IsPortLost(); }));

  EXPECT_TRUE(end.Receive(kBlock) == bytes.substr(bytes.size() - kBlock));
}

TEST_F(PumpTest, AHostsPortThatCannotBeWritten_IsTakenAgainThoughReadingWaits) {
  end.FailWriting({KrResult::Code::SystemError, "No more."});

  line->Receive("kept");
  ASSERT_TRUE(Await([&] { return status.IsPortLost(); }));
  end.Restore();

  EXPECT_EQ(end.Receive(4), "kept");
}

TEST_F(PumpTest, AHostsPortThatIsLostWhileTheDeviceIsFull_IsTakenAgain) {
  line->SetRoom(3);
  end.Send("abcdef");
  ASSERT_TRUE(Await([&] { return line->GetSent() == "abc"; }));
  end.Lose();
  line->Receive("x");
  ASSERT_TRUE(Await([&] { return status.IsPortLost(); }));

  end.Restore();
  ASSERT_TRUE(Await([&] { return end.CountRecoveries() == 1 && !status.IsPortLost(); }));
  line->SetRoom(100);

  EXPECT_TRUE(IsSent("abcdef"));
  EXPECT_EQ(end.Receive(1), "x");
}

TEST_F(PumpTest, Destruction_WhileTheHostsPortIsLost_Ends) {
  end.Lose();
  ASSERT_TRUE(Await([&] { return status.IsPortLost(); }));

  std::future<void> ending = std::async(std::launch::async, [&] { pump.reset(); });

  EXPECT_EQ(ending.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}
