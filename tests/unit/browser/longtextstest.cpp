// What a row keeps of texts that are longer than it has room for, and what is left of editing them.

#include "logic/browser/featureediting.h"
#include "logic/browser/gridtools.h"
#include "logic/browser/rowcopying.h"
#include "logic/browser/shownvalue.h"
#include "logic/browser/valuetext.h"
#include "nodebench.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace krgui;

namespace {

constexpr std::uint64_t kTextAddress = 0x1000;
constexpr std::size_t kMost = 4096;
constexpr std::size_t kMostEdited = 65'536;

std::string MakeNodes() {
  const std::string toolTip(100'000, 't');
  const std::string displayName(100'000, 'd');
  const std::string unit(100'000, 'u');
  return "<StringReg Name=\"Text\"><Address>0x1000</Address><Length>70000</Length><AccessMode>RW</AccessMode>"
         "<pPort>Device</pPort><Cachable>NoCache</Cachable></StringReg>\n"
         "<Integer Name=\"Count\"><ToolTip>" +
         toolTip + "</ToolTip><DisplayName>" + displayName + "</DisplayName><Value>1</Value><Unit>" + unit +
         "</Unit></Integer>\n<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><DisplayName>" + displayName +
         "</DisplayName><Value>0</Value></EnumEntry><Value>0</Value></Enumeration>\n"
         "<Category Name=\"Root\"><ToolTip>" +
         toolTip + "</ToolTip><DisplayName>" + displayName +
         "</DisplayName><pFeature>Text</pFeature><pFeature>Count</pFeature><pFeature>Mode</pFeature></Category>\n";
}

class LongTexts : public testing::Test {
protected:
  void SetText(std::size_t aLength, char aLetter) {
    const std::string text = std::string(aLength, aLetter) + '\0';
    ASSERT_TRUE(camera.memory.Write(kTextAddress, text.data(), text.size(), 1000).IsOK());
  }

  NodeBench camera{MakeNodes()};
};

} // namespace

TEST(KeptTexts, LongText_IsCutInFrontOfAWholeCharacterWithItsLength) {
  EXPECT_EQ(KeepText(KrString()), KrString());
  EXPECT_EQ(KeepText(std::string(kMost, 'x')), KrString(std::string(kMost, 'x')));
  EXPECT_EQ(KeepText(std::string(kMost - 1, 'x') + "\xC3\xA9").ToUtf8(),
            std::string(kMost - 1, 'x') + "… (4097 bytes)");
}

TEST_F(LongTexts, Value_OfMoreThan4096Bytes_IsKeptByItsBeginningWithItsLength) {
  SetText(kMost, 'x');
  const auto node = camera.MakeReadNode("Text");
  EXPECT_EQ(GetText(*node), std::string(kMost, 'x'));

  SetText(19'999, 'y');
  node->Refresh();

  EXPECT_EQ(GetText(*node), std::string(kMost, 'y') + "… (19999 bytes)");
  EXPECT_TRUE(GetTroubleText(*node).IsEmpty());
  EXPECT_FALSE(node->HasError());
}

TEST_F(LongTexts, ValueThatIsCut_IsEditedAsTheDeviceHasIt) {
  for (const std::size_t length : {kMost, kMost + 1, kMostEdited}) {
    SetText(length, 'x');
    const auto node = camera.MakeReadNode("Text");

    EXPECT_EQ(ChooseEditor(*node), EditorKind::Text) << length;
    EXPECT_EQ(GetEditText(*node, false), KrString(std::string(length, 'x'))) << length;
    EXPECT_TRUE(IsEditable(node->GetSnapshot())) << length;
    EXPECT_TRUE(GetTroubleText(*node).IsEmpty()) << length;
  }
}

TEST_F(LongTexts, ValueOfMoreThan65536Bytes_HasNoEditorAndNoTextForOneAndSaysSo) {
  SetText(kMostEdited + 1, 'x');
  const auto node = camera.MakeReadNode("Text");

  EXPECT_EQ(ChooseEditor(*node), EditorKind::None);
  EXPECT_EQ(GetEditText(*node, false), KrString());
  EXPECT_FALSE(IsEditable(node->GetSnapshot()));
  EXPECT_EQ(GetTroubleText(*node), KrString(kCutValueText));
}

TEST_F(LongTexts, ValueThatGrowsTooLongWhileItIsAskedFor_LeavesItsEditorEmpty) {
  SetText(kMost + 1, 'x');
  const auto node = camera.MakeReadNode("Text");

  SetText(kMostEdited + 1, 'y');

  EXPECT_EQ(GetEditText(*node, false), KrString());
}

TEST_F(LongTexts, ValueThatIsCut_IsCopiedAsTheDeviceHasIt) {
  const std::string whole(kMostEdited + 1, 'x');
  SetText(whole.size(), 'x');
  const auto node = camera.MakeReadNode("Text");

  EXPECT_EQ(ReadRowPart(*node, RowPart::Value), KrString(whole));
  EXPECT_EQ(ReadRowPart(*node, RowPart::NameAndValue), KrString("Text = " + whole));
  EXPECT_EQ(ReadRowPart(*node, RowPart::Row), KrString("Text = " + whole));
  EXPECT_EQ(ReadRowPart(*node, RowPart::Name), KrString("Text"));
}

TEST_F(LongTexts, ValueThatIsCutAndCannotBeRead_IsCopiedAsTheRowHasIt) {
  SetText(kMost + 1, 'x');
  const auto node = camera.MakeReadNode("Text");
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });

  EXPECT_EQ(ReadRowPart(*node, RowPart::Value), KrString(std::string(kMost, 'x') + "… (4097 bytes)"));
}

TEST_F(LongTexts, CopyingWhatARowHasWhole_AsksNoDevice) {
  SetText(kMost, 'x');
  const auto node = camera.MakeReadNode("Text");
  (void)camera.port.TakeRecords();

  EXPECT_EQ(ReadRowPart(*node, RowPart::Value), KrString(std::string(kMost, 'x')));
  EXPECT_EQ(ReadRowPart(*node, RowPart::Name), KrString("Text"));

  EXPECT_TRUE(camera.port.TakeRecords().empty());
}

TEST_F(LongTexts, LongTextOfTheUser_IsWrittenWholeAndKeptCut) {
  SetText(1, 'x');
  const auto node = camera.MakeReadNode("Text");
  const EditInput input = {.kind = EditorKind::Text, .text = std::string(5000, 'z'), .isDirty = true};
  KrResult failure;

  EXPECT_EQ(WriteEdit(*node, input, failure), EditOutcome::Written);

  EXPECT_EQ(camera.Peek(kTextAddress, 5000), std::vector<std::uint8_t>(5000, 'z'));
  EXPECT_EQ(GetText(*node), std::string(kMost, 'z') + "… (5000 bytes)");
  EXPECT_TRUE(node->GetSnapshot().isCut);
}

TEST_F(LongTexts, ShortTextAfterALongOne_IsEditedAgain) {
  SetText(kMostEdited + 1, 'x');
  const auto node = camera.MakeReadNode("Text");
  ASSERT_EQ(ChooseEditor(*node), EditorKind::None);

  SetText(3, 'y');

  EXPECT_EQ(ChooseEditor(*node), EditorKind::Text);
  EXPECT_EQ(GetText(*node), "yyy");
  EXPECT_TRUE(GetTroubleText(*node).IsEmpty());
}

// What is written of it is no text of the device.
TEST_F(LongTexts, ChoiceAndNumber_AreCutAndEditedAllTheSame) {
  const auto mode = camera.MakeReadNode("Mode", true);
  const auto count = camera.MakeReadNode("Count");

  EXPECT_EQ(GetText(*mode), std::string(kMost, 'd') + "… (100000 bytes)");
  EXPECT_EQ(ChooseEditor(*mode), EditorKind::Choice);
  EXPECT_EQ(GetText(*count), "1 " + std::string(kMost - 2, 'u') + "… (100002 bytes)");
  EXPECT_EQ(ChooseEditor(*count), EditorKind::Number);
  EXPECT_EQ(GetEditText(*count, false), KrString("1"));
}

TEST_F(LongTexts, OfTheDescriptionAndOfErrors_AreKeptByTheirBeginnings) {
  const KrString toolTip = std::string(kMost, 't') + "… (100000 bytes)";
  const KrString displayName = std::string(kMost, 'd') + "… (100000 bytes)";
  const auto count = camera.MakeNode("Count");
  const auto root = camera.MakeCategoryNode("Root");

  count->SetError(std::string(100'000, 'e'));

  EXPECT_EQ(count->GetError().ToUtf8(), std::string(kMost, 'e') + "… (100000 bytes)");
  EXPECT_EQ(count->GetToolTip(), toolTip);
  EXPECT_EQ(count->GetDisplayName(), displayName);
  EXPECT_EQ(root->GetToolTip(), toolTip);
  EXPECT_EQ(root->GetDisplayName(), displayName);
}
