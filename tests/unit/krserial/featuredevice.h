#pragma once
// An open camera without byte channels whose features carry serial lines: as files of the standard's file access, and
// as registers of its maker's. The other ends of the lines are the test's.

#include "describedlink.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krdevicegev.h"

#include <algorithm>
#include <array>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace krtest {

/// The registers of the features.
enum FeatureAddress : std::uint64_t {
  kFileSelector = 0x1000,
  kOperationSelector = 0x1004,
  kExecute = 0x1008,
  kOpenMode = 0x100C,
  kOffset = 0x1010,
  kLength = 0x1014,
  kStatus = 0x1018,
  kResult = 0x101C,
  kBuffer = 0x2000,
  kSelector = 0x3000,
  kReceive = 0x3004,
  kReceivedCount = 0x3008,
  kTaken = 0x300C,
  kRoom = 0x3010,
  kTransmitLength = 0x3014,
  kTransmit = 0x3018,
  kReceiveData = 0x3100,
  kTransmitData = 0x3200,
};

inline constexpr std::size_t kBufferBytes = 16;

inline std::string MakeEnum(const std::string& aName, const std::string& aAddress,
                            std::initializer_list<const char*> aEntries) {
  std::string text = "<Enumeration Name=\"" + aName + "\">";
  int value = 0;
  for (const char* entry : aEntries)
    text += "<EnumEntry Name=\"" + std::string(entry) + "\"><Value>" + std::to_string(value++) + "</Value></EnumEntry>";
  return text + "<pValue>" + aName + "Reg</pValue></Enumeration>\n" + MakeIntReg(aName + "Reg", aAddress);
}

inline std::string MakeInteger(const std::string& aName, const std::string& aAddress, const std::string& aMax = "") {
  const std::string max = aMax.empty() ? "" : "<Max>" + aMax + "</Max>";
  return "<Integer Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><Min>0</Min>" + max + "</Integer>\n" +
         MakeIntReg(aName + "Reg", aAddress);
}

inline std::string MakeCommand(const std::string& aName, const std::string& aAddress) {
  return "<Command Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><CommandValue>1</CommandValue></Command>\n" +
         MakeIntReg(aName + "Reg", aAddress, "NoCache");
}

inline std::string MakeBuffer(const std::string& aName, const std::string& aAddress,
                              const std::string& aLength = "<Length>16</Length>",
                              const std::string& aElement = "Register") {
  return "<" + aElement + " Name=\"" + aName + "\"><Address>" + aAddress + "</Address>" + aLength +
         "<AccessMode>RW</AccessMode><pPort>Device</pPort></" + aElement + ">\n";
}

/// The standard's features; everything in them may be cached, as descriptions often have it.
inline std::string MakeFileAccess(const std::string& aLengthMax = "16",
                                  const std::string& aBufferLength = "<Length>16</Length>") {
  return MakeEnum("FileSelector", "0x1000", {"UserSet1", "SerialPort0", "SerialPort1"}) +
         MakeEnum("FileOperationSelector", "0x1004", {"Open", "Close", "Read", "Write"}) +
         MakeCommand("FileOperationExecute", "0x1008") +
         MakeEnum("FileOpenMode", "0x100C", {"Read", "Write", "ReadWrite"}) +
         MakeInteger("FileAccessOffset", "0x1010") + MakeInteger("FileAccessLength", "0x1014", aLengthMax) +
         MakeEnum("FileOperationStatus", "0x1018", {"Success", "Failure"}) +
         MakeInteger("FileOperationResult", "0x101C") + MakeBuffer("FileAccessBuffer", "0x2000", aBufferLength);
}

/// Features of a maker's own, with data of a kind of node.
inline std::string MakeUartFeatures(const std::string& aElement = "Register") {
  return MakeEnum("UartSelector", "0x3000", {"Uart0", "Uart1"}) + MakeCommand("UartReceive", "0x3004") +
         MakeInteger("UartReceived", "0x3008") + MakeCommand("UartTaken", "0x300C") +
         MakeInteger("UartRoom", "0x3010") + MakeInteger("UartLength", "0x3014", "16") +
         MakeCommand("UartTransmit", "0x3018") +
         MakeBuffer("UartReceiveData", "0x3100", "<Length>16</Length>", aElement) +
         MakeBuffer("UartTransmitData", "0x3200", "<Length>16</Length>", aElement);
}

/// A line, as the camera has it.
struct FeatureUart {
  std::string received; ///< Not taken yet.
  std::string sent;
  bool isOpen = false; ///< The file.
  std::size_t room = 1000000;
};

/// The camera's registers, which act when they are written. Thread: any.
class FeaturePort : public IKrRegisterPort {
public:
  explicit FeaturePort(IKrRegisterPort& aMemory) : mMemory(aMemory) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    const std::lock_guard lock(mMutex);
    ++accesses;
    if (!failure.IsOK())
      return Fail();
    if (aAddress == kReceivedCount && !movesOnReceive)
      Put(kReceivedCount, static_cast<std::uint32_t>(std::min(Uart(kSelector, 0).received.size(), kBufferBytes)));
    if (aAddress == kReceiveData && !movesOnReceive)
      PutBytes(kReceiveData, Uart(kSelector, 0).received.substr(0, kBufferBytes));
    if (aAddress == kRoom)
      Put(kRoom, static_cast<std::uint32_t>(Uart(kSelector, 0).room));
    return mMemory.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    const std::lock_guard lock(mMutex);
    ++accesses;
    if (!failure.IsOK())
      return Fail();
    if (KrResult written = mMemory.Write(aAddress, aData, aLength, aTimeoutMs, aCancel); !written.IsOK())
      return written;
    if (aAddress == kExecute)
      Operate();
    else if (aAddress == kReceive)
      Move();
    else if (aAddress == kTaken)
      Uart(kSelector, 0).received.erase(0, Get(kReceivedCount));
    else if (aAddress == kTransmit)
      Transmit();
    if (!isStuck && (aAddress == kExecute || aAddress == kReceive || aAddress == kTaken || aAddress == kTransmit))
      Put(aAddress, 0); // Done.
    return {};
  }

  template <typename Use>
  auto With(Use&& aUse) {
    const std::lock_guard lock(mMutex);
    return aUse(*this);
  }

  // To be used in With, or before the port is.
  std::array<FeatureUart, 2> uarts;
  bool movesOnReceive = true; ///< The maker's receive command moves bytes to the buffer.
  bool isStuck = false;       ///< Commands are never done.
  bool failsFirstOpen = false;
  std::function<void(FeaturePort&)> onOperation; ///< After an operation on a file.
  KrResult failure;                              ///< Of every access.
  int accesses = 0;

  std::function<void()> onFailure; ///< Before an access fails.

  std::uint32_t Get(std::uint64_t aAddress) {
    std::array<std::uint8_t, 4> bytes = {};
    EXPECT_TRUE(mMemory.Read(aAddress, bytes.data(), 4, 1000).IsOK());
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes)
      value = value << 8 | byte;
    return value;
  }
  void Put(std::uint64_t aAddress, std::uint32_t aValue) {
    std::array<std::uint8_t, 4> bytes = {};
    for (int i = 3; i >= 0; --i, aValue >>= 8)
      bytes[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(aValue);
    EXPECT_TRUE(mMemory.Write(aAddress, bytes.data(), 4, 1000).IsOK());
  }

private:
  KrResult Fail() {
    if (onFailure)
      onFailure();
    return failure;
  }
  FeatureUart& Uart(std::uint64_t aSelector, std::uint32_t aFirst) {
    return uarts.at(std::min<std::uint32_t>(Get(aSelector) - aFirst, 1));
  }
  void PutBytes(std::uint64_t aAddress, const std::string& aBytes) {
    if (!aBytes.empty()) {
      EXPECT_TRUE(mMemory.Write(aAddress, aBytes.data(), aBytes.size(), 1000).IsOK());
    }
  }
  std::string GetBytes(std::uint64_t aAddress, std::size_t aSize) {
    std::string bytes(aSize, '\0');
    if (aSize > 0) {
      EXPECT_TRUE(mMemory.Read(aAddress, bytes.data(), aSize, 1000).IsOK());
    }
    return bytes;
  }

  void Operate() {
    const std::uint32_t file = Get(kFileSelector);
    EXPECT_TRUE(file == 1 || file == 2) << "an operation on a file that is no line";
    FeatureUart& uart = Uart(kFileSelector, 1);
    const std::uint32_t operation = Get(kOperationSelector);
    Put(kStatus, 0);
    Put(kResult, 0);
    if (operation == 0 && !std::exchange(failsFirstOpen, false) && !uart.isOpen && Get(kOpenMode) == 2)
      uart.isOpen = true;
    else if (operation == 1 && uart.isOpen)
      uart.isOpen = false;
    else if (operation == 2 && uart.isOpen)
      ReadFile(uart);
    else if (operation == 3 && uart.isOpen)
      WriteFile(uart);
    else
      Put(kStatus, 1);
    if (onOperation)
      onOperation(*this);
  }
  void ReadFile(FeatureUart& aUart) {
    const std::string bytes = aUart.received.substr(0, Get(kLength));
    aUart.received.erase(0, bytes.size());
    PutBytes(kBuffer, bytes);
    Put(kResult, static_cast<std::uint32_t>(bytes.size()));
  }
  void WriteFile(FeatureUart& aUart) {
    const std::size_t count = std::min<std::size_t>(Get(kLength), aUart.room);
    aUart.sent += GetBytes(kBuffer, count);
    aUart.room -= count;
    Put(kResult, static_cast<std::uint32_t>(count));
  }
  void Move() {
    FeatureUart& uart = Uart(kSelector, 0);
    const std::string bytes = uart.received.substr(0, kBufferBytes);
    uart.received.erase(0, bytes.size());
    PutBytes(kReceiveData, bytes);
    Put(kReceivedCount, static_cast<std::uint32_t>(bytes.size()));
  }
  void Transmit() {
    FeatureUart& uart = Uart(kSelector, 0);
    const std::size_t count = Get(kTransmitLength);
    EXPECT_LE(count, uart.room);
    uart.sent += GetBytes(kTransmitData, count);
    uart.room -= count;
  }

  IKrRegisterPort& mMemory;
  std::recursive_mutex mMutex; // Guards the members; recursive for what With does.
};

/// The link of such a camera.
class FeatureLink : public DescribedLink {
public:
  explicit FeatureLink(const std::string& aNodes) : DescribedLink(aNodes) {}

  IKrRegisterPort& GetRegisterPort() override { return features; }

  FeaturePort features{memory};
};

/// The camera, open, and its adapter.
class FeatureDevice {
public:
  explicit FeatureDevice(const std::string& aNodes) {
    auto made = std::make_unique<FeatureLink>(aNodes);
    link = made.get();
    device = std::make_unique<KrDeviceGEV>(std::move(made), MakeDeviceFields(), KrDeviceAccess::Control);
    adapter = std::make_unique<KrDeviceAdapter>(*device);
  }
  /// Ends the device, and with it its link.
  void Destroy() {
    adapter.reset();
    link = nullptr;
    device.reset();
  }
  FeaturePort& Port() { return link->features; }

  FeatureLink* link = nullptr;
  std::unique_ptr<KrDevice> device;
  std::unique_ptr<KrDeviceAdapter> adapter;
};

} // namespace krtest
