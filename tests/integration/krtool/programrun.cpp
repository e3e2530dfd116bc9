#include "programrun.h"

#include "await.h"
#include "spawning.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const int kLimitMs = krtest::GetGenerousMs();

// Reads what there is; closes the descriptor at its end.
void ReadFrom(int& aDescriptor, std::string& aText) {
  std::array<char, 4096> bytes;
  const ssize_t count = ::read(aDescriptor, bytes.data(), bytes.size());
  if (count > 0) {
    aText.append(bytes.data(), static_cast<std::size_t>(count));
    return;
  }
  ::close(aDescriptor);
  aDescriptor = -1;
}

} // namespace

ProgramRun::ProgramRun(const std::string& aPath, const std::vector<std::string>& aArguments) {
  std::vector<std::string> texts = {aPath};
  texts.insert(texts.end(), aArguments.begin(), aArguments.end());
  int output[2];
  int errors[2];
  if (::pipe2(output, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0) {
    ADD_FAILURE() << "No pipe can be made.";
    return;
  }
  mProcess = Spawning(std::move(texts)).Give(output[1], STDOUT_FILENO).Give(errors[1], STDERR_FILENO).Start();
  if (mProcess < 0)
    ADD_FAILURE() << aPath << " cannot be started.";
  ::close(output[1]);
  ::close(errors[1]);
  mOutputEnd = output[0];
  mErrorEnd = errors[0];
}

ProgramRun::~ProgramRun() {
  if (mProcess >= 0) {
    ::kill(mProcess, SIGKILL);
    ::waitpid(mProcess, nullptr, 0);
  }
  for (const int descriptor : {mOutputEnd, mErrorEnd})
    if (descriptor >= 0)
      ::close(descriptor);
}

bool ProgramRun::ReadSome() {
  std::array<pollfd, 2> waits = {pollfd{mOutputEnd, POLLIN, 0}, pollfd{mErrorEnd, POLLIN, 0}};
  if ((mOutputEnd < 0 && mErrorEnd < 0) || ::poll(waits.data(), waits.size(), kLimitMs) <= 0)
    return false;
  if (waits[0].revents != 0)
    ReadFrom(mOutputEnd, mOutput);
  if (waits[1].revents != 0)
    ReadFrom(mErrorEnd, mErrors);
  return true;
}

bool ProgramRun::AwaitError(const std::string& aText) {
  return Await(mErrors, aText);
}

bool ProgramRun::AwaitOutput(const std::string& aText) {
  return Await(mOutput, aText);
}

bool ProgramRun::Await(const std::string& aWritten, const std::string& aText) {
  while (aWritten.find(aText) == std::string::npos)
    if (!ReadSome())
      return false;
  return true;
}

void ProgramRun::Signal(int aSignal) const {
  if (mProcess >= 0)
    ::kill(mProcess, aSignal);
}

void ProgramRun::CloseOutput() {
  if (mOutputEnd >= 0)
    ::close(mOutputEnd);
  mOutputEnd = -1;
}

int ProgramRun::Finish() {
  while (ReadSome())
    continue;
  // A program that still holds its output open did not end within the limit; it is left to the destructor.
  if (mProcess < 0 || mOutputEnd >= 0 || mErrorEnd >= 0)
    return -1;
  int status = 0;
  ::waitpid(mProcess, &status, 0);
  mProcess = -1;
  mEndSignal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
