// The finder's end while a dialog of its own is open on top of it, whichever way it was opened: the handler that waits
// for the dialog returns into what is left.

#include "finderfixture.h"
#include "krgui/krdevicefinderwnd.h"

#include <QKeyEvent>
#include <QPointer>

namespace krgui {

namespace {

void Choose(TestFinderWnd& aFinder, const char* aText) {
  aFinder.GetTree().setCurrentItem(aFinder.FindItem(aText));
}

void Press(TestFinderWnd& aFinder, int aID) {
  QTest::mouseClick(aFinder.GetControl(aID), Qt::LeftButton);
}

QPoint FindPoint(TestFinderWnd& aFinder, const char* aText) {
  return aFinder.GetTree().visualItemRect(aFinder.FindItem(aText)).center();
}

void DoubleClickForeign(TestFinderWnd& aFinder) {
  const QPoint point = FindPoint(aFinder, "Foreign");
  QTest::mouseClick(aFinder.GetTree().viewport(), Qt::LeftButton, {}, point);
  QTest::mouseDClick(aFinder.GetTree().viewport(), Qt::LeftButton, {}, point);
}

void ChooseFromMenu(TestFinderWnd& aFinder) {
  const QPoint point = FindPoint(aFinder, "Camera A");
  QWidget* viewport = aFinder.GetTree().viewport();
  QContextMenuEvent event(QContextMenuEvent::Mouse, point, viewport->mapToGlobal(point));
  QCoreApplication::sendEvent(viewport, &event);
  auto* menu = aFinder.GetWidget()->findChild<QMenu*>("menu1505");
  ASSERT_NE(menu, nullptr);
  menu->actions().front()->trigger();
}

struct DialogRow {
  const char* name;
  void (*open)(TestFinderWnd& aFinder);
};

constexpr DialogRow kDialogs[] = {
    {"set_ip_address",
     [](TestFinderWnd& aFinder) {
       Choose(aFinder, "Camera A");
       Press(aFinder, kFinderSetIPID);
     }},
    {"select_from_ip", [](TestFinderWnd& aFinder) { Press(aFinder, kFinderSelectFromIPID); }},
    {"diagnosis", [](TestFinderWnd& aFinder) { Press(aFinder, kFinderDiagnoseID); }},
    {"box_after_a_double_click", DoubleClickForeign},
    {"set_ip_address_from_the_menu", ChooseFromMenu},
};

} // namespace

class FinderDialogEndingTest : public DeviceFinderTest, public testing::WithParamInterface<DialogRow> {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
    mTransport->AddDevice("eth0", MakeForeignCamera());
  }
  ~FinderDialogEndingTest() override {
    mOther.reset();
    DeleteWhatIsLeft();
  }

  void Embed() {
    mHost = std::make_unique<QWidget>();
    mHost->resize(820, 640);
    mHost->show();
    mOther = std::make_unique<TestFinderWnd>();
    ASSERT_TRUE(mOther->CreateIn(mHost.get()).IsOK());
    AwaitDevices();
  }
  void ShowAlone() {
    mOther = std::make_unique<TestFinderWnd>();
    ASSERT_TRUE(mOther->ShowModeless(0).IsOK());
    AwaitDevices();
  }
  void AwaitDevices() {
    Press(*mOther, kFinderUnreachableID);
    ASSERT_TRUE(WaitFor([&] { return mOther->FindItem("Camera A") && mOther->FindItem("Foreign"); }));
  }
  /// Opens the dialog, does something as soon as it is there, and comes back when it has ended.
  void OpenAnd(const std::function<void()>& aAction) {
    OnNextDialog([&](QWidget&) { aAction(); });
    GetParam().open(*mOther);
    EXPECT_EQ(mDialogCount, 1);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }

  std::unique_ptr<QWidget> mHost;
  std::unique_ptr<TestFinderWnd> mOther;
};

TEST_P(FinderDialogEndingTest, EmbeddedFinderDeleted_TakesTheDialogWithIt) {
  Embed();

  OpenAnd([&] { mOther.reset(); });

  EXPECT_EQ(mOther, nullptr);
}

TEST_P(FinderDialogEndingTest, ModelessFinderDeleted_TakesTheDialogWithIt) {
  ShowAlone();

  OpenAnd([&] { mOther.reset(); });

  EXPECT_EQ(mOther, nullptr);
}

TEST_P(FinderDialogEndingTest, EmbeddedFinderClosed_TakesTheDialogWithIt) {
  Embed();

  OpenAnd([&] { EXPECT_TRUE(mOther->Close().IsOK()); });

  EXPECT_FALSE(mOther->IsOpen());
  EXPECT_EQ(mOther->GetSelected(), nullptr);
}

TEST_P(FinderDialogEndingTest, HostDeleted_TakesFinderAndDialogWithIt) {
  Embed();

  OpenAnd([&] { mHost.reset(); });

  EXPECT_FALSE(mOther->IsOpen());
}

TEST_P(FinderDialogEndingTest, ApplicationThatQuits_EndsTheDialogAndLeavesTheEmbeddedFinder) {
  Embed();
  QTimer::singleShot(0, &mHand, [&] { OpenAnd([] { QCoreApplication::exit(); }); });

  QCoreApplication::exec();

  EXPECT_EQ(mDialogCount, 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(mOther->IsOpen());
  mTransport->SetDevices({});
  EXPECT_TRUE(AwaitRounds(0));
}

TEST_P(FinderDialogEndingTest, FinderShownAgain_LeavesTheControlsThatAreOnTheStack) {
  ShowAlone();
  const QPointer<QWidget> former = mOther->GetWidget();
  bool livedOn = false;

  OpenAnd([&] {
    // Closed in the delivery of another event, further in than the one that shows it again.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(mOther->GetWidget(), &escape);
    EXPECT_FALSE(mOther->IsOpen());
    EXPECT_TRUE(mOther->ShowModeless(0).IsOK());
    livedOn = !former.isNull();
  });

  EXPECT_TRUE(livedOn);
  EXPECT_TRUE(mOther->IsOpen());
}

INSTANTIATE_TEST_SUITE_P(Dialogs, FinderDialogEndingTest, testing::ValuesIn(kDialogs),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace krgui
