#include "aravis/araviserror.h"

#include <algorithm>
#include <iterator>

namespace krtransport {
namespace {

struct ErrorRow {
  ArvDeviceError error;
  KrResult::Code code;
};

constexpr ErrorRow kRows[] = {
    {ARV_DEVICE_ERROR_TIMEOUT, KrResult::Code::TimeLimitExceeded},
    {ARV_DEVICE_ERROR_NOT_CONNECTED, KrResult::Code::ConnectionLost},
    {ARV_DEVICE_ERROR_NOT_FOUND, KrResult::Code::NotFound},
    {ARV_DEVICE_ERROR_NOT_CONTROLLER, KrResult::Code::AccessDenied},
    {ARV_DEVICE_ERROR_FEATURE_NOT_FOUND, KrResult::Code::NotSupported},
    {ARV_DEVICE_ERROR_NO_STREAM_CHANNEL, KrResult::Code::NotSupported},
    {ARV_DEVICE_ERROR_GENICAM_NOT_FOUND, KrResult::Code::BadData},
};

} // namespace

KrResult ToResult(const GErrorHolder& aError, const std::string& aAttempt) {
  if (!aError.IsSet())
    return {};
  const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                 [&aError](const ErrorRow& aRow) { return aError.IsDeviceError(aRow.error); });
  const KrResult::Code code = row != std::end(kRows) ? row->code : KrResult::Code::ProtocolError;
  const char* const advice = code == KrResult::Code::TimeLimitExceeded ? " Check the device's cable and power." : "";
  return {code, aAttempt + " failed: " + aError.GetText() + "." + advice};
}

} // namespace krtransport
