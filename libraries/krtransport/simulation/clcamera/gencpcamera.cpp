#include "simulation/clcamera/gencpcamera.h"

#include "simulation/clcamera/gencpbootstrap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace krtransport {

using namespace gencpregister;

namespace {

constexpr std::uint16_t kChannel = 0;
constexpr std::uint16_t kRequestAnswer = 1 << 14;
constexpr std::uint16_t kSentAgain = 1 << 15;

constexpr std::uint16_t kReadMemory = 0x0800;
constexpr std::uint16_t kWriteMemory = 0x0802;
constexpr std::uint16_t kPending = 0x0805;
constexpr std::uint16_t kAnswerBit = 1;

constexpr std::uint16_t kSuccess = 0x0000;
constexpr std::uint16_t kNotImplemented = 0x8001;
constexpr std::uint16_t kInvalidParameter = 0x8002;
constexpr std::uint16_t kInvalidAddress = 0x8003;
constexpr std::uint16_t kWriteProtect = 0x8004;
constexpr std::uint16_t kAccessDenied = 0x8006;
constexpr std::uint16_t kBusy = 0x8007;
constexpr std::uint16_t kInvalidHeader = 0x800E;

constexpr std::size_t kReadBytes = 12; // Of a command to read: address, reserved, length.
constexpr std::size_t kAddressBytes = 8;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;
constexpr std::uint64_t kPendingMarginMs = 1000; // So much later than the camera thinks is an answer still no failure.
constexpr std::uint64_t kMostPendingMs = 0xFFFF;
constexpr std::uint32_t kLeastHeartbeatMs = 500;
constexpr std::uint64_t kHeartbeatOn = 1;
constexpr std::uint64_t kWriteAnswerBits = 200; // 20 bytes on the line.

std::uint64_t GetLong(std::span<const std::uint8_t> aBytes) {
  return std::uint64_t{DecodeInteger(aBytes.data())} << 32 | DecodeInteger(aBytes.data() + 4);
}

// The time that the acknowledge of a write takes.
std::uint64_t GetAnswerNs(std::uint32_t aRate) {
  return kWriteAnswerBits * 1000000000 / aRate;
}

std::uint16_t GetStatus(CLAccess aAccess) {
  switch (aAccess) {
  case CLAccess::Done:
    return kSuccess;
  case CLAccess::NoRegister:
    return kInvalidAddress;
  case CLAccess::OnlyRead:
    return kWriteProtect;
  case CLAccess::OnlyWritten:
    return kAccessDenied;
  default:
    return kInvalidParameter;
  }
}

} // namespace

GenCPCamera::GenCPCamera(const LabCLCamera& aCamera) : mCamera(aCamera), mMemory(aCamera) {
  DefineGenCPRegisters(mMemory, aCamera);
}

void GenCPCamera::Restart() {
  mMemory.Restart();
  mListener.Clear();
  ResetLink();
}

// As nobody controls it.
void GenCPCamera::ResetLink() {
  mMemory.SetInteger(kAccessPrivilege, 0);
  mMemory.SetInteger(kCurrentBaudRate, ListGenCPRates().front().bit);
  mDone.reset();
  mNewRate.reset();
}

std::uint32_t GenCPCamera::GetRate(std::uint64_t aNowNs) {
  LookAtTime(aNowNs);
  return FindGenCPRate(mCamera, mMemory.GetInteger(kCurrentBaudRate))->rate;
}

// What becomes of silence: a speed that was not confirmed is given up, and a host that says nothing loses control.
void GenCPCamera::LookAtTime(std::uint64_t aNowNs) {
  if (mNewRate && aNowNs > mNewRate->endNs) {
    mMemory.SetInteger(kCurrentBaudRate, mNewRate->formerBit);
    mNewRate.reset();
    mDone.reset(); // The host may ask for it again.
  }
  const bool isWatched =
      mMemory.GetInteger(kAccessPrivilege) != 0 && (mMemory.GetLong(kDeviceConfiguration) & kHeartbeatOn) != 0;
  const std::uint64_t limitNs =
      std::uint64_t{std::max(mMemory.GetInteger(kHeartbeatTimeout), kLeastHeartbeatMs)} * kNanosecondsPerMillisecond;
  const std::uint64_t sinceNs = mDone ? std::max(mDone->readyNs, mHeardNs) : mHeardNs;
  if (isWatched && aNowNs > sinceNs + limitNs)
    ResetLink();
}

void GenCPCamera::Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) {
  mListener.Hear(aByte);
  while (const std::optional<GenCPCommand> command = mListener.Take()) {
    if (command->channel == kChannel)
      Obey(*command, aNowNs, aSpeak);
  }
}

void GenCPCamera::Obey(const GenCPCommand& aCommand, std::uint64_t aNowNs, const Speaker& aSpeak) {
  const bool isAnswered = (aCommand.flags & kRequestAnswer) != 0;
  const auto speak = [&](CameraAnswer aAnswer) {
    if (isAnswered)
      aSpeak(std::move(aAnswer));
  };
  const bool isBusy = mDone && aNowNs < mDone->readyNs;
  const bool isSame = mDone && aCommand.request != 0 && mDone->request == aCommand.request && mDone->id == aCommand.id;
  mHeardNs = aNowNs;
  if (isSame)
    return speak(isBusy ? MakePending(aCommand, mDone->readyNs, aNowNs) : CameraAnswer{mDone->answer, aNowNs});
  GenCPAnswer answer{.channel = aCommand.channel,
                     .id = static_cast<std::uint16_t>(aCommand.id | kAnswerBit),
                     .request = aCommand.request};
  if (isBusy) {
    answer.status = kBusy;
    return speak({MakeGenCPPacket(answer), aNowNs});
  }
  answer.status = Execute(aCommand, aNowNs, answer.data);
  Done done{.id = aCommand.id, .request = aCommand.request, .readyNs = aNowNs, .answer = MakeGenCPPacket(answer)};
  if (IsSlow(aCommand, answer.status)) {
    done.readyNs = aNowNs + mCamera.pendingMs * kNanosecondsPerMillisecond;
    speak(MakePending(aCommand, done.readyNs, aNowNs));
  }
  speak({done.answer, done.readyNs});
  mDone = std::move(done);
}

bool GenCPCamera::IsSlow(const GenCPCommand& aCommand, std::uint16_t aStatus) const {
  return mCamera.pendingMs > 0 && aStatus == kSuccess && aCommand.id == kWriteMemory &&
         mMemory.IsFeature(GetLong(aCommand.data));
}

CameraAnswer GenCPCamera::MakePending(const GenCPCommand& aCommand, std::uint64_t aReadyNs,
                                      std::uint64_t aNowNs) const {
  const std::uint64_t leftMs = (aReadyNs - aNowNs) / kNanosecondsPerMillisecond + kPendingMarginMs;
  GenCPAnswer answer{.channel = aCommand.channel, .id = kPending, .request = aCommand.request, .data = Bytes(4)};
  EncodeInteger(static_cast<std::uint32_t>(std::min(leftMs, kMostPendingMs)), answer.data.data());
  return {MakeGenCPPacket(answer), aNowNs};
}

std::uint16_t GenCPCamera::Execute(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData) {
  if ((aCommand.flags & ~(kRequestAnswer | kSentAgain)) != 0 || aCommand.isTooLong)
    return kInvalidHeader;
  if (aCommand.id == kReadMemory)
    return Read(aCommand, aNowNs, aData);
  return aCommand.id == kWriteMemory ? Write(aCommand, aNowNs, aData) : kNotImplemented;
}

std::uint16_t GenCPCamera::Read(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData) {
  if (aCommand.data.size() != kReadBytes)
    return kInvalidHeader;
  const std::uint32_t length = DecodeInteger(aCommand.data.data() + kAddressBytes); // Its upper half is reserved.
  if (length == 0 || length + kGenCPHeaderBytes > mCamera.packetBytes)
    return kInvalidParameter;
  Bytes read(length);
  const std::uint16_t status = GetStatus(mMemory.Read(GetLong(aCommand.data), read, aNowNs));
  if (status == kSuccess)
    aData = std::move(read);
  return status;
}

std::uint16_t GenCPCamera::Write(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData) {
  if (aCommand.data.size() <= kAddressBytes)
    return kInvalidHeader;
  if (aCommand.request == 0 || aCommand.data.size() + kGenCPHeaderBytes > mCamera.packetBytes)
    return kInvalidParameter;
  const std::uint64_t address = GetLong(aCommand.data);
  const auto bytes = std::span<const std::uint8_t>(aCommand.data).subspan(kAddressBytes);
  if (!IsAccepted(address, bytes))
    return kInvalidParameter;
  const std::uint32_t formerBit = mMemory.GetInteger(kCurrentBaudRate);
  const std::uint16_t status = GetStatus(mMemory.Write(address, bytes));
  if (status != kSuccess)
    return status;
  Apply(address, formerBit, aNowNs);
  aData.resize(4);
  EncodeInteger(static_cast<std::uint32_t>(bytes.size()), aData.data()); // Reserved, and how much was written.
  return kSuccess;
}

// The rules of the bootstrap registers that are whole numbers.
bool GenCPCamera::IsAccepted(std::uint64_t aAddress, std::span<const std::uint8_t> aBytes) const {
  if (aBytes.size() != 4)
    return true; // For the memory to judge.
  const std::uint32_t value = DecodeInteger(aBytes.data());
  switch (aAddress) {
  case kCurrentBaudRate:
    return FindGenCPRate(mCamera, value) != nullptr;
  case kAccessPrivilege:
    return value <= 1;
  case kTimestampLatch:
    return value == 1;
  default:
    return true;
  }
}

void GenCPCamera::Apply(std::uint64_t aAddress, std::uint32_t aFormerBit, std::uint64_t aNowNs) {
  switch (aAddress) {
  case kCurrentBaudRate:
    if (mMemory.GetInteger(kCurrentBaudRate) == aFormerBit)
      mNewRate.reset(); // That is the confirmation.
    else
      mNewRate = NewRate{aFormerBit, aNowNs + GetAnswerNs(FindGenCPRate(mCamera, aFormerBit)->rate) +
                                         mCamera.confirmationMs * kNanosecondsPerMillisecond};
    break;
  case kAccessPrivilege:
    if (mMemory.GetInteger(kAccessPrivilege) == 0)
      ResetLink();
    break;
  case kTimestampLatch:
    mMemory.SetLong(kTimestamp, aNowNs);
    break;
  default:
    break;
  }
}

} // namespace krtransport
