// The parameters that a frame's size depends on, locked while a stream runs. The camera gets a description in which the
// lock is a register, as real ones have it, in place of a number that only the host knows, and locks the width.

#include "gigevisiondevicefixture.h"

#include "krdevice/krstream.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

constexpr std::uint64_t kLockRegister = 0x2000;
constexpr std::uint64_t kUrlRegister = 0x200;

std::string ReadText(krsystem::IDeviceLink& aLink, std::uint64_t aAddress, std::size_t aLength) {
  std::string text(aLength, '\0');
  const KrResult result = aLink.GetRegisterPort().Read(aAddress, text.data(), text.size(), kGenerousTimeoutMs);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return text;
}

// The description that a camera of this program has in itself: "Local:name;address;length".
std::string ReadDescription() {
  const FakeCamera camera;
  krtransport::GigEVisionTransport transport;
  krsystem::InterfaceFields adapter;
  krsystem::AnyDeviceFields device;
  std::unique_ptr<krsystem::IDeviceLink> link;
  EXPECT_TRUE(transport.FindAddress(kLoopback, kGenerousTimeoutMs, adapter, device).IsOK());
  EXPECT_TRUE(transport.Open(adapter, device, krsystem::DeviceAccess::Monitor, link).IsOK());
  const std::string url = ReadText(*link, kUrlRegister, 512);
  const std::size_t address = url.find(';') + 1;
  const std::size_t length = url.find(';', address) + 1;
  return ReadText(*link, std::stoull(url.substr(address), nullptr, 16), std::stoull(url.substr(length), nullptr, 16));
}

/// Such a description with the lock in a register, as a file that is there from construction to destruction.
class LockDescription {
public:
  LockDescription() {
    std::string text = ReadDescription();
    const std::size_t begin = text.find("<Integer Name=\"TLParamsLocked\"");
    const std::size_t end = text.find("</Integer>", begin);
    EXPECT_NE(end, std::string::npos);
    text.replace(begin, end - begin, R"(<IntReg Name="LockRegister"><Address>0x2000</Address><Length>4</Length>
      <AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
      <Integer Name="TLParamsLocked"><pValue>LockRegister</pValue>)");
    const std::size_t value = text.find("<pValue>WidthRegister</pValue>");
    EXPECT_NE(value, std::string::npos);
    text.insert(value, "<pIsLocked>TLParamsLocked</pIsLocked>");
    std::ofstream(mPath) << text;
  }
  ~LockDescription() { std::filesystem::remove(mPath); }
  LockDescription(const LockDescription&) = delete;
  LockDescription& operator=(const LockDescription&) = delete;

  FakeCameraOptions MakeOptions() const {
    FakeCameraOptions options;
    options.descriptionFile = mPath;
    return options;
  }

private:
  const std::string mPath =
      (std::filesystem::temp_directory_path() / ("lock" + std::to_string(::getpid()) + ".xml")).string();
};

class GigEVisionLocking : private LockDescription, public GigEVisionDeviceTest {
protected:
  GigEVisionLocking() : GigEVisionDeviceTest(MakeOptions()) {}

  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(GigEVisionDeviceTest::SetUp());
    mStream = std::make_unique<KrStream>(*mOpened);
  }
  std::uint32_t ReadLock() { return ReadRegister(*mLink, kLockRegister); }

  std::unique_ptr<KrStream> mStream;
};

TEST_F(GigEVisionLocking, StartedAndStopped_IsLockedInBetween) {
  EXPECT_EQ(ReadLock(), 0u);

  ASSERT_TRUE(mStream->Start().IsOK());
  EXPECT_EQ(ReadLock(), 1u);

  mStream->Stop();
  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(GigEVisionLocking, LockedParameter_FromStartToStop_CannotBeSet) {
  KrGenParameterArray* array = nullptr;
  ASSERT_TRUE(mOpened->GetParameters(array).IsOK());
  KrGenInteger& width = *array->GetInteger("Width");
  ASSERT_TRUE(width.SetValue(320).IsOK());

  ASSERT_TRUE(mStream->Start().IsOK());
  EXPECT_FALSE(width.IsWritable());
  const KrResult refused = width.SetValue(640);
  mStream->Stop();

  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_EQ(ReadRegister(*mLink, kWidthRegister), 320u);
  EXPECT_TRUE(width.SetValue(640).IsOK());
  EXPECT_EQ(ReadRegister(*mLink, kWidthRegister), 640u);
}

TEST_F(GigEVisionLocking, ClosedWhileStreaming_IsUnlocked) {
  ASSERT_TRUE(mStream->Start().IsOK());

  mStream.reset();
  mOpened.reset();

  std::unique_ptr<krsystem::IDeviceLink> monitor;
  ASSERT_TRUE(Open(krsystem::DeviceAccess::Monitor, monitor).IsOK());
  EXPECT_EQ(ReadRegister(*monitor, kLockRegister), 0u);
}

} // namespace
