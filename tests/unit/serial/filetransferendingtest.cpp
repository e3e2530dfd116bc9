#include "filetransferfixture.h"

#include "await.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(FileTransferTest, WindowThatTakesNoEchoes_HoldsTheTransferUpAndKeepsMemorySmall) {
  MakeFile((TransferMailbox::kChunkLimit + 10) * FileTransfer::kChunkSize);
  mOrder.echoes = [] { return true; };
  FileTransfer transfer = MakeTransfer();
  std::atomic<std::size_t> written = 0;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    ++written;
    return std::pair(KrResult(), aBytes.size());
  };

  std::jthread sender([&](const std::stop_token& aStop) { transfer.Run(mOrder, aStop); });
  EXPECT_TRUE(krtest::Await([&] { return written >= TransferMailbox::kChunkLimit; }));
  const bool hadEnded = transfer.HasEnded();
  std::size_t echoes = 0;
  bool isOver = false;
  while (!isOver) {
    for (const std::string& word : TakeWords()) {
      echoes += word.starts_with("echo") ? 1U : 0U;
      isOver = isOver || word == "ended";
    }
  }

  EXPECT_FALSE(hadEnded);
  EXPECT_EQ(echoes, TransferMailbox::kChunkLimit + 10);
}

TEST_F(FileTransferTest, StopWhileTheWindowTakesNoEchoes_Ends) {
  MakeFile((TransferMailbox::kChunkLimit + 10) * FileTransfer::kChunkSize);
  mOrder.echoes = [] { return true; };
  std::atomic<std::size_t> written = 0;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token& aStop) {
    ++written;
    return aStop.stop_requested() ? std::pair(KrResult(KrResult::Code::Aborted), std::size_t{0})
                                  : std::pair(KrResult(), aBytes.size());
  };
  FileTransfer transfer = MakeTransfer();

  std::jthread sender([&](const std::stop_token& aStop) { transfer.Run(mOrder, aStop); });
  EXPECT_TRUE(krtest::Await([&] { return written >= TransferMailbox::kChunkLimit; }));
  sender.request_stop();
  sender.join();

  EXPECT_EQ(TakeWords().back(), "ended");
}

TEST_F(FileTransferTest, ClosedWindow_LeavesNothingInTheMailboxAndEnds) {
  MakeFile((TransferMailbox::kChunkLimit + 10) * FileTransfer::kChunkSize);
  mOrder.echoes = [] { return true; };
  mQueue->Close();

  Run();

  EXPECT_THAT(GetWriteSizes(), SizeIs(TransferMailbox::kChunkLimit + 10));
  EXPECT_THAT(mMailbox->TakeChunk(1), IsEmpty());
  EXPECT_EQ(mMailbox->TakeLine(static_cast<std::int64_t>(TransferMailbox::kChunkLimit) + 11), u"");
}

TEST_F(FileTransferTest, ShortWrites_CountWhatWasTaken) {
  MakeFile(1000);
  mLine.onWrite = [](const std::string&, const std::stop_token&) {
    return std::pair(KrResult(KrResult::Code::SystemError), std::size_t{10});
  };

  Run();

  EXPECT_THAT(GetWriteSizes(), ElementsAre(256, 256, 256, 232)) << "failures are not told";
  EXPECT_THAT(TakeWords(), testing::Contains("line 2: 40/1000 successfully transmitted bytes (4%)\n"));
}

TEST_F(FileTransferTest, DeviceThatIsLost_EndsTheTransferWithWhatItTook) {
  MakeFile(1000);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    return mLine.writes.size() == 2 ? std::pair(KrResult(KrResult::Code::ConnectionLost), std::size_t{100})
                                    : std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(GetWriteSizes(), ElementsAre(256, 256));
  EXPECT_THAT(TakeWords(), ElementsAre("pace", testing::StartsWith("line 1"),
                                       "line 2: 356/1000 successfully transmitted bytes (35.6%)\n", "ended"));
}

TEST_F(FileTransferTest, StopBetweenChunks_ReportsAsOneThatHasEnded) {
  MakeFile(1000);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    mStop.request_stop();
    return std::pair(KrResult(), aBytes.size());
  };
  FileTransfer transfer = MakeTransfer(std::chrono::hours(24)); // Not waited for.

  transfer.Run(mOrder, mStop.get_token());

  EXPECT_THAT(GetWriteSizes(), ElementsAre(256));
  EXPECT_THAT(TakeWords(), ElementsAre("pace", testing::StartsWith("line 1"),
                                       "line 2: 256/1000 successfully transmitted bytes (25.6%)\n", "ended"));
}

TEST_F(FileTransferTest, StoppedBeforeItBegins_SendsNothing) {
  MakeFile(1000);
  mStop.request_stop();
  FileTransfer transfer = MakeTransfer(std::chrono::hours(24));

  transfer.Run(mOrder, mStop.get_token());

  EXPECT_THAT(mLine.writes, IsEmpty());
  EXPECT_EQ(TakeWords().back(), "ended");
}

TEST_F(FileTransferTest, Writes_AreGivenTheStop) {
  MakeFile(10);
  bool isStopped = false;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token& aStop) {
    mStop.request_stop();
    isStopped = aStop.stop_requested();
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_TRUE(isStopped);
}

TEST_F(FileTransferTest, FileThatCannotBeOpened_IsToldWithItsPath) {
  mOrder.echoes = [] { return true; };

  Run();

  EXPECT_THAT(TakeWords(), ElementsAre("failed " + mOrder.path.ToUtf8(), "pace", "ended"));
  EXPECT_THAT(mLine.writes, IsEmpty());
}

TEST_F(FileTransferTest, PipeWithoutAWriter_IsToldWithoutWaiting) {
  ASSERT_EQ(::mkfifo(mFolder.GetFile("sent.bin").c_str(), 0600), 0);

  Run();

  EXPECT_THAT(TakeWords(), ElementsAre("failed " + mOrder.path.ToUtf8(), "pace", "ended"));
}

TEST_F(FileTransferTest, FileThatShrinksMeanwhile_EndsAndSaysSo) {
  MakeFile(1000);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    std::filesystem::resize_file(mFolder.GetFile("sent.bin"), 300);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(GetWriteSizes(), ElementsAre(256, 44));
  EXPECT_THAT(TakeWords(), testing::Contains("line 2: 300/1000 successfully transmitted bytes (30%)\n"));
}

TEST_F(FileTransferTest, FileThatGrowsForEver_EndsAsItWas) {
  MakeFile(300);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    const std::filesystem::path path = mFolder.GetFile("sent.bin");
    std::filesystem::resize_file(path, std::filesystem::file_size(path) + 1000);
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_THAT(GetWriteSizes(), ElementsAre(256, 44));
  EXPECT_THAT(TakeWords(), testing::Contains("line 2: 300/300 successfully transmitted bytes (100%)\n"));
}

TEST_F(FileTransferTest, FileThatVanishesMeanwhile_IsSentWhole) {
  const std::string bytes = MakeFile(1000);
  mLine.onWrite = [this](const std::string& aBytes, const std::stop_token&) {
    std::filesystem::remove(mFolder.GetFile("sent.bin"));
    return std::pair(KrResult(), aBytes.size());
  };

  Run();

  EXPECT_EQ(GetSent(), bytes);
}

TEST_F(FileTransferTest, HasEnded_WhenTheWindowHearsOfTheEnd) {
  MakeFile(10);
  FileTransfer transfer = MakeTransfer();
  bool hadEndedWhileSending = true;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    hadEndedWhileSending = transfer.HasEnded();
    return std::pair(KrResult(), aBytes.size());
  };

  transfer.Run(mOrder, {});

  EXPECT_FALSE(hadEndedWhileSending);
  EXPECT_TRUE(transfer.HasEnded());
}

} // namespace

} // namespace krgui
