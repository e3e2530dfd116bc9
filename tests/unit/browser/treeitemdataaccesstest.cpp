// Why a feature is not what it might be, as its node knows it.

#include "logic/browser/gridtools.h"
#include "logic/browser/treeitemdata.h"

#include "nodebench.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

constexpr int kOnAddress = 0x10;

const std::string kNodes = "<Integer Name=\"Width\"><pIsAvailable>On</pIsAvailable><pValue>Raw</pValue></Integer>"
                           "<Command Name=\"Run\"><pIsAvailable>On</pIsAvailable><pValue>RunReg</pValue>"
                           "<CommandValue>1</CommandValue></Command>" +
                           MakeUncachedRegister("Raw", 0) + MakeUncachedRegister("RunReg", 8) +
                           MakeUncachedRegister("On", kOnAddress);

class NodeAccess : public testing::Test {
protected:
  void SetOn(std::uint8_t aValue) { mCamera.Poke(kOnAddress, {aValue, 0, 0, 0}); }
  /// Of the register that the access stands on, in one reading of a node.
  std::size_t CountQuestions(TreeItemData& aNode) {
    (void)mCamera.port.TakeRecords();
    aNode.Refresh();
    std::size_t count = 0;
    for (const RegisterAccessRecord& record : mCamera.port.TakeRecords())
      count += record.address == kOnAddress ? 1 : 0;
    return count;
  }
  /// A node that the notification thread has seen; from then on it asks the device for nothing by itself.
  std::unique_ptr<TreeItemData> MakeKnownNode(const char* aName) {
    auto node = mCamera.MakeNode(aName);
    mCamera.AwaitNotifications();
    return node;
  }

  NodeBench mCamera{kNodes};
};

} // namespace

TEST_F(NodeAccess, Reason_GoesWithItsCause) {
  const auto node = mCamera.MakeReadNode("Width");
  EXPECT_EQ(node->GetAccessReason(), KrString("Not available: On is 0."));

  SetOn(1);
  node->Refresh();

  EXPECT_TRUE(node->GetAccessReason().IsEmpty());
}

TEST_F(NodeAccess, Reason_IsAskedForWhenTheAccessChangesAndNotAgain) {
  for (const char* name : {"Width", "Run"}) {
    SCOPED_TRACE(name);
    SetOn(0);
    const auto node = MakeKnownNode(name);

    const std::size_t first = CountQuestions(*node);
    const std::size_t second = CountQuestions(*node);
    const std::size_t third = CountQuestions(*node);
    SetOn(1);
    node->Refresh();
    SetOn(0);
    const std::size_t afterAChange = CountQuestions(*node);

    EXPECT_LT(second, first);
    EXPECT_EQ(third, second);
    EXPECT_EQ(afterAChange, first);
    EXPECT_EQ(node->GetAccessReason(), KrString("Not available: On is 0."));
  }
}

TEST_F(NodeAccess, Reason_AfterAReadingThatFailed_IsAskedFor) {
  const auto node = MakeKnownNode("Width");
  mCamera.FailReads(kOnAddress, KrResult(KrResult::Code::TimeLimitExceeded, "No."));
  node->Refresh();
  EXPECT_TRUE(node->HasError());
  EXPECT_TRUE(node->GetAccessReason().IsEmpty());
  mCamera.port.SetFault({});

  node->Refresh();

  EXPECT_EQ(node->GetAccessReason(), KrString("Not available: On is 0."));
}

TEST_F(NodeAccess, ToolTip_OfAFeatureThatIsLimited_AsksTheDeviceForNothing) {
  BrowserTree tree{RowNotifier(mCamera.queue)};
  const GridItem item = tree.AppendFeature(kNoItem, "Width", *mCamera.array->Get("Width"));
  tree.FindFeature(item)->Refresh();
  mCamera.AwaitNotifications();
  const std::size_t reads = mCamera.port.CountReads();

  const KrString text = GetToolText(tree, FindTool(tree, item, false));

  EXPECT_EQ(text, KrString("Not available: On is 0."));
  EXPECT_EQ(mCamera.port.CountReads(), reads);
}
