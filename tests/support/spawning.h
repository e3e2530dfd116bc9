#pragma once
// Starts a program as a process of its own, with descriptors where they are wanted. Spawned, as a process with threads
// must not fork under the thread sanitizer. Waiting for its end, or ending it, is left to who started it.

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <unistd.h>

/// Thread: one. Used for one start.
class Spawning {
public:
  /// The program's name, which is looked for in the PATH, or its path, and its arguments.
  explicit Spawning(std::vector<std::string> aWords) : mWords(std::move(aWords)) {
    posix_spawn_file_actions_init(&mActions);
  }
  ~Spawning() { posix_spawn_file_actions_destroy(&mActions); }
  Spawning(const Spawning&) = delete;
  Spawning& operator=(const Spawning&) = delete;

  /// The program has one of our descriptors under a number of its own.
  Spawning& Give(int aDescriptor, int aNumber) {
    posix_spawn_file_actions_adddup2(&mActions, aDescriptor, aNumber);
    return *this;
  }
  /// What the program writes to a descriptor is thrown away.
  Spawning& Discard(int aNumber) {
    posix_spawn_file_actions_addopen(&mActions, aNumber, "/dev/null", O_WRONLY, 0);
    return *this;
  }
  Spawning& DiscardOutput() { return Discard(STDOUT_FILENO).Discard(STDERR_FILENO); }

  /// Starts it; -1, with errno, where it cannot be started.
  pid_t Start() {
    std::vector<char*> arguments;
    for (std::string& word : mWords)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t process = -1;
    errno = posix_spawnp(&process, arguments.front(), &mActions, nullptr, arguments.data(), environ);
    return errno == 0 ? process : -1;
  }

private:
  std::vector<std::string> mWords;
  posix_spawn_file_actions_t mActions = {};
};
