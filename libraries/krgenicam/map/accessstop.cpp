#include "map/accessstop.h"

namespace krgenicam {

std::stop_token& GetThreadsStop() {
  thread_local std::stop_token stop;
  return stop;
}

} // namespace krgenicam
