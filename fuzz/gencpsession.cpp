// Whatever a GenCP camera may have in its registers, and however it may answer: it is found, controlled and described,
// or it is said why not. Of a camera that answers as it should, what is read is what it has.
//
// The first byte says how many follow that say how the camera answers, one for each command; the others are its
// registers from address 0 on.

#include "gencp/gencpsession.h"
#include "gencp/packet.h"
#include "gencp/status.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace {

using namespace krcamerabridge;

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kMostCommands = 300;
constexpr std::uint64_t kAddressBytes = 8;
constexpr std::size_t kReadBytes = 256;
// As short as they can be: nobody is late here, and what is not there will never come.
constexpr CycleTimes kTimes = {.marginMs = 0,
                               .gapMs = 0,
                               .busyPauseMs = 0,
                               .busyLimitMs = 1000,
                               .pendingLimitMs = 1000,
                               .closeLimitMs = 1000,
                               .hurriedCloseMs = 0};

/// The camera with the line to it.
class Camera final : public ICameraLine {
public:
  Camera(Bytes aManners, Bytes aRegisters) : mManners(aManners), mRegisters(aRegisters) {}

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t,
                const std::stop_token&) override {
    if (mCommands > kMostCommands)
      return {KrResult::Code::ConnectionLost, "The device is gone."};
    if (mAnswer.empty()) // As from a line that has lost some: waiting would find nothing.
      return {KrResult::Code::ProtocolError, "Bytes were lost."};
    aRead = std::min(aSize, mAnswer.size());
    std::copy_n(mAnswer.begin(), aRead, aBytes);
    mAnswer.erase(mAnswer.begin(), mAnswer.begin() + static_cast<std::ptrdiff_t>(aRead));
    return {};
  }
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t, const std::stop_token&) override {
    Packet command;
    std::size_t size = 0;
    Require(ParsePacket({aBytes, aSize}, command, size) == PacketState::Complete && size == aSize);
    if (++mCommands > kMostCommands)
      return {KrResult::Code::ConnectionLost, "The device is gone."};
    Obey(command);
    return {};
  }
  void DropReceived() override { mAnswer.clear(); }
  std::vector<std::uint32_t> GetSupportedBaudRates() override { return {9600, 115200, 921600}; }
  std::uint32_t GetBaudRate() override { return mBaudRate; }
  KrResult SetBaudRate(std::uint32_t aBaudRate) override {
    const std::vector<std::uint32_t> rates = GetSupportedBaudRates();
    Require(std::ranges::find(rates, aBaudRate) != rates.end());
    mBaudRate = aBaudRate;
    return {};
  }

  /// Whether all was answered as the registers say.
  bool IsHonest() const { return mIsHonest; }
  /// Who waits for the camera gives up when it has refused to be set, as that is tried again only after a while.
  std::stop_token GetStop() const { return mStop.get_token(); }

private:
  enum class Manner { Plain, Refuses, TooShort, TooLong, OfAnother, Later, Damaged, Silent };

  void Obey(const Packet& aCommand) {
    const std::uint8_t byte = mManners.empty() ? std::uint8_t{0} : mManners.front();
    mManners = mManners.subspan(mManners.empty() ? 0 : 1);
    const auto manner = static_cast<Manner>(byte % 8);
    const std::size_t degree = byte / 8;
    Packet answer{.commandID = GetAcknowledge(aCommand.commandID), .requestID = aCommand.requestID};
    Execute(aCommand, answer);
    if (aCommand.commandID == kWriteMemoryCommand && manner != Manner::Plain)
      mStop.request_stop();
    mIsHonest = mIsHonest && (manner == Manner::Plain || manner == Manner::Later);
    Spoil(manner, degree, answer);
    mAnswer.clear();
    if (manner == Manner::Silent)
      return;
    if (manner == Manner::Later)
      Say({.commandID = kPendingAcknowledge,
           .requestID = aCommand.requestID,
           .specific = {0, 0, 0, static_cast<std::uint8_t>(degree)}});
    Say(answer);
    if (manner == Manner::Damaged)
      mAnswer[degree % mAnswer.size()] ^= 0x10;
  }

  void Execute(const Packet& aCommand, Packet& aAnswer) {
    const Bytes specific = aCommand.specific;
    Require(specific.size() >= kAddressBytes);
    const std::uint64_t address = ReadNumber(specific.first(kAddressBytes));
    if (aCommand.commandID == kWriteMemoryCommand) {
      Require(specific.size() > kAddressBytes && specific.size() <= kAddressBytes + kMaxWriteBytes);
      return;
    }
    Require(aCommand.commandID == kReadMemoryCommand && specific.size() == kReadMemoryBytes);
    const std::uint64_t size = ReadNumber(specific.last(2));
    Require(size > 0 && size <= kMaxReadBytes);
    if (address > mRegisters.size() || size > mRegisters.size() - address) {
      aAnswer.code = 0x8003; // There are no such registers.
      return;
    }
    const Bytes read = mRegisters.subspan(address, size);
    aAnswer.specific.assign(read.begin(), read.end());
  }

  static void Spoil(Manner aManner, std::size_t aDegree, Packet& aAnswer) {
    constexpr std::array<std::uint16_t, 8> kStatuses = {
        0x8001, kStatusInvalidParameter, 0x8005, kStatusBusy, kStatusMessageTimeout, kStatusInvalidHeader, 0x8FFF, 1};
    if (aManner == Manner::Refuses)
      aAnswer.code = kStatuses[aDegree % kStatuses.size()];
    if (aManner == Manner::TooShort)
      aAnswer.specific.resize(aAnswer.specific.size() - std::min(aAnswer.specific.size(), aDegree + 1));
    if (aManner == Manner::TooLong)
      aAnswer.specific.resize(std::min(aAnswer.specific.size() + aDegree + 1, kMaxSpecificBytes));
    if (aManner == Manner::OfAnother)
      aAnswer.requestID = static_cast<std::uint16_t>(aAnswer.requestID + aDegree + 1);
  }

  void Say(const Packet& aAnswer) {
    const std::vector<std::uint8_t> bytes = BuildPacket(aAnswer);
    mAnswer.insert(mAnswer.end(), bytes.begin(), bytes.end());
  }

  Bytes mManners;
  const Bytes mRegisters;
  std::vector<std::uint8_t> mAnswer;
  std::uint32_t mBaudRate = 9600;
  std::size_t mCommands = 0;
  bool mIsHonest = true;
  std::stop_source mStop;
};

void ReadRegisters(GenCPSession& aSession, const Camera& aCamera, Bytes aRegisters) {
  std::array<std::uint8_t, kReadBytes> bytes{};
  const auto part = std::span(bytes).first(std::min(bytes.size(), aRegisters.size()));
  const bool isRead = RequireReason(aSession.Read(0, part, aCamera.GetStop()));
  Require(!isRead || !aCamera.IsHonest() || std::equal(part.begin(), part.end(), aRegisters.begin()));
}

void ReadDescriptions(GenCPSession& aSession, const Camera& aCamera) {
  std::vector<ManifestEntry> entries;
  if (!RequireReason(aSession.ReadManifest(entries, aCamera.GetStop())))
    return;
  Require(!entries.empty());
  for (const ManifestEntry& entry : entries) {
    KrGenDescription description;
    if (RequireReason(aSession.ReadDescription(entry, description, aCamera.GetStop())))
      Require(!description.GetText().empty());
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  const Bytes input(aData + 1, aSize - 1);
  const std::size_t manners = std::min<std::size_t>(aData[0], input.size());
  const Bytes registers = input.subspan(manners);
  Camera camera(input.first(manners), registers);
  GenCPSession session(camera, kTimes);

  if (RequireReason(session.Open(camera.GetStop()))) {
    ReadRegisters(session, camera, registers);
    ReadDescriptions(session, camera);
    if (RequireReason(session.TakeControl(camera.GetStop())))
      static_cast<void>(RequireReason(session.Probe(camera.GetStop()))); // Whether it is there still is its business.
    Require(session.GetKeepAliveMs() == 0 || (session.GetKeepAliveMs() >= 10 && session.GetKeepAliveMs() <= 10000));
  }
  session.Close(camera.GetStop());
  Require(camera.GetBaudRate() == 9600); // The line is as it was.
  return 0;
}
