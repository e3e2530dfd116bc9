// What a device that keeps silent costs the user who goes through the rows: one time-out for where he stops, at most.

#include "browserfixture.h"
#include "windowwait.h"

#include <QTextEdit>

#include <string>

namespace krgui {

namespace {

constexpr int kFeatures = 12;

/// Features with all that a description can ask a device for: value, bounds and increment, each in a register of its
/// own, and an enumeration each of whose entries is available by one.
std::string MakeNodes() {
  std::string nodes;
  std::string features;
  int address = 0;
  const auto addRegister = [&](const std::string& aName) {
    nodes += "<IntReg Name=\"" + aName + "\"><Address>" + std::to_string(address += 8) +
             "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
             "<Endianess>LittleEndian</Endianess></IntReg>\n";
    return aName;
  };
  for (int i = 0; i < kFeatures; ++i) {
    const std::string name = "Feature" + std::to_string(i);
    features += "<pFeature>" + name + "</pFeature>";
    nodes += "<Integer Name=\"" + name + "\"><pValue>" + addRegister(name + "Value") + "</pValue><pMin>" +
             addRegister(name + "Min") + "</pMin><pMax>" + addRegister(name + "Max") + "</pMax><pInc>" +
             addRegister(name + "Increment") + "</pInc></Integer>\n";
  }
  nodes += "<Enumeration Name=\"Choice\">";
  for (int i = 0; i < kFeatures; ++i)
    nodes += "<EnumEntry Name=\"Entry" + std::to_string(i) + "\"><pIsAvailable>Feature" + std::to_string(i) +
             "Max</pIsAvailable><Value>" + std::to_string(i) + "</Value></EnumEntry>";
  nodes += "<pValue>" + std::string("Feature0Value") + "</pValue></Enumeration>\n";
  return "<Category Name=\"Root\">" + features + "<pFeature>Choice</pFeature></Category>\n" + nodes;
}

class Selection : public testing::Test {
protected:
  void SetUp() override {
    mWindow.SetRefreshMode(KrGenRefresh::Manual);
    mWindow.SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitActive(mWindow.GetWidget()));
    mWindow.GetGrid().setFocus();
    QCoreApplication::processEvents();
  }
  void GoSilent() {
    mCamera.port.SetFault(
        [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "Too late."); });
    (void)mCamera.port.TakeRecords();
  }
  [[nodiscard]] bool AwaitDescription(const QString& aTitle) {
    return WaitFor([&] { return mWindow.GetDescription().toPlainText().startsWith(aTitle + "\n"); });
  }
  /// Until all that was posted to the window is done.
  void AwaitMessages() {
    EXPECT_TRUE(WaitFor([this] { return mWindow.GetQueue()->IsEmpty(); }));
  }
  /// Each access is one, as it is with a port that lets its callers wait again and again.
  std::size_t CountWaits() { return mCamera.port.TakeRecords().size(); }

  DescribedCamera mCamera{MakeNodes()};
  TestBrowserWnd mWindow;
};

} // namespace

TEST_F(Selection, DescriptionOfASilentDevice_WaitsOnce) {
  for (const char* name : {"Feature3", "Choice"}) {
    const TreeItemData* node = mWindow.GetGrid().GetTree().FindFeature(mWindow.FindRow(name));
    GoSilent();

    (void)node->GetDescription();

    EXPECT_LE(CountWaits(), 1U) << name;
  }
}

TEST_F(Selection, SelectedRow_OfADeviceThatGoesSilent_WaitsOnceForTheLimitsAndOnceForTheEditor) {
  GoSilent();

  mWindow.GetGrid().Select(mWindow.FindRow("Feature3"));

  EXPECT_TRUE(AwaitDescription("Feature3"));
  AwaitMessages();
  EXPECT_LE(CountWaits(), 2U);
}

TEST_F(Selection, ArrowKeys_ThatCameWhileTheDeviceWasWaitedFor_CostOneDescription) {
  mWindow.GetGrid().Select(mWindow.FindRow("Feature0"));
  ASSERT_TRUE(AwaitDescription("Feature0"));
  AwaitMessages();
  GoSilent();

  for (int key = 0; key < 10; ++key)
    QTest::keyClick(&mWindow.GetGrid(), Qt::Key_Down);

  EXPECT_EQ(CountWaits(), 0U) << "nothing is asked for inside the keys";
  EXPECT_EQ(mWindow.GetSelectedName(), "Feature10");
  EXPECT_TRUE(AwaitDescription("Feature10"));
  AwaitMessages();
  EXPECT_LE(CountWaits(), 2U);
}

TEST_F(Selection, SearchSteps_OnASilentDevice_AskForTheLastMatchAlone) {
  GoSilent();

  for (const char* text : {"F", "Fe", "Feature"})
    mWindow.GetSearchBar().SetText(text);
  for (int step = 0; step < 5; ++step)
    mWindow.GetSearchBar().MoveToNextOccurence();

  EXPECT_EQ(CountWaits(), 0U) << "nothing is asked for inside the steps";
  EXPECT_EQ(mWindow.GetSelectedName(), "Feature5");
  EXPECT_TRUE(AwaitDescription("Feature5"));
  AwaitMessages();
  EXPECT_LE(CountWaits(), 2U);
}

} // namespace krgui
