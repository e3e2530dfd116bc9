#include "acquisition/devicethermometer.h"

#include "krgenicam/krgenaccessstop.h"

namespace krviewer {

namespace {

constexpr const char* kName = "DeviceTemperature";
constexpr int kUnansweredFactor = 10;

// The camera changes it by itself.
std::optional<double> Read(KrGenParameterArray& aParameters) {
  double celsius = 0.0;
  KrGenFloat* const temperature = aParameters.GetFloat(kName);
  if (!aParameters.Invalidate(kName).IsOK() || !temperature->GetValue(celsius).IsOK())
    return std::nullopt;
  return celsius;
}

} // namespace

DeviceThermometer::~DeviceThermometer() {
  Leave();
}

void DeviceThermometer::Follow(KrGenParameterArray& aParameters) {
  Leave();
  if (aParameters.GetFloat(kName))
    mThread = std::jthread([this, &aParameters](const std::stop_token& aStop) { Run(aStop, aParameters); });
}

void DeviceThermometer::Leave() {
  mThread = {};
  Set(std::nullopt);
}

std::optional<double> DeviceThermometer::GetCelsius() const {
  const std::lock_guard lock(mMutex);
  return mCelsius;
}

void DeviceThermometer::Set(std::optional<double> aCelsius) {
  const std::lock_guard lock(mMutex);
  mCelsius = aCelsius;
}

void DeviceThermometer::Run(const std::stop_token& aStop, KrGenParameterArray& aParameters) {
  const KrGenAccessStop end(aStop);
  while (!aStop.stop_requested()) {
    const std::optional<double> celsius = Read(aParameters);
    Set(celsius);
    std::unique_lock lock(mMutex);
    (void)mNever.wait_for(lock, aStop, celsius ? mPeriod : mPeriod * kUnansweredFactor, [] { return false; });
  }
}

} // namespace krviewer
