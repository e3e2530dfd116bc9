// The feature browser, the display and the device finder, closed at each step of what they do with a device, and on a
// device that fails at each step.
//
// Beside the cases here, the moments of discovery are in widget/finder/finderendingtest, edits that a closing ends in
// widget/browser/grideditorsendingtest and genbrowserendingtest, frames at full rate in widget/displayendingtest.

#include "windowcase.h"

#include "browser/propertiesgrid.h"
#include "krdevice/krstream.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"

#include <QLineEdit>
#include <QTreeWidget>

namespace krtest {

namespace {

using krgui::PropertiesGrid;

class FaultyBrowser : public WindowCase<KrGenBrowserWnd> {
protected:
  PropertiesGrid* GetGrid() const { return IsOpen() ? mWindow->GetWidget()->findChild<PropertiesGrid*>() : nullptr; }
  const krgui::TreeItemData* FindFeature(const char* aName) const {
    const PropertiesGrid* const grid = GetGrid();
    if (!grid)
      return nullptr;
    for (const auto& node : grid->GetTree().GetFeatures())
      if (node->GetName() == aName)
        return node.get();
    return nullptr;
  }
  std::string GetValue(const char* aName) const {
    const krgui::TreeItemData* const feature = FindFeature(aName);
    return feature ? feature->GetSnapshot().value.ToUtf8() : std::string();
  }
  /// What a row says of a failure.
  std::string GetError(const char* aName) const {
    const krgui::TreeItemData* const feature = FindFeature(aName);
    return feature ? feature->GetError().ToUtf8() : std::string();
  }
  QLineEdit* FindEditor() const {
    if (const PropertiesGrid* const grid = GetGrid())
      for (QLineEdit* const each : grid->viewport()->findChildren<QLineEdit*>())
        if (each->isVisible())
          return each;
    return nullptr;
  }
  std::string FindTrouble() const override { return GetError("Width"); }
  // Sets a value by keyboard.
  void SetWidth(const char* aValue) {
    const bool isEdited = Await([this] {
      if (!FindEditor())
        GetGrid()->Select(FindFeature("Width")->GetItem());
      return FindEditor() != nullptr;
    });
    if (!isEdited)
      return;
    FindEditor()->setFocus();
    FindEditor()->selectAll();
    QTest::keyClicks(FindEditor(), QLatin1String(aValue));
    QTest::keyClick(FindEditor(), Qt::Key_Return);
    mIsDone = Await([this, aValue] { return GetValue("Width").starts_with(aValue); });
  }
  KrResult Browse(KrDevice& aDevice) {
    mIsDone = false;
    mWindow->SetGenParameterArray(aDevice.GetParameters());
    KrResult shown = mWindow->ShowModeless(0);
    if (!shown.IsOK())
      return shown;
    // Another value than the last, so that it is written.
    mIsWide = !mIsWide;
    if (Await([this] { return !GetValue("Width").empty(); }))
      SetWidth(mIsWide ? "640" : "320");
    if (IsOpen())
      mWindow->Refresh();
    AwaitLossTold();
    const KrResult outcome = GetOutcome();
    EXPECT_TRUE(mIsDone || !outcome.IsOK()) << "nothing was said; " << mSteps.Describe();
    if (IsOpen()) {
      EXPECT_TRUE(mWindow->Close().IsOK());
    }
    EXPECT_FALSE(IsOpen());
    mWindow->SetGenParameterArray(nullptr);
    return outcome;
  }

private:
  bool mIsDone = false;
  bool mIsWide = false;
};

class FaultyDisplay : public WindowCase<KrDisplayWnd> {
protected:
  KrResult Show(KrDevice& aDevice) {
    KrResult result = mWindow->ShowModeless(0);
    KrStream stream(aDevice, 4);
    if (result.IsOK())
      result = stream.Start();
    // The display shows what it is given: that a camera is gone its stream tells.
    for (int frame = 0; result.IsOK() && IsOpen() && (frame < 8 || IsDeviceGone()); ++frame) {
      KrBuffer* buffer = nullptr;
      result = stream.Retrieve(buffer, kGenerousMs);
      if (!result.IsOK())
        break;
      EXPECT_TRUE(mWindow->Display(*buffer, false).IsOK());
      result = stream.Release(buffer);
      QCoreApplication::processEvents();
    }
    mSteps.NoteUsed();
    result = result.IsOK() ? GetOutcome() : result;
    stream.Stop();
    if (IsOpen()) {
      EXPECT_TRUE(mWindow->Close().IsOK());
    }
    return result;
  }
};

constexpr int kFinderTree = 1049;
constexpr int kFinderOK = 1;

class FaultyFinder : public WindowCase<KrDeviceFinderWnd> {
protected:
  QTreeWidgetItem* FindRow(const KrDeviceInfo& aDevice) const {
    const auto* const tree = Find<QTreeWidget>(kFinderTree);
    const QString name = QString::fromUtf8(aDevice.GetDisplayID().CStr());
    const auto found = tree ? tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive) : QList<QTreeWidgetItem*>();
    return found.empty() ? nullptr : found.front();
  }
  QTreeWidgetItem* FindCamera() const { return FindRow(*mInfo); }
  const KrDeviceInfo& GetOtherDevice() const {
    const KrDeviceInfo* const first = mSystem.GetDeviceInfo(0);
    return first == mInfo ? *mSystem.GetDeviceInfo(1) : *first;
  }
  // A camera that is gone is not among those that are found any more.
  void AwaitGone() {
    if (Await([this] { return FindCamera() == nullptr && FindRow(GetOtherDevice()) != nullptr; })) {
      EXPECT_EQ(mWindow->GetSelected(), nullptr) << mSteps.Describe();
    }
  }
  // Picks the camera of those that are found.
  KrResult Choose() {
    KrResult result = mWindow->ShowModeless(0);
    if (!result.IsOK())
      return result;
    Await([this] { return IsDeviceGone() || FindCamera() != nullptr; });
    if (IsDeviceGone()) {
      AwaitGone();
    } else if (CanGoOn()) {
      Find<QTreeWidget>(kFinderTree)->setCurrentItem(FindCamera());
      Click(kFinderOK);
    }
    mSteps.NoteUsed();
    result = mWindow->GetSelected() ? KrResult() : GetOutcome();
    if (IsOpen()) {
      EXPECT_TRUE(mWindow->Close().IsOK());
    }
    return result;
  }
};

} // namespace

TEST_P(FaultyBrowser, AtEachStep_EndsOrSaysSoAndBrowsesAfterwards) {
  TryWindowAtEachStep([this](KrDevice& aDevice) { return Browse(aDevice); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyBrowser, testing::ValuesIn(kWindowFaults), NameRow<WindowFaultRow>);

TEST_P(FaultyDisplay, AtEachStep_EndsOrSaysSoAndShowsFramesAfterwards) {
  TryWindowAtEachStep([this](KrDevice& aDevice) { return Show(aDevice); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyDisplay, testing::ValuesIn(kWindowFaults), NameRow<WindowFaultRow>);

TEST_P(FaultyFinder, AtEachStep_EndsOrFindsAndFindsAfterwards) {
  TryWindowAtEachStep([this](KrDevice&) { return Choose(); });
}

// In discovery a device that is silent is one that vanished; that all is silent would be the host's failure.
INSTANTIATE_TEST_SUITE_P(Faults, FaultyFinder,
                         testing::Values(kWindowFaults[0], kWindowFaults[1], kWindowFaults[2], kWindowFaults[3],
                                         kWindowFaults[5]),
                         NameRow<WindowFaultRow>);

} // namespace krtest
