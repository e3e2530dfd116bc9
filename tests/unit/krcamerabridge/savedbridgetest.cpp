#include "saved/savedbridge.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace krcamerabridge {
namespace {

SavedBridge MakeBridge(const CameraWay& aWay) {
  SavedBridge bridge{.choice = {&aWay, "Dir#Driver#Maker", "Schema@XML@Name", "/path/camera.yml"},
                     .source = "Source1",
                     .isSyncOn = true};
  bridge.settings.Add("Selector", "Odd");
  bridge.settings.Add("Gain", "1");
  bridge.settings.Add("Selector", "Even");
  bridge.settings.Add("Gain", "2\n\t\"<&");
  return bridge;
}

TEST(SavedBridge, OfEveryWay_ComesBackAsItWas) {
  ASSERT_FALSE(GetCameraWays().empty());
  for (const CameraWay* const way : GetCameraWays()) {
    const SavedBridge before = MakeBridge(*way);
    SavedBridge after;
    KrStringList errors;

    ASSERT_TRUE(RestoreBridge(StoreBridge(before), after, errors).IsOK());

    EXPECT_TRUE(errors.IsEmpty());
    EXPECT_EQ(after.choice.way, way);
    for (const CameraWay::Key& key : way->keys)
      EXPECT_EQ(after.choice.*key.text, before.choice.*key.text);
    EXPECT_EQ(after.source, "Source1");
    EXPECT_EQ(after.isSyncOn, true);
    EXPECT_EQ(after.settings.GetSettings(), before.settings.GetSettings());
  }
}

TEST(SavedBridge, Ways_HaveWordsAndNamesOfTheirOwn) {
  std::vector<std::string> words;
  for (const CameraWay* const way : GetCameraWays())
    words.emplace_back(way->word);

  EXPECT_THAT(words, testing::ElementsAre("TolvanCameraFile", "CLProtocol", "GenCP"));
}

TEST(SavedBridge, EmptyList_LacksEverything) {
  SavedBridge bridge;
  KrStringList errors;

  EXPECT_EQ(RestoreBridge({}, bridge, errors), KrResult::Code::BadData);

  EXPECT_EQ(errors.GetCount(), 3u);
  EXPECT_EQ(bridge.choice.way, nullptr);
  EXPECT_FALSE(bridge.isSyncOn);
}

} // namespace
} // namespace krcamerabridge
