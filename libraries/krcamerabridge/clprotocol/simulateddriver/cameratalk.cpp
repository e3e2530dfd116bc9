#include "clprotocol/simulateddriver/cameratalk.h"

#include <cstddef>

namespace krsimulatedcl {

namespace {

constexpr CLINT32 kDone = 0x00;
constexpr CLINT32 kPending = 0x01;
constexpr CLINT32 kBusy = 0x86;
constexpr char kFromHost = '\xA5';
constexpr char kFromCamera = '\x5A';
constexpr std::size_t kHeaderBytes = 7;
constexpr std::size_t kCRCBytes = 2;
constexpr std::size_t kMostData = 264;
constexpr int kMostDropped = 4096;
constexpr int kMostStale = 16;
constexpr int kMostBusyAnswers = 100;
constexpr CLUINT32 kBusyPauseMs = 50;

char MakeHeaderCheck(const std::string& aHeader) {
  unsigned sum = 0;
  for (std::size_t i = 0; i < kHeaderBytes - 1; ++i)
    sum += static_cast<unsigned char>(aHeader[i]);
  return static_cast<char>(0xFF - sum % 0x100);
}

std::uint32_t MakeCRC(const std::string& aBytes) {
  std::uint32_t crc = 0xFFFF;
  for (const char byte : aBytes) {
    crc ^= static_cast<std::uint32_t>(static_cast<unsigned char>(byte)) << 8;
    for (int bit = 0; bit < 8; ++bit)
      crc = ((crc & 0x8000) != 0 ? crc << 1 ^ 0x1021 : crc << 1) & 0xFFFF;
  }
  return crc;
}

bool IsHeader(const std::string& aHeader) {
  return aHeader[0] == kFromCamera && aHeader[kHeaderBytes - 1] == MakeHeaderCheck(aHeader) &&
         GetNumber(aHeader, 4, 2) <= kMostData;
}

} // namespace

std::string MakeNumber(std::uint32_t aNumber, int aBytes) {
  std::string bytes;
  for (int shift = 8 * aBytes - 8; shift >= 0; shift -= 8)
    bytes += static_cast<char>(aNumber >> shift);
  return bytes;
}

std::uint32_t GetNumber(const std::string& aBytes, std::size_t aAt, std::size_t aCount) {
  std::uint32_t number = 0;
  for (std::size_t i = aAt; i < aAt + aCount; ++i)
    number = number << 8 | static_cast<unsigned char>(aBytes[i]);
  return number;
}

CLINT32 CameraTalk::Ask(char aCommand, const std::string& aData, int aTries) {
  constexpr CLINT32 kIsBusy = kFirstError - kBusy;
  CLINT32 result = CL_ERR_TIMEOUT;
  for (int tries = 0, busy = 0; tries < aTries && busy < kMostBusyAnswers;) {
    result = AskOnce(aCommand, aData);
    if (result != CL_ERR_TIMEOUT && result != kIsBusy)
      return result;
    ++(result == kIsBusy ? busy : tries);
    // What it says when it is done with the command before is not the answer to this one.
    if (result == kIsBusy)
      Pause();
  }
  return result == kIsBusy ? CL_ERR_TIMEOUT : result;
}

CLINT32 CameraTalk::AskOnce(char aCommand, const std::string& aData) {
  DropReceived();
  std::string packet = {kFromHost, aCommand, static_cast<char>(++mNumber), 0};
  packet += MakeNumber(static_cast<std::uint32_t>(aData.size()), 2);
  packet += MakeHeaderCheck(packet + '\0');
  packet += aData;
  packet += MakeNumber(MakeCRC(packet), 2);
  auto size = static_cast<CLUINT32>(packet.size());
  if (const CLINT32 code = mSerial->clSerialWrite(packet.data(), &size, mTimeoutMs); code < 0)
    return code;
  return AwaitEnd(aCommand);
}

CLINT32 CameraTalk::AwaitEnd(char aCommand) {
  for (int i = 0; i < kMostStale; ++i) {
    std::optional<Packet> packet = Receive();
    if (!packet)
      return CL_ERR_TIMEOUT;
    if (packet->command != aCommand || packet->number != mNumber)
      continue;
    mData = packet->data;
    if (packet->status == kDone)
      return CL_ERR_NO_ERR;
    return packet->status == kPending ? CL_ERR_PENDING_WRITE : kFirstError - packet->status;
  }
  return CL_ERR_TIMEOUT;
}

// The next packet that is whole, whatever comes before it.
std::optional<CameraTalk::Packet> CameraTalk::Receive() {
  std::string bytes;
  if (!Take(kHeaderBytes, bytes))
    return std::nullopt;
  for (int i = 0; !IsHeader(bytes); ++i) {
    bytes.erase(0, 1);
    if (i == kMostDropped || !Take(1, bytes))
      return std::nullopt;
  }
  const std::size_t size = GetNumber(bytes, 4, 2);
  if (!Take(size, bytes))
    return std::nullopt;
  const std::uint32_t crc = MakeCRC(bytes);
  if (!Take(kCRCBytes, bytes) || GetNumber(bytes, kHeaderBytes + size, kCRCBytes) != crc)
    return std::nullopt;
  return Packet{bytes[1], static_cast<std::uint8_t>(bytes[2]), static_cast<unsigned char>(bytes[3]),
                bytes.substr(kHeaderBytes, size)};
}

bool CameraTalk::Take(std::size_t aSize, std::string& aBytes) {
  std::string taken(aSize, 0);
  auto size = static_cast<CLUINT32>(aSize);
  if (mSerial->clSerialRead(taken.data(), &size, mTimeoutMs) < 0)
    return false;
  aBytes += taken;
  return true;
}

void CameraTalk::DropReceived() {
  char byte = 0;
  CLUINT32 size = 1;
  for (int i = 0; i < kMostDropped && mSerial->clSerialRead(&byte, &size, 0) >= 0; ++i)
    size = 1;
}

// Until the line says something, or for a moment.
void CameraTalk::Pause() {
  char byte = 0;
  CLUINT32 size = 1;
  static_cast<void>(mSerial->clSerialRead(&byte, &size, kBusyPauseMs));
}

} // namespace krsimulatedcl
