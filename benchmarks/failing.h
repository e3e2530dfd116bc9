#pragma once
// The end of a benchmark that cannot measure what it is asked for: what is missing must not look like a good figure.

#include <cstdio>
#include <string>
#include <unistd.h>

namespace benchmarks {

/// Says why, and ends the program with 1.
[[noreturn]] inline void Fail(const std::string& aReason) {
  std::fprintf(stderr, "It cannot be measured: %s\n", aReason.c_str());
  std::fflush(stdout);
  ::_exit(1); // Other threads may be at work on what an orderly end would take away from them.
}

} // namespace benchmarks
