#pragma once
// A parameter that makes the device do something.

#include "krgenicam/krgenparameter.h"

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenCommand final : public KrGenParameter {
public:
  /// Starts the command. It may still be under way when this returns: see IsDone.
  KrResult Execute();
  /// Asks the device, around all caches, whether the last execution is over; what depends on the command is read anew
  /// then. A command that cannot be read is done at once.
  KrResult IsDone(bool& aIsDone);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};
