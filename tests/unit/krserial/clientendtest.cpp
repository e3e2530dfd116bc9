// A serial port that a bridge makes, with real clients: programs that open it, set it, hang, and die.

#include "bridge/clientend.h"
#include "bridge/ttyend.h"
#include "bridge/ttysettings.h"
#include "hostendreader.h"
#include "hostfolders.h"
#include "portclient.h"
#include "pseudoterminal.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <string>

using krserial::ClientEnd;
using krserial::IHostEnd;
using krserial::TtySettings;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::size_t kMostWaiting = 65536;

class ClientEndTest : public testing::Test {
protected:
  std::unique_ptr<IHostEnd> Open() {
    std::unique_ptr<IHostEnd> end;
    const KrResult opened = ClientEnd::Open("COM9", end);
    EXPECT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    return end;
  }
  static KrResult TryToOpen(const char* aName) {
    std::unique_ptr<IHostEnd> end;
    return ClientEnd::Open(aName, end);
  }
  bool IsLinked() const { return std::filesystem::is_symlink(mPath); }

  HostFolders mHost;
  const std::string mPath = mHost.GetLink("com9");
};

} // namespace

TEST_F(ClientEndTest, Port_IsReadByItsUserAloneAndItsLockIsHis) {
  const std::unique_ptr<IHostEnd> end = Open();
  struct stat port = {};
  struct stat lock = {};

  ASSERT_EQ(::stat(mPath.c_str(), &port), 0);
  ASSERT_EQ(::stat(mHost.GetLink(".com9.lock").c_str(), &lock), 0);

  EXPECT_EQ(port.st_uid, ::geteuid());
  EXPECT_EQ(port.st_mode & 0047U, 0U) << "the group of terminals may write messages to them";
  EXPECT_EQ(lock.st_mode & 07777U, 0600U);
}

TEST_F(ClientEndTest, Port_IsAmongTheHostsForAsLongAsTheEndLives) {
  std::filesystem::remove(mHost.GetFile("links"));
  std::unique_ptr<IHostEnd> end = Open();
  KrStringList names;
  ASSERT_TRUE(KrHostSerialPorts::GetNames(names).IsOK());
  ASSERT_EQ(names.GetCount(), 1U);
  EXPECT_EQ(names[0].ToUtf8(), "COM9");

  end.reset();

  EXPECT_TRUE(std::filesystem::is_empty(mHost.GetFile("links")));
}

TEST_F(ClientEndTest, Client_SendsAndReceivesBytesOfEveryValue) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const PortClient client(mPath);
  const std::string toHost = MakeMixedBytes(300000, 1);
  const std::string toDevice = MakeMixedBytes(300000, 2);

  auto endWriting = std::async(std::launch::async, [&] { return WriteText(*end, toHost); });
  auto clientWriting = std::async(std::launch::async, [&] { client.Write(toDevice); });
  const std::string read = client.Read(toHost.size());

  EXPECT_TRUE(endWriting.get().IsOK());
  clientWriting.get();
  EXPECT_TRUE(read == toHost) << "the bytes that the client received differ";
  EXPECT_TRUE(reader.Await(toDevice.size()) == toDevice) << "the bytes that the client sent differ";
}

TEST_F(ClientEndTest, ClientThatIsABridgesEndItself_SendsAndReceives) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  mHost.Link("com5", std::filesystem::read_symlink(mPath));
  std::unique_ptr<IHostEnd> client;
  ASSERT_TRUE(krserial::TtyEnd::Open("COM5", {}, client).IsOK());
  HostEndReader clientReader(*client);

  EXPECT_TRUE(WriteText(*client, "question").IsOK());
  EXPECT_EQ(reader.Await(8), "question");
  EXPECT_TRUE(WriteText(*end, "answer").IsOK());

  EXPECT_EQ(clientReader.Await(6), "answer");
}

TEST_F(ClientEndTest, Bytes_WithoutAClient_WaitForIt) {
  const std::unique_ptr<IHostEnd> end = Open();
  const HostEndReader reader(*end);
  ASSERT_TRUE(WriteText(*end, "first ").IsOK());
  ASSERT_TRUE(WriteText(*end, "second").IsOK());

  const PortClient client(mPath);

  EXPECT_EQ(client.Read(12), "first second");
}

TEST_F(ClientEndTest, BytesBeyondTheLimit_WithoutAClient_DropTheOldest) {
  const std::unique_ptr<IHostEnd> end = Open();
  const HostEndReader reader(*end);
  const std::string bytes = MakeMixedBytes(3 * kMostWaiting + 1, 3);
  ASSERT_TRUE(WriteText(*end, bytes.substr(0, kMostWaiting)).IsOK());
  ASSERT_TRUE(WriteText(*end, bytes.substr(kMostWaiting)).IsOK());
  ASSERT_TRUE(WriteText(*end, "end").IsOK());

  const PortClient client(mPath);

  const std::string all = bytes + "end";
  EXPECT_TRUE(client.Read(kMostWaiting) == all.substr(all.size() - kMostWaiting));
}

TEST_F(ClientEndTest, Client_ThatDiesBetweenTwoBytes_LeavesWhatItSentAndMayComeAgain) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const pid_t process = fork();
  ASSERT_GE(process, 0);
  if (process == 0) {
    const int tty = open(mPath.c_str(), O_RDWR | O_NOCTTY);
    if (write(tty, "half", 4) == 4)
      for (;;)
        pause();
    _exit(1);
  }
  EXPECT_EQ(reader.Await(4), "half");
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  ASSERT_TRUE(WriteText(*end, "later").IsOK()) << "nobody is there now";

  const PortClient client(mPath);
  client.Write("whole");

  EXPECT_EQ(client.Read(5), "later");
  EXPECT_EQ(reader.Await(9), "halfwhole");
}

TEST_F(ClientEndTest, Clients_OneAfterTheOther_AreAllHeard) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);

  for (std::size_t count = 1; count <= 50; ++count) {
    const PortClient client(mPath);
    client.Write("q");
    ASSERT_EQ(reader.Await(count).size(), count);
    ASSERT_TRUE(WriteText(*end, "a").IsOK());
    ASSERT_EQ(client.Read(1), "a");
  }
}

TEST_F(ClientEndTest, ClientThatDoesNotRead_HoldsUpWritingUntilStopped) {
  const std::unique_ptr<IHostEnd> end = Open();
  const HostEndReader reader(*end);
  const PortClient client(mPath);
  const std::string bytes = MakeMixedBytes(1 << 20, 4);
  std::stop_source stop;
  std::size_t written = 0;
  auto writing = std::async(std::launch::async, [&] {
    return end->Write(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), written, stop.get_token());
  });
  ASSERT_EQ(client.Read(1), bytes.substr(0, 1)) << "writing has begun, and nobody reads on";

  stop.request_stop();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  ASSERT_LT(written, bytes.size());
  EXPECT_TRUE(client.Read(written - 1) == bytes.substr(1, written - 1)) << "what was taken is all there";
}

TEST_F(ClientEndTest, ClientThatDoesNotReadAndGoes_LetsWritingEnd) {
  const std::unique_ptr<IHostEnd> end = Open();
  const HostEndReader reader(*end);
  auto client = std::make_unique<PortClient>(mPath);
  auto writing = std::async(std::launch::async, [&] { return WriteText(*end, std::string(1 << 20, 'x')); });
  ASSERT_EQ(client->Read(1), "x");

  client.reset();

  EXPECT_TRUE(writing.get().IsOK());
}

TEST_F(ClientEndTest, Stop_EndsReadWithAndWithoutAClient) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);
  const PortClient client(mPath);
  reader.Start();
  client.Write("x");
  ASSERT_EQ(reader.Await(1), "x");

  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);
}

TEST_F(ClientEndTest, Speed_ThatTheClientSets_IsAskedForBeforeTheBytesThatFollow) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const PortClient client(mPath);

  client.SetSpeed(57600);
  client.Write("x");

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "x"));
}

TEST_F(ClientEndTest, FreeSpeed_ThatTheClientSetsWithoutSending_IsAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const PortClient client(mPath);

  client.SetSpeed(31250);

  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("31250 baud"));
}

TEST_F(ClientEndTest, SpeedsOfAClientThatPutsAllSettingsAnew_AreAllAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const PortClient client(mPath);
  TtySettings settings = client.GetSettings();
  settings.MakeRaw(); // The telling of changes goes with it.
  ASSERT_FALSE(settings.AreChangesTold());

  settings.PutSpeed(19200);
  client.Set(settings);
  ASSERT_THAT(reader.AwaitEvents(1), ElementsAre("19200 baud"));
  settings.PutSpeed(38400);
  client.Set(settings);

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("19200 baud", "38400 baud"));
}

TEST_F(ClientEndTest, Speed_SetByAProgramThatOnlySetsIt_IsAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);

  ASSERT_EQ(std::system(("stty -F '" + mPath + "' 115200").c_str()), 0);

  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("115200 baud"));
}

TEST_F(ClientEndTest, SpeedOfThePort_SetAgainByAClientOfADeviceOfAnotherSpeed_IsAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const PortClient client(mPath);
  client.SetSpeed(57600);
  ASSERT_THAT(reader.AwaitEvents(1), ElementsAre("57600 baud"));
  end->TellSpeed({.supported = {}, .current = 9600});

  client.SetSpeed(57600);

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "57600 baud"));
}

TEST_F(ClientEndTest, Speed_ThatTheDeviceHas_IsThePortsForAClientAndNotAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  end->TellSpeed({.supported = {}, .current = 19200});
  const PortClient client(mPath);

  EXPECT_EQ(client.GetSettings().GetSpeed(), 19200U);
  client.SetSpeed(19200);
  client.Write("x");

  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("x"));
}

TEST_F(ClientEndTest, Speed_ThatTheDeviceRefused_IsNotLeftToTheNextClient) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  reader.Answer({KrResult::Code::NotSupported, "No such speed."});
  ASSERT_TRUE(end->Configure({.baudRate = 9600}).IsOK());
  auto client = std::make_unique<PortClient>(mPath);
  client->SetSpeed(57600);
  client->Write("x");
  // Asked for twice where the word of it and the bytes come apart.
  ASSERT_THAT(reader.AwaitEvents(2), Contains("57600 baud"));

  client.reset();
  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);
  end->TellSpeed({.supported = {}, .current = 9600});

  EXPECT_EQ(PortClient(mPath).GetSettings().GetSpeed(), 9600U);
}

TEST_F(ClientEndTest, RefusedSpeed_IsTakenBackByAskingForTheDevices) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  end->TellSpeed({.supported = {9600}, .current = 9600});
  const PortClient client(mPath);
  reader.Answer({KrResult::Code::NotSupported, "No such speed."});
  client.SetSpeed(57600);
  ASSERT_THAT(reader.AwaitEvents(1), ElementsAre("57600 baud"));
  reader.Answer({});

  client.SetSpeed(9600);
  ASSERT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "9600 baud"));
  client.SetSpeed(9600);
  client.Write("x");

  EXPECT_THAT(reader.AwaitEvents(3), ElementsAre("57600 baud", "9600 baud", "x")) << "once";
}

TEST_F(ClientEndTest, RefusedSpeed_IsTakenBackWhenTheClientLeaves) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  reader.Answer({KrResult::Code::NotSupported, "No such speed."});
  auto client = std::make_unique<PortClient>(mPath);
  client->SetSpeed(57600);
  ASSERT_THAT(reader.AwaitEvents(1), ElementsAre("57600 baud"));

  client.reset();

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "0 baud"));
}

TEST_F(ClientEndTest, ConfiguredSpeed_ThatTheDeviceHasNotTaken_IsNotLeftToAClientAndAskedFor) {
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  end->TellSpeed({.supported = {9600}, .current = 9600});
  ASSERT_TRUE(end->Configure({.baudRate = 19200}).IsOK());
  const PortClient client(mPath);

  EXPECT_EQ(client.GetSettings().GetSpeed(), 9600U);
  client.SetSpeed(19200);

  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("19200 baud"));
}

TEST_F(ClientEndTest, ConfiguredSpeed_OfADeviceThatCannotSay_IsThePortsForAClient) {
  const std::unique_ptr<IHostEnd> end = Open();
  const HostEndReader reader(*end);
  end->TellSpeed({.supported = {}, .current = 0});

  ASSERT_TRUE(end->Configure({.baudRate = 19200}).IsOK());

  EXPECT_EQ(PortClient(mPath).GetSettings().GetSpeed(), 19200U);
}

TEST_F(ClientEndTest, Configure_WithWhatNoPortCanTake_IsInvalidInput) {
  const std::unique_ptr<IHostEnd> end = Open();

  EXPECT_EQ(end->Configure({.baudRate = 0}), KrResult::Code::InvalidInput);
}

TEST_F(ClientEndTest, Open_OfATextThatIsNoName_IsInvalidInput) {
  for (const char* name : {"", "COM0", "COM09", "../COM9", "tty"})
    EXPECT_EQ(TryToOpen(name), KrResult::Code::InvalidInput) << name;
}

TEST_F(ClientEndTest, Open_OfANameThatIsTaken_LeavesWhatIsThere) {
  TemporaryFolder::WriteFile(mHost.GetLink("com1"), "a file");
  mHost.Link("com2", "/dev/null");
  mHost.Link("COM3", "/dev/null");
  mHost.Link("com4", "/nothing/here");

  for (const char* name : {"COM1", "COM2", "COM3", "COM4"})
    EXPECT_EQ(TryToOpen(name), KrResult::Code::WrongState) << name;

  EXPECT_EQ(TemporaryFolder::ReadFile(mHost.GetLink("com1")), "a file");
  EXPECT_EQ(std::filesystem::read_symlink(mHost.GetLink("com2")), "/dev/null");
  EXPECT_EQ(std::filesystem::read_symlink(mHost.GetLink("COM3")), "/dev/null");
  EXPECT_EQ(std::filesystem::read_symlink(mHost.GetLink("com4")), "/nothing/here");
}

TEST_F(ClientEndTest, Open_OfALinkToThePseudoTerminalThatWouldBeMade_LeavesIt) {
  const std::string next = krtest::PseudoTerminal().GetPath(); // The system gives the lowest that is free.
  mHost.Link("com9", next);

  EXPECT_EQ(TryToOpen("COM9"), KrResult::Code::WrongState);

  EXPECT_EQ(std::filesystem::read_symlink(mPath), next);
}

TEST_F(ClientEndTest, Open_WhereALocksFileIsNoBridges_LeavesIt) {
  const std::string lock = mHost.GetLink(".com9.lock");
  for (const char* text : {"a user's own", "/dev/pts/0", "krgui"}) {
    TemporaryFolder::WriteFile(lock, std::string(text) + "\n");

    const KrResult opened = TryToOpen("COM9");

    EXPECT_EQ(opened, KrResult::Code::WrongState) << text;
    EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr(lock));
    EXPECT_EQ(TemporaryFolder::ReadFile(lock), std::string(text) + "\n");
  }
}

TEST_F(ClientEndTest, Open_WhereALocksFileHasAnotherName_LeavesIt) {
  const std::unique_ptr<IHostEnd> other = Open();
  const std::string lock = mHost.GetLink(".com9.lock");
  std::filesystem::copy_file(lock, mHost.GetFile("kept"));
  const std::string text = TemporaryFolder::ReadFile(lock);
  std::filesystem::create_hard_link(mHost.GetFile("kept"), mHost.GetLink(".com8.lock"));

  EXPECT_EQ(TryToOpen("COM8"), KrResult::Code::WrongState);

  EXPECT_EQ(TemporaryFolder::ReadFile(mHost.GetFile("kept")), text);
}

TEST_F(ClientEndTest, End_OfWhichTheFilesWereRemoved_LeavesThoseOfTheNext) {
  std::unique_ptr<IHostEnd> first = Open();
  std::filesystem::remove(mPath);
  std::filesystem::remove(mHost.GetLink(".com9.lock"));
  const std::unique_ptr<IHostEnd> second = Open();

  first.reset();

  EXPECT_TRUE(IsLinked());
  EXPECT_TRUE(std::filesystem::exists(mHost.GetLink(".com9.lock")));
  EXPECT_EQ(TryToOpen("COM9"), KrResult::Code::Busy);
}

TEST_F(ClientEndTest, Open_OfAPortThatAnotherBridgeMakes_IsBusy) {
  const std::unique_ptr<IHostEnd> end = Open();

  EXPECT_EQ(TryToOpen("COM9"), KrResult::Code::Busy);

  EXPECT_TRUE(IsLinked());
}

TEST_F(ClientEndTest, LinkOfAKilledProcess_IsReplaced) {
  EXPECT_EXIT(
      {
        std::unique_ptr<IHostEnd> end;
        if (!ClientEnd::Open("COM9", end).IsOK())
          _exit(1);
        kill(getpid(), SIGKILL);
      },
      testing::KilledBySignal(SIGKILL), "");
  ASSERT_TRUE(IsLinked());

  std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  PortClient(mPath).Write("x");

  EXPECT_EQ(reader.Await(1), "x");
}

TEST_F(ClientEndTest, LinkThatSomebodyElsePutInItsPlace_OutlivesTheEnd) {
  std::unique_ptr<IHostEnd> end = Open();
  mHost.Link("com9", "/dev/null");

  end.reset();

  EXPECT_EQ(std::filesystem::read_symlink(mPath), "/dev/null");
}

TEST_F(ClientEndTest, Open_WhereTheFolderCannotBe_SaysWhy) {
  KrHostSerialFolders folders = KrHostSerialPorts::GetFolders();
  TemporaryFolder::WriteFile(mHost.GetFile("file"), "");
  folders.links = mHost.GetFile("file");
  KrHostSerialPorts::SetFolders(folders);
  std::unique_ptr<IHostEnd> end;

  const KrResult opened = ClientEnd::Open("COM9", end);

  EXPECT_EQ(opened, KrResult::Code::SystemError);
  EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr(mHost.GetFile("file")));
}
