#pragma once
// What ends the accesses of an operation before their time.

#include <stop_token>

namespace krgenicam {

/// What ends the accesses of the thread that calls it (KrGenAccessStop).
std::stop_token& GetThreadsStop();

} // namespace krgenicam
