#include "deliberateleak.h"

#include "krbase/krlogger.h"

#include <QWidget>

#include <cstdlib>
#include <cstring>
#include <new>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <thread>
#include <unistd.h>

namespace {

/// A chain from a variable: the compiler cannot leave it out, and a leak checker, whose finding would hide the soak's own,
/// sees that it is still known.
struct Lost {
  Lost* previous;
  QWidget* widget;
};

} // namespace

void LeakALittle() {
  constexpr std::size_t kBytes = 2 << 20;
  constexpr std::size_t kSegmentBytes = 4096;
  static Lost* lost = nullptr;
  void* const memory = std::malloc(kBytes);
  std::memset(memory, 1, kBytes);
  lost = new (memory) Lost{.previous = lost, .widget = new QWidget};
  const int descriptor = ::memfd_create("soak", MFD_CLOEXEC);
  if (::ftruncate(descriptor, kSegmentBytes) == 0)
    ::mmap(nullptr, kSegmentBytes, PROT_READ, MAP_SHARED, descriptor, 0);
  const int segment = ::shmget(IPC_PRIVATE, kSegmentBytes, IPC_CREAT | 0600);
  ::shmat(segment, nullptr, 0);
  std::thread([] { ::pause(); }).detach();
  KrLogger("Soak").Log(KrLogLevel::Warning, {"LeakALittle", "deliberateleak"}, "Something was lost on purpose.");
}
