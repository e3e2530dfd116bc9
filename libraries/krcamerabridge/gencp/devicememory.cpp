#include "gencp/devicememory.h"

#include "gencp/status.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

namespace krcamerabridge {

namespace {

std::string TellRange(const char* aAttempt, std::size_t aBytes, std::uint64_t aAddress) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%s %zu bytes at 0x%" PRIX64, aAttempt, aBytes, aAddress);
  return text.data();
}

KrResult TellWrongLength(const std::string& aAttempt, std::size_t aBytes) {
  return {KrResult::Code::ProtocolError,
          aAttempt + " was answered by the camera with " + std::to_string(aBytes) + " bytes."};
}

// Whether a piece may have failed for its size; aMost is then what is tried from now on.
bool Reduce(const KrResult& aResult, std::uint16_t aStatus, std::size_t aSize, std::size_t& aMost) {
  if (aSize <= kSafeBytes)
    return false;
  const bool isSilent = aResult == KrResult::Code::TimeLimitExceeded;
  const bool isRefused = aStatus == kStatusInvalidParameter;
  const bool isDamaged = aResult == KrResult::Code::ProtocolError && aStatus == 0;
  if (!isSilent && !isRefused && !isDamaged)
    return false;
  aMost = isSilent ? kSafeBytes : std::max(kSafeBytes, aSize / 2);
  return true;
}

// Calls aAccess for one piece after the other.
template <typename Byte, typename Access>
KrResult ForEachPiece(std::uint64_t aAddress, std::span<Byte> aData, std::size_t& aMost, Access aAccess) {
  while (!aData.empty()) {
    const auto piece = aData.first(std::min(aData.size(), aMost));
    std::uint16_t status = 0;
    KrResult result = aAccess(aAddress, piece, status);
    if (result.IsOK()) {
      aAddress += piece.size();
      aData = aData.subspan(piece.size());
    } else if (!Reduce(result, status, piece.size(), aMost)) {
      return result;
    }
  }
  return {};
}

} // namespace

KrResult DeviceMemory::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) {
  return ForEachPiece(aAddress, aData, mMostRead, [&](std::uint64_t aFrom, auto aPiece, std::uint16_t& aStatus) {
    return ReadPiece(aFrom, aPiece, aStatus, aStop);
  });
}

KrResult DeviceMemory::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData,
                             const std::stop_token& aStop) {
  return ForEachPiece(aAddress, aData, mMostWritten, [&](std::uint64_t aFrom, auto aPiece, std::uint16_t& aStatus) {
    return WritePiece(aFrom, aPiece, aStatus, aStop);
  });
}

KrResult DeviceMemory::ReadPiece(std::uint64_t aAddress, std::span<std::uint8_t> aData, std::uint16_t& aStatus,
                                 const std::stop_token& aStop) {
  const std::string attempt = TellRange("Reading", aData.size(), aAddress);
  Answer answer;
  KrResult result =
      mCycle.Run({kReadMemoryCommand, BuildReadMemory(aAddress, aData.size()), aData.size()}, answer, aStop);
  mHasAnswered = result.IsOK();
  if (!mHasAnswered)
    return {result.GetCode(), attempt + ": " + result.GetDescription()};
  aStatus = answer.status;
  if (KrResult refusal = CheckStatus(attempt, answer.status); !refusal.IsOK())
    return refusal;
  if (answer.specific.size() != aData.size())
    return TellWrongLength(attempt, answer.specific.size());
  std::ranges::copy(answer.specific, aData.begin());
  return {};
}

KrResult DeviceMemory::WritePiece(std::uint64_t aAddress, std::span<const std::uint8_t> aData, std::uint16_t& aStatus,
                                  const std::stop_token& aStop) {
  constexpr std::size_t kWrittenBytes = 4; // Reserved, then how many were written; only from some cameras.
  const std::string attempt = TellRange("Writing", aData.size(), aAddress);
  Answer answer;
  KrResult result = mCycle.Run({kWriteMemoryCommand, BuildWriteMemory(aAddress, aData), kWrittenBytes}, answer, aStop);
  mHasAnswered = result.IsOK();
  if (!mHasAnswered)
    return {result.GetCode(), attempt + ": " + result.GetDescription()};
  aStatus = answer.status;
  if (KrResult refusal = CheckStatus(attempt, answer.status); !refusal.IsOK())
    return refusal;
  if (answer.specific.empty())
    return {};
  if (answer.specific.size() != kWrittenBytes)
    return TellWrongLength(attempt, answer.specific.size());
  if (const std::uint64_t written = ReadNumber(std::span(answer.specific).last(2)); written != aData.size())
    return {KrResult::Code::ProtocolError,
            attempt + ": the camera says that it has written " + std::to_string(written) + "."};
  return {};
}

KrResult DeviceMemory::ReadValue(std::uint64_t aAddress, std::size_t aBytes, std::uint64_t& aValue,
                                 const std::stop_token& aStop) {
  std::vector<std::uint8_t> bytes(aBytes);
  KrResult result = Read(aAddress, bytes, aStop);
  if (result.IsOK())
    aValue = ReadNumber(bytes);
  return result;
}

KrResult DeviceMemory::WriteValue(std::uint64_t aAddress, std::size_t aBytes, std::uint64_t aValue,
                                  const std::stop_token& aStop) {
  std::vector<std::uint8_t> bytes;
  AppendNumber(bytes, aValue, aBytes);
  return Write(aAddress, bytes, aStop);
}

} // namespace krcamerabridge
