#include "cllibrary.h"
#include "publishedline.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class CameraLinkThreads : public testing::Test {
protected:
  SocketFolder mFolder;
  PublishedLine mFirst{"First"};
  PublishedLine mSecond{"Second"};
  CLLibrary mLibrary;
};

TEST_F(CameraLinkThreads, Close_EndsAReadThatWaitsAndReturnsAfterIt) {
  const hSerRef reference = mLibrary.Open(0);
  std::atomic<bool> hasStarted = false;
  CLINT32 result = CL_ERR_NO_ERR;
  std::jthread reader([&] {
    hasStarted = true;
    hasStarted.notify_all();
    result = mLibrary.Read(reference, 1, kForEverMs);
  });
  hasStarted.wait(false);

  mLibrary.close(reference);
  reader.join();

  EXPECT_EQ(result, CL_ERR_INVALID_REFERENCE);
  EXPECT_EQ(mLibrary.Read(reference, 1, 0), CL_ERR_INVALID_REFERENCE);
  EXPECT_NE(mLibrary.Open(0), reference) << "A reference is never given again.";
}

TEST_F(CameraLinkThreads, ReadThatWaits_StopsNeitherItsOwnWriterNorOtherPorts) {
  const hSerRef first = mLibrary.Open(0);
  const hSerRef second = mLibrary.Open(1);
  CLINT32 result = CL_ERR_INVALID_REFERENCE;
  std::jthread reader([&] { result = mLibrary.Read(first, 1000, kForEverMs); });

  EXPECT_EQ(mLibrary.Write(first, MakeLineBytes(500'000)), CL_ERR_NO_ERR);
  EXPECT_EQ(mFirst.AwaitTaken(500'000), MakeLineBytes(500'000));
  mSecond.Give(MakeLineBytes(10));
  EXPECT_EQ(mLibrary.Read(second, 10, kForEverMs), CL_ERR_NO_ERR);
  mFirst.Give(MakeLineBytes(1000));
  reader.join();

  EXPECT_EQ(result, CL_ERR_NO_ERR);
}

TEST_F(CameraLinkThreads, TimeLimit_CountsBehindAnotherThreadsCall) {
  const hSerRef reference = mLibrary.Open(0);
  std::jthread reader([&] { (void)mLibrary.Read(reference, 1, kForEverMs); });
  // Until the other thread has its turn, which this one's calls then never get.
  while (mLibrary.Read(reference, 0, 1) == CL_ERR_NO_ERR) {
  }

  EXPECT_EQ(mLibrary.Read(reference, 1, 1), CL_ERR_TIMEOUT);
  mFirst.Give(MakeLineBytes(1));
}

TEST_F(CameraLinkThreads, TimeLimitOfAWrite_CountsBehindAnotherThreadsCall) {
  const PublishedLine stalled("Third", PublishedLine::Taking::Later);
  const hSerRef reference = mLibrary.Open(2);
  std::jthread writer([&] { (void)mLibrary.Write(reference, MakeLineBytes(4'000'000)); });
  char byte = 0;
  CLUINT32 count = 0;
  while (mLibrary.write(reference, &byte, &count, 1) == CL_ERR_NO_ERR) {
  }

  count = 1;
  EXPECT_EQ(mLibrary.write(reference, &byte, &count, 1), CL_ERR_TIMEOUT);
  EXPECT_EQ(count, 0U);
  mLibrary.close(reference);
}

TEST_F(CameraLinkThreads, ManyThreadsAtOnePort_LoseNoByte) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kBytes = 100'000;
  const hSerRef reference = mLibrary.Open(0);
  std::array<CLINT32, kThreads> results{};
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
      threads.emplace_back([&, i] {
        for (std::size_t taken = 0; taken < kBytes && results[i] == CL_ERR_NO_ERR; taken += 1000) {
          CLUINT32 ignored = 0;
          (void)mLibrary.countAvailable(reference, &ignored); // Takes in what others wait for.
          results[i] = mLibrary.Read(reference, 1000, kForEverMs);
        }
      });
    mFirst.Give(MakeLineBytes(kThreads * kBytes));
  }

  EXPECT_THAT(results, testing::Each(static_cast<CLINT32>(CL_ERR_NO_ERR)));
  CLUINT32 left = 1;
  EXPECT_EQ(mLibrary.countAvailable(reference, &left), CL_ERR_NO_ERR);
  EXPECT_EQ(left, 0U);
}

TEST_F(CameraLinkThreads, ForkedProcess_HasNoSessionAndDoesNotHoldItsParents) {
  const hSerRef reference = mLibrary.Open(0);
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);

  const pid_t child = ::fork();
  if (child == 0) {
    char byte = 0;
    CLUINT32 count = 1;
    const bool isNone = mLibrary.read(reference, &byte, &count, kForEverMs) == CL_ERR_INVALID_REFERENCE;
    mLibrary.close(reference);
    ::close(pipe[1]);
    (void)!::read(pipe[0], &byte, 1); // Lives until the parent has seen what it wants to.
    ::_exit(isNone ? 0 : 1);
  }
  EXPECT_EQ(mLibrary.Write(reference, MakeLineBytes(3)), CL_ERR_NO_ERR) << "The parent keeps its session.";
  EXPECT_EQ(mFirst.AwaitTaken(3), MakeLineBytes(3));
  mLibrary.close(reference);
  EXPECT_NE(mLibrary.Open(0), nullptr) << "The port is free while the child lives.";
  ::close(pipe[1]);

  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  ::close(pipe[0]);
}

TEST(CameraLinkLibrary, Unloaded_ClosesWhatItsProgramLeftOpen) {
  const SocketFolder folder;
  PublishedLine line("Camera");
  for (int i = 0; i < 3; ++i) {
    const CLLibrary library;
    hSerRef reference = nullptr;
    EXPECT_EQ(library.init(0, &reference), CL_ERR_NO_ERR);
  }
}

} // namespace
