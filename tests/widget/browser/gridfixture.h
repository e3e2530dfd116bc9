#pragma once
// A property grid with the rows of a small camera that is its description and memory, and hands for it.

#include "browsedcamera.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"
#include "darkpalette.h"
#include "platform/toqstring.h"
#include "windowwait.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace krgui {

/// Categories with features of every look: one selected by another, read only, not available, not implemented, failing,
/// with a text of 10,000 letters and from right to left.
inline std::string MakeGridCamera() {
  return MakeInteger("GainRaw", 0x00) +
         "<Integer Name=\"Gain\"><ToolTip>How much &lt;b&gt;light&lt;/b&gt;</ToolTip><DisplayName>Gain "
         "Display</DisplayName><pValue>GainRaw</pValue><Unit>dB</Unit></Integer>\n" +
         MakeInteger("SelectorRaw", 0x08) +
         "<Integer Name=\"GainSelector\"><pValue>SelectorRaw</pValue><pSelected>Gain</pSelected></Integer>\n" +
         MakeInteger("Fixed", 0x10, "RO") + MakeInteger("Has", 0x18) + MakeInteger("Plain", 0x20) +
         "<Integer Name=\"Missing\"><ToolTip>Not here</ToolTip><pIsAvailable>Has</pIsAvailable><pValue>Plain</pValue>"
         "</Integer>\n"
         "<Integer Name=\"Absent\"><pIsImplemented>Has</pIsImplemented><pValue>Plain</pValue></Integer>\n" +
         MakeInteger("Broken", 0x28) +
         "<StringReg Name=\"Long\"><Address>0x1000</Address><Length>12000</Length><AccessMode>RO</AccessMode>"
         "<pPort>Device</pPort><Cachable>NoCache</Cachable></StringReg>\n"
         "<StringReg Name=\"Hebrew\"><Address>0x80</Address><Length>32</Length><AccessMode>RO</AccessMode>"
         "<pPort>Device</pPort><Cachable>NoCache</Cachable></StringReg>\n" +
         "<Enumeration Name=\"Choice\"><EnumEntry Name=\"Low\"><DisplayName>The "
         "Low</DisplayName><Value>0</Value></EnumEntry>"
         "<Value>0</Value></Enumeration>\n" +
         MakeCategory("Named", {}, "<DisplayName>The Name</DisplayName>") +
         MakeCategory("Analog", {"Gain", "GainSelector", "Fixed"}, "<ToolTip>All that is analog</ToolTip>") +
         MakeCategory("Inner", {"Long", "Hebrew"}) +
         MakeCategory("DeviceControl", {"Inner", "Plain", "Missing", "Absent", "Broken"}) + MakeCategory("Empty", {}) +
         MakeCategory("Root", {"Analog", "DeviceControl", "Empty", "Named", "Choice"});
}

class GridTest : public testing::Test {
protected:
  GridTest() {
    mCamera.port.SetFault([](const RegisterAccessRecord& aAccess) {
      return aAccess.address == 0x28 ? KrResult(KrResult::Code::Failed, "The register is gone.") : KrResult();
    });
    mGrid->resize(500, 400);
  }
  ~GridTest() override { QApplication::setPalette(mPalette); }

  /// Rows in the order in which they are on the screen: Analog, Gain, GainSelector, Fixed, DeviceControl, Inner, Long,
  /// Hebrew, Plain, Missing, Absent, Broken, Empty.
  void Fill() {
    mGrid->Fill([this](BrowserTree& aTree) {
      aTree.Clear();
      mItems.clear();
      AppendCategory(aTree, "", "Analog");
      for (const char* name : {"Gain", "GainSelector", "Fixed"})
        AppendFeature(aTree, "Analog", name);
      AppendCategory(aTree, "", "DeviceControl");
      AppendCategory(aTree, "DeviceControl", "Inner");
      AppendFeature(aTree, "Inner", "Long");
      AppendFeature(aTree, "Inner", "Hebrew");
      for (const char* name : {"Plain", "Missing", "Absent", "Broken"})
        AppendFeature(aTree, "DeviceControl", name);
      AppendCategory(aTree, "", "Empty");
    });
  }
  void AppendCategory(BrowserTree& aTree, const std::string& aParent, const std::string& aName) {
    mItems[aName] = aTree.AppendCategory(Item(aParent), aName, *mCamera.array->GetCategory(aName));
  }
  void AppendFeature(BrowserTree& aTree, const std::string& aParent, const std::string& aName) {
    mItems[aName] = aTree.AppendFeature(Item(aParent), aName, *mCamera.array->Get(aName));
  }
  void Show() {
    mGrid->show();
    mGrid->activateWindow();
    mGrid->setFocus();
    ASSERT_TRUE(krtest::AwaitCondition([this] { return mGrid->isActiveWindow() && mGrid->hasFocus(); }));
    Settle();
  }
  /// Reads every feature and lets the grid know.
  void ReadAll() {
    for (const auto& node : mGrid->GetTree().GetFeatures()) {
      node->Refresh();
      mGrid->GetQueue()->PostOnce({kRowChangedMessage, node->GetItem(), 0});
    }
    Settle();
  }
  /// Everything that was posted has been handled.
  void Settle() {
    EXPECT_TRUE(krtest::AwaitCondition([this] {
      QApplication::processEvents();
      return mGrid->GetQueue()->IsEmpty();
    }));
  }

  GridItem Item(const std::string& aName) const {
    const auto found = mItems.find(aName);
    return found == mItems.end() ? kNoItem : found->second;
  }
  TreeItemData& Node(const std::string& aName) const { return *mGrid->GetTree().Find(Item(aName))->node; }
  std::string GetName(GridItem aItem) const {
    const BrowserTree::Item* item = mGrid->GetTree().Find(aItem);
    return item != nullptr ? item->node->GetName().ToUtf8() : std::string();
  }
  std::string GetSelectedName() const { return GetName(mGrid->GetSelected()); }
  const GridModel& GetModel() const { return *static_cast<const GridModel*>(mGrid->model()); }
  bool IsOpen(const std::string& aName) const { return mGrid->isExpanded(GetModel().ToIndex(Item(aName))); }
  void SetText(std::uint64_t aAddress, const std::string& aText) {
    ASSERT_TRUE(mCamera.memory.Write(aAddress, aText.c_str(), aText.size() + 1, 1000).IsOK());
  }

  QRect Row(const std::string& aName) const { return mGrid->FindRow(Item(aName)); }
  /// A point of a row at a distance from its leading edge.
  QPoint PointIn(const std::string& aName, int aX) const {
    const QPoint point(aX, Row(aName).center().y());
    return mGrid->layoutDirection() == Qt::RightToLeft ? QPoint(mGrid->viewport()->width() - 1 - aX, point.y()) : point;
  }
  /// The middle of a category's glyph.
  QPoint GlyphOf(const std::string& aName) const {
    return PointIn(aName, mGrid->GetTree().Find(Item(aName))->level * 20 + 7);
  }
  void Click(QPoint aPoint) { QTest::mouseClick(mGrid->viewport(), Qt::LeftButton, {}, aPoint); }
  void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = {}) { QTest::keyClick(mGrid.get(), aKey, aModifiers); }
  QImage Grab() { return mGrid->viewport()->grab().toImage(); }
  /// Where the boundary is, by its line in a row that was not selected.
  int FindBoundary() {
    const QImage picture = Grab();
    const QColor line = PixelOf(picture, "Fixed", 40, Row("Fixed").height() - 1);
    for (int x = 0; x < mGrid->viewport()->width(); ++x) {
      if (PixelOf(picture, "Fixed", x, 0) == line)
        return x;
    }
    return -1;
  }
  /// A pixel of a row, at a distance from its left edge and from its top.
  QColor PixelOf(const QImage& aPicture, const std::string& aName, int aX, int aY = 1) const {
    const QPoint point = QPoint(aX, Row(aName).top() + aY) * aPicture.devicePixelRatio();
    return aPicture.pixelColor(point);
  }

  const QPalette mPalette = QApplication::palette();
  DescribedCamera mCamera{MakeGridCamera()};
  std::map<std::string, GridItem> mItems;
  std::unique_ptr<PropertiesGrid> mGrid = std::make_unique<PropertiesGrid>(nullptr, nullptr);
};

/// How often a device was asked meanwhile.
inline std::size_t CountReads(RecordingPort& aPort) {
  std::size_t reads = 0;
  for (const RegisterAccessRecord& record : aPort.TakeRecords())
    reads += record.isWrite ? 0 : 1;
  return reads;
}

} // namespace krgui
