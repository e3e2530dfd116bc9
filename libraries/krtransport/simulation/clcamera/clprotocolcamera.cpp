#include "simulation/clcamera/clprotocolcamera.h"

#include "simulation/clcamera/clcameradescription.h"
#include "simulation/clcamera/clcamerafeatures.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace krtransport {

namespace {

constexpr std::uint8_t kFromHost = 0xA5;
constexpr std::uint8_t kFromCamera = 0x5A;
constexpr std::size_t kHeaderBytes = 7;
constexpr std::size_t kCheckAt = 6;
constexpr std::size_t kCRCBytes = 2;
constexpr std::size_t kMostData = 264;
constexpr std::size_t kMostRegisterBytes = 256;
constexpr std::size_t kAddressBytes = 4;

constexpr std::uint8_t kDone = 0x00;
constexpr std::uint8_t kPending = 0x01;
constexpr std::uint8_t kUnknownCommand = 0x80;
constexpr std::uint8_t kNoRegister = 0x81;
constexpr std::uint8_t kOnlyRead = 0x82;
constexpr std::uint8_t kOnlyWritten = 0x83;
constexpr std::uint8_t kBadValue = 0x84;
constexpr std::uint8_t kBadData = 0x85;
constexpr std::uint8_t kBusy = 0x86;

constexpr char kWriteLetter = 'W';
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;

using Bytes = std::vector<std::uint8_t>;

std::size_t GetWord(std::span<const std::uint8_t> aBytes, std::size_t aAt) {
  return static_cast<std::size_t>(aBytes[aAt]) << 8 | aBytes[aAt + 1];
}

void AddWord(Bytes& aBytes, std::size_t aWord) {
  aBytes.push_back(static_cast<std::uint8_t>(aWord >> 8));
  aBytes.push_back(static_cast<std::uint8_t>(aWord));
}

void AddLong(Bytes& aBytes, std::uint32_t aValue) {
  AddWord(aBytes, aValue >> 16);
  AddWord(aBytes, aValue);
}

std::uint8_t MakeHeaderCheck(std::span<const std::uint8_t> aHeader) {
  const auto first = aHeader.first(kCheckAt);
  return static_cast<std::uint8_t>(0xFF - std::accumulate(first.begin(), first.end(), 0U) % 0x100);
}

Bytes MakePacket(std::uint8_t aCommand, std::uint8_t aNumber, std::uint8_t aStatus, const Bytes& aData) {
  Bytes packet = {kFromCamera, aCommand, aNumber, aStatus};
  AddWord(packet, aData.size());
  packet.push_back(MakeHeaderCheck(packet));
  packet.insert(packet.end(), aData.begin(), aData.end());
  AddWord(packet, MakeCLProtocolCRC(packet));
  return packet;
}

std::uint8_t GetStatus(CLAccess aAccess) {
  switch (aAccess) {
  case CLAccess::Done:
    return kDone;
  case CLAccess::NoRegister:
    return kNoRegister;
  case CLAccess::OnlyRead:
    return kOnlyRead;
  case CLAccess::OnlyWritten:
    return kOnlyWritten;
  default:
    return kBadValue;
  }
}

} // namespace

std::uint16_t MakeCLProtocolCRC(std::span<const std::uint8_t> aBytes) {
  constexpr std::uint16_t kPolynomial = 0x1021;
  std::uint16_t crc = 0xFFFF;
  for (const std::uint8_t byte : aBytes) {
    crc = static_cast<std::uint16_t>(crc ^ byte << 8);
    for (int bit = 0; bit < 8; ++bit)
      crc = static_cast<std::uint16_t>((crc & 0x8000) != 0 ? crc << 1 ^ kPolynomial : crc << 1);
  }
  return crc;
}

const CLProtocolCamera::Command CLProtocolCamera::kCommands[] = {
    {'I', &CLProtocolCamera::Identify}, {'R', &CLProtocolCamera::Read},     {kWriteLetter, &CLProtocolCamera::Write},
    {'L', &CLProtocolCamera::List},     {'D', &CLProtocolCamera::Describe}, {'B', &CLProtocolCamera::ChangeRate},
};

CLProtocolCamera::CLProtocolCamera(const LabCLCamera& aCamera) : mCamera(aCamera), mMemory(aCamera) {
  for (std::size_t i = 0; i < aCamera.descriptions.size(); ++i)
    mDescriptions.push_back(MakeStoredDescription(aCamera, i));
}

void CLProtocolCamera::Restart() {
  mMemory.Restart();
  mRate = kFirstRate;
  mReadyNs = 0;
  mBytes.clear();
}

void CLProtocolCamera::Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) {
  mBytes.push_back(aByte);
  while (const std::optional<Packet> packet = TakePacket())
    Obey(*packet, aNowNs, aSpeak);
}

// Passes over what is no packet byte by byte, so that one behind it is found.
std::optional<CLProtocolCamera::Packet> CLProtocolCamera::TakePacket() {
  while (mBytes.size() >= kHeaderBytes) {
    const std::span<const std::uint8_t> all(mBytes);
    const std::size_t size = kHeaderBytes + GetWord(all, 4) + kCRCBytes;
    const bool isHeader =
        all[0] == kFromHost && all[kCheckAt] == MakeHeaderCheck(all) && size <= kHeaderBytes + kMostData + kCRCBytes;
    if (isHeader && mBytes.size() < size)
      return std::nullopt;
    const bool isWhole = isHeader && MakeCLProtocolCRC(all.first(size - kCRCBytes)) == GetWord(all, size - kCRCBytes);
    Packet packet;
    if (isWhole)
      packet = {.command = all[1],
                .number = all[2],
                .data = {all.begin() + kHeaderBytes, all.begin() + static_cast<std::ptrdiff_t>(size - kCRCBytes)}};
    mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(isWhole ? size : 1));
    if (isWhole)
      return packet;
  }
  return std::nullopt;
}

void CLProtocolCamera::Obey(const Packet& aPacket, std::uint64_t aNowNs, const Speaker& aSpeak) {
  const auto speak = [&](std::uint8_t aStatus, const Bytes& aData, std::uint64_t aDueNs) {
    aSpeak({MakePacket(aPacket.command, aPacket.number, aStatus, aData), aDueNs});
  };
  if (aNowNs < mReadyNs)
    return speak(kBusy, {}, aNowNs);
  Bytes answer;
  const std::uint8_t status = Execute(aPacket, aNowNs, answer);
  mReadyNs = aNowNs;
  if (status == kDone && aPacket.command == kWriteLetter && mCamera.pendingMs > 0) {
    Bytes time;
    AddWord(time, mCamera.pendingMs);
    speak(kPending, time, aNowNs);
    mReadyNs = aNowNs + mCamera.pendingMs * kNanosecondsPerMillisecond;
  }
  speak(status, answer, mReadyNs);
}

std::uint8_t CLProtocolCamera::Execute(const Packet& aPacket, std::uint64_t aNowNs, Bytes& aAnswer) {
  const auto* const command = std::ranges::find(kCommands, static_cast<char>(aPacket.command), &Command::letter);
  return command == std::end(kCommands) ? kUnknownCommand : (this->*command->execute)(aPacket.data, aNowNs, aAnswer);
}

std::uint8_t CLProtocolCamera::Identify(const Bytes& aData, std::uint64_t, Bytes& aAnswer) {
  if (!aData.empty())
    return kBadData;
  for (const std::uint64_t address : {clregister::kManufacturerName, clregister::kFamilyName, clregister::kModelName,
                                      clregister::kDeviceVersion, clregister::kSerialNumber}) {
    // Five of them, and their ends, have to fit.
    const std::string text = mMemory.GetText(address).substr(0, kMostData / 5 - 1);
    aAnswer.insert(aAnswer.end(), text.begin(), text.end());
    aAnswer.push_back(0);
  }
  return kDone;
}

std::uint8_t CLProtocolCamera::Read(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer) {
  if (aData.size() != kAddressBytes + 2)
    return kBadData;
  const std::size_t length = GetWord(aData, kAddressBytes);
  if (length == 0 || length > kMostRegisterBytes)
    return kBadData;
  Bytes read(length);
  const CLAccess access = mMemory.Read(DecodeInteger(aData.data()), read, aNowNs);
  if (access == CLAccess::Done)
    aAnswer = std::move(read);
  return GetStatus(access);
}

std::uint8_t CLProtocolCamera::Write(const Bytes& aData, std::uint64_t, Bytes&) {
  if (aData.size() <= kAddressBytes || aData.size() > kAddressBytes + kMostRegisterBytes)
    return kBadData;
  return GetStatus(mMemory.Write(DecodeInteger(aData.data()), std::span(aData).subspan(kAddressBytes)));
}

std::uint8_t CLProtocolCamera::List(const Bytes& aData, std::uint64_t, Bytes& aAnswer) {
  if (!aData.empty())
    return kBadData;
  aAnswer.push_back(static_cast<std::uint8_t>(mDescriptions.size()));
  for (std::size_t i = 0; i < mDescriptions.size(); ++i) {
    aAnswer.push_back(mCamera.descriptions[i] == DescriptionFormat::Zipped ? 1 : 0);
    aAnswer.push_back(static_cast<std::uint8_t>(kDescriptionMajor));
    aAnswer.push_back(static_cast<std::uint8_t>(i));
    AddLong(aAnswer, static_cast<std::uint32_t>(mDescriptions[i].size()));
  }
  return kDone;
}

std::uint8_t CLProtocolCamera::Describe(const Bytes& aData, std::uint64_t, Bytes& aAnswer) {
  if (aData.size() != 1 + kAddressBytes + 2)
    return kBadData;
  const std::size_t index = aData[0];
  const std::size_t offset = DecodeInteger(aData.data() + 1);
  const std::size_t length = GetWord(aData, 1 + kAddressBytes);
  if (length == 0 || length > kMostRegisterBytes)
    return kBadData;
  if (index >= mDescriptions.size() || offset >= mDescriptions[index].size())
    return kBadValue;
  const std::string piece = mDescriptions[index].substr(offset, length);
  aAnswer.assign(piece.begin(), piece.end());
  return kDone;
}

std::uint8_t CLProtocolCamera::ChangeRate(const Bytes& aData, std::uint64_t, Bytes& aAnswer) {
  if (aData.empty()) {
    AddLong(aAnswer, mRate);
    for (const std::uint32_t rate : mCamera.rates)
      AddLong(aAnswer, rate);
    return kDone;
  }
  if (aData.size() != kAddressBytes)
    return kBadData;
  const std::uint32_t rate = DecodeInteger(aData.data());
  if (std::ranges::find(mCamera.rates, rate) == mCamera.rates.end())
    return kBadValue;
  mRate = rate; // The answer still goes out at the former one.
  return kDone;
}

} // namespace krtransport
