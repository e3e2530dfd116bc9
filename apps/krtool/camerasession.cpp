#include "camerasession.h"

#include "deviceselection.h"
#include "krbase/krsteadytime.h"
#include "plaintext.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace krtool {

namespace {

// How long one look for a frame may keep Ctrl-C waiting.
constexpr std::uint32_t kSliceMs = 100;

std::string GetReason(const KrResult& aResult) {
  return (aResult.GetDescription().IsEmpty() ? aResult.GetCodeString() : aResult.GetDescription()).ToUtf8();
}

// Lists in a text have indented lines, and keep them; no other line break does, so that what a device says never begins
// a line of its own.
std::string MakeIndentedLines(const std::string& aText) {
  constexpr std::string_view kBreak = "\n  ";
  std::string lines;
  std::size_t begin = 0;
  for (std::size_t end = aText.find(kBreak); end != std::string::npos; end = aText.find(kBreak, begin)) {
    lines += krapps::MakeField(aText.substr(begin, end - begin)).append(kBreak);
    begin = end + kBreak.size();
  }
  return lines + krapps::MakeField(aText.substr(begin));
}

} // namespace

KrResult Explain(const std::string& aAttempt, const KrResult& aResult) {
  return aResult.IsOK() ? aResult : KrResult(aResult.GetCode(), aAttempt + ": " + GetReason(aResult));
}

int Fail(std::ostream& aErrors, const KrResult& aResult) {
  aErrors << "krtool: " << MakeIndentedLines(GetReason(aResult)) << '\n';
  return 1;
}

int FailForLoss(std::ostream& aErrors, const std::string& aDevice, const KrResult& aLoss) {
  if (aLoss.IsOK())
    return 0;
  return Fail(aErrors, Explain(aDevice + " did not answer all along", aLoss));
}

int FailToWrite(std::ostream& aErrors, const KrResult& aResult) {
  const bool isInTheWay = aResult == KrResult::Code::WrongState;
  return Fail(aErrors, {aResult.GetCode(), aResult.GetDescription() + (isInTheWay ? " --force replaces it." : "")});
}

KrResult OpenNamedDevice(KrSystem& aSystem, const KrString& aName, KrDeviceAccess aAccess,
                         std::unique_ptr<KrDevice>& aDevice) {
  const KrDeviceInfo* info = nullptr;
  if (KrResult selected = krapps::SelectDevice(aSystem, aName, info); !selected.IsOK())
    return Explain("looking for the device failed", selected);
  const std::string attempt = "opening " + krapps::MakeCell(info->GetDisplayID()) + " failed";
  if (!info->IsConfigurationValid())
    return Explain(attempt, {KrResult::Code::NotFound, "this host cannot reach it as it is configured. Give it an "
                                                       "address of a network that this host is in."});
  return Explain(attempt, KrDevice::Open(*info, aAccess, aDevice));
}

KrResult AwaitFrame(KrStream& aStream, const krapps::StopSignal& aStop, std::uint32_t aTimeoutMs, KrBuffer*& aBuffer) {
  const std::uint64_t start = KrGetSteadyNs();
  while (!aStop.IsRaised()) {
    const std::uint64_t waitedMs = (KrGetSteadyNs() - start) / 1'000'000;
    const std::uint64_t leftMs = waitedMs < aTimeoutMs ? aTimeoutMs - waitedMs : 0;
    const auto sliceMs = static_cast<std::uint32_t>(std::min<std::uint64_t>(leftMs, kSliceMs));
    KrResult result = aStream.Retrieve(aBuffer, sliceMs);
    if (result == KrResult::Code::TimeLimitExceeded && leftMs == 0)
      return {KrResult::Code::TimeLimitExceeded, "No frame came within " + std::to_string(aTimeoutMs) +
                                                     " ms. Check the camera's trigger, exposure and frame rate."};
    if (!(result == KrResult::Code::TimeLimitExceeded))
      return result;
  }
  return KrResult::Code::Aborted;
}

} // namespace krtool
