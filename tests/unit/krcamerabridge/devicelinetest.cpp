#include "line/deviceline.h"

#include "await.h"
#include "serialadapter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <string>

namespace krcamerabridge {
namespace {

const std::uint32_t kGenerousMs = krtest::GetGenerousMs();

// A port with two speeds, set without a device.
class TwoSpeeds final : public ILineSpeed {
public:
  explicit TwoSpeeds(std::uint32_t& aRate) : mRate(aRate) {}

  KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates) override {
    aBaudRates = {9600, 115200};
    return {};
  }
  KrResult Get(std::uint32_t& aBaudRate) override {
    aBaudRate = mRate;
    return {};
  }
  KrResult Set(std::uint32_t aBaudRate) override {
    if (aBaudRate != 9600 && aBaudRate != 115200)
      return KrResult(KrResult::Code::NotSupported, "There is no such rate.");
    mRate = aBaudRate;
    return {};
  }

private:
  std::uint32_t& mRate;
};

class OpenLine : public testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(line.Open(adapter, KrDeviceSerial::Serial0).IsOK()); }

  KrResult Write(const std::string& aText, std::uint32_t aTimeoutMs = kGenerousMs,
                 const std::stop_token& aCancel = {}) {
    return line.Write(reinterpret_cast<const std::uint8_t*>(aText.data()), aText.size(), aTimeoutMs, aCancel);
  }
  KrResult Read(std::string& aText, std::uint32_t aTimeoutMs = kGenerousMs, const std::stop_token& aCancel = {}) {
    aText.assign(64, '\0');
    std::size_t read = 0;
    KrResult result = line.Read(reinterpret_cast<std::uint8_t*>(aText.data()), aText.size(), read, aTimeoutMs, aCancel);
    aText.resize(read);
    return result;
  }

  krtest::SerialAdapter adapter;
  std::shared_ptr<krtest::SerialLine> far = adapter.AddLine(0);
  std::uint32_t rate = 9600;
  DeviceLine line{std::make_unique<TwoSpeeds>(rate)};
};

TEST_F(OpenLine, Counters_TellWhatThePortTookAndGave) {
  far->Receive("abc");
  std::string text;

  ASSERT_TRUE(Write("12345").IsOK());
  ASSERT_TRUE(Read(text).IsOK());

  EXPECT_EQ(text, "abc");
  EXPECT_EQ(far->GetSent(), "12345");
  EXPECT_EQ(line.GetBytesSent(), 5u);
  EXPECT_EQ(line.GetBytesReceived(), 3u);

  line.ResetStatistics();

  EXPECT_EQ(line.GetBytesSent(), 0u);
  EXPECT_EQ(line.GetBytesReceived(), 0u);
}

TEST_F(OpenLine, Closed_CanBeOpenedAgainAndGoesOnCounting) {
  ASSERT_TRUE(Write("12345").IsOK());

  line.Close();

  EXPECT_FALSE(far->IsOpen());
  EXPECT_EQ(Write("x"), KrResult::Code::WrongState);
  ASSERT_TRUE(line.Open(adapter, KrDeviceSerial::Serial0).IsOK());
  ASSERT_TRUE(Write("678").IsOK());
  EXPECT_EQ(line.GetBytesSent(), 8u);
}

TEST_F(OpenLine, Write_ToALineThatTakesNoMore_EndsInTimeAndCountsWhatItTook) {
  far->SetRoom(4);

  const KrResult result = Write("12345678", 1);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(line.GetBytesSent(), 4u);
}

TEST_F(OpenLine, StopOfAToken_EndsAWaitingReadAndLeavesTheLineUsable) {
  std::stop_source stop;
  auto reading = std::async(std::launch::async, [&] {
    std::string text;
    return Read(text, kGenerousMs, stop.get_token());
  });

  stop.request_stop();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  far->Receive("x");
  std::string text;
  EXPECT_TRUE(Read(text).IsOK());
  EXPECT_EQ(text, "x");
}

TEST_F(OpenLine, StopOfAToken_EndsAWaitingWrite) {
  far->SetRoom(0);
  std::stop_source stop;
  auto writing = std::async(std::launch::async, [&] { return Write("x", kGenerousMs, stop.get_token()); });

  stop.request_stop();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
}

TEST_F(OpenLine, DropReceived_LeavesNothingToRead) {
  far->Receive(std::string(10000, 'x'));

  line.DropReceived();

  std::string text;
  EXPECT_EQ(Read(text, 0), KrResult::Code::TimeLimitExceeded);
}

TEST_F(OpenLine, LossOfTheDevice_IsConnectionLost) {
  far->Lose();

  std::string text;
  EXPECT_EQ(Read(text), KrResult::Code::ConnectionLost);
  EXPECT_EQ(Write("x"), KrResult::Code::ConnectionLost);
}

TEST_F(OpenLine, BaudRate_IsThatOfThePort) {
  EXPECT_EQ(line.GetSupportedBaudRates(), (std::vector<std::uint32_t>{9600, 115200}));
  EXPECT_EQ(line.GetBaudRate(), 9600u);

  EXPECT_TRUE(line.SetBaudRate(115200).IsOK());
  EXPECT_EQ(line.SetBaudRate(50), KrResult::Code::NotSupported);

  EXPECT_EQ(line.GetBaudRate(), 115200u);
}

TEST(DeviceLine, WithoutSpeed_HasNoRatesAndCannotBeSet) {
  DeviceLine line(nullptr);

  EXPECT_TRUE(line.GetSupportedBaudRates().empty());
  EXPECT_EQ(line.GetBaudRate(), 0u);
  EXPECT_EQ(line.SetBaudRate(9600), KrResult::Code::NotSupported);
}

TEST(DeviceLine, Open_OfAPortThatTheDeviceLacks_IsNotSupported) {
  krtest::SerialAdapter adapter;
  DeviceLine line(nullptr);

  EXPECT_EQ(line.Open(adapter, KrDeviceSerial::Serial1), KrResult::Code::NotSupported);
}

} // namespace
} // namespace krcamerabridge
