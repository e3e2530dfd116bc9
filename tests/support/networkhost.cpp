#include "networkhost.h"

#include "spawning.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

// Reads a pipe until its last writer has closed it.
std::string ReadToEnd(int aDescriptor) {
  std::string text;
  std::array<char, 1024> part{};
  for (ssize_t size = 0; (size = ::read(aDescriptor, part.data(), part.size())) > 0;)
    text.append(part.data(), static_cast<std::size_t>(size));
  return text;
}

// Where a thread is in a namespace of its own, this file names it.
constexpr const char* kNamespaceOfThread = "/proc/thread-self/ns/net";

} // namespace

std::string RunProgram(const std::vector<std::string>& aCommandLine) {
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
    return std::strerror(errno);
  const pid_t process = Spawning(aCommandLine).Discard(STDOUT_FILENO).Give(pipe[1], STDERR_FILENO).Start();
  const int error = errno;
  ::close(pipe[1]);
  const std::string said = ReadToEnd(pipe[0]);
  ::close(pipe[0]);
  if (process < 0)
    return aCommandLine[0] + " cannot be started: " + std::strerror(error);
  int status = 0;
  ::waitpid(process, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
    return {};
  return said.empty() ? "it failed without a word" : said;
}

NetworkHost::NetworkHost(std::string aName) : mName(std::move(aName)) {
  // A thread may leave for a namespace of its own; the descriptor keeps it when the thread has ended.
  std::thread([this] {
    if (::unshare(CLONE_NEWNET) == 0)
      mNamespace = ::open(kNamespaceOfThread, O_RDONLY | O_CLOEXEC);
  }).join();
  if (mNamespace < 0)
    ADD_FAILURE() << "No network namespace can be made for " << mName << ": run the test by scripts/with-network.sh.";
  else
    SetUp("lo");
}

NetworkHost::~NetworkHost() {
  if (mNamespace >= 0)
    ::close(mNamespace);
}

std::string NetworkHost::GetNamespaceFile() const {
  return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(mNamespace);
}

void NetworkHost::Run(const std::function<void()>& aWork) const {
  std::thread([&] {
    if (::setns(mNamespace, CLONE_NEWNET) == 0)
      aWork();
    else
      ADD_FAILURE() << "The namespace of " << mName << " cannot be entered: " << std::strerror(errno);
  }).join();
}

void NetworkHost::SetAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const {
  RunIp({"address", "add", aAddressAndPrefix, "broadcast", "+", "dev", aAdapter});
}

void NetworkHost::SetUp(const std::string& aAdapter) const {
  RunIp({"link", "set", aAdapter, "up"});
}

void NetworkHost::SetDown(const std::string& aAdapter) const {
  RunIp({"link", "set", aAdapter, "down"});
}

void NetworkHost::RunIp(const std::vector<std::string>& aArguments) const {
  std::vector<std::string> commandLine = {"nsenter", "--net=" + GetNamespaceFile(), "ip"};
  commandLine.insert(commandLine.end(), aArguments.begin(), aArguments.end());
  EXPECT_EQ(RunProgram(commandLine), "") << "on the host " << mName << ": ip " << testing::PrintToString(aArguments);
}
