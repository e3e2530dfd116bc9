#include "filetransferfixture.h"

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct ChunkRow {
  const char* name;
  std::size_t fileSize;
  std::vector<std::size_t> chunks;
};

class FileTransferChunks : public FileTransferTest, public testing::WithParamInterface<ChunkRow> {};

const ChunkRow kChunks[] = {
    {"Empty", 0, {}},
    {"OneByte", 1, {1}},
    {"OneHundred", 100, {100}},
    {"OneLessThanAChunk", 255, {255}},
    {"OneChunk", 256, {256}},
    {"OneMoreThanAChunk", 257, {256, 1}},
    {"WholeChunks", 1024, {256, 256, 256, 256}},
    {"OneThousand", 1000, {256, 256, 256, 232}},
};

TEST_P(FileTransferChunks, File_IsWrittenInChunksOf256Bytes) {
  const std::string bytes = MakeFile(GetParam().fileSize);

  Run();

  EXPECT_EQ(GetWriteSizes(), GetParam().chunks);
  EXPECT_EQ(GetSent(), bytes);
}

INSTANTIATE_TEST_SUITE_P(, FileTransferChunks, testing::ValuesIn(kChunks),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(FileTransferTest, Messages_ComeInOrder) {
  MakeFile(1000);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    mNow += milliseconds(625);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(TakeWords(), ElementsAre("pace",
                                       "line 1: \r\n\n2 seconds (2500 milliseconds) taken to send: \r\n'" +
                                           mOrder.path.ToUtf8() + "'\n",
                                       "line 2: 1000/1000 successfully transmitted bytes (100%)\n", "ended"));
}

TEST_F(FileTransferTest, PartsOfAMillisecond_AreCutOff) {
  MakeFile(1);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    mNow += nanoseconds(1'200'999'999);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(TakeWords(), testing::Contains(testing::HasSubstr("1 seconds (1200 milliseconds)")));
}

TEST_F(FileTransferTest, WaitForTheLoopback_IsASecondUnlessItIsSaidOtherwise) {
  EXPECT_EQ(FileTransfer::kLoopbackWait, milliseconds(1000));
}

TEST_F(FileTransferTest, WaitForTheLoopback_IsNotCounted) {
  MakeFile(1);
  std::vector<std::string> words;
  // From the wait on, of which the pace is told first, the clock is an hour ahead.
  const auto clock = [&] {
    for (std::string& word : TakeWords())
      words.push_back(std::move(word));
    return words.empty() ? mNow : mNow + std::chrono::hours(1);
  };
  FileTransfer transfer(mLine, mCheck, mQueue, mMailbox, clock, milliseconds(1));

  transfer.Run(mOrder, {});
  clock();

  ASSERT_THAT(words, SizeIs(4));
  EXPECT_EQ(words[0], "pace");
  EXPECT_THAT(words[1], testing::HasSubstr("0 second (0 milliseconds)"));
}

TEST_F(FileTransferTest, EmptyFile_IsZeroOfZero) {
  MakeFile(0);
  mOrder.validatesLoopback = true;

  Run();

  EXPECT_THAT(mLine.writes, IsEmpty());
  EXPECT_THAT(TakeWords(), ElementsAre("pace", testing::HasSubstr("0 second (0 milliseconds)"),
                                       "line 2: 0/0 successfully transmitted bytes (0%)\n",
                                       "line 3: 0/0 bytes received from loopback (0%)\n", "ended"));
}

TEST_F(FileTransferTest, Echo_IsACopyOfEachChunkOfItsOwn) {
  const std::string bytes = MakeFile(600);
  mOrder.echoes = [] { return true; };

  Run();

  const std::vector<std::string> words = TakeWords();
  ASSERT_THAT(words, SizeIs(7));
  EXPECT_EQ(words[0], "echo " + bytes.substr(0, 256));
  EXPECT_EQ(words[1], "echo " + bytes.substr(256, 256));
  EXPECT_EQ(words[2], "echo " + bytes.substr(512));
  EXPECT_EQ(words[3], "pace");
}

TEST_F(FileTransferTest, Echo_IsPostedBeforeItsChunkIsWritten) {
  MakeFile(10);
  mOrder.echoes = [] { return true; };
  std::size_t before = 0;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    before = TakeMessages().size();
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_EQ(before, 1U);
}

TEST_F(FileTransferTest, EchoThatIsSwitchedMeanwhile_CountsFromTheNextChunk) {
  MakeFile(1000);
  mOrder.echoes = [this] { return mLine.writes.size() == 1 || mLine.writes.size() == 2; };

  Run();

  EXPECT_THAT(TakeWords(), ElementsAre(testing::StartsWith("echo"), testing::StartsWith("echo"), "pace",
                                       testing::StartsWith("line 1"), testing::StartsWith("line 2"), "ended"));
}

TEST_F(FileTransferTest, CompleteLoopback_IsAllAnd100PerCent) {
  MakeFile(1000);
  mOrder.validatesLoopback = true;
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    mCheck.Match({reinterpret_cast<const std::uint8_t*>(aBytes.data()), aBytes.size()});
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(TakeWords(), testing::Contains("line 3: 1000/1000 bytes received from loopback (100%)\n"));
}

TEST_F(FileTransferTest, NothingMatched_IsNoneAndZeroPerCent) {
  MakeFile(1000);
  mOrder.validatesLoopback = true;

  Run();

  EXPECT_THAT(TakeWords(), testing::Contains("line 3: 0/1000 bytes received from loopback (0%)\n"));
}

TEST_F(FileTransferTest, LoopbackThatLosesBytes_IsReportedAsWhatCameBack) {
  TemporaryFolder::WriteFile(mFolder.GetFile("sent.bin"), "0123456789");
  mOrder.validatesLoopback = true;
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    const std::string back = "12345678"; // The first and the last are lost.
    mCheck.Match({reinterpret_cast<const std::uint8_t*>(back.data()), back.size()});
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(TakeWords(), testing::Contains("line 3: 8/10 bytes received from loopback (80%)\n"));
}

TEST_F(FileTransferTest, BytesThatComeBackDuringTheWait_Count) {
  MakeFile(3);
  const std::string bytes = TemporaryFolder::ReadFile(mFolder.GetFile("sent.bin"));
  mOrder.validatesLoopback = true;
  FileTransfer transfer = MakeTransfer(std::chrono::hours(24));
  std::jthread sender([&](const std::stop_token& aStop) { transfer.Run(mOrder, aStop); });
  std::vector<std::string> words;
  while (words.empty())
    words = TakeWords(); // The pace: sending is over, the wait has begun.

  mCheck.Match({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  sender.request_stop();
  sender.join();

  EXPECT_THAT(words, testing::Contains("pace"));
  EXPECT_THAT(TakeWords(), testing::Contains("line 3: 3/3 bytes received from loopback (100%)\n"));
}

TEST_F(FileTransferTest, End_LeavesNothingExpected) {
  MakeFile(1000);
  mOrder.validatesLoopback = true;

  Run();
  const std::string bytes = TemporaryFolder::ReadFile(mFolder.GetFile("sent.bin"));
  mCheck.Match({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});

  EXPECT_EQ(mCheck.GetOutstanding(), 0U);
}

TEST_F(FileTransferTest, WithoutValidation_NothingIsExpected) {
  const std::string bytes = MakeFile(1000);
  std::uint64_t outstanding = 0;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    mCheck.Match({reinterpret_cast<const std::uint8_t*>(aBytes.data()), aBytes.size()});
    outstanding = mCheck.GetOutstanding();
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_EQ(outstanding, 768U) << "of the chunks before the last one nothing was taken for a loopback";
  EXPECT_THAT(TakeWords(), testing::Not(testing::Contains(testing::StartsWith("line 3"))));
}

/// The progress that the window reads when it takes a message of it, in a file of 1,000 chunks that take 1 ms each.
TEST_F(FileTransferTest, Progress_IsToldSomeTimesASecond) {
  MakeFile(256 * 1000);
  std::vector<std::uint64_t> shown;
  const auto look = [&] {
    while (std::optional<MessageQueue::Taken> taken = mQueue->Take()) {
      if (taken->Get() == Message{krgui::kTransferProgressMessage, 0, 0})
        shown.push_back(mMailbox->GetProgress().written / 256);
    }
  };
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    look();
    mNow += milliseconds(1);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();
  look();

  EXPECT_THAT(shown, ElementsAre(0, 200, 400, 600, 800, 1000));
  EXPECT_EQ(mMailbox->GetProgress().fileSize, 256000U);
}

TEST_F(FileTransferTest, ProgressThatNobodyLooksAt_WaitsOnce) {
  MakeFile(256 * 100);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    mNow += std::chrono::seconds(1);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  int count = 0;
  while (std::optional<MessageQueue::Taken> taken = mQueue->Take())
    count += taken->Get().number == krgui::kTransferProgressMessage ? 1 : 0;
  EXPECT_EQ(count, 1);
}

} // namespace

} // namespace krgui
