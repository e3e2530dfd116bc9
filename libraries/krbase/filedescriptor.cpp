#include "krbase/filedescriptor.h"

#include <unistd.h>

bool krbase::FileDescriptor::Close() {
  const int descriptor = std::exchange(mDescriptor, -1);
  return descriptor < 0 || ::close(descriptor) == 0;
}
