#include "gencp/status.h"

#include <array>
#include <cstdio>

namespace krcamerabridge {

namespace {

struct StatusText {
  std::uint16_t status;
  const char* text;
};

constexpr std::array kTexts = {
    StatusText{0x0000, "success"},
    StatusText{0x8001, "the camera does not know the command"},
    StatusText{kStatusInvalidParameter, "a parameter of the command is invalid"},
    StatusText{0x8003, "the camera has no register there"},
    StatusText{0x8004, "the register cannot be written"},
    StatusText{0x8005, "address or length are not aligned"},
    StatusText{0x8006, "access is denied"},
    StatusText{kStatusBusy, "the camera is busy"},
    StatusText{kStatusMessageTimeout, "the message came too slowly"},
    StatusText{kStatusInvalidHeader, "the command's header is invalid"},
    StatusText{0x800F, "the camera's configuration does not allow it"},
    StatusText{0x8FFF, "an error without a reason"},
};

} // namespace

std::string GetStatusText(std::uint16_t aStatus) {
  std::array<char, 8> number{};
  std::snprintf(number.data(), number.size(), "0x%04X", aStatus);
  for (const StatusText& text : kTexts) {
    if (text.status == aStatus)
      return std::string(text.text) + " (status " + number.data() + ")";
  }
  return std::string("status ") + number.data();
}

KrResult CheckStatus(const std::string& aAttempt, std::uint16_t aStatus) {
  if (!IsFailure(aStatus))
    return {};
  return {KrResult::Code::ProtocolError, aAttempt + " was refused by the camera: " + GetStatusText(aStatus) + "."};
}

} // namespace krcamerabridge
