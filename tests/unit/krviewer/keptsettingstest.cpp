#include "acquisition/keptsettings.h"

#include "describedcamera.h"

#include <gtest/gtest.h>

#include <string>

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
