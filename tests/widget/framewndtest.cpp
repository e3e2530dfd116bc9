// Showing, closing and naming windows: the states, the codes and the texts.

#include "testwnd.h"
#include "windowwait.h"

#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Code = KrResult::Code;

/// A facade as the library's own are made.
class TestFacade : public KrWnd {
public:
  explicit TestFacade(std::unique_ptr<Wnd> aWnd) { mWnd = std::move(aWnd); }
  ~TestFacade() override { DeleteWnd(); }
  /// As a window's own events reach its facade.
  virtual std::string GetClass() const { return "TestFacade"; }
};

/// Runs an action in the modal loop, once the dialog is on the screen.
void InModalLoop(TestWnd& aWindow, std::function<void()> aAction) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, &aWindow, action = std::move(aAction)] {
    if (aWindow.GetWidget() != nullptr && aWindow.GetWidget()->windowHandle()->isExposed()) {
      timer->deleteLater();
      timer->stop();
      action();
    }
  });
  timer->start(0);
}

TEST(Wnd, Constructed_HasNoWindowNoModeNoTitleAndZeroPosition) {
  TestWnd window;

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::None);
  EXPECT_EQ(static_cast<int>(window.GetShowMode()), -1);
  EXPECT_EQ(window.GetHandle(), 0U);
  EXPECT_EQ(window.GetWidget(), nullptr);
  EXPECT_TRUE(window.GetTitle().IsEmpty());
  EXPECT_EQ(GetPosition(window), (Position{0, 0, 0, 0}));
}

TEST(Wnd, ShowModeless_WithoutOwner_IsAVisibleWindow) {
  TestWnd window;

  const KrResult result = window.ShowModeless(0);

  EXPECT_EQ(result.GetCodeNumber(), 0U);
  EXPECT_EQ(static_cast<int>(window.GetShowMode()), 2);
  ASSERT_NE(window.GetWidget(), nullptr);
  EXPECT_TRUE(window.GetWidget()->isVisible());
  EXPECT_TRUE(window.GetWidget()->isWindow());
  EXPECT_NE(window.GetHandle(), 0U);
  EXPECT_EQ(window.GetHandle(), window.GetWidget()->winId());
}

TEST(Wnd, ShowModeless_WithOwner_IsAWindowOwnedByIt) {
  QWidget owner;
  owner.show();
  TestWnd window;

  ASSERT_TRUE(window.ShowModeless(owner.winId()).IsOK());

  EXPECT_TRUE(window.GetWidget()->isWindow());
  EXPECT_EQ(window.GetWidget()->parentWidget(), &owner);
}

TEST(Wnd, Create_InAWidget_IsAChildWithoutFrame) {
  QWidget parent;
  parent.resize(400, 300);
  parent.show();
  TestWnd window;

  const KrResult result = window.Create(parent.winId(), 17);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(static_cast<int>(window.GetShowMode()), 0);
  EXPECT_FALSE(window.GetWidget()->isWindow());
  EXPECT_EQ(window.GetWidget()->parentWidget(), &parent);
  EXPECT_TRUE(window.GetWidget()->isVisible());
}

TEST(Wnd, Create_WithAnyID_YieldsTheSameWindow) {
  QWidget parent;
  parent.show();
  std::vector<QSize> sizes;
  std::vector<QString> names;

  for (const UINT id : {0U, 1U, 2U, 1044U, 0xFFFFFFFFU}) {
    TestWnd window;
    EXPECT_TRUE(window.Create(parent.winId(), id).IsOK());
    sizes.push_back(window.GetWidget()->size());
    names.push_back(window.GetWidget()->objectName());
  }

  EXPECT_EQ(std::count(sizes.begin(), sizes.end(), sizes.front()), 5);
  EXPECT_EQ(std::count(names.begin(), names.end(), names.front()), 5);
}

TEST(Wnd, Create_WithoutParent_FailsAndKeepsTheMode) {
  TestWnd window;

  const KrResult result = window.Create(0, 0);

  EXPECT_EQ(result.GetCodeNumber(), 16384U);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Child);
}

TEST(Wnd, Create_InAnIDThatIsNoWindow_FailsWithAText) {
  TestWnd window;

  const KrResult result = window.Create(0x7FFFFFF0, 0);

  EXPECT_EQ(result.GetCodeNumber(), 16384U);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
}

TEST(Wnd, ShowModeless_WithAnOwnerThatIsNoWindow_FailsAndKeepsTheMode) {
  TestWnd window;

  const KrResult result = window.ShowModeless(0x7FFFFFF0);

  EXPECT_EQ(result.GetCodeNumber(), 16384U);
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Modeless);
  EXPECT_FALSE(window.IsOpen());
}

TEST(Wnd, CreateIn_Null_Fails) {
  TestWnd window;

  EXPECT_EQ(window.CreateIn(nullptr), Code::Failed);
}

TEST(Wnd, CreateIn_ALayout_TakesTheSpaceThatTheLayoutGives) {
  QWidget parent;
  auto* layout = new QVBoxLayout(&parent);
  layout->setContentsMargins(0, 0, 0, 0);
  TestWnd window;
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  layout->addWidget(window.GetWidget());
  parent.resize(500, 350);
  parent.show();

  ASSERT_TRUE(WaitFor([&] { return window.GetWidget()->size() == QSize(500, 350); }));
  EXPECT_EQ(window.record->sizes.back(), QSize(500, 350));
}

TEST(Wnd, CreateIn_AWidget_MakesNothingNative) {
  QWidget parent;
  auto* inner = new QWidget(&parent);
  parent.show();
  TestWnd window;

  ASSERT_TRUE(window.CreateIn(inner).IsOK());

  EXPECT_FALSE(inner->testAttribute(Qt::WA_NativeWindow));
  EXPECT_EQ(inner->internalWinId(), 0U);
}

TEST(Wnd, Templates_ByMode_AreTheOnesOfTheWindow) {
  TestWnd window(WindowTraits{"", 1504, 1518, 1028, 30, 2000, 20, 2000});
  QWidget parent;
  constexpr int kOKButton = 1;
  constexpr int kScrollBar = 1044;

  ASSERT_TRUE(window.CreateIn(&parent).IsOK());
  EXPECT_NE(window.GetControl(kScrollBar), nullptr);
  ASSERT_TRUE(window.Close().IsOK());
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  EXPECT_EQ(window.GetControl(kScrollBar), nullptr);
  ASSERT_TRUE(window.Close().IsOK());
  bool hadButton = false;
  InModalLoop(window, [&] {
    hadButton = window.GetControl(kOKButton) != nullptr;
    EXPECT_TRUE(window.Close().IsOK());
  });
  ASSERT_TRUE(window.ShowModal(0).IsOK());

  EXPECT_TRUE(hadButton);
}

TEST(Wnd, Templates_ThatDoNotExist_FailForChildAndModelessAndSucceedForModal) {
  TestWnd window(WindowTraits{"", 9999, 9999, 9999, 30, 2000, 20, 2000});
  QWidget parent;

  EXPECT_EQ(window.CreateIn(&parent), Code::Failed);
  EXPECT_EQ(window.ShowModeless(0), Code::Failed);
  // A modal loop that could not start has not been cancelled.
  EXPECT_EQ(window.ShowModal(0), Code::OK);
  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->inits, 0);
}

TEST(Wnd, SecondShow_WhileOpen_IsRefusedAndChangesNothing) {
  QWidget parent;
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const QWidget* const widget = window.GetWidget();

  const KrResult results[] = {window.Create(parent.winId(), 0), window.CreateIn(&parent), window.ShowModal(0),
                              window.ShowModeless(0)};

  for (const KrResult& result : results)
    EXPECT_EQ(result.GetCodeNumber(), 28U);
  // Creating it says no more than the code.
  EXPECT_TRUE(results[0].GetDescription().IsEmpty());
  EXPECT_EQ(results[1].GetDescription(), "The window could not be created: it is open already. Close it first.");
  for (const KrResult& shown : {results[2], results[3]})
    EXPECT_EQ(shown.GetDescription(), "The window could not be shown: it is open already. Close it first.");
  EXPECT_EQ(window.GetWidget(), widget);
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Modeless);
  EXPECT_EQ(window.record->inits, 1);
}

TEST(Wnd, SecondShow_FromTheModalLoop_IsRefused) {
  TestWnd window;
  Code code = Code::OK;
  InModalLoop(window, [&] {
    code = window.ShowModal(0).GetCode();
    EXPECT_TRUE(window.Close().IsOK());
  });

  ASSERT_TRUE(window.ShowModal(0).IsOK());

  EXPECT_EQ(code, Code::WrongState);
}

TEST(Wnd, Close_WhenNotOpen_IsWrongStateWithoutAText) {
  TestWnd window;

  const KrResult result = window.Close();

  EXPECT_EQ(result.GetCodeNumber(), 28U);
  EXPECT_TRUE(result.GetDescription().IsEmpty());
}

TEST(Wnd, Close_OfAModelessWindow_EndsItAndKeepsTheMode) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  const KrResult result = window.Close();

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(window.GetHandle(), 0U);
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Modeless);
  EXPECT_EQ(window.record->destroys, 1);
  EXPECT_EQ(window.Close(), Code::WrongState);
}

TEST(Wnd, Close_OfAChild_LeavesItsParent) {
  QWidget parent;
  parent.show();
  TestWnd window;
  ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());

  EXPECT_TRUE(window.Close().IsOK());

  DeleteWhatIsLeft();
  EXPECT_TRUE(parent.isVisible());
  EXPECT_TRUE(parent.findChildren<QWidget*>().isEmpty());
}

TEST(Wnd, ShowModal_Closed_ReturnsSuccess) {
  TestWnd window;
  InModalLoop(window, [&] { EXPECT_TRUE(window.Close().IsOK()); });

  const KrResult result = window.ShowModal(0);

  EXPECT_EQ(result.GetCodeNumber(), 0U);
  EXPECT_EQ(static_cast<int>(window.GetShowMode()), 1);
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(Wnd, ShowModal_WithAnyParent_BehavesTheSame) {
  QWidget parent;
  parent.show();
  for (const HWND id : {HWND(0), parent.winId(), HWND(0x7FFFFFF0)}) {
    TestWnd window;
    const QWidget* owner = &parent;
    InModalLoop(window, [&] {
      owner = window.GetWidget()->parentWidget();
      EXPECT_TRUE(window.Close().IsOK());
    });

    EXPECT_TRUE(window.ShowModal(id).IsOK());

    EXPECT_EQ(owner, nullptr);
  }
}

struct EndCase {
  const char* name;
  int result;
  unsigned expected;
};

class ModalEnd : public testing::TestWithParam<EndCase> {};

TEST_P(ModalEnd, EndDialog_WithAResult_GivesTheCode) {
  TestWnd window;
  InModalLoop(window, [&] { window.EndDialog(GetParam().result); });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Results, ModalEnd,
                         testing::Values(EndCase{"Accepted", 1, 0}, EndCase{"Cancelled", 2, 16386},
                                         EndCase{"AnyOtherValue", 7, 0}, EndCase{"Failure", -1, 0}),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(Wnd, DestroyWindow_OfAModalOne_Cancels) {
  TestWnd window;
  InModalLoop(window, [&] { window.DestroyWindow(); });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 16386U);
}

TEST(Wnd, Reopening_InEveryOtherMode_Works) {
  QWidget parent;
  TestWnd window;

  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(window.Close().IsOK());
  ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Child);
  ASSERT_TRUE(window.Close().IsOK());
  InModalLoop(window, [&] { EXPECT_TRUE(window.Close().IsOK()); });
  ASSERT_TRUE(window.ShowModal(0).IsOK());
  EXPECT_EQ(window.GetShowMode(), Wnd::Mode::Modal);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.record->inits, 4);
  EXPECT_EQ(window.record->destroys, 3);
}

TEST(Wnd, Reopening_FromTheHandlerThatClosed_Works) {
  TestWnd window;
  window.onCancel = [&] {
    EXPECT_TRUE(window.Close().IsOK());
    EXPECT_TRUE(window.ShowModeless(0).IsOK());
  };
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(window.GetWidget(), Qt::Key_Escape);

  DeleteWhatIsLeft();
  EXPECT_TRUE(window.GetWidget()->isVisible());
  EXPECT_EQ(window.record->inits, 2);
}

TEST(Wnd, Title_SetBeforeShowing_ReplacesTheTemplatesCaption) {
  TestWnd window(kDeviceFinderTraits);
  window.SetTitle("Camera 1");

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.GetWidget()->windowTitle(), QStringLiteral("Camera 1"));
  EXPECT_EQ(window.GetTitle(), "Camera 1");
}

TEST(Wnd, Title_NeverSet_ReplacesTheTemplatesCaptionByNothing) {
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_TRUE(window.GetWidget()->windowTitle().isEmpty());
}

TEST(Wnd, Title_SetWhileOpen_ChangesTheCaptionAtOnce) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  window.SetTitle("B\xC3\xA4r \xF0\x9F\x93\xB7");

  EXPECT_EQ(window.GetWidget()->windowTitle(), QString::fromUtf8("B\xC3\xA4r \xF0\x9F\x93\xB7"));
}

TEST(Wnd, Title_WithTheToolkitsPlaceholder_IsTakenLiterally) {
  TestWnd window;
  window.SetTitle("Frame [*] of [*]");

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  // The toolkit's way to write the placeholder itself.
  EXPECT_EQ(window.GetWidget()->windowTitle(), QStringLiteral("Frame [*][*] of [*][*]"));
}

TEST(Wnd, Title_ReadBack_IsTheStoredOneNotTheCaption) {
  TestWnd window;
  window.SetTitle("Stored");
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  window.GetWidget()->setWindowTitle(QStringLiteral("Live"));

  EXPECT_EQ(window.GetTitle(), "Stored");
}

TEST(Wnd, Title_AtInitialisation_IsAppliedAgain) {
  TestWnd window;
  window.SetTitle("Mine");
  QString atInit;
  window.onInitDialog = [&] { atInit = window.GetWidget()->windowTitle(); };

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(atInit, QStringLiteral("Mine"));
}

TEST(Wnd, Opening_TellsTheSizeOnceWithTheControlsLaidOut) {
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));

  EXPECT_EQ(window.record->sizes, std::vector<QSize>{window.GetWidget()->size()});
  EXPECT_TRUE(window.GetWidget()->rect().contains(window.GetControl(1)->geometry()));
}

TEST(Wnd, Opening_ThatIsClosedWhileItIsMade_Fails) {
  TestWnd window;
  window.onInitDialog = [&] { EXPECT_TRUE(window.Close().IsOK()); };

  const KrResult result = window.ShowModeless(0);

  EXPECT_EQ(result, Code::Failed);
  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(Wnd, ShowModal_CancelledWhileItIsMade_IsCancelled) {
  TestWnd window;
  window.onInitDialog = [&] { window.EndDialog(2); };

  EXPECT_EQ(window.ShowModal(0), Code::Cancelled);
  EXPECT_FALSE(window.IsOpen());
}

TEST(KrWnd, EveryCall_ReachesTheImplementation) {
  auto owned = std::make_unique<TestWnd>();
  TestWnd& implementation = *owned;
  TestFacade facade(std::move(owned));
  QWidget parent;

  facade.SetTitle("Facade");
  facade.SetPosition(10, 20, 300, 200);
  EXPECT_TRUE(facade.ShowModeless(0).IsOK());

  EXPECT_EQ(facade.GetTitle(), "Facade");
  EXPECT_EQ(facade.GetHandle(), implementation.GetHandle());
  EXPECT_EQ(facade.GetWidget(), implementation.GetWidget());
  EXPECT_EQ(GetPosition(facade), (Position{10, 20, 300, 200}));
  EXPECT_TRUE(facade.DoEvents().IsOK());
  EXPECT_TRUE(facade.Close().IsOK());
  EXPECT_TRUE(facade.Create(parent.winId(), 1).IsOK());
  EXPECT_TRUE(facade.Close().IsOK());
  EXPECT_TRUE(facade.CreateIn(&parent).IsOK());
  EXPECT_TRUE(facade.Close().IsOK());
  InModalLoop(implementation, [&] { implementation.EndDialog(2); });
  EXPECT_EQ(facade.ShowModal(0), Code::Cancelled);
}

TEST(KrWnd, DeletedWhileOpen_ClosesWhileTheDerivedObjectIsWhole) {
  auto owned = std::make_unique<TestWnd>();
  TestWnd& implementation = *owned;
  std::string atTheEnd;
  {
    TestFacade facade(std::move(owned));
    implementation.onDestroy = [&] { atTheEnd = facade.GetClass(); };
    ASSERT_TRUE(facade.ShowModeless(0).IsOK());
  }

  EXPECT_EQ(atTheEnd, "TestFacade");
}

TEST(KrWnd, WithoutImplementation_IsNeverOpen) {
  TestFacade facade(nullptr);

  EXPECT_EQ(facade.GetHandle(), 0U);
  EXPECT_EQ(facade.GetWidget(), nullptr);
  EXPECT_EQ(facade.Close(), Code::WrongState);
  EXPECT_EQ(facade.ShowModeless(0), Code::Failed);
}

} // namespace

} // namespace krgui
