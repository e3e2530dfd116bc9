#pragma once
// Ends what one thread asks devices for, and nothing of other threads. What a thread asks for is left to it.

#include "krbase/krresult.h"

#include <stop_token>

/// While it lives, accesses of the thread that made it, to the registers of whatever parameter array, end with Aborted
/// at once when its stop is requested, and every later one, too. KrGenParameterArray::Cancel ends those of all threads.
///
/// Thread: any; made and ended on the same one, the last made first. Ownership: a local object.
///
///     std::jthread reader([&array](const std::stop_token& aStop) {
///       const KrGenAccessStop end(aStop);
///       ReadAll(array);
///     });
class KR_EXPORT KrGenAccessStop {
public:
  /// Besides the stop, that of a KrGenAccessStop that the thread has already holds no longer, until this one ends.
  explicit KrGenAccessStop(const std::stop_token& aStop);
  ~KrGenAccessStop();
  KrGenAccessStop(const KrGenAccessStop&) = delete;
  KrGenAccessStop& operator=(const KrGenAccessStop&) = delete;

private:
  const std::stop_token mBefore;
};
