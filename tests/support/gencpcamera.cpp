#include "gencpcamera.h"

#include "await.h"
#include "wirechannel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace krtest {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kQuietMs = 20;
constexpr std::uint64_t kPrivilege = 0x204;

// The camera's own arithmetic: the sum's carries are added as they come.
std::uint16_t Sum(const Bytes& aBytes, std::size_t aFrom, std::size_t aTo) {
  std::uint32_t sum = 0;
  for (std::size_t i = aFrom; i < aTo; i += 2) {
    const std::uint32_t low = i + 1 < aTo ? aBytes[i + 1] : 0;
    sum += 256u * aBytes[i] + low;
    if (sum >= 0x10000)
      sum -= 0xFFFF;
  }
  return static_cast<std::uint16_t>(0xFFFF - sum);
}

std::uint64_t Number(const Bytes& aBytes, std::size_t aFrom, std::size_t aSize) {
  std::uint64_t number = 0;
  for (std::size_t i = aFrom; i < aFrom + aSize; ++i)
    number = number * 256 + aBytes[i];
  return number;
}

void Put(Bytes& aBytes, std::uint64_t aNumber, int aSize) {
  for (int shift = 8 * (aSize - 1); shift >= 0; shift -= 8)
    aBytes.push_back(static_cast<std::uint8_t>(aNumber >> shift & 0xFF));
}

Bytes MakeAnswer(std::uint16_t aChannel, std::uint16_t aStatus, std::uint16_t aCommand, std::uint16_t aRequest,
                 const Bytes& aData) {
  Bytes checked;
  Put(checked, aChannel, 2);
  Put(checked, aStatus, 2);
  Put(checked, aCommand, 2);
  Put(checked, aData.size(), 2);
  Put(checked, aRequest, 2);
  const std::uint16_t header = Sum(checked, 0, checked.size());
  checked.insert(checked.end(), aData.begin(), aData.end());
  Bytes packet{1, 0};
  Put(packet, header, 2);
  Put(packet, Sum(checked, 0, checked.size()), 2);
  packet.insert(packet.end(), checked.begin(), checked.end());
  return packet;
}

} // namespace

GenCPCamera::GenCPCamera() {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
    throw std::runtime_error("There is no pair of sockets.");
  mChannel = MakeWireChannel(ends[0], mWire);
  mCameraEnd = ends[1];
  PokeNumber(0x0000, 4, 0x00010003);
  Poke(0x0004, Bytes(64, 'm'));
  Poke(0x0044, Bytes(64, 'n'));
  PokeNumber(0x01C4, 8, 0x202); // Heartbeat and access privilege, serial map.
  PokeNumber(0x01CC, 4, 100);   // Response time.
  PokeNumber(0x01D0, 8, kManifest);
  PokeNumber(0x01D8, 8, kSerialMap);
  PokeNumber(0x01E0, 8, 0);
  PokeNumber(0x01E8, 4, 30000); // Heartbeat.
  PokeNumber(kPrivilege, 4, 0);
  PokeNumber(kSerialMap, 4, 0x01);
  PokeNumber(kSerialMap + 4, 4, 0x01);
  PokeNumber(kManifest, 8, 0);
  mThread = std::thread([this] { Work(); });
}

GenCPCamera::~GenCPCamera() {
  mIsEnding = true;
  ::shutdown(mCameraEnd, SHUT_RDWR);
  mThread.join();
  ::close(mCameraEnd);
}

std::shared_ptr<krsystem::IByteChannel> GenCPCamera::GetChannel() {
  return mChannel;
}

void GenCPCamera::Poke(std::uint64_t aAddress, const Bytes& aBytes) {
  const std::scoped_lock lock(mMutex);
  for (const std::uint8_t byte : aBytes)
    mRegisters[aAddress++] = byte;
}

void GenCPCamera::PokeNumber(std::uint64_t aAddress, std::size_t aSize, std::uint64_t aValue) {
  Bytes bytes;
  Put(bytes, aValue, static_cast<int>(aSize));
  Poke(aAddress, bytes);
}

Bytes GenCPCamera::Peek(std::uint64_t aAddress, std::size_t aSize) {
  const std::scoped_lock lock(mMutex);
  Bytes bytes;
  for (std::size_t i = 0; i < aSize; ++i)
    bytes.push_back(mRegisters.at(aAddress + i));
  return bytes;
}

std::uint64_t GenCPCamera::PeekNumber(std::uint64_t aAddress, std::size_t aSize) {
  return Number(Peek(aAddress, aSize), 0, aSize);
}

void GenCPCamera::AddFile(std::uint32_t aVersion, std::uint32_t aKind, const std::string& aContent,
                          const Bytes& aSha1) {
  const std::uint64_t address = mFileEnd;
  Poke(address, Bytes(aContent.begin(), aContent.end()));
  mFileEnd += aContent.size() + 3; // Files need not be aligned.
  const std::uint64_t entry = kManifest + 8 + 64 * mFileCount;
  Poke(entry, Bytes(64, 0));
  PokeNumber(entry, 4, aVersion);
  PokeNumber(entry + 4, 4, aKind);
  PokeNumber(entry + 8, 8, address);
  PokeNumber(entry + 16, 8, aContent.size());
  Poke(entry + 24, aSha1);
  PokeNumber(kManifest, 8, ++mFileCount);
}

void GenCPCamera::SetFaults(const CameraFaults& aFaults) {
  const std::scoped_lock lock(mMutex);
  mFaults = aFaults;
}

CameraFaults GenCPCamera::GetFaults() {
  const std::scoped_lock lock(mMutex);
  return mFaults;
}

void GenCPCamera::SetMost(std::size_t aRead, std::size_t aWritten) {
  const std::scoped_lock lock(mMutex);
  mMostRead = aRead;
  mMostWritten = aWritten;
}

void GenCPCamera::Forget() {
  PokeNumber(kPrivilege, 4, 0);
  const std::scoped_lock lock(mMutex);
  SetRate(9600);
}

void GenCPCamera::RefuseControl(bool aRefuses) {
  const std::scoped_lock lock(mMutex);
  mRefusesControl = aRefuses;
}

std::vector<HeardCommand> GenCPCamera::TakeWrites() {
  const std::scoped_lock lock(mMutex);
  return std::exchange(mWrites, {});
}

std::vector<HeardCommand> GenCPCamera::TakeHeard() {
  const std::scoped_lock lock(mMutex);
  return std::exchange(mHeard, {});
}

bool WireEnds::AwaitCameraRate(std::uint32_t aRate) const {
  return krtest::Await([&] { return cameraRate == aRate; });
}

bool GenCPCamera::AwaitHeard(std::size_t aCount) {
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return mHeard.size() >= aCount; });
}

bool GenCPCamera::AwaitReadsOf(std::uint64_t aAddress, int aCount) {
  return AwaitCommands(0x0800, aAddress, aCount);
}

bool GenCPCamera::AwaitWritesTo(std::uint64_t aAddress, int aCount) {
  return AwaitCommands(0x0802, aAddress, aCount);
}

bool GenCPCamera::AwaitCommands(std::uint16_t aCommand, std::uint64_t aAddress, int aCount) {
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] {
    return std::ranges::count_if(mHeard, [&](const HeardCommand& aHeard) {
             return aHeard.command == aCommand && aHeard.address == aAddress;
           }) >= aCount;
  });
}

void GenCPCamera::Work() {
  std::array<std::uint8_t, 512> bytes;
  while (!mIsEnding) {
    pollfd polled{mCameraEnd, POLLIN, 0};
    const int ready = ::poll(&polled, 1, kQuietMs);
    const ssize_t read = ready > 0 ? ::recv(mCameraEnd, bytes.data(), bytes.size(), 0) : 0;
    if (ready > 0 && read <= 0)
      return;
    if (ready == 0) {
      OnQuiet();
      continue;
    }
    std::unique_lock lock(mMutex);
    const Bytes heard = Spoil(Bytes(bytes.begin(), bytes.begin() + read));
    lock.unlock();
    Hear(heard);
  }
}

// What is no whole packet by now was damaged.
void GenCPCamera::OnQuiet() {
  const std::scoped_lock lock(mMutex);
  mBuffer.clear();
  mIsFlushing = false;
}

void GenCPCamera::Hear(const Bytes& aBytes) {
  mBuffer.insert(mBuffer.end(), aBytes.begin(), aBytes.end());
  while (!mIsFlushing && mBuffer.size() >= 16) {
    const std::size_t size = 16 + Number(mBuffer, 12, 2);
    if (mBuffer[0] != 1 || mBuffer[1] != 0 || Sum(mBuffer, 6, 16) != Number(mBuffer, 2, 2) || size > 1024) {
      mIsFlushing = true;
    } else if (mBuffer.size() < size) {
      return;
    } else {
      const Bytes packet(mBuffer.begin(), mBuffer.begin() + static_cast<std::ptrdiff_t>(size));
      mBuffer.erase(mBuffer.begin(), mBuffer.begin() + static_cast<std::ptrdiff_t>(size));
      if (Sum(packet, 6, size) == Number(packet, 4, 2))
        Handle(packet);
      else
        mIsFlushing = true;
    }
  }
}

void GenCPCamera::Handle(const Bytes& aPacket) {
  HeardCommand heard{static_cast<std::uint16_t>(Number(aPacket, 8, 2)),
                     static_cast<std::uint16_t>(Number(aPacket, 10, 2)),
                     static_cast<std::uint16_t>(Number(aPacket, 14, 2))};
  const Bytes specific(aPacket.begin() + 16, aPacket.end());
  if (specific.size() >= 8)
    heard.address = Number(specific, 0, 8);
  heard.bytes = heard.command == 0x0800 && specific.size() == 12
                    ? Number(specific, 10, 2)
                    : specific.size() - std::min<std::size_t>(8, specific.size());
  std::unique_lock lock(mMutex);
  mHeard.push_back(heard);
  mAddress = heard.address;
  mChanged.notify_all();
  if (Ignores(heard))
    return;
  const bool isConfirmation = heard.command == 0x0802 && heard.address == kSerialMap + 4 && mAwaitsConfirmation;
  if (isConfirmation && mFaults.lostConfirmations > 0) {
    --mFaults.lostConfirmations;
    SetRate(mRateBefore);
    return;
  }
  if (Repeat(heard))
    return;
  lock.unlock();
  if (Delay(heard))
    return;
  lock.lock();
  if (isConfirmation && mFaults.lostConfirmationAnswers > 0) {
    --mFaults.lostConfirmationAnswers;
    ++mFaults.lostAnswers;
  }
  std::uint16_t status = 0;
  const Bytes data = Execute(heard, specific, status);
  Acknowledge(status, static_cast<std::uint16_t>(heard.command + 1), heard.request, data);
  if (mNextRate != 0)
    SetRate(std::exchange(mNextRate, 0));
}

bool GenCPCamera::Ignores(const HeardCommand& aHeard) {
  if (mFaults.isSilent && mFaults.hasNoise)
    Send({0x01, 0x00, 0x55, 0xAA, 0x01, 0x17, 0x00, 0x00, 0x01});
  return mFaults.isSilent || aHeard.address >= mFaults.deafFrom ||
         (mFaults.mostHeard > 0 && aHeard.bytes > mFaults.mostHeard);
}

// Answers a command that comes again.
bool GenCPCamera::Repeat(const HeardCommand& aHeard) {
  if ((aHeard.flags & 0x8000) != 0 && mFaults.refusedRepeats > 0) {
    --mFaults.refusedRepeats;
    Send(MakeAnswer(0, mFaults.refusal, static_cast<std::uint16_t>(aHeard.command + 1), aHeard.request, {}));
    return true;
  }
  if (aHeard.request == 0 || mLastRequest != aHeard.request)
    return false;
  if (mFaults.lostAnswers > 0)
    --mFaults.lostAnswers;
  else
    Send(mLastAnswer);
  return true;
}

// Asks for time, or to come back later, as ordered. True when the command is not carried out.
bool GenCPCamera::Delay(const HeardCommand& aHeard) {
  while (!mIsEnding) {
    std::unique_lock lock(mMutex);
    if (mFaults.busyAnswers > 0) {
      --mFaults.busyAnswers;
      Send(MakeAnswer(0, 0x8007, static_cast<std::uint16_t>(aHeard.command + 1), aHeard.request, {}));
      return true;
    }
    if (mFaults.pendingAnswers == 0 || aHeard.address < mFaults.pendingFrom || aHeard.address > mFaults.pendingTo)
      return false;
    --mFaults.pendingAnswers;
    const std::uint16_t milliseconds = mFaults.pendingMs;
    Bytes time{0, 0};
    Put(time, milliseconds, 2);
    Send(MakeAnswer(0, 0, 0x0805, aHeard.request, time));
    // It really works so long; what it says is no more than it needs.
    mChanged.wait_for(lock, std::chrono::milliseconds(milliseconds + mFaults.lateMs),
                      [this] { return mIsEnding.load(); });
  }
  return true;
}

bool GenCPCamera::Has(std::uint64_t aAddress, std::size_t aSize) const {
  for (std::size_t i = 0; i < aSize; ++i) {
    if (!mRegisters.contains(aAddress + i))
      return false;
  }
  return true;
}

Bytes GenCPCamera::Execute(const HeardCommand& aHeard, const Bytes& aSpecific, std::uint16_t& aStatus) {
  const bool isRead = aHeard.command == 0x0800;
  const std::size_t most = isRead ? mMostRead : mMostWritten;
  if (!isRead && aHeard.command != 0x0802)
    aStatus = 0x8001;
  else if (aHeard.bytes == 0 || (most != 0 && aHeard.bytes > most) || (!isRead && aHeard.request == 0))
    aStatus = 0x8002;
  else if (!Has(aHeard.address, aHeard.bytes))
    aStatus = 0x8003;
  if (aStatus != 0)
    return {};
  if (!isRead)
    return ExecuteWrite(aHeard, Bytes(aSpecific.begin() + 8, aSpecific.end()), aStatus);
  Bytes data;
  for (std::size_t i = 0; i < aHeard.bytes; ++i)
    data.push_back(mRegisters[aHeard.address + i]);
  if (mFaults.wrongLengths > 0) {
    --mFaults.wrongLengths;
    data.pop_back();
  }
  return data;
}

Bytes GenCPCamera::ExecuteWrite(const HeardCommand& aHeard, Bytes aData, std::uint16_t& aStatus) {
  mWrites.push_back(aHeard);
  Bytes written;
  if (mFaults.halfWrites > 0) {
    --mFaults.halfWrites;
    aData.resize(aData.size() / 2);
    Put(written, aData.size(), 4);
  }
  aStatus = Write(aHeard.address, aData);
  return written;
}

std::uint16_t GenCPCamera::Write(std::uint64_t aAddress, const Bytes& aData) {
  if (aAddress < 0x180)
    return 0x8004;
  if (aAddress == kPrivilege && mRefusesControl && aData.back() != 0)
    return 0x8006;
  const bool hadControl = mRegisters[kPrivilege + 3] == 1;
  if (aAddress == kSerialMap + 4) {
    const std::uint64_t bit = Number(aData, 0, aData.size());
    std::uint32_t rate = 9600;
    for (const auto& [rateBit, value] : std::map<std::uint64_t, std::uint32_t>{
             {0x02, 19200}, {0x04, 38400}, {0x08, 57600}, {0x10, 115200}, {0x80, 921600}}) {
      if (bit == rateBit)
        rate = value;
    }
    if (mAwaitsConfirmation && rate == mWire->cameraRate) {
      mAwaitsConfirmation = false;
    } else {
      mRateBefore = mWire->cameraRate;
      mNextRate = rate;
    }
  }
  for (std::size_t i = 0; i < aData.size(); ++i)
    mRegisters[aAddress + i] = aData[i];
  if (aAddress == kPrivilege && hadControl && aData.back() == 0)
    mNextRate = 9600;
  return 0;
}

void GenCPCamera::SetRate(std::uint32_t aRate) {
  mAwaitsConfirmation = aRate != 9600 && aRate != mRateBefore;
  mWire->cameraRate = aRate;
}

void GenCPCamera::Acknowledge(std::uint16_t aStatus, std::uint16_t aCommand, std::uint16_t aRequest,
                              const Bytes& aData) {
  const Bytes answer = MakeAnswer(0, aStatus, aCommand, aRequest, aData);
  mLastRequest = aRequest;
  mLastAnswer = answer;
  if (mFaults.lostAnswers > 0) {
    --mFaults.lostAnswers;
    return;
  }
  if (mFaults.hasRubbish)
    Send({0x00, 0x01, 0x01, 0x00, 0x55, 0x01, 0x00, 0x12, 0x34});
  if (mFaults.hasForeignAnswers) {
    const Bytes foreign(aData.size(), 0xEE);
    Send(MakeAnswer(0, 0, aCommand, static_cast<std::uint16_t>(aRequest + 1), foreign));
    Send(MakeAnswer(3, 0, aCommand, aRequest, foreign));
    Send(MakeAnswer(0, 0, 0x0C00, aRequest, foreign));
  }
  Send(answer);
}

void GenCPCamera::Send(const Bytes& aBytes) {
  Bytes bytes = Spoil(aBytes);
  if (mFaults.damagedAnswers > 0 && mAddress >= mFaults.damagedFrom && !bytes.empty()) {
    --mFaults.damagedAnswers;
    bytes.back() ^= 0x55;
  }
  if (mWire->hostRate != mWire->cameraRate)
    std::ranges::transform(bytes, bytes.begin(), [](std::uint8_t aByte) { return aByte ^ 0xB5; });
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = ::send(mCameraEnd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR)
      return;
    sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
}

Bytes GenCPCamera::Spoil(const Bytes& aBytes) {
  std::uniform_real_distribution<double> chance(0, 1);
  Bytes spoilt;
  for (std::uint8_t byte : aBytes) {
    const double drawn = chance(mRandom);
    const int copies = drawn < mFaults.lost ? 0 : drawn < mFaults.lost + mFaults.doubled ? 2 : 1;
    if (chance(mRandom) < mFaults.changed) {
      byte ^= static_cast<std::uint8_t>(1u << (mRandom() % 8));
      ++mFaultCount;
    }
    mFaultCount += copies != 1 ? 1 : 0;
    spoilt.insert(spoilt.end(), static_cast<std::size_t>(copies), byte);
  }
  return spoilt;
}

} // namespace krtest
