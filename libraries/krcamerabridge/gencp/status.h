#pragma once
// What a camera says of a command (GenCP 1.3.1, status codes).

#include "krbase/krresult.h"

#include <cstdint>
#include <string>

namespace krcamerabridge {

constexpr std::uint16_t kStatusInvalidParameter = 0x8002;
constexpr std::uint16_t kStatusBusy = 0x8007;
constexpr std::uint16_t kStatusMessageTimeout = 0x800B;
constexpr std::uint16_t kStatusInvalidHeader = 0x800E;

/// Warnings are no failures: the command was carried out.
constexpr bool IsFailure(std::uint16_t aStatus) {
  return (aStatus & 0x8000) != 0;
}

/// The status for people: its name where the standard has one, and its number.
std::string GetStatusText(std::uint16_t aStatus);

/// ProtocolError with the camera's words for a failure, OK for all others. aAttempt begins a sentence: "Reading …".
KrResult CheckStatus(const std::string& aAttempt, std::uint16_t aStatus);

} // namespace krcamerabridge
