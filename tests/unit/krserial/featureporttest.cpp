#include "krserial/krdeviceserialport.h"

#include "await.h"
#include "fakebytechannel.h"
#include "featureportfixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

namespace {

using krtest::FeatureDevice;
using krtest::FeaturePort;
using krtest::FeaturePortTest;
using krtest::kGenerousMs;
using krtest::kUartMap;
using krtest::MakeFileAccess;
using krtest::MakeUartFeatures;
using krtest::Receive;

constexpr const char* kQueueMap = R"(serialFeatures:
  - name: queue
    way: registers
    ports: {Serial1: ~}
    receivedCount: UartReceived
    receiveData: UartReceiveData
    takenCommand: UartTaken
    transmitData: UartTransmitData
    transmitLength: UartLength
    transmitCommand: UartTransmit
)";

const std::string kEveryByte = [] {
  std::string bytes;
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i);
  return bytes;
}();

TEST_F(FeaturePortTest, ACameraWithFiles_OffersThem) {
  FeatureDevice device(MakeFileAccess());

  EXPECT_EQ(ListPorts(device.adapter.get()), (std::vector<std::string>{"Serial0", "Serial1"}));
}

TEST_F(FeaturePortTest, ACameraWithoutSuchFeatures_OffersNone) {
  FeatureDevice device(MakeIntReg("Width", "0x1000"));

  EXPECT_EQ(ListPorts(device.adapter.get()), std::vector<std::string>());
  EXPECT_EQ(port.Open(device.adapter.get(), KrDeviceSerial::Serial0), KrResult::Code::NotSupported);
}

TEST_F(FeaturePortTest, ACameraThatLacksOneFeature_OffersNone) {
  for (const char* name : {"FileSelector", "FileOperationSelector", "FileOperationExecute", "FileOpenMode",
                           "FileAccessLength", "FileAccessBuffer", "FileOperationStatus", "FileOperationResult",
                           "\"SerialPort0\"", "\"ReadWrite\"", "\"Close\""}) {
    std::string nodes = MakeFileAccess();
    const std::string quoted = name[0] == '"' ? name : "\"" + std::string(name) + "\"";
    const std::size_t at = nodes.find(quoted);
    ASSERT_NE(at, std::string::npos) << name;
    nodes.insert(at + 1, "Other");
    FeatureDevice device(nodes);

    EXPECT_FALSE(KrDeviceSerialPort::IsSupported(device.adapter.get(), KrDeviceSerial::Serial0)) << name;
  }
}

TEST_F(FeaturePortTest, ACameraWithoutOffset_OffersItsFiles) {
  std::string nodes = MakeFileAccess();
  nodes.insert(nodes.find("\"FileAccessOffset\"") + 1, "Other");
  FeatureDevice device(nodes);

  EXPECT_TRUE(KrDeviceSerialPort::IsSupported(device.adapter.get(), KrDeviceSerial::Serial0));
}

TEST_F(FeaturePortTest, AFeatureThatIsNotImplemented_IsLacking) {
  std::string nodes = MakeFileAccess();
  const std::string begin = "<Command Name=\"FileOperationExecute\">";
  nodes.insert(nodes.find(begin) + begin.size(), "<pIsImplemented>HasFiles</pIsImplemented>");
  FeatureDevice device(nodes + MakeIntReg("HasFiles", "0x4000"));

  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(device.adapter.get(), KrDeviceSerial::Serial0));
}

TEST_F(FeaturePortTest, TheAnswer_IsFoundOnceForEachDevice) {
  FeatureDevice device(MakeFileAccess());
  ListPorts(device.adapter.get());
  const int accesses = device.Port().accesses;

  EXPECT_EQ(ListPorts(device.adapter.get()).size(), 2U);

  EXPECT_EQ(device.Port().accesses, accesses);
}

TEST_F(FeaturePortTest, ADeviceThatDidNotAnswer_IsAskedAgainLater) {
  FeatureDevice device(MakeFileAccess());
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });

  EXPECT_EQ(port.Open(device.adapter.get(), KrDeviceSerial::Serial0), KrResult::Code::TimeLimitExceeded);

  device.Port().With([](FeaturePort& aPort) { aPort.failure = {}; });
  EXPECT_TRUE(krtest::Await([&] { return port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK(); }));
}

TEST_F(FeaturePortTest, ADeviceThatDoesNotAnswer_IsAskedOneQuestionForAllPorts) {
  FeatureDevice device(MakeFileAccess());
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });

  EXPECT_EQ(ListPorts(device.adapter.get()), std::vector<std::string>());

  EXPECT_EQ(device.Port().accesses, 1);
}

TEST_F(FeaturePortTest, ADeviceThatHasGoneSilent_IsAskedOneQuestionForAllPorts) {
  AddMap(kUartMap);
  std::string nodes = MakeFileAccess() + MakeUartFeatures();
  for (const char* begin : {"<Command Name=\"FileOperationExecute\">", "<Integer Name=\"FileAccessOffset\">",
                            "<Command Name=\"UartReceive\">", "<Command Name=\"UartTransmit\">"})
    nodes.insert(nodes.find(begin) + std::string(begin).size(), "<pIsImplemented>HasPorts</pIsImplemented>");
  FeatureDevice device(nodes + MakeIntReg("HasPorts", "0x4000"));
  ASSERT_NE(device.device->GetParameters(), nullptr);
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });
  const int before = device.Port().accesses;

  const std::vector<std::string> ports = ListPorts(device.adapter.get());

  EXPECT_EQ(device.Port().accesses, before + 1);
  EXPECT_EQ(ports, std::vector<std::string>());
}

TEST_F(FeaturePortTest, TheTransportsLine_ComesFirst) {
  FeatureDevice device(MakeFileAccess());
  const auto line = std::make_shared<FakeByteChannel>();
  device.link->byteChannels[0] = line;

  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());

  EXPECT_FALSE(device.Port().uarts[0].isOpen);
}

TEST_F(FeaturePortTest, AFile_IsOpenedWrittenReadAndClosed) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial1).IsOK());
  EXPECT_TRUE(device.Port().uarts[1].isOpen);
  EXPECT_FALSE(device.Port().uarts[0].isOpen);
  Receive(device, 1, kEveryByte);

  const KrResult result = Write(kEveryByte);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(written, 256U);
  EXPECT_EQ(device.Port().uarts[1].sent, kEveryByte);
  EXPECT_EQ(ReadAll(256), kEveryByte);
  EXPECT_TRUE(port.Close().IsOK());
  EXPECT_FALSE(device.Port().uarts[1].isOpen);
}

TEST_F(FeaturePortTest, AFile_DropsWhatCameBeforeItsOpening) {
  FeatureDevice device(MakeFileAccess());
  Receive(device, 0, std::string(100, 'x'));

  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());

  EXPECT_EQ(Read(0).GetCodeNumber(), 30U);
}

TEST_F(FeaturePortTest, ABufferAsLongAsTheLengthSays_IsWritten) {
  FeatureDevice device(MakeFileAccess("8", "<pLength>FileAccessLength</pLength>"));
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());

  const KrResult result = Write("more than eight bytes");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.Port().uarts[0].sent, "more than eight bytes");
}

TEST_F(FeaturePortTest, AFileThatWasLeftOpen_IsOpenedAnew) {
  FeatureDevice device(MakeFileAccess());
  device.Port().uarts[0].isOpen = true;

  EXPECT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
}

TEST_F(FeaturePortTest, TheSelectors_AreAsTheyWere) {
  FeatureDevice device(MakeFileAccess());
  KrGenParameterArray* const array = device.device->GetParameters();
  ASSERT_TRUE(array->GetEnum("FileOperationSelector")->SetEntry("Close").IsOK());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());

  ASSERT_TRUE(Write("bytes").IsOK());
  ASSERT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);

  KrString file;
  KrString operation;
  ASSERT_TRUE(array->GetEnum("FileSelector")->GetEntry(file).IsOK());
  ASSERT_TRUE(array->GetEnum("FileOperationSelector")->GetEntry(operation).IsOK());
  EXPECT_EQ(file, KrString("UserSet1"));
  EXPECT_EQ(operation, KrString("Close"));
  EXPECT_EQ(device.Port().Get(krtest::kFileSelector), 0U);
}

TEST_F(FeaturePortTest, ARefusedOperation_SaysItsStatus) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  device.Port().With([](FeaturePort& aPort) { aPort.uarts[0].isOpen = false; });

  const KrResult result = Write("bytes");

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_NE(result.GetDescription().ToUtf8().find("Write ended with Failure"), std::string::npos)
      << result.GetDescription().CStr();
}

TEST_F(FeaturePortTest, AResultThatCannotBe_IsAProtocolError) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  device.Port().With([](FeaturePort& aPort) {
    aPort.onOperation = [](FeaturePort& aSame) { aSame.Put(krtest::kResult, 0x7FFFFFFF); };
  });

  EXPECT_EQ(Read(0), KrResult::Code::ProtocolError);
  EXPECT_EQ(Write("bytes"), KrResult::Code::ProtocolError);
  EXPECT_EQ(written, 0U);
}

TEST_F(FeaturePortTest, ABufferOfAnyLengthThatADeviceSays_TakesNoMemory) {
  for (const char* length : {"<Length>0</Length>", "<Length>65537</Length>", "<Length>1099511627776</Length>",
                             "<Length>9223372036854775807</Length>"}) {
    FeatureDevice device(MakeFileAccess("9223372036854775807", length));

    const KrResult result = port.Open(device.adapter.get(), KrDeviceSerial::Serial0);

    EXPECT_FALSE(result.IsOK()) << length;
    EXPECT_FALSE(port.IsOpened()) << length;
  }
}

TEST_F(FeaturePortTest, ACommandThatIsNeverDone_EndsWithTheTimeLimit) {
  FeatureDevice device(MakeFileAccess());
  device.Port().isStuck = true;

  EXPECT_EQ(port.Open(device.adapter.get(), KrDeviceSerial::Serial0), KrResult::Code::TimeLimitExceeded);
}

TEST_F(FeaturePortTest, AFullFile_IsWaitedForAndCanBeCancelled) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  device.Port().With([](FeaturePort& aPort) { aPort.uarts[0].room = 4; });
  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write("six so"); });
  EXPECT_TRUE(krtest::Await(
      [&] { return device.Port().With([](FeaturePort& aPort) { return aPort.uarts[0].sent == "six "; }); }));

  port.Cancel();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_EQ(written, 4U);
}

TEST_F(FeaturePortTest, OfTwoPorts_OnePerLineIsOpen) {
  FeatureDevice device(MakeFileAccess());
  KrDeviceSerialPort other;
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());

  EXPECT_EQ(other.Open(device.adapter.get(), KrDeviceSerial::Serial0), KrResult::Code::Busy);
  EXPECT_TRUE(other.Open(device.adapter.get(), KrDeviceSerial::Serial1).IsOK());
}

TEST_F(FeaturePortTest, RegistersOfAMaker_CarryALine) {
  AddMap(kUartMap);
  FeatureDevice device(MakeUartFeatures());
  EXPECT_EQ(ListPorts(device.adapter.get()), (std::vector<std::string>{"Serial0", "Bulk3"}));
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Bulk3).IsOK());
  Receive(device, 1, kEveryByte);

  const KrResult result = Write(kEveryByte);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.Port().uarts[1].sent, kEveryByte);
  EXPECT_EQ(ReadAll(256), kEveryByte);
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(device.Port().Get(krtest::kSelector), 0U);
}

TEST_F(FeaturePortTest, RegistersOfAMaker_TakeNoMoreThanThereIsRoom) {
  AddMap(kUartMap);
  FeatureDevice device(MakeUartFeatures());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  device.Port().With([](FeaturePort& aPort) { aPort.uarts[0].room = 3; });
  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write("abcdef"); });
  EXPECT_TRUE(krtest::Await(
      [&] { return device.Port().With([](FeaturePort& aPort) { return aPort.uarts[0].sent == "abc"; }); }));

  device.Port().With([](FeaturePort& aPort) { aPort.uarts[0].room = 100; });

  EXPECT_TRUE(writing.get().IsOK());
  EXPECT_EQ(device.Port().uarts[0].sent, "abcdef");
}

TEST_F(FeaturePortTest, AQueueWithACommandForWhatWasTaken_LosesNothing) {
  AddMap(kQueueMap);
  FeatureDevice device(MakeUartFeatures());
  device.Port().movesOnReceive = false;
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial1).IsOK());

  Receive(device, 0, kEveryByte);

  EXPECT_EQ(ReadAll(256), kEveryByte);
}

TEST_F(FeaturePortTest, TextsOfAMaker_CarryText) {
  AddMap(kUartMap);
  FeatureDevice device(MakeUartFeatures("StringReg"));
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  Receive(device, 0, "an answer");

  ASSERT_TRUE(Write("a text of more than sixteen bytes").IsOK());

  EXPECT_EQ(device.Port().uarts[0].sent, "a text of more than sixteen bytes");
  EXPECT_EQ(ReadAll(9), "an answer");
}

TEST_F(FeaturePortTest, ARegisterToSendWithoutALength_IsNoLine) {
  std::string map = kUartMap;
  map.erase(map.find("    transmitLength: UartLength\n"), std::string("    transmitLength: UartLength\n").size());
  AddMap(map);
  FeatureDevice device(MakeUartFeatures());
  FeatureDevice textDevice(MakeUartFeatures("StringReg"));

  EXPECT_FALSE(KrDeviceSerialPort::IsSupported(device.adapter.get(), KrDeviceSerial::Serial0));
  EXPECT_TRUE(KrDeviceSerialPort::IsSupported(textDevice.adapter.get(), KrDeviceSerial::Serial0));
}

TEST_F(FeaturePortTest, TheDevicesLoss_EndsCallsWithConnectionLost) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  std::future<KrResult> reading = std::async(std::launch::async, [&] { return Read(); });

  device.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);

  EXPECT_EQ(reading.get(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(Write("bytes"), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(port.IsOpened());
}

TEST_F(FeaturePortTest, TheDevicesEnd_EndsCallsWithConnectionLost) {
  FeatureDevice device(MakeFileAccess());
  ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  std::atomic<bool> isWaiting = false;
  std::future<KrResult> reading = std::async(std::launch::async, [&] {
    isWaiting = true;
    return Read();
  });
  EXPECT_TRUE(krtest::Await([&] { return isWaiting.load(); }));

  device.Destroy();

  EXPECT_EQ(reading.get(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(Write("bytes"), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(port.Close().IsOK());
}

TEST_F(FeaturePortTest, ReadWriteAndClose_OfThreeThreads_AllEnd) {
  FeatureDevice device(MakeFileAccess());

  for (int round = 0; round < 10; ++round) {
    ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
    std::atomic<int> calls = 0;
    std::thread reader([&] {
      for (KrResult result; result.IsOK() || result == KrResult::Code::TimeLimitExceeded; ++calls)
        result = Read(1);
    });
    std::thread writer([&] {
      for (KrResult result; result.IsOK(); ++calls)
        result = Write("some bytes, more than sixteen");
    });
    EXPECT_TRUE(krtest::Await([&] { return calls >= 10; }));

    EXPECT_TRUE(port.Close().IsOK());

    reader.join();
    writer.join();
    EXPECT_FALSE(device.Port().With([](FeaturePort& aPort) { return aPort.uarts[0].isOpen; }));
  }
}

} // namespace
