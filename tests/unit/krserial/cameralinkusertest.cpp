#include "await.h"
#include "bridge/cameralinkend.h"
#include "krserial/krgenparameterarraycl.h"
#include "scopedvariable.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using krserial::CameraLinkEnd;

constexpr uid_t kNobody = 65534;
const int kLimitMs = 2 * krtest::GetGenerousMs();

/// What a process of another user finds.
enum Found { AllClosed = 0, CouldNotChange, ListedSomething, WasConnected, WasServed, WasLeftWaiting };

int Connect(const std::string& aPath) {
  const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s", aPath.c_str());
  return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? socket : -1;
}

class OtherUser : public testing::Test {
protected:
  OtherUser() {
    ::chmod(mFolder.GetPath().c_str(), 0755);
    EXPECT_TRUE(CameraLinkEnd::Open("Camera", true, mEnd).IsOK());
    mTaker = std::jthread([this](const std::stop_token& aStop) {
      std::uint8_t byte = 0;
      std::size_t read = 0;
      (void)mEnd->Read(&byte, 1, read, aStop);
    });
  }
  ~OtherUser() override { mTaker.request_stop(); }

  // What keeps others out, where this test may not become one of them.
  void ExpectRightsOfTheOwner() {
    struct stat status = {};
    ASSERT_EQ(::stat(mPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    ASSERT_EQ(::stat((mPath + "/1.sock").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(status.st_uid, ::geteuid());
  }
  // Runs in a process of another user; what it answers.
  template <typename Operation>
  static int AskAsNobody(Operation&& aOperation) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
        ::_exit(CouldNotChange);
      ::_exit(aOperation());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("sockets");
  const krtest::ScopedVariable mVariable{"KRGUI_CAMERA_LINK_DIR", mPath};
  std::unique_ptr<CameraLinkEnd> mEnd;
  std::jthread mTaker;
};

TEST_F(OtherUser, NeitherListsNorConnects) {
  if (::geteuid() != 0)
    return ExpectRightsOfTheOwner();

  const int found = AskAsNobody([this] {
    KrStringList ids;
    if (!(KrGenParameterArrayCL::GetPortIDs(ids) == KrResult::Code::AccessDenied))
      return ListedSomething;
    return Connect(mPath + "/1.sock") < 0 ? AllClosed : WasConnected;
  });

  EXPECT_EQ(found, AllClosed);
}

TEST_F(OtherUser, IsNotServedEvenWhereTheRightsWereGivenAway) {
  if (::geteuid() != 0)
    return ExpectRightsOfTheOwner();
  ASSERT_EQ(::chmod(mPath.c_str(), 0755), 0);
  ASSERT_EQ(::chmod((mPath + "/1.sock").c_str(), 0666), 0);

  const int found = AskAsNobody([this] {
    const int socket = Connect(mPath + "/1.sock");
    pollfd waited{.fd = socket, .events = POLLIN, .revents = 0};
    char byte = 0;
    if (socket < 0)
      return CouldNotChange;
    if (::poll(&waited, 1, kLimitMs) != 1)
      return WasLeftWaiting;
    return ::recv(socket, &byte, 1, 0) == 0 ? AllClosed : WasServed;
  });

  EXPECT_EQ(found, AllClosed);
}

TEST_F(OtherUser, FilesAreForTheOwnerAlone) {
  ExpectRightsOfTheOwner();
}

} // namespace
