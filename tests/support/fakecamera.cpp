#include "fakecamera.h"

#include "await.h"
#include "spawning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <cstdint>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* kProgram = "arv-fake-gv-camera-0.8";

// The kernel ends the camera should the test die first. What it writes is thrown away: it reports every transfer.
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

// Commands to one camera, and its answers; a camera knows who controls it by the socket.
class Conversation {
public:
  explicit Conversation(const std::string& aAddress) {
    mAddress.sin_family = AF_INET;
    mAddress.sin_port = htons(3956);
    ::inet_pton(AF_INET, aAddress.c_str(), &mAddress.sin_addr);
  }
  ~Conversation() { ::close(mSocket); }
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  // The answer to a command; empty where none comes within a quarter of a second.
  std::vector<std::uint8_t> Ask(const std::vector<std::uint8_t>& aCommand) const {
    ::sendto(mSocket, aCommand.data(), aCommand.size(), 0, reinterpret_cast<const sockaddr*>(&mAddress),
             sizeof(mAddress));
    pollfd wait{mSocket, POLLIN, 0};
    std::vector<std::uint8_t> answer(1024);
    const ssize_t size = ::poll(&wait, 1, 250) == 1 ? ::recv(mSocket, answer.data(), answer.size(), 0) : 0;
    answer.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return answer;
  }
  // Asked again when no answer comes, as commands are.
  bool WriteRegister(std::uint32_t aRegister, std::uint32_t aValue) const {
    std::vector<std::uint8_t> command = {0x42, 0x01, 0x00, 0x82, 0x00, 0x08, 0x12, 0x35};
    for (const std::uint32_t number : {aRegister, aValue})
      for (int shift = 24; shift >= 0; shift -= 8)
        command.push_back(static_cast<std::uint8_t>(number >> shift));
    std::vector<std::uint8_t> answer;
    const bool isAnswered = krtest::Await([&] {
      answer = Ask(command);
      return !answer.empty();
    });
    return isAnswered && answer.size() >= 2 && answer[0] == 0 && answer[1] == 0;
  }

private:
  const int mSocket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in mAddress = {};
};

} // namespace

bool AnswersDiscovery(const std::string& aAddress) {
  return !Conversation(aAddress).Ask({0x42, 0x11, 0x00, 0x02, 0x00, 0x00, 0x12, 0x34}).empty();
}

FakeCamera::FakeCamera(const FakeCameraOptions& aOptions)
    : mAddress(aOptions.address), mProcess(Spawning(MakeCommandLine(aOptions)).DiscardOutput().Start()) {
  if (mProcess < 0) {
    ADD_FAILURE() << kProgram << " cannot be started; install the package aravis-tools.";
    return;
  }
  mIsAnswering = krtest::Await([&] { return AnswersDiscovery(aOptions.address); });
  EXPECT_TRUE(mIsAnswering) << kProgram << " does not answer on " << aOptions.address;
}

FakeCamera::FakeCamera(const std::string& aSerialNumber) : FakeCamera(MakeOptions(aSerialNumber)) {}

FakeCamera::~FakeCamera() {
  Kill();
}

void FakeCamera::SetUp(std::uint32_t aRegister, std::uint32_t aValue) const {
  constexpr std::uint32_t kControl = 0x0A00;
  const Conversation conversation(mAddress);
  EXPECT_TRUE(conversation.WriteRegister(kControl, 2));
  EXPECT_TRUE(conversation.WriteRegister(aRegister, aValue));
  EXPECT_TRUE(conversation.WriteRegister(kControl, 0));
}

void FakeCamera::SetFramePeriod(std::uint32_t aMicroseconds) const {
  SetUp(0x0138, aMicroseconds);
}

void FakeCamera::SetFrameHeight(std::uint32_t aLines) const {
  SetUp(0x0104, aLines);
}

void FakeCamera::TakeControlAndVanish() const {
  constexpr std::uint32_t kControl = 0x0A00;
  const Conversation conversation(mAddress);
  EXPECT_TRUE(krtest::Await([&] { return conversation.WriteRegister(kControl, 2); })) << "Somebody else keeps control.";
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
