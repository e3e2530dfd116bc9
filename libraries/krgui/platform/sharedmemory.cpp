#include "platform/sharedmemory.h"

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

// Asked for more than the computer has, the system would go on finding it until it ends processes.
bool IsToBeHad(std::size_t aSize) {
  const auto pages = static_cast<std::size_t>(std::max(sysconf(_SC_PHYS_PAGES), 0L));
  const auto pageSize = static_cast<std::size_t>(std::max(sysconf(_SC_PAGESIZE), 1L));
  return aSize > 0 && aSize / pageSize < pages;
}

} // namespace

SharedMemory SharedMemory::MakeByDescriptor(std::size_t aSize) {
  SharedMemory memory;
  if (!IsToBeHad(aSize)) {
    return memory;
  }
  memory.mDescriptor = memfd_create("pixels", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  // Reserved at once, as touching a page that cannot be had any more would end the process. The seals keep whoever gets
  // the descriptor from doing the same by making the file smaller.
  if (memory.mDescriptor < 0 || posix_fallocate(memory.mDescriptor, 0, static_cast<off_t>(aSize)) != 0 ||
      fcntl(memory.mDescriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
    return {};
  }
  void* address = mmap(nullptr, aSize, PROT_READ | PROT_WRITE, MAP_SHARED, memory.mDescriptor, 0);
  if (address == MAP_FAILED) {
    return {};
  }
  memory.mPixels = static_cast<std::uint32_t*>(address);
  memory.mSize = aSize;
  return memory;
}

SharedMemory SharedMemory::MakeSystemV(std::size_t aSize) {
  constexpr int kForThisUserAlone = 0600;
  const int number = IsToBeHad(aSize) ? shmget(IPC_PRIVATE, aSize, IPC_CREAT | kForThisUserAlone) : -1;
  if (number < 0) {
    return {};
  }
  void* address = shmat(number, nullptr, 0);
  // Removed before anything can go wrong: it ends with the last process that is attached.
  shmctl(number, IPC_RMID, nullptr);
  SharedMemory memory;
  // The value that the system's interface fails with.
  if (address != reinterpret_cast<void*>(-1)) {
    memory.mPixels = static_cast<std::uint32_t*>(address);
    memory.mSize = aSize;
    memory.mSegmentNumber = number;
  }
  return memory;
}

SharedMemory::~SharedMemory() {
  if (mDescriptor >= 0) {
    close(mDescriptor);
  }
  if (mPixels == nullptr) {
    return;
  }
  if (mSegmentNumber >= 0) {
    shmdt(mPixels);
  } else {
    munmap(mPixels, mSize);
  }
}

SharedMemory::SharedMemory(SharedMemory&& aOther) noexcept
    : mPixels(std::exchange(aOther.mPixels, nullptr)), mSize(std::exchange(aOther.mSize, 0)),
      mDescriptor(std::exchange(aOther.mDescriptor, -1)), mSegmentNumber(std::exchange(aOther.mSegmentNumber, -1)) {}

SharedMemory& SharedMemory::operator=(SharedMemory&& aOther) noexcept {
  std::swap(mPixels, aOther.mPixels);
  std::swap(mSize, aOther.mSize);
  std::swap(mDescriptor, aOther.mDescriptor);
  std::swap(mSegmentNumber, aOther.mSegmentNumber);
  return *this;
}

int SharedMemory::TakeDescriptor() {
  return std::exchange(mDescriptor, -1);
}

} // namespace krgui
