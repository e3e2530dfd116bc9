#include "stoppableserver.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kStartLimitMs = 30000;

/// Starts the server, which writes the number of its display to a descriptor when it is ready.
pid_t Spawn(int aReadyDescriptor) {
  constexpr int kInherited = 3;
  const std::string descriptor = std::to_string(kInherited);
  // The kernel ends the server should the test die first.
  std::array<const char*, 13> arguments = {
      "setpriv",    "--pdeathsig", "KILL", "Xvfb",     "-displayfd", descriptor.c_str(), "-screen", "0",
      "800x600x24", "-nolisten",   "tcp",  "-noreset", nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, aReadyDescriptor, kInherited);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int error =
      posix_spawnp(&process, arguments[0], &actions, nullptr, const_cast<char* const*>(arguments.data()), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : -1;
}

/// The line that a starting server writes; empty when none comes within the limit.
std::string ReadNumber(int aDescriptor) {
  std::string number;
  char letter = 0;
  pollfd wait{aDescriptor, POLLIN, 0};
  while (letter != '\n' && ::poll(&wait, 1, kStartLimitMs) == 1 && ::read(aDescriptor, &letter, 1) == 1) {
    if (letter != '\n')
      number += letter;
  }
  return letter == '\n' ? number : "";
}

} // namespace

StoppableServer::StoppableServer() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    ADD_FAILURE() << "There is no pipe.";
    return;
  }
  mProcess = Spawn(ends[1]);
  ::close(ends[1]);
  const std::string number = ReadNumber(ends[0]);
  ::close(ends[0]);
  if (number.empty())
    ADD_FAILURE() << "Xvfb did not start; install the package xvfb.";
  else
    mDisplay = ":" + number;
}

StoppableServer::~StoppableServer() {
  if (mProcess < 0)
    return;
  ::kill(mProcess, SIGCONT);
  ::kill(mProcess, SIGTERM);
  ::waitpid(mProcess, nullptr, 0);
}

void StoppableServer::Stop() {
  ASSERT_EQ(::kill(mProcess, SIGSTOP), 0);
  int status = 0;
  ASSERT_EQ(::waitpid(mProcess, &status, WUNTRACED), mProcess);
  ASSERT_TRUE(WIFSTOPPED(status));
}

void StoppableServer::Continue() {
  ASSERT_EQ(::kill(mProcess, SIGCONT), 0);
}
