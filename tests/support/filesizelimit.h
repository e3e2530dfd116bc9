#pragma once
// Lets the system refuse every byte beyond a file size, as a full disk does, for the files of this process.

#include <csignal>

#include <sys/resource.h>

class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t aBytes) : mSignal(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit lowered = {aBytes, mBefore.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &lowered);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mSignal);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
  void (*mSignal)(int);
  rlimit mBefore = {};
};
