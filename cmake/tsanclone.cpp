// Compiled into every program that is built for the thread sanitizer, whose runtime takes each clone() for a fork. Where
// that lends its memory to the child until the child becomes another program, as the toolkit starts programs, the runtime
// looks no more at what the thread that asked for it does to be in order with others, and tells races that are none.

#include <cstdarg>

#include <sys/types.h>

extern "C" {

int __clone(int (*aStart)(void*), void* aStack, int aFlags, void* aArgument, ...);

int clone(int (*aStart)(void*), void* aStack, int aFlags, void* aArgument, ...) {
  va_list rest;
  va_start(rest, aArgument);
  auto* const parentsCopy = va_arg(rest, pid_t*);
  void* const threadStorage = va_arg(rest, void*);
  auto* const childsCopy = va_arg(rest, pid_t*);
  va_end(rest);
  return __clone(aStart, aStack, aFlags, aArgument, parentsCopy, threadStorage, childsCopy);
}

} // extern "C"
