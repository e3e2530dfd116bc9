// Whatever a camera may say of the serial line behind its features: how much came, how much there is room for, whether
// a command is done. Each step comes to an end, and moves no more than it may.
//
// The first byte says of which kind the line is; each of the others is what a register holds that the camera changes,
// where it is read: the byte, or, from 0xF0 on, the four behind it.

#include "fileaccessline.h"
#include "registerline.h"
#include "require.h"

#include "krgenicam/krgendescription.h"
#include "krgenicam/krgenparameterarray.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace {

using krserial::FeatureFinder;
using krserial::IFeatureLine;

using Bytes = std::span<const std::uint8_t>;

// Each poll of a command takes a millisecond.
constexpr std::size_t kMostBytes = 256;
constexpr std::uint64_t kFirst = 0x1000;
constexpr std::uint64_t kFirstChanging = 0x1100; // Those from here on the camera changes by itself.
constexpr std::uint64_t kFirstData = 0x1200;
constexpr std::size_t kRegisterBytes = 4;
constexpr std::uint8_t kIsLong = 0xF0;

std::string MakeNumber(const std::string& aName, const char* aAddress) {
  return "<IntReg Name=\"" + aName + "\"><Address>" + aAddress +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
         "<Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>";
}

std::string MakeInteger(const std::string& aName, const char* aAddress, const std::string& aLimits = "") {
  return "<Integer Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue>" + aLimits + "</Integer>" +
         MakeNumber(aName + "Reg", aAddress);
}

std::string MakeCommand(const std::string& aName, const char* aAddress) {
  return "<Command Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
         MakeNumber(aName + "Reg", aAddress);
}

std::string MakeEnum(const std::string& aName, const char* aAddress, std::initializer_list<const char*> aEntries) {
  std::string text = "<Enumeration Name=\"" + aName + "\">";
  int value = 0;
  for (const char* const entry : aEntries)
    text += "<EnumEntry Name=\"" + std::string(entry) + "\"><Value>" + std::to_string(value++) + "</Value></EnumEntry>";
  return text + "<pValue>" + aName + "Reg</pValue></Enumeration>" + MakeNumber(aName + "Reg", aAddress);
}

// Of a kind of node whose length is the camera's to say.
std::string MakeData(const std::string& aName, const char* aAddress, const char* aKind) {
  const std::string kind = aKind;
  return "<" + kind + " Name=\"" + aName + "\"><Address>" + aAddress +
         "</Address><pLength>DataLength</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Cachable>NoCache</Cachable></" +
         kind + ">";
}

KrGenDescription MakeDescription(const char* aDataKind) {
  const std::string text =
      "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
      "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
      "SubMinorVersion=\"0\" ProductGuid=\"P\" VersionGuid=\"V\" "
      "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"><Category Name=\"Root\"/><Port Name=\"Device\"/>" +
      MakeEnum("FileSelector", "0x1000", {"Other", "Line"}) +
      MakeEnum("FileOperationSelector", "0x1004", {"Open", "Close", "Read", "Write"}) +
      MakeEnum("FileOpenMode", "0x1008", {"Read", "Write", "ReadWrite"}) + MakeInteger("FileAccessOffset", "0x100C") +
      MakeInteger("FileAccessLength", "0x1010", "<Min>0</Min><pMax>LengthMost</pMax>") +
      MakeEnum("LineSelector", "0x1014", {"Other", "Line"}) +
      MakeInteger("SentLength", "0x1018", "<pMax>LengthMost</pMax>") + MakeCommand("FileOperationExecute", "0x1100") +
      MakeEnum("FileOperationStatus", "0x1104", {"Success", "Failure"}) + MakeInteger("FileOperationResult", "0x1108") +
      MakeInteger("LengthMost", "0x110C") + MakeInteger("DataLength", "0x1110") + MakeCommand("Receive", "0x1114") +
      MakeInteger("Received", "0x1118") + MakeCommand("Taken", "0x111C") + MakeInteger("Room", "0x1120") +
      MakeCommand("Transmit", "0x1124") + MakeData("FileAccessBuffer", "0x1200", "Register") +
      MakeData("ReceivedData", "0x1200", aDataKind) + MakeData("SentData", "0x1200", aDataKind) +
      "</RegisterDescription>";
  KrGenDescription description;
  Require(KrGenDescription::ReadFromMemory(text, "line", description).IsOK());
  return description;
}

/// The camera. It is gone when it has nothing more to say.
class Camera final : public IKrRegisterPort {
public:
  explicit Camera(Bytes aChanges) : mChanges(aChanges) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token&) override {
    Require(aLength > 0 && aAddress >= kFirst);
    auto* const data = static_cast<std::uint8_t*>(aData);
    if (aAddress < kFirstChanging) {
      Require(aLength == kRegisterBytes && aAddress - kFirst + aLength <= mKept.size());
      std::copy_n(mKept.begin() + static_cast<std::ptrdiff_t>(aAddress - kFirst), aLength, data);
      return {};
    }
    if (mChanges.empty())
      return {KrResult::Code::ConnectionLost, "The device is gone."};
    if (aAddress >= kFirstData)
      std::fill_n(data, aLength, TakeByte());
    else
      PutChange(data, aLength);
    return {};
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t,
                 const std::stop_token&) override {
    Require(aLength > 0 && aAddress >= kFirst);
    if (aAddress < kFirstChanging)
      std::copy_n(static_cast<const std::uint8_t*>(aData), aLength,
                  mKept.begin() + static_cast<std::ptrdiff_t>(aAddress - kFirst));
    return {};
  }

private:
  std::uint8_t TakeByte() {
    if (mChanges.empty())
      return 0;
    const std::uint8_t byte = mChanges.front();
    mChanges = mChanges.subspan(1);
    return byte;
  }
  void PutChange(std::uint8_t* aData, std::size_t aLength) {
    Require(aLength == kRegisterBytes);
    const std::uint8_t byte = TakeByte();
    std::fill_n(aData, aLength - 1, std::uint8_t{0});
    aData[aLength - 1] = byte;
    for (std::size_t i = 0; byte >= kIsLong && i < aLength; ++i)
      aData[i] = TakeByte();
  }

  Bytes mChanges;
  std::array<std::uint8_t, kFirstChanging - kFirst> mKept{};
};

std::unique_ptr<IFeatureLine> FindLine(KrGenParameterArray& aArray, bool aIsFile) {
  FeatureFinder finder(aArray);
  std::unique_ptr<IFeatureLine> line;
  if (aIsFile)
    line = krserial::FileAccessLine::Find(finder, {}, "Line");
  else
    line = krserial::RegisterLine::Find(finder,
                                        {.selector = "LineSelector",
                                         .receiveCommand = "Receive",
                                         .receivedCount = "Received",
                                         .receiveData = "ReceivedData",
                                         .takenCommand = "Taken",
                                         .transmitRoom = "Room",
                                         .transmitData = "SentData",
                                         .transmitLength = "SentLength",
                                         .transmitCommand = "Transmit"},
                                        "Line");
  Require(line != nullptr);
  return line;
}

void Receive(IFeatureLine& aLine) {
  std::vector<std::uint8_t> bytes = {1, 2, 3};
  const KrResult received = aLine.Receive(bytes);
  static_cast<void>(RequireReason(received)); // Whether it goes well is the camera's business.
  Require(bytes.size() >= 3 && bytes.size() - 3 <= std::size_t{krserial::kMostTransferBytes});
  Require(bytes[0] == 1 && bytes[1] == 2 && bytes[2] == 3);
  static_cast<void>(RequireReason(aLine.GetLoss()));
}

void Transmit(IFeatureLine& aLine, Bytes aBytes) {
  std::size_t taken = 0;
  const bool isSent = RequireReason(aLine.Transmit(aBytes.data(), aBytes.size(), taken));
  Require(taken <= (isSent ? aBytes.size() : 0));
}

void Use(IFeatureLine& aLine) {
  constexpr std::array<std::uint8_t, 40> kMessage = {1, 2, 3, 4, 5, 0, 7};
  static_cast<void>(RequireReason(aLine.Open()));
  Receive(aLine);
  Transmit(aLine, kMessage);
  Receive(aLine);
  aLine.Rest();
  Transmit(aLine, Bytes(kMessage).first(1));
  static_cast<void>(RequireReason(aLine.Close()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0 || aSize > kMostBytes)
    return 0;
  static const std::array<KrGenDescription, 2> descriptions = {MakeDescription("Register"),
                                                               MakeDescription("StringReg")};
  Camera camera(Bytes(aData + 1, aSize - 1));
  std::unique_ptr<KrGenParameterArray> array;
  Require(KrGenParameterArray::Open(descriptions[aData[0] / 2 % 2], camera, {.timeoutMs = 1}, array).IsOK());
  const std::unique_ptr<IFeatureLine> line = FindLine(*array, aData[0] % 2 == 0);
  Use(*line);
  array->Close();
  return 0;
}
