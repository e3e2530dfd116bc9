#pragma once
// Asks a camera for its temperature now and then, on a thread of its own, so that no frame waits for the answer. Who
// shows it is left to the status bar.

#include "krgenicam/krgenparameterarray.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace krviewer {

/// Thread: Follow and Leave on one, GetCelsius on any. Ownership: borrows the parameters from Follow to Leave.
class DeviceThermometer {
public:
  static constexpr std::chrono::milliseconds kPeriod{2000};

  explicit DeviceThermometer(std::chrono::milliseconds aPeriod = kPeriod) : mPeriod(aPeriod) {}
  ~DeviceThermometer();
  DeviceThermometer(const DeviceThermometer&) = delete;
  DeviceThermometer& operator=(const DeviceThermometer&) = delete;

  /// Asks for DeviceTemperature each period, and more rarely where that is not answered. Without such a feature nothing
  /// is asked.
  void Follow(KrGenParameterArray& aParameters);
  /// Ends that, and an access that is under way at once.
  void Leave();
  /// What the camera said last; nothing where it did not answer, or is not followed.
  std::optional<double> GetCelsius() const;

private:
  void Run(const std::stop_token& aStop, KrGenParameterArray& aParameters);
  void Set(std::optional<double> aCelsius);

  const std::chrono::milliseconds mPeriod;
  mutable std::mutex mMutex;          ///< Guards the temperature.
  std::condition_variable_any mNever; ///< Ends a pause when the thread is to stop.
  std::optional<double> mCelsius;
  std::jthread mThread; ///< Follow's and Leave's own.
};

} // namespace krviewer
