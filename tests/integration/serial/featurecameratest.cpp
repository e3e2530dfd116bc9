// Serial ports behind the features of a camera of an independent program, over its real control channel. Its registers
// are memory, which its description makes lines of: what is sent lies where what came is read.

#include "gigevisiondevicefixture.h"

#include "describedcamera.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krserialfeatures.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::uint64_t kFileSelector = 0x8000;
constexpr std::uint64_t kFileBuffer = 0x8100;

constexpr const char* kMap = R"(serialFeatures:
  - name: looped UART
    way: registers
    ports: {Serial1: ~}
    receivedCount: UartReceived
    receiveData: UartData
    takenCommand: UartTaken
    transmitRoom: UartRoom
    transmitData: UartData
    transmitLength: UartReceived
)";

std::string MakeIntReg(const std::string& aName, const std::string& aAddress, const std::string& aAccess = "RW") {
  return "<IntReg Name=\"" + aName + "\"><Address>" + aAddress + "</Address><Length>4</Length><AccessMode>" + aAccess +
         "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign>"
         "<Endianess>BigEndian</Endianess></IntReg>\n";
}

std::string MakeInteger(const std::string& aName, const std::string& aAddress, const std::string& aMax) {
  return "<Integer Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><Min>0</Min><Max>" + aMax +
         "</Max></Integer>\n" + MakeIntReg(aName + "Reg", aAddress);
}

std::string MakeEnum(const std::string& aName, const std::string& aAddress,
                     std::initializer_list<const char*> aEntries) {
  std::string text = "<Enumeration Name=\"" + aName + "\">";
  int value = 0;
  for (const char* entry : aEntries)
    text += "<EnumEntry Name=\"" + std::string(entry) + "\"><Value>" + std::to_string(value++) + "</Value></EnumEntry>";
  return text + "<pValue>" + aName + "Reg</pValue></Enumeration>\n" + MakeIntReg(aName + "Reg", aAddress);
}

// Memory cannot say that a command is over: what can only be written is so at once.
std::string MakeCommand(const std::string& aName, const std::string& aAddress, int aValue) {
  return "<Command Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><CommandValue>" + std::to_string(aValue) +
         "</CommandValue></Command>\n" + MakeIntReg(aName + "Reg", aAddress, "WO");
}

std::string MakeBuffer(const std::string& aName, const std::string& aAddress) {
  return "<Register Name=\"" + aName + "\"><Address>" + aAddress +
         "</Address><Length>64</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
         "</Register>\n";
}

// A file that takes everything and has nothing to read, as the standard describes it.
std::string MakeFileAccess() {
  return MakeEnum("FileSelector", "0x8000", {"UserSet1", "SerialPort0"}) +
         MakeEnum("FileOperationSelector", "0x8004", {"Open", "Close", "Read", "Write"}) +
         MakeCommand("FileOperationExecute", "0x8008", 1) +
         MakeEnum("FileOpenMode", "0x800C", {"Read", "Write", "ReadWrite"}) +
         MakeInteger("FileAccessOffset", "0x8010", "0") + MakeInteger("FileAccessLength", "0x8014", "64") +
         MakeEnum("FileOperationStatus", "0x8018", {"Success", "Failure"}) + MakeBuffer("FileAccessBuffer", "0x8100") +
         "<IntSwissKnife Name=\"FileOperationResult\"><pVariable "
         "Name=\"OPERATION\">FileOperationSelectorReg</pVariable>"
         "<pVariable Name=\"SIZE\">FileAccessLengthReg</pVariable>"
         "<Formula>(OPERATION = 3) ? SIZE : 0</Formula></IntSwissKnife>\n";
}

// A line whose ends are joined: there is room as soon as all was taken.
std::string MakeLoopedUart() {
  return MakeInteger("UartReceived", "0x8200", "64") + MakeBuffer("UartData", "0x8300") +
         MakeCommand("UartTaken", "0x8200", 0) +
         "<IntSwissKnife Name=\"UartRoom\"><pVariable Name=\"COUNT\">UartReceivedReg</pVariable>"
         "<Formula>(COUNT = 0) ? 64 : 0</Formula></IntSwissKnife>\n";
}

TemporaryFolder& GetFolder() {
  static TemporaryFolder folder;
  return folder;
}

FakeCameraOptions MakeOptions() {
  FakeCameraOptions options;
  options.descriptionFile = GetFolder().GetFile("camera.xml");
  TemporaryFolder::WriteFile(options.descriptionFile, MakeDescription(MakeFileAccess() + MakeLoopedUart()));
  return options;
}

class FeatureCamera : public GigEVisionDeviceTest {
protected:
  FeatureCamera() : GigEVisionDeviceTest(MakeOptions()) {
    setenv("XDG_CONFIG_HOME", GetFolder().GetPath().c_str(), 1);
    const std::string file = GetFolder().GetFile("map.yaml");
    TemporaryFolder::WriteFile(file, kMap);
    const KrResult added = KrSerialFeatures::AddFile(file);
    EXPECT_TRUE(added.IsOK()) << added.GetDescription().CStr();
  }
  ~FeatureCamera() override {
    KrSerialFeatures::RemoveAdded();
    unsetenv("XDG_CONFIG_HOME");
  }
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(GigEVisionDeviceTest::SetUp());
    mAdapter = std::make_unique<KrDeviceAdapter>(*mOpened);
  }
  KrResult Write(const std::string& aText) {
    return mPort.Write(reinterpret_cast<const std::uint8_t*>(aText.data()), static_cast<std::uint32_t>(aText.size()),
                       mWritten);
  }
  KrResult Read(std::string& aText, std::uint32_t aTimeoutMs = kGenerousTimeoutMs) {
    aText.assign(64, '\0');
    std::uint32_t read = 0;
    KrResult result = mPort.Read(reinterpret_cast<std::uint8_t*>(aText.data()), 64, read, aTimeoutMs);
    aText.resize(read);
    return result;
  }
  // The result with which reading ends.
  KrResult ReadToTheEnd() {
    std::string text;
    KrResult result;
    while (result.IsOK() || result == KrResult::Code::TimeLimitExceeded)
      result = Read(text, 250);
    return result;
  }

  std::unique_ptr<KrDeviceAdapter> mAdapter;
  KrDeviceSerialPort mPort;
  std::uint32_t mWritten = 0;
};

} // namespace

TEST_F(FeatureCamera, Ports_AreThoseOfTheStandardAndOfTheMap) {
  std::vector<std::string> ports;

  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(mAdapter.get(), port))
      ports.push_back(GetPortName(port).ToUtf8());

  EXPECT_THAT(ports, testing::ElementsAre("Serial0", "Serial1"));
  EXPECT_EQ(mPort.Open(mAdapter.get(), KrDeviceSerial::Bulk0).GetCodeNumber(), 26u);
}

TEST_F(FeatureCamera, AFile_IsWrittenInTheCamera) {
  const KrResult opened = mPort.Open(mAdapter.get(), KrDeviceSerial::Serial0);
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();

  const KrResult written = Write("*IDN?\r\n");

  EXPECT_TRUE(written.IsOK()) << written.GetDescription().CStr();
  EXPECT_EQ(mWritten, 7u);
  EXPECT_EQ(ReadRegister(*mLink, kFileBuffer), 0x2A49444Eu);
  EXPECT_EQ(ReadRegister(*mLink, kFileBuffer + 4), 0x3F0D0A00u);
  EXPECT_EQ(ReadRegister(*mLink, kFileSelector), 0u) << "the selector was not put back";
  std::string text;
  EXPECT_EQ(Read(text, 0).GetCodeNumber(), 30u);
  EXPECT_TRUE(mPort.Close().IsOK());
}

TEST_F(FeatureCamera, BytesOfEveryValue_ComeBackFromALoopedLine) {
  const KrResult opened = mPort.Open(mAdapter.get(), KrDeviceSerial::Serial1);
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  std::string sent;
  for (int i = 0; i < 1000; ++i)
    sent += static_cast<char>(i % 251);

  std::future<KrResult> writing = std::async(std::launch::async, [&] { return Write(sent); });
  std::string received;
  std::string text;
  while (received.size() < sent.size() && Read(text).IsOK())
    received += text;

  const KrResult written = writing.get();
  EXPECT_TRUE(written.IsOK()) << written.GetDescription().CStr();
  EXPECT_EQ(mWritten, 1000u);
  EXPECT_TRUE(received == sent);
}

TEST_F(FeatureCamera, ThatIsPulledOut_EndsReadingAndWriting) {
  ASSERT_TRUE(mPort.Open(mAdapter.get(), KrDeviceSerial::Serial0).IsOK());
  std::future<KrResult> reading = std::async(std::launch::async, [&] { return ReadToTheEnd(); });
  std::future<KrResult> writing = std::async(std::launch::async, [&] {
    KrResult result;
    while (result.IsOK() || result == KrResult::Code::TimeLimitExceeded)
      result = Write("between the steps of an operation");
    return result;
  });

  mCamera->Kill();

  EXPECT_EQ(reading.get(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(writing.get(), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(mPort.IsOpened());
  EXPECT_TRUE(mPort.Close().IsOK());
}
