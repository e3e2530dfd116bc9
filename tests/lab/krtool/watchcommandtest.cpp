#include "watchcommand.h"

#include "await.h"
#include "labfixture.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <sstream>
#include <streambuf>
#include <thread>

namespace krtool {
namespace {

using testing::HasSubstr;

// What a thread writes, for another one to wait for.
class WatchedOutput final : public std::streambuf {
public:
  // Waits for a text behind so many bytes.
  bool Await(const std::string& aText, std::size_t aFrom = 0) {
    std::unique_lock lock(mMutex);
    return mWritten.wait_for(lock, krtest::GetGenerousLimit(),
                             [&] { return mText.find(aText, aFrom) != std::string::npos; });
  }

  std::string GetText() {
    const std::lock_guard lock(mMutex);
    return mText;
  }

protected:
  int_type overflow(int_type aCharacter) override {
    const char character = traits_type::to_char_type(aCharacter);
    xsputn(&character, 1);
    return aCharacter;
  }
  std::streamsize xsputn(const char* aText, std::streamsize aCount) override {
    const std::lock_guard lock(mMutex);
    mText.append(aText, static_cast<std::size_t>(aCount));
    mWritten.notify_all();
    return aCount;
  }

private:
  std::mutex mMutex; // Guards the text.
  std::condition_variable mWritten;
  std::string mText;
};

class WatchCommand : public LabTest {
protected:
  ~WatchCommand() override { Stop(); }

  void Start(const CommandLine& aCommandLine) {
    mThread = std::thread([this, aCommandLine] {
      std::ostream out(&mOut);
      std::ostream errors(&mErrors);
      mExitCode = WatchUntil(
          mSystem, aCommandLine, [this] { return mIsStopped.load(); }, out, errors);
    });
  }

  void Stop() {
    mIsStopped = true;
    if (mThread.joinable())
      mThread.join();
  }

  WatchedOutput mOut;
  WatchedOutput mErrors;
  int mExitCode = -1;

private:
  std::atomic<bool> mIsStopped = false;
  std::thread mThread;
};

constexpr const char* kMono = "02:4b:52:00:77:10";

TEST_F(WatchCommand, WhatIsThereFirst_AppearsInterfaceBeforeDevices) {
  Start({.verb = Verb::List, .watch = true});

  ASSERT_TRUE(mOut.Await(kMono)) << mOut.GetText();
  Stop();

  EXPECT_THAT(mOut.GetText().substr(0, mOut.GetText().find('\n')), HasSubstr("  appeared  interface  NetworkAdapter"));
  EXPECT_EQ(mErrors.GetText(), "");
  EXPECT_EQ(mExitCode, 0);
}

TEST_F(WatchCommand, CameraThatIsPulledAndPluggedAgain_VanishesAndAppears) {
  Start({.verb = Verb::List, .watch = true, .json = true});
  ASSERT_TRUE(mOut.Await(kMono)) << mOut.GetText();

  ASSERT_TRUE(mLab->Lose(kMono).IsOK());
  const bool hasVanished = mOut.Await("\"event\":\"vanished\"");
  const std::size_t written = mOut.GetText().size();
  ASSERT_TRUE(mLab->Restore(kMono).IsOK());
  const bool hasReturned = mOut.Await("\"event\":\"appeared\"", written);
  Stop();

  EXPECT_TRUE(hasVanished && hasReturned) << mOut.GetText();
  EXPECT_THAT(mOut.GetText().substr(written), HasSubstr(kMono));
}

TEST_F(WatchCommand, CameraThatIsGivenAnAddress_ChangesWithWhatItWas) {
  Start({.verb = Verb::List, .watch = true});
  ASSERT_TRUE(mOut.Await("10.20.30.40")) << mOut.GetText();

  ASSERT_TRUE(mLab->ConfigureIP("02:4b:52:00:77:12", "192.168.77.50", "255.255.255.0", "0.0.0.0").IsOK());

  EXPECT_TRUE(mOut.Await("ipAddress 10.20.30.40 -> 192.168.77.50")) << mOut.GetText();
  EXPECT_TRUE(mOut.Await("reachable no -> yes")) << mOut.GetText();
}

TEST_F(WatchCommand, TimeOfTheCommandLine_EndsIt) {
  Start({.verb = Verb::List, .timeoutMs = 1, .watch = true});

  Stop();

  EXPECT_EQ(mExitCode, 0);
}

TEST_F(WatchCommand, OutputThatNobodyTakes_EndsIt) {
  std::ostream out(nullptr);
  std::ostringstream errors;

  const int exitCode = WatchUntil(
      mSystem, {.verb = Verb::List, .watch = true}, [] { return false; }, out, errors);

  EXPECT_EQ(exitCode, 0);
}

} // namespace
} // namespace krtool
