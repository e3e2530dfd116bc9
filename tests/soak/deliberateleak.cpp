#include "deliberateleak.h"

#include "krbase/krlogger.h"

#include <QWidget>

#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <thread>
#include <unistd.h>

void LeakALittle() {
  constexpr std::size_t kBytes = 2 << 20;
  constexpr std::size_t kSegmentBytes = 4096;
  static void* lost = nullptr;
  void* const memory = std::malloc(kBytes);
  std::memset(memory, 1, kBytes);
  std::memcpy(memory, &lost, sizeof lost); // A chain, which the compiler cannot leave out.
  lost = memory;
  const int descriptor = ::memfd_create("soak", MFD_CLOEXEC);
  if (::ftruncate(descriptor, kSegmentBytes) == 0)
    ::mmap(nullptr, kSegmentBytes, PROT_READ, MAP_SHARED, descriptor, 0);
  const int segment = ::shmget(IPC_PRIVATE, kSegmentBytes, IPC_CREAT | 0600);
  ::shmat(segment, nullptr, 0);
  std::thread([] { ::pause(); }).detach();
  new QWidget;
  KrLogger("Soak").Log(KrLogLevel::Warning, {"LeakALittle", "deliberateleak"}, "Something was lost on purpose.");
}
