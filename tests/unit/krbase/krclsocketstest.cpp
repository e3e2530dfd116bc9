#include "krbase/krclsockets.h"

#include "await.h"
#include "krbase/filedescriptor.h"
#include "krbase/krclwire.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Publication = std::unique_ptr<KrCLPublication>;

constexpr mode_t kRights = 07777;

mode_t GetRights(const std::string& aPath) {
  struct stat status = {};
  EXPECT_EQ(::stat(aPath.c_str(), &status), 0) << aPath;
  return status.st_mode & kRights;
}

Publication Publish(const std::string& aName) {
  Publication publication;
  const KrResult result = KrCLPublication::Make(aName, publication);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return publication;
}

std::vector<std::string> List() {
  std::vector<KrCLPort> ports;
  const KrResult result = KrListCLPorts(ports);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  std::vector<std::string> names;
  for (const KrCLPort& port : ports)
    names.push_back(port.name.ToUtf8());
  return names;
}

KrCLPort FindPort(const std::string& aName) {
  std::vector<KrCLPort> ports;
  EXPECT_TRUE(KrListCLPorts(ports).IsOK());
  const auto found =
      std::find_if(ports.begin(), ports.end(), [&](const KrCLPort& aPort) { return aPort.name == aName; });
  return found == ports.end() ? KrCLPort() : *found;
}

class CLSockets : public testing::Test {
protected:
  CLSockets() { setenv("KRGUI_CAMERA_LINK_DIR", mPath.c_str(), 1); }
  ~CLSockets() override { unsetenv("KRGUI_CAMERA_LINK_DIR"); }

  std::vector<std::string> GetFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(mPath))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  // Publishes in a process of its own, which is killed over it.
  void PublishAndDie(const std::string& aName) {
    const pid_t child = ::fork();
    if (child == 0) {
      Publication publication;
      if (!KrCLPublication::Make(aName, publication).IsOK())
        ::_exit(1);
      ::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("sockets");
};

TEST_F(CLSockets, PublishedPort_IsListedWhileItLives) {
  EXPECT_THAT(List(), IsEmpty()) << "There is not even a directory.";
  Publication publication = Publish("Model X 00:11:22-Serial0");

  EXPECT_EQ(publication->GetName(), "Model X 00:11:22-Serial0");
  EXPECT_THAT(List(), ElementsAre("Model X 00:11:22-Serial0"));
  publication.reset();
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(GetFiles(), ElementsAre("directory.lock"));
}

TEST_F(CLSockets, DirectoryAndSockets_AreTheirOwnersAloneWhateverTheMask) {
  const mode_t mask = ::umask(0);
  const Publication publication = Publish("Camera");
  ::umask(mask);

  EXPECT_EQ(GetRights(mPath), 0700U);
  EXPECT_THAT(GetFiles(), ElementsAre("1.lock", "1.sock", "directory.lock"));
  for (const std::string& file : GetFiles())
    EXPECT_EQ(GetRights(mPath + "/" + file), 0600U) << file;
}

TEST_F(CLSockets, DirectoryThatOthersMayEnter_IsRefused) {
  ASSERT_EQ(::mkdir(mPath.c_str(), 0700), 0);
  for (const mode_t rights : {0710, 0701, 0704, 0777}) {
    ASSERT_EQ(::chmod(mPath.c_str(), rights), 0);
    Publication publication;
    std::vector<KrCLPort> ports;

    const KrResult made = KrCLPublication::Make("Camera", publication);

    EXPECT_EQ(made.GetCode(), KrResult::Code::AccessDenied) << rights;
    EXPECT_THAT(made.GetDescription().ToUtf8(), HasSubstr("others than its owner may enter it"));
    EXPECT_EQ(publication, nullptr);
    EXPECT_EQ(KrListCLPorts(ports).GetCode(), KrResult::Code::AccessDenied) << rights;
  }
}

TEST_F(CLSockets, DirectoryOfAnotherUser_IsRefused) {
  if (::geteuid() != 0) {
    // The root directory is nobody's but the system's.
    setenv("KRGUI_CAMERA_LINK_DIR", "/", 1);
  } else {
    ASSERT_EQ(::mkdir(mPath.c_str(), 0700), 0);
    ASSERT_EQ(::chown(mPath.c_str(), 65534, 65534), 0);
  }
  Publication publication;

  const KrResult made = KrCLPublication::Make("Camera", publication);

  EXPECT_EQ(made.GetCode(), KrResult::Code::AccessDenied);
  EXPECT_THAT(made.GetDescription().ToUtf8(), HasSubstr("belongs to another user"));
}

TEST_F(CLSockets, DirectoryThatIsALink_IsRefused) {
  const std::string target = mFolder.GetFile("elsewhere");
  ASSERT_EQ(::mkdir(target.c_str(), 0700), 0);
  fs::create_directory_symlink(target, mPath);
  Publication publication;

  EXPECT_FALSE(KrCLPublication::Make("Camera", publication).IsOK());
  EXPECT_TRUE(fs::is_empty(target));
}

TEST_F(CLSockets, WithoutAVariableOfItsOwn_TheDirectoryIsInTheUsersRuntimeDirectory) {
  unsetenv("KRGUI_CAMERA_LINK_DIR");
  setenv("XDG_RUNTIME_DIR", mFolder.GetPath().c_str(), 1);

  const Publication publication = Publish("Camera");

  EXPECT_TRUE(fs::is_socket(mFolder.GetPath() / "krgui" / "camera-link" / "1.sock"));
  EXPECT_EQ(GetRights(mFolder.GetFile("krgui")), 0700U);
  EXPECT_EQ(GetRights(mFolder.GetFile("krgui/camera-link")), 0700U);
  unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(CLSockets, PathOfAnyLength_WillDo) {
  const std::string path = mFolder.GetFile(std::string(200, 'd'));
  setenv("KRGUI_CAMERA_LINK_DIR", path.c_str(), 1);
  const Publication publication = Publish("Camera");
  krbase::FileDescriptor socket;

  EXPECT_TRUE(KrConnectCLPort(FindPort("Camera"), krtest::GetGenerousLimit(), socket).IsOK());
}

TEST_F(CLSockets, NameThatIsTaken_GetsTheFirstNumberThatNobodyHas) {
  const Publication first = Publish("Camera");
  Publication second = Publish("Camera");
  const Publication third = Publish("Camera");
  second.reset();
  const Publication other = Publish("Another");
  const Publication fourth = Publish("Camera");

  EXPECT_EQ(third->GetName(), "Camera (3)");
  EXPECT_EQ(fourth->GetName(), "Camera (2)");
  EXPECT_THAT(List(), ElementsAre("Another", "Camera", "Camera (2)", "Camera (3)"));
}

TEST_F(CLSockets, Names_HoldWhatAnIdentifierMay) {
  const std::string umlauts = [] {
    std::string text = "x";
    for (std::size_t i = 0; i < kKrCLMostName; ++i)
      text += "ä";
    return text;
  }();
  const struct {
    std::string name;
    std::string published;
  } rows[] = {
      {"a#b\tc\nd\x7F", "a-b-c-d-"},
      {"../../etc/passwd", "../../etc/passwd"},
      {"Grün", "Grün"},
      {umlauts, umlauts.substr(0, kKrCLMostName - 1)},
  };

  for (const auto& row : rows) {
    const Publication publication = Publish(row.name);
    EXPECT_EQ(publication->GetName(), row.published);
    EXPECT_THAT(List(), ElementsAre(row.published));
    EXPECT_THAT(GetFiles(), ElementsAre("1.lock", "1.sock", "directory.lock"));
  }
  const Publication longest = Publish(umlauts);
  EXPECT_EQ(Publish(umlauts)->GetName(), umlauts.substr(0, kKrCLMostName - 5) + " (2)");
  for (const std::string name : {"", "   ", " \t\n"}) {
    Publication publication;
    EXPECT_EQ(KrCLPublication::Make(name, publication).GetCode(), KrResult::Code::InvalidInput);
  }
}

TEST_F(CLSockets, PortOfAProcessThatDied_IsRemovedAndItsNameIsFree) {
  PublishAndDie("Camera");
  ASSERT_THAT(GetFiles(), Contains("1.sock"));
  const KrCLPort dead{1, "Camera"};
  krbase::FileDescriptor socket;

  EXPECT_EQ(KrConnectCLPort(dead, krtest::GetGenerousLimit(), socket).GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(List(), IsEmpty());
  EXPECT_THAT(GetFiles(), ElementsAre("directory.lock"));
  EXPECT_EQ(Publish("Camera")->GetName(), "Camera");
}

TEST_F(CLSockets, PortOfAProcessThatDied_IsRemovedByTheNextThatPublishes) {
  PublishAndDie("Camera");
  PublishAndDie("Camera");

  const Publication publication = Publish("Camera");

  EXPECT_EQ(publication->GetName(), "Camera");
  EXPECT_THAT(GetFiles(), ElementsAre("1.lock", "1.sock", "directory.lock"));
}

TEST_F(CLSockets, FilesOfAPublicationThatWasCutShort_AreNoPort) {
  ASSERT_EQ(::mkdir(mPath.c_str(), 0700), 0);
  TemporaryFolder::WriteFile(mPath + "/1.new", "Camera");
  TemporaryFolder::WriteFile(mPath + "/1.sock", "");
  TemporaryFolder::WriteFile(mPath + "/01.lock", "Camera");
  TemporaryFolder::WriteFile(mPath + "/99999999999999999999.lock", "Camera");

  EXPECT_THAT(List(), IsEmpty());
  const Publication publication = Publish("Camera");
  EXPECT_THAT(List(), ElementsAre("Camera"));
  EXPECT_THAT(GetFiles(), Not(Contains("1.new")));
}

TEST_F(CLSockets, DirectoryThatAnotherKeepsLocked_IsListedAndBusyForWhoPublishes) {
  const Publication publication = Publish("Camera");
  PublishAndDie("Dead");
  const krbase::FileDescriptor lock(::open((mPath + "/directory.lock").c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::flock(lock.Get(), LOCK_EX), 0);
  Publication refused;

  EXPECT_THAT(List(), ElementsAre("Camera"));
  EXPECT_EQ(KrCLPublication::Make("Other", refused).GetCode(), KrResult::Code::Busy);
}

TEST_F(CLSockets, LockOfTheDirectoryThatCannotBeOpened_IsToldAsTheSystemSaysIt) {
  Publish("Camera").reset();
  fs::remove(mPath + "/directory.lock");
  fs::create_symlink("elsewhere", mPath + "/directory.lock");
  Publication refused;

  const KrResult result = KrCLPublication::Make("Other", refused);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("symbolic links"));
  EXPECT_EQ(refused, nullptr);
}

TEST_F(CLSockets, DirectoryThatIsEmptiedMeanwhile_DoesNotCostAnotherItsPort) {
  Publication first = Publish("First");
  for (const std::string& file : GetFiles())
    fs::remove(mPath + "/" + file);
  const Publication second = Publish("Second");

  first.reset();

  EXPECT_THAT(List(), ElementsAre("Second"));
  EXPECT_THAT(GetFiles(), ElementsAre("1.lock", "1.sock", "directory.lock"));
}

TEST_F(CLSockets, ManyThatPublishAtOnce_GetNamesOfTheirOwn) {
  constexpr std::size_t kThreads = 8;
  std::vector<Publication> publications(kThreads);
  {
    std::vector<std::jthread> threads;
    for (Publication& publication : publications)
      threads.emplace_back([&publication] { publication = Publish("Camera"); });
  }

  std::vector<std::string> names = List();

  EXPECT_EQ(names.size(), kThreads);
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST_F(CLSockets, MoreThanAThousand_AreRefused) {
  rlimit descriptors = {};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &descriptors), 0);
  ASSERT_GE(descriptors.rlim_max, 2000u);
  descriptors.rlim_cur = descriptors.rlim_max;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &descriptors), 0);
  Publish("the directory's maker").reset();
  std::vector<krbase::FileDescriptor> others;
  for (int number = 1; number <= 1000; ++number) {
    const std::string file = mPath + "/" + std::to_string(number) + ".lock";
    others.emplace_back(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(others.back().Get(), LOCK_EX | LOCK_NB), 0) << file;
  }
  Publication publication;

  const KrResult result = KrCLPublication::Make("one more", publication);

  EXPECT_EQ(result, KrResult::Code::Busy);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("there are too many already"));
}

TEST_F(CLSockets, Connection_IsOfThisUserAndReachesItsPort) {
  const Publication other = Publish("Other");
  const Publication publication = Publish("Camera");
  krbase::FileDescriptor socket;

  ASSERT_TRUE(KrConnectCLPort(FindPort("Camera"), krtest::GetGenerousLimit(), socket).IsOK());
  const krbase::FileDescriptor accepted(::accept(publication->GetSocket(), nullptr, nullptr));

  ASSERT_TRUE(accepted.IsOpen());
  EXPECT_TRUE(KrIsOwnUser(accepted.Get()));
  EXPECT_TRUE(KrIsOwnUser(socket.Get()));
  EXPECT_EQ(::accept(other->GetSocket(), nullptr, nullptr), -1);
}

TEST_F(CLSockets, PortAtWhichTooManyAsk_IsWaitedForNoLongerThanTheLimit) {
  const Publication publication = Publish("Camera");
  const KrCLPort port = FindPort("Camera");
  std::vector<krbase::FileDescriptor> sockets;
  KrResult result;

  while (result.IsOK() && sockets.size() < 1000) {
    krbase::FileDescriptor socket;
    result = KrConnectCLPort(port, 20ms, socket);
    sockets.push_back(std::move(socket));
  }

  EXPECT_EQ(result.GetCode(), KrResult::Code::TimeLimitExceeded);
}

// Two sockets of packets, each the other's end.
class Connection {
public:
  Connection() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    mReceiver = krbase::FileDescriptor(ends[0]);
    mSender = krbase::FileDescriptor(ends[1]);
  }
  int GetReceiver() const { return mReceiver.Get(); }
  int GetSender() const { return mSender.Get(); }

private:
  krbase::FileDescriptor mReceiver;
  krbase::FileDescriptor mSender;
};

// The kernel may tell the end although there is a packet, where both come while it looks: in one of a thousand rounds.
TEST(ReceiveCLPacket, WhatWasSentBeforeTheEnd_ComesBeforeIt) {
  for (int round = 0; round < 1000; ++round) {
    const Connection connection;
    std::array<std::uint8_t, 8> bytes = {};
    std::ptrdiff_t length = -1;

    const std::jthread thread([&] {
      ::send(connection.GetSender(), "abc", 3, MSG_NOSIGNAL);
      ::shutdown(connection.GetSender(), SHUT_WR);
    });
    while ((length = KrReceiveCLPacket(connection.GetReceiver(), bytes.data(), bytes.size())) < 0 && errno == EAGAIN)
      std::this_thread::yield();

    ASSERT_EQ(length, 3) << "round " << round;
    ASSERT_EQ(std::string(bytes.begin(), bytes.begin() + 3), "abc");
  }
}

TEST(ReceiveCLPacket, EmptyPacket_IsTakenForAnEnd) {
  const Connection connection;
  std::array<std::uint8_t, 8> bytes = {};

  ASSERT_EQ(::send(connection.GetSender(), "", 0, MSG_NOSIGNAL), 0);

  EXPECT_EQ(KrReceiveCLPacket(connection.GetReceiver(), bytes.data(), bytes.size()), 0);
}

TEST(ReceiveCLPacket, LongerThanItsRoom_TellsItsWholeLengthAndIsTaken) {
  const Connection connection;
  std::array<std::uint8_t, 2> bytes = {};

  ASSERT_EQ(::send(connection.GetSender(), "abc", 3, MSG_NOSIGNAL), 3);

  EXPECT_EQ(KrReceiveCLPacket(connection.GetReceiver(), bytes.data(), bytes.size()), 3);
  EXPECT_EQ(KrReceiveCLPacket(connection.GetReceiver(), bytes.data(), bytes.size()), -1);
  EXPECT_EQ(errno, EAGAIN);
}

} // namespace
