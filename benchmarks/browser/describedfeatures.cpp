#include "describedfeatures.h"

#include "checked.h"
#include "generateddescription.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace benchmarks {

namespace {

constexpr std::uint64_t kSeed = 7;
constexpr std::uint32_t kTimeoutMs = 1000;

// Not even experts see every fourth of them.
std::size_t CountGenerated(std::size_t aVisible) {
  return aVisible + aVisible / 3;
}

} // namespace

KrResult SlowPort::Delay(const std::stop_token& aCancel) const {
  std::mutex mutex; // Guards nothing: the condition wants one.
  std::condition_variable_any woken;
  std::unique_lock lock(mutex);
  const std::chrono::milliseconds delay(mDelayMs);
  if (delay.count() != 0)
    woken.wait_for(lock, aCancel, delay, [&] { return aCancel.stop_requested(); });
  return aCancel.stop_requested() ? KrResult(KrResult::Code::Aborted) : KrResult();
}

KrResult SlowPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                        const std::stop_token& aCancel) {
  KrResult delayed = Delay(aCancel);
  return delayed.IsOK() ? mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel) : delayed;
}

KrResult SlowPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel) {
  KrResult delayed = Delay(aCancel);
  return delayed.IsOK() ? mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel) : delayed;
}

DescribedFeatures::DescribedFeatures(std::size_t aVisible) {
  const GeneratedDescription generated = GenerateDescription(CountGenerated(aVisible), kSeed);
  KrGenDescription description;
  Check(KrGenDescription::ReadFromMemory(generated.xml, "generated", description));
  Check(mMemory.Write(generated.address, generated.memory.data(), generated.memory.size(), kTimeoutMs));
  Check(KrGenParameterArray::Open(description, mPort, {}, mArray));
}

void DescribedFeatures::ReadAll() {
  KrString text;
  for (std::size_t index = 0; index < mArray->GetCount(); ++index)
    static_cast<void>((*mArray)[index]->ToString(text)); // What is not readable is not remembered either.
}

} // namespace benchmarks
