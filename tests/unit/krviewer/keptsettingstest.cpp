#include "acquisition/keptsettings.h"

#include "acquisition/settingsreturn.h"

#include "describedcamera.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

std::string MakeText(const std::string& aName, std::size_t aBytes) {
  return "<String Name=\"" + aName + "\"><Streamable>Yes</Streamable><Value>" + std::string(aBytes, 'x') +
         "</Value></String>\n";
}

} // namespace

// Whatever a description has: what was set by a user is far less.
TEST(KeptSettings_, OfMoreThanTwentyThousandFeatures_AreThatMany) {
  std::string nodes;
  std::string features;
  for (int i = 0; i < 20'500; ++i) {
    const std::string name = "F" + std::to_string(i);
    nodes += "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable><Value>1</Value></Integer>\n";
    features += "<pFeature>" + name + "</pFeature>";
  }
  DescribedCamera camera(nodes + "<Category Name=\"Root\">" + features + "</Category>");
  krviewer::KeptSettings kept;

  kept.Follow(*camera.array);
  kept.NoteRemembered();

  EXPECT_EQ(kept.Get().size(), 20'000u);
  kept.Leave();
}

// Of 1 MiB each, of which the names take the room of the sixteenth.
TEST(KeptSettings_, OfMoreThan16MiB_AreThoseThatThereIsRoomFor) {
  constexpr std::size_t kMebibyte = std::size_t{1} << 20;
  std::string nodes;
  std::string features;
  for (int i = 0; i < 20; ++i) {
    nodes += MakeText("S" + std::to_string(i), kMebibyte);
    features += "<pFeature>S" + std::to_string(i) + "</pFeature>";
  }
  DescribedCamera camera(nodes + "<Category Name=\"Root\">" + features + "</Category>");
  krviewer::KeptSettings kept;

  kept.Follow(*camera.array);
  kept.NoteRemembered();
  EXPECT_EQ(kept.Get().size(), 15u);

  // In its room there is another, whether or not it was among them.
  ASSERT_TRUE(camera.array->Get("S7")->FromString("short").IsOK());
  kept.NoteRemembered();
  kept.NoteRemembered();
  EXPECT_EQ(kept.Get().size(), 16u);
  kept.Leave();
}

// The camera stores no text that is longer than the one it had at first.
TEST(SettingsReturn_, WhatIsNotAsBefore_IsToldWithTheBeginningsOfLongTexts) {
  DescribedCamera camera(MakeText("Text", 100'000) + "<Category Name=\"Root\"><pFeature>Text</pFeature></Category>");
  krviewer::SettingsReturned returned;

  const KrResult result =
      krviewer::SettingsReturn(*camera.array).Run({{.name = "Text", .value = std::string(100'001, 'y')}}, {}, returned);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_EQ(returned.different.GetCount(), 1u);
  EXPECT_EQ(returned.different[0].ToUtf8(),
            "Text was " + std::string(120, 'y') + "… and is " + std::string(120, 'x') + "….");
}
