// The finder's end at every moment: while discovery runs, waits or reports, while a dialog is open on top of it, while
// the application is asked. No thread is left behind, and nobody waits for the one that waits for him.

#include "await.h"
#include "finderfixture.h"
#include "krgui/krdevicefinderwnd.h"

#include <QThread>

namespace krgui {

namespace {

constexpr int kTimes = 100;

enum class Moment {
  BeforeAnswers,
  BetweenAnswers,
  AfterAnswers,
  WhileTheApplicationIsAsked,
  WhileRebuildIsAwaited,
  AtRest,
};

struct MomentRow {
  const char* name;
  Moment moment;
};

constexpr MomentRow kMoments[] = {
    {"before_the_first_answer", Moment::BeforeAnswers},
    {"between_answers", Moment::BetweenAnswers},
    {"after_the_last_answer", Moment::AfterAnswers},
    {"while_the_application_is_asked", Moment::WhileTheApplicationIsAsked},
    {"while_a_rebuild_is_awaited", Moment::WhileRebuildIsAwaited},
    {"at_rest_between_rounds", Moment::AtRest},
};

enum class Way { Close, Escape, CloseBox, Deletion, ParentsEnd };

constexpr Way kWays[] = {Way::Close, Way::Escape, Way::CloseBox, Way::Deletion, Way::ParentsEnd};

/// Counts the threads that look for devices, each from its first question until it has ended, and that of the test not.
class LookingThreads {
public:
  static void Count() {
    if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
      thread_local const Presence presence;
    }
  }
  static int Get() { return sCount; }

private:
  struct Presence {
    Presence() { ++sCount; }
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;
    ~Presence() { --sCount; }
  };
  static inline std::atomic<int> sCount = 0;
};

/// Counts who asks: the finder's thread asks for interfaces, one for each transport for devices.
class CountingTransport final : public ScriptedTransport {
public:
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override {
    LookingThreads::Count();
    return ScriptedTransport::ListInterfaces(aInterfaces);
  }
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override {
    LookingThreads::Count();
    return ScriptedTransport::Discover(aInterfaces, aRequest, aReport);
  }
};

/// What each finder is used with; a new window each time.
struct Showing {
  Gate gate;
  std::unique_ptr<QWidget> owner = std::make_unique<QWidget>();
  std::unique_ptr<TestFinderWnd> finder;

  void End(Way aWay) {
    switch (aWay) {
    case Way::Close:
      EXPECT_TRUE(finder->Close().IsOK());
      break;
    case Way::Escape:
      QTest::keyClick(&finder->GetTree(), Qt::Key_Escape);
      break;
    case Way::CloseBox:
      finder->GetWidget()->close();
      break;
    case Way::Deletion:
      finder.reset();
      break;
    case Way::ParentsEnd:
      owner.reset();
      break;
    }
    EXPECT_TRUE(!finder || !finder->IsOpen());
  }
};

} // namespace

class FinderEndingTest : public DeviceFinderTest, public testing::WithParamInterface<MomentRow> {
protected:
  FinderEndingTest() : DeviceFinderTest(std::make_shared<CountingTransport>()) {}
  ~FinderEndingTest() override {
    mTransport->SetScript({});
    DeleteWhatIsLeft();
  }

  /// Lets discovery come to the moment with a finder whose loop does not run.
  void ComeTo(Moment aMoment, Showing& aShowing) {
    Gate& gate = aShowing.gate;
    mTransport->SetInterfaces({MakeFinderAdapter()});
    mTransport->SetDevices({{"eth0", MakeFinderCamera()}, {"eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B")}});
    mTransport->SetScript([&gate, aMoment](ScriptedTransport::Point aPoint, const std::stop_token& aStop) {
      using Point = ScriptedTransport::Point;
      if ((aPoint == Point::Begin && aMoment == Moment::BeforeAnswers) ||
          (aPoint == Point::Between && aMoment == Moment::BetweenAnswers) ||
          (aPoint == Point::End && aMoment == Moment::AfterAnswers))
        gate.Wait(aStop);
      if (aPoint == Point::End && (aMoment == Moment::WhileRebuildIsAwaited || aMoment == Moment::AtRest))
        gate.Pass();
    });
    aShowing.finder = std::make_unique<TestFinderWnd>([&gate, aMoment](const KrDeviceInfo*) {
      if (aMoment == Moment::WhileTheApplicationIsAsked)
        gate.Pass();
      return true;
    });
    // A window that is shown again builds its tree from what there was; its first round finds something else.
    // As no device is reported there, nothing is posted before that is sent.
    if (aMoment == Moment::WhileRebuildIsAwaited) {
      ASSERT_TRUE(aShowing.finder->ShowModeless(0).IsOK());
      ASSERT_TRUE(aShowing.finder->Close().IsOK());
      mTransport->SetDevices({});
      mTransport->SetInterfaces({MakeFinderAdapter("eth9", "192.168.9.1", "00:11:22:33:44:09")});
    }
    ASSERT_TRUE(aShowing.finder->ShowModeless(aShowing.owner->winId()).IsOK());
    ASSERT_TRUE(gate.AwaitReached());
    if (aMoment == Moment::WhileRebuildIsAwaited) {
      ASSERT_TRUE(krtest::Await([&] { return !aShowing.finder->GetQueue()->IsEmpty(); }));
    }
  }
};

TEST_P(FinderEndingTest, EndedInEveryWay_AHundredTimes_EndsAndLeavesNoThread) {
  for (int i = 0; i < kTimes; ++i) {
    Showing showing;
    ComeTo(GetParam().moment, showing);

    ASSERT_GT(LookingThreads::Get(), 0);

    showing.End(kWays[static_cast<std::size_t>(i) % std::size(kWays)]);

    ASSERT_EQ(LookingThreads::Get(), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Moments, FinderEndingTest, testing::ValuesIn(kMoments),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

class FinderNestedEndingTest : public DeviceFinderTest {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
    mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
    mWindowThread = std::this_thread::get_id();
  }
  bool IsOnWindowThread() const { return std::this_thread::get_id() == mWindowThread; }

  /// Calls aAction when a finder asks about a device in a rebuild: about the first, or another one.
  std::function<bool(const KrDeviceInfo*)> MakeFilter(std::function<void()> aAction, int aTurn = 1) {
    return [this, action = std::move(aAction), aTurn](const KrDeviceInfo*) {
      if (!IsOnWindowThread() || ++mAsked != aTurn)
        return true;
      action();
      mIsDone = true;
      return true;
    };
  }
  void RebuildAll() {
    mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));
    EXPECT_TRUE(WaitFor([&] { return mIsDone.load(); }));
  }

  std::thread::id mWindowThread;
  std::atomic<int> mAsked = 0; ///< In rebuilds.
  std::atomic<bool> mIsDone = false;
};

TEST_F(FinderNestedEndingTest, ClosedByTheApplicationWhileARebuildAsksIt_Ends) {
  std::unique_ptr<TestFinderWnd> finder;
  finder = std::make_unique<TestFinderWnd>(MakeFilter([&] { EXPECT_TRUE(finder->Close().IsOK()); }));
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera B") != nullptr; }));

  RebuildAll();

  EXPECT_FALSE(finder->IsOpen());
}

TEST_F(FinderNestedEndingTest, DeletedByTheApplicationWhileARebuildAsksIt_Ends) {
  std::unique_ptr<TestFinderWnd> finder;
  finder = std::make_unique<TestFinderWnd>(MakeFilter([&] { finder.reset(); }));
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera B") != nullptr; }));

  RebuildAll();

  EXPECT_EQ(finder, nullptr);
}

TEST_F(FinderNestedEndingTest, ClosedAndShownAgainWhileARebuildAsks_WorksOn) {
  std::unique_ptr<TestFinderWnd> finder;
  finder = std::make_unique<TestFinderWnd>(MakeFilter([&] {
    EXPECT_TRUE(finder->Close().IsOK());
    EXPECT_TRUE(finder->ShowModeless(0).IsOK());
  }));
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera B") != nullptr; }));

  RebuildAll();

  EXPECT_TRUE(WaitFor([&] { return finder->FindItem("Camera B") != nullptr; }));
}

TEST_F(FinderNestedEndingTest, AcceptedFromANestedLoopWhileARebuildAsks_DoesNotWaitForEver) {
  std::unique_ptr<TestFinderWnd> finder;
  // The application shows something of its own, and the user goes on working with the finder meanwhile.
  const auto acceptCameraA = [&] {
    ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera A") != nullptr; }));
    finder->GetTree().setCurrentItem(finder->FindItem("Camera A"));
    QTest::mouseClick(finder->GetControl(kFinderOKID), Qt::LeftButton);
  };
  finder = std::make_unique<TestFinderWnd>(MakeFilter(acceptCameraA, 2));
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera B") != nullptr; }));

  RebuildAll();

  EXPECT_FALSE(finder->IsOpen());
  ASSERT_NE(finder->GetSelected(), nullptr);
  EXPECT_EQ(finder->GetSelected()->GetDisplayID(), KrString("Camera A"));
}

TEST_F(FinderNestedEndingTest, ClosedInARebuildWhileARoundWaitsForItsLock_Ends) {
  Gate gate;
  mTransport->SetScript([&gate](ScriptedTransport::Point aPoint, const std::stop_token&) {
    if (aPoint == ScriptedTransport::Point::Between)
      gate.Wait({});
  });
  std::unique_ptr<TestFinderWnd> finder;
  finder = std::make_unique<TestFinderWnd>(MakeFilter([&] {
    // From here on the round's next report waits for the lock that the rebuild holds.
    gate.Open();
    EXPECT_TRUE(finder->Close().IsOK());
  }));
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  ASSERT_TRUE(gate.AwaitReached());
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Camera A") != nullptr; }));

  finder->GetQueue()->Post({FinderDiscovery::kRebuildMessage, 0, 0});

  EXPECT_TRUE(WaitFor([&] { return mIsDone.load(); }));
  EXPECT_FALSE(finder->IsOpen());
}

TEST_F(FinderNestedEndingTest, FacadeDeletedWhileItsMessageBoxIsOpen_Ends) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  auto finder = std::make_unique<TestFinderWnd>();
  ASSERT_TRUE(finder->ShowModeless(0).IsOK());
  QTest::mouseClick(finder->GetControl(kFinderUnreachableID), Qt::LeftButton);
  ASSERT_TRUE(WaitFor([&] { return finder->FindItem("Foreign") != nullptr; }));
  finder->GetTree().setCurrentItem(finder->FindItem("Foreign"));
  OnNextDialog([&](QWidget&) { finder.reset(); });

  QTest::mouseClick(finder->GetControl(kFinderOKID), Qt::LeftButton);

  EXPECT_EQ(finder, nullptr);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(FinderNestedEndingTest, ShownAgainWhileADialogOfTheLastShowingReturns_LooksForDevices) {
  Open({"Camera A"});
  bool hasFound = false;
  OnNextDialog([&](QWidget&) {
    EXPECT_TRUE(mFinder.Close().IsOK());
    ASSERT_TRUE(mFinder.ShowModeless(0).IsOK());
    hasFound = AwaitItem("Camera A");
  });

  Click(kFinderSelectFromIPID);

  EXPECT_TRUE(hasFound);
  EXPECT_TRUE(mFinder.IsOpen());
}

TEST_F(FinderNestedEndingTest, ModalLoopLeftByQuitting_EndsTheFinder) {
  bool isOpenAfterwards = true;
  QTimer::singleShot(0, &mHand, [&] {
    (void)mFinder.ShowModal(0);
    isOpenAfterwards = mFinder.IsOpen();
  });
  QTimer::singleShot(1, &mHand, [] { QCoreApplication::exit(); });

  QCoreApplication::exec();

  EXPECT_FALSE(isOpenAfterwards);
}

TEST_F(FinderNestedEndingTest, ModalFinderDeletedFromItsOwnLoop_ReturnsOK) {
  auto finder = std::make_unique<KrDeviceFinderWnd>();
  QTimer::singleShot(0, &mHand, [&] { finder.reset(); });

  KrDeviceFinderWnd& shown = *finder;
  const KrResult result = shown.ShowModal(0);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(finder, nullptr);
}

} // namespace krgui
