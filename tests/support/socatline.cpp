#include "socatline.h"

#include "await.h"
#include "spawning.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

namespace krtest {

namespace {

const std::chrono::milliseconds kLimit = 2 * GetGenerousLimit(); // Many bytes may come.
constexpr int kLookMs = 100;

using Clock = std::chrono::steady_clock;

void Check(bool aIsOK, const char* aWhat) {
  if (!aIsOK)
    throw std::system_error(errno, std::generic_category(), aWhat);
}

std::array<int, 2> MakePipe() {
  std::array<int, 2> ends{};
  Check(pipe2(ends.data(), O_CLOEXEC) == 0, "A pipe cannot be made");
  return ends;
}

// Waits until a descriptor can be used; false when it cannot for a while.
bool Poll(int aDescriptor, short aEvents) {
  pollfd waited{.fd = aDescriptor, .events = aEvents, .revents = 0};
  return poll(&waited, 1, kLookMs) > 0;
}

void WriteAll(int aDescriptor, std::string_view aBytes, const std::stop_token& aStop) {
  // A socat that has ended, as its line has, is no reason for the test to end.
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  while (!aBytes.empty() && !aStop.stop_requested()) {
    const ssize_t written = Poll(aDescriptor, POLLOUT) ? write(aDescriptor, aBytes.data(), aBytes.size()) : 0;
    if (written < 0 && errno != EAGAIN)
      return; // Who misses it says so.
    aBytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
  }
}

} // namespace

SocatProcess::SocatProcess(std::string aAddress) {
  const std::array<int, 2> input = MakePipe();
  const std::array<int, 2> output = MakePipe();
  mProcess = Spawning({"socat", "STDIO", std::move(aAddress)})
                 .Give(input[0], STDIN_FILENO)
                 .Give(output[1], STDOUT_FILENO)
                 .Start();
  const int failure = mProcess < 0 ? errno : 0;
  close(input[0]);
  close(output[1]);
  mInput = input[1];
  mOutput = output[0];
  errno = failure;
  Check(failure == 0, "socat cannot be started");
  fcntl(mInput, F_SETFL, O_NONBLOCK);
}

SocatProcess::~SocatProcess() {
  mSender = {};
  close(mInput);
  close(mOutput);
  End(SIGTERM);
}

void SocatProcess::End(int aSignal) {
  if (mProcess < 0)
    return;
  kill(mProcess, aSignal);
  waitpid(mProcess, nullptr, 0);
  mProcess = -1;
}

void SocatProcess::Kill() {
  mSender = {};
  End(SIGKILL);
}

void SocatProcess::Send(std::string aBytes) {
  if (mSender.joinable())
    mSender.join();
  mSender =
      std::jthread([this, bytes = std::move(aBytes)](const std::stop_token& aStop) { WriteAll(mInput, bytes, aStop); });
}

void SocatProcess::ReadSome() {
  std::array<char, 65536> bytes;
  const ssize_t read = Poll(mOutput, POLLIN) ? ::read(mOutput, bytes.data(), bytes.size()) : 0;
  Check(read >= 0, "socat cannot be heard");
  mReceived.append(bytes.data(), static_cast<std::size_t>(read));
}

const std::string& SocatProcess::Await(std::size_t aSize) {
  const auto limit = Clock::now() + kLimit;
  while (mReceived.size() < aSize && Clock::now() < limit)
    ReadSome();
  return mReceived;
}

const std::string& SocatProcess::AwaitEnd(std::string_view aEnd) {
  const auto limit = Clock::now() + kLimit;
  while (!mReceived.ends_with(aEnd) && Clock::now() < limit)
    ReadSome();
  return mReceived;
}

SocatLine::SocatLine(const std::string& aPath) : mProcess("PTY,rawer,link=" + aPath) {
  const bool isMade = krtest::Await([&] {
    mHolder = open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    return mHolder >= 0;
  });
  Check(isMade, "socat has made no pseudo-terminal");
}

SocatLine::~SocatLine() {
  close(mHolder);
}

} // namespace krtest
