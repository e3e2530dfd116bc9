#include "refusingdriver.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>

#include <unistd.h>

namespace {

std::atomic<std::uint32_t> refusedBaudRate = 0;

} // namespace

namespace krtest {

RefusedSpeed::RefusedSpeed(std::uint32_t aBaudRate) {
  refusedBaudRate = aBaudRate;
}

RefusedSpeed::~RefusedSpeed() {
  refusedBaudRate = 0;
}

} // namespace krtest

// NOLINTNEXTLINE(cert-dcl50-cpp): as the system's is declared.
extern "C" __attribute__((visibility("default"))) int ioctl(int aDescriptor, unsigned long aRequest, ...) noexcept {
  va_list arguments;
  va_start(arguments, aRequest);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (aRequest == TCSETS2 && refusedBaudRate != 0 &&
      static_cast<const termios2*>(argument)->c_ospeed == refusedBaudRate) {
    errno = EINVAL;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_ioctl, aDescriptor, aRequest, argument));
}
