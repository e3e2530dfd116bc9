#pragma once
// Lets the system refuse every new thread while it lives, by a default stack that no address space holds.
// Threads that run already are not touched.

#include <pthread.h>

#include <cstddef>

class ThreadRefusal {
public:
  ThreadRefusal() {
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &mStackBytesBefore);
    pthread_attr_setstacksize(&attributes, std::size_t{1} << 47);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
  }
  ~ThreadRefusal() {
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, mStackBytesBefore);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
  }
  ThreadRefusal(const ThreadRefusal&) = delete;
  ThreadRefusal& operator=(const ThreadRefusal&) = delete;

private:
  std::size_t mStackBytesBefore = 0;
};
