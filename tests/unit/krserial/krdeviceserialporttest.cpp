#include "krserial/krdeviceserialport.h"

#include "await.h"
#include "krbase/krlogger.h"
#include "serialadapter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using krtest::SerialAdapter;
using krtest::SerialLine;

const std::uint32_t kGenerousMs = krtest::GetGenerousMs();

const std::uint8_t* Bytes(const std::string& aText) {
  return reinterpret_cast<const std::uint8_t*>(aText.data());
}

// A port of a device with one line, open.
class OpenPort : public testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial0).IsOK()); }

  KrResult Write(const std::string& aText, std::uint32_t& aWritten) {
    return port.Write(Bytes(aText), static_cast<std::uint32_t>(aText.size()), aWritten);
  }
  KrResult Read(std::string& aText, std::uint32_t aTimeoutMs, std::uint32_t aSize = 64) {
    aText.assign(aSize, '\0');
    std::uint32_t read = 0;
    KrResult result = port.Read(reinterpret_cast<std::uint8_t*>(aText.data()), aSize, read, aTimeoutMs);
    aText.resize(read);
    return result;
  }

  SerialAdapter adapter;
  std::shared_ptr<SerialLine> line = adapter.AddLine(0);
  KrDeviceSerialPort port;
};

TEST(KrDeviceSerialPort, IsSupported_IsTrueForTheLinesOfTheDeviceAlone) {
  SerialAdapter adapter;
  adapter.AddLine(0);
  adapter.AddLine(2);

  std::vector<std::string> supported;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(&adapter, port))
      supported.push_back(GetPortName(port).ToUtf8());

  EXPECT_EQ(supported, (std::vector<std::string>{"Serial0", "Bulk0"}));
}

TEST(KrDeviceSerialPort, IsSupported_WithoutAdapterOrPort_IsFalse) {
  SerialAdapter adapter;
  for (std::uint32_t number : {0U, 10U, 0xFFFFFFFFU})
    adapter.AddLine(number);

  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(nullptr, KrDeviceSerial::Serial0));
  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(&adapter, KrDeviceSerial::Invalid));
  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(&adapter, static_cast<KrDeviceSerial>(10)));
}

TEST(KrDeviceSerialPort, Open_ForAPortThatTheDeviceLacks_IsCode26) {
  SerialAdapter adapter;
  adapter.AddLine(0);
  KrDeviceSerialPort port;

  const KrResult result = port.Open(&adapter, KrDeviceSerial::Bulk5);

  EXPECT_EQ(result.GetCodeNumber(), 26U);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  EXPECT_FALSE(port.IsOpened());
}

TEST(KrDeviceSerialPort, Open_WithoutAdapter_IsInvalidInput) {
  KrDeviceSerialPort port;

  EXPECT_EQ(port.Open(nullptr, KrDeviceSerial::Serial0), KrResult::Code::InvalidInput);
}

TEST(KrDeviceSerialPort, Calls_WhileNothingIsOpen_AreWrongState) {
  KrDeviceSerialPort port;
  std::uint8_t byte = 0;
  std::uint32_t count = 7;

  EXPECT_EQ(port.Read(&byte, 1, count, 0), KrResult::Code::WrongState);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(port.Write(&byte, 1, count), KrResult::Code::WrongState);
  EXPECT_TRUE(port.Close().IsOK());
}

TEST_F(OpenPort, Open_OfAnOpenPort_IsWrongStateAndLeavesItOpen) {
  adapter.AddLine(1);

  EXPECT_EQ(port.Open(&adapter, KrDeviceSerial::Serial1), KrResult::Code::WrongState);

  EXPECT_TRUE(port.IsOpened());
  EXPECT_TRUE(line->IsOpen());
}

TEST_F(OpenPort, Open_OfALineThatAnotherPortHas_IsBusy) {
  KrDeviceSerialPort other;

  EXPECT_EQ(other.Open(&adapter, KrDeviceSerial::Serial0), KrResult::Code::Busy);

  EXPECT_FALSE(other.IsOpened());
  EXPECT_TRUE(other.Close().IsOK());
  EXPECT_TRUE(line->IsOpen());
}

TEST_F(OpenPort, Destruction_ClosesTheLine) {
  const std::shared_ptr<SerialLine> second = adapter.AddLine(1);
  {
    KrDeviceSerialPort other;
    ASSERT_TRUE(other.Open(&adapter, KrDeviceSerial::Serial1).IsOK());
    ASSERT_TRUE(second->IsOpen());
  }

  EXPECT_FALSE(second->IsOpen());
}

TEST_F(OpenPort, Write_OfAMessage_IsOneCallOfTheLine) {
  std::uint32_t written = 0;

  const KrResult result = Write("*IDN?\r", written);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(written, 6U);
  EXPECT_EQ(line->GetSent(), "*IDN?\r");
  EXPECT_EQ(line->GetWrites(), std::vector<std::size_t>{6});
}

TEST_F(OpenPort, Write_OfNothing_IsOK) {
  std::uint32_t written = 7;

  EXPECT_TRUE(port.Write(nullptr, 0, written).IsOK());
  EXPECT_EQ(written, 0U);
}

TEST_F(OpenPort, Write_OfNull_IsInvalidInput) {
  std::uint32_t written = 7;

  EXPECT_EQ(port.Write(nullptr, 1, written), KrResult::Code::InvalidInput);
  EXPECT_EQ(written, 0U);
}

TEST_F(OpenPort, Read_TakesWhatCameUpToItsSize) {
  line->Receive("abcdef");
  std::string first;
  std::string second;

  ASSERT_TRUE(Read(first, 0, 4).IsOK());
  ASSERT_TRUE(Read(second, 0, 4).IsOK());

  EXPECT_EQ(first, "abcd");
  EXPECT_EQ(second, "ef");
}

TEST_F(OpenPort, Read_WithoutData_IsCode30) {
  std::string text;

  EXPECT_EQ(Read(text, 0).GetCodeNumber(), 30U);
  EXPECT_EQ(Read(text, 1).GetCodeNumber(), 30U);
}

TEST_F(OpenPort, Read_WithoutRoom_IsInvalidInput) {
  std::uint32_t read = 7;
  std::uint8_t byte = 0;

  EXPECT_EQ(port.Read(nullptr, 1, read, 0), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(&byte, 0, read, 0), KrResult::Code::InvalidInput);
  EXPECT_EQ(read, 0U);
}

TEST_F(OpenPort, Write_ToAFullLine_WaitsUntilAllIsTaken) {
  line->SetRoom(2);
  std::uint32_t written = 0;
  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write("abcd", written); });
  EXPECT_TRUE(krtest::Await([&] { return line->GetSent() == "ab"; }));

  line->SetRoom(100);

  EXPECT_TRUE(writing.get().IsOK());
  EXPECT_EQ(written, 4U);
  EXPECT_EQ(line->GetSent(), "abcd");
}

TEST_F(OpenPort, Cancel_EndsAWriteThatWaits_WithWhatWasTaken) {
  line->SetRoom(2);
  std::uint32_t written = 0;
  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write("abcd", written); });
  EXPECT_TRUE(krtest::Await([&] { return line->GetSent() == "ab"; }));

  port.Cancel();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_EQ(written, 2U);
}

TEST_F(OpenPort, Cancel_EndsAReadThatWaits) {
  std::string text;
  std::future<KrResult> reading = std::async(std::launch::async, [&] { return Read(text, kGenerousMs); });
  EXPECT_TRUE(krtest::Await([&] { return line->CountReads() == 1; }));

  port.Cancel();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
}

TEST_F(OpenPort, Cancel_EndsLaterCallsUntilTheNextOpen) {
  line->Receive("a");
  std::string text;
  std::uint32_t written = 0;

  port.Cancel();

  EXPECT_EQ(Read(text, kGenerousMs), KrResult::Code::Aborted);
  EXPECT_EQ(Write("a", written), KrResult::Code::Aborted);
  EXPECT_TRUE(port.IsOpened());
  ASSERT_TRUE(port.Close().IsOK());
  ASSERT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial0).IsOK());
  EXPECT_TRUE(Write("b", written).IsOK());
  EXPECT_EQ(line->GetSent(), "b");
}

TEST_F(OpenPort, CancelOfAWrite_EndsItAlone) {
  line->SetRoom(1);
  std::stop_source cancel;
  std::uint32_t written = 0;
  std::future<KrResult> writing =
      std::async(std::launch::async, [&] { return port.Write(Bytes("file"), 4, written, cancel.get_token()); });
  EXPECT_TRUE(krtest::Await([&] { return line->GetSent() == "f"; }));

  cancel.request_stop();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_EQ(written, 1U);
  line->SetRoom(100);
  EXPECT_TRUE(Write("!", written).IsOK());
  EXPECT_EQ(line->GetSent(), "f!");
}

TEST_F(OpenPort, Write_WithALimit_EndsWithCode30AndSaysWhatWasTaken) {
  line->SetRoom(2);
  std::uint32_t written = 0;

  const KrResult result = port.Write(Bytes("abc"), 3, written, 1, {});

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(written, 2u);
}

TEST_F(OpenPort, CancelOfARead_EndsItAlone) {
  std::stop_source stop;
  auto reading = std::async(std::launch::async, [&] {
    std::uint8_t byte = 0;
    std::uint32_t read = 0;
    return port.Read(&byte, 1, read, kGenerousMs, stop.get_token());
  });
  EXPECT_TRUE(krtest::Await([&] { return line->CountReads() == 1; }));

  stop.request_stop();

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  line->Receive("a");
  std::string text;
  EXPECT_TRUE(Read(text, kGenerousMs).IsOK());
  EXPECT_EQ(text, "a");
}

TEST_F(OpenPort, CancelOfAWrite_EndsItsWaitForTheOneBeforeIt) {
  line->SetRoom(0);
  std::uint32_t firstWritten = 0;
  std::future<KrResult> first = std::async(std::launch::async, [&] { return Write("first", firstWritten); });
  EXPECT_TRUE(krtest::Await([&] { return line->GetWrites().size() == 1; }));
  std::stop_source cancel;
  std::uint32_t written = 0;
  std::future<KrResult> second =
      std::async(std::launch::async, [&] { return port.Write(Bytes("second"), 6, written, cancel.get_token()); });

  cancel.request_stop();

  EXPECT_EQ(second.get(), KrResult::Code::Aborted);
  line->SetRoom(100);
  EXPECT_TRUE(first.get().IsOK());
  EXPECT_EQ(line->GetSent(), "first");
}

TEST_F(OpenPort, Writes_OfSeveralThreads_DoNotMix) {
  constexpr int kThreads = 4;
  constexpr int kMessages = 50;
  std::vector<std::thread> writers;

  for (int i = 0; i < kThreads; ++i)
    writers.emplace_back([this, i] {
      for (int j = 0; j < kMessages; ++j) {
        std::uint32_t written = 0;
        EXPECT_TRUE(Write(std::string(16, static_cast<char>('a' + i)), written).IsOK());
      }
    });
  for (std::thread& writer : writers)
    writer.join();

  const std::string sent = line->GetSent();
  ASSERT_EQ(sent.size(), std::size_t{kThreads * kMessages * 16});
  for (std::size_t i = 0; i < sent.size(); i += 16)
    EXPECT_EQ(sent.substr(i, 16), std::string(16, sent[i])) << i;
}

TEST_F(OpenPort, Close_EndsReadAndWriteThatWait) {
  line->SetRoom(0);
  std::string text;
  std::uint32_t written = 0;
  std::future<KrResult> reading = std::async(std::launch::async, [&] { return Read(text, kGenerousMs); });
  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write("a", written); });
  EXPECT_TRUE(krtest::Await([&] { return line->CountReads() == 1 && line->GetWrites().size() == 1; }));

  ASSERT_TRUE(port.Close().IsOK());

  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_FALSE(port.IsOpened());
  EXPECT_FALSE(line->IsOpen());
}

TEST_F(OpenPort, Loss_EndsCallsWithConnectionLostAndLeavesThePortOpen) {
  std::string text;
  std::uint32_t written = 0;
  std::future<KrResult> reading = std::async(std::launch::async, [&] { return Read(text, kGenerousMs); });
  EXPECT_TRUE(krtest::Await([&] { return line->CountReads() == 1; }));

  line->Lose();

  EXPECT_EQ(reading.get(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(Write("a", written), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(port.IsOpened());
  EXPECT_TRUE(port.Close().IsOK());
  EXPECT_FALSE(port.IsOpened());
}

TEST_F(OpenPort, ReadWriteAndClose_OfThreeThreads_AllEnd) {
  line->SetLoopback(true);

  for (int round = 0; round < 50; ++round) {
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
      std::string text;
      while (!isOver)
        if (const KrResult result = Read(text, kGenerousMs); !result.IsOK()) {
          EXPECT_TRUE(result == KrResult::Code::Aborted || result == KrResult::Code::WrongState);
        }
    });
    std::thread writer([&] {
      std::uint32_t written = 0;
      while (!isOver)
        if (const KrResult result = Write("some bytes", written); !result.IsOK()) {
          EXPECT_TRUE(result == KrResult::Code::Aborted || result == KrResult::Code::WrongState);
        }
    });
    std::thread closer([&] { EXPECT_TRUE(port.Close().IsOK()); });
    closer.join();
    isOver = true;
    reader.join();
    writer.join();
    EXPECT_FALSE(line->IsOpen());
    ASSERT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial0).IsOK());
  }
}

// A line, or a device, of an application that is not as it should be.
class FaultyLine : public krsystem::IByteChannel {
public:
  explicit FaultyLine(bool aThrows) : mThrows(aThrows) {}

  KrResult Open() override {
    opened = true;
    return {};
  }
  void Close() override {
    if (mThrows)
      throw std::runtime_error("close");
  }
  KrResult Read(std::uint8_t*, std::size_t aSize, std::size_t& aRead, std::uint32_t, const std::stop_token&) override {
    if (mThrows)
      throw std::runtime_error("read");
    aRead = aSize + 1;
    return {};
  }
  KrResult Write(const std::uint8_t*, std::size_t aSize, std::size_t& aWritten, std::uint32_t,
                 const std::stop_token&) override {
    if (mThrows)
      throw 42;
    aWritten = claimsTooMuch ? aSize + 1 : 0;
    return {};
  }

  bool opened = false;
  bool claimsTooMuch = false;

private:
  const bool mThrows;
};

class FaultyAdapter : public SerialAdapter {
public:
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t) override {
    if (throws)
      throw std::runtime_error("no line today");
    return line;
  }

  bool throws = false;
  std::shared_ptr<FaultyLine> line;
};

TEST(KrDeviceSerialPort, ALineThatThrows_GivesResults) {
  FaultyAdapter adapter;
  adapter.line = std::make_shared<FaultyLine>(true);
  KrDeviceSerialPort port;
  std::uint8_t byte = 0;
  std::uint32_t count = 0;
  const KrLogCapture log;
  ASSERT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial0).IsOK());

  const KrResult read = port.Read(&byte, 1, count, 0);
  const KrResult written = port.Write(&byte, 1, count);

  EXPECT_EQ(read, KrResult::Code::SystemError);
  EXPECT_NE(read.GetDescription().ToUtf8().find("read"), std::string::npos);
  EXPECT_EQ(written, KrResult::Code::SystemError);
  EXPECT_TRUE(port.Close().IsOK());
  EXPECT_FALSE(port.IsOpened());
  EXPECT_EQ(log.GetRecords().size(), 1U);
}

TEST(KrDeviceSerialPort, ALineThatMiscounts_IsAProtocolError) {
  FaultyAdapter adapter;
  adapter.line = std::make_shared<FaultyLine>(false);
  KrDeviceSerialPort port;
  std::uint8_t byte = 0;
  std::uint32_t count = 0;
  ASSERT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial0).IsOK());

  EXPECT_EQ(port.Read(&byte, 1, count, 0), KrResult::Code::ProtocolError);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(port.Write(&byte, 1, count), KrResult::Code::ProtocolError);
  EXPECT_EQ(count, 0U);
  adapter.line->claimsTooMuch = true;
  EXPECT_EQ(port.Write(&byte, 1, count), KrResult::Code::ProtocolError);
  EXPECT_EQ(count, 0U);
}

TEST(KrDeviceSerialPort, AnAdapterThatThrows_HasNoPorts) {
  FaultyAdapter adapter;
  adapter.throws = true;
  KrDeviceSerialPort port;

  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(&adapter, KrDeviceSerial::Serial0));
  EXPECT_EQ(port.Open(&adapter, KrDeviceSerial::Serial0), KrResult::Code::SystemError);
}

TEST(KrDeviceSerialPort, Open_OfALineThatFails_GivesItsFailure) {
  SerialAdapter adapter;
  adapter.AddLine(3)->FailOpening(KrResult(KrResult::Code::TimeLimitExceeded, "No answer."));
  KrDeviceSerialPort port;

  const KrResult result = port.Open(&adapter, KrDeviceSerial::Bulk1);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(result.GetDescription(), KrString("No answer."));
  EXPECT_FALSE(port.IsOpened());
}

} // namespace
