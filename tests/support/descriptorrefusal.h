#pragma once
// Lets the system refuse every new descriptor while it lives. Those that are open already are not touched.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

class DescriptorRefusal {
public:
  DescriptorRefusal() {
    ::getrlimit(RLIMIT_NOFILE, &mBefore);
    // New ones get the least number that is free.
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (next < 0)
      return;
    ::close(next);
    const rlimit lowered = {static_cast<rlim_t>(next), mBefore.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &lowered);
  }
  ~DescriptorRefusal() { ::setrlimit(RLIMIT_NOFILE, &mBefore); }
  DescriptorRefusal(const DescriptorRefusal&) = delete;
  DescriptorRefusal& operator=(const DescriptorRefusal&) = delete;

private:
  rlimit mBefore = {};
};
