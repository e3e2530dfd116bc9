// The whole window while its threads read, values change beneath it and rows come and go: what the thread sanitizer is
// to look at.

#include "await.h"
#include "browserfixture.h"
#include "krgui/krgenbrowserwnd.h"
#include "portgate.h"

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace krgui {

namespace {

constexpr std::uint64_t kPolledAddress = 0x200;
/// The passes follow each other.
constexpr RefreshRhythm kAtOnce{.automaticMs = 1, .pollingMs = 1};

/// The browser's features and one more, which is polled, at the top.
std::string MakeNodes() {
  std::string nodes = MakeBrowserNodes();
  const std::string loose = "<pFeature>Loose</pFeature>";
  nodes.replace(nodes.find(loose), loose.size(), loose + "<pFeature>Polled</pFeature>");
  return nodes + "<IntReg Name=\"Polled\"><Address>" + std::to_string(kPolledAddress) +
         "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1</PollingTime>"
         "<Endianess>LittleEndian</Endianess></IntReg>\n";
}

KrPropertyList MakeOptions(const char* aNames, const char* aView) {
  KrPropertyList list;
  list.Add({"Names", aNames});
  list.Add({"View", aView});
  return list;
}

/// A device that is written to, and that changes by itself, as long as this lives.
class RestlessDevice {
public:
  explicit RestlessDevice(DescribedCamera& aCamera)
      : mThread([this, &aCamera](const std::stop_token& aStop) {
          for (; !aStop.stop_requested(); ++mRounds) {
            const auto value = static_cast<std::uint8_t>(mRounds % 100);
            aCamera.Poke(kWidthAddress, {value, 0, 0, 0});
            aCamera.Poke(kHeightAddress, {value, 0, 0, 0});
            aCamera.Poke(kPolledAddress, {value, 0, 0, 0});
            EXPECT_TRUE(aCamera.Integer("DigitalGainSelector").SetValue(value).IsOK());
          }
        }) {}
  /// Waits until the device has changed everything once more.
  void AwaitRound() const {
    const int rounds = mRounds;
    EXPECT_TRUE(WaitFor([&] { return mRounds > rounds; }));
  }

private:
  std::atomic<int> mRounds = 0;
  std::jthread mThread; // Ends first.
};

class BrowserThreads : public testing::TestWithParam<KrGenRefresh> {
protected:
  void Open() {
    mWindow.SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  }
  /// What fills the rows anew, one after the other.
  void Rebuild(int aRound) {
    const std::array<std::function<void()>, 6> ways = {
        [&] { mWindow.GetVisibilityList().setCurrentIndex(aRound / 6 % 3); },
        [&] { mWindow.LoadOptions(MakeOptions(aRound % 4 == 1 ? "DisplayNames" : "FeatureNames", "Tree")); },
        [&] { mWindow.LoadOptions(MakeOptions("FeatureNames", aRound % 4 == 0 ? "AlphabeticalList" : "Tree")); },
        [&] {
          mWindow.SetRefreshMode(KrGenRefresh::Manual);
          mWindow.Refresh();
          mWindow.SetRefreshMode(GetParam());
        },
        [&] {
          mWindow.SetGenParameterArray(nullptr);
          mWindow.SetGenParameterArray(mCamera.array.get());
        },
        [&] { mWindow.SetRefreshMode(static_cast<KrGenRefresh>(aRound % 2)); },
    };
    ways[static_cast<std::size_t>(aRound) % ways.size()]();
  }
  void CloseAndOpen() {
    ASSERT_TRUE(mWindow.Close().IsOK());
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  }

  DescribedCamera mCamera{MakeNodes()};
  TestBrowserWnd mWindow{{}, kAtOnce};
};

} // namespace

TEST_P(BrowserThreads, RowsFilledAnew200Times_ClosedAndOpenedAtEveryStep_ShowTheLastValuesInTheEnd) {
  mWindow.SetRefreshMode(GetParam());
  Open();
  {
    const RestlessDevice device(mCamera);

    for (int round = 0; round < 200; ++round) {
      Rebuild(round);
      mWindow.GetGrid().Select(mWindow.FindRow(round % 2 == 0 ? "Width" : "DigitalGainSelector"));
      QCoreApplication::processEvents();
      device.AwaitRound();
      CloseAndOpen();
      if (round % 10 == 0)
        device.AwaitRound();
    }
  }

  mWindow.SetRefreshMode(GetParam());
  const bool isPolling = GetParam() == KrGenRefresh::Polling;
  mCamera.Poke(isPolling ? kPolledAddress : kWidthAddress, {177, 0, 0, 0});
  EXPECT_TRUE(WaitFor([&] { return mWindow.GetValue(isPolling ? "Polled" : "Width") == "177"; }));
  EXPECT_TRUE(mWindow.IsRefreshThreadRunning());
}

TEST_P(BrowserThreads, WindowDeleted_WhileARegisterIsRead_LeavesTheDeviceAlone) {
  for (int round = 0; round < 50; ++round) {
    PortGate gate;
    gate.CloseAt(mCamera.port, round % 2 == 0 ? kWidthAddress : kHeightAddress);
    auto window = std::make_unique<TestBrowserWnd>(FeatureFilter(), kAtOnce);
    window->SetRefreshMode(GetParam());
    window->SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(window->ShowModeless(0).IsOK());
    ASSERT_TRUE(gate.AwaitReached());
    const auto queue = window->GetQueue();
    std::jthread device([&] {
      EXPECT_TRUE(krtest::Await([&] { return !queue->IsOpen(); }));
      gate.Open();
    });

    window.reset();

    device.join();
    (void)mCamera.port.TakeRecords();
    EXPECT_TRUE(mCamera.Integer("DigitalGainSelector").SetValue(round).IsOK());
    EXPECT_THAT(mCamera.port.TakeRecords(), testing::IsEmpty());
    mCamera.port.SetFault({});
  }
}

TEST_P(BrowserThreads, PublicWindowDeleted_AtAnyMoment_LeavesTheDeviceAlone) {
  const RestlessDevice device(mCamera);
  for (int round = 0; round < 50; ++round) {
    KrGenBrowserWnd window;
    ASSERT_TRUE(window.SetRefreshMode(GetParam()).IsOK());
    window.SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    for (int pass = 0; pass < round % 5; ++pass)
      QCoreApplication::processEvents();
  }

  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(mCamera.Integer("DigitalGainSelector").SetValue(1).IsOK());
}

INSTANTIATE_TEST_SUITE_P(Modes, BrowserThreads, testing::Values(KrGenRefresh::Automatic, KrGenRefresh::Polling),
                         [](const auto& aInfo) {
                           return std::string(aInfo.param == KrGenRefresh::Polling ? "Polling" : "Automatic");
                         });

} // namespace krgui
