#include "fakecamera.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* kProgram = "arv-fake-gv-camera-0.8";
constexpr std::chrono::seconds kStartLimit{20};

// Starts the camera with its output thrown away: it reports every transfer.
pid_t Spawn(std::vector<std::string> aArguments) {
  std::vector<char*> arguments;
  for (std::string& argument : aArguments)
    arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int error = posix_spawnp(&process, aArguments.front().c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : -1;
}

// The kernel ends the camera should the test die first.
std::vector<std::string> MakeCommandLine(const FakeCameraOptions& aOptions) {
  std::vector<std::string> arguments = {"setpriv", "--pdeathsig", "KILL"};
  if (!aOptions.namespaceFile.empty())
    arguments.insert(arguments.end(), {"nsenter", "--net=" + aOptions.namespaceFile});
  arguments.insert(arguments.end(), {kProgram, "-i", aOptions.address, "-s", aOptions.serialNumber});
  if (!aOptions.descriptionFile.empty())
    arguments.insert(arguments.end(), {"-g", aOptions.descriptionFile});
  if (aOptions.lostPacketsPerMille != 0)
    arguments.insert(arguments.end(), {"-r", std::to_string(aOptions.lostPacketsPerMille)});
  return arguments;
}

FakeCameraOptions MakeOptions(const std::string& aSerialNumber) {
  FakeCameraOptions options;
  options.serialNumber = aSerialNumber;
  return options;
}

} // namespace

bool AnswersDiscovery(const std::string& aAddress) {
  const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(3956);
  ::inet_pton(AF_INET, aAddress.c_str(), &address.sin_addr);
  constexpr std::array<std::uint8_t, 8> kCommand = {0x42, 0x11, 0x00, 0x02, 0x00, 0x00, 0x12, 0x34};
  ::sendto(descriptor, kCommand.data(), kCommand.size(), 0, reinterpret_cast<const sockaddr*>(&address),
           sizeof(address));
  pollfd wait{descriptor, POLLIN, 0};
  const bool isAnswered = ::poll(&wait, 1, 250) == 1;
  ::close(descriptor);
  return isAnswered;
}

FakeCamera::FakeCamera(const FakeCameraOptions& aOptions) : mProcess(Spawn(MakeCommandLine(aOptions))) {
  if (mProcess < 0) {
    ADD_FAILURE() << kProgram << " cannot be started; install the package aravis-tools.";
    return;
  }
  const auto limit = std::chrono::steady_clock::now() + kStartLimit;
  while (!mIsAnswering && std::chrono::steady_clock::now() < limit)
    mIsAnswering = AnswersDiscovery(aOptions.address);
  EXPECT_TRUE(mIsAnswering) << kProgram << " does not answer on " << aOptions.address;
}

FakeCamera::FakeCamera(const std::string& aSerialNumber) : FakeCamera(MakeOptions(aSerialNumber)) {}

FakeCamera::~FakeCamera() {
  Kill();
}

void FakeCamera::Kill() {
  if (mProcess < 0)
    return;
  ::kill(mProcess, SIGKILL);
  ::waitpid(mProcess, nullptr, 0);
  mProcess = -1;
  mIsAnswering = false;
}

void FakeCamera::Pause() {
  if (mProcess < 0)
    return;
  ::kill(mProcess, SIGSTOP);
  ::waitpid(mProcess, nullptr, WUNTRACED); // Until it has stopped.
}

void FakeCamera::Resume() {
  if (mProcess >= 0)
    ::kill(mProcess, SIGCONT);
}
