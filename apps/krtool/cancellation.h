#pragma once
// Ctrl-C while a long operation on features runs: ends the operation, so that the device is left in order.

#include "krgenicam/krgenparameterarray.h"
#include "stopsignal.h"

#include <thread>

namespace krtool {

/// While it lives, the first signal to stop cancels what the array is doing; a second one ends the program.
///
/// Thread: one. Ownership: borrows the array.
class Cancellation {
public:
  explicit Cancellation(KrGenParameterArray& aArray);
  ~Cancellation() = default;

  const krapps::StopSignal& GetStop() const { return mStop; }

private:
  const krapps::StopSignal mStop;
  std::jthread mWatch; // Ends first: it asks mStop.
};

} // namespace krtool
