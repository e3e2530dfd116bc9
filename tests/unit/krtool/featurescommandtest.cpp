#include "featurescommand.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <sstream>

namespace krtool {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class FeaturesListed : public testing::Test {
protected:
  int List(const KrResult& aLoss = {}) {
    const CommandLine line = {.verb = Verb::Features};
    return ListFeatures(
        *mCamera.array, "Camera", [aLoss] { return aLoss; }, line, mOut, mErrors);
  }

  DescribedCamera mCamera{R"(<Category Name="Root"><pFeature>Width</pFeature></Category>
    <Integer Name="Width"><Value>64</Value></Integer>)"};
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(FeaturesListed, DeviceThatAnswers_IsListedSilently) {
  EXPECT_EQ(List(), 0);

  EXPECT_THAT(mOut.str(), HasSubstr("\nRoot\tWidth\t"));
  EXPECT_THAT(mErrors.str(), IsEmpty());
}

TEST_F(FeaturesListed, DeviceThatFallsSilent_FailsInOneLineBehindTheTable) {
  EXPECT_EQ(List({KrResult::Code::TimeLimitExceeded, "No answer\ncame."}), 1);

  EXPECT_THAT(mOut.str(), HasSubstr("\nRoot\tWidth\t"));
  EXPECT_EQ(mErrors.str(), "krtool: Camera did not answer all along: No answer?came.\n");
}

TEST_F(FeaturesListed, DescriptionWhoseRootReachesNothing_IsPointedOut) {
  DescribedCamera camera(R"(<Category Name="Root"/><Integer Name="Width"><Value>64</Value></Integer>)");

  EXPECT_EQ(ListFeatures(
                *camera.array, "Camera", [] { return KrResult(); }, {.verb = Verb::Features}, mOut, mErrors),
            0);

  EXPECT_EQ(mErrors.str(), "krtool: the description has no feature that its root category reaches.\n");
}

} // namespace
} // namespace krtool
