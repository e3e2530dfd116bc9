#include "clprogram.h"

#include "await.h"
#include "spawning.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstddef>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const int kLimitMs = 2 * krtest::GetGenerousMs();

} // namespace

ClProgram::ClProgram() {
  std::array<int, 2> input{};
  std::array<int, 2> output{};
  if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0) {
    ADD_FAILURE() << "No pipe can be made.";
    return;
  }
  mProcess =
      Spawning({KR_CL_PROGRAM, KR_CL_LIBRARY}).Give(input[0], STDIN_FILENO).Give(output[1], STDOUT_FILENO).Start();
  EXPECT_GE(mProcess, 0);
  ::close(input[0]);
  ::close(output[1]);
  mInput = input[1];
  mOutput = output[0];
}

ClProgram::~ClProgram() {
  ::close(mInput);
  ::close(mOutput);
  if (mProcess < 0)
    return;
  int status = 0;
  EXPECT_EQ(::waitpid(mProcess, &status, 0), mProcess);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "The program ended with status " << status;
}

void ClProgram::Send(const std::string& aLine) {
  const std::string line = aLine + "\n";
  EXPECT_EQ(::write(mInput, line.data(), line.size()), static_cast<ssize_t>(line.size()));
}

std::string ClProgram::Await() {
  std::size_t end = 0;
  while ((end = mRest.find('\n')) == mRest.npos) {
    pollfd waited{.fd = mOutput, .events = POLLIN, .revents = 0};
    std::array<char, 4096> bytes{};
    const ssize_t length = ::poll(&waited, 1, kLimitMs) > 0 ? ::read(mOutput, bytes.data(), bytes.size()) : ssize_t{0};
    if (length <= 0) {
      ADD_FAILURE() << "The program does not answer.";
      return {};
    }
    mRest.append(bytes.data(), static_cast<std::size_t>(length));
  }
  const std::string line = mRest.substr(0, end);
  mRest.erase(0, end + 1);
  return line;
}

void ClProgram::Kill() {
  ::kill(mProcess, SIGKILL);
  ::waitpid(mProcess, nullptr, 0);
  mProcess = -1;
}
