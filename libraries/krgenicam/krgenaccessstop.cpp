#include "krgenicam/krgenaccessstop.h"

#include "map/accessstop.h"

#include <utility>

KrGenAccessStop::KrGenAccessStop(const std::stop_token& aStop)
    : mBefore(std::exchange(krgenicam::GetThreadsStop(), aStop)) {}

KrGenAccessStop::~KrGenAccessStop() {
  krgenicam::GetThreadsStop() = mBefore;
}
