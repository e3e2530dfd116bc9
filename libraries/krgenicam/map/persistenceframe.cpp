#include "map/persistenceframe.h"

#include "krbase/rest.h"
#include "map/selectorpath.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace krgenicam {

namespace {

struct CommandPair {
  const char* begin;
  const char* end;
};

constexpr CommandPair kPairs[] = {{"DeviceFeaturePersistenceStart", "DeviceFeaturePersistenceEnd"},
                                  {"DeviceRegistersStreamingStart", "DeviceRegistersStreamingEnd"}};
// Most devices are done at once; those that are not are asked ever more seldom.
constexpr std::chrono::milliseconds kFirstPause{1};
constexpr std::chrono::milliseconds kLongestPause{50};

} // namespace

KrResult PersistenceFrame::Begin(const Finder& aFind) {
  for (const CommandPair& pair : kPairs) {
    auto* const begin = dynamic_cast<KrGenCommand*>(aFind(pair.begin));
    auto* const end = dynamic_cast<KrGenCommand*>(aFind(pair.end));
    if (begin == nullptr || end == nullptr || !begin->IsWritable())
      continue;
    mEnd = end;
    return Execute(*begin);
  }
  return {};
}

KrResult PersistenceFrame::End() {
  KrGenCommand* const end = std::exchange(mEnd, nullptr);
  return end != nullptr ? Execute(*end) : KrResult();
}

KrResult PersistenceFrame::Execute(KrGenCommand& aCommand) {
  KrResult result = aCommand.Execute();
  if (result.IsOK())
    result = AwaitDone(aCommand);
  return result.IsOK() ? result : KrResult(result.GetCode(), aCommand.GetName() + " failed: " + GetReason(result));
}

// Commands have no event that tells of their end: the device is asked now and then.
KrResult PersistenceFrame::AwaitDone(KrGenCommand& aCommand) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLimitMs);
  for (auto pause = kFirstPause;; pause = std::min(2 * pause, kLongestPause)) {
    bool isDone = false;
    if (KrResult asked = aCommand.IsDone(isDone); !asked.IsOK() || isDone)
      return asked;
    if (mCancel.stop_requested() || !mGoesOn())
      return {KrResult::Code::Aborted, "it was cancelled while the device was at it."};
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= left.zero())
      return {KrResult::Code::TimeLimitExceeded, "it is still under way after " + std::to_string(kLimitMs) + " ms."};
    (void)krbase::Rest(std::min<std::chrono::steady_clock::duration>(left, pause), mCancel);
  }
}

} // namespace krgenicam
