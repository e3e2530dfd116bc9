#include "outputreader.h"

#include <poll.h>
#include <unistd.h>

namespace krtool {

bool IsReaderGone() {
  pollfd output = {.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
  return poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0;
}

} // namespace krtool
