#include "logic/browser/treeitemdata.h"

#include "nodebench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace krgui;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kNodes = R"(
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Image</pFeature></Category>
<Category Name="Image" NameSpace="Standard"><ToolTip>Tip of Image</ToolTip><Description>All of the image</Description>
  <DisplayName>The Image</DisplayName><pFeature>Width</pFeature></Category>
<Integer Name="Width" NameSpace="Standard"><ToolTip>Tip</ToolTip><Description>Words</Description>
  <DisplayName>Image Width</DisplayName><Visibility>Guru</Visibility><Streamable>Yes</Streamable>
  <pIsAvailable>On</pIsAvailable><pValue>Raw</pValue><Max>100</Max></Integer>
<Integer Name="On"><Value>1</Value></Integer>
<Integer Name="Selector"><Value>1</Value><pSelected>Gain</pSelected><pSelected>Offset</pSelected></Integer>
<Integer Name="OtherSelector"><Value>1</Value><pSelected>Gain</pSelected></Integer>
<Integer Name="Gain"><Visibility>Expert</Visibility><Value>1</Value></Integer>
<Integer Name="Offset"><Visibility>Invisible</Visibility><Value>1</Value></Integer>
<Integer Name="GevMACAddress"><Value>0x001122334455</Value></Integer>
<Integer Name="GevCurrentIPAddress"><Value>0xC0A80001</Value></Integer>
<Command Name="Run"><pValue>RunReg</pValue><CommandValue>1</CommandValue></Command>
<Node Name="Plain"/>
)" + MakeUncachedRegister("Raw", 0) +
                           MakeUncachedRegister("RunReg", 8);

KrResult MakeFailure(const char* aText) {
  return {KrResult::Code::TimeLimitExceeded, aText};
}

class Node : public testing::Test {
protected:
  /// Which node of a table has been read and acknowledged.
  std::unique_ptr<TreeItemData> MakeAcknowledgedNode(const char* aName) {
    auto node = camera.MakeReadNode(aName);
    (void)node->GetValue(true);
    EXPECT_FALSE(node->HasChanged());
    return node;
  }
  void SetRaw(std::uint8_t aValue) { camera.Poke(0, {aValue, 0, 0, 0}); }

  NodeBench camera{kNodes};
};

} // namespace

TEST_F(Node, OfAFeature_HasTheTextsOfTheDescription) {
  const auto node = camera.MakeNode("Width", true);

  EXPECT_EQ(node->GetName(), KrString("Width"));
  EXPECT_EQ(node->GetToolTip(), KrString("Tip"));
  EXPECT_EQ(node->GetDisplayName(), KrString("Image Width"));
  EXPECT_EQ(node->GetNameSpaceText(), KrString("Standard"));
  EXPECT_EQ(node->GetVisibilityText(), KrString("Guru"));
  EXPECT_EQ(node->GetStreamableText(), KrString("True"));
  EXPECT_EQ(node->GetTypeText(), KrString("Integer"));
  EXPECT_EQ(node->GetParameter(), camera.array->Get("Width"));
  EXPECT_EQ(node->GetCategory(), nullptr);
  EXPECT_EQ(node->GetItem(), NodeBench::kItem);
}

TEST_F(Node, OfAFeature_HasTheWordsOfWhatIsDifferent) {
  const auto gain = camera.MakeNode("Gain");
  const auto plain = camera.MakeNode("Plain");

  EXPECT_EQ(gain->GetNameSpaceText(), KrString("Custom"));
  EXPECT_EQ(gain->GetVisibilityText(), KrString("Expert"));
  EXPECT_EQ(gain->GetStreamableText(), KrString("False"));
  EXPECT_EQ(camera.MakeNode("Offset")->GetVisibilityText(), KrString("Invisible"));
  EXPECT_EQ(camera.MakeNode("Run")->GetTypeText(), KrString("Command"));
  EXPECT_EQ(plain->GetTypeText(), KrString("Unexpected"));
}

TEST_F(Node, OfACategory_HasItsTextsAndNoneOfAFeature) {
  const auto node = camera.MakeCategoryNode("Image");

  EXPECT_EQ(node->GetName(), KrString("Image"));
  EXPECT_EQ(node->GetToolTip(), KrString("Tip of Image"));
  EXPECT_EQ(node->GetDisplayName(), KrString("The Image"));
  EXPECT_EQ(node->GetNameSpaceText(), KrString("Standard"));
  EXPECT_EQ(node->GetTypeText(), KrString("Category"));
  EXPECT_TRUE(node->GetVisibilityText().IsEmpty());
  EXPECT_TRUE(node->GetStreamableText().IsEmpty());
  EXPECT_EQ(node->GetParameter(), nullptr);
  EXPECT_EQ(node->GetCategory(), camera.array->GetCategory("Image"));
  EXPECT_FALSE(node->HasSelectors());
  EXPECT_FALSE(node->IsSelector());
}

TEST_F(Node, ShownName_FollowsTheDisplayNamesFlag) {
  EXPECT_EQ(camera.MakeNode("Width", true)->GetShownName(), KrString("Image Width"));
  EXPECT_EQ(camera.MakeNode("Width", false)->GetShownName(), KrString("Width"));
  EXPECT_EQ(camera.MakeCategoryNode("Image", true)->GetShownName(), KrString("The Image"));
}

TEST_F(Node, AddressFlags_FollowTheNameGiven) {
  const auto width = camera.MakeNode("Width");
  const auto mac = camera.MakeNode("GevMACAddress");
  const auto ip = camera.MakeNode("GevCurrentIPAddress");

  EXPECT_FALSE(width->IsMACAddress() || width->IsIPAddress());
  EXPECT_TRUE(mac->IsMACAddress());
  EXPECT_FALSE(mac->IsIPAddress());
  EXPECT_TRUE(ip->IsIPAddress());
  EXPECT_FALSE(ip->IsMACAddress());
  mac->Refresh();
  ip->Refresh();
  EXPECT_EQ(GetText(*mac), "00:11:22:33:44:55");
  EXPECT_EQ(GetText(*ip), "192.168.0.1");
}

TEST_F(Node, Selectors_AreThoseOfTheLibraryInItsOrder) {
  const auto selector = camera.MakeNode("Selector");
  const auto gain = camera.MakeNode("Gain");

  EXPECT_TRUE(selector->IsSelector());
  EXPECT_FALSE(selector->HasSelectors());
  EXPECT_THAT(selector->GetSelectedParameters(), ElementsAre(camera.array->Get("Gain"), camera.array->Get("Offset")));
  EXPECT_TRUE(gain->HasSelectors());
  EXPECT_FALSE(gain->IsSelector());
  EXPECT_THAT(gain->GetSelectingParameters(),
              ElementsAre(camera.array->Get("Selector"), camera.array->Get("OtherSelector")));
}

TEST_F(Node, Construction_AsksTheDeviceForNothing) {
  camera.AwaitNotifications();
  (void)camera.port.TakeRecords();

  const auto node = camera.MakeNode("Width");
  camera.AwaitNotifications();

  constexpr std::uint64_t kRegistersOfWidth = 0x100;
  for (const RegisterAccessRecord& record : camera.port.TakeRecords())
    EXPECT_GT(record.address, kRegistersOfWidth) << "only that of the waiting itself";
  EXPECT_FALSE(node->HasError());
  EXPECT_EQ(node->GetAccess(), AccessFlags());
  EXPECT_FALSE(node->IsRead());
}

TEST_F(Node, BeforeTheFirstReading_ValueIsEmptyAndNothingIsAcknowledged) {
  const auto node = camera.MakeNode("Width");
  node->MarkRedrawPending();
  node->SetValueText("5");

  const KrString value = node->GetValue(true);

  EXPECT_TRUE(value.IsEmpty());
  EXPECT_TRUE(node->HasChanged()) << "the redraw mark is still there";
  EXPECT_TRUE(node->GetSnapshot().value.IsEmpty());
  EXPECT_FALSE(node->GetSnapshot().isRead);
}

TEST_F(Node, NewNode_HasNotChanged) {
  EXPECT_FALSE(camera.MakeNode("Width")->HasChanged());
  EXPECT_FALSE(camera.MakeCategoryNode("Image")->HasChanged());
}

TEST_F(Node, Refresh_ReadsValueAndAccess) {
  SetRaw(42);
  const auto node = camera.MakeNode("Width");

  node->Refresh();

  EXPECT_TRUE(node->IsRead());
  EXPECT_TRUE(node->HasChanged());
  EXPECT_EQ(node->GetValue(false), KrString("42 "));
  EXPECT_EQ(node->GetAccess(), (AccessFlags{true, true, true, true}));
  EXPECT_FALSE(node->HasError());
  const RowSnapshot snapshot = node->GetSnapshot();
  EXPECT_EQ(snapshot.value, KrString("42 "));
  EXPECT_TRUE(snapshot.isRead);
  EXPECT_FALSE(snapshot.hasError);
  EXPECT_EQ(snapshot.access, node->GetAccess());
}

TEST_F(Node, RefreshOfACategory_ReadsNothingAndLeavesItsError) {
  const auto node = camera.MakeCategoryNode("Image");
  node->SetError("Kept");
  (void)camera.port.TakeRecords();

  node->Refresh();

  EXPECT_TRUE(node->IsRead());
  EXPECT_TRUE(node->GetValue(false).IsEmpty());
  EXPECT_EQ(node->GetAccess(), AccessFlags());
  EXPECT_EQ(node->GetError(), KrString("Kept"));
  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST_F(Node, GetValue_WithoutAcknowledge_LeavesTheChange) {
  const auto node = camera.MakeReadNode("Width");

  (void)node->GetValue(false);
  EXPECT_TRUE(node->HasChanged());
  (void)node->GetValue(true);
  EXPECT_FALSE(node->HasChanged());
}

TEST_F(Node, EachPartOfTheContent_IsAChangeButTheErrorsTextAlone) {
  struct {
    const char* description;
    std::function<void(TreeItemData&)> change;
    bool isChange;
  } const kRows[] = {
      {"value", [](TreeItemData& aNode) { aNode.SetValueText("5"); }, true},
      {"error", [](TreeItemData& aNode) { aNode.SetError("No."); }, true},
      {"an error that came and went",
       [](TreeItemData& aNode) {
         aNode.SetError("No.");
         aNode.ClearError();
       },
       false},
      {"another error text",
       [](TreeItemData& aNode) {
         aNode.SetError("No.");
         (void)aNode.GetValue(true);
         aNode.SetError("Never.");
       },
       false},
      {"redraw mark", [](TreeItemData& aNode) { aNode.MarkRedrawPending(); }, true},
      {"redraw mark that was acknowledged",
       [](TreeItemData& aNode) {
         aNode.MarkRedrawPending();
         (void)aNode.GetValue(true);
       },
       false},
      {"the same value again", [](TreeItemData& aNode) { aNode.SetValueText("0 "); }, false},
      {"another reading", [](TreeItemData& aNode) { aNode.Refresh(); }, false},
  };

  for (const auto& row : kRows) {
    const auto node = MakeAcknowledgedNode("Width");

    row.change(*node);

    EXPECT_EQ(node->HasChanged(), row.isChange) << row.description;
  }
}

TEST_F(Node, ValueText_IsComparedWithItsCase) {
  const auto node = MakeAcknowledgedNode("Width");
  node->SetValueText("mono8");
  (void)node->GetValue(true);

  node->SetValueText("Mono8");

  EXPECT_TRUE(node->HasChanged());
}

TEST_F(Node, SetValueText_MakesWhatWasThereTheAcknowledgedText) {
  const auto node = camera.MakeReadNode("Width");

  node->SetValueText("5 px");
  EXPECT_EQ(node->GetValue(false), KrString("5 px"));
  EXPECT_TRUE(node->HasChanged());
  (void)node->GetValue(true);
  node->SetValueText("6 px");
  node->SetValueText("5 px");

  EXPECT_TRUE(node->HasChanged()) << "the text before the last one was 6 px";
}

TEST_F(Node, Error_IsSetAndCleared) {
  const auto node = camera.MakeReadNode("Width");

  node->SetError("No.");
  EXPECT_TRUE(node->HasError());
  EXPECT_TRUE(node->GetSnapshot().hasError);
  EXPECT_EQ(node->GetError(), KrString("No."));

  node->ClearError();
  EXPECT_FALSE(node->HasError());
  EXPECT_FALSE(node->GetSnapshot().hasError);
  EXPECT_TRUE(node->GetError().IsEmpty());
}

TEST_F(Node, ReadingThatSucceeds_ClearsTheErrorOfAnEdit) {
  const auto node = camera.MakeReadNode("Width");
  node->SetError("The write failed.");

  node->Refresh();

  EXPECT_FALSE(node->HasError());
}

TEST_F(Node, ValueOutOfRange_IsAnErrorUntilTheNextReadingInRange) {
  SetRaw(101);
  const auto node = camera.MakeReadNode("Width");
  EXPECT_EQ(GetText(*node), "101 ");
  EXPECT_EQ(node->GetError(), KrString("Parameter out of range"));

  SetRaw(100);
  node->Refresh();

  EXPECT_EQ(GetText(*node), "100 ");
  EXPECT_FALSE(node->HasError());
}

TEST_F(Node, ReadingThatFails_EmptiesTheValueAndSaysWhy) {
  SetRaw(42);
  const auto node = MakeAcknowledgedNode("Width");
  camera.FailReads(0, MakeFailure("The device is silent."));

  node->Refresh();

  EXPECT_TRUE(node->HasError());
  EXPECT_TRUE(node->HasChanged());
  EXPECT_TRUE(node->GetError().ToUtf8().starts_with("Error reading value, ")) << node->GetError().CStr();
  EXPECT_TRUE(GetText(*node).empty());
  EXPECT_TRUE(node->IsRead());
  camera.port.SetFault({});
  node->Refresh();
  EXPECT_FALSE(node->HasError());
  EXPECT_EQ(GetText(*node), "42 ");
}

TEST_F(Node, FeatureThatBecomesUnreadable_KeepsItsTextAndChangesOnce) {
  SetRaw(42);
  const auto node = MakeAcknowledgedNode("Width");
  node->SetError("Old");
  (void)node->GetValue(true);
  ASSERT_TRUE(camera.Integer("On").SetValue(0).IsOK());

  node->Refresh();

  EXPECT_TRUE(node->HasChanged());
  EXPECT_EQ(GetText(*node), "42 ");
  EXPECT_EQ(node->GetAccess(), AccessFlags{.isImplemented = true});
  EXPECT_FALSE(node->HasError()) << "the error of an earlier reading goes";
  EXPECT_EQ(node->GetAccessReason(), KrString("Not available: On is 0."));
  (void)node->GetValue(true);
  node->Refresh();
  EXPECT_FALSE(node->HasChanged());
}

TEST(NodeLock, FeatureThatBecomesLocked_ChangesOnceThoughItsValueStays) {
  NodeBench camera("<Integer Name=\"X\"><pIsLocked>Lock</pIsLocked><Value>7</Value></Integer>" +
                   MakeUncachedRegister("Lock", 0));
  const auto node = camera.MakeReadNode("X");
  (void)node->GetValue(true);
  ASSERT_FALSE(node->HasChanged());
  camera.Poke(0, {1, 0, 0, 0});

  node->Refresh();

  EXPECT_TRUE(node->HasChanged());
  EXPECT_EQ(GetText(*node), "7 ");
  EXPECT_EQ(node->GetAccess(), (AccessFlags{.isReadable = true, .isImplemented = true, .isAvailable = true}));
  (void)node->GetValue(true);
  node->Refresh();
  EXPECT_FALSE(node->HasChanged());
}

TEST_F(Node, CommandThatRuns_ChangesWhenItIsDone) {
  const auto node = MakeAcknowledgedNode("Run");
  EXPECT_EQ(GetText(*node), "{Command}");
  ASSERT_TRUE(camera.Command("Run").Execute().IsOK());
  node->Refresh();
  EXPECT_EQ(GetText(*node), "{Executing}");
  EXPECT_FALSE(node->GetAccess().isWritable);
  (void)node->GetValue(true);

  camera.Poke(8, {0, 0, 0, 0});
  node->Refresh();

  EXPECT_TRUE(node->HasChanged());
  EXPECT_EQ(GetText(*node), "{Command}");
  EXPECT_TRUE(node->GetAccess().isWritable);
}

TEST_F(Node, Notification_ReadsAndPostsTheRowOnce) {
  const auto node = MakeAcknowledgedNode("Gain");
  camera.AwaitNotifications();
  (void)camera.TakeMessages();

  ASSERT_TRUE(camera.Integer("Gain").SetValue(5).IsOK());
  camera.AwaitNotifications();

  EXPECT_EQ(GetText(*node), "5 ");
  EXPECT_THAT(camera.TakeMessages(), ElementsAre(Message{0x1401, NodeBench::kItem, 0}));
}

TEST_F(Node, NotificationWithoutAChange_PostsNothing) {
  const auto node = MakeAcknowledgedNode("Gain");
  camera.AwaitNotifications();
  (void)camera.TakeMessages();

  node->OnParameterUpdate(camera.array->Get("Gain"));

  EXPECT_THAT(camera.TakeMessages(), IsEmpty());
}

TEST_F(Node, NotificationsUntilTheRowIsLookedAt_AreOneMessage) {
  const auto node = MakeAcknowledgedNode("Gain");
  camera.AwaitNotifications();
  (void)camera.TakeMessages();

  for (int value = 10; value < 20; ++value)
    ASSERT_TRUE(camera.Integer("Gain").SetValue(value).IsOK());
  camera.AwaitNotifications();

  EXPECT_EQ(camera.TakeMessages().size(), 1u);
  EXPECT_EQ(GetText(*node), "19 ");
}

TEST_F(Node, NotificationWhenTheGridIsGone_IsNoFault) {
  const auto node = MakeAcknowledgedNode("Gain");
  camera.queue->Close();

  ASSERT_TRUE(camera.Integer("Gain").SetValue(5).IsOK());
  camera.AwaitNotifications();

  EXPECT_EQ(GetText(*node), "5 ");
}

TEST_F(Node, OfAFeature_IsItsSinkFromConstructionToDestruction) {
  KrGenParameter& gain = *camera.array->Get("Gain");
  auto node = camera.MakeNode("Gain");

  EXPECT_TRUE(gain.RegisterEventSink(node.get()) == KrResult::Code::InvalidInput) << "registered already";
  KrGenEventSink* const sink = node.get();
  node.reset();
  EXPECT_TRUE(gain.UnregisterEventSink(sink) == KrResult::Code::InvalidInput) << "not registered any more";
}

TEST_F(Node, SeveralNodesOfAFeature_AreToldEach) {
  const auto first = MakeAcknowledgedNode("Gain");
  const auto second = MakeAcknowledgedNode("Gain");

  ASSERT_TRUE(camera.Integer("Gain").SetValue(9).IsOK());
  camera.AwaitNotifications();

  EXPECT_EQ(GetText(*first), "9 ");
  EXPECT_EQ(GetText(*second), "9 ");
}

TEST_F(Node, PlaceInTheGrid_IsKept) {
  const auto node = camera.MakeNode("Gain");
  EXPECT_EQ(node->GetLevel(), 0);
  EXPECT_FALSE(node->IsOnScreen());

  node->SetLevel(3);
  node->SetOnScreen(true);

  EXPECT_EQ(node->GetLevel(), 3);
  EXPECT_TRUE(node->IsOnScreen());
}

TEST_F(Node, Names_AreComparedWithTheirCase) {
  struct {
    const char* left;
    const char* right;
    bool isLess;
  } constexpr kRows[] = {{"A", "B", true},  {"B", "A", false}, {"A", "A", false},        {"Z", "a", true},
                         {"a", "Z", false}, {"", "A", true},   {"Gain", "GainRaw", true}};

  for (const auto& row : kRows) {
    const TreeItemData left(row.left, RowNotifier(camera.queue), 1, *camera.array->Get("Gain"), false);
    const TreeItemData right(row.right, RowNotifier(camera.queue), 2, *camera.array->Get("Gain"), false);
    EXPECT_EQ(TreeItemData::IsNameLess(left, right), row.isLess) << row.left << " and " << row.right;
  }
}

TEST_F(Node, NamesOfAllKinds_AreKeptAsTheyAre) {
  const std::string kNames[] = {"", std::string(10000, 'n'), "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D",
                                "<b>bold</b> &amp; \n \"quoted\""};

  for (const std::string& name : kNames) {
    const TreeItemData node(name, RowNotifier(camera.queue), 1, *camera.array->Get("Gain"), false);
    EXPECT_EQ(node.GetName().ToUtf8(), name);
    EXPECT_EQ(node.GetShownName().ToUtf8(), name);
  }
}

TEST(NodeSize, Node_IsSmallBesideItsTexts) {
  EXPECT_LT(sizeof(TreeItemData), 1024u);
}
