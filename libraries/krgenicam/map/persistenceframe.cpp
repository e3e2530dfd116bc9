#include "map/persistenceframe.h"

#include "map/selectorpath.h"

#include <chrono>
#include <thread>

namespace krgenicam {

namespace {

struct CommandPair {
  const char* begin;
  const char* end;
};

constexpr CommandPair kPairs[] = {{"DeviceFeaturePersistenceStart", "DeviceFeaturePersistenceEnd"},
                                  {"DeviceRegistersStreamingStart", "DeviceRegistersStreamingEnd"}};
constexpr std::chrono::milliseconds kPause{10};

// Commands have no event that tells of their end: the device is asked now and then.
KrResult AwaitDone(KrGenCommand& aCommand) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(PersistenceFrame::kLimitMs);
  for (;;) {
    bool isDone = false;
    if (KrResult asked = aCommand.IsDone(isDone); !asked.IsOK() || isDone)
      return asked;
    if (std::chrono::steady_clock::now() >= deadline)
      return {KrResult::Code::TimeLimitExceeded,
              "it is still under way after " + std::to_string(PersistenceFrame::kLimitMs) + " ms."};
    std::this_thread::sleep_for(kPause);
  }
}

KrResult Execute(KrGenCommand& aCommand) {
  KrResult result = aCommand.Execute();
  if (result.IsOK())
    result = AwaitDone(aCommand);
  return result.IsOK() ? result : KrResult(result.GetCode(), aCommand.GetName() + " failed: " + GetReason(result));
}

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
  return mEnd != nullptr ? Execute(*mEnd) : KrResult();
}

} // namespace krgenicam
