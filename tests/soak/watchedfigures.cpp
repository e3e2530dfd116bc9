#include "watchedfigures.h"

#include "footprint.h"

#include <QApplication>

#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <sstream>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr double kMostHeapMB = 1e9;     // The sanitizer's own allocator, which this does not count.
constexpr double kMostResidentMB = 400; // It remembers what was freed.
#else
constexpr double kMostHeapMB = 2;
constexpr double kMostResidentMB = 16; // Pieces between what is used, which the allocator cannot give back.
#endif
constexpr double kMostServerMB = 16;
constexpr double kMostWidgets = 4; // What a click or a search makes, and keeps until its window closes.
constexpr double kMostMapped = 2;  // The second buffer of each display is made when it is first needed.

double ToMB(double aBytes) {
  return aBytes / (1 << 20);
}

double GetHeapMB() {
  const struct mallinfo2 heap = ::mallinfo2();
  return ToMB(static_cast<double>(heap.uordblks + heap.hblkhd));
}

/// The System V segments of the machine that this process has made and nobody removed yet.
double CountMadeSegments() {
  std::ifstream table("/proc/sysvipc/shm");
  std::string line;
  std::getline(table, line);
  int count = 0;
  while (std::getline(table, line)) {
    std::istringstream fields(line);
    long long key = 0;
    long long id = 0;
    std::string rights;
    unsigned long long size = 0;
    pid_t maker = 0;
    if (fields >> key >> id >> rights >> size >> maker && maker == ::getpid())
      ++count;
  }
  return count;
}

} // namespace

WatchedFigures::WatchedFigures(const std::string& aServerProcess) {
  mFigures = {
      {"heap_MB", kMostHeapMB, GetHeapMB},
      {"resident_MB", kMostResidentMB, [] { return ToMB(static_cast<double>(GetResidentBytes("self"))); }},
      {"server_MB", kMostServerMB,
       [aServerProcess] { return ToMB(static_cast<double>(GetResidentBytes(aServerProcess))); }},
      {"threads", 0, [] { return static_cast<double>(CountThreads()); }},
      {"descriptors", 0, [] { return static_cast<double>(CountEntries("/proc/self/fd")); }},
      {"mapped_segments", kMostMapped, [] { return static_cast<double>(CountSharedSegments()); }},
      {"made_segments", kMostMapped, CountMadeSegments},
      {"processes", 0, [] { return static_cast<double>(ListChildren(::getpid()).size()); }},
      {"widgets", kMostWidgets, [] { return static_cast<double>(QApplication::allWidgets().size()); }},
  };
}

std::ptrdiff_t WatchedFigures::CountThreads() {
  return CountEntries("/proc/self/task");
}

void WatchedFigures::Sample(const std::string& aBegin) {
  ::malloc_trim(0);
  std::printf("%s", aBegin.c_str());
  for (Figure& figure : mFigures) {
    const double value = figure.measure();
    figure.samples.Add(value);
    std::printf(" %s=%.5g", figure.name, value);
  }
  std::printf("\n");
  std::fflush(stdout);
}

bool WatchedFigures::AreFlat() const {
  bool areFlat = true;
  for (const Figure& figure : mFigures) {
    const FigureSeries::Verdict verdict = figure.samples.Judge(figure.allowed);
    std::printf("figure=%s middle=%.5g last=%.5g growth=%.3g allowed=%g flat=%d\n", figure.name, verdict.middle,
                verdict.last, verdict.last - verdict.middle, figure.allowed, verdict.isFlat ? 1 : 0);
    areFlat = areFlat && verdict.isFlat;
  }
  return areFlat;
}
