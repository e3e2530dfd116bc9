#include "gencp/gencpsession.h"

#include "gencp/accesstime.h"
#include "gencp/bootstrapmap.h"
#include "gencp/sha1.h"
#include "krbase/rest.h"

#include <algorithm>
#include <string>
#include <utility>

namespace krcamerabridge {

namespace {

// What a camera says of times is believed within these.
constexpr std::uint64_t kShortestResponseMs = 50;
constexpr std::uint64_t kLongestResponseMs = 10000;
constexpr std::uint64_t kLongestHeartbeatMs = 30000;
constexpr std::uint32_t kShortestKeepAliveMs = 10;

KrResult TellCancelled() {
  return {KrResult::Code::Aborted, "Talking to the camera was cancelled."};
}

} // namespace

GenCPSession::GenCPSession(ICameraLine& aLine, const CycleTimes& aTimes)
    : mTimes(aTimes), mCycle(aLine, aTimes), mMemory(mCycle), mRate(aLine, mCycle, mMemory) {}

GenCPSession::~GenCPSession() {
  GenCPSession::Close({});
}

KrResult GenCPSession::Open(const std::stop_token& aStop) {
  mIsOpen = true;
  if (KrResult result = mRate.FindCamera(aStop); !result.IsOK())
    return result;
  if (KrResult result = CheckVersion(aStop); !result.IsOK())
    return result;
  const auto read = [&](const BootstrapRegister& aRegister, std::uint64_t& aValue) {
    return mMemory.ReadValue(aRegister.address, aRegister.bytes, aValue, aStop);
  };
  std::uint64_t responseMs = 0;
  if (KrResult result = read(kResponseTimeRegister, responseMs); !result.IsOK())
    return result;
  mCycle.SetResponseTime(static_cast<std::uint32_t>(std::clamp(responseMs, kShortestResponseMs, kLongestResponseMs)));
  if (KrResult result = read(kCapabilityRegister, mCapabilities); !result.IsOK())
    return result;
  return (mCapabilities & kHasSerialMap) != 0 ? read(kSerialMapAddressRegister, mSerialMap) : KrResult();
}

KrResult GenCPSession::CheckVersion(const std::stop_token& aStop) {
  constexpr std::uint64_t kKnownMajor = 1;
  std::uint64_t version = 0;
  KrResult result = mMemory.ReadValue(kVersionRegister.address, kVersionRegister.bytes, version, aStop);
  if (!result.IsOK() || version >> 16 == kKnownMajor)
    return result;
  return {KrResult::Code::NotSupported, "The camera speaks GenCP " + std::to_string(version >> 16) + "." +
                                            std::to_string(version & 0xFFFF) + "; only 1.x is known."};
}

KrResult GenCPSession::TakeControl(const std::stop_token& aStop) {
  if ((mCapabilities & kHasAccessPrivilege) != 0) {
    if (KrResult result = StartHeartbeat(aStop); !result.IsOK())
      return result;
    if (KrResult result = SetPrivilege(aStop); !result.IsOK())
      return result;
    // Some take no such order from who has no control yet.
    if (mKeepAliveMs == 0) {
      if (KrResult result = StartHeartbeat(aStop); !result.IsOK())
        return result;
    }
  }
  return mSerialMap != 0 ? mRate.Raise(mSerialMap, aStop) : KrResult();
}

// A camera whose user has gone without a word is free again when its heartbeat has run out, and at its default rate.
KrResult GenCPSession::SetPrivilege(const std::stop_token& aStop) {
  constexpr std::uint32_t kMarginMs = 200;
  const auto set = [&] {
    KrResult result =
        mMemory.WriteValue(kAccessPrivilegeRegister.address, kAccessPrivilegeRegister.bytes, kOpenExclusive, aStop);
    // Without an answer control may have been given.
    mIsControlled = mIsControlled || !IsRefusal(result);
    return result;
  };
  KrResult result = set();
  bool isRefused = IsRefusal(result);
  if (isRefused && mHeartbeatMs > 0) {
    if (!krbase::Rest(std::chrono::milliseconds(mHeartbeatMs + kMarginMs), aStop))
      return TellCancelled();
    result = mRate.FindCamera(aStop);
    if (result.IsOK())
      result = set();
    isRefused = IsRefusal(result);
  }
  if (isRefused)
    return {KrResult::Code::AccessDenied, "The camera does not give control. " + result.GetDescription()};
  return result;
}

// Answers that arrive damaged say nothing of what the camera does.
bool GenCPSession::IsRefusal(const KrResult& aResult) const {
  return aResult == KrResult::Code::ProtocolError && mMemory.HasAnswered();
}

// A camera that refuses it has none, and stays controlled until it is told.
KrResult GenCPSession::StartHeartbeat(const std::stop_token& aStop) {
  mHeartbeatMs = 0;
  mKeepAliveMs = 0;
  std::uint64_t timeoutMs = 0;
  std::uint64_t configuration = 0;
  KrResult result =
      mMemory.ReadValue(kHeartbeatTimeoutRegister.address, kHeartbeatTimeoutRegister.bytes, timeoutMs, aStop);
  if (result.IsOK()) {
    mHeartbeatMs = static_cast<std::uint32_t>(std::min(timeoutMs, kLongestHeartbeatMs));
    result = mMemory.ReadValue(kConfigurationRegister.address, kConfigurationRegister.bytes, configuration, aStop);
  }
  if (result.IsOK() && (configuration & kIsHeartbeatOn) == 0)
    result = mMemory.WriteValue(kConfigurationRegister.address, kConfigurationRegister.bytes,
                                configuration | kIsHeartbeatOn, aStop);
  if (!result.IsOK())
    return IsRefusal(result) ? KrResult() : result;
  // Three questions fit into it; none is needed where it never runs out.
  mKeepAliveMs = mHeartbeatMs == 0 ? 0 : std::max(mHeartbeatMs / 3, kShortestKeepAliveMs);
  return {};
}

KrResult GenCPSession::ReadManifest(std::vector<ManifestEntry>& aEntries, const std::stop_token& aStop) {
  std::uint64_t address = 0;
  std::uint64_t count = 0;
  KrResult result = mMemory.ReadValue(kManifestAddressRegister.address, kManifestAddressRegister.bytes, address, aStop);
  if (result.IsOK())
    result = mMemory.ReadValue(address, sizeof(count), count, aStop);
  if (!result.IsOK())
    return result;
  std::vector<std::uint8_t> table(std::min(count, kMostManifestEntries) * kManifestEntryBytes);
  if (!table.empty())
    result = mMemory.Read(address + sizeof(count), table, aStop);
  if (!result.IsOK())
    return result;
  aEntries = krcamerabridge::ReadManifest(table);
  if (aEntries.empty())
    return {KrResult::Code::NotFound, "The camera's manifest table has " + std::to_string(count) +
                                          " entries; none is a description of schema 1.1 or older."};
  return {};
}

KrResult GenCPSession::ReadDescription(const ManifestEntry& aEntry, KrGenDescription& aDescription,
                                       const std::stop_token& aStop) {
  constexpr std::size_t kPiece = 65536;
  std::string bytes;
  while (bytes.size() < aEntry.size) {
    // Memory grows with what the camera has really given.
    const std::size_t done = bytes.size();
    bytes.resize(done + std::min<std::uint64_t>(kPiece, aEntry.size - done));
    const std::span piece(reinterpret_cast<std::uint8_t*>(bytes.data()) + done, bytes.size() - done);
    if (KrResult result = mMemory.Read(aEntry.address + done, piece, aStop); !result.IsOK())
      return result;
  }
  if (aEntry.sha1 != Sha1() && MakeSha1(bytes) != aEntry.sha1)
    return {KrResult::Code::BadData, "The camera's description " + aEntry.xmlID +
                                         " is not the one whose SHA-1 its manifest table has; it was damaged on its "
                                         "way, or stored wrongly in the camera."};
  return KrGenDescription::ReadFromMemory(bytes, aEntry.xmlID, aDescription);
}

void GenCPSession::Close(const std::stop_token& aStop) {
  if (!std::exchange(mIsOpen, false))
    return;
  // Who has left already does not want to wait, but the camera is told all the same.
  const bool isHurried = aStop.stop_requested();
  mCycle.SetEnd(isHurried ? mTimes.hurriedCloseMs : mTimes.closeLimitMs);
  mCycle.ForgetAbandoned();
  SayGoodbye(isHurried ? std::stop_token() : aStop);
  mKeepAliveMs = 0;
  mRate.RestoreLine();
}

// The camera is given up as it is when it does not answer.
void GenCPSession::SayGoodbye(const std::stop_token& aStop) {
  if (std::exchange(mIsControlled, false)) {
    // With that it goes back to its default rate by itself.
    constexpr int kTries = 2; // A camera that has fallen silent notices by itself that it is free.
    std::vector<std::uint8_t> available;
    AppendNumber(available, kAvailable, kAccessPrivilegeRegister.bytes);
    const Command command{kWriteMemoryCommand, BuildWriteMemory(kAccessPrivilegeRegister.address, available), 4,
                          kTries};
    Answer answer;
    if (mCycle.Run(command, answer, aStop).IsOK())
      mRate.FollowToDefault();
  } else if (mSerialMap != 0) {
    static_cast<void>(mRate.Lower(mSerialMap, aStop));
  }
}

std::uint64_t GenCPSession::GetLineMs(std::size_t aBytes) const {
  return GetAccessLineMs(aBytes, mRate.Get(), mCycle.GetResponseTime());
}

KrResult GenCPSession::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) {
  return mMemory.Read(aAddress, aData, aStop);
}

KrResult GenCPSession::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData,
                             const std::stop_token& aStop) {
  return mMemory.Write(aAddress, aData, aStop);
}

KrResult GenCPSession::Probe(const std::stop_token& aStop) {
  if (KrResult result = mRate.FindCameraAgain(aStop); !result.IsOK() || !mIsControlled)
    return result;
  std::uint64_t privilege = 0;
  KrResult result =
      mMemory.ReadValue(kAccessPrivilegeRegister.address, kAccessPrivilegeRegister.bytes, privilege, aStop);
  if (result.IsOK() && (privilege & kPrivilegeMask) != kOpenExclusive)
    result = TakeControl(aStop);
  // Whose camera it is has to be known.
  const bool isDamaged = result == KrResult::Code::ProtocolError && !mMemory.HasAnswered();
  return isDamaged ? KrResult(KrResult::Code::TimeLimitExceeded, result.GetDescription()) : result;
}

} // namespace krcamerabridge
