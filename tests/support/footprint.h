#pragma once
// What a process holds of the system's means, as the kernel counts it: for tests that let nothing grow.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

struct Footprint {
  std::int64_t residentBytes = 0;
  std::ptrdiff_t threads = 0;
  std::ptrdiff_t descriptors = 0;
  std::ptrdiff_t sharedSegments = 0; ///< Mapped ones, System V's and those shared by descriptor.
};

/// The bytes of a process that are in memory.
inline std::int64_t GetResidentBytes(const std::string& aProcess) {
  std::int64_t totalPages = 0;
  std::int64_t residentPages = 0;
  std::ifstream("/proc/" + aProcess + "/statm") >> totalPages >> residentPages;
  return residentPages * ::sysconf(_SC_PAGESIZE);
}

inline std::ptrdiff_t CountEntries(const char* aFolder) {
  return std::distance(std::filesystem::directory_iterator(aFolder), std::filesystem::directory_iterator());
}

inline std::ptrdiff_t CountSharedSegments() {
  std::ifstream maps("/proc/self/maps");
  std::ptrdiff_t count = 0;
  for (std::string line; std::getline(maps, line);)
    count += line.find("/memfd:") != std::string::npos || line.find("/SYSV") != std::string::npos ? 1 : 0;
  return count;
}

/// Of the calling process.
inline Footprint MeasureFootprint() {
  return {.residentBytes = GetResidentBytes("self"),
          .threads = CountEntries("/proc/self/task"),
          .descriptors = CountEntries("/proc/self/fd"),
          .sharedSegments = CountSharedSegments()};
}

/// The processes of which one is the parent, those that have ended and were not waited for included.
inline std::vector<pid_t> ListChildren(pid_t aProcess) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const pid_t id = std::atoi(entry.path().filename().c_str());
    std::string text;
    if (id <= 0 || !std::getline(std::ifstream(entry.path() / "stat"), text))
      continue;
    // "number (name) state parent": a name may have brackets, too.
    std::istringstream rest(text.substr(std::min(text.rfind(')') + 1, text.size())));
    char state = 0;
    pid_t parent = 0;
    if (rest >> state >> parent && parent == aProcess)
      children.push_back(id);
  }
  return children;
}
