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

// A read that fails does no harm, and is asked for again in any size.
PieceSize::Failure JudgeRead(const KrResult& aResult, std::uint16_t aStatus) {
  if (aResult == KrResult::Code::TimeLimitExceeded)
    return PieceSize::Failure::Silent;
  const bool isDamaged = aResult == KrResult::Code::ProtocolError && aStatus == 0;
  return isDamaged || aStatus == kStatusInvalidParameter ? PieceSize::Failure::TooLarge : PieceSize::Failure::Unrelated;
}

// The camera may have done a write that it did not answer: only its word that it has not lets it be sent anew.
PieceSize::Failure JudgeWrite(std::uint16_t aStatus) {
  return aStatus == kStatusInvalidParameter ? PieceSize::Failure::TooLarge : PieceSize::Failure::Unrelated;
}

} // namespace

KrResult DeviceMemory::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) {
  while (!aData.empty()) {
    const auto piece = aData.first(std::min(aData.size(), mReadSize.Get()));
    std::uint16_t status = 0;
    KrResult result = ReadPiece(aAddress, piece, status, aStop);
    if (result.IsOK()) {
      mReadSize.Succeed(piece.size());
      aAddress += piece.size();
      aData = aData.subspan(piece.size());
    } else if (!mReadSize.Fail(piece.size(), JudgeRead(result, status))) {
      return result;
    }
  }
  return {};
}

KrResult DeviceMemory::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData,
                             const std::stop_token& aStop) {
  while (!aData.empty()) {
    // A camera that is silent at long reads would be at long writes, too.
    const std::size_t most = mReadSize.IsLimit() ? mReadSize.Get() : kMaxWriteBytes;
    const auto piece = aData.first(std::min({aData.size(), mWriteSize.Get(), most}));
    std::uint16_t status = 0;
    std::size_t written = 0;
    KrResult result = WritePiece(aAddress, piece, written, status, aStop);
    if (result.IsOK()) {
      mWriteSize.Succeed(written);
      aAddress += written;
      aData = aData.subspan(written);
    } else if (!mWriteSize.Fail(piece.size(), JudgeWrite(status))) {
      return result;
    }
  }
  return {};
}

KrResult DeviceMemory::ReadPiece(std::uint64_t aAddress, std::span<std::uint8_t> aData, std::uint16_t& aStatus,
                                 const std::stop_token& aStop) {
  const std::string attempt = TellRange("Reading", aData.size(), aAddress);
  Answer answer;
  Command command{kReadMemoryCommand, BuildReadMemory(aAddress, aData.size()), aData.size()};
  if (mReadSize.IsTrial(aData.size()))
    command.tries = 1;
  KrResult result = mCycle.Run(command, answer, aStop);
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

KrResult DeviceMemory::WritePiece(std::uint64_t aAddress, std::span<const std::uint8_t> aData, std::size_t& aWritten,
                                  std::uint16_t& aStatus, const std::stop_token& aStop) {
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
  aWritten = aData.size();
  if (answer.specific.empty())
    return {};
  if (answer.specific.size() != kWrittenBytes)
    return TellWrongLength(attempt, answer.specific.size());
  // The rest of what it did not write all of is the next piece.
  aWritten = ReadNumber(std::span(answer.specific).last(2));
  if (aWritten == 0 || aWritten > aData.size())
    return {KrResult::Code::ProtocolError,
            attempt + ": the camera says that it has written " + std::to_string(aWritten) + "."};
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
